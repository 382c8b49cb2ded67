#pragma once

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

/// Prints the runs as usual and keeps their times for ratios, which can be compared between
/// machines.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    // With repetitions the median comes after the single runs, under the same name.
    for (const Run& run : runs) {
      if (run.run_type == Run::RT_Iteration || run.aggregate_name == "median") {
        times_[run.run_name.function_name + run.run_name.args] = run.GetAdjustedRealTime();
      }
    }
  }

  void PrintRatio(const std::string& over, const std::string& under) const {
    const auto top = times_.find(over);
    const auto bottom = times_.find(under);
    if (top == times_.end() || bottom == times_.end()) return;
    std::printf("%s / %s = %.2f\n", over.c_str(), under.c_str(), top->second / bottom->second);
  }

 private:
  std::map<std::string, double> times_;
};
