#include "maintenance/Lock.h"

#include <sys/stat.h>

#include <filesystem>
#include <memory>

#include "index/KSBKey.h"
#include "index/vbtree.h"
#include "store/KestErr.h"
#include "store/vbdbase.h"
#include "tests/maintenance/LockFixture.h"
#include "tests/support/Bytes.h"

namespace {

namespace fs = std::filesystem;

class Lock : public LockFixture {
 protected:
  vBtree& Tree(unsigned index) const { return *Pod()->Index(index); }
};

// ---- The directory ----

TEST_F(Lock, IsADirectoryBesideTheDataFileAsLongAsItIsHeld) {
  EXPECT_EQ(Names(), kNoDirectory);
  {
    const CLock lock(Pod(), 0);
    EXPECT_EQ(Names(), (std::vector<std::string>{"study.ksb", "study.kx", "study.lck"}));
    EXPECT_TRUE(DirectoryStands());
  }
  EXPECT_EQ(Names(), kNoDirectory);
  EXPECT_TRUE(Sleeps().empty());
}

TEST_F(Lock, TellsThatItIsHeld) {
  EXPECT_FALSE(Pod()->LockHeld());
  EXPECT_FALSE(CLock::locked);
  {
    const CLock lock(Pod(), 0);
    EXPECT_TRUE(Pod()->LockHeld());
    EXPECT_TRUE(CLock::locked);
    EXPECT_EQ(lock.Pod, Pod());
    EXPECT_EQ(lock.Path, study.LockPath());
  }
  EXPECT_FALSE(Pod()->LockHeld());
  EXPECT_FALSE(CLock::locked);
}

TEST_F(Lock, HoldsNothingAfterItsRelease) {
  CLock lock(Pod(), 0);
  lock.UnLock();
  EXPECT_EQ(lock.Pod, nullptr);
  EXPECT_EQ(lock.Path, "");
  EXPECT_FALSE(Pod()->LockHeld());
  EXPECT_FALSE(CLock::locked);
  EXPECT_EQ(Names(), kNoDirectory);
}

TEST_F(Lock, SecondReleaseLeavesTheLockOfAnotherAlone) {
  CLock lock(Pod(), 0);
  lock.UnLock();
  MakeDirectory();
  lock.UnLock();
  EXPECT_TRUE(DirectoryStands());
}

TEST_F(Lock, DirectoryIsOpenToAllThatTheMaskAdmits) {
  const mode_t mask = umask(0);
  {
    const CLock lock(Pod(), 0);
    EXPECT_EQ(fs::status(study.LockPath()).permissions(), fs::perms::all);
  }
  umask(mask);
}

TEST_F(Lock, NeedsNoOpenFile) {
  POD pod(study.folder / "other.ksb");
  {
    const CLock lock(&pod, 0);
    EXPECT_TRUE(fs::is_directory(study.folder / "other.lck"));
  }
  EXPECT_EQ(Names(), kNoDirectory);
}

TEST_F(Lock, NeedsNoIndex) {
  POD pod(study.folder / "other.ksb");
  KSBKey key;
  pod.Open(study.folder / "other.ksb", "", key, 32, vbReadWrite, 0, 0, 0);
  { const CLock lock(&pod, 0); }
  EXPECT_EQ(HexAt(study.folder / "other.ksb", 16, 8), "56 42 44 42 41 53 45 43");
}

TEST_F(Lock, OfAnotherDatabaseIsAnotherDirectory) {
  POD pod(study.folder / "other.ksb");
  const CLock lock(Pod(), 0);
  const CLock other(&pod, 0);
  EXPECT_TRUE(DirectoryStands());
  EXPECT_TRUE(fs::is_directory(study.folder / "other.lck"));
  EXPECT_TRUE(Sleeps().empty());
}

TEST(LockPath, TakesThePlaceOfTheLastFourCharacters) {
  EXPECT_EQ(POD("folder/study.ksb").LockPath(), "folder/study.lck");
  EXPECT_EQ(POD(".ksb").LockPath(), ".lck");
  EXPECT_EQ(POD("folder/study").LockPath(), "folder/s.lck");
}

TEST(LockPath, EndsAsAllDoForADataPathShorterThanFour) {
  for (const std::string path : {"", "a", "ab", "abc"}) {
    EXPECT_TRUE(POD(path).LockPath().ends_with(".lck")) << path;
  }
}

TEST_F(Lock, NullPODIsRefused) {
  CLock::m_strLockNameSta = "kept";
  try {
    const CLock lock(nullptr, 0);
    FAIL();
  } catch (const CNullPtr& error) {
    EXPECT_STREQ(error.what(), "Null pointer found");
  }
  EXPECT_EQ(CLock::m_strLockNameSta, "kept");
}

TEST_F(Lock, PathIsRememberedByEveryConstructor) {
  CLock::m_strLockNameSta = "";
  const CLock lock(Pod(), 0);
  EXPECT_EQ(CLock::m_strLockNameSta, study.LockPath());
  CLock::m_strLockNameSta = "";
  const CLock nested(Pod(), 0);
  EXPECT_EQ(CLock::m_strLockNameSta, study.LockPath());
}

// ---- Nesting ----

TEST_F(Lock, WithinAnotherOneHoldsNothing) {
  const CLock lock(Pod(), 0);
  const CLock nested(Pod(), 0);
  EXPECT_EQ(nested.Pod, nullptr);
  EXPECT_EQ(nested.Path, "");
}

TEST_F(Lock, WithinAnotherOneMakesAndRemovesNoDirectory) {
  const CLock lock(Pod(), 0);
  fs::rename(study.LockPath(), study.folder / "aside");
  { const CLock nested(Pod(), 0); }
  EXPECT_FALSE(DirectoryStands());
  fs::rename(study.folder / "aside", study.LockPath());
  {
    CLock nested(Pod(), 0);
    nested.UnLock();
  }
  EXPECT_TRUE(DirectoryStands());
  EXPECT_TRUE(Pod()->LockHeld());
  EXPECT_TRUE(CLock::locked);
  EXPECT_TRUE(Sleeps().empty());
}

TEST_F(Lock, NestsToAnyDepth) {
  const CLock lock(Pod(), 0);
  std::vector<std::unique_ptr<CLock>> nested;
  for (int i = 0; i < 100; ++i) nested.push_back(std::make_unique<CLock>(Pod(), 0));
  nested.clear();
  EXPECT_TRUE(DirectoryStands());
}

struct ThreadCase {
  long holder;
  long taker;
  bool nests;
};

TEST_F(Lock, NestsForTheHoldersThreadAndForThreadZero) {
  for (const auto& [holder, taker, nests] : std::vector<ThreadCase>{{0, 0, true},
                                                                    {5, 5, true},
                                                                    {5, 0, true},
                                                                    {-1, -1, true},
                                                                    {0, 5, false},
                                                                    {5, 7, false},
                                                                    {5, -5, false}}) {
    SCOPED_TRACE("holder " + std::to_string(holder) + ", taker " + std::to_string(taker));
    ClearSleeps();
    const CLock lock(Pod(), holder);
    if (nests) {
      EXPECT_EQ(CLock(Pod(), taker).Pod, nullptr);
      EXPECT_TRUE(Sleeps().empty());
    } else {
      EXPECT_THROW(CLock(Pod(), taker), CFileLock);
      EXPECT_EQ(Sleeps().size(), 2000U);
    }
    EXPECT_TRUE(DirectoryStands());
    EXPECT_TRUE(Pod()->LockHeld());
    EXPECT_EQ(lock.Pod, Pod());
  }
}

TEST_F(Lock, OfAnotherThreadIsHadOnceTheHolderReleasesIt) {
  CLock holder(Pod(), 1);
  OnSleep([&] { holder.UnLock(); });
  const CLock stranger(Pod(), 2);
  EXPECT_EQ(Sleeps().size(), 1U);
  EXPECT_EQ(stranger.Pod, Pod());
  EXPECT_TRUE(DirectoryStands());
}

TEST_F(Lock, BelongsToTheThreadThatTookItLast) {
  { const CLock lock(Pod(), 5); }
  const CLock lock(Pod(), 0);
  EXPECT_THROW(CLock(Pod(), 5), CFileLock);
}

// ---- Headers are loaded ----

TEST_F(Lock, LoadsTheHeadersOfBothFiles) {
  PatchBytes(study.DataPath(), 12, Bytes("44 33 22 11"));
  PatchBytes(study.DataPath(), 24, Bytes("78 56 34 12"));
  PatchBytes(study.IndexPath(), 12, Bytes("55 33 22 11"));
  PatchBytes(study.IndexPath(), 4, Bytes("66 33 22 11"));
  EXPECT_NE(Pod()->DataFile()->GetHighestVB(), 0x11223344);
  const CLock lock(Pod(), 0);
  EXPECT_EQ(Pod()->DataFile()->GetHighestVB(), 0x11223344);
  EXPECT_EQ(Pod()->DataFile()->GetVersion(), 0x12345678);
  EXPECT_EQ(Pod()->IndexFile()->GetHighestVB(), 0x11223355);
  EXPECT_EQ(Pod()->IndexFile()->GetEOF(), 0x11223366);
}

TEST_F(Lock, LoadsTheHeadersOfAllTrees) {
  for (long i = 0; i < 25; ++i) {
    PatchBytes(study.IndexPath(), 40 * (i + 1),
               Bytes("11 00 00 00  22 00 00 00  33 00 00 00  44 00 00 00  55 00 00 00  66 00 00 00"
                     " 77 00 00 00"));
  }
  const CLock lock(Pod(), 0);
  for (unsigned i = 0; i < 25; ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(Tree(i).Order, 0x11);
    EXPECT_EQ(Tree(i).EntrySize, 0x22);
    EXPECT_EQ(Tree(i).EntryCount, 0x33);
    EXPECT_EQ(Tree(i).NodeCount, 0x44);
    EXPECT_EQ(Tree(i).Height, 0x55);
    EXPECT_EQ(Tree(i).Root, 0x66);
    EXPECT_EQ(Tree(i).ClassID, 0x77);
  }
}

TEST_F(Lock, LoadsNoHeaderWithinAnotherOne) {
  const CLock lock(Pod(), 0);
  const long highest = Pod()->DataFile()->GetHighestVB();
  PatchBytes(study.DataPath(), 12, Bytes("44 33 22 11"));
  PatchBytes(study.IndexPath(), 40 + 8, Bytes("63 00 00 00"));
  const CLock nested(Pod(), 0);
  EXPECT_EQ(Pod()->DataFile()->GetHighestVB(), highest);
  EXPECT_EQ(Tree(0).EntryCount, 0);
}

TEST_F(Lock, DropsWhatWasChangedInMemoryWithoutIt) {
  Tree(3).EntryCount = 99;
  const CLock lock(Pod(), 0);
  EXPECT_EQ(Tree(3).EntryCount, 0);
}

TEST_F(Lock, LoadsHeadersAfreshThoughTheStreamHadReadThem) {
  Pod()->DataFile()->ReadFileHdr();
  Pod()->IndexFile()->ReadFileHdr();
  PatchBytes(study.DataPath(), 12, Bytes("44 33 22 11"));
  PatchBytes(study.IndexPath(), 12, Bytes("55 33 22 11"));
  PatchBytes(study.IndexPath(), 40 + 8, Bytes("63 00 00 00"));
  const CLock lock(Pod(), 0);
  EXPECT_EQ(Pod()->DataFile()->GetHighestVB(), 0x11223344);
  EXPECT_EQ(Pod()->IndexFile()->GetHighestVB(), 0x11223355);
  EXPECT_EQ(Tree(0).EntryCount, 0x63);
}

TEST_F(Lock, LoadsHeadersAfreshFromAFileThatGotShorter) {
  Pod()->DataFile()->ReadFileHdr();
  PatchBytes(study.DataPath(), 12, Bytes("44 33 22 11"));
  fs::resize_file(study.DataPath(), 40);
  const CLock lock(Pod(), 0);
  EXPECT_EQ(Pod()->DataFile()->GetHighestVB(), 0x11223344);
}

// ---- Headers are stored ----

class BareLock : public LockFixture {
 protected:
  /// A study of no objects at all: every address in it can be told beforehand.
  void OpenBare(POD& pod) const {
    KSBKey key;
    pod.Open(data, index, key, 32, vbReadWrite, 1, 0, 25);
  }

  const std::string data = study.folder / "bare.ksb";
  const std::string index = study.folder / "bare.kx";
};

TEST_F(BareLock, StoresTheHeadersOfBothFilesAtItsEnd) {
  POD pod(data);
  OpenBare(pod);
  const std::string fresh =
      "00 00 00 00 28 00 00 00 28 00 00 00 00 00 00 00 56 42 44 42 41 53 45 43 B9 0B 00 00";
  ASSERT_EQ(HexAt(data, 0, 28), fresh);
  {
    const CLock lock(&pod, 0);
    EXPECT_EQ(pod.DataFile()->Alloc(10, vbReclaimNone), 40 + 28);
    EXPECT_EQ(pod.IndexFile()->Alloc(10, vbReclaimNone), 60940 + 28);
    { const CLock nested(&pod, 0); }
    EXPECT_EQ(HexAt(data, 0, 28), fresh);
    EXPECT_EQ(HexAt(index, 4, 4), "0C EE 00 00");
  }
  EXPECT_EQ(HexAt(data, 0, 28),
            "00 00 00 00 52 00 00 00 28 00 00 00 28 00 00 00 56 42 44 42 41 53 45 43 B9 0B 00 00");
  EXPECT_EQ(HexAt(index, 0, 28),
            "00 00 00 00 36 EE 00 00 10 04 00 00 0C EE 00 00 56 42 44 42 41 53 45 43 B9 0B 00 00");
}

TEST_F(BareLock, StoresTheHeadersOfAllTreesAtItsEnd) {
  POD pod(data);
  OpenBare(pod);
  {
    const CLock lock(&pod, 0);
    for (unsigned i = 0; i < 25; ++i) pod.Index(i)->EntryCount = 0x01020300L + i;
    { const CLock nested(&pod, 0); }
    EXPECT_EQ(HexAt(index, 48, 4), "00 00 00 00");
  }
  EXPECT_EQ(HexAt(index, 40, 28),
            "20 00 00 00 4C 00 00 00 00 03 02 01 01 00 00 00 01 00 00 00 2C 04 00 00 00 00 00 00");
  EXPECT_EQ(HexAt(index, 1000, 28),
            "20 00 00 00 4C 00 00 00 18 03 02 01 01 00 00 00 01 00 00 00 CC E4 00 00 18 00 00 00");
  for (std::size_t i = 0; i < 25; ++i) {
    EXPECT_EQ(ReadBytes(index).substr(40 * (i + 1) + 8, 4),
              std::string(1, static_cast<char>(i)) + "\x03\x02\x01");
  }
}

TEST_F(Lock, BringsBothFilesToTheDiskAtTheEndOfTheOutermostOne) {
  const std::vector<int> both{fileno(Pod()->DataFile()->Stream()),
                              fileno(Pod()->IndexFile()->Stream())};
  ClearFileSyncs();
  {
    const CLock lock(Pod(), 0);
    { const CLock nested(Pod(), 0); }
    EXPECT_TRUE(FileSyncs().empty());
  }
  EXPECT_EQ(FileSyncs(), both);
}

}  // namespace
