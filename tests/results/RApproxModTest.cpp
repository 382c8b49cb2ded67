#include "results/RApproxMod.h"

#include <gtest/gtest.h>

#include "store/KestErr.h"
#include "store/vbdbase.h"
#include "tests/results/ModelStudy.h"
#include "tests/support/RawFile.h"

namespace {

class FinalModels : public ModelStudy {
 protected:
  CRApproxMod NewOf(int taskID) {
    CRApproxMod models(study.Pod());
    models.m_nTaskID = taskID;
    return models;
  }
};
using FinalModelsDeathTest = FinalModels;

TEST_F(FinalModels, HaveTheirClassConstants) {
  EXPECT_EQ(CRApproxMod::m_nRAPPMOD_VER, 1);
  EXPECT_EQ(CRApproxMod::m_nRAPPMOD_INDX, 21);
  EXPECT_EQ(CRApproxMod::m_nRAPPMOD_ID, 22000);
  EXPECT_EQ(CRApproxMod::m_strCLASS_NAME, "CRApproxMod");
}

TEST_F(FinalModels, HaveTheTermsOfBothMatrices) {
  CRApproxMod models(study.Pod());
  EXPECT_EQ(models.GetNumTerms(), 0);
  models.m_nColMod = models.m_nRowCoeff = 6;
  models.m_nRowMod = 2;
  models.m_nColCoeff = 3;
  EXPECT_EQ(models.GetNumTerms(), 6);
}

TEST_F(FinalModelsDeathTest, OfMatricesWithDifferentTermsStopTheProgram) {
  CRApproxMod models(study.Pod());
  models.m_nColMod = 6;
  models.m_nRowCoeff = 5;
  EXPECT_DEATH(models.GetNumTerms(), "Assertion failed: m_nColMod == m_nRowCoeff\n");
}

// ---- Removal ----

TEST_F(FinalModels, OfATaskAreRemovedAndNoOthers) {
  for (const int taskID : {3, 4, 5}) NewOf(taskID).PutObject();
  CRApproxMod::RemoveRApproxMod(study.Pod(), 4);
  EXPECT_FALSE(NewOf(4).FindObject());
  EXPECT_TRUE(NewOf(3).FindObject());
  EXPECT_TRUE(NewOf(5).FindObject());
  EXPECT_EQ(NewOf(4).CountObjects(), 2);
  study.Close();
  EXPECT_EQ(FaultOfClass(ReadRawFile(study.DataPath()), ReadRawFile(study.IndexPath()), 22000), "");
}

TEST_F(FinalModels, NeedNotBeThereToBeRemoved) {
  NewOf(3).PutObject();
  EXPECT_NO_THROW(CRApproxMod::RemoveRApproxMod(study.Pod(), 4));
  EXPECT_TRUE(NewOf(3).FindObject());
}

TEST_F(FinalModels, OfNoTaskAreAnInvalidKey) {
  EXPECT_THROW(CRApproxMod::RemoveRApproxMod(study.Pod(), 0), CInvalidKey);
  EXPECT_THROW(CRApproxMod::RemoveRApproxMod(study.Pod(), -1), CInvalidKey);
}

TEST_F(FinalModels, WhoseBlockIsFreeCannotBeRemoved) {
  CRApproxMod models = NewOf(4);
  models.PutObject();
  ASSERT_TRUE(study.Pod()->DataFile()->Delete(models.ObjectAddress(), false));
  try {
    CRApproxMod::RemoveRApproxMod(study.Pod(), 4);
    ADD_FAILURE();
  } catch (const CObjectNotRemoved& error) {
    EXPECT_STREQ(error.what(), "Object not removed");
  }
}

TEST_F(FinalModels, AreRemovedFromAnOpenDatabaseUnderItsLock) {
  ExpectChecksOfDatabase([](POD* pod) { CRApproxMod::RemoveRApproxMod(pod, 1); });
}

}  // namespace
