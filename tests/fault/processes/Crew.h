#pragma once

#include <sys/types.h>

#include <functional>
#include <vector>

enum class Ending { Good, Failed, Killed, Crash, Hang };

/// What lasts longer in one of the processes, is a hang.
constexpr unsigned kLongestSeconds = 120;

/// Processes that do the same at the same time. Make it while this process has no study open. None
/// of them outlives it.
class Crew {
 public:
  /// Waits for the others.
  using Barrier = std::function<void()>;
  using Body = std::function<void(int process, const Barrier& barrier)>;

  /// Starts the processes and awaits that all are at the barrier. An exception of the body makes
  /// the process a failed one, any other exit code than 0 one that crashed.
  Crew(int processes, const Body& body);
  Crew(const Crew&) = delete;
  Crew& operator=(const Crew&) = delete;
  ~Crew();

  /// Opens the barrier to all at once; returns the moment.
  double Go();
  /// As SIGKILL does.
  void Kill(int process);
  std::vector<Ending> AwaitEnds();

 private:
  [[noreturn]] void Run(int process, const Body& body) const;
  void AwaitAll() const;

  std::vector<pid_t> processes_;
  int ready_[2] = {-1, -1};
  int go_[2] = {-1, -1};
};

/// Does something in a process of its own.
Ending Alone(const std::function<void()>& body);

/// Tells that this process does not hang: it has the longest time from now on.
void ShowLife();

/// Seconds on a clock that all processes share.
double Now();
