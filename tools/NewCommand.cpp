#include <kestdb.h>

#include <memory>

#include "Commands.h"
#include "Ending.h"
#include "Interrupts.h"

namespace {

/// No part of an older study may get into a new one.
void RequireNothing(const StudyFiles& files) {
  for (const std::string& path : {files.data, files.index, files.copy, files.lock}) {
    if (BytesOf(path) >= 0) throw Refusal(kNotOpened, path + " exists already");
  }
}

int MakeStudy(const StudyOptions& options) {
  const StudyFiles files(options.name);
  CatchInterrupts();
  RequireNothing(files);
  RequireWritableFolder(files);
  OpenDatabase(files.base);
  CloseDatabase();
  std::printf("Made %s and %s\n", files.data.c_str(), files.index.c_str());
  return kDone;
}

}  // namespace

void AddNew(CLI::App& program, Action& action) {
  const auto options = std::make_shared<StudyOptions>();
  CLI::App& command = *program.add_subcommand("new", "Make a new, empty study");
  command.add_option("STUDY", options->name, "The study, with or without .ksb")->required();
  command.footer("Example:\n  kestdb new beam");
  command.callback([&action, options] { action = [options] { return MakeStudy(*options); }; });
}
