#!/usr/bin/env bash
# Runs every command of the blocks "console" in README.md, and compares what it prints with what
# stands there: run_transcripts.sh SOURCES PROGRAM. A line "..." stands for one line or more.
set -euo pipefail
sources=$1
program=$2

# As on the machine of the README: a checkout, in which ./run was called.
home=$(cd "$(mktemp -d)" && pwd -P)
trap 'rm -rf "$home"' EXIT
mkdir "$home/bin" "$home/checkout"
cd "$home/checkout"
"$sources/scripts/make-sample" build/sample
ln -s "$program" "$home/bin/vlfolio-classify"
# No report is opened, whatever the program asks for.
for opener in xdg-open open; do
    printf '#!/bin/sh\n' >"$home/bin/$opener"
    chmod +x "$home/bin/$opener"
done
PATH=$home/bin:$PATH
unset DISPLAY WAYLAND_DISPLAY

commands=0
failed=0

# True if the lines of the array "found" from $2 on are those of "expected" from $1 on.
matches() {
    local want=$1 have=$2
    while [ "$want" -lt ${#expected[@]} ]; do
        if [ "${expected[want]}" = ... ]; then
            while [ "$have" -lt ${#found[@]} ]; do
                have=$((have + 1))
                matches $((want + 1)) "$have" && return
            done
            return 1
        fi
        [ "$have" -lt ${#found[@]} ] && [ "${expected[want]}" = "${found[have]}" ] || return 1
        want=$((want + 1))
        have=$((have + 1))
    done
    [ "$have" -eq ${#found[@]} ]
}

run() {
    local line output
    commands=$((commands + 1))
    found=()
    output=$(bash -c "$command" 2>&1) || true
    if [ -n "$output" ]; then
        while IFS= read -r line; do
            # What the shell says where the locale is not installed, which the program does without.
            [[ $line == *': warning: setlocale:'* ]] && continue
            found+=("${line//$home\/checkout//home/me/vlfolio}")
        done <<<"$output"
    fi
    if ! matches 0 0; then
        printf '$ %s\nshould print:\n' "$command"
        printf '%s\n' ${expected[@]+"${expected[@]}"}
        printf 'but it printed:\n'
        printf '%s\n' ${found[@]+"${found[@]}"}
        failed=1
    fi
}

inside=false
command=
expected=()
while IFS= read -r line <&3; do
    if [ "$line" = '```console' ]; then
        inside=true
    elif $inside && [[ $line == '$ '* || $line == '```' ]]; then
        [ -z "$command" ] || run
        command=${line#'$ '}
        expected=()
        if [ "$line" = '```' ]; then
            inside=false
            command=
        fi
    elif $inside; then
        expected+=("$line")
    fi
done 3<"$sources/README.md"

echo "$commands commands"
[ $commands -ge 10 ] || failed=1
exit $failed
