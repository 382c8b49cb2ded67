#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "definition/Input.h"
#include "store/KestErr.h"
#include "tests/definition/InputStudy.h"
#include "tests/support/Bytes.h"
#include "tests/support/RawFile.h"
#include "tests/support/StoredRecord.h"

// The record of an Input, of this version and of older ones.

namespace {

// The pieces of FilledInput's record. All versions have the first two, the arguments' lengths come
// between them since version 4; scaling comes behind since version 3, and the random description
// since version 2.

const std::string filledDefinition =
    "07 00 00 00 "                       // ID
    "05 00 00 00 77 69 64 74 68 "        // name
    "07 00 00 00 6F 66 20 62 65 61 6D "  // text
    "0C 00 00 00 "                       // objective
    "98 BA DC FE "                       // index
    "10 00 00 00 "                       // size
    "02 00 00 00 "                       // type
    "0B 00 00 00 "                       // auxiliary
    "02 00 00 00 F8 FF FF FF F7 FF FF FF "
    "02 00 00 00 00 00 00 00 02 00 00 00 ";
const std::string filledLengths = "02 00 00 00 01 00 00 00 04 00 00 00 ";
const std::string filledValues =
    "01 00 00 00 "               // goal
    "0D 00 00 00 "               // has a worst value
    "40 59 00 00 00 00 00 00 "   // worst
    "C0 04 00 00 00 00 00 00 "   // target
    "3F E0 00 00 00 00 00 00 "   // weight
    "C0 08 00 00 00 00 00 00 "   // lower
    "40 10 00 00 00 00 00 00 "   // upper
    "3F D0 00 00 00 00 00 00 ";  // initial
const std::string filledScale = "40 24 00 00 00 00 00 00 0E 00 00 00 ";
const std::string filledRandom = "0F 00 00 00 FE FF FF FF 03 00 00 00 ";

const std::string filledFields =
    filledDefinition + filledLengths + filledValues + filledScale + filledRandom;

class InputRecords : public testing::Test {
 protected:
  long Store(const std::string& hex) { return StoreRecord(study.Pod(), 1000, Bytes(hex)); }

  /// Reads the record into an object that holds something else in every field.
  CInput ReadOver(const std::string& hex) {
    CInput input(study.Pod());
    input.m_nID = 70;
    input.m_strName = "before";
    input.m_strText = "text before";
    input.m_nObjective = input.m_nType = input.m_nAuxID = input.m_nGoal = input.m_nHasWorst = 71;
    input.m_uIndex = input.m_uSize = 72;
    input.m_vnArg = input.m_vnIdx = input.m_vnLength = {73, 74, 75, 76};
    input.m_fLower = input.m_fUpper = input.m_fInitial = 77.0;
    input.m_fWorst = input.m_fTarget = input.m_fWeight = 78.0;
    input.m_nUserScale = 79;
    input.m_fScale = 80.0;
    input.m_nRandom = 81;
    input.m_nRandomParam = 82;
    input.m_nDistribution = 83;
    input.Read(Store(hex));
    return input;
  }

  CInput ReadNew(const std::string& hex) {
    CInput input(study.Pod());
    input.Read(Store(hex));
    return input;
  }

  CInput Filled() { return FilledInput(study.Pod()); }

  Study study;
};

// ---- This version ----

TEST_F(InputRecords, AreStoredFieldByField) {
  CInput input = Filled();
  EXPECT_EQ(input.ObjectLength(), 164U);
  ASSERT_TRUE(input.PutObject());
  EXPECT_EQ(Hex(StoredRecord(input)), Hex(Bytes("04 00 00 00" + filledFields)));
}

TEST_F(InputRecords, OfDefaultsAreStoredFieldByField) {
  CInput input(study.Pod());
  input.m_nID = 1;
  EXPECT_EQ(input.ObjectLength(), 130U);
  ASSERT_TRUE(input.PutObject());
  EXPECT_EQ(Hex(StoredRecord(input)), Hex(Bytes("04 00 00 00 01 00 00 00 "
                                                "01 00 00 00 00 01 00 00 00 00 "
                                                "00 00 00 00 00 00 00 00 01 00 00 00 "
                                                "00 00 00 00 00 00 00 00 "
                                                "00 00 00 00 00 00 00 00 00 00 00 00 "
                                                "00 00 00 00 00 00 00 00 "
                                                "00 00 00 00 00 00 00 00 "
                                                "00 00 00 00 00 00 00 00 "
                                                "3F F0 00 00 00 00 00 00 "
                                                "C6 29 3E 59 39 A0 8C EA "
                                                "46 29 3E 59 39 A0 8C EA "
                                                "00 00 00 00 00 00 00 00 "
                                                "00 00 00 00 00 00 00 00 00 00 00 00 "
                                                "00 00 00 00 00 00 00 00 00 00 00 00")));
}

TEST_F(InputRecords, LieInTheFileBehindTheirHeaderAndUnderTheirKey) {
  CInput input = Filled();
  ASSERT_TRUE(input.PutObject());
  const long address = input.ObjectAddress();
  study.Close();
  const RawFile data = ReadRawFile(study.DataPath());
  const std::map<long, std::string> objects = ObjectsOf(data, 1000);
  ASSERT_EQ(objects.size(), 1U);
  EXPECT_EQ(Hex(objects.at(address)),
            Hex(Bytes("E8 03 00 00" + HexWord(address) + "04 00 00 00" + filledFields)));
  const RawFile index = ReadRawFile(study.IndexPath());
  EXPECT_EQ(ReadRawTree(index, 0), (std::map<std::string, long>{{"          7", address}}));
  EXPECT_EQ(FaultOfClass(data, index, 1000), "");
}

TEST_F(InputRecords, OfVersionFourAreReadInFull) {
  const CInput input = ReadOver("04 00 00 00" + filledFields);
  ExpectSameFields(input, Filled());
  EXPECT_GT(input.ObjectAddress(), 0);
}

TEST_F(InputRecords, OfNoTextsAndVectorsAreReadEmpty) {
  const CInput input = ReadOver(
      "04 00 00 00 07 00 00 00 01 00 00 00 00 01 00 00 00 00 "
      "0C 00 00 00 98 BA DC FE 10 00 00 00 02 00 00 00 0B 00 00 00 "
      "00 00 00 00 00 00 00 00 00 00 00 00" +
      filledValues + filledScale + filledRandom);
  CInput expected = Filled();
  expected.m_strName = expected.m_strText = "";
  expected.m_vnArg = expected.m_vnIdx = expected.m_vnLength = {};
  ExpectSameFields(input, expected);
}

// ---- Older versions ----

TEST_F(InputRecords, OfVersionThreeTakeSingleElements) {
  CInput expected = Filled();
  expected.m_vnLength = {1, 1};
  const std::string record =
      "03 00 00 00" + filledDefinition + filledValues + filledScale + filledRandom;
  ExpectSameFields(ReadNew(record), expected);
  ExpectSameFields(ReadOver(record), expected);
}

TEST_F(InputRecords, OfVersionThreeWithThreeArgumentsReadBackThreeOnes) {
  const CInput input = ReadOver(
      "03 00 00 00 05 00 00 00 01 00 00 00 61 01 00 00 00 00 "
      "00 00 00 00 00 00 00 00 01 00 00 00 01 00 00 00 02 00 00 00 "
      "03 00 00 00 FF FF FF FF FE FF FF FF FD FF FF FF "
      "03 00 00 00 00 00 00 00 05 00 00 00 00 00 00 00" +
      filledValues + filledScale + filledRandom);
  EXPECT_EQ(input.m_nID, 5);
  EXPECT_EQ(input.m_strName, "a");
  EXPECT_EQ(input.m_vnArg, (std::vector<vbINT32>{-1, -2, -3}));
  EXPECT_EQ(input.m_vnIdx, (std::vector<vbINT32>{0, 5, 0}));
  EXPECT_EQ(input.m_vnLength, (std::vector<vbINT32>{1, 1, 1}));
  EXPECT_EQ(input.m_fInitial, 0.25);
}

TEST_F(InputRecords, OfVersionThreeHaveAsManyLengthsAsIndexes) {
  const CInput input = ReadOver(
      "03 00 00 00 05 00 00 00 01 00 00 00 61 01 00 00 00 00 "
      "00 00 00 00 00 00 00 00 01 00 00 00 01 00 00 00 02 00 00 00 "
      "02 00 00 00 FF FF FF FF FE FF FF FF "
      "03 00 00 00 00 00 00 00 05 00 00 00 00 00 00 00" +
      filledValues + filledScale + filledRandom);
  EXPECT_EQ(input.m_vnArg.size(), 2U);
  EXPECT_EQ(input.m_vnLength, (std::vector<vbINT32>{1, 1, 1}));
}

TEST_F(InputRecords, OfVersionTwoHaveNoScale) {
  const std::string record = "02 00 00 00" + filledDefinition + filledValues + filledRandom;
  CInput expected = Filled();
  expected.m_vnLength = {1, 1};
  expected.m_nUserScale = 0;
  expected.m_fScale = 0.0;
  ExpectSameFields(ReadNew(record), expected);
  expected.m_nUserScale = 79;
  expected.m_fScale = 80.0;
  ExpectSameFields(ReadOver(record), expected);
}

TEST_F(InputRecords, OfVersionOneHaveNoRandomDescription) {
  const std::string record = "01 00 00 00" + filledDefinition + filledValues;
  CInput expected = Filled();
  expected.m_vnLength = {1, 1};
  expected.m_nUserScale = 0;
  expected.m_fScale = 0.0;
  expected.m_nRandom = expected.m_nRandomParam = expected.m_nDistribution = 0;
  ExpectSameFields(ReadNew(record), expected);
  expected.m_nUserScale = 79;
  expected.m_fScale = 80.0;
  expected.m_nRandom = 81;
  expected.m_nRandomParam = 82;
  expected.m_nDistribution = 83;
  ExpectSameFields(ReadOver(record), expected);
}

TEST_F(InputRecords, OfOlderVersionsAreUpgradedByTheNextWrite) {
  CInput input = ReadNew("01 00 00 00" + filledDefinition + filledValues);
  ASSERT_TRUE(input.PutObject());
  EXPECT_EQ(Hex(StoredRecord(input)),
            Hex(Bytes("04 00 00 00" + filledDefinition + "02 00 00 00 01 00 00 00 01 00 00 00" +
                      filledValues +
                      "00 00 00 00 00 00 00 00 00 00 00 00 "
                      "00 00 00 00 00 00 00 00 00 00 00 00")));
}

TEST_F(InputRecords, OfANewerVersionAreReadAsFarAsKnown) {
  ExpectSameFields(ReadOver("05 00 00 00" + filledFields + "11 22 33 44 55"), Filled());
}

// ---- Every field ----

struct Change {
  const char* field;
  std::function<void(CInput&)> make;
  std::size_t offset;  ///< in FilledInput's record, the version counted in
  const char* bytes;
};

const Change changes[] = {
    {"m_nID", [](CInput& input) { input.m_nID = 8; }, 4, "08 00 00 00"},
    {"m_strName", [](CInput& input) { input.m_strName = "Width"; }, 8, "05 00 00 00 57"},
    {"m_strText", [](CInput& input) { input.m_strText = "of bean"; }, 17,
     "07 00 00 00 6F 66 20 62 65 61 6E"},
    {"m_nObjective", [](CInput& input) { input.m_nObjective = 0; }, 28, "00 00 00 00"},
    {"m_uIndex", [](CInput& input) { input.m_uIndex = 1; }, 32, "01 00 00 00"},
    {"m_uSize", [](CInput& input) { input.m_uSize = 1; }, 36, "01 00 00 00"},
    {"m_nType", [](CInput& input) { input.m_nType = 6; }, 40, "06 00 00 00"},
    {"m_nAuxID", [](CInput& input) { input.m_nAuxID = -1; }, 44, "FF FF FF FF"},
    {"m_vnArg", [](CInput& input) { input.m_vnArg[1] = 3; }, 56, "03 00 00 00"},
    {"m_vnIdx", [](CInput& input) { input.m_vnIdx[0] = 6; }, 64, "06 00 00 00"},
    {"m_vnLength", [](CInput& input) { input.m_vnLength[0] = 2; }, 76, "02 00 00 00"},
    {"m_nGoal", [](CInput& input) { input.m_nGoal = 2; }, 84, "02 00 00 00"},
    {"m_nHasWorst", [](CInput& input) { input.m_nHasWorst = 0; }, 88, "00 00 00 00"},
    {"m_fWorst", [](CInput& input) { input.m_fWorst = 1.0; }, 92, "3F F0 00 00 00 00 00 00"},
    {"m_fTarget", [](CInput& input) { input.m_fTarget = 2.0; }, 100, "40 00 00 00 00 00 00 00"},
    {"m_fWeight", [](CInput& input) { input.m_fWeight = 1.5; }, 108, "3F F8 00 00 00 00 00 00"},
    {"m_fLower", [](CInput& input) { input.m_fLower = -1.0; }, 116, "BF F0 00 00 00 00 00 00"},
    {"m_fUpper", [](CInput& input) { input.m_fUpper = 3.0; }, 124, "40 08 00 00 00 00 00 00"},
    {"m_fInitial", [](CInput& input) { input.m_fInitial = 0.0; }, 132, "00 00 00 00 00 00 00 00"},
    {"m_fScale", [](CInput& input) { input.m_fScale = 0.5; }, 140, "3F E0 00 00 00 00 00 00"},
    {"m_nUserScale", [](CInput& input) { input.m_nUserScale = 0; }, 148, "00 00 00 00"},
    {"m_nRandom", [](CInput& input) { input.m_nRandom = 0; }, 152, "00 00 00 00"},
    {"m_nRandomParam", [](CInput& input) { input.m_nRandomParam = -3; }, 156, "FD FF FF FF"},
    {"m_nDistribution", [](CInput& input) { input.m_nDistribution = 1; }, 160, "01 00 00 00"},
};

TEST_F(InputRecords, HoldEachFieldAtItsPlaceAlone) {
  const std::string filled = Bytes("04 00 00 00" + filledFields);
  for (const Change& change : changes) {
    SCOPED_TRACE(change.field);
    CInput input = Filled();
    change.make(input);
    ASSERT_TRUE(input.PutObject());
    const std::string bytes = Bytes(change.bytes);
    std::string expected = filled;
    expected.replace(change.offset, bytes.size(), bytes);
    ASSERT_NE(expected, filled);
    EXPECT_EQ(Hex(StoredRecord(input)), Hex(expected));
  }
}

TEST_F(InputRecords, GiveEachFieldBack) {
  for (const Change& change : changes) {
    SCOPED_TRACE(change.field);
    CInput expected = Filled();
    change.make(expected);
    std::string record = Bytes("04 00 00 00" + filledFields);
    const std::string bytes = Bytes(change.bytes);
    record.replace(change.offset, bytes.size(), bytes);
    CInput input(study.Pod());
    input.Read(StoreRecord(study.Pod(), 1000, record));
    ExpectSameFields(input, expected);
  }
}

// ---- Any contents ----

class RandomFields {
 public:
  CInput Input(POD* pod, int id) {
    CInput input(pod);
    input.m_nID = id;
    input.m_strName = Text();
    input.m_strText = Text();
    input.m_uIndex = static_cast<unsigned long>(random_() & 0xFFFFFFFFU);
    input.m_uSize = static_cast<unsigned long>(random_() & 0xFFFFFFFFU);
    for (auto* field :
         {&input.m_nObjective, &input.m_nType, &input.m_nAuxID, &input.m_nGoal, &input.m_nHasWorst,
          &input.m_nUserScale, &input.m_nRandom, &input.m_nRandomParam, &input.m_nDistribution}) {
      *field = Integer();
    }
    for (auto* field : {&input.m_fLower, &input.m_fUpper, &input.m_fInitial, &input.m_fScale,
                        &input.m_fWorst, &input.m_fTarget, &input.m_fWeight}) {
      *field = std::normal_distribution<double>(0.0, 1e6)(random_);
    }
    for (auto* vector : {&input.m_vnArg, &input.m_vnIdx, &input.m_vnLength}) {
      vector->resize(random_() % 20);
      for (vbINT32& value : *vector) value = Integer();
    }
    return input;
  }

 private:
  /// Without a zero byte, which ends a stored text.
  std::string Text() {
    std::string text(random_() % 41, ' ');
    for (char& sign : text) sign = static_cast<char>(1 + random_() % 255);
    return text;
  }

  int Integer() { return static_cast<int>(random_()); }

  std::mt19937 random_{4711};
};

std::size_t StoredSize(const std::string& text) {
  return text.empty() ? 5 : 4 + text.size();
}

TEST_F(InputRecords, OfAnyContentsAreAsLongAsToldAndReadBackTheSame) {
  RandomFields fields;
  for (int id = 1; id <= 200; ++id) {
    SCOPED_TRACE(id);
    CInput input = fields.Input(study.Pod(), id);
    const std::size_t entries =
        input.m_vnArg.size() + input.m_vnIdx.size() + input.m_vnLength.size();
    const std::size_t length =
        120 + StoredSize(input.m_strName) + StoredSize(input.m_strText) + 4 * entries;
    EXPECT_EQ(input.ObjectLength(), length);
    ASSERT_TRUE(input.PutObject());
    EXPECT_EQ(StoredRecord(input).size(), length);
    CInput stored(study.Pod());
    stored.m_nID = id;
    ASSERT_TRUE(stored.GetObject());
    ExpectSameFields(stored, input);
  }
}

TEST_F(InputRecords, KeepASingleBlankAndLoseWhatFollowsAZero) {
  CInput input(study.Pod());
  input.m_nID = 1;
  input.m_strName = " ";
  input.m_strText = std::string("ab\0cd", 5);
  EXPECT_EQ(input.ObjectLength(), 134U);
  ASSERT_TRUE(input.PutObject());
  ASSERT_TRUE(input.GetObject());
  EXPECT_EQ(input.m_strName, " ");
  EXPECT_EQ(input.m_strText, "ab");
}

// ---- Damage ----

TEST_F(InputRecords, OfAnotherClassAreRefused) {
  const long address = StoreRecord(study.Pod(), 2000, Bytes("04 00 00 00" + filledFields));
  CInput input(study.Pod());
  try {
    input.Read(address);
    ADD_FAILURE() << "read";
  } catch (const CBadClassID& error) {
    EXPECT_STREQ(error.what(), "Bad class ID");
  }
  EXPECT_EQ(input.m_nID, 0);
}

TEST_F(InputRecords, WithAChangedByteFailTheirChecksum) {
  const long address = Store("04 00 00 00" + filledFields);
  study.Close();
  PatchBytes(study.DataPath(), address + 20, "x");
  study.Open();
  CInput input(study.Pod());
  try {
    input.Read(address);
    ADD_FAILURE() << "read";
  } catch (const CChecksum& error) {
    EXPECT_STREQ(error.what(), "Checksum error");
  }
  EXPECT_EQ(input.m_nID, 0);
}

TEST_F(InputRecords, AreNotStoredInAFileWithoutRoom) {
  study.Close();
  PatchBytes(study.DataPath(), 4, Bytes("F0 FF FF 7F"));  // the end of the file
  study.Open();
  CInput input = Filled();
  try {
    input.PutObject();
    ADD_FAILURE() << "stored";
  } catch (const CMemoryAlloc& error) {
    EXPECT_STREQ(error.what(), "Memory allocation error");
  }
  EXPECT_FALSE(input.FindObject());
}

TEST_F(InputRecords, ThatEndTooEarlyAreCorrupt) {
  const std::string record = Bytes("04 00 00 00" + filledFields);
  for (std::size_t size = 0; size < record.size(); ++size) {
    SCOPED_TRACE(size);
    const long address = StoreRecord(study.Pod(), 1000, record.substr(0, size));
    EXPECT_THROW(CInput(study.Pod()).Read(address), CFileCorrupt);
  }
}

TEST_F(InputRecords, WithCountsThatCannotBeAreCorrupt) {
  for (const std::size_t offset : {8U, 17U, 48U, 60U, 72U}) {
    for (const char* count : {"FF FF FF FF", "FF FF FF 7F", "00 00 00 80", "97 00 00 00"}) {
      SCOPED_TRACE(std::to_string(offset) + ": " + count);
      std::string record = Bytes("04 00 00 00" + filledFields);
      record.replace(offset, 4, Bytes(count));
      const long address = StoreRecord(study.Pod(), 1000, record);
      EXPECT_THROW(CInput(study.Pod()).Read(address), CFileCorrupt);
    }
  }
}

}  // namespace
