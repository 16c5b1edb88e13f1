# SPDX-License-Identifier: Apache-2.0
# The libraries that we depend on; README gives the reason for each.

find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
find_package(Boost 1.74 REQUIRED)
find_package(spdlog REQUIRED)
find_package(prometheus-cpp CONFIG REQUIRED)
find_package(nlohmann_json REQUIRED)
pkg_check_modules(GLIB REQUIRED IMPORTED_TARGET glib-2.0)
pkg_check_modules(GMIME REQUIRED IMPORTED_TARGET gmime-3.0)
pkg_check_modules(LIBARCHIVE REQUIRED IMPORTED_TARGET libarchive)
pkg_check_modules(LIBLZMA REQUIRED IMPORTED_TARGET liblzma)
pkg_check_modules(LIBPSL REQUIRED IMPORTED_TARGET libpsl)
pkg_check_modules(SYSTEMD REQUIRED IMPORTED_TARGET libsystemd)
pkg_check_modules(RE2 REQUIRED IMPORTED_TARGET re2)

# tomlplusplus ships no imported target in every release; its header is all there is.
find_path(TOMLPLUSPLUS_INCLUDE_DIR toml++/toml.h REQUIRED)

# The pkg-config file of libunbound asks for libevent's development files, which we do not need.
find_path(UNBOUND_INCLUDE_DIR unbound.h REQUIRED)
find_library(UNBOUND_LIBRARY unbound REQUIRED)
add_library(qv_unbound INTERFACE)
target_include_directories(qv_unbound SYSTEM INTERFACE "${UNBOUND_INCLUDE_DIR}")
target_link_libraries(qv_unbound INTERFACE "${UNBOUND_LIBRARY}")

# Debian's own Python, whatever else is on the PATH: its packages are for that one.
set(Python3_EXECUTABLE /usr/bin/python3 CACHE FILEPATH "The Python that the module is for")
find_package(Python3 3.11 REQUIRED COMPONENTS Interpreter Development.Module)
# Only the headers of pybind11: its own CMake functions bring flags that are not ours.
find_path(PYBIND11_INCLUDE_DIR pybind11/pybind11.h REQUIRED)
add_library(qv_pybind11 INTERFACE)
target_include_directories(qv_pybind11 SYSTEM INTERFACE "${PYBIND11_INCLUDE_DIR}")

find_program(LOWDOWN_PROGRAM lowdown REQUIRED)

# libmilter brings neither a CMake package nor a pkg-config file.
find_path(LIBMILTER_INCLUDE_DIR libmilter/mfapi.h REQUIRED)
find_library(LIBMILTER_LIBRARY milter REQUIRED)
add_library(qv_libmilter INTERFACE)
target_include_directories(qv_libmilter SYSTEM INTERFACE "${LIBMILTER_INCLUDE_DIR}")
target_link_libraries(qv_libmilter INTERFACE "${LIBMILTER_LIBRARY}")

if(QV_BUILD_TESTS)
    find_package(GTest REQUIRED)
    find_package(rapidcheck REQUIRED)
endif()
