#include <gtest/gtest.h>

#include <filesystem>
#include <new>
#include <string>

#include "maintenance/Lock.h"
#include "results/DPoint.h"
#include "store/KestErr.h"
#include "store/vbdbase.h"
#include "tests/support/Bytes.h"
#include "tests/support/FailingMemory.h"
#include "tests/support/Study.h"
#include "tests/support/TempFolder.h"

// What is left where memory runs out, at each allocation in turn.

namespace {

/// Runs `work` with its first allocation failing, then with its second, and so on, up to the run
/// that needs no more. After each failure, `check` looks at what is left.
template <class Work, class Check>
void FailAtEachAllocation(Work work, Check check) {
  bool failed = true;
  for (int at = 1; failed; ++at) {
    SCOPED_TRACE(at);
    try {
      const FailingMemory failing(at);
      work();
      failed = FailingMemory::HasFailed();
    } catch (const std::bad_alloc&) {
      check();
    } catch (const CKestErr&) {
      check();
    }
    ASSERT_LT(at, 10000);
  }
}

/// Longer than what strings keep within themselves.
constexpr const char* kFile = "a file with a name that takes an allocation of its own.vbd";

}  // namespace

TEST(ShortageOfMemory, LeavesAFileThatCannotBeOpenedAsItIs) {
  const TempFolder folder;
  const std::string path = folder / kFile;
  {
    vbDatabase file;
    file.Create(path, 0, 'C');
    file.Alloc(9, vbReclaimNone);
  }
  const std::string bytes = ReadBytes(path);
  const auto open = [&] {
    vbDatabase file;
    file.Open(path, vbReadWrite);
  };
  FailAtEachAllocation(open, [&] { EXPECT_EQ(Hex(ReadBytes(path)), Hex(bytes)); });
}

TEST(ShortageOfMemory, LeavesNoLockBehind) {
  const Study study;
  const auto lock = [&] { const CLock held(study.Pod(), 0); };
  FailAtEachAllocation(lock, [&] {
    EXPECT_FALSE(std::filesystem::exists(study.LockPath()));
    EXPECT_FALSE(CLock::locked);
    EXPECT_FALSE(study.Pod()->LockHeld());
  });
}

TEST(ShortageOfMemory, LeavesAnObjectThatIsReadInOnePiece) {
  const Study study;
  CDPoint stored(study.Pod());
  stored.m_nTaskID = stored.m_nPointID = 1;
  stored.m_IDVar = {1.0, 2.0, 3.0};
  stored.m_IResp = {4.0, 5.0};
  stored.PutObject();
  const auto read = [&] {
    CDPoint point(study.Pod());
    point.m_nTaskID = point.m_nPointID = 1;
    point.m_IDVar = {9.0};
    point.m_IResp = {9.0};
    point.GetObject();
  };
  FailAtEachAllocation(read, [] {});
}

TEST(ShortageOfMemory, LeavesTheOldFormOfAnObjectOrTheNewOne) {
  const Study study;
  const auto put = [&](double value) {
    CDPoint point(study.Pod());
    point.m_nTaskID = point.m_nPointID = 1;
    point.m_IDVar = std::valarray<double>(value, 5);
    point.PutObject();
  };
  put(1.0);
  double next = 2.0;
  FailAtEachAllocation([&] { put(next); },
                       [&] {
                         CDPoint point(study.Pod());
                         point.m_nTaskID = point.m_nPointID = 1;
                         ASSERT_TRUE(point.GetObject());
                         ASSERT_EQ(point.m_IDVar.size(), 5U);
                         EXPECT_TRUE(point.m_IDVar[0] == next || point.m_IDVar[0] == next - 1.0);
                         put(next);
                         next += 1.0;
                       });
  EXPECT_EQ(CDPoint(study.Pod()).CountObjects(), 1);
}
