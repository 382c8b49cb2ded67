#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/definition/InputStudy.h"

// The check of links and synthetic Inputs.

namespace {

using Lines = std::vector<std::string>;

class InputArguments : public InputStudy {
 protected:
  /// A link of Input 1 to these arguments.
  CInput Link(const std::vector<vbINT32>& arguments) {
    PutLink(50, arguments.size());
    return Function(1, "x", 1, 50, arguments);
  }

  /// Input 1 as a function of these arguments.
  CInput Synthetic(const std::vector<vbINT32>& arguments) {
    PutEquation(51, arguments.empty() ? "" : "a" + std::string(arguments.size() - 1, ','));
    return Function(1, "x", 2, 51, arguments);
  }

  /// Stores an Input that others may take; the functions among them take nothing themselves.
  void PutArgument(int id, int kind, unsigned long size = 1) {
    PutLink(60, 0);
    PutEquation(61, "");
    PutSet(62, {0.0});
    constexpr int auxiliaries[] = {0, 60, 61, 0, 62, 0, 62};
    CInput input = Sound(id, "a", kind, auxiliaries[kind]);
    input.m_uSize = size;
    ASSERT_TRUE(input.PutObject());
  }
};

const Lines onlyConstants{
    "LWarn: (Check Inputs) : Dependent input (x - index=101) only references constant variables.",
    "LPrint:      The gradient of this input will be zero. This may cause DGO to halt.\n\n"};

Lines operator+(Lines first, const Lines& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

// ---- The definition ----

TEST_F(InputArguments, NeedADefinition) {
  for (const int auxiliary : {0, -1}) {
    ExpectCheckOf(Function(1, "x", 1, auxiliary, {}), false,
                  {"LError: (Check Inputs): Input (x - index=101) is a link type but it does not "
                   "reference a link specification\n"});
    ExpectCheckOf(Function(1, "x", 2, auxiliary, {}), false,
                  {"LError: (Check Inputs): Input (x - index=101) is a synthetic type but it does "
                   "not reference a synthetic specification\n"});
  }
}

TEST_F(InputArguments, OfAMissingDefinitionAreNotLookedAt) {
  PutLink(2, 1);
  for (const int kind : {1, 2}) {
    ExpectCheckOf(Function(1, "x", kind, 1, {5}), false,
                  {"LError: (Check Inputs) : Referenced auxiliary object for Input (x - index=101) "
                   "does not exist\n"});
  }
}

std::string Mismatch(const std::string& numbers) {
  return "LError: (Check Inputs) : Argument number mismatch for Input (x - index=101) " + numbers +
         "\n";
}

TEST_F(InputArguments, OfALinkAreAsManyAsItsCoefficientsWithoutTheConstant) {
  PutArgument(2, 0);
  PutLink(9, 2);
  ExpectCheckOf(Function(1, "x", 1, 9, {-2, -2}), true, {});
  ExpectCheckOf(Function(1, "x", 1, 9, {5}), false, {Mismatch("1 != 2")});
  ExpectCheckOf(Function(1, "x", 1, 9, {5, 5, 5}), false, {Mismatch("3 != 2")});
}

TEST_F(InputArguments, OfASyntheticAreAsManyAsItsNames) {
  PutArgument(2, 0);
  PutEquation(9, "a,b,c");
  ExpectCheckOf(Function(1, "x", 2, 9, {-2, -2, -2}), true, {});
  ExpectCheckOf(Function(1, "x", 2, 9, {5, 5}), false, {Mismatch("2 != 3")});
  PutEquation(9, "a");
  ExpectCheckOf(Function(1, "x", 2, 9, {-2}), true, {});
  ExpectCheckOf(Function(1, "x", 2, 9, {}), false, {Mismatch("0 != 1")});
}

TEST_F(InputArguments, MayBeNone) {
  ExpectCheckOf(Link({}), true, {});
  ExpectCheckOf(Synthetic({}), true, {});
  ExpectCheckOf(Function(1, "x", 2, 51, {5}), false, {Mismatch("1 != 0")});
}

TEST_F(InputArguments, OfASetNeverMatch) {
  PutSet(9, {1.0, 2.0});
  ExpectCheckOf(Function(1, "x", 1, 9, {}), false, {Mismatch("0 != -1")});
  ExpectCheckOf(Function(1, "x", 2, 9, {5, 5}), false, {Mismatch("2 != -1")});
}

TEST_F(InputArguments, OfALinkWithoutCoefficientsNeverMatch) {
  CAuxiliary link(study.Pod());
  link.m_nID = 9;
  link.PutObject();
  ExpectCheckOf(Function(1, "x", 1, 9, {}), false, {Mismatch("0 != -1")});
}

TEST_F(InputArguments, MayMatchADefinitionOfTheOtherKind) {
  PutArgument(2, 0);
  PutLink(8, 1);
  PutEquation(9, "a");
  ExpectCheckOf(Function(1, "x", 2, 8, {-2}), true, {});
  ExpectCheckOf(Function(1, "x", 1, 9, {-2}), true, {});
}

using InputArgumentsDeathTest = InputArguments;

TEST_F(InputArgumentsDeathTest, WithoutAnIndexForEachAreAFaultOfTheProgram) {
  PutArgument(2, 0);
  for (const std::vector<vbINT32>& indexes :
       {std::vector<vbINT32>{}, std::vector<vbINT32>{0}, std::vector<vbINT32>{0, 0, 0}}) {
    CInput input = Link({-2, -2});
    input.m_vnIdx = indexes;
    ASSERT_TRUE(input.PutObject());
    EXPECT_EXIT(CInput::CheckInputs(study.Pod()), testing::KilledBySignal(SIGABRT),
                "vnArg\\.size\\(\\) == vnIdx\\.size\\(\\)");
    std::filesystem::remove(study.LockPath());
  }
}

TEST_F(InputArguments, NeedNoLengths) {
  PutArgument(2, 0);
  CInput input = Link({-2});
  input.m_vnLength = {};
  ExpectCheckOf(input, true, {});
}

// ---- One argument ----

TEST_F(InputArguments, AreNegatedIDs) {
  PutArgument(5, 0);
  const Lines expected{
      "LError: (Check Inputs) : Argument 1 for Input (x - index=101) does not reference another "
      "input\n",
      "LError: (Check Inputs) : Argument 3 for Input (x - index=101) does not reference another "
      "input\n"};
  ExpectCheckOf(Link({0, -5, 5}), false, expected);
  ExpectCheckOf(Synthetic({5, -5, 2147483647}), false, expected);
}

TEST_F(InputArguments, HaveToExist) {
  PutArgument(5, 0);
  const Lines expected{
      "LError: (Check Inputs) : Argument 2 (DB_ID=6) for Input (x - index=101) does not exist\n",
      "LError: (Check Inputs) : Argument 3 (DB_ID=2147483647) for Input (x - index=101) does not "
      "exist\n"};
  ExpectCheckOf(Link({-5, -6, -2147483647}), false, expected);
  ExpectCheckOf(Synthetic({-5, -6, -2147483647}), false, expected);
}

TEST_F(InputArguments, WithoutANegationDoNotExist) {
  PutArgument(5, 0);
  ClearLog();
  ASSERT_TRUE(Link({-5, -2147483647 - 1}).PutObject());
  EXPECT_FALSE(CInput::CheckInputs(study.Pod()));
  ASSERT_EQ(Log().size(), 1U);
  EXPECT_EQ(Log()[0].text.find("(Check Inputs) : Argument 2 (DB_ID="), 0U);
  EXPECT_NE(Log()[0].text.find(") for Input (x - index=101) does not exist\n"), std::string::npos);
}

TEST_F(InputArguments, OfALinkAreNoFunctions) {
  SetTask(1);
  for (const int kind : {0, 3, 4, 5, 6}) {
    SCOPED_TRACE(kind);
    PutArgument(5, kind);
    ExpectCheckOf(Link({-5}), true, {});
  }
  for (const int kind : {1, 2}) {
    SCOPED_TRACE(kind);
    PutArgument(5, kind);
    ExpectCheckOf(Link({-5}), false,
                  {"LError: (Check Inputs) : Argument 1 (DB_ID=5) for Linked Input (x - index=101) "
                   "is not independent\n"});
  }
}

TEST_F(InputArguments, OfASyntheticMayBeLinksButNoSynthetics) {
  SetTask(1);
  for (const int kind : {0, 1, 3, 4, 5, 6}) {
    SCOPED_TRACE(kind);
    PutArgument(5, kind);
    ExpectCheckOf(Synthetic({-5}), true, {});
  }
  PutArgument(5, 2);
  ExpectCheckOf(Synthetic({-5}), false,
                {"LError: (Check Inputs) : Argument 1 (DB_ID=5) for Synthetic Input (x - "
                 "index=101) is not linked or independent\n"});
}

TEST_F(InputArguments, OfALinkAreNotTheLinkItself) {
  ExpectCheckOf(Link({-1}), false,
                {"LError: (Check Inputs) : Argument 1 (DB_ID=1) for Linked Input (x - index=101) "
                 "is not independent\n"});
}

std::string NoElement(const std::string& index) {
  return "LError: (Check Inputs) : Argument 2 (DB_ID=5) for Input (x - index=101) references an "
         "element index (" +
         index + ") that does not exist\n";
}

TEST_F(InputArguments, ElementMayBeAsHighAsTheSize) {
  PutArgument(5, 0, 3);
  for (CInput input : {Link({-5, -5}), Synthetic({-5, -5})}) {
    for (const int index : {0, 1, 2, 3, -1, -4}) {
      SCOPED_TRACE(index);
      input.m_vnIdx = {0, index};
      ExpectCheckOf(input, true, {});
    }
    input.m_vnIdx = {0, 4};
    ExpectCheckOf(input, false, {NoElement("4")});
    input.m_vnIdx = {0, 2147483647};
    ExpectCheckOf(input, false, {NoElement("2147483647")});
  }
}

TEST_F(InputArguments, ElementOfAScalarMayBeOne) {
  PutArgument(5, 0);
  CInput input = Link({-5, -5});
  input.m_vnIdx = {0, 1};
  ExpectCheckOf(input, true, {});
  input.m_vnIdx = {0, 2};
  ExpectCheckOf(input, false, {NoElement("2")});
}

TEST_F(InputArguments, ElementZeroIsNeverLookedFor) {
  PutArgument(5, 0, 0);
  CInput input = Link({-5, -5});
  ExpectCheckOf(input, true, {});
  input.m_vnIdx = {0, 1};
  ExpectCheckOf(input, false, {NoElement("1")});
}

TEST_F(InputArguments, ElementOfAWrongKindIsNotLookedFor) {
  PutArgument(5, 2);
  CInput link = Link({-5});
  link.m_vnIdx = {9};
  ExpectCheckOf(link, false,
                {"LError: (Check Inputs) : Argument 1 (DB_ID=5) for Linked Input (x - index=101) "
                 "is not independent\n"});
  CInput synthetic = Synthetic({-5});
  synthetic.m_vnIdx = {9};
  ExpectCheckOf(synthetic, false,
                {"LError: (Check Inputs) : Argument 1 (DB_ID=5) for Synthetic Input (x - "
                 "index=101) is not linked or independent\n"});
}

// ---- Constants only ----

TEST_F(InputArguments, OfConstantsOnlyAreAWarningInGradientTasks) {
  PutArgument(5, 3);
  for (CInput input : {Link({-5, -5}), Synthetic({-5, -5})}) {
    SetTask(0);
    ExpectCheckOf(input, true, onlyConstants);
    for (const int task : {1, 2, 3, 4}) {
      SetTask(task);
      ExpectCheck(true, {});
    }
  }
}

TEST_F(InputArguments, OfOneThatIsNotConstantAreNoWarning) {
  PutArgument(5, 3);
  PutArgument(6, 0);
  ExpectCheckOf(Link({-6, -5}), true, {});
  ExpectCheckOf(Synthetic({-5, -6}), true, {});
}

TEST_F(InputArguments, ThatAreNotThereCountAsConstant) {
  ExpectCheckOf(Link({-5}), false,
                Lines{"LError: (Check Inputs) : Argument 1 (DB_ID=5) for Input (x - index=101) "
                      "does not exist\n"} +
                    onlyConstants);
  ExpectCheckOf(Synthetic({5}), false,
                Lines{"LError: (Check Inputs) : Argument 1 for Input (x - index=101) does not "
                      "reference another input\n"} +
                    onlyConstants);
}

TEST_F(InputArguments, OfConstantsWithoutTheElementAreBothFaults) {
  PutArgument(5, 3);
  CInput input = Link({-5, -5});
  input.m_vnIdx = {0, 2};
  ExpectCheckOf(input, false, Lines{NoElement("2")} + onlyConstants);
}

TEST_F(InputArguments, OfAnotherKindWithoutTheElementAreNoWarning) {
  PutArgument(5, 0);
  CInput input = Link({-5, -5});
  input.m_vnIdx = {0, 2};
  ExpectCheckOf(input, false, {NoElement("2")});
}

}  // namespace
