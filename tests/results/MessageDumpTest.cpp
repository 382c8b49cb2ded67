#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "index/KSBKey.h"
#include "results/Message.h"
#include "store/KestErr.h"
#include "tests/support/Bytes.h"
#include "tests/support/Printed.h"
#include "tests/support/Study.h"

// The report of a task's messages.

namespace {

const std::string head =
    "                         MESSAGE SUMMARY (Task ID: 1)\n"
    "================================================================================\n";
const std::string end =
    "================================================================================\n"
    "\n";

class MessageReport : public testing::Test {
 protected:
  CMessage Store(int task, const std::vector<std::string>& texts) {
    CMessage messages(study.Pod());
    messages.m_nID = task;
    messages.m_Messages = texts;
    messages.PutObject();
    return messages;
  }

  std::string Report(int task) {
    return Printed([&](std::FILE* stream) { CMessage::Dump(study.Pod(), stream, task); });
  }

  /// The report of task 1 with these messages.
  std::string ReportOf(const std::vector<std::string>& texts) {
    Store(1, texts);
    return Report(1);
  }

  Study study;
};

TEST_F(MessageReport, OfATaskWithoutARecordIsEmpty) {
  EXPECT_EQ(Report(1), "");
  Store(2, {"of another task"});
  EXPECT_EQ(Report(1), "");
}

TEST_F(MessageReport, OfNoMessages) {
  EXPECT_EQ(ReportOf({}), head + end);
}

TEST_F(MessageReport, OfSomeMessages) {
  EXPECT_EQ(ReportOf({"Analysis 1 started.", "WARNING: no bound", "ERROR: 100%d of %s"}),
            "                         MESSAGE SUMMARY (Task ID: 1)\n"
            "================================================================================\n"
            "Analysis 1 started.\n"
            "WARNING: no bound\n"
            "ERROR: 100%d of %s\n"
            "================================================================================\n"
            "\n");
}

TEST_F(MessageReport, IsThatOfTheTaskAskedFor) {
  Store(1, {"one"});
  Store(1234567890, {"many"});
  EXPECT_EQ(Report(1), head + "one\n" + end);
  EXPECT_EQ(Report(1234567890),
            "                         MESSAGE SUMMARY (Task ID: 1234567890)\n"
            "================================================================================\n"
            "many\n" +
                end);
}

TEST_F(MessageReport, HasNoLineForAnEmptyMessage) {
  EXPECT_EQ(ReportOf({"", "a", "", "b", ""}), head + "a\nb\n" + end);
  EXPECT_EQ(ReportOf({"", ""}), head + end);
}

// ---- Long messages ----

// 80 columns, the last blank in column 75.
const std::string eighty =
    "The response surface of stress has been fitted to 24 points in 7 variables. Next";

TEST_F(MessageReport, KeepsAMessageOfEightyColumnsOnOneLine) {
  ASSERT_EQ(eighty.size(), 80U);
  EXPECT_EQ(ReportOf({eighty}), head + eighty + "\n" + end);
}

TEST_F(MessageReport, CutsAMessageOfEightyOneColumnsAtTheLastBlank) {
  EXPECT_EQ(ReportOf({eighty + ":"}),
            head +
                "The response surface of stress has been fitted to 24 points in 7 variables.\n"
                "Next:\n" +
                end);
}

TEST_F(MessageReport, DropsTheBlanksAtACut) {
  EXPECT_EQ(ReportOf({eighty + " step", eighty + "   step"}),
            head + eighty + "\nstep\n" + eighty + "\nstep\n" + end);
}

TEST_F(MessageReport, CutsALongMessageOverSeveralLines) {
  EXPECT_EQ(ReportOf({"EXCEPTION: the analysis program of the third design point of the second "
                      "iteration has ended with the code 139, and its output file dvar.kef does "
                      "not hold the responses weight, stress and deflection that were asked for.",
                      "next"}),
            head +
                "EXCEPTION: the analysis program of the third design point of the second\n"
                "iteration has ended with the code 139, and its output file dvar.kef does not\n"
                "hold the responses weight, stress and deflection that were asked for.\n"
                "next\n" +
                end);
}

TEST_F(MessageReport, CutsAMessageWithoutBlanksWhereTheLineEnds) {
  EXPECT_EQ(ReportOf({std::string(170, 'x')}),
            head + std::string(80, 'x') + "\n" + std::string(80, 'x') + "\nxxxxxxxxxx\n" + end);
}

// ---- Line feeds ----

TEST_F(MessageReport, EndsALineWhereTheMessageDoes) {
  EXPECT_EQ(ReportOf({"one\ntwo\n\nfour"}), head + "one\ntwo\n\nfour\n" + end);
}

TEST_F(MessageReport, HasNoLineBehindALastLineFeed) {
  EXPECT_EQ(ReportOf({"one\n", "\n", "two"}), head + "one\n\ntwo\n" + end);
}

TEST_F(MessageReport, CutsEachLineOfAMessageByItself) {
  EXPECT_EQ(ReportOf({"short\n" + eighty + "\n" + eighty + ":"}),
            head + "short\n" + eighty + "\n" +
                "The response surface of stress has been fitted to 24 points in 7 variables.\n"
                "Next:\n" +
                end);
}

// ---- Failures ----

TEST_F(MessageReport, OfNoDatabaseOrStreamIsANullPointer) {
  EXPECT_THROW(CMessage::Dump(nullptr, stdout, 1), CNullPtr);
  EXPECT_THROW(CMessage::Dump(study.Pod(), nullptr, 1), CNullPtr);
}

TEST_F(MessageReport, TellsMissingFilesBeforeMissingIndexing) {
  POD pod(study.folder / "other.ksb");
  EXPECT_THROW(CMessage::Dump(&pod, stdout, 1), CNullPtr);
  KSBKey key;
  pod.Open(study.folder / "other.ksb", study.folder / "other.kx", key, 32, vbReadWrite, 2, 0, 25);
  EXPECT_THROW(CMessage::Dump(&pod, stdout, 1), CNoIndex);
}

TEST_F(MessageReport, WithoutADataFileIsANullPointer) {
  study.Pod()->CloseDataFile();
  EXPECT_THROW(CMessage::Dump(study.Pod(), stdout, 1), CNullPtr);
}

TEST_F(MessageReport, WithoutAnIndexFileIsANullPointer) {
  study.Pod()->CloseIndex();
  EXPECT_THROW(CMessage::Dump(study.Pod(), stdout, 1), CNullPtr);
}

TEST_F(MessageReport, NeedsTheLockOfTheDatabase) {
  std::filesystem::create_directory(study.LockPath());
  EXPECT_THROW(CMessage::Dump(study.Pod(), stdout, 1), CFileLock);
  std::filesystem::remove(study.LockPath());
}

TEST_F(MessageReport, OfADamagedRecordIsNotPrintedInPart) {
  const CMessage messages = Store(1, {"text"});
  study.Close();
  PatchBytes(study.DataPath(), messages.ObjectAddress() + 24, "T");
  study.Open();
  std::FILE* stream = std::tmpfile();
  EXPECT_THROW(CMessage::Dump(study.Pod(), stream, 1), CChecksum);
  EXPECT_EQ(std::ftell(stream), 0);
  std::fclose(stream);
}

}  // namespace
