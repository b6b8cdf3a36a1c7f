#!/usr/bin/env bash
# What a thousand changes of picture leave behind in the program and in the X server.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
exec "$root/tools/desktop.sh" python3 "$root/bench/changes.py" "$root/build/quillmar"
