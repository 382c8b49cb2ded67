#include <climits>

#include "store/KestErr.h"
#include "tests/task/Variables.h"

// The arguments of a task's linked and synthetic variables, and its random variables.

namespace {

class TaskVarsArguments : public Variables {
 protected:
  /// Independent 1 (two elements), discrete 2, integer 3, constant 4 (three elements),
  /// combinatorial 5, link 6 and equation 7.
  void PutOneOfEach() {
    PutAuxiliary(30, 4, [](CAuxiliary& set) { set.m_vfValues = {0.0}; });
    const auto size = [](unsigned long elements) {
      return [elements](CInput& input) {
        input.m_uSize = elements;
        input.m_nAuxID = 30;
      };
    };
    PutInput(1, 0, size(2));
    PutInput(2, 4, size(1));
    PutInput(3, 5, size(1));
    PutInput(4, 3, size(3));
    PutInput(5, 6, size(1));
    PutInput(6, 1, size(1));
    PutInput(7, 2, size(1));
  }
  void PutFunction(int id, int type, const Ints& arguments, const Ints& indexes = {},
                   const Ints& lengths = {}, unsigned long size = 1) {
    PutInput(id, type, [&](CInput& input) {
      input.m_vnArg = arguments;
      input.m_vnIdx = indexes.empty() ? Ints(arguments.size(), 0) : indexes;
      input.m_vnLength = lengths.empty() ? Ints(arguments.size(), 1) : lengths;
      input.m_uSize = size;
    });
  }
  /// The rest of a study with one of each and Input 8 of that type, `elements` of it.
  CDVar MakeWith(int type, int elements = 1) {
    std::vector<int> ids{8, 6, 7, 5, 4, -1, -1, 3, 2, 1, -1};
    ids.insert(ids.begin() + 1, static_cast<std::size_t>(elements) - 1, -1);
    return Make({4, type == 1 ? 1 + elements : 1, type == 2 ? 1 + elements : 1, 4}, ids);
  }
  void PutRandom(int id, int type, int parameter, int distribution = 0, unsigned long size = 1) {
    PutInput(id, type, [=](CInput& input) {
      input.m_nRandom = 1;
      input.m_nRandomParam = parameter;
      input.m_nDistribution = distribution;
      input.m_uSize = size;
    });
  }
};

// ---- Links ----

TEST_F(TaskVarsArguments, OfALinkAreIndependentVariablesAndConstants) {
  PutOneOfEach();
  PutFunction(8, 1, {-1, -2, -3, -4}, {1, 0, 0, 2});
  const CDVar vars = MakeWith(1);
  EXPECT_EQ(vars.m_vnIndIDs, (Ints{3, 2, 1, 1}));
  EXPECT_EQ(vars.m_vnConstIDs, (Ints{5, 4, 4, 4}));
  EXPECT_EQ(vars.m_mnLinkSubj, (IntRows{{3, 1, 0, 3}, {}}));
  EXPECT_EQ(vars.m_mnLinkType, (IntRows{{20, 20, 20, 23}, {}}));
  EXPECT_EQ(vars.m_mnSynSubj, IntRows{{}});
}

TEST_F(TaskVarsArguments, OfALinkThatItCannotTakeStayZero) {
  PutOneOfEach();
  PutResp(1, 0);
  PutFunction(8, 1, {-6, -7, -5, 1, 0, -2}, {1, 1, 1, 1, 1, 0});
  const CDVar vars = MakeWith(1);
  EXPECT_EQ(vars.m_mnLinkSubj, (IntRows{{0, 0, 0, 0, 0, 1}, {}}));
  EXPECT_EQ(vars.m_mnLinkType, (IntRows{{0, 0, 0, 0, 0, 20}, {}}));
}

TEST_F(TaskVarsArguments, OfALinkHaveNoLengths) {
  PutOneOfEach();
  PutFunction(8, 1, {-1}, {0}, {100});
  EXPECT_EQ(MakeWith(1).m_mnLinkSubj, (IntRows{{2}, {}}));
}

TEST_F(TaskVarsArguments, OfAnArrayStandOncePerScalar) {
  PutOneOfEach();
  PutFunction(8, 1, {-1, -4}, {1, 0}, {}, 3);
  CDVar vars = MakeWith(1, 3);
  EXPECT_EQ(vars.m_vnLinkIDs, (Ints{8, 8, 8, 6}));
  EXPECT_EQ(vars.m_mnLinkSubj, (IntRows{{3, 1}, {3, 1}, {3, 1}, {}}));
  EXPECT_EQ(vars.m_mnLinkType, (IntRows{{20, 23}, {20, 23}, {20, 23}, {}}));
  PutFunction(8, 2, {-1, -4}, {0, 0}, {2, 3}, 2);
  vars = MakeWith(2, 2);
  EXPECT_EQ(vars.m_vnSynIDs, (Ints{8, 8, 7}));
  EXPECT_EQ(vars.m_mnSynSubj, (IntRows{{2, 1}, {2, 1}, {}}));
  EXPECT_EQ(vars.m_mnSynType, (IntRows{{20, 23}, {20, 23}, {}}));
  EXPECT_EQ(vars.m_mnSynLen, (IntRows{{2, 3}, {2, 3}, {}}));
}

// ---- Synthetic functions ----

TEST_F(TaskVarsArguments, OfASyntheticVariableAreAlsoLinks) {
  PutOneOfEach();
  PutFunction(8, 2, {-6, -4, -3, -2, -1}, {0, 1, 0, 0, 0}, {1, 2, 1, 1, 2});
  const CDVar vars = MakeWith(2);
  EXPECT_EQ(vars.m_mnSynSubj, (IntRows{{0, 2, 0, 1, 2}, {}}));
  EXPECT_EQ(vars.m_mnSynType, (IntRows{{21, 23, 20, 20, 20}, {}}));
  EXPECT_EQ(vars.m_mnSynLen, (IntRows{{1, 2, 1, 1, 2}, {}}));
  EXPECT_EQ(vars.m_mnLinkSubj, IntRows{{}});
}

TEST_F(TaskVarsArguments, OfASyntheticVariableThatItCannotTakeStayZero) {
  PutOneOfEach();
  PutResp(1, 0);
  PutResp(2, 1);
  PutFunction(8, 2, {-7, -5, -8, 1, 2, 0, -2}, {}, {9, 9, 9, 1, 1, 9, 1});
  const CDVar vars = MakeWith(2);
  EXPECT_EQ(vars.m_mnSynSubj, (IntRows{{0, 0, 0, 0, 0, 0, 1}, {}}));
  EXPECT_EQ(vars.m_mnSynType, (IntRows{{0, 0, 0, 0, 0, 0, 20}, {}}));
  EXPECT_EQ(vars.m_mnSynLen, (IntRows{{0, 0, 0, 0, 0, 0, 1}, {}}));
}

TEST_F(TaskVarsArguments, OfASyntheticVariableWithoutLengthsHaveLengthZero) {
  PutOneOfEach();
  PutInput(8, 2, [](CInput& input) {
    input.m_vnArg = {-1, -4};
    input.m_vnIdx = {1, 2};
  });
  const CDVar vars = MakeWith(2);
  EXPECT_EQ(vars.m_mnSynSubj, (IntRows{{3, 3}, {}}));
  EXPECT_EQ(vars.m_mnSynType, (IntRows{{20, 23}, {}}));
  EXPECT_EQ(vars.m_mnSynLen, (IntRows{{0, 0}, {}}));
}

TEST_F(TaskVarsArguments, PastTheEndOfTheirArrayAreReported) {
  PutOneOfEach();
  PutFunction(8, 2, {-2, -4}, {0, 1}, {1, 3});
  ClearLog();
  EXPECT_THROW(MakeWith(2), CIndexError);
  EXPECT_EQ(
      Messages(),
      (LogLines{
          {"LError", "Invalid synthetic function argument starting index/length combination\n", "",
           0},
          {"LPrint", "     Synthetic design variable X8\n", "", 0},
          {"LPrint", "     Input argument X4 has total length of 3\n", "", 0},
          {"LPrint", "     but is specified with starting index 1 and length 3\n", "", 0},
          {"LPrint", "     This starting index/length combination will exceed the total\n", "", 0},
          {"LPrint", "     length of the argument\n", "", 0}}));
  ExpectNothingMade();
}

TEST_F(TaskVarsArguments, ThatAreMissingAreNotFound) {
  PutOneOfEach();
  for (const int type : {1, 2}) {
    for (const int argument : {-9, 9, -INT_MAX}) {
      PutFunction(8, type, {-2, argument});
      EXPECT_THROW(MakeWith(type), CObjectNotFound) << type << ' ' << argument;
    }
  }
  ExpectNothingMade();
}

TEST_F(TaskVarsArguments, OfAnIDThatHasNoNegationAreNotFound) {
  PutOneOfEach();
  PutFunction(8, 1, {INT_MIN});
  EXPECT_THROW(MakeWith(1), CObjectNotFound);
}

TEST_F(TaskVarsArguments, ThatStandInNoTableAreNotFound) {
  PutOneOfEach();
  PutInput(9, 0);
  for (const int type : {1, 2}) {
    PutFunction(8, type, {-9});
    EXPECT_THROW(MakeWith(type), CObjectNotFound) << type;
  }
  ExpectNothingMade();
}

TEST_F(TaskVarsArguments, OfAPassFailResponseAreRefused) {
  PutOneOfEach();
  PutResp(1, 3);
  for (const int type : {1, 2}) {
    PutFunction(8, type, {1});
    ClearLog();
    EXPECT_THROW(MakeWith(type), CInvalidType) << type;
    EXPECT_EQ(Messages(), (LogLines{{"LError", "Invalid Resp object type!\n", "", 0}}));
  }
}

TEST_F(TaskVarsArguments, WithoutIndexesAndLengthsOfTheirOwnAreTheFirstElement) {
  PutOneOfEach();
  PutInput(8, 2, [](CInput& input) {
    input.m_vnArg = {-1, -4};
    input.m_vnIdx = {1};
    input.m_vnLength = {1};
  });
  const CDVar vars = MakeWith(2);
  EXPECT_EQ(vars.m_mnSynSubj, (IntRows{{3, 1}, {}}));
  EXPECT_EQ(vars.m_mnSynLen, (IntRows{{1, 1}, {}}));
}

// ---- Random variables ----

TEST_F(TaskVarsArguments, RandomVariablesAreAParentWithItsChildren) {
  PutInput(1, 0);
  PutRandom(2, 0, -1, 3);
  PutRandom(3, 3, 1);
  PutRandom(4, 3, -2);
  PutInput(5, 3);
  PutRandom(6, 5, 0, 2);
  const CDVar vars = Make({3, 0, 0, 3, 2}, {1, 2, 3, 4, 5, 6});
  EXPECT_EQ(vars.m_vnType, (Ints{20, 20, 23, 23, 23, 20}));
  EXPECT_EQ(vars.m_vnSeq, (Ints{0, 1, 0, 1, 2, 2}));
  EXPECT_EQ(vars.m_vnRandIndex, (Ints{-1, 0, 0, 0, -1, 1}));
  EXPECT_EQ(vars.m_vnRandParam, (Ints{0, -1, 1, -2, 0, 0}));
  EXPECT_EQ(vars.m_vnRandDist, (Ints{3, 2}));
}

TEST_F(TaskVarsArguments, RandomArraysAreInterleavedWithTheirChildren) {
  PutRandom(5, 0, 0, 1, 3);
  PutRandom(2, 3, 1, 7, 3);
  PutRandom(9, 0, 2, 8, 3);
  PutInput(4, 0);
  const CDVar vars = Make({7, 0, 0, 3, 3}, {5, -1, -1, 2, -1, -1, 9, -1, -1, 4});
  EXPECT_EQ(vars.m_vnType, (Ints{20, 23, 20, 20, 23, 20, 20, 23, 20, 20}));
  EXPECT_EQ(vars.m_vnSeq, (Ints{0, 0, 1, 2, 1, 3, 4, 2, 5, 6}));
  EXPECT_EQ(vars.m_vnIndIDs, (Ints{5, 9, 5, 9, 5, 9, 4}));
  EXPECT_EQ(vars.m_vnConstIDs, (Ints{2, 2, 2}));
  EXPECT_EQ(vars.m_vstrIndName, (Texts{"X5_1", "X9_1", "X5_2", "X9_2", "X5_3", "X9_3", "X4"}));
  EXPECT_EQ(vars.m_vstrConstName, (Texts{"X2_1", "X2_2", "X2_3"}));
  EXPECT_EQ(vars.m_vnRandIndex, (Ints{0, 0, 0, 1, 1, 1, 2, 2, 2, -1}));
  EXPECT_EQ(vars.m_vnRandParam, (Ints{0, 1, 2, 0, 1, 2, 0, 1, 2, 0}));
  EXPECT_EQ(vars.m_vnRandDist, (Ints{1, 1, 1}));
}

TEST_F(TaskVarsArguments, ChildrenHaveAsManyEntriesAsTheirParentHasElements) {
  PutRandom(1, 0, 0, 0, 2);
  PutRandom(2, 3, 1);
  const CDVar vars = Make({2, 0, 0, 2, 2}, {1, -1, 2});
  EXPECT_EQ(vars.m_vstrIndName, (Texts{"X1_1", "X1_2"}));
  EXPECT_EQ(vars.m_vstrConstName, (Texts{"X2", "X2"}));
  EXPECT_EQ(vars.m_vnType, (Ints{20, 23, 20, 23}));
}

TEST_F(TaskVarsArguments, RandomParentsSideBySideAreApart) {
  PutRandom(1, 0, 0, 2);
  PutRandom(2, 0, -1, 1);
  PutRandom(3, 3, 3);
  PutRandom(4, 0, 0, 0);
  const CDVar vars = Make({3, 0, 0, 1, 3}, {1, 2, 3, 4});
  EXPECT_EQ(vars.m_vnRandIndex, (Ints{0, 1, 1, 2}));
  EXPECT_EQ(vars.m_vnRandParam, (Ints{0, -1, 3, 0}));
  EXPECT_EQ(vars.m_vnRandDist, (Ints{2, 1, 0}));
}

TEST_F(TaskVarsArguments, ChildrenBehindAnInputThatIsNotRandomAreNoEntries) {
  PutRandom(1, 0, 0);
  PutInput(2, 3);
  PutRandom(3, 3, 1);
  const CDVar vars = Make({1, 0, 0, 1, 1}, {1, 2, 3});
  EXPECT_EQ(vars.m_vnConstIDs, Ints{2});
  EXPECT_EQ(vars.m_vnRandIndex, (Ints{0, -1}));
}

TEST_F(TaskVarsArguments, AParameterWithoutTheFlagIsNotRandom) {
  PutRandom(1, 0, 0);
  PutInput(2, 3, [](CInput& input) { input.m_nRandomParam = 1; });
  const CDVar vars = Make({1, 0, 0, 1, 1}, {1, 2});
  EXPECT_EQ(vars.m_vnRandIndex, (Ints{0, -1}));
  EXPECT_EQ(vars.m_vnRandParam, (Ints{0, 0}));
}

TEST_F(TaskVarsArguments, NothingRandomLeavesTheRandomVectorsEmpty) {
  PutOneOfEach();
  PutFunction(8, 1, {});
  const CDVar vars = MakeWith(1);
  EXPECT_TRUE(vars.m_vnRandIndex.empty());
  EXPECT_TRUE(vars.m_vnRandParam.empty());
  EXPECT_TRUE(vars.m_vnRandDist.empty());
}

TEST_F(TaskVarsArguments, ARandomInputThatWasNotCountedIsRefused) {
  PutRandom(1, 0, 0);
  EXPECT_THROW(Make({1}, {1}), CInvalidArgument);
  ExpectNothingMade();
}

TEST_F(TaskVarsArguments, OfInterleavedArraysCountPositionsFromTheFirst) {
  PutRandom(1, 0, 0, 0, 2);
  PutRandom(2, 0, 1, 0, 2);
  PutFunction(3, 1, {-1, -2, -1}, {0, 0, 1});
  const CDVar vars = Make({4, 1, 0, 0, 2}, {1, -1, 2, -1, 3});
  EXPECT_EQ(vars.m_vnIndIDs, (Ints{1, 2, 1, 2}));
  EXPECT_EQ(vars.m_mnLinkSubj, (IntRows{{0, 1, 1}}));
}

TEST_F(TaskVarsArguments, OfAMissingChildAreNotFound) {
  PutRandom(1, 0, 0);
  EXPECT_THROW(Make({1, 0, 0, 1, 1}, {1, 2}), CObjectNotFound);
  ExpectNothingMade();
}

}  // namespace
