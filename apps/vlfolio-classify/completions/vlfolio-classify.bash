# shellcheck shell=bash
# Completion for bash, down to 3.2.

_vlfolio_classify_locales() {
    locale -a | sed -e /@/d -e 's/\..*//' | sort -u
}

_vlfolio_classify() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local options word words=
    # In --type=Year the equals sign is a word by itself.
    if [ "$current" = = ]; then
        current=
    elif [ "$previous" = = ]; then
        previous=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    options='--open --no-open --list --json --summary --why --type --explain --locale -h --help -v --version'
    case $previous in
    --type) words='Unknown Root Year Month Day Event ProjectFolder' ;;
    --locale) words=$(_vlfolio_classify_locales) ;;
    esac
    if [ -n "$words" ]; then
        # A value is no directory. Older shells cannot be told.
        compopt +o dirnames 2>/dev/null
    elif [[ $current == -* ]]; then
        words=$options
    fi
    COMPREPLY=()
    while IFS= read -r word; do
        COMPREPLY+=("$word")
    done < <(compgen -W "$words" -- "$current")
}

complete -o dirnames -F _vlfolio_classify vlfolio-classify
