# Runs the program in FOLDER on a study there: it has to succeed, and to print EXPECTED.

execute_process(COMMAND ${FOLDER}/consumer ${FOLDER}/study
  OUTPUT_VARIABLE printed OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
if(NOT printed STREQUAL EXPECTED)
  message(FATAL_ERROR "printed \"${printed}\" where \"${EXPECTED}\" was expected")
endif()
foreach(file study.ksb study.kx)
  if(NOT EXISTS ${FOLDER}/${file})
    message(FATAL_ERROR "${file} was not made")
  endif()
endforeach()
