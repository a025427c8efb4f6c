#!/usr/bin/env bash
# Installs the build tree and moves what was installed elsewhere.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

mkdir -p "$WORK"
rm -rf "$WORK/installed" "$TREE"
quietly cmake --install "$BUILD_TREE" --prefix "$WORK/installed"
mv "$WORK/installed" "$TREE"
