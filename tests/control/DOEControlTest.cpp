#include "control/DOEControl.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "store/KestErr.h"
#include "tests/control/BlockFields.h"
#include "tests/support/Bytes.h"

namespace {

using Block = CDOEControl;
using Integers = std::vector<vbINT32>;

/// The fields before the two arrays, and those behind them.
const BlockFields<Block> firstFields{
    {"m_nMethod", &Block::m_nMethod, 1, 2, "02 00 00 00"},
    {"m_nModel", &Block::m_nModel, 4, 258, "02 01 00 00"},
    {"m_nTask", &Block::m_nTask, 0, 3, "03 00 00 00"},
    {"m_nDOptimal", &Block::m_nDOptimal, 0, -4, "FC FF FF FF"},
    {"m_nRetained", &Block::m_nRetained, 0, 5, "05 00 00 00"},
    {"m_nFilter", &Block::m_nFilter, 0, 6, "06 00 00 00"},
};
const BlockFields<Block> lastFields{
    {"m_nRandomMethod", &Block::m_nRandomMethod, 0, 7, "07 00 00 00", {10, 7}},
    {"m_nRandomPoints", &Block::m_nRandomPoints, 1000, 305419896, "78 56 34 12", {10, 7}},
    {"m_nSavePoints", &Block::m_nSavePoints, 0, 8, "08 00 00 00", {15, 12}},
    {"m_nRandomSeed", &Block::m_nRandomSeed, 1, 9, "09 00 00 00", {18, 15}},
};

const Integers initialOptions{0, 0, 1, 12, -1, 10, 10, 3101, 1, 0, 0, 0, 0, 0, 0};
const Integers sampleOptions{16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30};
const Integers sampleIndices{32, 33, 34, 35, 36, 37, 38, 39, 40, 41, 42, 43, 44, 45, 46};

const std::string firstHex =
    "02 00 00 00 02 01 00 00 03 00 00 00 FC FF FF FF 05 00 00 00 06 00 00 00 ";
const std::string optionsHex =
    "0F 00 00 00 "
    "10 00 00 00 11 00 00 00 12 00 00 00 13 00 00 00 14 00 00 00 15 00 00 00 16 00 00 00 "
    "17 00 00 00 18 00 00 00 19 00 00 00 1A 00 00 00 1B 00 00 00 1C 00 00 00 1D 00 00 00 "
    "1E 00 00 00 ";
const std::string indicesHex =
    "0F 00 00 00 "
    "20 00 00 00 21 00 00 00 22 00 00 00 23 00 00 00 24 00 00 00 25 00 00 00 26 00 00 00 "
    "27 00 00 00 28 00 00 00 29 00 00 00 2A 00 00 00 2B 00 00 00 2C 00 00 00 2D 00 00 00 "
    "2E 00 00 00 ";
const std::string lastHex = "07 00 00 00 78 56 34 12 08 00 00 00 09 00 00 00";

BlockFields<Block> AllFields() {
  BlockFields<Block> all = firstFields;
  all.insert(all.end(), lastFields.begin(), lastFields.end());
  return all;
}

Block Sample() {
  Block block = SampleOf(AllFields());
  block.m_vnOptions = sampleOptions;
  block.m_vnGUIIndices = sampleIndices;
  return block;
}

void ExpectSample(const Block& block) {
  for (const auto& field : AllFields()) EXPECT_EQ(ValueOf(block, field), field.sample);
  EXPECT_EQ(block.m_vnOptions, sampleOptions);
  EXPECT_EQ(block.m_vnGUIIndices, sampleIndices);
}

/// The block after a read of the typed bytes.
Block Read(const std::string& hex, int taskVersion, int controlVersion, Block block = {}) {
  RecordFile file;
  file.Append(Bytes(hex));
  block.Read(file.Pod(), taskVersion, controlVersion);
  EXPECT_EQ(file.Data().FilePosition(), file.Data().Length());
  return block;
}

// ---- The block ----

TEST(DesignOfExperiments, HasInitialValues) {
  const Block block;
  for (const auto& field : AllFields()) EXPECT_EQ(ValueOf(block, field), field.initial);
  EXPECT_EQ(block.m_vnOptions, initialOptions);
  EXPECT_EQ(block.m_vnGUIIndices, Integers(15, 0));
}

TEST(DesignOfExperiments, TakesItsInitialValuesAgain) {
  Block block = Sample();
  block.m_vnOptions.resize(3);
  block.m_vnGUIIndices.clear();
  block.SetDefaultAttributes();
  for (const auto& field : AllFields()) EXPECT_EQ(ValueOf(block, field), field.initial);
  EXPECT_EQ(block.m_vnOptions, initialOptions);
  EXPECT_EQ(block.m_vnGUIIndices, Integers(15, 0));
}

TEST(DesignOfExperiments, CopyTakesEachField) {
  Block copy;
  copy.Copy(Sample());
  ExpectSample(copy);
}

TEST(DesignOfExperiments, CopyIsIndependentOfItsSource) {
  Block source = Sample();
  Block copy;
  copy.Copy(source);
  source.SetDefaultAttributes();
  ExpectSample(copy);
}

// ---- Options ----

TEST(DesignOfExperiments, HasFifteenDesigns) {
  EXPECT_EQ(CDOEControl::m_nNUM_METHODS, 15);
}

TEST(DesignOfExperiments, OptionInForceIsThatOfTheDesign) {
  Block block;
  for (int method = 0; method < 15; ++method) {
    block.m_nMethod = method;
    EXPECT_EQ(block.GetOption(), initialOptions[static_cast<std::size_t>(method)]) << method;
  }
  block.m_vnOptions[3] = -2147483648L;
  block.m_nMethod = 3;
  EXPECT_EQ(block.GetOption(), -2147483647 - 1);
}

TEST(DesignOfExperiments, ADesignWithoutAPlaceHasNoOption) {
  Block block;
  for (const long method : {-1L, 15L, 2147483647L, -2147483648L}) {
    block.m_nMethod = method;
    EXPECT_THROW(block.GetOption(), CInvalidArgument) << method;
  }
  block.m_nMethod = 2;
  block.m_vnOptions.resize(2);
  EXPECT_THROW(block.GetOption(), CInvalidArgument);
  block.m_vnOptions.clear();
  EXPECT_THROW(block.GetOption(), CInvalidArgument);
}

TEST(DesignOfExperiments, SetOptionsTakesTheFirstEntries) {
  Block block;
  block.SetOptions({});
  EXPECT_EQ(block.m_vnOptions, initialOptions);
  block.SetOptions({7, -8, 9});
  EXPECT_EQ(block.m_vnOptions, (Integers{7, -8, 9, 12, -1, 10, 10, 3101, 1, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(block.m_vnGUIIndices, Integers(15, 0));
  block.SetOptions({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15});
  EXPECT_EQ(block.m_vnOptions, (Integers{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}));
}

TEST(DesignOfExperiments, SetGUIIndicesTakesTheFirstEntries) {
  Block block;
  block.SetGUIIndices({});
  EXPECT_EQ(block.m_vnGUIIndices, Integers(15, 0));
  block.SetGUIIndices({7, -8});
  EXPECT_EQ(block.m_vnGUIIndices, (Integers{7, -8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(block.m_vnOptions, initialOptions);
  block.SetGUIIndices(std::vector<int>(15, 5));
  EXPECT_EQ(block.m_vnGUIIndices, Integers(15, 5));
}

TEST(DesignOfExperimentsDeathTest, MoreOptionsThanDesignsStopTheProgram) {
  Block block;
  EXPECT_DEATH(block.SetOptions(std::vector<int>(16)),
               "m_vnOptions\\.size\\(\\) >= vn\\.size\\(\\)");
  block.m_vnOptions.resize(2);
  EXPECT_DEATH(block.SetOptions(std::vector<int>(3)),
               "m_vnOptions\\.size\\(\\) >= vn\\.size\\(\\)");
}

TEST(DesignOfExperimentsDeathTest, MoreIndicesThanDesignsStopTheProgram) {
  Block block;
  EXPECT_DEATH(block.SetGUIIndices(std::vector<int>(16)),
               "m_vnGUIIndices\\.size\\(\\) >= vn\\.size\\(\\)");
  block.m_vnGUIIndices.clear();
  EXPECT_DEATH(block.SetGUIIndices(std::vector<int>(1)),
               "m_vnGUIIndices\\.size\\(\\) >= vn\\.size\\(\\)");
}

// ---- The current record ----

TEST(DesignOfExperiments, TakesFortyEightBytesAndFourForEachEntry) {
  Block block;
  EXPECT_EQ(block.ObjectLength(), 168U);
  block.m_vnOptions.clear();
  EXPECT_EQ(block.ObjectLength(), 108U);
  block.m_vnGUIIndices.resize(1);
  EXPECT_EQ(block.ObjectLength(), 52U);
}

TEST(DesignOfExperiments, NewByteForByte) {
  RecordFile file;
  EXPECT_EQ(Hex(file.Record(Block())),
            "01 00 00 00 04 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
            "0F 00 00 00 "
            "00 00 00 00 00 00 00 00 01 00 00 00 0C 00 00 00 FF FF FF FF 0A 00 00 00 0A 00 00 00 "
            "1D 0C 00 00 01 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
            "00 00 00 00 "
            "0F 00 00 00 "
            "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
            "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
            "00 00 00 00 "
            "00 00 00 00 E8 03 00 00 00 00 00 00 01 00 00 00");
}

TEST(DesignOfExperiments, IsStoredInOrder) {
  RecordFile file;
  EXPECT_EQ(Hex(file.Record(Sample())), firstHex + optionsHex + indicesHex + lastHex);
}

/// Expects that `change` alters the sample's four bytes at `place`, and no others.
template <class Change>
void ExpectChangeAt(RecordFile& file, std::size_t place, Change change) {
  Block block = Sample();
  change(block);
  std::string expected = Bytes(firstHex + optionsHex + indicesHex + lastHex);
  expected.replace(place, 4, Bytes("EF BE 0D 00"));
  EXPECT_EQ(Hex(file.Record(block)), Hex(expected)) << place;
}

TEST(DesignOfExperiments, ChangesTheBytesOfAChangedFieldOnly) {
  RecordFile file;
  constexpr long value = 0x0DBEEF;
  std::size_t place = 0;
  for (const auto& field : firstFields) {
    ExpectChangeAt(file, place, [&](Block& block) { SetValue(block, field, value); });
    place += 4;
  }
  for (std::size_t i = 0; i < 15; ++i) {
    ExpectChangeAt(file, 28 + 4 * i, [&](Block& block) { block.m_vnOptions[i] = value; });
    ExpectChangeAt(file, 92 + 4 * i, [&](Block& block) { block.m_vnGUIIndices[i] = value; });
  }
  place = 152;
  for (const auto& field : lastFields) {
    ExpectChangeAt(file, place, [&](Block& block) { SetValue(block, field, value); });
    place += 4;
  }
}

TEST(DesignOfExperiments, OfAnyContentsIsAsLongAsTold) {
  RecordFile file;
  std::mt19937 random(54);
  std::uniform_int_distribution<long> integers(-0x80000000L, 0x7FFFFFFFL);
  std::uniform_int_distribution<std::size_t> sizes(0, 40);
  for (int round = 0; round < 200; ++round) {
    Block block;
    for (const auto& field : AllFields()) SetValue(block, field, integers(random));
    block.m_vnOptions.resize(sizes(random));
    block.m_vnGUIIndices.resize(sizes(random));
    for (vbINT32& option : block.m_vnOptions) option = integers(random);
    for (vbINT32& index : block.m_vnGUIIndices) index = integers(random);
    const std::size_t length = 48 + 4 * (block.m_vnOptions.size() + block.m_vnGUIIndices.size());
    ASSERT_EQ(block.ObjectLength(), length);
    ASSERT_EQ(file.Record(block).size(), length);
  }
}

// ---- Older records ----

TEST(DesignOfExperiments, OfTheCurrentRecord) {
  const std::string record = firstHex + optionsHex + indicesHex + lastHex;
  ExpectSample(Read(record, 22, 0));
  ExpectSample(Read(record, 0, 18));
  ExpectSample(Read(record, 1000, 0));
}

/// An older record with the bytes of the last fields that it holds.
void ExpectRead(const std::string& lastFieldsHex, int taskVersion, int controlVersion) {
  SCOPED_TRACE("task " + std::to_string(taskVersion) + ", control " +
               std::to_string(controlVersion));
  const Block held = HeldBlock(AllFields());
  const Block block =
      Read(firstHex + optionsHex + indicesHex + lastFieldsHex, taskVersion, controlVersion, held);
  for (const auto& field : firstFields) EXPECT_EQ(ValueOf(block, field), field.sample);
  EXPECT_EQ(block.m_vnOptions, sampleOptions);
  EXPECT_EQ(block.m_vnGUIIndices, sampleIndices);
  for (const auto& field : lastFields) {
    const bool stored = field.gate.IsIn(taskVersion, controlVersion);
    EXPECT_EQ(ValueOf(block, field), stored ? field.sample : ValueOf(held, field)) << field.name;
  }
}

TEST(DesignOfExperiments, KeepsTheRandomSettingsThatAnOlderRecordLacks) {
  const std::string random = "07 00 00 00 78 56 34 12 ";
  const std::string saved = random + "08 00 00 00 ";
  const std::string seeded = saved + "09 00 00 00";
  for (const int task : {0, 9}) ExpectRead("", task, 0);
  for (const int task : {10, 14}) ExpectRead(random, task, 0);
  for (const int task : {15, 17}) ExpectRead(saved, task, 0);
  for (const int task : {18, 22}) ExpectRead(seeded, task, 0);
  for (const int control : {0, 6}) ExpectRead("", 0, control);
  for (const int control : {7, 11}) ExpectRead(random, 0, control);
  for (const int control : {12, 14}) ExpectRead(saved, 0, control);
  for (const int control : {15, 18}) ExpectRead(seeded, 0, control);
}

TEST(DesignOfExperiments, KeepsFifteenEntriesWhereARecordHasFewer) {
  const Block block = Read(firstHex +
                               "03 00 00 00 10 00 00 00 11 00 00 00 12 00 00 00 "
                               "02 00 00 00 20 00 00 00 21 00 00 00 " +
                               lastHex,
                           22, 0);
  EXPECT_EQ(block.m_vnOptions, (Integers{16, 17, 18, 12, -1, 10, 10, 3101, 1, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(block.m_vnGUIIndices, (Integers{32, 33, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
  for (const auto& field : AllFields()) EXPECT_EQ(ValueOf(block, field), field.sample);
}

TEST(DesignOfExperiments, KeepsTheLastEntryOfARecordWithFourteen) {
  const std::string fourteen =
      "0E 00 00 00 "
      "10 00 00 00 11 00 00 00 12 00 00 00 13 00 00 00 14 00 00 00 15 00 00 00 16 00 00 00 "
      "17 00 00 00 18 00 00 00 19 00 00 00 1A 00 00 00 1B 00 00 00 1C 00 00 00 1D 00 00 00 ";
  const Block block = Read(firstHex + fourteen + fourteen + lastHex, 22, 0);
  EXPECT_EQ(block.m_vnOptions,
            (Integers{16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 0}));
  EXPECT_EQ(block.m_vnGUIIndices, block.m_vnOptions);
}

TEST(DesignOfExperiments, KeepsAllEntriesOfARecordWithNone) {
  const Block block = Read(firstHex + "00 00 00 00 00 00 00 00 " + lastHex, 22, 0);
  EXPECT_EQ(block.m_vnOptions, initialOptions);
  EXPECT_EQ(block.m_vnGUIIndices, Integers(15, 0));
}

// ---- Failures ----

TEST(DesignOfExperiments, WithMoreEntriesThanDesignsIsCorrupt) {
  const std::string sixteen = "10 00 00 00 07 00 00 00 " + optionsHex.substr(12);
  ASSERT_EQ(Bytes(sixteen).size(), 68U);
  EXPECT_THROW(Read(firstHex + sixteen + indicesHex + lastHex, 22, 0), CFileCorrupt);
  EXPECT_THROW(Read(firstHex + optionsHex + sixteen + lastHex, 22, 0), CFileCorrupt);
  EXPECT_THROW(Read(firstHex + sixteen + indicesHex + lastHex, 0, 6), CFileCorrupt);
}

TEST(DesignOfExperiments, WithACountThatTheFileCannotHoldIsCorrupt) {
  for (const std::string count : {"FF FF FF FF ", "FF FF FF 7F ", "00 00 00 40 "}) {
    EXPECT_THROW(Read(firstHex + count + indicesHex + lastHex, 22, 0), CFileCorrupt);
    EXPECT_THROW(Read(firstHex + optionsHex + count + lastHex, 22, 0), CFileCorrupt);
  }
}

TEST(DesignOfExperiments, ThatEndsTooEarlyIsTold) {
  RecordFile file;
  const std::string record = Bytes(firstHex + optionsHex + indicesHex + lastHex);
  file.Append(record);
  for (std::size_t size = 0; size < record.size(); ++size) {
    SCOPED_TRACE(size);
    file.Append(record.substr(0, size));
    Block block;
    EXPECT_THROW(block.Read(file.Pod(), 22, 0), CFileRead);
  }
}

TEST(DesignOfExperiments, NeedsADataFile) {
  ExpectADataFileToBeNeeded<CDOEControl>();
}

}  // namespace
