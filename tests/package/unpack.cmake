# Builds the packages of BUILD in FOLDER, looks at what they say and hold, and unpacks them in ROOT.

cmake_minimum_required(VERSION 3.25)

file(REMOVE_RECURSE ${FOLDER} ${ROOT})
file(MAKE_DIRECTORY ${FOLDER} ${ROOT})
set(config)
if(CONFIG)
  set(config -C ${CONFIG})
endif()
execute_process(
  COMMAND ${CPACK} --config ${BUILD}/CPackConfig.cmake ${config} -B ${FOLDER}
  WORKING_DIRECTORY ${BUILD} COMMAND_ERROR_IS_FATAL ANY)

# expect(WHAT WANTED HAVE): they have to be equal.
function(expect what wanted have)
  if(NOT have STREQUAL wanted)
    list(JOIN wanted "\n  " wanted)
    list(JOIN have "\n  " have)
    message(FATAL_ERROR "${what}: expected\n  ${wanted}\nfound\n  ${have}")
  endif()
endfunction()

# field(VARIABLE PACKAGE NAME): a field of the description of the package.
function(field variable package name)
  file(GLOB file ${FOLDER}/${package}_*.deb)
  execute_process(COMMAND ${DPKG_DEB} --field ${file} ${name}
    OUTPUT_VARIABLE text OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  set(${variable} "${text}" PARENT_SCOPE)
endfunction()

# unpack(VARIABLE PACKAGE): unpacks it, also by itself, which gives the list of its files.
function(unpack variable package)
  file(GLOB file ${FOLDER}/${package}_*.deb)
  foreach(place ${ROOT} ${FOLDER}/${package})
    execute_process(COMMAND ${DPKG_DEB} --extract ${file} ${place} COMMAND_ERROR_IS_FATAL ANY)
  endforeach()
  file(GLOB_RECURSE files RELATIVE ${FOLDER}/${package} ${FOLDER}/${package}/*)
  list(SORT files)
  set(${variable} "${files}" PARENT_SCOPE)
endfunction()

set(runtime libkestdb${MAJOR})
set(wanted_packages ${runtime} libkestdb-dev)
include(${BUILD}/CPackConfig.cmake)
if(tools IN_LIST CPACK_COMPONENTS_ALL)
  list(PREPEND wanted_packages kestdb-tools)
endif()
file(GLOB packages RELATIVE ${FOLDER} ${FOLDER}/*.deb)
list(TRANSFORM packages REPLACE "_.*" "")
list(SORT packages)
list(SORT wanted_packages)
expect("Packages" "${wanted_packages}" "${packages}")

foreach(package IN LISTS packages)
  field(version ${package} Version)
  expect("Version of ${package}" ${VERSION} "${version}")
  unpack(files_${package} ${package})
endforeach()

set(wanted_files usr/${LIBDIR}/libkestdb.so.${MAJOR} usr/${LIBDIR}/libkestdb.so.${VERSION})
expect("Files of ${runtime}" "${wanted_files}" "${files_${runtime}}")
field(depends ${runtime} Depends)
if(NOT depends MATCHES "libc6 \\(>= " OR NOT depends MATCHES "libstdc\\+\\+6 \\(>= ")
  message(FATAL_ERROR "${runtime} depends on \"${depends}\" alone")
endif()

set(wanted_files ${HEADERS})
list(TRANSFORM wanted_files PREPEND usr/include/kestdb/)
list(APPEND wanted_files
  usr/${LIBDIR}/libkestdb.so
  usr/${LIBDIR}/pkgconfig/kestdb.pc
  usr/${LIBDIR}/cmake/KestDB/KestDBConfig.cmake
  usr/${LIBDIR}/cmake/KestDB/KestDBConfigVersion.cmake
  usr/${LIBDIR}/cmake/KestDB/KestDBTargets.cmake)
string(TOLOWER "${CONFIG}" config)
list(APPEND wanted_files usr/${LIBDIR}/cmake/KestDB/KestDBTargets-${config}.cmake)
if(ARCHIVE)
  list(APPEND wanted_files usr/${LIBDIR}/lib${ARCHIVE}.a)
endif()
list(SORT wanted_files)
expect("Files of libkestdb-dev" "${wanted_files}" "${files_libkestdb-dev}")
field(depends libkestdb-dev Depends)
expect("What libkestdb-dev depends on" "${runtime} (= ${VERSION})" "${depends}")

if(tools IN_LIST CPACK_COMPONENTS_ALL)
  if(NOT usr/bin/kestdb IN_LIST files_kestdb-tools)
    message(FATAL_ERROR "kestdb-tools has no program: ${files_kestdb-tools}")
  endif()
  field(depends kestdb-tools Depends)
  string(FIND "${depends}" "${runtime} (= ${VERSION})" at)
  if(at EQUAL -1)
    message(FATAL_ERROR "kestdb-tools depends on \"${depends}\", not on ${runtime}")
  endif()
endif()
