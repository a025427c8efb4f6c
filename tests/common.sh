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

# make_work_directory: makes the directory that $work names until the end. Its programs, which come
# first, open no report, whatever is asked of them.
make_work_directory() {
    work=$(cd "$(mktemp -d)" && pwd -P)
    trap 'rm -rf "$work"' EXIT
    mkdir "$work/bin"
    ln -s "$(command -v true)" "$work/bin/xdg-open"
    ln -s xdg-open "$work/bin/open"
    PATH=$work/bin:$PATH
}
