#!/usr/bin/env bash
# Checks the man page and the completions, one thing a call:
# check_completion.sh drift|options|man|bash|zsh|fish SOURCES PROGRAM FILL_OPTIONS
set -euo pipefail
check=$1
sources=$2
program=$3
fill_options=$4

app=$sources/apps/vlfolio-classify
man_page=$app/man/vlfolio-classify.1
completions=$app/completions
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
mkdir -p 'odd names' 'old/99.99.99'
touch 'old file'

all_options='--explain
--help
--json
--list
--locale
--no-open
--open
--summary
--type
--version
--why
-h
-v'
all_types='Day
Event
Month
ProjectFolder
Root
Unknown
Year'
failed=0

# same WHAT EXPECTED FOUND: says so if they differ.
same() {
    if [ "$2" != "$3" ]; then
        printf '%s: expected\n%s\nbut found\n%s\n' "$1" "$2" "$3"
        failed=1
    fi
}

skip_without() {
    if ! command -v "$1" >/dev/null; then
        echo "skipped: $1 is not installed"
        exit 77
    fi
}

# The options that a text on standard input mentions, a line each.
options_in() {
    { grep -oE -- '(^|[^[:alnum:]_-])--?[a-z][a-z-]*' || true; } | sed 's/^[^-]*//' | LC_ALL=C sort -u
}

check_drift() {
    local file
    for file in "$man_page" "$completions"/*; do
        cp "$file" .
        "$fill_options" "${file##*/}"
        diff -u "$file" "${file##*/}" || {
            echo "${file##*/} is not what the table of options says: run scripts/fill-options"
            failed=1
        }
    done
}

# What stands outside the region that is written must not speak of options that there are not.
check_options() {
    same "options in --help" "$all_options" "$("$program" --help | options_in)"
    same "options in the man page" "$all_options" "$(sed 's/\\-/-/g; s/\\f.//g' "$man_page" | options_in)"
    same "options in the README's table" "$all_options" \
        "$(grep '^| `-' "$sources/README.md" | sed 's/|[^|]*|$//' | options_in)"
    same "types in --summary" "$all_types" "$("$program" --summary . | cut -d' ' -f1 | sort)"
}

check_man() {
    skip_without groff
    local messages text
    messages=$(groff -ww -man -Tutf8 -z "$man_page" 2>&1)
    same "what groff has to say" "" "$messages"
    text=$(groff -man -Tascii -P-cbou -rLL=200n "$man_page")
    same "the options as they are read" "$all_options" \
        "$(sed -n '/^OPTIONS/,/^EXIT/p' <<<"$text" | options_in)"
}

# offered WORD...: what bash offers for the last word.
offered() {
    COMP_WORDS=(vlfolio-classify "$@")
    COMP_CWORD=$#
    COMPREPLY=(rest of the last time)
    _vlfolio_classify
    [ ${#COMPREPLY[@]} -eq 0 ] || printf '%s\n' "${COMPREPLY[@]}" | LC_ALL=C sort
}

check_bash() {
    # shellcheck disable=SC1091 # is checked by itself
    . "$completions/vlfolio-classify.bash"
    # shellcheck disable=SC2317 # called by the completion
    locale() { printf '%s\n' C C.utf8 de_DE de_DE.utf8 de_DE@euro fr_FR.utf8; }

    same "how bash is told" "complete -o dirnames -F _vlfolio_classify vlfolio-classify" \
        "$(complete -p vlfolio-classify)"
    same "bash: all options" "$all_options" "$(offered -)"
    same "bash: options in l" "$(printf '%s\n' --list --locale)" "$(offered --list --l)"
    same "bash: all types" "$all_types" "$(offered --type "")"
    same "bash: types in M" Month "$(offered --list --type M)"
    same "bash: no such type" "" "$(offered --type o)"
    same "bash: types behind an equals sign" "$all_types" "$(offered --type =)"
    same "bash: types in P behind an equals sign" ProjectFolder "$(offered --type = P)"
    same "bash: locales" "$(printf '%s\n' C de_DE fr_FR)" "$(offered --locale "")"
    same "bash: locales in d" de_DE "$(offered --locale d)"
    same "bash: operands are left to bash" "" "$(offered --list o)"
}

# What zsh completes is read off a terminal.
check_zsh() {
    skip_without zsh
    zsh -n "$completions/_vlfolio-classify"
    cat >.zshrc <<'ZSH'
PS1=
fpath=($COMPLETIONS $fpath)
autoload -U compinit
compinit -u -D
# Ctrl-O does not run the line but prints it, in marks.
show() {
    print -r -- "<<$BUFFER>>"
    BUFFER=
}
zle -N show
bindkey '^O' show
print '<<ready>>'
ZSH
    cat >typist.zsh <<'ZSH'
zmodload zsh/zpty
print_marked() {
    local part output=
    until [[ $output == *'<<'*'>>'* ]]; do
        zpty -r shell part || exit 1
        output+=$part
    done
    output=${output##*<<}
    print -r -- "${output%%>>*}"
}
zpty shell 'zsh -d -i'
print_marked
for line in 'vlfolio-classify --su' 'vlfolio-classify --list --type Pr' \
    'vlfolio-classify --type=Pr' 'vlfolio-classify --list --locale de_D' \
    'vlfolio-classify --list odd' 'vlfolio-classify --no-open ol'; do
    zpty -n -w shell "$line"$'\t'$'\x0f'
    print_marked
done
zpty -d shell
ZSH
    mkdir bin
    printf '#!/bin/sh\necho de_DE.utf8\n' >bin/locale
    chmod +x bin/locale
    same "what zsh completes" "ready
vlfolio-classify --summary 
vlfolio-classify --list --type ProjectFolder 
vlfolio-classify --type=ProjectFolder 
vlfolio-classify --list --locale de_DE 
vlfolio-classify --list odd\\ names/
vlfolio-classify --no-open old/" \
        "$(PATH=$work/bin:$PATH ZDOTDIR=$work COMPLETIONS=$completions zsh -f typist.zsh)"
}

# fish_offers LINE: what fish offers for the last word, without the descriptions.
fish_offers() {
    HOME=$work fish --no-config -c "source '$completions/vlfolio-classify.fish'
        function locale; printf '%s\n' C.utf8 de_DE de_DE.utf8 de_DE@euro; end
        complete -C '$1'" | cut -f1 | LC_ALL=C sort
}

check_fish() {
    skip_without fish
    fish --no-execute "$completions/vlfolio-classify.fish"
    same "fish: all options" "$all_options" "$(fish_offers 'vlfolio-classify -' | grep -v '^-[^-].')"
    # Fish offers what holds the letters anywhere, too.
    same "fish: options in su" --summary "$(fish_offers 'vlfolio-classify --su')"
    same "fish: all types" "$all_types" "$(fish_offers 'vlfolio-classify --list --type ')"
    same "fish: locales" "$(printf '%s\n' C de_DE)" "$(fish_offers 'vlfolio-classify --locale ')"
    same "fish: directories" "$(printf '%s\n' 'odd names/' old/)" \
        "$(fish_offers 'vlfolio-classify --list o')"
}

case $check in
drift) check_drift ;;
options) check_options ;;
man) check_man ;;
bash) check_bash ;;
zsh) check_zsh ;;
fish) check_fish ;;
esac
exit $failed
