#!/usr/bin/env bash
# Fails if a program that was built with the interfaces in BASELINE could misbehave with those of
# SOURCE, built by COMPILER in WORK: compare_abi.sh SOURCE WORK BASELINE COMPILER
set -euo pipefail
source=$1 work=$2 baseline=$3 compiler=$4
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

if ! command -v abidw >/dev/null || ! command -v abidiff >/dev/null; then
    echo "skipped: abidw and abidiff are not installed (package abigail-tools)"
    exit 77
fi

mkdir -p "$work"
"$here/dump_abi.sh" "$source" "$work/build" "$work" "$compiler"
status=0
for library in VLCore VLFolioEventClassifier; do
    # What is added harms nobody, and the lists of symbols show it.
    if ! abidiff --no-added-syms "$baseline/$library.abi" "$work/$library.abi" >&2; then
        echo "This is lib$library against $library.abi. To accept it, run scripts/update-abi." >&2
        status=1
    fi
done
exit "$status"
