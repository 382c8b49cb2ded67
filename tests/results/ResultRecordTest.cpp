#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <string>

#include "results/Result.h"
#include "store/KestErr.h"
#include "tests/results/ResultFields.h"
#include "tests/support/Bytes.h"
#include "tests/support/RawFile.h"
#include "tests/support/StoredRecord.h"
#include "tests/support/Study.h"

// The record of a result, of this version and of older ones.

namespace {

// The pieces of FilledResult's record.
const std::string filledPoints = "07 00 00 00 02 01 00 00 ";  // task, points
const std::string filledTotal = "03 01 00 00 ";               // since version 6
const std::string filledCalls = "FE FF FF FF 0B 00 00 00 ";   // the engine's word, analyses
const std::string filledRequests = "0C 00 00 00 ";            // since version 5
const std::string filledRun =
    "0D 00 00 00 0E 00 00 00 "              // best iteration and sub-iteration
    "C0 04 00 00 00 00 00 00 "              // best objective
    "3F C0 00 00 00 00 00 00 "              // worst constraint
    "03 00 00 00 65 6E 64 "                 // last message
    "02 00 00 00 0F 00 00 00 10 00 00 00 "  // status, stop code, best sub-task
    "11 00 00 00 12 00 00 00 "              // the engine's words
    "03 00 00 00 4D 6F 6E "                 // started
    "04 00 00 00 54 75 65 21 "              // stopped
    "3F F0 00 00 00 00 00 00 40 00 00 00 00 00 00 00 40 08 00 00 00 00 00 00 "
    "40 10 00 00 00 00 00 00 40 14 00 00 00 00 00 00 40 18 00 00 00 00 00 00 "
    "40 1C 00 00 00 00 00 00 40 20 00 00 00 00 00 00 40 22 00 00 00 00 00 00 "
    "40 24 00 00 00 00 00 00 40 26 00 00 00 00 00 00 40 28 00 00 00 00 00 00 "
    "40 2A 00 00 00 00 00 00 40 2C 00 00 00 00 00 00 40 2E 00 00 00 00 00 00 "
    "40 30 00 00 00 00 00 00 40 31 00 00 00 00 00 00 40 32 00 00 00 00 00 00 "
    "40 33 00 00 00 00 00 00 40 34 00 00 00 00 00 00 "
    "03 00 00 00 13 00 00 00 EC FF FF FF 15 00 00 00 "
    "02 00 00 00 3F B9 99 99 99 99 99 9A BF F0 00 00 00 00 00 00 ";
const std::string filledThird = "01 00 00 00 16 00 00 00 ";  // since version 7
const std::string filledWord = "17 00 00 00 ";               // since version 8
const std::string filledRecord = "08 00 00 00 " + filledPoints + filledTotal + filledCalls +
                                 filledRequests + filledRun + filledThird + filledWord;

class ResultRecords : public testing::Test {
 protected:
  long Store(const std::string& record) { return StoreRecord(study.Pod(), 11000, record); }

  CResult ReadNew(const std::string& record) {
    CResult result(study.Pod());
    result.Read(Store(record));
    return result;
  }
  /// Reads the record into an object that holds something else in every field.
  CResult ReadOver(const std::string& record) {
    CResult result(study.Pod());
    result.m_nID = result.m_nNumPoints = result.m_nTotalPoints = result.m_nEngineWord1 = 70;
    result.m_nAnalysisCalls = result.m_nGradientRequests = result.m_nBestIter = 71;
    result.m_nBestSubIter = result.m_nRunStatus = result.m_nStopCode = result.m_nBestSubTask = 72;
    result.m_nEngineWord2 = result.m_nEngineWord3 = result.m_nEngineWord4 = 73;
    result.m_fBestObjective = result.m_fWorstConstraint = 74.0;
    result.m_strLastMessage = result.m_strStarted = result.m_strStopped = "before";
    result.m_fTimes.fill(75.0);
    result.m_EngineArray1 = result.m_EngineArray3 = {76, 77, 78, 79};
    result.m_EngineArray2 = {80.0, 81.0, 82.0};
    result.Read(Store(record));
    return result;
  }
  std::string Stored(CResult& result) {
    result.PutObject();
    return Hex(StoredRecord(result));
  }

  Study study;
};

// ---- This version ----

TEST_F(ResultRecords, OfDefaultsByteForByte) {
  CResult result(study.Pod());
  result.m_nID = 1;
  EXPECT_EQ(result.ObjectLength(), 236U + 3 * 5 + 3 * 4);
  EXPECT_EQ(Stored(result), Hex(Bytes("08 00 00 00 01 00 00 00 00 00 00 00 00 00 00 00 FF FF FF FF "
                                      "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
                                      "7F EF FF FF FF FF FF FF FF EF FF FF FF FF FF FF "
                                      "01 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
                                      "00 00 00 00 FF FF FF FF 01 00 00 00 00 01 00 00 00 00") +
                                std::string(20 * 8 + 3 * 4 + 4, '\0')));
}

TEST_F(ResultRecords, OfAllFieldsByteForByte) {
  CResult result = FilledResult(study.Pod());
  EXPECT_EQ(result.ObjectLength(), 236U + 7 + 7 + 8 + 3 * 4 + 4 * 4 + 2 * 8);
  EXPECT_EQ(Stored(result), Hex(Bytes(filledRecord)));
}

TEST_F(ResultRecords, LieBehindTheirHeader) {
  CResult result = FilledResult(study.Pod());
  result.PutObject();
  const long address = result.ObjectAddress();
  study.Close();
  EXPECT_EQ(Hex(ObjectsOf(ReadRawFile(study.DataPath()), 11000).at(address)),
            Hex(Bytes("F8 2A 00 00" + HexWord(address) + filledRecord)));
}

TEST_F(ResultRecords, OfVersionEightAreReadInFull) {
  ExpectSameFields(ReadNew(Bytes(filledRecord)), FilledResult(nullptr));
  const CResult result = ReadOver(Bytes(filledRecord));
  ExpectSameFields(result, FilledResult(nullptr));
  EXPECT_GT(result.ObjectAddress(), 0);
}

// ---- Other versions ----

/// The filled record as an older version holds it.
std::string RecordOf(int version) {
  std::string hex = HexWord(version) + filledPoints;
  if (version >= 6) hex += filledTotal;
  hex += filledCalls;
  if (version >= 5) hex += filledRequests;
  hex += filledRun;
  if (version >= 7) hex += filledThird;
  return Bytes(hex);
}

TEST_F(ResultRecords, OfVersionSevenLackTheLastWord) {
  CResult expected = FilledResult(nullptr);
  expected.m_nEngineWord4 = 0;
  ExpectSameFields(ReadNew(RecordOf(7)), expected);
  expected.m_nEngineWord4 = 73;
  ExpectSameFields(ReadOver(RecordOf(7)), expected);
}

TEST_F(ResultRecords, OfVersionSixLackTheThirdArrayToo) {
  CResult expected = FilledResult(nullptr);
  expected.m_nEngineWord4 = 0;
  expected.m_EngineArray3.resize(0);
  ExpectSameFields(ReadNew(RecordOf(6)), expected);
  expected.m_nEngineWord4 = 73;
  expected.m_EngineArray3 = {76, 77, 78, 79};
  ExpectSameFields(ReadOver(RecordOf(6)), expected);
}

TEST_F(ResultRecords, OfVersionFiveLackTheTotalOfPointsToo) {
  const CResult result = ReadNew(RecordOf(5));
  EXPECT_EQ(result.m_nTotalPoints, 0);
  EXPECT_EQ(result.m_EngineArray3.size(), 0U);
  EXPECT_EQ(result.m_nGradientRequests, 12);
  CResult expected = FilledResult(nullptr);
  expected.m_nEngineWord4 = expected.m_nTotalPoints = 0;
  expected.m_EngineArray3.resize(0);
  ExpectSameFields(result, expected);
}

TEST_F(ResultRecords, OfVersionFourLackTheGradientRequestsToo) {
  CResult expected = FilledResult(nullptr);
  expected.m_nEngineWord4 = expected.m_nTotalPoints = expected.m_nGradientRequests = 0;
  expected.m_EngineArray3.resize(0);
  ExpectSameFields(ReadNew(RecordOf(4)), expected);
  expected.m_nEngineWord4 = 73;
  expected.m_nTotalPoints = 70;
  expected.m_nGradientRequests = 71;
  expected.m_EngineArray3 = {76, 77, 78, 79};
  ExpectSameFields(ReadOver(RecordOf(4)), expected);
}

TEST_F(ResultRecords, OfOlderVersionsAreUpgradedByTheNextWrite) {
  CResult result = ReadNew(RecordOf(4));
  EXPECT_EQ(Stored(result), Hex(Bytes("08 00 00 00" + filledPoints + "00 00 00 00" + filledCalls +
                                      "00 00 00 00" + filledRun + "00 00 00 00 00 00 00 00")));
}

TEST_F(ResultRecords, OfANewerVersionAreReadAsFarAsKnown) {
  ExpectSameFields(ReadOver(Bytes("09" + filledRecord.substr(2) + "FF FF FF FF 01")),
                   FilledResult(nullptr));
}

// ---- Every field ----

struct Change {
  std::function<void(CResult&)> make;
  std::size_t offset;  ///< in FilledResult's record, the version counted in
  const char* bytes;
};

const char* const five = "05 00 00 00";
const char* const minusHalf = "BF E0 00 00 00 00 00 00";

const Change changes[] = {
    {[](CResult& result) { result.m_nID = 5; }, 4, five},
    {[](CResult& result) { result.m_nNumPoints = 5; }, 8, five},
    {[](CResult& result) { result.m_nTotalPoints = 5; }, 12, five},
    {[](CResult& result) { result.m_nEngineWord1 = 5; }, 16, five},
    {[](CResult& result) { result.m_nAnalysisCalls = 5; }, 20, five},
    {[](CResult& result) { result.m_nGradientRequests = 5; }, 24, five},
    {[](CResult& result) { result.m_nBestIter = 5; }, 28, five},
    {[](CResult& result) { result.m_nBestSubIter = 5; }, 32, five},
    {[](CResult& result) { result.m_fBestObjective = -0.5; }, 36, minusHalf},
    {[](CResult& result) { result.m_fWorstConstraint = -0.5; }, 44, minusHalf},
    {[](CResult& result) { result.m_strLastMessage = "enD"; }, 58, "44"},
    {[](CResult& result) { result.m_nRunStatus = 5; }, 59, five},
    {[](CResult& result) { result.m_nStopCode = 5; }, 63, five},
    {[](CResult& result) { result.m_nBestSubTask = 5; }, 67, five},
    {[](CResult& result) { result.m_nEngineWord2 = 5; }, 71, five},
    {[](CResult& result) { result.m_nEngineWord3 = 5; }, 75, five},
    {[](CResult& result) { result.m_strStarted = "moN"; }, 83, "6D 6F 4E"},
    {[](CResult& result) { result.m_strStopped = "Tue?"; }, 93, "3F"},
    {[](CResult& result) { result.m_fTimes[0] = -0.5; }, 94, minusHalf},
    {[](CResult& result) { result.m_fTimes[1] = -0.5; }, 102, minusHalf},
    {[](CResult& result) { result.m_fTimes[7] = -0.5; }, 150, minusHalf},
    {[](CResult& result) { result.m_fTimes[8] = -0.5; }, 158, minusHalf},
    {[](CResult& result) { result.m_fTimes[9] = -0.5; }, 166, minusHalf},
    {[](CResult& result) { result.m_fTimes[10] = -0.5; }, 174, minusHalf},
    {[](CResult& result) { result.m_fTimes[19] = -0.5; }, 246, minusHalf},
    {[](CResult& result) { result.m_EngineArray1[2] = 5; }, 266, five},
    {[](CResult& result) { result.m_EngineArray2[1] = -0.5; }, 282, minusHalf},
    {[](CResult& result) { result.m_EngineArray3[0] = 5; }, 294, five},
    {[](CResult& result) { result.m_nEngineWord4 = 5; }, 298, five},
};

TEST_F(ResultRecords, HoldEachFieldAtItsPlaceAlone) {
  const std::string filled = Bytes(filledRecord);
  for (const Change& change : changes) {
    SCOPED_TRACE(change.offset);
    CResult result = FilledResult(study.Pod());
    change.make(result);
    const std::string bytes = Bytes(change.bytes);
    const std::string expected = std::string(filled).replace(change.offset, bytes.size(), bytes);
    ASSERT_NE(expected, filled);
    EXPECT_EQ(Stored(result), Hex(expected));
    ExpectSameFields(ReadOver(expected), result);
  }
}

// ---- Any contents ----

TEST_F(ResultRecords, AreAsLongAsTheirObjectLengthSays) {
  std::mt19937 random(711);
  for (int round = 1; round <= 200; ++round) {
    SCOPED_TRACE(round);
    CResult result = FilledResult(study.Pod());
    result.m_nID = round;
    std::size_t length = 236 + 3 * 4;
    for (std::string* text :
         {&result.m_strLastMessage, &result.m_strStarted, &result.m_strStopped}) {
      text->assign(random() % 50, static_cast<char>(1 + random() % 255));
      length += 4 + std::max<std::size_t>(1, text->size());
    }
    for (std::valarray<int>* numbers : {&result.m_EngineArray1, &result.m_EngineArray3}) {
      numbers->resize(random() % 30);
      for (int& number : *numbers) number = static_cast<int>(random());
      length += 4 * numbers->size();
    }
    result.m_EngineArray2.resize(random() % 30);
    for (double& value : result.m_EngineArray2) {
      value = std::normal_distribution<double>(0.0, 1e9)(random);
    }
    for (vbFLOAT64& time : result.m_fTimes) time = static_cast<double>(random()) / 7;
    length += 8 * result.m_EngineArray2.size();
    EXPECT_EQ(result.ObjectLength(), length);
    result.PutObject();
    EXPECT_EQ(StoredRecord(result).size(), length);
    CResult stored(study.Pod());
    stored.m_nID = round;
    ASSERT_TRUE(stored.GetObject());
    ExpectSameFields(stored, result);
  }
}

// ---- Damage ----

TEST_F(ResultRecords, ThatEndTooEarlyAreCorrupt) {
  const std::string record = Bytes(filledRecord);
  for (std::size_t size = 0; size < record.size(); ++size) {
    SCOPED_TRACE(size);
    EXPECT_THROW(ReadNew(record.substr(0, size)), CFileCorrupt);
  }
}

TEST_F(ResultRecords, WithCountsThatTheyCannotHoldAreCorrupt) {
  const std::size_t places[] = {52, 79, 86, 254, 270, 290};  // of texts, then of arrays
  for (const std::size_t place : places) {
    for (const char* count : {"FF 00 00 00", "00 00 00 20", "FF FF FF 7F", "FF FF FF FF"}) {
      SCOPED_TRACE(std::to_string(place) + " " + count);
      EXPECT_THROW(ReadNew(Bytes(filledRecord).replace(place, 4, Bytes(count))), CFileCorrupt);
    }
  }
}

TEST_F(ResultRecords, OfAnotherClassAreRefused) {
  const long address = StoreRecord(study.Pod(), 3000, Bytes(filledRecord));
  CResult result(study.Pod());
  EXPECT_THROW(result.Read(address), CBadClassID);
  ExpectSameFields(result, CResult(study.Pod()));
}

TEST_F(ResultRecords, WithAWrongChecksumAreRefused) {
  CResult result = FilledResult(study.Pod());
  result.PutObject();
  study.Close();
  PatchBytes(study.DataPath(), result.ObjectAddress() + 30, "x");
  study.Open();
  CResult damaged = FilledResult(study.Pod());
  EXPECT_THROW(damaged.GetObject(), CChecksum);
}

}  // namespace
