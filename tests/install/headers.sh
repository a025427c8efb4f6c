#!/usr/bin/env bash
# Each installed header can be the only one that is included.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
command -v pkg-config >/dev/null || { echo "skipped: pkg-config is not installed"; exit 77; }

export PKG_CONFIG_PATH=$TREE/$LIBDIR/pkgconfig
read -ra flags <<<"$(pkg-config --cflags VLFolioEventClassifier)"
count=0
for header in "$TREE"/include/*/*.h; do
    quietly "$CXX" -std=c++17 -fPIC -fsyntax-only "${flags[@]}" -x c++ - \
        <<<"#include <${header#"$TREE/include/"}>"
    count=$((count + 1))
done
expect "the number of headers" 14 "$count"
