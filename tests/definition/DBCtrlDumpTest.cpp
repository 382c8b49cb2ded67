#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "definition/DBCtrl.h"
#include "index/KSBKey.h"
#include "store/KestErr.h"
#include "task/Task.h"
#include "tests/support/Bytes.h"
#include "tests/support/Printed.h"
#include "tests/support/Study.h"

// The report of the control object.

namespace {

class ControlObjectReport : public testing::Test {
 protected:
  ControlObjectReport() { CDBCtrl(study.Pod()).PutObject(); }

  std::string Report() {
    return Printed([&](std::FILE* stream) { CDBCtrl::Dump(study.Pod(), stream); });
  }

  Study study;
};

TEST_F(ControlObjectReport, OfANewStudy) {
  EXPECT_EQ(Report(),
            "                             DATABASE CONTROL OBJECT\n"
            "================================================================================\n"
            "Next available task ID = 1\n"
            "Next available input ID = 1\n"
            "Next available response ID = 1\n"
            "Next available auxiliary ID = 1\n"
            "================================================================================\n"
            "\n");
}

TEST_F(ControlObjectReport, ShowsTheNextIDsAndTakesNone) {
  CDBCtrl control(study.Pod());
  control.NextInputID = 12;
  control.NextRespID = 345;
  control.NextAuxID = 2147483647;
  control.NextTaskID = 99;
  control.PutObject();
  for (const int id : {1, 2, 4}) {
    CTask task(study.Pod());
    task.m_nID = id;
    task.PutObject();
  }
  const std::string report =
      "                             DATABASE CONTROL OBJECT\n"
      "================================================================================\n"
      "Next available task ID = 3\n"
      "Next available input ID = 12\n"
      "Next available response ID = 345\n"
      "Next available auxiliary ID = 2147483647\n"
      "================================================================================\n"
      "\n";
  EXPECT_EQ(Report(), report);
  EXPECT_EQ(Report(), report);
  CDBCtrl stored(study.Pod());
  ASSERT_TRUE(stored.GetObject());
  EXPECT_EQ(stored.NextInputID, 12);
  EXPECT_EQ(stored.NextRespID, 345);
  EXPECT_EQ(stored.NextAuxID, 2147483647);
  EXPECT_EQ(stored.NextTaskID, 99);
  EXPECT_EQ(stored.ObjectAddress(), control.ObjectAddress());
}

TEST_F(ControlObjectReport, WithoutTheObjectIsEmpty) {
  ASSERT_TRUE(CDBCtrl(study.Pod()).RemoveObject());
  EXPECT_EQ(Report(), "");
}

TEST_F(ControlObjectReport, BringsOutAllStreams) {
  std::FILE* other = std::fopen((study.folder / "other").c_str(), "w");
  std::fputs("text", other);
  Report();
  EXPECT_EQ(ReadBytes(study.folder / "other"), "text");
  std::fclose(other);
}

// ---- Failures ----

TEST_F(ControlObjectReport, OfNoDatabaseOrStreamIsANullPointer) {
  EXPECT_THROW(CDBCtrl::Dump(nullptr, stdout), CNullPtr);
  EXPECT_THROW(CDBCtrl::Dump(study.Pod(), nullptr), CNullPtr);
}

TEST_F(ControlObjectReport, TellsMissingIndexingBeforeMissingFiles) {
  POD pod(study.folder / "other.ksb");
  EXPECT_THROW(CDBCtrl::Dump(&pod, stdout), CNoIndex);
  KSBKey key;
  pod.Open(study.folder / "other.ksb", study.folder / "other.kx", key, 32, vbReadWrite, 2, 0, 25);
  EXPECT_THROW(CDBCtrl::Dump(&pod, stdout), CNoIndex);
}

TEST_F(ControlObjectReport, WithoutADataFileIsANullPointer) {
  study.Pod()->CloseDataFile();
  EXPECT_THROW(CDBCtrl::Dump(study.Pod(), stdout), CNullPtr);
}

TEST_F(ControlObjectReport, WithoutAnIndexFileIsANullPointer) {
  study.Pod()->CloseIndex();
  EXPECT_THROW(CDBCtrl::Dump(study.Pod(), stdout), CNullPtr);
}

TEST_F(ControlObjectReport, OfADamagedRecordIsNotPrintedInPart) {
  CDBCtrl control(study.Pod());
  ASSERT_TRUE(control.FindObject());
  study.Close();
  PatchBytes(study.DataPath(), control.ObjectAddress() + 16, "\x09");
  study.Open();
  std::FILE* stream = std::tmpfile();
  EXPECT_THROW(CDBCtrl::Dump(study.Pod(), stream), CChecksum);
  EXPECT_EQ(std::ftell(stream), 0);
  std::fclose(stream);
}

TEST_F(ControlObjectReport, NeedsTheLockOfTheDatabase) {
  std::filesystem::create_directory(study.LockPath());
  EXPECT_THROW(CDBCtrl::Dump(study.Pod(), stdout), CFileLock);
  std::filesystem::remove(study.LockPath());
}

}  // namespace
