#!/usr/bin/env bash
# The running program beside others, with targets; see speed.py.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
exec python3 -B "$root/bench/speed.py" "$root/build" "$@"
