#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <string>
#include <vector>

#include "definition/Auxiliary.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "tests/definition/AuxiliarySamples.h"
#include "tests/support/Bytes.h"
#include "tests/support/RawFile.h"
#include "tests/support/StoredRecord.h"
#include "tests/support/Study.h"

// The record of a definition in the data file.

namespace {

/// The fields of FilledAuxiliary, in file order.
const std::string filledFields =
    "07 00 00 00 "
    "06 00 00 00 73 74 72 65 73 73 "  // "stress"
    "02 00 00 00 "
    "03 00 00 00 "
    "02 00 00 00 BF E0 00 00 00 00 00 00 40 04 00 00 00 00 00 00 "
    "03 00 00 00 61 2C 62 "        // "a,b"
    "05 00 00 00 61 2A 62 2B 31 "  // "a*b+1"
    "03 00 00 00 3F F0 00 00 00 00 00 00 40 00 00 00 00 00 00 00 C0 08 00 00 00 00 00 00 "
    "03 00 00 00 01 00 00 00 00 01 00 00 00 78 02 00 00 00 79 31 ";  // "", "x", "y1"

/// The fields of a link with ID 1 and nothing in it.
const std::string emptyFields =
    "01 00 00 00 01 00 00 00 00 01 00 00 00 00 00 00 00 00 00 00 00 "
    "01 00 00 00 00 01 00 00 00 00 00 00 00 00 00 00 00 00 ";

class AuxiliaryRecords : public testing::Test {
 protected:
  long Store(const std::string& record) { return StoreRecord(study.Pod(), 2000, record); }

  CAuxiliary ReadAt(long address) {
    CAuxiliary definition(study.Pod());
    definition.Read(address);
    return definition;
  }

  std::string StoredBytes(CAuxiliary& definition) {
    definition.PutObject();
    return Hex(StoredRecord(definition));
  }

  Study study;
};

// ---- Bytes ----

TEST_F(AuxiliaryRecords, OfAFilledDefinitionByteForByte) {
  CAuxiliary definition = FilledAuxiliary(study.Pod());
  EXPECT_EQ(definition.ObjectLength(), 110U);
  EXPECT_EQ(StoredBytes(definition), Hex(Bytes("02 00 00 00" + filledFields)));
}

TEST_F(AuxiliaryRecords, OfAnEmptyDefinitionByteForByte) {
  CAuxiliary definition(study.Pod());
  definition.m_nID = 1;
  EXPECT_EQ(definition.ObjectLength(), 43U);
  EXPECT_EQ(StoredBytes(definition), Hex(Bytes("02 00 00 00" + emptyFields)));
}

TEST_F(AuxiliaryRecords, StandBehindTheirHeaderInABlockOfTheirLength) {
  CAuxiliary definition = FilledAuxiliary(study.Pod());
  definition.PutObject();
  study.Close();
  const RawFile file = ReadRawFile(study.DataPath());
  const auto objects = ObjectsOf(file, 2000);
  ASSERT_EQ(objects.size(), 1U);
  const auto& [address, object] = *objects.begin();
  EXPECT_EQ(definition.ObjectAddress(), address);
  EXPECT_EQ(Hex(object.substr(0, 8)), Hex(Bytes("D0 07 00 00" + HexWord(address))));
  EXPECT_EQ(WordAt(file.bytes, static_cast<std::size_t>(address) - 24), 28 + 8 + 110 + 4);
}

TEST_F(AuxiliaryRecords, ChangeWithEveryField) {
  const std::function<void(CAuxiliary&)> changes[] = {
      [](CAuxiliary& definition) { definition.m_nID = 8; },
      [](CAuxiliary& definition) { definition.m_strName = "strain"; },
      [](CAuxiliary& definition) { definition.m_nAuxType = 4; },
      [](CAuxiliary& definition) { definition.m_nNumber = 4; },
      [](CAuxiliary& definition) { definition.m_vfValues[1] = 2.75; },
      [](CAuxiliary& definition) { definition.m_strArgs = "a,c"; },
      [](CAuxiliary& definition) { definition.m_strEquation = "a*b+2"; },
      [](CAuxiliary& definition) { definition.m_vfCoef[2] = 3.0; },
      [](CAuxiliary& definition) { definition.m_vstrArgNames[1] = "z"; },
  };
  CAuxiliary definition = FilledAuxiliary(study.Pod());
  const std::string before = StoredBytes(definition);
  for (const auto& change : changes) {
    CAuxiliary changed = FilledAuxiliary(study.Pod());
    change(changed);
    EXPECT_NE(StoredBytes(changed), before);
  }
}

// ---- Reading ----

TEST_F(AuxiliaryRecords, OfVersionTwoAreReadInFull) {
  const long address = Store(Bytes("02 00 00 00" + filledFields));
  const CAuxiliary definition = ReadAt(address);
  ExpectFilledAuxiliary(definition);
  EXPECT_EQ(definition.ObjectAddress(), address);
}

TEST_F(AuxiliaryRecords, OfVersionOneHaveTheSameLayout) {
  ExpectFilledAuxiliary(ReadAt(Store(Bytes("01 00 00 00" + filledFields))));
}

TEST_F(AuxiliaryRecords, OfANewerVersionAreReadAsFarAsTheyAreKnown) {
  ExpectFilledAuxiliary(ReadAt(Store(Bytes("03 00 00 00" + filledFields + "FF FF FF FF"))));
}

TEST_F(AuxiliaryRecords, OfVersionOneAreUpgradedByTheNextWrite) {
  CAuxiliary definition = ReadAt(Store(Bytes("01 00 00 00" + filledFields)));
  EXPECT_EQ(StoredBytes(definition), Hex(Bytes("02 00 00 00" + filledFields)));
}

TEST_F(AuxiliaryRecords, ReplaceAllThatTheObjectHeld) {
  CAuxiliary definition = FilledAuxiliary(study.Pod());
  definition.Read(Store(Bytes("02 00 00 00" + emptyFields)));
  EXPECT_EQ(definition.m_nID, 1);
  ExpectAuxiliaryDefaults(definition);
}

TEST_F(AuxiliaryRecords, AreReadBackAfterReopening) {
  FilledAuxiliary(study.Pod()).PutObject();
  study.Reopen();
  CAuxiliary definition(study.Pod());
  definition.m_nID = 7;
  ASSERT_TRUE(definition.GetObject());
  ExpectFilledAuxiliary(definition);
}

TEST_F(AuxiliaryRecords, TellATextOfOneBlankFromAnEmptyOne) {
  CAuxiliary definition(study.Pod());
  definition.m_nID = 1;
  definition.m_strName = " ";
  EXPECT_EQ(definition.ObjectLength(), 43U);
  definition.PutObject();
  const CAuxiliary stored = ReadAt(definition.ObjectAddress());
  EXPECT_EQ(stored.m_strName, " ");
  EXPECT_EQ(stored.m_strArgs, "");
}

// ---- Length ----

class RandomContents {
 public:
  std::size_t Size(std::size_t most) { return random_() % (most + 1); }
  vbINT32 Number() { return static_cast<int>(random_()); }
  std::string Text() {
    std::string text(Size(300), ' ');
    for (char& letter : text) letter = static_cast<char>(1 + random_() % 255);
    return text;
  }
  std::vector<vbFLOAT64> Reals() {
    std::vector<vbFLOAT64> reals(Size(60));
    for (vbFLOAT64& real : reals) real = static_cast<double>(random_()) / 64.0 - 1e7;
    return reals;
  }

 private:
  std::mt19937 random_{20260401};
};

std::size_t TextLength(const std::string& text) {
  return text.empty() ? 5 : 4 + text.size();
}

TEST_F(AuxiliaryRecords, AreAsLongAsTheirFieldsWhateverTheyHold) {
  const CLock lock(study.Pod(), 0);
  RandomContents random;
  for (int round = 1; round <= 200; ++round) {
    SCOPED_TRACE(round);
    CAuxiliary definition(study.Pod());
    definition.m_nID = round;
    definition.m_nAuxType = random.Number();
    definition.m_nNumber = random.Number();
    definition.m_strName = random.Text();
    definition.m_strArgs = random.Text();
    definition.m_strEquation = random.Text();
    definition.m_vfValues = random.Reals();
    definition.m_vfCoef = random.Reals();
    definition.m_vstrArgNames.resize(random.Size(20));
    std::size_t length = 28 + TextLength(definition.m_strName) + TextLength(definition.m_strArgs) +
                         TextLength(definition.m_strEquation) +
                         8 * (definition.m_vfValues.size() + definition.m_vfCoef.size());
    for (std::string& name : definition.m_vstrArgNames) {
      name = random.Text();
      length += TextLength(name);
    }
    EXPECT_EQ(definition.ObjectLength(), length);
    definition.PutObject();
    EXPECT_EQ(StoredRecord(definition).size(), length);
    const CAuxiliary stored = ReadAt(definition.ObjectAddress());
    EXPECT_EQ(stored.m_nAuxType, definition.m_nAuxType);
    EXPECT_EQ(stored.m_nNumber, definition.m_nNumber);
    EXPECT_EQ(stored.m_strName, definition.m_strName);
    EXPECT_EQ(stored.m_vfValues, definition.m_vfValues);
    EXPECT_EQ(stored.m_strArgs, definition.m_strArgs);
    EXPECT_EQ(stored.m_strEquation, definition.m_strEquation);
    EXPECT_EQ(stored.m_vfCoef, definition.m_vfCoef);
    EXPECT_EQ(stored.m_vstrArgNames, definition.m_vstrArgNames);
  }
}

// ---- Damage ----

TEST_F(AuxiliaryRecords, ThatEndTooEarlyAreCorrupt) {
  const CLock lock(study.Pod(), 0);
  const std::string record = Bytes("02 00 00 00" + filledFields);
  for (std::size_t size = 0; size < record.size(); ++size) {
    SCOPED_TRACE(size);
    const long address = Store(record.substr(0, size));
    EXPECT_THROW(ReadAt(address), CFileCorrupt);
  }
}

TEST_F(AuxiliaryRecords, WithCountsThatTheRecordCannotHoldAreCorrupt) {
  const CLock lock(study.Pod(), 0);
  const std::string record = Bytes("02 00 00 00" + filledFields);
  // The lengths of the name, the values, arguments, equation, coefficients and argument names, and
  // of the second of the names.
  for (const std::size_t place : {8U, 26U, 46U, 53U, 62U, 90U, 99U}) {
    for (const char* count : {"7F 00 00 00", "00 00 00 20", "FF FF FF 7F", "FF FF FF FF"}) {
      SCOPED_TRACE(std::to_string(place) + " " + count);
      std::string hostile = record;
      const long address = Store(hostile.replace(place, 4, Bytes(count)));
      EXPECT_THROW(ReadAt(address), CFileCorrupt);
    }
  }
}

TEST_F(AuxiliaryRecords, OfAnotherClassAreRefused) {
  const long address = StoreRecord(study.Pod(), 8000, Bytes("02 00 00 00" + filledFields));
  EXPECT_THROW(ReadAt(address), CBadClassID);
}

TEST_F(AuxiliaryRecords, WithAWrongChecksumAreRefused) {
  CAuxiliary definition = FilledAuxiliary(study.Pod());
  definition.PutObject();
  study.Close();
  PatchBytes(study.DataPath(), definition.ObjectAddress() + 20, "S");  // the name's first letter
  study.Open();
  CAuxiliary damaged(study.Pod());
  damaged.m_nID = 7;
  EXPECT_THROW(damaged.GetObject(), CChecksum);
  EXPECT_EQ(damaged.m_strName, "");
}

}  // namespace
