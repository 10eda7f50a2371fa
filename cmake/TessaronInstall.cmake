# The files that `cmake --install` installs.
include(CMakePackageConfigHelpers)

# The domain .invalid never exists (RFC 2606, section 2): whoever publishes packages names an address.
set(TESSARON_CONTACT "The Tessaron developers <developers@tessaron.invalid>"
    CACHE STRING "Name and address of those who answer for the packages")
set(cmakeFiles ${CMAKE_INSTALL_DATAROOTDIR}/cmake/Tessaron)

install(TARGETS CmdTessaron tessaron EXPORT TessaronProgram RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES CHANGELOG.md docs/CmdTessaronManual.txt docs/manifest.schema.json
              docs/performance.md docs/growth.svg docs/third-party.md
        DESTINATION ${documents})
install(DIRECTORY examples DESTINATION ${documents} PATTERN build EXCLUDE)
install(DIRECTORY recipes/ DESTINATION ${recipes})
install(DIRECTORY editors DESTINATION ${support} PATTERN node_modules EXCLUDE)
if(WIN32)
  # In bin, the self-test finds the folder for its files.
  install(FILES packaging/sample-files.txt DESTINATION KvTessaron/__sample_files RENAME README.txt)
else()
  include(TessaronUnixFiles)
endif()
include(TessaronBook)
include(TessaronLicences)

# The files for find_package(Tessaron). The program runs on the host, so a project that is compiled
# for a target with another pointer size may use it as well: ARCH_INDEPENDENT.
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/TessaronConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion ARCH_INDEPENDENT)
install(FILES cmake/TessaronConfig.cmake cmake/TessaronRunScript.cmake
              cmake/TessaronRunStep.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/TessaronConfigVersion.cmake
        DESTINATION ${cmakeFiles})
install(EXPORT TessaronProgram NAMESPACE Tessaron:: DESTINATION ${cmakeFiles})
