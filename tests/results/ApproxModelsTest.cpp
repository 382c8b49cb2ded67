#include "results/ApproxModels.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "store/KestErr.h"
#include "store/vbdbase.h"
#include "tests/results/ModelStudy.h"
#include "tests/support/RawFile.h"

namespace {

/// Iteration and response.
using Number = std::array<int, 2>;
using Numbers = std::vector<Number>;

class ApproximationModels : public ModelStudy {
 protected:
  void Store(int taskID, const Numbers& numbers) {
    for (const auto& [iteration, resp] : numbers) NewOf(taskID, iteration, resp).PutObject();
  }
  CApproxModels NewOf(int taskID, int iteration, int resp) {
    CApproxModels model(study.Pod());
    model.m_nTaskID = taskID;
    model.m_nIter = iteration;
    model.m_nResp = resp;
    return model;
  }
  /// The models of a task among the first five iterations and responses.
  Numbers Stored(int taskID) {
    Numbers numbers;
    for (int iteration = 0; iteration < 5; ++iteration) {
      for (int resp = 0; resp < 5; ++resp) {
        if (NewOf(taskID, iteration, resp).FindObject()) numbers.push_back({iteration, resp});
      }
    }
    return numbers;
  }
  std::string Fault() {
    study.Close();
    return FaultOfClass(ReadRawFile(study.DataPath()), ReadRawFile(study.IndexPath()), 10000);
  }
};

TEST_F(ApproximationModels, HaveTheirClassConstants) {
  EXPECT_EQ(CApproxModels::m_nAPPMOD_VER, 1);
  EXPECT_EQ(CApproxModels::m_nAPPMOD_INDX, 9);
  EXPECT_EQ(CApproxModels::m_nAPPMOD_ID, 10000);
  EXPECT_EQ(CApproxModels::m_strCLASS_NAME, "CApproxModels");
}

TEST_F(ApproximationModels, HaveATermForEachCoefficient) {
  CApproxModels model(study.Pod());
  EXPECT_EQ(model.GetNumTerms(), 0);
  model.m_Model = {0, 0, 1, 0, 0, 1};
  EXPECT_EQ(model.GetNumTerms(), 0);
  model.m_Coefficients = {1.0, 2.0, 3.0};
  EXPECT_EQ(model.GetNumTerms(), 3);
}

TEST_F(ApproximationModels, OfTwoVariablesInAFullQuadraticHaveTwelveExponents) {
  // constant, x, y, x**2, x*y, y**2
  CApproxModels model = ModelOf(0, {0, 0, 1, 0, 0, 1, 2, 0, 1, 1, 0, 2}, {1, 2, 3, 4, 5, 6});
  EXPECT_EQ(model.ObjectLength(), 40U + 12 * 4 + 4 * 6 * 8);
  model.PutObject();
  CApproxModels stored = NewOf(1, 0, 0);
  ASSERT_TRUE(stored.GetObject());
  EXPECT_EQ(stored.m_Model.size(), 12U);
  EXPECT_EQ(stored.GetNumTerms(), 6);
}

// ---- Removal ----

TEST_F(ApproximationModels, OfATaskAreAllRemovedAndNoOthers) {
  Store(4, {{0, 0}, {0, 1}, {0, 2}, {1, 0}, {2, 0}, {2, 1}});
  Store(3, {{0, 0}, {1, 0}});
  Store(5, {{0, 0}, {0, 1}});
  CApproxModels::RemoveApproxModels(study.Pod(), 4);
  EXPECT_EQ(Stored(4), Numbers());
  EXPECT_EQ(Stored(3), (Numbers{{0, 0}, {1, 0}}));
  EXPECT_EQ(Stored(5), (Numbers{{0, 0}, {0, 1}}));
  EXPECT_EQ(CApproxModels(study.Pod()).CountObjects(), 4);
  EXPECT_EQ(Fault(), "");
}

TEST_F(ApproximationModels, BehindAGapInTheResponsesStayWhileTheNextIterationGoes) {
  Store(4, {{0, 0}, {0, 2}, {1, 0}, {1, 1}, {1, 3}});
  CApproxModels::RemoveApproxModels(study.Pod(), 4);
  EXPECT_EQ(Stored(4), (Numbers{{0, 2}, {1, 3}}));
}

TEST_F(ApproximationModels, BehindAnIterationWithoutTheFirstResponseStay) {
  Store(4, {{0, 0}, {1, 1}, {1, 2}, {2, 0}});
  CApproxModels::RemoveApproxModels(study.Pod(), 4);
  EXPECT_EQ(Stored(4), (Numbers{{1, 1}, {1, 2}, {2, 0}}));
  CApproxModels::RemoveApproxModels(study.Pod(), 4);
  EXPECT_EQ(Stored(4), (Numbers{{1, 1}, {1, 2}, {2, 0}}));
}

TEST_F(ApproximationModels, AreRemovedThroughoutALargeTree) {
  for (int iteration = 0; iteration < 20; ++iteration) {
    for (int resp = 0; resp < 15; ++resp) NewOf(4, iteration, resp).PutObject();
  }
  CApproxModels::RemoveApproxModels(study.Pod(), 4);
  EXPECT_EQ(CApproxModels(study.Pod()).CountObjects(), 0);
  EXPECT_EQ(Fault(), "");
}

TEST_F(ApproximationModels, OfNoTaskAreAnInvalidKey) {
  EXPECT_THROW(CApproxModels::RemoveApproxModels(study.Pod(), 0), CInvalidKey);
  EXPECT_THROW(CApproxModels::RemoveApproxModels(study.Pod(), -1), CInvalidKey);
}

TEST_F(ApproximationModels, WhoseBlockIsFreeCannotBeRemoved) {
  Store(4, {{0, 0}, {1, 0}, {1, 1}, {1, 2}});
  CApproxModels model = NewOf(4, 1, 1);
  ASSERT_TRUE(model.FindObject());
  ASSERT_TRUE(study.Pod()->DataFile()->Delete(model.ObjectAddress(), false));
  try {
    CApproxModels::RemoveApproxModels(study.Pod(), 4);
    ADD_FAILURE();
  } catch (const CObjectNotRemoved& error) {
    EXPECT_STREQ(error.what(), "Object not removed");
  }
  EXPECT_EQ(Stored(4), (Numbers{{1, 1}, {1, 2}}));
}

TEST_F(ApproximationModels, AreRemovedFromAnOpenDatabaseUnderItsLock) {
  ExpectChecksOfDatabase([](POD* pod) { CApproxModels::RemoveApproxModels(pod, 1); });
}

}  // namespace
