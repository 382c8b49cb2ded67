#include "definition/Input.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "index/KSBKey.h"
#include "store/KestErr.h"
#include "tests/definition/InputStudy.h"
#include "tests/support/Bytes.h"
#include "tests/support/RawFile.h"

namespace {

class Inputs : public testing::Test {
 protected:
  void Put(int id, const std::string& name = "") {
    CInput input(study.Pod());
    input.m_nID = id;
    input.m_strName = name;
    ASSERT_TRUE(input.PutObject());
  }

  std::vector<int> StoredIDs() {
    std::vector<int> ids;
    CInput::GetAllInputIDs(study.Pod(), ids);
    return ids;
  }

  /// The IDs of the Inputs in the order in which they lie in the file.
  std::vector<int> IDsInFileOrder() {
    std::vector<int> ids;
    CInput input(study.Pod());
    for (vbINT32 at = input.FirstObject(0); at > 0; at = input.NextObject(at)) {
      input.ReadObject(at);
      ids.push_back(static_cast<int>(long{input.m_nID}));
    }
    return ids;
  }

  /// Takes the key of a stored Input away, so that nothing leads to it any more.
  void LoseKey(int id) {
    CInput input(study.Pod());
    input.m_nID = id;
    char text[64];
    KSBKey key(input.MakeKey(text), 0, 0);
    KSBKey scratch;
    ASSERT_TRUE(input.RemoveKey(key, scratch, 0, true));
  }

  std::string FaultOfInputs() {
    study.Close();
    return FaultOfClass(ReadRawFile(study.DataPath()), ReadRawFile(study.IndexPath()), 1000);
  }

  Study study;
};

void ExpectDefaultScalars(const CInput& input) {
  EXPECT_EQ(input.m_nID, 0);
  EXPECT_EQ(input.m_nObjective, 0);
  EXPECT_EQ(input.m_uIndex, 0UL);
  EXPECT_EQ(input.m_uSize, 1UL);
  EXPECT_EQ(input.m_nType, 0);
  EXPECT_EQ(input.m_nAuxID, 0);
  EXPECT_EQ(input.m_fLower, -1e30);
  EXPECT_EQ(input.m_fUpper, 1e30);
  EXPECT_EQ(input.m_fInitial, 0.0);
  EXPECT_EQ(input.m_nUserScale, 0);
  EXPECT_EQ(input.m_fScale, 0.0);
  EXPECT_EQ(input.m_nGoal, 0);
  EXPECT_EQ(input.m_nHasWorst, 0);
  EXPECT_EQ(input.m_fWorst, 0.0);
  EXPECT_EQ(input.m_fTarget, 0.0);
  EXPECT_EQ(input.m_fWeight, 1.0);
  EXPECT_EQ(input.m_nRandom, 0);
  EXPECT_EQ(input.m_nRandomParam, 0);
  EXPECT_EQ(input.m_nDistribution, 0);
}

void ExpectDefaults(const CInput& input) {
  ExpectDefaultScalars(input);
  EXPECT_EQ(input.m_strName, "");
  EXPECT_EQ(input.m_strText, "");
  EXPECT_TRUE(input.m_vnArg.empty());
  EXPECT_TRUE(input.m_vnIdx.empty());
  EXPECT_TRUE(input.m_vnLength.empty());
}

// ---- The object ----

TEST_F(Inputs, HaveTheirDefaultsWhenNew) {
  const POD* const pod = study.Pod();
  for (const CInput& input : {CInput(study.Pod()), CInput(pod)}) ExpectDefaults(input);
  EXPECT_EQ(CInput(study.Pod()).Database(), pod);
  EXPECT_EQ(CInput(pod).Database(), pod);
  EXPECT_EQ(CInput(pod).ObjectAddress(), 0);
  ExpectDefaults(CInput(static_cast<POD*>(nullptr)));
}

TEST_F(Inputs, NameTheirClass) {
  CInput input(study.Pod());
  EXPECT_EQ(CInput::m_nINPUT_VER, 4);
  EXPECT_EQ(CInput::m_nINPUT_INDX, 0);
  EXPECT_EQ(CInput::m_nINPUT_ID, 1000);
  EXPECT_EQ(CInput::m_strCLASS_NAME, "CInput");
  EXPECT_EQ(input.GetVBClassVer(), 4);
  EXPECT_EQ(input.GetVBClassIndex(), 0U);
  EXPECT_EQ(input.GetVBClassID(), 1000);
  EXPECT_EQ(input.GetVBClassName(), "CInput");
}

TEST_F(Inputs, DefaultsLeaveTextsAndVectors) {
  CInput input = FilledInput(study.Pod());
  ASSERT_TRUE(input.PutObject());
  const long address = input.ObjectAddress();
  input.SetDefaultAttributes();
  ExpectDefaultScalars(input);
  EXPECT_EQ(input.m_strName, "width");
  EXPECT_EQ(input.m_strText, "of beam");
  EXPECT_EQ(input.m_vnArg, (std::vector<vbINT32>{-8, -9}));
  EXPECT_EQ(input.m_vnIdx, (std::vector<vbINT32>{0, 2}));
  EXPECT_EQ(input.m_vnLength, (std::vector<vbINT32>{1, 4}));
  EXPECT_EQ(input.Database(), study.Pod());
  EXPECT_EQ(input.ObjectAddress(), address);
}

TEST_F(Inputs, CopyTakesEveryFieldAndKeepsTheConnection) {
  CInput input = FilledInput(study.Pod());
  ASSERT_TRUE(input.PutObject());
  CInput apart(static_cast<POD*>(nullptr));
  apart.m_vnArg = {1, 2, 3};
  apart.Copy(input);
  ExpectSameFields(apart, FilledInput(study.Pod()));
  EXPECT_EQ(apart.Database(), nullptr);
  EXPECT_EQ(apart.ObjectAddress(), 0);
  CInput connected(study.Pod());
  connected.Copy(apart);
  ExpectSameFields(connected, FilledInput(study.Pod()));
  EXPECT_EQ(connected.Database(), study.Pod());
}

TEST_F(Inputs, CopyOfItselfChangesNothing) {
  CInput input = FilledInput(study.Pod());
  input.Copy(input);
  ExpectSameFields(input, FilledInput(study.Pod()));
  EXPECT_EQ(input.Database(), study.Pod());
}

TEST_F(Inputs, CopyConstructorTakesEveryFieldButNotTheConnection) {
  CInput input = FilledInput(study.Pod());
  ASSERT_TRUE(input.PutObject());
  const CInput copy(input);
  ExpectSameFields(copy, FilledInput(study.Pod()));
  EXPECT_EQ(copy.Database(), nullptr);
  EXPECT_EQ(copy.ObjectAddress(), 0);
}

TEST_F(Inputs, NameIsACopy) {
  CInput input = FilledInput(study.Pod());
  std::string name = input.GetName();
  EXPECT_EQ(name, "width");
  name += "!";
  EXPECT_EQ(input.m_strName, "width");
  EXPECT_EQ(CInput(study.Pod()).GetName(), "");
}

TEST_F(Inputs, IndexIsThePlaceInTheRun) {
  CInput input(study.Pod());
  std::vector<int> list{5, 7, 7, 7, 5, 5, 8};
  std::vector<int> places;
  for (int position = 0; position < 7; ++position) places.push_back(input.GetIndex(position, list));
  EXPECT_EQ(places, (std::vector<int>{0, 0, 1, 2, 0, 1, 0}));
}

TEST_F(Inputs, IndexOfARunOfThreeAtTheStart) {
  std::vector<int> list{4, 4, 4};
  CInput input(study.Pod());
  EXPECT_EQ(input.GetIndex(0, list), 0);
  EXPECT_EQ(input.GetIndex(1, list), 1);
  EXPECT_EQ(input.GetIndex(2, list), 2);
}

TEST_F(Inputs, IndexAtTheStartIsZeroForAnyList) {
  for (std::vector<int> list : {std::vector<int>{}, {0}, {-1, -1}, {3, 4}, {9, 9, 9}}) {
    EXPECT_EQ(CInput(study.Pod()).GetIndex(0, list), 0);
  }
}

// ---- The key ----

TEST_F(Inputs, HaveTheIDAsKey) {
  CInput input(study.Pod());
  const std::pair<int, const char*> keys[] = {{1, "          1"},
                                              {12345, "      12345"},
                                              {2147483647, " 2147483647"},
                                              {0, "          0"},
                                              {-5, "         -5"}};
  for (const auto& [id, text] : keys) {
    input.m_nID = id;
    char buffer[64];
    EXPECT_EQ(input.MakeKey(buffer), buffer);
    EXPECT_STREQ(buffer, text);
    EXPECT_EQ(input.CheckKey(), id > 0);
  }
}

TEST_F(Inputs, WithoutAPositiveIDAreRefused) {
  for (const int id : {0, -1}) {
    CInput input(study.Pod());
    input.m_nID = id;
    EXPECT_THROW(input.PutObject(), CInvalidKey);
    EXPECT_THROW(input.GetObject(), CInvalidKey);
    EXPECT_THROW(input.RemoveObject(), CInvalidKey);
  }
  EXPECT_EQ(CInput(study.Pod()).CountObjects(), 0);
}

TEST_F(Inputs, AreReadBackByTheirIDAfterReopening) {
  ASSERT_TRUE(FilledInput(study.Pod()).PutObject());
  study.Reopen();
  CInput input(study.Pod());
  input.m_nID = 7;
  ASSERT_TRUE(input.GetObject());
  ExpectSameFields(input, FilledInput(study.Pod()));
  input.m_nID = 8;
  EXPECT_FALSE(input.GetObject());
}

TEST_F(Inputs, AreReplacedByAnUpdate) {
  Put(7, "old");
  Put(7, "new");
  EXPECT_EQ(CInput(study.Pod()).CountObjects(), 1);
  CInput input(study.Pod());
  input.m_nID = 7;
  ASSERT_TRUE(input.GetObject());
  EXPECT_EQ(input.m_strName, "new");
  EXPECT_THROW(input.WriteObject(true), CObjectNotAdded);
}

// ---- All IDs ----

TEST_F(Inputs, AllIDsComeInTheOrderOfTheIndex) {
  for (const int id : {30, 2, 100, 1, 2147483647}) Put(id);
  EXPECT_EQ(StoredIDs(), (std::vector<int>{1, 2, 30, 100, 2147483647}));
}

TEST_F(Inputs, AllIDsReplaceWhatTheListHeld) {
  std::vector<int> ids{5, 6, 7};
  CInput::GetAllInputIDs(study.Pod(), ids);
  EXPECT_TRUE(ids.empty());
  Put(4);
  ids = {8, 9};
  CInput::GetAllInputIDs(study.Pod(), ids);
  EXPECT_EQ(ids, std::vector<int>{4});
}

// ---- Synchronising ----

TEST_F(Inputs, SyncRemovesThoseThatAreNotListed) {
  for (const int id : {1, 2, 3, 4}) Put(id);
  std::vector<int> ids{4, 9, 2, 2, -1};
  CInput::SyncInput(study.Pod(), ids);
  EXPECT_EQ(StoredIDs(), (std::vector<int>{2, 4}));
  EXPECT_EQ(ids, (std::vector<int>{4, 9, 2, 2, -1}));
  EXPECT_EQ(FaultOfInputs(), "");
}

TEST_F(Inputs, SyncWithAllKeepsAll) {
  for (const int id : {1, 2, 3}) Put(id);
  std::vector<int> ids{3, 2, 1};
  CInput::SyncInput(study.Pod(), ids);
  EXPECT_EQ(StoredIDs(), (std::vector<int>{1, 2, 3}));
}

TEST_F(Inputs, SyncWithNoneRemovesAll) {
  for (const int id : {1, 2, 3}) Put(id);
  std::vector<int> ids;
  CInput::SyncInput(study.Pod(), ids);
  EXPECT_TRUE(StoredIDs().empty());
  EXPECT_EQ(CInput(study.Pod()).CountObjects(), 0);
}

TEST_F(Inputs, SyncOfManyRemovesEveryOtherOne) {
  std::vector<int> even;
  for (int id = 1; id <= 100; ++id) {
    Put(id);
    if (id % 2 == 0) even.push_back(id);
  }
  CInput::SyncInput(study.Pod(), even);
  EXPECT_EQ(StoredIDs(), even);
  EXPECT_EQ(FaultOfInputs(), "");
}

TEST_F(Inputs, SyncOfAnEmptyStudyDoesNothing) {
  std::vector<int> ids{1};
  CInput::SyncInput(study.Pod(), ids);
  EXPECT_TRUE(StoredIDs().empty());
}

// ---- Removal ----

TEST_F(Inputs, RemoveTakesAllAwayAndNothingElse) {
  for (int id = 1; id <= 50; ++id) Put(id);
  CAuxiliary link(study.Pod());
  link.m_nID = 1;
  link.PutObject();
  EXPECT_TRUE(CInput::RemoveInputs(study.Pod()));
  EXPECT_TRUE(StoredIDs().empty());
  EXPECT_EQ(CInput(study.Pod()).CountObjects(), 0);
  EXPECT_TRUE(link.GetObject());
  EXPECT_EQ(FaultOfInputs(), "");
}

TEST_F(Inputs, RemoveOfNoneHolds) {
  EXPECT_TRUE(CInput::RemoveInputs(study.Pod()));
}

TEST_F(Inputs, RemoveStopsAtTheFirstThatCannotBeRemoved) {
  for (const int id : {1, 2, 3}) Put(id);
  const std::vector<int> order = IDsInFileOrder();
  ASSERT_EQ(order.size(), 3U);
  LoseKey(order[1]);
  EXPECT_FALSE(CInput::RemoveInputs(study.Pod()));
  EXPECT_EQ(IDsInFileOrder(), (std::vector<int>{order[1], order[2]}));
  EXPECT_EQ(StoredIDs(), std::vector<int>{order[2]});
}

// ---- Failures ----

/// The static operations.
const std::function<void(POD*)> operations[] = {
    [](POD* pod) { CInput::CheckInputs(pod); },
    [](POD* pod) {
      const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(std::tmpfile(), std::fclose);
      CInput::Dump(pod, stream.get());
    },
    [](POD* pod) { CInput::RemoveInputs(pod); },
    [](POD* pod) {
      std::vector<int> ids;
      CInput::GetAllInputIDs(pod, ids);
    },
    [](POD* pod) {
      std::vector<int> ids;
      CInput::SyncInput(pod, ids);
    },
};

template <class Error>
void ExpectAllThrow(POD* pod) {
  for (const auto& operation : operations) EXPECT_THROW(operation(pod), Error);
}

TEST_F(Inputs, OfNoDatabaseAreANullPointer) {
  ExpectAllThrow<CNullPtr>(nullptr);
}

TEST_F(Inputs, WithoutIndexingAreToldSoBeforeMissingFiles) {
  POD pod(study.folder / "other.ksb");
  ExpectAllThrow<CNoIndex>(&pod);
  KSBKey key;
  pod.Open(study.folder / "other.ksb", study.folder / "other.kx", key, 32, vbReadWrite, 2, 0, 25);
  ExpectAllThrow<CNoIndex>(&pod);
  try {
    CInput::RemoveInputs(&pod);
  } catch (const CNoIndex& error) {
    EXPECT_STREQ(error.what(), "No index");
  }
}

TEST_F(Inputs, WithoutADataFileAreANullPointer) {
  study.Pod()->CloseDataFile();
  ExpectAllThrow<CNullPtr>(study.Pod());
}

TEST_F(Inputs, WithoutAnIndexFileAreANullPointer) {
  study.Pod()->CloseIndex();
  ExpectAllThrow<CNullPtr>(study.Pod());
}

TEST_F(Inputs, OfALockedStudyAreNotTouched) {
  Put(1);
  std::filesystem::create_directory(study.LockPath());
  ExpectAllThrow<CFileLock>(study.Pod());
  EXPECT_THROW(CInput::CheckInputs(nullptr), CNullPtr);
  std::filesystem::remove(study.LockPath());
  EXPECT_EQ(StoredIDs(), std::vector<int>{1});
}

TEST_F(Inputs, OperationsReleaseTheLock) {
  CDesignControl(study.Pod()).PutObject();
  for (const auto& operation : operations) {
    operation(study.Pod());
    EXPECT_FALSE(std::filesystem::exists(study.LockPath()));
  }
}

TEST_F(Inputs, ThatAreDamagedFailAndReleaseTheLock) {
  CDesignControl(study.Pod()).PutObject();
  CInput input = FilledInput(study.Pod());
  ASSERT_TRUE(input.PutObject());
  study.Close();
  PatchBytes(study.DataPath(), input.ObjectAddress() + 20, "x");
  study.Open();
  EXPECT_THROW(CInput::CheckInputs(study.Pod()), CChecksum);
  EXPECT_FALSE(std::filesystem::exists(study.LockPath()));
}

TEST_F(Inputs, ThatAreDamagedAreStillListed) {
  CInput input = FilledInput(study.Pod());
  ASSERT_TRUE(input.PutObject());
  study.Close();
  PatchBytes(study.DataPath(), input.ObjectAddress() + 20, "x");
  study.Open();
  std::vector<int> ids;
  CInput::GetAllInputIDs(study.Pod(), ids);
  EXPECT_EQ(ids, (std::vector<int>{static_cast<int>(input.m_nID.PackBits())}));
}

TEST_F(Inputs, CannotBeReportedToANullStream) {
  EXPECT_THROW(CInput::Dump(study.Pod(), nullptr), CNullPtr);
}

}  // namespace
