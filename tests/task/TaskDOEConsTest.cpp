#include <gtest/gtest.h>

#include <filesystem>
#include <vector>

#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "task/DCons.h"
#include "task/DResp.h"
#include "task/Task.h"
#include "tests/support/Study.h"
#include "tests/task/PrintedFaults.h"

namespace {

using Numbers = std::vector<vbINT32>;
using Reals = std::vector<vbFLOAT64>;

/// The constraints of task 7, a design of experiments. Number k is bounded by 10k and scaled by
/// 100k, the even ones from below.
class ExperimentConstraints : public testing::Test {
 protected:
  ExperimentConstraints() {
    task.m_nID = cons.m_nID = resps.m_nID = 7;
    task.m_uNumCons = 51;
  }

  void Constrain(int kind, int position) {
    const auto number = static_cast<long>(cons.m_vnSubj.size());
    cons.m_vnSubj.push_back(position);
    cons.m_vnSubjType.push_back(kind);
    cons.m_vfBound.push_back(10.0 * static_cast<double>(number));
    cons.m_vnMult.push_back(number % 2 == 0 ? -1 : 1);
    cons.m_vfScale.push_back(100.0 * static_cast<double>(number));
  }
  void Drop() {
    cons.PutObject();
    resps.PutObject();
    address = cons.ObjectAddress();
    ClearLog();
    task.SetupDOEDCons();
  }
  CDCons Stored(int id = 7) {
    CDCons stored(study.Pod());
    stored.m_nID = id;
    EXPECT_TRUE(stored.GetObject());
    return stored;
  }
  /// Those of the given numbers are left.
  void ExpectLeft(const std::vector<int>& numbers) {
    const CDCons stored = Stored();
    Numbers subjects, kinds, signs;
    Reals bounds, scales;
    for (const int number : numbers) {
      const auto i = static_cast<std::size_t>(number);
      subjects.push_back(cons.m_vnSubj[i]);
      kinds.push_back(cons.m_vnSubjType[i]);
      signs.push_back(number % 2 == 0 ? -1 : 1);
      bounds.push_back(10.0 * number);
      scales.push_back(100.0 * number);
    }
    EXPECT_EQ(stored.m_vnSubj, subjects);
    EXPECT_EQ(stored.m_vnSubjType, kinds);
    EXPECT_EQ(stored.m_vnMult, signs);
    EXPECT_EQ(stored.m_vfBound, bounds);
    EXPECT_EQ(stored.m_vfScale, scales);
    EXPECT_EQ(task.m_uNumCons, numbers.size());
    EXPECT_EQ(CDCons(study.Pod()).CountObjects(), 1);
  }
  void ExpectUntouched() {
    const CDCons stored = Stored();
    EXPECT_EQ(stored.m_vnSubj, cons.m_vnSubj);
    EXPECT_EQ(stored.m_vfScale, cons.m_vfScale);
    EXPECT_EQ(stored.ObjectAddress(), address);
    EXPECT_EQ(task.m_uNumCons, 51U);
  }

  Study study;
  CTask task{study.Pod()};
  CDCons cons{study.Pod()};
  CDResp resps{study.Pod()};
  long address = 0;
};

TEST_F(ExperimentConstraints, OfNoneStayAsTheyAre) {
  Drop();
  ExpectUntouched();
}

TEST_F(ExperimentConstraints, OnVariablesStay) {
  for (const int kind : {20, 21, 22, 23}) Constrain(kind, 3);
  Drop();
  ExpectUntouched();
}

TEST_F(ExperimentConstraints, OnResponsesAreDropped) {
  Constrain(24, 0);
  Constrain(21, 4);
  Constrain(24, 1);
  Constrain(24, 0);
  Constrain(22, 5);
  Constrain(24, 2);
  Drop();
  ExpectLeft({1, 4});
}

TEST_F(ExperimentConstraints, ThatAreAllDroppedLeaveAnEmptyTable) {
  Constrain(24, 0);
  Constrain(24, 1);
  Drop();
  ExpectLeft({});
}

TEST_F(ExperimentConstraints, OnLinkedResponsesOfVariablesStay) {
  resps.m_mnLinkType = {{24}, {20, 21, 22, 23}};
  resps.m_mnSynType = {{24}, {24}};
  Constrain(25, 1);
  Drop();
  ExpectUntouched();
}

TEST_F(ExperimentConstraints, OnSyntheticResponsesOfVariablesStay) {
  resps.m_mnSynType = {{24}, {20, 21, 22, 23}};
  resps.m_mnLinkType = {{24}, {24}};
  Constrain(26, 1);
  Drop();
  ExpectUntouched();
}

TEST_F(ExperimentConstraints, OnFunctionsOfAResponseAreDropped) {
  resps.m_mnLinkType = {{20, 24}, {25}, {26, 20}, {20}, {27}, {}};
  resps.m_mnSynType = {{20}, {23, 22, 26}, {24}, {}, {25, 25}, {21}};
  for (const int position : {0, 1, 2, 3, 4, 5}) {
    Constrain(25, position);
    Constrain(26, position);
  }
  Drop();
  ExpectLeft({1, 6, 7, 10, 11});  // Synthetic 0, linked 3, synthetic 3, linked 5, synthetic 5
}

TEST_F(ExperimentConstraints, AreLookedUpInTheirOwnTask) {
  CDResp other(study.Pod());
  other.m_nID = 8;
  other.m_mnLinkType = {{20}};
  other.PutObject();
  resps.m_mnLinkType = {{24}};
  Constrain(25, 0);
  Constrain(20, 0);
  Drop();
  ExpectLeft({1});
}

// ---- Failures ----

TEST_F(ExperimentConstraints, OnNoKnownKindAreRefused) {
  Constrain(24, 0);
  Constrain(20, 0);
  for (const int kind : {0, 19, 27, -1}) {
    cons.m_vnSubjType[1] = kind;
    try {
      Drop();
      ADD_FAILURE() << kind;
    } catch (const CInvalidType& error) {
      EXPECT_STREQ(error.what(), "Object type is invalid");
    }
    EXPECT_EQ(PrintedLines(), Faults({{"Invalid Input/Resp object type!\n"}}));
    ExpectUntouched();
  }
}

TEST_F(ExperimentConstraints, OnAFunctionOutsideItsTableAreRefused) {
  resps.m_mnLinkType = {{20}};
  resps.m_mnSynType = {{20}};
  Constrain(25, 0);
  for (const int kind : {25, 26}) {
    for (const int position : {-1, 1, 2147483647}) {
      cons.m_vnSubjType[0] = kind;
      cons.m_vnSubj[0] = position;
      EXPECT_THROW(Drop(), CInvalidArgument) << kind << ' ' << position;
      ExpectUntouched();
    }
  }
}

template <class Action>
void ExpectNotFound(Action action) {
  try {
    action();
    ADD_FAILURE();
  } catch (const CObjectNotFound& error) {
    EXPECT_STREQ(error.what(), "Object not found");
  }
}

TEST_F(ExperimentConstraints, NeedTheTableOfTheTask) {
  resps.PutObject();
  cons.m_nID = 8;
  cons.PutObject();
  ExpectNotFound([this] { task.SetupDOEDCons(); });
}

TEST_F(ExperimentConstraints, NeedTheResponsesOfTheTask) {
  cons.PutObject();
  resps.m_nID = 8;
  resps.PutObject();
  ExpectNotFound([this] { task.SetupDOEDCons(); });
}

TEST_F(ExperimentConstraints, NeedADatabase) {
  CTask loose;
  EXPECT_THROW(loose.SetupDOEDCons(), CNoDatabaseOpen);
}

TEST_F(ExperimentConstraints, AreDroppedUnderTheLock) {
  Constrain(24, 0);
  Constrain(20, 0);
  cons.PutObject();
  address = cons.ObjectAddress();
  resps.PutObject();
  std::filesystem::create_directory(study.LockPath());
  EXPECT_THROW(task.SetupDOEDCons(), CFileLock);
  std::filesystem::remove(study.LockPath());
  ExpectUntouched();
  const CLock lock(study.Pod(), 0);
  task.SetupDOEDCons();
  ExpectLeft({1});
}

}  // namespace
