# Installs the build tree BUILD_DIR afresh below PREFIX.
file(REMOVE_RECURSE "${PREFIX}")
execute_process(COMMAND "${CMAKE_COMMAND}" --install "${BUILD_DIR}" --config "${CONFIGURATION}" --prefix "${PREFIX}"
  COMMAND_ERROR_IS_FATAL ANY)
