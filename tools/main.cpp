// kestdb: the command line of the design database.

#include <kestdb.h>

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <cstdio>
#include <exception>

#include "Commands.h"
#include "Ending.h"
#include "Interrupts.h"
#include "Terminal.h"

namespace {

std::string VersionText() {
  int major = 0;
  int minor = 0;
  int patch = 0;
  GetKSBVersion(&major, &minor, &patch);
  return "kestdb " + std::to_string(major) + "." + std::to_string(minor) + "." +
         std::to_string(patch) + ", file version " + std::to_string(vbDatabase::VBDVersion);
}

void AddCommands(CLI::App& program, Action& action) {
  program.require_subcommand(1);
  program.set_version_flag("--version", VersionText(), "Print the versions of library and files");
  AddInfo(program, action);
  AddList(program, action);
  AddReport(program, action);
  AddChecks(program, action);
  AddRebuilds(program, action);
  AddUnlock(program, action);
  AddNew(program, action);
  AddExport(program, action);
  AddTaskCommands(program, action);
  program.footer(
      "Examples:\n  kestdb info beam\n  kestdb list tasks beam\n"
      "  kestdb report result --task 1 beam\n"
      "\n`kestdb COMMAND --help` tells more of a command.\n"
      "Exit status: 0 done, 1 fault in the data, 2 wrong use, 3 locked, 4 file can't be opened.");
}

int Tell(Status status, const std::string& message) {
  std::fflush(stdout);
  std::fprintf(stderr, "%s %s\n", Red(stderr, "kestdb:").c_str(), message.c_str());
  return status;
}

/// What the library's failures mean for the user.
Status StatusOf(const CKestErr& failure) {
  const auto is = [&failure]<class... Failures>() {
    return ((dynamic_cast<const Failures*>(&failure) != nullptr) || ...);
  };
  if (is.operator()<CFileLock, CLockViolation>()) return kLocked;
  if (is.operator()<CNonASCIIDatabase, CMakeTask>()) return kWrongUse;
  if (is.operator()<CNoFileExists, CFileOpen, CFileNotWriteable, CReadOnlyFile, CFileCreation,
                    CFileExists, CAccessViolation, CFileWrite, CFileRemove>()) {
    return kNotOpened;
  }
  return kFault;
}

int Run(const Action& action) {
  try {
    return action();
  } catch (const Refusal& refusal) {
    return Tell(refusal.GetStatus(), refusal.what());
  } catch (const Interrupted&) {
    Tell(kDone, "interrupted");
    return 128 + InterruptSignal();
  } catch (const CKestErr& failure) {
    return Tell(StatusOf(failure), failure.what());
  } catch (const std::exception& failure) {
    return Tell(kFault, failure.what());
  }
}

int ParseAndRun(CLI::App& program, int count, char** arguments) {
  Action action;
  AddCommands(program, action);
  try {
    program.parse(count, arguments);
  } catch (const CLI::ParseError& error) {
    return program.exit(error) == 0 ? kDone : kWrongUse;
  }
  return Run(action);
}

}  // namespace

int main(int count, char** arguments) {
  CLI::App program("The command line of the Kestrelon design database", "kestdb");
  int status = ParseAndRun(program, count, arguments);
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
    status = Tell(kNotOpened, "can't write all of the output");
  }
  return status;
}
