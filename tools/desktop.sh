#!/usr/bin/env bash
# Runs a command on a private desktop without a screen: an X server with as many monitors as are asked for, a
# window manager and a session bus. Ends with the command's exit status and leaves nothing behind.
set -euo pipefail
shopt -s inherit_errexit

usage() {
    cat <<'USAGE'
usage: ./dev desktop COMMAND [ARGUMENT...]

  QUILLMAR_DESKTOP_MONITORS  sizes, from left to right; the first monitor is the primary one
                             (default "1920x1080 1280x1024"; they are called DUMMY0, DUMMY1, ...)
  QUILLMAR_DESKTOP_WM        the window manager: openbox (default) or none
USAGE
}

fail() {
    echo "desktop: $*" >&2
    exit 125
}

readonly monitors=${QUILLMAR_DESKTOP_MONITORS:-1920x1080 1280x1024}
readonly window_manager=${QUILLMAR_DESKTOP_WM:-openbox}

# Modes that a running desktop can be switched to, whatever it started with.
readonly extra_modes="1920x1080 1280x1024 1280x720"
# The driver has sixteen outputs; these can be plugged in later with xrandr alone.
readonly least_outputs=4

modes() {
    tr ' ' '\n' <<<"$monitors $extra_modes" | awk 'NF && !seen[$0]++'
}

# The driver takes pixel clocks up to 300 MHz, so large modes get a lower refresh rate. The blanking is wide
# because the server refuses modes with the narrow one.
mode_line() {
    awk -v size="$1" 'BEGIN {
        split(size, part, "x"); w = part[1]; h = part[2]; wide = w + 320; high = h + 40
        rate = 290e6 / (wide * high); if (rate > 60) rate = 60
        printf "    Modeline \"%s\" %.3f %d %d %d %d %d %d %d %d\n", size, wide * high * rate / 1e6,
            w, w + 64, w + 192, wide, h, h + 3, h + 9, high
    }'
}

write_config() {
    cat <<'CONFIG'
Section "ServerFlags"
    Option "AutoAddDevices" "false"
    Option "AutoEnableDevices" "false"
    Option "AutoAddGPU" "false"
    Option "DontVTSwitch" "true"
    Option "AllowMouseOpenFail" "true"
    Option "PciForceNone" "true"
    Option "BlankTime" "0"
EndSection
Section "Device"
    Identifier "device"
    Driver "dummy"
    VideoRam 256000
EndSection
Section "Monitor"
    Identifier "monitor"
    HorizSync 5-1000
    VertRefresh 5-200
    Option "DefaultModes" "false"
CONFIG
    local mode names=""
    while read -r mode; do
        mode_line "$mode"
        names+=" \"$mode\""
    done < <(modes)
    cat <<CONFIG
EndSection
Section "Screen"
    Identifier "screen"
    Device "device"
    Monitor "monitor"
    DefaultDepth 24
    SubSection "Display"
        Depth 24
        Virtual 8192 4096
        Modes$names
    EndSubSection
EndSection
CONFIG
}

# What runs beside the command: in a session of its own, so that Ctrl-C reaches the command and not the server
# under it, and gone with this script even when that is killed.
readonly companion=(setsid setpriv --pdeathsig TERM)

# Waits for a process of ours to end, and ends it for good when it does not heed the signal.
stop() {
    local pid=$1 turn
    kill -TERM "$pid" 2>/dev/null || true
    for ((turn = 0; turn < 150; turn++)); do
        kill -0 "$pid" 2>/dev/null || break
        sleep 0.02
    done
    kill -KILL "$pid" 2>/dev/null || true
    wait "$pid" 2>/dev/null || true
}

home=""
server=""
manager=""
bus=""
command_pid=""

clean_up() {
    local pid
    trap '' INT TERM HUP
    for pid in $command_pid $manager $bus $server; do stop "$pid"; done
    [[ -z $home ]] || rm -rf "$home"
}

start_server() {
    # The server itself, not the wrapper that asks for a console of the machine.
    local binary=/usr/lib/xorg/Xorg
    [[ -x $binary ]] || binary=$(command -v Xorg) || fail "there is no Xorg"
    write_config >"$home/xorg.conf"
    mkfifo "$home/display"
    "${companion[@]}" "$binary" -displayfd 3 -config "$home/xorg.conf" -logfile "$home/xorg.log" -noreset -nolisten tcp \
        -novtswitch -sharevts -nocursor 3>"$home/display" </dev/null >"$home/xorg.out" 2>&1 &
    server=$!
    local number=""
    if ! read -r -t 30 number <"$home/display" || [[ -z $number ]]; then
        cat "$home/xorg.out" >&2
        fail "the X server did not start"
    fi
    export DISPLAY=":$number"
}

place_monitors() {
    local outputs=() arguments=() size output=0 left=0 mode
    read -r -a outputs <<<"$monitors"
    for size in "${outputs[@]}"; do
        arguments+=(--output "DUMMY$output" --mode "$size" --pos "${left}x0")
        ((output > 0)) || arguments+=(--primary)
        left=$((left + ${size%x*}))
        output=$((output + 1))
    done
    # The first output knows every mode from the start, the others are told.
    local last=$((output > least_outputs ? output : least_outputs)) added=()
    while read -r mode; do
        for ((output = 1; output < last; output++)); do added+=(--addmode "DUMMY$output" "$mode"); done
    done < <(modes)
    xrandr "${added[@]}" || fail "the monitors' modes were refused"
    xrandr "${arguments[@]}" || fail "the monitors could not be placed"
    # Without this question GDK overlooks an output that was just enabled.
    xrandr -q >/dev/null
}

# The bus is started here and not by dbus-run-session, so that every process has an id that we know. The services that
# it starts keep their settings in folders of its own.
start_bus() {
    mkfifo "$home/bus"
    XDG_CONFIG_HOME=$home/config XDG_CACHE_HOME=$home/cache \
        "${companion[@]}" dbus-daemon --session --nofork --nopidfile --print-address=3 3>"$home/bus" </dev/null \
        >"$home/bus.out" 2>&1 &
    bus=$!
    local address=""
    if ! read -r -t 30 address <"$home/bus" || [[ -z $address ]]; then
        cat "$home/bus.out" >&2
        fail "the session bus did not start"
    fi
    export DBUS_SESSION_BUS_ADDRESS=$address
}

start_window_manager() {
    case $window_manager in
        none) return ;;
        openbox) ;;
        *) fail "QUILLMAR_DESKTOP_WM is openbox or none, not $window_manager" ;;
    esac
    # With folders of its own: a person's window manager settings must not decide a test.
    XDG_CONFIG_HOME=$home/config XDG_CACHE_HOME=$home/cache \
        "${companion[@]}" openbox --config-file /etc/xdg/openbox/rc.xml </dev/null >"$home/openbox.out" 2>&1 &
    manager=$!
    local turn
    for ((turn = 0; turn < 500; turn++)); do
        [[ $(xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null) != *"window id"* ]] || return 0
        kill -0 "$manager" 2>/dev/null || break
        sleep 0.02
    done
    cat "$home/openbox.out" >&2
    fail "the window manager did not start"
}

# The command may be ended from outside; it is told, and its own status is what counts.
run_command() {
    local status=0
    # The shell lets its background processes ignore Ctrl-C; the command is to have it as everywhere.
    setpriv --pdeathsig TERM env --default-signal=INT,QUIT "$@" <&0 &
    command_pid=$!
    trap 'kill -TERM "$command_pid" 2>/dev/null || true' TERM HUP
    trap 'kill -INT "$command_pid" 2>/dev/null || true' INT
    while :; do
        status=0
        wait "$command_pid" || status=$?
        kill -0 "$command_pid" 2>/dev/null || break
    done
    command_pid=""
    return "$status"
}

main() {
    case ${1:-} in
        "" | -h | --help)
            usage
            [[ -n ${1:-} ]] || exit 2
            exit 0
            ;;
    esac
    [[ $monitors =~ ^[[:space:]]*[1-9][0-9]*x[1-9][0-9]*([[:space:]]+[1-9][0-9]*x[1-9][0-9]*)*[[:space:]]*$ ]] ||
        fail "QUILLMAR_DESKTOP_MONITORS is a list of sizes such as \"1920x1080 1280x1024\", not \"$monitors\""
    trap clean_up EXIT
    trap 'exit 129' HUP
    trap 'exit 130' INT
    trap 'exit 143' TERM
    home=$(mktemp -d "${TMPDIR:-/tmp}/quillmar-desktop.XXXXXX")
    mkdir -m 700 "$home/runtime"
    export XDG_RUNTIME_DIR="$home/runtime" XDG_SESSION_TYPE=x11 NO_AT_BRIDGE=1 GIO_USE_VFS=local \
        GSETTINGS_BACKEND=memory
    unset WAYLAND_DISPLAY GDK_BACKEND XAUTHORITY XDG_CURRENT_DESKTOP DESKTOP_SESSION DESKTOP_STARTUP_ID
    start_bus
    start_server
    place_monitors
    start_window_manager
    run_command "$@"
}

main "$@"
