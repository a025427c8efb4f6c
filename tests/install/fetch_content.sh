#!/usr/bin/env bash
# FetchContent makes the libraries from their sources when find_package() asks for them.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

build_consumer fetched -DCMAKE_PROJECT_consumer_INCLUDE="$here/fetch_content.cmake" \
    -DSOURCE_TREE="$SOURCE_TREE" -DBUILD_SHARED_LIBS=ON -DCMAKE_UNITY_BUILD=ON
expect "how many libraries of its own build the consumer loads" 2 \
    "$(libraries_of "$WORK/fetched/consumer" | grep -c "^$WORK/fetched/")"
