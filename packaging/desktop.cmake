# SPDX-License-Identifier: MIT
# What makes the window a program of the desktop: entry, icons, activation by name, description.
set(id org.tessaly.tessaly)
set(shared ${CMAKE_INSTALL_DATADIR})

configure_file(${id}.service.in ${id}.service @ONLY)
install(FILES ${id}.desktop DESTINATION ${shared}/applications)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${id}.service DESTINATION ${shared}/dbus-1/services)
install(FILES ${id}.metainfo.xml DESTINATION ${shared}/metainfo)
install(FILES icons/${id}.svg DESTINATION ${shared}/icons/hicolor/scalable/apps)
install(FILES icons/${id}-symbolic.svg DESTINATION ${shared}/icons/hicolor/symbolic/apps)

find_package(Qt6 6.4 REQUIRED COMPONENTS Gui Svg)
add_executable(render_icon render_icon.cpp)
target_link_libraries(render_icon PRIVATE Qt6::Gui Qt6::Svg tessaly_flags)
set(drawn)
foreach(size IN ITEMS 16 24 32 48 64 128 256 512)
    set(png ${CMAKE_CURRENT_BINARY_DIR}/icons/${size}/${id}.png)
    add_custom_command(
        OUTPUT ${png}
        COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_CURRENT_BINARY_DIR}/icons/${size}
        COMMAND render_icon ${CMAKE_CURRENT_SOURCE_DIR}/icons/${id}.svg ${size} ${png}
        DEPENDS render_icon icons/${id}.svg
        VERBATIM)
    list(APPEND drawn ${png})
    install(FILES ${png} DESTINATION ${shared}/icons/hicolor/${size}x${size}/apps)
endforeach()
add_custom_target(icons ALL DEPENDS ${drawn})

# tessaly_validated(NAME PROGRAM ARGUMENT...): a check, where its program is installed.
function(tessaly_validated name program)
    find_program(validator_${program} ${program})
    if(TESSALY_TESTS AND validator_${program})
        add_test(NAME ${name} COMMAND ${validator_${program}} ${ARGN}
                 WORKING_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR})
        set_tests_properties(${name} PROPERTIES LABELS check TIMEOUT 120)
    endif()
endfunction()

tessaly_validated(desktop_entry desktop-file-validate ${id}.desktop)
tessaly_validated(metainfo appstreamcli validate --no-net ${id}.metainfo.xml)
