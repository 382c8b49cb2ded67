#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "definition/Input.h"
#include "store/KestErr.h"
#include "tests/definition/LoadedTables.h"

// What Inputs made again from a task are given by other tables: arguments and goals.

namespace {

// ---- CreateAuxInfo ----

class InputLoadArguments : public LoadedTables {
 protected:
  InputLoadArguments() {
    for (const int id : {1, 1, 1, 2}) vars.m_vnIndIDs.push_back(id);
    vars.m_vnLinkIDs = {3, 3};
    vars.m_vnSynIDs = {4};
    vars.m_vnConstIDs = {5, 6, 6};
    input.m_vnArg = {-9};
    input.m_vnIdx = {8};
    input.m_vnLength = {7};
  }
  void Create(std::vector<int> args, std::vector<int> types, std::vector<int> lengths) {
    input.CreateAuxInfo(vars, args, types, lengths);
  }
  void ExpectArguments(const Ints& args, const Ints& indexes, const Ints& lengths) {
    EXPECT_EQ(input.m_vnArg, args);
    EXPECT_EQ(input.m_vnIdx, indexes);
    EXPECT_EQ(input.m_vnLength, lengths);
  }

  CInput input{study.Pod()};
};

TEST_F(InputLoadArguments, AreNegatedIDsWithThePlaceInTheArray) {
  Create({0, 2, 3, 1, 0, 0, 2}, {20, 20, 20, 21, 22, 23, 23}, {3, 1, 1, 1, 1, 1, 1});
  ExpectArguments({-1, -1, -2, -3, -4, -5, -6}, {0, 2, 0, 1, 0, 0, 1}, {3, 1, 1, 1, 1, 1, 1});
}

TEST_F(InputLoadArguments, LengthsOfAnotherNumberAreOnes) {
  Create({0, 3}, {20, 20}, {});
  ExpectArguments({-1, -2}, {0, 0}, {1, 1});
  Create({0, 3}, {20, 20}, {2});
  ExpectArguments({-1, -2}, {0, 0}, {1, 1});
  Create({0, 3}, {20, 20}, {2, 2, 2});
  ExpectArguments({-1, -2}, {0, 0}, {1, 1});
}

TEST_F(InputLoadArguments, NoneEmptyTheVectors) {
  Create({}, {}, {});
  ExpectArguments({}, {}, {});
}

TEST_F(InputLoadArguments, FurtherTypesAreNotLookedAt) {
  Create({3}, {20, 99}, {4});
  ExpectArguments({-2}, {0}, {4});
}

TEST_F(InputLoadArguments, FailuresLeaveThemAsTheyWere) {
  for (const int type : {19, 24, 25, 26, 0, -20}) {
    EXPECT_THROW(Create({0, 0}, {20, type}, {1, 1}), CInvalidType) << type;
  }
  EXPECT_THROW(Create({0, 0}, {20}, {1, 1}), CInvalidArgument);
  EXPECT_THROW(Create({4}, {20}, {1}), CInvalidArgument);
  EXPECT_THROW(Create({-1}, {21}, {1}), CInvalidArgument);
  ExpectArguments({-9}, {8}, {7});
}

// ---- UpdateObj ----

class InputLoadGoals : public LoadedTables {
 protected:
  void SetUp() override {
    Independent(1, "x_1");
    Independent(1, "x_2");
    Independent(2, "k");
    Linked(3, "y", 0, {}, {});
    Synthetic(4, "z", 0, {}, {}, {});
    Constant(5, "c", 0.0);
    Store();
    CInput::LoadInputs(7, study.Pod(), 0);
  }
  void Update() {
    terms.PutObject();
    CInput::UpdateObj(7, study.Pod());
  }
};

TEST_F(InputLoadGoals, AreThoseOfTheTermsOnVariables) {
  Objective(21, 0);
  Objective(24, 9);
  Objective(20, 2);
  Objective(27, 0);
  Update();
  ExpectObjective(Stored<CInput>(3));
  ExpectObjective(Stored<CInput>(2));
  for (const int id : {1, 4, 5}) {
    EXPECT_EQ(Stored<CInput>(id).m_nObjective, 0);
    EXPECT_EQ(Stored<CInput>(id).m_fWeight, 1.0);
  }
  EXPECT_EQ(Stored<CInput>(2).m_strName, "k");
  EXPECT_EQ(Stored<CInput>(2).m_fLower, -1.0);
}

TEST_F(InputLoadGoals, OfAnArrayComeFromItsLastTerm) {
  Objective(20, 0);
  Objective(20, 1);
  terms.m_vnGoal = {0, 1};
  Update();
  EXPECT_EQ(Stored<CInput>(1).m_nObjective, 1);
  EXPECT_EQ(Stored<CInput>(1).m_nGoal, 1);
}

TEST_F(InputLoadGoals, CanBeThoseOfEveryKind) {
  Objective(22, 0);
  Objective(23, 0);
  Update();
  ExpectObjective(Stored<CInput>(4));
  ExpectObjective(Stored<CInput>(5));
}

TEST_F(InputLoadGoals, NeedTheTablesAndTheInputs) {
  Objective(20, 0);
  Update();
  CInput input(study.Pod());
  input.m_nID = 1;
  input.RemoveObject();
  EXPECT_THROW(CInput::UpdateObj(7, study.Pod()), CGetObject);
  EXPECT_THROW(CInput::UpdateObj(8, study.Pod()), CGetObject);
  vars.m_vnIndIDs[0] = -1;
  vars.PutObject();
  EXPECT_THROW(CInput::UpdateObj(7, study.Pod()), CGetObject);
  vars.RemoveObject();
  EXPECT_THROW(CInput::UpdateObj(7, study.Pod()), CGetObject);
  vars.PutObject();
  terms.RemoveObject();
  EXPECT_THROW(CInput::UpdateObj(7, study.Pod()), CGetObject);
}

TEST_F(InputLoadGoals, ColumnsThatDoNotFitAreInvalidArguments) {
  Objective(20, 2);
  const CDObj sound = terms;
  const std::function<void(CDObj&)> damages[] = {
      [](CDObj& t) { t.m_vnSubj.clear(); },       [](CDObj& t) { t.m_vnSubj[0] = 3; },
      [](CDObj& t) { t.m_vnSubj[0] = -1; },       [](CDObj& t) { t.m_vnGoal.resize(0); },
      [](CDObj& t) { t.m_vnHasWorst.resize(0); }, [](CDObj& t) { t.m_vfWorst.resize(0); },
      [](CDObj& t) { t.m_vfWeight.resize(0); },   [](CDObj& t) { t.m_vfTarget.resize(0); },
  };
  std::size_t number = 0;
  for (const auto& damage : damages) {
    SCOPED_TRACE(number++);
    terms = sound;
    damage(terms);
    EXPECT_THROW(Update(), CInvalidArgument);
    EXPECT_EQ(Stored<CInput>(2).m_nObjective, 0);
  }
}

}  // namespace
