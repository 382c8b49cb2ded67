#pragma once

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>
#include <vector>

#include "store/KestErr.h"
#include "tests/results/EngineRecord.h"
#include "tests/support/Bytes.h"
#include "tests/support/RawFile.h"
#include "tests/support/StoredRecord.h"
#include "tests/support/Study.h"

// What holds for each class of records that the run engine fills. A test program that has an
// EngineRecordOf instantiates these tests for it.

namespace {

const std::string version1 = "01 00 00 00 ";

template <class Object>
class EngineRecords : public testing::Test {
 protected:
  using Of = EngineRecordOf<Object>;

  static Object Filled(POD* pod) {
    Object object(pod);
    for (const auto& field : Of::All()) field.fill(object);
    return object;
  }
  static void ExpectFilled(const Object& object) {
    for (const auto& field : Of::All()) {
      SCOPED_TRACE(field.filled);
      field.expectFilled(object);
    }
  }
  static void ExpectDefaults(const Object& object) {
    for (const auto& field : Of::All()) {
      SCOPED_TRACE(field.filled);
      field.expectDefault(object);
    }
  }
  static std::string FilledRecord() {
    std::string record = version1;
    for (const auto& field : Of::All()) record += field.filled;
    return Bytes(record);
  }
  /// The record of task 7 with one more field.
  static std::string RecordOfOne(std::size_t filled) {
    const auto fields = Of::All();
    std::string record = version1 + fields[0].filled;
    for (std::size_t i = 1; i < fields.size(); ++i) {
      record += i == filled ? fields[i].filled : fields[i].missing;
    }
    return Bytes(record);
  }

  Object NewOf(int task) {
    Object object(study.Pod());
    object.m_nTaskID = task;
    return object;
  }
  Object Read(const std::string& record) {
    Object object(study.Pod());
    object.Read(StoreRecord(study.Pod(), Of::ID, record));
    return object;
  }
  std::string Stored(Object& object) {
    object.PutObject();
    return Hex(StoredRecord(object));
  }

  Study study;
};

TYPED_TEST_SUITE_P(EngineRecords);

// ---- The object ----

TYPED_TEST_P(EngineRecords, HaveTheirClass) {
  using Class = EngineRecordOf<TypeParam>;
  TypeParam object(this->study.Pod());
  EXPECT_EQ(object.GetVBClassID(), Class::ID);
  EXPECT_EQ(object.GetVBClassIndex(), static_cast<unsigned>(Class::Index));
  EXPECT_EQ(object.GetVBClassName(), Class::Name);
  EXPECT_EQ(object.GetVBClassVer(), 1);
}

TYPED_TEST_P(EngineRecords, HaveDefaultsWhenNew) {
  const POD* const pod = this->study.Pod();
  for (const TypeParam& object : {TypeParam(this->study.Pod()), TypeParam(pod)}) {
    this->ExpectDefaults(object);
    EXPECT_EQ(object.ObjectAddress(), 0);
  }
  EXPECT_EQ(TypeParam(this->study.Pod()).Database(), pod);
  EXPECT_EQ(TypeParam(pod).Database(), pod);
}

TYPED_TEST_P(EngineRecords, GetTheDefaultsOfTheirClassAndKeepTheConnection) {
  TypeParam object = this->Filled(this->study.Pod());
  object.PutObject();
  const long address = object.ObjectAddress();
  object.SetDefaultAttributes();
  for (const auto& field : EngineRecordOf<TypeParam>::All()) {
    SCOPED_TRACE(field.filled);
    field.keptByDefaults ? field.expectFilled(object) : field.expectDefault(object);
  }
  EXPECT_EQ(object.Database(), this->study.Pod());
  EXPECT_EQ(object.ObjectAddress(), address);
}

TYPED_TEST_P(EngineRecords, CopyEveryFieldAndKeepTheConnection) {
  TypeParam copy = this->NewOf(1);
  copy.PutObject();
  const long address = copy.ObjectAddress();
  copy.Copy(this->Filled(nullptr));
  this->ExpectFilled(copy);
  EXPECT_EQ(copy.Database(), this->study.Pod());
  EXPECT_EQ(copy.ObjectAddress(), address);
}

TYPED_TEST_P(EngineRecords, CopyEachFieldAlone) {
  const auto fields = EngineRecordOf<TypeParam>::All();
  for (const auto& field : fields) {
    SCOPED_TRACE(field.filled);
    TypeParam source(this->study.Pod());
    field.fill(source);
    TypeParam copy = this->Filled(nullptr);
    copy.Copy(source);
    for (const auto& other : fields) {
      &other == &field ? other.expectFilled(copy) : other.expectDefault(copy);
    }
  }
}

// ---- The key ----

TYPED_TEST_P(EngineRecords, AreUsableAsKeysWithAPositiveTaskAndNumbersFromZero) {
  const auto fields = EngineRecordOf<TypeParam>::KeyFields();
  for (std::size_t i = 0; i < fields.size(); ++i) {
    for (const auto& [number, usable] : std::map<long, bool>{
             {-2147483648L, false}, {-1, false}, {0, i > 0}, {1, true}, {2147483647L, true}}) {
      SCOPED_TRACE(std::to_string(i) + " " + std::to_string(number));
      TypeParam object = this->NewOf(1);
      object.*fields[i] = number;
      EXPECT_EQ(object.CheckKey(), usable);
      if (!usable) {
        EXPECT_THROW(object.PutObject(), CInvalidKey);
      }
    }
  }
}

TYPED_TEST_P(EngineRecords, HaveAKeyOfElevenColumnsForEachNumber) {
  const auto fields = EngineRecordOf<TypeParam>::KeyFields();
  TypeParam object(this->study.Pod());
  const long numbers[] = {12, 345, 2147483647};
  for (std::size_t i = 0; i < fields.size(); ++i) object.*fields[i] = numbers[i];
  char text[64];
  EXPECT_EQ(object.MakeKey(text), text);
  EXPECT_EQ(std::string(text),
            std::string("         12        345 2147483647").substr(0, 11 * fields.size()));
}

TYPED_TEST_P(EngineRecords, AreFoundInTheirTreeByTheirKey) {
  using Class = EngineRecordOf<TypeParam>;
  TypeParam twelve = this->NewOf(12);
  TypeParam three = this->NewOf(3);
  twelve.PutObject();
  three.PutObject();
  this->study.Close();
  const RawFile index = ReadRawFile(this->study.IndexPath());
  std::string rest;
  for (std::size_t i = 1; i < Class::KeyFields().size(); ++i) rest += "          0";
  EXPECT_EQ(ReadRawTree(index, Class::Index),
            (std::map<std::string, long>{{"          3" + rest, three.ObjectAddress()},
                                         {"         12" + rest, twelve.ObjectAddress()}}));
  EXPECT_EQ(FaultOfClass(ReadRawFile(this->study.DataPath()), index, Class::ID), "");
}

TYPED_TEST_P(EngineRecords, AreReadBackAfterReopening) {
  this->Filled(this->study.Pod()).PutObject();
  this->study.Reopen();
  TypeParam object(this->study.Pod());
  const TypeParam filled = this->Filled(nullptr);
  for (const auto field : EngineRecordOf<TypeParam>::KeyFields()) object.*field = filled.*field;
  ASSERT_TRUE(object.GetObject());
  this->ExpectFilled(object);
}

// ---- The record ----

TYPED_TEST_P(EngineRecords, OfDefaultsByteForByte) {
  TypeParam object = this->NewOf(7);
  EXPECT_EQ(object.ObjectLength(), EngineRecordOf<TypeParam>::Length);
  EXPECT_EQ(this->RecordOfOne(0).size(), EngineRecordOf<TypeParam>::Length);
  EXPECT_EQ(this->Stored(object), Hex(this->RecordOfOne(0)));
}

TYPED_TEST_P(EngineRecords, OfAllFieldsByteForByteBehindTheirHeader) {
  using Class = EngineRecordOf<TypeParam>;
  TypeParam object = this->Filled(this->study.Pod());
  EXPECT_EQ(object.ObjectLength(), this->FilledRecord().size());
  object.PutObject();
  const long address = object.ObjectAddress();
  this->study.Close();
  EXPECT_EQ(Hex(ObjectsOf(ReadRawFile(this->study.DataPath()), Class::ID).at(address)),
            Hex(Bytes(HexWord(Class::ID) + HexWord(address)) + this->FilledRecord()));
}

TYPED_TEST_P(EngineRecords, HoldEachFieldAtItsPlaceAlone) {
  const auto fields = EngineRecordOf<TypeParam>::All();
  for (std::size_t i = 0; i < fields.size(); ++i) {
    SCOPED_TRACE(fields[i].filled);
    TypeParam object = this->NewOf(7);
    fields[i].fill(object);
    EXPECT_EQ(this->Stored(object), Hex(this->RecordOfOne(i)));
    const TypeParam read = this->Read(this->RecordOfOne(i));
    for (std::size_t j = 1; j < fields.size(); ++j) {
      i == j ? fields[j].expectFilled(read) : fields[j].expectDefault(read);
    }
  }
}

TYPED_TEST_P(EngineRecords, ReplaceWhatTheObjectHeld) {
  TypeParam object = this->Filled(this->study.Pod());
  object.Read(StoreRecord(this->study.Pod(), EngineRecordOf<TypeParam>::ID, this->RecordOfOne(0)));
  EXPECT_EQ(object.m_nTaskID, 7);
  object.m_nTaskID = 0;
  this->ExpectDefaults(object);
  object.Read(StoreRecord(this->study.Pod(), EngineRecordOf<TypeParam>::ID, this->FilledRecord()));
  this->ExpectFilled(object);
}

TYPED_TEST_P(EngineRecords, OfANewerVersionAreReadAsFarAsKnown) {
  this->ExpectFilled(this->Read(Bytes("02 00 00 00") + this->FilledRecord().substr(4) +
                                Bytes("2A 00 00 00 FF FF FF FF 01")));
}

TYPED_TEST_P(EngineRecords, AreAsLongAsTheirElements) {
  using Class = EngineRecordOf<TypeParam>;
  std::mt19937 random(7475);
  for (int round = 1; round <= 100; ++round) {
    SCOPED_TRACE(round);
    TypeParam object = this->NewOf(round);
    std::size_t length = Class::Length;
    for (const auto& field : Class::All()) length += field.lengthen(object, random() % 30);
    EXPECT_EQ(object.ObjectLength(), length);
    object.PutObject();
    EXPECT_EQ(StoredRecord(object).size(), length);
  }
}

// ---- Damage ----

TYPED_TEST_P(EngineRecords, ThatEndTooEarlyAreCorrupt) {
  const std::string record = this->FilledRecord();
  for (std::size_t size = 0; size < record.size(); ++size) {
    SCOPED_TRACE(size);
    EXPECT_THROW(this->Read(record.substr(0, size)), CFileCorrupt);
  }
}

TYPED_TEST_P(EngineRecords, WithCountsThatTheyCannotHoldAreCorrupt) {
  std::size_t place = 4;
  for (const auto& field : EngineRecordOf<TypeParam>::All()) {
    for (const char* count : {"FF 00 00 00", "00 00 00 20", "FF FF FF 7F", "FF FF FF FF"}) {
      if (!field.hasCount) break;
      SCOPED_TRACE(field.filled + " " + count);
      EXPECT_THROW(this->Read(this->FilledRecord().replace(place, 4, Bytes(count))), CFileCorrupt);
    }
    place += Bytes(field.filled).size();
  }
}

TYPED_TEST_P(EngineRecords, OfAnotherClassAreRefused) {
  TypeParam object(this->study.Pod());
  EXPECT_THROW(object.Read(StoreRecord(this->study.Pod(), 12000, this->FilledRecord())),
               CBadClassID);
  this->ExpectDefaults(object);
}

TYPED_TEST_P(EngineRecords, WithAWrongChecksumAreRefused) {
  TypeParam object = this->Filled(this->study.Pod());
  object.PutObject();
  const long address = object.ObjectAddress();
  this->study.Close();
  PatchBytes(this->study.DataPath(), address + 24, "x");
  this->study.Open();
  TypeParam damaged(this->study.Pod());
  EXPECT_THROW(damaged.Read(address), CChecksum);
  this->ExpectDefaults(damaged);
}

REGISTER_TYPED_TEST_SUITE_P(EngineRecords, HaveTheirClass, HaveDefaultsWhenNew,
                            GetTheDefaultsOfTheirClassAndKeepTheConnection,
                            CopyEveryFieldAndKeepTheConnection, CopyEachFieldAlone,
                            AreUsableAsKeysWithAPositiveTaskAndNumbersFromZero,
                            HaveAKeyOfElevenColumnsForEachNumber, AreFoundInTheirTreeByTheirKey,
                            AreReadBackAfterReopening, OfDefaultsByteForByte,
                            OfAllFieldsByteForByteBehindTheirHeader, HoldEachFieldAtItsPlaceAlone,
                            ReplaceWhatTheObjectHeld, OfANewerVersionAreReadAsFarAsKnown,
                            AreAsLongAsTheirElements, ThatEndTooEarlyAreCorrupt,
                            WithCountsThatTheyCannotHoldAreCorrupt, OfAnotherClassAreRefused,
                            WithAWrongChecksumAreRefused);

}  // namespace
