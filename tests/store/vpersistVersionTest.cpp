#include <gtest/gtest.h>

#include <string>

#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/PersistentClassImpl.h"
#include "store/vbdbase.h"
#include "tests/support/Bytes.h"
#include "tests/support/Log.h"
#include "tests/support/SampleRecord.h"
#include "tests/support/StoredRecord.h"
#include "tests/support/Study.h"

// Records that an older or a newer library wrote.

/// A class whose records before version 3 are not known any more, and where version 5 brought a
/// number that older records take from another field.
class LateRecord : public vbPersistentClass<LateRecord> {
 public:
  using vbPersistentClass::vbPersistentClass;

  inline static const std::string m_strCLASS_NAME{"LateRecord"};

  vbINT32 m_nID;
  vbINT32 m_nFour{-4};  ///< stored since version 4
  vbINT32 m_nFive{-5};  ///< stored since version 5
};

template <>
struct kestdb::ClassOf<LateRecord> {
  static constexpr vbINT32 Index{24};
  static constexpr vbINT32 Version{5};
  static constexpr int OldestVersion = 3;
  static constexpr std::array Keys{&LateRecord::m_nID};
  static constexpr auto Fields = [](auto& file, auto& record) {
    file(record.m_nID);
    file.since(4, record.m_nFour);
    file.since(5, record.m_nFive);
  };
  static void Complete(LateRecord& record, long stored) {
    if (stored < 5) record.m_nFive = 10 * record.m_nID;
  }
};
template class vbPersistentClass<LateRecord>;

namespace {

class Versions : public testing::Test {
 protected:
  /// Stores a sample record: `fields` start with its version.
  long StoreSample(const std::string& fields) {
    return StoreRecord(study.Pod(), 23000, Bytes(fields));
  }

  LateRecord ReadLate(const std::string& fields) {
    LateRecord record(study.Pod());
    record.Read(StoreRecord(study.Pod(), 25000, Bytes(fields)));
    return record;
  }

  Study study;
};

// Keys, flags and value of a sample record, a text, and four empty vectors.
const std::string sampleFields =
    "05 00 00 00 02 00 00 00 98 BA DC FE 3F F0 00 00 00 00 00 00 02 00 00 00 61 62 "
    "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 ";

/// An object that holds something in every field.
SampleRecord Filled(POD* pod) {
  SampleRecord record(pod);
  record.m_nID = 77;
  record.m_strText = "old";
  record.m_vnNumbers = {1, 2, 3};
  record.m_vstrTexts = {"old"};
  record.m_mfRows = {{1.0}};
  record.m_nSinceTwo = 88;
  return record;
}

void ExpectSampleFields(const SampleRecord& record) {
  EXPECT_EQ(record.m_nID, 5);
  EXPECT_EQ(record.m_nNumber, 2);
  EXPECT_EQ(record.m_uFlags, 0xFEDCBA98UL);
  EXPECT_EQ(record.m_fValue, 1.0);
  EXPECT_EQ(record.m_strText, "ab");
  EXPECT_TRUE(record.m_vnNumbers.empty());
  EXPECT_TRUE(record.m_vstrTexts.empty());
  EXPECT_TRUE(record.m_mfRows.empty());
}

TEST_F(Versions, TheCurrentOneIsReadInFull) {
  const long address = StoreSample("02 00 00 00" + sampleFields + "09 00 00 00");
  SampleRecord record = Filled(study.Pod());
  record.Read(address);
  ExpectSampleFields(record);
  EXPECT_EQ(record.m_nSinceTwo, 9);
  EXPECT_EQ(record.ObjectAddress(), address);
}

TEST_F(Versions, AnOlderOneLeavesNewerFieldsAtTheirDefaults) {
  for (const char* version : {"01 00 00 00", "00 00 00 00", "FF FF FF FF"}) {
    SCOPED_TRACE(version);
    SampleRecord record(study.Pod());
    record.Read(StoreSample(version + sampleFields));
    ExpectSampleFields(record);
    EXPECT_EQ(record.m_nSinceTwo, -7);
  }
}

TEST_F(Versions, AnOlderOneLeavesNewerFieldsAsTheObjectHeldThem) {
  SampleRecord record(study.Pod());
  record.Read(StoreSample("02 00 00 00" + sampleFields + "09 00 00 00"));
  ASSERT_EQ(record.m_nSinceTwo, 9);
  record.Read(StoreSample("01 00 00 00" + sampleFields));
  ExpectSampleFields(record);
  EXPECT_EQ(record.m_nSinceTwo, 9);
}

TEST_F(Versions, ANewerOneIsReadAsFarAsItIsKnown) {
  SampleRecord record = Filled(study.Pod());
  record.Read(StoreSample("03 00 00 00" + sampleFields + "09 00 00 00 FF FF FF FF FF"));
  ExpectSampleFields(record);
  EXPECT_EQ(record.m_nSinceTwo, 9);
}

TEST_F(Versions, AnOlderOneIsUpgradedByTheNextWrite) {
  SampleRecord record(study.Pod());
  record.Read(StoreSample("01 00 00 00" + sampleFields));
  record.Write();
  study.Close();
  const auto at = static_cast<std::size_t>(record.ObjectAddress());
  EXPECT_EQ(HexAt(study.DataPath(), at + 8, 50),
            Hex(Bytes("02 00 00 00" + sampleFields + "F9 FF FF FF")));
}

TEST_F(Versions, AnOldOneIsCompletedAfterReading) {
  const LateRecord three = ReadLate("03 00 00 00 07 00 00 00");
  EXPECT_EQ(three.m_nFour, -4);
  EXPECT_EQ(three.m_nFive, 70);
  const LateRecord four = ReadLate("04 00 00 00 07 00 00 00 08 00 00 00");
  EXPECT_EQ(four.m_nFour, 8);
  EXPECT_EQ(four.m_nFive, 70);
  const LateRecord five = ReadLate("05 00 00 00 07 00 00 00 08 00 00 00 09 00 00 00");
  EXPECT_EQ(five.m_nFour, 8);
  EXPECT_EQ(five.m_nFive, 9);
}

TEST_F(Versions, OneOfAnUnknownLayoutIsRefusedAndNamed) {
  const long address = StoreRecord(study.Pod(), 25000, Bytes("02 00 00 00 07 00 00 00"));
  LateRecord record(study.Pod());
  record.m_nID = 1;
  ClearLog();
  EXPECT_THROW(record.Read(address), CInvalidType);
  EXPECT_EQ(record.m_nID, 1);
  EXPECT_EQ(record.ObjectAddress(), 0);
  EXPECT_EQ(Log().front(),
            (LogEntry{"LError",
                      "LateRecord object at address " + std::to_string(address) +
                          " has version 2; the oldest version that can be read is 3.\n",
                      "", 0}));
}

TEST_F(Versions, OneBelowZeroIsOfAnUnknownLayout) {
  EXPECT_THROW(ReadLate("FF FF FF FF 07 00 00 00"), CInvalidType);
}

}  // namespace
