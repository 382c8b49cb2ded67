#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "store/KestErr.h"
#include "task/Task.h"
#include "tests/support/Bytes.h"
#include "tests/support/Log.h"
#include "tests/support/RawFile.h"
#include "tests/support/StoredRecord.h"
#include "tests/support/Study.h"
#include "tests/task/TaskRecord.h"

namespace {

const std::string version22 = "16 00 00 00 ";
const std::string seven = "07 00 00 00 ";  // the ID

class TaskRecord : public testing::Test {
 protected:
  long Store(const std::string& hex) { return StoreRecord(study.Pod(), 3000, Bytes(hex)); }

  /// What the library reads from a typed record.
  CTask Read(const std::string& hex) {
    CTask task(study.Pod());
    task.Read(Store(hex));
    return task;
  }
  CTask NewTask() {
    CTask task(study.Pod());
    task.m_nID = 7;
    return task;
  }
  std::string Stored(CTask& task) {
    task.PutObject();
    return Hex(StoredRecord(task));
  }

  Study study;
};

/// The record of a version: the pieces that it holds, each with its other value.
std::string RecordOf(long version, const TaskFields& fields) {
  std::string hex = HexWord(version) + " " + seven;
  for (const auto& field : fields) {
    if (field.since <= version) hex += field.changed;
  }
  return hex;
}

std::string FreshRecord(const TaskFields& fields) {
  std::string hex = version22 + seven;
  for (const auto& field : fields) hex += field.fresh;
  return hex;
}

/// The same bytes in the notation of Hex.
std::string Plain(const std::string& hex) {
  return Hex(Bytes(hex));
}

// ---- The current version ----

TEST_F(TaskRecord, OfDefaultsByteForByte) {
  CTask task = NewTask();
  const TaskFields fields = AllTaskFields();
  EXPECT_EQ(Stored(task), Plain(FreshRecord(fields)));
  const CTask read = Read(FreshRecord(fields));
  EXPECT_EQ(read.m_nID, 7);
  ExpectAll(read, fields, false);
}

TEST_F(TaskRecord, OfChangedFieldsByteForByte) {
  CTask task = NewTask();
  const TaskFields fields = AllTaskFields();
  ChangeAll(task, fields);
  EXPECT_EQ(Stored(task), Plain(RecordOf(22, fields)));
  const CTask read = Read(RecordOf(22, fields));
  EXPECT_EQ(read.m_nID, 7);
  ExpectAll(read, fields, true);
}

TEST_F(TaskRecord, HoldsTheIDBehindTheVersion) {
  CTask task(study.Pod());
  task.m_nID = 0x01020304;
  EXPECT_EQ(Stored(task).substr(0, 24), "16 00 00 00 04 03 02 01 ");
}

TEST_F(TaskRecord, HoldsEachFieldAtItsPlace) {
  const TaskFields fields = AllTaskFields();
  std::string before = version22 + seven;
  std::string behind = FreshRecord(fields).substr(before.size());
  for (const auto& field : fields) {
    SCOPED_TRACE(before.size());
    ASSERT_NE(field.changed, field.fresh);
    behind.erase(0, field.fresh.size());
    CTask task = NewTask();
    field.change(task);
    const std::string record = before + field.changed + behind;
    EXPECT_EQ(Stored(task), Plain(record));
    EXPECT_EQ(task.ObjectLength(), Bytes(record).size());
    before += field.fresh;
  }
}

TEST_F(TaskRecord, GivesEachFieldBack) {
  const TaskFields fields = AllTaskFields();
  std::string before = version22 + seven;
  std::string behind = FreshRecord(fields).substr(before.size());
  for (const auto& field : fields) {
    SCOPED_TRACE(before.size());
    behind.erase(0, field.fresh.size());
    const CTask task = Read(before + field.changed + behind);
    for (const auto& other : fields) other.expect(task, &other == &field);
    before += field.fresh;
  }
}

TEST_F(TaskRecord, OfDefaultsHasTheLengthOfItsParts) {
  // The texts: title, program, arguments and two files; the remote machine's; creation time.
  const unsigned long texts =
      5 + 15 + 5 + 12 + 12 + (4 + 42) + (4 + 45) + (4 + 46) + 8 + 8 + 10 + 5;
  const unsigned long blocks = (248 + 15 + 5 + 12 + 12) + 264 + 168 + 172 + 16;
  EXPECT_EQ(CTask(study.Pod()).ObjectLength(), 25U * 4 + 4 * 4 + texts + blocks);
}

TEST_F(TaskRecord, IsAsLongAsItsObjectLengthSays) {
  std::mt19937 random(7);
  const auto size = [&] { return std::uniform_int_distribution<std::size_t>(0, 70)(random); };
  for (int round = 0; round < 200; ++round) {
    SCOPED_TRACE(round);
    CTask task = NewTask();
    unsigned long length = 25 * 4 + 4 * 4 + 248 + 264 + 48 + 172 + 16;
    for (std::string* text :
         {&task.m_strTitle, &task.m_strProgram, &task.m_strArgs, &task.m_strVarFile,
          &task.m_strRespFile, &task.m_strConnectTemplate, &task.m_strCopyToTemplate,
          &task.m_strCopyFromTemplate, &task.m_strUser, &task.m_strHost, &task.m_strRemoteDir,
          &task.m_strCreated, &task.m_DGO.m_strGradProgram, &task.m_DGO.m_strGradArgs,
          &task.m_DGO.m_strGradVarFile, &task.m_DGO.m_strGradRespFile}) {
      text->assign(size(), 'x');
      length += 4 + std::max<std::size_t>(1, text->size());
    }
    for (std::vector<vbINT32>* numbers :
         {&task.m_vnAnalyzeFlags, &task.m_vnPointLocked, &task.m_vnChildren, &task.m_vnRestarts,
          &task.m_DOE.m_vnOptions, &task.m_DOE.m_vnGUIIndices}) {
      numbers->assign(size(), 7);
      length += 4 * numbers->size();
    }
    EXPECT_EQ(task.ObjectLength(), length);
    task.PutObject();
    EXPECT_EQ(StoredRecord(task).size(), length);
  }
}

// ---- Other versions ----

TEST_F(TaskRecord, OfAnOlderVersionLeavesWhatItLacksAtTheDefault) {
  const TaskFields fields = AllTaskFields();
  for (long version = 9; version <= 22; ++version) {
    SCOPED_TRACE(version);
    const CTask task = Read(RecordOf(version, fields));
    EXPECT_EQ(task.m_nID, 7);
    for (const auto& field : fields) {
      SCOPED_TRACE(field.changed);
      field.expect(task, field.since <= version);
    }
  }
}

TEST_F(TaskRecord, OfAnOlderVersionLeavesWhatItLacksAsTheObjectHeldIt) {
  const TaskFields fields = AllTaskFields();
  std::string record = HexWord(9) + " " + seven;
  for (const auto& field : fields) {
    if (field.since <= 9) record += field.fresh;
  }
  CTask task(study.Pod());
  ChangeAll(task, fields);
  task.Read(Store(record));
  for (const auto& field : fields) {
    SCOPED_TRACE(field.changed);
    field.expect(task, field.since > 9);
  }
}

TEST_F(TaskRecord, GrowsFromVersionToVersion) {
  // The bytes that each version adds, the texts being of one letter.
  const std::vector<std::pair<long, std::size_t>> growth{
      {10, 2 * 4 + 5 * 8},            // counts; method and points of a random analysis
      {11, 4 + (2 * 4 + 3 * 5) + 4},  // routine; gradient program; seed
      {12, 4 + 6 * 5},                // remote machine
      {13, 4},                        // its timeout
      {14, 4},                        // skipped iterations
      {15, 5 * 4},                    // saved points
      {16, 2 * 4},                    // population and start
      {17, 4},                        // starting points
      {18, 5 * 4},                    // random seed
      {19, 2 * 4},                    // approximations
      {20, 3 * 8 + 2 * 4 + 4},        // NSGA-II; the task restarted
      {21, 4 + 2 * 4},                // the tasks that restart
      {22, 2 * 8},                    // p-values
  };
  // Of version 9: the words, one text of three letters, and four of one.
  const std::size_t before = 3 * 4 + 7 + 4 * 5;
  const std::size_t gradient = 16 * 4 + 19 * 8 + 5;
  const std::size_t surface = 18 * 4 + 20 * 8;
  const std::size_t design = 6 * 4 + 2 * 16 * 4;
  const std::size_t nonGradient = 8 * 4 + 10 * 8;
  const std::size_t behind = (4 + 2 * 4) + (4 + 3 * 4) + 13 * 4 + 7 + 4 + (4 + 2 * 4);
  std::size_t size = before + gradient + surface + design + nonGradient + behind;
  const TaskFields fields = AllTaskFields();
  EXPECT_EQ(Bytes(RecordOf(9, fields)).size(), size);
  for (const auto& [version, added] : growth) {
    size += added;
    EXPECT_EQ(Bytes(RecordOf(version, fields)).size(), size) << version;
  }
}

TEST_F(TaskRecord, OfVersionNineteenHasNoRestarts) {
  const CTask task = Read(RecordOf(19, AllTaskFields()));
  EXPECT_EQ(task.m_nRestartOf, 0);
  EXPECT_TRUE(task.m_vnRestarts.empty());
  EXPECT_EQ(task.m_vnChildren, (std::vector<vbINT32>{48, 50}));
}

TEST_F(TaskRecord, OfAnOlderVersionIsStoredAsTheCurrentOne) {
  const TaskFields fields = AllTaskFields();
  CTask task = Read(RecordOf(9, fields));
  std::string record = version22 + seven;
  for (const auto& field : fields) record += field.since <= 9 ? field.changed : field.fresh;
  EXPECT_EQ(Stored(task), Plain(record));
}

TEST_F(TaskRecord, OfANewerVersionIsReadAsFarAsKnown) {
  const TaskFields fields = AllTaskFields();
  for (const long version : {23L, 1000L, 2147483647L}) {
    SCOPED_TRACE(version);
    ExpectAll(Read(RecordOf(version, fields) + "2A 00 00 00 FF FF FF FF 01"), fields, true);
  }
}

TEST_F(TaskRecord, OfVersionEightOrBelowIsRefused) {
  const TaskFields fields = AllTaskFields();
  for (const long version : {8L, 7L, 1L, 0L, -1L, -2147483647L}) {
    SCOPED_TRACE(version);
    const long address = Store(HexWord(version) + RecordOf(22, fields).substr(12));
    CTask task(study.Pod());
    ClearLog();
    EXPECT_THROW(task.Read(address), CInvalidType);
    EXPECT_EQ(task.m_nID, 0);
    ExpectAll(task, fields, false);
    EXPECT_EQ(task.ObjectAddress(), 0);
    ASSERT_FALSE(Log().empty());
    EXPECT_EQ(Log().front().kind, "LError");
    const std::string text = PrintedLog();
    for (const std::string& part : {std::string("CTask"), std::to_string(address),
                                    "version " + std::to_string(version), std::string("9")}) {
      EXPECT_NE(text.find(part), std::string::npos) << text;
    }
  }
}

// ---- Damage ----

/// Whether the piece starts with a count: that of a text or of numbers.
bool IsCounted(const Field<CTask>& field) {
  const std::size_t bytes = Bytes(field.changed).size();
  return bytes != 4 && bytes != 8;
}

TEST_F(TaskRecord, WithACountThatItCannotHoldIsCorrupt) {
  const TaskFields fields = AllTaskFields();
  const std::string whole = Bytes(RecordOf(22, fields));
  std::size_t offset = 8;
  int counted = 0;
  for (const auto& field : fields) {
    if (IsCounted(field)) {
      SCOPED_TRACE(field.changed);
      ++counted;
      for (const char* count : {"FF FF FF FF", "FF FF FF 7F", "00 00 00 80", "00 10 00 00"}) {
        std::string damaged = whole;
        damaged.replace(offset, 4, Bytes(count));
        EXPECT_THROW(Read(Hex(damaged)), CFileCorrupt);
      }
    }
    offset += Bytes(field.changed).size();
  }
  EXPECT_EQ(counted, 16 + 6);
}

TEST_F(TaskRecord, WithMoreDesignsThanThereAreIsCorrupt) {
  std::string record = version22 + seven;
  for (const auto& field : AllTaskFields()) {
    const bool options = field.changed.starts_with("0F 00 00 00 01 ");
    if (options) record += "10 00 00 00 01 00 00 00 ";
    record += options ? field.changed.substr(12) : field.changed;
  }
  EXPECT_THROW(Read(record), CFileCorrupt);
}

TEST_F(TaskRecord, ThatEndsWithinAFieldIsCorrupt) {
  const TaskFields fields = AllTaskFields();
  const std::string whole = RecordOf(22, fields);
  EXPECT_THROW(Read(""), CFileCorrupt);
  EXPECT_THROW(Read(version22), CFileCorrupt);
  std::size_t end = version22.size() + seven.size();
  for (const auto& field : fields) {
    SCOPED_TRACE(end);
    EXPECT_THROW(Read(whole.substr(0, end)), CFileCorrupt);
    end += field.changed.size();
    EXPECT_THROW(Read(whole.substr(0, end - 3)), CFileCorrupt);
  }
  EXPECT_EQ(end, whole.size());
}

TEST_F(TaskRecord, OfAnotherClassIsABadClassID) {
  const long address = StoreRecord(study.Pod(), 18000, Bytes(RecordOf(22, AllTaskFields())));
  CTask task(study.Pod());
  EXPECT_THROW(task.Read(address), CBadClassID);
  ExpectAll(task, AllTaskFields(), false);
}

TEST_F(TaskRecord, WithAWrongChecksumIsRefused) {
  CTask task = NewTask();
  task.PutObject();
  study.Close();
  PatchBytes(study.DataPath(), task.ObjectAddress() + 12, "\x08");
  study.Open();
  CTask damaged = NewTask();
  EXPECT_THROW(damaged.GetObject(), CChecksum);
}

}  // namespace
