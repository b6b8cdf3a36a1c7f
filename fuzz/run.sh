#!/usr/bin/env bash
# Runs one fuzzer on its kept corpus, or each of them: fuzz/run.sh [NAME] [SECONDS]. A new finding ends it with an error and
# lies in build-fuzz/findings; inputs worth keeping are merged back into fuzz/corpus/NAME.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
name=${1:-all}
seconds=${2:-60}

cmake --preset fuzz -S "$root" >/dev/null
ninja -C "$root/build-fuzz" "fuzz/all"
mkdir -p "$root/build-fuzz/findings"
for program in "$root"/build-fuzz/fuzz/fuzz_*; do
    [[ -x $program && -f $program ]] || continue
    fuzzer=$(basename "$program")
    [[ $name == all || $name == "$fuzzer" ]] || continue
    kept=$root/fuzz/corpus/$fuzzer
    work=$root/build-fuzz/corpus/$fuzzer
    mkdir -p "$kept" "$work"
    dictionary=()
    [[ ! -f $root/fuzz/$fuzzer.dict ]] || dictionary=("-dict=$root/fuzz/$fuzzer.dict")
    "$program" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 \
        -artifact_prefix="$root/build-fuzz/findings/$fuzzer-" "${dictionary[@]}" "$work" "$kept"
    "$program" -merge=1 "$kept" "$work" >/dev/null 2>&1
done
