#pragma once

#include <string>

#include "store/DBI_IO.h"
#include "store/pod.h"
#include "store/vbdbase.h"
#include "tests/support/TempFolder.h"

/// A study of its own for a test: "study.ksb" and "study.kx" in a temporary folder, opened at the
/// start and closed at the end.
class Study {
 public:
  Study() { Open(); }
  Study(const Study&) = delete;
  Study& operator=(const Study&) = delete;
  ~Study() {
    try {
      CloseDatabase();
    } catch (...) {
      // The test has said what it had to.
    }
  }

  void Open() { OpenDatabase(BasePath()); }
  void Close() { CloseDatabase(); }
  void Reopen() {
    Close();
    Open();
  }

  POD* Pod() const { return GetPOD(); }
  /// The object address of the next new block, unless a free block is taken for it.
  long NextObject() const { return Pod()->DataFile()->FileHeader().EndOfFile + 28; }
  std::string BasePath() const { return folder / "study"; }
  std::string DataPath() const { return folder / "study.ksb"; }
  std::string IndexPath() const { return folder / "study.kx"; }
  std::string LockPath() const { return folder / "study.lck"; }

  TempFolder folder;
};
