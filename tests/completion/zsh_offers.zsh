# What an interactive zsh offers at the end of each line: those words, and "END" behind each line's.
# usage: zsh -f zsh_offers.zsh COMPLETION_SCRIPT EMPTY_FOLDER LINE...
zmodload zsh/zpty
export ZDOTDIR=$2 QUILLMAR_COMPLETION=$1
cat >$ZDOTDIR/.zshrc <<'RC'
PROMPT=
autoload -Uz compinit && compinit -D -u
source $QUILLMAR_COMPLETION
compdef _quillmar quillmar
typeset -aU shown
compadd() {
    local hits=()
    # The shell's own functions also ask it what would fit, and offer nothing with that.
    [[ " $* " == *' -'[OAD]' '* ]] || builtin compadd -O hits "$@"
    shown+=($hits)
    builtin compadd "$@"
}
finish() {
    print -rl -- $shown END >>$ZDOTDIR/offered
    shown=()
    compstate[insert]= compstate[list]=
}
answer() { comppostfuncs=(finish); _main_complete }
zle -C answer complete-word answer
bindkey '^I' answer
print rea''dy
RC
: >$ZDOTDIR/offered
zpty shell zsh -i
zpty -r -m shell greeting '*ready*'
for line in "${@:3}"; do
    zpty -n -w shell $'\x15'"quillmar $line"$'\t'
    # A shell that does not answer is ended by the test's limit.
    until [[ $(tail -n 1 $ZDOTDIR/offered) == END ]]; do sleep 0.02; done
    cat $ZDOTDIR/offered
    : >$ZDOTDIR/offered
done
zpty -d shell
