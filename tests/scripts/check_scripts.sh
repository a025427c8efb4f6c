#!/usr/bin/env bash
# Checks ./run, ./test and the scripts behind them with a project that has no sources:
# check_scripts.sh SOURCES
. "$(dirname "${BASH_SOURCE[0]}")/../common.sh"
sources=$1
unset VLFOLIO_PRESET VLFOLIO_OPTIONS
make_work_directory

# make_checkout DIRECTORY: a project whose program prints its arguments, and whose test passes.
make_checkout() {
    mkdir "$1"
    cp -R "$sources"/{CMakePresets.json,examples,run,test,scripts} "$1"
    cat >"$1/CMakeLists.txt" <<'CMAKE'
cmake_minimum_required(VERSION 3.25)
project(checkout LANGUAGES NONE)
file(CONFIGURE OUTPUT bin/vlfolio-classify @ONLY CONTENT [[#!/bin/sh
[ "$1" = --help ] && echo "  --type <NAME>  a type" || echo "$@"
]])
file(CHMOD "${PROJECT_BINARY_DIR}/bin/vlfolio-classify" PERMISSIONS OWNER_READ OWNER_EXECUTE)
enable_testing()
add_test(NAME passes COMMAND "${CMAKE_COMMAND}" -E true)
CMAKE
}

for name in 'a&b' 'a;b' 'a,b' 'a[b'; do
    make_checkout "$work/$name"
    for command in run test; do
        expect "$command in $name" \
            "install-packages: CMake cannot build in $work/$name: move it to a path without \
& ; \$ \" ' \` # < > | [ ] : , * ? \\"$'\n'1 "$("$work/$name/$command" 2>&1; echo $?)"
    done
    expect "what is made in $name" "" "$(find "$work/$name" -name build -type d)"
done

make_checkout "$work/Die Bücher"
"$work/Die Bücher/test" >/dev/null
checkout="$work/(moved)"
mv "$work/Die Bücher" "$checkout"
expect "test after a move" "100% tests passed, 0 tests failed out of 1" \
    "$("$checkout/test" 2>/dev/null | sed '/^Total/d')"

sample=$checkout/build/sample
expect "run --list" "--list $sample" "$("$checkout/run" --list 2>/dev/null)"
expect "run --type Day" "--type Day $sample" "$("$checkout/run" --type Day)"
expect "run with a directory" "--type Day there" "$("$checkout/run" --type Day there)"
expect "run --version" "--version" "$("$checkout/run" --version)"

cat >"$work/log" <<'LOG'
1/2 Test: first
Output:
----------------------------------------------------------
PASS   : tst_first::initTestCase()
FAIL!  : tst_first::rows(two) Compared values are not the same
   Actual   (a): 1
   Expected (b): 2
PASS   : tst_first::rows(three)
SKIP   : tst_first::rows(four) Needs the superuser
   Loc: [tst_first.cpp(4)]
<end of output>
Test Failed.
2/2 Test: second
Output:
----------------------------------------------------------
skipped: abidw is not installed
<end of output>
Test Passed.
LOG
expect "what is told of tests" "first:
FAIL!  : tst_first::rows(two) Compared values are not the same
   Actual   (a): 1
   Expected (b): 2
Test Failed.

skipped: first rows: Needs the superuser; get it by: sudo ./test
skipped: second: abidw is not installed; get it by: scripts/install-packages check" \
    "$("$sources/scripts/tell-tests" "$work/log")"
