#include "tests/fault/pairs/PairRun.h"

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <stdexcept>
#include <utility>

#include "tests/support/Bytes.h"
#include "tests/support/TempFolder.h"

namespace fs = std::filesystem;

namespace {

/// Findings in memory that parent and children share.
class SharedFindings {
 public:
  explicit SharedFindings(std::size_t count)
      : size_(std::max<std::size_t>(count, 1) * sizeof(Findings)) {
    memory_ = mmap(nullptr, size_, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory_ == MAP_FAILED) throw std::runtime_error("no shared memory");
  }
  SharedFindings(const SharedFindings&) = delete;
  SharedFindings& operator=(const SharedFindings&) = delete;
  ~SharedFindings() { munmap(memory_, size_); }

  Findings* All() { return static_cast<Findings*>(memory_); }

 private:
  std::size_t size_;
  void* memory_;
};

}  // namespace

std::vector<Findings> RunWithFindings(
    std::size_t count, const std::function<CaseResult(std::size_t, Findings&)>& steps,
    std::vector<CaseResult>& results) {
  SharedFindings shared(count);
  results = RunCases(count, [&](std::size_t i) {
    try {
      return steps(i, shared.All()[i]);
    } catch (const std::exception& error) {  // of another family than the library's
      CaseResult failed;
      failed.ending = Ending::Failed;
      std::snprintf(failed.note, sizeof failed.note, "%s", error.what());
      return failed;
    }
  });
  return {shared.All(), shared.All() + count};
}

// ---- One pair ----

namespace {

/// What is told of a variant.
struct TableRow {
  std::string variant;
  Outcome outcome;
};

struct PairKind {
  SummaryRow summary;
  std::vector<TableRow> variants;
};

std::vector<PairKind>& Kinds() {
  static std::vector<PairKind> kinds;
  return kinds;
}

PairKind& KindOf(const std::string& name) {
  for (PairKind& kind : Kinds()) {
    if (kind.summary.what == name) return kind;
  }
  Kinds().push_back({{name}, {}});
  return Kinds().back();
}

/// Puts a copy of the pair to a place where nothing is left of another one.
void PutPair(const TempFolder& folder, const std::string& base, const Pair& pair) {
  for (const auto& entry : fs::directory_iterator(folder.Path())) fs::remove_all(entry.path());
  if (pair.data) WriteBytes(base + ".ksb", *pair.data);
  if (pair.index) WriteBytes(base + ".kx", *pair.index);
  if (pair.arrange) pair.arrange(base);
}

/// The bytes of the data file, nothing for none.
std::string DataBytes(const std::string& base) {
  return fs::is_regular_file(base + ".ksb") ? ReadBytes(base + ".ksb") : "";
}

constexpr const char* kCourses[] = {"open, read, check", "rebuild", "open, then rebuild",
                                    "update, then rebuild"};

class PairCourses {
 public:
  explicit PairCourses(const Pair& pair) : pair_(pair) {}

  CaseResult Run(std::size_t which, Findings& findings) {
    PutPair(folder_, base_, pair_);
    const std::size_t sizes = pair_.data.value_or("").size() + pair_.index.value_or("").size();
    const Traces traces(base_, sizes);
    CaseResult result = Take(which, findings);
    const std::string left = traces.Left();
    const std::string note = left.empty() && spoilt_ ? "a failed open changed the data file" : left;
    if (!note.empty()) {
      result.ending = Ending::Failed;
      note.copy(result.note, sizeof result.note - 1);
    }
    return result;
  }

 private:
  CaseResult Take(std::size_t which, Findings& findings) {
    Course course(base_, pair_.known, findings);
    const std::string before = DataBytes(base_);
    if (which == 0) course.Read();
    if (which == 2) course.Open();
    if (which == 3) course.Update();
    spoilt_ = which != 1 && !findings.isOpen && DataBytes(base_) != before;
    if (which == 0) {
      PutPair(folder_, base_, pair_);
      course.Check();
      return VerdictOnReading(findings);
    }
    course.Rebuild();
    return VerdictOnRebuild(findings, pair_.known.objects.size());
  }

  const Pair& pair_;
  TempFolder folder_;
  std::string base_ = folder_ / "study";
  bool spoilt_ = false;
};

}  // namespace

Outcome TakeCourses(const std::string& kind, const std::string& variant, const Pair& pair) {
  PairCourses courses(pair);
  std::vector<CaseResult> results;
  const auto findings = RunWithFindings(
      std::size(kCourses), [&](std::size_t i, Findings& found) { return courses.Run(i, found); },
      results);
  for (std::size_t i = 0; i < results.size(); ++i) {
    Count(KindOf(kind).summary, results[i]);
    if (results[i].ending >= Ending::Silent) {
      ADD_FAILURE() << kind << ", " << variant << ", " << kCourses[i] << ": "
                    << EndingName(results[i].ending) << ", " << results[i].note;
    }
  }
  const Outcome outcome{findings[0], findings[1], findings[2], findings[3]};
  KindOf(kind).variants.push_back({variant, outcome});
  return outcome;
}

// ---- The table ----

namespace {

std::string CellOf(const char* text, const char* quiet) {
  return text[0] == '\0' ? quiet : text;
}

std::string RebuildCell(const Findings& findings) {
  if (!findings.refused) return Words(findings.atLast);
  const std::string why = CellOf(findings.indexRebuild, "refused");
  return why +
         (findings.gone == 0 ? ", all there" : ", " + std::to_string(findings.gone) + " GONE");
}

void PrintVariant(const std::string& kind, const TableRow& row) {
  const Findings& read = row.outcome.read;
  std::printf("| %s: %s | %s | %s | %s | %s | %s | %s | %s | %s | %s |\n", kind.c_str(),
              row.variant.c_str(), read.isOpen ? CellOf(read.opened, "opens").c_str() : read.opened,
              Words(read.byKey).c_str(), Words(read.inIndexOrder).c_str(),
              Words(read.inFileOrder).c_str(), CellOf(read.fileCheck, "clean").c_str(),
              CellOf(read.indexCheck, "clean").c_str(), RebuildCell(row.outcome.rebuilt).c_str(),
              RebuildCell(row.outcome.opened).c_str(), RebuildCell(row.outcome.updated).c_str());
}

}  // namespace

void PrintCourses() {
  std::printf(
      "\n| pair | open | by key | in index order | in file order | file check | index check | "
      "rebuild | open, rebuild | update, rebuild |\n|---|---|---|---|---|---|---|---|---|---|\n");
  std::vector<SummaryRow> rows;
  for (const PairKind& kind : Kinds()) {
    for (const TableRow& row : kind.variants) PrintVariant(kind.summary.what, row);
    rows.push_back(kind.summary);
  }
  std::printf("\n%s", SummaryTitle("pair of files that don't belong together").c_str());
  for (const SummaryRow& row : rows) std::printf("%s", row.Line().c_str());
  for (SummaryRow& row : rows) row.what = "mismatched pair: " + row.what;
  AppendSummary(rows);
}
