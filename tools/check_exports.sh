#!/usr/bin/env bash
# check_exports.sh PROGRAM...: fails when one of the programs exports a symbol, and names the first of them.
set -euo pipefail
for program in "$@"; do
    symbols=$(nm -D --defined-only -- "$program")
    [[ -z $symbols ]] || {
        echo "$program exports $(wc -l <<<"$symbols") symbols, for instance" >&2
        head -n 3 <<<"$symbols" >&2
        exit 1
    }
done
