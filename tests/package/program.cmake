# Runs the program of the unpacked packages in PREFIX: it has to tell VERSION.

cmake_minimum_required(VERSION 3.25)

include(${BUILD}/CPackConfig.cmake)
if(NOT tools IN_LIST CPACK_COMPONENTS_ALL)
  message("Skipped: the program kestdb is not built here")
  return()
endif()

set(ENV{LD_LIBRARY_PATH} ${PREFIX}/${LIBDIR})
execute_process(COMMAND ${PREFIX}/bin/kestdb --version
  OUTPUT_VARIABLE printed COMMAND_ERROR_IS_FATAL ANY)
string(FIND "${printed}" "${VERSION}" at)
if(at EQUAL -1)
  message(FATAL_ERROR "printed \"${printed}\" where ${VERSION} was expected")
endif()
