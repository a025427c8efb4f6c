# Installs the build tree BUILD_DIR below WORK_DIR, takes the blocks "cmake" and "cpp" of the
# section "Embedding" out of README, builds them against the installed package by the command that
# stands there, and runs the result on a small collection.
cmake_minimum_required(VERSION 3.25)

function(must_run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output
        ERROR_VARIABLE output)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "failed: ${ARGN}\n${output}")
    endif()
    set(output "${output}" PARENT_SCOPE)
endfunction()

function(write_block language file)
    string(FIND "${readme}" "## Embedding" section)
    string(SUBSTRING "${readme}" ${section} -1 rest)
    string(FIND "${rest}" "```${language}\n" start)
    string(LENGTH "```${language}\n" fence)
    math(EXPR start "${start} + ${fence}")
    string(SUBSTRING "${rest}" ${start} -1 rest)
    string(FIND "${rest}" "```" end)
    string(SUBSTRING "${rest}" 0 ${end} block)
    file(WRITE "${file}" "${block}")
endfunction()

file(REMOVE_RECURSE "${WORK_DIR}")
file(MAKE_DIRECTORY "${WORK_DIR}/collection/2023/07/Beach")
file(READ "${README}" readme)
write_block(cmake "${WORK_DIR}/source/CMakeLists.txt")
write_block(cpp "${WORK_DIR}/source/main.cpp")

must_run("${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${WORK_DIR}/prefix")
# There may be no make: ./run installs Ninja.
string(REGEX MATCH "`(cmake -G Ninja [^`]+)`" found "${readme}")
string(REPLACE "/usr/local" "'${WORK_DIR}/prefix'" command "${CMAKE_MATCH_1}")
must_run("${CMAKE_COMMAND}" -E env "CXX=${CXX_COMPILER}" "CXXFLAGS=${CXX_FLAGS}"
    "${CMAKE_COMMAND}" -E chdir "${WORK_DIR}/source" sh -c "${command}")
must_run("${WORK_DIR}/source/build/folders" "${WORK_DIR}/collection")

set(expected "   Root <= \n   Year <= 2023\n  Month <= 2023/07\n  Event <= 2023/07/Beach\n")
if(NOT output STREQUAL expected)
    message(FATAL_ERROR "the example printed\n${output}instead of\n${expected}")
endif()
