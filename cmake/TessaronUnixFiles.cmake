# What only Unix has: man pages, completions of its shells, and what Debian wants in a package.
install(FILES completions/tessaron.bash RENAME tessaron
        DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/bash-completion/completions)
install(FILES completions/tessaron.fish
        DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/fish/vendor_completions.d)
# Under /usr, the zsh of Debian searches only the second of these folders.
foreach(folder site-functions vendor-completions)
  install(FILES completions/_tessaron DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/zsh/${folder})
endforeach()

# tessaron_install_compressed(file destination)
# Debian's policy (sections 12.1 and 12.7): man pages and the changelog by gzip -9, without the time.
find_program(TESSARON_GZIP gzip REQUIRED)
mark_as_advanced(TESSARON_GZIP)
function(tessaron_install_compressed file destination)
  cmake_path(GET file FILENAME name)
  set(folder ${PROJECT_BINARY_DIR}/compressed)
  set(compressed ${folder}/${name}.gz)
  add_custom_command(OUTPUT ${compressed}
                     COMMAND ${CMAKE_COMMAND} -E copy ${file} ${folder}/${name}
                     COMMAND ${TESSARON_GZIP} -9nf ${folder}/${name}
                     DEPENDS ${file} VERBATIM)
  set_property(GLOBAL APPEND PROPERTY TESSARON_COMPRESSED ${compressed})
  install(FILES ${compressed} DESTINATION ${destination})
endfunction()

file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/compressed)
foreach(page CmdTessaron tessaron)
  tessaron_install_compressed(${PROJECT_SOURCE_DIR}/docs/${page}.1 ${CMAKE_INSTALL_MANDIR}/man1)
endforeach()
string(TIMESTAMP TESSARON_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(packaging/changelog.in ${PROJECT_BINARY_DIR}/changelog @ONLY)
tessaron_install_compressed(${PROJECT_BINARY_DIR}/changelog ${documents})
get_property(compressed GLOBAL PROPERTY TESSARON_COMPRESSED)
add_custom_target(tessaron_compressed ALL DEPENDS ${compressed})

if(TESSARON_STATIC)
  install(FILES packaging/lintian-overrides RENAME ${TESSARON_PACKAGE}
          DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/lintian/overrides)
endif()
