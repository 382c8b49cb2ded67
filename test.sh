#!/usr/bin/env bash
# Builds the library and runs all its tests but the slow ones.

source "$(dirname "${BASH_SOURCE[0]}")/cmake/setup.sh"
need "${build_packages[@]}"

step "Configuring build/release"
cmake --preset release

step "Building"
cmake --build --preset release

step "Testing"
ctest --preset release
