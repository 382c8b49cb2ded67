#include <kestdb.h>

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <CLI/Validators.hpp>
#include <memory>
#include <optional>

#include "Commands.h"
#include "Ending.h"
#include "Interrupts.h"
#include "Visit.h"

namespace {

// ---- Restart ----

struct RestartOptions : StudyOptions {
  int task = 0;
  int point = -1;  // the best one
  std::optional<std::string> title;
  bool link = false;
  bool singleStart = false;
};

void RequirePoint(const Study& study, int task, int number) {
  CDPoint point(study.Pod());
  point.m_nTaskID = task;
  point.m_nPointID = number;
  if (point.FindObject()) return;
  throw Refusal(kWrongUse,
                "task " + std::to_string(task) + " has no point " + std::to_string(number));
}

int MakeRestart(const Study& study, const RestartOptions& options) {
  const CLock lock(study.Pod(), 0);
  RequireTask(study, options.task);
  if (options.point >= 0) RequirePoint(study, options.task, options.point);
  CTask old(study.Pod());
  Load(old, options.task);
  CTask task(study.Pod());
  return task.RestartTask(options.task, options.point, options.title.value_or(old.m_strTitle),
                          options.link, options.singleStart);
}

int Restart(const RestartOptions& options) {
  Study study(options);
  StopIfInterrupted();
  const int id = MakeRestart(study, options);
  study.Close();
  std::printf("Made task %d from task %d\n", id, options.task);
  return kDone;
}

void AddRestart(CLI::App& program, Action& action) {
  const auto options = std::make_shared<RestartOptions>();
  CLI::App& command =
      *program.add_subcommand("restart", "Make a task that goes on from a point of another one");
  AddStudy(command, *options);
  command.add_option("--task", options->task, "The old task")
      ->required()
      ->check(CLI::PositiveNumber);
  command.add_option("--point", options->point, "The point to start from; the best one without it")
      ->check(CLI::NonNegativeNumber);
  command.add_option("--title", options->title,
                     "The title of the new task; the old one without it");
  command.add_flag("--link", options->link, "Both tasks tell of each other");
  command.add_flag("--single-start", options->singleStart, "Give up several starting points");
  command.footer(
      "Examples:\n  kestdb restart --task 1 beam\n"
      "  kestdb restart --task 1 --point 12 --title \"from point 12\" --link beam");
  command.callback([&action, options] { action = [options] { return Restart(*options); }; });
}

// ---- Removal ----

struct RemovalOptions : StudyOptions {
  int task = 0;
  bool withChildren = false;
};

void RemoveTask(const Study& study, const RemovalOptions& options) {
  const CLock lock(study.Pod(), 0);
  RequireTask(study, options.task);
  CTask task(study.Pod());
  Load(task, options.task);
  if (!task.m_vnChildren.empty() && !options.withChildren) {
    throw Refusal(kWrongUse, "task " + std::to_string(options.task) +
                                 " has children: --with-children removes them too");
  }
  task.RemoveTask();
}

int Remove(const RemovalOptions& options) {
  Study study(options);
  StopIfInterrupted();
  RemoveTask(study, options);
  study.Close();
  std::printf("Removed task %d\n", options.task);
  return kDone;
}

void AddRemoval(CLI::App& program, Action& action) {
  const auto options = std::make_shared<RemovalOptions>();
  CLI::App& command =
      *program.add_subcommand("remove-task", "Remove a task with all its points and results");
  AddStudy(command, *options);
  command.add_option("--task", options->task, "The task")->required()->check(CLI::PositiveNumber);
  command.add_flag("--with-children", options->withChildren, "Its child tasks too");
  command.footer("Example:\n  kestdb remove-task --task 2 beam");
  command.callback([&action, options] { action = [options] { return Remove(*options); }; });
}

}  // namespace

void AddTaskCommands(CLI::App& program, Action& action) {
  AddRestart(program, action);
  AddRemoval(program, action);
}
