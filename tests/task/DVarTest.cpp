#include "task/DVar.h"

#include <gtest/gtest.h>

#include <string>
#include <valarray>
#include <vector>

#include "store/KestErr.h"
#include "tests/task/DVarColumns.h"
#include "tests/task/VersionedObjectTests.h"

namespace {

INSTANTIATE_TYPED_TEST_SUITE_P(OfVariables, TaskObjects, CDVar);

using Integers = std::vector<int>;

CDVar Filled() {
  return FilledTable<CDVar>(nullptr);
}
CDVar Empty() {
  return CDVar(static_cast<POD*>(nullptr));
}

TEST(Variables, HaveTheirClassConstants) {
  EXPECT_EQ(CDVar::m_nDVAR_VER, 6);
  EXPECT_EQ(CDVar::m_nDVAR_INDX, 3);
  EXPECT_EQ(CDVar::m_nDVAR_ID, 4000);
  EXPECT_EQ(CDVar::m_strCLASS_NAME, "CDVar");
}

// ---- Columns ----

TEST(Variables, GivePositionsAndKindsInAnArrayOfTheirSize) {
  for (std::valarray<int> numbers : {std::valarray<int>(), std::valarray<int>(77, 9)}) {
    Filled().GetSeq(numbers);
    EXPECT_EQ(AsVector(numbers), (Integers{0, 0, 1, 0, 0, 1}));
    Filled().GetType(numbers);
    EXPECT_EQ(AsVector(numbers), (Integers{20, 21, 20, 22, 23, 23}));
    Empty().GetSeq(numbers);
    EXPECT_EQ(numbers.size(), 0U);
    Empty().GetType(numbers);
    EXPECT_EQ(numbers.size(), 0U);
  }
}

TEST(Variables, GiveReferencesInAVectorOfTheirSize) {
  for (Integers numbers : {Integers{}, Integers(9, 77)}) {
    Filled().GetLinkRef(numbers);
    EXPECT_EQ(numbers, Integers{71});
    Filled().GetSynRef(numbers);
    EXPECT_EQ(numbers, Integers{81});
    Filled().GetDiscreteRef(numbers);
    EXPECT_EQ(numbers, (Integers{-1, 91}));
    Empty().GetLinkRef(numbers);
    EXPECT_TRUE(numbers.empty());
  }
}

TEST(Variables, GiveTheIDsOfEachKind) {
  CDVar vars(static_cast<POD*>(nullptr));
  vars.m_vnIndIDs = {1, 1};
  vars.m_vnLinkIDs = {2};
  vars.m_vnSynIDs = {};
  vars.m_vnConstIDs = {4, 5, 6};
  Integers ids(9, 77);
  vars.GetIndIDs(ids);
  EXPECT_EQ(ids, (Integers{1, 1}));
  vars.GetLinkIDs(ids);
  EXPECT_EQ(ids, Integers{2});
  vars.GetSynIDs(ids);
  EXPECT_TRUE(ids.empty());
  vars.GetConstIDs(ids);
  EXPECT_EQ(ids, (Integers{4, 5, 6}));
}

struct Setter {
  void (CDVar::*set)(const Integers&);
  std::vector<vbINT32> CDVar::*column;
};

TEST(Variables, TakeNumbersInPlaceOfTheirOwn) {
  for (const Setter& setter :
       {Setter{&CDVar::SetSeq, &CDVar::m_vnSeq}, Setter{&CDVar::SetType, &CDVar::m_vnType},
        Setter{&CDVar::SetIndIDs, &CDVar::m_vnIndIDs},
        Setter{&CDVar::SetConstIDs, &CDVar::m_vnConstIDs}}) {
    CDVar vars = Empty();
    for (const Integers& numbers :
         {Integers{1, 0, -5, 2147483647, -2147483647 - 1}, Integers{26}, Integers{}, Integers{3}}) {
      (vars.*setter.set)(numbers);
      ASSERT_EQ((vars.*setter.column).size(), numbers.size());
      for (std::size_t i = 0; i < numbers.size(); ++i) {
        EXPECT_EQ((vars.*setter.column)[i], numbers[i]);
      }
    }
    (vars.*setter.column).clear();
    ExpectEmpty(vars);
  }
}

// ---- Rows of arguments ----

struct RowGetter {
  void (CDVar::*get)(int, Integers&) const;
  std::vector<std::vector<vbINT32>> CDVar::*rows;
  std::string assertion;
};

const RowGetter rowGetters[] = {
    {&CDVar::GetLinkSubj, &CDVar::m_mnLinkSubj, "i < m_mnLinkSubj.size\\(\\)"},
    {&CDVar::GetLinkSubjType, &CDVar::m_mnLinkType, "i < m_mnLinkType.size\\(\\)"},
    {&CDVar::GetSynSubj, &CDVar::m_mnSynSubj, "i < m_mnSynSubj.size\\(\\)"},
    {&CDVar::GetSynSubjType, &CDVar::m_mnSynType, "i < m_mnSynType.size\\(\\)"},
    {&CDVar::GetSynSubjLength, &CDVar::m_mnSynLen, "i < m_mnSynLen.size\\(\\)"},
};

TEST(Variables, GiveARowOfArguments) {
  for (const RowGetter& getter : rowGetters) {
    SCOPED_TRACE(getter.assertion);
    CDVar vars = Empty();
    vars.*getter.rows = {{1, -2, 3}, {}, {2147483647}};
    for (Integers row : {Integers{}, Integers(9, 77)}) {
      (vars.*getter.get)(0, row);
      EXPECT_EQ(row, (Integers{1, -2, 3}));
      (vars.*getter.get)(1, row);
      EXPECT_TRUE(row.empty());
      (vars.*getter.get)(2, row);
      EXPECT_EQ(row, (Integers{2147483647}));
    }
  }
}

TEST(VariablesDeathTest, StopWhereThereIsNoRow) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  Integers row;
  for (const RowGetter& getter : rowGetters) {
    CDVar vars = Empty();
    EXPECT_DEATH((vars.*getter.get)(0, row), getter.assertion);
    vars.*getter.rows = {{1}, {2}};
    EXPECT_DEATH((vars.*getter.get)(2, row), getter.assertion);
    EXPECT_DEATH((vars.*getter.get)(-1, row), "i >= 0");
  }
}

// ---- Names ----

TEST(Variables, GiveNamesByPosition) {
  const CDVar vars = Filled();
  EXPECT_EQ(vars.GetIndName(0), "ab");
  EXPECT_EQ(vars.GetIndName(1), "");
  EXPECT_EQ(vars.GetLinkName(0), "l");
  EXPECT_EQ(vars.GetConstName(2), "d_1");
}

TEST(Variables, TakeNamesByPosition) {
  CDVar vars = Filled();
  vars.SetIndName("first", 1);
  vars.SetLinkName("second", 0);
  vars.SetSynName("third", 0);
  vars.SetConstName("", 2);
  EXPECT_EQ(vars.m_vstrIndName, (std::vector<std::string>{"ab", "first"}));
  EXPECT_EQ(vars.m_vstrLinkName, (std::vector<std::string>{"second"}));
  EXPECT_EQ(vars.m_vstrSynName, (std::vector<std::string>{"third"}));
  EXPECT_EQ(vars.m_vstrConstName, (std::vector<std::string>{"c", "", ""}));
}

TEST(Variables, HaveNoNamesOutsideTheirTables) {
  CDVar vars = Filled();
  for (const int i : {-1, 3, 2147483647, -2147483647 - 1}) {
    EXPECT_THROW(vars.GetIndName(i), CInvalidArgument);
    EXPECT_THROW(vars.GetLinkName(i), CInvalidArgument);
    EXPECT_THROW(vars.GetConstName(i), CInvalidArgument);
    EXPECT_THROW(vars.SetIndName("x", i), CInvalidArgument);
    EXPECT_THROW(vars.SetLinkName("x", i), CInvalidArgument);
    EXPECT_THROW(vars.SetSynName("x", i), CInvalidArgument);
    EXPECT_THROW(vars.SetConstName("x", i), CInvalidArgument);
  }
  ExpectFilled(vars);
}

}  // namespace
