#pragma once

#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

#include "store/DBI_IO.h"
#include "store/pod.h"
#include "store/vbdbase.h"
#include "tests/fault/EveryClassStudy.h"

/// The files of one study after another, all under one name, and a sound one to start from: it has
/// objects of every class, and its nodes are small.
class FuzzedStudy {
 public:
  /// The one of this process.
  static FuzzedStudy& Instance();

  /// The path without an extension.
  const std::string& Base() const { return base_; }
  std::string DataPath() const { return base_ + ".ksb"; }
  std::string IndexPath() const { return base_ + ".kx"; }

  const FilePair& Sound() const { return sound_.Files(); }
  const std::vector<StoredObject>& Objects() const { return sound_.Objects(); }
  /// For reports; the log goes there too.
  std::FILE* Nowhere() const { return nowhere_; }

  /// Puts these files to the place of those that were there, and removes what lies beside them.
  void Write(const FilePair& files);

  /// REQUIREs that no study is open and no lock is left behind.
  void CheckTraces() const;

 private:
  FuzzedStudy();

  EveryClassStudy sound_;
  std::string base_;
  std::FILE* nowhere_;
};

/// The task that the sound study has objects of.
inline constexpr int kEveryClassTask = 1;

/// Closes the study; one whose closing fails twice without writing.
void CloseInAnyCase();
