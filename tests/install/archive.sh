#!/usr/bin/env bash
# The archive that cpack makes holds every file of every package, and works where it is unpacked.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

archives=$WORK/archives
rm -rf "$archives"
mkdir -p "$archives/unpacked"
quietly cpack --config "$BUILD_TREE/CPackConfig.cmake" -G TGZ -B "$archives"
expect "what cpack makes" vlfolioeventclassifier-1.0.0-Linux.tar.gz \
    "$(cd "$archives" && ls -- *.gz)"
tar -xzf "$archives"/*.tar.gz -C "$archives/unpacked" --strip-components=1

expect_all_files "the archive" "$archives/unpacked"
expect "what the program prints" "Year <= Summer 2019 (tests met: year)" \
    "$("$archives/unpacked/bin/vlfolio-classify" --explain "Summer 2019")"
