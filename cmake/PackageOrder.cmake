# Run by CPack after it has made packages: their bytes no longer depend on the file system.
execute_process(COMMAND python3 ${CMAKE_CURRENT_LIST_DIR}/../packaging/repack.py
                        ${CPACK_PACKAGE_FILES}
                COMMAND_ERROR_IS_FATAL ANY)
