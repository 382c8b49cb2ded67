#include <gtest/gtest.h>

#include <string>

#include "tests/task/MadeReports.h"
#include "tests/task/PointStudies.h"

// What is reported of tasks that have more starting points than one, or filter points.

namespace {

/// The report on a point with these rows.
std::string PointText(int number, const std::string& rows) {
  return "                                 DESIGN POINT " + std::to_string(number) +
         "\n"
         "================================================================================\n"
         "     Name        Type        Value\n"
         "--------------  ------  --------------\n" +
         rows +
         "================================================================================\n"
         "\n";
}

// ---- Combinations ----

class CombinationReports : public MadeReports<TaskMakeCombinatorial> {};

TEST_F(CombinationReports, OfVariablesAmongConstants) {
  AddTwoChoices();
  MakeWell();
  EXPECT_EQ(Report<CDVar>(),
            "                          DESIGN VARIABLE INFORMATION\n"
            "================================================================================\n"
            "Transfer                                         Auxil      Lower       Upper\n"
            "Sequence   Type  Random       Name       DB ID   DB ID      Bound       Bound\n"
            "--------  ------ ------  --------------  -----  -------  ----------- -----------\n"
            "       1  CDVar    No                 b      1\n"
            "       2  CDVar    No                 c      2\n"
            "       3  IDVar    No                 x      3     none      -1.0000      1.0000\n"
            "       4  CDVar    No                 a      4\n"
            "================================================================================\n"
            "\n");
}

TEST_F(CombinationReports, OfAResponseThatIsNotBounded) {
  AddTwoChoices();
  MakeWell();
  EXPECT_EQ(Report<CDResp>(),
            "                          DESIGN RESPONSE INFORMATION\n"
            "================================================================================\n"
            "Transfer                                         Auxil\n"
            "Sequence   Type  Random       Name       DB ID   DB ID\n"
            "--------  ------ ------  --------------  -----  -------\n"
            "       1  IResp    No                 f      1     none\n"
            "================================================================================\n"
            "\n");
  EXPECT_EQ(Report<CDCons>(),
            "                         DESIGN CONSTRAINT INFORMATION\n"
            "================================================================================\n"
            "    Subject      Subject   Subject                               Scale\n"
            "     Name         Index      Type    Bound        Limit          Factor\n"
            "--------------  ---------  -------  -------  --------------  --------------\n"
            "================================================================================\n"
            "\n");
  EXPECT_EQ(Report<CDObj>(),
            "                          DESIGN OBJECTIVE INFORMATION\n"
            "================================================================================\n"
            "    Subject     Subject  Subject      Worst          Weight\n"
            "     Name        Index     Type       Value          Factor         Target\n"
            "--------------  -------  -------  -------------  -------------  -------------\n"
            "             f        0   IResp       Undefined        1.00000       Minimize\n"
            "================================================================================\n"
            "\n");
}

TEST_F(CombinationReports, OfSetsInTheOrderOfTheirIDs) {
  AddTwoChoices();
  MakeWell();
  EXPECT_EQ(Report<CDSet>(),
            "                            DISCRETE SET INFORMATION\n"
            "================================================================================\n"
            "  ID         Name                                 Members\n"
            "------  --------------  --------------------------------------------------------\n"
            "     1          plates  1 2 3 5                                                 \n"
            "     2            bars  10 20                                                   \n"
            "================================================================================\n"
            "\n");
}

TEST_F(CombinationReports, OfAPointForEachCombination) {
  AddTwoChoices();
  MakeWell();
  EXPECT_EQ(PointReport(0), PointText(0,
                                      "             b   CDVar        15.00000\n"
                                      "             c   CDVar        9.000000\n"
                                      "             x   IDVar        0.000000\n"
                                      "             a   CDVar        2.500000\n"
                                      "             f   IResp         *      \n"));
  EXPECT_EQ(PointReport(1), PointText(1,
                                      "             b   CDVar        10.00000\n"
                                      "             c   CDVar        9.000000\n"
                                      "             x   IDVar        0.000000\n"
                                      "             a   CDVar        2.000000\n"
                                      "             f   IResp         *      \n"));
  EXPECT_EQ(PointReport(2), PointText(2,
                                      "             b   CDVar        20.00000\n"
                                      "             c   CDVar        9.000000\n"
                                      "             x   IDVar        0.000000\n"
                                      "             a   CDVar        2.000000\n"
                                      "             f   IResp         *      \n"));
  EXPECT_EQ(PointReport(3), PointText(3,
                                      "             b   CDVar        10.00000\n"
                                      "             c   CDVar        9.000000\n"
                                      "             x   IDVar        0.000000\n"
                                      "             a   CDVar        3.000000\n"
                                      "             f   IResp         *      \n"));
  EXPECT_EQ(PointReport(4), PointText(4,
                                      "             b   CDVar        20.00000\n"
                                      "             c   CDVar        9.000000\n"
                                      "             x   IDVar        0.000000\n"
                                      "             a   CDVar        3.000000\n"
                                      "             f   IResp         *      \n"));
}

TEST_F(CombinationReports, OfAResultThatCountsThem) {
  AddTwoChoices();
  MakeWell();
  EXPECT_EQ(Summary(),
            "                                RESULTS SUMMARY\n"
            "================================================================================\n"
            "                         Run Started On : \n"
            "                         Run Stopped On : \n"
            "                       Warning Messages : 0\n"
            "                         Error Messages : 0\n"
            "                   Total Analysis Calls : 0\n"
            "                Total Gradient Requests : 0\n"
            "     Total # Points in the Design Space : 5\n"
            "   Iteration of the Best Design (cont.) : 0\n"
            "                 Best Objective (cont.) : 1.797693e+308\n"
            "                  Continuous Run Status : Not Run\n"
            "                   Continuous Stop Code : normal\n"
            "================================================================================\n"
            "\n");
}

TEST_F(CombinationReports, OfASetWithoutAnAdmittedMember) {
  AddChoiceBetweenMembers();
  MakeWell();
  EXPECT_EQ(Report<CDVar>(),
            "                          DESIGN VARIABLE INFORMATION\n"
            "================================================================================\n"
            "Transfer                                         Auxil      Lower       Upper\n"
            "Sequence   Type  Random       Name       DB ID   DB ID      Bound       Bound\n"
            "--------  ------ ------  --------------  -----  -------  ----------- -----------\n"
            "       1  CDVar    No                 a      1\n"
            "       2  IDVar    No                 x      2     none      -1.0000      1.0000\n"
            "================================================================================\n"
            "\n");
  EXPECT_EQ(Report<CDSet>(),
            "                            DISCRETE SET INFORMATION\n"
            "================================================================================\n"
            "  ID         Name                                 Members\n"
            "------  --------------  --------------------------------------------------------\n"
            "     1          plates  1 5                                                     \n"
            "================================================================================\n"
            "\n");
}

TEST_F(CombinationReports, OfTheCopyOfTheBasePointThatNoMemberChanges) {
  AddChoiceBetweenMembers();
  MakeWell();
  const std::string rows =
      "             a   CDVar        3.000000\n"
      "             x   IDVar        0.000000\n"
      "             f   IResp         *      \n";
  EXPECT_EQ(PointReport(0), PointText(0, rows));
  EXPECT_EQ(PointReport(1), PointText(1, rows));
  EXPECT_EQ(Summary(),
            "                                RESULTS SUMMARY\n"
            "================================================================================\n"
            "                         Run Started On : \n"
            "                         Run Stopped On : \n"
            "                       Warning Messages : 0\n"
            "                         Error Messages : 0\n"
            "                   Total Analysis Calls : 0\n"
            "                Total Gradient Requests : 0\n"
            "     Total # Points in the Design Space : 2\n"
            "   Iteration of the Best Design (cont.) : 0\n"
            "                 Best Objective (cont.) : 1.797693e+308\n"
            "                  Continuous Run Status : Not Run\n"
            "                   Continuous Stop Code : normal\n"
            "================================================================================\n"
            "\n");
}

// ---- User points ----

const std::string analysedRows =
    "             x   IDVar       0.1250000\n"
    "             c   CDVar        5.000000\n"
    "             y   LDVar       0.2500000\n"
    "             f   IResp         *      \n"
    "             g   LResp         *      \n";
const std::string knownRows =
    "             x   IDVar       0.3750000\n"
    "             c   CDVar        6.000000\n"
    "             y   LDVar       0.7500000\n"
    "             f   IResp        11.00000\n"
    "             g   LResp        22.00000\n";

class UserPointReports : public MadeReports<TaskMakeUserPoints> {};

TEST_F(UserPointReports, OfVariables) {
  MakeMultiStart();
  EXPECT_EQ(Report<CDVar>(),
            "                          DESIGN VARIABLE INFORMATION\n"
            "================================================================================\n"
            "Transfer                                         Auxil      Lower       Upper\n"
            "Sequence   Type  Random       Name       DB ID   DB ID      Bound       Bound\n"
            "--------  ------ ------  --------------  -----  -------  ----------- -----------\n"
            "       1  IDVar    No                 x      1     none      -1.0000      1.0000\n"
            "       2  CDVar    No                 c      2\n"
            "       3  LDVar    No                 y      3        1      -1.0000      1.0000\n"
            "--------------------------------------------------------------------------------\n"
            "                            LINKED DESIGN VARIABLES\n"
            "--------------------------------------------------------------------------------\n"
            "Transfer\n"
            "Sequence       Name                          Link Definition\n"
            "--------  --------------  ------------------------------------------------------\n"
            "       3               y  0 + x*2\n"
            "================================================================================\n"
            "\n");
}

TEST_F(UserPointReports, OfResponses) {
  MakeMultiStart();
  EXPECT_EQ(Report<CDResp>(),
            "                          DESIGN RESPONSE INFORMATION\n"
            "================================================================================\n"
            "Transfer                                         Auxil\n"
            "Sequence   Type  Random       Name       DB ID   DB ID\n"
            "--------  ------ ------  --------------  -----  -------\n"
            "       1  IResp    No                 f      1     none\n"
            "       2  LResp    No                 g      2        1\n"
            "--------------------------------------------------------------------------------\n"
            "                                LINKED RESPONSES\n"
            "--------------------------------------------------------------------------------\n"
            "Transfer\n"
            "Sequence       Name                          Link Definition\n"
            "--------  --------------  ------------------------------------------------------\n"
            "       2               g  0 + f*2\n"
            "================================================================================\n"
            "\n");
}

TEST_F(UserPointReports, OfConstraintsOnALinkedVariable) {
  MakeMultiStart();
  EXPECT_EQ(Report<CDCons>(),
            "                         DESIGN CONSTRAINT INFORMATION\n"
            "================================================================================\n"
            "    Subject      Subject   Subject                               Scale\n"
            "     Name         Index      Type    Bound        Limit          Factor\n"
            "--------------  ---------  -------  -------  --------------  --------------\n"
            "             y          0   LDVar     Lower       -1.000000        1.000000\n"
            "             y          0   LDVar     Upper        1.000000        1.000000\n"
            "================================================================================\n"
            "\n");
}

TEST_F(UserPointReports, OfTheOneLinkOfBoth) {
  MakeMultiStart();
  EXPECT_EQ(Report<CDLink>(),
            "                                  LINK INFORMATION\n"
            "================================================================================\n"
            "  ID         Name        Constant                   Multipliers\n"
            "------  --------------  ----------  --------------------------------------------\n"
            "     1           twice        0.00  2                                           \n"
            "================================================================================\n"
            "\n");
}

TEST_F(UserPointReports, OfThePointsOfAnOptimisation) {
  MakeMultiStart();
  EXPECT_EQ(PointReport(0), PointText(0,
                                      "             x   IDVar       0.5000000\n"
                                      "             c   CDVar        9.000000\n"
                                      "             y   LDVar        0.000000\n"
                                      "             f   IResp         *      \n"
                                      "             g   LResp         *      \n"));
  EXPECT_EQ(PointReport(1), PointText(1, analysedRows));
  EXPECT_EQ(PointReport(2), PointText(2, knownRows));
}

TEST_F(UserPointReports, OfTheResultOfAnOptimisation) {
  MakeMultiStart();
  EXPECT_EQ(Summary(),
            "                                RESULTS SUMMARY\n"
            "================================================================================\n"
            "                         Run Started On : \n"
            "                         Run Stopped On : \n"
            "                       Warning Messages : 0\n"
            "                         Error Messages : 0\n"
            "                   Total Analysis Calls : 0\n"
            "                Total Gradient Requests : 0\n"
            "     Total # Points in the Design Space : 3\n"
            "   Iteration of the Best Design (cont.) : 0\n"
            "                 Best Objective (cont.) : 1.797693e+308\n"
            "                  Continuous Run Status : Not Run\n"
            "                   Continuous Stop Code : normal\n"
            "================================================================================\n"
            "\n");
}

TEST_F(UserPointReports, OfThePointsOfADesign) {
  MakeDesign();
  EXPECT_EQ(PointReport(0), PointText(0, analysedRows));
  EXPECT_EQ(PointReport(1), PointText(1, knownRows));
}

TEST_F(UserPointReports, OfTheResultOfADesign) {
  MakeDesign();
  EXPECT_EQ(Summary(),
            "                                RESULTS SUMMARY\n"
            "================================================================================\n"
            "                         Run Started On : \n"
            "                         Run Stopped On : \n"
            "                       Warning Messages : 0\n"
            "                         Error Messages : 0\n"
            "                   Total Analysis Calls : 0\n"
            "             Points in the Design Space : 2\n"
            "                             Run Status : Not Run\n"
            "                              Stop Code : normal\n"
            "================================================================================\n"
            "\n");
}

TEST_F(UserPointReports, OfADesignHaveNoObjectives) {
  MakeDesign();
  EXPECT_EQ(Report<CDObj>(), "");
}

// ---- Designs of experiments ----

class FilterReports : public MadeReports<TaskMakeFilter> {};

TEST_F(FilterReports, OfVariables) {
  MakeFiltered(10, 5);
  EXPECT_EQ(Report<CDVar>(),
            "                          DESIGN VARIABLE INFORMATION\n"
            "================================================================================\n"
            "Transfer                                         Auxil      Lower       Upper\n"
            "Sequence   Type  Random       Name       DB ID   DB ID      Bound       Bound\n"
            "--------  ------ ------  --------------  -----  -------  ----------- -----------\n"
            "       1  IDVar    No                 x      1     none      -1.0000      1.0000\n"
            "       2  LDVar    No                 y      2        1  -1.0000e+30      1.5000\n"
            "--------------------------------------------------------------------------------\n"
            "                            LINKED DESIGN VARIABLES\n"
            "--------------------------------------------------------------------------------\n"
            "Transfer\n"
            "Sequence       Name                          Link Definition\n"
            "--------  --------------  ------------------------------------------------------\n"
            "       2               y  0 + x*2\n"
            "================================================================================\n"
            "\n");
}

TEST_F(FilterReports, OfResponses) {
  MakeFiltered(10, 5);
  EXPECT_EQ(Report<CDResp>(),
            "                          DESIGN RESPONSE INFORMATION\n"
            "================================================================================\n"
            "Transfer                                         Auxil\n"
            "Sequence   Type  Random       Name       DB ID   DB ID\n"
            "--------  ------ ------  --------------  -----  -------\n"
            "       1  IResp    No                 f      1     none\n"
            "       2  LResp    No                 g      2        2\n"
            "       3  LResp    No                 h      3        2\n"
            "       4  SResp    No                 s      4        3\n"
            "--------------------------------------------------------------------------------\n"
            "                              SYNTHETIC RESPONSES\n"
            "--------------------------------------------------------------------------------\n"
            "Transfer\n"
            "Sequence       Name                              Function\n"
            "--------  --------------  ------------------------------------------------------\n"
            "       4               s  square(y)\n"
            "--------------------------------------------------------------------------------\n"
            "                                LINKED RESPONSES\n"
            "--------------------------------------------------------------------------------\n"
            "Transfer\n"
            "Sequence       Name                          Link Definition\n"
            "--------  --------------  ------------------------------------------------------\n"
            "       2               g  0 + x*1 + y*1\n"
            "       3               h  0 + x*1 + f*1\n"
            "================================================================================\n"
            "\n");
}

TEST_F(FilterReports, OfTheConstraintsThatAreKept) {
  MakeFiltered(10, 5);
  EXPECT_EQ(Report<CDCons>(),
            "                         DESIGN CONSTRAINT INFORMATION\n"
            "================================================================================\n"
            "    Subject      Subject   Subject                               Scale\n"
            "     Name         Index      Type    Bound        Limit          Factor\n"
            "--------------  ---------  -------  -------  --------------  --------------\n"
            "             y          0   LDVar     Upper        1.500000        1.500000\n"
            "             g          0   LResp     Upper        20.00000        20.00000\n"
            "             s          0   SResp     Upper        40.00000        40.00000\n"
            "================================================================================\n"
            "\n");
}

TEST_F(FilterReports, OfAllConstraintsWithoutAFilter) {
  MakeFiltered(10, 0);
  EXPECT_EQ(Report<CDCons>(),
            "                         DESIGN CONSTRAINT INFORMATION\n"
            "================================================================================\n"
            "    Subject      Subject   Subject                               Scale\n"
            "     Name         Index      Type    Bound        Limit          Factor\n"
            "--------------  ---------  -------  -------  --------------  --------------\n"
            "             y          0   LDVar     Upper        1.500000        1.500000\n"
            "             f          0   IResp     Upper        10.00000        10.00000\n"
            "             g          0   LResp     Upper        20.00000        20.00000\n"
            "             h          1   LResp     Upper        30.00000        30.00000\n"
            "             s          0   SResp     Upper        40.00000        40.00000\n"
            "================================================================================\n"
            "\n");
}

TEST_F(FilterReports, OfDefinitions) {
  MakeFiltered(10, 5);
  EXPECT_EQ(Report<CDLink>(),
            "                                  LINK INFORMATION\n"
            "================================================================================\n"
            "  ID         Name        Constant                   Multipliers\n"
            "------  --------------  ----------  --------------------------------------------\n"
            "     1           twice        0.00  2                                           \n"
            "     2             sum        0.00  1 1                                         \n"
            "================================================================================\n"
            "\n");
  EXPECT_EQ(Report<CDEqn>(),
            "                          SYNTHETIC FUNCTION INFORMATION\n"
            "================================================================================\n"
            "  ID                                   Function\n"
            "------  ------------------------------------------------------------------------\n"
            "     3  square(a)=a*a\n"
            "================================================================================\n"
            "\n");
}

TEST_F(FilterReports, OfItsPointAndResult) {
  MakeFiltered(10, 5);
  EXPECT_EQ(PointReport(0), PointText(0,
                                      "             x   IDVar        0.000000\n"
                                      "             y   LDVar        0.000000\n"
                                      "             f   IResp         *      \n"
                                      "             g   LResp         *      \n"
                                      "             h   LResp         *      \n"
                                      "             s   SResp         *      \n"));
  EXPECT_EQ(Summary(),
            "                                RESULTS SUMMARY\n"
            "================================================================================\n"
            "                         Run Started On : \n"
            "                         Run Stopped On : \n"
            "                       Warning Messages : 0\n"
            "                         Error Messages : 0\n"
            "                   Total Analysis Calls : 0\n"
            "             Points in the Design Space : 1\n"
            "                             Run Status : Not Run\n"
            "                              Stop Code : normal\n"
            "================================================================================\n"
            "\n");
}

}  // namespace
