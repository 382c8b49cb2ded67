#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/FileSync.h"
#include "tests/support/Log.h"
#include "tests/support/Sleep.h"
#include "tests/support/Study.h"

/// An open study whose lock is tested. Nothing waits, and nothing is brought to the disk.
class LockFixture : public testing::Test {
 protected:
  LockFixture() { Forget(); }
  // The study can still be closed, whatever the test left behind.
  ~LockFixture() override {
    Forget();
    if (!Pod()->LockHeld()) std::filesystem::remove_all(study.LockPath());
  }

  static void Forget() {
    ClearLog();
    ClearSleeps();
    ClearFileSyncs();
  }

  POD* Pod() const { return study.Pod(); }
  bool DirectoryStands() const { return std::filesystem::is_directory(study.LockPath()); }
  void MakeDirectory() const { std::filesystem::create_directory(study.LockPath()); }
  void RemoveDirectory() const { std::filesystem::remove_all(study.LockPath()); }

  /// The names in the study's folder, sorted.
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(study.folder.Path())) {
      names.push_back(entry.path().filename());
    }
    std::sort(names.begin(), names.end());
    return names;
  }

  Study study;
  const std::vector<std::string> kNoDirectory{"study.ksb", "study.kx"};
};
