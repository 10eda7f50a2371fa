# Run by CPack before it makes a package: with SOURCE_DATE_EPOCH, every file gets that time.
if(DEFINED ENV{SOURCE_DATE_EPOCH})
  file(GLOB_RECURSE entries LIST_DIRECTORIES true ${CPACK_TEMPORARY_DIRECTORY}/*)
  execute_process(COMMAND touch --no-dereference --date=@$ENV{SOURCE_DATE_EPOCH}
                          ${CPACK_TEMPORARY_DIRECTORY} ${entries}
                  COMMAND_ERROR_IS_FATAL ANY)
endif()
