# Installs the build in BUILD to PREFIX, anew.

file(REMOVE_RECURSE ${PREFIX})
execute_process(
  COMMAND ${CMAKE_COMMAND} --install ${BUILD} --config ${CONFIG} --prefix ${PREFIX}
  COMMAND_ERROR_IS_FATAL ANY)
