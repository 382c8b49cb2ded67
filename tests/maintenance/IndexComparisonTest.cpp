#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "index/KSBKey.h"
#include "index/vbtree.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/pod.h"
#include "store/vbdbase.h"
#include "tests/maintenance/IndexRuns.h"
#include "tests/support/OtherProcess.h"

// The comparison of an index with its data file.

namespace {

namespace fs = std::filesystem;

using IndexComparison = IndexRuns;

TEST_F(IndexComparison, OfAHealthyPairCountsTheObjectsAndChangesNothing) {
  const std::string before = ReadBytes(index);
  EXPECT_EQ(ReportOf([this] { Compare(); }),
            "\n***** Start -- Compare Index and Data Files *****\n"
            "File name: " +
                base +
                "\n"
                "Analyzing " +
                data +
                " header...\n"
                "\tChecking signature...OK\n"
                "\tChecking the HeapStart value...OK\n"
                "The file header checks OK!\n"
                "\n"
                "Analyzing " +
                index +
                " header...\n"
                "\tChecking signature...OK\n"
                "\tChecking the HeapStart value...OK\n"
                "The file header checks OK!\n"
                "\n"
                "2 CInput - GUI objects are OK\n"
                "0 CAuxiliary - GUI objects are OK\n"
                "0 CTask - Task objects are OK\n"
                "0 CDVar - Task objects are OK\n"
                "0 CDResp - Task objects are OK\n"
                "0 CDCons - Task objects are OK\n"
                "0 CDObj - Task objects are OK\n"
                "0 CDLink - Task objects are OK\n"
                "0 CDEqn - Task objects are OK\n"
                "0 CApproxModels - Result objects are OK\n"
                "0 CResult - Result objects are OK\n"
                "40 CDPoint - Result objects are OK\n"
                "0 CIter - Result objects are OK\n"
                "0 CDSet - Task objects are OK\n"
                "1 CGPoint - GUI objects are OK\n"
                "1 CDBControl objects are OK\n"
                "0 CRDOE - Result objects are OK\n"
                "1 CDesignControl - GUI objects are OK\n"
                "0 CResp - GUI objects are OK\n"
                "0 CResid - Result objects are OK\n"
                "1 CMessage - Result objects are OK\n"
                "0 CRApproxMod - Result objects are OK\n"
                "\n***** End -- Compare Index and Data Files *****\n\n");
  EXPECT_EQ(ReadBytes(index), before);
  EXPECT_EQ(ReadBytes(data), dataBytes);
  EXPECT_EQ(Names(), "study.ksb study.kx");
}

TEST_F(IndexComparison, NeedsAnIndexFile) {
  fs::remove(index);
  EXPECT_EQ(ReportUntil<CNoFileExists>([this] { Compare(); }),
            CompareStart() + Failure("No file exists") + kCompareEnd);
  EXPECT_EQ(Names(), "study.ksb");
}

TEST_F(IndexComparison, DoesNotSeeASurplusKey) {
  // Kept: keys are looked for, and not gone through.
  InStudy([this](POD* pod) { pod->DataFile()->Delete(MessageBlock() + 28, true); });
  Counts fewer = counts;
  fewer.erase(20);
  EXPECT_EQ(ReportOf([this] { Compare(); }),
            CompareStart() + Headers() + AreOK(fewer) + kCompareEnd);
}

TEST_F(IndexComparison, DoesNotSeeAKeyThatLeadsElsewhere) {
  // Kept: keys are compared by their names alone.
  InStudy([](POD* pod) {
    KSBKey key("          2", -1, -1), work;
    pod->Index(20)->Delete(key, work, true);
    KSBKey wrong("          2", 4711, 21000);
    pod->Index(20)->Insert(wrong, work, true);
  });
  EXPECT_EQ(ReportOf([this] { Compare(); }),
            CompareStart() + Headers() + AreOK(counts) + kCompareEnd);
}

TEST_F(IndexComparison, StopsAtAMissingKey) {
  InStudy([](POD* pod) {
    KSBKey key("          2", -1, -1), work;
    pod->Index(20)->Delete(key, work, true);
  });
  EXPECT_EQ(ReportUntil<CIndexError>([this] { Compare(); }),
            CompareStart() + Headers() + AreOK(counts, 20) +
                Failure("Index file does not match the data file") + kCompareEnd);
}

TEST_F(IndexComparison, StopsAtACorruptObject) {
  PatchBytes(data, MessageBlock() + 28 + 20, "?");
  EXPECT_EQ(
      ReportUntil<CChecksum>([this] { Compare(); }),
      CompareStart() + Headers() + AreOK(counts, 20) + Failure("Checksum error") + kCompareEnd);
}

TEST_F(IndexComparison, OfADataFileWithoutBlocksFindsNoObjects) {
  WriteBytes(data, kEmptyFile);
  EXPECT_EQ(ReportUntil<CNoObjectsExist>([this] { Compare(); }),
            CompareStart() + EmptyStart(data) + SoundStart(index) + Failure("No objects exist") +
                kCompareEnd);
}

TEST_F(IndexComparison, StopsWhereAnotherProcessHasLockedTheIndexFile) {
  OtherProcess holder([this](const OtherProcess::Pause& pause) {
    std::FILE* file = std::fopen(index.c_str(), "r+b");
    NSFLock(file);
    pause();
    std::fclose(file);
  });
  EXPECT_EQ(ReportUntil<CFileLock>([this] { Compare(); }),
            CompareStart() + Failure("Error locking the file") + kCompareEnd);
  // The lock of the data file, which it had, is given back.
  std::FILE* file = std::fopen(data.c_str(), "r+b");
  EXPECT_TRUE(NSFLock(file));
  std::fclose(file);
  holder.Finish();
}

TEST_F(IndexComparison, StopsAtAnIndexFileThatIsNone) {
  WriteBytes(index, std::string(200, 'x'));
  EXPECT_EQ(ReportUntil<CWrongFileType>([this] { Compare(); }),
            CompareStart() + Failure("Wrong file type") + kCompareEnd);
}

}  // namespace
