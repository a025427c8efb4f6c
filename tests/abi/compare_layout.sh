#!/usr/bin/env bash
# Fails unless clang lays out the classes of SOURCE as the file EXPECTED says: fields and bases by
# their offset, virtual operations by their order. compare_layout.sh SOURCE EXPECTED CLANG OPTION...
set -euo pipefail
export LC_ALL=C
source=$1 expected=$2 clang=$3
shift 3

if ! command -v "$clang" >/dev/null; then
    echo "skipped: only clang++ shows how it lays out a class, and it is not installed"
    exit 77
fi

# A class that another one holds is laid out once more; so every line bears the name of its class.
layout=$("$clang" "$@" -std=c++17 -fPIC -S -o /dev/null \
    -Xclang -fdump-record-layouts -Xclang -fdump-vtable-layouts "$source" | awk '
        { gsub(/(class|struct|enum) /, "") }
        /^\*\*\* Dumping AST/ { starts = 1; next }
        starts { starts = 0; name = $3 ~ /^VL/ ? $3 : ""; sub(/<.*/, "", name); next }
        /^ +[0-9]+ \|   [^ ]/ && name { at = $1; sub(/^[^|]*\| +/, "")
                                        printf "%s at %02d: %s\n", name, at, $0 }
        /\[sizeof=/ && name { split($2, size, /[=,]/)
                              printf "%s has %d bytes\n", name, size[2]; name = "" }
        /^Vtable for / { split($0, quoted, "\047"); table = quoted[2]; count = 0 }
        /^ +[0-9]+ \| .*\)/ && table ~ /^VL/ && !/offset_to_top|\[deleting\]/ {
            sub(/^[^|]*\| /, ""); sub(/ \[.*/, "")
            printf "%s virtual %02d: %s\n", table, ++count, $0 }
        /^$/ { table = "" }' | sort -u)

if ! difference=$(diff "$expected" <(echo "$layout")); then
    echo "This is what clang lays out (>) against $(basename "$expected") (<):" >&2
    echo "$difference" >&2
    exit 1
fi
