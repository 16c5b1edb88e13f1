# SPDX-License-Identifier: Apache-2.0
# How everything here is compiled, and how rooms see one another.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
include(CheckPIESupported)
check_pie_supported() # programs are linked so that they can be loaded anywhere
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")
# Relative, so that the place of a build leaves no trace in what it makes.
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
set(CMAKE_INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")

# Linked by every target: warnings, hardening, sanitizers, coverage.
add_library(qv_options INTERFACE)
target_compile_options(qv_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # GCC 12 sees overlapping copies in std::string's own operator+ (GCC bug 105651).
    target_compile_options(qv_options INTERFACE -Wno-restrict)
    if(QV_SANITIZE)
        # It takes members of std::regex for uninitialised in instrumented code; plain builds look for the others.
        target_compile_options(qv_options INTERFACE -Wno-maybe-uninitialized)
    endif()
endif()
target_compile_features(qv_options INTERFACE cxx_std_20)
# What Debian hardens its packages with, and more checks of the standard library. Sanitizers find the
# same faults by other means.
if(NOT QV_SANITIZE AND NOT QV_FUZZ)
    target_compile_options(qv_options INTERFACE -fstack-protector-strong -fstack-clash-protection
                           -fcf-protection -Wformat -Werror=format-security)
    # The checks of the C library's calls need an optimiser, which a debugger does without.
    target_compile_options(qv_options INTERFACE
                           "$<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
    target_compile_definitions(qv_options INTERFACE _GLIBCXX_ASSERTIONS)
    target_link_options(qv_options INTERFACE -Wl,-z,relro,-z,now)
endif()
if(QV_SANITIZE)
    target_compile_options(qv_options INTERFACE -fsanitize=${QV_SANITIZE}
                           -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(qv_options INTERFACE -fsanitize=${QV_SANITIZE})
endif()
if(QV_FUZZ)
    target_compile_options(qv_options INTERFACE -fsanitize=fuzzer-no-link)
    target_link_options(qv_options INTERFACE -fsanitize=fuzzer-no-link)
endif()
# The fuzzers' counts of clang's, which fuzz/coverage.py reads.
if(QV_COVERAGE AND QV_FUZZ)
    target_compile_options(qv_options INTERFACE -fprofile-instr-generate -fcoverage-mapping)
    target_link_options(qv_options INTERFACE -fprofile-instr-generate -fcoverage-mapping)
elseif(QV_COVERAGE)
    target_link_options(qv_options INTERFACE --coverage)
endif()

# qv_counted_rooms(FOLDER...): adds folders of which QV_COVERAGE counts the lines with gcov.
function(qv_counted_rooms)
    get_property(usual DIRECTORY PROPERTY COMPILE_OPTIONS)
    if(QV_COVERAGE AND NOT QV_FUZZ)
        add_compile_options(--coverage -fprofile-update=atomic) # threads count the same lines
    endif()
    foreach(folder ${ARGN})
        add_subdirectory(${folder})
    endforeach()
    set_property(DIRECTORY PROPERTY COMPILE_OPTIONS "${usual}")
endfunction()

# qv_room(NAME DEPENDS ROOM...)
# Declares the headers of the current folder as room NAME, a target qv_room_<name with _>. A header
# is included as "NAME/Header.h", and only by targets that link the room or a room above it: each
# room has an include directory of its own that holds nothing but a link to the folder. So a layer
# that reaches upwards does not compile.
function(qv_room name)
    cmake_parse_arguments(ROOM "" "" "DEPENDS" ${ARGN})
    string(REPLACE "/" "_" flat "${name}")
    set(view "${CMAKE_BINARY_DIR}/rooms/${flat}")
    get_filename_component(parent "${view}/${name}" DIRECTORY)
    file(MAKE_DIRECTORY "${parent}")
    file(CREATE_LINK "${CMAKE_CURRENT_SOURCE_DIR}" "${view}/${name}" SYMBOLIC)
    add_library(qv_room_${flat} INTERFACE)
    target_include_directories(qv_room_${flat} INTERFACE "$<BUILD_INTERFACE:${view}>")
    foreach(room ${ROOM_DEPENDS})
        string(REPLACE "/" "_" room "${room}")
        target_link_libraries(qv_room_${flat} INTERFACE qv_room_${room})
    endforeach()
endfunction()

# The public headers of include/ are included by their bare name, as hosts do.
add_library(qv_public_headers INTERFACE)
target_include_directories(qv_public_headers
                           INTERFACE "$<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/include>")

# In force while a test runs, for the programs that it starts too.
set(QV_TEST_ENVIRONMENT "TSAN_OPTIONS=suppressions=${CMAKE_CURRENT_SOURCE_DIR}/tests/tsan.supp")

# qv_test(NAME [SKIP_TSAN] SOURCES FILE... LINK TARGET... [PROPERTIES NAME VALUE...]): one GoogleTest
# program for each room, with properties of the test. SKIP_TSAN: it is not about threads, so builds with
# ThreadSanitizer leave it out.
function(qv_test name)
    cmake_parse_arguments(TEST "SKIP_TSAN" "" "SOURCES;LINK;PROPERTIES" ${ARGN})
    add_executable(${name} ${TEST_SOURCES})
    target_link_libraries(${name} PRIVATE qv_options ${TEST_LINK} GTest::gmock_main)
    if(TEST_SKIP_TSAN AND QV_SANITIZE STREQUAL "thread")
        set_target_properties(${name} PROPERTIES EXCLUDE_FROM_ALL ON)
        return()
    endif()
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES TIMEOUT 600
        ENVIRONMENT "${QV_TEST_ENVIRONMENT}" ${TEST_PROPERTIES})
endfunction()

# qv_browser_test(NAME SCRIPT [ENVIRONMENT NAME=VALUE...]): a Python script that drives a real
# browser with tests/browser/browser.py. Pages do not change with the sanitizers that the programs
# are built with, and a browser is slow to start, so it runs in plain builds only.
function(qv_browser_test name script)
    cmake_parse_arguments(TEST "" "" "ENVIRONMENT" ${ARGN})
    if(QV_SANITIZE OR QV_COVERAGE)
        return()
    endif()
    # Debian's own Python: the module that drives the browser is a package of Debian's.
    add_test(NAME ${name} COMMAND /usr/bin/python3 -B "${CMAKE_CURRENT_SOURCE_DIR}/${script}")
    set_tests_properties(${name} PROPERTIES TIMEOUT 600 RESOURCE_LOCK browser
        ENVIRONMENT "PYTHONPATH=${PROJECT_SOURCE_DIR}/tests/browser;${TEST_ENVIRONMENT}")
endfunction()

# qv_embed_text(TARGET FILE file... HEADER header FUNCTION function)
# Links the bytes of text files, one after the other, into TARGET: the function, which the header
# declares below namespace Quorvane, returns them as a std::string_view.
function(qv_embed_text target)
    cmake_parse_arguments(TEXT "" "HEADER;FUNCTION" "FILE" ${ARGN})
    set(inputs "")
    foreach(file IN LISTS TEXT_FILE)
        get_filename_component(input "${file}" ABSOLUTE)
        list(APPEND inputs "${input}")
    endforeach()
    list(JOIN inputs "|" joined)
    string(MAKE_C_IDENTIFIER "${TEXT_FUNCTION}" name)
    set(output "${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp")
    set(script "${PROJECT_SOURCE_DIR}/cmake/QvEmbedText.cmake")
    add_custom_command(
        OUTPUT "${output}"
        COMMAND "${CMAKE_COMMAND}" -D "INPUTS=${joined}" -D "OUTPUT=${output}"
                -D "HEADER=${TEXT_HEADER}" -D "FUNCTION=${TEXT_FUNCTION}" -P "${script}"
        DEPENDS ${inputs} "${script}"
        VERBATIM)
    target_sources(${target} PRIVATE "${output}")
endfunction()
