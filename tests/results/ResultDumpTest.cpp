#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <limits>
#include <string>
#include <utility>

#include "index/KSBKey.h"
#include "results/Result.h"
#include "store/KestErr.h"
#include "tests/results/Summary.h"
#include "tests/support/Bytes.h"

// The summary of a run.

namespace {

const std::string end =
    "================================================================================\n"
    "\n";

// ---- Whole reports ----

TEST_F(Summary, OfANewTask) {
  EXPECT_EQ(Report(),
            "                                RESULTS SUMMARY\n"
            "================================================================================\n"
            "                         Run Started On : \n"
            "                         Run Stopped On : \n"
            "                       Warning Messages : 0\n"
            "                         Error Messages : 0\n"
            "                   Total Analysis Calls : 0\n"
            "                Total Gradient Requests : 0\n"
            "     Total # Points in the Design Space : 0\n"
            "   Iteration of the Best Design (cont.) : 0\n"
            "                 Best Objective (cont.) : 1.797693e+308\n"
            "                  Continuous Run Status : Not Run\n"
            "                   Continuous Stop Code : normal\n"
            "================================================================================\n"
            "\n");
}

TEST_F(Summary, OfACompletedRunWithADiscreteSubTask) {
  result.m_strStarted = "Sat Mar  7 09:05:59 2026";
  result.m_strStopped = "Sun Mar  8 10:00:00 2026";
  result.m_nNumPoints = 90;
  result.m_nTotalPoints = 91;
  result.m_nAnalysisCalls = 92;
  result.m_nGradientRequests = 93;
  result.m_nBestIter = 94;
  result.m_nBestSubIter = 95;
  result.m_fBestObjective = -0.5;
  result.m_fWorstConstraint = 12345678.0;
  result.m_nRunStatus = 2;
  result.m_nStopCode = 14;
  result.m_strLastMessage = "100%d of %s";
  result.m_nBestSubTask = 5;
  for (std::size_t i = 0; i < 20; ++i) result.m_fTimes[i] = 1000.0 + static_cast<double>(i);
  result.m_fTimes[7] = 0.25;
  result.m_fTimes[8] = 0.5;
  result.m_fTimes[9] = 1.005;
  result.m_fTimes[10] = 2.5;
  messages.m_Messages = {"WARN", "ERROR 1", "EXCEPTION", "WARNING", "text", "WARN", "ERROR 2"};
  subTask.m_nBestIter = 96;
  subTask.m_nBestSubIter = 97;
  subTask.m_fBestObjective = 1.0;
  subTask.m_fWorstConstraint = -0.001;
  subTask.m_nStopCode = 14;
  subTask.m_strLastMessage = "done";
  subTask.m_nRunStatus = 2;
  subTask.m_fTimes[19] = 7.0;
  subTask.PutObject();
  EXPECT_EQ(Report(true),
            "                                RESULTS SUMMARY\n"
            "================================================================================\n"
            "                         Run Started On : Sat Mar  7 09:05:59 2026\n"
            "                         Run Stopped On : Sun Mar  8 10:00:00 2026\n"
            "                       Warning Messages : 3\n"
            "                         Error Messages : 2\n"
            "                             Exceptions : 1\n"
            "                   Total Analysis Calls : 92\n"
            "                Total Gradient Requests : 93\n"
            "     Total # Points in the Design Space : 91\n"
            "   Iteration of the Best Design (cont.) : 94\n"
            "   Sub-Iter. of the Best Design (cont.) : 95\n"
            "                 Best Objective (cont.) : -0.5000000\n"
            "               Worst Constraint (cont.) : 1.234568e+07\n"
            "                  Continuous Run Status : Completed\n"
            "                   Continuous Stop Code : maximum iterations reached\n"
            "Last Message : 100%d of %s\n"
            "       Database ID of the best sub-task : 5\n"
            "--------------------------------------------------------------------------------\n"
            "                       Discrete Sub-Task Results Summary\n"
            "Iteration of the Best Design (discrete) : 96\n"
            "Sub-Iter. of the Best Design (discrete) : 97\n"
            "              Best Objective (discrete) : 1.000000\n"
            "            Worst Constraint (discrete) : -0.001000000\n"
            "                     Discrete Stop Code : maximum iterations\n"
            "Last Discrete Message : done\n"
            "--------------------------------------------------------------------------------\n"
            "                                Timing (seconds)\n"
            "                               Analysis :   1001.00\n"
            "                               Transfer :      0.75\n"
            "                               Database :      3.50\n"
            "                                  Total :   1019.00\n"
            "================================================================================\n"
            "\n");
}

TEST_F(Summary, OfADesignOfExperiments) {
  task.m_nType = 2;
  result.m_nNumPoints = 24;
  result.m_nTotalPoints = 25;
  result.m_nGradientRequests = 3;
  result.m_nRunStatus = 4;
  result.m_nStopCode = 52;
  result.m_strLastMessage = "no more points";
  EXPECT_EQ(Report(true),
            "                                RESULTS SUMMARY\n"
            "================================================================================\n"
            "                         Run Started On : \n"
            "                         Run Stopped On : \n"
            "                       Warning Messages : 0\n"
            "                         Error Messages : 0\n"
            "                   Total Analysis Calls : 0\n"
            "             Points in the Design Space : 24\n"
            "                             Run Status : Task Terminated Prematurely!\n"
            "                              Stop Code : DOE ERROR\n"
            "Last Message : no more points\n"
            "================================================================================\n"
            "\n");
}

// ---- Which lines there are ----

TEST_F(Summary, HasGradientRequestsInADirectGradientTaskOnly) {
  for (const int type : {0, 1, 2, 3, 4, 5, -1}) {
    task.m_nType = type;
    EXPECT_EQ(Report().find("Total Gradient Requests") != std::string::npos, type == 0) << type;
  }
}

TEST_F(Summary, HasPointsInPlaceOfABestDesignWhereThereIsNone) {
  const std::string points = "\n             Points in the Design Space : 24\n";
  const std::string total = "\n     Total # Points in the Design Space : 25\n";
  result.m_nNumPoints = 24;
  result.m_nTotalPoints = 25;
  for (const int type : {0, 1, 2, 3, 4, 5}) {
    for (const int method : {0, 1, 2, 3}) {
      SCOPED_TRACE(std::to_string(type) + " " + std::to_string(method));
      task.m_nType = type;
      task.m_NGO.m_nMethod = method;
      const bool spread = type == 2 || (type == 3 && method == 2);
      const std::string report = Report();
      EXPECT_EQ(report.find(points) != std::string::npos, spread);
      EXPECT_EQ(report.find(total) != std::string::npos, !spread);
      EXPECT_EQ(report.find("Best Objective (cont.)") != std::string::npos, !spread);
      EXPECT_EQ(report.find("Continuous Run Status") != std::string::npos, type != 2);
      EXPECT_EQ(report.find("\n                             Run Status : ") != std::string::npos,
                type == 2);
    }
  }
}

TEST_F(Summary, HasSubIterationsOnlyWhereAskedFor) {
  result.m_nBestSubTask = 5;
  subTask.PutObject();
  EXPECT_EQ(Report(false).find("Sub-Iter."), std::string::npos);
  const std::string report = Report(true);
  EXPECT_NE(report.find("\n   Sub-Iter. of the Best Design (cont.) : 0\n"), std::string::npos);
  EXPECT_NE(report.find("\nSub-Iter. of the Best Design (discrete) : 0\n"), std::string::npos);
}

TEST_F(Summary, HasAWorstConstraintUnlessThereIsNone) {
  const std::string beginning = "               Worst Constraint (cont.) : ";
  EXPECT_EQ(LineBehind(beginning), "no such line");
  result.m_fWorstConstraint = 0.0;
  EXPECT_EQ(LineBehind(beginning), "0.000000");
  result.m_fWorstConstraint = -1e308;
  EXPECT_EQ(LineBehind(beginning), "-1.000000e+308");
  result.m_fWorstConstraint = std::numeric_limits<double>::max();
  EXPECT_EQ(LineBehind(beginning), "1.797693e+308");
}

TEST_F(Summary, HasExceptionsOnlyWhereThereAreAny) {
  messages.m_Messages = {"an EXCEPTION", "ERROR"};
  EXPECT_EQ(Report().find("Exceptions"), std::string::npos);
  messages.m_Messages.push_back("EXCEPTION");
  EXPECT_EQ(LineBehind("                             Exceptions : "), "1");
}

TEST_F(Summary, HasTimingOfACompletedRunThatTookTime) {
  const std::string title = "                                Timing (seconds)\n";
  const std::pair<double, bool> totals[] = {{0.0, false},
                                            {-1.0, false},
                                            {std::numeric_limits<double>::quiet_NaN(), false},
                                            {1e-300, true},
                                            {1.0, true}};
  for (const int status : {0, 1, 2, 3, 4}) {
    for (const auto& [total, printed] : totals) {
      SCOPED_TRACE(std::to_string(status) + " " + std::to_string(total));
      result.m_nRunStatus = status;
      result.m_fTimes[19] = total;
      EXPECT_EQ(Report().find(title) != std::string::npos, status == 2 && printed);
    }
  }
}

TEST_F(Summary, HasLongTimesInFull) {
  result.m_nRunStatus = 2;
  result.m_fTimes[1] = -1.0;
  result.m_fTimes[7] = 1e9;
  result.m_fTimes[19] = 123456.789;
  EXPECT_EQ(LineBehind("                               Analysis : "), "    -1.00");
  EXPECT_EQ(LineBehind("                               Transfer : "), "1000000000.00");
  EXPECT_EQ(LineBehind("                                  Total : "), "123456.79");
}

// ---- Sub-tasks ----

/// What stands between the stop code and the end of the report.
std::string Rest(const std::string& report) {
  const std::string last = "Continuous Stop Code : normal\n";
  return report.substr(report.find(last) + last.size());
}

TEST_F(Summary, SaysThatThereIsNoDiscreteSolution) {
  result.m_nBestSubTask = -1;
  EXPECT_EQ(Rest(Report()), "                    ***** ERROR - NO DISCRETE SOLUTION *****\n" + end);
}

TEST_F(Summary, HasNothingOfNoSubTask) {
  for (const long none : {0L, -2L, -2147483648L}) {
    result.m_nBestSubTask = none;
    EXPECT_EQ(Rest(Report()), end);
  }
}

TEST_F(Summary, SaysThatASubTaskIsMissing) {
  result.m_nBestSubTask = 2147483647;
  EXPECT_EQ(Rest(Report(true)),
            "       Database ID of the best sub-task : 2147483647\n"
            "***** ERROR - could not retrieve sub-task results\n" +
                end);
}

TEST_F(Summary, OfANewSubTask) {
  result.m_nBestSubTask = 5;
  subTask.PutObject();
  EXPECT_EQ(Rest(Report()),
            "       Database ID of the best sub-task : 5\n"
            "--------------------------------------------------------------------------------\n"
            "                       Discrete Sub-Task Results Summary\n"
            "Iteration of the Best Design (discrete) : 0\n"
            "              Best Objective (discrete) : 1.797693e+308\n"
            "                     Discrete Stop Code : normal\n" +
                end);
}

TEST_F(Summary, OfATaskThatIsItsOwnSubTask) {
  result.m_nBestSubTask = 1;
  result.m_nBestIter = 3;
  EXPECT_EQ(Rest(Report()),
            "       Database ID of the best sub-task : 1\n"
            "--------------------------------------------------------------------------------\n"
            "                       Discrete Sub-Task Results Summary\n"
            "Iteration of the Best Design (discrete) : 3\n"
            "              Best Objective (discrete) : 1.797693e+308\n"
            "                     Discrete Stop Code : normal\n" +
                end);
}

TEST_F(Summary, OfADamagedSubTaskIsNotPrintedInPart) {
  result.m_nBestSubTask = 5;
  Store();
  subTask.PutObject();
  study.Close();
  PatchBytes(study.DataPath(), subTask.ObjectAddress() + 30, "x");
  study.Open();
  ExpectNoReport<CChecksum>();
}

// ---- Failures ----

TEST_F(Summary, NeedsTaskResultAndMessages) {
  ExpectNoReport<CGetObject>();
  Store();
  ASSERT_TRUE(task.RemoveObject());
  ExpectNoReport<CGetObject>();
  Store();
  ASSERT_TRUE(result.RemoveObject());
  ExpectNoReport<CGetObject>();
  Store();
  ASSERT_TRUE(messages.RemoveObject());
  ExpectNoReport<CGetObject>();
  Store();
  ExpectNoReport<CGetObject>(2);
}

TEST_F(Summary, OfAnImpossibleTaskIsAnInvalidKey) {
  ExpectNoReport<CInvalidKey>(0);
  ExpectNoReport<CInvalidKey>(-1);
}

TEST_F(Summary, OfADamagedRecordIsNotPrintedInPart) {
  Store();
  study.Close();
  PatchBytes(study.DataPath(), messages.ObjectAddress() + 16, "x");
  study.Open();
  ExpectNoReport<CChecksum>();
}

TEST_F(Summary, OfNoDatabaseOrStreamIsANullPointer) {
  EXPECT_THROW(CResult::Dump(nullptr, stdout, 1, false), CNullPtr);
  EXPECT_THROW(CResult::Dump(study.Pod(), nullptr, 1, false), CNullPtr);
}

TEST_F(Summary, TellsMissingIndexingBeforeMissingFiles) {
  POD pod(study.folder / "other.ksb");
  EXPECT_THROW(CResult::Dump(&pod, stdout, 1, false), CNoIndex);
  KSBKey key;
  pod.Open(study.folder / "other.ksb", study.folder / "other.kx", key, 32, vbReadWrite, 2, 0, 25);
  EXPECT_THROW(CResult::Dump(&pod, stdout, 1, false), CNoIndex);
}

TEST_F(Summary, WithoutADataFileIsANullPointer) {
  study.Pod()->CloseDataFile();
  ExpectNoReport<CNullPtr>();
}

TEST_F(Summary, WithoutAnIndexFileIsANullPointer) {
  study.Pod()->CloseIndex();
  ExpectNoReport<CNullPtr>();
}

TEST_F(Summary, NeedsTheLockOfTheDatabase) {
  std::filesystem::create_directory(study.LockPath());
  ExpectNoReport<CFileLock>();
  std::filesystem::remove(study.LockPath());
}

}  // namespace
