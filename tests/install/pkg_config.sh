#!/usr/bin/env bash
# pkg-config finds the installed tree where it was moved to.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
command -v pkg-config >/dev/null || { echo "skipped: pkg-config is not installed"; exit 77; }

export PKG_CONFIG_PATH=$TREE/$LIBDIR/pkgconfig
for package in VLCore VLFolioEventClassifier; do
    expect "the version of $package" 1.0.0 "$(pkg-config --modversion "$package")"
    expect "the libraries of $package" "$TREE/$LIBDIR" \
        "$(realpath "$(pkg-config --variable=libdir "$package")")"
    expect "the headers of $package" "$TREE/include" \
        "$(realpath "$(pkg-config --variable=includedir "$package")")"
done
read -ra flags <<<"$(pkg-config --cflags --libs VLFolioEventClassifier)"
compile_consumer linked "${flags[@]}" "-Wl,-rpath,$TREE/$LIBDIR"
