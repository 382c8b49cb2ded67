#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "store/KestErr.h"
#include "store/vbdbase.h"
#include "tests/support/BlockFile.h"
#include "tests/support/Bytes.h"
#include "tests/support/Log.h"

// Positions, and bytes in and out.

namespace {

/// A file whose bytes from 40 on are the digits and letters, the first at 40.
class BlockFileBytes : public testing::Test {
 protected:
  std::string Read(unsigned long size, vbINT32 address) {
    std::string bytes(size, '\0');
    file.db.Read(bytes.data(), size, address);
    return bytes;
  }
  void Write(const std::string& bytes, vbINT32 address, bool flush, bool verify) {
    file.db.Write(bytes.data(), bytes.size(), address, flush, verify);
  }

  BlockFile file{FileOf("0123456789abcdefghijklmnopqrstuvwxyz")};
  vbDatabase& db = file.db;
};

}  // namespace

TEST_F(BlockFileBytes, SeekGoesFromTheBeginAndFromTheCurrentPosition) {
  db.Seek(44, vbSeekBegin);
  EXPECT_EQ(db.FilePosition(), 44);
  db.Seek(6, vbSeekCurrent);
  EXPECT_EQ(db.FilePosition(), 50);
  db.Seek(-3, vbSeekCurrent);
  EXPECT_EQ(db.FilePosition(), 47);
  EXPECT_EQ(db.LastOperation(), 4);
}

TEST_F(BlockFileBytes, SeekEndMovesFromTheCurrentPosition) {
  db.Seek(44, vbSeekBegin);
  db.Seek(6, vbSeekEnd);
  EXPECT_EQ(db.FilePosition(), 50);
}

TEST_F(BlockFileBytes, SeekToWhereNothingIsFails) {
  db.Seek(44, vbSeekBegin);
  EXPECT_THROW(db.Seek(-1, vbSeekBegin), CFileSeek);
  EXPECT_THROW(db.Seek(-45, vbSeekCurrent), CFileSeek);
  EXPECT_THROW(db.Seek(0, static_cast<vbDatabaseSeekMode>(3)), CFileSeek);
  EXPECT_EQ(db.FilePosition(), 44);
}

TEST_F(BlockFileBytes, SeekToReturnsTheNewPosition) {
  db.Seek(44, vbSeekBegin);
  EXPECT_EQ(db.SeekTo(60), 60) << "forwards";
  EXPECT_EQ(db.SeekTo(41), 41) << "backwards";
  EXPECT_EQ(db.SeekTo(41), 41) << "where it is";
  EXPECT_EQ(db.LastOperation(), 4);
  EXPECT_EQ(db.FilePosition(), 41);
  EXPECT_THROW(db.SeekTo(-2), CFileSeek);
}

TEST_F(BlockFileBytes, SeekToTheCurrentAddressOnlyTellsThePosition) {
  EXPECT_EQ(Read(2, 44), "45");
  EXPECT_EQ(db.SeekTo(vbCurrAddress), 46);
  EXPECT_EQ(db.LastOperation(), 0);
}

TEST_F(BlockFileBytes, PositionBeyondTheLongestFileCannotBeTold) {
  db.Seek(0x7FFFFFFF, vbSeekBegin);
  EXPECT_EQ(db.FilePosition(), 0x7FFFFFFF);
  db.Seek(1, vbSeekCurrent);
  EXPECT_THROW(db.FilePosition(), CFilePosition);
}

TEST_F(BlockFileBytes, ReadGoesToItsAddress) {
  EXPECT_EQ(Read(3, 50), "abc");
  EXPECT_EQ(db.LastOperation(), 0);
  EXPECT_EQ(Read(2, 40), "01");
  EXPECT_EQ(db.FilePosition(), 42);
}

TEST_F(BlockFileBytes, ReadAtTheCurrentAddressGoesOn) {
  EXPECT_EQ(Read(2, 40), "01");
  EXPECT_EQ(Read(2, vbCurrAddress), "23");
  db.Seek(50, vbSeekBegin);
  EXPECT_EQ(Read(2, vbCurrAddress), "ab");
}

TEST_F(BlockFileBytes, ReadAtTheCurrentAddressRightAfterAWrite) {
  for (const bool flush : {false, true}) {
    for (const bool verify : {false, true}) {
      Write("##", 44, flush, verify);
      EXPECT_EQ(Read(2, vbCurrAddress), "67") << flush << verify;
    }
  }
}

TEST_F(BlockFileBytes, WriteAtTheCurrentAddressRightAfterARead) {
  EXPECT_EQ(Read(2, 44), "45");
  Write("##", vbCurrAddress, false, false);
  EXPECT_EQ(db.LastOperation(), 1);
  Write("+", vbCurrAddress, false, false);
  EXPECT_EQ(Read(8, 42), "2345##+9");
}

TEST_F(BlockFileBytes, EveryWayOfWritingLeavesThePositionBehindTheBytes) {
  for (const bool flush : {false, true}) {
    for (const bool verify : {false, true}) {
      Write("####", 44, flush, verify);
      EXPECT_EQ(db.FilePosition(), 48) << flush << verify;
    }
  }
}

TEST_F(BlockFileBytes, ReadPastTheEndFails) {
  EXPECT_EQ(Read(36, 40).size(), 36U);
  EXPECT_THROW(Read(37, 40), CFileRead);
  EXPECT_THROW(Read(1, 76), CFileRead);
  EXPECT_THROW(Read(1, 5000), CFileRead);
  EXPECT_EQ(Read(0, 76), "");
  EXPECT_EQ(Read(2, 40), "01") << "a failed read does no harm";
}

TEST_F(BlockFileBytes, ReadOfMoreThanAFileCanHoldFails) {
  char buffer[1];
  EXPECT_THROW(db.Read(buffer, 0x1'0000'0001, 40), CFileRead);
}

TEST_F(BlockFileBytes, WriteOfMoreThanAFileCanHoldFails) {
  const char buffer[4] = {};
  EXPECT_THROW(db.Write(buffer, 0x1'0000'0001, 40, false, false), CFileWrite);
  EXPECT_THROW(db.Write(buffer, 4, 0x7FFFFFFC, false, false), CFileWrite);
  EXPECT_EQ(db.Length(), 76);
}

TEST_F(BlockFileBytes, WriteThatIsRefusedForItsSizeLosesNothingWrittenBefore) {
  Write("##", 44, false, false);
  EXPECT_THROW(db.Write("", 0x1'0000'0001, vbCurrAddress, false, false), CFileWrite);
  db.Flush();
  EXPECT_EQ(HexAt(file.Path(), 44, 2), "23 23");
}

TEST_F(BlockFileBytes, FlushedBytesAreSeenByOthersAtOnce) {
  Write("##", 44, true, false);
  EXPECT_EQ(db.LastOperation(), 4);
  EXPECT_EQ(HexAt(file.Path(), 44, 2), "23 23");
}

TEST_F(BlockFileBytes, UnflushedBytesWaitForFlush) {
  Write("##", 44, false, false);
  EXPECT_EQ(HexAt(file.Path(), 44, 2), "34 35");
  db.Flush();
  EXPECT_EQ(HexAt(file.Path(), 44, 2), "23 23");
}

TEST_F(BlockFileBytes, UnflushedBytesGoOutWithClose) {
  Write("##", 44, false, false);
  db.Close();
  EXPECT_EQ(HexAt(file.Path(), 44, 2), "23 23");
}

TEST_F(BlockFileBytes, SyncBringsBytesOutWithoutTheHeader) {
  db.Alloc(4, vbReclaimFirstFit);
  Write("##", 44, false, false);
  db.Sync();
  EXPECT_EQ(HexAt(file.Path(), 44, 2), "23 23");
  EXPECT_EQ(HexAt(file.Path(), 4, 4), "4C 00 00 00") << "the end before the new block";
}

TEST_F(BlockFileBytes, VerifiedWriteReadsItsBytesBack) {
  Write("##", 44, false, true);
  EXPECT_EQ(db.LastOperation(), 0);
  EXPECT_EQ(HexAt(file.Path(), 44, 2), "23 23");
}

TEST(BlockFileVerify, BytesThatComeBackOtherwiseAreAChecksumError) {
  // This device takes all bytes and gives zeros back.
  vbDatabase db;
  EXPECT_THROW(db.Create("/dev/zero", 0, 'C'), CChecksum);
  db.Abandon();
}

TEST(BlockFileVerify, BytesThatDoNotComeBackAreAReadError) {
  vbDatabase db;
  EXPECT_THROW(db.Create("/dev/null", 0, 'C'), CFileRead);
  db.Abandon();
}

TEST_F(BlockFileBytes, ReadOnlyFileIsNotWritten) {
  file.Reopen(vbReadOnly);
  EXPECT_EQ(Read(2, 40), "01");
  EXPECT_THROW(Write("##", 44, false, true), CFileNotWriteable);
  EXPECT_EQ(HexAt(file.Path(), 44, 2), "34 35");
}

TEST(ClosedBlockFile, RefusesAllAccess) {
  vbDatabase db;
  char buffer[1] = {};
  EXPECT_THROW(db.Read(buffer, 1, 0), CFileNotReady);
  EXPECT_THROW(db.Seek(0, vbSeekBegin), CFileNotReady);
  EXPECT_THROW(db.SeekTo(0), CFileNotReady);
  EXPECT_THROW(db.FilePosition(), CFileNotReady);
  EXPECT_THROW(db.CalcChecksum(1, 0, 1), CFileNotReady);
  EXPECT_THROW(db.ReadFileHdr(), CFileNotReady);
  EXPECT_THROW(db.Sync(), CFileNotReady);
  EXPECT_THROW(db.Refresh(), CFileNotReady);
  EXPECT_THROW(db.Write(buffer, 1, 0, false, false), CFileNotWriteable);
  EXPECT_THROW(db.WriteFileHdr(), CFileNotWriteable);
}

TEST_F(BlockFileBytes, ChecksumIsTheCRCOfTheBytes) {
  // The check value of the standard belongs to the digits 1 to 9.
  for (const int allocate : {1, 0, -1}) {
    EXPECT_EQ(db.CalcChecksum(9, 41, allocate), 0xCBF43926UL) << allocate;
    EXPECT_EQ(db.FilePosition(), 50);
    db.Seek(41, vbSeekBegin);
    EXPECT_EQ(db.CalcChecksum(9, vbCurrAddress, allocate), 0xCBF43926UL) << allocate;
    EXPECT_EQ(db.CalcChecksum(0, 41, allocate), 0UL) << allocate;
  }
}

TEST_F(BlockFileBytes, BothFormsOfTheChecksumAgreeOnLongRanges) {
  std::string bytes;
  for (int i = 0; i < 20000; ++i) bytes += static_cast<char>(i * 7919 >> 4);
  Write(bytes, 40, false, true);
  for (const unsigned long size : {8191UL, 8192UL, 8193UL, 16384UL, 19999UL}) {
    EXPECT_EQ(db.CalcChecksum(size, 41, 1), db.CalcChecksum(size, 41, 0)) << size;
  }
}

TEST_F(BlockFileBytes, ChecksumOfMoreThanThereIsFails) {
  for (const int allocate : {1, 0}) {
    EXPECT_THROW(db.CalcChecksum(37, 40, allocate), CFileRead);
    EXPECT_THROW(db.CalcChecksum(0xFFFFFFFF, 40, allocate), CFileRead);
    EXPECT_THROW(db.CalcChecksum(~0UL, 40, allocate), CFileRead);
  }
}

TEST_F(BlockFileBytes, RefreshShowsWhatAnotherProcessWrote) {
  EXPECT_EQ(Read(2, 44), "45");
  PatchBytes(file.Path(), 44, "##");
  EXPECT_EQ(Read(2, 44), "45") << "from what was read ahead";
  db.Refresh();
  EXPECT_EQ(Read(2, 44), "##");
}

TEST_F(BlockFileBytes, RefreshLosesNoWrittenBytes) {
  Write("##", 44, false, false);
  db.Refresh();
  EXPECT_EQ(HexAt(file.Path(), 44, 2), "23 23");
  EXPECT_EQ(Read(2, 44), "##");
}

TEST_F(BlockFileBytes, FailureLeavesItsPathInTheLog) {
  ClearLog();
  vbBlockHeader header;
  EXPECT_THROW(db.ReadBlockHdr(&header, 70), CFileRead);
  std::vector<std::string> path;
  for (const LogEntry& entry : Log()) {
    path.push_back(entry.kind + ' ' + entry.file + ' ' + entry.text);
  }
  EXPECT_EQ(path, (std::vector<std::string>{"LNewException store/vbdbase.cpp File read error",
                                            "LException store/vbdbase.cpp File read error",
                                            "LException store/vbdblock.cpp File read error"}));
}
