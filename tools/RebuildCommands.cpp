#include <kestdb.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "Commands.h"
#include "Ending.h"
#include "FaultFinder.h"
#include "Interrupts.h"
#include "LockWait.h"
#include "Terminal.h"
#include "TextBuffer.h"

namespace {

struct RebuildOptions : StudyOptions {
  bool yes = false;
};

StudyFiles RequireToRebuild(const StudyOptions& options) {
  SetLockWait(options.wait);
  const StudyFiles files(options.name);
  RequireUsable(files);
  return files;
}

// ---- Both files ----

void RequireConsent(const StudyFiles& files, bool yes) {
  std::fprintf(stderr,
               "kestdb: rebuild puts a compact copy of %s (%ld bytes) in its place, without what "
               "can't be read any more, and makes a new index %s\n",
               files.data.c_str(), BytesOf(files.data), files.index.c_str());
  if (yes) return;
  if (!IsTerminal(stdin) || !IsTerminal(stderr)) {
    throw Refusal(kWrongUse, "rebuild changes the study: say --yes");
  }
  if (!Confirm("Go on?")) throw Refusal(kWrongUse, "nothing was changed");
}

/// A rebuild of an old study is more than a copy: opening it does all of that.
void RequireVersion(const StudyFiles& files) {
  if (!IsOfOldVersion(files)) return;
  throw Refusal(kNotOpened, files.data +
                                " is of an older version; `kestdb info --upgrade` rebuilds it and "
                                "brings it up to date");
}

/// The addresses of all objects change, so that the old index would lead astray: it goes before
/// anybody else can have the lock. Whoever opens a study without one makes it anew.
void RebuildData(const StudyFiles& files) {
  POD study(files.data);
  const CLock lock(&study, 0);
  KFileRebuild(files.data);
  if (BytesOf(files.index) >= 0 && std::remove(files.index.c_str()) != 0) {
    throw Refusal(kNotOpened, files.index + ": " + std::strerror(errno) +
                                  "; it no longer fits, remove it and open the study");
  }
}

void MakeIndex(const StudyFiles& files) {
  try {
    OpenDatabase(files.base);
    CloseDatabase();
  } catch (const CKestErr& failure) {
    throw Refusal(kFault, files.data + " is rebuilt, but has no index: " + failure.what() +
                              "; `kestdb rebuild-index` tries again");
  }
}

int Rebuild(const RebuildOptions& options) {
  const StudyFiles files = RequireToRebuild(options);
  RequireVersion(files);
  RequireSpace(files, BytesOf(files.data) + std::max(BytesOf(files.index), 0L));
  RequireConsent(files, options.yes);
  CatchInterrupts();  // not before: a signal ends the question
  const LateText text;
  const FaultFinder report(text.Stream());
  RebuildData(files);
  MakeIndex(files);
  return report.HasFaults() ? kFault : kDone;
}

// ---- The index alone ----

/// The file itself, whatever its name; 0 for none.
ino_t IdentityOf(const std::string& path) {
  struct stat status;
  return stat(path.c_str(), &status) == 0 ? status.st_ino : 0;
}

/// When the new index fails, the study gets its old one back.
void MakeIndexOrRestore(const StudyFiles& files) {
  const ino_t original = IdentityOf(files.index);
  const std::string aside = files.index + ".old";
  try {
    KIndexRebuildCheck(files.base, true);
  } catch (...) {
    const bool isAside = original != 0 && IdentityOf(aside) == original;
    if (isAside && std::rename(aside.c_str(), files.index.c_str()) == 0) {
      LPrint("%s was put back to %s\n", aside.c_str(), files.index.c_str());
    }
    throw;
  }
}

int RebuildIndex(const StudyOptions& options) {
  CatchInterrupts();
  const StudyFiles files = RequireToRebuild(options);
  RequireSpace(files, std::max(BytesOf(files.index), 0L));
  const LateText text;
  const FaultFinder report(text.Stream());
  MakeIndexOrRestore(files);
  return report.HasFaults() ? kFault : kDone;
}

}  // namespace

void AddRebuilds(CLI::App& program, Action& action) {
  const auto options = std::make_shared<RebuildOptions>();
  CLI::App& data = *program.add_subcommand(
      "rebuild", "Make the data file compact and whole again, then its index");
  AddStudyName(data, *options);
  data.add_flag("--yes", options->yes, "Don't ask");
  data.footer("Examples:\n  kestdb rebuild beam\n  kestdb rebuild --yes beam");
  data.callback([&action, options] { action = [options] { return Rebuild(*options); }; });

  CLI::App& index = *program.add_subcommand("rebuild-index", "Make the index from the data file");
  AddStudyName(index, *options);
  index.footer("Example:\n  kestdb rebuild-index beam");
  index.callback([&action, options] { action = [options] { return RebuildIndex(*options); }; });
}
