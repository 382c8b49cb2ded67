#!/usr/bin/env bash
# Disturbs each unit of work of the library at every one of its system calls, in a fresh process for
# each case, and prints what became of the study. docs/reliability.md tells what the figures mean.

source "$(dirname "${BASH_SOURCE[0]}")/cmake/setup.sh"
need "${build_packages[@]}"

step "Building the programs"
cmake --preset release
cmake --build --preset release --target fault_driver fault_worker fault_shim

# In memory, where there is room: what a process hands to the kernel outlives it there as well.
if [ -z "${TMPDIR:-}" ] && [ -w /dev/shm ]; then export TMPDIR=/dev/shm; fi

folder=build/release/tests/fault/reliability
step "Disturbing them at every call"
"$folder/fault_driver" "$PWD/$folder/fault_worker" "$PWD/$folder/libfault_shim.so" 0 "$@"
