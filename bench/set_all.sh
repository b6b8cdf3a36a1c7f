#!/usr/bin/env bash
# One command that gives two monitors a photograph, beside feh.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
exec "$root/tools/desktop.sh" python3 "$root/bench/set_all.py" "$root/build/quillmar"
