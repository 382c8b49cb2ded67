#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <string>

#include "maintenance/DBUtilities.h"
#include "store/KestErr.h"
#include "tests/store/Upgrades.h"
#include "tests/support/FileFaults.h"
#include "tests/support/OtherProcess.h"

// Processes that die while they upgrade a study or make its index. Once their lock is cleared, the
// next open has all objects, and knows which index it must not trust.

namespace {

namespace fs = std::filesystem;

class Deaths : public Upgrades {
 protected:
  Deaths() : dataBytes(ReadBytes(data)), indexBytes(ReadBytes(index)) {}

  /// Runs `step` in processes that die at one of their writes each, and looks at what they leave.
  template <class Prepare, class Step>
  void DieAtEveryWrite(Prepare prepare, Step step) {
    bool died = true;
    int deaths = 0;
    // A step that shares no factor with what a node, or a tree, takes.
    for (int n = 1; died; n += 7) {
      Restore();
      prepare();
      InOtherProcess([&] {
        const WriteFault fault(n, kDeath);
        step();
      });
      died = fs::exists(base + ".lck") || fs::exists(backup);
      if (died) ++deaths;
      fs::remove(base + ".lck");
      ASSERT_NO_FATAL_FAILURE(ExpectWholeStudy()) << "write " << n;
      ASSERT_EQ(Names(), "study.ksb study.kx") << "write " << n;
    }
    EXPECT_GT(deaths, 20);
  }

  void Restore() {
    fs::remove(backup);
    WriteBytes(data, dataBytes);
    WriteBytes(index, indexBytes);
  }

  void OpenAndClose() {
    OpenDatabase(base);
    CloseDatabase();
  }

  std::string dataBytes;
  std::string indexBytes;
};

}  // namespace

TEST_F(Deaths, WhileAMissingIndexIsMadeLeaveItToTheNextOpen) {
  DieAtEveryWrite([this] { fs::remove(index); }, [this] { OpenAndClose(); });
}

TEST_F(Deaths, DuringAnIndexRebuildLeaveItToTheNextOpen) {
  DieAtEveryWrite([] {}, [this] { KIndexRebuildCheck(base, true); });
}

TEST_F(Deaths, BetweenTheDataFileAndItsIndexLeaveNoStaleIndex) {
  SetVersion(3000);
  InOtherProcess([this] {
    const RemoveFault fault(".kx", kDeath);
    OpenAndClose();
  });
  fs::remove(base + ".lck");
  EXPECT_EQ(ReadBytes(index), indexBytes);
  EXPECT_NE(ReadBytes(data), dataBytes);
  ExpectWholeStudy();
  EXPECT_EQ(Names(), "study.ksb study.kx");
}

TEST_F(Deaths, BetweenRemovalAndRenameOfTheUpgradeLeaveTheCopyAndNoStaleIndex) {
  SetVersion(3000);
  InOtherProcess([this] {
    const RenameFault fault(".ksb.new", kDeath);
    OpenAndClose();
  });
  fs::remove(base + ".lck");
  EXPECT_THROW(OpenDatabase(base), CNoFileExists);
  fs::rename(data + ".new", data);
  ExpectWholeStudy();
  EXPECT_EQ(Names(), "study.ksb study.kx");
}

TEST_F(Deaths, AnOldIndexThatCouldNotBeDeletedIsNotTrustedLater) {
  SetVersion(3000);
  {
    const RemoveFault fault(".kx", EACCES);
    EXPECT_THROW(OpenDatabase(base), CFileRemove);
  }
  EXPECT_EQ(ReadBytes(index), indexBytes);
  ExpectWholeStudy();
  EXPECT_EQ(Names(), "study.ksb study.kx");
}

TEST_F(Deaths, AnIndexWhoseRebuildFailedIsMadeAnewByTheNextOpen) {
  fs::rename(index, backup);
  ExpectWholeStudy();
  Restore();
  WriteBytes(backup, indexBytes);
  WriteBytes(index, indexBytes.substr(0, 5000));
  ExpectWholeStudy();
  EXPECT_EQ(Names(), "study.ksb study.kx");
}
