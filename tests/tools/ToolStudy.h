#pragma once

#include <gtest/gtest.h>
#include <kestdb.h>

#include <functional>
#include <string>

#include "tests/support/TempFolder.h"
#include "tests/tools/Program.h"

/// A folder with a study "study", which the program is run on. The test's own process has it open
/// only while it changes it.
class ToolStudy : public testing::Test {
 protected:
  ToolStudy();

  /// Opens the study, changes it and closes it.
  void Change(const std::function<void(POD*)>& change) const;
  /// Definitions, and task 1 with every kind of record that a task can have.
  void Fill() const;

  Outcome Kestdb(const std::vector<std::string>& arguments) const {
    return RunProgram(folder.Path(), arguments);
  }
  /// The program's output, of which nothing but the library's traces goes to standard error.
  std::string Output(const std::vector<std::string>& arguments, int status = 0) const;
  /// The program's message, where it has no output.
  std::string Message(const std::vector<std::string>& arguments, int status) const;

  std::string DataPath() const { return folder / "study.ksb"; }
  std::string IndexPath() const { return folder / "study.kx"; }
  std::string LockPath() const { return folder / "study.lck"; }
  /// Offsets of the objects of a class in the data file.
  template <class Class>
  long AddressOf() const {
    long address = 0;
    Change([&](POD* pod) { address = Class(pod).FirstObject(0); });
    return address;
  }

  TempFolder folder;
};
