# Fails unless all of FILES stand below PREFIX.
foreach(file IN LISTS FILES)
  if(NOT EXISTS "${PREFIX}/${file}")
    message(SEND_ERROR "not installed: ${file}")
  endif()
endforeach()
