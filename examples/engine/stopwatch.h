#pragma once

#include <chrono>

/// Adds the seconds of its lifetime to a timer.
class Stopwatch {
 public:
  explicit Stopwatch(double& seconds) : seconds_(seconds) {}
  Stopwatch(const Stopwatch&) = delete;
  Stopwatch& operator=(const Stopwatch&) = delete;
  ~Stopwatch() {
    seconds_ += std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
  }

 private:
  double& seconds_;
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};
