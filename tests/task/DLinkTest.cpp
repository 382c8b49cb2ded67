#include "task/DLink.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "definition/Auxiliary.h"
#include "tests/task/TableTests.h"

template <>
struct TableOf<CDLink> {
  static constexpr int ID = 8000;
  static constexpr int Index = 7;
  static constexpr const char* Name = "CDLink";
  static Columns<CDLink> All() {
    return {
        {&CDLink::m_vnAuxID,
         {{3, 258}, "02 00 00 00 03 00 00 00 02 01 00 00 "},
         {{3, -1}, "02 00 00 00 03 00 00 00 FF FF FF FF "}},
        {&CDLink::m_vstrName,
         {{"ab", "", "c"}, "03 00 00 00 02 00 00 00 61 62 01 00 00 00 00 01 00 00 00 63 "},
         {{"ab", "", "d"}, "03 00 00 00 02 00 00 00 61 62 01 00 00 00 00 01 00 00 00 64 "},
         {0, 4, 10, 15}},
        {&CDLink::m_mdCoef,
         {{{1.0, -2.0}, {}, {0.1}},
          "03 00 00 00 02 00 00 00 3F F0 00 00 00 00 00 00 C0 00 00 00 00 00 00 00 "
          "00 00 00 00 01 00 00 00 3F B9 99 99 99 99 99 9A "},
         {{{1.0, -2.0}, {}, {5.0}},
          "03 00 00 00 02 00 00 00 3F F0 00 00 00 00 00 00 C0 00 00 00 00 00 00 00 "
          "00 00 00 00 01 00 00 00 40 14 00 00 00 00 00 00 "},
         {0, 4, 24, 28}},
    };
  }
};

namespace {

INSTANTIATE_TYPED_TEST_SUITE_P(OfLinks, TaskTable, CDLink);

TEST(TaskLinks, HaveTheirClassConstants) {
  EXPECT_EQ(CDLink::m_nDLINK_VER, 1);
  EXPECT_EQ(CDLink::m_nDLINK_INDX, 7);
  EXPECT_EQ(CDLink::m_nDLINK_ID, 8000);
  EXPECT_EQ(CDLink::m_strCLASS_NAME, "CDLink");
}

// ---- Adding ----

CAuxiliary Definition(int id, const std::string& name, const std::vector<vbFLOAT64>& coefficients) {
  CAuxiliary link(static_cast<POD*>(nullptr));
  link.m_nID = id;
  link.m_strName = name;
  link.m_vfCoef = coefficients;
  link.m_vfValues = {77.0};
  link.m_strArgs = "not,of,a,link";
  link.m_strEquation = "neither";
  return link;
}

TEST(TaskLinks, AddADefinitionBehindTheOthers) {
  CDLink links(static_cast<POD*>(nullptr));
  CAuxiliary second = Definition(20, "second", {1.5, -2.5});
  CAuxiliary first = Definition(3, "first", {0.25});
  CAuxiliary nothing = Definition(0, "", {});
  links.AddLink(second);
  links.AddLink(first);
  links.AddLink(nothing);
  links.AddLink(second);
  EXPECT_EQ(links.m_vnAuxID, (std::vector<vbINT32>{20, 3, 0, 20}));
  EXPECT_EQ(links.m_vstrName, (std::vector<std::string>{"second", "first", "", "second"}));
  EXPECT_EQ(links.m_mdCoef,
            (std::vector<std::vector<vbFLOAT64>>{{1.5, -2.5}, {0.25}, {}, {1.5, -2.5}}));
  EXPECT_EQ(links.m_nID, 0);
  EXPECT_EQ(second.m_vfCoef, (std::vector<vbFLOAT64>{1.5, -2.5}));
}

// ---- Coefficients ----

CDLink Links() {
  CDLink links(static_cast<POD*>(nullptr));
  links.m_mdCoef = {{1.5, -2.5, 1e300}, {}, {0.1}};
  return links;
}

TEST(TaskLinks, GiveTheCoefficientsOfALink) {
  const CDLink links = Links();
  std::vector<double> coefficients{7, 7};
  links.GetCoef(0, coefficients);
  EXPECT_EQ(coefficients, (std::vector<double>{1.5, -2.5, 1e300}));
  links.GetCoef(2, coefficients);
  EXPECT_EQ(coefficients, (std::vector<double>{0.1}));
  links.GetCoef(1, coefficients);
  EXPECT_TRUE(coefficients.empty());
}

TEST(TaskLinksDeathTest, StopWhereThereIsNoLink) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  const CDLink links = Links();
  std::vector<double> coefficients;
  for (const int i : {3, 2147483647, -1, -2147483647 - 1}) {
    EXPECT_DEATH(links.GetCoef(i, coefficients), "i < m_mdCoef.size\\(\\)") << i;
  }
  EXPECT_DEATH(CDLink(static_cast<POD*>(nullptr)).GetCoef(0, coefficients),
               "i < m_mdCoef.size\\(\\)");
}

}  // namespace
