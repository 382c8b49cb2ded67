// Golinski's speed reducer: the lightest gear box, by the width b of the face, the module m, the
// number z of teeth of the pinion, and lengths l and diameters d of both shafts. The formulation is
// that of Golinski (1973), with shafts of at least 7.3 cm. Lengths in centimetres.

#include <kestdb.h>

#include <cmath>

#include "definition.h"
#include "gradient.h"
#include "problems.h"

namespace {

constexpr double kBestKnown = 2994.471066;

/// The stress in a shaft of that length and diameter, relative to the greatest that is admitted.
double Stress(double module, double teeth, double length, double diameter, double torque,
              double limit) {
  const double bending = 745.0 * length / (module * teeth);
  return std::sqrt(bending * bending + torque) / (limit * std::pow(diameter, 3));
}

std::vector<double> Analyse(const std::vector<double>& variables) {
  const double m = variables[1];
  const double z = variables[2];
  return {Stress(m, z, variables[3], variables[5], 16.9e6, 110.0),
          Stress(m, z, variables[4], variables[6], 157.5e6, 85.0)};
}

void Define() {
  Definitions study;
  const Argument b = {"b", study.AddVariable("b", {2.6, 3.6, 3.1})};
  const Argument m = {"m", study.AddVariable("m", {0.7, 0.8, 0.75})};
  const Argument z = {"z", study.AddInteger("z", {17.0, 28.0, 22.0})};
  const Argument l1 = {"l1", study.AddVariable("l1", {7.3, 8.3, 7.8})};
  const Argument l2 = {"l2", study.AddVariable("l2", {7.3, 8.3, 7.8})};
  const Argument d1 = {"d1", study.AddVariable("d1", {2.9, 3.9, 3.4})};
  const Argument d2 = {"d2", study.AddVariable("d2", {5.0, 5.5, 5.25})};
  study.AddAnalysed("stress 1", AtMost(1.0));
  study.AddAnalysed("stress 2", AtMost(1.0));
  study.AddFunction("tooth bending", AtMost(1.0), "27/(b*m^2*z)", {b, m, z});
  study.AddFunction("tooth contact", AtMost(1.0), "397.5/(b*m^2*z^2)", {b, m, z});
  study.AddFunction("deflection 1", AtMost(1.0), "1.93*l1^3/(m*z*d1^4)", {m, z, l1, d1});
  study.AddFunction("deflection 2", AtMost(1.0), "1.93*l2^3/(m*z*d2^4)", {m, z, l2, d2});
  study.AddFunction("pinion", AtMost(1.0), "m*z/40", {m, z});
  study.AddFunction("least width", AtMost(1.0), "5*m/b", {b, m});
  study.AddFunction("greatest width", AtMost(1.0), "b/(12*m)", {b, m});
  study.AddFunction("shaft 1", AtMost(1.0), "(1.5*d1 + 1.9)/l1", {l1, d1});
  study.AddFunction("shaft 2", AtMost(1.0), "(1.1*d2 + 1.9)/l2", {l2, d2});
  study.AddFunction("weight", Objective(),
                    "0.7854*b*m^2*(3.3333*z^2 + 14.9334*z - 43.0934)"
                    " - 1.508*b*(d1^2 + d2^2) + 7.4777*(d1^3 + d2^3)"
                    " + 0.7854*(l1*d1^2 + l2*d2^2)",
                    {b, m, z, l1, l2, d1, d2});
  DefineGradientTask("Speed reducer");
}

}  // namespace

std::vector<Finding> SolveSpeedReducer(const std::string& path) {
  const OpenStudy study(path, Define);
  TaskModel model(study.Task(), Analyse);
  Run run(model);
  run.Finish(RunGradientSearch(model, run));
  PrintRun(study.Task(), run.BestIteration());
  return {MinimumOf("speed reducer", model, run, kBestKnown)};
}
