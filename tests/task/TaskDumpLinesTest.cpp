#include <gtest/gtest.h>

#include <string>

#include "definition/GPoint.h"
#include "tests/support/Log.h"
#include "tests/task/TaskDumpReport.h"

// Which lines the report of a task has, and how texts stand in them.

namespace {

class TaskDumpLines : public TaskDump {};

const std::string bar =
    "--------------------------------------------------------------------------------\n";

// ---- The head ----

TEST_F(TaskDumpLines, CentreTheTitle) {
  const std::string title =
      "================================================================================\n";
  const std::string heading = "\nNonlinear, Unconstrained Optimization\n";
  const auto expectTitle = [&](std::size_t length, std::size_t blanks) {
    task.m_strTitle = std::string(length, 't');
    const std::string line = std::string(blanks, ' ') + task.m_strTitle;
    EXPECT_NE(Report().find(title + line + heading), std::string::npos) << length;
  };
  expectTitle(1, 39);
  expectTitle(2, 39);
  expectTitle(3, 38);
  expectTitle(78, 1);
  expectTitle(79, 0);
  expectTitle(80, 0);
  expectTitle(81, 0);
  expectTitle(500, 0);
}

TEST_F(TaskDumpLines, TakeTextsAsTheyStand) {
  task.m_strTitle = "%s%n";
  task.m_strCreated = "%d";
  task.m_strProgram = task.m_strArgs = task.m_strHost = "%s";
  task.m_nRemote = 1;
  ExpectLines("                                      %s%n");
  ExpectLines("                      Task Created On : %d");
  ExpectLines("        Analysis Program : %s\n     Program's Arguments : %s");
  ExpectLines("               Host name : %s");
}

// ---- Optimisation ----

TEST_F(TaskDumpLines, OfASequentialMethodHaveASubProblem) {
  const std::string subProblem =
      "Max. Number of Iter. by the Optimizer : 100\n"
      "----------------------- SLP/SQP Sub-Problem\n"
      "                   Maximum Iterations : 100\n"
      "    Consecutive Iter. for Convergence : 2\n"
      "             MEGZEF Penalty Parameter : 1";
  task.m_uNumCons = 1;
  for (const int type : {0, 1}) {
    task.m_nType = type;
    for (const int method : {2, 3}) {
      task.m_DGO.m_nMETHOD = task.m_RSA.m_nMETHOD = method;
      ExpectLines(subProblem);
    }
    for (const int method : {0, 1, 4, 5, -1}) {
      task.m_DGO.m_nMETHOD = task.m_RSA.m_nMETHOD = method;
      ExpectNo("Sub-Problem");
    }
  }
}

TEST_F(TaskDumpLines, OfATaskWithoutConstraintsHaveNoSubProblem) {
  for (const int type : {0, 1}) {
    task.m_nType = type;
    task.m_DGO.m_nMETHOD = task.m_RSA.m_nMETHOD = 3;
    task.m_DGO.m_nUncMETHOD = task.m_RSA.m_nUncMETHOD = 2;
    ExpectLines("                  Optimization Method : FR");
    ExpectNo("Sub-Problem");
  }
}

TEST_F(TaskDumpLines, OfFiniteDifferencesHaveTheSteps) {
  const std::string steps =
      "      Relative Finite Difference Step : 0.01\n"
      "       Minimum Finite Difference Step : 0.001\n"
      "                          Efficiency Level: Most Accurate";
  task.m_DGO.m_nIGRAD = 0;
  ExpectLines("              Gradients Calculated By : First Forward Difference\n" + steps);
  task.m_DGO.m_nIGRAD = -1;
  ExpectLines("              Gradients Calculated By : Central Difference\n" + steps);
}

TEST_F(TaskDumpLines, OfOtherGradientsHaveNoSteps) {
  const std::string level = "\n                          Efficiency Level: Most Accurate";
  task.m_DGO.m_nIGRAD = 1;
  ExpectLines("              Gradients Calculated By : User Supplied" + level);
  for (const int form : {2, -2, 2147483647}) {
    task.m_DGO.m_nIGRAD = form;
    ExpectLines("              Gradients Calculated By : Unknown" + level);
  }
}

TEST_F(TaskDumpLines, OfUserGradientsStandInAGradientTaskOnly) {
  for (const int type : {0, 1, 2, 3, 4, 5}) {
    for (const int form : {-1, 0, 1, 2}) {
      task.m_nType = type;
      task.m_DGO.m_nIGRAD = form;
      const bool shown = Report().find("Grad. Analysis Program") != std::string::npos;
      EXPECT_EQ(shown, type == 0 && form == 1) << type << ' ' << form;
    }
  }
}

TEST_F(TaskDumpLines, OfSavedAndOfStartingPointsTellThemApart) {
  task.m_DGO.m_nStoreFD = 1;
  ExpectLines(
      "            Save Finite Difference Points : Yes\n"
      "                 Multiple Starting Points : No");
}

TEST_F(TaskDumpLines, OfScalingTellTheDefault) {
  task.m_DGO.m_nISCAL = -1;
  ExpectLines("    Iter. b/w Design Variable Scaling : -1");
  task.m_DGO.m_nISCAL = 0;
  ExpectLines("    Iter. b/w Design Variable Scaling : Default");
  task.m_DGO.m_nISCAL = 1;
  ExpectLines("    Iter. b/w Design Variable Scaling : 1");
}

TEST_F(TaskDumpLines, OfNumbersGrowWithThem) {
  task.m_DGO.m_nNGMAX = 12345678;
  task.m_DGO.m_fDOBJ1 = 1234567.891;
  task.m_DGO.m_nIGMAX = -123456;
  task.m_DGO.m_fDOBJ2 = 1.23456789e-7;
  ExpectLines(
      "          NGMAX : 12345678        DOBJ1 : 1.23457e+06\n"
      "          IGMAX : -123456        DOBJ2 : 1.23457e-07");
}

// ---- Response surfaces ----

TEST_F(TaskDumpLines, OfPValuesStandWithStepwiseRegressionOnly) {
  task.m_nType = 1;
  task.m_RSA.m_fPEnter = 0.25;
  task.m_RSA.m_fPRemove = 0.75;
  for (const int order : {0, 1, 2, 3, 5}) {
    task.m_RSA.m_nOrder = order;
    ExpectNo("P-value");
  }
  task.m_RSA.m_nOrder = 4;
  ExpectLines(
      "  Absolute Soft Convergence Tolerance : 0.0001\n"
      "      P-value of Terms to Enter into the Model: 0.25\n"
      " P-value of Terms to be Removed from the Model: 0.75");
}

TEST_F(TaskDumpLines, CountPointsOfTheUserWhereTheyAreTheInitialDesign) {
  task.m_nType = 1;
  task.m_RSA.m_nSubModel = 10;
  task.m_RSA.m_nInitialDOE = 5;
  ExpectLines("          User-Supplied Design Points : 0");
  task.m_RSA.m_nInitialDOE = 11;
  ExpectLines("          User-Supplied Design Points : 10");
}

// ---- Designs of experiments ----

TEST_F(TaskDumpLines, CountThePointsOfADesign) {
  task.m_nType = 2;
  task.m_uNumIndDV = 3;
  ExpectLines(
      "                           DOE Option : 0\n"
      "                        Screen Points : No\n"
      "              Number of Design Points : 15\n"
      "                             DOE Task : Points Only");
  task.m_DOE.m_nMethod = 7;
  task.m_DOE.SetOptions({0, 0, 0, 0, 0, 0, 0, 3112});
  ExpectLines(
      "                           DOE Option : 3112\n"
      "                        Screen Points : No\n"
      "              Number of Design Points : 11");
}

TEST_F(TaskDumpLines, CountTheUsersPointsThatTheTaskHas) {
  CGPoint points(study.Pod());
  points.m_vnUsed = {1, 1, 1};
  points.PutObject();
  task.m_nType = 2;
  task.m_DOE.m_nMethod = 11;
  task.m_uNumPoints = 2;
  ExpectLines("              Number of Design Points : 2");
}

TEST_F(TaskDumpLines, OfEveryDesignBearAnyNumberOfVariables) {
  task.m_nType = 2;
  for (const unsigned long variables : {0UL, 1UL, 2147483647UL, 2147483648UL, 4294967295UL}) {
    task.m_uNumIndDV = task.m_uNumPoints = variables;
    for (int design = 0; design < 14; ++design) {
      task.m_DOE.m_nMethod = design;
      EXPECT_NE(Report().find("Number of Design Points : "), std::string::npos) << design;
    }
  }
}

TEST_F(TaskDumpLines, OfAnUnknownDesignHaveNoOptionAndNoCount) {
  task.m_nType = 2;
  ClearLog();
  for (const long design : {14L, 15L, -1L, 2147483647L, -2147483648L}) {
    task.m_DOE.m_nMethod = design;
    ExpectLines(
        "                           DOE Method : Unknown\n"
        "                        Screen Points : No\n"
        "                             DOE Task : Points Only");
  }
  EXPECT_EQ(Log().size(), 0U);
}

TEST_F(TaskDumpLines, OfRetainedPointsStandInADOptimalDesignOnly) {
  task.m_nType = 2;
  task.m_DOE.m_nRetained = 5;
  ExpectNo("Retained");
  task.m_DOE.m_nDOptimal = 1;
  ExpectLines(
      "                        Screen Points : No\n"
      "              Number of Design Points : 2\n"
      "            Number of Retained Points : 5");
  task.m_DOE.m_nRetained = 0;
  ExpectLines("            Number of Retained Points : All");
}

// ---- Random variables ----

TEST_F(TaskDumpLines, OfProbabilitiesStandWithRandomVariablesOnly) {
  for (const int type : {0, 1, 2, 3, 4}) {
    task.m_nType = type;
    task.m_uNumRandDV = 0;
    task.m_uNumRandResp = 1;
    ExpectNo("Probabilistic");
    ExpectNo("Simulation");
    task.m_uNumRandDV = 1;
    const std::string save = type == 4 ? "                Save Simulation Pints : No\n"
                                       : "               Save Simulation Points : No\n";
    ExpectLines(
        "----------------------- Probabilistic Analysis Parameters\n"
        "        Probabilistic Analysis Method : Direct Monte-Carlo Sampling\n"
        "          Number of Simulation Points : 1000\n" +
        save + "Use Random Seed for Simulation Points : Yes\n" + bar +
        "         Independent Design Variables : 0");
  }
  task.m_nType = 5;
  ExpectNo("Probabilistic");
}

TEST_F(TaskDumpLines, LeaveOutANegativeNumberOfSimulationPoints) {
  task.m_uNumRandDV = 1;
  task.m_DGO.m_nRandomPoints = 0;
  ExpectLines("          Number of Simulation Points : 0");
  task.m_DGO.m_nRandomPoints = -1;
  ExpectLines(
      "        Probabilistic Analysis Method : Direct Monte-Carlo Sampling\n"
      "               Save Simulation Points : No");
}

// ---- Relatives ----

TEST_F(TaskDumpLines, OfAChildHaveItsParentAndItsOwnChildren) {
  task.m_nParent = 5;
  ExpectLines(
      "                          Parent Task : 5\n"
      "                       Child Task IDs : { }");
  task.m_vnChildren = {8, -1, 2147483647};
  ExpectLines(
      "Number of Discrete Set Specifications : 0\n"
      "                          Parent Task : 5\n"
      "                       Child Task IDs : { 8 -1 2147483647 }");
}

TEST_F(TaskDumpLines, OfATaskWithoutAParentLackItsChildren) {
  task.m_vnChildren = {8};
  ExpectNo("Parent Task");
  ExpectNo("Child Task");
}

// ---- Programs ----

TEST_F(TaskDumpLines, OfTheProgramAreLeftOutWithoutOne) {
  task.m_strProgram.clear();
  task.m_strArgs = "-n 1";
  ExpectLines(
      "Number of Discrete Set Specifications : 0\n"
      "   Run on Remote Machine : No\n"
      "    Link to User Routine : No");
  ExpectNo("Transfer");
  ExpectNo("Arguments");
}

TEST_F(TaskDumpLines, OfArgumentsStandOnlyWhereThereAreAny) {
  ExpectLines("        Analysis Program : analyze.exe\nDesign Variable Transfer : dvar.kef");
  task.m_strArgs = "-n 1";
  ExpectLines(
      "        Analysis Program : analyze.exe\n"
      "     Program's Arguments : -n 1\n"
      "Design Variable Transfer : dvar.kef");
}

TEST_F(TaskDumpLines, OfAnEmptyFileNameAreEmpty) {
  task.m_strVarFile.clear();
  task.m_strRespFile.clear();
  ExpectLines("Design Variable Transfer : \n      Responses Transfer : ");
}

const std::string digits = "0123456789";
const std::string fifty = digits + digits + digits + digits + digits;

TEST_F(TaskDumpLines, HaveTheEndsOfFileNamesWithoutTheLastCharacter) {
  task.m_strProgram = fifty + "ab";
  task.m_strVarFile = fifty + "abc";
  task.m_strRespFile = "out/" + fifty + "abc";
  ExpectLines("        Analysis Program : " + fifty + "ab");
  ExpectLines("Design Variable Transfer : " + fifty + "ab");
  ExpectLines("      Responses Transfer : " + fifty + "ab");
}

TEST_F(TaskDumpLines, HaveTheEndsOfTheFileNamesOfGradients) {
  task.m_DGO.m_nIGRAD = 1;
  task.m_DGO.m_nGradUserRoutine = 1;
  task.m_DGO.m_strGradProgram = "p/" + fifty + "abc";
  task.m_DGO.m_strGradArgs = fifty + "abc";
  task.m_DGO.m_strGradVarFile = "v/" + fifty + "def";
  task.m_DGO.m_strGradRespFile = "r/" + fifty + "ghi";
  ExpectLines("Link to User Grad. Rout. : Yes\n  Grad. Analysis Program : " + fifty +
              "ab\n Grad. Program Arguments : " + fifty + "ab\nDesign Variable Transfer : " +
              fifty + "de\n      Gradients Transfer : " + fifty + "gh");
}

TEST_F(TaskDumpLines, HaveTheBeginningsOfOtherTexts) {
  const std::string text = fifty + "abc";
  const std::string cut = fifty + "ab";
  task.m_nRemote = 1;
  task.m_strArgs = task.m_strConnectTemplate = task.m_strCopyToTemplate = text;
  task.m_strCopyFromTemplate = task.m_strUser = task.m_strHost = task.m_strRemoteDir = text;
  ExpectLines("     Program's Arguments : " + cut);
  ExpectLines("     Connect To Template : " + cut + "\n        Copy To Template : " + cut +
              "\n      Copy From Template : " + cut + "\n               User name : " + cut +
              "\n               Host name : " + cut + "\n   Remote work directory : " + cut);
}

TEST_F(TaskDumpLines, OfTheRemoteMachineStandWhereItIsUsed) {
  task.m_nRemote = 1;
  ExpectLines(R"(   Run on Remote Machine : Yes
     Connect To Template : ssh ${RMT_HOST} -x -l ${USER} "${COMMAND}"
        Copy To Template : scp -r ${FILE} ${USER}@${RMT_HOST}:${RMT_DIR}
      Copy From Template : scp -r ${USER}@${RMT_HOST}:${RMT_DIR}${FILE} .
               User name : user
               Host name : host
   Remote work directory : rmtdir
      Remote run timeout : -1
    Link to User Routine : No)");
  task.m_nRemote = 0;
  ExpectLines("   Run on Remote Machine : No\n    Link to User Routine : No");
}

TEST_F(TaskDumpLines, OfApproximationsTellTheirTask) {
  task.m_nApproxTask = 3;
  ExpectNo("from task");
  task.m_nUseApprox = 1;
  ExpectLines(
      "    Link to User Routine : No\n"
      "      Use Approximations : Yes\n"
      " Approximations from task: 3");
}

}  // namespace
