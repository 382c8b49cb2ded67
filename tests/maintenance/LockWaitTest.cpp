#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <string>

#include "environment/Utilities.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/pod.h"
#include "tests/support/Bytes.h"
#include "tests/support/Sleep.h"
#include "tests/support/TempFolder.h"

// How long a lock waits between two tries. The init file that sets it is read once in a process, so
// that each case runs in a new one.

namespace {

std::string initFile;
bool initFileFails = false;
int timesAsked = 0;

}  // namespace

// Takes the place of the environment's.
std::string COSUtil::GetInitFile() {
  ++timesAsked;
  if (initFileFails) throw std::runtime_error("no init file");
  return initFile;
}

namespace {

/// A database whose lock another process holds and never gives back.
class BlockedDatabase {
 public:
  BlockedDatabase() { std::filesystem::create_directory(folder / "study.lck"); }

  void SetInitFile(const std::string& text) const {
    initFile = folder / "init";
    WriteBytes(initFile, text);
  }

  /// Tries for the lock until the tries are used up.
  void Wait() {
    ClearSleeps();
    try {
      const CLock lock(&pod, 0);
    } catch (const CFileLock&) {
    }
  }

  /// Whether the waits of all tries lie from `least` to `most` and fill that range.
  static bool WaitedWithin(unsigned least, unsigned most) {
    const auto [shortest, longest] = std::minmax_element(Sleeps().begin(), Sleeps().end());
    const unsigned margin = (most - least) / 10 + 1;
    const bool within = Sleeps().size() == 2000 && *shortest >= least && *longest <= most &&
                        *shortest <= least + margin && *longest >= most - margin;
    if (!within) {
      std::fprintf(stderr, "%zu waits of %u to %u\n", Sleeps().size(), *shortest, *longest);
    }
    return within;
  }

  TempFolder folder;
  POD pod{folder / "study.ksb"};
};

/// Runs `good()` in a new process, where no lock was taken yet, and expects it to be true.
template <class Check>
void ExpectInNewProcess(Check good) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(std::exit(good() ? EXIT_SUCCESS : EXIT_FAILURE),
              testing::ExitedWithCode(EXIT_SUCCESS), "");
}

struct TimeOut {
  const char* name;
  std::optional<std::string> initFile;
  unsigned least;
  unsigned most;
};

void PrintTo(const TimeOut& timeOut, std::ostream* out) {
  *out << timeOut.name;
}

using LockWaitsDeathTest = testing::TestWithParam<TimeOut>;

TEST_P(LockWaitsDeathTest, AreFromHalfOfTheLongestToTheLongest) {
  ExpectInNewProcess([] {
    BlockedDatabase database;
    if (GetParam().initFile) database.SetInitFile(*GetParam().initFile);
    database.Wait();
    database.Wait();
    return BlockedDatabase::WaitedWithin(GetParam().least, GetParam().most) && timesAsked == 1;
  });
}

constexpr const char* kNoText = "# nothing\n";

const TimeOut kTimeOuts[] = {
    {"Of400", "LockTimeOut = 400\n", 100, 200},
    {"Of401", "LockTimeOut = 401\n", 100, 200},
    {"Of4", "LockTimeOut = 4\n", 1, 2},
    {"Of3", "LockTimeOut = 3\n", 75, 150},
    {"Of0", "LockTimeOut = 0\n", 75, 150},
    {"OfMinusOne", "LockTimeOut = -1\n", 75, 150},
    // Kept: a negative time-out is a very large unsigned number.
    {"OfMinusFour", "LockTimeOut = -4\n", 2147483647, 4294967294},
    {"InWords", "LockTimeOut = abc\n", 75, 150},
    {"WithAUnit", "LockTimeOut = 400 s\n", 100, 200},
    {"OfOtherThanBaseTen", "LockTimeOut = 0x190\n", 75, 150},
    {"Empty", "LockTimeOut =\n", 75, 150},
    {"Missing", kNoText, 75, 150},
    {"WithoutInitFile", std::nullopt, 75, 150},
};

INSTANTIATE_TEST_SUITE_P(TimeOut, LockWaitsDeathTest, testing::ValuesIn(kTimeOuts),
                         [](const auto& timeOut) { return std::string(timeOut.param.name); });

TEST(LockWaitDeathTest, IsTheUsualOneWithAnInitFileThatIsNotThere) {
  ExpectInNewProcess([] {
    BlockedDatabase database;
    initFile = database.folder / "missing";
    database.Wait();
    return BlockedDatabase::WaitedWithin(75, 150);
  });
}

TEST(LockWaitDeathTest, IsTheUsualOneAfterAnExceptionAndForGood) {
  ExpectInNewProcess([] {
    BlockedDatabase database;
    initFileFails = true;
    database.Wait();
    initFileFails = false;
    database.SetInitFile("LockTimeOut = 400\n");
    database.Wait();
    return BlockedDatabase::WaitedWithin(75, 150) && timesAsked == 1;
  });
}

TEST(LockWaitDeathTest, DoesNotHeedAnInitFileChangedAfterTheFirstLock) {
  ExpectInNewProcess([] {
    BlockedDatabase database;
    database.SetInitFile("LockTimeOut = 400\n");
    database.Wait();
    database.SetInitFile("LockTimeOut = 4000\n");
    database.Wait();
    return BlockedDatabase::WaitedWithin(100, 200);
  });
}

TEST(LockWaitDeathTest, IsSetByTheFirstLockEvenOfANullPOD) {
  ExpectInNewProcess([] {
    BlockedDatabase database;
    database.SetInitFile("LockTimeOut = 400\n");
    try {
      const CLock lock(nullptr, 0);
    } catch (const CNullPtr&) {
    }
    database.SetInitFile("LockTimeOut = 4000\n");
    database.Wait();
    return BlockedDatabase::WaitedWithin(100, 200);
  });
}

TEST(LockWaitDeathTest, OfTheReleaseIsTheSame) {
  ExpectInNewProcess([] {
    BlockedDatabase database;
    database.SetInitFile("LockTimeOut = 400\n");
    std::filesystem::remove(database.pod.LockPath());
    CLock lock(&database.pod, 0);
    std::filesystem::remove(database.pod.LockPath());
    try {
      lock.UnLock();
    } catch (const CFileUnlock&) {
    }
    const bool good = BlockedDatabase::WaitedWithin(100, 200);
    std::filesystem::create_directory(database.pod.LockPath());
    return good;
  });
}

TEST(LockWaitDeathTest, OfTheRemovalIsTheSame) {
  ExpectInNewProcess([] {
    BlockedDatabase database;
    database.SetInitFile("LockTimeOut = 400\n");
    std::filesystem::remove(database.pod.LockPath());
    CLock lock(&database.pod, 0);
    WriteBytes(database.pod.LockPath() + "/file", "");
    lock.UnLock();
    return Sleeps().size() == 50 && *std::min_element(Sleeps().begin(), Sleeps().end()) >= 100 &&
           *std::max_element(Sleeps().begin(), Sleeps().end()) <= 200;
  });
}

}  // namespace
