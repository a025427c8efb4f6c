#!/usr/bin/env bash
# Fails unless the man page, the completions and the manual name the options, and the completions the
# types, that the program itself names: compare_options.sh SOURCES PROGRAM
. "$(dirname "${BASH_SOURCE[0]}")/../common.sh"
sources=$1 program=$2
app=$sources/apps/vlfolio-classify
failed=0

# same WHAT EXPECTED FOUND: says so if they differ.
same() {
    if [ "$2" != "$3" ]; then
        printf '%s (>) against what the program says (<):\n' "$1"
        diff <(echo "$2") <(echo "$3") || failed=1
    fi
}

# The options that a text on standard input names, one per line.
options() {
    { grep -oE -- '(^|[^[:alnum:]_-])--?[a-z][a-z-]*' || true; } | sed 's/^[^-]*//' | sort -u
}

# offered WORD...: what bash offers for the last word.
offered() {
    COMP_WORDS=("$program" "$@")
    COMP_CWORD=$#
    _vlfolio_classify
    printf '%s\n' "${COMPREPLY[@]}" | sort
}

# shellcheck disable=SC1091 # is checked by itself
. "$app/completions/vlfolio-classify.bash"
all=$("$program" --help | options)
same "man page" "$all" "$(sed -n '/^\.TP/ { n; s/\\-/-/g; s/\\f.//g; p; }' "$app"/man/*.1 | options)"
same "manual" "$all" "$(cat "$sources"/{README,docs/*}.md | grep '^| `-' | sed 's/|[^|]*|$//' | options)"
same "bash" "$all" "$(offered -)"
same "zsh" "$all" "$(sed -n "/^ *'[(*-]/p" "$app/completions/_vlfolio-classify" | options)"
same "fish" "$all" "$(sed -nE 's/^complete -c vlfolio-classify( -s ([a-z]))?( -l ([a-z-]+))? .*/-\2 --\4/p' \
    "$app/completions/vlfolio-classify.fish" | options)"

types=$("$program" --summary . | sed -e /^Total/d -e 's/ .*//' | sort)
same "bash, types" "$types" "$(offered --type "")"
same "bash, types behind an equals sign" "$types" "$(offered --type =)"
same "bash, locales" "$("$program" --locales | grep "^de_")" "$(offered --locale de_)"
same "bash, a type in any case" Day "$(offered --type dA)"
same "bash, a type behind a comma" "day,Event" "$(offered --type day,e)"
for file in "$app"/completions/*; do
    same "${file##*/}, types" "$types" \
        "$(grep -oE 'Unknown Root [A-Za-z ]+' "$file" | tr ' ' '\n' | sort)"
done
exit $failed
