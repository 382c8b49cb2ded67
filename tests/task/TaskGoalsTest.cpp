#include <gtest/gtest.h>

#include <cmath>
#include <valarray>

#include "control/DesignControl.h"
#include "store/KestErr.h"
#include "task/DCons.h"
#include "task/DObj.h"
#include "tests/task/Definitions.h"

namespace {

template <class Element>
std::vector<Element> AsVector(const std::valarray<Element>& elements) {
  return {std::begin(elements), std::end(elements)};
}

// ---- Constraints ----

auto Bounds(double lower, double upper, unsigned long size = 1) {
  return [=](CInput& input) {
    input.m_fLower = lower;
    input.m_fUpper = upper;
    input.m_uSize = size;
  };
}

auto Lower(double bound, unsigned long size = 1) {
  return [=](CResp& resp) {
    resp.m_nHasLower = 1;
    resp.m_fLower = bound;
    resp.m_uSize = size;
  };
}

auto Upper(double bound, unsigned long size = 1) {
  return [=](CResp& resp) {
    resp.m_nHasUpper = 1;
    resp.m_fUpper = bound;
    resp.m_uSize = size;
  };
}

class TaskConstraints : public Definitions {
 protected:
  CDCons Made(int count, const std::vector<int>& inputs, const std::vector<int>& resps) {
    Task().SetupDCons(count, inputs, resps);
    return Stored<CDCons>();
  }
};

TEST_F(TaskConstraints, AreTheBoundsOfLinkedAndSyntheticVariables) {
  PutInput(1, 1, Bounds(-5.0, 0.5, 2));
  PutInput(2, 2, Bounds(-0.5, 8.0));
  PutInput(3, 1, Bounds(1.0, 1.5));
  PutInput(4, 2, Bounds(-1.5, 2.0));
  const CDCons cons = Made(10, {1, -1, 2, 3, 4}, {});
  EXPECT_EQ(cons.m_nID, 7);
  EXPECT_EQ(cons.m_vnSubj, (Ints{0, 0, 1, 1, 0, 0, 2, 2, 1, 1}));
  EXPECT_EQ(cons.m_vnSubjType, (Ints{21, 21, 21, 21, 22, 22, 21, 21, 22, 22}));
  EXPECT_EQ(cons.m_vfBound, (Floats{-5.0, 0.5, -5.0, 0.5, -0.5, 8.0, 1.0, 1.5, -1.5, 2.0}));
  EXPECT_EQ(cons.m_vnMult, (Ints{-1, 1, -1, 1, -1, 1, -1, 1, -1, 1}));
  EXPECT_EQ(cons.m_vfScale, (Floats{5.0, 1.0, 5.0, 1.0, 1.0, 8.0, 1.0, 1.5, 1.5, 2.0}));
}

TEST_F(TaskConstraints, AreNoBoundsOfOtherVariables) {
  for (const int type : {0, 3, 4, 5, 6}) {
    SCOPED_TRACE(type);
    PutInput(1, type, Bounds(-1.0, 1.0, 2));
    EXPECT_EQ(Made(0, {1, -1}, {}).m_vnSubj, (Ints{}));
  }
}

TEST_F(TaskConstraints, OfVariablesLackABoundAtExactlyTheDefault) {
  const double justAbove = std::nextafter(-1e30, 0.0);
  const double justBelow = std::nextafter(-1e30, -1e31);
  PutInput(1, 1, Bounds(-1e30, 1e30));
  PutInput(2, 1, Bounds(justAbove, -justAbove));
  PutInput(3, 2, Bounds(justBelow, -justBelow));
  PutInput(4, 2, Bounds(-1e30, 0.0));
  PutInput(5, 2, Bounds(0.0, 1e30));
  const CDCons cons = Made(6, {1, 2, 3, 4, 5}, {});
  EXPECT_EQ(cons.m_vnSubj, (Ints{1, 1, 0, 0, 1, 2}));
  EXPECT_EQ(cons.m_vnMult, (Ints{-1, 1, -1, 1, 1, -1}));
  EXPECT_EQ(cons.m_vfBound, (Floats{justAbove, -justAbove, justBelow, -justBelow, 0.0, 0.0}));
  EXPECT_EQ(cons.m_vfScale, (Floats{-justAbove, -justAbove, -justBelow, -justBelow, 1.0, 1.0}));
}

TEST_F(TaskConstraints, OfVariablesTakeTheDefaultBoundOfTheOtherSide) {
  PutInput(1, 1, Bounds(1e30, -1e30));
  const CDCons cons = Made(2, {1}, {});
  EXPECT_EQ(cons.m_vfBound, (Floats{1e30, -1e30}));
  EXPECT_EQ(cons.m_vfScale, (Floats{1e30, 1e30}));
}

TEST_F(TaskConstraints, AreTheBoundsInForceOfEveryKindOfResponse) {
  PutResp(1, 0, Lower(-3.0));
  PutResp(2, 1, Upper(0.25, 2));
  PutResp(3, 3, [](CResp& resp) {
    Lower(0.5)(resp);
    Upper(1.0)(resp);
  });
  PutResp(4, 2, Upper(7.0));
  const CDCons cons = Made(6, {}, {1, 2, -1, 3, 4});
  EXPECT_EQ(cons.m_vnSubj, (Ints{0, 0, 1, 1, 1, 0}));
  EXPECT_EQ(cons.m_vnSubjType, (Ints{24, 25, 25, 24, 24, 26}));
  EXPECT_EQ(cons.m_vfBound, (Floats{-3.0, 0.25, 0.25, 0.5, 1.0, 7.0}));
  EXPECT_EQ(cons.m_vnMult, (Ints{-1, 1, 1, -1, 1, 1}));
  EXPECT_EQ(cons.m_vfScale, (Floats{3.0, 1.0, 1.0, 1.0, 1.0, 7.0}));
}

TEST_F(TaskConstraints, OfAnArrayGoElementByElement) {
  PutResp(1, 2, [](CResp& resp) {
    Lower(-2.0, 2)(resp);
    Upper(4.0, 2)(resp);
  });
  const CDCons cons = Made(4, {}, {1, -1});
  EXPECT_EQ(cons.m_vnSubj, (Ints{0, 0, 1, 1}));
  EXPECT_EQ(cons.m_vnMult, (Ints{-1, 1, -1, 1}));
}

TEST_F(TaskConstraints, OfAResponseThatIsNoneCountOnlyItsPositions) {
  const auto off = [](CResp& resp) {
    Lower(1.0, 3)(resp);
    Upper(2.0, 3)(resp);
    resp.m_nConstraint = 0;
  };
  PutResp(1, 0, off);
  PutResp(2, 1, off);
  PutResp(3, 2, off);
  PutResp(4, 3, off);
  PutResp(5, 0, Lower(1.0));
  PutResp(6, 1, Lower(1.0));
  PutResp(7, 2, Lower(1.0));
  const CDCons cons = Made(3, {}, {1, -1, -1, 2, -1, -1, 3, -1, -1, 4, -1, -1, 5, 6, 7});
  EXPECT_EQ(cons.m_vnSubj, (Ints{6, 3, 3}));
  EXPECT_EQ(cons.m_vnSubjType, (Ints{24, 25, 26}));
}

TEST_F(TaskConstraints, OfAResponseWithoutBoundsCountItsPositions) {
  PutResp(1, 0, [](CResp& resp) {
    resp.m_uSize = 2;
    resp.m_fLower = 1.0;
    resp.m_fUpper = 2.0;
  });
  PutResp(2, 0, Upper(1.0));
  const CDCons cons = Made(1, {}, {1, -1, 2});
  EXPECT_EQ(cons.m_vnSubj, (Ints{2}));
}

TEST_F(TaskConstraints, OfAResponseTakeTheUsersScaleOfEachSide) {
  const auto scaled = [](long lower, long upper) {
    return [=](CResp& resp) {
      Lower(-20.0)(resp);
      Upper(30.0)(resp);
      resp.m_nHasLowerScale = lower;
      resp.m_fLowerScale = 0.25;
      resp.m_nHasUpperScale = upper;
      resp.m_fUpperScale = -4.0;
    };
  };
  PutResp(1, 0, scaled(0, 0));
  PutResp(2, 0, scaled(1, 0));
  PutResp(3, 0, scaled(0, 1));
  PutResp(4, 0, scaled(-1, 2));
  EXPECT_EQ(Made(8, {}, {1, 2, 3, 4}).m_vfScale,
            (Floats{20.0, 30.0, 0.25, 30.0, 20.0, -4.0, 0.25, -4.0}));
}

TEST_F(TaskConstraints, OfInputsComeBeforeThoseOfResponses) {
  PutResp(1, 0, Lower(1.0));
  PutInput(2, 1, Bounds(2.0, 1e30));
  EXPECT_EQ(Made(2, {2}, {1}).m_vnSubjType, (Ints{21, 24}));
}

TEST_F(TaskConstraints, SkipWhatIsNoIDInTheTables) {
  PutInput(2, 1, Bounds(2.0, 1e30));
  PutResp(1, 0, Lower(1.0));
  EXPECT_EQ(Made(2, {0, -1, 2, -5}, {-1, 0, 1}).m_vnSubj, (Ints{0, 0}));
}

TEST_F(TaskConstraints, AreStoredAlsoWhenThereAreNone) {
  const CDCons cons = Made(0, {}, {});
  EXPECT_EQ(cons.m_vnSubj, (Ints{}));
  EXPECT_EQ(cons.m_vnSubjType, (Ints{}));
  EXPECT_EQ(cons.m_vfBound, (Floats{}));
  EXPECT_EQ(cons.m_vnMult, (Ints{}));
  EXPECT_EQ(cons.m_vfScale, (Floats{}));
}

TEST_F(TaskConstraints, HaveARowForEachThatWasCounted) {
  PutResp(1, 0, Lower(5.0));
  const CDCons cons = Made(2, {}, {1});
  EXPECT_EQ(cons.m_vnSubj, (Ints{0, 0}));
  EXPECT_EQ(cons.m_vnSubjType, (Ints{24, 0}));
  EXPECT_EQ(cons.m_vfBound, (Floats{5.0, 0.0}));
  EXPECT_EQ(cons.m_vnMult, (Ints{-1, 0}));
  EXPECT_EQ(cons.m_vfScale, (Floats{5.0, 0.0}));
}

TEST_F(TaskConstraints, ThatWereNotCountedAreRefused) {
  PutResp(1, 0, Lower(5.0));
  EXPECT_THROW(Task().SetupDCons(0, {}, {1}), CInvalidArgument);
  EXPECT_THROW(Task().SetupDCons(-1, {}, {}), CInvalidArgument);
  EXPECT_FALSE(IsStored<CDCons>());
}

TEST_F(TaskConstraints, OfAnUnknownInputAreRefused) {
  for (const int type : {-1, 7}) {
    SCOPED_TRACE(type);
    PutInput(1, type);
    ClearLog();
    EXPECT_THROW(Task().SetupDCons(0, {1}, {}), CInvalidType);
    EXPECT_EQ(
        Messages(),
        (LogLines{
            {"LError", "Invalid Input object type (code = " + std::to_string(type) + ")!\n", ""}}));
    EXPECT_FALSE(IsStored<CDCons>());
  }
}

TEST_F(TaskConstraints, OfAnUnknownResponseAreRefused) {
  for (const int type : {-1, 4}) {
    SCOPED_TRACE(type);
    PutResp(1, type);
    ClearLog();
    EXPECT_THROW(Task().SetupDCons(0, {}, {1}), CInvalidType);
    EXPECT_EQ(Messages(), (LogLines{{"LError", "Invalid Resp object type!\n", ""}}));
    EXPECT_FALSE(IsStored<CDCons>());
  }
}

TEST_F(TaskConstraints, OfMissingDefinitionsAreRefused) {
  EXPECT_THROW(Task().SetupDCons(0, {1}, {}), CObjectNotFound);
  EXPECT_THROW(Task().SetupDCons(0, {}, {1}), CObjectNotFound);
  EXPECT_THROW(CTask().SetupDCons(0, {}, {}), CNoDatabaseOpen);
  EXPECT_FALSE(IsStored<CDCons>());
}

TEST_F(TaskConstraints, AreFoundByKindAndPosition) {
  CDCons cons(study.Pod());
  cons.m_nID = 7;
  cons.SetSubj({3, 0, 5});
  cons.SetSubjType({24, 24, 26});
  cons.PutObject();
  CTask task;
  EXPECT_TRUE(task.IsRespConstrained(study.Pod(), 7, 3, 24));
  EXPECT_TRUE(task.IsRespConstrained(study.Pod(), 7, 0, 24));
  EXPECT_TRUE(task.IsRespConstrained(study.Pod(), 7, 5, 26));
  EXPECT_FALSE(task.IsRespConstrained(study.Pod(), 7, 3, 26));
  EXPECT_FALSE(task.IsRespConstrained(study.Pod(), 7, 5, 24));
  EXPECT_FALSE(task.IsRespConstrained(study.Pod(), 7, 1, 24));
  EXPECT_FALSE(task.IsRespConstrained(study.Pod(), 7, 0, 25));
}

TEST_F(TaskConstraints, CannotBeFoundInAMissingTable) {
  Task().SetupDCons(0, {}, {});
  EXPECT_FALSE(Task().IsRespConstrained(study.Pod(), 7, 0, 24));
  EXPECT_THROW(Task().IsRespConstrained(study.Pod(), 8, 0, 24), CObjectNotFound);
  EXPECT_THROW(Task().IsRespConstrained(nullptr, 7, 0, 24), CNoDatabaseOpen);
}

// ---- Objectives ----

/// Makes a definition an objective whose values follow from `number`.
auto Objective(int number, unsigned long size = 1) {
  return [=](auto& definition) {
    definition.m_nObjective = 1;
    definition.m_uSize = size;
    definition.m_nGoal = number % 3;
    definition.m_nHasWorst = number % 2;
    definition.m_fWorst = number + 0.25;
    definition.m_fWeight = number + 0.5;
    definition.m_fTarget = number + 0.75;
  };
}

class TaskObjectives : public Definitions {
 protected:
  CDObj Made(int count, const std::vector<int>& inputs, const std::vector<int>& resps) {
    Task().SetupDObj(count, inputs, resps);
    return Stored<CDObj>();
  }
};

TEST_F(TaskObjectives, TakeTheirTermsFromInputsAndThenResponses) {
  PutInput(1, 2, Objective(1));
  PutInput(2, 0, Objective(2, 2));
  PutInput(3, 1, Objective(3));
  PutResp(4, 2, Objective(4));
  PutResp(5, 3, Objective(5));
  PutResp(6, 1, Objective(6));
  const CDObj terms = Made(7, {1, 2, -1, 3}, {4, 5, 6});
  EXPECT_EQ(terms.m_nID, 7);
  EXPECT_EQ(terms.m_vnSubj, (Ints{0, 0, 1, 0, 0, 0, 0}));
  EXPECT_EQ(terms.m_vnSubjType, (Ints{22, 20, 20, 21, 26, 24, 25}));
  EXPECT_EQ(AsVector(terms.m_vnGoal), (Ints{1, 2, 2, 0, 1, 2, 0}));
  EXPECT_EQ(AsVector(terms.m_vnHasWorst), (Ints{1, 0, 0, 1, 0, 1, 0}));
  EXPECT_EQ(AsVector(terms.m_vfWorst), (Floats{1.25, 2.25, 2.25, 3.25, 4.25, 5.25, 6.25}));
  EXPECT_EQ(AsVector(terms.m_vfWeight), (Floats{1.5, 2.5, 2.5, 3.5, 4.5, 5.5, 6.5}));
  EXPECT_EQ(AsVector(terms.m_vfTarget), (Floats{1.75, 2.75, 2.75, 3.75, 4.75, 5.75, 6.75}));
}

TEST_F(TaskObjectives, CountThePositionsOfAKindAcrossItsTypes) {
  for (const int type : {0, 4, 5}) PutInput(1 + type, type, Objective(1));
  PutResp(1, 0, Objective(1));
  PutResp(2, 3, Objective(1));
  const CDObj terms = Made(5, {5, 1, 6}, {1, 2});
  EXPECT_EQ(terms.m_vnSubj, (Ints{0, 1, 2, 0, 1}));
  EXPECT_EQ(terms.m_vnSubjType, (Ints{20, 20, 20, 24, 24}));
}

TEST_F(TaskObjectives, CountThePositionsOfWhatIsNone) {
  const auto sized = [](auto& definition) { definition.m_uSize = 2; };
  for (const int type : {0, 1, 2, 3, 4, 5, 6}) PutInput(1 + type, type, sized);
  for (const int type : {0, 1, 2, 3}) PutResp(1 + type, type, sized);
  for (const int type : {0, 1, 2}) {
    PutInput(11 + type, type, Objective(1));
    PutResp(11 + type, type, Objective(1));
  }
  const CDObj terms = Made(6, {1, -1, 2, -1, 3, -1, 4, -1, 5, -1, 6, -1, 7, -1, 11, 12, 13},
                           {1, -1, 2, -1, 3, -1, 4, -1, 11, 12, 13});
  EXPECT_EQ(terms.m_vnSubj, (Ints{6, 2, 2, 4, 2, 2}));
  EXPECT_EQ(terms.m_vnSubjType, (Ints{20, 21, 22, 24, 25, 26}));
}

TEST_F(TaskObjectives, SkipWhatIsNoIDInTheTables) {
  PutInput(1, 0, Objective(1));
  PutResp(2, 0, Objective(2));
  EXPECT_EQ(Made(2, {-1, 0, 1}, {0, 2, -9}).m_vnSubj, (Ints{0, 0}));
}

TEST_F(TaskObjectives, AreStoredAlsoWhenThereAreNone) {
  const CDObj terms = Made(0, {}, {});
  EXPECT_EQ(terms.m_vnSubj, (Ints{}));
  EXPECT_EQ(terms.m_vnSubjType, (Ints{}));
  EXPECT_EQ(terms.m_vnGoal.size(), 0U);
  EXPECT_EQ(terms.m_vnHasWorst.size(), 0U);
  EXPECT_EQ(terms.m_vfWorst.size(), 0U);
  EXPECT_EQ(terms.m_vfWeight.size(), 0U);
  EXPECT_EQ(terms.m_vfTarget.size(), 0U);
}

TEST_F(TaskObjectives, CannotBeConstants) {
  PutInput(1, 3, Objective(1));
  ClearLog();
  EXPECT_THROW(Task().SetupDObj(1, {1}, {}), CInvalidType);
  EXPECT_EQ(Messages(), (LogLines{{"LError", "A constant design variable cannot be part\n", ""},
                                  {"LPrint", "     of the objective function\n", ""}}));
  EXPECT_FALSE(IsStored<CDObj>());
}

TEST_F(TaskObjectives, CannotBeConstantsEvenIfTheInputsPassTheirCheck) {
  CDesignControl(study.Pod()).PutObject();
  PutInput(1, 3, [](CInput& input) {
    Objective(0)(input);
    input.m_nHasWorst = 1;
    input.m_uIndex = 1;
  });
  ClearLog();
  ASSERT_TRUE(CInput::CheckInputs(study.Pod())) << PrintedLog();
  EXPECT_THROW(Task().SetupDObj(1, {1}, {}), CInvalidType);
}

TEST_F(TaskObjectives, CannotBeCombinatorial) {
  PutInput(1, 6, Objective(1));
  ClearLog();
  EXPECT_THROW(Task().SetupDObj(1, {1}, {}), CInvalidType);
  EXPECT_EQ(Messages(),
            (LogLines{{"LError", "A combinatorial design variable cannot be part\n", ""},
                      {"LPrint", "     of the objective function\n", ""}}));
  EXPECT_FALSE(IsStored<CDObj>());
}

TEST_F(TaskObjectives, OfAnUnknownInputAreRefused) {
  for (const int type : {-1, 7}) {
    SCOPED_TRACE(type);
    PutInput(1, type, Objective(1));
    ClearLog();
    EXPECT_THROW(Task().SetupDObj(1, {1}, {}), CInvalidType);
    EXPECT_EQ(
        Messages(),
        (LogLines{
            {"LError", "Invalid Input object type (code = " + std::to_string(type) + ")!\n", ""}}));
    EXPECT_FALSE(IsStored<CDObj>());
  }
}

TEST_F(TaskObjectives, OfAnUnknownResponseAreRefused) {
  for (const int type : {-1, 4}) {
    SCOPED_TRACE(type);
    PutResp(1, type, Objective(1));
    ClearLog();
    EXPECT_THROW(Task().SetupDObj(1, {}, {1}), CInvalidType);
    EXPECT_EQ(Messages(), (LogLines{{"LError", "Invalid Resp object type!\n", ""}}));
    EXPECT_FALSE(IsStored<CDObj>());
  }
}

TEST_F(TaskObjectives, OfMissingDefinitionsAreRefused) {
  EXPECT_THROW(Task().SetupDObj(0, {1}, {}), CObjectNotFound);
  EXPECT_THROW(Task().SetupDObj(0, {}, {1}), CObjectNotFound);
  EXPECT_THROW(CTask().SetupDObj(0, {}, {}), CNoDatabaseOpen);
  EXPECT_FALSE(IsStored<CDObj>());
}

TEST_F(TaskObjectives, ThatWereNotCountedAreRefused) {
  PutInput(1, 0, Objective(1));
  EXPECT_THROW(Task().SetupDObj(0, {1}, {}), CInvalidArgument);
  EXPECT_THROW(Task().SetupDObj(-1, {}, {}), CInvalidArgument);
  EXPECT_FALSE(IsStored<CDObj>());
}

}  // namespace
