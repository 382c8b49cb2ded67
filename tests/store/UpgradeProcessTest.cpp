#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "definition/Input.h"
#include "maintenance/Lock.h"
#include "store/DBI_IO.h"
#include "tests/support/Bytes.h"
#include "tests/support/Log.h"
#include "tests/support/OtherProcess.h"
#include "tests/support/StudyCheck.h"
#include "tests/support/TempFolder.h"

// Processes that open an old study, or one without its index, at the same time.

namespace {

using Pause = OtherProcess::Pause;

constexpr int kInputs = 40;

CInput InputOf(int id) {
  CInput input(GetPOD());
  input.m_nID = id;
  return input;
}

class OpeningTogether : public testing::Test {
 protected:
  void SetUp() override {
    InOtherProcess([this] {
      OpenDatabase(base);
      {
        const CLock lock(GetPOD(), 0);
        for (int id = 1; id <= kInputs; ++id) InputOf(id).PutObject();
      }
      CloseDatabase();
    });
  }

  /// Opens the study at the test's word, counts its Inputs and adds one of its own.
  OtherProcess::Body Opener(int id) const {
    return [this, id](const Pause& pause) {
      // Waits of a few milliseconds.
      WriteBytes(folder / "init", "LockTimeOut = 20\n");
      setenv("KEST_INIT_FILE", (folder / "init").c_str(), 1);
      pause();
      OpenDatabase(base);
      {
        const CLock lock(GetPOD(), 0);
        for (int known = 1; known <= kInputs; ++known) {
          EXPECT_TRUE(InputOf(known).FindObject()) << known;
        }
      }
      EXPECT_TRUE(InputOf(id).PutObject());
      CloseDatabase();
    };
  }

  void OpenTwice() const {
    OtherProcess first(Opener(101));
    OtherProcess second(Opener(102));
    first.Go();
    second.Go();
    first.AwaitEnd();
    second.AwaitEnd();
    EXPECT_EQ(FaultsOfStudy(base), "");
    InOtherProcess([this] {
      OpenDatabase(base);
      for (const int id : {1, kInputs, 101, 102}) EXPECT_TRUE(InputOf(id).FindObject()) << id;
      EXPECT_EQ(InputOf(1).CountObjects(), kInputs + 2);
      CloseDatabase();
    });
    EXPECT_FALSE(std::filesystem::exists(base + ".kx.old"));
    EXPECT_FALSE(std::filesystem::exists(base + ".lck"));
  }

  TempFolder folder;
  const std::string base = folder / "study";
};

TEST_F(OpeningTogether, AStudyWithoutItsIndexGivesBothTheWholeStudy) {
  for (int i = 0; i < 10; ++i) {
    std::filesystem::remove(base + ".kx");
    OpenTwice();
  }
}

TEST_F(OpeningTogether, AStudyOfAnOldVersionGivesBothTheWholeStudy) {
  for (int i = 0; i < 10; ++i) {
    PatchBytes(base + ".ksb", 24, Bytes("B8 0B 00 00"));
    OpenTwice();
  }
}

TEST_F(OpeningTogether, ANewStudyGivesBothTheSame) {
  std::filesystem::remove(base + ".ksb");
  std::filesystem::remove(base + ".kx");
  const auto open = [this](int id) {
    return [this, id](const Pause& pause) {
      WriteBytes(folder / "init", "LockTimeOut = 20\n");
      setenv("KEST_INIT_FILE", (folder / "init").c_str(), 1);
      pause();
      OpenDatabase(base);
      EXPECT_TRUE(InputOf(id).PutObject());
      CloseDatabase();
    };
  };
  OtherProcess first(open(1));
  OtherProcess second(open(2));
  first.Go();
  second.Go();
  first.AwaitEnd();
  second.AwaitEnd();
  EXPECT_EQ(FaultsOfStudy(base), "");
  InOtherProcess([this] {
    OpenDatabase(base);
    EXPECT_EQ(InputOf(1).CountObjects(), 2);
    CloseDatabase();
  });
}

}  // namespace
