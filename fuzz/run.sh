#!/usr/bin/env bash
# Runs one fuzzer on its kept corpus, or each of them: fuzz/run.sh [NAME] [SECONDS] [--keep]. A new finding ends it with an
# error and lies in build-fuzz/findings. What is found goes on from in build-fuzz/corpus the next time; with --keep the
# inputs that reach further are merged into fuzz/corpus/NAME, which is for commits.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
name=${1:-all}
seconds=${2:-60}
keeps=${3:-}
[[ -z $keeps || $keeps == --keep ]] || {
    echo "usage: fuzz/run.sh [NAME] [SECONDS] [--keep]" >&2
    exit 2
}

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
    [[ -z $keeps ]] || "$program" -merge=1 "$kept" "$work" >/dev/null 2>&1
done
