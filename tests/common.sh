# Sourced by those tests that are scripts.
# shellcheck shell=bash
set -euo pipefail

fail() {
    echo "$*" >&2
    exit 1
}

# expect WHAT EXPECTED ACTUAL: compares two texts.
expect() {
    [ "$2" = "$3" ] || fail "$1 is other (>) than expected (<):"$'\n'"$(diff <(echo "$2") <(echo "$3"))"
}

# needs TOOL...: leaves out the rest of a test where a tool is missing.
needs() {
    local tool
    for tool in "$@"; do
        command -v "$tool" >/dev/null || { echo "skipped: $tool is not installed"; exit 77; }
    done
}

# quietly COMMAND...: shows what a command says only if it fails.
quietly() {
    local output
    output=$("$@" 2>&1) || fail "$output"$'\n'"failed: $*"
}

# make_work_directory: makes the directory that $work names until the end. Its programs, which come
# first, open no report, whatever is asked of them.
make_work_directory() {
    work=$(cd "$(mktemp -d)" && pwd -P)
    trap 'rm -rf "$work"' EXIT
    mkdir "$work/bin"
    printf '#!/bin/sh\n' >"$work/bin/xdg-open"
    chmod +x "$work/bin/xdg-open"
    ln -s xdg-open "$work/bin/open"
    PATH=$work/bin:$PATH
}
