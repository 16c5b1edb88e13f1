# SPDX-License-Identifier: Apache-2.0
# complete.zsh FOLDER LINE: presses Tab after LINE in a zsh of its own on a pseudo terminal, with
# the completion functions of FOLDER, and prints what that zsh offers, one a line.
zmodload zsh/zpty || exit 70
offers=$(mktemp) || exit 70
setup=$(mktemp) || exit 70

# In the inner shell compadd also prints what it was given; -A only lists and adds nothing.
cat >$setup <<'END'
PS1=
unsetopt zle_bracketed_paste 2>/dev/null
unset zle_bracketed_paste
fpath=($COMPLETION_FOLDER $fpath)
autoload -Uz compinit
compinit -u -D
compadd() {
    if [[ ${@[1,(i)(-|--)]} == *-(O|A|D)\ * ]]; then
        builtin compadd "$@"
        return
    fi
    local -a hits
    builtin compadd -A hits "$@"
    print -rl -- $hits >>$OFFERS
    builtin compadd "$@"
}
finish() { zle complete-word; print -r -- "<"done">"; }
zle -N finish
bindkey '^X' finish
print -r -- "<"ready">"
END

export COMPLETION_FOLDER=$1 OFFERS=$offers
# No trap for the end: the inner shell would inherit it and remove the files before they are read.
{
    zpty inner zsh -f -i || exit 70
    zpty -w inner "source $setup"
    zpty -r inner seen '*<ready>*' || exit 70
    zpty -n -w inner "$2"$'\x18'
    zpty -r inner seen '*<done>*' || exit 70
    zpty -d inner
    sort -u $offers | sed '/^$/d'
} always {
    rm -f $offers $setup
}
