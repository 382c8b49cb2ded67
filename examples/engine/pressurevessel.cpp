// The pressure vessel: the cheapest cylinder with two hemispherical heads that holds a volume. The
// formulation is that of Sandgren (1990) and Kannan and Kramer (1994): both plates are rolled in
// sixteenths of an inch. Lengths in inches.

#include <kestdb.h>

#include "definition.h"
#include "problems.h"
#include "swarm.h"

namespace {

constexpr double kBestKnown = 6059.714335;
constexpr double kSixteenth = 0.0625;

void DefineSettings() {
  CDesignControl control(GetPOD());
  control.GetObject();
  control.m_strTitle = "Pressure vessel";
  control.m_nTaskType = 3;
  control.m_NGO.m_nMethod = 0;  // particle swarm
  control.m_NGO.m_nPopulation = 400;
  control.m_NGO.m_nMaxIters = 400;
  control.m_NGO.m_nMinIters = 200;
  control.m_NGO.m_nConvIters = 50;
  control.m_NGO.m_fHardRel = 1e-6;
  control.m_NGO.m_fCTMIN = 1e-8;
  // Those at which a swarm of this kind is known to contract (Clerc and Kennedy 2002).
  control.m_NGO.m_fInertia = 0.7298;
  control.m_NGO.m_fTrust1 = 1.49618;
  control.m_NGO.m_fTrust2 = 1.49618;
  control.PutObject();
}

std::vector<double> Sixteenths() {
  std::vector<double> values;
  for (int i = 1; i <= 99; ++i) values.push_back(i * kSixteenth);
  return values;
}

void Define() {
  const Range thickness = {kSixteenth, 99 * kSixteenth, 1.0};
  Definitions study;
  const Argument s = {"s", study.AddDiscrete("shell", thickness, Sixteenths())};
  const Argument h = {"h", study.AddDiscrete("head", thickness, Sixteenths())};
  const Argument r = {"r", study.AddVariable("radius", {10.0, 200.0, 50.0})};
  const Argument l = {"l", study.AddVariable("length", {10.0, 200.0, 100.0})};
  study.AddLink("shell stress", AtMost(0.0), 0.0, {{-1.0, s}, {0.0193, r}});
  study.AddLink("head stress", AtMost(0.0), 0.0, {{-1.0, h}, {0.00954, r}});
  study.AddLink("rolled length", AtMost(240.0), 0.0, {{1.0, l}});
  study.AddFunction("volume", AtLeast(1296000.0), "_pi*r^2*l + 4/3*_pi*r^3", {r, l});
  study.AddFunction("cost", Objective(), "0.6224*s*r*l + 1.7781*h*r^2 + 3.1661*s^2*l + 19.84*s^2*r",
                    {s, h, r, l});
  DefineSettings();
}

/// All of the study is links and functions: there is nothing to analyse.
std::vector<double> Analyse(const std::vector<double>&) {
  return {};
}

}  // namespace

std::vector<Finding> SolvePressureVessel(const std::string& path) {
  const OpenStudy study(path, Define);
  TaskModel model(study.Task(), Analyse);
  Run run(model);
  run.Finish(RunSwarm(model, run));
  PrintRun(study.Task(), run.BestIteration());
  return {MinimumOf("pressure vessel", model, run, kBestKnown)};
}
