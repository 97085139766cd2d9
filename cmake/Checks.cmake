# SPDX-License-Identifier: MIT
# What is checked beside the behaviour of the programs. Each check is a test with the label "check",
# so that sanitizer runs can leave it out.

# tessaly_check(NAME command...)
function(tessaly_check name)
    add_test(NAME ${name} COMMAND ${ARGN} WORKING_DIRECTORY ${CMAKE_SOURCE_DIR})
    set_tests_properties(${name} PROPERTIES LABELS check TIMEOUT 120)
endfunction()

tessaly_check(arrows ${CMAKE_SOURCE_DIR}/tools/check_includes.py)
tessaly_check(arrows_self_test ${CMAKE_SOURCE_DIR}/tools/check_includes.py --self-test)
tessaly_check(words ${CMAKE_SOURCE_DIR}/tools/check_words.py)
tessaly_check(words_self_test ${CMAKE_SOURCE_DIR}/tools/check_words.py --self-test)
tessaly_check(catalogue ${CMAKE_SOURCE_DIR}/tools/catalogue.py check)
tessaly_check(catalogue_self_test ${CMAKE_SOURCE_DIR}/tools/catalogue.py --self-test)
tessaly_check(format ${CMAKE_SOURCE_DIR}/tools/check_format.sh)
tessaly_check(scripts ${CMAKE_SOURCE_DIR}/tools/check_scripts.sh)
