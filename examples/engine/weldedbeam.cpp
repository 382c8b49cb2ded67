// The welded beam: the cheapest beam and weld that carry a load. The formulation is that of Deb
// (1991) and Coello (2000), in which the polar moment of the weld has l**2 / 12. Lengths in inches,
// loads in pounds.

#include <kestdb.h>

#include <cmath>

#include "definition.h"
#include "gradient.h"
#include "problems.h"

namespace {

constexpr double kBestKnown = 1.724852;

constexpr double kLoad = 6000.0;
constexpr double kLength = 14.0;
constexpr double kElasticity = 30e6;
constexpr double kShear = 12e6;

double ShearStress(double h, double l, double t) {
  const double half = (h + t) / 2.0;
  const double moment = kLoad * (kLength + l / 2.0);
  const double radius = std::sqrt(l * l / 4.0 + half * half);
  const double polar = 2.0 * std::sqrt(2.0) * h * l * (l * l / 12.0 + half * half);
  const double primary = kLoad / (std::sqrt(2.0) * h * l);
  const double secondary = moment * radius / polar;
  return std::sqrt(primary * primary + primary * secondary * l / radius + secondary * secondary);
}

double BucklingLoad(double t, double b) {
  const double slenderness = t / (2.0 * kLength) * std::sqrt(kElasticity / (4.0 * kShear));
  return 4.013 * kElasticity * t * b * b * b / (6.0 * kLength * kLength) * (1.0 - slenderness);
}

std::vector<double> Analyse(const std::vector<double>& variables) {
  const double h = variables[0];
  const double l = variables[1];
  const double t = variables[2];
  const double b = variables[3];
  const double bending = 6.0 * kLoad * kLength / (b * t * t);
  const double deflection = 4.0 * kLoad * std::pow(kLength, 3) / (kElasticity * t * t * t * b);
  return {ShearStress(h, l, t), bending, deflection, BucklingLoad(t, b)};
}

void Define() {
  Definitions study;
  const int h = study.AddVariable("h", {0.1, 2.0, 0.5});
  const int l = study.AddVariable("l", {0.1, 10.0, 5.0});
  const int t = study.AddVariable("t", {0.1, 10.0, 8.0});
  const int b = study.AddVariable("b", {0.1, 2.0, 0.5});
  study.AddAnalysed("shear", AtMost(13600.0));
  study.AddAnalysed("bending", AtMost(30000.0));
  study.AddAnalysed("deflection", AtMost(0.25));
  study.AddAnalysed("buckling", AtLeast(kLoad));
  study.AddLink("weld in bar", AtMost(0.0), 0.0, {{1.0, {"h", h}}, {-1.0, {"b", b}}});
  study.AddLink("weld", AtLeast(0.125), 0.0, {{1.0, {"h", h}}});
  study.AddFunction("material", AtMost(5.0), "0.10471*h^2 + 0.04811*t*b*(14 + l)",
                    {{"h", h}, {"l", l}, {"t", t}, {"b", b}});
  study.AddFunction("cost", Objective(), "1.10471*h^2*l + 0.04811*t*b*(14 + l)",
                    {{"h", h}, {"l", l}, {"t", t}, {"b", b}});
  DefineGradientTask("Welded beam");
}

}  // namespace

std::vector<Finding> SolveWeldedBeam(const std::string& path) {
  const OpenStudy study(path, Define);
  TaskModel model(study.Task(), Analyse);
  Run run(model);
  run.Finish(RunGradientSearch(model, run));
  PrintRun(study.Task(), run.BestIteration());
  return {MinimumOf("welded beam", model, run, kBestKnown)};
}
