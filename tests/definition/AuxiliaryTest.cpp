#include "definition/Auxiliary.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "definition/GPoint.h"
#include "index/KSBKey.h"
#include "store/KestErr.h"
#include "tests/definition/AuxiliarySamples.h"
#include "tests/support/Bytes.h"
#include "tests/support/RawFile.h"
#include "tests/support/StoredRecord.h"
#include "tests/support/Study.h"

namespace {

class Auxiliaries : public testing::Test {
 protected:
  long Store(int id, int type) {
    CAuxiliary definition(study.Pod());
    definition.m_nID = id;
    definition.m_nAuxType = type;
    EXPECT_TRUE(definition.PutObject());
    return definition.ObjectAddress();
  }

  /// A definition in the data file that no key leads to.
  long StoreWithoutKey() {
    return StoreRecord(study.Pod(), 2000,
                       Bytes("02 00 00 00 63 00 00 00 01 00 00 00 00 01 00 00 00 00 00 00 00 "
                             "00 00 00 00 01 00 00 00 00 01 00 00 00 00 00 00 00 00 00 00 00 00"));
  }

  bool IsStored(int id) {
    CAuxiliary definition(study.Pod());
    definition.m_nID = id;
    return definition.FindObject();
  }

  std::vector<int> IDs(int type) {
    std::vector<int> ids;
    CAuxiliary(study.Pod()).GetAllIDs(type, ids);
    return ids;
  }

  Study study;
};

// ---- The object ----

TEST_F(Auxiliaries, AreLinksWithNothingInThemWhenNew) {
  const POD* const pod = study.Pod();
  for (const CAuxiliary& definition : {CAuxiliary(study.Pod()), CAuxiliary(pod)}) {
    EXPECT_EQ(definition.m_nID, 0);
    ExpectAuxiliaryDefaults(definition);
  }
  EXPECT_EQ(CAuxiliary(study.Pod()).Database(), pod);
  EXPECT_EQ(CAuxiliary(pod).Database(), pod);
  EXPECT_EQ(CAuxiliary(pod).ObjectAddress(), 0);
}

TEST_F(Auxiliaries, HaveTheirClassConstants) {
  EXPECT_EQ(CAuxiliary::m_nAUXILIARY_VER, 2);
  EXPECT_EQ(CAuxiliary::m_nAUXILIARY_INDX, 1);
  EXPECT_EQ(CAuxiliary::m_nAUXILIARY_ID, 2000);
  EXPECT_EQ(CAuxiliary::m_strCLASS_NAME, "CAuxiliary");
  CAuxiliary definition(study.Pod());
  EXPECT_EQ(definition.GetVBClassID(), 2000);
  EXPECT_EQ(definition.GetVBClassIndex(), 1U);
  EXPECT_EQ(definition.GetVBClassName(), "CAuxiliary");
  EXPECT_EQ(definition.GetVBClassVer(), 2);
}

TEST_F(Auxiliaries, DefaultsLeaveTextsAndVectorsAlone) {
  CAuxiliary definition = FilledAuxiliary(study.Pod());
  definition.SetDefaultAttributes();
  EXPECT_EQ(definition.m_nID, 0);
  EXPECT_EQ(definition.m_nAuxType, 1);
  EXPECT_EQ(definition.m_nNumber, 0);
  ExpectFilledTextsAndVectors(definition);
  EXPECT_EQ(definition.Database(), study.Pod());
}

TEST_F(Auxiliaries, CopyTakesEveryFieldAndKeepsTheConnection) {
  CAuxiliary copy(study.Pod());
  copy.m_nID = 1;
  copy.PutObject();
  const long address = copy.ObjectAddress();
  copy.Copy(FilledAuxiliary(nullptr));
  ExpectFilledAuxiliary(copy);
  EXPECT_EQ(copy.Database(), study.Pod());
  EXPECT_EQ(copy.ObjectAddress(), address);
}

TEST_F(Auxiliaries, CopyDoesNotConnect) {
  CAuxiliary stored = FilledAuxiliary(study.Pod());
  stored.PutObject();
  CAuxiliary copy(static_cast<POD*>(nullptr));
  copy.Copy(stored);
  EXPECT_EQ(copy.Database(), nullptr);
  EXPECT_EQ(copy.ObjectAddress(), 0);
}

TEST_F(Auxiliaries, AreUsableAsKeysWithAPositiveID) {
  CAuxiliary definition(study.Pod());
  for (const auto& [id, usable] : std::map<long, bool>{
           {-2147483648L, false}, {-1, false}, {0, false}, {1, true}, {2147483647L, true}}) {
    definition.m_nID = id;
    EXPECT_EQ(definition.CheckKey(), usable) << id;
  }
}

TEST_F(Auxiliaries, HaveAKeyOfElevenColumns) {
  CAuxiliary definition(study.Pod());
  char text[64];
  for (const auto& [id, key] : std::map<long, std::string>{
           {1, "          1"}, {2000, "       2000"}, {2147483647L, " 2147483647"}}) {
    definition.m_nID = id;
    EXPECT_EQ(definition.MakeKey(text), text);
    EXPECT_EQ(std::string(text), key);
  }
}

TEST_F(Auxiliaries, AreFoundInTheirTreeByID) {
  const long twelve = Store(12, 4);
  const long three = Store(3, 1);
  study.Close();
  EXPECT_EQ(ReadRawTree(ReadRawFile(study.IndexPath()), 1),
            (std::map<std::string, long>{{"          3", three}, {"         12", twelve}}));
  EXPECT_EQ(FaultOfClass(ReadRawFile(study.DataPath()), ReadRawFile(study.IndexPath()), 2000), "");
}

TEST_F(Auxiliaries, WithoutAPositiveIDAreNotStored) {
  CAuxiliary definition(study.Pod());
  EXPECT_THROW(definition.PutObject(), CInvalidKey);
  EXPECT_EQ(definition.CountObjects(), 0);
}

// ---- Arguments ----

constexpr unsigned none = ~0U;

unsigned ArgumentsOfLink(std::size_t coefficients) {
  CAuxiliary link(static_cast<POD*>(nullptr));
  link.m_strArgs = "not,of,a,link,at,all";
  link.m_vfCoef.resize(coefficients);
  return link.GetNumArgs();
}

unsigned ArgumentsOfEquation(const std::string& names) {
  CAuxiliary equation(static_cast<POD*>(nullptr));
  equation.m_nAuxType = 2;
  equation.m_strArgs = names;
  equation.m_vfCoef.resize(9);
  return equation.GetNumArgs();
}

TEST(AuxiliaryArguments, OfALinkAreItsCoefficientsButTheConstant) {
  EXPECT_EQ(ArgumentsOfLink(1), 0U);
  EXPECT_EQ(ArgumentsOfLink(2), 1U);
  EXPECT_EQ(ArgumentsOfLink(5), 4U);
}

TEST(AuxiliaryArguments, OfALinkWithoutCoefficientsAreAllOnes) {
  EXPECT_EQ(ArgumentsOfLink(0), none);
}

TEST(AuxiliaryArguments, OfAnEquationAreItsNames) {
  EXPECT_EQ(ArgumentsOfEquation(""), 0U);
  EXPECT_EQ(ArgumentsOfEquation("x"), 1U);
  EXPECT_EQ(ArgumentsOfEquation("x,y"), 2U);
  EXPECT_EQ(ArgumentsOfEquation("width, height, length"), 3U);
}

TEST(AuxiliaryArguments, OfAnEquationAreCountedByCommasAlone) {
  EXPECT_EQ(ArgumentsOfEquation(" "), 1U);
  EXPECT_EQ(ArgumentsOfEquation("x y;z"), 1U);
  EXPECT_EQ(ArgumentsOfEquation(","), 2U);
  EXPECT_EQ(ArgumentsOfEquation(",x,"), 3U);
}

TEST(AuxiliaryArguments, OfOtherKindsAreAllOnes) {
  for (const int type : {4, 3, 0, 5, -1}) {
    CAuxiliary other(static_cast<POD*>(nullptr));
    other.m_nAuxType = type;
    other.m_vfValues = {1.0, 2.0};
    other.m_strArgs = "x,y";
    other.m_vfCoef = {1.0, 2.0};
    EXPECT_EQ(other.GetNumArgs(), none) << type;
    EXPECT_EQ(static_cast<int>(other.GetNumArgs()), -1) << type;
  }
}

// ---- Lookups ----

TEST_F(Auxiliaries, AreCountedByKind) {
  for (const int type : {1, 2, 3, 4}) EXPECT_EQ(CAuxiliary::NumType(type, study.Pod()), 0);
  Store(1, 4);
  Store(2, 1);
  Store(3, 4);
  Store(4, 3);
  Store(5, 4);
  EXPECT_EQ(CAuxiliary::NumType(1, study.Pod()), 1);
  EXPECT_EQ(CAuxiliary::NumType(2, study.Pod()), 0);
  EXPECT_EQ(CAuxiliary::NumType(3, study.Pod()), 1);
  EXPECT_EQ(CAuxiliary::NumType(4, study.Pod()), 3);
  EXPECT_EQ(CAuxiliary::NumType(0, study.Pod()), 0);
}

TEST_F(Auxiliaries, AreListedByKindInTheOrderOfTheirIDs) {
  Store(1000, 4);
  Store(20, 1);
  Store(3, 4);
  Store(100, 4);
  Store(4, 2);
  EXPECT_EQ(IDs(4), (std::vector<int>{3, 100, 1000}));
  EXPECT_EQ(IDs(1), (std::vector<int>{20}));
  EXPECT_EQ(IDs(2), (std::vector<int>{4}));
  EXPECT_EQ(IDs(3), (std::vector<int>{}));
}

TEST_F(Auxiliaries, ListReplacesWhatTheVectorHeld) {
  Store(5, 1);
  Store(6, 1);
  for (std::vector<int> ids : {std::vector<int>{9, 9, 9, 9}, {9}, {}}) {
    CAuxiliary(study.Pod()).GetAllIDs(1, ids);
    EXPECT_EQ(ids, (std::vector<int>{5, 6}));
    CAuxiliary(study.Pod()).GetAllIDs(4, ids);
    EXPECT_TRUE(ids.empty());
  }
}

TEST_F(Auxiliaries, ListLeavesTheObjectAsItIs) {
  Store(5, 1);
  CAuxiliary definition = FilledAuxiliary(study.Pod());
  std::vector<int> ids;
  definition.GetAllIDs(1, ids);
  ExpectFilledAuxiliary(definition);
}

TEST_F(Auxiliaries, OfAClosedDatabaseCannotBeListed) {
  std::vector<int> ids;
  POD pod(study.folder / "other.ksb");
  EXPECT_THROW(CAuxiliary(&pod).GetAllIDs(1, ids), CNoDatabaseOpen);
  EXPECT_THROW(CAuxiliary(static_cast<POD*>(nullptr)).GetAllIDs(1, ids), CNoDatabaseOpen);
  CAuxiliary definition(study.Pod());
  study.Pod()->CloseDataFile();
  try {
    definition.GetAllIDs(1, ids);
    ADD_FAILURE() << "nothing thrown";
  } catch (const CNoDatabaseOpen& error) {
    EXPECT_STREQ(error.what(), "No database open");
  }
}

// ---- Removal ----

TEST_F(Auxiliaries, RemovalTakesAllOfThemAndNothingElse) {
  for (int id = 1; id <= 12; ++id) Store(13 - id, 1 + id % 4);
  EXPECT_TRUE(CAuxiliary::RemoveAuxiliaries(study.Pod()));
  EXPECT_EQ(CAuxiliary(study.Pod()).CountObjects(), 0);
  for (int id = 1; id <= 12; ++id) EXPECT_FALSE(IsStored(id)) << id;
  EXPECT_EQ(CGPoint(study.Pod()).CountObjects(), 1);
  study.Close();
  EXPECT_EQ(FaultOfClass(ReadRawFile(study.DataPath()), ReadRawFile(study.IndexPath()), 2000), "");
}

TEST_F(Auxiliaries, RemovalOfNoneSucceeds) {
  EXPECT_TRUE(CAuxiliary::RemoveAuxiliaries(study.Pod()));
}

TEST_F(Auxiliaries, RemovalStopsAtTheFirstThatCannotBeRemoved) {
  const long first = Store(1, 1);
  const long keyless = StoreWithoutKey();
  const long last = Store(3, 1);
  ASSERT_LT(first, keyless);
  ASSERT_LT(keyless, last);
  EXPECT_FALSE(CAuxiliary::RemoveAuxiliaries(study.Pod()));
  EXPECT_FALSE(IsStored(1));
  EXPECT_TRUE(IsStored(3));
  EXPECT_EQ(CAuxiliary(study.Pod()).CountObjects(), 2);
}

// ---- Failures ----

/// The static operations, and the null stream that only Dump has.
const std::function<void(POD*)> operations[] = {
    [](POD* pod) { CAuxiliary::NumType(1, pod); },
    [](POD* pod) { CAuxiliary::RemoveAuxiliaries(pod); },
    [](POD* pod) { CAuxiliary::Dump(pod, stdout); },
    [](POD* pod) { CAuxiliary::Dump(pod, nullptr); },
};

TEST_F(Auxiliaries, OfNoDatabaseAreANullPointer) {
  for (const auto& operation : operations) EXPECT_THROW(operation(nullptr), CNullPtr);
}

TEST_F(Auxiliaries, WithoutIndexingAreToldSoBeforeMissingFiles) {
  POD pod(study.folder / "other.ksb");
  for (const auto& operation : operations) EXPECT_THROW(operation(&pod), CNoIndex);
  KSBKey key;
  pod.Open(study.folder / "other.ksb", study.folder / "other.kx", key, 32, vbReadWrite, 2, 0, 25);
  for (const auto& operation : operations) EXPECT_THROW(operation(&pod), CNoIndex);
}

TEST_F(Auxiliaries, WithoutADataFileAreANullPointer) {
  study.Pod()->CloseDataFile();
  for (const auto& operation : operations) EXPECT_THROW(operation(study.Pod()), CNullPtr);
}

TEST_F(Auxiliaries, WithoutAnIndexFileAreANullPointer) {
  study.Pod()->CloseIndex();
  for (const auto& operation : operations) EXPECT_THROW(operation(study.Pod()), CNullPtr);
}

TEST_F(Auxiliaries, WorkUnderTheLockOfTheDatabase) {
  CAuxiliary definition(study.Pod());
  std::vector<int> ids;
  std::filesystem::create_directory(study.LockPath());
  for (std::size_t i = 0; i < 3; ++i) EXPECT_THROW(operations[i](study.Pod()), CFileLock) << i;
  EXPECT_THROW(definition.GetAllIDs(1, ids), CFileLock);
  EXPECT_THROW(operations[3](study.Pod()), CNullPtr);
  std::filesystem::remove(study.LockPath());
}

}  // namespace
