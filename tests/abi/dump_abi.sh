#!/usr/bin/env bash
# Builds both libraries of the checkout SOURCE in BUILD as they are released, but with the debug
# information that abidw reads, and writes their interfaces to NAME.abi in OUT:
# dump_abi.sh SOURCE BUILD OUT COMPILER
set -euo pipefail
source=$1 build=$2 out=$3 compiler=$4

# Only what a file of the same name defines: with Qt's own types the outcome would be ten times as
# large and change with every release of Qt.
own_types=-femit-struct-debug-detailed=dir:ord:base,dir:gen:base,ind:ord:base,ind:gen:base

build_libraries() {
    cmake --fresh -S "$source" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_CXX_COMPILER="$compiler" \
        -DCMAKE_CXX_FLAGS="-g $own_types -fdebug-prefix-map=$source/=" \
        -DBUILD_SHARED_LIBS=ON -DVLFOLIO_BUILD_APPS=OFF -DVLFOLIO_BUILD_TESTS=OFF &&
        cmake --build "$build"
}

if ! build_libraries >"$build.log" 2>&1; then
    cat "$build.log" >&2
    exit 1
fi
for library in VLCore VLFolioEventClassifier; do
    abidw --exported-interfaces-only --drop-undefined-syms --no-show-locs --no-corpus-path \
        --no-comp-dir-path --no-elf-needed --no-write-default-sizes --type-id-style hash \
        --out-file "$out/$library.abi" "$build/lib/lib$library.so"
done
