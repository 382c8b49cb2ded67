#include <filesystem>
#include <regex>

#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "tests/maintenance/LockFixture.h"
#include "tests/support/Bytes.h"

namespace {

namespace fs = std::filesystem;

using ForceUnlock = LockFixture;

const std::vector<unsigned> kAllTries(10, 1);

TEST_F(ForceUnlock, RemovesADirectoryLeftBehind) {
  MakeDirectory();
  CLock::ForceUnlock();
  EXPECT_EQ(Names(), kNoDirectory);
  EXPECT_TRUE(Sleeps().empty());
  EXPECT_TRUE(Log().empty());
}

TEST_F(ForceUnlock, LetsABlockedProcessGoOn) {
  MakeDirectory();
  EXPECT_THROW(CLock(Pod(), 0), CFileLock);
  CLock::ForceUnlock();
  EXPECT_NO_THROW(CLock(Pod(), 0));
}

TEST_F(ForceUnlock, TriesTenTimesWithoutADirectoryAndSaysNothing) {
  CLock::ForceUnlock();
  EXPECT_EQ(Names(), kNoDirectory);
  EXPECT_EQ(Sleeps(), kAllTries);
  EXPECT_TRUE(Log().empty());
}

TEST_F(ForceUnlock, TakesADirectoryThatAppearsBetweenTwoTries) {
  OnSleep([this] {
    if (Sleeps().size() == 9) MakeDirectory();
  });
  CLock::ForceUnlock();
  EXPECT_EQ(Names(), kNoDirectory);
  EXPECT_EQ(Sleeps().size(), 9U);
}

TEST_F(ForceUnlock, DoesNothingWhileTheProcessHoldsTheLock) {
  const CLock lock(Pod(), 0);
  CLock::ForceUnlock();
  EXPECT_TRUE(DirectoryStands());
  EXPECT_TRUE(Pod()->LockHeld());
  EXPECT_TRUE(Sleeps().empty());
}

TEST_F(ForceUnlock, DoesNothingWhileTheProcessHoldsAnotherDatabase) {
  POD pod(study.folder / "other.ksb");
  const CLock lock(&pod, 0);
  CLock::m_strLockNameSta = study.LockPath();
  MakeDirectory();
  CLock::ForceUnlock();
  EXPECT_TRUE(DirectoryStands());
}

TEST_F(ForceUnlock, DoesNothingButWaitBeforeAnyLockPathWasSeen) {
  CLock::m_strLockNameSta = "";
  MakeDirectory();
  CLock::ForceUnlock();
  EXPECT_TRUE(DirectoryStands());
  EXPECT_EQ(Sleeps(), kAllTries);
  EXPECT_TRUE(Log().empty());
}

TEST_F(ForceUnlock, ActsOnTheLastLockPathThatWasSeen) {
  POD pod(study.folder / "other.ksb");
  MakeDirectory();
  fs::create_directory(pod.LockPath());
  EXPECT_THROW(CLock(&pod, 0), CFileLock);
  CLock::ForceUnlock();
  EXPECT_TRUE(DirectoryStands());
  EXPECT_FALSE(fs::exists(pod.LockPath()));
}

TEST_F(ForceUnlock, PutsADirectoryThatIsNotEmptyAside) {
  MakeDirectory();
  WriteBytes(study.LockPath() + "/file", "");
  CLock::ForceUnlock();
  EXPECT_FALSE(DirectoryStands());
  EXPECT_TRUE(Sleeps().empty());
  EXPECT_TRUE(Log().empty());
  ASSERT_EQ(Names().size(), 3U);
  EXPECT_TRUE(std::regex_match(Names().back(), std::regex("study\\.lck_[0-9]+"))) << Names().back();
}

}  // namespace
