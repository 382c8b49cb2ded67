# Debian packages, made by cpack in the build folder: libkestdb6, libkestdb-dev and, where tools/ is
# built, kestdb-tools. Configured with -DCMAKE_INSTALL_PREFIX=/usr the libraries go where Debian has
# those of the architecture, else to /usr/lib. Comes behind all install rules.

if(NOT PROJECT_IS_TOP_LEVEL)
  return()
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kestdb)
set(CPACK_PACKAGE_VENDOR "KestDB")
set(CPACK_PACKAGE_CONTACT "KestDB maintainers <maintainers@kestdb.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

get_cmake_property(kestdb_components COMPONENTS)
set(CPACK_COMPONENTS_ALL runtime development)
if(tools IN_LIST kestdb_components)
  list(APPEND CPACK_COMPONENTS_ALL tools)
endif()
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS runtime)
set(CPACK_COMPONENT_TOOLS_DEPENDS runtime)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# A program of another package finds the library of this build.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libkestdb${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "The shared library.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libkestdb-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
  "Headers, CMake and pkg-config files, and stand-ins for the functions of the environment.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME kestdb-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION science)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
set(CPACK_COMPONENT_TOOLS_DESCRIPTION
  "The program kestdb: shows, exports, checks and mends studies from the command line.")

include(CPack)
