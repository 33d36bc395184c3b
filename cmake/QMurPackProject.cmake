# Read when packages are made. Times in them are that of the last commit, unless the environment names another, so that
# the same sources give the same bytes.

if(NOT DEFINED ENV{SOURCE_DATE_EPOCH})
  execute_process(COMMAND git -c safe.directory=* -C "${CPACK_Q_MUR_SOURCE_DIR}" log -1 --format=%ct
    OUTPUT_VARIABLE epoch OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
  if(NOT epoch)
    file(TIMESTAMP "${CPACK_Q_MUR_SOURCE_DIR}/CHANGELOG.md" epoch %s UTC)
  endif()
  set(ENV{SOURCE_DATE_EPOCH} ${epoch})
endif()

set(ENV{TZ} UTC) # the times in a zip file are local ones

if(CPACK_Q_MUR_OTHER_BUILD)
  if(EXISTS "${CPACK_Q_MUR_OTHER_BUILD}/bin/q_Mur.dll")
    foreach(component library development)
      list(APPEND CPACK_INSTALL_CMAKE_PROJECTS
        "${CPACK_Q_MUR_OTHER_BUILD}" q_Mur ${component} "${CPACK_Q_MUR_OTHER_DIRECTORY}")
    endforeach()
  else()
    message(STATUS "One width alone: ${CPACK_Q_MUR_OTHER_BUILD} holds no q_Mur.dll")
  endif()
endif()
