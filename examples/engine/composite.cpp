// A central composite design in two variables with its published analysis: the yield of a process
// in Montgomery's Design and Analysis of Experiments, fitted by a model of second order.

#include <kestdb.h>

#include <fstream>
#include <numeric>
#include <sstream>
#include <stdexcept>

#include "definition.h"
#include "engine.h"
#include "examples/support/surface.h"
#include "problems.h"

namespace {

constexpr int kYield = 0;  // the position of the yield among the independent responses
constexpr double kBound = 1.414;

std::vector<double> ParseLine(const std::string& line) {
  std::vector<double> values;
  std::istringstream cells(line);
  for (std::string cell; std::getline(cells, cell, ',');) values.push_back(std::stod(cell));
  return values;
}

/// The user's points, measured already.
void DefinePoints() {
  std::ifstream file(ENGINE_POINTS);
  std::string line;
  if (!std::getline(file, line)) throw std::runtime_error("cannot read " ENGINE_POINTS);
  CGPoint points(GetPOD());
  while (std::getline(file, line)) {
    const std::vector<double> row = ParseLine(line);
    if (row.size() != 3) throw std::runtime_error("a point has two variables and a response");
    points.m_vnUsed.push_back(1);
    points.m_vnRun.push_back(0);
    points.m_vnLocked.push_back(0);
    points.m_vDVars.push_back({row[0], row[1]});
    points.m_vResps.push_back({row[2]});
  }
  points.PutObject();
}

void DefineSettings() {
  CDesignControl control(GetPOD());
  control.GetObject();
  control.m_strTitle = "Central composite design";
  control.m_nTaskType = 2;
  control.m_DOE.m_nMethod = 11;  // the user's points
  control.m_DOE.m_nModel = 3;    // full quadratic
  control.m_DOE.m_nTask = 2;     // up to the models
  control.PutObject();
}

void Define() {
  Definitions study;
  study.AddVariable("x", {-kBound, kBound, 0.0});
  study.AddVariable("y", {-kBound, kBound, 0.0});
  study.AddAnalysed("yield", Role());
  DefinePoints();
  DefineSettings();
}

/// The points of the task, with the responses that were measured.
struct Measured {
  std::vector<std::vector<double>> places;
  std::vector<double> yields;
};

Measured ReadPoints(int task) {
  const CLock lock(GetPOD(), 0);
  Measured measured;
  CDPoint point(GetPOD());
  point.m_nTaskID = task;
  for (point.m_nPointID = 0; point.GetObject(); point.m_nPointID = point.m_nPointID + 1) {
    measured.places.emplace_back(std::begin(point.m_IDVar), std::end(point.m_IDVar));
    measured.yields.push_back(point.m_IResp[kYield]);
  }
  return measured;
}

LeastSquares Fit(const Measured& measured) {
  const auto terms = QuadraticTerms(measured.places.at(0).size());
  std::vector<std::vector<double>> rows;
  for (const auto& place : measured.places) rows.push_back(TermsAt(terms, place));
  return FitLeastSquares(rows, measured.yields);
}

void Store(int task, const Measured& measured, const LeastSquares& fit) {
  const CLock lock(GetPOD(), 0);
  CRDOE design(GetPOD());
  design.m_nTaskID = task;
  design.m_Points.resize(measured.places.size());
  std::iota(std::begin(design.m_Points), std::end(design.m_Points), 0);
  design.PutObject();
  const auto terms = QuadraticTerms(measured.places[0].size());
  StoreModel(task, 0, kYield, terms, fit);
  StoreFinalModel(task, terms, fit);
  StoreResiduals(task, kYield, fit);
}

void Print(int task) {
  CTask::Dump(GetPOD(), stdout, task);
  CResult::Dump(GetPOD(), stdout, task, false);
  CMessage::Dump(GetPOD(), stdout, task);
  CRDOE::Dump(GetPOD(), stdout, task);
  CApproxModels::Dump(GetPOD(), stdout, task, kYield);
  CRApproxMod::Dump(GetPOD(), stdout, task);
  CResidual::Dump(GetPOD(), stdout, task, kYield, false);
}

std::vector<double> Analyse(const std::vector<double>&) {
  throw std::runtime_error("the points are measured already");
}

}  // namespace

std::vector<Finding> AnalyseComposite(const std::string& path) {
  const OpenStudy study(path, Define);
  TaskModel model(study.Task(), Analyse);
  const Measured measured = ReadPoints(study.Task());
  Run run(model, static_cast<int>(measured.places.size()));
  const LeastSquares fit = Fit(measured);
  Store(study.Task(), measured, fit);
  run.Finish(kNormalStop);
  Print(study.Task());
  return {FigureOf("composite, R**2", fit.r2, 0.9827),
          FigureOf("composite, RMSE", fit.RootMeanSquareError(), 0.2663),
          FigureOf("composite, PRESS", fit.press, 2.353), FigureOf("composite, F0", fit.f0, 79.67)};
}
