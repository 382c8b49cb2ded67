#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <regex>
#include <stdexcept>

#include "index/KSBKey.h"
#include "index/vbtree.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/vbdbase.h"
#include "tests/maintenance/LockFixture.h"
#include "tests/support/Bytes.h"

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kTries = 2000;

constexpr const char* kAdvice =
    "You may have to manually delete the lock directory\n"
    "in order to unlock the database or increase the \n"
    "lock time-out in the Kestrelon preferences dialog\n";

/// The kinds of the first lines of the log.
std::vector<std::string> Kinds(std::size_t count) {
  std::vector<std::string> kinds;
  for (std::size_t i = 0; i < count && i < Log().size(); ++i) kinds.push_back(Log()[i].kind);
  return kinds;
}

class LockFailure : public LockFixture {
 protected:
  void ExpectNotHeld() const {
    EXPECT_FALSE(Pod()->LockHeld());
    EXPECT_FALSE(CLock::locked);
    EXPECT_FALSE(DirectoryStands());
  }
};

// ---- The lock can't be had ----

TEST_F(LockFailure, DirectoryLeftBehindBlocksForAllTheTries) {
  MakeDirectory();
  try {
    const CLock lock(Pod(), 0);
    FAIL();
  } catch (const CFileLock& error) {
    EXPECT_STREQ(error.what(), "Error locking the file");
  }
  EXPECT_EQ(Sleeps().size(), kTries);
  EXPECT_TRUE(DirectoryStands());
  EXPECT_FALSE(Pod()->LockHeld());
  EXPECT_FALSE(CLock::locked);
}

TEST_F(LockFailure, DirectoryLeftBehindIsToldInFourLines) {
  MakeDirectory();
  EXPECT_THROW(CLock(Pod(), 0), CFileLock);
  EXPECT_EQ(PrintedLog(),
            "Error creating lock directory (" + study.LockPath() + "): File exists\n" + kAdvice);
  EXPECT_EQ(Kinds(5),
            (std::vector<std::string>{"LError", "LPrint", "LPrint", "LPrint", "LNewException"}));
}

TEST_F(LockFailure, AnythingInTheWayBlocks) {
  WriteBytes(study.LockPath(), "");
  EXPECT_THROW(CLock(Pod(), 0), CFileLock);
  EXPECT_EQ(Sleeps().size(), kTries);
  EXPECT_EQ(PrintedLog(),
            "Error creating lock directory (" + study.LockPath() + "): File exists\n" + kAdvice);
}

TEST_F(LockFailure, MissingFolderIsTriedAsOftenAndNamed) {
  POD pod(study.folder / "missing/study.ksb");
  EXPECT_THROW(CLock(&pod, 0), CFileLock);
  EXPECT_EQ(Sleeps().size(), kTries);
  EXPECT_EQ(PrintedLog(), "Error creating lock directory (" + pod.LockPath() +
                              "): No such file or directory\n" + kAdvice);
}

TEST_F(LockFailure, WaiterGetsTheLockAtTheLastTry) {
  MakeDirectory();
  OnSleep([this] {
    if (Sleeps().size() == kTries - 1) RemoveDirectory();
  });
  const CLock lock(Pod(), 0);
  EXPECT_EQ(Sleeps().size(), kTries - 1);
  EXPECT_EQ(lock.Pod, Pod());
  EXPECT_EQ(PrintedLog(), "");
}

TEST_F(LockFailure, WaiterLoadsTheHeadersAfterTheWait) {
  MakeDirectory();
  OnSleep([this] {
    PatchBytes(study.DataPath(), 12, Bytes("44 33 22 11"));
    RemoveDirectory();
  });
  const CLock lock(Pod(), 0);
  EXPECT_EQ(Pod()->DataFile()->GetHighestVB(), 0x11223344);
}

// ---- Headers can't be loaded ----

struct Cut {
  const char* what;
  bool index;
  std::uintmax_t length;
};

TEST_F(LockFailure, UnreadableHeadersLeaveNoLockAndNoDirectory) {
  const std::string data = ReadBytes(study.DataPath());
  const std::string index = ReadBytes(study.IndexPath());
  for (const auto& [what, ofIndex, length] : {Cut{"data file header", false, 10},
                                              {"index file header", true, 27},
                                              {"header of the first tree", true, 60},
                                              {"header of the last tree", true, 1027}}) {
    SCOPED_TRACE(what);
    const std::string& path = ofIndex ? study.IndexPath() : study.DataPath();
    fs::resize_file(path, length);
    try {
      const CLock lock(Pod(), 0);
      ADD_FAILURE();
    } catch (const CFileRead& error) {
      EXPECT_STREQ(error.what(), "File read error");
    }
    ExpectNotHeld();
    EXPECT_EQ(Names(), kNoDirectory);
    EXPECT_EQ(fs::file_size(path), length);  // nothing was written into it
    WriteBytes(study.DataPath(), data);
    WriteBytes(study.IndexPath(), index);
    EXPECT_NO_THROW(CLock(Pod(), 0));
  }
}

TEST_F(LockFailure, HeadersAreLoadedAfreshAfterAFailure) {
  const std::string index = ReadBytes(study.IndexPath());
  fs::resize_file(study.IndexPath(), 1027);
  EXPECT_THROW(CLock(Pod(), 0), CFileRead);
  WriteBytes(study.IndexPath(), index);
  PatchBytes(study.IndexPath(), 12, Bytes("55 33 22 11"));
  PatchBytes(study.DataPath(), 12, Bytes("44 33 22 11"));
  const CLock lock(Pod(), 0);
  EXPECT_EQ(Pod()->DataFile()->GetHighestVB(), 0x11223344);
  EXPECT_EQ(Pod()->IndexFile()->GetHighestVB(), 0x11223355);
}

/// Makes the next rename to a number fail, by a file of that name, and then removes the directory
/// while the lock waits to try again.
TEST_F(LockFailure, LockThatCanNeitherLoadNorRemoveIsNotHeld) {
  const std::string data = ReadBytes(study.DataPath());
  fs::resize_file(study.DataPath(), 10);
  std::srand(1);
  WriteBytes(study.LockPath() + "_" + std::to_string(std::rand()), "");
  std::srand(1);
  OnSleep([this] { RemoveDirectory(); });
  EXPECT_THROW(CLock(Pod(), 0), CFileRead);
  EXPECT_EQ(Sleeps().size(), kTries);
  ExpectNotHeld();
  // A lock that nobody holds would let all further ones of this process nest in it.
  WriteBytes(study.DataPath(), data);
  const CLock lock(Pod(), 0);
  EXPECT_TRUE(DirectoryStands());
}

// ---- Headers can't be stored ----

/// Takes the right to write away from an open stream.
class ReadOnlyStream {
 public:
  ReadOnlyStream(FILE* stream, const std::string& path)
      : m_file(fileno(stream)), m_kept(dup(m_file)) {
    const int readOnly = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    Replace(readOnly);
    close(readOnly);
  }
  ReadOnlyStream(const ReadOnlyStream&) = delete;
  ReadOnlyStream& operator=(const ReadOnlyStream&) = delete;
  ~ReadOnlyStream() {
    Replace(m_kept);
    close(m_kept);
  }

 private:
  void Replace(int other) const {
    lseek(other, lseek(m_file, 0, SEEK_CUR), SEEK_SET);
    dup2(other, m_file);
  }

  int m_file;
  int m_kept;
};

TEST_F(LockFailure, FailureToStoreAHeaderArrivesAndTheLockIsReleased) {
  for (const bool ofIndex : {false, true}) {
    SCOPED_TRACE(ofIndex ? "index file" : "data file");
    vbDatabase* file = ofIndex ? Pod()->IndexFile() : Pod()->DataFile();
    CLock lock(Pod(), 0);
    const ReadOnlyStream readOnly(file->Stream(), file->GetFileName());
    try {
      lock.UnLock();
      ADD_FAILURE();
    } catch (const CFileWrite& error) {
      EXPECT_STREQ(error.what(), "File write error");
    }
    EXPECT_EQ(lock.Pod, nullptr);
    ExpectNotHeld();
    EXPECT_EQ(Names(), kNoDirectory);
  }
  EXPECT_NO_THROW(CLock(Pod(), 0));
}

TEST_F(LockFailure, FailureToReachTheDiskArrivesAndTheLockIsReleased) {
  const auto release = [this] {
    const CLock lock(Pod(), 0);
    FailFileSyncs(EIO);
  };
  EXPECT_THROW(release(), CFileWrite);
  ExpectNotHeld();
}

TEST_F(LockFailure, FileOpenedForReadingOnlyCannotBeReleased) {
  const std::string data = study.folder / "other.ksb";
  WriteBytes(data, ReadBytes(study.DataPath()));
  POD pod(data);
  KSBKey key;
  // The lock of the open itself is the first that can't be released.
  EXPECT_THROW(pod.Open(data, "", key, 32, vbReadOnly, 0, 0, 0), CFileNotWriteable);
  EXPECT_FALSE(pod.LockHeld());
  EXPECT_THROW(CLock(&pod, 0), CFileNotWriteable);
  EXPECT_FALSE(pod.LockHeld());
  EXPECT_FALSE(fs::exists(pod.LockPath()));
  pod.Abandon();
}

TEST_F(LockFailure, DestructorThrowsWithNoOtherExceptionInFlight) {
  const auto release = [this] {
    const CLock lock(Pod(), 0);
    RemoveDirectory();
  };
  EXPECT_THROW(release(), CFileUnlock);
  MakeDirectory();
  CLock again(Pod(), 0);  // nests: the process still has its flag
  EXPECT_EQ(again.Pod, nullptr);
}

TEST_F(LockFailure, DestructorOnlyLogsWithAnotherExceptionInFlight) {
  try {
    const CLock lock(Pod(), 0);
    FailFileSyncs(EIO);
    ClearLog();
    throw std::runtime_error("the first");
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "the first");
  }
  ExpectNotHeld();
  ASSERT_FALSE(Log().empty());
  EXPECT_EQ(Log().front().kind, "LNewException");
  EXPECT_EQ(Log().front().text, "File write error");
  EXPECT_EQ(Log().back().kind, "LException");
  EXPECT_EQ(Log().back().text, "File write error");
  EXPECT_TRUE(Log().back().file.ends_with("maintenance/Lock.cpp"));
}

// ---- The directory can't be removed ----

TEST_F(LockFailure, DirectoryThatIsGoneIsToldInFiveLines) {
  CLock lock(Pod(), 0);
  RemoveDirectory();
  try {
    lock.UnLock();
    ADD_FAILURE();
  } catch (const CFileUnlock& error) {
    EXPECT_STREQ(error.what(), "Error release the file lock");
  }
  EXPECT_EQ(Sleeps().size(), kTries);
  EXPECT_EQ(PrintedLog(), "Lock removal conflict by process (" + std::to_string(getpid()) +
                              ")\nError removing lock directory (" + study.LockPath() +
                              "): No such file or directory\n" + kAdvice);
  EXPECT_EQ(Kinds(6), (std::vector<std::string>{"LPrint", "LError", "LPrint", "LPrint", "LPrint",
                                                "LNewException"}));
  MakeDirectory();
}

TEST_F(LockFailure, LockThatCannotBeReleasedIsStillHeld) {
  CLock lock(Pod(), 0);
  RemoveDirectory();
  EXPECT_THROW(lock.UnLock(), CFileUnlock);
  EXPECT_EQ(lock.Pod, Pod());
  EXPECT_EQ(lock.Path, study.LockPath());
  EXPECT_TRUE(Pod()->LockHeld());
  EXPECT_TRUE(CLock::locked);
  MakeDirectory();
  lock.UnLock();
  EXPECT_EQ(lock.Pod, nullptr);
  ExpectNotHeld();
}

TEST_F(LockFailure, HeadersAreStoredBeforeTheDirectoryGoes) {
  CLock lock(Pod(), 0);
  Pod()->Index(0)->EntryCount = 99;
  RemoveDirectory();
  EXPECT_THROW(lock.UnLock(), CFileUnlock);
  EXPECT_EQ(HexAt(study.IndexPath(), 48, 4), "63 00 00 00");
  MakeDirectory();
}

TEST_F(LockFailure, ReleaseGoesOnAsSoonAsTheDirectoryCanBeRenamed) {
  CLock lock(Pod(), 0);
  RemoveDirectory();
  OnSleep([this] {
    if (Sleeps().size() == kTries - 1) MakeDirectory();
  });
  lock.UnLock();
  EXPECT_EQ(Sleeps().size(), kTries - 1);
  EXPECT_EQ(PrintedLog(), "");
  ExpectNotHeld();
}

TEST_F(LockFailure, NameThatIsTakenIsNotTriedAgain) {
  CLock lock(Pod(), 0);
  std::srand(1);
  WriteBytes(study.LockPath() + "_" + std::to_string(std::rand()), "");
  std::srand(1);
  lock.UnLock();
  EXPECT_EQ(Sleeps().size(), 1U);
  ExpectNotHeld();
}

TEST_F(LockFailure, RenamedDirectoryThatCannotBeRemovedStaysWithoutAWord) {
  CLock lock(Pod(), 0);
  WriteBytes(study.LockPath() + "/file", "");
  lock.UnLock();
  EXPECT_EQ(Sleeps().size(), 50U);
  EXPECT_TRUE(Log().empty());
  ExpectNotHeld();
  ASSERT_EQ(Names().size(), 3U);
  EXPECT_TRUE(std::regex_match(Names().back(), std::regex("study\\.lck_[0-9]+"))) << Names().back();
}

TEST_F(LockFailure, RenamedDirectoryIsRemovedAsSoonAsItCanBe) {
  CLock lock(Pod(), 0);
  WriteBytes(study.LockPath() + "/file", "");
  OnSleep([this] {
    if (Sleeps().size() == 3) fs::remove(study.folder.Path() + "/" + Names().back() + "/file");
  });
  lock.UnLock();
  EXPECT_EQ(Sleeps().size(), 3U);
  EXPECT_EQ(Names(), kNoDirectory);
}

}  // namespace
