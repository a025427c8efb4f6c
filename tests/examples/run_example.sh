#!/usr/bin/env bash
# Runs PROGRAM on a small collection, and compares all that it prints, and which files are there
# afterwards, with the file EXPECTED: run_example.sh PROGRAM EXPECTED
. "$(dirname "${BASH_SOURCE[0]}")/../common.sh"
make_work_directory
mkdir -p "$work/collection/2023/07/Beach" "$work/collection/2023/2023-08-01"
cd "$work/collection"
"$1" "$work/collection" >"$work/printed" 2>&1 || echo "it ended with $?"
find . -type f | sed 's|^\./|file: |' >>"$work/printed"
# How often a program tells its progress depends on the machine.
diff "$2" <(sed -e "s|$work||" -e "/ so far\$/d" "$work/printed")
