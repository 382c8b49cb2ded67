#!/usr/bin/env bash
# usage: tests/fuzz/run.sh SECONDS
#
# Builds the fuzzer's targets with clang in build/fuzz and runs each for so many seconds, from its
# corpus and the sound inputs. What is found stays in build/fuzz/found, what reaches new code in
# build/fuzz/corpus, for the next run.

set -euo pipefail
seconds=${1:?usage: tests/fuzz/run.sh SECONDS}
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

build=build/fuzz
targets=(record tree pair)
cmake -S . -B "$build" -G Ninja -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=None \
  -DKESTDB_FUZZ=ON -DKESTDB_TOOLS=OFF -DKESTDB_BENCH=OFF -DKESTDB_EXAMPLES=OFF
cmake --build "$build" --target "${targets[@]/#/fuzz_}" "${targets[@]/#/seeds_}"

# The studies lie in memory where there is such a place.
scratch=$(mktemp -d "$([ -w /dev/shm ] && echo /dev/shm || echo "${TMPDIR:-/tmp}")/fuzz-XXXXXX")
trap 'rm -rf "$scratch"' EXIT
export TMPDIR=$scratch
export ASAN_OPTIONS=malloc_context_size=2

failed=0
for target in "${targets[@]}"; do
  corpus=$build/corpus/$target
  found=$build/found/$target
  mkdir -p "$corpus" "$found"
  "$build/tests/fuzz/seeds_$target" "$scratch/seeds_$target"
  printf '\n== %s\n' "$target"
  "$build/tests/fuzz/fuzz_$target" -max_total_time="$seconds" -max_len=32768 -timeout=10 \
    -rss_limit_mb=1024 -malloc_limit_mb=8 -print_final_stats=1 -artifact_prefix="$found/" \
    "$corpus" "tests/fuzz/corpus/$target" "$scratch/seeds_$target" >"$build/$target.log" 2>&1 ||
    failed=1
  grep -E '^#.* cov: |^SUMMARY|what\(\)|^stat::|unit written' "$build/$target.log" | tail -n 9
done
exit "$failed"
