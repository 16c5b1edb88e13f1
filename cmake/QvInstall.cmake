# SPDX-License-Identifier: Apache-2.0
# What a host, an administrator and a reader get: libraries, public headers, CMake package,
# pkg-config file, programs, default rules, examples. Everything is found relative to itself, so an
# installed tree may be moved.
include(CMakePackageConfigHelpers)

set(packageDir "${CMAKE_INSTALL_LIBDIR}/cmake/QuorvaneDeepHeader")
set(headerDir "${CMAKE_INSTALL_INCLUDEDIR}/qvdeepheader")

# A library finds its companion beside itself, a program in the library folder.
set_target_properties(qvdeepheader qvplatform PROPERTIES INSTALL_RPATH "$ORIGIN")
set_target_properties(qvdeepheader PROPERTIES EXPORT_NAME DeepHeader)
set_target_properties(qvplatform PROPERTIES EXPORT_NAME Platform)

install(TARGETS qvdeepheader qvplatform
        EXPORT QuorvaneDeepHeaderTargets
        LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
        INCLUDES DESTINATION "${headerDir}")
install(EXPORT QuorvaneDeepHeaderTargets NAMESPACE Quorvane:: DESTINATION "${packageDir}")

# The public headers of include/ by their bare name, the rooms that they lean on below them.
install(DIRECTORY include/ DESTINATION "${headerDir}" FILES_MATCHING PATTERN "*.h")
foreach(room include2 platform)
    file(GLOB headers CONFIGURE_DEPENDS "${room}/*.h")
    install(FILES ${headers} DESTINATION "${headerDir}/${room}")
endforeach()

configure_package_config_file(cmake/QuorvaneDeepHeaderConfig.cmake.in
                              "${CMAKE_BINARY_DIR}/QuorvaneDeepHeaderConfig.cmake"
                              INSTALL_DESTINATION "${packageDir}")
write_basic_package_version_file("${CMAKE_BINARY_DIR}/QuorvaneDeepHeaderConfigVersion.cmake"
                                 COMPATIBILITY SameMajorVersion)
install(FILES "${CMAKE_BINARY_DIR}/QuorvaneDeepHeaderConfig.cmake"
              "${CMAKE_BINARY_DIR}/QuorvaneDeepHeaderConfigVersion.cmake"
        DESTINATION "${packageDir}")

file(RELATIVE_PATH prefixFromPc "/p/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/p")
configure_file(cmake/qvdeepheader.pc.in "${CMAKE_BINARY_DIR}/qvdeepheader.pc" @ONLY)
install(FILES "${CMAKE_BINARY_DIR}/qvdeepheader.pc"
        DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")

foreach(program qvscan qvrules qvmilter)
    if(TARGET ${program})
        install(TARGETS ${program} RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
    endif()
endforeach()

install(DIRECTORY "${CMAKE_BINARY_DIR}/share/qvdeepheader"
        DESTINATION "${CMAKE_INSTALL_DATADIR}" OPTIONAL)
install(DIRECTORY data/rules DESTINATION "${CMAKE_INSTALL_DATADIR}/qvdeepheader"
        FILES_MATCHING PATTERN "*.qvr")
install(DIRECTORY examples DESTINATION "${CMAKE_INSTALL_DATADIR}/qvdeepheader" OPTIONAL)
install(FILES README.md CHANGELOG.md DESTINATION "${CMAKE_INSTALL_DOCDIR}")
install(FILES LICENSES/Apache-2.0.txt DESTINATION "${CMAKE_INSTALL_DOCDIR}" RENAME LICENSE)
