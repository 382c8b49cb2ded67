#include <gtest/gtest.h>

#include "tests/task/MadeReports.h"
#include "tests/task/RandomStudy.h"

// What is reported of a task with random variables and responses.

namespace {

class TaskMakeRandomReports : public MadeReports<TaskMakeRandom> {};

TEST_F(TaskMakeRandomReports, OfVariables) {
  EXPECT_EQ(Report<CDVar>(),
            "                          DESIGN VARIABLE INFORMATION\n"
            "================================================================================\n"
            "Transfer                                         Auxil      Lower       Upper\n"
            "Sequence   Type  Random       Name       DB ID   DB ID      Bound       Bound\n"
            "--------  ------ ------  --------------  -----  -------  ----------- -----------\n"
            "       1  IDVar    Yes              m_1      1     none       2.0000      9.0000\n"
            "       2  IDVar    Yes              s_1      2     none      0.50000      2.0000\n"
            "       3  IDVar    Yes              m_2      1     none       2.0000      9.0000\n"
            "       4  IDVar    Yes              s_2      2     none      0.50000      2.0000\n"
            "       5  IDVar    No                 u      3     none      -1.0000      1.0000\n"
            "       6  IDVar    Yes               w1      4     none       0.0000      4.0000\n"
            "       7  IDVar    Yes               w2      5     none       1.0000      5.0000\n"
            "       8  CDVar    Yes               w3      6\n"
            "--------------------------------------------------------------------------------\n"
            "                            RANDOM DESIGN VARIABLES\n"
            "--------------------------------------------------------------------------------\n"
            " DVar  Name       Random Parameter          Distribution     \n"
            "-----  ------  ----------------------  ----------------------\n"
            "    1  m_1           Mean Value        LogNormal Distribution\n"
            "    2  s_1       Standard Deviation    LogNormal Distribution\n"
            "    3  m_2           Mean Value        LogNormal Distribution\n"
            "    4  s_2       Standard Deviation    LogNormal Distribution\n"
            "    6  w1           1st Parameter       Weibull Distribution \n"
            "    7  w2           2nd Parameter       Weibull Distribution \n"
            "    8  w3           3rd Parameter       Weibull Distribution \n"
            "================================================================================\n"
            "\n");
}

TEST_F(TaskMakeRandomReports, OfResponses) {
  EXPECT_EQ(Report<CDResp>(),
            "                          DESIGN RESPONSE INFORMATION\n"
            "================================================================================\n"
            "Transfer                                         Auxil\n"
            "Sequence   Type  Random       Name       DB ID   DB ID\n"
            "--------  ------ ------  --------------  -----  -------\n"
            "       1  IResp    Yes              pof      1     none\n"
            "       2  IResp    Yes              r_1      2     none\n"
            "       3  IResp    Yes             rs_1      3     none\n"
            "       4  IResp    Yes             rp_1      4     none\n"
            "       5  IResp    Yes              r_2      2     none\n"
            "       6  IResp    Yes             rs_2      3     none\n"
            "       7  IResp    Yes             rp_2      4     none\n"
            "       8  IResp    No                 f      5     none\n"
            "--------------------------------------------------------------------------------\n"
            "                                RANDOM RESPONSES\n"
            "--------------------------------------------------------------------------------\n"
            "DResp  Name       Random Parameter   \n"
            "-----  ------  ----------------------\n"
            "    1  pof        Series System POF  \n"
            "    2  r_1           Mean Value      \n"
            "    3  rs_1      Standard Deviation  \n"
            "    4  rp_1    Probability of Failure\n"
            "    5  r_2           Mean Value      \n"
            "    6  rs_2      Standard Deviation  \n"
            "    7  rp_2    Probability of Failure\n"
            "================================================================================\n"
            "\n");
}

TEST_F(TaskMakeRandomReports, OfConstraints) {
  EXPECT_EQ(Report<CDCons>(),
            "                         DESIGN CONSTRAINT INFORMATION\n"
            "================================================================================\n"
            "    Subject      Subject   Subject                               Scale\n"
            "     Name         Index      Type    Bound        Limit          Factor\n"
            "--------------  ---------  -------  -------  --------------  --------------\n"
            "             f          7   IResp     Upper        7.000000        7.000000\n"
            "================================================================================\n"
            "\n");
}

TEST_F(TaskMakeRandomReports, OfObjectives) {
  EXPECT_EQ(Report<CDObj>(),
            "                          DESIGN OBJECTIVE INFORMATION\n"
            "================================================================================\n"
            "    Subject     Subject  Subject      Worst          Weight\n"
            "     Name        Index     Type       Value          Factor         Target\n"
            "--------------  -------  -------  -------------  -------------  -------------\n"
            "             f        7   IResp       Undefined        1.00000       Minimize\n"
            "================================================================================\n"
            "\n");
}

TEST_F(TaskMakeRandomReports, OfNoDefinitions) {
  EXPECT_EQ(Report<CDLink>(),
            "                                  LINK INFORMATION\n"
            "================================================================================\n"
            "  ID         Name        Constant                   Multipliers\n"
            "------  --------------  ----------  --------------------------------------------\n"
            "================================================================================\n"
            "\n");
  EXPECT_EQ(Report<CDEqn>(),
            "                          SYNTHETIC FUNCTION INFORMATION\n"
            "================================================================================\n"
            "  ID                                   Function\n"
            "------  ------------------------------------------------------------------------\n"
            "================================================================================\n"
            "\n");
  EXPECT_EQ(Report<CDSet>(),
            "                            DISCRETE SET INFORMATION\n"
            "================================================================================\n"
            "  ID         Name                                 Members\n"
            "------  --------------  --------------------------------------------------------\n"
            "================================================================================\n"
            "\n");
}

TEST_F(TaskMakeRandomReports, OfItsPoint) {
  EXPECT_EQ(PointReport(0),
            "                                 DESIGN POINT 0\n"
            "================================================================================\n"
            "     Name        Type        Value\n"
            "--------------  ------  --------------\n"
            "           m_1   IDVar        3.000000\n"
            "           s_1   IDVar        1.000000\n"
            "           m_2   IDVar        3.000000\n"
            "           s_2   IDVar        1.000000\n"
            "             u   IDVar        0.000000\n"
            "            w1   IDVar        1.000000\n"
            "            w2   IDVar        2.000000\n"
            "            w3   CDVar        6.000000\n"
            "           pof   IResp         *      \n"
            "           r_1   IResp         *      \n"
            "          rs_1   IResp         *      \n"
            "          rp_1   IResp         *      \n"
            "           r_2   IResp         *      \n"
            "          rs_2   IResp         *      \n"
            "          rp_2   IResp         *      \n"
            "             f   IResp         *      \n"
            "================================================================================\n"
            "\n");
}

TEST_F(TaskMakeRandomReports, OfItsResult) {
  EXPECT_EQ(Summary(),
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
            "\n");
}

}  // namespace
