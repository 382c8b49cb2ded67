#pragma once

#include <random>
#include <vector>

#include "tests/fault/processes/Ledger.h"

class CDPoint;

/// What each process of a crew is to do.
struct Plan {
  int operations = 1000;
  double pause = 0.0;           ///< between operations, in seconds
  bool stopsAtTimeOut = false;  ///< else it goes on with the next operation
};

/// Mixed operations of one process on the open study, each of them one unit with one outermost
/// lock. Every result is compared at once with what the process knows.
class Worker {
 public:
  Worker(int process, int processes, const Plan& plan, Log& log);
  void Run();

 private:
  void Operate(Kind kind);
  void Do(Kind kind);
  void Begin(Kind kind, int slot, int from, int to);
  void End();
  void Require(bool good, const char* what);

  void Add();
  void Update();
  void LookUp();
  void LookUpOther();
  void Remove();
  void Walk();
  void VisitOwn(const CDPoint& point, int& count);
  void StoreUnit();
  void Count();
  void TakeID();
  void MakeTask();

  int Below(int limit);
  int OwnTask() const;
  int SlotThat(bool isUsed);

  int process_;
  int processes_;
  const Plan& plan_;
  Log& log_;
  Ledger& ledger_;
  std::mt19937 random_;
  bool stopped_ = false;
};
