# shellcheck shell=bash
# Completion of quillmar(1) for bash; needs no other completion script. The program knows its commands and options
# and is asked for what fits; the shell adds quotes, files and the names of the displays.

# _quillmar_offer CURRENT WORD...: the words that go on from CURRENT, quoted as CURRENT is.
_quillmar_offer() {
    local current=$1 quote='' plain word
    shift
    case $current in
        [\"\']*) quote=${current:0:1} plain=${current:1} ;;
        *) plain=${current//\\/} ;;
    esac
    for word; do
        [[ $word == "$plain"* ]] || continue
        # A whole list of words with commas needs no quotes, and none would fit behind half of it.
        if [[ -z $quote ]]; then
            # A list with commas needs no quotes.
            [[ $word != *[!a-zA-Z0-9,:=_-]* ]] || printf -v word %q "$word"
            # The line editor replaces only what is behind the last colon or sign of equality.
            [[ $COMP_WORDBREAKS != *:* || $current != *[:=]* ]] || word=${word#"${current%"${current##*[:=]}"}"}
        fi
        COMPREPLY+=("$word")
    done
}

# _quillmar_displays CURRENT: a name that is the only one of its kind, or an ID.
_quillmar_displays() {
    local json names ids
    json=$("$program" displays --json 2>/dev/null) || json=
    mapfile -t names < <(sed -n 's/^ *"localizedName": "\(.*\)",\{0,1\}$/\1/p' <<<"$json" |
        sed 's/\\\(["\\]\)/\1/g' | sort | uniq -u)
    mapfile -t ids < <(sed -n 's/^ *"id": "\(.*\)",\{0,1\}$/\1/p' <<<"$json")
    [[ $1 == display* ]] || ids=()
    _quillmar_offer "$1" "${names[@]}" "${ids[@]}"
}

_quillmar() {
    # The program as it was called: it need not lie on the path.
    local program=${COMP_WORDS[0]/#\~/$HOME} words=() word current plain answer line i
    COMPREPLY=()
    # The shell takes a colon and a sign of equality for words of their own; an ID and "--name=value" hold one.
    for ((i = 1; i <= COMP_CWORD; ++i)); do
        word=${COMP_WORDS[i]}
        if ((i > 1)) && [[ $word == :* || $word == "=" || ${words[-1]} == *: || ${words[-1]} == --*= ]]; then
            words[-1]+=$word
        else
            words+=("$word")
        fi
    done
    current=${words[-1]-}
    plain=${current//[\\\"\']/}
    mapfile -t answer < <("$program" --complete "${words[@]:0:${#words[@]}-1}" "$plain" 2>/dev/null)
    for line in "${answer[@]}"; do
        case $line in
            :file) compopt -o default ;;
            :folder) compopt -o dirnames ;;
            :display) _quillmar_displays "$current" ;;
            :nospace) ((${#answer[@]} <= 2)) || compopt -o nospace ;;
            :*) ;;
            *) _quillmar_offer "$current" "$line" ;;
        esac
    done
}

complete -F _quillmar quillmar
