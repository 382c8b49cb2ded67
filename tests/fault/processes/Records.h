#pragma once

#include <kestdb.h>

#include <string>

// What the processes store. All of an object follows from its number and its version, so that who
// finds it can tell whether it is whole, whoever stored it. Sizes change with the version: objects
// move about, and blocks are used again.

/// No task has these IDs.
constexpr int kFirstOwnTask = 1001;   ///< of the points of the first process
constexpr int kFirstUnitTask = 2001;  ///< of the points of its units
constexpr int kCounterTask = 3001;
constexpr int kFirstMessage = 100000;
constexpr int kMostMessages = 1000;  ///< of a process

CDPoint PointOf(int task, int number, int version);
/// As `point` itself says what it is.
bool IsWhole(const CDPoint& point);

int MessageID(int process, int unit);
CMessage MessageOf(int id);
bool IsWhole(const CMessage& message);

CAuxiliary AuxiliaryOf(int id);
bool IsWhole(const CAuxiliary& auxiliary);

/// The counter that all processes share: how many times each of them counted.
class Counter {
 public:
  /// REQUIRES that the caller holds CLock, as do all others.
  Counter();

  bool IsStored() const { return stored_; }
  int Of(int process) const;
  /// Whether the parts make the whole.
  bool IsWhole() const;
  void Add(int process);
  void Store();

 private:
  CDPoint point_;
  bool stored_;
};
