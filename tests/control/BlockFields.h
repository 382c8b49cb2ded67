#pragma once

#include <gtest/gtest.h>

#include <string>
#include <variant>
#include <vector>

#include "store/KestErr.h"
#include "store/pod.h"
#include "store/vbdbase.h"
#include "store/vbscalar.h"
#include "tests/support/Bytes.h"
#include "tests/support/TempFolder.h"

// The stored fields of a control block as a list that a test types, and what holds for all of them.

/// The versions of a task record and of a control record that first hold a field.
struct Gate {
  int task = 0;
  int control = 0;

  bool IsIn(int taskVersion, int controlVersion) const {
    return taskVersion >= task || controlVersion >= control;
  }
};

using FieldValue = std::variant<long, double, std::string>;

/// A field with its value in a new block, and another value with its stored bytes.
template <class Block>
struct BlockField {
  std::string name;
  std::variant<vbINT32 Block::*, vbFLOAT64 Block::*, std::string Block::*> member;
  FieldValue initial;
  FieldValue sample;
  std::string sampleHex;
  Gate gate{};
};

/// All fields of a block, in file order.
template <class Block>
using BlockFields = std::vector<BlockField<Block>>;

inline long Plain(const vbINT32& value) {
  return value;
}
inline double Plain(const vbFLOAT64& value) {
  return value;
}
inline std::string Plain(const std::string& value) {
  return value;
}

template <class Block>
FieldValue ValueOf(const Block& block, const BlockField<Block>& field) {
  return std::visit([&](auto member) { return FieldValue(Plain(block.*member)); }, field.member);
}

/// Not inlined: g++ 12 would warn of members that the block at hand doesn't have.
template <class Block>
[[gnu::noinline]] void SetValue(Block& block, const BlockField<Block>& field,
                                const FieldValue& value) {
  std::visit([&](auto member) { block.*member = std::get<decltype(Plain(block.*member))>(value); },
             field.member);
}

template <class Block>
Block SampleOf(const BlockFields<Block>& fields) {
  Block block;
  for (const auto& field : fields) SetValue(block, field, field.sample);
  return block;
}

/// A block with values that are neither the initial nor the sample ones.
template <class Block>
Block HeldBlock(const BlockFields<Block>& fields) {
  const FieldValue held[] = {77L, 77.5, std::string("held")};
  Block block;
  for (const auto& field : fields) SetValue(block, field, held[field.initial.index()]);
  return block;
}

/// The bytes of the sample as records of these versions hold them.
template <class Block>
std::string SampleBytes(const BlockFields<Block>& fields, int taskVersion, int controlVersion) {
  std::string bytes;
  for (const auto& field : fields) {
    if (field.gate.IsIn(taskVersion, controlVersion)) bytes += Bytes(field.sampleHex);
  }
  return bytes;
}

/// A data file that blocks are written to and read from.
class RecordFile {
 public:
  RecordFile() : pod_(folder_ / "blocks.ksb") { pod_.CreateDataFile(folder_ / "blocks.ksb", 0); }

  POD* Pod() { return &pod_; }
  vbDatabase& Data() { return *pod_.DataFile(); }

  /// Puts the bytes at the end of the file and the file's position before them. Their address.
  long Append(const std::string& bytes) {
    const long address = Data().Length();
    Data().Write(bytes.data(), bytes.size(), address, false, true);
    Data().SeekTo(address);
    return address;
  }

  /// The bytes that `write(pod)` puts at the end of the file, up to where it leaves the position.
  template <class Write>
  std::string Written(Write write) {
    const long address = Data().Length();
    Data().SeekTo(address);
    write(Pod());
    std::string bytes(static_cast<std::size_t>(Data().FilePosition() - address), '\0');
    Data().Read(bytes.data(), bytes.size(), address);
    return bytes;
  }

  template <class Block>
  std::string Record(const Block& block) {
    return Written([&](POD* pod) { block.Write(pod); });
  }

 private:
  TempFolder folder_;
  POD pod_;
};

template <class Block>
void ExpectInitialValues(const BlockFields<Block>& fields) {
  Block block;
  for (const auto& field : fields) EXPECT_EQ(ValueOf(block, field), field.initial) << field.name;
  block = SampleOf(fields);
  block.SetDefaultAttributes();
  for (const auto& field : fields) EXPECT_EQ(ValueOf(block, field), field.initial) << field.name;
}

template <class Block>
void ExpectCopyOfEachField(const BlockFields<Block>& fields) {
  Block copy;
  copy.Copy(SampleOf(fields));
  for (const auto& field : fields) EXPECT_EQ(ValueOf(copy, field), field.sample) << field.name;
}

template <class Block>
void ExpectStoredSample(const BlockFields<Block>& fields) {
  RecordFile file;
  std::string all;
  for (const auto& field : fields) all += field.sampleHex;
  EXPECT_EQ(Hex(file.Record(SampleOf(fields))), Hex(Bytes(all)));
}

inline std::size_t StoredWidth(const FieldValue& value) {
  if (const std::string* text = std::get_if<std::string>(&value)) {
    return text->empty() ? 5 : 4 + text->size();
  }
  return std::holds_alternative<long>(value) ? 4 : 8;
}

/// That each field alone changes just its own bytes of the record of a new block.
template <class Block>
void ExpectEachFieldAtItsPlace(const BlockFields<Block>& fields, const std::string& initialRecord) {
  RecordFile file;
  std::size_t place = 0;
  for (const auto& field : fields) {
    const std::size_t width = StoredWidth(field.initial);
    Block block;
    SetValue(block, field, field.sample);
    std::string expected = initialRecord;
    expected.replace(place, width, Bytes(field.sampleHex));
    EXPECT_NE(Hex(expected), Hex(initialRecord)) << field.name;
    EXPECT_EQ(Hex(file.Record(block)), Hex(expected)) << field.name;
    EXPECT_EQ(block.ObjectLength(), expected.size()) << field.name;
    place += width;
  }
  EXPECT_EQ(place, initialRecord.size());
}

/// That a block takes the fields that records of these versions hold, keeps the others and leaves
/// the file behind its last byte.
template <class Block>
void ExpectSampleRead(RecordFile& file, const BlockFields<Block>& fields, int taskVersion,
                      int controlVersion) {
  SCOPED_TRACE("task " + std::to_string(taskVersion) + ", control " +
               std::to_string(controlVersion));
  const std::string bytes = SampleBytes(fields, taskVersion, controlVersion);
  const Block held = HeldBlock(fields);
  Block block = held;
  const long address = file.Append(bytes + "behind");
  block.Read(file.Pod(), taskVersion, controlVersion);
  EXPECT_EQ(file.Data().FilePosition(), address + static_cast<long>(bytes.size()));
  for (const auto& field : fields) {
    const bool stored = field.gate.IsIn(taskVersion, controlVersion);
    EXPECT_EQ(ValueOf(block, field), stored ? field.sample : ValueOf(held, field)) << field.name;
  }
}

/// The versions that an embedding record may give, older and newer ones than the library's too.
template <class Block>
void ExpectSampleReadFromAllVersions(const BlockFields<Block>& fields) {
  RecordFile file;
  for (int version = 0; version <= 23; ++version) ExpectSampleRead(file, fields, version, 0);
  for (int version = 0; version <= 19; ++version) ExpectSampleRead(file, fields, 0, version);
  ExpectSampleRead(file, fields, 10, 15);
  ExpectSampleRead(file, fields, 18, 7);
}

/// That a record which ends before its last byte is told so.
template <class Block>
void ExpectCutRecordsToFail(const BlockFields<Block>& fields) {
  RecordFile file;
  const std::string record = SampleBytes(fields, 22, 18);
  for (std::size_t size = 0; size < record.size(); ++size) {
    SCOPED_TRACE(size);
    file.Append(record.substr(0, size));
    Block block;
    EXPECT_THROW(block.Read(file.Pod(), 22, 0), CFileRead);
  }
}

/// That neither operation takes a null database, or one without a data file.
template <class Block>
void ExpectADataFileToBeNeeded() {
  Block block;
  EXPECT_THROW(block.Read(nullptr, 22, 0), CNullPtr);
  EXPECT_THROW(block.Write(nullptr), CNullPtr);
  POD closed("closed.ksb");
  EXPECT_THROW(block.Read(&closed, 22, 0), CNullPtr);
  EXPECT_THROW(block.Write(&closed), CNullPtr);
}
