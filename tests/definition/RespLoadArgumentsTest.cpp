#include <gtest/gtest.h>

#include <vector>

#include "definition/Resp.h"
#include "store/KestErr.h"
#include "tests/definition/LoadedTables.h"

// What responses made again from a task are given by other tables: arguments and goals.

namespace {

// ---- CreateAuxInfo ----

class RespLoadArguments : public LoadedTables {
 protected:
  RespLoadArguments() {
    vars.m_vnIndIDs = {1, 1, 2};
    vars.m_vnLinkIDs = {3, 3};
    vars.m_vnSynIDs = {4};
    vars.m_vnConstIDs = {5, 6, 6};
    resps.m_vnIndIDs = {7, 7};
    resps.m_vnLinkIDs = {8, 9, 9, 9};
    resps.m_vnSynIDs = {10};
    resp.m_vnArg = {-9};
    resp.m_vnIdx = {8};
    resp.m_vnLength = {7};
  }
  void Create(std::vector<int> args, std::vector<int> types, std::vector<int> lengths) {
    resp.CreateAuxInfo(vars, resps, args, types, lengths);
  }
  void ExpectArguments(const Ints& args, const Ints& indexes, const Ints& lengths) {
    EXPECT_EQ(resp.m_vnArg, args);
    EXPECT_EQ(resp.m_vnIdx, indexes);
    EXPECT_EQ(resp.m_vnLength, lengths);
  }

  CResp resp{study.Pod()};
};

TEST_F(RespLoadArguments, AreIDsOfResponsesAndNegatedOnesOfInputs) {
  Create({1, 1, 0, 2, 1, 3, 0}, {20, 21, 22, 23, 24, 25, 26}, {1, 1, 1, 1, 1, 5, 1});
  ExpectArguments({-1, -3, -4, -6, 7, 9, 10}, {1, 1, 0, 1, 1, 2, 0}, {1, 1, 1, 1, 1, 5, 1});
}

TEST_F(RespLoadArguments, LengthsOfAnotherNumberAreOnes) {
  Create({0, 1}, {24, 24}, {2, 2, 2});
  ExpectArguments({7, 7}, {0, 1}, {1, 1});
  Create({0, 1}, {24, 24}, {});
  ExpectArguments({7, 7}, {0, 1}, {1, 1});
}

TEST_F(RespLoadArguments, NoneEmptyTheVectors) {
  Create({}, {}, {});
  ExpectArguments({}, {}, {});
}

TEST_F(RespLoadArguments, FailuresLeaveThemAsTheyWere) {
  for (const int type : {19, 27, 0, -24}) {
    try {
      Create({0, 0}, {24, type}, {1, 1});
      ADD_FAILURE() << type;
    } catch (const CInvalidType& error) {
      EXPECT_STREQ(error.what(), "Object type is invalid");
    }
  }
  EXPECT_THROW(Create({0, 0}, {24}, {1, 1}), CInvalidArgument);
  EXPECT_THROW(Create({2}, {24}, {1}), CInvalidArgument);
  EXPECT_THROW(Create({-1}, {26}, {1}), CInvalidArgument);
  ExpectArguments({-9}, {8}, {7});
}

// ---- UpdateObj ----

class RespLoadGoals : public LoadedTables {
 protected:
  void SetUp() override {
    IndependentResp(1, "f");
    IndependentResp(2, "i");
    LinkedResp(3, "l", 0, {}, {});
    SyntheticResp(4, "s", 0, {}, {}, {});
    Constraint(24, 1, 1, 5.0, 5.0);
    Store();
    CResp::LoadResps(7, study.Pod());
  }
  void Update() {
    terms.PutObject();
    CResp::UpdateObj(7, study.Pod());
  }
};

TEST_F(RespLoadGoals, AreThoseOfTheTermsOnResponses) {
  Objective(20, 7);
  Objective(24, 1);
  Objective(27, 0);
  Update();
  const auto resp = Stored<CResp>(2);
  ExpectObjective(resp);
  EXPECT_EQ(resp.m_nConstraint, 1);
  EXPECT_EQ(resp.m_fUpper, 5.0);
  for (const int id : {1, 3, 4}) {
    EXPECT_EQ(Stored<CResp>(id).m_nObjective, 0);
    EXPECT_EQ(Stored<CResp>(id).m_nGoal, 0);
  }
}

TEST_F(RespLoadGoals, CanBeThoseOfEveryKind) {
  for (const int kind : {24, 25, 26}) Objective(kind, 0);
  Update();
  for (const int id : {1, 3, 4}) ExpectObjective(Stored<CResp>(id));
}

TEST_F(RespLoadGoals, NeedTheTablesAndTheResponses) {
  Objective(24, 0);
  Update();
  CResp resp(study.Pod());
  resp.m_nID = 1;
  resp.RemoveObject();
  EXPECT_THROW(CResp::UpdateObj(7, study.Pod()), CGetObject);
  EXPECT_THROW(CResp::UpdateObj(8, study.Pod()), CGetObject);
  resps.RemoveObject();
  EXPECT_THROW(CResp::UpdateObj(7, study.Pod()), CGetObject);
  resps.PutObject();
  terms.RemoveObject();
  EXPECT_THROW(CResp::UpdateObj(7, study.Pod()), CGetObject);
}

TEST_F(RespLoadGoals, PositionOutsideItsTableIsAnInvalidArgument) {
  Objective(26, 1);
  EXPECT_THROW(Update(), CInvalidArgument);
}

}  // namespace
