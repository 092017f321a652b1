# SPDX-License-Identifier: GPL-3.0-or-later
# Warnings are errors in the preset "debug" alone (CMAKE_COMPILE_WARNING_AS_ERROR), which the checks
# compile too: another compiler has others, and they must not keep a user from building. Sanitizers,
# fuzzing and coverage are switches for the whole tree.
add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion
    -Wnon-virtual-dtor -Woverloaded-virtual)
add_compile_definitions(QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_NO_NARROWING_CONVERSIONS_IN_CONNECT)

if(M47_SANITIZE)
    add_compile_definitions(M47_SANITIZED)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all
        -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
endif()

# The sanitizers see to it that a fault of a parser shows; the fuzzer that it is reached. For many
# inputs the address sanitizer and the tracing of comparisons are too slow: the checks of the
# libraries stand in for the one, the inputs found with the other are run on, and what the fuzzer
# keeps is run with both afterwards.
if(M47_FUZZ)
    if(M47_FUZZ_MANY)
        set(sanitizers undefined)
        add_compile_options(-fno-sanitize-coverage=trace-cmp)
        add_compile_definitions(_GLIBCXX_ASSERTIONS QT_FORCE_ASSERTS)
    else()
        set(sanitizers address,undefined)
    endif()
    add_compile_options(-fsanitize=fuzzer-no-link,${sanitizers} -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${sanitizers})
endif()

if(M47_COVERAGE)
    add_compile_options(--coverage -fprofile-update=atomic)
    add_link_options(--coverage)
endif()
