// Private to the library, not installed.
#pragma once

#include <functional>
#include <string>
#include <utility>

#include "store/vbdbase.h"

class POD;

// What the maintenance runs have in common. A failure of a run is logged, then its End line is
// printed, then its files are unlocked and closed. So a run is two functions: the outer one owns
// the files and, behind them, the End line; the inner one does the work and logs.

namespace kestdb {

/// The End line of a run, printed however the run ends.
class EndLine {
 public:
  explicit EndLine(const char* text) : text_(text) {}
  EndLine(const EndLine&) = delete;
  EndLine& operator=(const EndLine&) = delete;
  ~EndLine();

 private:
  const char* text_;
};

/// A block file of a run.
class UpkeepFile {
 public:
  UpkeepFile() = default;
  UpkeepFile(const UpkeepFile&) = delete;
  UpkeepFile& operator=(const UpkeepFile&) = delete;
  /// Unlocks, and closes with nothing more written: the header in memory may not be that of the
  /// file. What goes wrong there is in the log and hides no other failure.
  ~UpkeepFile();

  vbDatabase& operator*() { return file_; }
  vbDatabase* operator->() { return &file_; }

  /// Keeps users of fcntl locks out.
  void Lock();
  void Unlock();

 private:
  vbDatabase file_;
  bool locked_ = false;
};

/// The files of a study whose maintenance needs its index. The handle is the caller's.
class UpkeepStudy {
 public:
  /// Gives a new handle in place of the last one, which is closed.
  using FreshPod = std::function<POD&()>;

  explicit UpkeepStudy(FreshPod freshPod) : freshPod_(std::move(freshPod)) {}
  UpkeepStudy(const UpkeepStudy&) = delete;
  UpkeepStudy& operator=(const UpkeepStudy&) = delete;
  /// Unlocks and closes; what goes wrong there is in the log and hides no other failure.
  ~UpkeepStudy();

  /// Opens both files. THROWS CFileNotReady when one is of revision A.
  void Open(const std::string& dataPath, const std::string& indexPath);
  void Lock();
  void Unlock();
  void Close();
  POD& Pod() { return *pod_; }

 private:
  FreshPod freshPod_;
  POD* pod_ = nullptr;
  bool dataLocked_ = false;
  bool indexLocked_ = false;
};

/// Which file a report speaks of.
enum class UpkeepRole { Checked, Data, Index };

/// THROWS CFileNotReady, after it has told what to do, for a file of revision A.
void RequireCurrentRevision(vbDatabase& file, UpkeepRole role);

/// For a file in the place of an index that is about to be replaced. THROWS CWrongFileType for a
/// sound data file, which may be all that is left of a study.
void RequireNoDataFile(const std::string& path);

/// KIndexRebuildCheck on the handles that `freshPod` gives.
void RunIndexRebuildCheck(const std::string& name, bool rebuild, UpkeepStudy::FreshPod freshPod);

}  // namespace kestdb
