#!/usr/bin/env bash
# Fails if the binary interface of the checkout SOURCE, compiled by COMPILER in WORK, is another than
# that of the files beside this script: compare_abi.sh SOURCE WORK COMPILER. What is there is left in
# WORK.
. "$(dirname "${BASH_SOURCE[0]}")/../common.sh"
source=$1 work=$2 compiler=$3
baseline=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
needs abidw abidiff

# As released, but with the debug information that abidw reads, and of that only what a file of the
# same name defines: with Qt's own types it would be ten times as large and change with every Qt.
own_types=-femit-struct-debug-detailed=dir:ord:base,dir:gen:base,ind:ord:base,ind:gen:base
quietly cmake --fresh -S "$source" -B "$work/build" -G Ninja -DCMAKE_CXX_COMPILER="$compiler" \
    -DCMAKE_CXX_FLAGS="-g $own_types '-fdebug-prefix-map=$source/='" \
    -DCMAKE_BUILD_TYPE=Release -DBUILD_SHARED_LIBS=ON -DVLFOLIO_BUILD_{APPS,EXAMPLES,TESTS}=OFF
quietly cmake --build "$work/build"

status=0
for library in VLCore VLFolioEventClassifier; do
    abidw --exported-interfaces-only --drop-undefined-syms --no-show-locs --no-corpus-path \
        --no-comp-dir-path --no-elf-needed --no-write-default-sizes --type-id-style hash \
        --out-file "$work/$library.abi" "$work/build/lib/lib$library.so"
    abidiff "$baseline/$library.abi" "$work/$library.abi" || status=1
done
[ $status -eq 0 ] || echo "If this change is wanted: cp '$work'/*.abi '$baseline'"
exit $status
