#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <string>

#include "index/KSBKey.h"
#include "index/vbtree.h"
#include "maintenance/DBUtilities.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/pod.h"
#include "store/vbdbase.h"
#include "tests/maintenance/IndexRuns.h"
#include "tests/support/FileFaults.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/OtherProcess.h"
#include "tests/support/StudyCheck.h"

// The rebuild of an index from its data file.

namespace {

namespace fs = std::filesystem;

// ---- Rebuilds that succeed ----

using IndexRebuild = IndexRuns;

TEST_F(IndexRebuild, OfAHealthyPairMakesTheSameKeysAndTellsAllOfThem) {
  EXPECT_EQ(ReportOf([this] { Rebuild(); }),
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
                "\t2 CInput - GUI objects indexed\n"
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
                "\t40 CDPoint - Result objects indexed\n"
                "\t0 CIter - Result objects indexed\n"
                "\t0 CDSet - Task objects indexed\n"
                "\t1 CGPoint - GUI objects indexed\n"
                "\t1 CDBControl objects indexed\n"
                "\t0 CRDOE - Result objects indexed\n"
                "\t1 CDesignControl - GUI objects indexed\n"
                "\t0 CResp - GUI objects indexed\n"
                "\t0 CResid - Result objects indexed\n"
                "\t1 CMessage - Result objects indexed\n"
                "\t0 CRApproxMod - Result objects indexed\n"
                "\n***** End -- Rebuild Index File *****\n\n");
  EXPECT_EQ(KeysOf(index), keys);
  EXPECT_EQ(FaultsOfStudy(base), "");
  EXPECT_EQ(ReadBytes(data), dataBytes);
  EXPECT_EQ(Names(), "study.ksb study.kx");
}

TEST_F(IndexRebuild, WithoutAnIndexFileRecoversAndMakesOne) {
  fs::remove(index);
  const std::string report = ReportOf([this] { Rebuild(); });
  const LogEntry& recovered = Log().at(2);  // behind the Start line and the name
  ASSERT_EQ(recovered.kind, "LNewException");
  EXPECT_TRUE(recovered.file.ends_with("maintenance/vbdstats.cpp")) << recovered.file;
  EXPECT_EQ(report, Start() + Failure("No file exists") +
                        "Recovering from exception No file exists in " + recovered.file + " (" +
                        std::to_string(recovered.line) +
                        ")\n"
                        "Original index file does not exist.\n" +
                        Headers() + Indexed(counts) + kEnd);
  EXPECT_EQ(KeysOf(index), keys);
  EXPECT_EQ(FaultsOfStudy(base), "");
  EXPECT_EQ(Names(), "study.ksb study.kx");
}

TEST_F(IndexRebuild, HealsAnIndexFileOfAnyContents) {
  const std::string whole = ReadBytes(index);
  for (const std::string& bytes :
       {std::string(), std::string("no index"), whole.substr(0, 1000), std::string(5000, '\0')}) {
    WriteBytes(index, bytes);
    EXPECT_EQ(ReportOf([this] { Rebuild(); }),
              Start() + Renamed() + Headers() + Indexed(counts) + kEnd);
    EXPECT_EQ(KeysOf(index), keys);
    EXPECT_EQ(FaultsOfStudy(base), "");
  }
}

TEST_F(IndexRebuild, ReplacesABackupThatIsThere) {
  WriteBytes(backup, "an old backup");
  EXPECT_EQ(ReportOf([this] { Rebuild(); }),
            Start() + Renamed() + Headers() + Indexed(counts) + kEnd);
  EXPECT_EQ(KeysOf(index), keys);
  EXPECT_EQ(Names(), "study.ksb study.kx");
}

TEST_F(IndexRebuild, ReplacesAnEmptyFolderOfTheBackupsName) {
  fs::create_directory(backup);
  EXPECT_EQ(ReportOf([this] { Rebuild(); }),
            Start() + Renamed() + Headers() + Indexed(counts) + kEnd);
  EXPECT_EQ(Names(), "study.ksb study.kx");
}

TEST_F(IndexRebuild, LeavesASurplusKeyOut) {
  InStudy([this](POD* pod) { pod->DataFile()->Delete(MessageBlock() + 28, true); });
  Counts fewer = counts;
  fewer.erase(20);
  EXPECT_EQ(ReportOf([this] { Rebuild(); }),
            Start() + Renamed() + Headers() + Indexed(fewer) + kEnd);
  keys[20].clear();
  EXPECT_EQ(KeysOf(index), keys);
  EXPECT_EQ(FaultsOfStudy(base), "");
}

TEST_F(IndexRebuild, FindsAnObjectThatHadNoKey) {
  InStudy([](POD* pod) {
    KSBKey key("          2", -1, -1), work;
    pod->Index(20)->Delete(key, work, true);
  });
  EXPECT_EQ(ReportOf([this] { Rebuild(); }),
            Start() + Renamed() + Headers() + Indexed(counts) + kEnd);
  EXPECT_EQ(KeysOf(index), keys);
}

// ---- The backup that can't be made ----

TEST_F(IndexRebuild, StopsAtABackupThatCannotBeDeleted) {
  fs::create_directories(backup + "/full");
  const std::string before = ReadBytes(index);
  EXPECT_EQ(ReportUntil<CFileExists>([this] { Rebuild(); }),
            Start() + "ERROR: " + backup +
                " already exists and could not be deleted. Backup could not be made.\n" +
                Failure("File already exists") + kEnd);
  EXPECT_EQ(ReadBytes(index), before);
  EXPECT_TRUE(fs::exists(backup + "/full"));
}

class IndexRebuildRename : public IndexRuns {
 protected:
  /// What is told between the failed rename and the end.
  void ExpectToTell(int error, const std::string& advice) {
    const std::string before = ReadBytes(index);
    const RenameFault fault(".kx", error);
    EXPECT_EQ(ReportUntil<CFileCreation>([this] { Rebuild(); }),
              Start() + "ERROR: Could not rename " + index + " to " + backup + "\n" + advice +
                  Failure("File creation error") + kEnd);
    EXPECT_EQ(ReadBytes(index), before);
    EXPECT_EQ(ReadBytes(data), dataBytes);
    EXPECT_EQ(Names(), "study.ksb study.kx");
  }
};

TEST_F(IndexRebuildRename, ThatIsForbiddenNamesBothFiles) {
  ExpectToTell(EACCES, "       " + backup + " already exists or could not be created.\n       " +
                           index + " might be opened by another process.\n");
}

TEST_F(IndexRebuildRename, ToAnInvalidNameSaysSo) {
  ExpectToTell(EINVAL, "       Invalid characters used in a file name.\n");
}

TEST_F(IndexRebuildRename, OfAFileThatHasGoneNamesIt) {
  ExpectToTell(ENOENT, "       " + index + " not found.\n");
}

TEST_F(IndexRebuildRename, ThatFailsOtherwiseHasNoAdvice) {
  ExpectToTell(EROFS, "");
}

// ---- Files that can't be had ----

class IndexRunAccess : public IndexRuns {
 protected:
  /// Both runs end at once, and leave everything as it is.
  template <class Error>
  void ExpectRefusal(const std::string& what) {
    const std::string names = Names();
    EXPECT_EQ(ReportUntil<Error>([this] { Rebuild(); }), Start() + Failure(what) + kEnd);
    EXPECT_EQ(ReportUntil<Error>([this] { Compare(); }),
              CompareStart() + Failure(what) + kCompareEnd);
    EXPECT_EQ(Names(), names);
  }
};

TEST_F(IndexRunAccess, NeedsADataFile) {
  fs::remove(data);
  ExpectRefusal<CNoFileExists>("No file exists");
}

TEST_F(IndexRunAccess, NeedsADataFileThatItsOwnerMayRead) {
  chmod(data.c_str(), 0200);
  ExpectRefusal<CFileRead>("File read error");
}

TEST_F(IndexRunAccess, NeedsADataFileThatItsOwnerMayWrite) {
  chmod(data.c_str(), 0400);
  ExpectRefusal<CFileNotWriteable>("File not writeable");
}

TEST_F(IndexRunAccess, NeedsAnIndexFileThatItsOwnerMayRead) {
  chmod(index.c_str(), 0200);
  ExpectRefusal<CFileRead>("File read error");
}

TEST_F(IndexRunAccess, NeedsAnIndexFileThatItsOwnerMayWrite) {
  chmod(index.c_str(), 0400);
  ExpectRefusal<CFileNotWriteable>("File not writeable");
}

TEST_F(IndexRunAccess, TakesTheNameWithoutAnExtension) {
  EXPECT_THROW(KIndexRebuildCheck(data, true), CNoFileExists);
  EXPECT_THROW(KIndexRebuildCheck(data, false), CNoFileExists);
  EXPECT_EQ(Names(), "study.ksb study.kx");
}

TEST_F(IndexRebuild, StopsAtADataFileThatIsNone) {
  WriteBytes(data, std::string(200, 'x'));
  EXPECT_EQ(ReportUntil<CWrongFileType>([this] { Rebuild(); }),
            Start() + Renamed() + FailureOfRebuild("Wrong file type"));
  EXPECT_EQ(ReadBytes(data), std::string(200, 'x'));
  EXPECT_EQ(Names(), "study.ksb study.kx.old");
}

TEST_F(IndexRebuild, StopsAtADataFileWithABadHeapStart) {
  PatchBytes(data, 40, "?");
  EXPECT_EQ(ReportUntil<CFileCorrupt>([this] { Rebuild(); }),
            Start() + Renamed() + "Analyzing " + data +
                " header...\n"
                "\tChecking signature...OK\n"
                "\tChecking the HeapStart value...\n"
                "ERROR: Bad HeapStart value!\n"
                "\tNo variable block found at file address: 40\n\n"
                "ERROR: The file header has 1 errors!\n" +
                FailureOfRebuild("File corrupt"));
}

TEST_F(IndexRebuild, OfADataFileWithoutBlocksFindsNoObjects) {
  WriteBytes(data, kEmptyFile);
  EXPECT_EQ(ReportUntil<CNoObjectsExist>([this] { Rebuild(); }),
            Start() + Renamed() + EmptyStart(data) + SoundStart(index) +
                FailureOfRebuild("No objects exist"));
  EXPECT_EQ(ReadBytes(data), kEmptyFile);
  EXPECT_EQ(Names(), "study.ksb study.kx study.kx.old");
}

// ---- Failures of the environment ----

TEST_F(IndexRebuild, StopsWhereAnotherProcessHasLockedTheDataFile) {
  OtherProcess holder([this](const OtherProcess::Pause& pause) {
    std::FILE* file = std::fopen(data.c_str(), "r+b");
    NSFLock(file);
    pause();
    std::fclose(file);
  });
  EXPECT_EQ(ReportUntil<CFileLock>([this] { Rebuild(); }),
            Start() + Renamed() + FailureOfRebuild("Error locking the file"));
  holder.Finish();
  EXPECT_EQ(Names(), "study.ksb study.kx study.kx.old");
  Rebuild();
  EXPECT_EQ(KeysOf(index), keys);
}

TEST_F(IndexRebuild, StopsWhereTheStudyIsLocked) {
  fs::create_directory(base + ".lck");
  const std::string reason = "ERROR: Error creating lock directory (" + base +
                             ".lck): File exists\n"
                             "You may have to manually delete the lock directory\n"
                             "in order to unlock the database or increase the \n"
                             "lock time-out in the Kestrelon preferences dialog\n";
  ClearLog();
  EXPECT_THROW(Rebuild(), CFileLock);
  EXPECT_EQ(LogText(), Start() + Renamed() + reason + FailureOfRebuild("Error locking the file"));
}

TEST_F(IndexRebuild, ThatFindsTheDiskFullNamesTheBackupAndCanBeTriedAgain) {
  const std::string before = ReadBytes(index);
  {
    const FileSizeLimit full(30000);
    const std::string report = ReportUntil<CFileWrite>([this] { Rebuild(); });
    EXPECT_EQ(report, Start() + Renamed() + FailureOfRebuild("File write error"));
  }
  EXPECT_EQ(ReadBytes(backup), before);
  EXPECT_EQ(ReadBytes(data), dataBytes);
  EXPECT_EQ(ReportOf([this] { Rebuild(); }),
            Start() + Renamed() + Headers() + Indexed(counts) + kEnd);
  EXPECT_EQ(KeysOf(index), keys);
  EXPECT_EQ(Names(), "study.ksb study.kx");
}

TEST_F(IndexRebuild, FailsInTheFamilyAtEveryWrite) {
  int writes = 0;
  for (bool failed = true; failed; ++writes) {
    const WriteFault fault(writes + 1, EIO);
    try {
      Rebuild();
    } catch (const CKestErr&) {
      EXPECT_TRUE(fault.Happened());
    }
    failed = fault.Happened();
    ASSERT_EQ(ReadBytes(data), dataBytes) << writes;
    ASSERT_FALSE(fs::exists(base + ".lck")) << writes;
  }
  EXPECT_GT(writes, 100);
  EXPECT_EQ(KeysOf(index), keys);
  EXPECT_EQ(Names(), "study.ksb study.kx");
}

}  // namespace
