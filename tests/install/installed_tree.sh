#!/usr/bin/env bash
# What is installed is complete, works wherever it is moved, and is found by CMake and pkg-config.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

TREE=$WORK/tree
mkdir -p "$WORK"
rm -rf "$WORK/installed" "$TREE"
quietly cmake --install "$BUILD_TREE" --prefix "$WORK/installed"
mv "$WORK/installed" "$TREE"
expect_all_files "the installed tree" "$TREE"

run_path() {
    readelf --dynamic "$1" | sed -n 's/.*(R\(UN\)\?PATH).*\[\(.*\)\]/\2/p'
}

expect "the run path of VLCore" "" "$(run_path "$TREE/$LIBDIR/libVLCore.so")"
# shellcheck disable=SC2016 # the loader fills $ORIGIN in
expect "the run path of VLFolioEventClassifier" '$ORIGIN' \
    "$(run_path "$TREE/$LIBDIR/libVLFolioEventClassifier.so")"
expect "the run path of the program" "\$ORIGIN/../$LIBDIR" \
    "$(run_path "$TREE/bin/vlfolio-classify")"
expect_loaded "$TREE/bin/vlfolio-classify" "$TREE/bin/../$LIBDIR"
expect_program "$TREE/bin/vlfolio-classify"
expect "what names a place" "" \
    "$(grep -rIlF -e "$WORK" -e "$BUILD_TREE" -e "$SOURCE_TREE" "$TREE" || true)"

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
expect_loaded "$WORK/found/consumer" "$TREE/$LIBDIR"
for version in 0.9 1.99 2.0; do
    refused "version_$version" "compatible with requested version \"$version\"" -DWANTED="$version"
done
refused without_qt 'Could not find a package configuration file provided by "Qt6"' -DWANTED=1.0 \
    -DLOOK_ELSEWHERE=OFF

needs pkg-config
export PKG_CONFIG_PATH=$TREE/$LIBDIR/pkgconfig
for package in VLCore VLFolioEventClassifier; do
    expect "the version of $package" 1.0.0 "$(ask_pkg_config --modversion "$package")"
    expect_directories "$package" "$TREE/$LIBDIR" "$TREE/include"
done
mapfile -t flags < <(ask_pkg_config --cflags --libs VLFolioEventClassifier)
compile_consumer linked "${flags[@]}" "-Wl,-rpath,$TREE/$LIBDIR"
