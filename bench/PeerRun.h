#pragma once

#include <string>
#include <vector>

#include "bench/PeerStore.h"

/// The workloads in the order in which a run goes through them.
enum PeerWorkload {
  kStoreAll,
  kStoreSingly,
  kLookUp,
  kReadInOrder,
  kUpdate,
  kOpenAndRead,
  kCheck,
  kRemove,
  kCompact,
  kWorkloads
};

std::string PeerWorkloadName(PeerWorkload workload, int records);
/// How many stores, lookups and so on a workload consists of.
int PeerOperations(PeerWorkload workload, int records);

/// What one workload took; nothing is `known` of one that the store can't do.
struct PeerSample {
  bool known = false;
  double milliseconds = 0;
  double transfers = 0;
  double syncs = 0;
};

struct PeerRun {
  PeerSample samples[kWorkloads];
  double bytes = 0;           ///< of all files of the closed store with all records
  double bytesCompacted = 0;  ///< with half of them, after compaction; 0 without that
};

/// Runs all workloads on a new store of this kind. Whatever is read has to be what was stored.
PeerRun RunPeer(const PeerKind& kind, int records);
