#include <gtest/gtest.h>

#include <iterator>
#include <map>
#include <random>
#include <set>
#include <string>
#include <utility>

#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/vbdbase.h"
#include "tests/support/Bytes.h"
#include "tests/support/RawFile.h"
#include "tests/support/SampleRecord.h"
#include "tests/support/Study.h"

// A long random life of a study beside a model of it in memory. After every operation its result is
// as the model says, and from time to time every byte of both files.

namespace {

constexpr int kOperations = 10000;
constexpr int kUnderOneLock = 250;
constexpr int kBeforeReopening = 2000;
constexpr int kKeys = 150;
constexpr int kLongestText = 3000;
constexpr long kClass = 24000;
constexpr long kTree = 23;

std::string Word(long value) {
  return Bytes(HexWord(value));
}

/// The bytes of a stored plain record, without its checksum.
std::string ObjectBytes(long address, int id, const std::string& text) {
  const std::string stored = text.empty() ? std::string(1, '\0') : text;
  return Word(kClass) + Word(address) + Word(1) + Word(id) +
         Word(static_cast<long>(stored.size())) + stored;
}

class ObjectModel : public testing::TestWithParam<unsigned> {
 protected:
  void Run() {
    for (int done = 0; done < kOperations && !HasFailure(); done += kUnderOneLock) {
      {
        const CLock lock(study.Pod(), 0);
        for (int i = 0; i < kUnderOneLock; ++i) Step();
      }
      CheckFiles();
      if (done % kBeforeReopening == 0) study.Reopen();
    }
  }

 private:
  using Stored = std::pair<const int, std::string>;

  int Draw(int least, int most) { return std::uniform_int_distribution(least, most)(random); }

  /// Any bytes but zero, where a text ends.
  std::string DrawText() {
    if (noise.empty()) {
      for (int i = 0; i < 100000; ++i) noise += static_cast<char>(Draw(1, 255));
    }
    const int length = Draw(0, kLongestText);
    const int start = Draw(0, static_cast<int>(noise.size()) - length);
    return noise.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(length));
  }

  PlainRecord Record(int id) {
    PlainRecord record(study.Pod());
    record.m_nID = id;
    return record;
  }

  void Step() {
    const int id = Draw(1, kKeys);
    switch (Draw(1, 20)) {
      default:
        return Put(id);
      case 9:
      case 10:
        return Add(id);
      case 11:
      case 12:
      case 13:
        return Get(id);
      case 14:
        return Find(id);
      case 15:
      case 16:
        return Remove(id);
      case 17:
      case 18:
        return Delete(id);
      case 19:
      case 20:
        return UnDelete();
    }
  }

  void Keep(const PlainRecord& record) {
    live[static_cast<int>(record.m_nID)] = record.m_strText;
    deleted.erase(record.ObjectAddress());
  }

  void Put(int id) {
    PlainRecord record = Record(id);
    record.m_strText = DrawText();
    EXPECT_TRUE(record.PutObject());
    Keep(record);
  }

  void Add(int id) {
    PlainRecord record = Record(id);
    record.m_strText = DrawText();
    if (live.contains(id)) {
      EXPECT_THROW(record.WriteObject(true), CObjectNotAdded);
      return;
    }
    EXPECT_TRUE(record.WriteObject(true));
    Keep(record);
  }

  void Get(int id) {
    PlainRecord record = Record(id);
    const auto expected = live.find(id);
    ASSERT_EQ(record.GetObject(), expected != live.end());
    if (expected != live.end()) {
      EXPECT_EQ(record.m_nID, id);
      EXPECT_EQ(record.m_strText, expected->second);
    }
  }

  void Find(int id) { EXPECT_EQ(Record(id).FindObject(), live.contains(id)); }

  void Remove(int id) { EXPECT_EQ(Record(id).RemoveObject(), live.erase(id) == 1); }

  void Delete(int id) {
    PlainRecord record = Record(id);
    const auto expected = live.find(id);
    ASSERT_EQ(record.DeleteObject(), expected != live.end());
    if (expected == live.end()) return;
    deleted.emplace(record.ObjectAddress(), *expected);
    live.erase(expected);
  }

  /// Brings back the block and the key of a deleted object whose key is free.
  void UnDelete() {
    if (deleted.empty()) return;
    const auto chosen = std::next(deleted.begin(), Draw(0, static_cast<int>(deleted.size()) - 1));
    const auto& [address, object] = *chosen;
    if (live.contains(object.first)) return;
    EXPECT_TRUE(study.Pod()->DataFile()->UnDelete(address));
    EXPECT_TRUE(Record(object.first).Add(address, kClass));
    EXPECT_FALSE(study.Pod()->DataFile()->UnDelete(address));
    live.insert(object);
    deleted.erase(chosen);
  }

  void CheckFiles() {
    const RawFile data = ReadRawFile(study.DataPath());
    const RawFile index = ReadRawFile(study.IndexPath());
    ASSERT_EQ(FaultOf(data), "");
    ASSERT_EQ(FaultOf(index), "");
    ASSERT_EQ(data.endOfFile, static_cast<long>(data.bytes.size()));
    ASSERT_EQ(index.endOfFile, static_cast<long>(index.bytes.size()));
    CheckObjects(data, index);
    CheckDeleted(data);
  }

  /// That exactly the live objects are stored, under their keys, byte for byte.
  void CheckObjects(const RawFile& data, const RawFile& index) {
    const std::map<long, std::string> objects = ObjectsOf(data, kClass);
    const std::map<std::string, long> keys = ReadRawTree(index, kTree);
    ASSERT_EQ(objects.size(), live.size());
    ASSERT_EQ(keys.size(), live.size());
    for (const auto& [id, text] : live) {
      const std::string digits = std::to_string(id);
      const auto key = keys.find(std::string(11 - digits.size(), ' ') + digits);
      ASSERT_NE(key, keys.end()) << id;
      const auto object = objects.find(key->second);
      ASSERT_NE(object, objects.end()) << id;
      ASSERT_TRUE(object->second == ObjectBytes(object->first, id, text)) << id;
    }
  }

  /// That the blocks marked as deleted are those of the objects that can come back.
  void CheckDeleted(const RawFile& data) {
    std::set<long> expected;
    for (const auto& [address, object] : deleted) expected.insert(address);
    std::set<long> found;
    for (const RawBlock& block : data.blocks) {
      if (block.status == 'D') found.insert(block.ObjectAddress());
    }
    ASSERT_EQ(found, expected);
  }

  Study study;
  std::mt19937 random{GetParam()};
  std::string noise;
  std::map<int, std::string> live;
  std::map<long, Stored> deleted;  // by object address
};

TEST_P(ObjectModel, AndTheStudyAgreeForALongTime) {
  Run();
}

INSTANTIATE_TEST_SUITE_P(Seeds, ObjectModel, testing::Values(20210415U, 6210U));

}  // namespace
