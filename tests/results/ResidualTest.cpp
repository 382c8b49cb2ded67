#include "results/Residual.h"

#include <gtest/gtest.h>

#include <vector>

#include "store/KestErr.h"
#include "store/vbdbase.h"
#include "tests/results/ModelStudy.h"
#include "tests/support/RawFile.h"

namespace {

class Residuals : public ModelStudy {
 protected:
  void Store(int taskID, const std::vector<int>& numbers) {
    for (const int resp : numbers) NewOf(taskID, resp).PutObject();
  }
  CResidual NewOf(int taskID, int resp) {
    CResidual analysis(study.Pod());
    analysis.m_nTaskID = taskID;
    analysis.m_nResp = resp;
    return analysis;
  }
  /// The responses of a task, among the first ten, that have a record.
  std::vector<int> Stored(int taskID) {
    std::vector<int> numbers;
    for (int resp = 0; resp < 10; ++resp) {
      if (NewOf(taskID, resp).FindObject()) numbers.push_back(resp);
    }
    return numbers;
  }
};

TEST_F(Residuals, HaveTheirClassConstants) {
  EXPECT_EQ(CResidual::m_nRESID_VER, 1);
  EXPECT_EQ(CResidual::m_nRESID_INDX, 19);
  EXPECT_EQ(CResidual::m_nRESID_ID, 20000);
  EXPECT_EQ(CResidual::m_strCLASS_NAME, "CResidual");
}

TEST_F(Residuals, OfATaskAreAllRemovedAndNoOthers) {
  Store(4, {0, 1, 2, 3});
  Store(3, {0, 1});
  Store(5, {0});
  CResidual::RemoveResiduals(study.Pod(), 4);
  EXPECT_EQ(Stored(4), std::vector<int>());
  EXPECT_EQ(Stored(3), (std::vector<int>{0, 1}));
  EXPECT_EQ(Stored(5), (std::vector<int>{0}));
  EXPECT_EQ(CResidual(study.Pod()).CountObjects(), 3);
  study.Close();
  EXPECT_EQ(FaultOfClass(ReadRawFile(study.DataPath()), ReadRawFile(study.IndexPath()), 20000), "");
}

TEST_F(Residuals, AreRemovedUpToAGap) {
  Store(4, {0, 1, 3, 4});
  CResidual::RemoveResiduals(study.Pod(), 4);
  EXPECT_EQ(Stored(4), (std::vector<int>{3, 4}));
  CResidual::RemoveResiduals(study.Pod(), 4);
  EXPECT_EQ(Stored(4), (std::vector<int>{3, 4}));
}

TEST_F(Residuals, OfNoTaskAreAnInvalidKey) {
  EXPECT_THROW(CResidual::RemoveResiduals(study.Pod(), 0), CInvalidKey);
  EXPECT_THROW(CResidual::RemoveResiduals(study.Pod(), -1), CInvalidKey);
}

TEST_F(Residuals, WhoseBlockIsFreeCannotBeRemoved) {
  Store(4, {0, 1, 2});
  CResidual analysis = NewOf(4, 1);
  ASSERT_TRUE(analysis.FindObject());
  ASSERT_TRUE(study.Pod()->DataFile()->Delete(analysis.ObjectAddress(), false));
  try {
    CResidual::RemoveResiduals(study.Pod(), 4);
    ADD_FAILURE();
  } catch (const CObjectNotRemoved& error) {
    EXPECT_STREQ(error.what(), "Object not removed");
  }
  EXPECT_EQ(Stored(4), (std::vector<int>{1, 2}));
}

TEST_F(Residuals, AreRemovedFromAnOpenDatabaseUnderItsLock) {
  ExpectChecksOfDatabase([](POD* pod) { CResidual::RemoveResiduals(pod, 1); });
}

}  // namespace
