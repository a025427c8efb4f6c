#!/usr/bin/env bash
# A program that knows only the installed package: the example of the README, its blocks "cmake" and
# "cpp" copied out of it, built by the command that stands there, and run on a small collection.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

# block LANGUAGE: prints the first block of that language below "Embedding".
block() {
    sed -n '/^## Embedding/,$p' "$SOURCE_TREE/README.md" |
        sed -n "/^\`\`\`$1\$/,/^\`\`\`\$/ { /^\`\`\`/! p; /^\`\`\`\$/ q; }"
}

rm -rf "$WORK"
mkdir -p "$WORK/source" "$WORK/collection/2023/07/Beach"
cd "$WORK/source"
block cmake >CMakeLists.txt
block cpp >main.cpp
quietly cmake --install "$BUILD_TREE" --prefix "$WORK/prefix"
# There may be no make: ./run installs Ninja.
# shellcheck disable=SC2016 # quotes of Markdown
command=$(sed -n 's/.*`\(cmake -G Ninja [^`]*\)`.*/\1/p' "$SOURCE_TREE/README.md")
quietly sh -c "${command/\/usr\/local/\'$WORK/prefix\'}"
expect "what the example prints" \
    $'   Root <= \n   Year <= 2023\n  Month <= 2023/07\n  Event <= 2023/07/Beach' \
    "$(build/folders "$WORK/collection")"
