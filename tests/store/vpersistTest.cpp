#include "store/vpersist.h"

#include <gtest/gtest.h>

#include <string>

#include "index/KSBKey.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/PersistentClassImpl.h"
#include "store/vbdbase.h"
#include "tests/support/Bytes.h"
#include "tests/support/RawFile.h"
#include "tests/support/SampleRecord.h"
#include "tests/support/Study.h"

// What an object looks like in the file, and the members that transfer its parts.

/// A list of texts under a number, the shape of the simplest classes.
class ListRecord : public vbPersistentClass<ListRecord> {
 public:
  using vbPersistentClass::vbPersistentClass;

  inline static const std::string m_strCLASS_NAME{"ListRecord"};

  vbINT32 m_nID;
  std::vector<std::string> m_vstrTexts;
};

template <>
struct kestdb::ClassOf<ListRecord> {
  static constexpr vbINT32 Index{24};
  static constexpr vbINT32 Version{1};
  static constexpr std::array Keys{&ListRecord::m_nID};
  static constexpr auto Fields = [](auto& file, auto& record) {
    file(record.m_nID, record.m_vstrTexts);
  };
};
template class vbPersistentClass<ListRecord>;

namespace {

const std::string normalBlock = "4E 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 ";

class StoredForm : public testing::Test {
 protected:
  /// The bytes of the first block behind those of a fresh study, as hex.
  std::string NewBlock() {
    study.Close();
    return Hex(ReadBytes(study.DataPath()).substr(static_cast<std::size_t>(address) - 28));
  }

  Study study;
  const long address = study.NextObject();
};

/// The bytes of a block, as hex: `head` are check word and length, `classID`, `address` and
/// `record` are the object.
std::string BlockOf(const std::string& head, const std::string& classID, long address,
                    const std::string& record) {
  const std::string bytes = Bytes(classID + HexWord(address) + record);
  return Hex(Bytes(head + normalBlock) + bytes + ChecksumOf(bytes));
}

TEST_F(StoredForm, OfEveryKindOfField) {
  SampleRecord record(study.Pod());
  record.m_nID = 5;
  record.m_nNumber = 2;
  record.m_uFlags = 0xFEDCBA98;
  record.m_fValue = 1.0;
  record.m_strText = "ab";
  record.m_vnNumbers = {1, -1};
  record.m_vfValues = {0.5};
  record.m_vstrTexts = {"x", ""};
  record.m_mfRows = {{1.0}, {}};
  record.m_nSinceTwo = 9;
  EXPECT_EQ(record.ObjectLength(), 92U);
  ASSERT_TRUE(record.Write());
  EXPECT_EQ(record.ObjectAddress(), address);
  EXPECT_EQ(NewBlock(), BlockOf("FE FE FE FE 84 00 00 00", "D8 59 00 00", address,  // class 23000
                                "02 00 00 00 "                                      // version
                                "05 00 00 00 02 00 00 00 98 BA DC FE "
                                "3F F0 00 00 00 00 00 00 "
                                "02 00 00 00 61 62 "
                                "02 00 00 00 01 00 00 00 FF FF FF FF "
                                "01 00 00 00 3F E0 00 00 00 00 00 00 "
                                "02 00 00 00 01 00 00 00 78 01 00 00 00 00 "
                                "02 00 00 00 "
                                "01 00 00 00 3F F0 00 00 00 00 00 00 "
                                "00 00 00 00 "
                                "09 00 00 00"));
}

TEST_F(StoredForm, OfARecordWithNothingInIt) {
  SampleRecord record(study.Pod());
  record.m_nID = 1;
  EXPECT_EQ(record.ObjectLength(), 49U);
  ASSERT_TRUE(record.Write());
  EXPECT_EQ(NewBlock(), BlockOf("FE FE FE FE 59 00 00 00", "D8 59 00 00", address,
                                "02 00 00 00 "
                                "01 00 00 00 00 00 00 00 00 00 00 00 "
                                "00 00 00 00 00 00 00 00 "
                                "01 00 00 00 00 "
                                "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
                                "F9 FF FF FF"));
}

TEST_F(StoredForm, OfAnEmptyListTakes52Bytes) {
  ListRecord list(study.Pod());
  list.m_nID = 7;
  EXPECT_EQ(list.ObjectLength(), 12U);
  ASSERT_TRUE(list.Write());
  EXPECT_EQ(study.Pod()->DataFile()->VBLength(list.ObjectAddress()), 52U);
  EXPECT_EQ(NewBlock(), BlockOf("FE FE FE FE 34 00 00 00", "A8 61 00 00", address,
                                "01 00 00 00 07 00 00 00 00 00 00 00"));
}

TEST_F(StoredForm, OfAListIsTwelveBytesAndItsTexts) {
  ListRecord list(study.Pod());
  list.m_nID = 7;
  list.m_vstrTexts = {"four", "", "x"};
  EXPECT_EQ(list.ObjectLength(), 12U + 8 + 5 + 5);
  ASSERT_TRUE(list.Write());
  EXPECT_EQ(NewBlock(), BlockOf("FE FE FE FE 46 00 00 00", "A8 61 00 00", address,
                                "01 00 00 00 07 00 00 00 "
                                "03 00 00 00 "
                                "04 00 00 00 66 6F 75 72 "
                                "01 00 00 00 00 "
                                "01 00 00 00 78"));
}

TEST_F(StoredForm, OfAKeyIsTextAddressAndClass) {
  SampleRecord record(study.Pod());
  record.m_nID = 5;
  record.m_nNumber = 2;
  record.Write();
  study.Close();
  // The root of tree 22: one key, no child on its left or right.
  EXPECT_EQ(HexAt(study.IndexPath(), 1068 + 22 * 2396, 84),
            Hex(Bytes("01 00 00 00 00 00 00 00 00 00 00 00") + "          5          2" +
                std::string(42, '\0') + Bytes(HexWord(address) + "D8 59 00 00")));
}

TEST_F(StoredForm, OfAnEmptyStringTakesFiveBytesAndReadsBackEmpty) {
  PlainRecord record(study.Pod());
  record.m_nID = 1;
  EXPECT_EQ(record.ObjectLength(), 8U + 5);
  record.Write();
  record.m_strText = "other";
  ASSERT_TRUE(record.GetObject());
  EXPECT_EQ(record.m_strText, "");
}

TEST_F(StoredForm, OfABlankTakesFiveBytesAndReadsBackAsABlank) {
  PlainRecord record(study.Pod());
  record.m_nID = 1;
  record.m_strText = " ";
  EXPECT_EQ(record.ObjectLength(), 8U + 5);
  record.Write();
  record.m_strText.clear();
  ASSERT_TRUE(record.GetObject());
  EXPECT_EQ(record.m_strText, " ");
}

TEST_F(StoredForm, LosesTextBehindAZeroByteWhenItIsRead) {
  PlainRecord record(study.Pod());
  record.m_nID = 1;
  record.m_strText = std::string("ab\0cd", 5);
  EXPECT_EQ(record.ObjectLength(), 8U + 4 + 5);
  record.Write();
  ASSERT_TRUE(record.GetObject());
  EXPECT_EQ(record.m_strText, "ab");
}

TEST_F(StoredForm, ReadsBackAsItWas) {
  SampleRecord record(study.Pod());
  record.m_nID = 0x7FFFFFFF;
  record.m_nNumber = 12345678;
  record.m_uFlags = 0xFFFFFFFF;
  record.m_fValue = -1e300;
  record.m_strText = std::string(5000, '\xFE');
  record.m_vnNumbers.assign(1000, -5);
  record.m_vfValues.assign(1000, 1e-300);
  record.m_vstrTexts = {"", "a", std::string(300, 'b')};
  record.m_mfRows = {{}, {1, 2, 3}, std::vector<vbFLOAT64>(100, 0.25)};
  record.m_nSinceTwo = -1;
  record.Write();
  study.Reopen();
  SampleRecord read(study.Pod());
  read.m_nID = record.m_nID;
  read.m_nNumber = record.m_nNumber;
  ASSERT_TRUE(read.GetObject());
  EXPECT_EQ(read.m_uFlags, record.m_uFlags);
  EXPECT_EQ(read.m_fValue, record.m_fValue);
  EXPECT_EQ(read.m_strText, record.m_strText);
  EXPECT_EQ(read.m_vnNumbers, record.m_vnNumbers);
  EXPECT_EQ(read.m_vfValues, record.m_vfValues);
  EXPECT_EQ(read.m_vstrTexts, record.m_vstrTexts);
  EXPECT_EQ(read.m_mfRows, record.m_mfRows);
  EXPECT_EQ(read.m_nSinceTwo, record.m_nSinceTwo);
}

// ---- The transfer of parts ----

class Parts : public testing::Test {
 protected:
  void SetUp() override { lock = new CLock(study.Pod(), 0); }
  void TearDown() override { delete lock; }

  /// Object address of a new block of that many bytes.
  vbINT32 NewBlock(unsigned long size) {
    return study.Pod()->DataFile()->Alloc(size, vbReclaimFirstFit);
  }

  void Patch(long address, const std::string& hex) {
    const std::string bytes = Bytes(hex);
    study.Pod()->DataFile()->Write(bytes.data(), bytes.size(), address, false, true);
  }

  /// What the data file holds, as hex.
  std::string Stored(long address, unsigned long size) {
    std::string bytes(size, '\0');
    study.Pod()->DataFile()->Read(bytes.data(), size, address);
    return Hex(bytes);
  }

  std::string ReadBack(long address) {
    std::string text = "before";
    record.ReadString(text, address);
    return text;
  }

  Study study;
  CLock* lock = nullptr;
  PlainRecord record{study.Pod()};
};

TEST_F(Parts, AStringTakesFourBytesMoreThanItsLength) {
  EXPECT_EQ(vbPersistent::StringFileLength("abc"), 7U);
  EXPECT_EQ(vbPersistent::StringFileLength(" "), 5U);
  EXPECT_EQ(vbPersistent::StringFileLength(""), 5U);
  std::string variable(100000, 'x');
  EXPECT_EQ(vbPersistent::StringFileLength(variable), 100004U);
}

TEST_F(Parts, AStringIsWrittenBehindItsLength) {
  const vbINT32 address = NewBlock(20);
  record.WriteString("abc", address);
  EXPECT_EQ(Stored(address, 8), "03 00 00 00 61 62 63 00");
  std::string text = "longer";
  record.WriteString(text, address + 4);
  EXPECT_EQ(Stored(address, 14), "03 00 00 00 06 00 00 00 6C 6F 6E 67 65 72");
}

TEST_F(Parts, AnEmptyStringIsWrittenAsAZeroByte) {
  const vbINT32 address = NewBlock(20);
  Patch(address, "FF FF FF FF FF FF");
  record.WriteString("", address);
  EXPECT_EQ(Stored(address, 6), "01 00 00 00 00 FF");
}

TEST_F(Parts, StringsAreWrittenAndReadOneAfterTheOther) {
  const vbINT32 address = NewBlock(20);
  study.Pod()->DataFile()->SeekTo(address);
  record.WriteString("ab", vbCurrAddress);
  record.WriteString("", vbCurrAddress);
  record.WriteString("c", vbCurrAddress);
  EXPECT_EQ(Stored(address, 16), "02 00 00 00 61 62 01 00 00 00 00 01 00 00 00 63");
  EXPECT_EQ(ReadBack(address), "ab");
  EXPECT_EQ(ReadBack(vbCurrAddress), "");
  EXPECT_EQ(ReadBack(vbCurrAddress), "c");
}

TEST_F(Parts, AStringIsReadUpToItsFirstZeroByte) {
  const vbINT32 address = NewBlock(20);
  Patch(address, "05 00 00 00 61 62 00 63 64 01 00 00 00 65");
  EXPECT_EQ(ReadBack(address), "ab");
  EXPECT_EQ(ReadBack(vbCurrAddress), "e");
}

TEST_F(Parts, AStringOfNoBytesIsReadAsEmpty) {
  const vbINT32 address = NewBlock(20);
  Patch(address, "00 00 00 00 01 00 00 00 65");
  EXPECT_EQ(ReadBack(address), "");
  EXPECT_EQ(ReadBack(vbCurrAddress), "e");
}

TEST_F(Parts, AStringLongerThanTheFileIsCorrupt) {
  const vbINT32 address = NewBlock(20);
  for (const char* length : {"00 00 00 01", "FF FF FF 7F", "FF FF FF FF"}) {
    Patch(address, length);
    EXPECT_THROW(ReadBack(address), CFileCorrupt) << length;
  }
}

TEST_F(Parts, AStringOverTheEndOfTheFileIsAReadFailure) {
  const vbINT32 address = NewBlock(20);
  Patch(address, "40 00 00 00");
  EXPECT_THROW(ReadBack(address), CFileRead);
}

TEST_F(Parts, AnObjectHeaderIsClassIDAndAddress) {
  const vbINT32 address = NewBlock(20);
  record.WriteObjectHeader({15000, address}, address);
  EXPECT_EQ(Stored(address, 8), Hex(Bytes("98 3A 00 00" + HexWord(address))));
  Patch(address, "98 3A 00 00 FF FF FF FF");
  vbObjectHeader header;
  record.ReadObjectHeader(header, address);
  EXPECT_EQ(header.ClassID, 15000);
  EXPECT_EQ(header.Address, -1);
}

TEST_F(Parts, NothingIsTransferredWithoutADataFile) {
  PlainRecord detached(static_cast<POD*>(nullptr));
  vbObjectHeader header;
  std::string text;
  EXPECT_THROW(detached.ReadObjectHeader(header, 40), CNullPtr);
  EXPECT_THROW(detached.WriteObjectHeader(header, 40), CNullPtr);
  EXPECT_THROW(detached.ReadString(text, 40), CNullPtr);
  EXPECT_THROW(detached.WriteString("a", 40), CNullPtr);
}

}  // namespace
