# SPDX-License-Identifier: Apache-2.0
# What a host, an administrator and a reader get: libraries, public headers, CMake package, pkg-config
# file, programs, rules, patterns, an example of settings, a unit, documents. Everything but the unit
# finds the rest relative to itself, so an installed tree may be moved. The Python package and what is
# made of the option tables are installed where they are built (python/, apps/docgen/).
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

install(TARGETS qvscan qvrules qvmilter RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")

# The rules: as text with their cases, and the default rules as files that the programs find.
set(dataDir "${CMAKE_INSTALL_DATADIR}/qvdeepheader")
install(DIRECTORY "${CMAKE_BINARY_DIR}/share/qvdeepheader/root" DESTINATION "${dataDir}")
install(FILES "${CMAKE_BINARY_DIR}/share/qvdeepheader/rules/with-dns.qvr"
        DESTINATION "${dataDir}/rules")
install(DIRECTORY data/rules DESTINATION "${dataDir}"
        FILES_MATCHING PATTERN "*.qvr" PATTERN "cases/*.toml")
install(FILES data/with-dns/cases.toml DESTINATION "${dataDir}/rules/cases" RENAME with-dns.toml)

# What a site starts from: patterns, settings, the daemon's unit, the figures to watch, examples.
install(FILES data/dynamic-patterns.txt data/service/qvdeepheader.toml DESTINATION "${dataDir}")
install(CODE "
    set(programs \"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}\")
    configure_file(\"${CMAKE_SOURCE_DIR}/data/service/qvmilter.service.in\"
                   \"${CMAKE_BINARY_DIR}/qvmilter.service\" @ONLY)")
install(FILES "${CMAKE_BINARY_DIR}/qvmilter.service" DESTINATION lib/systemd/system)
install(DIRECTORY data/monitoring examples DESTINATION "${dataDir}")

install(FILES README.md CHANGELOG.md SECURITY.md DESTINATION "${CMAKE_INSTALL_DOCDIR}")
install(DIRECTORY docs DESTINATION "${CMAKE_INSTALL_DOCDIR}"
        FILES_MATCHING PATTERN "*.md" PATTERN "*.svg" PATTERN man EXCLUDE)
install(FILES LICENSES/Apache-2.0.txt DESTINATION "${CMAKE_INSTALL_DOCDIR}" RENAME LICENSE)
