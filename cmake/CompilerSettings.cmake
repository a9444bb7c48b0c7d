# Language level, warnings and sanitizers of every target of ours.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
# Every header compiles alone: the target all_verify_interface_header_sets proves it.
set(CMAKE_VERIFY_INTERFACE_HEADER_SETS ON)

if(NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE RelWithDebInfo)
endif()
# -O2 with line tables: what users run can also be debugged and sampled.
set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O2 -g1")

find_program(CCACHE ccache)
if(CCACHE)
    # What it asks for before it keeps what was compiled with precompiled headers.
    set(CMAKE_CXX_COMPILER_LAUNCHER
        "${CMAKE_COMMAND}" -E env CCACHE_SLOPPINESS=pch_defines,time_macros "${CCACHE}")
endif()

# Settings for a target of ours: tessarine_settings(target [CONVERSIONS] [TEST])
# TEST is for programs that try ours: they are compiled often and run briefly, so they aren't
# optimised, and undefined behaviour is looked for in what they try, not in themselves.
function(tessarine_settings target)
    target_compile_options(${target} PRIVATE
        -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual
        # A record made with designated initializers leaves the rest to their defaults on purpose.
        -Wno-missing-field-initializers
        # GCC 12 sees overlaps and overruns where a string is put together (its bug 105651).
        $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
        $<$<CXX_COMPILER_ID:GNU>:-Wno-array-bounds>
        # The stall watch samples the main thread by walking frame pointers.
        -fno-omit-frame-pointer)
    if("CONVERSIONS" IN_LIST ARGN)
        target_compile_options(${target} PRIVATE -Wconversion -Wsign-conversion)
    endif()
    if(TESSARINE_WARNINGS_AS_ERRORS)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
    set(sanitizers address,undefined)
    if("TEST" IN_LIST ARGN)
        set(sanitizers address)
        target_compile_options(${target} PRIVATE -O0)
        if(TESSARINE_PRECOMPILED_HEADERS)
            target_precompile_headers(${target} PRIVATE <gmock/gmock.h> <gtest/gtest.h>)
            target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess>)
        endif()
    endif()
    if(TESSARINE_SANITIZE)
        target_compile_options(${target} PRIVATE -g1 -fsanitize=${sanitizers} -fno-sanitize-recover=all)
        target_link_options(${target} PRIVATE -fsanitize=address,undefined)
    endif()
endfunction()
