# SPDX-License-Identifier: GPL-3.0-or-later
# A folder of the program is one static library with an include root of its own: what a folder may use
# is what it links (tests/walls says where it includes more). Without SOURCES: headers alone.
function(m47_folder name)
    cmake_parse_arguments(PARSE_ARGV 1 ARG "" "" "SOURCES;USES")
    if(NOT ARG_SOURCES)
        add_library(${name} INTERFACE)
        target_include_directories(${name} INTERFACE ${CMAKE_CURRENT_SOURCE_DIR})
        target_link_libraries(${name} INTERFACE ${ARG_USES})
        return()
    endif()
    add_library(${name} STATIC ${ARG_SOURCES})
    target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
    target_link_libraries(${name} PUBLIC ${ARG_USES})
    set_target_properties(${name} PROPERTIES UNITY_BUILD ${M47_FOLDERS_AS_ONE})
endfunction()

# A part of the program that it loads when it is first needed (src/common/rules/part.h): ROOM_NAME is
# the file libm47-NAME.so.
function(m47_part name)
    cmake_parse_arguments(PARSE_ARGV 1 ARG "" "" "SOURCES;USES")
    string(REGEX REPLACE ".*_" "m47-" file ${name})
    add_library(${name} MODULE ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE ${ARG_USES})
    # What it has of the program's own is for itself.
    target_link_options(${name} PRIVATE -Wl,--exclude-libs,ALL -Wl,--as-needed)
    set_target_properties(${name} PROPERTIES UNITY_BUILD ${M47_FOLDERS_AS_ONE} OUTPUT_NAME ${file}
        LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/plugins)
    install(TARGETS ${name} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/m47-remote)
endfunction()

# Has `name`, which computes for long, optimised under the sanitizers too: its tests took twenty times
# as long as without them, and the program was late for a meter that does not wait.
function(m47_computes name)
    if(M47_SANITIZE)
        target_compile_options(${name} PRIVATE -O1)
    endif()
endfunction()

# Tests are compiled for a quick build: their own speed matters to nobody.
set(M47_TEST_OPTIONS $<$<CONFIG:Release>:-O0>)

# What every test includes is parsed once for all of them. (The program's own sources have no such
# help: each must build by itself, as the preset "debug" does it.)
function(m47_test_headers)
    # Not the folder of each test, which would differ from one to the next.
    set_target_properties(Qt6::Test PROPERTIES INTERFACE_COMPILE_DEFINITIONS QT_TESTLIB_LIB)
    file(WRITE ${CMAKE_BINARY_DIR}/test_headers.cpp "// Nothing but the headers.\n")
    add_library(test_headers OBJECT ${CMAKE_BINARY_DIR}/test_headers.cpp)
    set_target_properties(test_headers PROPERTIES AUTOMOC OFF AUTOUIC OFF)
    target_compile_options(test_headers PRIVATE ${M47_TEST_OPTIONS})
    target_link_libraries(test_headers PRIVATE Qt6::Widgets Qt6::Test)
    target_precompile_headers(test_headers PRIVATE
        <QAction> <QApplication> <QComboBox> <QDir> <QFile> <QLabel> <QLineEdit> <QPushButton>
        <QRegularExpression> <QTemporaryDir> <QTest> <QTimer> <algorithm> <functional> <memory>
        <optional> <vector>)
endfunction()

# A test program in Qt Test, with the folder's name before the dot. REAL_TIME: it talks to another
# process by the clock, so the tests that only compute stand back for it, and it has a second try.
function(m47_test name)
    cmake_parse_arguments(PARSE_ARGV 1 ARG "REAL_TIME" "TIMEOUT" "SOURCES;USES")
    string(REPLACE "." "_" target test_${name})
    add_executable(${target} ${ARG_SOURCES})
    target_link_libraries(${target} PRIVATE ${ARG_USES} Qt6::Widgets Qt6::Test)
    # A hundred programs of many libraries: the quick linker that comes with each compiler.
    target_link_options(${target} PRIVATE
        $<IF:$<CXX_COMPILER_ID:Clang>,-fuse-ld=lld,-fuse-ld=gold>)
    target_compile_options(${target} PRIVATE ${M47_TEST_OPTIONS})
    target_precompile_headers(${target} REUSE_FROM test_headers)
    set_source_files_properties(
        ${CMAKE_CURRENT_BINARY_DIR}/${target}_autogen/mocs_compilation.cpp
        PROPERTIES SKIP_PRECOMPILE_HEADERS ON)
    set_target_properties(${target} PROPERTIES AUTOUIC OFF AUTORCC OFF)
    if(ARG_REAL_TIME)
        add_test(NAME ${name}
            COMMAND ${PROJECT_SOURCE_DIR}/tests/second-try $<TARGET_FILE:${target}>)
    else()
        add_test(NAME ${name} COMMAND nice $<TARGET_FILE:${target}>)
    endif()
    # A limit against hanging, nothing more: under the sanitizers, beside a build on two cores, a
    # test that gives way was seen to take nine times as long. What is given one may take long: it
    # begins first, so that nothing is waited for at the end.
    set(limit 400)
    set(cost 120)
    if(ARG_TIMEOUT)
        set(limit ${ARG_TIMEOUT})
        set(cost ${ARG_TIMEOUT})
    endif()
    set_tests_properties(${name} PROPERTIES TIMEOUT ${limit} COST ${cost}
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8;XDG_CONFIG_HOME=${CMAKE_BINARY_DIR}/test_settings")
endfunction()
