#!/usr/bin/env bash
# Installs the build tree, every file of every package, and moves it elsewhere.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

mkdir -p "$WORK"
rm -rf "$WORK/installed" "$TREE"
quietly cmake --install "$BUILD_TREE" --prefix "$WORK/installed"
mv "$WORK/installed" "$TREE"
expect_all_files "the installed tree" "$TREE"
