// Checks and rebuilds beside a plain read and a plain copy of the same file.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "bench/RatioReporter.h"
#include "environment/Logging.h"
#include "maintenance/DBUtilities.h"
#include "maintenance/Lock.h"
#include "results/DPoint.h"
#include "tests/support/Study.h"

namespace {

/// 300 bytes in its block.
CDPoint MadePoint(POD* pod, int number) {
  CDPoint point(pod);
  point.m_nTaskID = 1;
  point.m_nPointID = number;
  point.m_IDVar.resize(17, 0.1 * number);
  point.m_IResp.resize(10, 0.3 * number);
  return point;
}

void StorePoints(const Study& study, long count) {
  const CLock lock(study.Pod(), 0);
  for (int i = 1; i <= count; ++i) MadePoint(study.Pod(), i).WriteObject(false);
}

/// A closed study with so many points, made once.
Study& FullStudy(long count) {
  static std::map<long, std::unique_ptr<Study>> studies;
  std::unique_ptr<Study>& study = studies[count];
  if (study == nullptr) {
    study = std::make_unique<Study>();
    StorePoints(*study, count);
    study->Close();
  }
  return *study;
}

void CountBytes(benchmark::State& state, const Study& study) {
  const auto size = static_cast<std::int64_t>(std::filesystem::file_size(study.DataPath()));
  state.SetBytesProcessed(state.iterations() * size);
}

void PlainRead(benchmark::State& state) {
  const Study& study = FullStudy(state.range(0));
  std::vector<char> buffer(1 << 16);
  for (auto _ : state) {
    std::FILE* file = std::fopen(study.DataPath().c_str(), "rb");
    while (std::fread(buffer.data(), 1, buffer.size(), file) > 0) {
      benchmark::DoNotOptimize(buffer.data());
    }
    std::fclose(file);
  }
  CountBytes(state, study);
}

void PlainCopy(benchmark::State& state) {
  const Study& study = FullStudy(state.range(0));
  std::vector<char> buffer(1 << 16);
  for (auto _ : state) {
    std::FILE* from = std::fopen(study.DataPath().c_str(), "rb");
    std::FILE* to = std::fopen((study.folder / "copy").c_str(), "wb");
    while (const std::size_t size = std::fread(buffer.data(), 1, buffer.size(), from)) {
      std::fwrite(buffer.data(), 1, size, to);
    }
    std::fclose(from);
    std::fclose(to);
  }
  CountBytes(state, study);
}

void BulkStore(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    auto study = std::make_unique<Study>();
    state.ResumeTiming();
    StorePoints(*study, state.range(0));
    state.PauseTiming();
    study.reset();
    state.ResumeTiming();
  }
  CountBytes(state, FullStudy(state.range(0)));
}

void FileCheck(benchmark::State& state) {
  const Study& study = FullStudy(state.range(0));
  for (auto _ : state) KFileCheck(study.DataPath());
  CountBytes(state, study);
}

void FileRebuild(benchmark::State& state) {
  const Study& study = FullStudy(state.range(0));
  for (auto _ : state) KFileRebuild(study.DataPath());
  CountBytes(state, study);
}

void IndexRebuild(benchmark::State& state) {
  const Study& study = FullStudy(state.range(0));
  for (auto _ : state) KIndexRebuildCheck(study.BasePath(), true);
  CountBytes(state, study);
}

void IndexCheck(benchmark::State& state) {
  const Study& study = FullStudy(state.range(0));
  for (auto _ : state) KIndexRebuildCheck(study.BasePath(), false);
  CountBytes(state, study);
}

#define KESTDB_BENCHMARK(run) \
  BENCHMARK(run)->Arg(20000)->Arg(100000)->Unit(benchmark::kMillisecond)->UseRealTime()

KESTDB_BENCHMARK(PlainRead);
KESTDB_BENCHMARK(PlainCopy);
KESTDB_BENCHMARK(BulkStore);
KESTDB_BENCHMARK(FileCheck);
KESTDB_BENCHMARK(FileRebuild);
KESTDB_BENCHMARK(IndexRebuild);
KESTDB_BENCHMARK(IndexCheck);

}  // namespace

int main(int count, char** arguments) {
  benchmark::Initialize(&count, arguments);
  fKLog = std::fopen("/dev/null", "w");  // the reports are made, and nobody reads them
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  for (const std::string size : {"20000", "100000"}) {
    reporter.PrintRatio("FileCheck" + size, "PlainRead" + size);
    reporter.PrintRatio("FileRebuild" + size, "PlainCopy" + size);
    reporter.PrintRatio("IndexRebuild" + size, "BulkStore" + size);
  }
}
