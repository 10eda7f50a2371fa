# The packages that CPack makes. With SOURCE_DATE_EPOCH set, two packages of one build are equal.
set(CPACK_PACKAGE_NAME ${TESSARON_PACKAGE})
set(CPACK_PACKAGE_VENDOR "Tessaron")
set(CPACK_PACKAGE_CONTACT "${TESSARON_CONTACT}")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
string(TOLOWER ${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR} CPACK_SYSTEM_NAME)
set(CPACK_STRIP_FILES ON)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/PackageFiles.cmake)

if(WIN32)
  set(CPACK_GENERATOR ZIP NSIS)
  # makensis makes an installer of 32 bits unless an option says otherwise.
  set(CPACK_NSIS_EXECUTABLE ${PROJECT_SOURCE_DIR}/packaging/makensis-amd64.sh)
  set(CPACK_NSIS_INSTALL_ROOT "$PROGRAMFILES64")
  set(CPACK_PACKAGE_INSTALL_DIRECTORY Tessaron)
  set(CPACK_PACKAGE_INSTALL_REGISTRY_KEY Tessaron)
  set(CPACK_NSIS_PACKAGE_NAME Tessaron)
  set(CPACK_NSIS_DISPLAY_NAME "Tessaron ${PROJECT_VERSION}")
  set(CPACK_NSIS_CONTACT "${TESSARON_CONTACT}")
else()
  set(CPACK_GENERATOR DEB TGZ)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_SECTION devel)
  set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
      "Loads Intel HEX, S-record, ELF, UF2, TI-TXT and raw files into images, fills
gaps, writes values, CRCs and hashes into chosen areas, and writes the images
out again.")
  if(CMAKE_CROSSCOMPILING AND CMAKE_SYSTEM_PROCESSOR STREQUAL aarch64)
    set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE arm64)
  endif()
  # The static program has no dependencies. Those of the shared one follow from its libraries.
  if(NOT TESSARON_STATIC)
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  endif()
endif()
include(CPack)
