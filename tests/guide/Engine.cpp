#include <algorithm>
#include <cmath>
#include <ctime>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <valarray>
#include <vector>

#include "tests/guide/Guide.h"

namespace {

// [load-record]
/// The record of a task in any of its sister classes.
template <class Record>
Record Load(int task) {
  Record record(GetPOD());
  record.m_nID = task;
  if (!record.GetObject()) throw std::runtime_error("the task has no " + record.GetVBClassName());
  return record;
}
// [end]

// [tables]
/// All that a run needs to know. It no longer changes, whatever becomes of the definitions.
struct Tables {
  CTask task;
  CDVar variables;
  CDResp responses;
  CDCons constraints;
  CDObj objectives;
  CDLink links;
};

Tables ReadTables(int task) {
  const CLock lock(GetPOD(), 0);  // one turn for all six records
  return {Load<CTask>(task),  Load<CDVar>(task), Load<CDResp>(task),
          Load<CDCons>(task), Load<CDObj>(task), Load<CDLink>(task)};
}
// [end]

// [analyse]
/// The analysis: a steel cantilever of 500 mm under 10 kN. Lengths in mm, stresses in MPa.
void Analyse(CDPoint& point) {
  constexpr double load = 10000.0;
  constexpr double length = 500.0;
  constexpr double stiffness = 210000.0;
  if (point.m_IDVar.size() != 2) throw std::runtime_error("not the design of a beam");
  const double width = point.m_IDVar[0];
  const double height = point.m_IDVar[1];
  const double stress = 6.0 * load * length / (width * std::pow(height, 2));
  const double deflection =
      4.0 * load * std::pow(length, 3) / (stiffness * width * std::pow(height, 3));
  point.m_IResp = {width * height, stress, deflection};
}
// [end]

// [values]
// What comes from a file may be damaged: positions are checked.
double ElementAt(const std::valarray<double>& values, long position) {
  const auto at = static_cast<std::size_t>(position);
  if (at >= values.size()) throw std::runtime_error("a position outside its table");
  return values[at];
}

/// The value at a position of a kind, as all tables refer to it.
double ValueAt(const CDPoint& point, long kind, long position) {
  switch (kind) {
    case vbIndependentVar:
      return ElementAt(point.m_IDVar, position);
    case vbIndependentResp:
      return ElementAt(point.m_IResp, position);
    case vbLinkedResp:
      return ElementAt(point.m_LResp, position);
    default:
      throw std::runtime_error("a kind that this engine doesn't know");
  }
}

/// The number of the link whose definition has that ID.
std::size_t LinkNumber(const CDLink& links, long id) {
  const auto found = std::find(links.m_vnAuxID.begin(), links.m_vnAuxID.end(), id);
  if (found == links.m_vnAuxID.end()) throw std::runtime_error("a link that the task lacks");
  return static_cast<std::size_t>(found - links.m_vnAuxID.begin());
}

/// The linked response i, from its arguments.
double LinkedResponse(const Tables& tables, const CDPoint& point, std::size_t i) {
  const auto& positions = tables.responses.m_mnLinkSubj.at(i);
  const auto& kinds = tables.responses.m_mnLinkType.at(i);
  const std::size_t link = LinkNumber(tables.links, tables.responses.m_vnLinkRef.at(i));
  const auto& factors = tables.links.m_mdCoef.at(link);
  double value = factors.at(0);
  for (std::size_t j = 0; j < positions.size(); ++j) {
    value += factors.at(j + 1) * ValueAt(point, kinds.at(j), positions[j]);
  }
  return value;
}

void EvaluateLinks(const Tables& tables, CDPoint& point) {
  point.m_LResp.resize(tables.responses.m_vnLinkIDs.size());
  for (std::size_t i = 0; i < point.m_LResp.size(); ++i) {
    point.m_LResp[i] = LinkedResponse(tables, point, i);
  }
}
// [end]

// [goals]
double Objective(const Tables& tables, const CDPoint& point) {
  const CDObj& terms = tables.objectives;
  double sum = 0.0;
  for (std::size_t i = 0; i < terms.m_vnSubj.size(); ++i) {
    const double value = ValueAt(point, terms.m_vnSubjType.at(i), terms.m_vnSubj[i]);
    sum += terms.Eval(static_cast<int>(i), value);
  }
  return sum;
}

/// How far the worst constraint is violated; below 0 all are kept.
double WorstConstraint(const Tables& tables, const CDPoint& point) {
  const CDCons& limits = tables.constraints;
  double worst = CResult::kNoConstraint;
  for (std::size_t i = 0; i < limits.m_vnSubj.size(); ++i) {
    const double value = ValueAt(point, limits.m_vnSubjType.at(i), limits.m_vnSubj[i]);
    const double sign = limits.m_vnMult.at(i) < 0 ? -1.0 : 1.0;
    worst = std::max(worst, sign * (value - limits.m_vfBound.at(i)) / limits.m_vfScale.at(i));
  }
  return worst;
}
// [end]

// [engine]
class Engine {
 public:
  explicit Engine(int task) : tables_(ReadTables(task)), result_(Load<CResult>(task)) {}

  void Start();
  void Search();
  void Finish();

 private:
  struct Trial {
    CDPoint point;
    double objective;
    double constraint;
  };

  int Task() const { return static_cast<int>(tables_.task.m_nID.PackBits()); }
  Trial Evaluate(std::valarray<double> variables);
  static bool IsBetter(const Trial& trial, const Trial& than);
  std::valarray<double> NearBest(double step);
  bool Improve(double step);
  void StoreIteration(long number, bool improved);

  Tables tables_;
  CResult result_;
  Trial best_{CDPoint(GetPOD()), 0.0, 0.0};
  std::vector<CDPoint> analysed_;  ///< those not stored yet
  long points_ = 0;
  std::mt19937 random_{20};  // every run takes the same way
};
// [end]

std::string Now() {
  const std::time_t now = std::time(nullptr);
  std::string text = std::ctime(&now);
  text.pop_back();  // the line end
  return text;
}

// [start]
void Engine::Start() {
  const CLock lock(GetPOD(), 0);
  CDPoint start(GetPOD());
  start.m_nTaskID = Task();
  start.m_nPointID = 0;  // was written with the task
  if (!start.GetObject()) throw std::runtime_error("the task has no starting point");
  if (start.m_IDVar.size() != tables_.variables.m_vfIndLower.size() ||
      start.m_IDVar.size() != tables_.variables.m_vfIndUpper.size()) {
    throw std::runtime_error("the starting point doesn't fit the variables");
  }
  CIter::RemoveIters(GetPOD(), Task());  // what an earlier run left
  CDPoint::RemoveDPoints(GetPOD(), Task(), 1);

  result_.SetDefaultAttributes();
  result_.m_nID = Task();
  result_.m_nRunStatus = 1;
  result_.m_strStarted = Now();
  best_.point = start;
  best_ = Evaluate(start.m_IDVar);
  StoreIteration(0, true);
}
// [end]

// [evaluate]
/// Analyses a design, which becomes the next point of the task.
Engine::Trial Engine::Evaluate(std::valarray<double> variables) {
  CDPoint point(GetPOD());
  point.Copy(best_.point);  // with the task's number and, where there are any, the constants
  point.m_nPointID = points_++;
  point.m_IDVar = std::move(variables);
  Analyse(point);
  EvaluateLinks(tables_, point);
  result_.m_nAnalysisCalls++;
  analysed_.push_back(point);
  return {point, Objective(tables_, point), WorstConstraint(tables_, point)};
}
// [end]

// [iteration]
/// Stores what a reader needs to follow the run: the points, the iteration, and the result as it is
/// by now.
void Engine::StoreIteration(long number, bool improved) {
  const CLock lock(GetPOD(), 0);
  for (CDPoint& point : analysed_) {
    point.Connect(GetPOD());  // a copy belongs to no study
    point.PutObject();
  }
  analysed_.clear();

  CIter iteration(GetPOD());
  iteration.m_nTaskID = Task();
  iteration.m_nIter = number;
  iteration.m_nThisPoint = best_.point.m_nPointID;
  iteration.m_fThisObjective = best_.objective;
  iteration.m_fThisConstraint = best_.constraint;
  iteration.m_nBestPoint = best_.point.m_nPointID;
  iteration.m_fBestObjective = best_.objective;
  iteration.m_fBestConstraint = best_.constraint;
  iteration.PutObject();

  if (improved) result_.m_nBestIter = number;
  result_.m_nNumPoints = points_;
  result_.m_nTotalPoints = points_;
  result_.m_fBestObjective = best_.objective;
  result_.m_fWorstConstraint = best_.constraint;
  result_.PutObject();
}
// [end]

bool Engine::IsBetter(const Trial& trial, const Trial& than) {
  const bool isFeasible = trial.constraint <= 0.0;
  if (isFeasible != (than.constraint <= 0.0)) return isFeasible;
  return isFeasible ? trial.objective < than.objective : trial.constraint < than.constraint;
}

/// A design near the best one, within the bounds.
std::valarray<double> Engine::NearBest(double step) {
  std::uniform_real_distribution<double> part(-step, step);
  std::valarray<double> variables = best_.point.m_IDVar;
  const auto& lowers = tables_.variables.m_vfIndLower;
  const auto& uppers = tables_.variables.m_vfIndUpper;
  for (std::size_t i = 0; i < variables.size(); ++i) {
    variables[i] += part(random_) * (uppers[i] - lowers[i]);
    variables[i] = std::max<double>(lowers[i], std::min<double>(uppers[i], variables[i]));
  }
  return variables;
}

/// Tries some designs; whether any is better than the best one so far.
bool Engine::Improve(double step) {
  const long before = best_.point.m_nPointID;
  for (int i = 0; i < 8; ++i) {
    const Trial trial = Evaluate(NearBest(step));
    if (IsBetter(trial, best_)) best_ = trial;
  }
  return best_.point.m_nPointID != before;
}

// [search]
void Engine::Search() {
  double step = 0.25;  // of the range of each variable
  for (long i = 1; i <= tables_.task.m_DGO.m_nITMAX; ++i) {
    const bool improved = Improve(step);  // analyses take their time: without the lock
    if (!improved) step *= 0.7;
    StoreIteration(i, improved);
  }
}
// [end]

// [finish]
void Engine::Finish() {
  const CLock lock(GetPOD(), 0);
  auto messages = Load<CMessage>(Task());
  messages.m_Messages.push_back("NOTE: the search came to its end");
  messages.PutObject();

  result_.m_nRunStatus = 2;
  result_.m_nStopCode = 2;
  result_.m_strLastMessage = messages.m_Messages.back();
  result_.m_strStopped = Now();
  result_.PutObject();
}
// [end]

}  // namespace

// [run]
void RunTask(int task) {
  Engine engine(task);
  engine.Start();
  engine.Search();
  engine.Finish();
}
// [end]
