#include "tests/guide/Guide.h"

// [failures]
std::string TryToOpen(const std::string& name) {
  try {
    OpenDatabase(name);
    return "";
  } catch (const CFileLock&) {
    return "Another program is at work on this study.";
  } catch (const CFileNotWriteable&) {
    return "The study may not be written to.";
  } catch (const CKestErr& failure) {
    return failure.what();
  }
}
// [end]

// [crash]
/// For a study that no living process has open: the caller has made sure of that.
void OpenAfterCrash(const std::string& name) {
  try {
    OpenDatabase(name);
  } catch (const CFileLock&) {
    CLock::ForceUnlock();  // the directory that OpenDatabase met
    OpenDatabase(name);
  }
}
// [end]

// [check-files]
void CheckFiles(const std::string& name) {
  KFileCheck(name + ".ksb");
  KIndexRebuildCheck(name, false);
}
// [end]

// [rebuild]
void RebuildFiles(const std::string& name) {
  KFileRebuild(name + ".ksb");
  KIndexRebuildCheck(name, true);
}
// [end]

// [unlock]
void ClearHeaderLocks(const std::string& name) {
  KForceUnlock(name + ".ksb");
  KForceUnlock(name + ".kx");
}
// [end]
