#!/usr/bin/env bash
# Runs PROGRAM on a small collection, and compares all that it prints, and which files are there
# afterwards, with the file EXPECTED: run_example.sh PROGRAM EXPECTED
set -euo pipefail
work=$(cd "$(mktemp -d)" && pwd -P)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/bin" "$work/collection/2023/07/Beach" "$work/collection/2023/2023-08-01"
# No report is opened, whatever the program asks for.
for opener in xdg-open open; do
    printf '#!/bin/sh\n' >"$work/bin/$opener"
    chmod +x "$work/bin/$opener"
done
cd "$work/collection"
PATH=$work/bin:$PATH "$1" "$work/collection" >"$work/printed" 2>&1 || echo "it ended with $?"
find . -type f | sed 's|^\./|file: |' >>"$work/printed"
# How often a program tells its progress depends on the machine.
diff "$2" <(sed -e "s|$work||" -e "/ so far\$/d" "$work/printed")
