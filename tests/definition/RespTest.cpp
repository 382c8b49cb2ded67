#include "definition/Resp.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <functional>
#include <string>

#include "definition/Input.h"
#include "index/KSBKey.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "tests/definition/RespSamples.h"
#include "tests/support/RawFile.h"
#include "tests/support/StoredRecord.h"
#include "tests/support/Study.h"

namespace {

void ExpectDefaultScalars(const CResp& resp) {
  EXPECT_EQ(resp.m_nID, 0);
  EXPECT_EQ(resp.m_nConstraint, 1);
  EXPECT_EQ(resp.m_nObjective, 0);
  EXPECT_EQ(resp.m_uIndex, 0);
  EXPECT_EQ(resp.m_uSize, 1);
  EXPECT_EQ(resp.m_nType, 0);
  EXPECT_EQ(resp.m_nAuxID, 0);
  EXPECT_EQ(resp.m_nHasLower, 0);
  EXPECT_EQ(resp.m_fLower, -1e30);
  EXPECT_EQ(resp.m_nHasLowerScale, 0);
  EXPECT_EQ(resp.m_fLowerScale, 1.0);
  EXPECT_EQ(resp.m_nHasUpper, 0);
  EXPECT_EQ(resp.m_fUpper, 1e30);
  EXPECT_EQ(resp.m_nHasUpperScale, 0);
  EXPECT_EQ(resp.m_fUpperScale, 1.0);
  EXPECT_EQ(resp.m_nGoal, 0);
  EXPECT_EQ(resp.m_nHasWorst, 0);
  EXPECT_EQ(resp.m_fWorst, 0.0);
  EXPECT_EQ(resp.m_fTarget, 0.0);
  EXPECT_EQ(resp.m_fWeight, 1.0);
  EXPECT_EQ(resp.m_nRandom, 0);
  EXPECT_EQ(resp.m_nRandomParam, 0);
}

void ExpectDefaults(const CResp& resp) {
  ExpectDefaultScalars(resp);
  EXPECT_EQ(resp.m_strName, "");
  EXPECT_EQ(resp.m_strText, "");
  EXPECT_TRUE(resp.m_vnArg.empty());
  EXPECT_TRUE(resp.m_vnIdx.empty());
  EXPECT_TRUE(resp.m_vnLength.empty());
}

std::string KeyOf(long id) {
  CResp resp(static_cast<POD*>(nullptr));
  resp.m_nID = id;
  char buffer[64];
  EXPECT_EQ(resp.MakeKey(buffer), buffer);
  return buffer;
}

class Responses : public testing::Test {
 protected:
  void Store(long id) {
    CResp resp(study.Pod());
    resp.m_nID = id;
    resp.PutObject();
  }
  void StoreAll(const std::vector<int>& ids) {
    const CLock lock(study.Pod(), 0);
    for (const int id : ids) Store(id);
  }
  bool IsStored(long id) {
    CResp resp(study.Pod());
    resp.m_nID = id;
    return resp.FindObject();
  }
  std::vector<int> IDs() {
    std::vector<int> ids;
    CResp::GetAllRespIDs(study.Pod(), ids);
    return ids;
  }
  /// What is wrong with the responses in the files, which are closed for it.
  std::string Fault() {
    study.Close();
    return FaultOfClass(ReadRawFile(study.DataPath()), ReadRawFile(study.IndexPath()), 19000);
  }

  Study study;
};

// ---- The object ----

TEST_F(Responses, AreAClassOfTheirOwn) {
  EXPECT_EQ(CResp::m_nRESP_INDX, 18);
  EXPECT_EQ(CResp::m_nRESP_ID, 19000);
  EXPECT_EQ(CResp::m_nRESP_VER, 3);
  EXPECT_EQ(CResp::m_strCLASS_NAME, "CResp");
  CResp resp(study.Pod());
  vbPersistent& object = resp;
  EXPECT_EQ(object.GetVBClassIndex(), 18U);
  EXPECT_EQ(object.GetVBClassID(), 19000);
  EXPECT_EQ(object.GetVBClassVer(), 3);
  EXPECT_EQ(object.GetVBClassName(), "CResp");
}

TEST_F(Responses, HaveTheirDefaultsWhenNew) {
  POD* const pod = study.Pod();
  const POD* const constPod = pod;
  ExpectDefaults(CResp(pod));
  ExpectDefaults(CResp(constPod));
  EXPECT_EQ(CResp(pod).Database(), pod);
  EXPECT_EQ(CResp(constPod).Database(), pod);
  EXPECT_EQ(CResp(pod).ObjectAddress(), 0);
}

TEST_F(Responses, AreMadeWithoutADatabase) {
  ExpectDefaults(CResp(static_cast<POD*>(nullptr)));
}

TEST_F(Responses, GetDefaultsInAllButTextsAndVectors) {
  CResp resp = FullResp(study.Pod());
  resp.PutObject();
  const long address = resp.ObjectAddress();
  resp.SetDefaultAttributes();
  ExpectDefaultScalars(resp);
  ExpectFullTexts(resp);
  EXPECT_EQ(resp.Database(), study.Pod());
  EXPECT_EQ(resp.ObjectAddress(), address);
}

TEST_F(Responses, CopyEveryFieldAndKeepTheirConnection) {
  CResp full = FullResp(study.Pod());
  full.PutObject();
  CResp detached(static_cast<POD*>(nullptr));
  detached.Copy(full);
  ExpectFull(detached);
  EXPECT_EQ(detached.Database(), nullptr);
  EXPECT_EQ(detached.ObjectAddress(), 0);
}

TEST_F(Responses, KeepTheirBlockWhenTheyAreCopiedInto) {
  CResp stored = FullResp(study.Pod());
  stored.PutObject();
  const long address = stored.ObjectAddress();
  stored.Copy(CResp(static_cast<POD*>(nullptr)));
  ExpectDefaults(stored);
  EXPECT_EQ(stored.Database(), study.Pod());
  EXPECT_EQ(stored.ObjectAddress(), address);
}

TEST_F(Responses, AreNotConnectedWhenMadeAsACopy) {
  CResp full = FullResp(study.Pod());
  full.PutObject();
  const CResp copy(full);
  ExpectFull(copy);
  EXPECT_EQ(copy.Database(), nullptr);
  EXPECT_EQ(copy.ObjectAddress(), 0);
}

TEST_F(Responses, GiveACopyOfTheirName) {
  CResp resp = FullResp(study.Pod());
  std::string name = resp.GetName();
  EXPECT_EQ(name, "Stress");
  name = "other";
  EXPECT_EQ(resp.m_strName, "Stress");
}

TEST_F(Responses, StartAnyListAtPlaceZero) {
  const CResp resp(study.Pod());
  for (std::vector<int> list : {std::vector<int>{5}, {5, 5}, {5, 6}, {0, 0, 0}, {-1, -1}}) {
    EXPECT_EQ(resp.GetIndex(0, list), 0);
  }
}

TEST_F(Responses, CountThePlacesWithinEachRun) {
  const CResp resp(study.Pod());
  std::vector<int> list{5, 5, 5, 7, 5, 5, 0, 0, -1};
  const std::vector<int> places{0, 1, 2, 0, 0, 1, 0, 1, 0};
  for (int i = 0; i < 9; ++i) {
    EXPECT_EQ(resp.GetIndex(i, list), places[static_cast<std::size_t>(i)]) << i;
  }
}

// ---- The key ----

TEST(RespKey, IsTheIDInElevenColumns) {
  EXPECT_EQ(KeyOf(1), "          1");
  EXPECT_EQ(KeyOf(42), "         42");
  EXPECT_EQ(KeyOf(2147483647), " 2147483647");
  EXPECT_EQ(KeyOf(0), "          0");
  EXPECT_EQ(KeyOf(-7), "         -7");
  EXPECT_EQ(KeyOf(-2147483648), "-2147483648");
}

TEST(RespKey, IsUsableFromOne) {
  CResp resp(static_cast<POD*>(nullptr));
  for (const long id : {1L, 2L, 2147483647L}) {
    resp.m_nID = id;
    EXPECT_TRUE(resp.CheckKey()) << id;
  }
  for (const long id : {0L, -1L, -2147483648L}) {
    resp.m_nID = id;
    EXPECT_FALSE(resp.CheckKey()) << id;
  }
}

TEST_F(Responses, WithoutAUsableIDAreNotStored) {
  EXPECT_THROW(Store(0), CInvalidKey);
  EXPECT_THROW(Store(-1), CInvalidKey);
  EXPECT_THROW(IsStored(0), CInvalidKey);
  EXPECT_EQ(CResp(study.Pod()).CountObjects(), 0);
}

TEST_F(Responses, LieInTheTreeOfTheirClass) {
  CResp resp = FullResp(study.Pod());
  resp.PutObject();
  study.Close();
  EXPECT_EQ(ReadRawTree(ReadRawFile(study.IndexPath()), 18),
            (std::map<std::string, long>{{"         42", long{resp.ObjectAddress()}}}));
}

TEST_F(Responses, AreReadBackAfterReopening) {
  FullResp(study.Pod()).PutObject();
  study.Reopen();
  CResp resp(study.Pod());
  resp.m_nID = 42;
  ASSERT_TRUE(resp.GetObject());
  ExpectFull(resp);
}

TEST_F(Responses, AreNotAddedTwice) {
  EXPECT_TRUE(FullResp(study.Pod()).WriteObject(true));
  EXPECT_THROW(FullResp(study.Pod()).WriteObject(true), CObjectNotAdded);
  FullResp(study.Pod()).PutObject();
  EXPECT_EQ(CResp(study.Pod()).CountObjects(), 1);
  EXPECT_EQ(Fault(), "");
}

// ---- All IDs ----

TEST_F(Responses, HaveNoIDsInAFreshStudy) {
  std::vector<int> ids{1, 2, 3};
  CResp::GetAllRespIDs(study.Pod(), ids);
  EXPECT_TRUE(ids.empty());
}

TEST_F(Responses, AreListedInTheOrderOfTheirNumbers) {
  StoreAll({10, 9, 100, 1, 2147483647});
  EXPECT_EQ(IDs(), (std::vector<int>{1, 9, 10, 100, 2147483647}));
}

TEST_F(Responses, ReplaceALongerListAndAShorterOne) {
  StoreAll({2, 1});
  std::vector<int> ids{7, 8, 9};
  CResp::GetAllRespIDs(study.Pod(), ids);
  EXPECT_EQ(ids, (std::vector<int>{1, 2}));
  ids = {7};
  CResp::GetAllRespIDs(study.Pod(), ids);
  EXPECT_EQ(ids, (std::vector<int>{1, 2}));
}

// ---- Synchronising ----

TEST_F(Responses, OutsideTheListAreRemoved) {
  StoreAll({1, 2, 3, 4, 5});
  std::vector<int> ids{5, 77, 2, 2, -3, 0};
  CResp::SyncResp(study.Pod(), ids);
  EXPECT_EQ(IDs(), (std::vector<int>{2, 5}));
  EXPECT_EQ(ids, (std::vector<int>{5, 77, 2, 2, -3, 0}));
  EXPECT_EQ(Fault(), "");
}

TEST_F(Responses, OutsideTheListAreRemovedThroughoutALargeTree) {
  std::vector<int> all;
  std::vector<int> even;
  for (int id = 1; id <= 300; ++id) {
    all.push_back(id);
    if (id % 2 == 0) even.push_back(id);
  }
  StoreAll(all);
  CResp::SyncResp(study.Pod(), even);
  EXPECT_EQ(IDs(), even);
  EXPECT_EQ(Fault(), "");
}

TEST_F(Responses, AreAllRemovedByAnEmptyList) {
  StoreAll({1, 2, 3});
  std::vector<int> ids;
  CResp::SyncResp(study.Pod(), ids);
  EXPECT_EQ(CResp(study.Pod()).CountObjects(), 0);
  EXPECT_EQ(Fault(), "");
}

TEST_F(Responses, AreAllKeptByTheirOwnList) {
  StoreAll({1, 2, 3});
  std::vector<int> ids{3, 2, 1};
  CResp::SyncResp(study.Pod(), ids);
  EXPECT_EQ(IDs(), (std::vector<int>{1, 2, 3}));
}

TEST_F(Responses, AreRemovedApartFromInputs) {
  CInput input(study.Pod());
  input.m_nID = 1;
  input.PutObject();
  StoreAll({1, 2});
  std::vector<int> ids;
  CResp::SyncResp(study.Pod(), ids);
  EXPECT_TRUE(CResp::RemoveResps(study.Pod()));
  EXPECT_TRUE(input.GetObject());
}

// ---- Removal ----

TEST_F(Responses, AreAllRemoved) {
  std::vector<int> ids;
  for (int id = 300; id >= 1; --id) ids.push_back(id);
  StoreAll(ids);
  EXPECT_TRUE(CResp::RemoveResps(study.Pod()));
  EXPECT_EQ(CResp(study.Pod()).CountObjects(), 0);
  EXPECT_TRUE(IDs().empty());
  EXPECT_EQ(Fault(), "");
}

TEST_F(Responses, AreAllRemovedWhenThereAreNone) {
  EXPECT_TRUE(CResp::RemoveResps(study.Pod()));
}

TEST_F(Responses, AreRemovedUpToTheFirstThatNoKeyLeadsTo) {
  StoreAll({1, 2, 3, 4});
  char buffer[64];
  CResp lost(study.Pod());
  lost.m_nID = 2;
  ASSERT_TRUE(lost.GetObject());
  KSBKey key(lost.MakeKey(buffer), 0, 0);
  KSBKey scratch;
  ASSERT_TRUE(lost.RemoveKey(key, scratch, 18, true));
  EXPECT_FALSE(CResp::RemoveResps(study.Pod()));
  EXPECT_FALSE(IsStored(1));
  EXPECT_EQ(CResp(study.Pod()).CountObjects(), 3);
  EXPECT_EQ(IDs(), (std::vector<int>{3, 4}));
}

// ---- Failures ----

/// The static operations, and the null stream that only Dump has.
const std::function<void(POD*)> operations[] = {
    [](POD* pod) { CResp::CheckResps(pod); },
    [](POD* pod) { CResp::Dump(pod, stdout); },
    [](POD* pod) {
      std::vector<int> ids;
      CResp::GetAllRespIDs(pod, ids);
    },
    [](POD* pod) {
      std::vector<int> ids;
      CResp::SyncResp(pod, ids);
    },
    [](POD* pod) { CResp::RemoveResps(pod); },
    [](POD* pod) { CResp::Dump(pod, nullptr); },
};

TEST_F(Responses, OfNoDatabaseAreANullPointer) {
  for (const auto& operation : operations) EXPECT_THROW(operation(nullptr), CNullPtr);
}

TEST_F(Responses, WithoutIndexingAreToldSoBeforeMissingFiles) {
  POD pod(study.folder / "other.ksb");
  for (const auto& operation : operations) EXPECT_THROW(operation(&pod), CNoIndex);
  KSBKey key;
  pod.Open(study.folder / "other.ksb", study.folder / "other.kx", key, 32, vbReadWrite, 2, 0, 25);
  for (const auto& operation : operations) EXPECT_THROW(operation(&pod), CNoIndex);
}

TEST_F(Responses, WithoutIndexingSayNoIndex) {
  const POD pod(study.folder / "other.ksb");
  try {
    CResp::CheckResps(const_cast<POD*>(&pod));
    ADD_FAILURE();
  } catch (const CNoIndex& error) {
    EXPECT_STREQ(error.what(), "No index");
  }
}

TEST_F(Responses, WithoutADataFileAreANullPointer) {
  study.Pod()->CloseDataFile();
  for (const auto& operation : operations) EXPECT_THROW(operation(study.Pod()), CNullPtr);
}

TEST_F(Responses, WithoutAnIndexFileAreANullPointer) {
  study.Pod()->CloseIndex();
  for (const auto& operation : operations) EXPECT_THROW(operation(study.Pod()), CNullPtr);
}

TEST_F(Responses, AreWorkedOnUnderTheLockOnly) {
  std::filesystem::create_directory(study.LockPath());
  for (const auto& operation :
       {operations[0], operations[1], operations[2], operations[3], operations[4]}) {
    EXPECT_THROW(operation(study.Pod()), CFileLock);
  }
  std::filesystem::remove(study.LockPath());
}

}  // namespace
