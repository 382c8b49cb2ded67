#include <gtest/gtest.h>

#include "tests/task/FunctionsStudy.h"
#include "tests/task/MakeStudy.h"
#include "tests/task/RandomStudy.h"

// Whole studies, and all that a task of each one holds.

namespace {

// ---- Arrays, links, synthetic functions ----

using TaskMakeFunctions = FunctionsStudy;

TEST_F(TaskMakeFunctions, TaskCountsThem) {
  const auto stored = Stored<CTask>(1);
  EXPECT_EQ(stored.m_uNumIndDV, 5);
  EXPECT_EQ(stored.m_uNumLinkDV, 1);
  EXPECT_EQ(stored.m_uNumSynDV, 2);
  EXPECT_EQ(stored.m_uNumConstDV, 1);
  EXPECT_EQ(stored.m_uNumIndResp, 3);
  EXPECT_EQ(stored.m_uNumLinkResp, 1);
  EXPECT_EQ(stored.m_uNumSynResp, 1);
  EXPECT_EQ(stored.m_uNumCons, 6);
  EXPECT_EQ(stored.m_uNumObj, 3);
  EXPECT_EQ(stored.m_uNumLinks, 2);
  EXPECT_EQ(stored.m_uNumEqns, 2);
  EXPECT_EQ(stored.m_uNumSets, 1);
  EXPECT_EQ(stored.m_uNumPoints, 1);
  EXPECT_EQ(stored.m_DGO.m_nReserved, 1);
  EXPECT_EQ(stored.m_RSA.m_nReserved, 1);
  ExpectSoundFiles();
}

TEST_F(TaskMakeFunctions, VariableEntries) {
  const auto vars = Stored<CDVar>(1);
  EXPECT_EQ(AsNumbers(vars.m_vnSeq), (Numbers{0, 1, 2, 3, 0, 0, 0, 1, 4}));
  EXPECT_EQ(AsNumbers(vars.m_vnType), (Numbers{20, 20, 20, 20, 23, 21, 22, 22, 20}));
  EXPECT_EQ(AsNumbers(vars.m_vnIndIDs), (Numbers{5, 1, 1, 1, 6}));
  EXPECT_EQ(AsNumbers(vars.m_vnLinkIDs), Numbers{3});
  EXPECT_EQ(AsNumbers(vars.m_vnSynIDs), (Numbers{4, 4}));
  EXPECT_EQ(AsNumbers(vars.m_vnConstIDs), Numbers{2});
  EXPECT_EQ(vars.m_vstrIndName, (Names{"k", "x_1", "x_2", "x_3", "d"}));
  EXPECT_EQ(vars.m_vstrLinkName, Names{"y"});
  EXPECT_EQ(vars.m_vstrSynName, (Names{"z_1", "z_2"}));
  EXPECT_EQ(vars.m_vstrConstName, Names{"c"});
  EXPECT_TRUE(vars.m_vnRandIndex.empty());
  EXPECT_TRUE(vars.m_vnRandParam.empty());
  EXPECT_TRUE(vars.m_vnRandDist.empty());
}

TEST_F(TaskMakeFunctions, VariableBounds) {
  const auto vars = Stored<CDVar>(1);
  EXPECT_EQ(AsNumbers(vars.m_vfIndLowerIn), (Numbers{-2.5, 0, 0, 0, 1.5}));
  EXPECT_EQ(AsNumbers(vars.m_vfIndLower), (Numbers{-1, 0, 0, 0, 2}));
  EXPECT_EQ(AsNumbers(vars.m_vfIndUpperIn), (Numbers{2.5, 10, 10, 10, 5}));
  EXPECT_EQ(AsNumbers(vars.m_vfIndUpper), (Numbers{2, 10, 10, 10, 4}));
  EXPECT_EQ(AsNumbers(vars.m_vfIndScale), (Numbers{2, 0, 0, 0, 0}));
  EXPECT_EQ(AsNumbers(vars.m_vfLinkLower), Numbers{-1e30});
  EXPECT_EQ(AsNumbers(vars.m_vfLinkUpper), Numbers{20});
  EXPECT_EQ(AsNumbers(vars.m_vfSynLower), (Numbers{-0.5, -0.5}));
  EXPECT_EQ(AsNumbers(vars.m_vfSynUpper), (Numbers{1e30, 1e30}));
  EXPECT_EQ(AsNumbers(vars.m_vnConstSet), Numbers{0});
  EXPECT_EQ(AsNumbers(vars.m_vfConstLower), Numbers{-1});
  EXPECT_EQ(AsNumbers(vars.m_vfConstUpper), Numbers{1});
  EXPECT_EQ(AsNumbers(vars.m_vnDiscreteRef), (Numbers{-1, 0, 0, 0, 6}));
}

TEST_F(TaskMakeFunctions, VariableArguments) {
  const auto vars = Stored<CDVar>(1);
  EXPECT_EQ(AsNumbers(vars.m_vnLinkRef), Numbers{1});
  EXPECT_EQ(AsNumbers(vars.m_vnSynRef), (Numbers{2, 2}));
  EXPECT_EQ(AsRows(vars.m_mnLinkSubj), (Rows{{3, 0}}));
  EXPECT_EQ(AsRows(vars.m_mnLinkType), (Rows{{20, 23}}));
  EXPECT_EQ(AsRows(vars.m_mnSynSubj), (Rows{{2, 0}, {2, 0}}));
  EXPECT_EQ(AsRows(vars.m_mnSynType), (Rows{{20, 21}, {20, 21}}));
  EXPECT_EQ(AsRows(vars.m_mnSynLen), (Rows{{2, 1}, {2, 1}}));
}

TEST_F(TaskMakeFunctions, FirstPoint) {
  const CDPoint point = StoredPoint(1, 0);
  EXPECT_EQ(AsNumbers(point.m_IDVar), (Numbers{2, 4, 4, 4, 2}));
  EXPECT_EQ(AsNumbers(point.m_LDVar), Numbers{0});
  EXPECT_EQ(AsNumbers(point.m_SDVar), (Numbers{0, 0}));
  EXPECT_EQ(AsNumbers(point.m_CDVar), Numbers{7});
  EXPECT_EQ(point.m_nPointFlag, 0);
  ExpectNoResponses(point);
  ExpectPointCount(Stored<CResult>(1), 1);
}

TEST_F(TaskMakeFunctions, Responses) {
  const auto resps = Stored<CDResp>(1);
  EXPECT_EQ(AsNumbers(resps.m_vnSeq), (Numbers{0, 1, 0, 0, 2}));
  EXPECT_EQ(AsNumbers(resps.m_vnType), (Numbers{24, 24, 25, 26, 24}));
  EXPECT_EQ(AsNumbers(resps.m_vnIndIDs), (Numbers{1, 1, 4}));
  EXPECT_EQ(AsNumbers(resps.m_vnLinkIDs), Numbers{2});
  EXPECT_EQ(AsNumbers(resps.m_vnSynIDs), Numbers{3});
  EXPECT_EQ(resps.m_vstrIndName, (Names{"f_1", "f_2", "p"}));
  EXPECT_EQ(resps.m_vstrLinkName, Names{"g"});
  EXPECT_EQ(resps.m_vstrSynName, Names{"h"});
  EXPECT_EQ(AsNumbers(resps.m_vnLinkRef), Numbers{5});
  EXPECT_EQ(AsNumbers(resps.m_vnSynRef), Numbers{4});
  EXPECT_EQ(AsNumbers(resps.m_vnPassFail), (Numbers{0, 0, 1}));
  EXPECT_EQ(AsRows(resps.m_mnLinkSubj), (Rows{{2, 1}}));
  EXPECT_EQ(AsRows(resps.m_mnLinkType), (Rows{{20, 24}}));
  EXPECT_EQ(AsRows(resps.m_mnSynSubj), (Rows{{0, 1}}));
  EXPECT_EQ(AsRows(resps.m_mnSynType), (Rows{{25, 22}}));
  EXPECT_EQ(AsRows(resps.m_mnSynLen), (Rows{{1, 1}}));
  EXPECT_TRUE(resps.m_vnRandIndex.empty());
  EXPECT_TRUE(resps.m_vnRBOParam.empty());
}

TEST_F(TaskMakeFunctions, Constraints) {
  const auto cons = Stored<CDCons>(1);
  EXPECT_EQ(AsNumbers(cons.m_vnSubj), (Numbers{0, 0, 1, 0, 0, 0}));
  EXPECT_EQ(AsNumbers(cons.m_vnSubjType), (Numbers{21, 22, 22, 25, 25, 26}));
  EXPECT_EQ(AsNumbers(cons.m_vfBound), (Numbers{20, -0.5, -0.5, -3, 5, 0.25}));
  EXPECT_EQ(AsNumbers(cons.m_vnMult), (Numbers{1, -1, -1, -1, 1, 1}));
  EXPECT_EQ(AsNumbers(cons.m_vfScale), (Numbers{20, 1, 1, 3, 4, 1}));
}

TEST_F(TaskMakeFunctions, ObjectiveTerms) {
  const auto terms = Stored<CDObj>(1);
  EXPECT_EQ(AsNumbers(terms.m_vnSubj), (Numbers{0, 0, 1}));
  EXPECT_EQ(AsNumbers(terms.m_vnSubjType), (Numbers{20, 24, 24}));
  EXPECT_EQ(AsNumbers(terms.m_vnGoal), (Numbers{2, 1, 1}));
  EXPECT_EQ(AsNumbers(terms.m_vnHasWorst), (Numbers{1, 1, 1}));
  EXPECT_EQ(AsNumbers(terms.m_vfWorst), (Numbers{4, 10, 10}));
  EXPECT_EQ(AsNumbers(terms.m_vfWeight), (Numbers{0.5, 3, 3}));
  EXPECT_EQ(AsNumbers(terms.m_vfTarget), (Numbers{1, 0, 0}));
}

TEST_F(TaskMakeFunctions, AuxiliaryTablesHoldWhatIsUsed) {
  const auto links = Stored<CDLink>(1);
  EXPECT_EQ(AsNumbers(links.m_vnAuxID), (Numbers{1, 5}));
  EXPECT_EQ(links.m_vstrName, (Names{"weighted", "difference"}));
  EXPECT_EQ(AsRows(links.m_mdCoef), (Rows{{1, 2, 3}, {0, 1, -1}}));
  const auto functions = Stored<CDEqn>(1);
  EXPECT_EQ(AsNumbers(functions.m_vnAuxID), (Numbers{2, 4}));
  EXPECT_EQ(functions.m_vstrName, (Names{"area", "total"}));
  EXPECT_EQ(functions.m_vstrArgs, (Names{"a,b", "p,q"}));
  EXPECT_EQ(functions.m_vstrEquation, (Names{"a*b", "p+q"}));
  const auto sets = Stored<CDSet>(1);
  EXPECT_EQ(AsNumbers(sets.m_vnAuxID), Numbers{6});
  EXPECT_EQ(sets.m_vstrName, Names{"plates"});
  EXPECT_EQ(AsRows(sets.m_mdValues), (Rows{{1, 2, 4, 8}}));
}

// ---- Random variables and responses ----

TEST_F(TaskMakeRandom, TaskCountsThem) {
  const auto task = Stored<CTask>(1);
  EXPECT_EQ(task.m_uNumIndDV, 7);
  EXPECT_EQ(task.m_uNumConstDV, 1);
  EXPECT_EQ(task.m_uNumIndResp, 8);
  EXPECT_EQ(task.m_uNumRandDV, 3);
  EXPECT_EQ(task.m_uNumRandResp, 3);
  EXPECT_EQ(task.m_uNumCons, 1);
  EXPECT_EQ(task.m_uNumObj, 1);
  ExpectSoundFiles();
}

TEST_F(TaskMakeRandom, VariablesStandElementByElement) {
  const auto vars = Stored<CDVar>(1);
  EXPECT_EQ(AsNumbers(vars.m_vnSeq), (Numbers{0, 1, 2, 3, 4, 5, 6, 0}));
  EXPECT_EQ(AsNumbers(vars.m_vnType), (Numbers{20, 20, 20, 20, 20, 20, 20, 23}));
  EXPECT_EQ(AsNumbers(vars.m_vnIndIDs), (Numbers{1, 2, 1, 2, 3, 4, 5}));
  EXPECT_EQ(AsNumbers(vars.m_vnConstIDs), Numbers{6});
  EXPECT_EQ(vars.m_vstrIndName, (Names{"m_1", "s_1", "m_2", "s_2", "u", "w1", "w2"}));
  EXPECT_EQ(vars.m_vstrConstName, Names{"w3"});
  EXPECT_EQ(AsNumbers(vars.m_vfIndLower), (Numbers{2, 0.5, 2, 0.5, -1, 0, 1}));
  EXPECT_EQ(AsNumbers(vars.m_vfIndUpper), (Numbers{9, 2, 9, 2, 1, 4, 5}));
  EXPECT_EQ(AsNumbers(vars.m_vnRandIndex), (Numbers{0, 0, 1, 1, -1, 2, 2, 2}));
  EXPECT_EQ(AsNumbers(vars.m_vnRandParam), (Numbers{-1, -2, -1, -2, 0, 0, 1, 2}));
  EXPECT_EQ(AsNumbers(vars.m_vnRandDist), (Numbers{2, 2, 3}));
  const CDPoint point = StoredPoint(1, 0);
  EXPECT_EQ(AsNumbers(point.m_IDVar), (Numbers{3, 1, 3, 1, 0, 1, 2}));
  EXPECT_EQ(AsNumbers(point.m_CDVar), Numbers{6});
}

TEST_F(TaskMakeRandom, ResponsesStandElementByElement) {
  const auto resps = Stored<CDResp>(1);
  EXPECT_EQ(AsNumbers(resps.m_vnSeq), (Numbers{0, 1, 2, 3, 4, 5, 6, 7}));
  EXPECT_EQ(AsNumbers(resps.m_vnType), Numbers(8, 24));
  EXPECT_EQ(AsNumbers(resps.m_vnIndIDs), (Numbers{1, 2, 3, 4, 2, 3, 4, 5}));
  EXPECT_EQ(resps.m_vstrIndName, (Names{"pof", "r_1", "rs_1", "rp_1", "r_2", "rs_2", "rp_2", "f"}));
  EXPECT_EQ(AsNumbers(resps.m_vnRandIndex), (Numbers{0, 1, 1, 1, 2, 2, 2, -1}));
  EXPECT_EQ(AsNumbers(resps.m_vnRBOParam), (Numbers{-4, -1, -2, -3, -1, -2, -3, 0}));
}

TEST_F(TaskMakeRandom, ConstraintAndObjectiveReferToTheLastResponse) {
  const auto cons = Stored<CDCons>(1);
  EXPECT_EQ(AsNumbers(cons.m_vnSubj), Numbers{7});
  EXPECT_EQ(AsNumbers(cons.m_vnSubjType), Numbers{24});
  EXPECT_EQ(AsNumbers(cons.m_vfScale), Numbers{7});
  const auto terms = Stored<CDObj>(1);
  EXPECT_EQ(AsNumbers(terms.m_vnSubj), Numbers{7});
  EXPECT_EQ(AsNumbers(terms.m_vnSubjType), Numbers{24});
}

}  // namespace
