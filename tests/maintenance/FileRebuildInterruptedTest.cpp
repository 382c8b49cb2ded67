#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <string>

#include "definition/Input.h"
#include "maintenance/DBUtilities.h"
#include "maintenance/Lock.h"
#include "store/DBI_IO.h"
#include "store/KestErr.h"
#include "tests/maintenance/RebuildReports.h"
#include "tests/support/FileFaults.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/OtherProcess.h"
#include "tests/support/StudyCheck.h"

// Rebuilds of data files that fail, or are killed, on the way: the study is never lost.

namespace {

namespace fs = std::filesystem;

/// A study with free blocks between its objects.
class InterruptedRebuild : public StudyRun {
 protected:
  InterruptedRebuild() {
    OpenDatabase(base);
    {
      const CLock lock(GetPOD(), 0);
      for (int id = 1; id <= 6; ++id) {
        CInput input(GetPOD());
        input.m_nID = id;
        input.m_strName = std::string(static_cast<std::size_t>(100 * id), 'i');
        input.PutObject();
      }
      for (const int id : {2, 5}) {
        CInput input(GetPOD());
        input.m_nID = id;
        input.RemoveObject();
      }
    }
    CloseDatabase();
    before = ReadBytes(data);
    KFileRebuild(data);
    whole = ReadBytes(data);
    WriteBytes(data, before);
    ClearLog();
  }

  std::string Start() const {
    return "\n***** Start -- Rebuild Data File *****\nFile name: " + data + "\n";
  }

  /// That the study is as it was, and its objects are found.
  void ExpectUntouched(const std::string& when) {
    ASSERT_EQ(ReadBytes(data), before) << when;
    ExpectStudy(when);
  }
  void ExpectStudy(const std::string& when) {
    OpenDatabase(base);
    for (int id = 1; id <= 6; ++id) {
      CInput input(GetPOD());
      input.m_nID = id;
      const bool removed = id == 2 || id == 5;
      ASSERT_EQ(input.GetObject(), !removed) << when;
      if (removed) continue;
      ASSERT_EQ(input.m_strName, std::string(static_cast<std::size_t>(100 * id), 'i')) << when;
    }
    CloseDatabase();
    ASSERT_EQ(FaultsOfStudy(base), "") << when;
  }

  const std::string copy = data + ".new";
  const std::string kEnd = "***** End -- Rebuild Data File *****\n\n";
  const std::string kLost = "ERROR: " + data + " does not exist, but " + copy +
                            " does.\n"
                            "     It may be the whole study, from a rebuild that was interrupted.\n"
                            "     Rename it to " +
                            data + ", or delete it.\n";
  std::string before;  ///< the data file
  std::string whole;   ///< its rebuild
};

// ---- A copy that can't be written ----

TEST_F(InterruptedRebuild, ByADiskThatIsFullLeavesTheFileAndTellsWhy) {
  {
    const FileSizeLimit full(400);
    EXPECT_EQ(ReportUntil<CFileWrite>([this] { KFileRebuild(data); }),
              Start() + SoundStart(data) + Failure("File write error") + kEnd);
  }
  EXPECT_EQ(Names(), "study.ksb study.ksb.new study.kx");
  ExpectUntouched("full");
  KFileRebuild(data);
  EXPECT_EQ(ReadBytes(data), whole);
  EXPECT_EQ(Names(), "study.ksb study.kx");
}

TEST_F(InterruptedRebuild, AtAnySizeOfTheCopyLeavesTheFile) {
  for (unsigned long size = 0; size < whole.size(); size += size < 100 ? 1 : 7) {
    {
      const FileSizeLimit full(size);
      ASSERT_THROW(KFileRebuild(data), CFileWrite) << size;
    }
    ASSERT_EQ(ReadBytes(data), before) << size;
    if (size % 50 == 0) ExpectUntouched(std::to_string(size));
  }
  const FileSizeLimit enough(whole.size());
  KFileRebuild(data);
  EXPECT_EQ(ReadBytes(data), whole);
}

class InterruptedWrites : public InterruptedRebuild, public testing::WithParamInterface<int> {};

TEST_P(InterruptedWrites, LeaveTheFileWhicheverFails) {
  int writes = 0;
  for (bool failed = true; failed; ++writes) {
    const std::string when = "write " + std::to_string(writes + 1);
    {
      const WriteFault fault(writes + 1, GetParam());
      if (fs::exists(copy)) fs::remove(copy);
      try {
        KFileRebuild(data);
        failed = false;
      } catch (const CKestErr&) {
        ASSERT_TRUE(fault.Happened()) << when;
      }
      ASSERT_EQ(fault.Happened(), failed) << when;
    }
    if (failed) ExpectUntouched(when);
  }
  EXPECT_GT(writes, 10);
  EXPECT_EQ(ReadBytes(data), whole);
  EXPECT_EQ(Names(), "study.ksb study.kx");
}

INSTANTIATE_TEST_SUITE_P(Errors, InterruptedWrites, testing::Values(ENOSPC, EIO));

TEST_F(InterruptedRebuild, ByDeathAtAnyWriteLeavesTheFile) {
  bool died = true;
  int writes = 0;
  for (; died; ++writes) {
    InOtherProcess([&] {
      const WriteFault fault(writes + 1, kDeath);
      KFileRebuild(data);
    });
    died = ReadBytes(data) == before;
    if (died) ExpectUntouched("write " + std::to_string(writes + 1));
  }
  EXPECT_GT(writes, 10);
  EXPECT_EQ(ReadBytes(data), whole);
}

// ---- The replacement ----

TEST_F(InterruptedRebuild, ByAFileThatCannotBeRemovedLeavesBoth) {
  for (const int error : {EACCES, EPERM, EBUSY}) {
    const RemoveFault fault(".ksb", error);
    EXPECT_EQ(ReportUntil<CAccessViolation>([this] { KFileRebuild(data); }),
              Start() + SoundStart(data) + "ERROR: Could not remove old file (" + data +
                  ")\n"
                  "     Original file was left unchanged\n"
                  "     Database may be in use by another process!\n" +
                  Failure("Access Violation") + kEnd);
    EXPECT_EQ(Names(), "study.ksb study.ksb.new study.kx");
    EXPECT_EQ(ReadBytes(copy), whole);
    ExpectUntouched("not removed");
  }
}

TEST_F(InterruptedRebuild, ByACopyThatCannotBeRenamedLeavesTheCopy) {
  {
    const RenameFault fault(".ksb.new", EACCES);
    EXPECT_EQ(ReportUntil<CAccessViolation>([this] { KFileRebuild(data); }),
              Start() + SoundStart(data) + "ERROR: Could not rename new file (" + copy + ") to " +
                  data + "\n" + Failure("Access Violation") + kEnd);
  }
  EXPECT_EQ(Names(), "study.ksb.new study.kx");
  EXPECT_EQ(ReadBytes(copy), whole);
}

TEST_F(InterruptedRebuild, ByDeathBetweenRemovalAndRenameLeavesAWholeCopyThatOpeningNames) {
  InOtherProcess([this] {
    const RenameFault fault(".ksb.new", kDeath);
    KFileRebuild(data);
  });
  EXPECT_EQ(Names(), "study.ksb.new study.kx");
  EXPECT_EQ(ReadBytes(copy), whole);
  EXPECT_EQ(ReportUntil<CNoFileExists>([this] { OpenDatabase(base); }),
            kLost + Failure("No file exists"));
  EXPECT_FALSE(IsOpen());
  EXPECT_EQ(Names(), "study.ksb.new study.kx study.kx.new");

  // The index is that of the file that is gone. Opening knows.
  fs::rename(copy, data);
  EXPECT_EQ(ReadBytes(data), whole);
  ExpectStudy("renamed");
}

TEST_F(InterruptedRebuild, IsNoLongerNamedOnceItsCopyIsDeleted) {
  fs::rename(data, copy);
  EXPECT_THROW(OpenDatabase(base), CNoFileExists);
  fs::remove(copy);
  EXPECT_EQ(ReportOf([this] {
              OpenDatabase(base);
              CloseDatabase();
            }),
            "");
  EXPECT_EQ(FaultsOfStudy(base), "");
}

TEST_F(InterruptedRebuild, WhoseFileIsStillThereOpensAndIgnoresTheCopy) {
  WriteBytes(copy, "the start of a copy");
  EXPECT_EQ(ReportOf([this] {
              OpenDatabase(base);
              CloseDatabase();
            }),
            "");
  EXPECT_EQ(ReadBytes(data), before);
  EXPECT_EQ(Names(), "study.ksb study.ksb.new study.kx");
}

// ---- Opening while a rebuild upgrades the file ----

TEST_F(InterruptedRebuild, OnTheWayOfAnUpgradeLeavesTheOldStudy) {
  PatchBytes(data, kVersionAt, Word(3000));
  before = ReadBytes(data);
  int writes = 0;
  // All writes of the copy, and some of the many of the index.
  for (bool failed = true; failed; writes += writes < 100 ? 1 : 101) {
    ASSERT_TRUE(fs::exists(data) || fs::exists(copy));
    if (!fs::exists(data)) fs::rename(copy, data);
    try {
      const WriteFault fault(writes + 1, EIO);
      OpenDatabase(base);
      failed = fault.Happened();
    } catch (const CKestErr&) {
      EXPECT_FALSE(IsOpen());
    }
    ASSERT_FALSE(fs::exists(base + ".lck")) << writes;
    if (failed && IsOpen()) CloseDatabase();
  }
  CloseDatabase();
  EXPECT_GT(writes, 10);
  ExpectStudy("upgraded");
}

}  // namespace
