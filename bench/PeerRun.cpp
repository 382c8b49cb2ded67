#include "bench/PeerRun.h"

#include <algorithm>
#include <filesystem>
#include <numeric>
#include <random>
#include <stdexcept>

#include "bench/PeerCounters.h"
#include "tests/support/TempFolder.h"

namespace {

constexpr int kSingles = 300;
constexpr int kOpens = 50;

template <class Work>
PeerSample Measured(Work work) {
  const PeerCounters start = PeerCounters::Now();
  work();
  const PeerCounters end = PeerCounters::Now();
  const std::chrono::duration<double, std::milli> time = end.time - start.time;
  return {true, time.count(), end.transfers - start.transfers, end.syncs - start.syncs};
}

std::vector<int> Shuffled(int count) {
  std::vector<int> numbers(static_cast<std::size_t>(count));
  std::iota(numbers.begin(), numbers.end(), 1);
  std::shuffle(numbers.begin(), numbers.end(), std::mt19937(1));
  return numbers;
}

void Require(bool equal) {
  if (!equal) throw std::runtime_error("what was read is not what was stored");
}

/// Has to be this very record.
void RequireMade(const PeerRecord& read, int number, int edition) {
  Require(read.number == number &&
          read.Fingerprint() == PeerRecord::Made(number, edition).Fingerprint());
}

double BytesIn(const TempFolder& folder) {
  double bytes = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder.Path())) {
    if (entry.is_regular_file()) bytes += static_cast<double>(entry.file_size());
  }
  return bytes;
}

void Store(PeerStore& store, int first, int last) {
  store.Begin(true);
  for (int i = first; i <= last; ++i) store.Store(PeerRecord::Made(i, 0));
  store.End();
}

PeerSample StoreSingly(PeerStore& store) {
  const TempFolder folder;
  store.Open(folder.Path());
  const PeerSample sample = Measured([&] {
    for (int i = 1; i <= kSingles; ++i) Store(store, i, i);
  });
  store.Close();
  return sample;
}

void LookUp(PeerStore& store, const std::vector<int>& numbers) {
  store.Begin(false);
  for (const int number : numbers) RequireMade(store.Find(number), number, 0);
  store.End();
}

void ReadInOrder(PeerStore& store, int records) {
  int read = 0;
  store.Begin(false);
  store.VisitInKeyOrder([&](const PeerRecord& record) {
    RequireMade(record, record.number, 0);
    ++read;
  });
  store.End();
  Require(read == records);
}

void Update(PeerStore& store, const std::vector<int>& numbers) {
  store.Begin(true);
  for (const int number : numbers) store.Update(PeerRecord::Made(number, 1));
  store.End();
}

void RequireUpdated(PeerStore& store, const std::vector<int>& numbers) {
  store.Begin(false);
  for (const int number : numbers) RequireMade(store.Find(number), number, 1);
  store.End();
}

void OpenAndRead(PeerStore& store, const std::string& folder) {
  for (int i = 1; i <= kOpens; ++i) {
    store.Open(folder);
    store.Begin(false);
    Require(store.Find(i).number == i);
    store.End();
    store.Close();
  }
}

void RemoveEverySecond(PeerStore& store, int records) {
  store.Begin(true);
  for (int i = 2; i <= records; i += 2) store.Remove(i);
  store.End();
}

void RequireHalf(PeerStore& store, int records) {
  int read = 0;
  store.Begin(false);
  store.VisitInKeyOrder([&](const PeerRecord& record) {
    Require(record.number % 2 == 1);
    ++read;
  });
  store.End();
  Require(read == (records + 1) / 2);
}

void RunUpkeep(PeerStore& store, const TempFolder& folder, int records, PeerRun& run) {
  if (!store.HasUpkeep()) return;
  store.Open(folder.Path());
  run.samples[kRemove] = Measured([&] { RemoveEverySecond(store, records); });
  store.Close();
  run.samples[kCompact] = Measured([&] { store.Compact(folder.Path()); });
  run.bytesCompacted = BytesIn(folder);
  store.Open(folder.Path());
  RequireHalf(store, records);
  store.Close();
}

}  // namespace

std::string PeerWorkloadName(PeerWorkload workload, int records) {
  static const char* const names[kWorkloads] = {
      "stored in one unit", "durable single stores", "random lookups",
      "read in key order",  "random updates",        "opens with one read",
      "checked in full",    "removed, every second", "compacted after that"};
  return std::to_string(PeerOperations(workload, records)) + ' ' + names[workload];
}

int PeerOperations(PeerWorkload workload, int records) {
  switch (workload) {
    case kStoreSingly:
      return kSingles;
    case kOpenAndRead:
      return kOpens;
    case kUpdate:
      return records / 4;
    case kRemove:
      return records / 2;
    case kCompact:
      return records - records / 2;
    default:
      return records;
  }
}

PeerRun RunPeer(const PeerKind& kind, int records) {
  const std::unique_ptr<PeerStore> store = kind.make();
  PeerRun run;
  run.samples[kStoreSingly] = StoreSingly(*store);

  const TempFolder folder;
  const std::vector<int> numbers = Shuffled(records);
  const std::vector<int> updated(numbers.begin(),
                                 numbers.begin() + PeerOperations(kUpdate, records));
  store->Open(folder.Path());
  run.samples[kStoreAll] = Measured([&] { Store(*store, 1, records); });
  run.samples[kLookUp] = Measured([&] { LookUp(*store, numbers); });
  run.samples[kReadInOrder] = Measured([&] { ReadInOrder(*store, records); });
  run.samples[kUpdate] = Measured([&] { Update(*store, updated); });
  RequireUpdated(*store, updated);
  store->Close();
  run.bytes = BytesIn(folder);

  run.samples[kOpenAndRead] = Measured([&] { OpenAndRead(*store, folder.Path()); });
  if (store->HasCheck()) run.samples[kCheck] = Measured([&] { store->Check(folder.Path()); });
  RunUpkeep(*store, folder, records, run);
  return run;
}
