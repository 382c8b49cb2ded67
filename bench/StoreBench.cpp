// The store beside plain files. Every figure is for the whole workload; the ratios at the end are
// of one run, so that they can be compared between machines.

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "bench/BenchPoint.h"
#include "bench/RatioReporter.h"
#include "index/KSBKey.h"
#include "index/vbtree.h"
#include "maintenance/Lock.h"
#include "tests/support/Study.h"

namespace {

constexpr int kStored = 20000;
constexpr int kSingles = 300;
constexpr int kUpdates = 5000;
constexpr int kOpens = 50;
constexpr std::size_t kRecordSize = 308;

void StorePoints(const Study& study, int count) {
  const CLock lock(study.Pod(), 0);
  for (int i = 1; i <= count; ++i) BenchPoint::Made(study.Pod(), i).WriteObject(false);
}

std::vector<int> Shuffled(int count) {
  std::vector<int> numbers(static_cast<std::size_t>(count));
  std::iota(numbers.begin(), numbers.end(), 1);
  std::shuffle(numbers.begin(), numbers.end(), std::mt19937(1));
  return numbers;
}

/// A study with kStored points, made once for the workloads that only read or update.
Study& FullStudy() {
  static const auto study = [] {
    auto made = std::make_unique<Study>();
    StorePoints(*made, kStored);
    made->Close();
    return made;
  }();
  return *study;
}

void BulkStore(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    auto study = std::make_unique<Study>();
    state.ResumeTiming();
    StorePoints(*study, static_cast<int>(state.range(0)));
    state.PauseTiming();
    study.reset();
    state.ResumeTiming();
  }
}
BENCHMARK(BulkStore)->Arg(kStored)->Arg(2 * kStored)->Unit(benchmark::kMillisecond)->UseRealTime();

void SingleStores(benchmark::State& state) {
  Study study;
  int number = 0;
  for (auto _ : state) {
    for (int i = 0; i < kSingles; ++i) BenchPoint::Made(study.Pod(), ++number).WriteObject(false);
  }
}
BENCHMARK(SingleStores)->Unit(benchmark::kMillisecond)->UseRealTime();

void RandomLookups(benchmark::State& state) {
  Study& study = FullStudy();
  study.Open();
  const std::vector<int> numbers = Shuffled(kStored);
  for (auto _ : state) {
    const CLock lock(study.Pod(), 0);
    BenchPoint point(study.Pod());
    for (const int number : numbers) {
      point.m_nTask = 1;
      point.m_nPoint = number;
      benchmark::DoNotOptimize(point.GetObject());
    }
  }
  study.Close();
}
BENCHMARK(RandomLookups)->Unit(benchmark::kMillisecond)->UseRealTime();

void ReadInKeyOrder(benchmark::State& state) {
  Study& study = FullStudy();
  study.Open();
  for (auto _ : state) {
    const CLock lock(study.Pod(), 0);
    vBtree& tree = *study.Pod()->Index(BenchPoint::m_nBENCH_INDX);
    BenchPoint point(study.Pod());
    KSBKey key;
    KSBKey work;
    for (bool found = tree.FindFirst(key, true); found; found = tree.FindNext(key, work, true)) {
      point.ReadObject(key.ObjectAddress);
    }
  }
  study.Close();
}
BENCHMARK(ReadInKeyOrder)->Unit(benchmark::kMillisecond)->UseRealTime();

void RandomUpdates(benchmark::State& state) {
  Study& study = FullStudy();
  study.Open();
  std::vector<int> numbers = Shuffled(kStored);
  numbers.resize(kUpdates);
  for (auto _ : state) {
    const CLock lock(study.Pod(), 0);
    for (const int number : numbers) BenchPoint::Made(study.Pod(), number).PutObject();
  }
  study.Close();
}
BENCHMARK(RandomUpdates)->Unit(benchmark::kMillisecond)->UseRealTime();

void OpenReadClose(benchmark::State& state) {
  Study& study = FullStudy();
  for (auto _ : state) {
    for (int i = 0; i < kOpens; ++i) {
      study.Open();
      BenchPoint point(study.Pod());
      point.m_nTask = 1;
      point.m_nPoint = i + 1;
      benchmark::DoNotOptimize(point.GetObject());
      study.Close();
    }
  }
}
BENCHMARK(OpenReadClose)->Unit(benchmark::kMillisecond)->UseRealTime();

/// Appends as many bytes as the store's records have to a plain file.
void AppendRecords(int count, bool syncEach) {
  const TempFolder folder;
  std::FILE* file = std::fopen((folder / "plain").c_str(), "wb");
  std::vector<char> record(kRecordSize);
  for (int i = 0; i < count; ++i) {
    std::fill(record.begin(), record.end(), static_cast<char>(i));
    std::fwrite(record.data(), 1, record.size(), file);
    if (!syncEach && i < count - 1) continue;
    std::fflush(file);
    fsync(fileno(file));
  }
  std::fclose(file);
}

void PlainAppend(benchmark::State& state) {
  for (auto _ : state) AppendRecords(kStored, false);
}
BENCHMARK(PlainAppend)->Unit(benchmark::kMillisecond)->UseRealTime();

void PlainAppendSyncingEach(benchmark::State& state) {
  for (auto _ : state) AppendRecords(kSingles, true);
}
BENCHMARK(PlainAppendSyncingEach)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

int main(int count, char** arguments) {
  benchmark::Initialize(&count, arguments);
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  reporter.PrintRatio("BulkStore20000", "PlainAppend");
  reporter.PrintRatio("SingleStores", "PlainAppendSyncingEach");
  reporter.PrintRatio("BulkStore40000", "BulkStore20000");
}
