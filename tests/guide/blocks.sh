#!/usr/bin/env bash
# Compares the C++ blocks of documents with those marked in the sources, and prints the differences.
#
#   blocks.sh FOLDER DOCUMENT...
#
# In a document a block opens with "```cpp NAME", in a source file with "// [NAME]"; there it ends
# with "// [end]". A block without a name is no part of a program. Every named block has to be in
# both, with the same lines; the indentation that a block has as a whole doesn't count.

set -euo pipefail

sources=$1
shift
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir "$work/documents" "$work/sources"

# split FOLDER START END FILE...: writes each block to a file in FOLDER that has its name.
split() {
  local folder=$1 start=$2 end=$3
  shift 3
  awk -v folder="$folder" -v start="$start" -v end="$end" '
    function fail(what) {
      printf "%s:%d: %s\n", FILENAME, FNR, what > "/dev/stderr"
      failed = 1
      exit 1
    }
    name == "" && match($0, start) {
      name = $NF
      gsub(/[^a-z-]/, "", name)
      if (name in seen) fail("a second block of the name " name)
      seen[name] = 1
      indent = -1
      printf "" > (folder "/" name)
      next
    }
    name != "" && match($0, end) {
      close(folder "/" name)
      name = ""
      next
    }
    name != "" {
      if (indent < 0) { match($0, /^ */); indent = RLENGTH }
      print substr($0, indent + 1) > (folder "/" name)
    }
    END { if (!failed && name != "") fail("the block " name " has no end") }
  ' "$@"
}

split "$work/documents" '^```cpp [a-z]' '^```$' "$@"
split "$work/sources" '^ *// [[][a-z-]+[]]$' '^ *// [[]end[]]$' "$sources"/*.cpp

if [ -z "$(ls "$work/sources")" ]; then
  echo "No block is marked in $sources" >&2
  exit 1
fi
if ! (cd "$work" && diff -ru documents sources); then
  echo "The documents and their programs differ: see above." >&2
  exit 1
fi
