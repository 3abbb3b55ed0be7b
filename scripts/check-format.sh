#!/usr/bin/env bash
# Fails when a C++ file differs from what clang-format makes of it.
set -euo pipefail
cd "$(dirname "$0")/.."
bad=0
while IFS= read -r file; do
    if ! clang-format --dry-run --Werror "$file" >/dev/null 2>&1; then
        echo "not formatted: $file"
        bad=1
    fi
done < <(git ls-files 'src/*.cpp' 'src/*.h' 'tests/*.cpp' 'tests/*.h' 'bench/*.cpp' 'bench/*.h' 'fuzz/*.cpp' 'fuzz/*.h')
exit $bad
