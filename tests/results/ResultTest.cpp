#include "results/Result.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <limits>
#include <map>
#include <string>

#include "store/KestErr.h"
#include "tests/results/ResultFields.h"
#include "tests/support/RawFile.h"
#include "tests/support/Study.h"

namespace {

class Results : public testing::Test {
 protected:
  CResult Stored(int id) {
    CResult result(study.Pod());
    result.m_nID = id;
    EXPECT_TRUE(result.GetObject());
    return result;
  }

  std::string Fault() {
    study.Close();
    return FaultOfClass(ReadRawFile(study.DataPath()), ReadRawFile(study.IndexPath()), 11000);
  }

  Study study;
};

void ExpectDefaults(const CResult& result) {
  EXPECT_EQ(result.m_nID, 0);
  EXPECT_EQ(result.m_nNumPoints, 0);
  EXPECT_EQ(result.m_nTotalPoints, 0);
  EXPECT_EQ(result.m_nEngineWord1, -1);
  EXPECT_EQ(result.m_nAnalysisCalls, 0);
  EXPECT_EQ(result.m_nGradientRequests, 0);
  EXPECT_EQ(result.m_nBestIter, 0);
  EXPECT_EQ(result.m_nBestSubIter, 0);
  EXPECT_EQ(result.m_fBestObjective, std::numeric_limits<double>::max());
  EXPECT_EQ(result.m_fWorstConstraint, -std::numeric_limits<double>::max());
  EXPECT_EQ(result.m_strLastMessage, "");
  EXPECT_EQ(result.m_nRunStatus, 0);
  EXPECT_EQ(result.m_nStopCode, 0);
  EXPECT_EQ(result.m_nBestSubTask, 0);
  EXPECT_EQ(result.m_nEngineWord2, 0);
  EXPECT_EQ(result.m_nEngineWord3, -1);
  EXPECT_EQ(result.m_strStarted, "");
  EXPECT_EQ(result.m_strStopped, "");
  EXPECT_EQ(result.m_fTimes.size(), 20U);
  for (const vbFLOAT64& time : result.m_fTimes) EXPECT_EQ(time, 0.0);
  EXPECT_EQ(result.m_EngineArray1.size(), 0U);
  EXPECT_EQ(result.m_EngineArray2.size(), 0U);
  EXPECT_EQ(result.m_EngineArray3.size(), 0U);
  EXPECT_EQ(result.m_nEngineWord4, 0);
}

// ---- The object ----

TEST_F(Results, HaveTheirClassConstants) {
  EXPECT_EQ(CResult::m_nRTASK_VER, 8);
  EXPECT_EQ(CResult::m_nRTASK_INDX, 10);
  EXPECT_EQ(CResult::m_nRTASK_ID, 11000);
  EXPECT_EQ(CResult::m_strCLASS_NAME, "CResult");
  CResult result(study.Pod());
  EXPECT_EQ(result.GetVBClassID(), 11000);
  EXPECT_EQ(result.GetVBClassIndex(), 10U);
  EXPECT_EQ(result.GetVBClassName(), "CResult");
  EXPECT_EQ(result.GetVBClassVer(), 8);
}

TEST_F(Results, HaveDefaultsWhenNew) {
  const POD* const pod = study.Pod();
  for (const CResult& result : {CResult(study.Pod()), CResult(pod)}) {
    ExpectDefaults(result);
    EXPECT_EQ(result.ObjectAddress(), 0);
  }
  EXPECT_EQ(CResult(study.Pod()).Database(), pod);
  EXPECT_EQ(CResult(pod).Database(), pod);
}

TEST_F(Results, SetDefaultAttributesSetsEveryField) {
  CResult result = FilledResult(study.Pod());
  result.PutObject();
  const vbINT32 address = result.ObjectAddress();
  result.SetDefaultAttributes();
  ExpectDefaults(result);
  EXPECT_EQ(result.Database(), study.Pod());
  EXPECT_EQ(result.ObjectAddress(), address);
}

TEST_F(Results, CopyTakesAllFieldsAndKeepsTheConnection) {
  const CResult source = FilledResult(nullptr);
  CResult copy(study.Pod());
  copy.m_nID = 1;
  copy.m_EngineArray1 = {1, 2, 3, 4, 5};
  copy.PutObject();
  const vbINT32 address = copy.ObjectAddress();
  copy.Copy(source);
  ExpectSameFields(copy, source);
  EXPECT_EQ(copy.Database(), study.Pod());
  EXPECT_EQ(copy.ObjectAddress(), address);
  copy.Copy(CResult(study.Pod()));
  ExpectDefaults(copy);
}

TEST_F(Results, AreUsableAsKeysWithAPositiveTask) {
  CResult result(study.Pod());
  char text[64];
  for (const int task : {-2147483647 - 1, -1, 0}) {
    result.m_nID = task;
    EXPECT_FALSE(result.CheckKey()) << task;
    EXPECT_THROW(result.PutObject(), CInvalidKey) << task;
  }
  for (const auto& [task, key] :
       std::map<int, std::string>{{1, "          1"}, {2147483647, " 2147483647"}}) {
    result.m_nID = task;
    EXPECT_TRUE(result.CheckKey()) << task;
    EXPECT_EQ(result.MakeKey(text), text);
    EXPECT_EQ(std::string(text), key);
  }
}

TEST_F(Results, AreFoundInTheirTreeByTask) {
  CResult twelve = FilledResult(study.Pod());
  twelve.m_nID = 12;
  twelve.PutObject();
  CResult three(study.Pod());
  three.m_nID = 3;
  three.PutObject();
  study.Close();
  const RawFile data = ReadRawFile(study.DataPath());
  const RawFile index = ReadRawFile(study.IndexPath());
  EXPECT_EQ(ReadRawTree(index, 10),
            (std::map<std::string, long>{{"          3", three.ObjectAddress()},
                                         {"         12", twelve.ObjectAddress()}}));
  EXPECT_EQ(FaultOfClass(data, index, 11000), "");
}

TEST_F(Results, AreReadBackAfterReopening) {
  FilledResult(study.Pod()).PutObject();
  study.Reopen();
  ExpectSameFields(Stored(7), FilledResult(nullptr));
}

// ---- The reset before a run ----

TEST_F(Results, AreCleanedInTheFileAndNotInTheObject) {
  CResult other = FilledResult(study.Pod());
  other.m_nID = 8;
  other.PutObject();
  CResult result = FilledResult(study.Pod());
  result.PutObject();
  const vbINT32 address = result.ObjectAddress();
  result.CleanResult(24);
  ExpectSameFields(result, FilledResult(nullptr));
  EXPECT_EQ(result.ObjectAddress(), address);
  CResult stored = Stored(7);
  EXPECT_EQ(stored.m_nNumPoints, 24);
  EXPECT_EQ(stored.m_nTotalPoints, 24);
  stored.m_nID = stored.m_nNumPoints = stored.m_nTotalPoints = 0;
  ExpectDefaults(stored);
  CResult expected = FilledResult(nullptr);
  expected.m_nID = 8;
  ExpectSameFields(Stored(8), expected);
  EXPECT_EQ(result.CountObjects(), 2);
  EXPECT_EQ(Fault(), "");
}

TEST_F(Results, AreStoredCleanWhereThereWasNone) {
  FilledResult(study.Pod()).CleanResult(-1);
  EXPECT_EQ(Stored(7).m_nNumPoints, -1);
  EXPECT_EQ(Stored(7).m_nTotalPoints, -1);
  EXPECT_EQ(Stored(7).m_strLastMessage, "");
}

TEST_F(Results, OfNoTaskCannotBeCleaned) {
  EXPECT_THROW(CResult(study.Pod()).CleanResult(1), CInvalidKey);
}

TEST_F(Results, WithoutADatabaseCannotBeCleaned) {
  EXPECT_THROW(FilledResult(nullptr).CleanResult(1), CNullPtr);
}

TEST_F(Results, AreCleanedUnderTheLockOnly) {
  FilledResult(study.Pod()).PutObject();
  std::filesystem::create_directory(study.LockPath());
  EXPECT_THROW(FilledResult(study.Pod()).CleanResult(1), CFileLock);
  std::filesystem::remove(study.LockPath());
  ExpectSameFields(Stored(7), FilledResult(nullptr));
}

}  // namespace
