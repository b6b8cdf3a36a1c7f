#!/usr/bin/env bash
# Runs a command in a network of its own: this machine has a public address there beside its loopback ones, and there
# is nobody else. Ends with the command's status, or with 77 where the system lets nobody make such a network.
set -euo pipefail

(($# > 0)) || {
    echo "usage: tools/public_network.sh COMMAND [ARGUMENT...]" >&2
    exit 2
}

readonly address=93.184.216.34
namespaces=(--net)
((EUID == 0)) || namespaces+=(--user --map-root-user)

if ! unshare "${namespaces[@]}" true 2>/dev/null; then
    echo "public_network: this system allows no network of one's own" >&2
    exit 77
fi
# shellcheck disable=SC2016 # the inner shell is to expand it
exec env QUILLMAR_SERVICES_ADDRESS="$address" unshare "${namespaces[@]}" -- sh -euc '
    ip link set lo up
    ip address add "$QUILLMAR_SERVICES_ADDRESS/32" dev lo
    exec "$@"' sh "$@"
