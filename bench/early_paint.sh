#!/usr/bin/env bash
# What was shown last, from exec to the pixels of two monitors, beside feh and (where it is) xwallpaper on JPEG files of the
# monitors' sizes.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
for monitors in "1920x1080 1280x1024" "3840x2160 2560x1440"; do
    pictures=()
    for size in $monitors; do
        pictures+=("$folder/$size.jpg")
        convert -size "$size" plasma:seagreen-orange -quality 90 "$folder/$size.jpg"
    done
    echo "$monitors"
    QUILLMAR_DESKTOP_MONITORS=$monitors QUILLMAR_DESKTOP_WM=none \
        "$root/tools/desktop.sh" "$root/build/bench/early_paint" "${pictures[@]}"
done
