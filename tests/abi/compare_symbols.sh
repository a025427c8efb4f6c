#!/usr/bin/env bash
# Fails unless LIBRARY exports what the list SYMBOLS holds and nothing else. What the list INLINE
# holds may be there or not: compare_symbols.sh LIBRARY SYMBOLS INLINE
set -euo pipefail
export LC_ALL=C
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

exported=$("$here/exported_symbols.sh" "$1")
lost=$(comm -13 <(echo "$exported") "$2")
new=$(comm -23 <(echo "$exported") <(sort "$2" "$3"))
[ -z "$lost$new" ] && exit

report() { [ -z "$2" ] || while IFS= read -r symbol; do echo "$1: $symbol"; done <<<"$2"; }
{
    report "no longer exported" "$lost"
    report "newly exported" "$new"
    echo "This is $(basename "$1") against $(basename "$2"). To accept it, run scripts/update-abi."
} >&2
exit 1
