#include "task/DResp.h"

#include <gtest/gtest.h>

#include <string>
#include <valarray>
#include <vector>

#include "store/KestErr.h"
#include "task/DCons.h"
#include "tests/task/DRespColumns.h"
#include "tests/task/VersionedObjectTests.h"

namespace {

INSTANTIATE_TYPED_TEST_SUITE_P(OfResponses, TaskObjects, CDResp);

using Integers = std::vector<int>;
using Reals = std::vector<double>;

CDResp Filled() {
  return FilledTable<CDResp>(nullptr);
}
CDResp Empty() {
  return CDResp(static_cast<POD*>(nullptr));
}

TEST(Responses, HaveTheirClassConstants) {
  EXPECT_EQ(CDResp::m_nDRESP_VER, 4);
  EXPECT_EQ(CDResp::m_nDRESP_INDX, 4);
  EXPECT_EQ(CDResp::m_nDRESP_ID, 5000);
  EXPECT_EQ(CDResp::m_strCLASS_NAME, "CDResp");
}

// ---- Columns ----

TEST(Responses, GivePositionsAndKindsInAnArrayOfTheirSize) {
  for (std::valarray<int> numbers : {std::valarray<int>(), std::valarray<int>(77, 9)}) {
    Filled().GetSeq(numbers);
    EXPECT_EQ(AsVector(numbers), (Integers{0, 0, 1, 0}));
    Filled().GetType(numbers);
    EXPECT_EQ(AsVector(numbers), (Integers{24, 25, 24, 26}));
    Empty().GetSeq(numbers);
    EXPECT_EQ(numbers.size(), 0U);
    Empty().GetType(numbers);
    EXPECT_EQ(numbers.size(), 0U);
  }
}

TEST(Responses, GiveNumbersInAVectorOfTheirSize) {
  for (Integers numbers : {Integers{}, Integers(9, 77)}) {
    Filled().GetType(numbers);
    EXPECT_EQ(numbers, (Integers{24, 25, 24, 26}));
    Filled().GetIndIDs(numbers);
    EXPECT_EQ(numbers, (Integers{31, 32}));
    Filled().GetLinkIDs(numbers);
    EXPECT_EQ(numbers, Integers{41});
    Filled().GetSynIDs(numbers);
    EXPECT_EQ(numbers, Integers{51});
    Filled().GetRBOParams(numbers);
    EXPECT_EQ(numbers, (Integers{0, -4, -1, 0}));
    Empty().GetRBOParams(numbers);
    EXPECT_TRUE(numbers.empty());
  }
}

// ---- Rows of arguments ----

struct RowGetter {
  void (CDResp::*get)(int, Integers&) const;
  std::vector<std::vector<vbINT32>> CDResp::*rows;
  std::string assertion;
};

const RowGetter rowGetters[] = {
    {&CDResp::GetLinkSubj, &CDResp::m_mnLinkSubj, "i < m_mnLinkSubj.size\\(\\)"},
    {&CDResp::GetLinkSubjType, &CDResp::m_mnLinkType, "i < m_mnLinkType.size\\(\\)"},
    {&CDResp::GetSynSubj, &CDResp::m_mnSynSubj, "i < m_mnSynSubj.size\\(\\)"},
    {&CDResp::GetSynSubjType, &CDResp::m_mnSynType, "i < m_mnSynType.size\\(\\)"},
    {&CDResp::GetSynSubjLength, &CDResp::m_mnSynLen, "i < m_mnSynLen.size\\(\\)"},
};

TEST(Responses, GiveARowOfArguments) {
  for (const RowGetter& getter : rowGetters) {
    SCOPED_TRACE(getter.assertion);
    CDResp resps = Empty();
    resps.*getter.rows = {{1, -2, 3}, {}, {2147483647}};
    for (Integers row : {Integers{}, Integers(9, 77)}) {
      (resps.*getter.get)(0, row);
      EXPECT_EQ(row, (Integers{1, -2, 3}));
      (resps.*getter.get)(1, row);
      EXPECT_TRUE(row.empty());
      (resps.*getter.get)(2, row);
      EXPECT_EQ(row, (Integers{2147483647}));
    }
  }
}

TEST(ResponsesDeathTest, StopWhereThereIsNoRow) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  Integers row;
  for (const RowGetter& getter : rowGetters) {
    CDResp resps = Empty();
    EXPECT_DEATH((resps.*getter.get)(0, row), getter.assertion);
    resps.*getter.rows = {{1}, {2}};
    EXPECT_DEATH((resps.*getter.get)(2, row), getter.assertion);
    EXPECT_DEATH((resps.*getter.get)(-1, row), "i >= 0");
  }
}

// ---- Names ----

TEST(Responses, GiveNamesByKindAndPosition) {
  const CDResp resps = Filled();
  EXPECT_EQ(resps.GetName(24, 0), "ab");
  EXPECT_EQ(resps.GetName(24, 1), "");
  EXPECT_EQ(resps.GetName(25, 0), "l");
  EXPECT_EQ(resps.GetName(26, 0), "sy");
}

TEST(Responses, GiveAnEmptyNameForAnotherKind) {
  for (const int kind : {20, 21, 22, 23, 27, 0, -1}) EXPECT_EQ(Filled().GetName(kind, 0), "");
}

TEST(Responses, TakeNamesByPosition) {
  CDResp resps = Filled();
  resps.SetIndName("first", 1);
  resps.SetLinkName("second", 0);
  resps.SetSynName("", 0);
  EXPECT_EQ(resps.m_vstrIndName, (std::vector<std::string>{"ab", "first"}));
  EXPECT_EQ(resps.m_vstrLinkName, (std::vector<std::string>{"second"}));
  EXPECT_EQ(resps.m_vstrSynName, (std::vector<std::string>{""}));
}

TEST(Responses, HaveNoNamesOutsideTheirTables) {
  CDResp resps = Filled();
  for (const int i : {-1, 2, 2147483647, -2147483647 - 1}) {
    for (const int kind : {24, 25, 26}) EXPECT_THROW(resps.GetName(kind, i), CInvalidArgument);
    EXPECT_THROW(resps.SetIndName("x", i), CInvalidArgument);
    EXPECT_THROW(resps.SetLinkName("x", i), CInvalidArgument);
    EXPECT_THROW(resps.SetSynName("x", i), CInvalidArgument);
  }
  ExpectFilled(resps);
}

// ---- Bounds ----

class ResponseBounds : public testing::Test {
 protected:
  /// Two independent responses, one linked and one synthetic.
  ResponseBounds() {
    resps.m_nID = 7;
    resps.m_vnIndIDs = {31, 32};
    resps.m_vnLinkIDs = {41};
    resps.m_vnSynIDs = {51};
    cons.m_nID = 7;
  }

  void Add(int kind, int position, int sign, double bound, double scale) {
    cons.m_vnSubjType.push_back(kind);
    cons.m_vnSubj.push_back(position);
    cons.m_vnMult.push_back(sign);
    cons.m_vfBound.push_back(bound);
    cons.m_vfScale.push_back(scale);
  }
  void Get() {
    cons.PutObject();
    GetStored();
  }
  void GetStored() {
    resps.GetConstrBounds(bounds[0], bounds[1], bounds[2], bounds[3], bounds[4], bounds[5],
                          bounds[6], bounds[7], bounds[8], bounds[9], bounds[10], bounds[11]);
  }

  Study study;
  CDResp resps{study.Pod()};
  CDCons cons{study.Pod()};
  std::vector<Reals> bounds = std::vector<Reals>(12, Reals(9, 77.0));
};

TEST_F(ResponseBounds, AreAbsentWithoutConstraints) {
  Get();
  for (std::size_t i = 0; i < 12; ++i) EXPECT_EQ(bounds[i].size(), i < 4 ? 2U : 1U) << i;
  for (const std::size_t i : {1U, 3U}) EXPECT_EQ(bounds[i], (Reals{-1.0, -1.0}));
  for (const std::size_t i : {5U, 7U, 9U, 11U}) EXPECT_EQ(bounds[i], (Reals{-1.0}));
}

TEST_F(ResponseBounds, StandByKindPositionAndSide) {
  Add(24, 1, -1, -2.0, 3.0);
  Add(24, 0, 1, 4.0, 5.0);
  Add(25, 0, -1, 6.0, 7.0);
  Add(25, 0, 1, 8.0, 9.0);
  Add(26, 0, 1, 10.0, 11.0);
  Get();
  EXPECT_EQ(bounds[0][1], -2.0);
  EXPECT_EQ(bounds[1], (Reals{-1.0, 3.0}));
  EXPECT_EQ(bounds[2][0], 4.0);
  EXPECT_EQ(bounds[3], (Reals{5.0, -1.0}));
  EXPECT_EQ(bounds[4], Reals{6.0});
  EXPECT_EQ(bounds[5], Reals{7.0});
  EXPECT_EQ(bounds[6], Reals{8.0});
  EXPECT_EQ(bounds[7], Reals{9.0});
  EXPECT_EQ(bounds[9], Reals{-1.0});
  EXPECT_EQ(bounds[10], Reals{10.0});
  EXPECT_EQ(bounds[11], Reals{11.0});
}

TEST_F(ResponseBounds, PassOverConstraintsOnVariables) {
  Add(21, 0, -1, 1.0, 2.0);
  Add(22, 0, 1, 3.0, 4.0);
  Add(23, 99, 1, 3.0, 4.0);
  Get();
  for (const std::size_t i : {1U, 3U, 5U, 7U, 9U, 11U}) {
    for (const double scale : bounds[i]) EXPECT_EQ(scale, -1.0);
  }
}

TEST_F(ResponseBounds, AreRefusedForAnUnknownKind) {
  for (const int kind : {20, 27, 0, -1, 2147483647}) {
    cons.SetDefaultAttributes();
    cons.m_nID = 7;
    Add(kind, 0, 1, 1.0, 1.0);
    try {
      Get();
      ADD_FAILURE() << kind;
    } catch (const CInvalidType& error) {
      EXPECT_STREQ(error.what(), "Object type is invalid");
    }
  }
}

TEST_F(ResponseBounds, AreRefusedForAPositionOutsideTheKind) {
  for (const int position : {-1, 1, 2147483647}) {
    cons.m_vnSubj.clear();
    cons.m_vnSubjType.clear();
    Add(26, position, 1, 1.0, 1.0);
    EXPECT_THROW(Get(), CInvalidArgument) << position;
  }
}

TEST_F(ResponseBounds, AreRefusedForColumnsOfDifferentLengths) {
  for (const auto column : {&CDCons::m_vnSubj, &CDCons::m_vnMult}) {
    cons.SetDefaultAttributes();
    cons.m_nID = 7;
    Add(24, 0, 1, 1.0, 1.0);
    (cons.*column).clear();
    EXPECT_THROW(Get(), CInvalidArgument);
  }
  for (const auto column : {&CDCons::m_vfBound, &CDCons::m_vfScale}) {
    cons.SetDefaultAttributes();
    cons.m_nID = 7;
    Add(24, 0, 1, 1.0, 1.0);
    (cons.*column).clear();
    EXPECT_THROW(Get(), CInvalidArgument);
  }
}

TEST_F(ResponseBounds, AreThoseOfTheirOwnTask) {
  cons.m_nID = 8;
  cons.PutObject();
  EXPECT_THROW(GetStored(), CObjectNotFound);
}

TEST_F(ResponseBounds, NeedAnOpenDatabase) {
  CDResp unconnected = Empty();
  Reals list;
  EXPECT_THROW(unconnected.GetConstrBounds(list, list, list, list, list, list, list, list, list,
                                           list, list, list),
               CNoDatabaseOpen);
}

}  // namespace
