# Builds the program in SOURCE with the compiler and what pkg-config says, in FOLDER, and runs it.

file(REMOVE_RECURSE ${FOLDER})
file(MAKE_DIRECTORY ${FOLDER})
set(ENV{PKG_CONFIG_PATH} ${PREFIX}/${LIBDIR}/pkgconfig)

function(pkg_config variable)
  execute_process(COMMAND ${PKG_CONFIG} ${ARGN} kestdb
    OUTPUT_VARIABLE output OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  separate_arguments(output UNIX_COMMAND "${output}")
  set(${variable} ${output} PARENT_SCOPE)
endfunction()

pkg_config(cflags --cflags)
pkg_config(libs --libs)
pkg_config(libdir --variable=libdir)
separate_arguments(cxxflags UNIX_COMMAND "${CXXFLAGS}")
execute_process(
  COMMAND ${CXX} -std=c++20 ${cxxflags} ${cflags} ${SOURCE}/main.cpp -o ${FOLDER}/consumer
    ${libs} -Wl,-rpath,${libdir}
  COMMAND_ERROR_IS_FATAL ANY)

include(${CMAKE_CURRENT_LIST_DIR}/run.cmake)
