#!/usr/bin/env bash
# Runs a command that trusts the certificate in a file as it trusts those of the system, in a view of the file system of
# its own. Ends with the command's status, or with 77 where the system lets nobody have such a view.
set -euo pipefail

(($# > 1)) || {
    echo "usage: tools/trusting.sh CERTIFICATE COMMAND [ARGUMENT...]" >&2
    exit 2
}

readonly store=/etc/ssl/certs/ca-certificates.crt
namespaces=(--mount)
((EUID == 0)) || namespaces+=(--user --map-current-user --keep-caps)

# shellcheck disable=SC2016 # the inner shell is to expand it
readonly bound='mount --bind "$1" "$2"'
if ! unshare "${namespaces[@]}" sh -c "$bound" sh "$1" "$store" 2>/dev/null; then
    echo "trusting: this system allows no view of one's own" >&2
    exit 77
fi
exec unshare "${namespaces[@]}" sh -c "$bound"' && shift 2 && exec "$@"' sh "$1" "$store" "${@:2}"
