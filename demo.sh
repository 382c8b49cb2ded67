#!/usr/bin/env bash
# Stores a table of design points in a study, and reads it back in a second process.

source "$(dirname "${BASH_SOURCE[0]}")/cmake/setup.sh"
need "${build_packages[@]}"

step "Building the example program"
cmake --preset release
cmake --build --preset release --target designtable

program=build/release/examples/designtable/designtable
points=examples/designtable/points.csv
study=$(mktemp -d)
trap 'rm -rf "$study"' EXIT

step "Storing the design points of $points in a new study"
"$program" store "$study" "$points"

step "The study's files"
ls -l "$study"

step "Showing them, as a second process reads them from the study"
"$program" show "$study"
