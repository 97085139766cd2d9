# SPDX-License-Identifier: MIT
# One static library per folder of src/, one test binary per folder of tests/.

add_library(tessaly_flags INTERFACE)
target_compile_options(tessaly_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual
    $<$<BOOL:${TESSALY_WERROR}>:-Werror>)
# Some libraries ask for it; what is precompiled for all must be for all alike.
target_compile_options(tessaly_flags INTERFACE -pthread)
# What is inlined from precompiled headers no longer counts as the system's, and g++ 12 warns of string
# operations that are right. The release build, whose preset precompiles nothing, is told if they are not.
if(TESSALY_PCH AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(tessaly_flags INTERFACE
        -Wno-array-bounds -Wno-restrict -Wno-stringop-overflow -Wno-stringop-overread)
endif()
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    target_compile_options(tessaly_flags INTERFACE -Wthread-safety)
endif()

# Where files of a folder are compiled as one, the file-wide names of one are shadowed by the locals of
# another, and g++ 12 takes what is private to a file for a part of a header.
if(NOT TESSALY_UNITY)
    target_compile_options(tessaly_flags INTERFACE -Wshadow)
elseif(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(tessaly_flags INTERFACE -Wshadow=local -Wno-subobject-linkage)
endif()

# What nearly every file includes, read by the compiler once. Files still include what they use: a
# build without TESSALY_PCH and TESSALY_UNITY shows when one does not.
function(tessaly_precompiled_headers name)
    if(TESSALY_PCH)
        file(WRITE ${CMAKE_BINARY_DIR}/${name}.cpp "")
        add_library(tessaly_${name} STATIC ${CMAKE_BINARY_DIR}/${name}.cpp)
        target_precompile_headers(tessaly_${name} PRIVATE <algorithm> <atomic> <chrono> <cstdint>
            <functional> <map> <memory> <mutex> <optional> <set> <span> <string> <string_view>
            <unordered_map> <utility> <variant> <vector>)
        target_link_libraries(tessaly_${name} PRIVATE ${ARGN} tessaly_flags)
    endif()
endfunction()
function(tessaly_precompile target name)
    if(TESSALY_PCH)
        target_precompile_headers(${target} REUSE_FROM tessaly_${name})
    endif()
endfunction()
tessaly_precompiled_headers(precompiled)

# Most of what a file of a few pages costs is its headers and what it instantiates of them: with
# TESSALY_UNITY some files of a folder are compiled as one. Any may meet any other there, so names in
# anonymous namespaces are unlike each other throughout a folder.
function(tessaly_unite target)
    if(TESSALY_UNITY)
        set_target_properties(${target} PROPERTIES UNITY_BUILD ON)
        if(NOT DEFINED CMAKE_UNITY_BUILD_BATCH_SIZE)
            # More make the build shorter still, but leave cores idle.
            set_target_properties(${target} PROPERTIES UNITY_BUILD_BATCH_SIZE 16)
        endif()
    endif()
endfunction()

# tessaly_module(NAME [DEPENDS modules of ours] [LINKS libraries of others])
# Every .cpp of the folder belongs to the module. A folder of headers alone becomes an interface.
function(tessaly_module name)
    cmake_parse_arguments(ARG "" "" "DEPENDS;LINKS" ${ARGN})
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
    list(TRANSFORM ARG_DEPENDS PREPEND tessaly_)
    if(sources)
        add_library(tessaly_${name} STATIC ${sources})
        target_include_directories(tessaly_${name} PUBLIC ${CMAKE_SOURCE_DIR}/src)
        target_link_libraries(tessaly_${name} PUBLIC ${ARG_DEPENDS} PRIVATE ${ARG_LINKS} tessaly_flags)
        tessaly_precompile(tessaly_${name} precompiled)
        tessaly_unite(tessaly_${name})
    else()
        add_library(tessaly_${name} INTERFACE)
        target_include_directories(tessaly_${name} INTERFACE ${CMAKE_SOURCE_DIR}/src)
        target_link_libraries(tessaly_${name} INTERFACE ${ARG_DEPENDS})
    endif()
endfunction()

# tessaly_test(NAME modules...): the binary test_NAME of every .cpp of tests/NAME. Compiled without
# optimisation unless NAME is among `optimised_tests`.
function(tessaly_test name)
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${name}/*.cpp)
    if(NOT sources)
        return()
    endif()
    list(TRANSFORM ARGN PREPEND tessaly_ OUTPUT_VARIABLE modules)
    add_executable(test_${name} ${sources})
    target_include_directories(test_${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
    target_link_libraries(test_${name} PRIVATE tessaly_test_main ${modules} tessaly_flags)
    if(name IN_LIST optimised_tests)
        tessaly_precompile(test_${name} precompiled)
    else()
        target_link_libraries(test_${name} PRIVATE tessaly_unoptimised)
        tessaly_precompile(test_${name} precompiled_tests)
    endif()
    add_test(NAME ${name} COMMAND test_${name})
    set_tests_properties(${name} PROPERTIES TIMEOUT 600 LABELS unit)
endfunction()
