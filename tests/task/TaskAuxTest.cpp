#include <gtest/gtest.h>

#include <set>

#include "store/KestErr.h"
#include "task/DEqn.h"
#include "task/DLink.h"
#include "task/DResp.h"
#include "task/DSet.h"
#include "task/DVar.h"
#include "tests/task/Definitions.h"

namespace {

const std::set<int> oneToTen{1, 2, 3, 4, 5, 6, 7, 8, 9, 10};

class TaskAuxiliaries : public Definitions {
 protected:
  /// Stores the task's table of variables, or of responses, after `change`.
  template <class Table>
  void PutTable(const std::function<void(Table&)>& change = {}) {
    Table table(study.Pod());
    table.m_nID = 7;
    if (change) change(table);
    table.PutObject();
  }
  void PutVars(const std::function<void(CDVar&)>& change = {}) { PutTable<CDVar>(change); }
  void PutResps(const std::function<void(CDResp&)>& change = {}) { PutTable<CDResp>(change); }

  void PutTenAuxiliaries(int kind) {
    for (const int id : oneToTen) {
      PutAuxiliary(id, kind, [id](CAuxiliary& auxiliary) {
        auxiliary.m_vfCoef = {id + 0.5, -1.0 * id};
        auxiliary.m_strArgs = "a,b" + std::to_string(id);
        auxiliary.m_strEquation = "a+b*" + std::to_string(id);
        auxiliary.m_vfValues = {id - 0.25, id + 0.25, 100.0};
      });
    }
  }
};

class MadeLinks : public TaskAuxiliaries {
 protected:
  void Make(std::set<int> ids) {
    task.m_uNumLinks = 99UL;
    task.SetupDLink(ids);
  }

  CTask task = Task();
};

class MadeFunctions : public TaskAuxiliaries {
 protected:
  void Make(std::set<int> ids) {
    task.m_uNumEqns = 99UL;
    task.SetupDEqn(ids);
  }

  CTask task = Task();
};

class MadeSets : public TaskAuxiliaries {
 protected:
  void Make(std::set<int> ids) {
    task.m_uNumSets = 99UL;
    task.SetupDSet(ids);
  }

  CTask task = Task();
};

// ---- References ----

TEST(TaskReferences, AreFoundInEitherList) {
  CTask task;
  std::vector<int> first{3, -1, 0};
  std::vector<int> second{8, 3};
  std::vector<int> none;
  EXPECT_TRUE(task.IsAuxRef(3, first, second));
  EXPECT_TRUE(task.IsAuxRef(0, first, second));
  EXPECT_TRUE(task.IsAuxRef(-1, first, none));
  EXPECT_TRUE(task.IsAuxRef(8, first, second));
  EXPECT_TRUE(task.IsAuxRef(8, none, second));
  EXPECT_FALSE(task.IsAuxRef(8, first, none));
  EXPECT_FALSE(task.IsAuxRef(4, first, second));
  EXPECT_FALSE(task.IsAuxRef(0, none, none));
}

// ---- Links ----

TEST_F(MadeLinks, OfTenAreTheTwoInUseByAscendingID) {
  PutTenAuxiliaries(1);
  PutVars([](CDVar& vars) { vars.m_vnLinkRef = {9, 9}; });
  PutResps([](CDResp& resps) { resps.m_vnLinkRef = {4, 9}; });
  Make(oneToTen);
  const auto links = Stored<CDLink>();
  EXPECT_EQ(links.m_nID, 7);
  EXPECT_EQ(links.m_vnAuxID, (Ints{4, 9}));
  EXPECT_EQ(links.m_vstrName, (Texts{"A4", "A9"}));
  EXPECT_EQ(links.m_mdCoef, (FloatRows{{4.5, -4.0}, {9.5, -9.0}}));
  EXPECT_EQ(task.m_uNumLinks, 2U);
}

TEST_F(MadeLinks, OfVariablesAloneAndOfResponsesAlone) {
  PutTenAuxiliaries(1);
  PutVars([](CDVar& vars) { vars.m_vnLinkRef = {10, 2}; });
  PutResps();
  Make(oneToTen);
  EXPECT_EQ(Stored<CDLink>().m_vnAuxID, (Ints{2, 10}));
  PutVars();
  PutResps([](CDResp& resps) { resps.m_vnLinkRef = {1}; });
  Make(oneToTen);
  EXPECT_EQ(Stored<CDLink>().m_vnAuxID, (Ints{1}));
  EXPECT_EQ(task.m_uNumLinks, 1U);
  EXPECT_EQ(CDLink(study.Pod()).CountObjects(), 1);
}

TEST_F(MadeLinks, AreNotFunctionsOrSetsInUse) {
  PutTenAuxiliaries(1);
  PutVars([](CDVar& vars) {
    vars.m_vnSynRef = {1};
    vars.m_vnDiscreteRef = {2};
    vars.m_vnConstSet = {3};
  });
  PutResps([](CDResp& resps) { resps.m_vnSynRef = {4}; });
  Make(oneToTen);
  EXPECT_EQ(Stored<CDLink>().m_vnAuxID, (Ints{}));
}

TEST_F(MadeLinks, AreStoredAlsoWhenThereAreNone) {
  PutVars([](CDVar& vars) { vars.m_vnLinkRef = {1}; });
  PutResps();
  Make({});
  const auto links = Stored<CDLink>();
  EXPECT_EQ(links.m_vnAuxID, (Ints{}));
  EXPECT_EQ(links.m_vstrName, (Texts{}));
  EXPECT_EQ(links.m_mdCoef, (FloatRows{}));
  EXPECT_EQ(task.m_uNumLinks, 0U);
}

TEST_F(MadeLinks, ThatAreMissingAreRefusedOnlyWhenInUse) {
  PutVars([](CDVar& vars) { vars.m_vnLinkRef = {5}; });
  PutResps();
  EXPECT_THROW(Make({5}), CObjectNotFound);
  EXPECT_FALSE(IsStored<CDLink>());
  EXPECT_NO_THROW(Make({6}));
}

TEST_F(MadeLinks, NeedBothTables) {
  EXPECT_THROW(Make({}), CObjectNotFound);
  PutVars();
  EXPECT_THROW(Make({}), CObjectNotFound);
  CDVar vars(study.Pod());
  vars.m_nID = 7;
  vars.RemoveObject();
  PutResps();
  EXPECT_THROW(Make({}), CObjectNotFound);
  EXPECT_FALSE(IsStored<CDLink>());
  std::set<int> none;
  EXPECT_THROW(CTask().SetupDLink(none), CNoDatabaseOpen);
}

TEST_F(MadeLinks, ThatFailLeaveTheirNumber) {
  EXPECT_THROW(Make({}), CObjectNotFound);
  EXPECT_EQ(task.m_uNumLinks, 99U);
}

// ---- Synthetic functions ----

TEST_F(MadeFunctions, OfTenAreTheThreeInUseByAscendingID) {
  PutTenAuxiliaries(2);
  PutVars([](CDVar& vars) { vars.m_vnSynRef = {10, 3}; });
  PutResps([](CDResp& resps) { resps.m_vnSynRef = {6, 10}; });
  Make(oneToTen);
  const auto functions = Stored<CDEqn>();
  EXPECT_EQ(functions.m_nID, 7);
  EXPECT_EQ(functions.m_vnAuxID, (Ints{3, 6, 10}));
  EXPECT_EQ(functions.m_vstrName, (Texts{"A3", "A6", "A10"}));
  EXPECT_EQ(functions.m_vstrArgs, (Texts{"a,b3", "a,b6", "a,b10"}));
  EXPECT_EQ(functions.m_vstrEquation, (Texts{"a+b*3", "a+b*6", "a+b*10"}));
  EXPECT_EQ(task.m_uNumEqns, 3U);
}

TEST_F(MadeFunctions, AreNotLinksOrSetsInUse) {
  PutTenAuxiliaries(2);
  PutVars([](CDVar& vars) {
    vars.m_vnLinkRef = {1};
    vars.m_vnDiscreteRef = {2};
    vars.m_vnConstSet = {3};
  });
  PutResps([](CDResp& resps) { resps.m_vnLinkRef = {4}; });
  Make(oneToTen);
  EXPECT_EQ(Stored<CDEqn>().m_vnAuxID, (Ints{}));
}

TEST_F(MadeFunctions, AreStoredAlsoWhenThereAreNone) {
  PutVars([](CDVar& vars) { vars.m_vnSynRef = {1}; });
  PutResps();
  Make({});
  const auto functions = Stored<CDEqn>();
  EXPECT_EQ(functions.m_vnAuxID, (Ints{}));
  EXPECT_EQ(functions.m_vstrName, (Texts{}));
  EXPECT_EQ(functions.m_vstrArgs, (Texts{}));
  EXPECT_EQ(functions.m_vstrEquation, (Texts{}));
  EXPECT_EQ(task.m_uNumEqns, 0U);
}

TEST_F(MadeFunctions, ThatAreMissingAreRefused) {
  PutVars();
  PutResps([](CDResp& resps) { resps.m_vnSynRef = {5}; });
  EXPECT_THROW(Make({5}), CObjectNotFound);
  EXPECT_FALSE(IsStored<CDEqn>());
}

TEST_F(MadeFunctions, NeedBothTables) {
  EXPECT_THROW(Make({}), CObjectNotFound);
  PutVars();
  EXPECT_THROW(Make({}), CObjectNotFound);
  CDVar vars(study.Pod());
  vars.m_nID = 7;
  vars.RemoveObject();
  PutResps();
  EXPECT_THROW(Make({}), CObjectNotFound);
  EXPECT_FALSE(IsStored<CDEqn>());
  std::set<int> none;
  EXPECT_THROW(CTask().SetupDEqn(none), CNoDatabaseOpen);
}

// ---- Discrete sets ----

TEST_F(MadeSets, OfTenAreTheThreeInUseByAscendingID) {
  PutTenAuxiliaries(4);
  PutVars([](CDVar& vars) {
    vars.m_vnDiscreteRef = {8, 0, -1, 2};
    vars.m_vnConstSet = {5, 0, 2};
  });
  Make(oneToTen);
  const auto sets = Stored<CDSet>();
  EXPECT_EQ(sets.m_nID, 7);
  EXPECT_EQ(sets.m_vnAuxID, (Ints{2, 5, 8}));
  EXPECT_EQ(sets.m_vstrName, (Texts{"A2", "A5", "A8"}));
  EXPECT_EQ(sets.m_mdValues,
            (FloatRows{{1.75, 2.25, 100.0}, {4.75, 5.25, 100.0}, {7.75, 8.25, 100.0}}));
  EXPECT_EQ(task.m_uNumSets, 3U);
}

TEST_F(MadeSets, InUseByACombinatorialVariableOnly) {
  PutTenAuxiliaries(4);
  PutInput(1, 6, [](CInput& input) { input.m_nAuxID = 3; });
  task.SetupDVar(0, 0, 0, 1, 0, {1});
  Make(oneToTen);
  EXPECT_EQ(Stored<CDSet>().m_vnAuxID, (Ints{3}));
  EXPECT_EQ(task.m_uNumSets, 1U);
}

TEST_F(MadeSets, InUseByADiscreteVariableOnly) {
  PutTenAuxiliaries(4);
  PutInput(1, 4, [](CInput& input) { input.m_nAuxID = 6; });
  task.SetupDVar(1, 0, 0, 0, 0, {1});
  Make(oneToTen);
  EXPECT_EQ(Stored<CDSet>().m_vnAuxID, (Ints{6}));
}

TEST_F(MadeSets, AreStoredAlsoWithoutDiscreteVariables) {
  PutTenAuxiliaries(4);
  PutInput(1, 0);
  PutInput(2, 5, [](CInput& input) { input.m_nAuxID = 3; });
  PutInput(3, 3, [](CInput& input) { input.m_nAuxID = 4; });
  task.SetupDVar(2, 0, 0, 1, 0, {1, 2, 3});
  Make(oneToTen);
  const auto sets = Stored<CDSet>();
  EXPECT_EQ(sets.m_vnAuxID, (Ints{}));
  EXPECT_EQ(sets.m_vstrName, (Texts{}));
  EXPECT_EQ(sets.m_mdValues, (FloatRows{}));
  EXPECT_EQ(task.m_uNumSets, 0U);
}

TEST_F(MadeSets, AreNotLinksOrFunctionsInUse) {
  PutTenAuxiliaries(4);
  PutVars([](CDVar& vars) {
    vars.m_vnLinkRef = {1};
    vars.m_vnSynRef = {2};
  });
  PutResps([](CDResp& resps) {
    resps.m_vnLinkRef = {3};
    resps.m_vnSynRef = {4};
  });
  Make(oneToTen);
  EXPECT_EQ(Stored<CDSet>().m_vnAuxID, (Ints{}));
}

TEST_F(MadeSets, ThatAreMissingAreRefused) {
  PutVars([](CDVar& vars) { vars.m_vnConstSet = {5}; });
  EXPECT_THROW(Make({5}), CObjectNotFound);
  EXPECT_FALSE(IsStored<CDSet>());
}

TEST_F(MadeSets, NeedTheTableOfVariablesOnly) {
  PutResps();
  EXPECT_THROW(Make({}), CObjectNotFound);
  CDResp resps(study.Pod());
  resps.m_nID = 7;
  resps.RemoveObject();
  PutVars();
  EXPECT_NO_THROW(Make({}));
  std::set<int> none;
  EXPECT_THROW(CTask().SetupDSet(none), CNoDatabaseOpen);
}

}  // namespace
