#!/usr/bin/env bash
# Fails if the binary interface of the checkout SOURCE, compiled by COMPILER in WORK, is another than
# that of the files beside this script: compare_abi.sh SOURCE WORK COMPILER. What is there is left in
# WORK.
set -euo pipefail
source=$1 work=$2 compiler=$3
baseline=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
for tool in abidw abidiff; do
    command -v $tool >/dev/null || { echo "skipped: $tool is not installed"; exit 77; }
done

# As released, but with the debug information that abidw reads, and of that only what a file of the
# same name defines: with Qt's own types it would be ten times as large and change with every Qt.
own_types=-femit-struct-debug-detailed=dir:ord:base,dir:gen:base,ind:ord:base,ind:gen:base
build_libraries() {
    cmake --fresh -S "$source" -B "$work/build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_CXX_COMPILER="$compiler" \
        -DCMAKE_CXX_FLAGS="-g $own_types '-fdebug-prefix-map=$source/='" \
        -DBUILD_SHARED_LIBS=ON \
        -DVLFOLIO_BUILD_{APPS,EXAMPLES,TESTS}=OFF &&
        cmake --build "$work/build"
}
mkdir -p "$work"
build_libraries >"$work/build.log" 2>&1 || { cat "$work/build.log"; exit 1; }

status=0
for library in VLCore VLFolioEventClassifier; do
    abidw --exported-interfaces-only --drop-undefined-syms --no-show-locs --no-corpus-path \
        --no-comp-dir-path --no-elf-needed --no-write-default-sizes --type-id-style hash \
        --out-file "$work/$library.abi" "$work/build/lib/lib$library.so"
    abidiff "$baseline/$library.abi" "$work/$library.abi" || status=1
done
[ $status -eq 0 ] || echo "If this change is wanted: cp '$work'/*.abi '$baseline'"
exit $status
