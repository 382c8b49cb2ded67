#!/usr/bin/env bash
# Measures the library beside other stores and prints one table. Arguments are passed on, for
# instance --rounds 9, --records 200000, --store kestdb; --help tells all. The files lie in TMPDIR,
# which should be on a real disk: the durable single stores are about nothing else.

source "$(dirname "${BASH_SOURCE[0]}")/cmake/setup.sh"
need "${build_packages[@]}"

step "Building the comparison"
cmake --preset release
cmake --build --preset release --target peer_bench

step "Measuring; this takes about a minute"
build/release/bench/peer_bench "$@"
