#!/usr/bin/env bash
# Installs what is missing, checks the formatting, builds and runs every test.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
bash scripts/check-format.sh
bash scripts/build.sh
QT_QPA_PLATFORM=offscreen ctest --test-dir build -j2 --output-on-failure
