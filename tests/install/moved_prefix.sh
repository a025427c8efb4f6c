#!/usr/bin/env bash
# The installed tree holds no path of its own, so that it works wherever it is moved.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

run_path() {
    readelf --dynamic "$1" | sed -n 's/.*(R\(UN\)\?PATH).*\[\(.*\)\]/\2/p'
}

expect "the run path of VLCore" "" "$(run_path "$TREE/$LIBDIR/libVLCore.so")"
# shellcheck disable=SC2016 # the loader fills $ORIGIN in
expect "the run path of VLFolioEventClassifier" '$ORIGIN' \
    "$(run_path "$TREE/$LIBDIR/libVLFolioEventClassifier.so")"
expect "the run path of the program" "\$ORIGIN/../$LIBDIR" \
    "$(run_path "$TREE/bin/vlfolio-classify")"
libraries=$TREE/bin/../$LIBDIR
expect "what the program loads" \
    "$libraries/libVLCore.so.1"$'\n'"$libraries/libVLFolioEventClassifier.so.1" \
    "$(libraries_of "$TREE/bin/vlfolio-classify")"
expect "what the program prints" "Year <= Summer 2019 (tests met: year)" \
    "$("$TREE/bin/vlfolio-classify" --explain "Summer 2019")"
expect "what names a place" "" \
    "$(grep -rIlF -e "$WORK" -e "$BUILD_TREE" -e "$SOURCE_TREE" "$TREE" || true)"
