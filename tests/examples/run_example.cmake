# Runs EXAMPLE on a small collection below WORK_DIR, and compares all that it prints, and which files
# are there afterwards, with the file EXPECTED.
cmake_minimum_required(VERSION 3.25)

set(collection "${WORK_DIR}/collection")
file(REMOVE_RECURSE "${WORK_DIR}")
file(MAKE_DIRECTORY "${collection}/2023/07/Beach" "${collection}/2023/2023-08-01" "${WORK_DIR}/bin")
foreach(opener IN ITEMS xdg-open open)
    file(WRITE "${WORK_DIR}/bin/${opener}" "#!/bin/sh\n")
    file(CHMOD "${WORK_DIR}/bin/${opener}" PERMISSIONS OWNER_READ OWNER_EXECUTE)
endforeach()
set(ENV{PATH} "${WORK_DIR}/bin:$ENV{PATH}")

execute_process(COMMAND "${EXAMPLE}" "${collection}"
    RESULT_VARIABLE result OUTPUT_VARIABLE printed ERROR_VARIABLE printed)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "the example ended with ${result}:\n${printed}")
endif()
string(REPLACE "${collection}" "/collection" printed "${printed}")
file(GLOB_RECURSE files RELATIVE "${collection}" "${collection}/*")
foreach(file IN LISTS files)
    string(APPEND printed "file: ${file}\n")
endforeach()

file(READ "${EXPECTED}" expected)
if(NOT printed STREQUAL expected)
    message(FATAL_ERROR "the example printed\n${printed}instead of\n${expected}")
endif()
