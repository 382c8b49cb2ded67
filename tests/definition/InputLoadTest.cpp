#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "definition/Input.h"
#include "results/Iter.h"
#include "results/Result.h"
#include "store/KestErr.h"
#include "tests/definition/InputStudy.h"
#include "tests/definition/LoadedTables.h"
#include "tests/support/StudyRequired.h"

// Inputs made again from the variables of a task.

namespace {

class InputLoad : public LoadedTables {
 protected:
  void Load(int pointID = 0) {
    Store();
    CInput::LoadInputs(7, study.Pod(), pointID);
  }
  std::vector<int> StoredIDs() {
    std::vector<int> ids;
    CInput::GetAllInputIDs(study.Pod(), ids);
    return ids;
  }
  /// What every Input of the tables has, in its place.
  CInput Expected(int id, const std::string& name, int type, unsigned index) {
    CInput input(study.Pod());
    input.m_nID = id;
    input.m_strName = name;
    input.m_nType = type;
    input.m_uIndex = index;
    return input;
  }
};

// ---- The kinds ----

TEST_F(InputLoad, IndependentTakesTheBoundsAsTheUserGaveThem) {
  Independent(3, "x", 0.125);
  Load();
  CInput expected = Expected(3, "x", 0, 1);
  expected.m_fLower = -1.0;
  expected.m_fUpper = 1.0;
  expected.m_fInitial = 0.125;
  ExpectSameFields(Stored<CInput>(3), expected);
}

TEST_F(InputLoad, ReferenceTellsIntegerAndDiscreteFromContinuous) {
  Independent(1, "x", 0.0, 0);
  Independent(2, "k", 0.0, -1);
  Independent(3, "d", 0.0, 9);
  Load();
  EXPECT_EQ(Stored<CInput>(1).m_nType, 0);
  EXPECT_EQ(Stored<CInput>(1).m_nAuxID, 0);
  EXPECT_EQ(Stored<CInput>(2).m_nType, 5);
  EXPECT_EQ(Stored<CInput>(2).m_nAuxID, 0);
  EXPECT_EQ(Stored<CInput>(3).m_nType, 4);
  EXPECT_EQ(Stored<CInput>(3).m_nAuxID, 9);
}

TEST_F(InputLoad, ScaleAboveZeroIsTheUsers) {
  for (const int id : {1, 2, 3}) Independent(id, "x");
  vars.m_vfIndScale = {2.5, 0.0, -1.0};
  Load();
  EXPECT_EQ(Stored<CInput>(1).m_nUserScale, 1);
  EXPECT_EQ(Stored<CInput>(1).m_fScale, 2.5);
  EXPECT_EQ(Stored<CInput>(2).m_nUserScale, 0);
  EXPECT_EQ(Stored<CInput>(2).m_fScale, 0.0);
  EXPECT_EQ(Stored<CInput>(3).m_nUserScale, 0);
  EXPECT_EQ(Stored<CInput>(3).m_fScale, -1.0);
}

TEST_F(InputLoad, LinkedTakesOneElementOfEachArgument) {
  Independent(1, "x_1");
  Independent(1, "x_2");
  Constant(2, "c", 5.0);
  Linked(4, "y", 11, {1, 0}, {20, 23});
  Load();
  CInput expected = Expected(4, "y", 1, 3);
  expected.m_fLower = -2.0;
  expected.m_fUpper = 2.0;
  expected.m_fInitial = 0.25;
  expected.m_nAuxID = 11;
  expected.m_vnArg = {-1, -2};
  expected.m_vnIdx = {1, 0};
  expected.m_vnLength = {1, 1};
  ExpectSameFields(Stored<CInput>(4), expected);
}

TEST_F(InputLoad, SyntheticTakesLengthsToo) {
  Independent(1, "x_1");
  Independent(1, "x_2");
  Independent(1, "x_3");
  Linked(4, "y", 11, {}, {});
  Synthetic(5, "z", 12, {1, 0}, {20, 21}, {2, 1});
  Load();
  CInput expected = Expected(5, "z", 2, 3);
  expected.m_fLower = -3.0;
  expected.m_fUpper = 3.0;
  expected.m_fInitial = 0.75;
  expected.m_nAuxID = 12;
  expected.m_vnArg = {-1, -4};
  expected.m_vnIdx = {1, 0};
  expected.m_vnLength = {2, 1};
  ExpectSameFields(Stored<CInput>(5), expected);
}

TEST_F(InputLoad, WithoutADefinitionThereAreNoArguments) {
  Independent(1, "x");
  Linked(2, "y", 0, {0}, {20});
  Synthetic(3, "z", -1, {0}, {20}, {1});
  Linked(4, "v", -1, {0}, {20});
  Synthetic(5, "w", 0, {0}, {20}, {1});
  Load();
  for (const int id : {2, 3, 4, 5}) {
    EXPECT_TRUE(Stored<CInput>(id).m_vnArg.empty());
    EXPECT_TRUE(Stored<CInput>(id).m_vnIdx.empty());
    EXPECT_TRUE(Stored<CInput>(id).m_vnLength.empty());
  }
  EXPECT_EQ(Stored<CInput>(2).m_nAuxID, 0);
  EXPECT_EQ(Stored<CInput>(3).m_nAuxID, -1);
}

TEST_F(InputLoad, ConstantHasNoBounds) {
  Constant(2, "c", 5.0);
  Load();
  CInput expected = Expected(2, "c", 3, 1);
  expected.m_fInitial = 5.0;
  ExpectSameFields(Stored<CInput>(2), expected);
}

TEST_F(InputLoad, CombinatorialLosesItsBounds) {
  Constant(2, "b", 5.0, 13);
  Load();
  CInput expected = Expected(2, "b", 6, 1);
  expected.m_fInitial = 5.0;
  expected.m_nAuxID = 13;
  ExpectSameFields(Stored<CInput>(2), expected);
}

// ---- Arrays, names, numbers ----

TEST_F(InputLoad, ArrayComesBackAsOne) {
  for (const char* name : {"thick_1", "thick_2", "thick_3", "thick_4"}) Independent(3, name, 2.0);
  Load();
  EXPECT_EQ(StoredIDs(), std::vector<int>{3});
  EXPECT_EQ(Stored<CInput>(3).m_strName, "thick");
  EXPECT_EQ(Stored<CInput>(3).m_uSize, 4);
}

TEST_F(InputLoad, ScalarKeepsItsUnderscore) {
  Independent(3, "t_1");
  Load();
  EXPECT_EQ(Stored<CInput>(3).m_strName, "t_1");
  EXPECT_EQ(Stored<CInput>(3).m_uSize, 1);
}

TEST_F(InputLoad, NameOfAnArrayIsCutAtItsLastUnderscore) {
  Independent(1, "a_b_1");
  Independent(1, "a_b_2");
  Linked(2, "bare", 0, {}, {});
  Linked(2, "bare", 0, {}, {});
  Synthetic(3, "_1", 0, {}, {}, {});
  Synthetic(3, "_2", 0, {}, {}, {});
  Constant(4, "c_1", 0.0);
  Constant(4, "c_2", 0.0);
  Load();
  EXPECT_EQ(Stored<CInput>(1).m_strName, "a_b");
  EXPECT_EQ(Stored<CInput>(2).m_strName, "bare");
  EXPECT_EQ(Stored<CInput>(3).m_strName, "");
  EXPECT_EQ(Stored<CInput>(4).m_strName, "c");
}

TEST_F(InputLoad, ArrayHasTheValuesOfItsFirstElement) {
  Independent(3, "x_1", 0.5);
  Independent(3, "x_2", 0.75);
  vars.m_vfIndLowerIn = {-8.0, -9.0};
  Load();
  EXPECT_EQ(Stored<CInput>(3).m_fInitial, 0.5);
  EXPECT_EQ(Stored<CInput>(3).m_fLower, -8.0);
}

TEST_F(InputLoad, InputsAreNumberedInTransferOrderNotTheirElements) {
  Constant(9, "c", 0.0);
  Independent(4, "x_1");
  Independent(4, "x_2");
  Independent(2, "k");
  Load();
  EXPECT_EQ(Stored<CInput>(9).m_uIndex, 1);
  EXPECT_EQ(Stored<CInput>(4).m_uIndex, 2);
  EXPECT_EQ(Stored<CInput>(2).m_uIndex, 3);
}

// ---- Random variables ----

TEST_F(InputLoad, RandomArrayAndItsDeviationComeBackFromInterleavedElements) {
  Independent(5, "u");
  Independent(1, "m_1");
  Independent(2, "s_1");
  Independent(1, "m_2");
  Independent(2, "s_2");
  vars.m_vnRandIndex = {-1, 0, 0, 1, 1};
  vars.m_vnRandParam = {0, -1, -2, -1, -2};
  vars.m_vnRandDist = {2, 3};
  Load();
  for (const int id : {1, 2}) {
    EXPECT_EQ(Stored<CInput>(id).m_uSize, 2);
    EXPECT_EQ(Stored<CInput>(id).m_nRandom, 1);
    EXPECT_EQ(Stored<CInput>(id).m_nRandomParam, -id);
    EXPECT_EQ(Stored<CInput>(id).m_nDistribution, 2);
  }
  EXPECT_EQ(Stored<CInput>(1).m_strName, "m");
  EXPECT_EQ(Stored<CInput>(2).m_strName, "s");
  EXPECT_EQ(Stored<CInput>(2).m_uIndex, 3);
  EXPECT_EQ(Stored<CInput>(5).m_nRandom, 0);
  EXPECT_EQ(Stored<CInput>(5).m_nRandomParam, 0);
  EXPECT_EQ(Stored<CInput>(5).m_nDistribution, 0);
}

TEST_F(InputLoad, ParameterOfWhatIsNotRandomIsNotTaken) {
  Independent(1, "x");
  vars.m_vnRandIndex = {-1};
  vars.m_vnRandParam = {-2};
  vars.m_vnRandDist = {3};
  Load();
  EXPECT_EQ(Stored<CInput>(1).m_nRandom, 0);
  EXPECT_EQ(Stored<CInput>(1).m_nRandomParam, 0);
  EXPECT_EQ(Stored<CInput>(1).m_nDistribution, 0);
}

TEST_F(InputLoad, MissingRandomColumnsCountAsNone) {
  Independent(1, "x");
  Independent(2, "y");
  vars.m_vnRandIndex = {2147483647};
  Load();
  EXPECT_EQ(Stored<CInput>(1).m_nRandom, 1);
  EXPECT_EQ(Stored<CInput>(1).m_nRandomParam, 0);
  EXPECT_EQ(Stored<CInput>(1).m_nDistribution, 0);
  EXPECT_EQ(Stored<CInput>(2).m_nRandom, 0);
}

TEST_F(InputLoad, ElementOfARandomArrayIsARunOfItsOwn) {
  for (const char* name : {"1", "2"}) {
    Independent(1, std::string("m_") + name);
    Independent(2, std::string("s_") + name);
  }
  Linked(3, "y", 11, {2}, {20});
  Load();
  EXPECT_EQ(Stored<CInput>(3).m_vnArg, Ints{-1});
  EXPECT_EQ(Stored<CInput>(3).m_vnIdx, Ints{0});
}

// ---- What is stored already ----

TEST_F(InputLoad, StoredInputOfTheSameIDIsReplacedAndOthersStay) {
  CInput old = FilledInput(study.Pod());
  old.m_nID = 3;
  old.PutObject();
  old.m_nID = 4;
  old.PutObject();
  Constant(3, "c", 5.0);
  Load();
  CInput expected = Expected(3, "c", 3, 1);
  expected.m_fInitial = 5.0;
  ExpectSameFields(Stored<CInput>(3), expected);
  ExpectSameFields(Stored<CInput>(4), old);
}

// ---- The point ----

class InputLoadPoint : public InputLoad {
 protected:
  /// Points 0 to 3, whose numbers are the values of x.
  void SetUp() override {
    Independent(1, "x");
    for (const int number : {3, 2, 1, 0}) {
      point.m_nPointID = number;
      point.m_IDVar = {double(number)};
      point.PutObject();
    }
  }
  void PutResult(int iteration, int subIteration) {
    CResult result(study.Pod());
    result.m_nID = 7;
    result.m_nBestIter = iteration;
    result.m_nBestSubIter = subIteration;
    result.PutObject();
  }
  void PutIteration(int iteration, int subIteration, int thisPoint, int bestPoint) {
    CIter iter(study.Pod());
    iter.m_nTaskID = 7;
    iter.m_nIter = iteration;
    iter.m_nSubIter = subIteration;
    iter.m_nThisPoint = thisPoint;
    iter.m_nBestPoint = bestPoint;
    iter.PutObject();
  }
  double InitialValue() { return Stored<CInput>(1).m_fInitial; }
};

TEST_F(InputLoadPoint, ValuesAreThoseOfThePoint) {
  for (const int number : {0, 1, 3}) {
    Load(number);
    EXPECT_EQ(InitialValue(), number);
  }
}

TEST_F(InputLoadPoint, NegativeNumberIsTheBestPointOfTheRun) {
  PutResult(5, 1);
  PutIteration(5, 1, 1, 3);
  PutIteration(5, 0, 0, 0);
  PutIteration(6, 0, 2, 2);
  for (const int number : {-1, -2147483647 - 1}) {
    Load(number);
    EXPECT_EQ(InitialValue(), 3.0);
  }
}

TEST_F(InputLoadPoint, MissingRecordsOfTheRunAreToldAsSuch) {
  EXPECT_THROW(Load(4), CGetObject);
  EXPECT_THROW(Load(-1), CGetObject);
  PutResult(5, 1);
  EXPECT_THROW(Load(-1), CGetObject);
  PutIteration(5, 1, 1, 4);
  EXPECT_THROW(Load(-1), CGetObject);
  PutIteration(5, 1, 1, -3);
  EXPECT_THROW(Load(-1), CGetObject);
  PutResult(-5, 1);
  EXPECT_THROW(Load(-1), CGetObject);
  PutResult(5, -1);
  EXPECT_THROW(Load(-1), CGetObject);
  EXPECT_TRUE(StoredIDs().empty());
}

// ---- Failures ----

TEST_F(InputLoad, TaskWithoutItsVariablesCannotBeRead) {
  for (const int task : {8, 0, -7}) {
    try {
      CInput::LoadInputs(task, study.Pod(), 0);
      ADD_FAILURE();
    } catch (const CGetObject& error) {
      EXPECT_STREQ(error.what(), "Could not get object");
    }
  }
}

TEST_F(InputLoad, UnknownCodesAreInvalidTypesAndWhatIsStoredStays) {
  Independent(1, "x");
  Linked(2, "y", 11, {0}, {24});
  try {
    Load();
    ADD_FAILURE();
  } catch (const CInvalidType& error) {
    EXPECT_STREQ(error.what(), "Object type is invalid");
  }
  EXPECT_EQ(StoredIDs(), std::vector<int>{1});
}

TEST_F(InputLoad, UnknownReferenceIsAnInvalidType) {
  Independent(1, "x", 0.0, -2);
  EXPECT_THROW(Load(), CInvalidType);
}

TEST_F(InputLoad, EntryOfNoVariableIsAnInvalidType) {
  Independent(1, "x");
  vars.m_vnType[0] = 24;
  EXPECT_THROW(Load(), CInvalidType);
}

TEST_F(InputLoad, IDThatNoInputCanHaveIsAnInvalidKey) {
  Independent(0, "x");
  EXPECT_THROW(Load(), CInvalidKey);
}

TEST_F(InputLoad, TablesThatDoNotFitAreInvalidArguments) {
  Independent(1, "x");
  Linked(2, "y", 11, {0}, {20});
  Synthetic(3, "z", 12, {0}, {20}, {1});
  Constant(4, "c", 1.0);
  const CDVar soundVars = vars;
  const CDPoint soundPoint = point;
  const std::function<void(CDVar&, CDPoint&)> damages[] = {
      [](CDVar& v, CDPoint&) { v.m_vnSeq.pop_back(); },
      [](CDVar& v, CDPoint&) { v.m_vnSeq[0] = 1; },
      [](CDVar& v, CDPoint&) { v.m_vnSeq[0] = -1; },
      [](CDVar& v, CDPoint&) { v.m_vnSeq[3] = 2147483647; },
      [](CDVar& v, CDPoint&) { v.m_vstrIndName.clear(); },
      [](CDVar& v, CDPoint&) { v.m_vfIndLowerIn.resize(0); },
      [](CDVar& v, CDPoint&) { v.m_vfIndUpperIn.resize(0); },
      [](CDVar& v, CDPoint&) { v.m_vfIndScale.resize(0); },
      [](CDVar& v, CDPoint&) { v.m_vnDiscreteRef.clear(); },
      [](CDVar& v, CDPoint&) { v.m_vstrLinkName.clear(); },
      [](CDVar& v, CDPoint&) { v.m_vfLinkLower.resize(0); },
      [](CDVar& v, CDPoint&) { v.m_vfLinkUpper.resize(0); },
      [](CDVar& v, CDPoint&) { v.m_vnLinkRef.clear(); },
      [](CDVar& v, CDPoint&) { v.m_mnLinkSubj.clear(); },
      [](CDVar& v, CDPoint&) { v.m_mnLinkType.clear(); },
      [](CDVar& v, CDPoint&) { v.m_mnLinkType[0].clear(); },
      [](CDVar& v, CDPoint&) { v.m_mnLinkSubj[0] = {1}; },
      [](CDVar& v, CDPoint&) { v.m_mnLinkSubj[0] = {-1}; },
      [](CDVar& v, CDPoint&) { v.m_vstrSynName.clear(); },
      [](CDVar& v, CDPoint&) { v.m_vfSynLower.resize(0); },
      [](CDVar& v, CDPoint&) { v.m_vfSynUpper.resize(0); },
      [](CDVar& v, CDPoint&) { v.m_vnSynRef.clear(); },
      [](CDVar& v, CDPoint&) { v.m_mnSynSubj.clear(); },
      [](CDVar& v, CDPoint&) { v.m_mnSynType.clear(); },
      [](CDVar& v, CDPoint&) { v.m_mnSynType[0].clear(); },
      [](CDVar& v, CDPoint&) { v.m_mnSynLen.clear(); },
      [](CDVar& v, CDPoint&) { v.m_mnSynSubj[0] = {2147483647}; },
      [](CDVar& v, CDPoint&) { v.m_vstrConstName.clear(); },
      [](CDVar& v, CDPoint&) { v.m_vnConstSet.resize(0); },
      [](CDVar&, CDPoint& p) { p.m_IDVar.resize(0); },
      [](CDVar&, CDPoint& p) { p.m_LDVar.resize(0); },
      [](CDVar&, CDPoint& p) { p.m_SDVar.resize(0); },
      [](CDVar&, CDPoint& p) { p.m_CDVar.resize(0); },
  };
  Load();
  std::size_t number = 0;
  for (const auto& damage : damages) {
    SCOPED_TRACE(number++);
    vars = soundVars;
    point = soundPoint;
    damage(vars, point);
    EXPECT_THROW(Load(), CInvalidArgument);
  }
}

TEST_F(InputLoad, OperationsAskForAStudy) {
  ExpectToRequireStudy(study, [](POD* pod) { CInput::LoadInputs(7, pod, 0); });
  ExpectToRequireStudy(study, [](POD* pod) { CInput::UpdateObj(7, pod); });
}

}  // namespace
