#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/task/DVarReports.h"

// The sections of the report on a task's variables.

namespace {

class VariableSections : public VariableReports {
 protected:
  /// The report from its first section on.
  std::string Sections() {
    const std::string report = Report();
    const std::string bar(80, '-');
    return report.substr(report.find(bar + "\n"));
  }
};

// ---- Scaling and random variables ----

TEST_F(VariableSections, ShowScalesOfIndependentVariablesOnly) {
  AddConstant(1, "c");
  AddIndependent(2, "unscaled", 0.0, 1.0, 0, 0.0);
  AddIndependent(3, "A_name_of_23_characters", 0.0, 1.0, 0, -12345.678);
  EXPECT_EQ(Sections(), scalingHead +
                            "       3  A_name_of_23_c      -12346.\n"
                            "          haracters\n" +
                            reportEnd);
}

TEST_F(VariableSections, NameEachParameter) {
  for (int i = 0; i < 9; ++i) AddConstant(i, "c_" + std::to_string(i));
  vars.m_vnRandIndex = {0, 0, 0, 0, 0, 0, 0, 0, 0};
  vars.m_vnRandParam = {-3, -2, -1, 0, 1, 2, 3, 4, -4};
  vars.m_vnRandDist = {0};
  EXPECT_EQ(Sections(), randomHead +
                            "    1  c_0     Probability of Failure    Normal Distribution \n"
                            "    2  c_1       Standard Deviation      Normal Distribution \n"
                            "    3  c_2           Mean Value          Normal Distribution \n"
                            "    4  c_3          1st Parameter        Normal Distribution \n"
                            "    5  c_4          2nd Parameter        Normal Distribution \n"
                            "    6  c_5          3rd Parameter        Normal Distribution \n"
                            "    7  c_6          4th Parameter        Normal Distribution \n"
                            "    8  c_7              ????             Normal Distribution \n"
                            "    9  c_8              ????             Normal Distribution \n" +
                            reportEnd);
}

TEST_F(VariableSections, NameEachDistribution) {
  for (int i = 0; i < 6; ++i) AddConstant(i, "c");
  vars.m_vnRandIndex = {4, 3, 2, 1, 0, 2147483647};
  vars.m_vnRandParam = {0, 0, 0, 0, 0, 0};
  vars.m_vnRandDist = {0, 1, 2, 3, 4};
  EXPECT_EQ(Sections(), randomHead +
                            "    1  c            1st Parameter               ????         \n"
                            "    2  c            1st Parameter       Weibull Distribution \n"
                            "    3  c            1st Parameter      LogNormal Distribution\n"
                            "    4  c            1st Parameter       Uniform Distribution \n"
                            "    5  c            1st Parameter        Normal Distribution \n"
                            "    6  c            1st Parameter               ????         \n" +
                            reportEnd);
}

TEST_F(VariableSections, TakeWhatIsMissingAboutRandomnessAsNone) {
  AddConstant(1, "a");
  AddConstant(2, "b");
  vars.m_vnRandIndex = {0};
  const std::string report = Report();
  EXPECT_EQ(report, head +
                        "       1  CDVar    Yes                a      1\n"
                        "       2  CDVar    No                 b      2\n" +
                        randomHead +
                        "    1  a            1st Parameter               ????         \n" +
                        reportEnd);
}

TEST_F(VariableSections, ContinueALongNameOfARandomVariable) {
  AddConstant(1, "Thickness_1");
  AddConstant(2, "Width1");
  vars.m_vnRandIndex = {0, -1};
  vars.m_vnRandParam = {-1, 0};
  vars.m_vnRandDist = {1};
  EXPECT_EQ(Sections(), randomHead +
                            "    1  Thickn        Mean Value         Uniform Distribution \n"
                            "       ess_1\n" +
                            reportEnd);
}

// ---- Links ----

TEST_F(VariableSections, CutALongLinkAndALongNameSideBySide) {
  AddIndependent(1, "Thickness_of_the_upper_plate", 0.0, 1.0);
  AddConstant(2, "Load");
  AddLinked(3, "A_link_with_a_name_of_thirty_6_signs", 0.0, 1.0, 71, {0, 0, 0}, {20, 23, 20});
  AddLink(71, {0.125, 1e-10, 3.0, -1234567.0});
  EXPECT_EQ(Sections(),
            linkHead +
                "       3  A_link_with_a_  0.125 + Thickness_of_the_upper_plate*1e-10 + Load*3 +\n"
                "          name_of_thirty  Thickness_of_the_upper_plate*-1.23457e+06\n"
                "          _6_signs        \n" +
                reportEnd);
}

TEST_F(VariableSections, ShowALinkWithoutArgumentsAsItsConstant) {
  AddLinked(3, "l", 0.0, 1.0, 71, {}, {});
  AddLink(71, {-2.5});
  EXPECT_EQ(Sections(), linkHead + "       1               l  -2.5\n" + reportEnd);
}

TEST_F(VariableSections, RefuseASubjectThatALinkCannotTake) {
  for (const int kind : {0, 21, 22, 24, -1}) {
    vars.SetDefaultAttributes();
    vars.m_nID = 5;
    AddConstant(1, "c");
    AddLinked(3, "l", 0.0, 1.0, 71, {0, 0}, {23, kind});
    links.SetDefaultAttributes();
    links.m_nID = 5;
    AddLink(71, {0.0, 1.0, 2.0});
    EXPECT_EQ(
        ReportUntilError<CInvalidSubject>(),
        head +
            "       1  CDVar    No                 c      1\n"
            "       2  LDVar    No                 l      3       71       0.0000      1.0000\n" +
            linkHead + "ERROR: Invalid subject type for linked variable 2\n")
        << kind;
  }
}

TEST_F(VariableSections, RefuseALinkThatTheTaskHasNot) {
  AddLinked(3, "l", 0.0, 1.0, 72, {}, {});
  AddLink(71, {-2.5});
  EXPECT_EQ(
      ReportUntilError<CObjectNotFound>(),
      head + "       1  LDVar    No                 l      3       72       0.0000      1.0000\n" +
          linkHead + "ERROR: Could not dereference link data for task (5) design variables\n");
}

TEST_F(VariableSections, RefuseALinkWithoutAMultiplierForEachArgument) {
  AddConstant(1, "c");
  AddLinked(3, "l", 0.0, 1.0, 71, {0, 0}, {23, 23});
  AddLink(71, {1.0, 2.0});
  ReportUntilError<CInvalidArgument>();
}

TEST_F(VariableSections, RefuseAPositionOutsideTheNames) {
  for (const int position : {-1, 1, 2147483647}) {
    vars.SetDefaultAttributes();
    vars.m_nID = 5;
    AddConstant(1, "c");
    AddLinked(3, "l", 0.0, 1.0, 71, {position}, {23});
    AddLink(71, {1.0, 2.0});
    ReportUntilError<CInvalidArgument>();
  }
}

// ---- Functions ----

TEST_F(VariableSections, ShowTheLengthOfAnArgumentOfSeveralElements) {
  AddIndependent(1, "x_1", 0.0, 1.0);
  AddLinked(2, "l", 0.0, 1.0, 71, {}, {});
  AddConstant(3, "c");
  AddSynthetic(4, "s", 0.0, 1.0, 81, {0, 0, 0, 0, 0}, {20, 21, 23, 20, 23}, {2, 1, 12, 0, -3});
  AddLink(71, {1.0});
  AddFunction(81, "f");
  EXPECT_EQ(Sections(), linkHead + "       2               l  1\n" + functionHead +
                            "       4               s  f(x_1(2), l, c(12), x_1, c)\n" + reportEnd);
}

TEST_F(VariableSections, TakeAMissingLengthAsOne) {
  AddConstant(1, "c");
  AddSynthetic(2, "s", 0.0, 1.0, 81, {0, 0}, {23, 23}, {3});
  AddSynthetic(2, "t", 0.0, 1.0, 81, {0}, {23}, {});
  vars.m_mnSynLen.pop_back();
  AddFunction(81, "f");
  EXPECT_EQ(Sections(), functionHead +
                            "       2               s  f(c(3), c)\n"
                            "       3               t  f(c)\n" +
                            reportEnd);
}

TEST_F(VariableSections, CutALongCall) {
  AddConstant(1, "Load_on_the_beam");
  AddSynthetic(2, "s", 0.0, 1.0, 81, {0, 0, 0, 0}, {23, 23, 23, 23}, {1, 1, 1, 2});
  AddFunction(81, "moment");
  EXPECT_EQ(Sections(), functionHead +
                            "       2               s  moment(Load_on_the_beam, Load_on_the_beam,\n"
                            "                          Load_on_the_beam, Load_on_the_beam(2))\n" +
                            reportEnd);
}

TEST_F(VariableSections, RefuseASubjectThatAFunctionCannotTake) {
  for (const int kind : {0, 22, 24, -1}) {
    vars.SetDefaultAttributes();
    vars.m_nID = 5;
    AddSynthetic(3, "s", 0.0, 1.0, 81, {0}, {kind}, {1});
    functions.SetDefaultAttributes();
    functions.m_nID = 5;
    AddFunction(81, "f");
    EXPECT_EQ(
        ReportUntilError<CInvalidSubject>(),
        head +
            "       1  SDvar    No                 s      3       81       0.0000      1.0000\n" +
            functionHead + "ERROR: Invalid subject type for synthetic variable 1\n")
        << kind;
  }
}

TEST_F(VariableSections, RefuseAFunctionThatTheTaskHasNot) {
  AddSynthetic(3, "s", 0.0, 1.0, 81, {}, {}, {});
  EXPECT_EQ(
      ReportUntilError<CObjectNotFound>(),
      head + "       1  SDvar    No                 s      3       81       0.0000      1.0000\n" +
          functionHead +
          "ERROR: Could not dereference equation data for task (5) design variables\n");
}

TEST_F(VariableSections, ShowAFunctionWithoutArguments) {
  AddSynthetic(3, "s", 0.0, 1.0, 81, {}, {}, {});
  AddFunction(81, "f");
  EXPECT_EQ(Sections(), functionHead + "       1               s  f()\n" + reportEnd);
}

// ---- Sets ----

TEST_F(VariableSections, CutALongSet) {
  AddIndependent(1, "x", 0.0, 1.0, 91);
  AddSet(91, {1.5, 2.5, 3.5, 4.5, 5.5, 6.5, 7.5, 8.5, 9.5, 10.5, 11.5, 12.5});
  EXPECT_EQ(Sections(),
            setHead +
                "       1               x  1.5, 2.5, 3.5, 4.5, 5.5, 6.5, 7.5, 8.5, 9.5, 10.5,\n"
                "                          11.5, 12.5\n" +
                reportEnd);
}

TEST_F(VariableSections, RefuseASetThatTheTaskHasNot) {
  AddIndependent(1, "x", 0.0, 1.0, 92);
  AddSet(91, {1.0});
  EXPECT_EQ(ReportUntilError<CObjectNotFound>(),
            head +
                "       1  IDVar*   No                 x      1       92       0.0000      1.0000\n"
                "* - discrete   \n" +
                setHead + "ERROR: Could not dereference set data for task (5) design variables\n");
}

TEST_F(VariableSections, RefuseDefinitionsWithoutTheirContents) {
  AddIndependent(1, "x", 0.0, 1.0, 91);
  AddSet(91, {1.0});
  sets.m_mdValues.clear();
  ReportUntilError<CInvalidArgument>();
}

}  // namespace
