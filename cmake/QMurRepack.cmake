# Archives hold their files in the order in which a directory gave them out, and who packed them. They are packed once
# more: in the order of names, and as nobody's.
foreach(archive IN LISTS CPACK_PACKAGE_FILES)
  if(NOT archive MATCHES "\\.(tar\\.gz|zip)$")
    continue()
  endif()
  set(unpacked "${CPACK_TEMPORARY_DIRECTORY}-unpacked")
  file(REMOVE_RECURSE "${unpacked}")
  file(ARCHIVE_EXTRACT INPUT "${archive}" DESTINATION "${unpacked}")
  file(REMOVE "${archive}")
  if(archive MATCHES "zip$")
    file(GLOB_RECURSE files LIST_DIRECTORIES false RELATIVE "${unpacked}" "${unpacked}/*")
    list(SORT files)
    list(JOIN files "\n" files)
    file(WRITE "${unpacked}.txt" "${files}\n")
    set(command "${CMAKE_COMMAND}" -E tar cf "${archive}" --format=zip "--files-from=${unpacked}.txt")
  else()
    set(command tar --create "--file=${archive}" "--use-compress-program=gzip -9n" --sort=name --format=gnu
      "--mtime=@$ENV{SOURCE_DATE_EPOCH}" --owner=0 --group=0 --numeric-owner --mode=a=rX,u+w
      ${CPACK_PACKAGE_FILE_NAME})
  endif()
  execute_process(COMMAND ${command} WORKING_DIRECTORY "${unpacked}" COMMAND_ERROR_IS_FATAL ANY)
  file(REMOVE_RECURSE "${unpacked}" "${unpacked}.txt")
endforeach()
