#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "tests/support/Printed.h"
#include "tests/task/FunctionsStudy.h"
#include "tests/task/MakeStudy.h"

// All reports of tasks that have just been made.

namespace {

/// What Record::Dump prints of task 1.
template <class Record>
std::string ReportOf(POD* pod) {
  return Printed([&](std::FILE* stream) { Record::Dump(pod, stream, 1); });
}

std::string StartingPoint(POD* pod) {
  return Printed([&](std::FILE* stream) { CDPoint::Dump(pod, stream, 1, 0); });
}

std::string Summary(POD* pod) {
  return Printed([&](std::FILE* stream) { CResult::Dump(pod, stream, 1, false); });
}

const std::string noMessages =
    "                         MESSAGE SUMMARY (Task ID: 1)\n"
    "================================================================================\n"
    "================================================================================\n"
    "\n";

const std::string newSummary =
    "                                RESULTS SUMMARY\n"
    "================================================================================\n"
    "                         Run Started On : \n"
    "                         Run Stopped On : \n"
    "                       Warning Messages : 0\n"
    "                         Error Messages : 0\n"
    "                   Total Analysis Calls : 0\n"
    "                Total Gradient Requests : 0\n"
    "     Total # Points in the Design Space : 1\n"
    "   Iteration of the Best Design (cont.) : 0\n"
    "                 Best Objective (cont.) : 1.797693e+308\n"
    "                  Continuous Run Status : Not Run\n"
    "                   Continuous Stop Code : normal\n"
    "================================================================================\n"
    "\n";

// ---- Arrays, links, synthetic functions ----

using TaskMakeFunctionsReport = FunctionsStudy;

TEST_F(TaskMakeFunctionsReport, OfVariables) {
  EXPECT_EQ(ReportOf<CDVar>(Pod()),
            "                          DESIGN VARIABLE INFORMATION\n"
            "================================================================================\n"
            "Transfer                                         Auxil      Lower       Upper\n"
            "Sequence   Type  Random       Name       DB ID   DB ID      Bound       Bound\n"
            "--------  ------ ------  --------------  -----  -------  ----------- -----------\n"
            "       1  IDVar+   No                 k      5     none      -1.0000      2.0000\n"
            "       2  IDVar    No               x_1      1     none       0.0000      10.000\n"
            "       3  IDVar    No               x_2      1     none       0.0000      10.000\n"
            "       4  IDVar    No               x_3      1     none       0.0000      10.000\n"
            "       5  CDVar    No                 c      2\n"
            "       6  LDVar    No                 y      3        1  -1.0000e+30      20.000\n"
            "       7  SDvar    No               z_1      4        2     -0.50000  1.0000e+30\n"
            "       8  SDvar    No               z_2      4        2     -0.50000  1.0000e+30\n"
            "       9  IDVar*   No                 d      6        6       2.0000      4.0000\n"
            "+ - integer  * - discrete   \n"
            "--------------------------------------------------------------------------------\n"
            "                             User Supplied Scaling\n"
            "--------------------------------------------------------------------------------\n"
            "Transfer                     Scale\n"
            "Sequence       Name         Factor\n"
            "--------  --------------  -----------\n"
            "       1               k       2.0000\n"
            "--------------------------------------------------------------------------------\n"
            "                            LINKED DESIGN VARIABLES\n"
            "--------------------------------------------------------------------------------\n"
            "Transfer\n"
            "Sequence       Name                          Link Definition\n"
            "--------  --------------  ------------------------------------------------------\n"
            "       6               y  1 + x_3*2 + c*3\n"
            "--------------------------------------------------------------------------------\n"
            "                           SYNTHETIC DESIGN VARIABLES\n"
            "--------------------------------------------------------------------------------\n"
            "Transfer\n"
            "Sequence       Name                              Function\n"
            "--------  --------------  ------------------------------------------------------\n"
            "       7             z_1  area(x_2(2), y)\n"
            "       8             z_2  area(x_2(2), y)\n"
            "--------------------------------------------------------------------------------\n"
            "                           DISCRETE DESIGN VARIABLES\n"
            "--------------------------------------------------------------------------------\n"
            "Transfer\n"
            "Sequence       Name                              Members\n"
            "--------  --------------  ------------------------------------------------------\n"
            "       9               d  1, 2, 4, 8\n"
            "================================================================================\n"
            "\n");
}

TEST_F(TaskMakeFunctionsReport, OfResponses) {
  EXPECT_EQ(ReportOf<CDResp>(Pod()),
            "                          DESIGN RESPONSE INFORMATION\n"
            "================================================================================\n"
            "Transfer                                         Auxil\n"
            "Sequence   Type  Random       Name       DB ID   DB ID\n"
            "--------  ------ ------  --------------  -----  -------\n"
            "       1  IResp    No               f_1      1     none\n"
            "       2  IResp    No               f_2      1     none\n"
            "       3  LResp    No                 g      2        5\n"
            "       4  SResp    No                 h      3        4\n"
            "       5  IResp*   No                 p      4     none\n"
            "* - pass/fail\n"
            "--------------------------------------------------------------------------------\n"
            "                              SYNTHETIC RESPONSES\n"
            "--------------------------------------------------------------------------------\n"
            "Transfer\n"
            "Sequence       Name                              Function\n"
            "--------  --------------  ------------------------------------------------------\n"
            "       4               h  total(g, z_2)\n"
            "--------------------------------------------------------------------------------\n"
            "                                LINKED RESPONSES\n"
            "--------------------------------------------------------------------------------\n"
            "Transfer\n"
            "Sequence       Name                          Link Definition\n"
            "--------  --------------  ------------------------------------------------------\n"
            "       3               g  0 + x_2*1 + f_2*-1\n"
            "================================================================================\n"
            "\n");
}

TEST_F(TaskMakeFunctionsReport, OfConstraints) {
  EXPECT_EQ(ReportOf<CDCons>(Pod()),
            "                         DESIGN CONSTRAINT INFORMATION\n"
            "================================================================================\n"
            "    Subject      Subject   Subject                               Scale\n"
            "     Name         Index      Type    Bound        Limit          Factor\n"
            "--------------  ---------  -------  -------  --------------  --------------\n"
            "             y          0   LDVar     Upper        20.00000        20.00000\n"
            "           z_1          0   SDVar     Lower      -0.5000000        1.000000\n"
            "           z_2          1   SDVar     Lower      -0.5000000        1.000000\n"
            "             g          0   LResp     Lower       -3.000000        3.000000\n"
            "             g          0   LResp     Upper        5.000000        4.000000\n"
            "             h          0   SResp     Upper       0.2500000        1.000000\n"
            "================================================================================\n"
            "\n");
}

TEST_F(TaskMakeFunctionsReport, OfObjectiveTerms) {
  EXPECT_EQ(ReportOf<CDObj>(Pod()),
            "                          DESIGN OBJECTIVE INFORMATION\n"
            "================================================================================\n"
            "    Subject     Subject  Subject      Worst          Weight\n"
            "     Name        Index     Type       Value          Factor         Target\n"
            "--------------  -------  -------  -------------  -------------  -------------\n"
            "             k        0   IDVar         4.00000       0.500000        1.00000\n"
            "           f_1        0   IResp         10.0000        3.00000       Maximize\n"
            "           f_2        1   IResp         10.0000        3.00000       Maximize\n"
            "================================================================================\n"
            "\n");
}

TEST_F(TaskMakeFunctionsReport, OfLinks) {
  EXPECT_EQ(ReportOf<CDLink>(Pod()),
            "                                  LINK INFORMATION\n"
            "================================================================================\n"
            "  ID         Name        Constant                   Multipliers\n"
            "------  --------------  ----------  --------------------------------------------\n"
            "     1        weighted        1.00  2 3                                         \n"
            "     5      difference        0.00  1 -1                                        \n"
            "================================================================================\n"
            "\n");
}

TEST_F(TaskMakeFunctionsReport, OfSyntheticFunctions) {
  EXPECT_EQ(ReportOf<CDEqn>(Pod()),
            "                          SYNTHETIC FUNCTION INFORMATION\n"
            "================================================================================\n"
            "  ID                                   Function\n"
            "------  ------------------------------------------------------------------------\n"
            "     2  area(a,b)=a*b\n"
            "     4  total(p,q)=p+q\n"
            "================================================================================\n"
            "\n");
}

TEST_F(TaskMakeFunctionsReport, OfDiscreteSets) {
  EXPECT_EQ(ReportOf<CDSet>(Pod()),
            "                            DISCRETE SET INFORMATION\n"
            "================================================================================\n"
            "  ID         Name                                 Members\n"
            "------  --------------  --------------------------------------------------------\n"
            "     6          plates  1 2 4 8                                                 \n"
            "================================================================================\n"
            "\n");
}

TEST_F(TaskMakeFunctionsReport, OfTheFirstPoint) {
  EXPECT_EQ(StartingPoint(Pod()),
            "                                 DESIGN POINT 0\n"
            "================================================================================\n"
            "     Name        Type        Value\n"
            "--------------  ------  --------------\n"
            "             k   IDVar        2.000000\n"
            "           x_1   IDVar        4.000000\n"
            "           x_2   IDVar        4.000000\n"
            "           x_3   IDVar        4.000000\n"
            "             c   CDVar        7.000000\n"
            "             y   LDVar        0.000000\n"
            "           z_1   SDVar        0.000000\n"
            "           z_2   SDVar        0.000000\n"
            "             d   IDVar        2.000000\n"
            "           f_1   IResp         *      \n"
            "           f_2   IResp         *      \n"
            "             g   LResp         *      \n"
            "             h   SResp         *      \n"
            "             p   IResp         *      \n"
            "================================================================================\n"
            "\n");
}

TEST_F(TaskMakeFunctionsReport, OfTheRun) {
  EXPECT_EQ(Summary(Pod()), newSummary);
  EXPECT_EQ(ReportOf<CMessage>(Pod()), noMessages);
}

// ---- The small study ----

/// The reports that are the same for every type of task.
class TaskMakeReportByType : public MakeStudy, public testing::WithParamInterface<int> {
 protected:
  void SetUp() override {
    AddSmallStudy();
    SetType(GetParam());
    ASSERT_EQ(MakeWell().m_nType, GetParam());
  }
};

TEST_P(TaskMakeReportByType, OfVariablesAndTheFirstPoint) {
  EXPECT_EQ(ReportOf<CDVar>(Pod()),
            "                          DESIGN VARIABLE INFORMATION\n"
            "================================================================================\n"
            "Transfer                                         Auxil      Lower       Upper\n"
            "Sequence   Type  Random       Name       DB ID   DB ID      Bound       Bound\n"
            "--------  ------ ------  --------------  -----  -------  ----------- -----------\n"
            "       1  IDVar    No                 x      1     none      -1.0000      1.0000\n"
            "================================================================================\n"
            "\n");
  EXPECT_EQ(StartingPoint(Pod()),
            "                                 DESIGN POINT 0\n"
            "================================================================================\n"
            "     Name        Type        Value\n"
            "--------------  ------  --------------\n"
            "             x   IDVar       0.5000000\n"
            "             f   IResp         *      \n"
            "             g   IResp         *      \n"
            "================================================================================\n"
            "\n");
}

TEST_P(TaskMakeReportByType, OfResponsesAndConstraints) {
  EXPECT_EQ(ReportOf<CDResp>(Pod()),
            "                          DESIGN RESPONSE INFORMATION\n"
            "================================================================================\n"
            "Transfer                                         Auxil\n"
            "Sequence   Type  Random       Name       DB ID   DB ID\n"
            "--------  ------ ------  --------------  -----  -------\n"
            "       1  IResp    No                 f      1     none\n"
            "       2  IResp    No                 g      2     none\n"
            "================================================================================\n"
            "\n");
  EXPECT_EQ(ReportOf<CDCons>(Pod()),
            "                         DESIGN CONSTRAINT INFORMATION\n"
            "================================================================================\n"
            "    Subject      Subject   Subject                               Scale\n"
            "     Name         Index      Type    Bound        Limit          Factor\n"
            "--------------  ---------  -------  -------  --------------  --------------\n"
            "             g          1   IResp     Upper        2.000000        2.000000\n"
            "================================================================================\n"
            "\n");
}

TEST_P(TaskMakeReportByType, OfDefinitionsHaveNoRows) {
  EXPECT_EQ(ReportOf<CDLink>(Pod()),
            "                                  LINK INFORMATION\n"
            "================================================================================\n"
            "  ID         Name        Constant                   Multipliers\n"
            "------  --------------  ----------  --------------------------------------------\n"
            "================================================================================\n"
            "\n");
  EXPECT_EQ(ReportOf<CDEqn>(Pod()),
            "                          SYNTHETIC FUNCTION INFORMATION\n"
            "================================================================================\n"
            "  ID                                   Function\n"
            "------  ------------------------------------------------------------------------\n"
            "================================================================================\n"
            "\n");
  EXPECT_EQ(ReportOf<CDSet>(Pod()),
            "                            DISCRETE SET INFORMATION\n"
            "================================================================================\n"
            "  ID         Name                                 Members\n"
            "------  --------------  --------------------------------------------------------\n"
            "================================================================================\n"
            "\n");
}

TEST_P(TaskMakeReportByType, OfMessagesIsEmpty) {
  EXPECT_EQ(ReportOf<CMessage>(Pod()), noMessages);
}

INSTANTIATE_TEST_SUITE_P(GradientAndDesign, TaskMakeReportByType, testing::Values(0, 2));

class TaskMakeReport : public MakeStudy {
 protected:
  void MakeType(int type) {
    AddSmallStudy();
    SetType(type);
    ASSERT_EQ(MakeWell().m_nType, type);
  }
};

TEST_F(TaskMakeReport, OfAGradientOptimisationHasObjectiveTerms) {
  MakeType(0);
  EXPECT_EQ(ReportOf<CDObj>(Pod()),
            "                          DESIGN OBJECTIVE INFORMATION\n"
            "================================================================================\n"
            "    Subject     Subject  Subject      Worst          Weight\n"
            "     Name        Index     Type       Value          Factor         Target\n"
            "--------------  -------  -------  -------------  -------------  -------------\n"
            "             f        0   IResp       Undefined        1.00000       Minimize\n"
            "================================================================================\n"
            "\n");
}

TEST_F(TaskMakeReport, OfADesignHasNoObjectiveTerms) {
  MakeType(2);
  EXPECT_EQ(ReportOf<CDObj>(Pod()), "");
}

TEST_F(TaskMakeReport, OfTheRunOfAGradientOptimisation) {
  MakeType(0);
  EXPECT_EQ(Summary(Pod()), newSummary);
}

TEST_F(TaskMakeReport, OfTheRunOfADesign) {
  MakeType(2);
  EXPECT_EQ(Summary(Pod()),
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
