#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "store/KestErr.h"
#include "store/RecordIO.h"
#include "store/vbscalar.h"
#include "tests/support/Bytes.h"

// Fields of blocks that two kinds of records embed, each with versions of its own, and arrays of a
// fixed size.

namespace {

struct Block {
  vbINT32 first{-1};
  vbINT32 second{-2};
};

}  // namespace

template <>
struct kestdb::BlockOf<Block> {
  static constexpr auto Fields = [](auto& file, auto& block) {
    file(block.first);
    file.since(kestdb::BlockVersions{.task = 10, .control = 4}, block.second);
  };
};

namespace {

using kestdb::Embedding;
using kestdb::RecordMeter;
using kestdb::RecordReader;
using kestdb::RecordWriter;

/// The two fields of the block in a record of that version.
std::vector<long> FieldsOf(const std::string& version, Embedding embedding) {
  const std::string record = Bytes(version + "05 00 00 00 06 00 00 00");
  RecordReader file(record);
  Block block;
  file.blocks(embedding, block);
  return {block.first, block.second};
}

TEST(RecordBlocks, HaveTheFieldsOfATasksVersion) {
  EXPECT_EQ(FieldsOf("09 00 00 00", Embedding::Task), (std::vector<long>{5, -2}));
  EXPECT_EQ(FieldsOf("0A 00 00 00", Embedding::Task), (std::vector<long>{5, 6}));
  EXPECT_EQ(FieldsOf("0B 00 00 00", Embedding::Task), (std::vector<long>{5, 6}));
}

TEST(RecordBlocks, HaveTheFieldsOfAControlsVersion) {
  EXPECT_EQ(FieldsOf("03 00 00 00", Embedding::Control), (std::vector<long>{5, -2}));
  EXPECT_EQ(FieldsOf("04 00 00 00", Embedding::Control), (std::vector<long>{5, 6}));
  EXPECT_EQ(FieldsOf("09 00 00 00", Embedding::Control), (std::vector<long>{5, 6}));
}

TEST(RecordBlocks, AreReadOneAfterTheOtherAndBeforeWhatFollows) {
  const std::string record =
      Bytes("0A 00 00 00 01 00 00 00 02 00 00 00 03 00 00 00 04 00 00 00 05 00 00 00");
  RecordReader file(record);
  Block blocks[2];
  vbINT32 behind;
  file.blocks(Embedding::Task, blocks[0], blocks[1]);
  file(behind);
  EXPECT_EQ(blocks[0].second, 2);
  EXPECT_EQ(blocks[1].first, 3);
  EXPECT_EQ(blocks[1].second, 4);
  EXPECT_EQ(behind, 5);
}

TEST(RecordBlocks, AreWrittenAndMeasuredInFull) {
  std::vector<char> record;
  RecordWriter writer(record);
  RecordMeter meter;
  const Block block{7, 8};
  for (const Embedding embedding : {Embedding::Task, Embedding::Control}) {
    writer.blocks(embedding, block);
    meter.blocks(embedding, block);
  }
  EXPECT_EQ(Hex(std::string(record.begin(), record.end())),
            "07 00 00 00 08 00 00 00 07 00 00 00 08 00 00 00");
  EXPECT_EQ(meter.Length(), 16U);
}

TEST(RecordBlocks, ThatEndTooEarlyAreCorrupt) {
  const std::string record = Bytes("0A 00 00 00 05 00 00 00 06 00 00");
  RecordReader file(record);
  Block block;
  EXPECT_THROW(file.blocks(Embedding::Task, block), CFileCorrupt);
}

// ---- Arrays of a fixed size ----

using Integers = std::vector<vbINT32>;

Integers ReadOver(Integers array, const std::string& hex) {
  const std::string record = Bytes("01 00 00 00" + hex);
  RecordReader file(record);
  file.over(array);
  return array;
}

TEST(FixedArrays, TakeStoredValuesOverTheirFirstEntries) {
  EXPECT_EQ(ReadOver({7, 8, 9}, "02 00 00 00 01 00 00 00 02 00 00 00"), (Integers{1, 2, 9}));
  EXPECT_EQ(ReadOver({7, 8, 9}, "00 00 00 00"), (Integers{7, 8, 9}));
  EXPECT_EQ(ReadOver({7, 8}, "02 00 00 00 01 00 00 00 02 00 00 00"), (Integers{1, 2}));
}

TEST(FixedArrays, WithMoreValuesThanEntriesAreCorrupt) {
  EXPECT_THROW(ReadOver({7}, "02 00 00 00 01 00 00 00 02 00 00 00"), CFileCorrupt);
}

TEST(FixedArrays, WithMoreValuesThanTheRecordAreCorrupt) {
  EXPECT_THROW(ReadOver(Integers(100), "02 00 00 00 01 00 00 00 02 00 00"), CFileCorrupt);
  EXPECT_THROW(ReadOver(Integers(100), "FF FF FF FF 01 00 00 00"), CFileCorrupt);
}

TEST(FixedArrays, AreWrittenAndMeasuredAsVectors) {
  std::vector<char> record;
  RecordWriter writer(record);
  RecordMeter meter;
  const Integers array{1, 2};
  writer.over(array);
  meter.over(array);
  EXPECT_EQ(Hex(std::string(record.begin(), record.end())), "02 00 00 00 01 00 00 00 02 00 00 00");
  EXPECT_EQ(meter.Length(), 12U);
}

}  // namespace
