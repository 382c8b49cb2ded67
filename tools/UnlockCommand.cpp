#include <kestdb.h>

#include <memory>

#include "Commands.h"
#include "Ending.h"
#include "Interrupts.h"

namespace {

struct UnlockOptions {
  std::string name;
  bool header = false;
  bool directory = false;
};

/// The lock in the headers of both files.
void ClearHeaders(const StudyFiles& files) {
  KForceUnlock(files.data);
  if (BytesOf(files.index) >= 0) KForceUnlock(files.index);
  std::printf("Cleared the lock in the headers of %s\n", files.base.c_str());
}

void RemoveDirectory(const StudyFiles& files) {
  if (BytesOf(files.lock) < 0) {
    std::printf("There is no lock directory %s\n", files.lock.c_str());
    return;
  }
  CLock::m_strLockNameSta = files.lock;
  CLock::ForceUnlock();
  if (BytesOf(files.lock) >= 0) {
    throw Refusal(kLocked, "the lock directory " + files.lock + " can't be removed");
  }
  std::printf("Removed the lock directory %s\n", files.lock.c_str());
}

int Unlock(const UnlockOptions& options) {
  if (!options.header && !options.directory) {
    throw Refusal(kWrongUse, "unlock needs --header, --directory or both");
  }
  const StudyFiles files(options.name);
  CatchInterrupts();
  RequireStudy(files);
  RequireWritableFolder(files);
  if (options.header) ClearHeaders(files);
  if (options.directory) RemoveDirectory(files);
  return kDone;
}

}  // namespace

void AddUnlock(CLI::App& program, Action& action) {
  const auto options = std::make_shared<UnlockOptions>();
  CLI::App& command = *program.add_subcommand(
      "unlock",
      "Take away a lock that a dead process left. Be sure that no process has the study "
      "open: two at once destroy it");
  command.add_option("STUDY", options->name, "The study, with or without .ksb")->required();
  command.add_flag("--header", options->header, "The lock in the headers of the files");
  command.add_flag("--directory", options->directory, "The lock directory beside the files");
  command.footer(
      "Be sure that the process is dead: two at once destroy the study.\n"
      "Examples:\n  kestdb unlock --directory beam\n  kestdb unlock --header beam");
  command.callback([&action, options] { action = [options] { return Unlock(*options); }; });
}
