#include <kestdb.h>

#include <memory>

#include "Commands.h"
#include "Ending.h"
#include "FaultFinder.h"
#include "Interrupts.h"
#include "LockWait.h"
#include "TextBuffer.h"

namespace {

struct CheckOptions : StudyOptions {
  bool walk = false;
};

StudyFiles RequireToCheck(const CheckOptions& options) {
  const StudyFiles files(options.name);
  SetLockWait(options.wait);
  RequireUsable(files);
  return files;
}

void RequireIndex(const StudyFiles& files) {
  if (BytesOf(files.index) < 0) {
    throw Refusal(kFault, files.index + " does not exist; `kestdb rebuild-index` makes it");
  }
}

// These two hold no lock directory and write nothing: a signal may end them anywhere.

int CheckFile(const CheckOptions& options) {
  const StudyFiles files = RequireToCheck(options);
  const FaultFinder report(stdout);
  KFileCheck(files.data);
  return report.HasFaults() ? kFault : kDone;
}

int ReportFile(const CheckOptions& options) {
  const StudyFiles files = RequireToCheck(options);
  const FaultFinder report(stdout);
  KFileStats(files.data, options.walk);
  return report.HasFaults() ? kFault : kDone;
}

int CheckIndex(const CheckOptions& options) {
  CatchInterrupts();
  const StudyFiles files = RequireToCheck(options);
  RequireIndex(files);
  const LateText text;
  const FaultFinder report(text.Stream());
  KIndexRebuildCheck(files.base, false);
  StopIfInterrupted();
  return report.HasFaults() ? kFault : kDone;
}

int ReportIndex(const CheckOptions& options) {
  CatchInterrupts();
  const StudyFiles files = RequireToCheck(options);
  RequireIndex(files);
  const LateText text;
  const FaultFinder report(text.Stream());
  KIndexStats(files.base, false);
  return kDone;
}

CLI::App& AddCheck(CLI::App& program, Action& action, const char* name, const char* what,
                   int (*run)(const CheckOptions&), const std::shared_ptr<CheckOptions>& options) {
  CLI::App& command = *program.add_subcommand(name, what);
  AddStudyName(command, *options);
  command.callback([&action, run, options] { action = [run, options] { return run(*options); }; });
  return command;
}

}  // namespace

void AddChecks(CLI::App& program, Action& action) {
  const auto options = std::make_shared<CheckOptions>();
  AddCheck(program, action, "check", "Check the header and all blocks of the data file", CheckFile,
           options)
      .footer("Example:\n  kestdb check beam");
  CLI::App& stats =
      AddCheck(program, action, "stats", "Report on the data file", ReportFile, options);
  stats.add_flag("--walk", options->walk, "The totals of its blocks too");
  stats.footer("Examples:\n  kestdb stats beam\n  kestdb stats --walk beam");
  AddCheck(program, action, "index-check", "Compare the index file with the data file", CheckIndex,
           options)
      .footer("Example:\n  kestdb index-check beam");
  AddCheck(program, action, "index-stats", "Report on the trees of the index file", ReportIndex,
           options)
      .footer("Example:\n  kestdb index-stats beam");
}
