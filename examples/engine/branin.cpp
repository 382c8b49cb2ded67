// The function of Branin (1972) for x1 from -5 to 10 and x2 from 0 to 15. It has three minima, all
// of the same value.

#include <kestdb.h>

#include <cmath>
#include <numbers>

#include "definition.h"
#include "problems.h"
#include "trustregion.h"

namespace {

constexpr double kBestKnown = 0.39788735772973816;

std::vector<double> Analyse(const std::vector<double>& variables) {
  using std::numbers::pi;
  const double x1 = variables[0];
  const double x2 = variables[1];
  const double valley = x2 - 5.1 / (4.0 * pi * pi) * x1 * x1 + 5.0 / pi * x1 - 6.0;
  return {valley * valley + 10.0 * (1.0 - 1.0 / (8.0 * pi)) * std::cos(x1) + 10.0};
}

void DefineSettings() {
  CDesignControl control(GetPOD());
  control.GetObject();
  control.m_strTitle = "Branin";
  control.m_nTaskType = 1;
  control.m_RSA.m_nOrder = 3;  // full quadratic models
  control.m_RSA.m_nHasMaxPoints = 1;
  control.m_RSA.m_nMaxPoints = 300;
  control.m_RSA.m_fMoveRelQuad = 0.2;
  control.m_RSA.m_fMoveAbsQuad = 0.01;
  control.PutObject();
}

void Define() {
  Definitions study;
  study.AddVariable("x1", {-5.0, 10.0, 2.5});
  study.AddVariable("x2", {0.0, 15.0, 7.5});
  study.AddAnalysed("f", Objective());
  DefineSettings();
}

}  // namespace

std::vector<Finding> SolveBranin(const std::string& path) {
  const OpenStudy study(path, Define);
  TaskModel model(study.Task(), Analyse);
  Run run(model);
  run.Finish(RunTrustRegion(model, run));
  PrintRun(study.Task(), run.BestIteration());
  CApproxModels::Dump(GetPOD(), stdout, study.Task(), 0);
  CRApproxMod::Dump(GetPOD(), stdout, study.Task());
  return {MinimumOf("Branin, by response surfaces", model, run, kBestKnown)};
}
