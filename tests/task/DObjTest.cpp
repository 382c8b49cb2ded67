#include "task/DObj.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "tests/task/TableTests.h"

template <>
struct TableOf<CDObj> {
  static constexpr int ID = 7000;
  static constexpr int Index = 6;
  static constexpr const char* Name = "CDObj";
  static Columns<CDObj> All() {
    return {
        {&CDObj::m_vnSubj,
         {{3, 0, 258}, "03 00 00 00 03 00 00 00 00 00 00 00 02 01 00 00 "},
         {{3, 0, -1}, "03 00 00 00 03 00 00 00 00 00 00 00 FF FF FF FF "}},
        {&CDObj::m_vnSubjType,
         {{20, 26}, "02 00 00 00 14 00 00 00 1A 00 00 00 "},
         {{20, 25}, "02 00 00 00 14 00 00 00 19 00 00 00 "}},
        {&CDObj::m_vnGoal,
         {{2, 1}, "02 00 00 00 02 00 00 00 01 00 00 00 "},
         {{0, 1}, "02 00 00 00 00 00 00 00 01 00 00 00 "}},
        {&CDObj::m_vnHasWorst,
         {{8}, "01 00 00 00 08 00 00 00 "},
         {{0}, "01 00 00 00 00 00 00 00 "}},
        {&CDObj::m_vfWorst,
         {{1.0, -2.0}, "02 00 00 00 3F F0 00 00 00 00 00 00 C0 00 00 00 00 00 00 00 "},
         {{1.0, 0.1}, "02 00 00 00 3F F0 00 00 00 00 00 00 3F B9 99 99 99 99 99 9A "}},
        {&CDObj::m_vfWeight,
         {{5.0}, "01 00 00 00 40 14 00 00 00 00 00 00 "},
         {{-0.5}, "01 00 00 00 BF E0 00 00 00 00 00 00 "}},
        {&CDObj::m_vfTarget,
         {{3.0}, "01 00 00 00 40 08 00 00 00 00 00 00 "},
         {{4.0}, "01 00 00 00 40 10 00 00 00 00 00 00 "}},
    };
  }
};

namespace {

INSTANTIATE_TYPED_TEST_SUITE_P(OfObjectives, TaskTable, CDObj);

TEST(Objectives, HaveTheirClassConstants) {
  EXPECT_EQ(CDObj::m_nDOBJ_VER, 1);
  EXPECT_EQ(CDObj::m_nDOBJ_INDX, 6);
  EXPECT_EQ(CDObj::m_nDOBJ_ID, 7000);
  EXPECT_EQ(CDObj::m_strCLASS_NAME, "CDObj");
}

// ---- The value of a term ----

struct Term {
  int goal = 0;
  double weight = 1.0;
  double worst = 0.0;
  double target = 0.0;
};

CDObj Terms(const std::vector<Term>& list) {
  CDObj terms(static_cast<POD*>(nullptr));
  terms.m_vnSubj.resize(list.size());
  terms.m_vnSubjType.resize(list.size(), 24);
  terms.m_vnGoal.resize(list.size());
  terms.m_vnHasWorst.resize(list.size());
  terms.m_vfWorst.resize(list.size());
  terms.m_vfWeight.resize(list.size());
  terms.m_vfTarget.resize(list.size());
  for (std::size_t i = 0; i < list.size(); ++i) {
    terms.m_vnGoal[i] = list[i].goal;
    terms.m_vfWeight[i] = list[i].weight;
    terms.m_vfWorst[i] = list[i].worst;
    terms.m_vfTarget[i] = list[i].target;
  }
  return terms;
}

constexpr int minimise = 0;
constexpr int maximise = 1;
constexpr int target = 2;

TEST(Objectives, OfOneMinimisedTermAreTheWeightedValue) {
  for (const double worst : {0.0, 4.0, -1e300}) {
    const CDObj terms = Terms({{minimise, 2.5, worst, 7.0}});
    EXPECT_EQ(terms.Eval(0, 3.0), 7.5);
    EXPECT_EQ(terms.Eval(0, -3.0), -7.5);
    EXPECT_EQ(terms.Eval(0, 0.0), 0.0);
  }
}

TEST(Objectives, OfOneMaximisedTermAreTheNegatedWeightedValue) {
  for (const double worst : {0.0, 4.0, -1e300}) {
    const CDObj terms = Terms({{maximise, 2.5, worst, 7.0}});
    EXPECT_EQ(terms.Eval(0, 3.0), -7.5);
    EXPECT_EQ(terms.Eval(0, -3.0), 7.5);
  }
}

TEST(Objectives, OfSeveralTermsAreNormalisedByTheWorstValue) {
  const CDObj terms = Terms({{minimise, 2.0, 4.0}, {maximise, 3.0, 8.0}, {minimise, 1.0, -5.0}});
  // The worst values are too great for the epsilon to change them.
  EXPECT_EQ(terms.Eval(0, 6.0), 3.0);
  EXPECT_EQ(terms.Eval(1, 4.0), -1.5);
  EXPECT_EQ(terms.Eval(2, 10.0), -2.0);
}

TEST(Objectives, OfSeveralTermsAddTheEpsilonToTheWorstValue) {
  const CDObj terms = Terms({{minimise, 1.0, 1.0}, {maximise, 1.0, 1.0}});
  EXPECT_EQ(terms.Eval(0, 1.0), 0.9999999999999998);
  EXPECT_EQ(terms.Eval(1, 1.0), -0.9999999999999998);
}

TEST(Objectives, OfSeveralTermsWithAWorstValueOfZeroAreVeryLarge) {
  const CDObj terms = Terms({{minimise, 2.0, 0.0}, {maximise, 2.0, 0.0}});
  EXPECT_EQ(terms.Eval(0, 1.0), 9007199254740992.0);  // 2 to the 53rd
  EXPECT_EQ(terms.Eval(1, 1.0), -9007199254740992.0);
  EXPECT_EQ(terms.Eval(0, 0.0), 0.0);
}

TEST(Objectives, UseTheWorstValueWhetherOrNotItIsGiven) {
  CDObj terms = Terms({{minimise, 2.0, 4.0}, {minimise, 2.0, 4.0}});
  terms.m_vnHasWorst = {0, 1};
  EXPECT_EQ(terms.Eval(0, 6.0), 3.0);
  EXPECT_EQ(terms.Eval(1, 6.0), 3.0);
}

TEST(Objectives, OfATargetAreTheSameAloneAndAmongOthers) {
  const Term toTarget{target, 3.0, 10.0, 2.0};
  const CDObj alone = Terms({toTarget});
  const CDObj among = Terms({{minimise}, toTarget, {maximise}});
  for (const auto& [x, value] :
       std::vector<std::pair<double, double>>{{6.0, 1.5}, {2.0, 0.0}, {10.0, 3.0}, {-6.0, -3.0}}) {
    EXPECT_EQ(alone.Eval(0, x), value);
    EXPECT_EQ(among.Eval(1, x), value);
  }
}

TEST(Objectives, OfATargetThatIsTheWorstValueAreVeryLarge) {
  const CDObj terms = Terms({{target, 1.0, 5.0, 5.0}});
  EXPECT_EQ(terms.Eval(0, 6.0), 4503599627370496.0);  // 2 to the 52nd
  EXPECT_EQ(terms.Eval(0, 5.0), 0.0);
}

TEST(Objectives, OfAnUnknownGoalAreNoNumber) {
  for (const int goal : {3, -1, 2147483647}) {
    EXPECT_TRUE(std::isnan(Terms({{goal, 1.0, 1.0, 0.0}}).Eval(0, 1.0))) << goal;
    EXPECT_TRUE(std::isnan(Terms({{minimise}, {goal, 1.0, 1.0, 0.0}}).Eval(1, 1.0))) << goal;
  }
}

TEST(Objectives, OfNoSubjectsCountAsOneTerm) {
  CDObj terms = Terms({{minimise, 2.0, 4.0}, {maximise, 2.0, 4.0}});
  terms.m_vnSubj.clear();
  EXPECT_EQ(terms.Eval(0, 6.0), 12.0);
  EXPECT_EQ(terms.Eval(1, 6.0), -12.0);
}

TEST(Objectives, PassOnWhatIsNoNumber) {
  const double infinite = std::numeric_limits<double>::infinity();
  const CDObj terms = Terms({{minimise, 2.0, 4.0}, {target, 2.0, 4.0, 1.0}});
  for (const int i : {0, 1}) {
    EXPECT_EQ(terms.Eval(i, infinite), infinite);
    EXPECT_TRUE(std::isnan(terms.Eval(i, std::nan(""))));
  }
}

TEST(Objectives, HaveNoTermOutside) {
  const CDObj terms = Terms({{minimise}, {target, 1.0, 4.0, 1.0}});
  for (const int i : {-1, 2, 2147483647, -2147483647 - 1}) {
    EXPECT_THROW(terms.Eval(i, 1.0), CInvalidArgument) << i;
    EXPECT_THROW(Terms({}).Eval(i, 1.0), CInvalidArgument) << i;
  }
  EXPECT_THROW(Terms({}).Eval(0, 1.0), CInvalidArgument);
}

TEST(Objectives, OfColumnsThatAreTooShortAreRefused) {
  for (std::valarray<vbFLOAT64> CDObj::*column :
       {&CDObj::m_vfWeight, &CDObj::m_vfWorst, &CDObj::m_vfTarget}) {
    CDObj terms = Terms({{target, 1.0, 4.0, 1.0}, {target, 1.0, 4.0, 1.0}});
    (terms.*column).resize(1);
    EXPECT_THROW(terms.Eval(1, 1.0), CInvalidArgument);
  }
  CDObj terms = Terms({{target}, {target}});
  terms.m_vnGoal.resize(1);
  EXPECT_THROW(terms.Eval(1, 1.0), CInvalidArgument);
}

}  // namespace
