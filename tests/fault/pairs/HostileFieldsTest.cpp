#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>

#include "tests/fault/Summary.h"
#include "tests/fault/pairs/Course.h"
#include "tests/fault/pairs/Lies.h"
#include "tests/fault/pairs/Matches.h"
#include "tests/fault/pairs/PairRun.h"
#include "tests/fault/pairs/RecordFields.h"
#include "tests/support/Bytes.h"
#include "tests/support/TempFolder.h"

// Files that lie behind checksums that are right: each field with each hostile value, and all that
// a user does with a study. The program's argument says how many of them: every one for 1 or 0,
// every n-th for n.

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kUsualStride = 48;
constexpr unsigned kSeed = 20;
constexpr std::size_t kFewest = 6;
constexpr int kMostTold = 40;

std::size_t stride = kUsualStride;
std::vector<SummaryRow> rows;

/// One of n lies, but some of each kind, and always the same.
std::vector<Lie> SampleOf(std::vector<Lie> lies) {
  if (stride <= 1) return lies;
  std::mt19937 random(kSeed);
  std::shuffle(lies.begin(), lies.end(), random);
  lies.resize(std::min(lies.size(), std::max(lies.size() / stride, kFewest)));
  return lies;
}

/// What a user does with a study with one lie in it.
class LieCase {
 public:
  LieCase(const FilePair& sound, Which file, const Lie& lie)
      : forged_(sound), file_(file), lie_(lie) {
    lie_.tell(forged_);
    known_.objects = ObjectsIn(sound.data);
    known_.changed = lie.changed;
  }

  CaseResult Run(Findings& findings) {
    const Traces traces(base_, forged_.Files().data.size() + forged_.Files().index.size());
    Step(findings, [](Course& course) { course.Read(); });
    Step(findings, [](Course& course) { course.Check(); });
    Step(findings, [](Course& course) { course.Rebuild(); });
    // What is lost when lies are written through is not counted.
    Findings uncounted = {};
    Step(uncounted, [](Course& course) { course.Update(); });
    CaseResult result = Verdict(findings);
    if (const std::string left = traces.Left(); !left.empty()) {
      result.ending = Ending::Failed;
      left.copy(result.note, sizeof result.note - 1);
    }
    return result;
  }

 private:
  template <class Take>
  void Step(Findings& findings, Take take) {
    for (const auto& entry : fs::directory_iterator(folder_.Path())) fs::remove_all(entry.path());
    WriteBytes(base_ + ".ksb", forged_.Files().data);
    WriteBytes(base_ + ".kx", forged_.Files().index);
    Course course(base_, known_, findings);
    take(course);
  }
  CaseResult Verdict(const Findings& findings) const {
    const std::size_t counted = known_.objects.size() - (lie_.changed == 0 ? 0 : 1);
    return VerdictOnForgery(findings, counted, file_ == Which::Index);
  }

  Forgery forged_;
  Which file_;
  const Lie& lie_;
  Course::Known known_;
  TempFolder folder_;
  std::string base_ = folder_ / "study";
};

/// Runs a sample of the lies. Fails the test for each that ended in no lawful way.
void Tell(const std::string& kind, const FilePair& sound, Which file, const std::vector<Lie>& all) {
  ASSERT_FALSE(all.empty());
  const std::vector<Lie> lies = SampleOf(all);
  std::vector<CaseResult> results;
  RunWithFindings(
      lies.size(),
      [&](std::size_t i, Findings& findings) {
        return LieCase(sound, file, lies[i]).Run(findings);
      },
      results);
  SummaryRow row{kind};
  int told = 0;
  for (std::size_t i = 0; i < lies.size(); ++i) {
    Count(row, results[i]);
    if (results[i].ending >= Ending::Silent && ++told <= kMostTold) {
      ADD_FAILURE() << kind << ": " << lies[i].name << ": " << EndingName(results[i].ending) << ", "
                    << results[i].note;
    }
  }
  rows.push_back(row);
}

const FilePair& Whole() {
  return Files().whole;
}
/// Has the longest free list.
const FilePair& Freed() {
  return Files().less;
}

}  // namespace

TEST(HostileFields, TheLayoutsEndWithTheRecords) {
  std::size_t texts = 0;
  std::size_t lists = 0;
  for (const ListedObject& object : ObjectsIn(Whole().data)) {
    for (const RecordCount& count : CountsIn(object)) {
      ++(count.of == RecordCount::Of::Text ? texts : lists);
    }
  }
  EXPECT_EQ(FreeList(Freed().data).size(), 9U);
  EXPECT_GT(texts, 50U);
  EXPECT_GT(lists, 100U);
}

TEST(HostileFields, NoLieEndsClean) {
  const Lie none{"none", [](Forgery&) {}};
  std::vector<CaseResult> results;
  RunWithFindings(
      1,
      [&](std::size_t, Findings& findings) {
        return LieCase(Whole(), Which::Data, none).Run(findings);
      },
      results);
  EXPECT_EQ(results[0].ending, Ending::Clean) << results[0].note;
}

// ---- Records and object headers ----

TEST(HostileFields, LengthsOfTexts) {
  Tell("record: length of a text", Whole(), Which::Data, TextLengths(Whole()));
}

TEST(HostileFields, CountsOfLists) {
  Tell("record: count of a list", Whole(), Which::Data, ListCounts(Whole()));
}

TEST(HostileFields, ClassIDsOfObjects) {
  Tell("object: class ID", Whole(), Which::Data, ClassIDs(Whole()));
}

TEST(HostileFields, AddressWordsOfObjects) {
  Tell("object: its own address", Whole(), Which::Data, AddressWords(Whole()));
}

// ---- Blocks and file headers ----

TEST(HostileFields, LengthsOfLiveBlocks) {
  Tell("data file: length of a live block", Whole(), Which::Data, LiveLengths(Whole()));
}

TEST(HostileFields, LengthsOfFreeBlocks) {
  Tell("data file: length of a free block", Freed(), Which::Data,
       FreeLengths(Freed(), Which::Data));
}

TEST(HostileFields, LengthsOfNodeBlocks) {
  Tell("index file: length of a node's block", Whole(), Which::Index, NodeLengths(Whole()));
}

TEST(HostileFields, FreeSpace) {
  Tell("data file: free space", Freed(), Which::Data, HeaderWords(Freed(), Which::Data, 0));
  Tell("index file: free space", Whole(), Which::Index, HeaderWords(Whole(), Which::Index, 0));
}

TEST(HostileFields, EndOfFile) {
  Tell("data file: end of file", Whole(), Which::Data, HeaderWords(Whole(), Which::Data, 4));
  Tell("index file: end of file", Whole(), Which::Index, HeaderWords(Whole(), Which::Index, 4));
}

TEST(HostileFields, HeapStart) {
  Tell("data file: heap start", Whole(), Which::Data, HeaderWords(Whole(), Which::Data, 8));
  Tell("index file: heap start", Whole(), Which::Index, HeaderWords(Whole(), Which::Index, 8));
}

TEST(HostileFields, HighestBlock) {
  Tell("data file: highest block", Whole(), Which::Data, HeaderWords(Whole(), Which::Data, 12));
  Tell("index file: highest block", Whole(), Which::Index, HeaderWords(Whole(), Which::Index, 12));
}

TEST(HostileFields, CyclesOfFreeBlocks) {
  Tell("data file: cycle in the free list", Freed(), Which::Data, FreeCycles(Freed(), Which::Data));
}

TEST(HostileFields, FreeListsThatLeaveThemselves) {
  Tell("data file: free list leads elsewhere", Freed(), Which::Data,
       FreeLists(Freed(), Which::Data));
}

// ---- Trees ----

TEST(HostileFields, WordsOfTreeHeaders) {
  const char* const words[] = {"order",  "entry size", "number of entries", "number of nodes",
                               "height", "root",       "class ID"};
  for (std::size_t i = 0; i < std::size(words); ++i) {
    Tell(std::string("tree header: ") + words[i], Whole(), Which::Index, TreeWords(Whole(), 4 * i));
  }
}

TEST(HostileFields, CountsOfKeys) {
  Tell("node: number of keys", Whole(), Which::Index, KeyCounts(Whole()));
}

TEST(HostileFields, LeftBranchesOfNodes) {
  Tell("node: left branch", Whole(), Which::Index, LeftBranches(Whole()));
}

TEST(HostileFields, BranchesOfEntries) {
  Tell("node: branch of an entry", Whole(), Which::Index, EntryBranches(Whole()));
}

TEST(HostileFields, AddressesOfEntries) {
  Tell("node: object address of an entry", Whole(), Which::Index, EntryAddresses(Whole()));
}

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (argc > 1) stride = static_cast<std::size_t>(std::strtoul(argv[1], nullptr, 10));
  const int failed = RUN_ALL_TESTS();
  if (testing::GTEST_FLAG(list_tests)) return failed;
  std::printf("\n%s", SummaryTitle("hostile field").c_str());
  for (const SummaryRow& row : rows) std::printf("%s", row.Line().c_str());
  for (SummaryRow& row : rows) row.what = "hostile field: " + row.what;
  AppendSummary(rows);
  return failed;
}
