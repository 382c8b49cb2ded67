// ZDT1 of Zitzler, Deb and Thiele (2000): two objectives of 30 variables, with the true front
// f2 = 1 - sqrt(f1) for f1 from 0 to 1.

#include <kestdb.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "definition.h"
#include "nsga2.h"
#include "problems.h"

namespace {

constexpr unsigned kVariables = 30;
constexpr double kAllowed = 0.05;  // of the front's length

void DefineSettings() {
  CDesignControl control(GetPOD());
  control.GetObject();
  control.m_strTitle = "ZDT1";
  control.m_nTaskType = 3;
  control.m_NGO.m_nMethod = 2;  // NSGA-II
  control.m_NGO.m_nPopulation = 100;
  control.m_NGO.m_nMaxIters = 200;
  control.m_NGO.m_fNSGACrossProb = 0.9;
  control.m_NGO.m_fNSGAMutProb = 1.0 / kVariables;
  control.m_NGO.m_nCrossIndex = 15;
  control.m_NGO.m_nMutIndex = 20;
  control.PutObject();
}

/// g = 1 + 9 * (the mean of all variables but the first).
std::vector<Term> MeanTerms(int x) {
  std::vector<Term> terms;
  for (int element = 1; element < static_cast<int>(kVariables); ++element) {
    std::string name = "x";
    name += std::to_string(element + 1);
    terms.push_back({9.0 / (kVariables - 1), {name, x, element}});
  }
  return terms;
}

void Define() {
  Definitions study;
  const int x = study.AddArray("x", kVariables, {0.0, 1.0, 0.5});
  const int g = study.AddLink("g", Role(), 1.0, MeanTerms(x));
  study.AddFunction("f1", Objective(1.0), "x1", {{"x1", x}});
  study.AddFunction("f2", Objective(1.0), "g*(1 - sqrt(x1/g))", {{"x1", x}, {"g", g}});
  DefineSettings();
}

/// All of the study is links and functions: there is nothing to analyse.
std::vector<double> Analyse(const std::vector<double>&) {
  return {};
}

struct Place {
  double f1;
  double f2;
};

double DistanceOf(const Place& a, const Place& b) {
  return std::hypot(a.f1 - b.f1, a.f2 - b.f2);
}

/// Places on the true front, close to each other also where it is steep.
std::vector<Place> TrueFront() {
  constexpr int pieces = 1000;
  std::vector<Place> places;
  for (int i = 0; i <= pieces; ++i) {
    const double root = static_cast<double>(i) / pieces;
    places.push_back({root * root, 1.0 - root});
  }
  return places;
}

double LengthOf(const std::vector<Place>& front) {
  double length = 0;
  for (std::size_t i = 1; i < front.size(); ++i) length += DistanceOf(front[i - 1], front[i]);
  return length;
}

/// The mean distance from places on the true front to the nearest design.
double InvertedGenerationalDistance(const std::vector<Place>& front,
                                    const std::vector<Design>& designs) {
  double sum = 0;
  for (const Place& place : front) {
    double nearest = std::numeric_limits<double>::infinity();
    for (const Design& design : designs) {
      nearest = std::min(nearest, DistanceOf(place, {design.objectives[0], design.objectives[1]}));
    }
    sum += nearest;
  }
  return sum / static_cast<double>(front.size());
}

}  // namespace

std::vector<Finding> SolveZDT1(const std::string& path) {
  const OpenStudy study(path, Define);
  TaskModel model(study.Task(), Analyse);
  Run run(model);
  const std::vector<Design> found = RunNSGA2(model, run);
  run.Finish(kIterationLimit);
  PrintRun(study.Task(), run.LastIteration());
  const std::vector<Place> front = TrueFront();
  const double distance = InvertedGenerationalDistance(front, found);
  return {{"ZDT1, distance from front", distance, 0.0, distance / LengthOf(front), kAllowed}};
}
