# What `cmake --install` puts where.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(package cmdtessaron)
set(documents ${CMAKE_INSTALL_DATAROOTDIR}/doc/${package})
set(cmakeFiles ${CMAKE_INSTALL_DATAROOTDIR}/cmake/Tessaron)

install(TARGETS CmdTessaron EXPORT TessaronProgram RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES docs/CmdTessaronManual.txt DESTINATION ${documents} OPTIONAL)
install(FILES docs/CmdTessaron.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 OPTIONAL)
install(FILES CHANGELOG.md docs/cmake.md DESTINATION ${documents})
install(DIRECTORY examples DESTINATION ${documents} PATTERN build EXCLUDE)
install(DIRECTORY editors DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/${package} OPTIONAL
        PATTERN node_modules EXCLUDE)

# find_package(Tessaron). The program runs where the build runs, whatever that builds for, so a
# project for a processor of another width may use it as well.
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/TessaronConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion ARCH_INDEPENDENT)
install(FILES cmake/TessaronConfig.cmake cmake/TessaronRunScript.cmake
              cmake/TessaronExecuteScript.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/TessaronConfigVersion.cmake
        DESTINATION ${cmakeFiles})
install(EXPORT TessaronProgram NAMESPACE Tessaron:: DESTINATION ${cmakeFiles})
