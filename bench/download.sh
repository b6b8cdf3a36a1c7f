#!/usr/bin/env bash
# A local download beside curl: speed, and the memory that it takes.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
exec python3 "$root/bench/download.py" "$root/build/bench/download_client"
