#!/usr/bin/env bash
# Compares what a library exports with the kept list, and prints the differences.
#
#   symbols.sh LIBRARY LIST            compares
#   symbols.sh LIBRARY LIST --update   makes the list anew, after a change that is meant
#
# The list is the same for every compiler and level of optimisation. It holds what is defined in one
# place: functions and variables, each once though it has several entry points. Of what compilers
# emit where it is used, or when they see fit, only the members of the class templates count that the
# library instantiates for its callers. Left out are instances of the standard library's templates,
# inline functions and variables, the tables of virtual functions and types, the constructors that a
# class takes over from its base, and what sanitizers add.

set -euo pipefail
export LC_ALL=C

# Lines "TYPE NAME".
symbols_of() {
  nm -D -C --defined-only "$1" | cut -d ' ' -f 2-
}

# Binutils of different ages write nested templates differently.
normalised() {
  sed -e 's/ >/>/g'
}

callers_symbols() {
  awk '
    { type = $1; name = substr($0, length($1) + 2) }
    name ~ /^(vtable|typeinfo|typeinfo name|VTT|guard variable) for / { next }
    name ~ /^(__odr_asan|__asan|__ubsan|_init$|_fini$)/ { next }
    name ~ /^(vbPersistentClass|vbControlBlock)<[A-Za-z]+>::~?vb/ { next }
    type ~ /^[TBDR]$/ { print name; next }
    type == "W" && name ~ /^(vbPersistentClass|vbControlBlock)<[A-Za-z]+>::[A-Z]/ { print name }
  '
}

exported() {
  symbols_of "$1" | callers_symbols | normalised | sort -u
}

library=$1
list=$2
if [ "${3-}" = --update ]; then
  exported "$library" >"$list"
elif ! diff -u --label "kept: $list" --label "exported: $library" "$list" <(exported "$library"); then
  echo "The exported symbols have changed. If that is meant: $0 $library $list --update" >&2
  exit 1
fi
