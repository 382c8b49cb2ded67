#include "control/ANLControl.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "store/KestErr.h"
#include "tests/control/BlockFields.h"
#include "tests/control/CommonRuleCases.h"
#include "tests/support/Bytes.h"
#include "tests/support/Log.h"

namespace {

const BlockFields<CANLControl> fields{
    {"m_nRandomMethod", &CANLControl::m_nRandomMethod, 0, 1, "01 00 00 00", {10, 7}},
    {"m_nRandomPoints", &CANLControl::m_nRandomPoints, 1000, 305419896, "78 56 34 12", {10, 7}},
    {"m_nSavePoints", &CANLControl::m_nSavePoints, 0, -2, "FE FF FF FF", {15, 12}},
    {"m_nRandomSeed", &CANLControl::m_nRandomSeed, 1, 3, "03 00 00 00", {18, 15}},
};

const std::string initialRecord = "00 00 00 00 E8 03 00 00 00 00 00 00 01 00 00 00";

// ---- The block ----

TEST(AnalysisSettings, HaveInitialValuesAndTakeThemAgain) {
  ExpectInitialValues(fields);
}

TEST(AnalysisSettings, CopyTakesEachField) {
  ExpectCopyOfEachField(fields);
}

TEST(AnalysisSettings, TakeSixteenBytes) {
  EXPECT_EQ(CANLControl().ObjectLength(), 16U);
}

// ---- The record ----

TEST(AnalysisSettings, OfANewBlockByteForByte) {
  RecordFile file;
  EXPECT_EQ(Hex(file.Record(CANLControl())), initialRecord);
}

TEST(AnalysisSettings, AreStoredInOrder) {
  ExpectStoredSample(fields);
}

TEST(AnalysisSettings, ChangeTheirOwnBytesOnly) {
  ExpectEachFieldAtItsPlace(fields, Bytes(initialRecord));
}

TEST(AnalysisSettings, KeepWhatAnOlderRecordLacks) {
  ExpectSampleReadFromAllVersions(fields);
}

/// The four fields after a read over 5, 6, 7, 8.
std::vector<long> FieldsRead(const std::string& hex, int taskVersion, int controlVersion) {
  RecordFile file;
  file.Append(Bytes(hex));
  CANLControl block;
  block.m_nRandomMethod = 5;
  block.m_nRandomPoints = 6;
  block.m_nSavePoints = 7;
  block.m_nRandomSeed = 8;
  block.Read(file.Pod(), taskVersion, controlVersion);
  return {block.m_nRandomMethod, block.m_nRandomPoints, block.m_nSavePoints, block.m_nRandomSeed};
}

TEST(AnalysisSettings, OfEachStageOfTheTasksRecord) {
  using Values = std::vector<long>;
  EXPECT_EQ(FieldsRead("", 0, 0), (Values{5, 6, 7, 8}));
  EXPECT_EQ(FieldsRead("", 9, 0), (Values{5, 6, 7, 8}));
  EXPECT_EQ(FieldsRead("01 00 00 00 02 00 00 00", 10, 0), (Values{1, 2, 7, 8}));
  EXPECT_EQ(FieldsRead("01 00 00 00 02 00 00 00", 14, 0), (Values{1, 2, 7, 8}));
  EXPECT_EQ(FieldsRead("01 00 00 00 02 00 00 00 03 00 00 00", 15, 0), (Values{1, 2, 3, 8}));
  EXPECT_EQ(FieldsRead("01 00 00 00 02 00 00 00 03 00 00 00", 17, 0), (Values{1, 2, 3, 8}));
  EXPECT_EQ(FieldsRead("01 00 00 00 02 00 00 00 03 00 00 00 04 00 00 00", 18, 0),
            (Values{1, 2, 3, 4}));
  EXPECT_EQ(FieldsRead("01 00 00 00 02 00 00 00 03 00 00 00 04 00 00 00", 22, 0),
            (Values{1, 2, 3, 4}));
}

TEST(AnalysisSettings, OfEachStageOfTheControlsRecord) {
  using Values = std::vector<long>;
  EXPECT_EQ(FieldsRead("", 0, 6), (Values{5, 6, 7, 8}));
  EXPECT_EQ(FieldsRead("01 00 00 00 02 00 00 00", 0, 7), (Values{1, 2, 7, 8}));
  EXPECT_EQ(FieldsRead("01 00 00 00 02 00 00 00", 0, 11), (Values{1, 2, 7, 8}));
  EXPECT_EQ(FieldsRead("01 00 00 00 02 00 00 00 03 00 00 00", 0, 12), (Values{1, 2, 3, 8}));
  EXPECT_EQ(FieldsRead("01 00 00 00 02 00 00 00 03 00 00 00", 0, 14), (Values{1, 2, 3, 8}));
  EXPECT_EQ(FieldsRead("01 00 00 00 02 00 00 00 03 00 00 00 04 00 00 00", 0, 15),
            (Values{1, 2, 3, 4}));
  EXPECT_EQ(FieldsRead("01 00 00 00 02 00 00 00 03 00 00 00 04 00 00 00", 0, 18),
            (Values{1, 2, 3, 4}));
}

TEST(AnalysisSettings, CutShortAreNotRead) {
  ExpectCutRecordsToFail(fields);
}

TEST(AnalysisSettings, NeedADataFile) {
  ExpectADataFileToBeNeeded<CANLControl>();
}

// ---- The check ----

bool CheckWithARandomVariable(const CANLControl& block) {
  return block.CheckParams(false, false, 0, 0, 0, 1);
}

TEST(AnalysisCheck, PassesANewBlock) {
  ClearLog();
  EXPECT_TRUE(CheckWithARandomVariable(CANLControl()));
  EXPECT_TRUE(Log().empty()) << PrintedLog();
}

TEST(AnalysisCheck, ReportsEachRuleByItself) {
  const std::vector<RuleCase<CANLControl>> rules{
      {&CANLControl::m_nRandomMethod,
       {0, 1},
       {{-1, ""}, {2, ""}, {3, ""}, {4, ""}, {5, ""}},
       "(Design Control): The random analysis method should be either\n",
       "     Monte Carlo Sampling or Latin Hypercube Sampling.\n\n"},
      RandomPointsRule<CANLControl>(),
      SavePointsRule<CANLControl>(),
  };
  ExpectRules(CANLControl(), rules, CheckWithARandomVariable);
}

TEST(AnalysisCheck, HoldsForLegalPointsOfEitherMethod) {
  CANLControl block;
  block.m_nRandomMethod = 1;
  ExpectRules(block, {RandomPointsRule<CANLControl>()}, CheckWithARandomVariable);
}

CANLControl AllWrong() {
  CANLControl block;
  block.m_nRandomMethod = 2;
  block.m_nRandomPoints = 0;
  block.m_nSavePoints = -7;
  block.m_nRandomSeed = -1;
  return block;
}

TEST(AnalysisCheck, ReportsAllFaultsInOrder) {
  ClearLog();
  EXPECT_FALSE(CheckWithARandomVariable(AllWrong()));
  const std::vector<LogEntry> expected{
      {"LError", "(Design Control): The random analysis method should be either\n", "", 0},
      {"LPrint", "     Monte Carlo Sampling or Latin Hypercube Sampling.\n\n", "", 0},
      {"LError", "(Design Control): The number of simulation points for a random analysis\n", "",
       0},
      {"LPrint", "     should be greater than 0.\n\n", "", 0},
      {"LError", "(Design Control): The save simulation points flag (-7)", "", 0},
      {"LPrint", "     should be either FALSE=0 or TRUE=1.\n\n", "", 0},
  };
  EXPECT_EQ(Log(), expected);
}

TEST(AnalysisCheck, LooksAtNothingWithoutARandomVariable) {
  ClearLog();
  for (const int nRandom : {0, -1}) {
    EXPECT_TRUE(AllWrong().CheckParams(false, false, 1, 2, 3, nRandom));
  }
  EXPECT_TRUE(Log().empty()) << PrintedLog();
}

TEST(AnalysisCheck, TakesNoNoticeOfItsOtherArguments) {
  for (const bool flag : {false, true}) {
    ClearLog();
    EXPECT_FALSE(AllWrong().CheckParams(flag, !flag, -1, 0, 5, 2));
    EXPECT_EQ(Log().size(), 6U);
    EXPECT_TRUE(CANLControl().CheckParams(flag, flag, -1, 0, 5, 2));
    EXPECT_EQ(Log().size(), 6U);
  }
}

}  // namespace
