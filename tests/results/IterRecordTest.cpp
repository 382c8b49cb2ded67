#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <string>

#include "results/Iter.h"
#include "store/KestErr.h"
#include "tests/results/IterFields.h"
#include "tests/support/Bytes.h"
#include "tests/support/RawFile.h"
#include "tests/support/StoredRecord.h"
#include "tests/support/Study.h"

// The record of an iteration, of this version and of the older one.

namespace {

// The pieces of FilledIter's record; the Pareto front is there since version 2.
const std::string filledWords =
    "07 00 00 00 02 01 00 00 03 00 00 00 04 00 00 00 FB FF FF FF "
    "C0 04 00 00 00 00 00 00 3F C0 00 00 00 00 00 00 "
    "3F F0 00 00 00 00 00 00 3F B9 99 99 99 99 99 9A ";
const std::string filledFront =
    "03 00 00 00 13 00 00 00 EC FF FF FF 15 00 00 00 "
    "02 00 00 00 40 10 00 00 00 00 00 00 40 14 00 00 00 00 00 00 ";
const std::string filledRecord = "02 00 00 00 " + filledWords + filledFront;

class IterRecords : public testing::Test {
 protected:
  long Store(const std::string& record) { return StoreRecord(study.Pod(), 13000, record); }

  CIter ReadNew(const std::string& record) {
    CIter iter(study.Pod());
    iter.Read(Store(record));
    return iter;
  }
  /// Reads the record into an object that holds something else in every field.
  CIter ReadOver(const std::string& record) {
    CIter iter = IterOf(70, 71, 72, study.Pod());
    iter.m_nThisPoint = iter.m_nBestPoint = 73;
    iter.m_fBestObjective = iter.m_fBestConstraint = 74.0;
    iter.m_fThisObjective = iter.m_fThisConstraint = 75.0;
    iter.m_ParetoPoints = {76, 77, 78, 79};
    iter.m_ParetoValues = {80.0};
    iter.Read(Store(record));
    return iter;
  }
  std::string Stored(CIter& iter) {
    iter.PutObject();
    return Hex(StoredRecord(iter));
  }

  Study study;
};

TEST_F(IterRecords, OfDefaultsByteForByte) {
  CIter iter(study.Pod());
  iter.m_nTaskID = 1;
  EXPECT_EQ(iter.ObjectLength(), 64U);
  EXPECT_EQ(Stored(iter), Hex(Bytes("02 00 00 00 01 00 00 00 00 00 00 00 00 00 00 00 "
                                    "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
                                    "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
                                    "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00")));
}

TEST_F(IterRecords, OfAllFieldsByteForByte) {
  CIter iter = FilledIter(study.Pod());
  EXPECT_EQ(iter.ObjectLength(), 64U + 4 * 3 + 8 * 2);
  EXPECT_EQ(Stored(iter), Hex(Bytes(filledRecord)));
}

TEST_F(IterRecords, LieBehindTheirHeader) {
  CIter iter = FilledIter(study.Pod());
  iter.PutObject();
  const long address = iter.ObjectAddress();
  study.Close();
  EXPECT_EQ(Hex(ObjectsOf(ReadRawFile(study.DataPath()), 13000).at(address)),
            Hex(Bytes("C8 32 00 00" + HexWord(address) + filledRecord)));
}

TEST_F(IterRecords, OfVersionTwoAreReadInFull) {
  ExpectSameFields(ReadNew(Bytes(filledRecord)), FilledIter(nullptr));
  const CIter iter = ReadOver(Bytes(filledRecord));
  ExpectSameFields(iter, FilledIter(nullptr));
  EXPECT_GT(iter.ObjectAddress(), 0);
}

TEST_F(IterRecords, OfVersionTwoWithoutAFrontEmptyTheArrays) {
  const CIter iter = ReadOver(Bytes("02 00 00 00" + filledWords + "00 00 00 00 00 00 00 00"));
  EXPECT_EQ(iter.m_ParetoPoints.size(), 0U);
  EXPECT_EQ(iter.m_ParetoValues.size(), 0U);
}

TEST_F(IterRecords, OfVersionOneHaveNoFront) {
  const std::string record = Bytes("01 00 00 00" + filledWords);
  CIter expected = FilledIter(nullptr);
  expected.m_ParetoPoints.resize(0);
  expected.m_ParetoValues.resize(0);
  ExpectSameFields(ReadNew(record), expected);
  expected.m_ParetoPoints = {76, 77, 78, 79};
  expected.m_ParetoValues = {80.0};
  ExpectSameFields(ReadOver(record), expected);
}

TEST_F(IterRecords, OfVersionOneAreUpgradedByTheNextWrite) {
  CIter iter = ReadNew(Bytes("01 00 00 00" + filledWords));
  EXPECT_EQ(Stored(iter), Hex(Bytes("02 00 00 00" + filledWords + "00 00 00 00 00 00 00 00")));
}

TEST_F(IterRecords, OfANewerVersionAreReadAsFarAsKnown) {
  ExpectSameFields(ReadOver(Bytes("03" + filledRecord.substr(2) + "FF FF FF FF 01")),
                   FilledIter(nullptr));
}

TEST_F(IterRecords, HoldEachFieldAtItsPlaceAlone) {
  struct Change {
    std::function<void(CIter&)> make;
    std::size_t offset;  // the version counted in
    const char* bytes;
  };
  const char* const five = "05 00 00 00";
  const char* const minusHalf = "BF E0 00 00 00 00 00 00";
  const Change changes[] = {
      {[](CIter& iter) { iter.m_nTaskID = 5; }, 4, five},
      {[](CIter& iter) { iter.m_nIter = 5; }, 8, five},
      {[](CIter& iter) { iter.m_nSubIter = 5; }, 12, five},
      {[](CIter& iter) { iter.m_nThisPoint = 5; }, 16, five},
      {[](CIter& iter) { iter.m_nBestPoint = 5; }, 20, five},
      {[](CIter& iter) { iter.m_fBestObjective = -0.5; }, 24, minusHalf},
      {[](CIter& iter) { iter.m_fBestConstraint = -0.5; }, 32, minusHalf},
      {[](CIter& iter) { iter.m_fThisObjective = -0.5; }, 40, minusHalf},
      {[](CIter& iter) { iter.m_fThisConstraint = -0.5; }, 48, minusHalf},
      {[](CIter& iter) { iter.m_ParetoPoints[0] = 5; }, 60, five},
      {[](CIter& iter) { iter.m_ParetoPoints[2] = 5; }, 68, five},
      {[](CIter& iter) { iter.m_ParetoValues[0] = -0.5; }, 76, minusHalf},
      {[](CIter& iter) { iter.m_ParetoValues[1] = -0.5; }, 84, minusHalf},
  };
  const std::string filled = Bytes(filledRecord);
  for (const Change& change : changes) {
    SCOPED_TRACE(change.offset);
    CIter iter = FilledIter(study.Pod());
    change.make(iter);
    const std::string bytes = Bytes(change.bytes);
    const std::string expected = std::string(filled).replace(change.offset, bytes.size(), bytes);
    ASSERT_NE(expected, filled);
    EXPECT_EQ(Stored(iter), Hex(expected));
    ExpectSameFields(ReadOver(expected), iter);
  }
}

TEST_F(IterRecords, AreAsLongAsTheirObjectLengthSays) {
  std::mt19937 random(72);
  for (int round = 0; round < 200; ++round) {
    SCOPED_TRACE(round);
    CIter iter = IterOf(1 + round, static_cast<int>(random() >> 1), static_cast<int>(random() >> 1),
                        study.Pod());
    iter.m_fThisObjective = std::normal_distribution<double>(0.0, 1e9)(random);
    iter.m_ParetoPoints.resize(random() % 30);
    for (int& point : iter.m_ParetoPoints) point = static_cast<int>(random());
    iter.m_ParetoValues.resize(random() % 30);
    for (double& value : iter.m_ParetoValues) value = static_cast<double>(random()) / 7;
    const std::size_t length = 64 + 4 * iter.m_ParetoPoints.size() + 8 * iter.m_ParetoValues.size();
    EXPECT_EQ(iter.ObjectLength(), length);
    iter.PutObject();
    EXPECT_EQ(StoredRecord(iter).size(), length);
    CIter stored(study.Pod());
    stored.m_nTaskID = iter.m_nTaskID;
    stored.m_nIter = iter.m_nIter;
    stored.m_nSubIter = iter.m_nSubIter;
    ASSERT_TRUE(stored.GetObject());
    ExpectSameFields(stored, iter);
  }
}

// ---- Damage ----

TEST_F(IterRecords, ThatEndTooEarlyAreCorrupt) {
  const std::string record = Bytes(filledRecord);
  for (std::size_t size = 0; size < record.size(); ++size) {
    SCOPED_TRACE(size);
    EXPECT_THROW(ReadNew(record.substr(0, size)), CFileCorrupt);
  }
}

TEST_F(IterRecords, WithCountsThatTheyCannotHoldAreCorrupt) {
  for (const std::size_t place : {56U, 72U}) {
    for (const char* count : {"1F 00 00 00", "00 00 00 20", "FF FF FF 7F", "FF FF FF FF"}) {
      SCOPED_TRACE(std::to_string(place) + " " + count);
      EXPECT_THROW(ReadNew(Bytes(filledRecord).replace(place, 4, Bytes(count))), CFileCorrupt);
    }
  }
}

TEST_F(IterRecords, OfAnotherClassAreRefused) {
  const long address = StoreRecord(study.Pod(), 12000, Bytes(filledRecord));
  CIter iter(study.Pod());
  EXPECT_THROW(iter.Read(address), CBadClassID);
  ExpectSameFields(iter, CIter(study.Pod()));
}

TEST_F(IterRecords, WithAWrongChecksumAreRefused) {
  CIter iter = FilledIter(study.Pod());
  iter.PutObject();
  study.Close();
  PatchBytes(study.DataPath(), iter.ObjectAddress() + 30, "x");
  study.Open();
  CIter damaged = FilledIter(study.Pod());
  EXPECT_THROW(damaged.GetObject(), CChecksum);
}

}  // namespace
