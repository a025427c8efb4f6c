#!/usr/bin/env bash
# What is installed works wherever it is moved: the example of the README, its blocks "cmake" and "cpp"
# copied out of it, is built with it by the command that stands there, and run on a small collection.
# On Linux the tree is looked at, too: what it holds, what pkg-config says of it, and that the
# archive that cpack makes is the same.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

# block LANGUAGE: prints the first block of that language below "Embedding".
block() {
    sed -n '/^## Embedding/,$p' "$SOURCE_TREE/README.md" |
        sed -n "/^\`\`\`$1\$/,/^\`\`\`\$/ { /^\`\`\`/! p; /^\`\`\`\$/ q; }"
}

TREE=$WORK/tree
rm -rf "$WORK"
mkdir -p "$WORK/source" "$WORK/collection/2023/07/Beach"
quietly cmake --install "$BUILD_TREE" --prefix "$WORK/installed"
mv "$WORK/installed" "$TREE"
cd "$WORK/source"
block cmake >CMakeLists.txt
block cpp >main.cpp
# There may be no make: ./run installs Ninja.
# shellcheck disable=SC2016 # quotes of Markdown
command=$(sed -n 's/.*`\(cmake -G Ninja [^`]*\)`.*/\1/p' "$SOURCE_TREE/README.md")
quietly sh -c "${command/\/usr\/local/\'$TREE\'}"
expect "what the example prints" \
    $'   Root <= \n   Year <= 2023\n  Month <= 2023/07\n  Event <= 2023/07/Beach' \
    "$(build/folders "$WORK/collection")"
expect_program "$TREE/bin/vlfolio-classify"
quietly cmake -DPACKAGE_DIR="$TREE/$LIBDIR/cmake/VLFolioEventClassifier" -P "$here/refused.cmake"

[ "$(uname)" = Linux ] || {
    echo "skipped: what is installed is read with tools of Linux; ./test on Linux"
    exit 77
}
expect_all_files "the installed tree" "$TREE"
quietly cpack --config "$BUILD_TREE/CPackConfig.cmake" -G TGZ -B "$WORK/archives"
archive=$WORK/archives/vlfolioeventclassifier-1.0.0-Linux
tar -xzf "$archive.tar.gz" -C "$WORK/archives"
expect_all_files "the archive" "$archive"
expect_program "$archive/bin/vlfolio-classify"
expect "what names a place" "" \
    "$(grep -rIlF -e "$WORK" -e "$BUILD_TREE" -e "$SOURCE_TREE" "$TREE" || true)"

# shellcheck disable=SC2016 # the loader fills $ORIGIN in
expect "the run paths" '[$ORIGIN] [$ORIGIN/../'"$LIBDIR]" \
    "$(readelf --dynamic "$TREE/$LIBDIR"/lib*.so "$TREE/bin/vlfolio-classify" |
        sed -n 's/.*(R\(UN\)\?PATH).*\(\[.*\]\)/\2/p' | xargs)"
expect_loaded "$TREE/bin/vlfolio-classify" "$TREE/bin/../$LIBDIR"
expect_loaded build/folders "$TREE/$LIBDIR"

needs pkg-config
export PKG_CONFIG_PATH=$TREE/$LIBDIR/pkgconfig
for package in VLCore VLFolioEventClassifier; do
    expect "the version of $package" 1.0.0 "$(ask_pkg_config --modversion "$package")"
    expect_directories "$package" "$TREE/$LIBDIR" "$TREE/include"
done
mapfile -t flags < <(ask_pkg_config --cflags --libs VLFolioEventClassifier)
compile_consumer linked "${flags[@]}" "-Wl,-rpath,$TREE/$LIBDIR"
