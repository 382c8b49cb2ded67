#include <gtest/gtest.h>

#include <random>
#include <string>

#include "results/DPoint.h"
#include "store/KestErr.h"
#include "tests/results/PointFields.h"
#include "tests/support/Bytes.h"
#include "tests/support/RawFile.h"
#include "tests/support/StoredRecord.h"
#include "tests/support/Study.h"

// The record of a design point, of this version and of the older one.

namespace {

// The pieces of FilledPoint's record; the flag stands between them since version 2.
const std::string filledKey = "07 00 00 00 02 01 00 00 ";
const std::string filledFlag = "FE FF FF FF ";
const std::string filledValues =
    "03 00 00 00 3F F0 00 00 00 00 00 00 C0 00 00 00 00 00 00 00 3F B9 99 99 99 99 99 9A "
    "01 00 00 00 40 08 00 00 00 00 00 00 "
    "02 00 00 00 40 10 00 00 00 00 00 00 40 14 00 00 00 00 00 00 "
    "01 00 00 00 40 18 00 00 00 00 00 00 "
    "02 00 00 00 40 1C 00 00 00 00 00 00 40 20 00 00 00 00 00 00 "
    "01 00 00 00 40 22 00 00 00 00 00 00 "
    "02 00 00 00 40 24 00 00 00 00 00 00 40 26 00 00 00 00 00 00 ";
const std::string filledRecord = "02 00 00 00 " + filledKey + filledFlag + filledValues;

class PointRecords : public testing::Test {
 protected:
  long Store(const std::string& record) { return StoreRecord(study.Pod(), 12000, record); }

  CDPoint ReadNew(const std::string& record) {
    CDPoint point(study.Pod());
    point.Read(Store(record));
    return point;
  }
  /// Reads the record into an object that holds something else in every field.
  CDPoint ReadOver(const std::string& record) {
    CDPoint point =
        PointOf(70, 71, 72, {{{1, 2, 3, 4}, {5}, {6}, {7}, {8, 9}, {10}, {11}}}, study.Pod());
    point.Read(Store(record));
    return point;
  }
  std::string Stored(CDPoint& point) {
    point.PutObject();
    return Hex(StoredRecord(point));
  }

  Study study;
};

TEST_F(PointRecords, OfNoValuesByteForByte) {
  CDPoint point(study.Pod());
  point.m_nTaskID = 1;
  EXPECT_EQ(point.ObjectLength(), 44U);
  EXPECT_EQ(Stored(point), Hex(Bytes("02 00 00 00 01 00 00 00 00 00 00 00 00 00 00 00 "
                                     "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
                                     "00 00 00 00 00 00 00 00 00 00 00 00")));
}

TEST_F(PointRecords, OfAllFieldsByteForByte) {
  CDPoint point = FilledPoint(study.Pod());
  EXPECT_EQ(point.ObjectLength(), 44U + 8 * 12);
  EXPECT_EQ(Stored(point), Hex(Bytes(filledRecord)));
}

TEST_F(PointRecords, LieBehindTheirHeader) {
  CDPoint point = FilledPoint(study.Pod());
  point.PutObject();
  const long address = point.ObjectAddress();
  study.Close();
  EXPECT_EQ(Hex(ObjectsOf(ReadRawFile(study.DataPath()), 12000).at(address)),
            Hex(Bytes("E0 2E 00 00" + HexWord(address) + filledRecord)));
}

TEST_F(PointRecords, OfVersionTwoAreReadInFull) {
  ExpectSameFields(ReadNew(Bytes(filledRecord)), FilledPoint(nullptr));
  const CDPoint point = ReadOver(Bytes(filledRecord));
  ExpectSameFields(point, FilledPoint(nullptr));
  EXPECT_GT(point.ObjectAddress(), 0);
}

TEST_F(PointRecords, OfVersionTwoWithoutValuesEmptyTheArrays) {
  ExpectSameFields(ReadOver(Bytes("02 00 00 00" + filledKey + filledFlag) + std::string(28, '\0')),
                   PointOf(7, 258, -2, {}));
}

TEST_F(PointRecords, OfVersionOneHaveNoFlag) {
  const std::string record = Bytes("01 00 00 00" + filledKey + filledValues);
  CDPoint expected = FilledPoint(nullptr);
  expected.m_nPointFlag = 0;
  ExpectSameFields(ReadNew(record), expected);
  expected.m_nPointFlag = 72;
  ExpectSameFields(ReadOver(record), expected);
}

TEST_F(PointRecords, OfVersionOneAreUpgradedByTheNextWrite) {
  CDPoint point = ReadNew(Bytes("01 00 00 00" + filledKey + filledValues));
  EXPECT_EQ(Stored(point), Hex(Bytes("02 00 00 00" + filledKey + "00 00 00 00" + filledValues)));
}

TEST_F(PointRecords, OfANewerVersionAreReadAsFarAsKnown) {
  ExpectSameFields(ReadOver(Bytes("03" + filledRecord.substr(2) + "FF FF FF FF 01")),
                   FilledPoint(nullptr));
}

TEST_F(PointRecords, HoldEachWordAtItsPlaceAlone) {
  struct Change {
    vbINT32 CDPoint::*field;
    std::size_t offset;  // the version counted in
  };
  for (const Change& change : {Change{&CDPoint::m_nTaskID, 4}, Change{&CDPoint::m_nPointID, 8},
                               Change{&CDPoint::m_nPointFlag, 12}}) {
    SCOPED_TRACE(change.offset);
    CDPoint point = FilledPoint(study.Pod());
    point.*change.field = 0x01020304;
    const std::string expected =
        Bytes(filledRecord).replace(change.offset, 4, Bytes("04 03 02 01"));
    EXPECT_EQ(Stored(point), Hex(expected));
    ExpectSameFields(ReadOver(expected), point);
  }
}

TEST_F(PointRecords, HoldEachArrayAtItsPlaceAlone) {
  const std::size_t places[] = {20, 48, 60, 80, 92, 112, 124};  // of the first values
  for (std::size_t i = 0; i < 7; ++i) {
    SCOPED_TRACE(i);
    CDPoint point = FilledPoint(study.Pod());
    (*ArraysOf(point)[i])[0] = -0.5;
    const std::string expected =
        Bytes(filledRecord).replace(places[i], 8, Bytes("BF E0 00 00 00 00 00 00"));
    EXPECT_EQ(Stored(point), Hex(expected));
    ExpectSameFields(ReadOver(expected), point);
  }
}

TEST_F(PointRecords, AreAsLongAsTheirObjectLengthSays) {
  std::mt19937 random(73);
  for (int round = 0; round < 200; ++round) {
    SCOPED_TRACE(round);
    CDPoint point = PointOf(1 + round, static_cast<int>(random() >> 1), static_cast<int>(random()),
                            {}, study.Pod());
    unsigned long length = 44;
    for (std::valarray<double>* values : ArraysOf(point)) {
      values->resize(random() % 30);
      for (double& value : *values) value = std::normal_distribution<double>(0.0, 1e9)(random);
      length += 8 * values->size();
    }
    EXPECT_EQ(point.ObjectLength(), length);
    point.PutObject();
    EXPECT_EQ(StoredRecord(point).size(), length);
    CDPoint stored =
        PointOf(1 + round, static_cast<int>(long{point.m_nPointID}), 0, {}, study.Pod());
    ASSERT_TRUE(stored.GetObject());
    ExpectSameFields(stored, point);
  }
}

// ---- Damage ----

TEST_F(PointRecords, ThatEndTooEarlyAreCorrupt) {
  const std::string record = Bytes(filledRecord);
  for (std::size_t size = 0; size < record.size(); ++size) {
    SCOPED_TRACE(size);
    EXPECT_THROW(ReadNew(record.substr(0, size)), CFileCorrupt);
  }
}

TEST_F(PointRecords, WithCountsThatTheyCannotHoldAreCorrupt) {
  const std::size_t places[] = {16, 44, 56, 76, 88, 108, 120};
  for (const std::size_t place : places) {
    for (const char* count : {"1F 00 00 00", "00 00 00 20", "FF FF FF 7F", "FF FF FF FF"}) {
      SCOPED_TRACE(std::to_string(place) + " " + count);
      EXPECT_THROW(ReadNew(Bytes(filledRecord).replace(place, 4, Bytes(count))), CFileCorrupt);
    }
  }
}

TEST_F(PointRecords, OfAnotherClassAreRefused) {
  const long address = StoreRecord(study.Pod(), 13000, Bytes(filledRecord));
  CDPoint point(study.Pod());
  EXPECT_THROW(point.Read(address), CBadClassID);
  ExpectSameFields(point, CDPoint(study.Pod()));
}

TEST_F(PointRecords, WithAWrongChecksumAreRefused) {
  CDPoint point = FilledPoint(study.Pod());
  point.PutObject();
  study.Close();
  PatchBytes(study.DataPath(), point.ObjectAddress() + 30, "x");
  study.Open();
  CDPoint damaged = FilledPoint(study.Pod());
  EXPECT_THROW(damaged.GetObject(), CChecksum);
}

}  // namespace
