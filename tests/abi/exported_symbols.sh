#!/usr/bin/env bash
# Prints what the shared library LIBRARY exports, one name a line: exported_symbols.sh LIBRARY
set -euo pipefail
export LC_ALL=C

# The standard library makes its own templates visible, whatever the compiler is told. Which copies
# of them stay in a library is a matter of what was inlined; nobody relies on finding them there.
nm --dynamic --defined-only --format=posix "$1" | cut -d' ' -f1 |
    grep -Ev '^_Z(GV)?Z?N?K?(St|9__gnu_cxx)' | c++filt | sort -u
