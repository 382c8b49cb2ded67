#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "tests/guide/Guide.h"
#include "tests/support/Bytes.h"
#include "tests/support/Printed.h"
#include "tests/support/TempFolder.h"

namespace {

/// What the programs log goes nowhere but to a file of the test.
class Guide : public ::testing::Test {
 protected:
  void SetUp() override {
    log_.reset(std::fopen((folder / "log").c_str(), "w+"));
    ASSERT_NE(log_, nullptr);
    environmentLog_ = std::exchange(fKLog, log_.get());
  }
  void TearDown() override {
    CloseDatabase();
    fKLog = environmentLog_;
  }

  bool LogHas(const std::string& text) {
    std::rewind(log_.get());
    std::string log;
    for (int c = std::fgetc(log_.get()); c != EOF; c = std::fgetc(log_.get())) {
      log.push_back(static_cast<char>(c));
    }
    return log.find(text) != std::string::npos;
  }

  int DefineAndMake() {
    OpenDatabase(study);
    DefineBeam();
    return MakeBeamTask();
  }

  static double UpperBoundOfWidth() {
    CInput width(GetPOD());
    width.m_nID = 1;
    EXPECT_TRUE(width.GetObject());
    return width.m_fUpper;
  }

  TempFolder folder;
  const std::string study = folder / "beam";

 private:
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> log_{nullptr, std::fclose};
  std::FILE* environmentLog_ = nullptr;
};

TEST_F(Guide, FirstStepsStoreAndRead) {
  const std::filesystem::path here = std::filesystem::current_path();
  std::filesystem::current_path(folder.Path());
  testing::internal::CaptureStdout();
  FirstSteps();
  const std::string printed = testing::internal::GetCapturedStdout();
  std::filesystem::current_path(here);
  EXPECT_EQ(printed, "width >= 10\n");
  EXPECT_FALSE(IsOpen());
  EXPECT_TRUE(std::filesystem::exists(study + ".ksb"));
}

TEST_F(Guide, DefinedStudyPassesItsChecks) {
  OpenDatabase(study);
  DefineBeam();
  EXPECT_TRUE(CheckBeam());
}

TEST_F(Guide, InterchangedBoundsFailTheCheckAndMakeNoTask) {
  OpenDatabase(study);
  DefineBeam();
  Reconsider(5.0);  // the lower bound is 10
  EXPECT_FALSE(CheckBeam());
  EXPECT_THROW(MakeBeamTask(), std::runtime_error);
}

TEST_F(Guide, TaskHasTheTablesOfTheStudy) {
  const int task = DefineAndMake();
  EXPECT_EQ(task, 1);
  CTask made(GetPOD());
  made.m_nID = task;
  ASSERT_TRUE(made.GetObject());
  EXPECT_EQ(made.m_strTitle, "Cantilever beam");
  EXPECT_EQ(made.m_uNumIndDV, 2);
  EXPECT_EQ(made.m_uNumIndResp, 3);
  EXPECT_EQ(made.m_uNumLinkResp, 1);
  EXPECT_EQ(made.m_uNumCons, 2);
  EXPECT_EQ(made.m_uNumObj, 1);
  EXPECT_EQ(made.m_uNumPoints, 1);
}

// With the greatest height the stress alone decides: 3e7 / (width * 100**2) = 200, so width = 15,
// and the cost is 0.5 + 0.02 * 1500 + 1.5.
TEST_F(Guide, RunFindsTheCheapestBeam) {
  const int task = DefineAndMake();
  RunTask(task);
  const Design best = BestDesign(task);
  EXPECT_NEAR(best.height, 100.0, 0.5);
  EXPECT_NEAR(best.width, 15.0, 0.15);
  EXPECT_NEAR(best.cost, 32.0, 0.1);
  EXPECT_GE(best.cost, 32.0 - 1e-9);
}

TEST_F(Guide, RunLeavesAllItsRecords) {
  const int task = DefineAndMake();
  RunTask(task);
  CResult result(GetPOD());
  result.m_nID = task;
  ASSERT_TRUE(result.GetObject());
  EXPECT_EQ(result.m_nRunStatus, 2);
  EXPECT_EQ(result.m_nNumPoints, 1 + 60 * 8);
  EXPECT_EQ(result.m_nAnalysisCalls, 1 + 60 * 8);
  EXPECT_LE(double{result.m_fWorstConstraint}, 0.0);
  EXPECT_EQ(CDPoint(GetPOD()).CountObjects(), 1 + 60 * 8);
  EXPECT_EQ(CIter(GetPOD()).CountObjects(), 1 + 60);
  CMessage messages(GetPOD());
  messages.m_nID = task;
  ASSERT_TRUE(messages.GetObject());
  EXPECT_EQ(messages.m_Messages, std::vector<std::string>{"NOTE: the search came to its end"});
}

TEST_F(Guide, SecondRunTakesThePlaceOfTheFirst) {
  const int task = DefineAndMake();
  RunTask(task);
  const Design best = BestDesign(task);
  RunTask(task);
  EXPECT_EQ(BestDesign(task).cost, best.cost);
  EXPECT_EQ(CDPoint(GetPOD()).CountObjects(), 1 + 60 * 8);
  EXPECT_EQ(CIter(GetPOD()).CountObjects(), 1 + 60);
}

TEST_F(Guide, ReportsTellOfTheRun) {
  const int task = DefineAndMake();
  RunTask(task);
  const std::string report = Printed([&](std::FILE* stream) { PrintRun(stream, task); });
  for (const char* text :
       {"RESULTS SUMMARY", "Completed", "relative hard convergence", "width",
        "FINAL RESULTS FOR ITERATION 57", "deflection", "NOTE: the search came to its end"}) {
    EXPECT_NE(report.find(text), std::string::npos) << text;
  }
}

TEST_F(Guide, LoadedTaskGivesBackWhatWasRun) {
  const int task = DefineAndMake();
  Reconsider(30.0);
  ASSERT_EQ(UpperBoundOfWidth(), 30.0);
  GoBackTo(task);
  EXPECT_EQ(UpperBoundOfWidth(), 60.0);
  EXPECT_TRUE(CheckBeam());
}

TEST_F(Guide, RestartStartsAtTheBestPoint) {
  const int task = DefineAndMake();
  RunTask(task);
  const Design best = BestDesign(task);
  const int next = RestartFromBest(task);
  EXPECT_EQ(next, 2);
  CDPoint start(GetPOD());
  start.m_nTaskID = next;
  ASSERT_TRUE(start.GetObject());
  EXPECT_EQ(start.m_IDVar[0], best.width);
  EXPECT_EQ(start.m_IDVar[1], best.height);
  RunTask(next);
  EXPECT_LE(BestDesign(next).cost, best.cost);
}

TEST_F(Guide, FailuresToOpenAreTold) {
  EXPECT_EQ(TryToOpen(study), "");
  CloseDatabase();
  std::filesystem::create_directory(study + ".lck");
  EXPECT_EQ(TryToOpen(study), "Another program is at work on this study.");
  std::filesystem::remove(study + ".lck");
  std::filesystem::permissions(study + ".ksb", std::filesystem::perms::owner_read);
  EXPECT_EQ(TryToOpen(study), "The study may not be written to.");
  EXPECT_EQ(TryToOpen(folder / "b\xC3\xA4r"),
            "Database filename contains invalid characters.  Use ASCII characters only.");
}

TEST_F(Guide, StudyOpensAfterACrash) {
  DefineAndMake();
  CloseDatabase();
  std::filesystem::create_directory(study + ".lck");  // what a killed process leaves
  OpenAfterCrash(study);
  EXPECT_TRUE(IsOpen());
  EXPECT_TRUE(CheckBeam());
}

TEST_F(Guide, FilesOfARunAreSound) {
  RunTask(DefineAndMake());
  CloseDatabase();
  CheckFiles(study);
  EXPECT_FALSE(LogHas("Found"));
  EXPECT_TRUE(LogHas("Efficiency"));
  EXPECT_TRUE(LogHas("481 CDPoint - Result objects are OK\n"));
}

TEST_F(Guide, RebuiltFilesHoldTheSameStudy) {
  const int task = DefineAndMake();
  RunTask(task);
  const Design best = BestDesign(task);
  CloseDatabase();
  std::filesystem::remove(study + ".kx");
  RebuildFiles(study);
  CheckFiles(study);
  OpenDatabase(study);
  EXPECT_EQ(BestDesign(task).cost, best.cost);
}

// The lock is the 12 bytes behind the 28 of the file header.
TEST_F(Guide, HeaderLocksAreCleared) {
  DefineAndMake();
  CloseDatabase();
  const std::string held = Bytes("07 00 00 00  00 00 00 00  01 00 00 00");
  PatchBytes(study + ".ksb", 28, held);
  PatchBytes(study + ".kx", 28, held);
  ClearHeaderLocks(study);
  EXPECT_EQ(HexAt(study + ".ksb", 28, 12), "00 00 00 00 00 00 00 00 00 00 00 00");
  EXPECT_EQ(HexAt(study + ".kx", 28, 12), "00 00 00 00 00 00 00 00 00 00 00 00");
  OpenDatabase(study);
  EXPECT_TRUE(CheckBeam());
}

TEST_F(Guide, PositionOutsideItsTableEndsTheRun) {
  const int task = DefineAndMake();
  CDCons limits(GetPOD());
  limits.m_nID = task;
  ASSERT_TRUE(limits.GetObject());
  limits.m_vnSubj[0] = 3;  // there are three responses
  limits.PutObject();
  EXPECT_THROW(RunTask(task), std::runtime_error);
  limits.m_vnSubj[0] = -1;
  limits.PutObject();
  EXPECT_THROW(RunTask(task), std::runtime_error);
}

TEST_F(Guide, TaskThatIsNotThereCantBeRun) {
  OpenDatabase(study);
  EXPECT_THROW(RunTask(1), std::runtime_error);
  EXPECT_THROW(BestDesign(1), std::runtime_error);
}

}  // namespace
