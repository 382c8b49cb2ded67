#include "control/NGOControl.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "tests/control/BlockFields.h"
#include "tests/support/Bytes.h"

namespace {

using Block = CNGOControl;

/// In file order, which ends with the starting strategy.
const BlockFields<Block> fields{
    {"m_nMethod", &Block::m_nMethod, 0, 1, "01 00 00 00"},
    {"m_nOldPopulation", &Block::m_nOldPopulation, 0, 258, "02 01 00 00"},
    {"m_nPopulation", &Block::m_nPopulation, 100, 3, "03 00 00 00", {16, 13}},
    {"m_nMaxIters", &Block::m_nMaxIters, 100, 4, "04 00 00 00"},
    {"m_nFixedSeed", &Block::m_nFixedSeed, 1, -5, "FB FF FF FF"},
    {"m_nSeed", &Block::m_nSeed, 234567890, 305419896, "78 56 34 12", {11, 8}},
    {"m_nConvIters", &Block::m_nConvIters, 5, 7, "07 00 00 00"},
    {"m_nMinIters", &Block::m_nMinIters, 5, 8, "08 00 00 00"},
    {"m_nMinimize", &Block::m_nMinimize, 1, 9, "09 00 00 00"},
    {"m_fCTMIN", &Block::m_fCTMIN, 0.003, 1.0, "3F F0 00 00 00 00 00 00"},
    {"m_fSeedFraction", &Block::m_fSeedFraction, 0.5, 0.75, "3F E8 00 00 00 00 00 00", {20, 17}},
    {"m_fHardAbs", &Block::m_fHardAbs, 0.0001, 2.0, "40 00 00 00 00 00 00 00"},
    {"m_fHardRel", &Block::m_fHardRel, 0.001, -1.0, "BF F0 00 00 00 00 00 00"},
    {"m_fSoftAbs", &Block::m_fSoftAbs, 0.0001, 3.0, "40 08 00 00 00 00 00 00"},
    {"m_fSoftRel", &Block::m_fSoftRel, 0.001, 0.25, "3F D0 00 00 00 00 00 00"},
    {"m_fInertia", &Block::m_fInertia, 1.2, 4.0, "40 10 00 00 00 00 00 00"},
    {"m_fTrust1", &Block::m_fTrust1, 1.5, 5.0, "40 14 00 00 00 00 00 00"},
    {"m_fTrust2", &Block::m_fTrust2, 2.5, 6.0, "40 18 00 00 00 00 00 00"},
    {"m_nCrossType", &Block::m_nCrossType, 0, 20, "14 00 00 00"},
    {"m_fCrossProb", &Block::m_fCrossProb, 0.98, 7.0, "40 1C 00 00 00 00 00 00"},
    {"m_fMutProb", &Block::m_fMutProb, 0.12, 8.0, "40 20 00 00 00 00 00 00"},
    {"m_fNSGACrossProb", &Block::m_fNSGACrossProb, 1.0, 10.0, "40 24 00 00 00 00 00 00", {20, 17}},
    {"m_fNSGAMutProb", &Block::m_fNSGAMutProb, 0.1, -2.0, "C0 00 00 00 00 00 00 00", {20, 17}},
    {"m_nCrossIndex", &Block::m_nCrossIndex, 10, 25, "19 00 00 00", {20, 17}},
    {"m_nMutIndex", &Block::m_nMutIndex, 15, 26, "1A 00 00 00", {20, 17}},
    {"m_nRandomMethod", &Block::m_nRandomMethod, 0, 27, "1B 00 00 00", {10, 7}},
    {"m_nRandomPoints", &Block::m_nRandomPoints, 1000, -28, "E4 FF FF FF", {10, 7}},
    {"m_nSavePoints", &Block::m_nSavePoints, 0, 29, "1D 00 00 00", {15, 12}},
    {"m_nRandomSeed", &Block::m_nRandomSeed, 1, 30, "1E 00 00 00", {18, 15}},
    {"m_nStart", &Block::m_nStart, 10, 31, "1F 00 00 00", {16, 13}},
};

/// 0.003 is 3F 68 93 74 BC 6A 7E FA, 0.001 is 3F 50 62 4D D2 F1 A9 FC, 0.0001 is
/// 3F 1A 36 E2 EB 1C 43 2D.
const std::string initialRecord =
    "00 00 00 00 00 00 00 00 64 00 00 00 64 00 00 00 01 00 00 00 D2 38 FB 0D "
    "05 00 00 00 05 00 00 00 01 00 00 00 "
    "3F 68 93 74 BC 6A 7E FA 3F E0 00 00 00 00 00 00 "
    "3F 1A 36 E2 EB 1C 43 2D 3F 50 62 4D D2 F1 A9 FC "
    "3F 1A 36 E2 EB 1C 43 2D 3F 50 62 4D D2 F1 A9 FC "
    "3F F3 33 33 33 33 33 33 3F F8 00 00 00 00 00 00 40 04 00 00 00 00 00 00 "
    "00 00 00 00 "
    "3F EF 5C 28 F5 C2 8F 5C 3F BE B8 51 EB 85 1E B8 "
    "3F F0 00 00 00 00 00 00 3F B9 99 99 99 99 99 9A "
    "0A 00 00 00 0F 00 00 00 "
    "00 00 00 00 E8 03 00 00 00 00 00 00 01 00 00 00 0A 00 00 00";

/// The block after a read of the typed bytes over the held values.
Block Read(const std::string& hex, int taskVersion, int controlVersion) {
  RecordFile file;
  file.Append(Bytes(hex));
  Block block = HeldBlock(fields);
  block.Read(file.Pod(), taskVersion, controlVersion);
  EXPECT_EQ(file.Data().FilePosition(), file.Data().Length());
  return block;
}

void ExpectSampleIn(const Block& block, int taskVersion, int controlVersion) {
  const Block held = HeldBlock(fields);
  for (const auto& field : fields) {
    const bool stored = field.gate.IsIn(taskVersion, controlVersion);
    EXPECT_EQ(ValueOf(block, field), stored ? field.sample : ValueOf(held, field)) << field.name;
  }
}

// ---- The block ----

TEST(NonGradientSettings, HaveInitialValuesAndTakeThemAgain) {
  ExpectInitialValues(fields);
}

TEST(NonGradientSettings, CopyTakesEachField) {
  ExpectCopyOfEachField(fields);
}

TEST(NonGradientSettings, CopyIsIndependentOfItsSource) {
  Block source = SampleOf(fields);
  Block copy;
  copy.Copy(source);
  source.SetDefaultAttributes();
  for (const auto& field : fields) EXPECT_EQ(ValueOf(copy, field), field.sample) << field.name;
}

TEST(NonGradientSettings, TakeAHundredAndSeventyTwoBytes) {
  EXPECT_EQ(CNGOControl().ObjectLength(), 172U);
  EXPECT_EQ(SampleOf(fields).ObjectLength(), 172U);
}

// ---- The current record ----

TEST(NonGradientSettings, OfANewBlockByteForByte) {
  RecordFile file;
  EXPECT_EQ(Hex(file.Record(CNGOControl())), initialRecord);
}

TEST(NonGradientSettings, AreStoredInOrder) {
  ExpectStoredSample(fields);
}

TEST(NonGradientSettings, ChangeTheirOwnBytesOnly) {
  ExpectEachFieldAtItsPlace(fields, Bytes(initialRecord));
}

TEST(NonGradientSettings, OfAnyContentsAreAsLongAsToldAndReadBack) {
  RecordFile file;
  std::mt19937 random(55);
  std::uniform_int_distribution<long> integers(-0x80000000L, 0x7FFFFFFFL);
  std::uniform_real_distribution<double> reals(-1e6, 1e6);
  for (int round = 0; round < 200; ++round) {
    Block block;
    for (const auto& field : fields) {
      const bool isInteger = std::holds_alternative<long>(field.initial);
      if (isInteger) {
        SetValue(block, field, integers(random));
      } else {
        SetValue(block, field, reals(random));
      }
    }
    const std::string record = file.Record(block);
    ASSERT_EQ(record.size(), block.ObjectLength());
    Block read;
    file.Append(record);
    read.Read(file.Pod(), 22, 0);
    for (const auto& field : fields) ASSERT_EQ(ValueOf(read, field), ValueOf(block, field));
  }
}

TEST(NonGradientSettings, AreWrittenAtTheFilesPosition) {
  RecordFile file;
  const long address = file.Append(std::string(200, 'x'));
  file.Data().SeekTo(address + 10);
  SampleOf(fields).Write(file.Pod());
  EXPECT_EQ(file.Data().FilePosition(), address + 182);
  std::string bytes(200, '\0');
  file.Data().Read(bytes.data(), bytes.size(), address);
  EXPECT_EQ(Hex(bytes),
            Hex(std::string(10, 'x') + SampleBytes(fields, 22, 0) + std::string(18, 'x')));
}

// ---- Older records ----

TEST(NonGradientSettings, KeepWhatAnOlderRecordLacks) {
  ExpectSampleReadFromAllVersions(fields);
}

TEST(NonGradientSettings, OfTheOldestRecord) {
  const std::string record =
      "01 00 00 00 02 01 00 00 04 00 00 00 FB FF FF FF 07 00 00 00 08 00 00 00 09 00 00 00 "
      "3F F0 00 00 00 00 00 00 40 00 00 00 00 00 00 00 BF F0 00 00 00 00 00 00 "
      "40 08 00 00 00 00 00 00 3F D0 00 00 00 00 00 00 40 10 00 00 00 00 00 00 "
      "40 14 00 00 00 00 00 00 40 18 00 00 00 00 00 00 14 00 00 00 "
      "40 1C 00 00 00 00 00 00 40 20 00 00 00 00 00 00";
  ExpectSampleIn(Read(record, 0, 0), 0, 0);
  ExpectSampleIn(Read(record, 9, 0), 9, 0);
  ExpectSampleIn(Read(record, 0, 6), 0, 6);
  const Block block = Read(record, 9, 0);
  EXPECT_EQ(block.m_nMaxIters, 4);
  EXPECT_EQ(block.m_fMutProb, 8.0);
  EXPECT_EQ(block.m_nPopulation, 77);
  EXPECT_EQ(block.m_nStart, 77);
}

TEST(NonGradientSettings, OfARecordWithTheFirstRandomSettings) {
  const std::string record =
      "01 00 00 00 02 01 00 00 04 00 00 00 FB FF FF FF 07 00 00 00 08 00 00 00 09 00 00 00 "
      "3F F0 00 00 00 00 00 00 40 00 00 00 00 00 00 00 BF F0 00 00 00 00 00 00 "
      "40 08 00 00 00 00 00 00 3F D0 00 00 00 00 00 00 40 10 00 00 00 00 00 00 "
      "40 14 00 00 00 00 00 00 40 18 00 00 00 00 00 00 14 00 00 00 "
      "40 1C 00 00 00 00 00 00 40 20 00 00 00 00 00 00 "
      "1B 00 00 00 E4 FF FF FF";
  ExpectSampleIn(Read(record, 10, 0), 10, 0);
  ExpectSampleIn(Read(record, 0, 7), 0, 7);
}

TEST(NonGradientSettings, OfARecordWithSeedAndSavedPoints) {
  const std::string seeded =
      "01 00 00 00 02 01 00 00 04 00 00 00 FB FF FF FF 78 56 34 12 07 00 00 00 08 00 00 00 "
      "09 00 00 00 "
      "3F F0 00 00 00 00 00 00 40 00 00 00 00 00 00 00 BF F0 00 00 00 00 00 00 "
      "40 08 00 00 00 00 00 00 3F D0 00 00 00 00 00 00 40 10 00 00 00 00 00 00 "
      "40 14 00 00 00 00 00 00 40 18 00 00 00 00 00 00 14 00 00 00 "
      "40 1C 00 00 00 00 00 00 40 20 00 00 00 00 00 00 "
      "1B 00 00 00 E4 FF FF FF ";
  const std::string saved = seeded + "1D 00 00 00";
  ExpectSampleIn(Read(seeded, 11, 0), 11, 0);
  ExpectSampleIn(Read(seeded, 14, 0), 14, 0);
  ExpectSampleIn(Read(seeded, 0, 8), 0, 8);
  ExpectSampleIn(Read(seeded, 0, 11), 0, 11);
  ExpectSampleIn(Read(saved, 15, 0), 15, 0);
  ExpectSampleIn(Read(saved, 0, 12), 0, 12);
}

TEST(NonGradientSettings, OfARecordWithPopulationAndStart) {
  const std::string started =
      "01 00 00 00 02 01 00 00 03 00 00 00 04 00 00 00 FB FF FF FF 78 56 34 12 07 00 00 00 "
      "08 00 00 00 09 00 00 00 "
      "3F F0 00 00 00 00 00 00 40 00 00 00 00 00 00 00 BF F0 00 00 00 00 00 00 "
      "40 08 00 00 00 00 00 00 3F D0 00 00 00 00 00 00 40 10 00 00 00 00 00 00 "
      "40 14 00 00 00 00 00 00 40 18 00 00 00 00 00 00 14 00 00 00 "
      "40 1C 00 00 00 00 00 00 40 20 00 00 00 00 00 00 "
      "1B 00 00 00 E4 FF FF FF 1D 00 00 00 ";
  const std::string start = "1F 00 00 00";
  const std::string randomSeed = "1E 00 00 00 ";
  ExpectSampleIn(Read(started + start, 16, 0), 16, 0);
  ExpectSampleIn(Read(started + start, 17, 0), 17, 0);
  ExpectSampleIn(Read(started + start, 0, 13), 0, 13);
  ExpectSampleIn(Read(started + start, 0, 14), 0, 14);
  ExpectSampleIn(Read(started + randomSeed + start, 18, 0), 18, 0);
  ExpectSampleIn(Read(started + randomSeed + start, 19, 0), 19, 0);
  ExpectSampleIn(Read(started + randomSeed + start, 0, 15), 0, 15);
  ExpectSampleIn(Read(started + randomSeed + start, 0, 16), 0, 16);
}

TEST(NonGradientSettings, OfTheCurrentRecord) {
  const std::string record =
      "01 00 00 00 02 01 00 00 03 00 00 00 04 00 00 00 FB FF FF FF 78 56 34 12 07 00 00 00 "
      "08 00 00 00 09 00 00 00 "
      "3F F0 00 00 00 00 00 00 3F E8 00 00 00 00 00 00 40 00 00 00 00 00 00 00 "
      "BF F0 00 00 00 00 00 00 40 08 00 00 00 00 00 00 3F D0 00 00 00 00 00 00 "
      "40 10 00 00 00 00 00 00 40 14 00 00 00 00 00 00 40 18 00 00 00 00 00 00 14 00 00 00 "
      "40 1C 00 00 00 00 00 00 40 20 00 00 00 00 00 00 "
      "40 24 00 00 00 00 00 00 C0 00 00 00 00 00 00 00 19 00 00 00 1A 00 00 00 "
      "1B 00 00 00 E4 FF FF FF 1D 00 00 00 1E 00 00 00 1F 00 00 00";
  for (const auto& [task, control] : std::vector<std::pair<int, int>>{
           {20, 0}, {22, 0}, {1000, 0}, {0, 17}, {0, 18}, {0, 1000}, {22, 18}}) {
    ExpectSampleIn(Read(record, task, control), task, control);
  }
  RecordFile file;
  EXPECT_EQ(Hex(file.Record(SampleOf(fields))), record);
}

// ---- Failures ----

TEST(NonGradientSettings, ThatEndTooEarlyAreTold) {
  ExpectCutRecordsToFail(fields);
}

TEST(NonGradientSettings, NeedADataFile) {
  ExpectADataFileToBeNeeded<CNGOControl>();
}

}  // namespace
