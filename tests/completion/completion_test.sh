#!/usr/bin/env bash
# What bash offers behind "quillmar".
# usage: completion_test.sh COMPLETION_SCRIPT PROGRAM
set -euo pipefail
# shellcheck source=packaging/completions/quillmar.bash
source "$1"
real=$2

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
program=$folder/quillmar
cat >"$program" <<PROGRAM
#!/bin/sh
[ "\$*" = "displays --json" ] || exec "$real" "\$@"
cat <<'JSON'
[
  {
    "id": "display:1b4e28ba-2fa1-11d2-883f-0016d3cca427",
    "localizedName": "Dell U2720Q"
  },
  {
    "id": "display:6fa459ea-ee8a-3ca4-894e-db77e160355e",
    "localizedName": "The \\"small\\" one"
  },
  {
    "id": "display:886313e1-3b8a-5372-9b90-0c9aee199e5d",
    "localizedName": "Twin"
  },
  {
    "id": "display:16fd2706-8baf-433b-82eb-8c7fada847da",
    "localizedName": "Twin"
  }
]
JSON
PROGRAM
chmod +x "$program"

failures=0
# Stands in for the shell's own, which works only while a key is pressed.
compopt() { asked=${*: -1}; }

# offers EXPECTED WORD...: what is offered for the last of the words, sorted, with blanks between; "<option>" where
# the shell is asked to complete by itself.
offers() {
    local expected=$1 asked='' found
    shift
    COMP_WORDS=("$program" "$@")
    COMP_CWORD=$#
    _quillmar
    found=$(printf '%s\n' "${COMPREPLY[@]}" | LC_ALL=C sort | paste -sd ' ')
    [[ -n $found || -z $asked ]] || found="<$asked>"
    if [[ $found != "$expected" ]]; then
        echo "quillmar $*: expected \"$expected\", found \"$found\"" >&2
        failures=$((failures + 1))
    fi
}

# As an interactive shell has it.
COMP_WORDBREAKS=$' \t\n"\'><=;|&(:'

offers '--help --version backup displays general help quit settings status wallpaper watch' ''
offers 'backup' b
offers '--help --version' --
offers '--json' displays ''
offers 'about backup general' settings ''
offers '--json' status ''
offers '' displays --json ''
offers '' quit ''

offers 'export inspect reset restore' backup ''
offers 'reset restore' backup re
offers '<default>' backup export ''
offers '<default>' backup restore /tmp/
offers '' backup reset ''
offers '--sections' backup restore file ''
offers 'restore' help backup rest
offers '' backup inspect file ''
offers 'customMenu general hotCorners lockScreen screensaver wallpaper' backup export file --sections ''
offers 'general,hotCorners' backup export file --sections general,h
offers '' backup export file --sections general,gen

offers '--pauseRotations' general set --language portuguese --pause
offers 'automatic dark light' general set --appTheme ''
offers 'center' wallpaper set main image a.png --layout = c

offers '--json favourite info next open previous set trash' wallpaper ''
offers 'Dell\ U2720Q The\ \"small\"\ one all main' wallpaper set ''
offers 'Dell\ U2720Q' wallpaper next D
offers 'Dell\ U2720Q' wallpaper set 'Dell\ U'
offers 'Dell U2720Q' wallpaper set '"Dell U'
offers '16fd2706-8baf-433b-82eb-8c7fada847da 1b4e28ba-2fa1-11d2-883f-0016d3cca427' wallpaper set display : 1
offers '' wallpaper next all ''

kinds='apod bing colour disabled image mode museums nasa-epic slideshow spotlight unsplash wallhaven'
offers "$kinds" wallpaper set all ''
offers "$kinds" wallpaper set display : 1b4e28ba-2fa1-11d2-883f-0016d3cca427 ''
offers '' wallpaper set all colour ''
offers '<default>' wallpaper set main image ''
offers '--background --layout' wallpaper set main image a.png ''
offers 'center fill fit stretch tile' wallpaper set main image a.png --layout ''
offers '' wallpaper set main image a.png --background ''
offers '--background' wallpaper set main image a.png --layout fit --
offers '<dirnames>' wallpaper set main slideshow ''
offers '--background --interval --layout --subfolders' wallpaper set main slideshow dir --shuffle ''
offers '' wallpaper set main slideshow dir --interval ''
offers '' wallpaper set main mode '{}' ''

offers '--background --layout --showsCopyright' wallpaper set main bing --market de-DE ''
offers '--market' wallpaper set main bing --m
offers 'center fill fit stretch tile' wallpaper set main museums --layout ''
offers 'search' wallpaper set main unsplash --filter s
offers 'smithsonian smkDenmark' wallpaper set main museums --sources sm
offers '' wallpaper set main spotlight --locale ''
offers '<default>' wallpaper set main apod --apiKeyFile ''

exit $((failures > 0))
