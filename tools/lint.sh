#!/usr/bin/env bash
# Every check that needs no built program; clang-tidy only of what was changed. Runs them all, then fails when one failed.
# build/ must be configured, for the compiler flags of each folder.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

failed=()
check() {
    local name=$1
    shift
    echo "== $name"
    "$@" || failed+=("$name")
}

with_self_test() {
    "$@" --self-test && "$@"
}

headers_alone() {
    tools/check_headers.py build --self-test && tools/check_headers.py build
}

small_functions() {
    local file files=()
    for file in "${sources[@]}"; do
        [[ $file == tests/* ]] || files+=("$file")
    done
    tools/check_functions.py --self-test && tools/check_functions.py "${files[@]}"
}

format() {
    printf '%s\0' "${sources[@]}" | xargs -0 -r -n 16 -P 2 clang-format-19 --dry-run -Werror --style=file
}

# Tracked files and new ones, deleted ones left out.
mapfile -d '' -t sources < <(
    git ls-files -z --cached --others --exclude-standard --deduplicate -- \
        ':(glob)src/**' ':(glob)tests/**' ':(glob)bench/**' ':(glob)fuzz/**' ':(glob)helpers/**' |
        while IFS= read -r -d '' file; do
            [[ $file == *.h || $file == *.cpp ]] && [[ -f $file ]] && printf '%s\0' "$file"
        done
    true
)
((${#sources[@]} > 0)) || {
    echo "lint: git lists no sources" >&2
    exit 1
}
shopt -s nullglob
scripts=(dev .ci/run tools/*.sh bench/*.sh tests/*/*.sh packaging/*.sh packaging/completions/*.bash)

check format format
check scripts shellcheck "${scripts[@]}"
check floors with_self_test tools/check_floors.py
check texts with_self_test tools/check_strings.py
check kinds with_self_test tools/check_kinds.py
check package with_self_test tools/check_package.py
check sizes tools/check_sizes.py "${sources[@]}"
check functions small_functions
check tidy tools/check_tidy.sh build
check headers headers_alone

if ((${#failed[@]} > 0)); then
    echo "lint: failed: ${failed[*]}" >&2
    exit 1
fi
echo "lint: everything holds"
