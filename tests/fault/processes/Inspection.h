#pragma once

#include <map>
#include <set>
#include <string>
#include <utility>

#include "tests/fault/processes/Ledger.h"

/// Compares a study with what the processes of a crew know to be stored. Each inspection is for a
/// process of its own, which has no study open.
class Inspection {
 public:
  /// `tasks` were in the study before.
  Inspection(std::string base, int tasks, int processes, Log& log);

  /// After processes that all ended by themselves.
  void Run();
  /// After some were killed: does first what the guide tells the user to do. Objects of operations
  /// in flight may be as before, as after, or gone.
  void RunAfterCrash();

 private:
  /// By task and number.
  using PointName = std::pair<int, int>;

  template <class Step>
  bool Try(Step step);
  void RequireSoundFiles();
  void Upkeep();
  void Look();

  void LookForPoints();
  void ExpectPoints();
  void ExpectOwn(int process);
  void ExpectUnits(int process);
  void ComparePoint(const PointName& name, int version);
  int VersionOf(const PointName& name);
  void JudgeInFlight(int process);
  void JudgePoint(int process);
  void JudgeUnit(int process);

  int CompareMessages();
  void CompareCounter();
  void CompareIDs();
  void CompareTasksOf(int process, std::set<int>& known);
  void CompareTasks(int unitMessages);
  void CompareSingletons();

  int InFlightOf(Kind kind) const;
  bool IsInFlight(int process, Kind kind) const;

  std::string base_;
  int tasks_;
  int processes_;
  Log& log_;
  Findings& findings_;
  std::map<PointName, int> met_;  ///< how many times, on a walk over the file
};
