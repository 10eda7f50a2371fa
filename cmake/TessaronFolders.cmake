# Where `cmake --install` puts what belongs to the programs, from the prefix.
include(GNUInstallDirs)

set(TESSARON_PACKAGE cmdtessaron)
if(WIN32)
  set(documents doc)
  set(support support)
else()
  set(documents ${CMAKE_INSTALL_DATAROOTDIR}/doc/${TESSARON_PACKAGE})
  set(support ${CMAKE_INSTALL_DATAROOTDIR}/${TESSARON_PACKAGE})
endif()
# Scripts for INCLUDE. The programs find them by both paths.
set(recipes ${support}/recipes)
cmake_path(ABSOLUTE_PATH recipes BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX}
           OUTPUT_VARIABLE TESSARON_RECIPES)
file(RELATIVE_PATH TESSARON_RECIPES_BESIDE_PROGRAM ${CMAKE_INSTALL_FULL_BINDIR} ${TESSARON_RECIPES})
