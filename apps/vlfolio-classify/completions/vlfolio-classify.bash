# shellcheck shell=bash
# Completion for bash, down to 3.2.

_vlfolio_classify() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local options word words='' before='' minded=''
    # In --type=Year the equals sign is a word by itself.
    if [ "$current" = = ]; then
        current=
    elif [ "$previous" = = ]; then
        previous=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    options='--open --no-open --output --page --list --json --summary --why --type --exclude'
    options+=' --explain --locale --locales -h --help -v --version'
    case $previous in
    --type)
        words='Unknown Root Year Month Day Event ProjectFolder'
        before=${current%"${current##*,}"}
        ;;
    --locale) words=$("${COMP_WORDS[0]}" --locales 2>/dev/null) ;;
    --output | --page)
        compopt -o default 2>/dev/null
        ;;
    esac
    if [ -n "$words" ]; then
        # A value is no directory. Older shells cannot be told.
        compopt +o dirnames 2>/dev/null
    elif [[ $current == -* ]]; then
        words=$options
    fi
    shopt -q nocasematch || minded=1
    shopt -s nocasematch
    COMPREPLY=()
    for word in $words; do
        [[ $before$word != "$current"* ]] || COMPREPLY+=("$before$word")
    done
    [ -z "$minded" ] || shopt -u nocasematch
}

complete -o dirnames -F _vlfolio_classify vlfolio-classify
