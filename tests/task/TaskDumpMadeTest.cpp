#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "tests/support/Printed.h"
#include "tests/task/MakeStudy.h"

// The reports of tasks that were made of a study.

namespace {

class TaskDumpOfMade : public MakeStudy {
 protected:
  std::string Report(const CTask& task) {
    return Printed(
        [&](std::FILE* stream) { CTask::Dump(Pod(), stream, static_cast<int>(long{task.m_nID})); });
  }

  static std::string Head(const CTask& task, const std::string& heading) {
    return "                        DESIGN TASK CONTROL INFORMATION\n"
           "================================================================================\n"
           "                                     A beam\n" +
           heading + '\n' +
           "--------------------------------------------------------------------------------\n"
           "                     Task Database ID : 1\n"
           "                      Task Created On : " +
           std::string(task.m_strCreated) + '\n';
  }

  /// Titles the study and gives it two variables, an objective and a constraint.
  void AddBeam() {
    CDesignControl control = Control();
    control.m_strTitle = "A beam";
    control.PutObject();
    AddSmallStudy();
    Add(Input("y"));
  }

  inline static const std::string tail =
      R"(--------------------------------------------------------------------------------
         Independent Design Variables : 2
              Linked Design Variables : 0
           Synthetic Design Variables : 0
            Constant Design Variables : 0
              Random Design Variables : 0
                Independent Responses : 2
                     Linked Responses : 0
                  Synthetic Responses : 0
                     Random Responses : 0
                          Constraints : 1
                           Objectives : 1
                  Link Specifications : 0
    Synthetic Function Specifications : 0
Number of Discrete Set Specifications : 0
--------------------------------------------------------------------------------
        Analysis Program : analyze.exe
Design Variable Transfer : dvar.kef
      Responses Transfer : resp.kef
   Run on Remote Machine : No
    Link to User Routine : No
      Use Approximations : No
================================================================================

)";
};

TEST_F(TaskDumpOfMade, SurfaceTaskHasThePointsThatItsModelNeeds) {
  AddBeam();
  SetType(1);
  const CTask task = MakeWell();
  EXPECT_EQ(Report(task), Head(task, "Response Surface Approximate Optimization") +
                              R"(                  Optimization Method : MMFD
                        Print Control : None
                            Objective : Minimize
                 Constraint Tolerance : -0.03
        Violated Constraint Tolerance : 0.003
----------------------- Optimizer Parameters
  Relative Hard Convergence Criterion : 0.001
  Absolute Hard Convergence Criterion : Default
    Consecutive Iter. for Convergence : 2
    Iter. b/w Design Variable Scaling : Default
Max. Number of Iter. by the Optimizer : 100
             MEGZEF Penalty Parameter : 1
            MEGZEF Penalty Multiplier : 5
    MEGZEF Discrete Penalty Parameter : 0.01
   MEGZEF Discrete Penalty Multiplier : 5
----------------------- Response Surface Parameters
      Minimum Number of Design Points : 4
      Maximum Number of Design Points : 106
          User-Supplied Design Points : 0
          Order of the Approximations : Full Quadratic
              Generate Initial Points : Simplex
     Initial Rel. Move Limit (Linear) : 0.2
      Initial Rel. Move Limit (Mixed) : 0.2
  Initial Rel. Move Limit (Quadratic) : 0.2
     Abs. Minimum Move Limit (Linear) : 0.02
      Abs. Minimum Move Limit (Mixed) : 0.02
  Abs. Minimum Move Limit (Quadratic) : 0.02
 Number of iterations for convergence : 2
  Relative Hard Convergence Tolerance : 0.001
  Absolute Hard Convergence Tolerance : 0.0001
  Relative Soft Convergence Tolerance : 0.001
  Absolute Soft Convergence Tolerance : 0.0001
)" + tail);
}

TEST_F(TaskDumpOfMade, SurfaceTaskCountsThePointsOfTheUser) {
  AddBeam();
  CDesignControl control = Control();
  control.m_nTaskType = 1;
  control.m_RSA.m_nInitialDOE = 11;
  control.PutObject();
  SetPoints({{1, 1, 0, {0.1, 0.2}, {0.0, 0.0}},
             {0, 1, 0, {0.3, 0.4}, {0.0, 0.0}},
             {1, 1, 0, {0.5, 0.6}, {0.0, 0.0}}});
  const std::string report = Report(MakeWell());
  EXPECT_NE(report.find("\n          User-Supplied Design Points : 2\n"), std::string::npos)
      << report;
}

TEST_F(TaskDumpOfMade, DesignKeepsTheUsersPointsOfThen) {
  AddBeam();
  CDesignControl control = Control();
  control.m_nTaskType = 2;
  control.m_DOE.m_nMethod = 11;
  control.PutObject();
  SetPoints({{1, 1, 0, {0.1, 0.2}, {0.0, 0.0}}, {1, 1, 0, {0.5, 0.6}, {0.0, 0.0}}});
  const CTask task = MakeWell();
  SetPoints({{1, 1, 0, {0.1, 0.2}, {0.0, 0.0}}});
  const std::string report = Report(task);
  EXPECT_NE(report.find("                           DOE Method : User Defined Design Points\n"
                        "                           DOE Option : 0\n"
                        "                        Screen Points : No\n"
                        "              Number of Design Points : 2\n"),
            std::string::npos)
      << report;
}

}  // namespace
