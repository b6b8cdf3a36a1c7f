#!/usr/bin/env bash
# Builds the Debian package into build/package and looks at what came out. Run through ./dev package.
set -euo pipefail
shopt -s inherit_errexit
cd "$(dirname "${BASH_SOURCE[0]}")/.."

version=$(<VERSION)
readonly version out=$PWD/build/package
readonly tree=$out/quillmar-$version

# Only what belongs to the tree: a build folder or a person's notes must not change the package.
copy_tree() {
    rm -rf "$tree" "$out"/quillmar[_-]*
    mkdir -p "$tree"
    git ls-files -z --cached --others --exclude-standard --deduplicate |
        while IFS= read -r -d '' file; do [[ ! -e $file ]] || printf '%s\0' "$file"; done |
        xargs -0 cp -p --parents -t "$tree"
}

build() {
    # Told by the environment: debian/rules knows no cache.
    if command -v ccache >/dev/null; then
        export CMAKE_C_COMPILER_LAUNCHER=ccache CMAKE_CXX_COMPILER_LAUNCHER=ccache
    fi
    (cd "$tree" && dpkg-buildpackage -b -us -uc)
}

inspect() {
    local installed=$tree/debian/quillmar/usr/share failed=()
    desktop-file-validate "$installed/applications/com.quillmar.Quillmar.desktop" || failed+=(desktop-file-validate)
    appstreamcli validate --no-net "$installed/metainfo/com.quillmar.Quillmar.metainfo.xml" || failed+=(appstreamcli)
    lintian --allow-root --fail-on error,warning "$out"/*.changes || failed+=(lintian)
    ((${#failed[@]} == 0)) || {
        echo "package: not as it should be: ${failed[*]}" >&2
        return 1
    }
}

copy_tree
build
inspect
ls "$out"/*.deb
