# Run by CPack before it makes a package: every user can read the files, whatever the umask of the
# user who makes it. With SOURCE_DATE_EPOCH, the files get that time.
file(GLOB_RECURSE entries LIST_DIRECTORIES true ${CPACK_TEMPORARY_DIRECTORY}/*)
foreach(entry IN LISTS entries)
  if(IS_DIRECTORY ${entry})
    file(CHMOD ${entry} DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE
         GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
  endif()
endforeach()
if(DEFINED ENV{SOURCE_DATE_EPOCH})
  execute_process(COMMAND touch --no-dereference --date=@$ENV{SOURCE_DATE_EPOCH} ${entries}
                  COMMAND_ERROR_IS_FATAL ANY)
endif()
