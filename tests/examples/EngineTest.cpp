#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iterator>
#include <string>
#include <vector>

#include "tests/examples/EngineRun.h"
#include "tests/support/Log.h"
#include "tests/support/StudyCheck.h"

// The run engine on the problems that take no time. Those that do: EngineLongTest.cpp.

namespace {

constexpr long kCompleted = 2;

class EngineExample : public ::testing::Test {
 protected:
  EngineRun Solve(const std::string& problem) const {
    return EngineRun('\'' + folder.Path() + "' " + problem);
  }
  std::string Path(const std::string& problem) const { return folder / problem; }

  TempFolder folder;
};

/// The number of log lines that tell of something wrong.
long Complaints() {
  const auto& log = Log();
  return std::count_if(log.begin(), log.end(), [](const LogEntry& entry) {
    return entry.kind != "LPrint" && entry.kind != "fKLog";
  });
}

TEST_F(EngineExample, LeavesSoundFiles) {
  ASSERT_EQ(Solve("weldedbeam speedreducer composite branin").status, 0);
  for (const std::string problem : {"weldedbeam", "speedreducer", "composite", "branin"}) {
    SCOPED_TRACE(problem);
    EXPECT_EQ(FaultsOfStudy(Path(problem)), "");
    ClearLog();
    EXPECT_NO_THROW(KFileCheck(Path(problem) + ".ksb"));
    EXPECT_NO_THROW(KIndexRebuildCheck(Path(problem), false));
    EXPECT_FALSE(Log().empty());
    EXPECT_EQ(Complaints(), 0) << PrintedLog();
  }
}

TEST_F(EngineExample, RunsTheNamedProblemsAlone) {
  const EngineRun run = Solve("branin");
  EXPECT_EQ(run.status, 0);
  EXPECT_NEAR(run.Found("Branin, by response surfaces"), 0.397887, 1e-5);
  EXPECT_TRUE(std::filesystem::exists(Path("branin.ksb")));
  EXPECT_FALSE(std::filesystem::exists(Path("weldedbeam.ksb")));
}

TEST_F(EngineExample, KeepsTheHistoryOfARun) {
  ASSERT_EQ(Solve("weldedbeam").status, 0);
  const LeftStudy study(Path("weldedbeam"));
  const CResult result = study.Result();
  EXPECT_EQ(result.m_nRunStatus, kCompleted);
  EXPECT_FALSE(result.m_strStarted.empty());
  EXPECT_FALSE(result.m_strStopped.empty());
  EXPECT_GT(result.m_nGradientRequests, 2);
  EXPECT_GT(result.m_nAnalysisCalls, 2 * 4 * result.m_nGradientRequests);
  EXPECT_EQ(result.m_nNumPoints, study.CountPoints());
  EXPECT_GE(result.m_fTimes[19], result.m_fTimes[10]);
  EXPECT_GT(result.m_fTimes[10], 0.0);

  CMessage messages(GetPOD());
  messages.m_nID = 1;
  ASSERT_TRUE(messages.GetObject());
  ASSERT_FALSE(messages.m_Messages.empty());
  EXPECT_EQ(result.m_strLastMessage, messages.m_Messages.back());
}

/// Each iteration names points that exist, and the best one is never worse than before.
TEST_F(EngineExample, LeavesIterationsThatComeCloser) {
  ASSERT_EQ(Solve("weldedbeam").status, 0);
  const LeftStudy study(Path("weldedbeam"));
  const std::vector<CIter> iterations = study.Iterations();
  ASSERT_GT(iterations.size(), 2U);
  const double tolerance = 1e-6;
  for (std::size_t i = 0; i < iterations.size(); ++i) {
    SCOPED_TRACE(i);
    const CDPoint point = study.Point(iterations[i].m_nThisPoint);
    EXPECT_EQ(point.m_SResp[1], iterations[i].m_fThisObjective);
    EXPECT_EQ(study.Point(iterations[i].m_nBestPoint).m_SResp[1], iterations[i].m_fBestObjective);
    if (i == 0) continue;
    const CIter& before = iterations[i - 1];
    if (before.m_fBestConstraint <= tolerance) {
      EXPECT_LE(iterations[i].m_fBestConstraint, tolerance);
      EXPECT_LE(iterations[i].m_fBestObjective, double{before.m_fBestObjective});
    } else {
      EXPECT_LE(iterations[i].m_fBestConstraint, double{before.m_fBestConstraint});
    }
  }
}

/// The optimum is h = b = 0.205730, l = 3.470489, t = 9.036624.
TEST_F(EngineExample, FindsTheWeldedBeam) {
  const EngineRun run = Solve("weldedbeam");
  ASSERT_EQ(run.status, 0);
  EXPECT_NEAR(run.Found("welded beam"), 1.724852, 1e-5);
  const LeftStudy study(Path("weldedbeam"));
  const CDPoint best = study.BestPoint();
  ASSERT_EQ(best.m_IDVar.size(), 4U);
  EXPECT_NEAR(best.m_IDVar[0], 0.205730, 1e-4);
  EXPECT_NEAR(best.m_IDVar[1], 3.470489, 1e-3);
  EXPECT_NEAR(best.m_IDVar[2], 9.036624, 1e-3);
  EXPECT_NEAR(best.m_IDVar[3], 0.205730, 1e-4);
  // Shear, bending and buckling are at their limits there.
  ASSERT_EQ(best.m_IResp.size(), 4U);
  EXPECT_NEAR(best.m_IResp[0], 13600.0, 0.1);
  EXPECT_NEAR(best.m_IResp[1], 30000.0, 0.1);
  EXPECT_NEAR(best.m_IResp[3], 6000.0, 0.1);
  EXPECT_LE(study.Result().m_fWorstConstraint, 1e-6);
}

/// The optimum is b = 3.5, m = 0.7, z = 17, l1 = 7.3, l2 = 7.715320, d1 = 3.350215, d2 = 5.286654.
TEST_F(EngineExample, FindsTheSpeedReducerWithAWholeNumberOfTeeth) {
  const EngineRun run = Solve("speedreducer");
  ASSERT_EQ(run.status, 0);
  EXPECT_NEAR(run.Found("speed reducer"), 2994.471, 0.01);
  const LeftStudy study(Path("speedreducer"));
  const CDPoint best = study.BestPoint();
  const double optimum[] = {3.5, 0.7, 17.0, 7.3, 7.715320, 3.350215, 5.286654};
  ASSERT_EQ(best.m_IDVar.size(), std::size(optimum));
  for (std::size_t i = 0; i < std::size(optimum); ++i) {
    EXPECT_NEAR(best.m_IDVar[i], optimum[i], 1e-4) << i;
  }
  EXPECT_EQ(best.m_IDVar[2], 17.0);
  EXPECT_EQ(study.Result().m_nRunStatus, kCompleted);
}

TEST_F(EngineExample, AnalysesTheCompositeDesignAsPublished) {
  const EngineRun run = Solve("composite");
  ASSERT_EQ(run.status, 0);
  EXPECT_NEAR(run.Found("composite, R**2"), 0.9827, 0.00005);
  EXPECT_NEAR(run.Found("composite, RMSE"), 0.2663, 0.00005);
  const LeftStudy study(Path("composite"));
  EXPECT_EQ(study.Result().m_nRunStatus, kCompleted);
  EXPECT_EQ(study.Result().m_nNumPoints, 13);
  EXPECT_EQ(study.CountPoints(), 13);

  CResidual residuals(GetPOD());
  residuals.m_nTaskID = 1;
  ASSERT_TRUE(residuals.GetObject());
  EXPECT_NEAR(residuals.m_fR2, 0.9827, 0.00005);
  EXPECT_EQ(residuals.m_Residual.size(), 13U);
  CRDOE design(GetPOD());
  design.m_nTaskID = 1;
  ASSERT_TRUE(design.GetObject());
  EXPECT_EQ(design.m_Points.size(), 13U);
  CApproxModels model(GetPOD());
  model.m_nTaskID = 1;
  ASSERT_TRUE(model.GetObject());
  ASSERT_EQ(model.m_Coefficients.size(), 6U);
  EXPECT_NEAR(model.m_Coefficients[0], 79.94, 0.005);
  EXPECT_NEAR(model.m_Coefficients[5], 0.25, 0.005);
}

/// Each iteration has the model that was fitted in it, with what it predicts at its region.
TEST_F(EngineExample, FitsAResponseSurfaceInEachIteration) {
  ASSERT_EQ(Solve("branin").status, 0);
  const LeftStudy study(Path("branin"));
  const std::vector<CIter> iterations = study.Iterations();
  ASSERT_GT(iterations.size(), 2U);
  for (std::size_t i = 0; i < iterations.size(); ++i) {
    SCOPED_TRACE(i);
    CApproxModels model(GetPOD());
    model.m_nTaskID = 1;
    model.m_nIter = static_cast<long>(i);
    ASSERT_TRUE(model.GetObject());
    EXPECT_EQ(model.m_Coefficients.size(), 6U);
    EXPECT_EQ(model.m_Model.size(), 12U);
    EXPECT_EQ(model.m_Values.size(), 4U);
    const CDPoint point = study.Point(iterations[i].m_nThisPoint);
    for (std::size_t k = 0; k < 2; ++k) {
      EXPECT_LE(std::abs(point.m_IDVar[k] - model.m_Values[k]), model.m_Values[2 + k] * (1 + 1e-9));
    }
  }
  CApproxModels next(GetPOD());
  next.m_nTaskID = 1;
  next.m_nIter = static_cast<long>(iterations.size());
  EXPECT_FALSE(next.GetObject());
  CRApproxMod last(GetPOD());
  last.m_nTaskID = 1;
  EXPECT_TRUE(last.GetObject());
  EXPECT_EQ(study.Result().m_nNumPoints, study.CountPoints());
}

TEST_F(EngineExample, FindsAMinimumOfBranin) {
  ASSERT_EQ(Solve("branin").status, 0);
  const LeftStudy study(Path("branin"));
  const CDPoint best = study.BestPoint();
  const double minima[][2] = {{-3.141593, 12.275}, {3.141593, 2.275}, {9.424778, 2.475}};
  EXPECT_TRUE(std::any_of(std::begin(minima), std::end(minima),
                          [&](const double(&minimum)[2]) {
                            return std::hypot(best.m_IDVar[0] - minimum[0],
                                              best.m_IDVar[1] - minimum[1]) < 0.01;
                          }))
      << best.m_IDVar[0] << ' ' << best.m_IDVar[1];
}

TEST_F(EngineExample, RunsAStudyThatIsThereOnceMore) {
  const EngineRun first = Solve("composite");
  const EngineRun second = Solve("composite");
  EXPECT_EQ(second.status, 0);
  EXPECT_EQ(second.Found("composite, R**2"), first.Found("composite, R**2"));
  const LeftStudy study(Path("composite"));
  std::vector<int> tasks;
  CTask::GetAllTasks(GetPOD(), tasks);
  EXPECT_EQ(tasks, (std::vector<int>{1, 2}));
  std::vector<int> inputs;
  CInput::GetAllInputIDs(GetPOD(), inputs);
  EXPECT_EQ(inputs.size(), 2U);
}

/// A weld of at least 0.3 inches costs more than the published optimum.
TEST_F(EngineExample, TellsAResultThatIsWorseThanPublished) {
  ASSERT_EQ(Solve("weldedbeam").status, 0);
  {
    const LeftStudy study(Path("weldedbeam"));
    CInput weld(GetPOD());
    weld.m_nID = 1;
    ASSERT_TRUE(weld.GetObject());
    weld.m_fLower = 0.3;
    weld.PutObject();
  }
  const EngineRun run = Solve("weldedbeam");
  EXPECT_EQ(run.status, 1);
  EXPECT_GT(run.Found("welded beam"), 1.724852 * 1.001);
  EXPECT_NE(run.output.find("%  worse than allowed\n"), std::string::npos);
}

/// A weld of at least 3 inches is thicker than any bar may be: nothing is feasible.
TEST_F(EngineExample, FailsWithoutAFeasibleDesign) {
  ASSERT_EQ(Solve("weldedbeam").status, 0);
  {
    const LeftStudy study(Path("weldedbeam"));
    CInput weld(GetPOD());
    weld.m_nID = 1;
    ASSERT_TRUE(weld.GetObject());
    weld.m_fLower = 3.0;
    weld.m_fUpper = 4.0;
    weld.m_fInitial = 3.5;
    weld.PutObject();
  }
  const EngineRun run = Solve("weldedbeam");
  EXPECT_EQ(run.status, 1);
  EXPECT_NE(run.output.find("engine: welded beam: no feasible design found\n"), std::string::npos);
}

TEST_F(EngineExample, PrintsTheReports) {
  const std::string output = Solve("speedreducer").output;
  EXPECT_NE(output.find("DESIGN TASK CONTROL INFORMATION"), std::string::npos);
  EXPECT_NE(output.find("RESULTS SUMMARY"), std::string::npos);
  EXPECT_NE(output.find("FINAL RESULTS FOR ITERATION"), std::string::npos);
  EXPECT_NE(output.find("Discrete variables rounded, solving again"), std::string::npos);
}

TEST_F(EngineExample, RefusesAProblemThatItDoesNotKnow) {
  const EngineRun run = Solve("weldedbeam travelling");
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.output.find("usage: engine FOLDER [PROBLEM...]"), 0U);
  EXPECT_FALSE(std::filesystem::exists(Path("weldedbeam.ksb")));
}

TEST_F(EngineExample, NeedsAFolder) {
  EXPECT_EQ(EngineRun("").status, 2);
  EXPECT_EQ(EngineRun("/dev/null/studies composite").status, 1);
}

}  // namespace
