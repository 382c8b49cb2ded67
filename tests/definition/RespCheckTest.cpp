#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <string>

#include "store/KestErr.h"
#include "tests/definition/RespChecks.h"
#include "tests/support/Bytes.h"

namespace {

/// The first two rules, on the bounds and on Pass/Fail objectives, and the walk.
class RespCheck : public RespChecks {
 protected:
  void StoreBounds(double lower, double upper, long constraint = 1) {
    CResp resp = Resp(7, 0);
    resp.m_nConstraint = constraint;
    resp.m_fLower = lower;
    resp.m_fUpper = upper;
    resp.PutObject();
  }
  void StoreObjective(int type, long objective) {
    CResp resp = Resp(7, type);
    resp.m_nObjective = objective;
    resp.PutObject();
  }
};

const std::string crossedBounds =
    "(Check Resps) : Lower bound > Upper bound for Response (R7 - index=107)\n";
const std::string passFailObjective =
    "(Check Resps) : Pass/Fail type Response (R7 - index=107) cannot be used as an objective\n";

// ---- Bounds ----

TEST_F(RespCheck, PassesWithoutResponses) {
  ExpectSilence();
}

TEST_F(RespCheck, PassesANewResponse) {
  CResp resp(study.Pod());
  resp.m_nID = 1;
  ASSERT_EQ(resp.m_nConstraint, 1);
  resp.PutObject();
  ExpectSilence();
}

TEST_F(RespCheck, PassesBoundsThatAreNotCrossed) {
  const double bounds[][2] = {
      {0, 0},   {-1e30, 1e30}, {1e30, 1e30}, {-1e30, -1e30}, {5, 5},
      {-2, -1}, {-1, 1},       {0.0, -0.0},  {1e29, 1e30},   {1, std::nextafter(1.0, 2.0)}};
  for (const auto& [lower, upper] : bounds) {
    SCOPED_TRACE(std::to_string(lower) + " " + std::to_string(upper));
    StoreBounds(lower, upper);
    ExpectSilence();
  }
}

TEST_F(RespCheck, ReportsCrossedBounds) {
  const double bounds[][2] = {{1, 0},       {std::nextafter(1.0, 2.0), 1},
                              {-1, -2},     {1e30, -1e30},
                              {2e30, 1e30}, {-1e30, -2e30},
                              {5e-324, 0}};
  for (const auto& [lower, upper] : bounds) {
    SCOPED_TRACE(std::to_string(lower) + " " + std::to_string(upper));
    StoreBounds(lower, upper);
    ExpectErrors({crossedBounds});
  }
}

TEST_F(RespCheck, ReportsCrossedBoundsOfConstraintsOnly) {
  StoreBounds(1, 0, 0);
  ExpectSilence();
  for (const long constraint : {1L, 2L, -1L}) {
    StoreBounds(1, 0, constraint);
    ExpectErrors({crossedBounds});
  }
}

TEST_F(RespCheck, ReportsCrossedBoundsInForceOrNot) {
  for (const int lower : {0, 1}) {
    for (const int upper : {0, 1}) {
      CResp resp = Resp(7, 0);
      resp.m_fLower = 1;
      resp.m_fUpper = 0;
      resp.m_nHasLower = lower;
      resp.m_nHasUpper = upper;
      resp.PutObject();
      ExpectErrors({crossedBounds});
    }
  }
}

TEST_F(RespCheck, ReportsCrossedBoundsInEveryKindOfResponseAndTask) {
  for (const int type : {0, 3, 4, -1}) {
    for (const int task : {0, 1, 2, 3, 4}) {
      SetTaskType(task);
      CResp resp = Resp(7, type);
      resp.m_fLower = 2e30;
      resp.PutObject();
      ExpectErrors({crossedBounds});
    }
  }
}

// ---- Pass/Fail ----

TEST_F(RespCheck, PassesPassFailThatIsNoObjective) {
  StoreObjective(3, 0);
  ExpectSilence();
}

TEST_F(RespCheck, PassesObjectivesOfOtherKinds) {
  for (const int type : {0, 4, -3}) {
    StoreObjective(type, 1);
    ExpectSilence();
  }
  StoreLink(1, 1);
  for (const int type : {1, 2}) {
    CResp resp = Resp(7, type);
    resp.m_nObjective = 1;
    resp.m_nAuxID = 1;
    resp.PutObject();
    ExpectSilence();
  }
}

TEST_F(RespCheck, ReportsPassFailAsAnObjective) {
  for (const long objective : {1L, 2L, -1L}) {
    StoreObjective(3, objective);
    ExpectErrors({passFailObjective});
  }
}

// ---- The function of a dependent response ----

TEST_F(RespCheck, PassesNonsenseInWhatIsNotDependent) {
  for (const int type : {0, 3, 4, -1}) {
    CResp resp = Resp(7, type);
    resp.m_nAuxID = 99;
    resp.m_vnArg = {-1, 0, 5};
    resp.m_vnIdx = {9};
    resp.PutObject();
    ExpectSilence();
  }
}

TEST_F(RespCheck, ReportsALinkWithoutASpecification) {
  for (const long auxiliary : {0L, -1L, -2147483648L}) {
    StoreFunction(7, 1, auxiliary, {{-1}});
    ExpectErrors(
        {"(Check Resps): Response (R7 - index=107) is a link type but it does not reference a link specification\n"});
  }
}

TEST_F(RespCheck, ReportsASyntheticResponseWithoutASpecification) {
  for (const long auxiliary : {0L, -1L, -2147483648L}) {
    StoreFunction(7, 2, auxiliary, {{-1}});
    ExpectErrors(
        {"(Check Resps): Response (R7 - index=107) is a synthetic type but it does not reference a synthetic specification\n"});
  }
}

TEST_F(RespCheck, ReportsASpecificationThatIsMissing) {
  StoreLink(2, 2);
  for (const int type : {1, 2}) {
    for (const long auxiliary : {1L, 3L, 2147483647L}) {
      StoreFunction(7, type, auxiliary, {{-1}});
      ExpectErrors(
          {"(Check Resps) : Referenced auxiliary object for Response (R7 - index=107) does not exist\n"});
    }
  }
}

TEST_F(RespCheck, ReportsAnotherNumberOfArguments) {
  StoreLink(1, 3);
  StoreEquation(2, "a,b");
  for (const int type : {1, 2}) {
    for (const long auxiliary : {1L, 2L}) {
      StoreFunction(7, type, auxiliary, {{-1}});
      ExpectErrors(
          {"(Check Resps) : Argument number mismatch for Response (R7 - index=107) 1 != 2\n"});
      StoreFunction(7, type, auxiliary, {{-1}, {-1}, {-1}});
      ExpectErrors(
          {"(Check Resps) : Argument number mismatch for Response (R7 - index=107) 3 != 2\n"});
      StoreFunction(7, type, auxiliary, {});
      ExpectErrors(
          {"(Check Resps) : Argument number mismatch for Response (R7 - index=107) 0 != 2\n"});
    }
  }
}

TEST_F(RespCheck, ReportsSpecificationsThatHaveNoArgumentsAsMinusOne) {
  CAuxiliary set(study.Pod());
  set.m_nID = 1;
  set.m_nAuxType = 4;
  set.m_vfValues = {1, 2};
  set.PutObject();
  StoreLink(2, 0);
  CAuxiliary unknown(study.Pod());
  unknown.m_nID = 3;
  unknown.m_nAuxType = 3;
  unknown.PutObject();
  for (const long auxiliary : {1L, 2L, 3L}) {
    StoreFunction(7, 1, auxiliary, {{-1}, {-1}});
    ExpectErrors(
        {"(Check Resps) : Argument number mismatch for Response (R7 - index=107) 2 != -1\n"});
    StoreFunction(7, 2, auxiliary, {});
    ExpectErrors(
        {"(Check Resps) : Argument number mismatch for Response (R7 - index=107) 0 != -1\n"});
  }
}

TEST_F(RespCheck, LooksAtTheNumberOfArgumentsBeforeThatOfIndexes) {
  StoreLink(1, 2);
  CResp resp = Resp(7, 1);
  resp.m_nAuxID = 1;
  resp.m_vnIdx = {0};
  resp.PutObject();
  ExpectErrors({"(Check Resps) : Argument number mismatch for Response (R7 - index=107) 0 != 1\n"});
}

TEST_F(RespCheck, PassesFunctionsWithoutArguments) {
  StoreLink(1, 1);
  StoreEquation(2, "");
  for (const int type : {1, 2}) {
    for (const long auxiliary : {1L, 2L}) {
      StoreFunction(7, type, auxiliary, {});
      ExpectSilence();
    }
  }
}

TEST_F(RespCheck, StopsTheProgramForAnIndexThatIsMissing) {
  StoreInput(1, 0);
  StoreLink(1, 3);
  CResp resp = Resp(7, 1);
  resp.m_nAuxID = 1;
  resp.m_vnArg = {-1, -1};
  resp.m_vnIdx = {0};
  for (const int type : {1, 2}) {
    resp.m_nType = type;
    resp.PutObject();
    EXPECT_DEATH(CResp::CheckResps(study.Pod()), "vnArg\\.size\\(\\) == vnIdx\\.size\\(\\)");
    std::filesystem::remove(study.LockPath());  // it was the stopped program's
  }
}

// ---- Messages ----

TEST_F(RespCheck, ShowsNamesInFullAndIndexesAsSignedNumbers) {
  CResp resp = Resp(7, 0);
  resp.m_fLower = 2e30;
  resp.m_strName = "a name of more than ten letters, 100% sure";
  resp.m_uIndex = 4294967295UL;
  resp.PutObject();
  ExpectErrors(
      {"(Check Resps) : Lower bound > Upper bound for Response (a name of more than ten letters, 100% sure - index=-1)\n"});
  resp.m_strName.clear();
  resp.m_uIndex = 2147483647UL;
  resp.PutObject();
  ExpectErrors({"(Check Resps) : Lower bound > Upper bound for Response ( - index=2147483647)\n"});
}

// ---- The walk ----

TEST_F(RespCheck, GoesThroughAllResponsesInTheOrderOfTheirNumbers) {
  for (const long id : {10L, 9L, 100L}) {
    CResp resp = Resp(id, 0);
    resp.m_fLower = 2e30;
    resp.PutObject();
  }
  StoreResp(11, 0);
  ExpectErrors({"(Check Resps) : Lower bound > Upper bound for Response (R9 - index=109)\n",
                "(Check Resps) : Lower bound > Upper bound for Response (R10 - index=110)\n",
                "(Check Resps) : Lower bound > Upper bound for Response (R100 - index=200)\n"});
}

TEST_F(RespCheck, FailsForOneFaultBeforeOrBehindSoundResponses) {
  StoreBounds(1, 0);
  StoreResp(6, 0);
  ExpectErrors({crossedBounds});
  StoreResp(8, 0);
  ExpectErrors({crossedBounds});
}

TEST_F(RespCheck, SaysTheSameAgain) {
  StoreBounds(1, 0);
  ExpectErrors({crossedBounds});
  ExpectErrors({crossedBounds});
  StoreBounds(0, 1);
  ExpectSilence();
}

TEST_F(RespCheck, LeavesTheStudyAsItWas) {
  StoreBounds(1, 0);
  StoreFifty(1, {{-1}, {7}});
  const std::string data = ReadBytes(study.DataPath());
  const std::string index = ReadBytes(study.IndexPath());
  EXPECT_FALSE(CResp::CheckResps(study.Pod()));
  EXPECT_EQ(ReadBytes(study.DataPath()), data);
  EXPECT_EQ(ReadBytes(study.IndexPath()), index);
}

TEST_F(RespCheck, NeedsTheControlSettings) {
  CDesignControl(study.Pod()).RemoveObject();
  for (int responses = 0; responses < 2; ++responses) {
    ClearLog();
    try {
      CResp::CheckResps(study.Pod());
      ADD_FAILURE();
    } catch (const CObjectNotFound& error) {
      EXPECT_STREQ(error.what(), "Object not found");
    }
    EXPECT_EQ(PrintedLog(), "");
    StoreBounds(1, 0);
  }
}

// ---- Everything at once ----

TEST_F(RespCheck, ReportsAllFaultsOfAStudyInOrder) {
  StoreInput(1, 3, 2);  // constant
  StoreInput(2, 0, 4);
  StoreResp(3, 0, 2);
  StoreResp(4, 3, 1);
  StoreLink(20, 2);
  StoreEquation(21, "a,b,c,d,e");
  StoreLink(22, 8);

  CResp passFail = Resp(5, 3);
  passFail.m_nObjective = 1;
  passFail.m_fLower = 2e30;
  passFail.PutObject();
  CResp noLink = Resp(6, 1);
  noLink.m_fUpper = -2e30;
  noLink.PutObject();
  StoreFunction(7, 2, 0, {});
  StoreFunction(8, 1, 23, {{-1}});
  StoreFunction(9, 2, 20, {{-1}, {-2}});
  StoreFunction(10, 1, 22, {{-1, 3}, {-7}, {0}, {3, 3}, {4, 2}, {9, 1}, {10, 5}});
  StoreFunction(11, 2, 21, {{-2, 5}, {77}, {4}, {10}, {11, 2}});
  StoreFunction(12, 1, 20, {{-1}});
  CResp constant = Resp(13, 2);
  constant.m_nAuxID = 20;
  constant.m_vnArg = {-1};
  constant.m_vnIdx = {3};
  constant.m_fLower = 5;
  constant.m_fUpper = 4;
  constant.PutObject();
  StoreFunction(14, 2, 20, {{-99}});

  const std::string onlyConstants =
      "LPrint:      The gradient of this dependent response will be zero. This may cause DGO to halt.\n\n";
  ExpectLog(
      false,
      {"LError: (Check Resps) : Lower bound > Upper bound for Response (R5 - index=105)\n",
       "LError: (Check Resps) : Pass/Fail type Response (R5 - index=105) cannot be used as an objective\n",
       "LError: (Check Resps) : Lower bound > Upper bound for Response (R6 - index=106)\n",
       "LError: (Check Resps): Response (R6 - index=106) is a link type but it does not reference a link specification\n",
       "LError: (Check Resps): Response (R7 - index=107) is a synthetic type but it does not reference a synthetic specification\n",
       "LError: (Check Resps) : Referenced auxiliary object for Response (R8 - index=108) does not exist\n",
       "LError: (Check Resps) : Argument number mismatch for Response (R9 - index=109) 2 != 1\n",
       "LError: (Check Resps) : Argument 1 for Response (R10 - index=110) references an element index (3) that does not exist\n",
       "LError: (Check Resps) : Argument 2 for Response (R10 - index=110) does not exist\n",
       "LError: (Check Resps) : Argument 3 for Response (R10 - index=110) does not exist\n",
       "LError: (Check Resps) : Argument 4 for Response (R10 - index=110) references an element index (3) that does not exist\n",
       "LError: (Check Resps) : Argument 5 for dependent Response (R10 - index=110) is a Pass/Fail type response\n",
       "LError: (Check Resps) : Argument 5 for Response (R10 - index=110) references an element index (2) that does not exist\n",
       "LError: (Check Resps) : Argument 6 for Linked Response (R10 - index=110) is not an independent response\n",
       "LError: (Check Resps) : Argument 7 for Linked Response (R10 - index=110) is not an independent response\n",
       "LError: (Check Resps) : Argument 7 for Response (R10 - index=110) references an element index (5) that does not exist\n",
       "LError: (Check Resps) : Argument 1 for Response (R11 - index=111) references an element index (5) that does not exist\n",
       "LError: (Check Resps) : Argument 2 for Response (R11 - index=111) does not exist\n",
       "LError: (Check Resps) : Argument 3 for dependent Response (R11 - index=111) is a Pass/Fail type response\n",
       "LError: (Check Resps) : Argument 5 for Synthetic Response (R11 - index=111) is not a linked or independent response\n",
       "LError: (Check Resps) : Argument 5 for Response (R11 - index=111) references an element index (2) that does not exist\n",
       "LWarn: (Check Resps) : Dependent response (R12 - index=112) only references constant variables.",
       onlyConstants,
       "LError: (Check Resps) : Lower bound > Upper bound for Response (R13 - index=113)\n",
       "LError: (Check Resps) : Argument 1 for Response (R13 - index=113) references an element index (3) that does not exist\n",
       "LWarn: (Check Resps) : Dependent response (R13 - index=113) only references constant variables.",
       onlyConstants,
       "LError: (Check Resps) : Argument 1 for Response (R14 - index=114) does not exist\n",
       "LWarn: (Check Resps) : Dependent response (R14 - index=114) only references constant variables.",
       onlyConstants});
}

}  // namespace
