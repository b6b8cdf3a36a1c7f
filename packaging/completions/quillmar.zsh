#compdef quillmar
# Completion of quillmar(1) for zsh. The program knows its commands and options and is asked for what fits; the shell
# adds quotes, files and the names of the displays.

# _quillmar_displays PROGRAM: a name that is the only one of its kind, or an ID.
_quillmar_displays() {
    local json names ids
    json=$("$1" displays --json 2>/dev/null)
    names=(${(f)"$(sed -n 's/^ *"localizedName": "\(.*\)",\{0,1\}$/\1/p' <<<$json |
        sed 's/\\\(["\\]\)/\1/g' | sort | uniq -u)"})
    compadd -a names
    # IDs beside the names would say nothing to anybody.
    [[ $PREFIX != display* ]] || ids=(${(f)"$(sed -n 's/^ *"id": "\(.*\)",\{0,1\}$/\1/p' <<<$json)"})
    compadd -a ids
}

_quillmar() {
    # The program as it was called: it need not lie on the path.
    local program=${(Q)words[1]/#\~/$HOME} line goes_on=() offered=()
    # Quotes and backslashes are the shell's, and half a quotation is part of the word.
    local before=("${(@Q)words[2,CURRENT-1]}") answer
    answer=("${(@f)$("$program" --complete "${before[@]}" "${(Q)PREFIX}" 2>/dev/null)}")
    for line in "${answer[@]}"; do
        case $line in
            :file) _files ;;
            :folder) _files -/ ;;
            :display) _quillmar_displays "$program" ;;
            :nospace) ((${#answer} <= 3)) || goes_on=(-S '') ;;
            :*) ;;
            *) offered+=("$line") ;;
        esac
    done
    compadd "${goes_on[@]}" -- "${(@)offered:#}"
}

_quillmar "$@"
