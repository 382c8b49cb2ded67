#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <string>

#include "definition/Resp.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "tests/definition/RespSamples.h"
#include "tests/support/Bytes.h"
#include "tests/support/StoredRecord.h"
#include "tests/support/Study.h"

namespace {

// FullResp as it is stored, in pieces: the lengths and the last two words came later.

const std::string beforeLengths =
    "2A 00 00 00 "                                      // ID
    "06 00 00 00 53 74 72 65 73 73 "                    // "Stress"
    "0A 00 00 00 61 74 20 74 68 65 20 74 69 70 "        // "at the tip"
    "02 00 00 00 03 00 00 00 "                          // constraint, objective
    "04 00 00 00 05 00 00 00 "                          // index, size
    "06 00 00 00 07 00 00 00 "                          // type, auxiliary
    "03 00 00 00 F8 FF FF FF 09 00 00 00 0A 00 00 00 "  // arguments
    "02 00 00 00 0B 00 00 00 0C 00 00 00 ";             // indexes
const std::string lengths = "01 00 00 00 0D 00 00 00 ";
const std::string afterLengths =
    "0E 00 00 00 "                                      // goal
    "0F 00 00 00 3F E0 00 00 00 00 00 00 "              // worst
    "BF F0 00 00 00 00 00 00 40 00 00 00 00 00 00 00 "  // target, weight
    "10 00 00 00 C0 04 00 00 00 00 00 00 "              // lower
    "11 00 00 00 40 10 00 00 00 00 00 00 "              // its scale
    "12 00 00 00 40 24 00 00 00 00 00 00 "              // upper
    "13 00 00 00 3F D0 00 00 00 00 00 00 ";             // its scale
const std::string random = "14 00 00 00 FD FF FF FF ";

const std::string versionOne = "01 00 00 00 " + beforeLengths + afterLengths;
const std::string versionTwo = "02 00 00 00 " + beforeLengths + afterLengths + random;
const std::string versionThree = "03 00 00 00 " + beforeLengths + lengths + afterLengths + random;

/// A new response that stands out in what an older record lacks.
CResp BeforeReading(POD* pod) {
  CResp resp(pod);
  resp.m_vnLength = {91, 92, 93};
  resp.m_nRandom = 94;
  resp.m_nRandomParam = 95;
  return resp;
}

void ExpectFullButLengthAndRandom(const CResp& resp) {
  ExpectFullScalars(resp);
  EXPECT_EQ(resp.m_strName, "Stress");
  EXPECT_EQ(resp.m_strText, "at the tip");
  EXPECT_EQ(resp.m_vnArg, (std::vector<vbINT32>{-8, 9, 10}));
  EXPECT_EQ(resp.m_vnIdx, (std::vector<vbINT32>{11, 12}));
}

class RespRecords : public testing::Test {
 protected:
  /// The response read from a record typed in hex.
  CResp Read(const std::string& hex) {
    CResp resp = BeforeReading(study.Pod());
    resp.Read(StoreRecord(study.Pod(), 19000, Bytes(hex)));
    return resp;
  }
  std::string Stored(CResp resp) {
    resp.Connect(study.Pod());
    resp.PutObject();
    return Hex(StoredRecord(resp));
  }

  Study study;
};

// ---- Bytes ----

TEST_F(RespRecords, AreStoredByteForByte) {
  EXPECT_EQ(Stored(FullResp(study.Pod())), Hex(Bytes(versionThree)));
}

TEST_F(RespRecords, OfANewResponseAreStoredByteForByte) {
  CResp resp(study.Pod());
  resp.m_nID = 1;
  EXPECT_EQ(Stored(resp), Hex(Bytes("03 00 00 00 01 00 00 00 "
                                    "01 00 00 00 00 01 00 00 00 00 "
                                    "01 00 00 00 00 00 00 00 00 00 00 00 01 00 00 00 "
                                    "00 00 00 00 00 00 00 00 "
                                    "00 00 00 00 00 00 00 00 00 00 00 00 "
                                    "00 00 00 00 "
                                    "00 00 00 00 00 00 00 00 00 00 00 00 "
                                    "00 00 00 00 00 00 00 00 3F F0 00 00 00 00 00 00 "
                                    "00 00 00 00 C6 29 3E 59 39 A0 8C EA "
                                    "00 00 00 00 3F F0 00 00 00 00 00 00 "
                                    "00 00 00 00 46 29 3E 59 39 A0 8C EA "
                                    "00 00 00 00 3F F0 00 00 00 00 00 00 "
                                    "00 00 00 00 00 00 00 00")));
}

TEST_F(RespRecords, OfVersionThreeAreReadInFull) {
  const CResp resp = Read(versionThree);
  ExpectFull(resp);
}

TEST_F(RespRecords, OfVersionTwoGetALengthOfOneForEachIndex) {
  const CResp resp = Read(versionTwo);
  ExpectFullButLengthAndRandom(resp);
  EXPECT_EQ(resp.m_vnLength, (std::vector<vbINT32>{1, 1}));
  EXPECT_EQ(resp.m_nRandom, 20);
  EXPECT_EQ(resp.m_nRandomParam, -3);
}

TEST_F(RespRecords, OfVersionOneKeepTheRandomFieldsOfTheObject) {
  const CResp resp = Read(versionOne);
  ExpectFullButLengthAndRandom(resp);
  EXPECT_EQ(resp.m_vnLength, (std::vector<vbINT32>{1, 1}));
  EXPECT_EQ(resp.m_nRandom, 94);
  EXPECT_EQ(resp.m_nRandomParam, 95);
}

TEST_F(RespRecords, OfVersionOneLeaveANewObjectsRandomFieldsAtTheirDefaults) {
  CResp resp(study.Pod());
  resp.Read(StoreRecord(study.Pod(), 19000, Bytes(versionOne)));
  EXPECT_EQ(resp.m_nRandom, 0);
  EXPECT_EQ(resp.m_nRandomParam, 0);
}

TEST_F(RespRecords, OfOlderVersionsWithoutArgumentsHaveNoLengths) {
  const std::string hex =
      "2A 00 00 00 01 00 00 00 00 01 00 00 00 00 "
      "00 00 00 00 00 00 00 00 00 00 00 00 01 00 00 00 00 00 00 00 00 00 00 00 "
      "00 00 00 00 00 00 00 00 " +
      afterLengths;
  EXPECT_TRUE(Read("01 00 00 00 " + hex).m_vnLength.empty());
  const CResp resp = Read("02 00 00 00 " + hex + random);
  EXPECT_TRUE(resp.m_vnLength.empty());
  EXPECT_EQ(resp.m_strName, "");
  EXPECT_EQ(resp.m_strText, "");
}

TEST_F(RespRecords, OfANewerVersionAreReadAsFarAsTheyAreKnown) {
  const CResp resp = Read("04 00 00 00 " + versionThree.substr(12) + "63 00 00 00");
  ExpectFull(resp);
}

TEST_F(RespRecords, OfAnOlderVersionAreUpgradedWhenTheyAreStored) {
  CResp resp = Read(versionTwo);
  EXPECT_EQ(Stored(resp),
            Hex(Bytes("03 00 00 00 " + beforeLengths + "02 00 00 00 01 00 00 00 01 00 00 00 " +
                      afterLengths + random)));
}

TEST_F(RespRecords, TakeTheAddressThatTheyWereReadFrom) {
  const long address = StoreRecord(study.Pod(), 19000, Bytes(versionOne));
  CResp resp(study.Pod());
  resp.Read(address);
  EXPECT_EQ(resp.ObjectAddress(), address);
}

// ---- Length ----

TEST_F(RespRecords, TakeOneHundredThirtyTwoBytesBesideTextsAndVectors) {
  CResp resp(study.Pod());
  EXPECT_EQ(resp.ObjectLength(), 132U + 5 + 5);
  resp.m_strName = " ";
  EXPECT_EQ(resp.ObjectLength(), 132U + 5 + 5);
  resp.m_strName = "ten bytes.";
  EXPECT_EQ(resp.ObjectLength(), 132U + 14 + 5);
  resp.m_strText = "two";
  EXPECT_EQ(resp.ObjectLength(), 132U + 14 + 7);
  resp.m_vnArg.resize(1);
  EXPECT_EQ(resp.ObjectLength(), 132U + 14 + 7 + 4);
  resp.m_vnIdx.resize(2);
  EXPECT_EQ(resp.ObjectLength(), 132U + 14 + 7 + 4 + 8);
  resp.m_vnLength.resize(3);
  EXPECT_EQ(resp.ObjectLength(), 132U + 14 + 7 + 4 + 8 + 12);
}

TEST_F(RespRecords, AreAsLongAsTheySayAndReadBackWhateverTheyHold) {
  const CLock lock(study.Pod(), 0);
  std::mt19937 generator(43);
  const auto below = [&generator](unsigned limit) { return generator() % limit; };
  const auto text = [&] {
    std::string letters(below(40), ' ');
    for (char& letter : letters) letter = static_cast<char>(1 + below(255));
    return letters;
  };
  const auto vector = [&] {
    std::vector<vbINT32> numbers(below(20));
    for (vbINT32& number : numbers) number = static_cast<std::int32_t>(generator());
    return numbers;
  };
  for (int round = 0; round < 200; ++round) {
    SCOPED_TRACE(round);
    CResp resp = FullResp(study.Pod());
    resp.m_strName = text();
    resp.m_strText = text();
    resp.m_vnArg = vector();
    resp.m_vnIdx = vector();
    resp.m_vnLength = vector();
    resp.PutObject();
    ASSERT_EQ(resp.ObjectLength(), StoredRecord(resp).size());
    CResp stored(study.Pod());
    stored.m_nID = 42;
    ASSERT_TRUE(stored.GetObject());
    ExpectFullScalars(stored);
    EXPECT_EQ(stored.m_strName, resp.m_strName);
    EXPECT_EQ(stored.m_strText, resp.m_strText);
    EXPECT_EQ(stored.m_vnArg, resp.m_vnArg);
    EXPECT_EQ(stored.m_vnIdx, resp.m_vnIdx);
    EXPECT_EQ(stored.m_vnLength, resp.m_vnLength);
  }
}

// ---- Fields ----

/// A change to one field of FullResp, and the bytes that it puts where into the stored record.
struct FieldChange {
  std::function<void(CResp&)> change;
  std::size_t offset;
  std::string hex;
};

const FieldChange fieldChanges[] = {
    {[](CResp& resp) { resp.m_nID = 0x01020304; }, 4, "04 03 02 01"},
    {[](CResp& resp) { resp.m_strName = "strain"; }, 12, "73 74 72 61 69 6E"},
    {[](CResp& resp) { resp.m_strText = "at the top"; }, 22, "61 74 20 74 68 65 20 74 6F 70"},
    {[](CResp& resp) { resp.m_nConstraint = -2; }, 32, "FE FF FF FF"},
    {[](CResp& resp) { resp.m_nObjective = 0x7FFFFFFF; }, 36, "FF FF FF 7F"},
    {[](CResp& resp) { resp.m_uIndex = 0xFFFFFFFF; }, 40, "FF FF FF FF"},
    {[](CResp& resp) { resp.m_uSize = 0x80000000; }, 44, "00 00 00 80"},
    {[](CResp& resp) { resp.m_nType = 3; }, 48, "03 00 00 00"},
    {[](CResp& resp) { resp.m_nAuxID = -1; }, 52, "FF FF FF FF"},
    {[](CResp& resp) { resp.m_vnArg[1] = -9; }, 64, "F7 FF FF FF"},
    {[](CResp& resp) { resp.m_vnIdx[1] = 256; }, 80, "00 01 00 00"},
    {[](CResp& resp) { resp.m_vnLength[0] = 0x10000; }, 88, "00 00 01 00"},
    {[](CResp& resp) { resp.m_nGoal = 2; }, 92, "02 00 00 00"},
    {[](CResp& resp) { resp.m_nHasWorst = 0; }, 96, "00 00 00 00"},
    {[](CResp& resp) { resp.m_fWorst = -0.0; }, 100, "80 00 00 00 00 00 00 00"},
    {[](CResp& resp) { resp.m_fTarget = 1e30; }, 108, "46 29 3E 59 39 A0 8C EA"},
    {[](CResp& resp) { resp.m_fWeight = 3.0; }, 116, "40 08 00 00 00 00 00 00"},
    {[](CResp& resp) { resp.m_nHasLower = 1; }, 124, "01 00 00 00"},
    {[](CResp& resp) { resp.m_fLower = -1e30; }, 128, "C6 29 3E 59 39 A0 8C EA"},
    {[](CResp& resp) { resp.m_nHasLowerScale = 1; }, 136, "01 00 00 00"},
    {[](CResp& resp) { resp.m_fLowerScale = 8.0; }, 140, "40 20 00 00 00 00 00 00"},
    {[](CResp& resp) { resp.m_nHasUpper = 1; }, 148, "01 00 00 00"},
    {[](CResp& resp) { resp.m_fUpper = 100.0; }, 152, "40 59 00 00 00 00 00 00"},
    {[](CResp& resp) { resp.m_nHasUpperScale = 1; }, 160, "01 00 00 00"},
    {[](CResp& resp) { resp.m_fUpperScale = 0.0; }, 164, "00 00 00 00 00 00 00 00"},
    {[](CResp& resp) { resp.m_nRandom = 1; }, 172, "01 00 00 00"},
    {[](CResp& resp) { resp.m_nRandomParam = 3; }, 176, "03 00 00 00"},
};

TEST_F(RespRecords, ChangeInEachFieldsOwnPlaceOnly) {
  const CLock lock(study.Pod(), 0);
  const std::string whole = Bytes(versionThree);
  ASSERT_EQ(whole.size(), 180U);
  for (const auto& [change, offset, hex] : fieldChanges) {
    SCOPED_TRACE(offset);
    CResp resp = FullResp(study.Pod());
    change(resp);
    std::string expected = whole;
    expected.replace(offset, Bytes(hex).size(), Bytes(hex));
    ASSERT_NE(expected, whole);
    EXPECT_EQ(Stored(resp), Hex(expected));
  }
}

TEST_F(RespRecords, WithOneFieldChangedAreReadWithTheChange) {
  const CLock lock(study.Pod(), 0);
  const std::string whole = Bytes(versionThree);
  for (const auto& [change, offset, hex] : fieldChanges) {
    SCOPED_TRACE(offset);
    std::string record = whole;
    record.replace(offset, Bytes(hex).size(), Bytes(hex));
    EXPECT_EQ(Stored(Read(Hex(record))), Hex(record));
  }
}

// ---- Damage ----

TEST_F(RespRecords, OfAnotherClassAreRefused) {
  const long address = StoreRecord(study.Pod(), 1000, Bytes(versionThree));
  CResp resp(study.Pod());
  try {
    resp.Read(address);
    ADD_FAILURE();
  } catch (const CBadClassID& error) {
    EXPECT_STREQ(error.what(), "Bad class ID");
  }
}

TEST_F(RespRecords, WithADamagedByteAreRefused) {
  const long address = StoreRecord(study.Pod(), 19000, Bytes(versionThree));
  study.Close();
  PatchBytes(study.DataPath(), address + 20, "x");
  study.Open();
  CResp resp(study.Pod());
  try {
    resp.Read(address);
    ADD_FAILURE();
  } catch (const CChecksum& error) {
    EXPECT_STREQ(error.what(), "Checksum error");
  }
}

TEST_F(RespRecords, WithACountThatTheyCannotHoldAreCorrupt) {
  const CLock lock(study.Pod(), 0);
  for (const std::size_t count : {8U, 18U, 56U, 72U, 84U}) {
    for (const char* hex : {"FF FF FF FF", "FF FF FF 7F", "00 00 00 40", "B0 00 00 00"}) {
      SCOPED_TRACE(std::to_string(count) + ": " + hex);
      std::string hostile = Bytes(versionThree);
      hostile.replace(count, 4, Bytes(hex));
      EXPECT_THROW(Read(Hex(hostile)), CFileCorrupt);
    }
  }
}

TEST_F(RespRecords, ThatEndTooEarlyAreCorrupt) {
  const CLock lock(study.Pod(), 0);
  for (const std::string& record : {Bytes(versionOne), Bytes(versionTwo), Bytes(versionThree)}) {
    for (std::size_t size = 0; size < record.size(); ++size) {
      SCOPED_TRACE(size);
      EXPECT_THROW(Read(Hex(record.substr(0, size))), CFileCorrupt);
    }
  }
}

}  // namespace
