#!/usr/bin/env bash
# usage: tests/fuzz/run.sh SECONDS [TARGET...]
#
# Builds the fuzzer's targets (record, tree, pair; all unless told) with clang in build/fuzz and runs
# each for so many seconds, from its corpus and the sound inputs. What is found stays in
# build/fuzz/found, what reaches new code in build/fuzz/corpus, for the next run. Ends with a table,
# and with status 1 when something was found. KESTDB_SUMMARY may name a file for its rows.

set -euo pipefail
usage='usage: tests/fuzz/run.sh SECONDS [TARGET...]'
seconds=${1:?$usage}
shift
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

build=build/fuzz
targets=("$@")
[ ${#targets[@]} -gt 0 ] || targets=(record tree pair)
cmake -S . -B "$build" -G Ninja -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=None \
  -DKESTDB_FUZZ=ON -DKESTDB_TOOLS=OFF -DKESTDB_BENCH=OFF -DKESTDB_EXAMPLES=OFF
cmake --build "$build" --target "${targets[@]/#/fuzz_}" "${targets[@]/#/seeds_}"

# The studies lie in memory where there is such a place.
scratch=$(mktemp -d "$([ -w /dev/shm ] && echo /dev/shm || echo "${TMPDIR:-/tmp}")/fuzz-XXXXXX")
trap 'rm -rf "$scratch"' EXIT
export TMPDIR=$scratch
# Little freed memory is kept back, so that what is in use stays in the processor's caches. A replay
# of a finding tells who allocated.
export ASAN_OPTIONS=malloc_context_size=0:quarantine_size_mb=16

# The longest inputs worth their time: some records, a tree, a study.
declare -A longest=([record]=4096 [tree]=16384 [pair]=32768)

# The number that stands behind a name in the last line of a log with it.
figure() { grep -oE "$1 *[0-9]+" "$2" | tail -n 1 | grep -oE '[0-9]+$' || echo 0; }
# What made a run end: nothing, or one finding.
finding() {
  case $(grep -E '^SUMMARY: ' "$1" | tail -n 1) in
    '') echo 0 0 0 ;;
    *timeout*) echo 0 0 1 ;;
    *) if grep -q "instance of 'std::logic_error'" "$1"; then echo 1 0 0; else echo 0 1 0; fi ;;
  esac
}

failed=0
rows=()
for target in "${targets[@]}"; do
  corpus=$build/corpus/$target
  finds=$build/found/$target
  log=$build/$target.log
  mkdir -p "$corpus" "$finds"
  "$build/tests/fuzz/seeds_$target" "$scratch/seeds_$target"
  printf '\n== %s\n' "$target"
  # A schedule by rare features would take longer than the runs themselves.
  "$build/tests/fuzz/fuzz_$target" -max_total_time="$seconds" -max_len="${longest[$target]}" \
    -timeout=10 -entropic=0 -rss_limit_mb=1024 -malloc_limit_mb=8 -print_final_stats=1 \
    -artifact_prefix="$finds/" \
    "$corpus" "tests/fuzz/corpus/$target" "$scratch/seeds_$target" >"$log" 2>&1 || failed=1
  grep -E '^#.* cov: |^SUMMARY|what\(\)|^stat::|unit written' "$log" | tail -n 9 || true
  rows+=("$target $(figure 'number_of_executed_units:' "$log") $(figure ' cov:' "$log") \
$(figure 'runs without a failure:' "$log") $(figure 'runs with failures:' "$log") $(finding "$log")")
done

printf '\n| target | executions | places reached | all well | reported | wrong | crash | hang |\n'
printf '|---|---|---|---|---|---|---|---|\n'
for row in "${rows[@]}"; do
  read -r target runs places whole reported wrong crash hang <<<"$row"
  printf '| %s | %s | %s | %s | %s | %s | %s | %s |\n' \
    "$target" "$runs" "$places" "$whole" "$reported" "$wrong" "$crash" "$hang"
  if [ -n "${KESTDB_SUMMARY:-}" ]; then
    printf '| arbitrary bytes by the fuzzer: %s | %s | %s | %s | %s | %s | %s |\n' \
      "$target" "$runs" "$whole" "$reported" "$wrong" "$crash" "$hang" >>"$KESTDB_SUMMARY"
  fi
done
exit "$failed"
