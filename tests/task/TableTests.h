#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "tests/support/Bytes.h"
#include "tests/support/RawFile.h"
#include "tests/support/StoredRecord.h"
#include "tests/support/Study.h"
#include "tests/task/TableColumns.h"

// What holds for each of a task's smaller tables. A test program of a table describes it by a
// specialisation of TableOf and instantiates these tests for it.

/// Of a table: `ID`, `Index` and `Name` of its class, and `All()`, its columns.
template <class Table>
struct TableOf;

namespace {

const std::string version1 = "01 00 00 00 ";
const std::string seven = "07 00 00 00 ";  // the ID

template <class Table>
class TaskTable : public testing::Test {
 protected:
  using Of = TableOf<Table>;

  static Table Filled(POD* pod) {
    Table table(pod);
    table.m_nID = 7;
    for (const auto& column : Of::All()) column.fill(table);
    return table;
  }
  static void ExpectFilled(const Table& table) {
    EXPECT_EQ(table.m_nID, 7);
    for (const auto& column : Of::All()) column.expectFilled(table);
  }
  static void ExpectEmpty(const Table& table) {
    for (const auto& column : Of::All()) column.expectEmpty(table);
  }
  /// The bytes of Filled's record.
  static std::string FilledRecord() {
    std::string record = version1 + seven;
    for (const auto& column : Of::All()) record += column.filled;
    return Bytes(record);
  }
  /// The record of a table with one column only.
  static std::string RecordOfOne(std::size_t filled, const std::string& content) {
    std::string record = version1 + seven;
    for (std::size_t i = 0; i < Of::All().size(); ++i)
      record += i == filled ? content : emptyColumn;
    return Bytes(record);
  }

  Table NewTable(int id = 7) {
    Table table(study.Pod());
    table.m_nID = id;
    return table;
  }
  Table Read(const std::string& record) {
    Table table(study.Pod());
    table.Read(StoreRecord(study.Pod(), Of::ID, record));
    return table;
  }
  std::string Stored(Table& table) {
    table.PutObject();
    return StoredRecord(table);
  }

  Study study;
};

TYPED_TEST_SUITE_P(TaskTable);

// ---- The object ----

TYPED_TEST_P(TaskTable, HasItsClass) {
  using Class = TableOf<TypeParam>;
  TypeParam table(this->study.Pod());
  EXPECT_EQ(table.GetVBClassID(), Class::ID);
  EXPECT_EQ(table.GetVBClassIndex(), static_cast<unsigned>(Class::Index));
  EXPECT_EQ(table.GetVBClassName(), Class::Name);
  EXPECT_EQ(table.GetVBClassVer(), 1);
}

TYPED_TEST_P(TaskTable, IsEmptyWhenNew) {
  const POD* const pod = this->study.Pod();
  for (const TypeParam& table : {TypeParam(this->study.Pod()), TypeParam(pod)}) {
    EXPECT_EQ(table.m_nID, 0);
    EXPECT_EQ(table.ObjectAddress(), 0);
    EXPECT_EQ(table.Database(), pod);
    this->ExpectEmpty(table);
  }
}

TYPED_TEST_P(TaskTable, DefaultsEmptyItAndKeepTheConnection) {
  TypeParam table = this->Filled(this->study.Pod());
  table.PutObject();
  const long address = table.ObjectAddress();
  table.SetDefaultAttributes();
  EXPECT_EQ(table.m_nID, 0);
  this->ExpectEmpty(table);
  EXPECT_EQ(table.Database(), this->study.Pod());
  EXPECT_EQ(table.ObjectAddress(), address);
}

TYPED_TEST_P(TaskTable, CopyTakesEveryColumnAndKeepsTheConnection) {
  TypeParam copy = this->NewTable(1);
  copy.PutObject();
  const long address = copy.ObjectAddress();
  copy.Copy(this->Filled(nullptr));
  this->ExpectFilled(copy);
  EXPECT_EQ(copy.Database(), this->study.Pod());
  EXPECT_EQ(copy.ObjectAddress(), address);
}

TYPED_TEST_P(TaskTable, CopyTakesEachColumnAlone) {
  const auto columns = TableOf<TypeParam>::All();
  for (const auto& column : columns) {
    SCOPED_TRACE(column.filled);
    TypeParam source(this->study.Pod());
    column.fill(source);
    TypeParam copy = this->Filled(nullptr);
    copy.Copy(source);
    EXPECT_EQ(copy.m_nID, 0);
    for (const auto& other : columns) {
      &other == &column ? other.expectFilled(copy) : other.expectEmpty(copy);
    }
  }
}

TYPED_TEST_P(TaskTable, CopyDoesNotConnect) {
  TypeParam stored = this->Filled(this->study.Pod());
  stored.PutObject();
  TypeParam copy(static_cast<POD*>(nullptr));
  copy.Copy(stored);
  EXPECT_EQ(copy.Database(), nullptr);
  EXPECT_EQ(copy.ObjectAddress(), 0);
}

// ---- The key ----

TYPED_TEST_P(TaskTable, IsUsableAsAKeyWithAPositiveID) {
  for (const auto& [id, usable] : std::map<long, bool>{
           {-2147483648L, false}, {-1, false}, {0, false}, {1, true}, {2147483647L, true}}) {
    TypeParam table(this->study.Pod());
    table.m_nID = id;
    EXPECT_EQ(table.CheckKey(), usable) << id;
  }
}

TYPED_TEST_P(TaskTable, HasAKeyOfElevenColumns) {
  char text[64];
  for (const auto& [id, key] : std::map<long, std::string>{
           {1, "          1"}, {2000, "       2000"}, {2147483647L, " 2147483647"}}) {
    TypeParam table(this->study.Pod());
    table.m_nID = id;
    EXPECT_EQ(table.MakeKey(text), text);
    EXPECT_EQ(std::string(text), key);
  }
}

TYPED_TEST_P(TaskTable, IsFoundInItsTreeByTask) {
  using Class = TableOf<TypeParam>;
  TypeParam twelve = this->NewTable(12);
  TypeParam three = this->NewTable(3);
  twelve.PutObject();
  three.PutObject();
  this->study.Close();
  const RawFile index = ReadRawFile(this->study.IndexPath());
  EXPECT_EQ(ReadRawTree(index, Class::Index),
            (std::map<std::string, long>{{"          3", three.ObjectAddress()},
                                         {"         12", twelve.ObjectAddress()}}));
  EXPECT_EQ(FaultOfClass(ReadRawFile(this->study.DataPath()), index, Class::ID), "");
}

TYPED_TEST_P(TaskTable, WithoutATaskIsNotStored) {
  TypeParam table(this->study.Pod());
  EXPECT_THROW(table.PutObject(), CInvalidKey);
  EXPECT_THROW(table.GetObject(), CInvalidKey);
  EXPECT_EQ(table.CountObjects(), 0);
}

TYPED_TEST_P(TaskTable, WithoutADatabaseIsNotStored) {
  TypeParam table = this->Filled(nullptr);
  EXPECT_THROW(table.PutObject(), CNullPtr);
  EXPECT_THROW(table.GetObject(), CNullPtr);
}

TYPED_TEST_P(TaskTable, IsReplacedByTheNextOneOfItsTask) {
  this->NewTable().PutObject();
  this->Filled(this->study.Pod()).PutObject();
  this->NewTable(8).PutObject();
  this->study.Reopen();
  TypeParam table = this->NewTable();
  ASSERT_TRUE(table.GetObject());
  this->ExpectFilled(table);
  EXPECT_EQ(table.CountObjects(), 2);
  EXPECT_TRUE(table.RemoveObject());
  EXPECT_FALSE(this->NewTable().GetObject());
  EXPECT_TRUE(this->NewTable(8).GetObject());
}

// ---- The record ----

TYPED_TEST_P(TaskTable, OfNothingByteForByte) {
  TypeParam table = this->NewTable();
  const std::string record =
      Bytes(version1 + seven) + std::string(4 * TableOf<TypeParam>::All().size(), '\0');
  EXPECT_EQ(table.ObjectLength(), record.size());
  EXPECT_EQ(Hex(this->Stored(table)), Hex(record));
  table = this->Filled(this->study.Pod());
  table.Read(StoreRecord(this->study.Pod(), TableOf<TypeParam>::ID, record));
  EXPECT_EQ(table.m_nID, 7);
  this->ExpectEmpty(table);
}

TYPED_TEST_P(TaskTable, OfAllColumnsByteForByte) {
  TypeParam table = this->Filled(this->study.Pod());
  EXPECT_EQ(table.ObjectLength(), this->FilledRecord().size());
  EXPECT_EQ(Hex(this->Stored(table)), Hex(this->FilledRecord()));
}

TYPED_TEST_P(TaskTable, StandsBehindItsHeaderInABlockOfItsLength) {
  using Class = TableOf<TypeParam>;
  TypeParam table = this->Filled(this->study.Pod());
  table.PutObject();
  const long address = table.ObjectAddress();
  this->study.Close();
  const RawFile file = ReadRawFile(this->study.DataPath());
  const std::string object = Bytes(HexWord(Class::ID) + HexWord(address)) + this->FilledRecord();
  EXPECT_EQ(Hex(ObjectsOf(file, Class::ID).at(address)), Hex(object));
  EXPECT_EQ(WordAt(file.bytes, static_cast<std::size_t>(address) - 24),
            static_cast<long>(28 + object.size() + 4));
}

TYPED_TEST_P(TaskTable, HoldsTheTaskBehindTheVersion) {
  TypeParam table = this->NewTable(0x01020304);
  EXPECT_EQ(Hex(this->Stored(table)).substr(0, 23), "01 00 00 00 04 03 02 01");
}

TYPED_TEST_P(TaskTable, HoldsEachColumnAtItsPlace) {
  const CLock lock(this->study.Pod(), 0);
  const auto columns = TableOf<TypeParam>::All();
  for (std::size_t i = 0; i < columns.size(); ++i) {
    SCOPED_TRACE(columns[i].filled);
    TypeParam table = this->NewTable();
    columns[i].fill(table);
    EXPECT_EQ(Hex(this->Stored(table)), Hex(this->RecordOfOne(i, columns[i].filled)));
    table = this->NewTable();
    columns[i].fillOther(table);
    ASSERT_NE(columns[i].other, columns[i].filled);
    EXPECT_EQ(Hex(this->Stored(table)), Hex(this->RecordOfOne(i, columns[i].other)));
  }
}

TYPED_TEST_P(TaskTable, GivesEachColumnBack) {
  const CLock lock(this->study.Pod(), 0);
  const auto columns = TableOf<TypeParam>::All();
  for (std::size_t i = 0; i < columns.size(); ++i) {
    SCOPED_TRACE(columns[i].filled);
    const TypeParam table = this->Read(this->RecordOfOne(i, columns[i].filled));
    for (std::size_t j = 0; j < columns.size(); ++j) {
      i == j ? columns[j].expectFilled(table) : columns[j].expectEmpty(table);
    }
  }
}

TYPED_TEST_P(TaskTable, IsReadInFull) {
  TypeParam table(this->study.Pod());
  const long address = StoreRecord(this->study.Pod(), TableOf<TypeParam>::ID, this->FilledRecord());
  table.Read(address);
  this->ExpectFilled(table);
  EXPECT_EQ(table.ObjectAddress(), address);
}

TYPED_TEST_P(TaskTable, OfANewerVersionIsReadAsFarAsKnown) {
  for (const long version : {2L, 1000L, 2147483647L}) {
    SCOPED_TRACE(version);
    this->ExpectFilled(this->Read(Bytes(HexWord(version)) + this->FilledRecord().substr(4) +
                                  Bytes("2A 00 00 00 FF FF FF FF 01")));
  }
}

TYPED_TEST_P(TaskTable, IsAsLongAsItsColumnsWhateverTheyHold) {
  const CLock lock(this->study.Pod(), 0);
  RandomContents random;
  for (int round = 1; round <= 200; ++round) {
    SCOPED_TRACE(round);
    TypeParam table = this->NewTable(round);
    std::size_t length = 8;
    for (const auto& column : TableOf<TypeParam>::All()) length += column.randomise(table, random);
    EXPECT_EQ(table.ObjectLength(), length);
    EXPECT_EQ(this->Stored(table).size(), length);
    TypeParam stored = this->NewTable(round);
    ASSERT_TRUE(stored.GetObject());
    for (const auto& column : TableOf<TypeParam>::All()) column.expectSame(stored, table);
  }
}

// ---- Damage ----

TYPED_TEST_P(TaskTable, ThatEndsTooEarlyIsCorrupt) {
  const CLock lock(this->study.Pod(), 0);
  const std::string record = this->FilledRecord();
  for (std::size_t size = 0; size < record.size(); ++size) {
    SCOPED_TRACE(size);
    EXPECT_THROW(this->Read(record.substr(0, size)), CFileCorrupt);
  }
}

TYPED_TEST_P(TaskTable, WithACountThatItCannotHoldIsCorrupt) {
  const CLock lock(this->study.Pod(), 0);
  std::size_t place = 8;
  for (const auto& column : TableOf<TypeParam>::All()) {
    for (const std::size_t countAt : column.countsAt) {
      for (const char* count :
           {"00 10 00 00", "00 00 00 20", "00 00 00 80", "FF FF FF 7F", "FF FF FF FF"}) {
        SCOPED_TRACE(column.filled + std::to_string(countAt) + " " + count);
        std::string damaged = this->FilledRecord();
        damaged.replace(place + countAt, 4, Bytes(count));
        EXPECT_THROW(this->Read(damaged), CFileCorrupt);
      }
    }
    place += Bytes(column.filled).size();
  }
}

TYPED_TEST_P(TaskTable, OfAnotherClassIsRefused) {
  const long address = StoreRecord(this->study.Pod(), 2000, this->FilledRecord());
  TypeParam table(this->study.Pod());
  EXPECT_THROW(table.Read(address), CBadClassID);
  EXPECT_EQ(table.m_nID, 0);
  this->ExpectEmpty(table);
}

TYPED_TEST_P(TaskTable, WithAWrongChecksumIsRefused) {
  TypeParam table = this->Filled(this->study.Pod());
  table.PutObject();
  const std::size_t size = this->FilledRecord().size();
  this->study.Close();
  for (const std::size_t place : {std::size_t{12}, 8 + size - 1, 8 + size}) {
    SCOPED_TRACE(place);
    const auto offset = static_cast<std::size_t>(table.ObjectAddress()) + place;
    const std::string whole = ReadBytes(this->study.DataPath());
    const char damaged = static_cast<char>(whole[offset] ^ 1);
    PatchBytes(this->study.DataPath(), static_cast<long>(offset), std::string(1, damaged));
    this->study.Open();
    TypeParam read = this->NewTable();
    EXPECT_THROW(read.GetObject(), CChecksum);
    this->ExpectEmpty(read);
    this->study.Close();
    PatchBytes(this->study.DataPath(), static_cast<long>(offset), whole.substr(offset, 1));
  }
}

REGISTER_TYPED_TEST_SUITE_P(TaskTable, HasItsClass, IsEmptyWhenNew,
                            DefaultsEmptyItAndKeepTheConnection,
                            CopyTakesEveryColumnAndKeepsTheConnection, CopyTakesEachColumnAlone,
                            CopyDoesNotConnect, IsUsableAsAKeyWithAPositiveID,
                            HasAKeyOfElevenColumns, IsFoundInItsTreeByTask, WithoutATaskIsNotStored,
                            WithoutADatabaseIsNotStored, IsReplacedByTheNextOneOfItsTask,
                            OfNothingByteForByte, OfAllColumnsByteForByte,
                            StandsBehindItsHeaderInABlockOfItsLength, HoldsTheTaskBehindTheVersion,
                            HoldsEachColumnAtItsPlace, GivesEachColumnBack, IsReadInFull,
                            OfANewerVersionIsReadAsFarAsKnown, IsAsLongAsItsColumnsWhateverTheyHold,
                            ThatEndsTooEarlyIsCorrupt, WithACountThatItCannotHoldIsCorrupt,
                            OfAnotherClassIsRefused, WithAWrongChecksumIsRefused);

}  // namespace
