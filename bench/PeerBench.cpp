// The library beside the stores that users know, with the same records in the same run. The figures
// are medians of runs that take turns, so that a busy machine slows all alike.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <stdexcept>

#include "bench/PeerRun.h"
#include "environment/Logging.h"

namespace {

constexpr int kNameWidth = 29;
constexpr int kColumnWidth = 12;

struct Column {
  PeerKind kind;
  std::vector<PeerRun> runs;
};

std::vector<Column> AllColumns() {
  const auto sqlite = [](SqliteForm form, SqliteJournal journal) {
    return [=] { return MakeSqlitePeer(form, journal); };
  };
  return {{{"kestdb", MakeKestDBPeer}, {}},
          {{"blob", sqlite(SqliteForm::kBlob, SqliteJournal::kDefault)}, {}},
          {{"blob-wal", sqlite(SqliteForm::kBlob, SqliteJournal::kWriteAhead)}, {}},
          {{"json", sqlite(SqliteForm::kJson, SqliteJournal::kDefault)}, {}},
          {{"json-wal", sqlite(SqliteForm::kJson, SqliteJournal::kWriteAhead)}, {}},
          {{"lmdb", MakeLmdbPeer}, {}},
          {{"plain", MakePlainPeer}, {}}};
}

std::vector<Column> ChosenColumns(const std::vector<std::string>& names) {
  std::vector<Column> columns = AllColumns();
  if (names.empty()) return columns;
  std::erase_if(columns, [&](const Column& column) {
    return std::find(names.begin(), names.end(), column.kind.name) == names.end();
  });
  return columns;
}

template <class Value>
double Median(const Column& column, Value value) {
  std::vector<double> values;
  for (const PeerRun& run : column.runs) values.push_back(value(run));
  std::sort(values.begin(), values.end());
  const std::size_t middle = values.size() / 2;
  return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

double MedianOf(const Column& column, PeerWorkload workload, double PeerSample::*value) {
  return Median(column, [&](const PeerRun& run) { return run.samples[workload].*value; });
}

bool Knows(const Column& column, PeerWorkload workload) {
  return column.runs.front().samples[workload].known;
}

void PrintHead(const std::vector<Column>& columns, const char* title) {
  std::printf("\n%-*s", kNameWidth, title);
  for (const Column& column : columns) {
    std::printf("%*s", kColumnWidth, column.kind.name.c_str());
  }
  std::printf("\n");
}

/// One line for each workload, with a number from `cell(column, workload)` for each store that
/// knows it.
template <class Cell>
void PrintSection(const std::vector<Column>& columns, int records, const char* title, int decimals,
                  Cell cell) {
  PrintHead(columns, title);
  for (int i = 0; i < kWorkloads; ++i) {
    const auto workload = static_cast<PeerWorkload>(i);
    std::printf("%-*s", kNameWidth, PeerWorkloadName(workload, records).c_str());
    for (const Column& column : columns) {
      if (Knows(column, workload)) {
        std::printf("%*.*f", kColumnWidth, decimals, cell(column, workload));
      } else {
        std::printf("%*s", kColumnWidth, "-");
      }
    }
    std::printf("\n");
  }
}

void PrintRatios(const std::vector<Column>& columns, int records) {
  const Column& own = columns.front();
  PrintSection(columns, records, "times as long as", 2, [&](const Column& column, auto workload) {
    return MedianOf(own, workload, &PeerSample::milliseconds) /
           MedianOf(column, workload, &PeerSample::milliseconds);
  });
}

void PrintBytes(const std::vector<Column>& columns) {
  PrintHead(columns, "bytes on disk");
  std::printf("%-*s", kNameWidth, "all records");
  for (const Column& column : columns) {
    std::printf("%*.0f", kColumnWidth, Median(column, [](auto& run) { return run.bytes; }));
  }
  std::printf("\n%-*s", kNameWidth, "half of them, compacted");
  for (const Column& column : columns) {
    if (Knows(column, kCompact)) {
      std::printf("%*.0f", kColumnWidth,
                  Median(column, [](auto& run) { return run.bytesCompacted; }));
    } else {
      std::printf("%*s", kColumnWidth, "-");
    }
  }
  std::printf("\n");
}

void PrintTable(const std::vector<Column>& columns, int records) {
  PrintSection(columns, records, "milliseconds", 2, [](const Column& column, auto workload) {
    return MedianOf(column, workload, &PeerSample::milliseconds);
  });
  PrintSection(columns, records, "microseconds for each", 2,
               [&](const Column& column, auto workload) {
                 return 1000 * MedianOf(column, workload, &PeerSample::milliseconds) /
                        PeerOperations(workload, records);
               });
  if (columns.front().kind.name == "kestdb" && columns.size() > 1) PrintRatios(columns, records);
  PrintSection(columns, records, "reads and writes for each", 2,
               [&](const Column& column, auto workload) {
                 return MedianOf(column, workload, &PeerSample::transfers) /
                        PeerOperations(workload, records);
               });
  PrintSection(columns, records, "syncs in all", 0, [](const Column& column, auto workload) {
    return MedianOf(column, workload, &PeerSample::syncs);
  });
  PrintBytes(columns);
}

/// In each round the stores take turns, and another one begins.
void RunAll(std::vector<Column>& columns, int rounds, int records) {
  for (int round = 0; round < rounds; ++round) {
    for (std::size_t i = 0; i < columns.size(); ++i) {
      Column& column = columns[(i + static_cast<std::size_t>(round)) % columns.size()];
      column.runs.push_back(RunPeer(column.kind, records));
    }
    std::fprintf(stderr, "round %d of %d is done\n", round + 1, rounds);
  }
}

int Run(int count, char** arguments) {
  int rounds = 5;
  int records = 20000;
  std::vector<std::string> names;
  CLI::App app("Measures the library beside other stores.");
  app.add_option("--rounds", rounds, "how often all is measured")->check(CLI::Range(1, 1000));
  app.add_option("--records", records, "how many records")->check(CLI::Range(100, 2000000));
  app.add_option("--store", names, "only these: kestdb blob blob-wal json json-wal lmdb plain")
      ->check(CLI::IsMember({"kestdb", "blob", "blob-wal", "json", "json-wal", "lmdb", "plain"}));
  CLI11_PARSE(app, count, arguments);

  fKLog = std::fopen("/dev/null", "w");  // the reports are made, and nobody reads them
  if (fKLog == nullptr) throw std::runtime_error("/dev/null can't be opened");
  std::vector<Column> columns = ChosenColumns(names);
  RunAll(columns, rounds, records);
  std::printf("Medians of %d rounds\n", rounds);
  PrintTable(columns, records);
  return 0;
}

}  // namespace

int main(int count, char** arguments) {
  try {
    return Run(count, arguments);
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 1;
  }
}
