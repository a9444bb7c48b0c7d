# The code that speaks Wayland's protocols, made from their descriptions: one C library.
find_program(WAYLAND_SCANNER wayland-scanner REQUIRED)
pkg_get_variable(WAYLAND_PROTOCOLS wayland-protocols pkgdatadir)

# Debian ships the descriptions of wlroots with a library of another language, in a folder that is
# named after its version.
file(GLOB wlrootsPlaces
    /usr/share/wlr-protocols/unstable
    /usr/share/cargo/registry/wayland-protocols-wlr-*/wlr-protocols/unstable
    /usr/share/cargo/registry/wayland-protocols-*/wlr-protocols/unstable)

# A description is looked for in our own folder, in wlroots' and in those of wayland-protocols.
function(tessarine_wayland_description variable name)
    string(REGEX REPLACE "-(unstable-)?v[0-9]+$" "" family "${name}")
    find_file(description_${name} "${name}.xml" NO_CACHE NO_DEFAULT_PATH REQUIRED PATHS
        "${PROJECT_SOURCE_DIR}/launcherapp/platform/linux/wayland/protocols"
        ${wlrootsPlaces}
        "${WAYLAND_PROTOCOLS}/stable/${family}"
        "${WAYLAND_PROTOCOLS}/staging/${family}"
        "${WAYLAND_PROTOCOLS}/unstable/${family}")
    set(${variable} "${description_${name}}" PARENT_SCOPE)
endfunction()

# tessarine_wayland_protocols(target NAME...): what a program speaks them with.
function(tessarine_wayland_protocols target)
    set(made "${CMAKE_CURRENT_BINARY_DIR}/${target}")
    file(MAKE_DIRECTORY "${made}")
    foreach(name IN LISTS ARGN)
        tessarine_wayland_description(description "${name}")
        add_custom_command(
            OUTPUT "${made}/${name}.h" "${made}/${name}.c"
            COMMAND "${WAYLAND_SCANNER}" client-header "${description}" "${made}/${name}.h"
            COMMAND "${WAYLAND_SCANNER}" private-code "${description}" "${made}/${name}.c"
            DEPENDS "${description}" COMMENT "Describing ${name}" VERBATIM)
        list(APPEND sources "${made}/${name}.c" "${made}/${name}.h")
    endforeach()
    add_library(${target} STATIC ${sources})
    target_include_directories(${target} SYSTEM PUBLIC "${made}")
    target_link_libraries(${target} PUBLIC PkgConfig::WAYLAND)
endfunction()

# tessarine_wayland_server_headers(target NAME...): what a compositor answers them with, as far as
# it is not in the code above. "NAME-server.h" each.
function(tessarine_wayland_server_headers target)
    set(made "${CMAKE_CURRENT_BINARY_DIR}/${target}")
    file(MAKE_DIRECTORY "${made}")
    foreach(name IN LISTS ARGN)
        tessarine_wayland_description(description "${name}")
        add_custom_command(
            OUTPUT "${made}/${name}-server.h"
            COMMAND "${WAYLAND_SCANNER}" server-header "${description}" "${made}/${name}-server.h"
            DEPENDS "${description}" COMMENT "Describing ${name} for a server" VERBATIM)
        list(APPEND headers "${made}/${name}-server.h")
    endforeach()
    add_library(${target} INTERFACE ${headers})
    target_include_directories(${target} SYSTEM INTERFACE "${made}")
    target_link_libraries(${target} INTERFACE PkgConfig::WAYLAND_SERVER)
endfunction()
