#include "task/DCons.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/task/TableTests.h"

template <>
struct TableOf<CDCons> {
  static constexpr int ID = 6000;
  static constexpr int Index = 5;
  static constexpr const char* Name = "CDCons";
  static Columns<CDCons> All() {
    return {
        {&CDCons::m_vnSubj,
         {{3, 0, 258}, "03 00 00 00 03 00 00 00 00 00 00 00 02 01 00 00 "},
         {{3, 0, -1}, "03 00 00 00 03 00 00 00 00 00 00 00 FF FF FF FF "}},
        {&CDCons::m_vnSubjType,
         {{21, 24}, "02 00 00 00 15 00 00 00 18 00 00 00 "},
         {{22, 24}, "02 00 00 00 16 00 00 00 18 00 00 00 "}},
        {&CDCons::m_vfBound,
         {{1.0, -2.0}, "02 00 00 00 3F F0 00 00 00 00 00 00 C0 00 00 00 00 00 00 00 "},
         {{1.0, 0.1}, "02 00 00 00 3F F0 00 00 00 00 00 00 3F B9 99 99 99 99 99 9A "}},
        {&CDCons::m_vnMult,
         {{-1, 1}, "02 00 00 00 FF FF FF FF 01 00 00 00 "},
         {{-1, -1}, "02 00 00 00 FF FF FF FF FF FF FF FF "}},
        {&CDCons::m_vfScale,
         {{5.0}, "01 00 00 00 40 14 00 00 00 00 00 00 "},
         {{-0.5}, "01 00 00 00 BF E0 00 00 00 00 00 00 "}},
    };
  }
};

namespace {

INSTANTIATE_TYPED_TEST_SUITE_P(OfConstraints, TaskTable, CDCons);

TEST(Constraints, HaveTheirClassConstants) {
  EXPECT_EQ(CDCons::m_nDCONS_VER, 1);
  EXPECT_EQ(CDCons::m_nDCONS_INDX, 5);
  EXPECT_EQ(CDCons::m_nDCONS_ID, 6000);
  EXPECT_EQ(CDCons::m_strCLASS_NAME, "CDCons");
}

using Integers = void (CDCons::*)(const std::vector<int>&);
using Reals = void (CDCons::*)(const std::vector<double>&);

struct IntegerSetter {
  Integers set;
  std::vector<vbINT32> CDCons::*column;
};
struct RealSetter {
  Reals set;
  std::vector<vbFLOAT64> CDCons::*column;
};

/// That a setter fills its own column with what it is given, whatever the column held.
template <class Number, class Setter>
void ExpectToSet(const Setter& setter, const std::vector<std::vector<Number>>& contents) {
  CDCons cons(static_cast<POD*>(nullptr));
  for (const auto& numbers : contents) {
    (cons.*setter.set)(numbers);
    ASSERT_EQ((cons.*setter.column).size(), numbers.size());
    for (std::size_t i = 0; i < numbers.size(); ++i) {
      EXPECT_EQ((cons.*setter.column)[i], numbers[i]);
    }
  }
  // Nothing but the column: an empty one leaves an empty table.
  (cons.*setter.set)({7});
  (cons.*setter.column).clear();
  for (const auto& column : TableOf<CDCons>::All()) column.expectEmpty(cons);
  EXPECT_EQ(cons.m_nID, 0);
}

TEST(Constraints, TakeIntegersInPlaceOfTheirOwn) {
  for (const IntegerSetter& setter : {IntegerSetter{&CDCons::SetSubj, &CDCons::m_vnSubj},
                                      IntegerSetter{&CDCons::SetSubjType, &CDCons::m_vnSubjType},
                                      IntegerSetter{&CDCons::SetMult, &CDCons::m_vnMult}}) {
    ExpectToSet<int>(setter, {{1, 0, -5, 2147483647, -2147483647 - 1}, {26}, {}, {3, 2}});
  }
}

TEST(Constraints, TakeRealsInPlaceOfTheirOwn) {
  for (const RealSetter& setter : {RealSetter{&CDCons::SetBound, &CDCons::m_vfBound},
                                   RealSetter{&CDCons::SetScale, &CDCons::m_vfScale}}) {
    ExpectToSet<double>(setter, {{0.1, -1e30, 1e300, 5e-324}, {1.0}, {}, {-0.5, 2.5}});
  }
}

}  // namespace
