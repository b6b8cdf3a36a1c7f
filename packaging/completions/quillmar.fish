# Completion of quillmar(1) for fish. The program knows its commands and options and is asked for what fits; the shell
# adds files and the names of the displays.

# A name that is the only one of its kind, or an ID.
function __quillmar_displays
    set -l json ($argv[1] displays --json 2>/dev/null)
    string match -rg '^ *"localizedName": "(.*)",?$' -- $json | string replace -ra '\\\\(["\\\\])' '$1' | sort | uniq -u
    # Fish would show IDs beside the names, which nobody can tell apart.
    string match -q 'display*' -- $argv[2]
    and string match -rg '^ *"id": "(.*)",?$' -- $json
end

function __quillmar_complete
    # The program as it was called: it need not lie on the path.
    set -l words (commandline -opc)
    set -l program $words[1]
    string match -q '~*' -- $program
    and set program (string replace '~' ~ -- $program)
    set -l current (commandline -ct | string unescape)
    for line in ($program --complete $words[2..-1] "$current" 2>/dev/null)
        switch $line
            case :file
                __fish_complete_path $current
            case :folder
                __fish_complete_directories $current ''
            case :display
                __quillmar_displays $program "$current"
            case ':*'
            case '*'
                echo $line
        end
    end
end

complete -c quillmar -f -a '(__quillmar_complete)'
