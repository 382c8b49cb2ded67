#include "Study.h"

#include <kestdb.h>

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <CLI/Validators.hpp>

#include "Ending.h"
#include "Interrupts.h"
#include "LockWait.h"

namespace {

/// Opening brings an old study up to date, for good: only where that was asked for.
void RequireVersion(const StudyFiles& files, bool upgrade) {
  if (!IsOfOldVersion(files)) return;
  if (!upgrade) {
    throw Refusal(kNotOpened, files.data + " is of version " +
                                  std::to_string(HeaderOf(files.data)->Version) +
                                  "; to open it brings it to version " +
                                  std::to_string(vbDatabase::VBDVersion) +
                                  " for good, which `kestdb info --upgrade` does");
  }
  RequireSpace(files, BytesOf(files.data));
}

}  // namespace

void AddStudyName(CLI::App& command, StudyOptions& options) {
  command.add_option("STUDY", options.name, "The study, with or without .ksb")->required();
  command.add_option("--wait", options.wait, "Wait so long for a lock that somebody holds")
      ->type_name("SECONDS")
      ->check(CLI::NonNegativeNumber);
}

void AddStudy(CLI::App& command, StudyOptions& options) {
  AddStudyName(command, options);
  command.add_flag("--upgrade", options.upgrade,
                   "Bring a study of an older version up to date, for good");
}

Study::Study(const StudyOptions& options) : files_(options.name) {
  CatchInterrupts();
  SetLockWait(options.wait);
  RequireUsable(files_);
  RequireVersion(files_, options.upgrade);
  OpenDatabase(files_.base);
}

Study::~Study() {
  try {
    CloseDatabase();
  } catch (...) {
    // It is in the log; what went wrong before is told.
  }
}

void Study::Close() {
  CloseDatabase();
}

void RequireTask(const Study& study, int task) {
  CTask object(study.Pod());
  object.m_nID = task;
  if (task > 0 && object.FindObject()) return;
  throw Refusal(kWrongUse, study.Files().data + " has no task " + std::to_string(task));
}
