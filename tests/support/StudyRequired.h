#pragma once

#include <gtest/gtest.h>

#include <filesystem>

#include "index/KSBKey.h"
#include "store/KestErr.h"
#include "store/pod.h"
#include "tests/support/Study.h"

// What every operation on a study asks for before it does anything.

/// Expects that `operation(pod)` refuses no study, then one without indexing, then one without a
/// file, and that it waits for the lock.
template <class Operation>
void ExpectToRequireStudy(const Study& study, Operation operation) {
  EXPECT_THROW(operation(static_cast<POD*>(nullptr)), CNullPtr);

  POD unopened(study.folder / "unopened.ksb");
  EXPECT_THROW(operation(&unopened), CNoIndex);

  KSBKey key;
  POD noData(study.folder / "a.ksb");
  noData.Open(study.folder / "a.ksb", study.folder / "a.kx", key, 32, vbReadWrite, 1, 0, 25);
  noData.CloseDataFile();
  EXPECT_THROW(operation(&noData), CNullPtr);
  POD noIndexFile(study.folder / "b.ksb");
  noIndexFile.Open(study.folder / "b.ksb", study.folder / "b.kx", key, 32, vbReadWrite, 1, 0, 25);
  noIndexFile.CloseIndex();
  EXPECT_THROW(operation(&noIndexFile), CNullPtr);
  noData.Abandon();
  noIndexFile.Abandon();

  std::filesystem::create_directory(study.LockPath());
  EXPECT_THROW(operation(study.Pod()), CFileLock);
  std::filesystem::remove(study.LockPath());
}
