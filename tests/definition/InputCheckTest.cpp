#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <string>
#include <vector>

#include "store/KestErr.h"
#include "tests/definition/InputStudy.h"

// The check of all Inputs but for the arguments of links and synthetic Inputs.

namespace {

using Lines = std::vector<std::string>;

class InputCheck : public InputStudy {
 protected:
  /// An Input of the kind that has nothing wrong but what a test makes wrong.
  CInput OfKind(int kind) {
    PutLink(50, 0);
    PutEquation(51, "");
    PutSet(52, {-1.0, 1.0});
    constexpr int auxiliaries[] = {0, 50, 51, 0, 52, 0, 52, 0};
    return Sound(1, "x", kind, auxiliaries[kind]);
  }

  CInput Bounded(double lower, double upper, double initial) {
    CInput input = Sound(1, "x");
    input.m_fLower = lower;
    input.m_fUpper = upper;
    input.m_fInitial = initial;
    return input;
  }
};

double Above(double value) {
  return std::nextafter(value, INFINITY);
}
double Below(double value) {
  return std::nextafter(value, -INFINITY);
}

constexpr int userDefined = 11;

const std::string scaleError =
    "LError: (Check Inputs) : Invalid scale factor for Input (x - index=101).  "
    "The scale factor must be > 0\n";

// ---- All Inputs ----

TEST_F(InputCheck, OfNoInputsHolds) {
  ExpectCheck(true, {});
}

TEST_F(InputCheck, OfSoundInputsHoldsInEveryTask) {
  for (int kind = 0; kind <= 7; ++kind) {
    CInput input = OfKind(kind);
    input.m_nID = kind + 1;
    ASSERT_TRUE(input.PutObject());
  }
  for (int task = 0; task <= 4; ++task) {
    SetTask(task);
    ExpectCheck(true, {});
  }
}

TEST_F(InputCheck, NeedsControlSettings) {
  CDesignControl(study.Pod()).RemoveObject();
  try {
    CInput::CheckInputs(study.Pod());
    ADD_FAILURE() << "checked";
  } catch (const CObjectNotFound& error) {
    EXPECT_STREQ(error.what(), "Object not found");
  }
  EXPECT_FALSE(std::filesystem::exists(study.LockPath()));
}

TEST_F(InputCheck, GoesOnInTheOrderOfTheIndex) {
  for (const int id : {20, 3, 1}) {
    CInput input = Sound(id, "no. " + std::to_string(id));
    input.m_nUserScale = 1;
    input.PutObject();
  }
  const std::string end = ").  The scale factor must be > 0\n";
  ExpectCheck(
      false, {"LError: (Check Inputs) : Invalid scale factor for Input (no. 1 - index=101" + end,
              "LError: (Check Inputs) : Invalid scale factor for Input (no. 3 - index=103" + end,
              "LError: (Check Inputs) : Invalid scale factor for Input (no. 20 - index=120" + end});
}

TEST_F(InputCheck, ShowsTheNameAsItIsAndTheIndexAsASignedNumber) {
  CInput input = Bounded(1.0, 1.0, 1.0);
  input.m_strName = "100%s of %d, longer than ten";
  input.m_uIndex = 0xFFFFFFFFUL;
  ExpectCheckOf(input, true,
                {"LWarn: (Check Inputs) : Lower bound = Upper bound for non-constant Input "
                 "(100%s of %d, longer than ten - index=-1)\n"});
}

TEST_F(InputCheck, OfAConstantPassesWhateverIsWrongWithIt) {
  CInput input = Bounded(2.0, 1.0, 7.0);
  input.m_nType = 3;
  input.m_nAuxID = 99;
  input.m_nUserScale = 1;
  input.m_vnArg = {5};
  input.PutObject();
  for (int task = 0; task <= 4; ++task) {
    SetTask(task);
    ExpectCheck(true, {});
  }
}

// ---- Bounds that have to be given ----

TEST_F(InputCheck, BoundsAreRequiredOfMovedInputsInNonGradientTasks) {
  SetTask(3);
  for (const int kind : {0, 4, 5}) {
    SCOPED_TRACE(kind);
    CInput input = OfKind(kind);
    input.m_fLower = -1e30;
    ExpectCheckOf(
        input, false,
        {"LError: (Check Inputs) : No lower bound for Input (x - index=101) in NGO task\n"});
    input.m_fUpper = 1e30;
    ExpectCheckOf(
        input, false,
        {"LError: (Check Inputs) : No lower bound for Input (x - index=101) in NGO task\n",
         "LError: (Check Inputs) : No upper bound for Input (x - index=101) in NGO task\n"});
    input.m_fLower = -1.0;
    ExpectCheckOf(
        input, false,
        {"LError: (Check Inputs) : No upper bound for Input (x - index=101) in NGO task\n"});
  }
}

TEST_F(InputCheck, BoundsAreRequiredOfMovedInputsInDesignsOfExperiments) {
  for (const int method : {0, 1, 10, 12}) {
    SetTask(2, method);
    for (const int kind : {0, 4, 5}) {
      SCOPED_TRACE(kind);
      CInput input = OfKind(kind);
      input.m_fLower = -1e30;
      ExpectCheckOf(
          input, false,
          {"LError: (Check Inputs) : No lower bound for Input (x - index=101) in DOE task\n"});
      input.m_fUpper = 1e30;
      ExpectCheckOf(
          input, false,
          {"LError: (Check Inputs) : No lower bound for Input (x - index=101) in DOE task\n",
           "LError: (Check Inputs) : No upper bound for Input (x - index=101) in DOE task\n"});
      input.m_fLower = -1.0;
      ExpectCheckOf(
          input, false,
          {"LError: (Check Inputs) : No upper bound for Input (x - index=101) in DOE task\n"});
    }
  }
}

TEST_F(InputCheck, BoundsAreNotRequiredOfOtherKinds) {
  for (const int kind : {1, 2, 3, 6, 7}) {
    CInput input = OfKind(kind);
    input.m_nID = kind;
    input.m_fLower = -1e30;
    input.m_fUpper = 1e30;
    ASSERT_TRUE(input.PutObject());
  }
  for (const int task : {2, 3}) {
    SetTask(task);
    ExpectCheck(true, {});
  }
}

TEST_F(InputCheck, BoundsAreNotRequiredInOtherTasks) {
  for (const int kind : {0, 4, 5}) {
    CInput input = OfKind(kind);
    input.m_nID = kind + 1;
    input.m_fLower = -1e30;
    input.m_fUpper = 1e30;
    ASSERT_TRUE(input.PutObject());
  }
  for (const int task : {0, 1, 4}) {
    SetTask(task);
    ExpectCheck(true, {});
  }
  SetTask(1, userDefined);
  ExpectCheck(true, {});
}

TEST_F(InputCheck, BoundsAreNotRequiredInAUserDefinedDesign) {
  SetTask(2, userDefined);
  ExpectCheckOf(Bounded(-1e30, 1e30, 0.0), true, {});
}

TEST_F(InputCheck, AMethodOfDesignDoesNotFreeANonGradientTaskFromBounds) {
  SetTask(3, userDefined);
  ExpectCheckOf(
      Bounded(-1e30, 1.0, 0.0), false,
      {"LError: (Check Inputs) : No lower bound for Input (x - index=101) in NGO task\n"});
}

TEST_F(InputCheck, BoundsBesideTheSentinelsAreGiven) {
  SetTask(3);
  for (const double lower : {Below(-1e30), Above(-1e30)}) {
    for (const double upper : {Below(1e30), Above(1e30)}) {
      ExpectCheckOf(Bounded(lower, upper, 0.0), true, {});
    }
  }
}

// ---- Bounds and initial value ----

TEST_F(InputCheck, LowerBoundMayNotBeAboveTheUpper) {
  SetTask(2, userDefined);
  ExpectCheckOf(Bounded(Below(1.0), 1.0, 0.0), true, {});
  ExpectCheckOf(Bounded(Above(1.0), 1.0, 0.0), false,
                {"LError: (Check Inputs) : Lower bound > Upper bound for Input (x - index=101)\n"});
  ExpectCheckOf(Bounded(1e30, -1e30, 0.0), false,
                {"LError: (Check Inputs) : Lower bound > Upper bound for Input (x - index=101)\n"});
}

TEST_F(InputCheck, EqualBoundsAreAWarning) {
  SetTask(2, userDefined);
  ExpectCheckOf(Bounded(1.0, 1.0, 0.0), true,
                {"LWarn: (Check Inputs) : Lower bound = Upper bound for non-constant Input (x - "
                 "index=101)\n"});
}

TEST_F(InputCheck, BoundsAreComparedForEveryKindButConstants) {
  SetTask(2, userDefined);
  for (const int kind : {0, 1, 2, 4, 5, 6, 7}) {
    SCOPED_TRACE(kind);
    CInput input = OfKind(kind);
    input.m_fLower = 1.0;
    ExpectCheckOf(input, true,
                  {"LWarn: (Check Inputs) : Lower bound = Upper bound for non-constant Input (x - "
                   "index=101)\n"});
    input.m_fUpper = 0.5;
    ExpectCheckOf(
        input, false,
        {"LError: (Check Inputs) : Lower bound > Upper bound for Input (x - index=101)\n"});
  }
}

TEST_F(InputCheck, InitialValueOutsideTheBoundsIsAWarning) {
  for (const int task : {0, 1, 3, 4}) {
    SCOPED_TRACE(task);
    SetTask(task);
    ExpectCheckOf(Bounded(-1.0, 1.0, -1.0), true, {});
    ExpectCheckOf(Bounded(-1.0, 1.0, 1.0), true, {});
    ExpectCheckOf(
        Bounded(-1.0, 1.0, Below(-1.0)), true,
        {"LWarn: (Check Inputs) : Initial value < Lower bound for Input (x - index=101)\n"});
    ExpectCheckOf(
        Bounded(-1.0, 1.0, Above(1.0)), true,
        {"LWarn: (Check Inputs) : Initial value > Upper bound for Input (x - index=101)\n"});
  }
}

TEST_F(InputCheck, InitialValueDoesNotMatterInADesignOfExperiments) {
  for (const int method : {1, userDefined}) {
    SetTask(2, method);
    ExpectCheckOf(Bounded(-1.0, 1.0, -7.0), true, {});
    ExpectCheckOf(Bounded(-1.0, 1.0, 7.0), true, {});
  }
}

TEST_F(InputCheck, CrossedBoundsWithTheInitialValueBetweenThemAreThreeFaults) {
  ExpectCheckOf(
      Bounded(2.0, 1.0, 1.5), false,
      {"LError: (Check Inputs) : Lower bound > Upper bound for Input (x - index=101)\n",
       "LWarn: (Check Inputs) : Initial value < Lower bound for Input (x - index=101)\n",
       "LWarn: (Check Inputs) : Initial value > Upper bound for Input (x - index=101)\n"});
}

TEST_F(InputCheck, EqualBoundsBesideTheInitialValueAreTwoWarnings) {
  ExpectCheckOf(
      Bounded(1.0, 1.0, 0.0), true,
      {"LWarn: (Check Inputs) : Lower bound = Upper bound for non-constant Input (x - "
       "index=101)\n",
       "LWarn: (Check Inputs) : Initial value < Lower bound for Input (x - index=101)\n"});
}

// ---- Discrete sets ----

TEST_F(InputCheck, DiscreteInputsNeedASet) {
  for (const int auxiliary : {0, -1}) {
    CInput input = Sound(1, "x", 4, auxiliary);
    input.m_nUserScale = 1;
    ExpectCheckOf(input, false,
                  {"LError: (Check Inputs): Input (x - index=101) is a discrete type but it does "
                   "not reference a discrete set specification\n",
                   scaleError});
    input.m_nType = 6;
    ExpectCheckOf(input, false,
                  {"LError: (Check Inputs): Input (x - index=101) is a combinatorial type but it "
                   "does not reference a discrete set specification\n"});
  }
}

TEST_F(InputCheck, ReferencedSetHasToExist) {
  PutSet(2, {0.0});
  CInput input = Sound(1, "x", 4, 1);
  input.m_nUserScale = 1;
  ExpectCheckOf(input, false,
                {"LError: (Check Inputs) : Referenced discrete set for Input (x - index=101) does "
                 "not exist\n",
                 scaleError});
  input.m_nType = 6;
  ExpectCheckOf(input, false,
                {"LError: (Check Inputs) : Referenced discrete set for Input (x - index=101) does "
                 "not exist\n"});
}

TEST_F(InputCheck, SetWithoutValuesStopsTheWholeCheck) {
  PutSet(9, {});
  CInput before = Bounded(1.0, 1.0, 1.0);
  before.PutObject();
  CInput later = Bounded(2.0, 1.0, 1.5);
  later.m_nID = 3;
  later.PutObject();
  for (const int kind : {4, 6}) {
    CInput input = Sound(2, "y", kind, 9);
    input.m_nUserScale = 1;
    ExpectCheckOf(input, false,
                  {"LWarn: (Check Inputs) : Lower bound = Upper bound for non-constant Input (x - "
                   "index=101)\n",
                   "LError: (Check Inputs) : Referenced discrete set for Input (y - index=102) is "
                   "not defined\n"});
  }
}

TEST_F(InputCheck, ALinkInPlaceOfASetHasNoValues) {
  PutLink(9, 2);
  ExpectCheckOf(Sound(1, "x", 4, 9), false,
                {"LError: (Check Inputs) : Referenced discrete set for Input (x - index=101) is "
                 "not defined\n"});
}

TEST_F(InputCheck, BoundsHaveToReachTheSet) {
  SetTask(2);
  PutSet(9, {10.0, 20.0, 30.0});
  for (const int kind : {4, 6}) {
    SCOPED_TRACE(kind);
    const auto bounded = [&](double lower, double upper) {
      CInput input = Sound(1, "x", kind, 9);
      input.m_fLower = lower;
      input.m_fUpper = upper;
      return input;
    };
    const Lines apart{
        "LError: (Check Inputs) : Bounds for Input (x - index=101) does not intersect the "
        "discrete set values.\n"};
    ExpectCheckOf(bounded(0.0, 10.0), true, {});
    ExpectCheckOf(bounded(0.0, Below(10.0)), false, apart);
    ExpectCheckOf(bounded(30.0, 40.0), true, {});
    ExpectCheckOf(bounded(Above(30.0), 40.0), false, apart);
    ExpectCheckOf(bounded(-1e29, 1e29), true, {});
    ExpectCheckOf(bounded(12.0, 13.0), true, {});
  }
}

TEST_F(InputCheck, BoundsApartFromTheSetDoNotEndTheCheckOfTheInput) {
  PutSet(9, {10.0});
  CInput input = Sound(1, "x", 4, 9);
  input.m_nUserScale = 1;
  ExpectCheckOf(input, false,
                {"LError: (Check Inputs) : Bounds for Input (x - index=101) does not intersect the "
                 "discrete set values.\n",
                 scaleError});
}

TEST_F(InputCheck, AuxiliariesOfOtherKindsDoNotMatter) {
  for (const int kind : {0, 5, 7}) ExpectCheckOf(Sound(1, "x", kind, 99), true, {});
}

// ---- Scaling ----

TEST_F(InputCheck, ScaleFactorHasToBeAboveZero) {
  for (const int kind : {0, 4, 5}) {
    SCOPED_TRACE(kind);
    CInput input = OfKind(kind);
    for (const int flag : {1, -1, 2}) {
      input.m_nUserScale = flag;
      input.m_fScale = 0.0;
      ExpectCheckOf(input, false, {scaleError});
      input.m_fScale = Below(0.0);
      ExpectCheckOf(input, false, {scaleError});
      input.m_fScale = Above(0.0);
      ExpectCheckOf(input, true, {});
    }
    input.m_nUserScale = 0;
    input.m_fScale = -1.0;
    ExpectCheckOf(input, true, {});
  }
}

TEST_F(InputCheck, ScaleFactorOfOtherKindsDoesNotMatter) {
  for (const int kind : {1, 2, 3, 6, 7}) {
    CInput input = OfKind(kind);
    input.m_nUserScale = 1;
    ExpectCheckOf(input, true, {});
  }
}

}  // namespace
