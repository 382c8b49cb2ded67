#pragma once

#include <kestdb.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "taskmodel.h"

/// Why a run ended, as CResult::m_nStopCode tells it.
enum StopCode : int {
  kNormalStop = 0,
  kAbsoluteConvergence = 1,
  kRelativeConvergence = 2,
  kNoDirection = 4,
  kIterationLimit = 14,
};

/// What an iteration is made of. Designs get their numbers when it is stored.
struct Step {
  Design& current;
  std::vector<Design*> others{};  ///< further designs to be stored
  std::vector<Design*> front{};   ///< those of the Pareto front
};

/// Writes the results of a task as its run goes on. Every iteration is one locked change: another
/// process sees all of it or nothing.
class Run {
 public:
  /// Marks the task as running. `points` are stored with it already and stay.
  explicit Run(TaskModel& model, int points = 0);
  Run(const Run&) = delete;
  Run& operator=(const Run&) = delete;
  /// A run that isn't finished by now was terminated.
  ~Run();

  /// Stores an iteration with those of its designs that aren't stored yet. Its number.
  int Record(const Step& step);
  /// Adds to the messages of the task.
  void Say(const std::string& message);
  void CountGradient() { ++gradients_; }
  void Finish(StopCode code);

  /// The best design stored so far. THROWS std::runtime_error before the first iteration.
  const Design& Best() const;
  int BestIteration() const { return bestIteration_; }
  int LastIteration() const { return nextIteration_ - 1; }

 private:
  void StoreState(long status);
  void StoreDesign(Design& design);
  void TakeIfBest(const Design& design);
  void StoreIteration(const Step& step) const;

  TaskModel& model_;
  CResult result_;
  std::optional<Design> best_;
  int bestIteration_ = 0;
  int nextIteration_ = 0;
  int nextPoint_;
  long gradients_ = 0;
  bool finished_ = false;
  double databaseSeconds_ = 0;
  std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
};

/// Prints the task, the summary of its run, its messages and one of its iterations.
void PrintRun(int task, int iteration);
