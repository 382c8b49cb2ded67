#pragma once

#include <CLI/App.hpp>
#include <functional>
#include <string>

#include "StudyFiles.h"

/// What is to be done, once the command line is understood; the exit status.
using Action = std::function<int()>;

/// The options of all commands that open a study.
struct StudyOptions {
  std::string name;
  double wait = 0.0;
  bool upgrade = false;
};

/// Adds STUDY and --wait to a command.
void AddStudyName(CLI::App& command, StudyOptions& options);
/// Adds --upgrade too.
void AddStudy(CLI::App& command, StudyOptions& options);

/// A study that is open as long as this object lives, after all was looked at that may hinder it.
/// Signals wait from its start on.
class Study {
 public:
  /// THROWS Refusal, and what OpenDatabase throws.
  explicit Study(const StudyOptions& options);
  Study(const Study&) = delete;
  Study& operator=(const Study&) = delete;
  /// Closes quietly what is still open.
  ~Study();

  /// THROWS what CloseDatabase throws.
  void Close();
  POD* Pod() const { return GetPOD(); }
  const StudyFiles& Files() const { return files_; }

 private:
  StudyFiles files_;
};

/// THROWS Refusal when the study has no such task.
void RequireTask(const Study& study, int task);
