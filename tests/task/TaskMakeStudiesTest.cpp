#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/task/MakeStudy.h"

// Whole studies, and all that a task of each one holds.

namespace {

// ---- Arrays, links, synthetic functions ----

/// Transfer order: k (integer), x (array of 3), c (constant), y (linked), z (synthetic array of 2),
/// d (discrete); f (array of 2), g (linked), h (synthetic), p (pass/fail).
class TaskMakeFunctions : public MakeStudy {
 protected:
  void SetUp() override {
    AddLink("weighted", {1.0, 2.0, 3.0});
    AddEquation("area", "a,b", "a*b");
    AddLink("spare", {0.0, 1.0});
    AddEquation("total", "p,q", "p+q");
    AddLink("difference", {0.0, 1.0, -1.0});
    AddSet("plates", {1.0, 2.0, 4.0, 8.0});
    AddInputs();
    AddResps();
    MakeWell();
  }

  void AddInputs() {
    CInput x = Input("x");
    x.m_uSize = 3;
    x.m_fLower = 0.0;
    x.m_fUpper = 10.0;
    x.m_fInitial = 4.0;
    AddAt(x, 2);
    CInput c = Input("c", 3);
    c.m_fInitial = 7.0;
    AddAt(c, 5);
    CInput y = Function(Input("y", 1), 1, {-1, -2});
    y.m_vnIdx = {2, 0};
    y.m_fLower = -1e30;
    y.m_fUpper = 20.0;
    AddAt(y, 6);
    CInput z = Function(Input("z", 2), 2, {-1, -3});
    z.m_vnIdx = {1, 0};
    z.m_vnLength = {2, 1};
    z.m_uSize = 2;
    z.m_fLower = -0.5;
    z.m_fUpper = 1e30;
    AddAt(z, 7);
    AddAt(IntegerObjective(), 1);
    CInput d = Input("d", 4);
    d.m_nAuxID = 6;
    d.m_fLower = 1.5;
    d.m_fUpper = 5.0;
    d.m_fInitial = 1.75;
    AddAt(d, 9);
  }

  CInput IntegerObjective() {
    CInput k = Input("k", 5);
    k.m_fLower = -2.5;
    k.m_fUpper = 2.5;
    k.m_fInitial = 2.25;
    k.m_nUserScale = 1;
    k.m_fScale = 2.0;
    k.m_nObjective = 1;
    k.m_nGoal = 2;
    k.m_nHasWorst = 1;
    k.m_fWorst = 4.0;
    k.m_fTarget = 1.0;
    k.m_fWeight = 0.5;
    return k;
  }

  void AddResps() {
    CResp f = Objective("f");
    f.m_uSize = 2;
    f.m_nGoal = 1;
    f.m_nHasWorst = 1;
    f.m_fWorst = 10.0;
    f.m_fWeight = 3.0;
    Add(f);
    CResp g = Function(Constrained("g", 5.0, 1), 5, {-1, 1});
    g.m_vnIdx = {1, 1};
    g.m_nHasLower = 1;
    g.m_fLower = -3.0;
    g.m_nHasUpperScale = 1;
    g.m_fUpperScale = 4.0;
    Add(g);
    CResp h = Function(Constrained("h", 0.25, 2), 4, {2, -4});
    h.m_vnIdx = {0, 1};
    Add(h);
    CResp p = Constrained("p", 1.0, 3);
    p.m_nConstraint = 0;
    Add(p);
  }

  void AddAt(CInput input, unsigned long place) {
    input.Connect(Pod());
    Add(input);
    input.m_uIndex = place;
    input.PutObject();
  }
};

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

/// m and s (mean and deviation, arrays of 2), u (not random), w1 to w3 (the parameters of a Weibull
/// distribution, the third one constant); the probability of failure of the system, r with its
/// deviation and its probability of failure (arrays of 2), f.
class TaskMakeRandom : public MakeStudy {
 protected:
  void SetUp() override {
    AddRandom("m", 0, 2, -1, 2, {2.0, 9.0, 3.0});
    AddRandom("s", 0, 2, -2, 2, {0.5, 2.0, 1.0});
    Add(Input("u"));
    AddRandom("w1", 0, 1, 0, 3, {0.0, 4.0, 1.0});
    AddRandom("w2", 0, 1, 1, 3, {1.0, 5.0, 2.0});
    AddRandom("w3", 3, 1, 2, 3, {-1.0, 1.0, 6.0});
    AddRandom("pof", 1, -4);
    AddRandom("r", 2, -1);
    AddRandom("rs", 2, -2);
    AddRandom("rp", 2, -3);
    CResp f = Constrained("f", 7.0);
    f.m_nObjective = 1;
    Add(f);
    MakeWell();
  }

  struct Values {
    double lower, upper, initial;
  };
  void AddRandom(const std::string& name, int type, unsigned size, int parameter, int distribution,
                 const Values& values) {
    CInput input = Input(name, type);
    input.m_uSize = size;
    input.m_nRandom = 1;
    input.m_nRandomParam = parameter;
    input.m_nDistribution = distribution;
    input.m_fLower = values.lower;
    input.m_fUpper = values.upper;
    input.m_fInitial = values.initial;
    Add(input);
  }
  void AddRandom(const std::string& name, unsigned size, int parameter) {
    CResp resp = Resp(name);
    resp.m_uSize = size;
    resp.m_nRandom = 1;
    resp.m_nRandomParam = parameter;
    Add(resp);
  }
};

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
