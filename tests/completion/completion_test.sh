#!/usr/bin/env bash
# What the shells offer behind "quillmar", and whether its help, its manual page and they know the same commands.
# usage: completion_test.sh FOLDER_OF_SCRIPTS PROGRAM MANUAL_PAGE
set -euo pipefail
scripts=$(realpath "$1") real=$(realpath "$2") manual=$3
here=$(realpath "${BASH_SOURCE[0]%/*}")
# shellcheck source=packaging/completions/quillmar.bash
source "$scripts/quillmar.bash"

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
# shellcheck disable=SC2317
# Stands in for the shell's own, which works only while a key is pressed.
compopt() { asked=${*: -1}; }

# compare WHAT EXPECTED WORD...: the words, sorted, with blanks between, against what is expected.
compare() {
    local found
    found=$(printf '%s\n' "${@:3}" | LC_ALL=C sort | paste -sd ' ')
    [[ $found != "$2" ]] || return 0
    echo "$1: expected \"$2\", found \"$found\"" >&2
    failures=$((failures + 1))
}

# offers EXPECTED WORD...: what is offered for the last of the words, sorted, with blanks between; "<option>" where
# the shell is asked to complete by itself.
offers() {
    local expected=$1 asked=''
    shift
    COMP_WORDS=("$program" "$@")
    COMP_CWORD=$#
    _quillmar
    ((${#COMPREPLY[@]} > 0)) || [[ -z $asked ]] || COMPREPLY=("<$asked>")
    compare "quillmar $*" "$expected" "${COMPREPLY[@]}"
}

# As an interactive shell has it.
COMP_WORDBREAKS=$' \t\n"\'><=;|&(:'

offers '--help --version backup displays general help quit settings status update wallpaper watch' ''
offers 'backup' b
offers 'about backup general wallpaper' settings ''
offers '--help --version' --
offers '--json' displays ''
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

# What the other shells offer, by the line that is typed; of files the last part.
typed=(
    'backup re' 'reset restore'
    'quit ' ''
    'help wallpaper pre' 'previous'
    'wallpaper set ' 'Dell U2720Q The "small" one all main'
    'wallpaper next "Dell' 'Dell U2720Q'
    'wallpaper next Dell\ U' 'Dell U2720Q'
    'wallpaper set display:1' 'display:16fd2706-8baf-433b-82eb-8c7fada847da display:1b4e28ba-2fa1-11d2-883f-0016d3cca427'
    'wallpaper set "Dell U2720Q" image files/' 'folder picture.png'
    'wallpaper set main slideshow files/' 'folder'
    'wallpaper set main image a.png --layout=c' '--layout=center'
    'backup export file --sections general,h' 'general,hotCorners'
)
mkdir -p "$folder/files/folder" "$folder/zsh"
touch "$folder/files/picture.png"
lines=()
for ((i = 0; i < ${#typed[@]}; i += 2)); do lines+=("${typed[i]}"); done

# Called by their names.
# shellcheck disable=SC2016,SC2317  # the script is fish's
fish_offers() {
    fish --no-config -c 'source $argv[1]; for line in $argv[2..-1]; complete -C "quillmar $line"; echo END; end' \
        "$scripts/quillmar.fish" "$@"
}
# shellcheck disable=SC2317
zsh_offers() { zsh -f "$here/zsh_offers.zsh" "$scripts/quillmar.zsh" "$folder/zsh" "$@"; }

for shell in fish zsh; do
    command -v "$shell" >/dev/null || { echo "there is no $shell: not tried" && continue; }
    words=() i=0
    while IFS= read -r word; do
        [[ $word == END ]] || { words+=("$word") && continue; }
        compare "$shell: quillmar ${typed[i]}" "${typed[i + 1]}" "${words[@]}"
        words=() i=$((i + 2))
    done < <(cd "$folder" && PATH=$folder:$PATH "${shell}_offers" "${lines[@]}" | sed 's|/$||; s|.*/||')
    compare "lines that $shell answered" "${#lines[@]}" $((i / 2))
done

# Every command of the help stands in the manual page and is offered.
commands=0
while read -r -a words; do
    commands=$((commands + 1))
    grep -q "^\.It Cm ${words[*]}\( \|\$\)" "$manual" || compare "manual page" "${words[*]}"
    compare "quillmar ${words[*]}" "${words[-1]}" "$("$real" --complete "${words[@]}" | grep -x "${words[-1]}")"
done < <(LC_ALL=C "$real" help | sed -n '/^  [a-z]/{s/^  //; s/  .*//; s/ [^a-z].*//; p}')
kinds=$("$real" --complete wallpaper set all '' | grep -vc '^:')
compare "commands and kinds of the manual page" $((commands + kinds)) "$(grep -c '^\.It Cm' "$manual")"

exit $((failures > 0))
