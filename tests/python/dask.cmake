# SPDX-License-Identifier: Apache-2.0
# The programs of examples/dask, and the page of the package. Processes that Python starts cannot load
# a module that is built with a sanitizer.
if(NOT QV_SANITIZE AND NOT QV_COVERAGE)
    set(daskPackages "${CMAKE_BINARY_DIR}/lib/python3/dist-packages")
    foreach(test agreement death)
        add_test(NAME python_dask_${test}
                 COMMAND /usr/bin/python3 -B "${CMAKE_CURRENT_LIST_DIR}/dask_${test}_test.py")
        set_tests_properties(python_dask_${test} PROPERTIES TIMEOUT 600
            ENVIRONMENT "PYTHONPATH=${daskPackages};PYTHONWARNINGS=ignore::DeprecationWarning;QV_PROGRAMS=${CMAKE_BINARY_DIR}/bin;QV_SOURCE=${PROJECT_SOURCE_DIR};${QV_TEST_ENVIRONMENT}")
    endforeach()
    add_test(NAME python_dask_types
             COMMAND /usr/bin/python3 -m mypy --cache-dir=/dev/null
                     --config-file "${CMAKE_CURRENT_LIST_DIR}/dask_mypy.ini" .
             WORKING_DIRECTORY "${PROJECT_SOURCE_DIR}/examples/dask")
    set_tests_properties(python_dask_types PROPERTIES TIMEOUT 600
        ENVIRONMENT "MYPYPATH=${daskPackages}")
endif()
