#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "definition/Resp.h"
#include "store/KestErr.h"
#include "tests/definition/LoadedTables.h"
#include "tests/definition/RespSamples.h"
#include "tests/support/StudyRequired.h"

// Responses made again from those of a task.

namespace {

class RespLoad : public LoadedTables {
 protected:
  void Load() {
    Store();
    CResp::LoadResps(7, study.Pod());
  }
  std::vector<int> StoredIDs() {
    std::vector<int> ids;
    CResp::GetAllRespIDs(study.Pod(), ids);
    return ids;
  }
};

void ExpectNoLower(const CResp& resp) {
  EXPECT_EQ(resp.m_nHasLower, 0);
  EXPECT_EQ(resp.m_fLower, -1e30);
  EXPECT_EQ(resp.m_nHasLowerScale, 0);
  EXPECT_EQ(resp.m_fLowerScale, 1.0);
}

void ExpectNoUpper(const CResp& resp) {
  EXPECT_EQ(resp.m_nHasUpper, 0);
  EXPECT_EQ(resp.m_fUpper, 1e30);
  EXPECT_EQ(resp.m_nHasUpperScale, 0);
  EXPECT_EQ(resp.m_fUpperScale, 1.0);
}

void ExpectNoArguments(const CResp& resp) {
  EXPECT_TRUE(resp.m_vnArg.empty());
  EXPECT_TRUE(resp.m_vnIdx.empty());
  EXPECT_TRUE(resp.m_vnLength.empty());
}

// ---- The kinds ----

TEST_F(RespLoad, IndependentHasNothingButItsPlace) {
  IndependentResp(3, "f");
  Load();
  const auto resp = Stored<CResp>(3);
  EXPECT_EQ(resp.m_strName, "f");
  EXPECT_EQ(resp.m_strText, "");
  EXPECT_EQ(resp.m_nType, 0);
  EXPECT_EQ(resp.m_uIndex, 1);
  EXPECT_EQ(resp.m_uSize, 1);
  EXPECT_EQ(resp.m_nObjective, 0);
  EXPECT_EQ(resp.m_nAuxID, 0);
  EXPECT_EQ(resp.m_nRandom, 0);
  EXPECT_EQ(resp.m_nRandomParam, 0);
  EXPECT_EQ(resp.m_nGoal, 0);
  EXPECT_EQ(resp.m_nHasWorst, 0);
  EXPECT_EQ(resp.m_fWorst, 0.0);
  EXPECT_EQ(resp.m_fTarget, 0.0);
  EXPECT_EQ(resp.m_fWeight, 1.0);
  ExpectNoArguments(resp);
}

TEST_F(RespLoad, WithoutBoundsItIsNoConstraintThoughNewOnesAre) {
  IndependentResp(3, "f");
  Load();
  EXPECT_EQ(CResp(study.Pod()).m_nConstraint, 1);
  const auto resp = Stored<CResp>(3);
  EXPECT_EQ(resp.m_nConstraint, 0);
  ExpectNoLower(resp);
  ExpectNoUpper(resp);
}

TEST_F(RespLoad, FlagOfOneIsPassFail) {
  IndependentResp(1, "p", 1);
  IndependentResp(2, "q", 2);
  IndependentResp(3, "r", 0);
  Load();
  EXPECT_EQ(Stored<CResp>(1).m_nType, 3);
  EXPECT_EQ(Stored<CResp>(2).m_nType, 0);
  EXPECT_EQ(Stored<CResp>(3).m_nType, 0);
}

TEST_F(RespLoad, OlderTablesLackTheFlags) {
  IndependentResp(1, "p", 1);
  resps.m_vnPassFail.clear();
  Load();
  EXPECT_EQ(Stored<CResp>(1).m_nType, 0);
}

TEST_F(RespLoad, LinkedTakesVariablesAndResponses) {
  Independent(1, "x_1");
  Independent(1, "x_2");
  Constant(2, "c", 5.0);
  IndependentResp(5, "f_1");
  IndependentResp(5, "f_2");
  LinkedResp(6, "g", 11, {1, 0, 1}, {20, 23, 24});
  Load();
  const auto resp = Stored<CResp>(6);
  EXPECT_EQ(resp.m_strName, "g");
  EXPECT_EQ(resp.m_nType, 1);
  EXPECT_EQ(resp.m_uIndex, 2);
  EXPECT_EQ(resp.m_nAuxID, 11);
  EXPECT_EQ(resp.m_vnArg, (Ints{-1, -2, 5}));
  EXPECT_EQ(resp.m_vnIdx, (Ints{1, 0, 1}));
  EXPECT_EQ(resp.m_vnLength, (Ints{1, 1, 1}));
}

TEST_F(RespLoad, SyntheticTakesLengthsToo) {
  Linked(3, "y", 0, {}, {});
  Synthetic(4, "z_1", 0, {}, {}, {});
  Synthetic(4, "z_2", 0, {}, {}, {});
  LinkedResp(6, "g", 11, {}, {});
  SyntheticResp(8, "h", 12, {0, 0, 0}, {21, 22, 25}, {1, 2, 1});
  Load();
  const auto resp = Stored<CResp>(8);
  EXPECT_EQ(resp.m_strName, "h");
  EXPECT_EQ(resp.m_nType, 2);
  EXPECT_EQ(resp.m_nAuxID, 12);
  EXPECT_EQ(resp.m_vnArg, (Ints{-3, -4, 6}));
  EXPECT_EQ(resp.m_vnIdx, (Ints{0, 0, 0}));
  EXPECT_EQ(resp.m_vnLength, (Ints{1, 2, 1}));
}

// ---- Arrays, names, numbers, random responses ----

TEST_F(RespLoad, ArrayComesBackAsOne) {
  LinkedResp(9, "l_1", 0, {}, {});
  LinkedResp(9, "l_2", 0, {}, {});
  for (const char* name : {"f_g_1", "f_g_2", "f_g_3"}) IndependentResp(4, name);
  SyntheticResp(5, "h_1", 0, {}, {}, {});
  Load();
  EXPECT_EQ(StoredIDs(), (std::vector<int>{4, 5, 9}));
  EXPECT_EQ(Stored<CResp>(9).m_strName, "l");
  EXPECT_EQ(Stored<CResp>(9).m_uSize, 2);
  EXPECT_EQ(Stored<CResp>(9).m_uIndex, 1);
  EXPECT_EQ(Stored<CResp>(4).m_strName, "f_g");
  EXPECT_EQ(Stored<CResp>(4).m_uSize, 3);
  EXPECT_EQ(Stored<CResp>(4).m_uIndex, 2);
  EXPECT_EQ(Stored<CResp>(5).m_strName, "h_1");
  EXPECT_EQ(Stored<CResp>(5).m_uSize, 1);
  EXPECT_EQ(Stored<CResp>(5).m_uIndex, 3);
}

TEST_F(RespLoad, RandomArrayAndItsDeviationComeBackFromInterleavedElements) {
  IndependentResp(5, "pof");
  IndependentResp(1, "r_1");
  IndependentResp(2, "s_1");
  IndependentResp(1, "r_2");
  IndependentResp(2, "s_2");
  IndependentResp(6, "f");
  resps.m_vnRandIndex = {0, 1, 1, 2, 2};
  resps.m_vnRBOParam = {-4, -1, -2, -1, -2, -3};
  Load();
  for (const int id : {1, 2}) {
    EXPECT_EQ(Stored<CResp>(id).m_uSize, 2);
    EXPECT_EQ(Stored<CResp>(id).m_nRandom, 1);
    EXPECT_EQ(Stored<CResp>(id).m_nRandomParam, -id);
  }
  EXPECT_EQ(Stored<CResp>(5).m_nRandom, 1);
  EXPECT_EQ(Stored<CResp>(5).m_nRandomParam, -4);
  EXPECT_EQ(Stored<CResp>(6).m_nRandom, 0);
  EXPECT_EQ(Stored<CResp>(6).m_nRandomParam, 0);
  EXPECT_EQ(Stored<CResp>(6).m_uIndex, 4);
}

TEST_F(RespLoad, StoredResponseOfTheSameIDIsReplacedAndOthersStay) {
  CResp old = FullResp(study.Pod());
  old.PutObject();
  old.m_nID = 43;
  old.PutObject();
  IndependentResp(43, "f");
  Load();
  ExpectFull(Stored<CResp>(42));
  EXPECT_EQ(Stored<CResp>(43).m_strName, "f");
  EXPECT_EQ(Stored<CResp>(43).m_strText, "");
  EXPECT_EQ(Stored<CResp>(43).m_nObjective, 0);
  ExpectNoArguments(Stored<CResp>(43));
}

// ---- Bounds ----

TEST_F(RespLoad, LowerBoundMakesAConstraint) {
  IndependentResp(1, "f");
  Constraint(24, 0, -1, -3.0, 4.0);
  Load();
  const auto resp = Stored<CResp>(1);
  EXPECT_EQ(resp.m_nConstraint, 1);
  EXPECT_EQ(resp.m_nHasLower, 1);
  EXPECT_EQ(resp.m_fLower, -3.0);
  EXPECT_EQ(resp.m_nHasLowerScale, 1);
  EXPECT_EQ(resp.m_fLowerScale, 4.0);
  ExpectNoUpper(resp);
}

TEST_F(RespLoad, UpperBoundMakesAConstraint) {
  IndependentResp(1, "f");
  Constraint(24, 0, 1, 5.0, 0.5);
  Load();
  const auto resp = Stored<CResp>(1);
  EXPECT_EQ(resp.m_nConstraint, 1);
  EXPECT_EQ(resp.m_nHasUpper, 1);
  EXPECT_EQ(resp.m_fUpper, 5.0);
  EXPECT_EQ(resp.m_nHasUpperScale, 1);
  EXPECT_EQ(resp.m_fUpperScale, 0.5);
  ExpectNoLower(resp);
}

TEST_F(RespLoad, BothBoundsComeBackForEveryKind) {
  IndependentResp(1, "f");
  IndependentResp(2, "i");
  LinkedResp(3, "l", 0, {}, {});
  SyntheticResp(4, "s", 0, {}, {}, {});
  const int kinds[] = {24, 25, 26};
  for (const int kind : kinds) {
    const int position = kind == 24 ? 1 : 0;
    Constraint(kind, position, -1, -kind, 2.0);
    Constraint(kind, position, 1, kind, 3.0);
  }
  Load();
  EXPECT_EQ(Stored<CResp>(1).m_nConstraint, 0);
  for (const int kind : kinds) {
    const auto resp = Stored<CResp>(kind - 22);
    EXPECT_EQ(resp.m_nConstraint, 1);
    EXPECT_EQ(resp.m_nHasLower, 1);
    EXPECT_EQ(resp.m_fLower, -kind);
    EXPECT_EQ(resp.m_fLowerScale, 2.0);
    EXPECT_EQ(resp.m_nHasUpper, 1);
    EXPECT_EQ(resp.m_fUpper, kind);
    EXPECT_EQ(resp.m_fUpperScale, 3.0);
  }
}

TEST_F(RespLoad, ArrayHasTheBoundsOfItsFirstElement) {
  IndependentResp(1, "f_1");
  IndependentResp(1, "f_2");
  Constraint(24, 1, 1, 5.0, 5.0);
  Load();
  EXPECT_EQ(Stored<CResp>(1).m_nConstraint, 0);
  Constraint(24, 0, 1, 6.0, 6.0);
  Load();
  EXPECT_EQ(Stored<CResp>(1).m_fUpper, 6.0);
}

TEST_F(RespLoad, ConstraintsOnVariablesAreNoneOfResponses) {
  IndependentResp(1, "f");
  Constraint(21, 0, 1, 5.0, 5.0);
  Constraint(22, 0, -1, 5.0, 5.0);
  Load();
  EXPECT_EQ(Stored<CResp>(1).m_nConstraint, 0);
}

struct ScaleCase {
  const char* name;
  double bound;
  double scale;
  int isOwn;
};

class RespLoadScale : public LoadedTables, public testing::WithParamInterface<ScaleCase> {};

TEST_P(RespLoadScale, IsTheUsersUnlessItIsTheDefaultOfTheBound) {
  IndependentResp(1, "f");
  const ScaleCase& given = GetParam();
  Constraint(24, 0, -1, given.bound, given.scale);
  Constraint(24, 0, 1, given.bound, given.scale);
  Store();
  CResp::LoadResps(7, study.Pod());
  const auto resp = Stored<CResp>(1);
  EXPECT_EQ(resp.m_nHasLower, 1);
  EXPECT_EQ(resp.m_nHasUpper, 1);
  EXPECT_EQ(resp.m_fLowerScale, given.scale);
  EXPECT_EQ(resp.m_fUpperScale, given.scale);
  EXPECT_EQ(resp.m_nHasLowerScale, given.isOwn);
  EXPECT_EQ(resp.m_nHasUpperScale, given.isOwn);
}

INSTANTIATE_TEST_SUITE_P(
    RespLoad, RespLoadScale,
    testing::Values(
        ScaleCase{"SizeOfTheBound", 5.0, 5.0, 0}, ScaleCase{"SizeOfANegativeBound", -5.0, 5.0, 0},
        ScaleCase{"SizeOfASmallBound", 0.25, 0.25, 0}, ScaleCase{"OneForNoSize", 0.0, 1.0, 0},
        ScaleCase{"AnotherForNoSize", 0.0, 2.0, 1}, ScaleCase{"NoneForNoSize", 0.0, 0.0, 0},
        ScaleCase{"OneForASmallBoundWhichATaskGives", 0.25, 1.0, 1},
        ScaleCase{"Another", 5.0, 4.0, 1}, ScaleCase{"None", 5.0, 0.0, 1}),
    [](const auto& test) { return test.param.name; });

TEST_F(RespLoad, NegativeScaleStandsForNoBound) {
  IndependentResp(1, "f");
  Constraint(24, 0, -1, -3.0, -1.0);
  Constraint(24, 0, 1, 3.0, -0.5);
  Load();
  EXPECT_EQ(Stored<CResp>(1).m_nConstraint, 0);
  ExpectNoLower(Stored<CResp>(1));
  ExpectNoUpper(Stored<CResp>(1));
}

// ---- Failures ----

TEST_F(RespLoad, TaskWithoutATableCannotBeRead) {
  IndependentResp(1, "f");
  Store();
  for (const int task : {8, 0, -7}) {
    EXPECT_THROW(CResp::LoadResps(task, study.Pod()), CGetObject);
  }
  for (vbPersistent* table : {static_cast<vbPersistent*>(&vars), static_cast<vbPersistent*>(&resps),
                              static_cast<vbPersistent*>(&cons)}) {
    table->RemoveObject();
    try {
      CResp::LoadResps(7, study.Pod());
      ADD_FAILURE();
    } catch (const CGetObject& error) {
      EXPECT_STREQ(error.what(), "Could not get object");
    }
    table->PutObject();
  }
  EXPECT_TRUE(StoredIDs().empty());
}

TEST_F(RespLoad, UnknownCodesAreInvalidTypesAndWhatIsStoredStays) {
  IndependentResp(1, "f");
  LinkedResp(2, "g", 11, {0}, {27});
  try {
    Load();
    ADD_FAILURE();
  } catch (const CInvalidType& error) {
    EXPECT_STREQ(error.what(), "Object type is invalid");
  }
  EXPECT_EQ(StoredIDs(), std::vector<int>{1});
}

TEST_F(RespLoad, UnresolvedArgumentIsAnInvalidType) {
  LinkedResp(2, "g", 11, {0}, {0});
  EXPECT_THROW(Load(), CInvalidType);
}

TEST_F(RespLoad, EntryOfNoResponseIsAnInvalidType) {
  IndependentResp(1, "f");
  resps.m_vnType[0] = 23;
  EXPECT_THROW(Load(), CInvalidType);
}

TEST_F(RespLoad, ConstraintOnNoKnownKindIsAnInvalidType) {
  IndependentResp(1, "f");
  Constraint(20, 0, 1, 5.0, 5.0);
  EXPECT_THROW(Load(), CInvalidType);
}

TEST_F(RespLoad, TablesThatDoNotFitAreInvalidArguments) {
  IndependentResp(1, "f");
  LinkedResp(2, "g", 11, {0}, {24});
  SyntheticResp(3, "h", 12, {0}, {24}, {1});
  Constraint(24, 0, 1, 5.0, 5.0);
  const CDResp soundResps = resps;
  const CDCons soundCons = cons;
  const std::function<void(CDResp&, CDCons&)> damages[] = {
      [](CDResp& r, CDCons&) { r.m_vnSeq.pop_back(); },
      [](CDResp& r, CDCons&) { r.m_vnSeq[0] = 1; },
      [](CDResp& r, CDCons&) { r.m_vnSeq[0] = -1; },
      [](CDResp& r, CDCons&) { r.m_vstrIndName.clear(); },
      [](CDResp& r, CDCons&) { r.m_vstrLinkName.clear(); },
      [](CDResp& r, CDCons&) { r.m_vnLinkRef.clear(); },
      [](CDResp& r, CDCons&) { r.m_mnLinkSubj.clear(); },
      [](CDResp& r, CDCons&) { r.m_mnLinkType.clear(); },
      [](CDResp& r, CDCons&) { r.m_mnLinkType[0].clear(); },
      [](CDResp& r, CDCons&) { r.m_mnLinkSubj[0] = {1}; },
      [](CDResp& r, CDCons&) { r.m_vstrSynName.clear(); },
      [](CDResp& r, CDCons&) { r.m_vnSynRef.clear(); },
      [](CDResp& r, CDCons&) { r.m_mnSynSubj.clear(); },
      [](CDResp& r, CDCons&) { r.m_mnSynType.clear(); },
      [](CDResp& r, CDCons&) { r.m_mnSynType[0].clear(); },
      [](CDResp& r, CDCons&) { r.m_mnSynLen.clear(); },
      [](CDResp& r, CDCons&) { r.m_mnSynSubj[0] = {-1}; },
      [](CDResp&, CDCons& c) { c.m_vnSubj[0] = 1; },
      [](CDResp&, CDCons& c) { c.m_vnSubj.clear(); },
      [](CDResp&, CDCons& c) { c.m_vnMult.clear(); },
      [](CDResp&, CDCons& c) { c.m_vfBound.clear(); },
      [](CDResp&, CDCons& c) { c.m_vfScale.clear(); },
  };
  Load();
  std::size_t number = 0;
  for (const auto& damage : damages) {
    SCOPED_TRACE(number++);
    resps = soundResps;
    cons = soundCons;
    damage(resps, cons);
    EXPECT_THROW(Load(), CInvalidArgument);
  }
}

TEST_F(RespLoad, OperationsAskForAStudy) {
  ExpectToRequireStudy(study, [](POD* pod) { CResp::LoadResps(7, pod); });
  ExpectToRequireStudy(study, [](POD* pod) { CResp::UpdateObj(7, pod); });
}

}  // namespace
