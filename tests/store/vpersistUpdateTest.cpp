#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "index/KSBKey.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/vbdbase.h"
#include "tests/support/Bytes.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/RawFile.h"
#include "tests/support/SampleRecord.h"
#include "tests/support/Study.h"

// Updates that fail: the old form stays, and both files stay sound.

namespace {

constexpr long plainClass = 24000;
constexpr long plainTree = 23;

class Updates : public testing::Test {
 protected:
  PlainRecord Plain(int id, const std::string& text = "") {
    PlainRecord record(study.Pod());
    record.m_nID = id;
    record.m_strText = text;
    return record;
  }

  long Store(int id, const std::string& text) {
    PlainRecord record = Plain(id, text);
    record.PutObject();
    return record.ObjectAddress();
  }

  /// The text stored under the number; "none" when there is no such object.
  std::string TextOf(int id) {
    PlainRecord record = Plain(id);
    return record.GetObject() ? record.m_strText : "none";
  }

  static unsigned long SizeOf(const std::string& path) { return std::filesystem::file_size(path); }

  std::string Fault() {
    return FaultOfClass(ReadRawFile(study.DataPath()), ReadRawFile(study.IndexPath()), plainClass);
  }

  /// That object 1 has its old form, now and after reopening, in two sound files, and that it can
  /// be updated then.
  void ExpectOldForm(long address, const std::string& text) {
    EXPECT_EQ(TextOf(1), text);
    PlainRecord record = Plain(1);
    EXPECT_TRUE(record.FindObject());
    EXPECT_EQ(record.ObjectAddress(), address);
    EXPECT_EQ(Fault(), "");
    study.Reopen();
    EXPECT_EQ(TextOf(1), text);
    EXPECT_EQ(Plain(1).CountObjects(), countBefore);
    EXPECT_EQ(Fault(), "");
    Store(1, std::string(20000, 'z'));
    EXPECT_EQ(TextOf(1), std::string(20000, 'z'));
    EXPECT_EQ(Fault(), "");
  }

  /// An update of object 1 that fails with `Error` while no file can be written at or behind
  /// `limit`.
  template <class Error>
  void FailToUpdate(const std::string& text, unsigned long limit) {
    PlainRecord record = Plain(1, text);
    countBefore = record.CountObjects();
    const FileSizeLimit full(limit);
    EXPECT_THROW(record.PutObject(), Error);
  }

  Study study;
  int countBefore = 0;
};

// ---- A data file that can't grow ----

/// With a data file longer than the index, so that a limit of file sizes stops the data file alone.
class UpdatesInALargeFile : public Updates {
 protected:
  void SetUp() override { Store(9, std::string(70000, 'x')); }
};

TEST_F(UpdatesInALargeFile, OfASmallObjectThatFindNoRoomKeepTheOldForm) {
  const long old = Store(1, "old");
  Store(2, "other");
  FailToUpdate<CFileWrite>(std::string(1000, 'n'), SizeOf(study.DataPath()));
  ExpectOldForm(old, "old");
}

TEST_F(UpdatesInALargeFile, OfALargeObjectThatFindNoRoomKeepTheOldForm) {
  const long old = Store(1, std::string(5000, 'o'));
  Store(2, "other");
  FailToUpdate<CFileWrite>(std::string(50000, 'n'), SizeOf(study.DataPath()));
  ExpectOldForm(old, std::string(5000, 'o'));
}

class UpdatesThatFitInPart : public UpdatesInALargeFile,
                             public testing::WithParamInterface<unsigned long> {};

TEST_P(UpdatesThatFitInPart, KeepTheOldForm) {
  const long old = Store(1, "old");
  FailToUpdate<CFileWrite>(std::string(1000, 'n'), SizeOf(study.DataPath()) + GetParam());
  ExpectOldForm(old, "old");
}

// Within the block header, at its end, within the object, and before the last byte.
INSTANTIATE_TEST_SUITE_P(Bytes, UpdatesThatFitInPart, testing::Values(1, 16, 28, 500, 1051));

TEST_F(UpdatesInALargeFile, ThatFailKeepTheObjectAtItsOldAddress) {
  const long old = Store(1, "old");
  PlainRecord record = Plain(1, std::string(1000, 'n'));
  {
    const FileSizeLimit full(SizeOf(study.DataPath()));
    EXPECT_THROW(record.PutObject(), CFileWrite);
  }
  EXPECT_EQ(record.ObjectAddress(), old);
  EXPECT_EQ(record.m_strText, std::string(1000, 'n'));
  EXPECT_TRUE(record.PutObject());
  EXPECT_EQ(TextOf(1), std::string(1000, 'n'));
}

TEST_F(UpdatesInALargeFile, ThatFailOneAfterTheOtherKeepTheOldForm) {
  const long old = Store(1, "old");
  for (int i = 0; i < 5; ++i) {
    FailToUpdate<CFileWrite>(std::string(1000, 'n'), SizeOf(study.DataPath()));
  }
  ExpectOldForm(old, "old");
}

TEST_F(UpdatesInALargeFile, ThatFailUnderAnOuterLockKeepTheOldForm) {
  const long old = Store(1, "old");
  {
    const CLock lock(study.Pod(), 0);
    FailToUpdate<CFileWrite>(std::string(1000, 'n'), SizeOf(study.DataPath()));
    EXPECT_EQ(TextOf(1), "old");
  }
  ExpectOldForm(old, "old");
}

TEST_F(UpdatesInALargeFile, OfANewObjectThatFindsNoRoomStoreNothing) {
  Store(2, "other");
  FailToUpdate<CFileWrite>(std::string(1000, 'n'), SizeOf(study.DataPath()));
  EXPECT_EQ(TextOf(1), "none");
  EXPECT_EQ(Plain(1).CountObjects(), 2);
  EXPECT_EQ(Fault(), "");
}

TEST_F(UpdatesInALargeFile, WithABrokenFreeListThatFindNoRoomKeepTheOldForm) {
  const long old = Store(1, "old");
  Store(2, "other");
  study.Close();
  PatchBytes(study.DataPath(), 0, Bytes("FF FF FF FF"));
  study.Open();
  FailToUpdate<CFileWrite>(std::string(1000, 'n'), SizeOf(study.DataPath()));
  EXPECT_EQ(TextOf(1), "old");
  study.Reopen();
  EXPECT_EQ(TextOf(1), "old");
  PlainRecord record = Plain(1);
  EXPECT_TRUE(record.FindObject());
  EXPECT_EQ(record.ObjectAddress(), old);
  EXPECT_EQ(record.CountObjects(), 3);
  EXPECT_TRUE(Plain(1, std::string(1000, 'n')).PutObject());
}

// ---- A data file that can't be written ----

TEST_F(Updates, ThatCannotWriteAtAllKeepTheOldForm) {
  const long old = Store(1, "old");
  FailToUpdate<CFileWrite>("new", 0);
  ExpectOldForm(old, "old");
}

TEST_F(UpdatesInALargeFile, WhoseNewBlockCannotBeFilledKeepTheOldForm) {
  // The free block of object 3 takes the new form but for its last bytes.
  const long old = Store(1, "old");
  const long third = Store(3, std::string(1000, 'x'));
  Store(4, "last");
  ASSERT_TRUE(Plain(3).RemoveObject());
  FailToUpdate<CFileWrite>(std::string(1000, 'n'), static_cast<unsigned long>(third) + 500);
  ExpectOldForm(old, "old");
}

TEST_F(UpdatesInALargeFile, WhoseNewBlockCannotBeMadeKeepTheOldForm) {
  // The free block of object 3, which fits, lies behind the last byte that can be written. It may
  // be lost to the free list, and nothing else.
  const long old = Store(1, "old");
  const long third = Store(3, std::string(1000, 'x'));
  Store(4, "last");
  ASSERT_TRUE(Plain(3).RemoveObject());
  FailToUpdate<CFileWrite>(std::string(1000, 'n'), static_cast<unsigned long>(third) - 28);
  EXPECT_EQ(TextOf(1), "old");
  study.Reopen();
  PlainRecord record = Plain(1);
  EXPECT_TRUE(record.GetObject());
  EXPECT_EQ(record.m_strText, "old");
  EXPECT_EQ(record.ObjectAddress(), old);
  EXPECT_EQ(record.CountObjects(), countBefore);
  EXPECT_EQ(TextOf(4), "last");
  EXPECT_EQ(TextOf(9), std::string(70000, 'x'));
}

TEST_F(UpdatesInALargeFile, WhoseNewBlockCannotBeSplitOffKeepTheOldForm) {
  const long old = Store(1, "old");
  const long third = Store(3, std::string(1000, 'x'));
  Store(4, "last");
  ASSERT_TRUE(Plain(3).RemoveObject());
  FailToUpdate<CFileWrite>(std::string(500, 'n'), static_cast<unsigned long>(third) - 28);
  ExpectOldForm(old, "old");
}

// ---- An index that can't grow, or be written ----

TEST_F(Updates, OfANewObjectWhoseKeyFindsNoRoomLeaveALiveBlock) {
  {
    const CLock lock(study.Pod(), 0);
    for (int id = 2; id <= 32; ++id) Store(id, "other");
  }
  FailToUpdate<CFileWrite>("new", SizeOf(study.IndexPath()));
  EXPECT_EQ(TextOf(1), "none");
  EXPECT_EQ(Plain(1).CountObjects(), 32);
  study.Reopen();
  EXPECT_EQ(TextOf(1), "none");
  for (int id = 2; id <= 32; ++id) EXPECT_EQ(TextOf(id), "other");
  EXPECT_EQ(FaultOf(ReadRawFile(study.DataPath())), "");
  EXPECT_EQ(FaultOf(ReadRawFile(study.IndexPath())), "");
  EXPECT_EQ(ReadRawTree(ReadRawFile(study.IndexPath()), plainTree).size(), 31U);
}

/// Object 1 among others whose tree has the key of object 1 in its root and a full leaf before it:
/// a key that is taken out and put in again makes a new node.
class UpdatesInAFullTree : public Updates {
 protected:
  void SetUp() override {
    {
      const CLock lock(study.Pod(), 0);
      for (int i = 1; i <= 32; ++i) Fill(100 * i);
      for (int i = 1; i <= 15; ++i) Fill(i);
      Fill(3300);
    }
    indexSize = SizeOf(study.IndexPath());
    old = AddressOf(middle);
  }

  void Fill(int id) { Store(id, "old"); }

  long AddressOf(int id) {
    PlainRecord record = Plain(id);
    return record.FindObject() ? long{record.ObjectAddress()} : 0;
  }

  static constexpr int middle = 1700;
  unsigned long indexSize = 0;
  long old = 0;
};

TEST_F(UpdatesInAFullTree, MakeTheIndexGrow) {
  Store(middle, "a new form");
  EXPECT_GT(SizeOf(study.IndexPath()), indexSize);
  EXPECT_EQ(Fault(), "");
}

TEST_F(UpdatesInAFullTree, WhoseKeyFindsNoRoomKeepTheOldFormAlive) {
  {
    const FileSizeLimit full(indexSize);
    EXPECT_THROW(Plain(middle, "a new form").PutObject(), CFileWrite);
  }
  study.Reopen();
  // The old key finds no room either; its object is a live block, from which an index is made.
  EXPECT_EQ(FaultOf(ReadRawFile(study.DataPath())), "");
  EXPECT_EQ(FaultOf(ReadRawFile(study.IndexPath())), "");
  EXPECT_EQ(Plain(1).CountObjects(), 48);
  PlainRecord record(study.Pod());
  record.ReadObject(old);
  EXPECT_EQ(record.m_nID, middle);
  EXPECT_EQ(record.m_strText, "old");
}

TEST_F(UpdatesInAFullTree, OfTheSameLengthLoseNoMoreThanTheirKey) {
  {
    const FileSizeLimit full(indexSize);
    EXPECT_THROW(Plain(middle, "NEW").PutObject(), CFileWrite);
  }
  study.Reopen();
  EXPECT_EQ(FaultOf(ReadRawFile(study.DataPath())), "");
  EXPECT_EQ(FaultOf(ReadRawFile(study.IndexPath())), "");
  // Where the new form took the old block, it is a live block, from which a new index is made.
  EXPECT_EQ(Plain(1).CountObjects(), 48);
  const bool keyed = AddressOf(middle) == old;
  EXPECT_EQ(ReadRawTree(ReadRawFile(study.IndexPath()), plainTree).size(), keyed ? 48U : 47U);
  PlainRecord record(study.Pod());
  record.ReadObject(old);
  EXPECT_EQ(record.m_nID, middle);
  EXPECT_EQ(record.m_strText, keyed ? "old" : "NEW");
}

TEST_F(Updates, WhoseOldKeyCannotBeRemovedKeepTheOldForm) {
  const long old = Store(1, "old");
  // Behind the data file and the tree headers, and before the nodes of the tree.
  FailToUpdate<CFileWrite>("a new form", 20000);
  ExpectOldForm(old, "old");
}

TEST_F(Updates, RemovalsWhoseKeyCannotBeRemovedKeepTheObject) {
  for (const bool remove : {false, true}) {
    SCOPED_TRACE(remove);
    const long old = Store(1, "old");
    countBefore = 1;
    {
      PlainRecord record = Plain(1);
      const FileSizeLimit full(20000);
      EXPECT_THROW(remove ? record.RemoveObject() : record.DeleteObject(), CFileWrite);
    }
    ExpectOldForm(old, "old");
  }
}

// ---- A full disk, wherever it is met ----

class UpdatesAtEveryLimit : public UpdatesInALargeFile {
 protected:
  void SetUp() override {
    UpdatesInALargeFile::SetUp();
    old = Store(1, "old");
    Store(2, "other");
  }

  /// Tries to update object 1 while no file can be written at or behind `limit`. It has its old
  /// form or, where the update had room, its new one; the other objects are as they were.
  void TryToUpdate(const std::string& text, unsigned long limit) {
    bool updated = false;
    try {
      const FileSizeLimit full(limit);
      updated = Plain(1, text).PutObject();
    } catch (const CFileWrite&) {
      // Told, and nothing else.
    }
    if (updated) current = text;
    ASSERT_EQ(TextOf(1), current) << limit;
    ASSERT_EQ(TextOf(2), "other") << limit;
    ASSERT_EQ(TextOf(9), std::string(70000, 'x')) << limit;
    ASSERT_EQ(Plain(1).CountObjects(), 3) << limit;
  }

  long old = 0;
  std::string current = "old";
};

TEST_F(UpdatesAtEveryLimit, OfTheNewBlockKeepTheOldForm) {
  // 28 bytes of headers, 8 + 12 in front of the text, 4 behind it.
  const unsigned long size = SizeOf(study.DataPath());
  for (unsigned long limit = size; limit < size + 1052; limit += 7) {
    TryToUpdate(std::string(1000, 'n'), limit);
    ASSERT_EQ(current, "old") << limit;
  }
  EXPECT_EQ(Fault(), "");
  countBefore = 3;
  ExpectOldForm(old, "old");
}

TEST_F(UpdatesAtEveryLimit, OfTheFilesKeepAllObjects) {
  const unsigned long size = SizeOf(study.DataPath()) + 3000;
  for (unsigned long limit = 0; limit < size; limit += 499) {
    TryToUpdate(std::string(limit % 1700, static_cast<char>('a' + limit % 26)), limit);
    study.Reopen();
    ASSERT_EQ(TextOf(1), current) << limit;
    ASSERT_EQ(TextOf(2), "other") << limit;
  }
  EXPECT_NE(current, "old");  // the last ones had room
}

// ---- The largest file ----

constexpr long kLongestFile = 2147483647;

/// A study whose data file is the longest but for `room` bytes: behind object 1 and the free block
/// of object 2, one block holds nothing up to the end.
class LargestFile : public Updates {
 protected:
  void FillBut(long room) {
    old = Store(1, std::string(100, 'o'));
    Store(2, std::string(300, 'x'));
    ASSERT_TRUE(Plain(2).RemoveObject());
    countBefore = 1;
    study.Close();
    const long start = static_cast<long>(SizeOf(study.DataPath()));
    const long end = kLongestFile - room;
    WriteBytes(study.DataPath(), ReadBytes(study.DataPath()) +
                                     Bytes("FE FE FE FE" + HexWord(end - start) + "4E 00 00 00") +
                                     std::string(16, '\0'));
    std::filesystem::resize_file(study.DataPath(), static_cast<unsigned long>(end));
    PatchBytes(study.DataPath(), 4, Bytes(HexWord(end) + HexWord(40) + HexWord(start)));
    study.Open();
  }

  /// The file's size and its first bytes.
  std::string Head() {
    std::string head(4096, '\0');
    study.Pod()->DataFile()->Read(head.data(), head.size(), 0);
    return std::to_string(SizeOf(study.DataPath())) + head;
  }

  long old = 0;
};

TEST_F(LargestFile, RefusesAnUpdateBeforeAnythingIsRemoved) {
  FillBut(1000);
  const std::string before = Head();
  {
    // A first write would be the failure that is told.
    const FileSizeLimit noWrites(0);
    EXPECT_THROW(Plain(1, std::string(1000, 'n')).PutObject(), CMemoryAlloc);
  }
  EXPECT_EQ(Head(), before);
  EXPECT_EQ(TextOf(1), std::string(100, 'o'));
  EXPECT_EQ(Plain(1).CountObjects(), 1);
  study.Reopen();
  EXPECT_EQ(Head(), before);
  EXPECT_EQ(TextOf(1), std::string(100, 'o'));
}

TEST_F(LargestFile, RefusesANewObject) {
  FillBut(1000);
  const std::string before = Head();
  EXPECT_THROW(Plain(3, std::string(1000, 'n')).PutObject(), CMemoryAlloc);
  EXPECT_THROW(Plain(3, std::string(1000, 'n')).WriteObject(false), CMemoryAlloc);
  EXPECT_EQ(TextOf(3), "none");
  EXPECT_EQ(Head(), before);
}

TEST_F(LargestFile, TakesAnUpdateThatEndsAtTheLimit) {
  // 28 bytes of headers, 8 + 12 in front of the text, 4 behind it.
  FillBut(52 + 1000);
  EXPECT_TRUE(Plain(1, std::string(1000, 'n')).PutObject());
  EXPECT_EQ(SizeOf(study.DataPath()), static_cast<unsigned long>(kLongestFile));
  study.Reopen();
  EXPECT_EQ(TextOf(1), std::string(1000, 'n'));
  EXPECT_THROW(Plain(1, std::string(1001, 'n')).PutObject(), CMemoryAlloc);
  EXPECT_EQ(TextOf(1), std::string(1000, 'n'));
}

TEST_F(LargestFile, RefusesAnUpdateOneByteTooLong) {
  FillBut(52 + 1000);
  EXPECT_THROW(Plain(1, std::string(1001, 'n')).PutObject(), CMemoryAlloc);
  EXPECT_EQ(TextOf(1), std::string(100, 'o'));
}

TEST_F(LargestFile, TakesAnUpdateThatFitsTheOldBlock) {
  FillBut(0);
  EXPECT_TRUE(Plain(1, std::string(100, 'n')).PutObject());
  PlainRecord record = Plain(1);
  EXPECT_TRUE(record.GetObject());
  EXPECT_EQ(record.m_strText, std::string(100, 'n'));
  EXPECT_EQ(record.ObjectAddress(), old);
}

TEST_F(LargestFile, TakesAnUpdateThatAPartOfTheOldBlockHolds) {
  FillBut(0);
  EXPECT_TRUE(Plain(1, std::string(60, 'n')).PutObject());
  EXPECT_EQ(TextOf(1), std::string(60, 'n'));
}

TEST_F(LargestFile, TakesAnUpdateThatAFreeBlockHolds) {
  FillBut(0);
  EXPECT_TRUE(Plain(1, std::string(300, 'n')).PutObject());
  EXPECT_EQ(TextOf(1), std::string(300, 'n'));
}

TEST_F(LargestFile, TakesAnUpdateThatAPartOfAFreeBlockHolds) {
  FillBut(0);
  EXPECT_TRUE(Plain(1, std::string(267, 'n')).PutObject());
  EXPECT_EQ(TextOf(1), std::string(267, 'n'));
}

TEST_F(LargestFile, RefusesAnUpdateThatNoFreeBlockHolds) {
  FillBut(0);
  const std::string before = Head();
  // Too long by a byte, and too short for a split by a byte, or by all that one takes but a byte.
  for (const std::size_t size : {301U, 299U, 268U}) {
    EXPECT_THROW(Plain(1, std::string(size, 'n')).PutObject(), CMemoryAlloc);
    EXPECT_EQ(Head(), before);
  }
  EXPECT_EQ(TextOf(1), std::string(100, 'o'));
}

}  // namespace
