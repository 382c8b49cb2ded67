#include <gtest/gtest.h>

#include "results/DPoint.h"
#include "store/KestErr.h"
#include "task/DResp.h"
#include "tests/task/Definitions.h"

namespace {

auto SizeOf(unsigned long size) {
  return [size](auto& definition) { definition.m_uSize = size; };
}

auto Random(long parameter, unsigned long size = 1) {
  return [parameter, size](CResp& resp) {
    resp.m_nRandom = 1;
    resp.m_nRandomParam = parameter;
    resp.m_uSize = size;
  };
}

struct Arguments {
  Ints ids;
  Ints indexes;
  Ints lengths;

  template <class Definition>
  void operator()(Definition& definition) const {
    definition.m_vnArg = ids;
    definition.m_vnIdx = indexes;
    definition.m_vnLength = lengths;
  }
};

class TaskResponses : public Definitions {
 protected:
  /// Makes the table of design variables without which there is none of responses.
  void MakeNoVariables() { Task().SetupDVar(0, 0, 0, 0, 0, {}); }

  /// Inputs of every type, whose positions differ from one another where they can.
  void MakeAllVariables() {
    PutAuxiliary(31, 4, [](CAuxiliary& set) { set.m_vfValues = {1.0, 2.0}; });
    PutInput(21, 0, SizeOf(3));
    PutInput(22, 4, [](CInput& input) { input.m_nAuxID = 31; });
    PutInput(23, 5);
    PutInput(24, 1);
    PutInput(25, 2);
    PutInput(26, 3, SizeOf(2));
    PutInput(27, 6, [](CInput& input) { input.m_nAuxID = 31; });
    PutInput(34, 1);
    PutInput(35, 2);
    Task().SetupDVar(5, 2, 2, 3, 0, {22, 21, -1, -1, 23, 34, 24, 35, 25, 26, -1, 27});
  }

  /// Responses of every type, where 45 is linked and 47 synthetic.
  void PutAllResps() {
    PutResp(41, 0, SizeOf(2));
    PutResp(42, 0);
    PutResp(43, 3);
    PutResp(44, 1);
    PutResp(46, 2);
    PutResp(45, 1);
    PutResp(47, 2);
  }
  void SetupAllResps() { Task().SetupDResp(4, 2, 2, 0, {42, 41, -1, 43, 44, 45, 46, 47}); }
};

// ---- The entries ----

TEST_F(TaskResponses, OfEveryKindStandInTransferOrder) {
  MakeNoVariables();
  PutResp(11, 1, [](CResp& resp) { resp.m_nAuxID = 3; });
  PutResp(12, 0);
  PutResp(13, 2, [](CResp& resp) {
    resp.m_nAuxID = 5;
    resp.m_uSize = 2;
  });
  PutResp(14, 3);
  PutResp(15, 0, SizeOf(2));
  Task().SetupDResp(4, 1, 2, 0, {13, -1, 12, 14, 11, 15, -1});
  const auto resps = Stored<CDResp>();
  EXPECT_EQ(resps.m_nID, 7);
  EXPECT_EQ(resps.m_vnSeq, (Ints{0, 1, 0, 1, 0, 2, 3}));
  EXPECT_EQ(resps.m_vnType, (Ints{26, 26, 24, 24, 25, 24, 24}));
  EXPECT_EQ(resps.m_vnIndIDs, (Ints{12, 14, 15, 15}));
  EXPECT_EQ(resps.m_vnLinkIDs, (Ints{11}));
  EXPECT_EQ(resps.m_vnSynIDs, (Ints{13, 13}));
  EXPECT_EQ(resps.m_vstrIndName, (Texts{"R12", "R14", "R15_1", "R15_2"}));
  EXPECT_EQ(resps.m_vstrLinkName, (Texts{"R11"}));
  EXPECT_EQ(resps.m_vstrSynName, (Texts{"R13_1", "R13_2"}));
  EXPECT_EQ(resps.m_vnLinkRef, (Ints{3}));
  EXPECT_EQ(resps.m_vnSynRef, (Ints{5, 5}));
  EXPECT_EQ(resps.m_vnPassFail, (Ints{0, 1, 0, 0}));
  EXPECT_EQ(resps.m_mnLinkSubj, (IntRows{{}}));
  EXPECT_EQ(resps.m_mnLinkType, (IntRows{{}}));
  EXPECT_EQ(resps.m_mnSynSubj, (IntRows{{}, {}}));
  EXPECT_EQ(resps.m_mnSynType, (IntRows{{}, {}}));
  EXPECT_EQ(resps.m_mnSynLen, (IntRows{{}, {}}));
  EXPECT_EQ(resps.m_vnRandIndex, (Ints{}));
  EXPECT_EQ(resps.m_vnRBOParam, (Ints{}));
}

TEST_F(TaskResponses, ThatPassOrFailAreIndependent) {
  MakeNoVariables();
  PutResp(1, 3, SizeOf(2));
  PutResp(2, 0);
  Task().SetupDResp(3, 0, 0, 0, {1, -1, 2});
  EXPECT_EQ(Stored<CDResp>().m_vnType, (Ints{24, 24, 24}));
  EXPECT_EQ(Stored<CDResp>().m_vnPassFail, (Ints{1, 1, 0}));
}

TEST_F(TaskResponses, AreNumberedInArraysOfMoreThanOne) {
  MakeNoVariables();
  PutResp(1, 0, SizeOf(1));
  PutResp(2, 0, SizeOf(2));
  PutResp(3, 1, SizeOf(10));
  Task().SetupDResp(3, 10, 0, 0, {1, 2, -1, 3, -1, -1, -1, -1, -1, -1, -1, -1, -1});
  EXPECT_EQ(Stored<CDResp>().m_vstrIndName, (Texts{"R1", "R2_1", "R2_2"}));
  EXPECT_EQ(Stored<CDResp>().m_vstrLinkName, (Texts{"R3_1", "R3_2", "R3_3", "R3_4", "R3_5", "R3_6",
                                                    "R3_7", "R3_8", "R3_9", "R3_10"}));
}

TEST_F(TaskResponses, SkipWhatIsNoIDInTheTable) {
  MakeNoVariables();
  PutResp(1, 0);
  Task().SetupDResp(1, 0, 0, 0, {0, -1, -3, 1, 0});
  EXPECT_EQ(Stored<CDResp>().m_vnIndIDs, (Ints{1}));
}

TEST_F(TaskResponses, OfAnEmptyTableAreStoredToo) {
  MakeNoVariables();
  Task().SetupDResp(0, 0, 0, 0, {});
  EXPECT_EQ(Stored<CDResp>().m_vnType, (Ints{}));
}

TEST_F(TaskResponses, MadeAgainReplaceTheFirstOnes) {
  MakeNoVariables();
  PutResp(1, 0);
  PutResp(2, 1);
  Task().SetupDResp(1, 0, 0, 0, {1});
  Task().SetupDResp(0, 1, 0, 0, {2});
  EXPECT_EQ(CDResp(study.Pod()).CountObjects(), 1);
  EXPECT_EQ(Stored<CDResp>().m_vnType, (Ints{25}));
}

TEST_F(TaskResponses, WriteNoPoint) {
  MakeNoVariables();
  CDPoint first(study.Pod());
  first.m_nTaskID = 7;
  first.m_nPointID = 0;
  ASSERT_TRUE(first.RemoveObject());
  PutResp(1, 0);
  Task().SetupDResp(1, 0, 0, 0, {1});
  EXPECT_EQ(CDPoint(study.Pod()).CountObjects(), 0);
}

// ---- Random responses ----

TEST_F(TaskResponses, ThatAreRandomStandWithTheirParametersByElement) {
  MakeNoVariables();
  PutResp(51, 0, Random(0, 2));
  PutResp(52, 0, Random(-2, 2));
  PutResp(53, 0);
  Task().SetupDResp(5, 0, 0, 2, {51, -1, 52, -1, 53});
  const auto resps = Stored<CDResp>();
  EXPECT_EQ(resps.m_vnIndIDs, (Ints{51, 52, 51, 52, 53}));
  EXPECT_EQ(resps.m_vstrIndName, (Texts{"R51_1", "R52_1", "R51_2", "R52_2", "R53"}));
  EXPECT_EQ(resps.m_vnSeq, (Ints{0, 1, 2, 3, 4}));
  EXPECT_EQ(resps.m_vnRandIndex, (Ints{0, 0, 1, 1, -1}));
  EXPECT_EQ(resps.m_vnRBOParam, (Ints{0, -2, 0, -2, 0}));
}

TEST_F(TaskResponses, OfEachParameterFindTheirRandomNumber) {
  MakeNoVariables();
  PutResp(1, 0, Random(-1));
  PutResp(2, 0, Random(-2));
  PutResp(3, 0, Random(-3));
  PutResp(4, 0, Random(1));
  PutResp(5, 0, Random(2));
  PutResp(6, 0, Random(3));
  PutResp(7, 0, Random(0));
  PutResp(8, 0, Random(-1));
  Task().SetupDResp(8, 0, 0, 3, {1, 2, 3, 4, 5, 6, 7, 8});
  EXPECT_EQ(Stored<CDResp>().m_vnRandIndex, (Ints{0, 0, 0, 0, 0, 0, 1, 2}));
  EXPECT_EQ(Stored<CDResp>().m_vnRBOParam, (Ints{-1, -2, -3, 1, 2, 3, 0, -1}));
}

TEST_F(TaskResponses, OfARandomGroupMayDifferInKind) {
  MakeNoVariables();
  PutResp(1, 0, Random(0, 2));
  PutResp(2, 2, Random(-3, 2));
  Task().SetupDResp(2, 0, 2, 2, {1, -1, 2, -1});
  EXPECT_EQ(Stored<CDResp>().m_vnType, (Ints{24, 26, 24, 26}));
  EXPECT_EQ(Stored<CDResp>().m_vnSeq, (Ints{0, 0, 1, 1}));
  EXPECT_EQ(Stored<CDResp>().m_vnRandIndex, (Ints{0, 0, 1, 1}));
}

TEST_F(TaskResponses, OfASystemHaveARandomNumberOfTheirOwn) {
  MakeNoVariables();
  PutResp(1, 0, Random(0));
  PutResp(2, 0, Random(-4, 2));
  PutResp(3, 0, Random(-5));
  PutResp(4, 0, Random(-1));
  Task().SetupDResp(5, 0, 0, 5, {1, 2, -1, 3, 4});
  EXPECT_EQ(Stored<CDResp>().m_vnIndIDs, (Ints{1, 2, 2, 3, 4}));
  EXPECT_EQ(Stored<CDResp>().m_vnRandIndex, (Ints{0, 1, 2, 3, 4}));
  EXPECT_EQ(Stored<CDResp>().m_vnRBOParam, (Ints{0, -4, -4, -5, -1}));
}

TEST_F(TaskResponses, OfASystemTakeNoParametersBehindThem) {
  MakeNoVariables();
  for (const int system : {-4, -5}) {
    SCOPED_TRACE(system);
    PutResp(1, 0, Random(system));
    PutResp(2, 0, Random(-2));
    Task().SetupDResp(1, 0, 0, 1, {1, 2});
    EXPECT_EQ(Stored<CDResp>().m_vnIndIDs, (Ints{1}));
    EXPECT_EQ(Stored<CDResp>().m_vnRandIndex, (Ints{0}));
  }
}

TEST_F(TaskResponses, BehindAnOrdinaryOneAreNoParametersOfTheRandomOneBeforeIt) {
  MakeNoVariables();
  PutResp(1, 0, Random(0));
  PutResp(2, 0);
  PutResp(3, 0, Random(-2));
  Task().SetupDResp(2, 0, 0, 1, {1, 2, 3});
  EXPECT_EQ(Stored<CDResp>().m_vnIndIDs, (Ints{1, 2}));
}

TEST_F(TaskResponses, WithAParameterThatAreNotRandomStandAlone) {
  MakeNoVariables();
  PutResp(1, 0, Random(0));
  PutResp(2, 0, [](CResp& resp) { resp.m_nRandomParam = -2; });
  PutResp(3, 0, [](CResp& resp) { resp.m_nRandomParam = -4; });
  Task().SetupDResp(3, 0, 0, 1, {1, 2, 3});
  EXPECT_EQ(Stored<CDResp>().m_vnRandIndex, (Ints{0, -1, -1}));
  EXPECT_EQ(Stored<CDResp>().m_vnRBOParam, (Ints{0, 0, 0}));
}

// ---- Arguments ----

TEST_F(TaskResponses, ThatAreLinkedTakeAllVariablesAndIndependentResponses) {
  MakeAllVariables();
  PutAllResps();
  PutResp(45, 1,
          Arguments{{-21, -22, -23, -24, -25, -26, -27, 41, 42, 44, 46, 0},
                    {2, 0, 0, 0, 0, 1, 0, 1, 0, 1, 1, 1},
                    {}});
  SetupAllResps();
  const auto resps = Stored<CDResp>();
  EXPECT_EQ(resps.m_mnLinkSubj, (IntRows{{}, {3, 0, 4, 1, 1, 1, 2, 2, 0, 0, 0, 0}}));
  EXPECT_EQ(resps.m_mnLinkType, (IntRows{{}, {20, 20, 20, 21, 22, 23, 23, 24, 24, 0, 0, 0}}));
}

TEST_F(TaskResponses, ThatAreSyntheticTakeLinkedOnesAsWell) {
  MakeAllVariables();
  PutAllResps();
  PutResp(47, 2,
          Arguments{{-21, -22, -23, -24, -25, -26, -27, 41, 42, 45, 46, 0},
                    {1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
                    {2, 1, 1, 1, 1, 2, 1, 2, 1, 1, 1, 1}});
  SetupAllResps();
  const auto resps = Stored<CDResp>();
  EXPECT_EQ(resps.m_mnSynSubj, (IntRows{{}, {2, 0, 4, 1, 1, 0, 2, 1, 0, 1, 0, 0}}));
  EXPECT_EQ(resps.m_mnSynType, (IntRows{{}, {20, 20, 20, 21, 22, 23, 23, 24, 24, 25, 0, 0}}));
  EXPECT_EQ(resps.m_mnSynLen, (IntRows{{}, {2, 1, 1, 1, 1, 2, 1, 2, 1, 1, 0, 0}}));
}

TEST_F(TaskResponses, OfAnArrayHaveTheirArgumentsAtEachElement) {
  MakeAllVariables();
  const auto withSize = [](const Arguments& arguments) {
    return [arguments](CResp& resp) {
      resp.m_uSize = 2;
      arguments(resp);
    };
  };
  PutResp(1, 1, withSize({{-23}, {0}, {}}));
  PutResp(2, 2, withSize({{-22}, {0}, {1}}));
  Task().SetupDResp(0, 2, 2, 0, {1, -1, 2, -1});
  const auto resps = Stored<CDResp>();
  EXPECT_EQ(resps.m_mnLinkSubj, (IntRows{{4}, {4}}));
  EXPECT_EQ(resps.m_mnLinkType, (IntRows{{20}, {20}}));
  EXPECT_EQ(resps.m_mnSynSubj, (IntRows{{0}, {0}}));
  EXPECT_EQ(resps.m_mnSynType, (IntRows{{20}, {20}}));
  EXPECT_EQ(resps.m_mnSynLen, (IntRows{{1}, {1}}));
}

TEST_F(TaskResponses, ThatAreSyntheticMayTakeAnArgumentToItsEndAndNoFurther) {
  MakeAllVariables();
  PutResp(1, 2, Arguments{{-21}, {1}, {2}});
  Task().SetupDResp(0, 0, 1, 0, {1});
  EXPECT_EQ(Stored<CDResp>().m_mnSynLen, (IntRows{{2}}));
  PutResp(1, 2, Arguments{{-21}, {2}, {2}});
  ClearLog();
  EXPECT_THROW(Task().SetupDResp(0, 0, 1, 0, {1}), CIndexError);
  EXPECT_EQ(
      Messages(),
      (LogLines{
          {"LError", "Invalid synthetic function argument starting index/length combination\n", ""},
          {"LPrint", "     Synthetic response variable R1\n", ""},
          {"LPrint", "     Input argument X21 has total length of 3\n", ""},
          {"LPrint", "     but is specified with starting index 2 and length 2\n", ""},
          {"LPrint", "     This starting index/length combination will exceed the total\n", ""},
          {"LPrint", "     length of the argument\n", ""}}));
}

TEST_F(TaskResponses, ThatAreSyntheticRefuseAResponsePastItsEnd) {
  MakeNoVariables();
  PutResp(1, 0, SizeOf(2));
  PutResp(2, 2, Arguments{{1}, {0}, {3}});
  ClearLog();
  EXPECT_THROW(Task().SetupDResp(2, 0, 1, 0, {1, -1, 2}), CIndexError);
  ASSERT_EQ(Messages().size(), 6U);
  EXPECT_EQ(Messages()[2].text, "     Input argument R1 has total length of 2\n");
  EXPECT_EQ(Messages()[3].text, "     but is specified with starting index 0 and length 3\n");
  EXPECT_FALSE(IsStored<CDResp>());
}

TEST_F(TaskResponses, ThatAreSyntheticWithoutLengthsTakeNoElements) {
  MakeAllVariables();
  PutResp(1, 2, Arguments{{-21, -22}, {9, 0}, {}});
  Task().SetupDResp(0, 0, 1, 0, {1});
  const auto resps = Stored<CDResp>();
  EXPECT_EQ(resps.m_mnSynSubj, (IntRows{{10, 0}}));
  EXPECT_EQ(resps.m_mnSynType, (IntRows{{20, 20}}));
  EXPECT_EQ(resps.m_mnSynLen, (IntRows{{0, 0}}));
}

TEST_F(TaskResponses, ThatAreSyntheticRefuseANegativeIndexOrLength) {
  MakeAllVariables();
  for (const Arguments& hostile : {Arguments{{-21}, {-1}, {1}}, Arguments{{-21}, {3}, {-1}}}) {
    PutResp(1, 2, hostile);
    EXPECT_THROW(Task().SetupDResp(0, 0, 1, 0, {1}), CIndexError);
    EXPECT_FALSE(IsStored<CDResp>());
  }
}

// ---- Faults ----

TEST_F(TaskResponses, OfAnUnknownTypeAreRefused) {
  MakeNoVariables();
  for (const int type : {-1, 4}) {
    SCOPED_TRACE(type);
    PutResp(1, type);
    ClearLog();
    EXPECT_THROW(Task().SetupDResp(1, 0, 0, 0, {1}), CInvalidType);
    EXPECT_EQ(Messages(), (LogLines{{"LError", "Invalid Resp object type!\n", ""}}));
    EXPECT_FALSE(IsStored<CDResp>());
  }
}

TEST_F(TaskResponses, ThatAreMissingAreNotFound) {
  MakeNoVariables();
  PutResp(1, 0, Random(0));
  EXPECT_THROW(Task().SetupDResp(1, 0, 0, 0, {2}), CObjectNotFound);
  EXPECT_THROW(Task().SetupDResp(1, 0, 0, 1, {1, 2}), CObjectNotFound);
  EXPECT_FALSE(IsStored<CDResp>());
}

TEST_F(TaskResponses, WithAMissingArgumentAreRefused) {
  MakeNoVariables();
  for (const int argument : {-99, 99}) {
    SCOPED_TRACE(argument);
    PutResp(1, 1, Arguments{{argument}, {0}, {}});
    EXPECT_THROW(Task().SetupDResp(0, 1, 0, 0, {1}), CObjectNotFound);
    EXPECT_FALSE(IsStored<CDResp>());
  }
}

TEST_F(TaskResponses, NeedTheTasksDesignVariables) {
  PutResp(1, 0);
  EXPECT_THROW(Task().SetupDResp(1, 0, 0, 0, {1}), CObjectNotFound);
  EXPECT_FALSE(IsStored<CDResp>());
}

TEST_F(TaskResponses, NeedADatabase) {
  EXPECT_THROW(CTask().SetupDResp(0, 0, 0, 0, {}), CNoDatabaseOpen);
}

TEST_F(TaskResponses, ThatWereNotCountedAreRefused) {
  MakeNoVariables();
  PutResp(1, 0);
  EXPECT_THROW(Task().SetupDResp(0, 0, 0, 0, {1}), CInvalidArgument);
  EXPECT_THROW(Task().SetupDResp(0, 1, 0, 0, {1}), CInvalidArgument);
  EXPECT_THROW(Task().SetupDResp(-1, 0, 0, 0, {1}), CInvalidArgument);
  EXPECT_THROW(Task().SetupDResp(1, -1, 0, 0, {1}), CInvalidArgument);
  EXPECT_THROW(Task().SetupDResp(1, 0, -1, 0, {1}), CInvalidArgument);
}

TEST_F(TaskResponses, ThatFailLogWhereAndWhy) {
  ClearLog();
  EXPECT_THROW(Task().SetupDResp(0, 0, 0, 0, {}), CObjectNotFound);
  ASSERT_FALSE(Log().empty());
  EXPECT_EQ(Log().back().kind, "LException");
  EXPECT_EQ(Log().back().text, "Object not found");
}

}  // namespace
