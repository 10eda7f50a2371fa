# The files that `cmake --install` installs, and the packages that CPack builds from them.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(package cmdtessaron)
set(documents ${CMAKE_INSTALL_DATAROOTDIR}/doc/${package})
set(cmakeFiles ${CMAKE_INSTALL_DATAROOTDIR}/cmake/Tessaron)

install(TARGETS CmdTessaron tessaron EXPORT TessaronProgram RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES docs/CmdTessaronManual.txt DESTINATION ${documents})
install(FILES docs/CmdTessaron.1 docs/tessaron.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES CHANGELOG.md docs/cmake.md DESTINATION ${documents})
install(DIRECTORY examples DESTINATION ${documents} PATTERN build EXCLUDE)
install(DIRECTORY editors DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/${package}
        PATTERN node_modules EXCLUDE)
install(FILES completions/tessaron.bash RENAME tessaron
        DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/bash-completion/completions)
install(FILES completions/tessaron.fish
        DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/fish/vendor_completions.d)
# Under /usr, the zsh of Debian searches only the second of these folders.
foreach(folder site-functions vendor-completions)
  install(FILES completions/_tessaron DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/zsh/${folder})
endforeach()

# The files for find_package(Tessaron). The program runs on the host, so a project that is compiled
# for a target with another pointer size may use it as well: ARCH_INDEPENDENT.
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/TessaronConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion ARCH_INDEPENDENT)
install(FILES cmake/TessaronConfig.cmake cmake/TessaronRunScript.cmake
              cmake/TessaronRunStep.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/TessaronConfigVersion.cmake
        DESTINATION ${cmakeFiles})
install(EXPORT TessaronProgram NAMESPACE Tessaron:: DESTINATION ${cmakeFiles})

set(CPACK_PACKAGE_NAME ${package})
set(CPACK_PACKAGE_VENDOR "Tessaron")
set(CPACK_PACKAGE_CONTACT "The Tessaron developers")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
string(TOLOWER ${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR} CPACK_SYSTEM_NAME)
set(CPACK_GENERATOR DEB TGZ)
set(CPACK_STRIP_FILES ON)
# Every user can read the installed files, whatever the umask of the user who builds the package.
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
    "Loads Intel HEX, S-record and raw files into memory images, lays fillers,
writes values, CRCs and hashes into chosen areas, and writes the images out again.")
# The static program has no dependencies. Those of the shared one follow from its libraries.
if(NOT TESSARON_STATIC)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
endif()
include(CPack)
