#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/definition/RespChecks.h"

namespace {

/// The rules on the arguments of dependent responses.
class RespArguments : public RespChecks {
 protected:
  /// Expects just this line for response 50 with these arguments, be it linked or synthetic.
  void ExpectErrorOfBoth(const std::vector<RespArgument>& arguments, const std::string& line) {
    for (const int type : {1, 2}) {
      SCOPED_TRACE(type);
      StoreFifty(type, arguments);
      ExpectErrors({line});
    }
  }
  void ExpectSilenceOfBoth(const std::vector<RespArgument>& arguments) {
    for (const int type : {1, 2}) {
      SCOPED_TRACE(type);
      StoreFifty(type, arguments);
      ExpectSilence();
    }
  }
  /// The same with the warning about responses of constants, as the task's kind has it.
  void ExpectWarningOfBoth(const std::vector<RespArgument>& arguments,
                           const std::vector<std::string>& errors = {}) {
    std::vector<std::string> lines;
    for (const std::string& error : errors) lines.push_back("LError: " + error);
    lines.insert(lines.end(), onlyConstants.begin(), onlyConstants.end());
    for (const int type : {1, 2}) {
      SCOPED_TRACE(type);
      StoreFifty(type, arguments);
      ExpectLog(errors.empty(), lines);
    }
  }

  const std::vector<std::string> onlyConstants{
      "LWarn: (Check Resps) : Dependent response (R50 - index=150) only references constant variables.",
      "LPrint:      The gradient of this dependent response will be zero. This may cause DGO to halt.\n\n"};
};

const std::string firstMissing =
    "(Check Resps) : Argument 1 for Response (R50 - index=150) does not exist\n";
const std::string secondMissing =
    "(Check Resps) : Argument 2 for Response (R50 - index=150) does not exist\n";
const std::string passFail =
    "(Check Resps) : Argument 1 for dependent Response (R50 - index=150) is a Pass/Fail type response\n";
const std::string notIndependent =
    "(Check Resps) : Argument 1 for Linked Response (R50 - index=150) is not an independent response\n";
const std::string notLinked =
    "(Check Resps) : Argument 1 for Synthetic Response (R50 - index=150) is not a linked or independent response\n";

std::string NoElement(const std::string& number) {
  return "(Check Resps) : Argument 1 for Response (R50 - index=150) references an element index (" +
         number + ") that does not exist\n";
}

// ---- Arguments that are missing ----

TEST_F(RespArguments, ThatAreMissingInputsAreReported) {
  StoreInput(1, 0);
  StoreResp(2, 0);
  ExpectErrorOfBoth({{-1}, {-2}}, secondMissing);
  ExpectErrorOfBoth({{-1}, {-2147483647}}, secondMissing);
  ExpectErrorOfBoth({{-1}, {-2147483648}}, secondMissing);
}

TEST_F(RespArguments, ThatAreMissingResponsesAreReported) {
  StoreInput(1, 0);
  StoreInput(2, 0);
  ExpectErrorOfBoth({{-1}, {2}}, secondMissing);
  ExpectErrorOfBoth({{-1}, {2147483647}}, secondMissing);
}

TEST_F(RespArguments, OfZeroAreMissingResponses) {
  StoreInput(1, 0);
  ExpectErrorOfBoth({{-1}, {0}}, secondMissing);
}

TEST_F(RespArguments, ThatAreMissingAreNotLookedAtFurther) {
  StoreInput(1, 0);
  ExpectErrorOfBoth({{-1}, {-2, 9}}, secondMissing);
  ExpectErrorOfBoth({{-1}, {2, 9}}, secondMissing);
}

TEST_F(RespArguments, BehindAMissingOneAreLookedAt) {
  StoreInput(1, 0);
  for (const int type : {1, 2}) {
    StoreFifty(type, {{-3}, {4}, {-1}, {0}});
    ExpectErrors({firstMissing, secondMissing,
                  "(Check Resps) : Argument 4 for Response (R50 - index=150) does not exist\n"});
  }
}

TEST_F(RespArguments, OfOneNumberAreAnInputOrAResponseByTheirSign) {
  StoreInput(5, 0, 3);
  StoreResp(5, 0, 1);
  ExpectSilenceOfBoth({{-5, 3}});
  ExpectErrorOfBoth({{5, 3}}, NoElement("3"));
}

// ---- Kinds of Inputs ----

TEST_F(RespArguments, AreInputsOfAnyKind) {
  StoreResp(1, 0);
  for (int type = -1; type <= 7; ++type) {
    StoreInput(10 + type, type);
    ExpectSilenceOfBoth({{1}, {-10 - type}});
  }
}

// ---- Kinds of responses ----

TEST_F(RespArguments, OfALinkAreIndependentResponses) {
  StoreResp(1, 0);
  StoreFifty(1, {{1}});
  ExpectSilence();
}

TEST_F(RespArguments, OfALinkAreNoLinkedOrSyntheticResponses) {
  StoreLink(1, 1);
  for (const int type : {1, 2}) {
    StoreFunction(1, type, 1, {});
    StoreFifty(1, {{1}});
    ExpectErrors({notIndependent});
  }
}

TEST_F(RespArguments, OfASyntheticResponseAreIndependentOrLinked) {
  StoreResp(1, 0);
  StoreFifty(2, {{1}});
  ExpectSilence();
  StoreLink(1, 1);
  StoreFunction(1, 1, 1, {});
  ExpectSilence();
}

TEST_F(RespArguments, OfASyntheticResponseAreNotSynthetic) {
  StoreLink(1, 1);
  StoreFunction(1, 2, 1, {});
  StoreFifty(2, {{1}});
  ExpectErrors({notLinked});
}

TEST_F(RespArguments, AreNeverPassFailResponses) {
  StoreResp(1, 3);
  ExpectErrorOfBoth({{1}}, passFail);
}

TEST_F(RespArguments, MayStayUnusedAsPassFailResponses) {
  StoreResp(1, 3);
  ExpectSilence();
}

TEST_F(RespArguments, AreResponsesOfUnknownKinds) {
  for (const int type : {4, -1}) {
    StoreResp(1, type);
    ExpectSilenceOfBoth({{1}});
  }
}

TEST_F(RespArguments, AreNotTheResponseItself) {
  StoreFifty(1, {{50}});
  ExpectErrors({notIndependent});
  StoreFifty(2, {{50}});
  ExpectErrors({notLinked});
}

// ---- Elements ----

TEST_F(RespArguments, MayNameElementsUpToTheSize) {
  StoreInput(1, 0, 3);
  StoreResp(1, 0, 3);
  for (const long id : {-1L, 1L}) {
    for (const long element : {-2147483648L, -1L, 0L, 1L, 2L, 3L}) {
      SCOPED_TRACE(element);
      ExpectSilenceOfBoth({{id, element}});
    }
  }
}

TEST_F(RespArguments, MayNotNameElementsAboveTheSize) {
  StoreInput(1, 0, 3);
  StoreResp(1, 0, 3);
  for (const long id : {-1L, 1L}) {
    ExpectErrorOfBoth({{id, 4}}, NoElement("4"));
    ExpectErrorOfBoth({{id, 2147483647}}, NoElement("2147483647"));
  }
}

TEST_F(RespArguments, OfOneElementMayNameElementOne) {
  StoreInput(1, 0);
  StoreResp(1, 0);
  for (const long id : {-1L, 1L}) {
    ExpectSilenceOfBoth({{id, 1}});
    ExpectErrorOfBoth({{id, 2}}, NoElement("2"));
  }
}

TEST_F(RespArguments, OfNoElementMayNameTheFirstOnly) {
  StoreInput(1, 0, 0);
  StoreResp(1, 0, 0);
  for (const long id : {-1L, 1L}) {
    ExpectSilenceOfBoth({{id, 0}});
    ExpectErrorOfBoth({{id, 1}}, NoElement("1"));
  }
}

TEST_F(RespArguments, MayNameAnyElementOfTheLargestArray) {
  StoreInput(1, 0, 4294967295UL);
  StoreResp(1, 0, 4294967295UL);
  for (const long id : {-1L, 1L}) ExpectSilenceOfBoth({{id, 2147483647}});
}

TEST_F(RespArguments, AreLookedAtWithoutTheirLengths) {
  StoreInput(1, 0);
  StoreLink(50, 2);
  for (const int type : {1, 2}) {
    CResp resp = Resp(50, type);
    resp.m_nAuxID = 50;
    resp.m_vnArg = {-1};
    resp.m_vnIdx = {0};
    resp.m_vnLength = {99, 99, -1};
    resp.PutObject();
    ExpectSilence();
  }
}

// ---- Several faults ----

TEST_F(RespArguments, AreReportedByKindBeforeElement) {
  StoreResp(1, 3, 2);
  for (const int type : {1, 2}) {
    StoreFifty(type, {{1, 3}});
    ExpectErrors({passFail, NoElement("3")});
  }
  StoreLink(2, 1);
  StoreFunction(1, 2, 2, {});
  StoreFifty(1, {{1, 2}});
  ExpectErrors({notIndependent, NoElement("2")});
  StoreFifty(2, {{1, 2}});
  ExpectErrors({notLinked, NoElement("2")});
}

TEST_F(RespArguments, AreEachReportedUnderTheirNumber) {
  StoreInput(1, 0);
  StoreResp(2, 3);
  StoreFifty(1, {{-1}, {2}, {-1, 2}, {50}});
  ExpectErrors(
      {"(Check Resps) : Argument 2 for dependent Response (R50 - index=150) is a Pass/Fail type response\n",
       "(Check Resps) : Argument 3 for Response (R50 - index=150) references an element index (2) that does not exist\n",
       "(Check Resps) : Argument 4 for Linked Response (R50 - index=150) is not an independent response\n"});
}

TEST_F(RespArguments, AreReportedInEveryKindOfTask) {
  StoreInput(1, 0);
  for (const int task : {0, 1, 2, 3, 4}) {
    SetTaskType(task);
    ExpectErrorOfBoth({{-1}, {-2}}, secondMissing);
  }
}

// ---- Constants only ----

TEST_F(RespArguments, ThatAreAllConstantAreAWarning) {
  StoreInput(1, 3);
  StoreInput(2, 3);
  ExpectWarningOfBoth({{-1}});
  ExpectWarningOfBoth({{-1}, {-2}, {-1}});
}

TEST_F(RespArguments, ThatAreAllConstantAreNoMatterInOtherTasks) {
  StoreInput(1, 3);
  for (const int task : {1, 2, 3, 4, -1, 5}) {
    SetTaskType(task);
    ExpectSilenceOfBoth({{-1}});
  }
}

TEST_F(RespArguments, OfWhichOneVariesAreNoWarning) {
  StoreInput(1, 3);
  StoreInput(2, 3);
  for (const int type : {-1, 0, 1, 2, 4, 5, 6, 7}) {
    SCOPED_TRACE(type);
    StoreInput(3, type);
    ExpectSilenceOfBoth({{-3}});
    ExpectSilenceOfBoth({{-3}, {-1}, {-2}});
    ExpectSilenceOfBoth({{-1}, {-3}, {-2}});
    ExpectSilenceOfBoth({{-1}, {-2}, {-3}});
  }
}

TEST_F(RespArguments, ThatAreAConstantAndAResponseAreNoWarning) {
  StoreInput(1, 3);
  StoreResp(2, 0);
  ExpectSilenceOfBoth({{-1}, {2}});
  ExpectSilenceOfBoth({{2}, {-1}});
}

TEST_F(RespArguments, ThatAreAConstantAndAFaultyResponseAreNoWarning) {
  StoreInput(1, 3);
  StoreResp(2, 3);
  ExpectErrorOfBoth({{2}, {-1}}, passFail);
  StoreResp(2, 0);
  ExpectErrorOfBoth({{2, 2}, {-1}}, NoElement("2"));
}

TEST_F(RespArguments, OfNoNumberAreNoWarning) {
  ExpectSilenceOfBoth({});
}

TEST_F(RespArguments, ThatAreMissingDoNotVary) {
  StoreInput(1, 3);
  ExpectWarningOfBoth({{-2}}, {firstMissing});
  ExpectWarningOfBoth({{2}}, {firstMissing});
  ExpectWarningOfBoth({{0}}, {firstMissing});
  ExpectWarningOfBoth({{-1}, {-2}}, {secondMissing});
}

TEST_F(RespArguments, ThatNameAMissingElementOfAConstantDoNotVary) {
  StoreInput(1, 3, 2);
  ExpectWarningOfBoth({{-1, 3}}, {NoElement("3")});
}

TEST_F(RespArguments, ThatNameAMissingElementOfAVariableVary) {
  StoreInput(1, 0, 2);
  StoreInput(2, 3);
  ExpectErrorOfBoth({{-1, 3}, {-2}}, NoElement("3"));
}

TEST_F(RespArguments, AreWeighedForEachResponseAfresh) {
  StoreInput(1, 3);
  StoreInput(2, 0);
  StoreLink(1, 2);
  StoreFunction(10, 1, 1, {{-1}});
  StoreFunction(11, 1, 1, {{-2}});
  StoreFunction(12, 2, 1, {{-1}});
  const std::string& second = onlyConstants[1];
  ExpectLog(
      true,
      {"LWarn: (Check Resps) : Dependent response (R10 - index=110) only references constant variables.",
       second,
       "LWarn: (Check Resps) : Dependent response (R12 - index=112) only references constant variables.",
       second});
}

}  // namespace
