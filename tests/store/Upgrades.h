#pragma once

#include <gtest/gtest.h>

#include <string>

#include "definition/Input.h"
#include "maintenance/Lock.h"
#include "store/DBI_IO.h"
#include "tests/maintenance/RebuildReports.h"
#include "tests/support/StudyCheck.h"

/// A study of the three singletons and five Inputs, two of which were removed.
class Upgrades : public StudyRun {
 protected:
  Upgrades() {
    OpenDatabase(base);
    {
      const CLock lock(GetPOD(), 0);
      for (int id = 1; id <= 5; ++id) InputOf(id).PutObject();
      for (const int id : {2, 3}) InputOf(id).RemoveObject();
    }
    CloseDatabase();
    ClearLog();
  }
  ~Upgrades() override { CloseDatabase(); }

  static CInput InputOf(int id) {
    CInput input(GetPOD());
    input.m_nID = id;
    input.m_strName = "width";
    return input;
  }

  void SetVersion(long version) { PatchBytes(data, kVersionAt, Word(version)); }

  /// What opening logs; the study is closed again then.
  std::string OpeningReport() {
    return ReportOf([this] {
      OpenDatabase(base);
      CloseDatabase();
    });
  }
  template <class Error>
  std::string FailureReport() {
    const std::string report = ReportUntil<Error>([this] { OpenDatabase(base); });
    EXPECT_FALSE(IsOpen());
    EXPECT_EQ(GetPOD(), nullptr);
    return report;
  }

  void ExpectWholeStudy() {
    OpenDatabase(base);
    for (const int id : {1, 4, 5}) {
      CInput input(GetPOD());
      input.m_nID = id;
      ASSERT_TRUE(input.GetObject()) << id;
      EXPECT_EQ(input.m_strName, "width");
    }
    EXPECT_EQ(InputOf(1).CountObjects(), 3);
    CloseDatabase();
    EXPECT_EQ(FaultsOfStudy(base), "");
    EXPECT_EQ(WordAt(ReadBytes(data), kVersionAt), 3001);
  }

  // The parts of the reports.

  std::string FileStart() const {
    return "\n***** Start -- Rebuild Data File *****\nFile name: " + data + "\n";
  }
  std::string Messages() const {
    return "No index file found or the index needs rebuilding.\n"
           "Will attempt to create a new index file (" +
           index + ") from the specified data file (" + data + ").\n";
  }
  /// The empty index that opening began is the one that is renamed.
  std::string IndexStart() const {
    return "\n***** Start -- Rebuild Index File *****\nFile name: " + base +
           "\nRenamed original index file (" + index + ") to " + backup + "\n" + SoundStart(data) +
           SoundStart(index);
  }
  std::string IndexReport() const {
    return Messages() + IndexStart() + Indexed(counts) + kIndexEnd;
  }

  const std::string kFileEnd = "***** End -- Rebuild Data File *****\n\n";
  const std::string kIndexEnd = "\n***** End -- Rebuild Index File *****\n\n";
  const Counts counts{{0, 3}, {14, 1}, {15, 1}, {17, 1}};
};
