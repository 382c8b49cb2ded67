#include <kestdb.h>

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <CLI/Validators.hpp>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>

#include "Commands.h"
#include "Ending.h"
#include "Interrupts.h"
#include "Json.h"
#include "OutputFile.h"
#include "SqliteTables.h"
#include "StudyTables.h"

namespace {

struct ExportOptions : StudyOptions {
  std::string format;
  std::string output;
  std::vector<std::string> what;
  int task = 0;
  bool force = false;

  bool Wants(const std::string& table) const {
    return std::find(what.begin(), what.end(), table) != what.end();
  }
};

// ---- What ----

/// One CSV file holds one table; the others hold what there is.
void CompleteOptions(ExportOptions& options) {
  if (options.what.empty()) {
    options.what = {"points"};
    if (options.format != "csv") options.what = {"inputs", "responses", "points"};
    if (options.format != "csv" && options.task != 0) options.what.push_back("iterations");
  }
  if (options.format == "csv" && options.what.size() > 1) {
    throw Refusal(kWrongUse, "a CSV file holds one table: choose one with --what");
  }
  if (options.Wants("iterations") && options.task == 0) {
    throw Refusal(kWrongUse, "iterations are those of a task: choose one with --task");
  }
}

void WritePoints(POD* pod, int task, TableWriter& writer) {
  if (task == 0) return WriteUserPoints(pod, writer);
  WriteTaskPoints(pod, task, writer);
}

/// One lock around all: what is exported fits together.
void WriteTables(const Study& study, const ExportOptions& options, TableWriter& writer) {
  POD* pod = study.Pod();
  const CLock lock(pod, 0);
  if (options.task != 0) RequireTask(study, options.task);
  if (options.Wants("inputs")) WriteInputs(pod, writer);
  if (options.Wants("responses")) WriteResponses(pod, writer);
  if (options.Wants("points")) WritePoints(pod, options.task, writer);
  if (options.Wants("iterations")) WriteIterations(pod, options.task, writer);
}

// ---- Where to ----

/// The stream of a text format.
class TextFile {
 public:
  explicit TextFile(const std::string& path) : path_(path), stream_(std::fopen(path.c_str(), "w")) {
    if (stream_ == nullptr) Refuse();
  }
  TextFile(const TextFile&) = delete;
  TextFile& operator=(const TextFile&) = delete;
  ~TextFile() {
    if (stream_ != nullptr) std::fclose(stream_);
  }

  std::FILE* Stream() const { return stream_; }
  void Close() {
    const bool failed = std::ferror(stream_) != 0;
    if (std::fclose(std::exchange(stream_, nullptr)) != 0 || failed) Refuse();
  }

 private:
  [[noreturn]] void Refuse() const {
    throw Refusal(kNotOpened, path_ + ": " + std::strerror(errno));
  }

  std::string path_;
  std::FILE* stream_;
};

void WriteFile(const Study& study, const ExportOptions& options, const std::string& path) {
  if (options.format == "sqlite") {
    SqliteTables tables(path);
    WriteTables(study, options, tables);
    return tables.Finish();
  }
  TextFile file(path);
  if (options.format == "json") {
    JsonTables tables(file.Stream());
    WriteTables(study, options, tables);
    tables.Finish();
  } else {
    CsvTable table(file.Stream());
    WriteTables(study, options, table);
  }
  file.Close();
}

int Export(ExportOptions options) {
  CompleteOptions(options);
  Study study(options);
  OutputFile output(options.output, options.force);
  WriteFile(study, options, output.PartPath());
  study.Close();
  StopIfInterrupted();
  output.Finish();
  return kDone;
}

}  // namespace

void AddExport(CLI::App& program, Action& action) {
  const auto options = std::make_shared<ExportOptions>();
  CLI::App& command = *program.add_subcommand(
      "export", "Write points, iterations, inputs and responses to a file of a common format");
  AddStudy(command, *options);
  command.add_option("--format", options->format, "The format of the file")
      ->required()
      ->check(CLI::IsMember({"csv", "json", "sqlite"}));
  command.add_option("--output", options->output, "The file to make")
      ->required()
      ->type_name("FILE");
  command
      .add_option("--what", options->what,
                  "The tables, with commas; points for CSV, else all that there are")
      ->delimiter(',')
      ->expected(1)
      ->take_all()
      ->check(CLI::IsMember({"points", "iterations", "inputs", "responses"}));
  command
      .add_option("--task", options->task,
                  "Points and iterations of that task, not the user's table")
      ->check(CLI::PositiveNumber);
  command.add_flag("--force", options->force, "Replace the file, if there is one");
  command.footer(
      "Examples:\n  kestdb export --format csv --output points.csv beam\n"
      "  kestdb export --format csv --what iterations --task 1 --output history.csv beam\n"
      "  kestdb export --format sqlite --task 1 --output beam.db beam");
  command.callback([&action, options] { action = [options] { return Export(*options); }; });
}
