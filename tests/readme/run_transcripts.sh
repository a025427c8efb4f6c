#!/usr/bin/env bash
# Runs every command of the blocks "console" in the README and the manual, and compares what it prints
# with what stands there: run_transcripts.sh SOURCES PROGRAM. A line "..." stands for one or more.
. "$(dirname "${BASH_SOURCE[0]}")/../common.sh"
sources=$1 program=$2

# As on the machine of the manual: a checkout, in which ./run was called.
make_work_directory
mkdir "$work/checkout"
cd "$work/checkout"
"$sources/scripts/make-sample" build/sample
ln -s "$program" "$work/bin/vlfolio-classify"
unset DISPLAY WAYLAND_DISPLAY

commands=0 failed=0 command=
check() {
    local output pattern
    [ -n "$command" ] || return 0
    commands=$((commands + 1))
    # Bash complains of a locale that is not installed, which the program does without.
    output=$(bash -c "$command" 2>&1 | sed "/: warning: setlocale:/d; s|$work/checkout|/home/me/vlfolio|g")
    pattern=$(sed 's/[][*?\\()|@!+]/\\&/g; s/^\.\.\.$/?*/' <<<"$expected")
    # shellcheck disable=SC2053 # is a pattern
    if [[ $output != $pattern ]]; then
        printf '$ %s\nshould print:\n%sbut it printed:\n%s\n' "$command" "$expected" "$output"
        failed=1
    fi
}

for text in "$sources"/README.md "$sources"/docs/*.md; do
    inside=false
    while IFS= read -r line <&3; do
        case $inside,$line in
        false,'```console') inside=true ;;
        true,'$ '* | true,'```')
            check
            command=${line#'$ '} expected=
            [ "$line" != '```' ] || command='' inside=false
            ;;
        true,*) expected+=$line$'\n' ;;
        esac
    done 3<"$text"
done

echo "$commands commands"
[ $commands -ge 10 ] || failed=1
exit $failed
