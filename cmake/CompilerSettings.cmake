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
    set(CMAKE_CXX_COMPILER_LAUNCHER "${CCACHE}")
endif()

# Settings for a target of ours: tessarine_settings(target [CONVERSIONS])
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
    if(TESSARINE_SANITIZE)
        target_compile_options(${target} PRIVATE -fsanitize=address,undefined -fno-sanitize-recover=all)
        target_link_options(${target} PRIVATE -fsanitize=address,undefined)
    endif()
endfunction()
