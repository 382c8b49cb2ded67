#!/usr/bin/env bash
# Disturbs the library in every way that docs/reliability.md tells of, prints the tables of each part
# and, at the end, one of all: what became of the studies. Takes about half an hour on two
# processors. The status is 1 when anything was accepted silently wrong, crashed or hung.
# Arguments choose parts: calls, disk, processes, pairs, fields, bytes, fuzz; none takes all.

source "$(dirname "${BASH_SOURCE[0]}")/cmake/setup.sh"
need "${build_packages[@]}" clang

fuzz_seconds=${FUZZ_SECONDS:-120}  # for each of its three targets
parts=("${@:-calls disk processes pairs fields bytes fuzz}")
wanted() { [[ " ${parts[*]} " == *" $1 "* ]]; }

step "Building the programs"
cmake --preset release
cmake --build --preset release --target fault_driver fault_worker fault_shim fault_full_disk \
  fault_processes pair_tests hostile_field_tests maintenance_sweep_tests
if wanted calls || wanted disk; then
  cmake --preset asan
  cmake --build --preset asan --target fault_worker
fi

# In memory, where there is room: what a process hands to the kernel outlives it there as well.
if [ -z "${TMPDIR:-}" ] && [ -w /dev/shm ]; then export TMPDIR=/dev/shm; fi
KESTDB_SUMMARY=$(mktemp)
export KESTDB_SUMMARY
trap 'rm -f "$KESTDB_SUMMARY"' EXIT

release=build/release/tests/fault
worker=$PWD/$release/reliability/fault_worker
checked_worker=$PWD/build/asan/tests/fault/reliability/fault_worker
failed=()
run() {
  wanted "$1" || return 0
  step "$2"
  "${@:3}" || failed+=("$1")
}

run calls "Disturbing units of work at every call and every allocation" \
  "$release/reliability/fault_driver" --second "$checked_worker" "$worker" \
  "$PWD/$release/reliability/libfault_shim.so" 0
run disk "Filling a small file system" \
  "$release/reliability/fault_full_disk" --second "$checked_worker" "$worker" 0
run processes "Sharing a study between processes" "$release/processes/fault_processes"
run pairs "Mixing up the files of studies" "$release/pairs/pair_tests" --gtest_brief=1
run fields "Writing lies behind valid checksums" \
  "$release/pairs/hostile_field_tests" --gtest_brief=1 1
run bytes "Damaging every byte, and cutting at every length" \
  "$release/maintenance_sweep_tests" --gtest_brief=1
run fuzz "Fuzzing for $((3 * fuzz_seconds)) seconds" tests/fuzz/run.sh "$fuzz_seconds"

step "All parts"
printf '| %s | %s | %s | %s | %s | %s | %s |\n' "what was done" cases unchanged reported \
  "silently wrong" crash hang
echo '|---|---:|---:|---:|---:|---:|---:|'
awk -F ' *[|] *' '
  !($2 in seen) { seen[$2] = ++rows; names[rows] = $2 }
  { for (i = 3; i <= 8; ++i) { sums[$2, i] += $i; all[i] += $i } }
  function row(name, of,   i, line) {
    line = "| " name " |"
    for (i = 3; i <= 8; ++i) line = line " " of[i] + 0 " |"
    print line
  }
  END {
    for (r = 1; r <= rows; ++r) {
      for (i = 3; i <= 8; ++i) one[i] = sums[names[r], i]
      row(names[r], one)
    }
    row("all", all)
  }' "$KESTDB_SUMMARY"

if [ ${#failed[@]} -gt 0 ]; then
  echo "Failed: ${failed[*]}" >&2
  exit 1
fi
