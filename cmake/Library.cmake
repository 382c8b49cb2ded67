# libkestdb.so, and the functions by which each folder adds to it.
#
# The objects are a target of their own, so that tests of private functions can link them. What the
# library imports of the environment stays undefined in it: each program supplies that.

add_library(kestdb_objects OBJECT)
target_include_directories(kestdb_objects PUBLIC ${PROJECT_SOURCE_DIR})
# The log names source files: relative ones say the same in every build.
target_compile_options(kestdb_objects PRIVATE -ffile-prefix-map=${PROJECT_SOURCE_DIR}/=)
target_link_libraries(kestdb_objects PRIVATE kestdb_warnings)
set_target_properties(kestdb_objects PROPERTIES
  CXX_VISIBILITY_PRESET hidden
  VISIBILITY_INLINES_HIDDEN ON
  POSITION_INDEPENDENT_CODE ON)

add_library(kestdb SHARED $<TARGET_OBJECTS:kestdb_objects>)
add_library(KestDB::kestdb ALIAS kestdb)
target_compile_features(kestdb INTERFACE cxx_std_20)
set_target_properties(kestdb PROPERTIES
  VERSION ${PROJECT_VERSION}
  SOVERSION ${PROJECT_VERSION_MAJOR})

# kestdb_sources(FILE...): source files of the library, in the current folder.
function(kestdb_sources)
  target_sources(kestdb_objects PRIVATE ${ARGN})
endfunction()

# kestdb_headers(FILE...): public headers, in the current folder. They are installed; those that
# open with "Private" are not named here.
function(kestdb_headers)
  target_sources(kestdb PUBLIC
    FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${ARGN})
endfunction()
