#include <gtest/gtest.h>

#include <string>

#include "results/Message.h"
#include "store/KestErr.h"
#include "store/pod.h"
#include "tests/maintenance/IndexRuns.h"
#include "tests/support/StoredRecord.h"

// Rebuilds of an index, and comparisons, over old and damaged data files.

namespace {

// ---- Old revisions ----

class IndexRunRevision : public IndexRuns {
 protected:
  std::string DataAdvice(char letter) const {
    return std::string("ERROR: You must update the files to the current file revision.\n") +
           "       Data file reads version " + letter +
           "; current version is C.\n"
           "       Please rebuild the data file and then rebuild the index file.\n";
  }
};

TEST_F(IndexRunRevision, AInTheDataFileAsksForItsRebuild) {
  for (const char letter : {'A', 'a'}) {
    const std::string old = With(kOldFile, kLetterAt, std::string(1, letter));
    WriteBytes(data, old);
    EXPECT_EQ(ReportUntil<CFileNotReady>([this] { Compare(); }),
              CompareStart() + DataAdvice(letter) + Failure("File not ready") + kCompareEnd);
    EXPECT_EQ(ReportUntil<CFileNotReady>([this] { Rebuild(); }),
              Start() + Renamed() + DataAdvice(letter) + "NEW EXCEPTION: File not ready\n" +
                  Named() + "EXCEPTION: File not ready\n" + kEnd);
    EXPECT_EQ(ReadBytes(data), old);
  }
}

TEST_F(IndexRunRevision, AInTheIndexFileAsksForItsRebuild) {
  for (const char letter : {'A', 'a'}) {
    WriteBytes(index, OldIndex(letter));
    EXPECT_EQ(ReportUntil<CFileNotReady>([this] { Compare(); }),
              CompareStart() + "ERROR: You must update the files to the current file revision.\n" +
                  "       Index file reads version " + letter +
                  "; current version is C.\n"
                  "       Please rebuild the index file.\n" +
                  Failure("File not ready") + kCompareEnd);
  }
  EXPECT_EQ(ReportOf([this] { Rebuild(); }),
            Start() + Renamed() + Headers() + Indexed(counts) + kEnd);
  EXPECT_EQ(KeysOf(index), keys);
}

// ---- Damaged objects ----

using IndexRebuildDamage = IndexRuns;

TEST_F(IndexRebuildDamage, StopsAtACorruptObjectAndNamesTheBackup) {
  const std::string before = ReadBytes(index);
  PatchBytes(data, MessageBlock() + 28 + 20, "?");
  EXPECT_EQ(
      ReportUntil<CChecksum>([this] { Rebuild(); }),
      Start() + Renamed() + Headers() + Indexed(counts, 20) + FailureOfRebuild("Checksum error"));
  EXPECT_EQ(Names(), "study.ksb study.kx study.kx.old");
  EXPECT_EQ(ReadBytes(backup), before);
  keys[20].clear();
  EXPECT_EQ(KeysOf(index), keys);  // the half-made one
}

TEST_F(IndexRebuildDamage, StopsAtTwoObjectsOfOneKey) {
  InStudy([](POD* pod) {
    CMessage message = MessageOf(pod, 2);
    ASSERT_TRUE(message.GetObject());
    StoreRecord(pod, 21000, StoredRecord(message));
  });
  const std::string before = ReadBytes(index);
  EXPECT_EQ(
      ReportUntil<CDuplicateEntry>([this] { Rebuild(); }),
      Start() + Renamed() + Headers() + Indexed(counts, 20) + FailureOfRebuild("Duplicate entry"));
  EXPECT_EQ(ReadBytes(backup), before);
}

/// What is said of an object that can't be read as one of its class, though its checksum agrees.
std::string LeftOut(const std::string& name, long address) {
  return "WARNING: Could not read the " + name + " object at address " + std::to_string(address) +
         ".\n\tIt is not in the index.\n";
}

TEST_F(IndexRebuildDamage, WarnsOfAnObjectThatCannotBeDecodedAndIndexesTheRest) {
  long address = 0;
  InStudy([&](POD* pod) { address = StoreRecord(pod, 21000, "cut"); });
  const std::string warning = Failure("File corrupt") + LeftOut("CMessage", address);
  EXPECT_EQ(ReportOf([this] { Rebuild(); }), Start() + Renamed() + Headers() + Indexed(counts, 20) +
                                                 warning +
                                                 "\t1 CMessage - Result objects indexed\n"
                                                 "\t0 CRApproxMod - Result objects indexed\n" +
                                                 kEnd);
  EXPECT_EQ(KeysOf(index), keys);
  EXPECT_EQ(ReportOf([this] { Compare(); }), CompareStart() + Headers() + AreOK(counts, 20) +
                                                 warning +
                                                 "1 CMessage - Result objects are OK\n"
                                                 "0 CRApproxMod - Result objects are OK\n" +
                                                 kCompareEnd);
}

TEST_F(IndexRebuildDamage, WarnsOfAnObjectOfAnUnknownOldVersionAndIndexesTheRest) {
  long address = 0;
  // A task of version 8.
  InStudy([&](POD* pod) { address = StoreRecord(pod, 3000, Word(8) + Word(1)); });
  EXPECT_EQ(ReportOf([this] { Rebuild(); }),
            Start() + Renamed() + Headers() + Indexed(counts, 2) +
                "ERROR: CTask object at address " + std::to_string(address) +
                " has version 8; the oldest version that can be read is 9.\n" +
                Failure("Object type is invalid") + LeftOut("CTask", address) +
                Indexed(counts).substr(Indexed(counts, 2).size()) + kEnd);
  EXPECT_EQ(KeysOf(index), keys);
}

TEST_F(IndexRebuildDamage, WarnsOfAnObjectWithAnInvalidKeyAndIndexesTheRest) {
  long address = 0;
  // A message of task 0: the version, the task, no texts.
  InStudy([&](POD* pod) { address = StoreRecord(pod, 21000, Word(1) + Word(0) + Word(0)); });
  EXPECT_EQ(ReportOf([this] { Rebuild(); }), Start() + Renamed() + Headers() + Indexed(counts, 20) +
                                                 LeftOut("CMessage", address) +
                                                 "\t1 CMessage - Result objects indexed\n"
                                                 "\t0 CRApproxMod - Result objects indexed\n" +
                                                 kEnd);
  EXPECT_EQ(KeysOf(index), keys);
}

TEST_F(IndexRebuildDamage, StepsOverABadBlockAmongOthers) {
  PatchBytes(data, MessageBlock(), "?");
  InStudy([](POD* pod) { StoreMessage(pod, 7); });
  const long behind = KeysOf(index).at(20).at("          7");
  EXPECT_EQ(ReportOf([this] { Rebuild(); }),
            Start() + Renamed() + Headers() + Indexed(counts) + kEnd);
  keys[20] = {{"          7", behind}};
  EXPECT_EQ(KeysOf(index), keys);
}

TEST_F(IndexRebuildDamage, EndsAtABadBlockWithNoneBehindIt) {
  PatchBytes(data, MessageBlock(), "?");
  Counts fewer = counts;
  fewer.erase(20);
  EXPECT_EQ(ReportOf([this] { Rebuild(); }),
            Start() + Renamed() + Headers() + Indexed(fewer) + kEnd);
  keys[20].clear();
  EXPECT_EQ(KeysOf(index), keys);
}

TEST_F(IndexRebuildDamage, TakesTheBlocksThatAnOldHeaderLeavesOut) {
  // The file's end is told as that of the first blocks.
  PatchBytes(data, 4, Word(MessageBlock()));
  EXPECT_EQ(ReportOf([this] { Rebuild(); }),
            Start() + Renamed() + Headers() + Indexed(counts) + kEnd);
  EXPECT_EQ(KeysOf(index), keys);
}

}  // namespace
