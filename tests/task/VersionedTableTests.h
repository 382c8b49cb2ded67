#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "maintenance/Lock.h"
#include "tests/task/VersionedTable.h"

// What holds for the records of both tables. A test program that has a VersionedTableOf
// instantiates these tests for it.

namespace {

template <class Table>
class TaskRecords : public testing::Test {
 protected:
  using Of = VersionedTableOf<Table>;

  static std::string Record() { return RecordOf<Table>(Of::Version); }
  /// The current record of a table with one column only.
  static std::string RecordOfOne(std::size_t filled, const std::string& content) {
    std::string record = HexWord(Of::Version) + " 07 00 00 00 ";
    const auto columns = Of::All();
    for (std::size_t i = 0; i < columns.size(); ++i) record += i == filled ? content : emptyColumn;
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

TYPED_TEST_SUITE_P(TaskRecords);

TYPED_TEST_P(TaskRecords, OfNothingByteForByte) {
  using Class = VersionedTableOf<TypeParam>;
  TypeParam table = this->NewTable();
  const std::string record =
      Bytes(HexWord(Class::Version) + " 07 00 00 00") + std::string(4 * Class::All().size(), '\0');
  EXPECT_EQ(table.ObjectLength(), record.size());
  EXPECT_EQ(Hex(this->Stored(table)), Hex(record));
  ExpectEmpty(this->Read(record));
}

TYPED_TEST_P(TaskRecords, OfAllColumnsByteForByte) {
  TypeParam table = FilledTable<TypeParam>(this->study.Pod());
  EXPECT_EQ(table.ObjectLength(), this->Record().size());
  EXPECT_EQ(Hex(this->Stored(table)), Hex(this->Record()));
}

TYPED_TEST_P(TaskRecords, StandBehindTheirHeaderUnderTheirKey) {
  using Class = VersionedTableOf<TypeParam>;
  TypeParam table = FilledTable<TypeParam>(this->study.Pod());
  table.PutObject();
  const long address = table.ObjectAddress();
  this->study.Close();
  const RawFile file = ReadRawFile(this->study.DataPath());
  const RawFile index = ReadRawFile(this->study.IndexPath());
  const std::string object = Bytes(HexWord(Class::ID) + HexWord(address)) + this->Record();
  EXPECT_EQ(Hex(ObjectsOf(file, Class::ID).at(address)), Hex(object));
  EXPECT_EQ(ReadRawTree(index, Class::Index),
            (std::map<std::string, long>{{"          7", address}}));
  EXPECT_EQ(FaultOfClass(file, index, Class::ID), "");
}

TYPED_TEST_P(TaskRecords, HoldEachColumnAtItsPlace) {
  const auto columns = VersionedTableOf<TypeParam>::All();
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const auto& column = columns[i].column;
    SCOPED_TRACE(column.filled);
    TypeParam table = this->NewTable();
    column.fill(table);
    EXPECT_EQ(Hex(this->Stored(table)), Hex(this->RecordOfOne(i, column.filled)));
    table = this->NewTable();
    column.fillOther(table);
    ASSERT_NE(column.other, column.filled);
    EXPECT_EQ(Hex(this->Stored(table)), Hex(this->RecordOfOne(i, column.other)));
  }
}

TYPED_TEST_P(TaskRecords, GiveEachColumnBack) {
  const auto columns = VersionedTableOf<TypeParam>::All();
  for (std::size_t i = 0; i < columns.size(); ++i) {
    SCOPED_TRACE(columns[i].column.filled);
    const TypeParam table = this->Read(this->RecordOfOne(i, columns[i].column.filled));
    for (std::size_t j = 0; j < columns.size(); ++j) {
      i == j ? columns[j].column.expectFilled(table) : columns[j].column.expectEmpty(table);
    }
  }
}

TYPED_TEST_P(TaskRecords, OfEachVersionAreReadWithWhatTheyLackMadeUp) {
  using Class = VersionedTableOf<TypeParam>;
  for (long version = 1; version <= Class::Version; ++version) {
    SCOPED_TRACE(version);
    const TypeParam table = this->Read(RecordOf<TypeParam>(version));
    EXPECT_EQ(table.m_nID, 7);
    for (const auto& [column, since, expectMissing] : Class::All()) {
      SCOPED_TRACE(column.filled);
      since <= version ? column.expectFilled(table) : expectMissing(table);
    }
  }
}

TYPED_TEST_P(TaskRecords, OfTheFirstVersionAreUpgradedByTheNextWrite) {
  using Class = VersionedTableOf<TypeParam>;
  this->Read(RecordOf<TypeParam>(1)).PutObject();
  TypeParam table = this->NewTable();
  ASSERT_TRUE(table.GetObject());
  EXPECT_EQ(Hex(StoredRecord(table)).substr(0, 11), Hex(Bytes(HexWord(Class::Version))));
  for (const auto& [column, since, expectMissing] : Class::All()) {
    since == 1 ? column.expectFilled(table) : expectMissing(table);
  }
}

TYPED_TEST_P(TaskRecords, OfANewerVersionAreReadAsFarAsKnown) {
  for (const long version : {VersionedTableOf<TypeParam>::Version + 1L, 2147483647L}) {
    SCOPED_TRACE(version);
    ExpectFilled(this->Read(Bytes(HexWord(version)) + this->Record().substr(4) +
                            Bytes("2A 00 00 00 FF FF FF FF 01")));
  }
}

TYPED_TEST_P(TaskRecords, AreAsLongAsTheirColumnsWhateverTheyHold) {
  RandomContents random;
  const CLock lock(this->study.Pod(), 0);
  const auto columns = VersionedTableOf<TypeParam>::All();
  for (int round = 1; round <= 200; ++round) {
    SCOPED_TRACE(round);
    TypeParam table = this->NewTable(round);
    std::size_t length = 8;
    for (const auto& [column, since, missing] : columns) length += column.randomise(table, random);
    EXPECT_EQ(table.ObjectLength(), length);
    EXPECT_EQ(this->Stored(table).size(), length);
    TypeParam stored = this->NewTable(round);
    ASSERT_TRUE(stored.GetObject());
    for (const auto& [column, since, missing] : columns) column.expectSame(stored, table);
  }
}

// ---- Damage ----

TYPED_TEST_P(TaskRecords, ThatEndTooEarlyAreCorrupt) {
  const CLock lock(this->study.Pod(), 0);
  const std::string record = this->Record();
  for (std::size_t size = 0; size < record.size(); ++size) {
    SCOPED_TRACE(size);
    EXPECT_THROW(this->Read(record.substr(0, size)), CFileCorrupt);
  }
}

TYPED_TEST_P(TaskRecords, WithACountThatTheyCannotHoldAreCorrupt) {
  const CLock lock(this->study.Pod(), 0);
  std::size_t place = 8;
  for (const auto& [column, since, missing] : VersionedTableOf<TypeParam>::All()) {
    for (const std::size_t countAt : column.countsAt) {
      for (const char* count : {"00 00 00 20", "00 00 00 80", "FF FF FF 7F", "FF FF FF FF"}) {
        SCOPED_TRACE(column.filled + std::to_string(countAt) + " " + count);
        std::string damaged = this->Record();
        damaged.replace(place + countAt, 4, Bytes(count));
        EXPECT_THROW(this->Read(damaged), CFileCorrupt);
      }
    }
    place += Bytes(column.filled).size();
  }
}

TYPED_TEST_P(TaskRecords, OfAnotherClassAreRefused) {
  TypeParam table(this->study.Pod());
  EXPECT_THROW(table.Read(StoreRecord(this->study.Pod(), 2000, this->Record())), CBadClassID);
  EXPECT_EQ(table.m_nID, 0);
  ExpectEmpty(table);
}

TYPED_TEST_P(TaskRecords, WithAChangedByteFailTheirChecksum) {
  TypeParam table = FilledTable<TypeParam>(this->study.Pod());
  table.PutObject();
  const long offset = table.ObjectAddress() + 20;
  this->study.Close();
  PatchBytes(this->study.DataPath(), offset, "x");
  this->study.Open();
  TypeParam read = this->NewTable();
  EXPECT_THROW(read.GetObject(), CChecksum);
  ExpectEmpty(read);
}

REGISTER_TYPED_TEST_SUITE_P(TaskRecords, OfNothingByteForByte, OfAllColumnsByteForByte,
                            StandBehindTheirHeaderUnderTheirKey, HoldEachColumnAtItsPlace,
                            GiveEachColumnBack, OfEachVersionAreReadWithWhatTheyLackMadeUp,
                            OfTheFirstVersionAreUpgradedByTheNextWrite,
                            OfANewerVersionAreReadAsFarAsKnown,
                            AreAsLongAsTheirColumnsWhateverTheyHold, ThatEndTooEarlyAreCorrupt,
                            WithACountThatTheyCannotHoldAreCorrupt, OfAnotherClassAreRefused,
                            WithAChangedByteFailTheirChecksum);

}  // namespace
