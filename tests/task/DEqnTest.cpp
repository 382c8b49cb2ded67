#include "task/DEqn.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "definition/Auxiliary.h"
#include "tests/task/TableTests.h"

template <>
struct TableOf<CDEqn> {
  static constexpr int ID = 9000;
  static constexpr int Index = 8;
  static constexpr const char* Name = "CDEqn";
  // The IDs stand behind the texts.
  static Columns<CDEqn> All() {
    return {
        {&CDEqn::m_vstrName,
         {{"ab", "", "c"}, "03 00 00 00 02 00 00 00 61 62 01 00 00 00 00 01 00 00 00 63 "},
         {{"ab", "", "d"}, "03 00 00 00 02 00 00 00 61 62 01 00 00 00 00 01 00 00 00 64 "},
         {0, 4, 10, 15}},
        {&CDEqn::m_vstrArgs,
         {{"x,y"}, "01 00 00 00 03 00 00 00 78 2C 79 "},
         {{"x,z"}, "01 00 00 00 03 00 00 00 78 2C 7A "},
         {0, 4}},
        {&CDEqn::m_vstrEquation,
         {{"x*y", " "}, "02 00 00 00 03 00 00 00 78 2A 79 01 00 00 00 20 "},
         {{"x*y", "1"}, "02 00 00 00 03 00 00 00 78 2A 79 01 00 00 00 31 "},
         {0, 4, 11}},
        {&CDEqn::m_vnAuxID,
         {{3, 258}, "02 00 00 00 03 00 00 00 02 01 00 00 "},
         {{3, -1}, "02 00 00 00 03 00 00 00 FF FF FF FF "}},
    };
  }
};

namespace {

INSTANTIATE_TYPED_TEST_SUITE_P(OfFunctions, TaskTable, CDEqn);

TEST(TaskFunctions, HaveTheirClassConstants) {
  EXPECT_EQ(CDEqn::m_nDEQN_VER, 1);
  EXPECT_EQ(CDEqn::m_nDEQN_INDX, 8);
  EXPECT_EQ(CDEqn::m_nDEQN_ID, 9000);
  EXPECT_EQ(CDEqn::m_strCLASS_NAME, "CDEqn");
}

CAuxiliary Definition(int id, const std::string& name, const std::string& arguments,
                      const std::string& equation) {
  CAuxiliary function(static_cast<POD*>(nullptr));
  function.m_nID = id;
  function.m_strName = name;
  function.m_strArgs = arguments;
  function.m_strEquation = equation;
  function.m_vfCoef = {77.0};
  function.m_vfValues = {78.0};
  return function;
}

TEST(TaskFunctions, AddADefinitionBehindTheOthers) {
  CDEqn functions(static_cast<POD*>(nullptr));
  CAuxiliary second = Definition(20, "area", "a,b", "a*b");
  CAuxiliary first = Definition(3, "twice", "x", "2*x");
  CAuxiliary nothing = Definition(0, "", "", "");
  functions.AddEqn(second);
  functions.AddEqn(first);
  functions.AddEqn(nothing);
  functions.AddEqn(second);
  EXPECT_EQ(functions.m_vnAuxID, (std::vector<vbINT32>{20, 3, 0, 20}));
  EXPECT_EQ(functions.m_vstrName, (std::vector<std::string>{"area", "twice", "", "area"}));
  EXPECT_EQ(functions.m_vstrArgs, (std::vector<std::string>{"a,b", "x", "", "a,b"}));
  EXPECT_EQ(functions.m_vstrEquation, (std::vector<std::string>{"a*b", "2*x", "", "a*b"}));
  EXPECT_EQ(functions.m_nID, 0);
  EXPECT_EQ(second.m_strEquation, "a*b");
}

}  // namespace
