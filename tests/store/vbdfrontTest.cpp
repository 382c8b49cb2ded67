#include <gtest/gtest.h>

#include <string>

#include "store/KestErr.h"
#include "store/vbdbase.h"
#include "tests/support/BlockFile.h"
#include "tests/support/Bytes.h"

// What stands before the heap, read and written in one transfer.

namespace {

/// A file with 20 bytes of static area, the digits and letters at 40, and no block.
class FileFront : public testing::Test {
 protected:
  FileFront() { db.ReadFront(); }

  /// What is known of the front, as text; "unknown" where nothing is.
  std::string Known(long address, unsigned long size) const {
    const char* bytes = db.Front(address, size);
    return bytes == nullptr ? "unknown" : std::string(bytes, size);
  }

  static std::string Image() {
    return Bytes(
               "00 00 00 00 3C 00 00 00 3C 00 00 00 00 00 00 00 "
               "56 42 44 42 41 53 45 43 B9 0B 00 00 "
               "01 02 03 04 05 06 07 08 09 0A 0B 0C") +
           "0123456789abcdefghij";
  }

  BlockFile file{Image()};
  vbDatabase& db = file.db;
};

}  // namespace

TEST_F(FileFront, IsKnownUpToTheHeap) {
  EXPECT_EQ(Known(40, 20), "0123456789abcdefghij");
  EXPECT_EQ(Known(59, 1), "j");
  EXPECT_EQ(Known(60, 0), "");
  EXPECT_EQ(Known(59, 2), "unknown");
  EXPECT_EQ(Known(-1, 1), "unknown");
  EXPECT_EQ(Known(0, 1000), "unknown");
  EXPECT_EQ(db.GetEOF(), 60) << "the file header is read with it";
}

TEST_F(FileFront, IsReadAnew) {
  file.Patch(4, Bytes("50"));
  file.Patch(40, "XX");
  db.Refresh();
  EXPECT_EQ(Known(40, 2), "unknown");
  db.ReadFront();
  EXPECT_EQ(Known(40, 4), "XX23");
  EXPECT_EQ(db.GetEOF(), 80);
}

TEST_F(FileFront, IsKnownAsItWasWrittenSince) {
  db.Write("ABCD", 4, 42, false, true);
  EXPECT_EQ(Known(40, 8), "01ABCD67");
  db.Write("xyz", 3, 58, false, true);
  EXPECT_EQ(Known(56, 4), "ghxy");
}

TEST_F(FileFront, IsWrittenWithTheFileHeaderAndNothingElseChanges) {
  db.Alloc(1, vbReclaimNone);  // moves the end of the file in the header
  const std::string before = ReadBytes(file.Path());
  db.WriteFront("ABCD", 4, 50);
  const std::string after = ReadBytes(file.Path());
  std::string expected = before;
  expected.replace(4, 1, Bytes("5D")).replace(12, 1, Bytes("3C")).replace(50, 4, "ABCD");
  EXPECT_EQ(Hex(after), Hex(expected));
  EXPECT_EQ(Known(48, 8), "89ABCDef");
}

TEST_F(FileFront, IsWrittenInPartsWhereItIsNotKnown) {
  db.Refresh();
  db.Alloc(1, vbReclaimNone);
  db.WriteFront("ABCD", 4, 50);
  EXPECT_EQ(file.HexAt(4, 4), "5D 00 00 00");
  EXPECT_EQ(file.HexAt(48, 8), "38 39 41 42 43 44 65 66");
}

TEST_F(FileFront, ThatTheFileDoesNotHaveIsNotKnown) {
  BlockFile cut(Image().substr(0, 50));
  cut.db.ReadFront();
  EXPECT_EQ(cut.db.Front(40, 1), nullptr);
  EXPECT_EQ(cut.db.GetHeapStart(), 60);
}

TEST_F(FileFront, OfAnImpossibleSizeIsNotRead) {
  for (const char* heap : {"FF FF FF FF", "00 00 00 80", "FF FF FF 7F", "00 00 00 00", "1B 00"}) {
    std::string image = Image();
    image.replace(8, Bytes(heap).size(), Bytes(heap));
    BlockFile wrong(image);
    wrong.db.ReadFront();
    EXPECT_EQ(wrong.db.Front(0, 1), nullptr) << heap;
  }
}

TEST_F(FileFront, OfAClosedFileIsNotKnown) {
  db.Close();
  EXPECT_EQ(Known(40, 1), "unknown");
  EXPECT_THROW(db.ReadFront(), CFileNotReady);
}
