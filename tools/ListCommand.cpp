#include <kestdb.h>

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <CLI/Validators.hpp>
#include <memory>

#include "Commands.h"
#include "Ending.h"
#include "Json.h"
#include "StudyTables.h"
#include "Terminal.h"
#include "TextBuffer.h"

namespace {

struct ListOptions : StudyOptions {
  std::string what;
  int task = 0;  // 0 for the user's points
  bool json = false;
};

void WriteTable(const Study& study, const ListOptions& options, TableWriter& writer) {
  const CLock lock(study.Pod(), 0);
  if (options.what == "tasks") return WriteTasks(study.Pod(), writer);
  if (options.what == "inputs") return WriteInputs(study.Pod(), writer);
  if (options.what == "responses") return WriteResponses(study.Pod(), writer);
  if (options.task == 0) return WriteUserPoints(study.Pod(), writer);
  RequireTask(study, options.task);
  WriteTaskPoints(study.Pod(), options.task, writer);
}

void WriteAll(const Study& study, const ListOptions& options, std::FILE* out) {
  if (options.json) {
    JsonTables tables(out);
    WriteTable(study, options, tables);
    return tables.Finish();
  }
  AlignedTable table(out, [](const std::string& head) { return Bold(stdout, head); });
  WriteTable(study, options, table);
}

int List(const ListOptions& options) {
  if (options.task != 0 && options.what != "points") {
    throw Refusal(kWrongUse, "--task is for points");
  }
  const TextBuffer text;
  Study study(options);
  WriteAll(study, options, text.Stream());
  study.Close();
  text.WriteTo(stdout);
  return kDone;
}

}  // namespace

void AddList(CLI::App& program, Action& action) {
  const auto options = std::make_shared<ListOptions>();
  CLI::App& command =
      *program.add_subcommand("list", "List the tasks, inputs, responses or points of a study");
  command.add_option("WHAT", options->what, "What to list")
      ->required()
      ->check(CLI::IsMember({"tasks", "inputs", "responses", "points"}));
  AddStudy(command, *options);
  command
      .add_option("--task", options->task, "The points of that task, not those of the user's table")
      ->check(CLI::PositiveNumber);
  command.add_flag("--json", options->json, "Print it as JSON");
  command.footer("Examples:\n  kestdb list tasks beam\n  kestdb list points --task 1 --json beam");
  command.callback([&action, options] { action = [options] { return List(*options); }; });
}
