# SPDX-License-Identifier: Apache-2.0
# The programs of examples/dask, and the code of pages. They do not change with the sanitizers that the
# module is built with.
if(QV_SANITIZE OR QV_COVERAGE)
    return()
endif()
qv_python_test(python_dask_agreement dask_agreement_test.py)
qv_python_test(python_dask_death dask_death_test.py)
qv_python_test(python_dask_page dask_page_test.py)
qv_python_test(python_pages page_test.py)
add_test(NAME python_dask_types
         COMMAND "${Python3_EXECUTABLE}" -m mypy --cache-dir=/dev/null
                 --config-file "${CMAKE_CURRENT_LIST_DIR}/dask_mypy.ini" .
         WORKING_DIRECTORY "${PROJECT_SOURCE_DIR}/examples/dask")
set_tests_properties(python_dask_types PROPERTIES TIMEOUT 600 ENVIRONMENT "${environment}")
