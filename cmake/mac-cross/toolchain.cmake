# Compiles for a Mac on Linux, by the Zig that VLFOLIO_ZIG names and with the headers of Linux's Qt.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES VLFOLIO_ZIG CMAKE_OSX_DEPLOYMENT_TARGET)

string(REPLACE "arm64" "aarch64" arch "${CMAKE_SYSTEM_PROCESSOR}")
set(CMAKE_CXX_COMPILER "${VLFOLIO_ZIG}" c++ -target ${arch}-macos.${CMAKE_OSX_DEPLOYMENT_TARGET})
# CMake names the version again, in a way that Zig does not need. Zig adds a sanitizer by itself, and
# cannot compile headers in advance.
set(CMAKE_CXX_FLAGS_INIT "-Werror -Wno-unused-command-line-argument -fno-sanitize=undefined")
set(CMAKE_DISABLE_PRECOMPILE_HEADERS ON)
set(CMAKE_MODULE_PATH "${CMAKE_CURRENT_LIST_DIR}")
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_USER_MAKE_RULES_OVERRIDE "${CMAKE_CURRENT_LIST_DIR}/rules.cmake")
