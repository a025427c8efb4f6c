# Sourced by ./test and the scripts of this folder, which then work in the project's directory.
# shellcheck shell=bash
set -euo pipefail
cd -P "$(dirname "${BASH_SOURCE[0]}")/.."

fail() {
    echo "${0##*/}: $*" >&2
    exit 1
}

# needs TOOL...: fails where a tool is missing.
needs() {
    local tool
    for tool in "$@"; do
        command -v "$tool" >/dev/null || fail "$tool is missing: run scripts/install-packages check"
    done
}

# write_log LOG: writes what it reads to the file LOG; on a terminal it shows the present line, too,
# in place of the one before.
write_log() {
    local line columns
    mkdir -p "$(dirname "$1")"
    if [ ! -t 2 ]; then
        cat >"$1"
        return
    fi
    columns=$(tput cols 2>/dev/null || echo 80)
    while IFS= read -r line; do
        printf '%s\n' "$line"
        printf '\r\e[K%.*s' $((columns - 1)) "$line" >&2
    done >"$1"
    printf '\r\e[K' >&2
}

# quietly LOG COMMAND...: shows what the command says, which the file LOG keeps, only if it fails.
quietly() {
    "${@:2}" 2>&1 | write_log "$1" || {
        cat "$1" >&2
        return 1
    }
}
