#!/usr/bin/env bash
# Installs the Debian packages plcdb needs to build, test and run; only those missing.
set -euo pipefail

packages=(
    cmake ninja-build g++ pkg-config clang-format clang-tidy clang libclang-rt-14-dev
    qt6-base-dev libsqlite3-dev sqlite3 libpq-dev postgresql
    libgtest-dev libgmock-dev libbenchmark-dev
    sbcl
)

missing=()
for package in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$package")
    fi
done

if [ ${#missing[@]} -eq 0 ]; then
    exit 0
fi

echo "Installing: ${missing[*]}"
if [ "$(id -u)" -ne 0 ]; then
    SUDO=sudo
else
    SUDO=
fi
$SUDO apt-get update -qq
DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
