#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "control/DesignControl.h"
#include "definition/GPoint.h"
#include "index/KSBKey.h"
#include "store/KestErr.h"
#include "tests/support/Bytes.h"
#include "tests/support/Log.h"
#include "tests/support/Study.h"

// The check that the user's points fit the problem.

namespace {

using Entries = std::vector<LogEntry>;
using Rows = std::vector<std::vector<vbFLOAT64>>;

/// The two lines about variables or responses: `wanted` of them, against so many columns.
Entries Mismatch(const std::string& what, int wanted, int columns) {
  return {{"LError",
           "(Design Points): Number of design " + what + " (" + std::to_string(wanted) +
               ") does not match\n",
           "", 0},
          {"LPrint",
           "     the number of columns (" + std::to_string(columns) + ") in the design matrix.\n\n",
           "", 0}};
}

/// The settings of a kind of task, and whether they ask for the user's points.
struct Settings {
  int task;
  int multiStart;
  int initialDOE;
  int design;
  int swarmStart;
  bool asks;
};

class PointCheck : public testing::Test {
 protected:
  void StoreSettings(const Settings& settings) {
    CDesignControl control(study.Pod());
    control.m_nTaskType = settings.task;
    control.m_DGO.m_nMultiStart = settings.multiStart;
    control.m_RSA.m_nInitialDOE = settings.initialDOE;
    control.m_DOE.m_nMethod = settings.design;
    control.m_NGO.m_nStart = settings.swarmStart;
    control.PutObject();
  }

  /// Settings that ask for the points.
  void AskForPoints() {
    StoreSettings({.task = 2,
                   .multiStart = 0,
                   .initialDOE = 9,
                   .design = 11,
                   .swarmStart = 10,
                   .asks = true});
  }

  void StorePoints(const Rows& variables, const Rows& responses) {
    CGPoint points(study.Pod());
    points.m_vnUsed.resize(variables.size());
    points.m_vDVars = variables;
    points.m_vResps = responses;
    points.PutObject();
  }

  bool Check(int numDVars, int numResps) {
    ClearLog();
    return CGPoint::CheckGPoints(study.Pod(), numDVars, numResps);
  }

  Study study;
};

// ---- When the points matter ----

TEST_F(PointCheck, HeedsThePointsOnlyWhenTheTaskAsksForThem) {
  StorePoints({{1.0}}, {{1.0}});
  const Settings cases[] = {
      // Only the setting of the task's own kind counts.
      {0, 1, 9, 1, 10, true},    {0, 2, 9, 1, 10, true},     {0, -1, 9, 1, 10, true},
      {0, 0, 11, 11, 11, false}, {1, 0, 11, 1, 10, true},    {1, 1, 9, 11, 11, false},
      {1, 1, 10, 11, 11, false}, {1, 1, 12, 11, 11, false},  {1, 1, 99, 11, 11, false},
      {2, 0, 9, 11, 10, true},   {2, 1, 11, 1, 11, false},   {2, 1, 11, 10, 11, false},
      {2, 1, 11, 12, 11, false}, {3, 1, 11, 11, 11, false},  {4, 1, 11, 11, 11, false},
      {5, 1, 11, 11, 11, false}, {-1, 1, 11, 11, 11, false},
  };
  for (const Settings& settings : cases) {
    SCOPED_TRACE(testing::Message() << settings.task << ", " << settings.multiStart << ", "
                                    << settings.initialDOE << ", " << settings.design);
    StoreSettings(settings);
    EXPECT_EQ(Check(2, 1), !settings.asks);
    EXPECT_EQ(Log(), settings.asks ? Mismatch("variables", 2, 1) : Entries{});
    EXPECT_TRUE(Check(1, 1));
    EXPECT_TRUE(Log().empty()) << PrintedLog();
  }
}

TEST_F(PointCheck, IsPassedByDefaultSettings) {
  CDesignControl(study.Pod()).PutObject();
  EXPECT_TRUE(Check(3, 2));
  EXPECT_TRUE(Log().empty()) << PrintedLog();
}

TEST_F(PointCheck, DoesNotLookForPointsThatDoNotMatter) {
  CDesignControl(study.Pod()).PutObject();
  ASSERT_TRUE(CGPoint(study.Pod()).RemoveObject());
  EXPECT_TRUE(Check(3, 2));
}

// ---- Columns ----

TEST_F(PointCheck, HoldsForAColumnOfEachVariableAndResponse) {
  AskForPoints();
  StorePoints({{1, 2, 3}, {4, 5, 6}}, {{7, 8}, {9, 10}});
  EXPECT_TRUE(Check(3, 2));
  EXPECT_TRUE(Log().empty()) << PrintedLog();
}

TEST_F(PointCheck, TellsColumnsThatAreNoVariables) {
  AskForPoints();
  StorePoints({{1, 2, 3}}, {{7, 8}});
  EXPECT_FALSE(Check(2, 2));
  EXPECT_EQ(Log(), Mismatch("variables", 2, 3));
  EXPECT_FALSE(Check(4, 2));
  EXPECT_EQ(Log(), Mismatch("variables", 4, 3));
}

TEST_F(PointCheck, TellsColumnsThatAreNoResponses) {
  AskForPoints();
  StorePoints({{1, 2, 3}}, {{7, 8}});
  EXPECT_FALSE(Check(3, 1));
  EXPECT_EQ(Log(), Mismatch("responses", 1, 2));
  EXPECT_FALSE(Check(3, 3));
  EXPECT_EQ(Log(), Mismatch("responses", 3, 2));
}

TEST_F(PointCheck, TellsBothFaultsInOrder) {
  AskForPoints();
  StorePoints({{1, 2, 3}}, {{7, 8}});
  EXPECT_FALSE(Check(2, 4));
  EXPECT_EQ(
      Log(),
      (Entries{
          {"LError", "(Design Points): Number of design variables (2) does not match\n", "", 0},
          {"LPrint", "     the number of columns (3) in the design matrix.\n\n", "", 0},
          {"LError", "(Design Points): Number of design responses (4) does not match\n", "", 0},
          {"LPrint", "     the number of columns (2) in the design matrix.\n\n", "", 0},
      }));
}

TEST_F(PointCheck, OfAnEmptyTableTellsNoColumns) {
  AskForPoints();
  EXPECT_FALSE(Check(3, 0));
  EXPECT_EQ(Log(), Mismatch("variables", 3, 0));
  EXPECT_FALSE(Check(0, 1));
  EXPECT_EQ(Log(), Mismatch("responses", 1, 0));
  EXPECT_TRUE(Check(0, 0));
  EXPECT_TRUE(Log().empty()) << PrintedLog();
}

TEST_F(PointCheck, CountsTheColumnsOfTheFirstPointOnly) {
  AskForPoints();
  StorePoints({{1, 2}, {1, 2, 3, 4}, {}}, {{}, {1, 2}});
  EXPECT_TRUE(Check(2, 0));
  EXPECT_TRUE(Log().empty()) << PrintedLog();
  EXPECT_FALSE(Check(4, 2));
  Entries both = Mismatch("variables", 4, 2);
  for (const LogEntry& entry : Mismatch("responses", 2, 0)) both.push_back(entry);
  EXPECT_EQ(Log(), both);
}

TEST_F(PointCheck, CountsPointsThatAreNotUsed) {
  AskForPoints();
  StorePoints({{1, 2}}, {{1}});
  EXPECT_TRUE(Check(2, 1));
}

// ---- Failures ----

TEST_F(PointCheck, NeedsTheSettings) {
  CDesignControl(study.Pod()).PutObject();
  ASSERT_TRUE(CDesignControl(study.Pod()).RemoveObject());
  try {
    Check(0, 0);
    ADD_FAILURE() << "nothing thrown";
  } catch (const CObjectNotFound& error) {
    EXPECT_STREQ(error.what(), "Object not found");
  }
}

TEST_F(PointCheck, NeedsThePointsThatAreAskedFor) {
  AskForPoints();
  ASSERT_TRUE(CGPoint(study.Pod()).RemoveObject());
  EXPECT_THROW(Check(0, 0), CObjectNotFound);
}

TEST_F(PointCheck, PassesOnThatThePointsAreDamaged) {
  AskForPoints();
  StorePoints({{1, 2}}, {{1}});
  CGPoint points(study.Pod());
  ASSERT_TRUE(points.FindObject());
  study.Close();
  PatchBytes(study.DataPath(), points.ObjectAddress() + 16, "x");
  study.Open();
  EXPECT_THROW(Check(2, 1), CChecksum);
}

TEST_F(PointCheck, OfNoDatabaseIsANullPointer) {
  EXPECT_THROW(CGPoint::CheckGPoints(nullptr, 0, 0), CNullPtr);
}

TEST_F(PointCheck, WithoutIndexingIsToldSoBeforeMissingFiles) {
  POD pod(study.folder / "other.ksb");
  EXPECT_THROW(CGPoint::CheckGPoints(&pod, 0, 0), CNoIndex);
  KSBKey key;
  pod.Open(study.folder / "other.ksb", study.folder / "other.kx", key, 32, vbReadWrite, 2, 0, 25);
  EXPECT_THROW(CGPoint::CheckGPoints(&pod, 0, 0), CNoIndex);
}

TEST_F(PointCheck, WithoutADataFileIsANullPointer) {
  study.Pod()->CloseDataFile();
  EXPECT_THROW(Check(0, 0), CNullPtr);
}

TEST_F(PointCheck, WithoutAnIndexFileIsANullPointer) {
  study.Pod()->CloseIndex();
  EXPECT_THROW(Check(0, 0), CNullPtr);
}

TEST_F(PointCheck, NeedsTheLockOfTheDatabase) {
  CDesignControl(study.Pod()).PutObject();
  std::filesystem::create_directory(study.LockPath());
  EXPECT_THROW(Check(0, 0), CFileLock);
  EXPECT_THROW(CGPoint::CheckGPoints(nullptr, 0, 0), CNullPtr);
  std::filesystem::remove(study.LockPath());
}

}  // namespace
