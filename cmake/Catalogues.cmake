# SPDX-License-Identifier: MIT
# Compiles po/LANGUAGE.po to share/locale beside bin/, where the programs look for it
# in the build tree just as when installed.

function(tessaly_catalogues)
    foreach(language IN LISTS ARGN)
        set(folder ${CMAKE_BINARY_DIR}/share/locale/${language}/LC_MESSAGES)
        add_custom_command(
            OUTPUT ${folder}/tessaly.mo
            COMMAND ${CMAKE_COMMAND} -E make_directory ${folder}
            COMMAND ${GETTEXT_MSGFMT_EXECUTABLE} --check-format --check-domain -o ${folder}/tessaly.mo
                    ${CMAKE_CURRENT_SOURCE_DIR}/${language}.po
            DEPENDS ${language}.po)
        list(APPEND outputs ${folder}/tessaly.mo)
        install(FILES ${folder}/tessaly.mo DESTINATION share/locale/${language}/LC_MESSAGES)
    endforeach()
    add_custom_target(catalogues ALL DEPENDS ${outputs})
endfunction()
