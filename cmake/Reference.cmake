# The reference of the public headers by Doxygen: the target "reference" makes it, in
# docs/reference/html of the build folder. A warning fails it.

find_program(KESTDB_DOXYGEN doxygen)

get_target_property(kestdb_reference_input kestdb HEADER_SET)
list(TRANSFORM kestdb_reference_input REPLACE "(.+)" "\"\\1\"")
list(JOIN kestdb_reference_input " " kestdb_reference_input)
set(kestdb_reference_dir ${PROJECT_BINARY_DIR}/docs/reference)
set(kestdb_doxyfile ${PROJECT_BINARY_DIR}/docs/Doxyfile)
configure_file(docs/Doxyfile.in ${kestdb_doxyfile} @ONLY)
file(MAKE_DIRECTORY ${kestdb_reference_dir})

if(KESTDB_DOXYGEN AND PROJECT_IS_TOP_LEVEL)
  add_custom_target(reference
    COMMAND ${KESTDB_DOXYGEN} ${kestdb_doxyfile}
    COMMENT "Making the reference in ${kestdb_reference_dir}/html" VERBATIM)
endif()
