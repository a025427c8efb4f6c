# vl_add_test(NAME SOURCES ... [LIBRARIES ...] [LOCALES ...])
#
# A Qt Test executable tst_NAME and a ctest entry for each locale, "NAME" or "NAME.LOCALE". Every
# entry runs in a time zone far from UTC, so that a date that depends on it shows.
function(vl_add_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LIBRARIES;LOCALES")

    set(target tst_${name})
    add_executable(${target} ${arg_SOURCES})
    set_target_properties(${target} PROPERTIES AUTOMOC ON)
    target_link_libraries(${target} PRIVATE
        VLFolioEventClassifier::VLFolioEventClassifier
        Qt6::Test
        ${arg_LIBRARIES}
    )
    vl_precompile(${target} tests)
    if(NOT arg_LOCALES)
        vl_add_test_entry(${name} ${target} C.UTF-8)
    endif()
    foreach(locale IN LISTS arg_LOCALES)
        vl_add_test_entry(${name}.${locale} ${target} ${locale})
    endforeach()
endfunction()

function(vl_add_test_entry entry target locale)
    add_test(NAME ${entry} COMMAND ${target} ${ARGN})
    set_tests_properties(${entry} PROPERTIES
        ENVIRONMENT "LC_ALL=${locale};LANG=;LANGUAGE=;TZ=Pacific/Auckland;QT_LOGGING_RULES="
        TIMEOUT 300
    )
endfunction()

# vl_add_skipped_test(NAME REASON COMMAND)
#
# Stands for what cannot be built or run here, so that ./test tells of it: why, and how to get it.
function(vl_add_skipped_test name reason command)
    add_test(NAME ${name} COMMAND "${CMAKE_COMMAND}" -E echo "skipped: ${reason}; ${command}")
    set_tests_properties(${name} PROPERTIES SKIP_REGULAR_EXPRESSION "^skipped: ")
endfunction()

# vl_define_preload(TARGET SCOPE MACRO MODULE)
#
# Defines what LD_PRELOAD has to say for the program to load MODULE, wherever both are: the loader
# splits that list at blanks, but before it fills in the program's directory.
function(vl_define_preload target scope macro module)
    set(directory "$<TARGET_FILE_DIR:vlfolio-classify>")
    set(path "$<PATH:RELATIVE_PATH,$<TARGET_FILE:${module}>,${directory}>")
    target_compile_definitions(${target} ${scope} "${macro}=\"\$ORIGIN/${path}\"")
endfunction()
