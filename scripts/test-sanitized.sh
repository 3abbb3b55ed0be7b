#!/usr/bin/env bash
# Builds everything with AddressSanitizer and UndefinedBehaviorSanitizer into build-asan/
# and runs the whole test suite under them. Any report fails, also one from a child
# process whose exit status its test expects to be an error. Installs nothing:
# scripts/install-deps.sh does that.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD
build=$root/build-asan
sanitize="-fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined"

launcher=()
if command -v ccache > /dev/null; then
    launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
fi
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_COMPILER=g++ \
    -DPLCDB_BUILD_BENCH=OFF "-DCMAKE_CXX_FLAGS=$sanitize" \
    "-DCMAKE_EXE_LINKER_FLAGS=$sanitize" \
    "-DCMAKE_SHARED_LINKER_FLAGS=$sanitize" \
    "-DCMAKE_MODULE_LINKER_FLAGS=$sanitize" \
    "${launcher[@]}" > /dev/null
cmake --build "$build" -j "$(nproc)"

# Address and leak reports go to files, one per process, so that none is lost in the
# output of a child process. The undefined-behaviour runtime of gcc writes to stderr
# whatever it is told, so its reports are caught by their exit status alone: 86 is no
# status that any test expects of a child.
logs=$build/sanitizer-logs
rm -rf "$logs"
mkdir -p "$logs"
export ASAN_OPTIONS="log_path=$logs/asan:exitcode=86:detect_leaks=1:detect_stack_use_after_return=1:check_initialization_order=1:strict_init_order=1"
export UBSAN_OPTIONS="exitcode=86:print_stacktrace=1:halt_on_error=1"
export QT_QPA_PLATFORM=offscreen

status=0
ctest --test-dir "$build" -j2 --output-on-failure || status=$?
if [ -n "$(ls -A "$logs")" ]; then
    cat "$logs"/*
    echo "sanitizer reports: see above and $logs" >&2
    exit 1
fi
exit "$status"
