#include "engine.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <exception>
#include <stdexcept>

#include "stopwatch.h"

namespace {

// What CResult::m_nRunStatus says.
constexpr long kRunning = 1;
constexpr long kCompleted = 2;
constexpr long kTerminated = 4;

// The timers of a result that this engine keeps.
constexpr std::size_t kAnalysisTimer = 1;
constexpr std::size_t kDatabaseTimer = 10;
constexpr std::size_t kTotalTimer = 19;

std::string Now() {
  const std::time_t now = std::time(nullptr);
  char text[26];
  std::string line = ctime_r(&now, text);
  line.pop_back();  // the line end
  return line;
}

std::valarray<double> ArrayOf(const std::vector<double>& values) {
  return {values.data(), values.size()};
}

}  // namespace

Run::Run(TaskModel& model, int points) : model_(model), result_(GetPOD()), nextPoint_(points) {
  const CLock lock(GetPOD(), 0);
  result_.m_nID = model.ID();
  result_.CleanResult(points);
  result_.GetObject();
  result_.m_strStarted = Now();
  StoreState(kRunning);
}

Run::~Run() {
  if (finished_) return;
  try {
    StoreState(kTerminated);
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "the end of the run can't be stored: %s\n", failure.what());
  }
}

int Run::Record(const Step& step) {
  const Stopwatch stopwatch(databaseSeconds_);
  const CLock lock(GetPOD(), 0);
  StoreDesign(step.current);
  for (Design* design : step.others) StoreDesign(*design);
  for (Design* design : step.front) StoreDesign(*design);
  StoreIteration(step);
  StoreState(kRunning);
  return nextIteration_++;
}

void Run::Say(const std::string& message) {
  const Stopwatch stopwatch(databaseSeconds_);
  const CLock lock(GetPOD(), 0);
  CMessage messages(GetPOD());
  messages.m_nID = model_.ID();
  messages.GetObject();
  messages.m_Messages.push_back(message);
  messages.PutObject();
  result_.m_strLastMessage = message;
}

void Run::Finish(StopCode code) {
  const CLock lock(GetPOD(), 0);
  const std::chrono::duration<double> total = std::chrono::steady_clock::now() - begin_;
  result_.m_nStopCode = code;
  result_.m_strStopped = Now();
  result_.m_fTimes[kTotalTimer] = total.count();
  Say("Run completed");
  StoreState(kCompleted);
  finished_ = true;
}

const Design& Run::Best() const {
  if (!best_) throw std::runtime_error("the run has no design yet");
  return *best_;
}

void Run::StoreState(long status) {
  result_.m_nRunStatus = status;
  result_.m_nNumPoints = nextPoint_;
  result_.m_nTotalPoints = nextPoint_;
  result_.m_nAnalysisCalls = model_.Analyses();
  result_.m_nGradientRequests = gradients_;
  result_.m_fTimes[kAnalysisTimer] = model_.AnalysisSeconds();
  result_.m_fTimes[kDatabaseTimer] = databaseSeconds_;
  if (best_) {
    result_.m_nBestIter = bestIteration_;
    result_.m_fBestObjective = best_->objective;
    result_.m_fWorstConstraint = best_->worst;
  }
  result_.PutObject();
}

void Run::StoreDesign(Design& design) {
  if (design.number >= 0) return;
  design.number = nextPoint_++;
  CDPoint point(GetPOD());
  point.m_nTaskID = model_.ID();
  point.m_nPointID = design.number;
  point.m_IDVar = ArrayOf(design.Of(vbIndependentVar));
  point.m_LDVar = ArrayOf(design.Of(vbLinkedVar));
  point.m_SDVar = ArrayOf(design.Of(vbSyntheticVar));
  point.m_CDVar = ArrayOf(design.Of(vbConstantVar));
  point.m_IResp = ArrayOf(design.Of(vbIndependentResp));
  point.m_LResp = ArrayOf(design.Of(vbLinkedResp));
  point.m_SResp = ArrayOf(design.Of(vbSyntheticResp));
  point.PutObject();
  TakeIfBest(design);
}

/// A design with a value that a discrete variable can't have is never the best while there is
/// another one.
void Run::TakeIfBest(const Design& design) {
  const bool better = !best_ || (design.admitted && !best_->admitted) ||
                      (design.admitted == best_->admitted && model_.IsBetter(design, *best_));
  if (!better) return;
  best_ = design;
  bestIteration_ = nextIteration_;
}

void Run::StoreIteration(const Step& step) const {
  CIter iteration(GetPOD());
  iteration.m_nTaskID = model_.ID();
  iteration.m_nIter = nextIteration_;
  iteration.m_nThisPoint = step.current.number;
  iteration.m_fThisObjective = step.current.objective;
  iteration.m_fThisConstraint = step.current.worst;
  iteration.m_nBestPoint = Best().number;
  iteration.m_fBestObjective = Best().objective;
  iteration.m_fBestConstraint = Best().worst;
  std::vector<int> points;
  std::vector<double> values;
  for (const Design* design : step.front) {
    points.push_back(design->number);
    values.insert(values.end(), design->objectives.begin(), design->objectives.end());
    if (model_.Constraints() > 0) values.push_back(design->worst);
  }
  iteration.m_ParetoPoints = std::valarray<int>(points.data(), points.size());
  iteration.m_ParetoValues = ArrayOf(values);
  iteration.PutObject();
}

void PrintRun(int task, int iteration) {
  CTask::Dump(GetPOD(), stdout, task);
  CResult::Dump(GetPOD(), stdout, task, false);
  CMessage::Dump(GetPOD(), stdout, task);
  CIter::Dump(GetPOD(), stdout, task, true, iteration, 0, true);
}
