#!/usr/bin/env bash
# CMake's find_package() finds the installed tree, and says why when it must not be used.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

# refused NAME REASON OPTION...: fails unless the package refuses to be used and gives the reason.
refused() {
    local output
    rm -rf "${WORK:?}/$1"
    if output=$(cmake -S "$here/refused" -B "$WORK/$1" -G Ninja \
        -DPACKAGE_DIR="$TREE/$LIBDIR/cmake/VLFolioEventClassifier" "${@:3}" 2>&1); then
        fail "$1: the package can be used"
    fi
    # CMake breaks lines where it likes.
    [[ $(tr -s ' \n' ' ' <<<"$output") == *"$2"* ]] || fail "$1: $output"
}

build_consumer found -DCMAKE_PREFIX_PATH="$TREE"
expect "what the consumer loads" \
    "$TREE/$LIBDIR/libVLCore.so.1"$'\n'"$TREE/$LIBDIR/libVLFolioEventClassifier.so.1" \
    "$(libraries_of "$WORK/found/consumer")"

for version in 0.9 1.99 2.0; do
    refused "version_$version" "compatible with requested version \"$version\"" -DWANTED="$version"
done
refused without_qt 'Could not find a package configuration file provided by "Qt6"' -DWANTED=1.0 \
    -DLOOK_ELSEWHERE=OFF
