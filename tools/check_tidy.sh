#!/usr/bin/env bash
# check_tidy.sh BUILD_FOLDER [--all | FILE...]: clang-tidy on the given sources, else on those of src/ and helpers/ that
# differ from the commit before the last one, new ones included; --all takes minutes. .clang-tidy says what is asked for.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
build=$1
shift

# Whether a fault is found at all, with the settings of this tree.
self_test() {
    local folder
    folder=$(mktemp -d)
    printf '#include <string>\nint f(std::string s) { std::string t = std::move(s); return s.size() + t.size(); }\n' \
        >"$folder/planted.cpp"
    if clang-tidy-19 --quiet --config-file=.clang-tidy "$folder/planted.cpp" -- -std=c++23 >"$folder/said" 2>&1 ||
        ! grep -q bugprone-use-after-move "$folder/said"; then
        echo "check_tidy: a planted use after a move was not found" >&2
        cat "$folder/said" >&2
        rm -rf "$folder"
        return 1
    fi
    rm -rf "$folder"
}

changed() {
    local base
    base=$(git rev-parse --verify --quiet HEAD~1 || git rev-parse HEAD)
    git diff --name-only -z --diff-filter=d "$base" -- '*.cpp'
    git ls-files -z --others --exclude-standard -- '*.cpp'
}

self_test
case ${1:-} in
    --all) mapfile -d '' -t files < <(git ls-files -z -- 'src/*.cpp' 'helpers/*.cpp') ;;
    "") mapfile -d '' -t files < <(changed | grep -zE '^(src|helpers)/' || true) ;;
    *) files=("$@") ;;
esac
((${#files[@]} > 0)) || exit 0
# The precompiled headers that the compiler's commands name must be there.
ninja -C "$build" quillmar_pch >/dev/null
printf '%s\0' "${files[@]}" | xargs -0 -n 1 -P 2 clang-tidy-19 --quiet -p "$build" 2> >(grep -v 'warnings generated' >&2)
