# Sourced by the tests of this folder. Their environment names SOURCE_TREE, BUILD_TREE, LIBDIR, the
# compiler in CXX and CXXFLAGS, and WORK, a directory of their own.
# shellcheck shell=bash
. "$(dirname "${BASH_SOURCE[0]}")/../common.sh"
export LC_ALL=C.UTF-8
here=$SOURCE_TREE/tests/install

# ask_pkg_config OPTION...: prints each word of the answer in a line, without the escapes that protect
# blanks and umlauts from a shell.
ask_pkg_config() {
    pkg-config "$@" | xargs printf '%s\n'
}

# build_consumer NAME OPTION...: builds the consumer in WORK/NAME and runs it.
build_consumer() {
    rm -rf "${WORK:?}/$1"
    quietly cmake -S "$here/consumer" -B "$WORK/$1" -G Ninja \
        -DCMAKE_CXX_COMPILER="$CXX" -DCMAKE_CXX_FLAGS="$CXXFLAGS" "${@:2}"
    quietly cmake --build "$WORK/$1"
    expect "what $1 prints" "Day 0" "$("$WORK/$1/consumer")"
}

# compile_consumer NAME FLAG...: the same without CMake.
compile_consumer() {
    # shellcheck disable=SC2086 # the flags of the build are several words
    quietly "$CXX" -std=c++17 -fPIC $CXXFLAGS -o "$WORK/$1" "$here/consumer/main.cpp" "${@:2}"
    expect "what $1 prints" "Day 0" "$("$WORK/$1")"
}

# libraries_of FILE...: prints where the files get the two libraries from.
libraries_of() {
    ldd "$@" | sed -n 's/.* => \(.*libVL.*\) (.*/\1/p' | sort
}

# expect_loaded FILE DIRECTORY: fails unless FILE gets both libraries from there.
expect_loaded() {
    expect "what ${1##*/} loads" "$2/libVLCore.so.1"$'\n'"$2/libVLFolioEventClassifier.so.1" \
        "$(libraries_of "$1")"
}

# expect_program FILE: fails unless it is the program, and works.
expect_program() {
    expect "what the program prints" "Year <= Summer 2019 (tests met: year)" \
        "$("$1" --explain "Summer 2019")"
}

# expect_directories PACKAGE LIBRARIES HEADERS: fails unless pkg-config tells these.
expect_directories() {
    expect "the libraries of $1" "$2" "$(realpath "$(ask_pkg_config --variable=libdir "$1")")"
    expect "the headers of $1" "$3" "$(realpath "$(ask_pkg_config --variable=includedir "$1")")"
}

# build_type_left_out: a filter for names of files, one of which bears that of the build.
build_type_left_out() {
    sed 's/Targets-[a-z]*\.cmake/Targets-BUILDTYPE.cmake/' | sort
}

# contents: prints the files that there must be, each behind the name of its package.
contents() {
    sed "s|LIBDIR|$LIBDIR|" "$here/contents.txt" | sort
}

# expect_all_files WHAT DIRECTORY: fails unless DIRECTORY holds just the files of every package.
expect_all_files() {
    expect "what $1 holds" "$(contents | sed 's/^[^ ]* //' | sort)" \
        "$(cd "$2" && find . ! -type d | sed 's|^\./||' | build_type_left_out)"
}
