#include <gtest/gtest.h>

#include <string>

#include "definition/GPoint.h"
#include "index/KSBKey.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/vbdbase.h"
#include "tests/support/Bytes.h"
#include "tests/support/RawFile.h"
#include "tests/support/SampleRecord.h"
#include "tests/support/StoredRecord.h"
#include "tests/support/Study.h"

// Reading of records that are damaged, or that the index led to wrongly.

namespace {

class Records : public testing::Test {
 protected:
  /// Stores a sample record: `fields` start with its version.
  long StoreSample(const std::string& fields) {
    return StoreRecord(study.Pod(), 23000, Bytes(fields));
  }

  long StorePlain(int id, const std::string& text) {
    PlainRecord stored(study.Pod());
    stored.m_nID = id;
    stored.m_strText = text;
    stored.WriteObject(true);
    return stored.ObjectAddress();
  }

  void Patch(long address, const std::string& bytes) {
    const CLock lock(study.Pod(), 0);
    study.Pod()->DataFile()->Write(bytes.data(), bytes.size(), address, false, true);
  }

  /// Has the key of a plain record lead to another address.
  void Redirect(int id, long address) {
    PlainRecord record(study.Pod());
    record.m_nID = id;
    char text[64];
    KSBKey key(record.MakeKey(text), 0, 0);
    KSBKey scratch;
    record.RemoveKey(key, scratch, 23, true);
    record.Add(address, 24000);
  }

  PlainRecord InMemory(int id) {
    PlainRecord record(study.Pod());
    record.m_nID = id;
    record.m_strText = "in memory";
    return record;
  }

  /// That Read throws that, and the object keeps what it holds.
  template <class Error>
  void ExpectReadToFail(long address) {
    PlainRecord record = InMemory(1);
    EXPECT_THROW(record.Read(address), Error);
    EXPECT_EQ(record.m_nID, 1);
    EXPECT_EQ(record.m_strText, "in memory");
    EXPECT_EQ(record.ObjectAddress(), 0);
  }

  /// That Read finds the fields corrupt, whatever of them it has taken over by then.
  template <class Class>
  void ExpectCorruptFields(Class record, long address) {
    EXPECT_THROW(record.Read(address), CFileCorrupt);
    EXPECT_EQ(record.ObjectAddress(), 0);
  }

  Study study;
};

// ---- Damage ----

TEST_F(Records, OfAnotherClassAreRefused) {
  ExpectReadToFail<CBadClassID>(68);
  const long address = StorePlain(1, "text");
  Patch(address, Bytes("C0 5D 00 01"));  // the last byte of the class ID
  ExpectReadToFail<CBadClassID>(address);
}

TEST_F(Records, WithAnyByteChangedAreRefused) {
  const CLock lock(study.Pod(), 0);
  const long address = StorePlain(1, "text");
  ASSERT_EQ(study.Pod()->DataFile()->VBLength(address), 28U + 8 + 16 + 4);
  for (long offset = 4; offset < 28; ++offset) {
    char byte = 0;
    study.Pod()->DataFile()->Read(&byte, 1, address + offset);
    Patch(address + offset, std::string(1, static_cast<char>(byte ^ 0x10)));
    ExpectReadToFail<CChecksum>(address);
    Patch(address + offset, std::string(1, byte));
  }
  InMemory(1).Read(address);
}

TEST_F(Records, WithTwoFaultsAreToldByTheirClass) {
  const long address = StorePlain(1, "text");
  Patch(address, Bytes("00 00 00 00"));
  ExpectReadToFail<CBadClassID>(address);
}

TEST_F(Records, ThatAreDamagedLeaveTheObjectOfAKeyAsItIs) {
  const long address = StorePlain(1, "text");
  Patch(address + 16, Bytes("FF"));
  PlainRecord record = InMemory(1);
  EXPECT_THROW(record.GetObject(), CChecksum);
  EXPECT_EQ(record.m_nID, 1);
  EXPECT_EQ(record.m_strText, "in memory");
}

TEST_F(Records, InABlockWithoutItsCheckWordAreRefused) {
  const long address = StorePlain(1, "text");
  Patch(address - 28, Bytes("FE FE FE FF"));
  ExpectReadToFail<CSync>(address);
}

TEST_F(Records, InABlockOfAnImpossibleLengthAreRefused) {
  const CLock lock(study.Pod(), 0);
  const long address = StorePlain(1, "text");
  for (const char* length :
       {"00 00 00 00", "1F 00 00 00", "39 00 00 00", "FF FF FF 7F", "00 00 00 80", "FF FF FF FF"}) {
    SCOPED_TRACE(length);
    Patch(address - 24, Bytes(length));
    ExpectReadToFail<CSync>(address);
  }
}

TEST_F(Records, InABlockOfAWrongLengthAreRefused) {
  const CLock lock(study.Pod(), 0);
  const long address = StorePlain(1, "text");
  for (const char* length : {"20 00 00 00", "24 00 00 00", "37 00 00 00"}) {
    SCOPED_TRACE(length);
    Patch(address - 24, Bytes(length));
    ExpectReadToFail<CChecksum>(address);
  }
}

TEST_F(Records, OutsideOfTheFileAreAFailure) {
  ExpectReadToFail<CFileRead>(100000);
  ExpectReadToFail<CFileRead>(2147483647);
  ExpectReadToFail<CFileSeek>(-2);
}

TEST_F(Records, AreNotFoundInTheFileHeader) {
  for (const long address : {0L, 4L, 40L}) ExpectReadToFail<CBadClassID>(address);
}

TEST_F(Records, OfAFreedBlockAreStillRead) {
  const long address = StorePlain(1, "text");
  InMemory(1).RemoveObject();
  PlainRecord record = InMemory(1);
  record.ReadObject(address);
  EXPECT_EQ(record.m_strText, "text");
}

// ---- Records whose checksum is right and whose fields are not ----

TEST_F(Records, ThatEndWithinAFieldAreCorrupt) {
  const CLock lock(study.Pod(), 0);
  const std::string whole =
      Bytes("C0 5D 00 00 84 00 00 00 01 00 00 00 05 00 00 00 02 00 00 00 61 62");
  for (std::size_t size = 4; size < whole.size(); ++size) {
    SCOPED_TRACE(size);
    ExpectCorruptFields(InMemory(1), StoreBytes(study.Pod(), whole.substr(0, size)));
  }
  PlainRecord record = InMemory(1);
  record.Read(StoreBytes(study.Pod(), whole));
  EXPECT_EQ(record.m_strText, "ab");
}

TEST_F(Records, WithATextLongerThanTheRecordAreCorrupt) {
  const CLock lock(study.Pod(), 0);
  for (const char* length : {"04 00 00 00", "00 00 10 00", "FF FF FF 7F", "FF FF FF FF"}) {
    SCOPED_TRACE(length);
    ExpectCorruptFields(InMemory(1), StoreRecord(study.Pod(), 24000,
                                                 Bytes("01 00 00 00 05 00 00 00" +
                                                       std::string(length) + "61 62 63")));
  }
}

TEST_F(Records, WithVectorsLargerThanTheRecordAreCorrupt) {
  const CLock lock(study.Pod(), 0);
  const std::string scalars =
      "02 00 00 00 05 00 00 00 02 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 01 00 00 00 00";
  const std::string empty = "00 00 00 00";
  for (const std::string count : {"09 00 00 00", "00 00 00 20", "FF FF FF 7F", "FF FF FF FF"}) {
    std::string before;
    for (int vector = 0; vector < 4; ++vector) {
      SCOPED_TRACE(count + " in vector " + std::to_string(vector));
      const long address = StoreSample(scalars + before + count + empty + empty + empty + empty);
      ExpectCorruptFields(SampleRecord(study.Pod()), address);
      before += empty;
    }
  }
}

// ---- An index that doesn't match ----

TEST_F(Records, OfAnotherKeyAreAnIndexError) {
  StorePlain(1, "one");
  const long second = StorePlain(2, "two");
  Redirect(1, second);
  PlainRecord record = InMemory(1);
  EXPECT_THROW(record.GetObject(), CIndexError);
}

TEST_F(Records, OfAnotherClassBehindAKeyAreRefused) {
  StorePlain(1, "one");
  Redirect(1, 68);
  PlainRecord record = InMemory(1);
  EXPECT_THROW(record.GetObject(), CBadClassID);
  EXPECT_EQ(record.m_strText, "in memory");
}

TEST_F(Records, ThatAKeyPlacesOutsideOfTheFileAreAFailure) {
  StorePlain(1, "one");
  Redirect(1, 2000000);
  EXPECT_THROW(InMemory(1).GetObject(), CFileRead);
}

}  // namespace
