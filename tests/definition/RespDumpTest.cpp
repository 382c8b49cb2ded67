#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "store/KestErr.h"
#include "tests/definition/RespReports.h"
#include "tests/support/Bytes.h"

namespace {

// ---- All responses ----

TEST_F(RespReports, OfNoResponses) {
  EXPECT_EQ(Report(), head + "No Response objects defined.\n" + reportEnd);
}

TEST_F(RespReports, OfANewResponse) {
  CResp resp(study.Pod());
  resp.m_nID = 1;
  resp.PutObject();
  EXPECT_EQ(
      Report(),
      head + "    1                    0       1   ind    No  \n" + constraintHead +
          "    1                    *              *              *              *        \n" +
          reportEnd);
}

TEST_F(RespReports, ListEveryKindInTheOrderOfTheNumbers) {
  Resp(10, "ten", 3).PutObject();
  Resp(9, "nine", 2).PutObject();
  Resp(8, "eight", 1).PutObject();
  Resp(7, "seven", 0).PutObject();
  Resp(100, "hundred", 4).PutObject();
  Resp(6, "six", -1).PutObject();
  EXPECT_EQ(Report(), head +
                          "    6         six        0       1  ????    No  \n"
                          "    7       seven        0       1   ind    No  \n"
                          "    8       eight        0       1  link    No  \n"
                          "    9        nine        0       1   syn    No  \n"
                          "   10         ten        0       1  ????    No  \n"
                          "  100     hundred        0       1  ????    No  \n" +
                          reportEnd);
}

TEST_F(RespReports, CutNamesAndWidenNumbers) {
  CResp resp = Resp(99999, "tenletters");
  resp.m_uIndex = 9999999;
  resp.m_uSize = 999999;
  resp.PutObject();
  resp = Resp(2147483647, "elevenlette100%s");
  resp.m_uIndex = 4294967295UL;
  resp.m_uSize = 2147483647;
  resp.PutObject();
  resp = Resp(100000, " a b ");
  resp.m_uIndex = 10000000;
  resp.m_uSize = 1000000;
  resp.PutObject();
  EXPECT_EQ(Report(), head +
                          "99999  tenletters  9999999  999999   ind    No  \n"
                          "100000        a b   10000000  1000000   ind    No  \n"
                          "2147483647  elevenlett       -1  2147483647   ind    No  \n" +
                          reportEnd);
}

// ---- Random responses ----

TEST_F(RespReports, ShowTheParameterOfRandomResponses) {
  Resp(1, "fixed").PutObject();
  long id = 2;
  for (const int parameter : {-4, -3, -2, -1, 0, 1, 2, 3, 4}) {
    CResp resp = Resp(id++, "r");
    resp.m_nRandom = 1;
    resp.m_nRandomParam = parameter;
    resp.PutObject();
  }
  EXPECT_EQ(Report(), head +
                          "    1       fixed        0       1   ind    No  \n"
                          "    2           r        0       1   ind    Yes \n"
                          "    3           r        0       1   ind    Yes \n"
                          "    4           r        0       1   ind    Yes \n"
                          "    5           r        0       1   ind    Yes \n"
                          "    6           r        0       1   ind    Yes \n"
                          "    7           r        0       1   ind    Yes \n"
                          "    8           r        0       1   ind    Yes \n"
                          "    9           r        0       1   ind    Yes \n"
                          "   10           r        0       1   ind    Yes \n" +
                          randomHead +
                          "    2           r           ????           \n"
                          "    3           r  Probability of Failure  \n"
                          "    4           r    Standard Deviation    \n"
                          "    5           r        Mean Value        \n"
                          "    6           r       1st Parameter      \n"
                          "    7           r       2nd Parameter      \n"
                          "    8           r       3rd Parameter      \n"
                          "    9           r       4th Parameter      \n"
                          "   10           r           ????           \n" +
                          reportEnd);
}

TEST_F(RespReports, TakeAnyFlagButZeroForSet) {
  CResp resp = Resp(1, "r");
  resp.m_nRandom = -1;
  resp.m_nObjective = 2;
  resp.m_nConstraint = -5;
  resp.m_nHasWorst = -1;
  resp.m_nHasLower = 3;
  resp.m_nHasLowerScale = -1;
  resp.m_nHasUpper = -2;
  resp.m_nHasUpperScale = 7;
  resp.PutObject();
  EXPECT_EQ(
      Report(),
      head + "    1           r        0       1   ind    Yes \n" + randomHead +
          "    1           r       1st Parameter      \n" + objectiveHead +
          "    1           r  minimize         0.000000         *              1.000000\n" +
          constraintHead +
          "    1           r    -1.0000e+30         1.0000     1.0000e+30         1.0000  \n" +
          reportEnd);
}

// ---- Objectives ----

TEST_F(RespReports, ShowObjectives) {
  CResp resp = Resp(1, "no");
  resp.PutObject();
  resp = Resp(2, "low");
  resp.m_nObjective = 1;
  resp.m_fWorst = 5;
  resp.m_fTarget = 6;
  resp.PutObject();
  resp = Resp(3, "high");
  resp.m_nObjective = 1;
  resp.m_nGoal = 1;
  resp.m_nHasWorst = 1;
  resp.m_fWorst = -1234567.8;
  resp.m_fWeight = 0;
  resp.PutObject();
  resp = Resp(4, "on target and more");
  resp.m_nObjective = 1;
  resp.m_nGoal = 2;
  resp.m_fTarget = 1e30;
  resp.m_fWeight = 100;
  resp.PutObject();
  resp = Resp(5, "both");
  resp.m_nObjective = 1;
  resp.m_nGoal = 2;
  resp.m_nHasWorst = 1;
  resp.m_fWorst = 0.5;
  resp.m_fTarget = -0.00001;
  resp.m_fWeight = 12345678;
  resp.PutObject();
  EXPECT_EQ(Report(),
            head +
                "    1          no        0       1   ind    No  \n"
                "    2         low        0       1   ind    No  \n"
                "    3        high        0       1   ind    No  \n"
                "    4  on target         0       1   ind    No  \n"
                "    5        both        0       1   ind    No  \n" +
                objectiveHead +
                "    2         low  minimize         *                *              1.000000\n"
                "    3        high  maximize        -1234568.         *              0.000000\n"
                "    4  on target    target          *            1.000000e+30       100.0000\n"
                "    5        both   target         0.5000000    -1.000000e-05   1.234568e+07\n" +
                reportEnd);
}

// ---- Constraints ----

TEST_F(RespReports, ShowTheSidesOfConstraintsByTheirFlags) {
  long id = 1;
  for (const int flags : {0b0000, 0b0101, 0b1000, 0b1100, 0b0010, 0b0011, 0b1010, 0b1111}) {
    CResp resp = Resp(id++, "c");
    resp.m_nConstraint = 1;
    resp.m_nHasLower = flags >> 3 & 1;
    resp.m_nHasLowerScale = flags >> 2 & 1;
    resp.m_nHasUpper = flags >> 1 & 1;
    resp.m_nHasUpperScale = flags & 1;
    resp.m_fLower = -2.5;
    resp.m_fLowerScale = 4;
    resp.m_fUpper = 123456.7;
    resp.m_fUpperScale = 0.00001;
    resp.PutObject();
  }
  Resp(id, "no").PutObject();
  EXPECT_EQ(
      Report(),
      head +
          "    1           c        0       1   ind    No  \n"
          "    2           c        0       1   ind    No  \n"
          "    3           c        0       1   ind    No  \n"
          "    4           c        0       1   ind    No  \n"
          "    5           c        0       1   ind    No  \n"
          "    6           c        0       1   ind    No  \n"
          "    7           c        0       1   ind    No  \n"
          "    8           c        0       1   ind    No  \n"
          "    9          no        0       1   ind    No  \n" +
          constraintHead +
          "    1           c        *              *              *              *        \n"
          "    2           c        *              *              *              *        \n"
          "    3           c        -2.5000        *              *              *        \n"
          "    4           c        -2.5000         4.0000        *              *        \n"
          "    5           c        *              *           1.2346e+05        *        \n"
          "    6           c        *              *           1.2346e+05     1.0000e-05  \n"
          "    7           c        -2.5000        *           1.2346e+05        *        \n"
          "    8           c        -2.5000         4.0000     1.2346e+05     1.0000e-05  \n" +
          reportEnd);
}

TEST_F(RespReports, ShowFiveFiguresOfBounds) {
  CResp resp = Resp(1, "c");
  resp.m_nConstraint = resp.m_nHasLower = resp.m_nHasUpper = 1;
  resp.m_nHasLowerScale = resp.m_nHasUpperScale = 1;
  resp.m_fLower = -99999;
  resp.m_fLowerScale = 0.0001;
  resp.m_fUpper = 0;
  resp.m_fUpperScale = -1.23456e-300;
  resp.PutObject();
  EXPECT_EQ(
      Report(),
      head + "    1           c        0       1   ind    No  \n" + constraintHead +
          "    1           c        -99999.     0.00010000         0.0000   -1.2346e-300  \n" +
          reportEnd);
}

// ---- All sections ----

TEST_F(RespReports, OfAFullStudy) {
  CResp weight = Resp(1, "Weight");
  weight.m_uIndex = 1;
  weight.m_nObjective = 1;
  weight.m_nHasWorst = 1;
  weight.m_fWorst = 250;
  weight.PutObject();
  CResp stress = Resp(2, "Stress in the wing root");
  stress.m_uIndex = 2;
  stress.m_uSize = 12;
  stress.m_nConstraint = 1;
  stress.m_nHasLower = stress.m_nHasLowerScale = stress.m_nHasUpper = 1;
  stress.m_fLower = -150;
  stress.m_fLowerScale = 10;
  stress.m_fUpper = 150;
  stress.m_nRandom = 1;
  stress.m_nRandomParam = -3;
  stress.PutObject();
  CResp link = Resp(3, "Mean", 1);
  link.m_uIndex = 3;
  link.m_nAuxID = 31;
  link.m_vnArg = {2, 2, 2, -17};
  link.m_vnIdx = {0, 1, 11, 0};
  link.m_vnLength = {1, 1, 1, 1};
  link.m_nConstraint = 1;
  link.PutObject();
  CResp equation = Resp(4, "Margin", 2);
  equation.m_uIndex = 4;
  equation.m_nAuxID = 32;
  equation.m_vnArg = {2, 3, -17};
  equation.m_vnIdx = {0, 0, 2};
  equation.m_vnLength = {12, 1, 4};
  equation.m_nObjective = 1;
  equation.m_nGoal = 2;
  equation.m_fTarget = 1.5;
  equation.m_fWeight = 0.25;
  equation.m_nRandom = 1;
  equation.m_nRandomParam = -1;
  equation.PutObject();
  CResp passFail = Resp(5, "Meshed", 3);
  passFail.m_uIndex = 5;
  passFail.m_nConstraint = passFail.m_nHasUpper = passFail.m_nHasUpperScale = 1;
  passFail.m_fUpper = 0.5;
  passFail.PutObject();
  EXPECT_EQ(
      Report(),
      head +
          "    1      Weight        1       1   ind    No  \n"
          "    2  Stress in         2      12   ind    Yes \n"
          "    3        Mean        3       1  link    No  \n"
          "    4      Margin        4       1   syn    Yes \n"
          "    5      Meshed        5       1  ????    No  \n" +
          randomHead +
          "    2  Stress in   Probability of Failure  \n"
          "    4      Margin        Mean Value        \n" +
          auxiliaryHead +
          "    3        Mean       31  link  2, 2(Idx=1,Len=1), 2(Idx=11,Len=1), -17\n"
          "    4      Margin       32   syn  2(Idx=0,Len=12), 3, -17(Idx=2,Len=4)\n" +
          objectiveHead +
          "    1      Weight  minimize         250.0000         *              1.000000\n"
          "    4      Margin   target          *                1.500000      0.2500000\n" +
          constraintHead +
          "    2  Stress in         -150.00         10.000         150.00        *        \n"
          "    3        Mean        *              *              *              *        \n"
          "    5      Meshed        *              *              0.50000         1.0000  \n" +
          reportEnd);
}

// ---- The stream ----

TEST_F(RespReports, AreInTheFileAtOnce) {
  const std::string path = study.folder / "report.txt";
  std::FILE* file = std::fopen(path.c_str(), "wb");
  CResp::Dump(study.Pod(), file);
  EXPECT_EQ(ReadBytes(path), head + "No Response objects defined.\n" + reportEnd);
  std::fclose(file);
}

TEST_F(RespReports, OfADamagedResponseAreRefused) {
  CResp resp = Resp(1, "r");
  resp.PutObject();
  study.Close();
  PatchBytes(study.DataPath(), resp.ObjectAddress() + 12, "x");
  study.Open();
  std::FILE* stream = std::tmpfile();
  EXPECT_THROW(CResp::Dump(study.Pod(), stream), CChecksum);
  std::fclose(stream);
}

}  // namespace
