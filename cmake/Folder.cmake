# SPDX-License-Identifier: GPL-3.0-or-later
# A folder of the program is one static library with an include root of its own: what a folder
# may use is exactly what it links, so that a wrong include does not build.
function(m47_folder name)
    cmake_parse_arguments(PARSE_ARGV 1 ARG "" "" "SOURCES;USES")
    add_library(${name} STATIC ${ARG_SOURCES})
    target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
    target_link_libraries(${name} PUBLIC ${ARG_USES})
endfunction()

# A test program: one source file named after the test, in Qt Test.
function(m47_test name)
    cmake_parse_arguments(PARSE_ARGV 1 ARG "SCREEN" "TIMEOUT" "SOURCES;USES")
    string(REPLACE "." "_" target test_${name})
    add_executable(${target} ${ARG_SOURCES})
    target_link_libraries(${target} PRIVATE ${ARG_USES} Qt6::Test)
    add_test(NAME ${name} COMMAND ${target})
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 120)
    endif()
    set_tests_properties(${name} PROPERTIES TIMEOUT ${ARG_TIMEOUT}
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8")
endfunction()
