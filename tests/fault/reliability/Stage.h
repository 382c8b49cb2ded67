#pragma once

#include <string>
#include <vector>

#include "tests/fault/reliability/Figures.h"
#include "tests/fault/reliability/Processes.h"

/// What a unit does undisturbed.
struct Undisturbed {
  std::vector<long> counts;  ///< as the worker writes them: by domain, allocations, what stays
  std::string before;        ///< what the study holds before the unit, a file
  std::string after;         ///< and after it
};

/// A folder with a study, on which programs of the library do a unit of work.
class Stage {
 public:
  /// `study` is the one that each case begins with, a path without an extension.
  Stage(std::string folder, std::string study);

  const std::string& Folder() const { return folder_; }
  std::string Study() const { return folder_ + "/case/s"; }
  std::string Log() const { return folder_ + "/log"; }

  /// Provides the study in the state in which the unit finds it, and an empty log.
  void Provide(const std::string& unit);

  Ended Run(const std::string& worker, const std::string& unit, const Settings& settings) const;

  /// Judges what a run left behind.
  Outcome Judge(const std::string& worker, const std::string& unit, const Undisturbed& undisturbed,
                const Ended& ended) const;

  /// Does the unit undisturbed. THROWS std::runtime_error when it fails.
  Undisturbed Rehearse(const std::string& worker, const std::string& unit,
                       const Settings& settings);

  /// The last lines that the worker printed.
  std::vector<std::string> LastWords() const;

 private:
  void Require(const std::vector<std::string>& command, const Settings& settings) const;
  Ended AskJudge(const std::string& worker, const std::string& unit, const std::string& study,
                 const Undisturbed& undisturbed, const char* end) const;
  Outcome Judged(const Ended& ended, Outcome outcome) const;

  std::string folder_;
  std::string study_;
};

/// Makes a study. THROWS std::runtime_error when that fails.
void PrepareStudy(const std::string& worker, const std::string& study, int points,
                  const std::string& log);

/// What a worker under the sanitizers needs beside a preloaded shim, and for the library's own ways
/// to tell that memory is short.
Settings SanitizerSettings(bool leaks);
