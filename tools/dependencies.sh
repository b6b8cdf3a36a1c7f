# shellcheck shell=bash
# The Debian packages that the work on Quillmar needs; docs/dependencies.md says why each is there.
# Sourced by ./dev.

# By what they are needed for. "build" is what building and running need, "desktop" the desktop of its own that the
# program is shown on where there is no screen.
declare -A packages=(
    [build]="
        clang-19 lld-19 cmake ninja-build ccache pkg-config python3
        libfmt-dev nlohmann-json3-dev libglib2.0-dev libgtk-3-dev libhandy-1-dev libgtk-3-bin libsoup-3.0-dev libsodium-dev ca-certificates
        libx11-dev libx11-xcb-dev libxcb1-dev libxcb-randr0-dev libxcb-shm0-dev libxau-dev libsm-dev
        libsystemd-dev libpng-dev libisal-dev zlib1g-dev libjpeg62-turbo-dev liblcms2-dev libpango1.0-dev libvips-dev libseccomp-dev
        librsvg2-bin
    "
    [desktop]="
        xserver-xorg-core xserver-xorg-video-dummy openbox x11-xserver-utils x11-utils xdotool imagemagick dbus-daemon
        dbus-bin fonts-dejavu-core
    "
    [tests]="
        libgtest-dev libgmock-dev llvm-19 libclang-rt-19-dev libxres-dev libxrandr-dev binutils
        hsetroot notification-daemon iproute2 lxqt-panel trayer at-spi2-core gir1.2-atspi-2.0 python3-gi openssl
        xfdesktop4 xfconf gsettings-desktop-schemas cinnamon-desktop-data mate-desktop-common duktape-dev fish zsh
    "
    [lint]="git clang-format-19 clang-tidy-19 shellcheck"
    [package]="git dpkg-dev debhelper lintian desktop-file-utils appstream"
    [trial]="debootstrap"
    [bench]="feh xwallpaper libvips-tools curl"
)

# missing_packages PACKAGE...: prints those that are not installed, one a line.
missing_packages() {
    local package
    declare -A installed=()
    while read -r status package; do
        [[ $status != ii ]] || installed[${package%%:*}]=1
    # It reports unknown packages as a failure; those are the missing ones.
    done < <(dpkg-query -W -f '${db:Status-Abbrev} ${Package}\n' "$@" 2>/dev/null || true)
    for package in "$@"; do
        [[ -n ${installed[$package]:-} ]] || echo "$package"
    done
}

# ensure_dependencies GROUP...: installs what is missing of the groups (build, desktop, tests, lint, bench). Where
# there is no dpkg, says what is needed and goes on.
ensure_dependencies() {
    local group wanted=()
    for group in "$@"; do
        # shellcheck disable=SC2206  # a name is a word
        wanted+=(${packages[$group]})
    done
    if ! command -v dpkg-query >/dev/null; then
        echo "dev: not a Debian system: these packages, or their like, must be there: ${wanted[*]}" >&2
        return 0
    fi
    local missing=() as_root=()
    mapfile -t missing < <(missing_packages "${wanted[@]}")
    ((${#missing[@]} > 0)) || return 0
    if ((EUID != 0)); then
        if ! command -v sudo >/dev/null; then
            echo "dev: please install as root: apt-get install --no-install-recommends ${missing[*]}" >&2
            return 1
        fi
        as_root=(sudo)
    fi
    echo "dev: installing ${as_root[*]:+through ${as_root[*]} }${missing[*]}" >&2
    local get=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -o DPkg::Lock::Timeout=500)
    # Package lists that could not all be refreshed may still be good enough; the installation tells.
    "${get[@]}" update || echo "dev: the package lists could not be refreshed" >&2
    "${get[@]}" install -y --no-install-recommends "${missing[@]}" </dev/null
}
