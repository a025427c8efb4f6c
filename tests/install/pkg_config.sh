#!/usr/bin/env bash
# pkg-config finds the installed tree where it was moved to.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
needs pkg-config

export PKG_CONFIG_PATH=$TREE/$LIBDIR/pkgconfig
for package in VLCore VLFolioEventClassifier; do
    expect "the version of $package" 1.0.0 "$(ask_pkg_config --modversion "$package")"
    expect "the libraries of $package" "$TREE/$LIBDIR" \
        "$(realpath "$(ask_pkg_config --variable=libdir "$package")")"
    expect "the headers of $package" "$TREE/include" \
        "$(realpath "$(ask_pkg_config --variable=includedir "$package")")"
done
mapfile -t flags < <(ask_pkg_config --cflags --libs VLFolioEventClassifier)
compile_consumer linked "${flags[@]}" "-Wl,-rpath,$TREE/$LIBDIR"
