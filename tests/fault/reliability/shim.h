#pragma once

// The system calls that a program makes between FaultsBegin and FaultsEnd are counted, and
// disturbed as the environment variable KESTDB_FAULT says: KIND:N, where N is the number of the
// first call concerned. KESTDB_FAULT_COUNTS names a file that gets the counts of all calls, of
// those that move data, and of writes.
//
//   kill        the process dies before the call          counts all calls
//   torn        it dies with half of the bytes written    counts writes
//   eio         the call fails with EIO                   counts all calls
//   eio-ever    so do all that follow                     counts read, write, lseek and fsync
//   enospc      the write fails with ENOSPC               counts writes
//   enospc-ever so do all that follow
//   short       half of the bytes are written             counts writes
//   short-ever  so with all that follow
//
// Preloaded, they are defined; a program that runs without the shim finds them null.
extern "C" {
[[gnu::weak]] void FaultsBegin();
[[gnu::weak]] void FaultsEnd();
}
