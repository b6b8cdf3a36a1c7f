# shellcheck shell=bash
# Completion of quillmar(1) for bash; needs no other completion script.

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
        if [[ -z $quote ]]; then
            printf -v word %q "$word"
            # The line editor replaces only what is behind the last colon.
            [[ $COMP_WORDBREAKS != *:* || $current != *:* ]] || word=${word#"${current%"${current##*:}"}"}
        fi
        COMPREPLY+=("$word")
    done
}

# _quillmar_displays NAME...: what names one display: "main", a name that is the only one of its kind, an ID.
_quillmar_displays() {
    local json names ids
    # The program as it was called: it need not lie on the path.
    json=$("${COMP_WORDS[0]/#\~/$HOME}" displays --json 2>/dev/null) || json=
    mapfile -t names < <(sed -n 's/^ *"localizedName": "\(.*\)",\{0,1\}$/\1/p' <<<"$json" |
        sed 's/\\\(["\\]\)/\1/g' | sort | uniq -u)
    mapfile -t ids < <(sed -n 's/^ *"id": "\(.*\)",\{0,1\}$/\1/p' <<<"$json")
    [[ $1 == display* ]] || ids=()
    _quillmar_offer "$1" all main "${names[@]}" "${ids[@]}"
}

# _quillmar_sections CURRENT: the last of a list with commas.
_quillmar_sections() {
    local before='' section candidates=()
    [[ $1 != *,* ]] || before=${1%,*},
    for section in general wallpaper lockScreen screensaver hotCorners customMenu; do
        [[ ,$before == *",$section,"* ]] || candidates+=("$before$section")
    done
    mapfile -t COMPREPLY < <(compgen -W "${candidates[*]}" -- "$1")
    ((${#COMPREPLY[@]} == 0)) || compopt -o nospace
}

# _quillmar_options CURRENT OPTION...: the options that are not on the line yet.
_quillmar_options() {
    local current=$1 option
    shift
    for option; do
        [[ " ${words[*]::cword} " == *" $option "* ]] || _quillmar_offer "$current" "$option"
    done
}

_quillmar_backup() {
    case $cword,${words[2]-} in
        2,*) _quillmar_offer "$current" export inspect restore reset ;;
        3,export | 3,inspect | 3,restore) compopt -o default ;;
        4,export | 4,restore) _quillmar_offer "$current" --sections ;;
        5,export | 5,restore) [[ ${words[4]} != --sections ]] || _quillmar_sections "$current" ;;
    esac
}

_quillmar_general() {
    case $cword,${words[2]-},${words[cword - 1]} in
        2,*) _quillmar_offer "$current" set --json ;;
        *,set,--language) _quillmar_offer "$current" english portuguese ;;
        *,set,--appTheme) _quillmar_offer "$current" automatic light dark ;;
        *,set,*)
            _quillmar_options "$current" --language --appTheme --launchAtLogin --showChangelogOnUpdate \
                --showRemoteErrorNotifications --pauseRotations --showColorfulStatusIcon
            ;;
    esac
}

_quillmar_wallpaper() {
    local options=(--layout --background)
    local services=(apod nasa-epic bing spotlight unsplash wallhaven museums)
    case $cword,${words[2]-} in
        2,*) _quillmar_offer "$current" set next --json ;;
        3,set | 3,next) _quillmar_displays "$current" ;;
        4,set) _quillmar_offer "$current" colour image slideshow "${services[@]}" mode disabled ;;
        5,set)
            case ${words[4]} in
                image) compopt -o default ;;
                slideshow) compopt -o dirnames ;;
            esac
            ;;
        *,set)
            case ${words[4]},${words[cword - 1]} in
                *,--layout) _quillmar_offer "$current" center tile stretch fit fill ;;
                *,--*KeyFile) compopt -o default ;;
                *,--presentation) _quillmar_offer "$current" latestObservation rotateThroughDays ;;
                *,--imageProduct) _quillmar_offer "$current" natural enhanced ;;
                *,--filter) _quillmar_offer "$current" topic user search ;;
                *,--sorting)
                    _quillmar_offer "$current" date_added relevance random views favorites toplist
                    ;;
                *,--order) _quillmar_offer "$current" desc asc ;;
                *,--resolutionMode) _quillmar_offer "$current" any atleast exactly ;;
                *,--background | *,--interval | *,--market | *,--locale | *,--sources | *,--categories) ;;
                *,--topicSlug | *,--username | *,--searchQuery | *,--topRange | *,--color) ;;
                *,--resolution | *,--ratios | *,--secondsPerObservation | *,--recentDays) ;;
                image,*) _quillmar_options "$current" "${options[@]}" ;;
                slideshow,*)
                    _quillmar_options "$current" --interval --shuffle --subfolders "${options[@]}"
                    ;;
                apod,*)
                    _quillmar_options "$current" --apiKeyFile --useHDImage --switchPeriodically --interval \
                        "${options[@]}"
                    ;;
                nasa-epic,*)
                    _quillmar_options "$current" --presentation --secondsPerObservation --recentDays \
                        --imageProduct --usesFullResolutionPNG --showsCreditAndObservationTime "${options[@]}"
                    ;;
                bing,*) _quillmar_options "$current" --market "${options[@]}" ;;
                spotlight,*) _quillmar_options "$current" --locale --interval "${options[@]}" ;;
                unsplash,*)
                    _quillmar_options "$current" --accessKeyFile --filter --topicSlug --username --searchQuery \
                        --switchAutomatically --interval "${options[@]}"
                    ;;
                wallhaven,*)
                    _quillmar_options "$current" --apiKeyFile --searchQuery --sorting --order --topRange \
                        --includeAnime --includePeople --color --resolutionMode --resolution --ratios \
                        --switchAutomatically --interval "${options[@]}"
                    ;;
                museums,*)
                    _quillmar_options "$current" --sources --categories --useAllCategories \
                        --smithsonianAPIKeyFile --switchAutomatically --interval "${options[@]}"
                    ;;
            esac
            ;;
    esac
}

_quillmar() {
    local words=() word current cword i
    COMPREPLY=()
    # The shell takes a colon for a word of its own, and an ID holds one.
    for ((i = 0; i <= COMP_CWORD; ++i)); do
        word=${COMP_WORDS[i]}
        if ((i > 1)) && [[ $word == :* || ${words[-1]} == *: ]]; then
            words[-1]+=$word
        else
            words+=("$word")
        fi
    done
    cword=$((${#words[@]} - 1))
    current=${words[cword]}
    case $cword,${words[1]-} in
        1,*) _quillmar_offer "$current" displays wallpaper status general backup quit --version --help ;;
        2,displays | 2,status) _quillmar_offer "$current" --json ;;
        *,backup) _quillmar_backup ;;
        *,general) _quillmar_general ;;
        *,wallpaper) _quillmar_wallpaper ;;
    esac
}

complete -F _quillmar quillmar
