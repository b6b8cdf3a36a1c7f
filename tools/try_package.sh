#!/usr/bin/env bash
# Tries the package, by default that of build/package, in a fresh Debian, as root: installs it, starts it by its desktop
# entry and through the bus on a headless desktop of an ordinary user, upgrades it with the settings kept, and purges it.
# Leaves nothing behind but build/package/fresh, which each trial takes a copy of.
# usage: try_package.sh [FOLDER_OF_THE_PACKAGE]          (QUILLMAR_MIRROR names another mirror)
set -euo pipefail
shopt -s inherit_errexit
script=$(realpath "${BASH_SOURCE[0]}")
readonly script entry=/usr/share/applications/com.quillmar.Quillmar.desktop colour=1F6F8B

fail() {
    echo "try_package: $*" >&2
    exit 1
}

# until_true WHAT COMMAND...: waits for a state, not for a time.
until_true() {
    local what=$1 turn
    shift
    for ((turn = 0; turn < 600; turn++)); do
        ! "$@" >/dev/null 2>&1 || return 0
        sleep 0.1
    done
    fail "it did not come about: $what"
}

is_shown() { [[ $(import -window root -crop 1x1+"$1"+40 -depth 8 txt:-) == *"#$colour"* ]]; }
is_gone() { ! quillmar status; }

# The command behind an action of the desktop entry, as a desktop runs it.
run_action() {
    sh -c "$(sed -n "/^\[Desktop Action $1\]/,/^\[/s/^Exec=//p" "$entry")"
}

# shown_on_both HOW: both displays show the colour.
shown_on_both() {
    until_true "$1: an answer" quillmar status
    until_true "$1: the first display's colour" is_shown 100
    until_true "$1: the second display's colour" is_shown 2000
    echo "== $1: shown on both displays"
}

start_by_bus() {
    xsetroot -solid black
    gdbus call --session --dest com.quillmar.Quillmar --object-path /com/quillmar/Quillmar \
        --method org.freedesktop.Application.Activate '{}' >/dev/null
}

quit() {
    run_action quit
    until_true "the end after quit" is_gone
}

# On the desktop, as its user. A session tells the bus what it starts programs with.
first_session() {
    dbus-update-activation-environment DISPLAY XDG_RUNTIME_DIR
    gio launch "$entry"
    until_true "an answer after the start by the desktop entry" quillmar status
    quillmar wallpaper set all colour "#$colour" >/dev/null
    shown_on_both "started by the desktop entry"
    run_action pause
    quillmar general | grep -q '^pauseRotations.*true' || fail "the action \"pause\" did not pause"
    run_action resume
    quillmar general | grep -q '^pauseRotations.*false' || fail "the action \"resume\" did not resume"
    run_action next-picture
    quit
    start_by_bus
    shown_on_both "started by the bus"
    quit
}
session_after_upgrade() {
    dbus-update-activation-environment DISPLAY XDG_RUNTIME_DIR
    start_by_bus
    shown_on_both "upgraded and started by the bus"
    quit
}

on_desktop() {
    runuser -u person -- env -C /home/person HOME=/home/person PATH=/usr/bin:/bin \
        /trial/desktop.sh /trial/try_package.sh "$1"
}

files() {
    find / -xdev \( -path /proc -o -path /sys -o -path /dev -o -path /tmp -o -path /home -o -path /trial -o \
        -path /var/cache -o -path /var/log -o -path /var/lib/dpkg -o -path /var/lib/apt -o -path /run \) -prune -o -print |
        sort >"$1"
}

# In the fresh Debian, as root.
inside() {
    export DEBIAN_FRONTEND=noninteractive
    local get=(apt-get -q -y --no-install-recommends) desktop
    mount -t proc proc /proc
    # A trial need not outlive a power failure, and is done in a part of the time.
    echo force-unsafe-io >/etc/dpkg/dpkg.cfg.d/trial
    "${get[@]}" update
    "${get[@]}" install /trial/quillmar.deb
    [[ $(quillmar --version) == "Quillmar "* ]] || fail "the installed program does not run"
    echo "== installed: $(dpkg-query -W quillmar)"
    # shellcheck source=tools/dependencies.sh
    source /trial/dependencies.sh
    read -r -d '' -a desktop <<<"${packages[desktop]}" || true
    "${get[@]}" install "${desktop[@]}" libglib2.0-bin
    id person >/dev/null 2>&1 || useradd --create-home person
    "${get[@]}" purge quillmar
    files /trial/before
    dpkg -i /trial/quillmar.deb
    on_desktop first_session
    dpkg -i /trial/newer.deb
    on_desktop session_after_upgrade
    "${get[@]}" purge quillmar
    files /trial/after
    diff /trial/before /trial/after || fail "these files were left behind"
    [[ -s /home/person/.local/share/Quillmar/settings.json ]] || fail "the user's settings are gone"
    echo "== purged: nothing left, and the user's settings are there"
}

debian=""
clean_up() {
    [[ -z $debian ]] || rm -rf "$debian" "$debian-newer"
}

main() {
    local out debs fresh folder
    ((EUID == 0)) || fail "a fresh Debian is made as root"
    out=$(realpath "${script%/*}/..")/build/package
    mkdir -p "$out"
    folder=${1:-$out}
    debs=("$folder"/quillmar_*.deb) fresh=$out/fresh
    [[ -f ${debs[0]} ]] || fail "there is no package in $folder"
    if [[ ! -d $fresh ]]; then
        rm -rf "$fresh.unfinished"
        debootstrap --variant=minbase bookworm "$fresh.unfinished" "${QUILLMAR_MIRROR:-http://deb.debian.org/debian}"
        mv "$fresh.unfinished" "$fresh"
    fi
    trap clean_up EXIT
    trap 'exit 143' HUP TERM
    debian=$(mktemp -d "$out/trial.XXXXXX")
    cp -a --reflink=auto "$fresh/." "$debian"
    mkdir "$debian/trial"
    # The next version, as far as dpkg can tell.
    dpkg-deb -R "${debs[0]}" "$debian-newer"
    sed -i 's/^Version: .*/&+next/' "$debian-newer/DEBIAN/control"
    dpkg-deb --root-owner-group -b "$debian-newer" "$debian/trial/newer.deb"
    cp "${debs[0]}" "$debian/trial/quillmar.deb"
    cp "$script" "${script%/*}/desktop.sh" "${script%/*}/dependencies.sh" "$debian/trial"
    chmod -R a+rX "$debian/trial"
    # Whatever still runs there ends with the namespace.
    # shellcheck disable=SC2016  # the inner shell's own argument
    unshare --mount --pid --fork --kill-child bash -euc '
        mount --rbind /dev "$1/dev"
        cp /etc/resolv.conf "$1/etc/resolv.conf"
        exec chroot "$1" /trial/try_package.sh inside
    ' - "$debian"
}

case ${1:-} in
    inside | first_session | session_after_upgrade) "$1" ;;
    *) main "$@" ;;
esac
