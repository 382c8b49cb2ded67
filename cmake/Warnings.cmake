# kestdb_warnings: what every target of our own is compiled with.

add_library(kestdb_warnings INTERFACE)
target_compile_options(kestdb_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow
  $<$<BOOL:${KESTDB_WERROR}>:-Werror>)
