#include <filesystem>
#include <limits>
#include <ostream>

#include "store/KestErr.h"
#include "tests/task/Variables.h"

// How Inputs become a task's design variables.

namespace {

using Values = std::vector<double>;

class TaskVars : public Variables {
 protected:
  struct Fitted {
    double lower;
    double upper;
    double value;
    bool operator==(const Fitted&) const = default;
    friend std::ostream& operator<<(std::ostream& stream, const Fitted& fitted) {
      return stream << fitted.lower << " to " << fitted.upper << ", at " << fitted.value;
    }
  };

  /// What becomes of bounds and initial value of a discrete (4) or an integer (5) Input.
  Fitted Fit(int type, double lower, double upper, double initial) {
    PutInput(1, type, [=](CInput& input) {
      input.m_nAuxID = 30;
      input.m_fLower = lower;
      input.m_fUpper = upper;
      input.m_fInitial = initial;
    });
    const CDVar vars = Make({1}, {1});
    EXPECT_EQ(AsList(vars.m_vfIndLowerIn), Floats{lower});
    EXPECT_EQ(AsList(vars.m_vfIndUpperIn), Floats{upper});
    EXPECT_EQ(vars.m_vnDiscreteRef, Ints{type == 4 ? 30 : -1});
    return {vars.m_vfIndLower[0], vars.m_vfIndUpper[0], FirstPoint().m_IDVar[0]};
  }
  void PutSet(const Floats& values) {
    PutAuxiliary(30, 4, [&values](CAuxiliary& set) { set.m_vfValues = values; });
  }
  /// An Input with bounds -ID and ID and an initial value of ID / 2.
  void PutBounded(int id, int type, const std::function<void(CInput&)>& change = {}) {
    PutInput(id, type, [&](CInput& input) {
      input.m_fLower = -1.0 * id;
      input.m_fUpper = 1.0 * id;
      input.m_fInitial = 0.5 * id;
      if (change) change(input);
    });
  }
};

// ---- Kinds and names ----

TEST_F(TaskVars, OfNoInputsAreEmpty) {
  ExpectSameVariables(Make({}, {}), Expected());
  const CDPoint point = FirstPoint();
  EXPECT_EQ(point.m_IDVar.size() + point.m_LDVar.size(), 0U);
  EXPECT_EQ(point.m_SDVar.size() + point.m_CDVar.size(), 0U);
}

TEST_F(TaskVars, OfAContinuousInput) {
  PutBounded(12, 0);
  CDVar expected = Expected();
  expected.m_vnSeq = {0};
  expected.m_vnType = {20};
  expected.m_vnIndIDs = {12};
  expected.m_vfIndLowerIn = {-12.0};
  expected.m_vfIndLower = {-12.0};
  expected.m_vfIndUpperIn = {12.0};
  expected.m_vfIndUpper = {12.0};
  expected.m_vfIndScale = {0.0};
  expected.m_vstrIndName = {"X12"};
  expected.m_vnDiscreteRef = {0};
  ExpectSameVariables(Make({1}, {12}), expected);
  EXPECT_EQ(AsList(FirstPoint().m_IDVar), Values{6.0});
}

TEST_F(TaskVars, OfALinkedInput) {
  PutBounded(12, 1, [](CInput& input) { input.m_nAuxID = 5; });
  CDVar expected = Expected();
  expected.m_vnSeq = {0};
  expected.m_vnType = {21};
  expected.m_vnLinkIDs = {12};
  expected.m_vfLinkLower = {-12.0};
  expected.m_vfLinkUpper = {12.0};
  expected.m_vstrLinkName = {"X12"};
  expected.m_vnLinkRef = {5};
  expected.m_mnLinkSubj = {{}};
  expected.m_mnLinkType = {{}};
  ExpectSameVariables(Make({0, 1}, {12}), expected);
  EXPECT_EQ(AsList(FirstPoint().m_LDVar), Values{0.0});
}

TEST_F(TaskVars, OfASyntheticInput) {
  PutBounded(12, 2, [](CInput& input) { input.m_nAuxID = 5; });
  CDVar expected = Expected();
  expected.m_vnSeq = {0};
  expected.m_vnType = {22};
  expected.m_vnSynIDs = {12};
  expected.m_vfSynLower = {-12.0};
  expected.m_vfSynUpper = {12.0};
  expected.m_vstrSynName = {"X12"};
  expected.m_vnSynRef = {5};
  expected.m_mnSynSubj = {{}};
  expected.m_mnSynType = {{}};
  expected.m_mnSynLen = {{}};
  ExpectSameVariables(Make({0, 0, 1}, {12}), expected);
  EXPECT_EQ(AsList(FirstPoint().m_SDVar), Values{0.0});
}

TEST_F(TaskVars, OfAConstantAndACombinatorialInput) {
  PutBounded(12, 3, [](CInput& input) { input.m_nAuxID = 5; });
  PutBounded(4, 6, [](CInput& input) { input.m_nAuxID = 9; });
  CDVar expected = Expected();
  expected.m_vnSeq = {0, 1};
  expected.m_vnType = {23, 23};
  expected.m_vnConstIDs = {12, 4};
  expected.m_vstrConstName = {"X12", "X4"};
  expected.m_vnConstSet = {0, 9};
  expected.m_vfConstLower = {-12.0, -4.0};
  expected.m_vfConstUpper = {12.0, 4.0};
  ExpectSameVariables(Make({0, 0, 0, 2}, {12, 4}), expected);
  EXPECT_EQ(AsList(FirstPoint().m_CDVar), (Values{6.0, 2.0}));
}

TEST_F(TaskVars, StandInTransferOrderWithAPositionInTheirKind) {
  const std::vector<int> types{6, 1, 0, 2, 5, 3, 1, 4, 2, 0};
  for (int id = 1; id <= 10; ++id) {
    PutBounded(id, types[static_cast<std::size_t>(id - 1)],
               [](CInput& input) { input.m_nAuxID = 30; });
  }
  PutSet({-3.0, 3.0});
  CDVar expected = Expected();
  // Of the Inputs 7 2 9 1 10 3 4 8 6 5, so that IDs and order differ.
  expected.m_vnSeq = {0, 1, 0, 0, 0, 1, 1, 2, 1, 3};
  expected.m_vnType = {21, 21, 22, 23, 20, 20, 22, 20, 23, 20};
  expected.m_vnIndIDs = {10, 3, 8, 5};
  expected.m_vnLinkIDs = {7, 2};
  expected.m_vnSynIDs = {9, 4};
  expected.m_vnConstIDs = {1, 6};
  expected.m_vfIndLowerIn = {-10.0, -3.0, -8.0, -5.0};
  expected.m_vfIndLower = {-10.0, -3.0, -3.0, -5.0};
  expected.m_vfIndUpperIn = {10.0, 3.0, 8.0, 5.0};
  expected.m_vfIndUpper = {10.0, 3.0, 3.0, 5.0};
  expected.m_vfIndScale = {0.0, 0.0, 0.0, 0.0};
  expected.m_vfLinkLower = {-7.0, -2.0};
  expected.m_vfLinkUpper = {7.0, 2.0};
  expected.m_vfSynLower = {-9.0, -4.0};
  expected.m_vfSynUpper = {9.0, 4.0};
  expected.m_vstrIndName = {"X10", "X3", "X8", "X5"};
  expected.m_vstrLinkName = {"X7", "X2"};
  expected.m_vstrSynName = {"X9", "X4"};
  expected.m_vstrConstName = {"X1", "X6"};
  expected.m_vnConstSet = {30, 0};
  expected.m_vfConstLower = {-1.0, -6.0};
  expected.m_vfConstUpper = {1.0, 6.0};
  expected.m_vnLinkRef = {30, 30};
  expected.m_vnSynRef = {30, 30};
  expected.m_mnLinkSubj = expected.m_mnLinkType = {{}, {}};
  expected.m_mnSynSubj = expected.m_mnSynType = expected.m_mnSynLen = {{}, {}};
  expected.m_vnDiscreteRef = {0, 0, 30, -1};
  ExpectSameVariables(Make({4, 2, 2, 2}, {7, 2, 9, 1, 10, 3, 4, 8, 6, 5}), expected);
  const CDPoint point = FirstPoint();
  EXPECT_EQ(AsList(point.m_IDVar), (Values{5.0, 1.5, 3.0, 2.5}));
  EXPECT_EQ(AsList(point.m_LDVar), (Values{0.0, 0.0}));
  EXPECT_EQ(AsList(point.m_SDVar), (Values{0.0, 0.0}));
  EXPECT_EQ(AsList(point.m_CDVar), (Values{0.5, 3.0}));
}

TEST_F(TaskVars, OfAnArrayAreOneForEachElement) {
  const auto array = [](CInput& input) {
    input.m_uSize = 3;
    input.m_nUserScale = 1;
    input.m_fScale = 8.0;
  };
  PutBounded(5, 0);
  PutBounded(6, 0, array);
  CDVar expected = Expected();
  expected.m_vnSeq = {0, 1, 2, 3};
  expected.m_vnType = {20, 20, 20, 20};
  expected.m_vnIndIDs = {6, 6, 6, 5};
  expected.m_vfIndLowerIn = expected.m_vfIndLower = {-6.0, -6.0, -6.0, -5.0};
  expected.m_vfIndUpperIn = expected.m_vfIndUpper = {6.0, 6.0, 6.0, 5.0};
  expected.m_vfIndScale = {8.0, 8.0, 8.0, 0.0};
  expected.m_vstrIndName = {"X6_1", "X6_2", "X6_3", "X5"};
  expected.m_vnDiscreteRef = {0, 0, 0, 0};
  ExpectSameVariables(Make({4}, {6, -1, -1, 5}), expected);
  EXPECT_EQ(AsList(FirstPoint().m_IDVar), (Values{3.0, 3.0, 3.0, 2.5}));
}

TEST_F(TaskVars, OfArraysOfEveryKind) {
  PutSet({-1.0, 1.0});
  for (const int type : {1, 2, 3, 4, 5, 6}) {
    PutBounded(type, type, [](CInput& input) {
      input.m_uSize = 2;
      input.m_nAuxID = 30;
    });
  }
  const CDVar vars = Make({4, 2, 2, 4}, {1, -1, 2, -1, 3, -1, 4, -1, 5, -1, 6, -1});
  EXPECT_EQ(vars.m_vnSeq, (Ints{0, 1, 0, 1, 0, 1, 0, 1, 2, 3, 2, 3}));
  EXPECT_EQ(vars.m_vnType, (Ints{21, 21, 22, 22, 23, 23, 20, 20, 20, 20, 23, 23}));
  EXPECT_EQ(vars.m_vstrLinkName, (Texts{"X1_1", "X1_2"}));
  EXPECT_EQ(vars.m_vstrSynName, (Texts{"X2_1", "X2_2"}));
  EXPECT_EQ(vars.m_vstrConstName, (Texts{"X3_1", "X3_2", "X6_1", "X6_2"}));
  EXPECT_EQ(vars.m_vstrIndName, (Texts{"X4_1", "X4_2", "X5_1", "X5_2"}));
  EXPECT_EQ(vars.m_vnLinkIDs, (Ints{1, 1}));
  EXPECT_EQ(vars.m_vnSynIDs, (Ints{2, 2}));
  EXPECT_EQ(vars.m_vnConstIDs, (Ints{3, 3, 6, 6}));
  EXPECT_EQ(vars.m_vnIndIDs, (Ints{4, 4, 5, 5}));
  EXPECT_EQ(vars.m_vnDiscreteRef, (Ints{30, 30, -1, -1}));
  EXPECT_EQ(AsList(vars.m_vnConstSet), (Ints{0, 0, 30, 30}));
  EXPECT_EQ(AsList(vars.m_vfIndUpper), (Floats{1.0, 1.0, 5.0, 5.0}));
  EXPECT_EQ(vars.m_vnLinkRef, (Ints{30, 30}));
  EXPECT_EQ(vars.m_vnSynRef, (Ints{30, 30}));
  EXPECT_EQ(AsList(FirstPoint().m_IDVar), (Values{1.0, 1.0, 2.5, 2.5}));
  EXPECT_EQ(AsList(FirstPoint().m_CDVar), (Values{1.5, 1.5, 3.0, 3.0}));
}

TEST_F(TaskVars, OfSizeOneKeepTheNameBareAndOfSizeTwoTheyAreNumbered) {
  PutInput(1, 0, [](CInput& input) { input.m_strName = "bare"; });
  PutInput(2, 0, [](CInput& input) {
    input.m_strName = "pair";
    input.m_uSize = 2;
  });
  EXPECT_EQ(Make({3}, {1, 2, -1}).m_vstrIndName, (Texts{"bare", "pair_1", "pair_2"}));
}

TEST_F(TaskVars, TakeEveryNameAsItStands) {
  const std::string longName(200, 'n');
  PutInput(1, 3, [&](CInput& input) {
    input.m_strName = longName;
    input.m_uSize = 11;
  });
  PutInput(2, 3, [](CInput& input) { input.m_strName = ""; });
  PutInput(3, 3, [](CInput& input) { input.m_strName = "100%d_1"; });
  const CDVar vars = Make({0, 0, 0, 13}, {1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 3});
  EXPECT_EQ(vars.m_vstrConstName[10], longName + "_11");
  EXPECT_EQ(vars.m_vstrConstName[11], "");
  EXPECT_EQ(vars.m_vstrConstName[12], "100%d_1");
}

TEST_F(TaskVars, OfAnInputWithoutElementsAreNone) {
  PutInput(1, 0, [](CInput& input) { input.m_uSize = 0; });
  PutInput(2, 0);
  EXPECT_EQ(Make({1}, {1, 2}).m_vnIndIDs, Ints{2});
}

TEST_F(TaskVars, SkipPlacesWithoutAPositiveID) {
  PutInput(1, 0);
  PutInput(2, 0);
  EXPECT_EQ(Make({2}, {-1, 0, 2, -5, std::numeric_limits<int>::min(), 1, 0}).m_vnIndIDs,
            (Ints{2, 1}));
}

TEST_F(TaskVars, HaveAScaleOnlyWhereTheUserGaveOne) {
  const auto scale = [](int flag, double factor) {
    return [flag, factor](CInput& input) {
      input.m_nUserScale = flag;
      input.m_fScale = factor;
    };
  };
  PutInput(1, 0, scale(0, 10.0));
  PutInput(2, 0, scale(1, 10.0));
  PutInput(3, 5, scale(-2, -0.5));
  PutInput(4, 0, scale(1, 0.0));
  EXPECT_EQ(AsList(Make({4}, {1, 2, 3, 4}).m_vfIndScale), (Floats{0.0, 10.0, -0.5, 0.0}));
}

TEST_F(TaskVars, LeaveAContinuousValueOutsideItsBounds) {
  PutInput(1, 0, [](CInput& input) {
    input.m_fLower = 1.5;
    input.m_fUpper = 2.5;
    input.m_fInitial = 99.25;
  });
  const CDVar vars = Make({1}, {1});
  EXPECT_EQ(vars.m_vfIndLower[0], 1.5);
  EXPECT_EQ(vars.m_vfIndUpper[0], 2.5);
  EXPECT_EQ(AsList(FirstPoint().m_IDVar), Values{99.25});
}

// ---- Integers ----

TEST_F(TaskVars, OfIntegersHaveWholeBounds) {
  EXPECT_EQ(Fit(5, -2.5, 2.5, 0.0), (Fitted{-1.0, 2.0, 0.0}));
  EXPECT_EQ(Fit(5, -2.0, 2.0, 0.0), (Fitted{-2.0, 2.0, 0.0}));
  EXPECT_EQ(Fit(5, 1.5, 4.9, 3.0), (Fitted{2.0, 4.0, 3.0}));
  EXPECT_EQ(Fit(5, 0.001, 7.0, 3.0), (Fitted{1.0, 7.0, 3.0}));
  EXPECT_EQ(Fit(5, -0.5, 0.5, 0.0), (Fitted{0.0, 0.0, 0.0}));
  EXPECT_EQ(Fit(5, -1.5, 9.0, 0.0), (Fitted{0.0, 9.0, 0.0}));
  EXPECT_EQ(Fit(5, -9.0, -2.5, -4.0), (Fitted{-9.0, -2.0, -4.0}));
}

TEST_F(TaskVars, OfIntegersStayWithinThirtyTwoBits) {
  EXPECT_EQ(Fit(5, -1e30, 1e30, 0.0), (Fitted{-2147483600.0, 2147483600.0, 0.0}));
  EXPECT_EQ(Fit(5, -2147483601.0, 2147483601.0, 0.0), (Fitted{-2147483600.0, 2147483600.0, 0.0}));
  EXPECT_EQ(Fit(5, -2147483600.0, 2147483600.0, 0.0), (Fitted{-2147483600.0, 2147483600.0, 0.0}));
  EXPECT_EQ(Fit(5, -2147483599.0, 2147483599.0, 0.0), (Fitted{-2147483599.0, 2147483599.0, 0.0}));
}

TEST_F(TaskVars, OfIntegersHaveNoUpperBoundBelowTheLower) {
  EXPECT_EQ(Fit(5, 2.25, 2.75, 2.5), (Fitted{3.0, 3.0, 3.0}));
  EXPECT_EQ(Fit(5, 5.0, 1.0, 2.0), (Fitted{5.0, 5.0, 5.0}));
  EXPECT_EQ(Fit(5, 3e9, 4e9, 0.0), (Fitted{3e9, 3e9, 3e9}));
  EXPECT_EQ(Fit(5, -4e9, -3e9, 0.0), (Fitted{-2147483600.0, -2147483600.0, -2147483600.0}));
  EXPECT_EQ(Fit(5, -3.5, -2.5, 0.0), (Fitted{-2.0, -2.0, -2.0}));
}

TEST_F(TaskVars, OfIntegersStartBetweenTheirBounds) {
  EXPECT_EQ(Fit(5, -2.5, 2.5, -1.25).value, -1.0);
  EXPECT_EQ(Fit(5, -2.5, 2.5, 2.25).value, 2.0);
  EXPECT_EQ(Fit(5, -2.5, 2.5, -1.0).value, -1.0);
  EXPECT_EQ(Fit(5, -2.5, 2.5, 2.0).value, 2.0);
  EXPECT_EQ(Fit(5, -2.5, 2.5, 0.75).value, 0.75);
  EXPECT_EQ(Fit(5, -1e30, 1e30, 1e20).value, 2147483600.0);
  EXPECT_EQ(Fit(5, -1e30, 1e30, -1e20).value, -2147483600.0);
}

// ---- Discrete sets ----

TEST_F(TaskVars, OfADiscreteInputHaveMembersForBounds) {
  PutSet({1.0, 2.0, 4.0, 8.0});
  EXPECT_EQ(Fit(4, 1.0, 8.0, 4.0), (Fitted{1.0, 8.0, 4.0}));
  EXPECT_EQ(Fit(4, 1.5, 7.5, 4.0), (Fitted{2.0, 4.0, 4.0}));
  EXPECT_EQ(Fit(4, 2.0, 4.0, 4.0), (Fitted{2.0, 4.0, 4.0}));
  EXPECT_EQ(Fit(4, -1e30, 1e30, 4.0), (Fitted{1.0, 8.0, 4.0}));
  EXPECT_EQ(Fit(4, 0.0, 9.0, 4.0), (Fitted{1.0, 8.0, 4.0}));
  EXPECT_EQ(Fit(4, 4.0, 4.0, 4.0), (Fitted{4.0, 4.0, 4.0}));
}

TEST_F(TaskVars, OfADiscreteInputAboveItsSetTakeTheLastMember) {
  PutSet({1.0, 2.0, 4.0, 8.0});
  EXPECT_EQ(Fit(4, 9.0, 10.0, 9.5), (Fitted{8.0, 8.0, 8.0}));
}

TEST_F(TaskVars, OfADiscreteInputBelowItsSetTakeTheFirstMember) {
  PutSet({1.0, 2.0, 4.0, 8.0});
  EXPECT_EQ(Fit(4, -3.0, 0.5, 0.0), (Fitted{1.0, 1.0, 1.0}));
  EXPECT_EQ(Fit(4, 3.0, 0.5, 3.5), (Fitted{4.0, 1.0, 4.0}));
}

TEST_F(TaskVars, OfADiscreteInputBetweenTwoMembersHaveTheirBoundsSwapped) {
  PutSet({1.0, 2.0, 4.0, 8.0});
  EXPECT_EQ(Fit(4, 2.5, 3.5, 3.0), (Fitted{4.0, 2.0, 4.0}));
  EXPECT_EQ(Fit(4, 2.5, 3.5, 5.0), (Fitted{4.0, 2.0, 2.0}));
}

TEST_F(TaskVars, OfADiscreteInputStartBetweenTheirBounds) {
  PutSet({1.0, 2.0, 4.0, 8.0});
  EXPECT_EQ(Fit(4, 1.5, 7.5, 1.75).value, 2.0);
  EXPECT_EQ(Fit(4, 1.5, 7.5, 7.0).value, 4.0);
  EXPECT_EQ(Fit(4, 1.5, 7.5, 3.0).value, 3.0);
}

TEST_F(TaskVars, OfADiscreteInputTakeTheSetInItsOwnOrder) {
  PutSet({5.0, 1.0, 9.0, 3.0});
  EXPECT_EQ(Fit(4, 2.0, 8.0, 5.0), (Fitted{5.0, 1.0, 1.0}));
  PutSet({3.0});
  EXPECT_EQ(Fit(4, 2.0, 8.0, 5.0), (Fitted{3.0, 3.0, 3.0}));
}

TEST_F(TaskVars, OfADiscreteInputNeedItsSet) {
  for (const int set : {30, 0, -1}) {
    PutInput(1, 4, [set](CInput& input) { input.m_nAuxID = set; });
    EXPECT_THROW(Make({1}, {1}), CObjectNotFound) << set;
  }
  PutSet({});
  PutInput(1, 4, [](CInput& input) { input.m_nAuxID = 30; });
  EXPECT_THROW(Make({1}, {1}), CInvalidArgument);
  ExpectNothingMade();
}

// ---- What is stored ----

TEST_F(TaskVars, AreStoredUnderTheTaskWithItsFirstPoint) {
  PutInput(1, 0);
  CTask task = Task();
  task.m_nID = 8;
  task.SetupDVar(1, 0, 0, 0, 0, {1});
  EXPECT_FALSE(IsStored<CDVar>());
  CDPoint point(study.Pod());
  point.m_nTaskID = 8;
  ASSERT_TRUE(point.GetObject());
  EXPECT_EQ(point.m_nPointFlag, 0);
  EXPECT_EQ(point.m_IDVar.size(), 1U);
  EXPECT_EQ(point.m_IResp.size() + point.m_LResp.size() + point.m_SResp.size(), 0U);
  EXPECT_EQ(point.CountObjects(), 1);
  EXPECT_EQ(CDVar(study.Pod()).CountObjects(), 1);
  study.Reopen();
  CDVar vars(study.Pod());
  vars.m_nID = 8;
  ASSERT_TRUE(vars.GetObject());
  EXPECT_EQ(vars.m_vstrIndName, Texts{"X1"});
}

TEST_F(TaskVars, ReplaceThoseOfAnEarlierAttempt) {
  PutInput(1, 0);
  PutInput(2, 3);
  Make({1, 0, 0, 1}, {1, 2});
  const CDVar vars = Make({0, 0, 0, 1}, {2});
  EXPECT_EQ(vars.m_vnType, Ints{23});
  EXPECT_TRUE(vars.m_vnIndIDs.empty());
  EXPECT_EQ(FirstPoint().m_IDVar.size(), 0U);
  EXPECT_EQ(CDPoint(study.Pod()).CountObjects(), 1);
  EXPECT_EQ(CDVar(study.Pod()).CountObjects(), 1);
}

TEST_F(TaskVars, AreNotTouchedByLaterDefinitions) {
  PutInput(1, 0);
  Make({1}, {1});
  PutInput(1, 0, [](CInput& input) { input.m_strName = "changed"; });
  EXPECT_EQ(Stored<CDVar>().m_vstrIndName, Texts{"X1"});
}

// ---- Failures ----

TEST_F(TaskVars, OfAMissingInputAreNotMade) {
  PutInput(1, 0);
  EXPECT_THROW(Make({2}, {1, 2}), CObjectNotFound);
  ExpectNothingMade();
}

TEST_F(TaskVars, OfAnUnknownTypeAreNotMade) {
  for (const int type : {7, -1}) {
    PutInput(1, type);
    ClearLog();
    EXPECT_THROW(Make({1}, {1}), CInvalidType) << type;
    EXPECT_EQ(Messages(), (LogLines{{"LError", "Invalid Input object type!\n", "", 0}}));
  }
  ExpectNothingMade();
}

TEST_F(TaskVars, AreNotMadeOfMoreElementsThanCounted) {
  for (const int type : {0, 1, 2, 3, 5}) {
    PutInput(1, type, [](CInput& input) { input.m_uSize = 2; });
    for (const Counts& counts : {Counts{1}, Counts{0, 1}, Counts{0, 0, 1}, Counts{0, 0, 0, 1}}) {
      EXPECT_THROW(Make(counts, {1, -1}), CInvalidArgument) << type;
    }
  }
  PutInput(1, 0, [](CInput& input) { input.m_uSize = 0xFFFFFFFFUL; });
  EXPECT_THROW(Make({5}, {1}), CInvalidArgument);
  ExpectNothingMade();
}

TEST_F(TaskVars, AreNotMadeOfNegativeCounts) {
  for (const Counts& counts : {Counts{-1}, Counts{0, -1}, Counts{0, 0, -1}, Counts{0, 0, 0, -1}}) {
    EXPECT_THROW(Make(counts, {}), CInvalidArgument);
  }
  ExpectNothingMade();
}

TEST_F(TaskVars, NeedADatabase) {
  CTask task;
  task.m_nID = 7;
  EXPECT_THROW(task.SetupDVar(0, 0, 0, 0, 0, {}), CNoDatabaseOpen);
}

TEST_F(TaskVars, AreMadeUnderTheLockOnly) {
  std::filesystem::create_directory(study.LockPath());
  EXPECT_THROW(Task().SetupDVar(0, 0, 0, 0, 0, {}), CFileLock);
  std::filesystem::remove(study.LockPath());
  ExpectNothingMade();
}

TEST_F(TaskVars, NeedATaskID) {
  CTask task(study.Pod());
  EXPECT_THROW(task.SetupDVar(0, 0, 0, 0, 0, {}), CInvalidKey);
}

}  // namespace
