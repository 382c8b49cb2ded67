#include <kestdb.h>

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <CLI/Validators.hpp>
#include <functional>
#include <map>
#include <memory>
#include <set>

#include "Commands.h"
#include "Ending.h"
#include "TextBuffer.h"

namespace {

struct ReportOptions : StudyOptions {
  std::string what;
  int task = 0;
  int iter = 0;
  int sub = 0;
  int point = 0;
  int resp = 0;
  bool subIterations = false;
  bool allConstraints = false;
  bool best = false;
  bool designNumbers = false;
  std::set<std::string> given;  // names of options
};

/// How to print one report.
struct Report {
  std::vector<std::string> required;
  std::vector<std::string> allowed;
  std::function<void(POD*, std::FILE*, const ReportOptions&)> print;
};

// ---- The reports ----

template <class Class>
Report OfStudy() {
  return {{}, {}, [](POD* pod, std::FILE* out, const ReportOptions&) { Class::Dump(pod, out); }};
}

template <class Class>
Report OfTask() {
  return {{"--task"}, {}, [](POD* pod, std::FILE* out, const ReportOptions& options) {
            Class::Dump(pod, out, options.task);
          }};
}

void RequireObject(bool isThere, const std::string& what) {
  if (!isThere) throw Refusal(kWrongUse, "the study has no " + what);
}

std::string OfTaskText(const ReportOptions& options) {
  return " of task " + std::to_string(options.task);
}

/// The same for a record that not every task has.
template <class Class>
Report OfRecord(const char* name) {
  return {{"--task"}, {}, [name](POD* pod, std::FILE* out, const ReportOptions& options) {
            Class record(pod);
            record.m_nTaskID = options.task;
            RequireObject(record.FindObject(), name + OfTaskText(options));
            Class::Dump(pod, out, options.task);
          }};
}

void PrintResult(POD* pod, std::FILE* out, const ReportOptions& options) {
  CResult::Dump(pod, out, options.task, options.subIterations);
}

void PrintPoint(POD* pod, std::FILE* out, const ReportOptions& options) {
  CDPoint point(pod);
  point.m_nTaskID = options.task;
  point.m_nPointID = options.point;
  RequireObject(point.FindObject(), "point " + std::to_string(options.point) + OfTaskText(options));
  CDPoint::Dump(pod, out, options.task, options.point);
}

void PrintIteration(POD* pod, std::FILE* out, const ReportOptions& options) {
  CIter iter(pod);
  iter.m_nTaskID = options.task;
  iter.m_nIter = options.iter;
  iter.m_nSubIter = options.sub;
  RequireObject(iter.FindObject(), "iteration " + std::to_string(options.iter) + "." +
                                       std::to_string(options.sub) + OfTaskText(options));
  CIter::Dump(pod, out, options.task, options.allConstraints, options.iter, options.sub,
              options.best);
}

void PrintModel(POD* pod, std::FILE* out, const ReportOptions& options) {
  CApproxModels model(pod);
  model.m_nTaskID = options.task;
  model.m_nResp = options.resp;
  RequireObject(model.FindObject(),
                "model of response " + std::to_string(options.resp) + OfTaskText(options));
  CApproxModels::Dump(pod, out, options.task, options.resp);
}

void PrintResiduals(POD* pod, std::FILE* out, const ReportOptions& options) {
  CResidual residual(pod);
  residual.m_nTaskID = options.task;
  residual.m_nResp = options.resp;
  RequireObject(residual.FindObject(),
                "residuals of response " + std::to_string(options.resp) + OfTaskText(options));
  CResidual::Dump(pod, out, options.task, options.resp, options.designNumbers);
}

const std::map<std::string, Report>& Reports() {
  static const std::map<std::string, Report> reports{
      {"inputs", OfStudy<CInput>()},
      {"responses", OfStudy<CResp>()},
      {"auxiliaries", OfStudy<CAuxiliary>()},
      {"control", OfStudy<CDesignControl>()},
      {"points", OfStudy<CGPoint>()},
      {"counters", OfStudy<CDBCtrl>()},
      {"task", OfTask<CTask>()},
      {"dvar", OfTask<CDVar>()},
      {"dresp", OfTask<CDResp>()},
      {"dcons", OfTask<CDCons>()},
      {"dobj", OfTask<CDObj>()},
      {"dlink", OfTask<CDLink>()},
      {"deqn", OfTask<CDEqn>()},
      {"dset", OfTask<CDSet>()},
      {"messages", OfTask<CMessage>()},
      {"final-model", OfRecord<CRApproxMod>("final model")},
      {"design", OfRecord<CRDOE>("design")},
      {"result", {{"--task"}, {"--sub-iterations"}, PrintResult}},
      {"point", {{"--task", "--point"}, {}, PrintPoint}},
      {"iteration",
       {{"--task", "--iter"}, {"--sub", "--all-constraints", "--best"}, PrintIteration}},
      {"model", {{"--task", "--resp"}, {}, PrintModel}},
      {"residuals", {{"--task", "--resp"}, {"--design-numbers"}, PrintResiduals}},
  };
  return reports;
}

// ---- The command ----

void RequireFittingOptions(const Report& report, const ReportOptions& options) {
  std::set<std::string> known(report.allowed.begin(), report.allowed.end());
  for (const std::string& name : report.required) {
    known.insert(name);
    if (options.given.count(name) == 0) {
      throw Refusal(kWrongUse, "report " + options.what + " needs " + name);
    }
  }
  for (const std::string& name : options.given) {
    if (known.count(name) == 0) {
      throw Refusal(kWrongUse, "report " + options.what + " has no use for " + name);
    }
  }
}

int PrintReport(const ReportOptions& options) {
  const Report& report = Reports().at(options.what);
  RequireFittingOptions(report, options);
  const TextBuffer text;
  Study study(options);
  {
    const CLock lock(study.Pod(), 0);
    if (options.given.count("--task") != 0) RequireTask(study, options.task);
    report.print(study.Pod(), text.Stream(), options);
  }
  study.Close();
  text.WriteTo(stdout);
  return kDone;
}

/// What of the command line concerns reports alone.
void AddNumbers(CLI::App& command, ReportOptions& options) {
  const auto add = [&](const char* name, int& value, const char* what) {
    command.add_option(name, value, what)->check(CLI::NonNegativeNumber);
  };
  add("--task", options.task, "The task");
  add("--iter", options.iter, "The iteration, from 0");
  add("--sub", options.sub, "The sub-iteration, 0 for the iteration itself");
  add("--point", options.point, "The number of the point, from 0");
  add("--resp", options.resp, "The position among the independent responses, from 0");
  command.add_flag("--sub-iterations", options.subIterations, "result: the sub-iterations too");
  command.add_flag("--all-constraints", options.allConstraints,
                   "iteration: all constraints, not only active and violated ones");
  command.add_flag("--best", options.best, "iteration: the best point so far");
  command.add_flag("--design-numbers", options.designNumbers,
                   "residuals: the points have their numbers in the design");
}

void NoteGiven(const CLI::App& command, ReportOptions& options) {
  for (const CLI::Option* option : command.get_options()) {
    const std::string name = option->get_name();
    const bool isCommon = name == "--wait" || name == "--upgrade" || name == "--help,-h";
    if (option->count() > 0 && name.starts_with("--") && !isCommon) options.given.insert(name);
  }
}

std::vector<std::string> ReportNames() {
  std::vector<std::string> names;
  for (const auto& [name, report] : Reports()) names.push_back(name);
  return names;
}

}  // namespace

void AddReport(CLI::App& program, Action& action) {
  const auto options = std::make_shared<ReportOptions>();
  CLI::App& command = *program.add_subcommand("report", "Print one of the library's reports");
  command.add_option("WHAT", options->what, "What to report on")
      ->required()
      ->check(CLI::IsMember(ReportNames()));
  AddStudy(command, *options);
  AddNumbers(command, *options);
  command.footer(
      "Examples:\n  kestdb report inputs beam\n  kestdb report result --task 1 beam\n"
      "  kestdb report iteration --task 1 --iter 3 --all-constraints beam\n"
      "  kestdb report residuals --task 2 --resp 0 beam");
  command.callback([&action, &command, options] {
    NoteGiven(command, *options);
    action = [options] { return PrintReport(*options); };
  });
}
