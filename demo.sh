#!/usr/bin/env bash
# Stores a table of design points in a study, defines what they are about, checks the definitions,
# makes a task of them, fits a model as a run engine would, and reads the study back, each in a
# process of its own. Then a run engine solves published problems, and the command line looks at one
# of their studies, which stay in build/demo.

source "$(dirname "${BASH_SOURCE[0]}")/cmake/setup.sh"
need "${build_packages[@]}"

step "Building the example programs"
cmake --preset release
cmake --build --preset release --target designtable engine kestdb_program

program=build/release/examples/designtable/designtable
points=examples/designtable/points.csv
study=$(mktemp -d)
trap 'rm -rf "$study"' EXIT

step "Storing the design points of $points in a new study"
"$program" store "$study" "$points"

step "Defining the study of these points"
"$program" define "$study"

step "Making a task of the study"
"$program" make "$study"

step "Fitting a model of second order"
"$program" fit "$study"

step "The study's files"
ls -l "$study"

step "Showing them, as another process reads them from the study"
"$program" show "$study"

step "Solving published problems"
rm -rf build/demo
mkdir -p build/demo
build/release/examples/engine/engine build/demo

step "What the command line tells of one of them"
build/release/tools/kestdb info build/demo/weldedbeam

step "The studies are in build/demo; try build/release/tools/kestdb --help"
