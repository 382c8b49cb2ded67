#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "tests/examples/EngineRun.h"
#include "tests/support/StudyCheck.h"

// The run engine on the problems with many iterations.

namespace {

class EngineExampleLong : public ::testing::Test {
 protected:
  EngineRun Solve(const std::string& problem) const {
    return EngineRun('\'' + folder.Path() + "' " + problem);
  }
  std::string Path(const std::string& problem) const { return folder / problem; }

  TempFolder folder;
};

/// The optimum is a shell of 13/16, heads of 7/16, radius 42.098446 and length 176.636596.
TEST_F(EngineExampleLong, FindsThePressureVesselInSixteenths) {
  const EngineRun run = Solve("pressurevessel");
  ASSERT_EQ(run.status, 0);
  EXPECT_NEAR(run.Found("pressure vessel"), 6059.714, 0.1);
  EXPECT_EQ(FaultsOfStudy(Path("pressurevessel")), "");
  const LeftStudy study(Path("pressurevessel"));
  const CDPoint best = study.BestPoint();
  ASSERT_EQ(best.m_IDVar.size(), 4U);
  EXPECT_EQ(best.m_IDVar[0], 0.8125);
  EXPECT_EQ(best.m_IDVar[1], 0.4375);
  EXPECT_NEAR(best.m_IDVar[2], 42.098446, 0.001);
  EXPECT_NEAR(best.m_IDVar[3], 176.636596, 0.02);
  EXPECT_EQ(study.Result().m_nRunStatus, 2);
}

/// Also when the swarm is under way, both thicknesses are in sixteenths.
TEST_F(EngineExampleLong, StoresOnlyValuesOfTheSets) {
  ASSERT_EQ(Solve("pressurevessel").status, 0);
  const LeftStudy study(Path("pressurevessel"));
  const long points = study.CountPoints();
  ASSERT_GT(points, 10);
  for (long number = 0; number < points; ++number) {
    const CDPoint point = study.Point(number);
    EXPECT_EQ(std::remainder(point.m_IDVar[0], 0.0625), 0.0) << number;
    EXPECT_EQ(std::remainder(point.m_IDVar[1], 0.0625), 0.0) << number;
  }
}

TEST_F(EngineExampleLong, ComesToTheFrontOfZDT1) {
  const EngineRun run = Solve("zdt1");
  ASSERT_EQ(run.status, 0);
  EXPECT_LT(run.Found("ZDT1, distance from front"), 0.05 * 1.4789);
  EXPECT_EQ(FaultsOfStudy(Path("zdt1")), "");
  const LeftStudy study(Path("zdt1"));
  const std::vector<CIter> iterations = study.Iterations();
  ASSERT_EQ(iterations.size(), 201U);  // that of the founders and the generations
  EXPECT_EQ(study.Result().m_nNumPoints, study.CountPoints());
  EXPECT_EQ(study.Result().m_nAnalysisCalls, 201 * 100);
}

/// The front names points of the study; their values are those of the objectives there, and no
/// member dominates another.
TEST_F(EngineExampleLong, KeepsTheFrontOfEachGeneration) {
  ASSERT_EQ(Solve("zdt1").status, 0);
  const LeftStudy study(Path("zdt1"));
  const CIter last = study.Iteration(200);
  const std::size_t members = last.m_ParetoPoints.size();
  ASSERT_GT(members, 50U);
  ASSERT_EQ(last.m_ParetoValues.size(), 2 * members);
  for (std::size_t i = 0; i < members; ++i) {
    SCOPED_TRACE(i);
    const CDPoint point = study.Point(last.m_ParetoPoints[i]);
    const double f1 = last.m_ParetoValues[2 * i];
    const double f2 = last.m_ParetoValues[2 * i + 1];
    EXPECT_DOUBLE_EQ(point.m_SResp[0], f1);
    EXPECT_DOUBLE_EQ(point.m_SResp[1], f2);
    double sum = 0;
    for (std::size_t k = 1; k < 30; ++k) sum += point.m_IDVar[k];
    const double g = 1.0 + 9.0 * sum / 29.0;
    EXPECT_NEAR(f1, point.m_IDVar[0], 1e-12);
    EXPECT_NEAR(f2, g * (1.0 - std::sqrt(f1 / g)), 1e-9);
    EXPECT_GE(f2, 1.0 - std::sqrt(f1) - 1e-9);
    for (std::size_t k = 0; k < members; ++k) {
      const double g1 = last.m_ParetoValues[2 * k];
      const double g2 = last.m_ParetoValues[2 * k + 1];
      EXPECT_FALSE(g1 <= f1 && g2 <= f2 && (g1 < f1 || g2 < f2)) << k;
    }
  }
}

}  // namespace
