#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "maintenance/DBUtilities.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/vbdbase.h"
#include "tests/maintenance/DataFiles.h"
#include "tests/support/CloseFault.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/OtherProcess.h"
#include "tests/support/Study.h"

namespace {

const std::string kNoLock(12, '\0');

/// The sample file, locked by owner 7.
const std::string kLockedFile =
    With(kSampleFile, kLockAt, Bytes("07 00 00 00 02 00 00 00 01 00 00 00"));

class ClearedLock : public FileRun {
 protected:
  /// The log of a run that does its work, and leaves nothing open.
  std::string Report(const std::string& file) {
    const auto descriptors = OpenDescriptors();
    ClearLog();
    KForceUnlock(file);
    EXPECT_EQ(OpenDescriptors(), descriptors);
    return LogText();
  }
  /// The log of one that fails and leaves the file as it was.
  template <class Error>
  std::string Refusal() {
    return ReportUntil<Error>([this] { KForceUnlock(path); });
  }
  std::string Run(const std::string& inner) const { return Run(path, inner); }
  static std::string Run(const std::string& file, const std::string& inner) {
    return "\n***** Start -- Unlocking File *****\nFile name: " + file + "\n" + inner +
           "***** End -- Unlocking File *****\n";
  }
  std::string Steps() const { return Steps(path); }
  static std::string Steps(const std::string& file) {
    return file +
           " opened.\n"
           "File locked using operating system.\n"
           "Moved to file header location.\n"
           "Read the file header.\n"
           "File signature checks...OK\n"
           "Moved to lock location.\n"
           "Reinitialized file lock.\n"
           "File unlocked using operating system.\n";
  }
};

TEST_F(ClearedLock, IsTwelveZeroBytesAndNothingElseChanges) {
  Make(kLockedFile);
  EXPECT_EQ(Report(path),
            "\n"
            "***** Start -- Unlocking File *****\n"
            "File name: " +
                path + "\n" + path +
                " opened.\n"
                "File locked using operating system.\n"
                "Moved to file header location.\n"
                "Read the file header.\n"
                "File signature checks...OK\n"
                "Moved to lock location.\n"
                "Reinitialized file lock.\n"
                "File unlocked using operating system.\n"
                "***** End -- Unlocking File *****\n");
  EXPECT_EQ(HexAt(path, 0, 40),
            "71 00 00 00 C3 00 00 00 28 00 00 00 9A 00 00 00 "
            "56 42 44 42 41 53 45 43 B9 0B 00 00 "
            "00 00 00 00 00 00 00 00 00 00 00 00");
  EXPECT_EQ(HexAt(path, 40, 1000), Hex(kLockedFile.substr(40)));
}

TEST_F(ClearedLock, LetsAnotherOwnerLockTheFile) {
  Make(kSampleFile);
  vbDatabase db;
  db.Open(path, vbReadWrite);
  db.LockFile(7, vbWriteLock);
  db.Close();
  db.Open(path, vbReadWrite);
  EXPECT_THROW(db.LockFile(8, vbWriteLock), CLockViolation);
  db.Close();
  KForceUnlock(path);
  db.Open(path, vbReadWrite);
  EXPECT_NO_THROW(db.LockFile(8, vbWriteLock));
  db.Close();
}

TEST_F(ClearedLock, OfAFreeFileLeavesAllBytesAsTheyAre) {
  Make(kSampleFile);
  EXPECT_EQ(Report(path), Run(Steps()));
  EXPECT_EQ(Hex(ReadBytes(path)), Hex(kSampleFile));
}

TEST_F(ClearedLock, IsThatOfAnIndexFileToo) {
  Study study;
  study.Close();
  const std::string index = ReadBytes(study.IndexPath());
  PatchBytes(study.IndexPath(), kLockAt, Word(7) + Word(0) + Word(1));
  EXPECT_EQ(Report(study.IndexPath()), Run(study.IndexPath(), Steps(study.IndexPath())));
  EXPECT_EQ(Hex(ReadBytes(study.IndexPath())), Hex(index));
}

TEST_F(ClearedLock, LiesAtTheSamePlaceWhateverTheRevision) {
  for (const std::string signature : {"VBDBASEA", "VBDFILEA", "VBDBASEB", "VBDFILEC", "VBDBASE?"}) {
    const std::string bytes = With(kOldFile, kSignatureAt, signature);
    Make(bytes);
    EXPECT_EQ(Report(path), Run(Steps()));
    EXPECT_EQ(Hex(ReadBytes(path)), Hex(With(bytes, 28, kNoLock)));
  }
}

TEST_F(ClearedLock, OverwritesTheFirstBlockHeaderOfRevisionA) {
  Make(kOldFile);
  KForceUnlock(path);
  EXPECT_EQ(HexAt(path, 28, 16), "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00");
}

TEST_F(ClearedLock, IsMadeInAFileThatEndsBehindItsHeader) {
  Make(kLockedFile.substr(0, 28));
  EXPECT_EQ(Report(path), Run(Steps()));
  EXPECT_EQ(Hex(ReadBytes(path)), Hex(kSampleFile.substr(0, 28) + kNoLock));
}

// ---- Refusals ----

TEST_F(ClearedLock, NeedsAFile) {
  EXPECT_EQ(Refusal<CNoFileExists>(), Run(Failure("No file exists")));
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(ClearedLock, NeedsAFileThatItsOwnerMayRead) {
  Make(kLockedFile);
  chmod(path.c_str(), 0200);
  ClearLog();
  EXPECT_THROW(KForceUnlock(path), CFileRead);
  EXPECT_EQ(LogText(), Run(Failure("File read error")));
  chmod(path.c_str(), 0600);
  EXPECT_EQ(Hex(ReadBytes(path)), Hex(kLockedFile));
}

TEST_F(ClearedLock, NeedsAFileThatItsOwnerMayWrite) {
  Make(kLockedFile);
  chmod(path.c_str(), 0400);
  EXPECT_EQ(Refusal<CFileNotWriteable>(), Run(Failure("File not writeable")));
}

TEST_F(ClearedLock, NeedsAFileThatCanBeOpened) {
  std::filesystem::create_directory(path);
  EXPECT_EQ(Refusal<CFileOpen>(), Run(Failure("File open error")));
}

TEST_F(ClearedLock, NeedsAFileThatCanSeek) {
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  EXPECT_EQ(Refusal<CFileSeek>(), Run(path + " opened.\n" + Failure("FileSeekError")));
}

TEST_F(ClearedLock, NeedsAFileThatNoOtherProcessHolds) {
  Make(kLockedFile);
  OtherProcess holder([this](const OtherProcess::Pause& pause) {
    std::FILE* file = std::fopen(path.c_str(), "r+b");
    EXPECT_TRUE(NSFLock(file));
    pause();
    std::fclose(file);
  });
  EXPECT_EQ(Refusal<CFileLock>(), Run(path + " opened.\n" + Failure("Error locking the file")));
  holder.Finish();
  EXPECT_EQ(Report(path), Run(Steps()));
}

TEST_F(ClearedLock, NeedsAWholeHeader) {
  for (const unsigned long size : {0UL, 1UL, 27UL}) {
    Make(kLockedFile.substr(0, size));
    EXPECT_EQ(Refusal<CFileRead>(), Run(path +
                                        " opened.\n"
                                        "File locked using operating system.\n"
                                        "Moved to file header location.\n" +
                                        Failure("File read error")));
  }
}

TEST_F(ClearedLock, NeedsAKnownSignature) {
  for (const std::string signature : {"VBDBASc", "vbdbase", "VBDFILF", "weather"}) {
    Make(With(kLockedFile, kSignatureAt, signature));
    EXPECT_EQ(Refusal<CWrongFileType>(), Run(path +
                                             " opened.\n"
                                             "File locked using operating system.\n"
                                             "Moved to file header location.\n"
                                             "Read the file header.\n" +
                                             Failure("Wrong file type")));
  }
}

TEST_F(ClearedLock, NeedsRoomOnTheDisk) {
  for (const unsigned long room : {28UL, 39UL}) {
    Make(kLockedFile.substr(0, 28));
    const FileSizeLimit full(room);
    ClearLog();
    const auto descriptors = OpenDescriptors();
    EXPECT_THROW(KForceUnlock(path), CFileWrite);
    EXPECT_EQ(OpenDescriptors(), descriptors);
    EXPECT_EQ(LogText(), Run(path +
                             " opened.\n"
                             "File locked using operating system.\n"
                             "Moved to file header location.\n"
                             "Read the file header.\n"
                             "File signature checks...OK\n"
                             "Moved to lock location.\n" +
                             Failure("File write error")))
        << room;
    EXPECT_EQ(HexAt(path, 0, 28), Hex(kLockedFile.substr(0, 28)));
  }
}

TEST_F(ClearedLock, TellsWhenTheFileCannotBeClosed) {
  Make(kLockedFile);
  ClearLog();
  {
    const CloseFault fault;
    EXPECT_THROW(KForceUnlock(path), CFileClose);
  }
  EXPECT_EQ(LogText(), Run(Steps() + Failure("File close error")));
  EXPECT_EQ(Hex(ReadBytes(path)), Hex(kSampleFile));
}

/// Whether another process may lock the file.
void ExpectFree(const std::string& path) {
  InOtherProcess([&] {
    std::FILE* file = std::fopen(path.c_str(), "r+b");
    ASSERT_NE(file, nullptr);
    EXPECT_TRUE(NSFLock(file));
    std::fclose(file);
  });
}

TEST_F(ClearedLock, LeavesTheFileToOtherProcesses) {
  Make(kLockedFile);
  KForceUnlock(path);
  ExpectFree(path);
  Make(With(kLockedFile, kSignatureAt, "weather"));
  EXPECT_THROW(KForceUnlock(path), CWrongFileType);
  ExpectFree(path);
}

}  // namespace
