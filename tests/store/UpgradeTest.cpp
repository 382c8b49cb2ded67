#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>

#include "maintenance/DBUtilities.h"
#include "maintenance/Lock.h"
#include "store/DBI_IO.h"
#include "store/KestErr.h"
#include "tests/store/Upgrades.h"
#include "tests/support/FileFaults.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/OtherProcess.h"

// What opening a study does about a data file of another version, and a missing index.

namespace {

namespace fs = std::filesystem;

// ---- Data files of other versions ----

class UpgradeOfVersion : public Upgrades, public testing::WithParamInterface<long> {};

INSTANTIATE_TEST_SUITE_P(Old, UpgradeOfVersion, testing::Values(1, 2, 1000, 2999, 3000));
INSTANTIATE_TEST_SUITE_P(New, UpgradeOfVersion, testing::Values(3002, 4000, 0x7FFFFFFF));

TEST_P(UpgradeOfVersion, RebuildsTheDataFileAndThenItsIndex) {
  const RawFile old = ReadRawFile(data);
  long live = 40;
  long dropped = 0;
  for (const RawBlock& block : old.blocks) (block.status == 'N' ? live : dropped) += block.length;
  ASSERT_GT(dropped, 0);
  SetVersion(GetParam());
  EXPECT_EQ(OpeningReport(),
            FileStart() + SoundStart(data) + "6 variable blocks were written (" +
                std::to_string(live) + " bytes)\n2 variable blocks were compressed out (" +
                std::to_string(dropped) + " bytes)\n0 unrecoverable blocks were found\n" +
                kFileEnd + IndexReport());
  EXPECT_EQ(static_cast<long>(fs::file_size(data)), live);
  EXPECT_EQ(Names(), "study.ksb study.kx");
  ExpectWholeStudy();
  EXPECT_EQ(OpeningReport(), "");
}

TEST_P(UpgradeOfVersion, MakesAnIndexWhereThereWasNone) {
  SetVersion(GetParam());
  fs::remove(index);
  const std::string report = OpeningReport();
  EXPECT_TRUE(report.starts_with(FileStart())) << report;
  EXPECT_TRUE(report.ends_with(kFileEnd + IndexReport())) << report;
  ExpectWholeStudy();
}

TEST_P(UpgradeOfVersion, DropsAnIndexOfAnyContents) {
  SetVersion(GetParam());
  WriteBytes(index, "no index");
  OpeningReport();
  ExpectWholeStudy();
}

class NoUpgradeOfVersion : public Upgrades, public testing::WithParamInterface<long> {};

INSTANTIATE_TEST_SUITE_P(Versions, NoUpgradeOfVersion,
                         testing::Values(3001, 0, -1, -3000, -0x80000000L));

TEST_P(NoUpgradeOfVersion, OpensTheFileAsItIs) {
  SetVersion(GetParam());
  const std::string dataBytes = ReadBytes(data);
  const std::string indexBytes = ReadBytes(index);
  EXPECT_EQ(OpeningReport(), "");
  EXPECT_EQ(ReadBytes(data), dataBytes);
  EXPECT_EQ(ReadBytes(index), indexBytes);
}

TEST_P(NoUpgradeOfVersion, DoesNotLookAtTheAgeOfTheIndex) {
  SetVersion(GetParam());
  PatchBytes(index, kVersionAt, Word(1));
  fs::last_write_time(index, fs::last_write_time(data) - std::chrono::hours(10000));
  EXPECT_EQ(OpeningReport(), "");
  EXPECT_EQ(WordAt(ReadBytes(index), kVersionAt), 1);
}

TEST_F(Upgrades, OfAFileOfRevisionAMakeItOneOfTheCurrentRevision) {
  // One Input, by the layout of its first version: an empty file of revision A has no objects.
  WriteBytes(data, FileHeaderBytes(0, 28, 28, 0, 'A'));
  PatchBytes(data, kVersionAt, Word(2000));
  OpeningReport();
  EXPECT_EQ(ReadBytes(data).substr(16, 12), "VBDBASEC" + Word(3001));
  EXPECT_EQ(FaultsOfStudy(base), "");
}

TEST_F(Upgrades, OfACorruptObjectWarnAndKeepIt) {
  const long address = KeysOf(index).at(0).at("          4");
  SetVersion(3000);
  PatchBytes(data, address + 20, "W");  // the first letter of its name
  const std::string report = OpeningReport();
  EXPECT_NE(report.find("    Old object at address " + std::to_string(address + 8) +
                        "\n    This object may be corrupt.\n"),
            std::string::npos)
      << report;
  EXPECT_TRUE(report.ends_with(IndexReport())) << report;
  EXPECT_EQ(FaultsOfStudy(base), "");
}

TEST_F(Upgrades, OfAFileThatCannotBeRebuiltChangeNothing) {
  SetVersion(3000);
  PatchBytes(data, 40, "?");
  const std::string dataBytes = ReadBytes(data);
  const std::string indexBytes = ReadBytes(index);
  EXPECT_EQ(FailureReport<CFileCorrupt>(), FileStart() + "Analyzing " + data +
                                               " header...\n"
                                               "\tChecking signature...OK\n"
                                               "\tChecking the HeapStart value...\n"
                                               "ERROR: Bad HeapStart value!\n"
                                               "\tNo variable block found at file address: 40\n\n"
                                               "ERROR: The file header has 1 errors!\n" +
                                               Failure("File corrupt") + kFileEnd +
                                               "EXCEPTION: File corrupt\n");
  EXPECT_EQ(ReadBytes(data), dataBytes);
  EXPECT_EQ(ReadBytes(index), indexBytes);
  EXPECT_EQ(Names(), "study.ksb study.kx");
}

TEST_F(Upgrades, WhoseOldIndexCannotBeDeletedFail) {
  SetVersion(3000);
  const std::string indexBytes = ReadBytes(index);
  {
    const RemoveFault fault(".kx", EACCES);
    const std::string report = FailureReport<CFileRemove>();
    EXPECT_TRUE(report.ends_with(kFileEnd + Failure("File not removed"))) << report;
  }
  EXPECT_EQ(ReadBytes(index), indexBytes);
  KIndexRebuildCheck(base, true);
  ExpectWholeStudy();
}

TEST_F(Upgrades, OnAFullDiskChangeNothing) {
  SetVersion(3000);
  const std::string dataBytes = ReadBytes(data);
  const std::string indexBytes = ReadBytes(index);
  {
    const FileSizeLimit full(300);
    EXPECT_EQ(FailureReport<CFileWrite>(), FileStart() + SoundStart(data) +
                                               Failure("File write error") + kFileEnd +
                                               "EXCEPTION: File write error\n");
  }
  EXPECT_EQ(ReadBytes(data), dataBytes);
  EXPECT_EQ(ReadBytes(index), indexBytes);
  OpeningReport();
  ExpectWholeStudy();
}

// ---- Missing indexes ----

class MissingIndex : public Upgrades {
 protected:
  MissingIndex() {
    keys = KeysOf(index);
    dataBytes = ReadBytes(data);
    fs::remove(index);
  }

  Keys keys;
  std::string dataBytes;
};

TEST_F(MissingIndex, IsMadeFromTheDataFileWithTwoMessages) {
  EXPECT_EQ(OpeningReport(),
            "No index file found or the index needs rebuilding.\n"
            "Will attempt to create a new index file (" +
                index + ") from the specified data file (" + data +
                ").\n"
                "\n***** Start -- Rebuild Index File *****\n"
                "File name: " +
                base +
                "\n"
                "Renamed original index file (" +
                index + ") to " + index +
                ".old\n"
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
                "\t3 CInput - GUI objects indexed\n"
                "\t0 CAuxiliary - GUI objects indexed\n"
                "\t0 CTask - Task objects indexed\n"
                "\t0 CDVar - Task objects indexed\n"
                "\t0 CDResp - Task objects indexed\n"
                "\t0 CDCons - Task objects indexed\n"
                "\t0 CDObj - Task objects indexed\n"
                "\t0 CDLink - Task objects indexed\n"
                "\t0 CDEqn - Task objects indexed\n"
                "\t0 CApproxModels - Result objects indexed\n"
                "\t0 CResult - Result objects indexed\n"
                "\t0 CDPoint - Result objects indexed\n"
                "\t0 CIter - Result objects indexed\n"
                "\t0 CDSet - Task objects indexed\n"
                "\t1 CGPoint - GUI objects indexed\n"
                "\t1 CDBControl objects indexed\n"
                "\t0 CRDOE - Result objects indexed\n"
                "\t1 CDesignControl - GUI objects indexed\n"
                "\t0 CResp - GUI objects indexed\n"
                "\t0 CResid - Result objects indexed\n"
                "\t0 CMessage - Result objects indexed\n"
                "\t0 CRApproxMod - Result objects indexed\n"
                "\n***** End -- Rebuild Index File *****\n\n");
  EXPECT_EQ(ReadBytes(data), dataBytes);
  EXPECT_EQ(KeysOf(index), keys);
  EXPECT_EQ(Names(), "study.ksb study.kx");
  ExpectWholeStudy();
}

TEST_F(MissingIndex, LeavesTheStudyOpen) {
  for (const char* extension : {"", ".ksb", ".KSB"}) {
    if (fs::exists(index)) fs::remove(index);
    OpenDatabase(base + extension);
    EXPECT_TRUE(IsOpen());
    EXPECT_TRUE(InputOf(4).FindObject());
    EXPECT_TRUE(InputOf(7).PutObject());
    EXPECT_TRUE(InputOf(7).RemoveObject());
    CloseDatabase();
    EXPECT_EQ(FaultsOfStudy(base), "");
  }
}

TEST_F(MissingIndex, OfAFileOfNoVersionIsMadeToo) {
  SetVersion(0);
  EXPECT_EQ(OpeningReport(), IndexReport());
  EXPECT_EQ(KeysOf(index), keys);
}

TEST_F(MissingIndex, OfADataFileWithoutBlocksNeedsNoMessage) {
  WriteBytes(data, kEmptyFile);
  EXPECT_EQ(OpeningReport(), "");
  EXPECT_EQ(FaultsOfStudy(base), "");
  EXPECT_EQ(ReadRawFile(data).blocks.size(), 3U);
}

TEST_F(MissingIndex, OfADataFileWhoseHeaderLeavesAllBlocksOutWaitsForItsRebuild) {
  for (const long end : {40L, 60L}) {
    WriteBytes(data, With(dataBytes, kEndOfFileAt, Word(end)));
    const std::string report = FailureReport<CNoObjectsExist>();
    EXPECT_TRUE(report.starts_with(Messages())) << report;
    EXPECT_FALSE(fs::exists(index));
    KFileRebuild(data);
    ExpectWholeStudy();
    fs::remove(index);
  }
}

TEST_F(Upgrades, OfAMissingDataFileBeginANewStudyWithoutAMessage) {
  fs::remove(data);
  EXPECT_EQ(OpeningReport(), "");
  EXPECT_EQ(ReadRawFile(data).blocks.size(), 3U);
  EXPECT_EQ(FaultsOfStudy(base), "");
}

TEST_F(MissingIndex, OfACorruptObjectFailsAndLeavesNoHalfMadeOne) {
  const long address = keys.at(17).begin()->second;
  PatchBytes(data, address + 20, "?");
  const std::string damaged = ReadBytes(data);
  for (int attempt = 0; attempt < 2; ++attempt) {
    EXPECT_EQ(FailureReport<CChecksum>(),
              Messages() + IndexStart() + Indexed(counts, 17) + Failure("Checksum error") +
                  "The original file was renamed to " + backup + "\nEXCEPTION: Checksum error\n" +
                  kIndexEnd + "EXCEPTION: Checksum error\n");
    EXPECT_EQ(ReadBytes(data), damaged);
    EXPECT_FALSE(fs::exists(index));
  }
  WriteBytes(data, dataBytes);
  EXPECT_EQ(OpeningReport(), IndexReport());
  EXPECT_EQ(KeysOf(index), keys);
  EXPECT_EQ(Names(), "study.ksb study.kx");
}

class MissingIndexWrites : public MissingIndex, public testing::WithParamInterface<int> {};

INSTANTIATE_TEST_SUITE_P(Errors, MissingIndexWrites, testing::Values(EIO, ENOSPC));

TEST_P(MissingIndexWrites, ThatFailLeaveNothingOpenAndNoHalfMadeIndex) {
  int failures = 0;
  // A step that shares no factor with what a node, or a tree, takes.
  for (int n = 1;; n += 13) {
    const WriteFault fault(n, GetParam());
    try {
      OpenDatabase(base);
    } catch (const CKestErr&) {
      ++failures;
      ASSERT_FALSE(IsOpen()) << n;
      ASSERT_EQ(ReadBytes(data), dataBytes) << n;
    }
    ASSERT_FALSE(fs::exists(base + ".lck")) << n;
    if (!fault.Happened()) break;
    // Only a failure that came too late to matter may leave an index, and then a whole one.
    if (fs::exists(index)) {
      const WriteFault none(0, 0);
      CloseDatabase();
      ASSERT_EQ(KeysOf(index), keys) << n;
      fs::remove(index);
    }
  }
  CloseDatabase();
  EXPECT_GT(failures, 20);
  ExpectWholeStudy();
  EXPECT_EQ(KeysOf(index), keys);
}

TEST_F(MissingIndex, OnADiskThatIsFullAnywhereLeavesNoHalfMadeOne) {
  for (unsigned long size = 0; size < 60000; size += 501) {
    {
      const FileSizeLimit full(size);
      ASSERT_THROW(OpenDatabase(base), CFileWrite) << size;
    }
    ASSERT_FALSE(IsOpen()) << size;
    ASSERT_FALSE(fs::exists(index)) << size;
    ASSERT_FALSE(fs::exists(base + ".lck")) << size;
    ASSERT_EQ(ReadBytes(data), dataBytes) << size;
  }
  ExpectWholeStudy();
}

TEST_F(MissingIndex, OfADataFileThatAnotherProcessHasLockedFails) {
  OtherProcess holder([this](const OtherProcess::Pause& pause) {
    std::FILE* file = std::fopen(data.c_str(), "r+b");
    NSFLock(file);
    pause();
    std::fclose(file);
  });
  FailureReport<CFileLock>();
  EXPECT_FALSE(fs::exists(index));
  holder.Finish();
  OpeningReport();
  ExpectWholeStudy();
}

}  // namespace
