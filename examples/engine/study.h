#pragma once

#include <functional>
#include <string>

class Run;
class TaskModel;

/// The open study of a problem with a task to be run. It is closed at the end.
class OpenStudy {
 public:
  /// `define` stores the definitions of a study that is new.
  OpenStudy(const std::string& path, const std::function<void()>& define);
  OpenStudy(const OpenStudy&) = delete;
  OpenStudy& operator=(const OpenStudy&) = delete;
  ~OpenStudy();

  int Task() const { return task_; }

 private:
  int task_ = 0;
};

/// A figure that was found, against the published one.
struct Finding {
  std::string name;
  double found;
  double published;
  double difference;  ///< relative; positive where it is worse
  double allowed = 0.001;
};

/// The finding of a minimum. THROWS std::runtime_error for a run without a feasible design.
Finding MinimumOf(const std::string& name, const TaskModel& model, const Run& run,
                  double published);

/// The finding of a figure that has to be the published one.
Finding FigureOf(const std::string& name, double found, double published);
