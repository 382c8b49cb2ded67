#pragma once

// The system calls that a program makes on the files of a folder, between FaultsBegin and
// FaultsEnd, are counted, and disturbed as the environment variable KESTDB_FAULT says: KIND:N,
// where N is the number of the first call concerned.
//
//   kill            the process dies before the call       counts all calls
//   torn            it dies with half of the bytes written counts writes
//   eio             the call fails with EIO                counts all calls
//   eio-ever        so do all that follow                  counts those that move data
//   enospc          the write fails with ENOSPC            counts writes
//   enospc-ever     so do all that follow
//   short           half of the bytes are written          counts writes
//   short-ever      so with all that follow
//   short-read      half of the bytes are read             counts reads
//   short-read-ever so with all that follow
//   eof             the read finds the end of the file     counts reads

/// Calls of one kind. Those that move data are reads, writes, seeks and syncs.
struct CallCounts {
  long all = 0;
  long data = 0;
  long writes = 0;
  long reads = 0;
};

// Preloaded, they are defined; a program that runs without the shim finds them null.
extern "C" {
[[gnu::weak]] void FaultsBegin(const char* folder);
/// From here to FaultsGoOn nothing is counted or disturbed.
[[gnu::weak]] void FaultsPause();
[[gnu::weak]] void FaultsGoOn();
[[gnu::weak]] void FaultsEnd(CallCounts* counts);
}
