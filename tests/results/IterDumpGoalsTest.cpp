#include <gtest/gtest.h>

#include <string>

#include "tests/results/IterStudy.h"

// The report of an iteration: objectives, Pareto fronts, long names, and points and entries that
// lack something.

namespace {

class IterGoalsReport : public IterStudy {
 protected:
  /// Objectives on a variable and on responses of two kinds, with a goal of each kind.
  void SetThreeObjectives() {
    terms.m_vnSubjType = {20, 24, 26};
    terms.m_vnSubj = {1, 1, 0};
    terms.m_vnGoal = {0, 1, 2};
    terms.m_vnHasWorst = {1, 1, 1};
    terms.m_vfWorst = {14.0, 60.0, 1.0};
    terms.m_vfWeight = {1.0, 2.0, 4.0};
    terms.m_vfTarget = {0.0, 0.0, 0.25};
  }
  /// A front of two designs with these values.
  void SetFront(std::initializer_list<double> values) {
    iter.m_ParetoPoints = {11, 1234567};
    iter.m_ParetoValues = values;
  }
  std::string ReportWith(const std::string& front, const std::string& objectiveRows) {
    return heading + state + front + variables + objectivesHead + objectiveRows + "\n" +
           noConstraints + end;
  }
};

const std::string threeObjectives =
    "        height  IDVar    minimize         14.00        7.000000       0.5000000\n"
    "        stress  IResp    maximize         60.00        45.00000       -1.500000\n"
    "         ratio  SResp       0.2500        1.000       0.1250000      -0.6666667\n";
const std::string frontTitle =
    "                 Pareto Front Point/Best Design Point Information\n";

// ---- Objectives ----

TEST_F(IterGoalsReport, ListsObjectivesWithTheirGoalsAndValues) {
  SetThreeObjectives();
  EXPECT_EQ(Report(), ReportWith("", threeObjectives));
}

TEST_F(IterGoalsReport, ShowsLargeAndSmallTargetsAndWorstValues) {
  SetThreeObjectives();
  terms.m_vnGoal = {2, 2, 2};
  terms.m_vfTarget = {-1e-300, 1e30, 0.0};
  terms.m_vfWorst = {-123456.0, 1e-5, 4.0};
  terms.m_vfWeight = {0.0, 0.0, 8.0};
  EXPECT_EQ(
      Report(),
      ReportWith(
          "",
          "        height  IDVar  -1.000e-300   -1.235e+05        7.000000       -0.000000\n"
          "        stress  IResp    1.000e+30    1.000e-05        45.00000        0.000000\n"
          "         ratio  SResp        0.000        4.000       0.1250000       0.2500000\n"));
}

TEST_F(IterGoalsReport, MarksObjectivesThatCannotBe) {
  SetThreeObjectives();
  terms.m_vnSubjType[0] = 23;
  terms.m_vnSubj[0] = 0;
  terms.m_vfWorst[0] = 500.0;
  terms.m_vnGoal[1] = 3;
  terms.m_vnHasWorst[2] = 0;
  EXPECT_EQ(
      Report(),
      ReportWith(
          "",
          "          load  ?????    minimize         500.0        1000.000        2.000000\n"
          "        stress  IResp    ERROR!!!!        60.00        45.00000             nan\n"
          "         ratio  SResp       0.2500    Undefined       0.1250000      -0.6666667\n"));
}

// ---- Constraints that cannot be ----

TEST_F(IterGoalsReport, MarksConstraintsOnOtherVariables) {
  cons.m_vnSubjType = {20, 23, 22, 21};
  cons.m_vnSubj = {1, 1, 0, 0};
  cons.m_vfBound = {7.0, 1.0, 100.0, -5.0};
  cons.m_vnMult = {1, 1, -1, 1};
  cons.m_vfScale = {7.0, 1.0, 1.0, 1.0};
  EXPECT_EQ(Report(),
            heading + state + variables + objectives + constraintsHead +
                "        height  ?????   U        7.000000        0.000000        7.000000 *\n"
                "      material  ?????   U        2.000000        1.000000        1.000000 V\n" +
                legend + end);
}

TEST_F(IterGoalsReport, TakesAnUnknownSideForTheUpperOne) {
  cons.m_vnMult[2] = 0;
  EXPECT_EQ(Report(),
            heading + state + variables + objectives + constraintsHead +
                "         slack  LResp   U        8.000000        3.000000        2.000000 V\n" +
                legend + end);
}

// ---- Pareto fronts ----

TEST_F(IterGoalsReport, ShowsAFrontByObjectivesAndWorstConstraint) {
  SetThreeObjectives();
  SetFront({6.5, 48.0, 0.5, -0.05, 9.25, 44.0, 0.25, 1e-10});
  EXPECT_EQ(Report(),
            ReportWith(
                frontTitle +
                    "  Design                                                               Worst\n"
                    "Point ID           height           stress            ratio       Constraint\n"
                    "--------   --------------   --------------   --------------   --------------\n"
                    "      11         6.500000         48.00000        0.5000000      -0.05000000\n"
                    " 1234567         9.250000         44.00000        0.2500000     1.000000e-10\n"
                    "\n",
                threeObjectives));
}

TEST_F(IterGoalsReport, ShowsAFrontByObjectivesAlone) {
  SetThreeObjectives();
  SetFront({6.5, 48.0, 0.5, 9.25, 44.0, 0.25});
  EXPECT_EQ(Report(),
            ReportWith(frontTitle + "  Design                                                   \n"
                                    "Point ID           height           stress            ratio\n"
                                    "--------   --------------   --------------   --------------\n"
                                    "      11         6.500000         48.00000        0.5000000\n"
                                    " 1234567         9.250000         44.00000        0.2500000\n"
                                    "\n",
                       threeObjectives));
}

TEST_F(IterGoalsReport, LeavesColumnsOfAFrontUnnamedThatMayMeanAnything) {
  SetThreeObjectives();
  SetFront({6.5, -0.05, 9.25, 1e-10});
  EXPECT_EQ(Report(), ReportWith(frontTitle + "  Design                                  \n"
                                              "Point ID                                  \n"
                                              "--------   --------------   --------------\n"
                                              "      11         6.500000      -0.05000000\n"
                                              " 1234567         9.250000     1.000000e-10\n"
                                              "\n",
                                 threeObjectives));
}

TEST_F(IterGoalsReport, ShowsAFrontWithoutValues) {
  SetThreeObjectives();
  SetFront({});
  EXPECT_EQ(Report(), ReportWith(frontTitle + "  Design\n"
                                              "Point ID\n"
                                              "--------\n"
                                              "      11\n"
                                              " 1234567\n"
                                              "\n",
                                 threeObjectives));
}

TEST_F(IterGoalsReport, ShowsASingleBestDesignByItsWorstConstraintWhereThereAreNoObjectives) {
  task.m_nType = 2;
  iter.m_ParetoPoints = {-7};
  iter.m_ParetoValues = {0.5};
  EXPECT_EQ(Report(), heading + "                      This Design Point :  3\n\n" + frontTitle +
                          "  Design            Worst\n"
                          "Point ID       Constraint\n"
                          "--------   --------------\n"
                          "      -7        0.5000000\n"
                          "\n" +
                          variables + noConstraints + end);
}

TEST_F(IterGoalsReport, ShowsNoFrontThatHasValuesWithoutPoints) {
  iter.m_ParetoValues = {1.0, 2.0, 3.0};
  EXPECT_EQ(Report(), heading + state + variables + objectives + noConstraints + end);
}

TEST_F(IterGoalsReport, NamesTheColumnsOfAFrontInTwoLinesAtMost) {
  SetThreeObjectives();
  vars.m_vstrIndName[1] = "fourteen_chars";
  resps.m_vstrIndName[1] = "stress_at_the_upper_flange_of_the_beam";
  resps.m_vstrSynName[0] = "buckling_factor";
  SetFront({6.5, 48.0, 0.5, 9.25, 44.0, 0.25});
  EXPECT_EQ(Report(),
            heading + state + frontTitle +
                "  Design                    stress_at_the_   buckling_facto\n"
                "Point ID   fourteen_chars   upper_flange_o                r\n"
                "--------   --------------   --------------   --------------\n"
                "      11         6.500000         48.00000        0.5000000\n"
                " 1234567         9.250000         44.00000        0.2500000\n"
                "\n" +
                variablesHead +
                "             width  IDVar       0.5000000         2.500000         10.00000  \n"
                "    fourteen_chars  IDVar        1.000000         7.000000         20.00000  \n"
                "             depth  LDVar   -1.000000e+30         12.00000         30.00000  \n"
                "              area  SDVar        2.000000         17.50000     1.000000e+30  \n"
                "              load  CDVar                         1000.000\n"
                "          material  CDVar        1.000000         2.000000         3.000000  \n"
                "\n" +
                objectivesHead +
                "fourteen_chars  IDVar    minimize         14.00        7.000000       0.5000000\n"
                "stress_at_the_  IResp    maximize         60.00        45.00000       -1.500000\n"
                "upper_flange_o\n"
                "f_the_beam    \n"
                "buckling_facto  SResp       0.2500        1.000       0.1250000      -0.6666667\n"
                "r             \n"
                "\n" +
                noConstraints + end);
}

// ---- Long names ----

TEST_F(IterGoalsReport, ContinuesLongNamesUnderTheirColumns) {
  vars.m_vnType = {20, 21, 23};
  vars.m_vnSeq = {0, 0, 0};
  vars.m_vstrIndName[0] = "exactly_14_cha";
  vars.m_vstrLinkName[0] = "thickness_plate_1";
  vars.m_vstrConstName[0] = "load_on_the_first_of_all_beams";
  resps.m_vstrIndName = {"weight_of_the_frame", "largest_stress_in_the_frame"};
  point.m_IResp = {120.0, 50.0};
  EXPECT_EQ(Report(),
            heading + state + variablesHead +
                "    exactly_14_cha  IDVar       0.5000000         2.500000         10.00000  \n"
                "    thickness_plat  LDVar   -1.000000e+30         12.00000         30.00000  \n"
                "    e_1           \n"
                "    load_on_the_fi  CDVar                         1000.000\n"
                "    rst_of_all_bea\n"
                "    ms            \n"
                "\n" +
                objectivesHead +
                "weight_of_the_  IResp    minimize     Undefined        120.0000        120.0000\n"
                "frame         \n"
                "\n" +
                constraintsHead +
                "largest_stress  IResp   U        50.00000        0.000000        50.00000 *\n"
                "_in_the_frame \n" +
                legend + end);
}

// ---- Values that there aren't ----

TEST_F(IterGoalsReport, MarksTheResponsesOfAPointThatIsNotAnalysed) {
  SetThreeObjectives();
  point.m_IResp.resize(0);
  point.m_LResp.resize(0);
  point.m_SResp.resize(0);
  EXPECT_EQ(Report(),
            heading + state + variables + objectivesHead +
                "        height  IDVar    minimize         14.00        7.000000       0.5000000\n"
                "        stress  IResp    maximize         60.00         *               *      \n"
                "         ratio  SResp       0.2500        1.000         *               *      \n"
                "\n" +
                constraintsHead +
                "        stress  IResp   U         *               *              50.00000  \n"
                "         slack  LResp   L         *               *              2.000000  \n"
                "         ratio  SResp   U         *               *             0.5000000  \n" +
                legend + end);
}

TEST_F(IterGoalsReport, MarksVariablesOfWhichThePointHasNone) {
  point.m_LDVar.resize(0);
  point.m_CDVar.resize(0);
  EXPECT_EQ(Report(),
            heading + state + variablesHead +
                "             width  IDVar       0.5000000         2.500000         10.00000  \n"
                "            height  IDVar        1.000000         7.000000         20.00000  \n"
                "             depth  LDVar   -1.000000e+30          *               30.00000  \n"
                "              area  SDVar        2.000000         17.50000     1.000000e+30  \n"
                "              load  CDVar                          *      \n"
                "          material  CDVar        1.000000          *               3.000000  \n"
                "\n" +
                objectives + noConstraints + end);
}

}  // namespace
