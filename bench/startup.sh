#!/usr/bin/env bash
# From exec to both displays painted, and what the idle program costs, on a headless desktop beside feh.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
exec "$root/tools/desktop.sh" python3 "$root/bench/startup.py" "$root/build/quillmar"
