#!/usr/bin/env bash
# Builds the fuzz targets into build-fuzz/ (clang, libFuzzer, ASan, UBSan) and runs each
# for SECONDS (default 20). Fails when any target finds a crash, a hang, a leak or a
# broken promise; the input that did it stays in build-fuzz/crashes/. Installs nothing:
# it needs clang++, Ninja and the packages of the main build.
#     bash scripts/fuzz.sh [SECONDS]
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-20}
build=build-fuzz

if ! command -v clang++ > /dev/null; then
    echo "fuzz.sh: clang++ is missing (Debian: clang and libclang-rt-14-dev)" >&2
    exit 2
fi
if [ ! -f "$build/CMakeCache.txt" ]; then
    launcher=()
    if command -v ccache > /dev/null; then
        launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
    fi
    cmake -S . -B "$build" -G Ninja -DPLCDB_FUZZ=ON -DCMAKE_CXX_COMPILER=clang++ \
          -DCMAKE_BUILD_TYPE=RelWithDebInfo "${launcher[@]}"
fi
ninja -C "$build"

mkdir -p "$build/crashes" "$build/tmp"
failed=()
for fuzzer in "$build"/fuzz_*; do
    [ -f "$fuzzer" ] && [ -x "$fuzzer" ] || continue
    name=$(basename "$fuzzer")
    corpus="$build/corpus/$name"
    mkdir -p "$corpus"
    inputs=("$corpus" "fuzz/corpus/$name")
    [ -d "$build/seeds/$name" ] && inputs+=("$build/seeds/$name")
    echo "== $name for ${seconds}s"
    # Scratch files of the targets live below the build folder, not in /tmp.
    if ! TMPDIR="$build/tmp" "$fuzzer" -max_total_time="$seconds" -timeout=10 \
            -rss_limit_mb=2048 -print_final_stats=1 -dict="fuzz/dict/$name.dict" \
            -artifact_prefix="$build/crashes/$name-" "${inputs[@]}" \
            > "$build/$name.log" 2>&1; then
        failed+=("$name")
        tail -n 40 "$build/$name.log"
    fi
    grep -E '^stat::number_of_executed_units' "$build/$name.log" || true
done

if [ ${#failed[@]} -gt 0 ]; then
    echo "fuzz.sh: findings in ${failed[*]}; inputs in $build/crashes/" >&2
    exit 1
fi
echo "fuzz.sh: no findings"
