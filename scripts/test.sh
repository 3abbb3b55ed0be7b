#!/usr/bin/env bash
# Installs what is missing, checks formatting and clang-tidy, builds and runs every test.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
bash scripts/check-format.sh
bash scripts/build.sh
bash scripts/check-tidy.sh > build/clang-tidy.log 2>&1 || { tail -n 40 build/clang-tidy.log; exit 1; }
QT_QPA_PLATFORM=offscreen ctest --test-dir build -j2 --output-on-failure
