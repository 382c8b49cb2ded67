#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "task/DEqn.h"
#include "task/DLink.h"
#include "task/DSet.h"
#include "tests/task/TableReportTests.h"

// The reports of the definitions that a task has frozen.

namespace {

using FrozenTables = testing::Types<CDLink, CDEqn, CDSet>;
INSTANTIATE_TYPED_TEST_SUITE_P(OfDefinitions, TaskTableReport, FrozenTables);

using Reals = std::vector<vbFLOAT64>;

const std::string linkHead =
    "                                  LINK INFORMATION\n"
    "================================================================================\n"
    "  ID         Name        Constant                   Multipliers\n"
    "------  --------------  ----------  --------------------------------------------\n";
const std::string functionHead =
    "                          SYNTHETIC FUNCTION INFORMATION\n"
    "================================================================================\n"
    "  ID                                   Function\n"
    "------  ------------------------------------------------------------------------\n";
const std::string setHead =
    "                            DISCRETE SET INFORMATION\n"
    "================================================================================\n"
    "  ID         Name                                 Members\n"
    "------  --------------  --------------------------------------------------------\n";

/// A line of the two tables with columns is filled with blanks to column 80.
std::string Filled(std::string line) {
  line.resize(80, ' ');
  return line + "\n";
}

class FrozenReport : public testing::Test {
 protected:
  void AddLink(int id, const std::string& name, const Reals& coefficients) {
    links.m_vnAuxID.emplace_back(id);
    links.m_vstrName.push_back(name);
    links.m_mdCoef.push_back(coefficients);
  }
  void AddFunction(int id, const std::string& name, const std::string& arguments,
                   const std::string& equation) {
    functions.m_vnAuxID.emplace_back(id);
    functions.m_vstrName.push_back(name);
    functions.m_vstrArgs.push_back(arguments);
    functions.m_vstrEquation.push_back(equation);
  }
  void AddSet(int id, const std::string& name, const Reals& members) {
    sets.m_vnAuxID.emplace_back(id);
    sets.m_vstrName.push_back(name);
    sets.m_mdValues.push_back(members);
  }

  template <class Table>
  std::string Report(Table& table) {
    table.m_nID = 1;
    table.PutObject();
    return ReportOf<Table>(study.Pod(), 1);
  }
  template <class Table>
  void ExpectRefused(Table table) {
    table.Connect(study.Pod());
    table.m_nID = 1;
    table.PutObject();
    ExpectNoReport<Table, CInvalidArgument>(study.Pod(), 1);
  }

  Study study;
  CDLink links{study.Pod()};
  CDEqn functions{study.Pod()};
  CDSet sets{study.Pod()};
};

// ---- Links ----

TEST_F(FrozenReport, OfNoLinksIsAnEmptyTable) {
  EXPECT_EQ(Report(links), linkHead + reportEnd);
}

TEST_F(FrozenReport, OfALink) {
  AddLink(3, "total", {1.5, 2.0, -0.5});
  EXPECT_EQ(
      Report(links),
      linkHead +
          "     3           total        1.50  2 -0.5                                      \n" +
          reportEnd);
}

TEST_F(FrozenReport, OfLinksListsThemAsTheyStand) {
  AddLink(20, "second", {0.0, 1.0 / 3, 1234567.0});
  AddLink(3, "first", {-1e30});
  AddLink(2147483647, "fourteen_chars", {1234.0, 1e-5, 1e30, 0.0});
  AddLink(-5, "", {-0.000123456, 1.0});
  EXPECT_EQ(Report(links),
            "                                  LINK INFORMATION\n"
            "================================================================================\n"
            "  ID         Name        Constant                   Multipliers\n"
            "------  --------------  ----------  --------------------------------------------\n"
            "    20          second        0.00  0.333333 1.23457e+06                        \n"
            "     3           first   -1.00e+30                                              \n"
            "2147483647  fourteen_chars    1.23e+03  1e-05 1e+30 0                               \n"
            "    -5                   -0.000123  1                                           \n"
            "================================================================================\n"
            "\n");
}

TEST_F(FrozenReport, CutsTheMultipliersOfALinkOverLines) {
  AddLink(1, "many",
          {1.0, 10001, 10002, 10003, 10004, 10005, 10006, 10007, 10008, 10009, 10010, 10011, 10012,
           10013, 10014, 10015, 10016, 10017});
  AddLink(2, "next", {0.0, 1.0});
  EXPECT_EQ(
      Report(links),
      linkHead +
          "     1            many        1.00  10001 10002 10003 10004 10005 10006 10007   \n"
          "                                    10008 10009 10010 10011 10012 10013 10014   \n"
          "                                    10015 10016 10017                           \n"
          "     2            next        0.00  1                                           \n" +
          reportEnd);
}

TEST_F(FrozenReport, KeepsMultipliersOfFortyFourColumnsOnOneLine) {
  AddLink(1, "full", {1.0, 1001, 1002, 1003, 1004, 1005, 1006, 1007, 1008, 1009});
  AddLink(2, "over", {1.0, 1001, 1002, 1003, 1004, 1005, 1006, 1007, 1008, 10009});
  EXPECT_EQ(
      Report(links),
      linkHead +
          "     1            full        1.00  1001 1002 1003 1004 1005 1006 1007 1008 1009\n"
          "     2            over        1.00  1001 1002 1003 1004 1005 1006 1007 1008     \n"
          "                                    10009                                       \n" +
          reportEnd);
}

TEST_F(FrozenReport, CutsTheNameOfALinkBesideItsMultipliers) {
  AddLink(1, "a_link_with_a_name_of_thirty_four_", {1.0, 2.0});
  AddLink(2, "a_link_of_fifteen",
          {1.0, 1001, 1002, 1003, 1004, 1005, 1006, 1007, 1008, 1009, 1010, 1011, 1012, 1013, 1014,
           1015, 1016, 1017, 1018});
  EXPECT_EQ(
      Report(links),
      linkHead +
          "     1  a_link_with_a_        1.00  2                                           \n"
          "        name_of_thirty                                                          \n"
          "        _four_                                                                  \n"
          "     2  a_link_of_fift        1.00  1001 1002 1003 1004 1005 1006 1007 1008 1009\n"
          "        een                         1010 1011 1012 1013 1014 1015 1016 1017 1018\n" +
          reportEnd);
}

TEST_F(FrozenReport, OfLinksThatLackAPartIsNotPrinted) {
  AddLink(1, "a", {1.0});
  AddLink(2, "b", {1.0});
  CDLink damaged = links;
  damaged.m_vstrName.pop_back();
  ExpectRefused(damaged);
  damaged = links;
  damaged.m_mdCoef.pop_back();
  ExpectRefused(damaged);
  damaged = links;
  damaged.m_mdCoef[1].clear();  // not even a constant
  ExpectRefused(damaged);
}

TEST_F(FrozenReport, OfLinksHasARowForEachID) {
  AddLink(1, "a", {1.0});
  AddLink(2, "b", {1.0});
  links.m_vnAuxID.pop_back();
  EXPECT_EQ(Report(links), linkHead + Filled("     1               a        1.00") + reportEnd);
}

// ---- Synthetic functions ----

TEST_F(FrozenReport, OfNoFunctionsIsAnEmptyTable) {
  EXPECT_EQ(Report(functions), functionHead + reportEnd);
}

TEST_F(FrozenReport, OfAFunction) {
  AddFunction(2, "area", "width,height", "width*height");
  EXPECT_EQ(Report(functions),
            functionHead + "     2  area(width,height)=width*height\n" + reportEnd);
}

TEST_F(FrozenReport, OfFunctionsListsThemAsTheyStand) {
  AddFunction(20, "second", "x", "2 * x");
  AddFunction(3, "", "", "");
  AddFunction(2147483647, "a_function_with_a_long_name", "a, b", "a%s + b%n");
  EXPECT_EQ(Report(functions),
            "                          SYNTHETIC FUNCTION INFORMATION\n"
            "================================================================================\n"
            "  ID                                   Function\n"
            "------  ------------------------------------------------------------------------\n"
            "    20  second(x)=2 * x\n"
            "     3  ()=\n"
            "2147483647  a_function_with_a_long_name(a, b)=a%s + b%n\n"
            "================================================================================\n"
            "\n");
}

TEST_F(FrozenReport, KeepsAFunctionOfSeventyTwoColumnsOnOneLine) {
  AddFunction(1, "f", "a,b", "a + b + " + std::string(57, 'c'));
  EXPECT_EQ(
      Report(functions),
      functionHead +
          "     1  f(a,b)=a + b + ccccccccccccccccccccccccccccccccccccccccccccccccccccccccc\n" +
          reportEnd);
}

TEST_F(FrozenReport, CutsALongFunctionOverLines) {
  AddFunction(1, "f", "a,b", "a + b + " + std::string(58, 'c'));
  AddFunction(2, "weight", "w1, w2, w3, w4, w5",
              "0.2836 * (width1*height1*length1 + width2*height2*length2 + "
              "width3*height3*length3 + width4*height4*length4 + width5*height5*length5) / 386.4");
  EXPECT_EQ(Report(functions),
            functionHead +
                "     1  f(a,b)=a + b +\n"
                "        cccccccccccccccccccccccccccccccccccccccccccccccccccccccccc\n"
                "     2  weight(w1, w2, w3, w4, w5)=0.2836 * (width1*height1*length1 +\n"
                "        width2*height2*length2 + width3*height3*length3 + width4*height4*length4\n"
                "        + width5*height5*length5) / 386.4\n" +
                reportEnd);
}

TEST_F(FrozenReport, CutsAFunctionWithoutBlanksWhereTheLineEnds) {
  AddFunction(1, "f", std::string(100, 'a'), "1");
  EXPECT_EQ(Report(functions),
            functionHead +
                "     1  f(aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa\n"
                "        aaaaaaaaaaaaaaaaaaaaaaaaaaaaaa)=1\n" +
                reportEnd);
}

TEST_F(FrozenReport, EndsALineWhereTheEquationDoes) {
  AddFunction(1, "f", "a", "a\n+ 1");
  EXPECT_EQ(Report(functions), functionHead +
                                   "     1  f(a)=a\n"
                                   "        + 1\n" +
                                   reportEnd);
}

TEST_F(FrozenReport, OfFunctionsThatLackAPartIsNotPrinted) {
  AddFunction(1, "f", "a", "a");
  AddFunction(2, "g", "a", "a");
  for (auto column : {&CDEqn::m_vstrName, &CDEqn::m_vstrArgs, &CDEqn::m_vstrEquation}) {
    CDEqn damaged = functions;
    (damaged.*column).pop_back();
    ExpectRefused(damaged);
  }
}

TEST_F(FrozenReport, OfFunctionsHasARowForEachID) {
  AddFunction(1, "f", "a", "a");
  AddFunction(2, "g", "a", "a");
  functions.m_vnAuxID.pop_back();
  EXPECT_EQ(Report(functions), functionHead + "     1  f(a)=a\n" + reportEnd);
}

// ---- Discrete sets ----

TEST_F(FrozenReport, OfNoSetsIsAnEmptyTable) {
  EXPECT_EQ(Report(sets), setHead + reportEnd);
}

TEST_F(FrozenReport, OfASet) {
  AddSet(3, "gauge", {0.1, 0.25, 1e30});
  EXPECT_EQ(
      Report(sets),
      setHead +
          "     3           gauge  0.1 0.25 1e+30                                          \n" +
          reportEnd);
}

TEST_F(FrozenReport, OfSetsListsThemAsTheyStand) {
  AddSet(20, "second", {-1e30, -0.0001, 0.0, 100000.0, 1e6});
  AddSet(3, "empty", {});
  AddSet(2147483647, "fourteen_chars", {1.0});
  AddSet(-5, "", {2.0});
  EXPECT_EQ(Report(sets),
            "                            DISCRETE SET INFORMATION\n"
            "================================================================================\n"
            "  ID         Name                                 Members\n"
            "------  --------------  --------------------------------------------------------\n"
            "    20          second  -1e+30 -0.0001 0 100000 1e+06                           \n"
            "     3           empty                                                          \n"
            "2147483647  fourteen_chars  1                                                       \n"
            "    -5                  2                                                       \n"
            "================================================================================\n"
            "\n");
}

TEST_F(FrozenReport, CutsTheMembersOfASetOverLines) {
  AddSet(1, "many", {1001, 1002, 1003, 1004, 1005, 1006, 1007, 1008, 1009, 1010, 1011, 1012,
                     1013, 1014, 1015, 1016, 1017, 1018, 1019, 1020, 1021, 1022, 1023});
  AddSet(2, "next", {1.0});
  EXPECT_EQ(
      Report(sets),
      setHead +
          "     1            many  1001 1002 1003 1004 1005 1006 1007 1008 1009 1010 1011  \n"
          "                        1012 1013 1014 1015 1016 1017 1018 1019 1020 1021 1022  \n"
          "                        1023                                                    \n"
          "     2            next  1                                                       \n" +
          reportEnd);
}

TEST_F(FrozenReport, KeepsMembersOfFiftySixColumnsOnOneLine) {
  AddSet(1, "full", {1001, 1002, 1003, 1004, 1005, 1006, 1007, 1008, 1009, 1010, 100011});
  AddSet(2, "over", {1001, 1002, 1003, 1004, 1005, 1006, 1007, 1008, 10009, 10010, 100011});
  EXPECT_EQ(
      Report(sets),
      setHead +
          "     1            full  1001 1002 1003 1004 1005 1006 1007 1008 1009 1010 100011\n"
          "     2            over  1001 1002 1003 1004 1005 1006 1007 1008 10009 10010     \n"
          "                        100011                                                  \n" +
          reportEnd);
}

TEST_F(FrozenReport, CutsTheNameOfASetBesideItsMembers) {
  AddSet(1, "a_set_with_a_name_of_thirty_three", {1.0, 2.0});
  AddSet(2, "a_set_of_fifteen",
         {1001, 1002, 1003, 1004, 1005, 1006, 1007, 1008, 1009, 1010, 1011, 1012,
          1013, 1014, 1015, 1016, 1017, 1018, 1019, 1020, 1021, 1022, 1023});
  EXPECT_EQ(
      Report(sets),
      setHead +
          "     1  a_set_with_a_n  1 2                                                     \n"
          "        ame_of_thirty_                                                          \n"
          "        three                                                                   \n"
          "     2  a_set_of_fifte  1001 1002 1003 1004 1005 1006 1007 1008 1009 1010 1011  \n"
          "        en              1012 1013 1014 1015 1016 1017 1018 1019 1020 1021 1022  \n"
          "                        1023                                                    \n" +
          reportEnd);
}

TEST_F(FrozenReport, OfSetsThatLackAPartIsNotPrinted) {
  AddSet(1, "a", {1.0});
  AddSet(2, "b", {1.0});
  CDSet damaged = sets;
  damaged.m_vstrName.pop_back();
  ExpectRefused(damaged);
  damaged = sets;
  damaged.m_mdValues.pop_back();
  ExpectRefused(damaged);
}

TEST_F(FrozenReport, OfSetsHasARowForEachID) {
  AddSet(1, "a", {1.0});
  AddSet(2, "b", {1.0});
  sets.m_vnAuxID.pop_back();
  EXPECT_EQ(Report(sets), setHead + Filled("     1               a  1") + reportEnd);
}

// ---- All of them ----

TEST_F(FrozenReport, IsThatOfTheTaskAskedFor) {
  AddLink(1, "l1", {1.0});
  AddFunction(1, "f1", "a", "a");
  AddSet(1, "s1", {1.0});
  Report(links);
  Report(functions);
  Report(sets);
  CDLink otherLinks(study.Pod());
  CDEqn otherFunctions(study.Pod());
  CDSet otherSets(study.Pod());
  otherLinks.m_nID = otherFunctions.m_nID = otherSets.m_nID = 2;
  otherLinks.PutObject();
  otherFunctions.PutObject();
  otherSets.PutObject();
  EXPECT_EQ(ReportOf<CDLink>(study.Pod(), 1),
            linkHead + Filled("     1              l1        1.00") + reportEnd);
  EXPECT_EQ(ReportOf<CDEqn>(study.Pod(), 1), functionHead + "     1  f1(a)=a\n" + reportEnd);
  EXPECT_EQ(ReportOf<CDSet>(study.Pod(), 1),
            setHead + Filled("     1              s1  1") + reportEnd);
  EXPECT_EQ(ReportOf<CDLink>(study.Pod(), 2), linkHead + reportEnd);
  EXPECT_EQ(ReportOf<CDEqn>(study.Pod(), 2), functionHead + reportEnd);
  EXPECT_EQ(ReportOf<CDSet>(study.Pod(), 2), setHead + reportEnd);
}

}  // namespace
