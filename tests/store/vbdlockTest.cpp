#include <gtest/gtest.h>

#include <string>

#include "store/KestErr.h"
#include "store/vbdbase.h"
#include "tests/support/BlockFile.h"
#include "tests/support/Bytes.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/Log.h"

// The locks that the format keeps in the file itself: 12 bytes at 28 for the file, and 12 bytes at
// 16 of each block. The file lock is protect, read and write word.

namespace {

const std::string freeLock = "00 00 00 00 00 00 00 00 00 00 00 00";

class FileLock : public testing::Test {
 protected:
  FileLock() { ClearLog(); }

  std::string Stored() { return file.HexAt(28, 12); }

  BlockFile file;
  vbDatabase& db = file.db;
};

/// Blocks of 100 bytes at 40 and at 140; the locks of the first are at 56.
class RecordLock : public testing::Test {
 protected:
  std::string Stored() { return file.HexAt(56, 12); }

  BlockFile file{FileOf(Block(100, 'N', 0, 'x') + Block(100, 'N', 0, 'y'))};
  vbDatabase& db = file.db;
};

}  // namespace

TEST_F(FileLock, OfANewFileIsFree) {
  EXPECT_EQ(Stored(), freeLock);
}

TEST_F(FileLock, WriteLockNamesItsOwner) {
  db.LockFile(7, vbWriteLock);
  EXPECT_EQ(HexAt(file.Path(), 28, 12), "07 00 00 00 00 00 00 00 01 00 00 00") << "at once";
  EXPECT_EQ(PrintedLog(), "SOFT: Writing file lock\n");
}

TEST_F(FileLock, WriteLockIsRefusedToItsOwnOwner) {
  db.LockFile(7, vbWriteLock);
  EXPECT_THROW(db.LockFile(7, vbWriteLock), CLockViolation);
  EXPECT_EQ(Stored(), "07 00 00 00 00 00 00 00 01 00 00 00");
  EXPECT_EQ(PrintedLog(), "SOFT: Writing file lock\n") << "nothing was written again";
}

TEST_F(FileLock, ReadLockOnlyTestsTheOwner) {
  db.LockFile(7, vbReadLock);
  EXPECT_EQ(Stored(), freeLock);
  EXPECT_EQ(PrintedLog(), "");
  db.LockFile(7, vbWriteLock);
  db.LockFile(7, vbReadLock);
  db.LockFile(7, static_cast<vbDatabaseLockType>(2));
  EXPECT_EQ(Stored(), "07 00 00 00 00 00 00 00 01 00 00 00");
}

TEST_F(FileLock, OtherOwnersAreRefused) {
  db.LockFile(7, vbWriteLock);
  ClearLog();
  for (const auto type : {vbReadLock, vbWriteLock}) {
    EXPECT_THROW(db.LockFile(8, type), CLockViolation);
    EXPECT_EQ(PrintedLog(), "lock failed - not owner\n");
    ClearLog();
  }
  EXPECT_THROW(db.LockFile(0, vbReadLock), CLockViolation);
  EXPECT_EQ(Stored(), "07 00 00 00 00 00 00 00 01 00 00 00");
}

TEST_F(FileLock, ReadOrWriteValueRefusesAWriteLock) {
  for (const char* words :
       {"00 00 00 00 01 00 00 00 00 00 00 00", "07 00 00 00 01 00 00 00 00 00 00 00",
        "00 00 00 00 00 00 00 00 01 00 00 00", "07 00 00 00 00 00 00 00 02 00 00 00"}) {
    file.Patch(28, Bytes(words));
    EXPECT_THROW(db.LockFile(7, vbWriteLock), CLockViolation) << words;
    EXPECT_EQ(Stored(), words);
    db.LockFile(7, vbReadLock);
  }
}

TEST_F(FileLock, OwnerWithoutALockMayTakeIt) {
  file.Patch(28, Bytes("07 00 00 00 00 00 00 00 00 00 00 00"));
  db.LockFile(7, vbWriteLock);
  EXPECT_EQ(Stored(), "07 00 00 00 00 00 00 00 01 00 00 00");
}

TEST_F(FileLock, LargestOwnerNumber) {
  db.LockFile(0xFFFFFFFF, vbWriteLock);
  EXPECT_EQ(Stored(), "FF FF FF FF 00 00 00 00 01 00 00 00");
  db.LockFile(0xFFFFFFFF, vbReadLock);
}

TEST_F(FileLock, IsSeenByAnotherProcess) {
  vbDatabase other;
  other.Open(file.Path(), vbReadWrite);
  db.LockFile(7, vbWriteLock);
  other.Refresh();
  EXPECT_THROW(other.LockFile(8, vbWriteLock), CLockViolation);
}

TEST_F(FileLock, HeaderIsReadAndWritten) {
  vbFileLockHeader header;
  header.Protect = 0x01020304;
  header.ReadLock = 5;
  header.WriteLock = 6;
  db.WriteFileLockHdr(header);
  EXPECT_EQ(Stored(), "04 03 02 01 05 00 00 00 06 00 00 00");
  db.InitFileLockHdr(header);
  EXPECT_EQ(header.Protect, 0UL);
  EXPECT_EQ(header.ReadLock, 0UL);
  EXPECT_EQ(header.WriteLock, 0UL);
  db.ReadFileLockHdr(header);
  EXPECT_EQ(header.Protect, 0x01020304UL);
  EXPECT_EQ(header.ReadLock, 5UL);
  EXPECT_EQ(header.WriteLock, 6UL);
}

TEST_F(FileLock, CannotBeTakenInAReadOnlyFile) {
  file.Reopen(vbReadOnly);
  db.LockFile(7, vbReadLock);
  EXPECT_THROW(db.LockFile(7, vbWriteLock), CFileNotWriteable);
}

TEST_F(FileLock, RevisionBHasOne) {
  BlockFile old('B');
  old.db.LockFile(7, vbWriteLock);
  EXPECT_EQ(old.HexAt(28, 12), "07 00 00 00 00 00 00 00 01 00 00 00");
}

TEST(LocksOfOldFiles, LockingDoesNothingBelowRevisionB) {
  for (const char revision : {'A', '\0'}) {
    BlockFile file(revision);
    vbDatabase& db = file.db;
    const long block = static_cast<long>(db.Alloc(40, vbReclaimNone)) - 16;
    const std::string before = file.HexAt(0, 200);
    vbFileLockHeader fileLock;
    fileLock.Protect = 9;
    vbRecordLockHeader recordLock;
    recordLock.Protect = 9;
    ClearLog();
    db.WriteFileLockHdr(fileLock);
    db.WriteRecordLockHdr(recordLock, block);
    for (const auto type : {vbReadLock, vbWriteLock}) {
      db.LockFile(7, type);
      db.LockRecord(type, block);
      db.UnlockRecord(type, block);
    }
    db.ResetRecordLock(block);
    EXPECT_EQ(file.HexAt(0, 200), before);
    EXPECT_TRUE(Log().empty());
  }
}

TEST(LocksOfOldFiles, RecordLocksDoNothingInRevisionB) {
  BlockFile file('B');
  vbDatabase& db = file.db;
  const long block = static_cast<long>(db.Alloc(40, vbReclaimNone)) - 16;
  const std::string before = file.HexAt(0, 200);
  for (const auto type : {vbReadLock, vbWriteLock}) {
    db.LockRecord(type, block);
    db.UnlockRecord(type, block);
  }
  db.ResetRecordLock(block);
  EXPECT_EQ(file.HexAt(0, 200), before);
}

TEST(LocksOfOldFiles, ReadingAFileLockShowsTheBytesBehindTheFileHeader) {
  BlockFile file(FileHeaderBytes(0, 40, 28, 0, 'A') + Bytes("01 02 03 04 05 00 00 00 06 00 00 00"));
  vbFileLockHeader header;
  file.db.ReadFileLockHdr(header);
  EXPECT_EQ(header.Protect, 0x04030201UL);
  EXPECT_EQ(header.ReadLock, 5UL);
  EXPECT_EQ(header.WriteLock, 6UL);
}

TEST(LocksOfOldFiles, ReadingAFileLockWhereNothingIsGivesZerosAndAReadError) {
  BlockFile file('A');
  vbFileLockHeader header;
  header.Protect = 9;
  EXPECT_THROW(file.db.ReadFileLockHdr(header), CFileRead);
  EXPECT_EQ(header.Protect, 0UL);
}

TEST(LocksOfOldFiles, ReadingARecordLockShowsTheBytesBehindTheBlockHeader) {
  BlockFile file(FileHeaderBytes(0, 60, 28, 0, 'A') +
                 Bytes("FE FE 00 00 20 00 00 00 4E 00 00 00 00 00 00 00"
                       "01 02 03 04 05 00 00 00 06 00 00 00 00 00 00 00"));
  vbRecordLockHeader header;
  file.db.ReadRecordLockHdr(header, 28);
  EXPECT_EQ(header.Protect, 0x04030201UL);
  EXPECT_EQ(header.ReadLock, 5UL);
  EXPECT_EQ(header.WriteLock, 6UL);
  EXPECT_THROW(file.db.ReadRecordLockHdr(header, 29), CSync);
}

TEST_F(RecordLock, OfANewBlockIsFree) {
  db.Alloc(40, vbReclaimNone);
  EXPECT_EQ(file.HexAt(240 + 16, 12), freeLock);
}

TEST_F(RecordLock, ReadLocksAreCounted) {
  db.LockRecord(vbReadLock, 40);
  EXPECT_EQ(Stored(), "00 00 00 00 01 00 00 00 00 00 00 00");
  db.LockRecord(vbReadLock, 40);
  EXPECT_EQ(Stored(), "00 00 00 00 02 00 00 00 00 00 00 00");
  db.UnlockRecord(vbReadLock, 40);
  EXPECT_EQ(Stored(), "00 00 00 00 01 00 00 00 00 00 00 00");
  db.UnlockRecord(vbReadLock, 40);
  EXPECT_EQ(Stored(), freeLock);
  db.UnlockRecord(vbReadLock, 40);
  EXPECT_EQ(Stored(), freeLock) << "a third unlock changes nothing";
}

TEST_F(RecordLock, WriteLockIsTakenAndGivenBack) {
  db.LockRecord(vbWriteLock, 40);
  EXPECT_EQ(Stored(), "00 00 00 00 00 00 00 00 01 00 00 00");
  db.UnlockRecord(vbWriteLock, 40);
  EXPECT_EQ(Stored(), freeLock);
  db.UnlockRecord(vbWriteLock, 40);
  EXPECT_EQ(Stored(), freeLock);
}

TEST_F(RecordLock, ReadLockedRecordRefusesAWriteLock) {
  db.LockRecord(vbReadLock, 40);
  EXPECT_THROW(db.LockRecord(vbWriteLock, 40), CRecordLock);
  db.UnlockRecord(vbWriteLock, 40);
  EXPECT_EQ(Stored(), "00 00 00 00 01 00 00 00 00 00 00 00");
}

TEST_F(RecordLock, WriteLockedRecordRefusesBothLocks) {
  db.LockRecord(vbWriteLock, 40);
  EXPECT_THROW(db.LockRecord(vbReadLock, 40), CRecordLock);
  EXPECT_THROW(db.LockRecord(vbWriteLock, 40), CRecordLock);
  db.UnlockRecord(vbReadLock, 40);
  EXPECT_EQ(Stored(), "00 00 00 00 00 00 00 00 01 00 00 00");
}

TEST_F(RecordLock, OtherWriteValuesRefuseOnlyAWriteLock) {
  file.Patch(56, Bytes("00 00 00 00 00 00 00 00 02 00 00 00"));
  EXPECT_THROW(db.LockRecord(vbWriteLock, 40), CRecordLock);
  db.LockRecord(vbReadLock, 40);
  EXPECT_EQ(Stored(), "00 00 00 00 01 00 00 00 02 00 00 00");
  db.UnlockRecord(vbWriteLock, 40);
  EXPECT_EQ(Stored(), "00 00 00 00 01 00 00 00 00 00 00 00");
}

TEST_F(RecordLock, ReadLocksEndAtTheLargestCount) {
  file.Patch(56, Bytes("00 00 00 00 FE FF FF FF 00 00 00 00"));
  db.LockRecord(vbReadLock, 40);
  EXPECT_EQ(Stored(), "00 00 00 00 FF FF FF FF 00 00 00 00");
  EXPECT_THROW(db.LockRecord(vbReadLock, 40), CRecordLock);
  db.UnlockRecord(vbReadLock, 40);
  EXPECT_EQ(Stored(), "00 00 00 00 FE FF FF FF 00 00 00 00");
}

TEST_F(RecordLock, UnknownTypeChangesNothing) {
  db.LockRecord(static_cast<vbDatabaseLockType>(2), 40);
  EXPECT_EQ(Stored(), freeLock);
  db.LockRecord(vbReadLock, 40);
  db.UnlockRecord(static_cast<vbDatabaseLockType>(2), 40);
  EXPECT_EQ(Stored(), "00 00 00 00 01 00 00 00 00 00 00 00");
}

TEST_F(RecordLock, ProtectWordKeepsOthersOut) {
  file.Patch(56, Bytes("01 00 00 00 03 00 00 00 00 00 00 00"));
  for (const auto type : {vbReadLock, vbWriteLock}) {
    EXPECT_THROW(db.LockRecord(type, 40), CRecordLockAccess);
    EXPECT_THROW(db.UnlockRecord(type, 40), CRecordLockAccess);
  }
  EXPECT_EQ(Stored(), "01 00 00 00 03 00 00 00 00 00 00 00");
}

TEST_F(RecordLock, ChangeThatBreaksOffLeavesTheProtectWordSet) {
  // The disk ends behind the protect word, or behind the read word.
  const struct {
    vbDatabaseLockType type;
    unsigned long end;
  } cases[] = {{vbReadLock, 60}, {vbWriteLock, 64}};
  for (const auto& [type, end] : cases) {
    {
      const FileSizeLimit full(end);
      EXPECT_THROW(db.LockRecord(type, 40), CFileWrite);
    }
    EXPECT_EQ(Stored(), "01 00 00 00 00 00 00 00 00 00 00 00");
    EXPECT_THROW(db.LockRecord(type, 40), CRecordLockAccess);
    db.ResetRecordLock(40);
    EXPECT_EQ(Stored(), freeLock);
  }
}

TEST_F(RecordLock, ResetClearsAllWords) {
  file.Patch(56, Bytes("01 00 00 00 03 00 00 00 01 00 00 00"));
  db.ResetRecordLock(40);
  EXPECT_EQ(Stored(), freeLock);
}

TEST_F(RecordLock, OtherBytesOfTheBlockStay) {
  const std::string before = file.HexAt(0, 56) + file.HexAt(68, 172);
  db.LockRecord(vbReadLock, 40);
  db.LockRecord(vbReadLock, 40);
  db.UnlockRecord(vbReadLock, 40);
  db.UnlockRecord(vbReadLock, 40);
  db.LockRecord(vbWriteLock, 40);
  EXPECT_EQ(file.HexAt(0, 56) + file.HexAt(68, 172), before);
}

TEST_F(RecordLock, HeaderIsReadAndWritten) {
  vbRecordLockHeader header;
  header.Protect = 0x01020304;
  header.ReadLock = 5;
  header.WriteLock = 6;
  db.WriteRecordLockHdr(header, 40);
  EXPECT_EQ(Stored(), "04 03 02 01 05 00 00 00 06 00 00 00");
  db.InitRecordLockHdr(header);
  EXPECT_EQ(header.Protect, 0UL);
  EXPECT_EQ(header.ReadLock, 0UL);
  EXPECT_EQ(header.WriteLock, 0UL);
  db.ReadRecordLockHdr(header, 40);
  EXPECT_EQ(header.Protect, 0x01020304UL);
  EXPECT_EQ(header.ReadLock, 5UL);
  EXPECT_EQ(header.WriteLock, 6UL);
}

TEST_F(RecordLock, NeedsABlock) {
  vbRecordLockHeader header;
  EXPECT_THROW(db.LockRecord(vbReadLock, 41), CSync);
  EXPECT_THROW(db.UnlockRecord(vbReadLock, 41), CSync);
  EXPECT_THROW(db.ResetRecordLock(41), CSync);
  EXPECT_THROW(db.ReadRecordLockHdr(header, 41), CSync);
  EXPECT_THROW(db.WriteRecordLockHdr(header, 41), CSync);
  EXPECT_EQ(Stored(), freeLock);
}

TEST_F(RecordLock, CurrentAddressIsReckonedBehindTheLockHeader) {
  // The lock of the block at 40 is read, and words are written 16 bytes behind its lock header.
  db.Seek(40, vbSeekBegin);
  db.LockRecord(vbReadLock, vbCurrAddress);
  EXPECT_EQ(Stored(), freeLock);
  EXPECT_EQ(file.HexAt(68 + 16, 12), "00 00 00 00 01 00 00 00 78 78 78 78");
  db.Seek(140, vbSeekBegin);
  db.LockRecord(vbWriteLock, vbCurrAddress);
  EXPECT_EQ(file.HexAt(168 + 16, 12), "00 00 00 00 79 79 79 79 01 00 00 00");
}

TEST_F(RecordLock, CannotBeTakenInAReadOnlyFile) {
  file.Reopen(vbReadOnly);
  EXPECT_THROW(db.LockRecord(vbReadLock, 40), CFileNotWriteable);
  EXPECT_THROW(db.LockRecord(vbWriteLock, 40), CFileNotWriteable);
  db.UnlockRecord(vbReadLock, 40);
  db.UnlockRecord(vbWriteLock, 40);
}
