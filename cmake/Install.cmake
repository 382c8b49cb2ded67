# Installs the library so that find_package(KestDB) and pkg-config find it, wherever it is put.
#
# Components: "runtime" is what a built program needs, "development" what building one needs. The
# programs of tools/ are a third one, "tools".

include(CMakePackageConfigHelpers)

set(kestdb_headers_dir ${CMAKE_INSTALL_INCLUDEDIR}/kestdb)
set(kestdb_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/KestDB)

install(TARGETS kestdb EXPORT KestDBTargets
  INCLUDES DESTINATION ${kestdb_headers_dir}
  LIBRARY COMPONENT runtime NAMELINK_COMPONENT development
  FILE_SET HEADERS DESTINATION ${kestdb_headers_dir} COMPONENT development)
if(TARGET kestdb_environment)
  install(TARGETS kestdb_environment EXPORT KestDBTargets
    INCLUDES DESTINATION ${kestdb_headers_dir}
    ARCHIVE COMPONENT development)
endif()
install(EXPORT KestDBTargets NAMESPACE KestDB:: DESTINATION ${kestdb_package_dir}
  COMPONENT development)

configure_package_config_file(cmake/KestDBConfig.cmake.in KestDBConfig.cmake
  INSTALL_DESTINATION ${kestdb_package_dir} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(KestDBConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/KestDBConfig.cmake
  ${PROJECT_BINARY_DIR}/KestDBConfigVersion.cmake
  DESTINATION ${kestdb_package_dir} COMPONENT development)

# pkg-config starts from where its file lies, so that the installed folder may be moved.
if(TARGET kestdb_environment)
  set(kestdb_environment_flags -lkestdb_environment)
else()
  list(TRANSFORM KESTDB_ENVIRONMENT_LIBRARY REPLACE "^([^-/].*)$" "-l\\1"
    OUTPUT_VARIABLE kestdb_environment_flags)
  list(JOIN kestdb_environment_flags " " kestdb_environment_flags)
endif()
file(RELATIVE_PATH kestdb_prefix_from_pc
  ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" kestdb_prefix_from_pc ${kestdb_prefix_from_pc})
configure_file(cmake/kestdb.pc.in kestdb.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/kestdb.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
  COMPONENT development)
