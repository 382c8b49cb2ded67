#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "store/KestErr.h"
#include "store/vbdbase.h"
#include "tests/support/BlockFile.h"
#include "tests/support/Bytes.h"

// Making and freeing blocks, and the objects in them.

namespace {

class Blocks : public testing::Test {
 protected:
  BlockFile file;
  vbDatabase& db = file.db;
};

const std::string digits = "123456789";

}  // namespace

TEST_F(Blocks, NewBlockHasTheLayoutOfTheFormat) {
  const vbINT32 object = db.Alloc(9, vbReclaimFirstFit);
  EXPECT_EQ(object, 68);
  db.Write(digits.data(), 9, object, false, true);
  EXPECT_EQ(db.WriteObjectChecksum(object), 0xCBF43926UL);
  db.Close();
  EXPECT_EQ(Hex(ReadBytes(file.Path())),
            "00 00 00 00 51 00 00 00 28 00 00 00 28 00 00 00 "
            "56 42 44 42 41 53 45 43 B9 0B 00 00 "
            "00 00 00 00 00 00 00 00 00 00 00 00 "
            "FE FE FE FE 29 00 00 00 4E 00 00 00 00 00 00 00 "
            "00 00 00 00 00 00 00 00 00 00 00 00 "
            "31 32 33 34 35 36 37 38 39 26 39 F4 CB");
}

TEST_F(Blocks, AllocLeavesTheFileAtTheObject) {
  const vbINT32 object = db.Alloc(9, vbReclaimFirstFit);
  EXPECT_EQ(db.FilePosition(), object);
  db.Write(digits.data(), 9, vbCurrAddress, false, true);
  EXPECT_EQ(file.HexAt(68, 9), "31 32 33 34 35 36 37 38 39");
}

TEST_F(Blocks, NewBlocksFollowEachOther) {
  // Sizes on both sides of what is written at once.
  long block = 40;
  for (const unsigned long size : {0UL, 1UL, 4091UL, 4092UL, 4093UL, 100000UL, 8UL}) {
    EXPECT_EQ(db.Alloc(size, vbReclaimFirstFit), block + 28) << size;
    EXPECT_EQ(db.GetHighestVB(), block);
    block += 32 + static_cast<long>(size);
    EXPECT_EQ(db.GetEOF(), block);
    EXPECT_EQ(db.Length(), block) << "the file has its length at once";
  }
  EXPECT_EQ(db.VBTotal(), 7);
  EXPECT_EQ(db.GetVBDFreeSpace(), 0);
}

TEST_F(Blocks, BlockWithoutAnObjectHasAChecksumAllTheSame) {
  const vbINT32 object = db.Alloc(0, vbReclaimFirstFit);
  EXPECT_EQ(db.VBLength(object), 32UL);
  EXPECT_EQ(db.ObjectLength(object), 0UL);
  EXPECT_EQ(db.WriteObjectChecksum(object), 0UL);
  EXPECT_TRUE(db.ReadObjectChecksum(object, nullptr, nullptr));
}

TEST_F(Blocks, AllocNeedsTheWriteableFlag) {
  file.Reopen(vbReadOnly);
  EXPECT_THROW(db.Alloc(9, vbReclaimFirstFit), CFileNotWriteable);
  vbDatabase closed;
  EXPECT_THROW(closed.Alloc(9, vbReclaimFirstFit), CFileNotWriteable);
}

TEST_F(Blocks, AllocOnAFileOfTheWrongTypeIsNotReady) {
  db.Close();
  WriteBytes(file.Path(), std::string(100, 'x'));
  EXPECT_THROW(db.Open(file.Path(), vbReadWrite), CWrongFileType);
  EXPECT_THROW(db.Alloc(9, vbReclaimFirstFit), CFileNotReady);
}

TEST_F(Blocks, HeaderThatNoBlockCanFollowIsCorrupt) {
  // An end before the heap or behind the file, and a heap inside the file header.
  for (const std::string& header : {FileHeaderBytes(0, 39, 40, 0), FileHeaderBytes(0, -100, 40, 0),
                                    FileHeaderBytes(0, 41, 40, 0), FileHeaderBytes(0, 5000, 40, 0),
                                    FileHeaderBytes(0, 40, 39, 0), FileHeaderBytes(0, 40, -4, 0)}) {
    file.Patch(0, header);
    EXPECT_THROW(db.Alloc(9, vbReclaimFirstFit), CFileCorrupt);
    EXPECT_EQ(db.Length(), 40);
  }
}

TEST_F(Blocks, FileThatWasCutTakesNoNewBlocks) {
  file.Add(digits);
  file.Resize(80);
  EXPECT_THROW(db.Alloc(9, vbReclaimFirstFit), CFileCorrupt);
  EXPECT_EQ(db.GetEOF(), 81);
  EXPECT_EQ(db.Length(), 80);
}

TEST_F(Blocks, DeleteMarksTheBlockAndPutsItAtTheHeadOfTheFreeList) {
  const long first = file.Add(digits);
  const long second = file.Add(digits);
  EXPECT_TRUE(db.Delete(first, false));
  EXPECT_EQ(db.GetVBDFreeSpace(), 40);
  EXPECT_EQ(file.HexAt(40, 16), "FE FE FE FE 29 00 00 00 44 00 00 00 00 00 00 00");
  EXPECT_TRUE(db.Delete(second, true));
  EXPECT_EQ(db.GetVBDFreeSpace(), 81);
  EXPECT_EQ(file.HexAt(81, 16), "FE FE FE FE 29 00 00 00 52 00 00 00 28 00 00 00");
}

TEST_F(Blocks, RemoveIsDeleteForGood) {
  const long object = file.Add(digits);
  EXPECT_TRUE(db.Remove(object));
  EXPECT_EQ(file.HexAt(48, 4), "52 00 00 00");
}

TEST_F(Blocks, FreedBlockKeepsItsContentsAndItsLocks) {
  const long object = file.Add(digits);
  db.LockRecord(vbReadLock, object - 28);
  for (const bool remove : {false, true}) {
    db.Delete(object, remove);
    EXPECT_EQ(file.HexAt(56, 25),
              "00 00 00 00 01 00 00 00 00 00 00 00 31 32 33 34 35 36 37 38 39 26 39 F4 CB");
    EXPECT_TRUE(db.Restore(object));
  }
}

TEST_F(Blocks, DeleteKeepsTheUpperBytesOfTheStatusAndRemoveDoesNot) {
  const long object = file.Add(digits);
  file.Patch(48, Bytes("4E 33 22 11"));
  EXPECT_TRUE(db.Delete(object, false));
  EXPECT_EQ(file.HexAt(48, 4), "44 33 22 11");
  EXPECT_TRUE(db.UnDelete(object));
  EXPECT_EQ(file.HexAt(48, 4), "4E 33 22 11");
  EXPECT_TRUE(db.Delete(object, true));
  EXPECT_EQ(file.HexAt(48, 4), "52 00 00 00");
}

TEST_F(Blocks, SecondDeleteOfABlockReturnsFalseAndChangesNothing) {
  const long object = file.Add(digits);
  file.Add(digits);
  for (const bool first : {false, true}) {
    EXPECT_TRUE(db.Delete(object, first));
    const std::string before = file.HexAt(40, 82);
    for (const bool second : {false, true}) EXPECT_FALSE(db.Delete(object, second));
    EXPECT_EQ(file.HexAt(40, 82), before);
    EXPECT_EQ(db.GetVBDFreeSpace(), 40);
    EXPECT_TRUE(db.Restore(object));
  }
}

TEST_F(Blocks, DeleteNeedsABlock) {
  const long object = file.Add(digits);
  EXPECT_THROW(db.Delete(object + 1, true), CSync);
  EXPECT_THROW(db.Delete(20, true), CFileSeek) << "before the file";
  EXPECT_THROW(db.Delete(5000, true), CFileRead) << "behind the file";
  file.Patch(40, "x");
  EXPECT_THROW(db.Delete(object, true), CSync);
  EXPECT_EQ(db.GetVBDFreeSpace(), 0);
}

TEST_F(Blocks, DeleteNeedsTheWriteableFlagForABlockThatIsLive) {
  const long live = file.Add(digits);
  const long freed = file.Add(digits);
  db.Remove(freed);
  file.Reopen(vbReadOnly);
  EXPECT_FALSE(db.Delete(freed, true));
  EXPECT_THROW(db.Delete(live, true), CFileNotWriteable);
  EXPECT_EQ(db.GetVBDFreeSpace(), 81);
}

TEST_F(Blocks, UnDeleteBringsADeletedBlockBack) {
  const long object = file.Add(digits);
  const std::string before = file.HexAt(40, 41);
  db.Delete(object, false);
  EXPECT_TRUE(db.UnDelete(object));
  EXPECT_EQ(file.HexAt(40, 41), before);
  EXPECT_EQ(db.GetVBDFreeSpace(), 0);
}

TEST_F(Blocks, UnDeleteBringsNothingElseBack) {
  const long live = file.Add(digits);
  const long removed = file.Add(digits);
  db.Remove(removed);
  const std::string before = file.HexAt(0, 122);
  EXPECT_FALSE(db.UnDelete(live));
  EXPECT_FALSE(db.UnDelete(removed));
  EXPECT_EQ(file.HexAt(0, 122), before);
  EXPECT_EQ(db.GetVBDFreeSpace(), 81);
}

TEST_F(Blocks, RestoreBringsBackWhatWasFreedInEitherWay) {
  const long object = file.Add(digits);
  const std::string before = file.HexAt(40, 41);
  for (const bool remove : {false, true}) {
    db.Delete(object, remove);
    EXPECT_TRUE(db.Restore(object));
    EXPECT_EQ(file.HexAt(40, 41), before);
    EXPECT_EQ(db.GetVBDFreeSpace(), 0);
  }
  EXPECT_FALSE(db.Restore(object)) << "it is live";
}

TEST_F(Blocks, RestoreAndUnDeleteTakeABlockOutOfAnyPlaceInTheList) {
  for (const long wanted : {0L, 1L, 2L}) {
    BlockFile own;
    long objects[3];
    for (long& object : objects) object = own.Add(digits);
    for (const long object : objects) own.db.Delete(object, false);
    EXPECT_TRUE(wanted == 1 ? own.db.Restore(objects[1]) : own.db.UnDelete(objects[wanted]));
    vbINT32 deleted;
    EXPECT_EQ(own.db.VBDeleted(&deleted, nullptr), 2) << wanted;
    EXPECT_EQ(deleted, 2);
    EXPECT_EQ(own.db.FindFirstObject(0), objects[wanted]);
    for (long i = 0; i < 3; ++i) EXPECT_EQ(own.db.UnDelete(objects[i]), i != wanted);
    EXPECT_EQ(own.db.GetVBDFreeSpace(), 0);
  }
}

TEST_F(Blocks, BlockThatWasUsedAgainIsNotRestored) {
  const long object = file.Add(digits);
  db.Delete(object, false);
  EXPECT_EQ(db.Alloc(9, vbReclaimFirstFit), object);
  EXPECT_FALSE(db.UnDelete(object));
  EXPECT_FALSE(db.Restore(object));
}

TEST_F(Blocks, FreeBlockOffTheListIsNotRestored) {
  const long object = file.Add(digits);
  file.Patch(48, Word('D'));
  EXPECT_FALSE(db.UnDelete(object));
  EXPECT_FALSE(db.Restore(object));
  EXPECT_EQ(db.GetVBDFreeSpace(), 0);
  EXPECT_EQ(file.HexAt(48, 4), "44 00 00 00");
}

TEST_F(Blocks, UnDeleteOutsideTheFileIsAFailureOfTheFile) {
  EXPECT_THROW(db.UnDelete(27), CFileSeek);
  EXPECT_THROW(db.UnDelete(0), CFileSeek);
  EXPECT_THROW(db.UnDelete(5000), CFileRead);
}

TEST_F(Blocks, OnlyTheBlockLengthCountsHeadersAndChecksum) {
  const long object = file.Add(digits);
  EXPECT_EQ(db.VBLength(object), 41UL);
  EXPECT_EQ(db.ObjectLength(object), 9UL);
}

TEST_F(Blocks, LengthsAtTheCurrentAddress) {
  file.Add(digits);
  const long object = file.Add("twelve bytes");
  db.Seek(object, vbSeekBegin);
  EXPECT_EQ(db.VBLength(vbCurrAddress), 44UL);
  db.Seek(object, vbSeekBegin);
  EXPECT_EQ(db.ObjectLength(vbCurrAddress), 12UL);
}

TEST_F(Blocks, LengthsNeedABlock) {
  const long object = file.Add(digits);
  EXPECT_THROW(db.VBLength(object - 1), CSync);
  EXPECT_THROW(db.ObjectLength(object - 1), CSync);
  EXPECT_THROW(db.VBLength(0), CFileSeek);
  EXPECT_THROW(db.VBLength(27), CFileSeek) << "28 before it is no current address";
  EXPECT_THROW(db.VBLength(0x7FFFFFFF), CFileRead);
}

TEST_F(Blocks, ChecksumTellsADamagedObject) {
  const long object = file.Add(digits);
  unsigned long stored = 0;
  unsigned long calculated = 0;
  EXPECT_TRUE(db.ReadObjectChecksum(object, &stored, &calculated));
  EXPECT_EQ(stored, 0xCBF43926UL);
  EXPECT_EQ(calculated, 0xCBF43926UL);
  file.Patch(object + 9, Bytes("26 39 F4 CA"));
  EXPECT_FALSE(db.ReadObjectChecksum(object, &stored, &calculated));
  EXPECT_EQ(stored, 0xCAF43926UL);
  EXPECT_EQ(calculated, 0xCBF43926UL);
  file.Patch(object, "0");
  EXPECT_FALSE(db.ReadObjectChecksum(object, nullptr, nullptr));
  EXPECT_EQ(db.WriteObjectChecksum(object), db.CalcChecksum(9, object, 0));
  EXPECT_TRUE(db.ReadObjectChecksum(object, nullptr, nullptr));
}

TEST_F(Blocks, ChecksumsOfNothing) {
  vbDatabase closed;
  unsigned long stored = 1;
  unsigned long calculated = 1;
  EXPECT_TRUE(closed.ReadObjectChecksum(68, &stored, &calculated));
  EXPECT_EQ(stored, 0UL);
  EXPECT_EQ(calculated, 0UL);
  EXPECT_EQ(closed.WriteObjectChecksum(68), 0UL);
  const long object = file.Add(digits);
  EXPECT_THROW(db.ReadObjectChecksum(object + 4, &stored, &calculated), CSync);
  EXPECT_THROW(db.WriteObjectChecksum(object + 4), CSync);
}

TEST_F(Blocks, ChecksumAtTheCurrentAddressHarmsNothing) {
  const long object = file.Add(digits);
  file.Patch(object + 9, Bytes("00 00 00 00"));
  db.Seek(object, vbSeekBegin);
  EXPECT_FALSE(db.ReadObjectChecksum(vbCurrAddress, nullptr, nullptr));
  db.Seek(object, vbSeekBegin);
  EXPECT_EQ(db.WriteObjectChecksum(vbCurrAddress), 0xCBF43926UL);
  db.Close();
  EXPECT_EQ(HexAt(file.Path(), 0, 28),
            "00 00 00 00 51 00 00 00 28 00 00 00 28 00 00 00 "
            "56 42 44 42 41 53 45 43 B9 0B 00 00");
  EXPECT_EQ(HexAt(file.Path(), 68, 13), "31 32 33 34 35 36 37 38 39 26 39 F4 CB");
}

TEST_F(Blocks, WholeObjectIsWrittenWithItsChecksum) {
  const vbINT32 object = db.Alloc(9, vbReclaimFirstFit);
  db.WriteWholeObject(object, {digits.begin(), digits.end()});
  EXPECT_EQ(file.HexAt(68, 13), "31 32 33 34 35 36 37 38 39 26 39 F4 CB");
  EXPECT_EQ(db.Length(), 81);
}

TEST_F(Blocks, StoredObjectGetsABlockAndItsAddress) {
  std::vector<char> object = {'\xE8', 3, 0, 0, 0, 0, 0, 0, 'x'};
  EXPECT_EQ(db.StoreObject(object), 68);
  EXPECT_EQ(object, (std::vector<char>{'\xE8', 3, 0, 0, 68, 0, 0, 0, 'x'}));
  EXPECT_EQ(file.HexAt(40, 41),
            "FE FE FE FE 29 00 00 00 4E 00 00 00 00 00 00 00 "
            "00 00 00 00 00 00 00 00 00 00 00 00 "
            "E8 03 00 00 44 00 00 00 78 39 37 C5 1A");
  EXPECT_EQ(db.Length(), 81);
  EXPECT_EQ(db.GetEOF(), 81);
  EXPECT_EQ(db.GetHighestVB(), 40);
}

TEST_F(Blocks, StoredObjectTakesAFreeBlock) {
  const vbINT32 first = db.Alloc(9, vbReclaimFirstFit);
  db.Alloc(9, vbReclaimFirstFit);
  db.Remove(first);
  std::vector<char> object = {'\xE8', 3, 0, 0, 0, 0, 0, 0, 'x'};
  EXPECT_EQ(db.StoreObject(object), 68);
  EXPECT_EQ(file.HexAt(68, 13), "E8 03 00 00 44 00 00 00 78 39 37 C5 1A");
  EXPECT_EQ(file.HexAt(48, 8), "4E 00 00 00 00 00 00 00");
  EXPECT_EQ(db.GetVBDFreeSpace(), 0);
}

TEST_F(Blocks, ObjectWithoutAHeaderIsNotStored) {
  std::vector<char> object(7);
  EXPECT_THROW(db.StoreObject(object), CInvalidArgument);
  EXPECT_EQ(db.Length(), 40);
}

TEST_F(Blocks, AnEmptyHeapFarBehindTheFileIsCorrupt) {
  // A header of a file that holds some bytes, with its heap, empty, at 0x20202020.
  db.Close();
  file.Reopen(vbReadWrite);
  file.Patch(4, std::string(8, ' '));
  db.ReadFileHdr();
  EXPECT_THROW(db.Alloc(9, vbReclaimFirstFit), CFileCorrupt);
  EXPECT_EQ(db.Length(), 40);
}

TEST_F(Blocks, WholeObjectIsReadWithoutItsChecksum) {
  const long object = file.Add(digits);
  std::vector<char> bytes(500, 'x');
  EXPECT_TRUE(db.ReadWholeObject(object, bytes));
  EXPECT_EQ(std::string(bytes.begin(), bytes.end()), digits);
  db.Seek(object, vbSeekBegin);
  EXPECT_TRUE(db.ReadWholeObject(vbCurrAddress, bytes));
  EXPECT_EQ(std::string(bytes.begin(), bytes.end()), digits);
  file.Patch(object, "0");
  EXPECT_FALSE(db.ReadWholeObject(object, bytes));
  EXPECT_EQ(std::string(bytes.begin(), bytes.end()), "023456789");
}

TEST_F(Blocks, WholeObjectIsReadWhateverItsLikelyLength) {
  const long object = file.Add(digits);
  for (const unsigned long likely : {1UL, 8UL, 9UL, 10UL, 5000UL, 0x7FFFFFFFUL}) {
    std::vector<char> bytes;
    EXPECT_TRUE(db.ReadWholeObject(object, bytes, likely)) << likely;
    EXPECT_EQ(std::string(bytes.begin(), bytes.end()), digits) << likely;
  }
  file.Patch(object, "0");
  std::vector<char> bytes;
  EXPECT_FALSE(db.ReadWholeObject(object, bytes, 9));
  EXPECT_EQ(std::string(bytes.begin(), bytes.end()), "023456789");
  EXPECT_THROW(db.ReadWholeObject(object + 1, bytes, 9), CSync);
  EXPECT_THROW(db.ReadWholeObject(1, bytes, 9), CFileSeek);
}

TEST_F(Blocks, ABlockIsFreedOnceItIsDeletedOrRemoved) {
  const long deleted = file.Add(digits);
  const long removed = file.Add(digits);
  EXPECT_FALSE(db.IsFreed(deleted));
  db.Delete(deleted, false);
  db.Delete(removed, true);
  EXPECT_TRUE(db.IsFreed(deleted));
  EXPECT_TRUE(db.IsFreed(removed));
  db.UnDelete(deleted);
  EXPECT_FALSE(db.IsFreed(deleted));
}

TEST_F(Blocks, WhereThereIsNoBlockNoneIsFreed) {
  const long object = file.Add(digits);
  for (const long address : {-1L, 0L, 1L, 67L, object + 1, object + 1000, 0x7FFFFFFFL}) {
    EXPECT_FALSE(db.IsFreed(address)) << address;
  }
  db.Remove(object);
  file.Patch(40, "X");
  EXPECT_FALSE(db.IsFreed(object));
}

TEST_F(Blocks, ABlockThatIsFreedBehindTheEndOfTheHeaderBelongsToTheFileAgain) {
  file.Add(digits);
  const long object = file.Add(digits);
  db.Flush();
  file.Patch(4, Bytes("51 00 00 00"));  // as a unit leaves it that fails in its last step
  db.ReadFileHdr();
  ASSERT_EQ(db.GetEOF(), 81);
  EXPECT_TRUE(db.Remove(object));
  EXPECT_EQ(db.GetEOF(), 122);
  EXPECT_EQ(db.Alloc(9, vbReclaimFirstFit), object);
  EXPECT_EQ(db.FindNextObject(40), object) << "walks see what is stored there";
}

TEST_F(Blocks, ObjectOfALengthThatCannotBeIsRefusedBeforeItIsRead) {
  const long object = file.Add(digits);
  // Below its headers, behind the end of the file, and more than any file holds.
  for (const char* length : {"00 00 00 00", "01 00 00 00", "1F 00 00 00", "2A 00 00 00",
                             "FF FF FF 7F", "00 00 00 80", "FF FF FF FF"}) {
    file.Patch(44, Bytes(length));
    std::vector<char> bytes;
    EXPECT_THROW(db.ReadWholeObject(object, bytes), CSync) << length;
    EXPECT_THROW(db.VBLength(object), CSync) << length;
    EXPECT_THROW(db.ObjectLength(object), CSync) << length;
    EXPECT_THROW(db.ReadObjectChecksum(object, nullptr, nullptr), CSync) << length;
    EXPECT_THROW(db.WriteObjectChecksum(object), CSync) << length;
    EXPECT_THROW(db.Delete(object, true), CSync) << length;
    EXPECT_EQ(bytes.size(), 0U) << length;
  }
}

TEST_F(Blocks, LengthOfAnEarlierFileIsNotBelieved) {
  const long object = file.Add(std::string(5000, 'x'));
  EXPECT_EQ(db.VBLength(object), 5032UL);
  db.Close();
  WriteBytes(file.Path(), FileOf(Block(41, 'N')));
  PatchBytes(file.Path(), 44, Word(4000));
  db.Open(file.Path(), vbReadWrite);
  EXPECT_THROW(db.VBLength(object), CSync);
}

TEST_F(Blocks, LengthBeforeTheFileWasCutIsNotBelieved) {
  const long object = file.Add(std::string(5000, 'x'));
  EXPECT_EQ(db.VBLength(object), 5032UL);
  file.Resize(5071);
  EXPECT_THROW(db.VBLength(object), CSync);
}

TEST_F(Blocks, BlockHeaderIsReadAndWrittenAtABlockAddress) {
  file.Add(digits);
  vbBlockHeader header;
  db.ReadBlockHdr(&header, 40);
  EXPECT_EQ(header.Length, 41UL);
  EXPECT_EQ(header.StatusLetter(), 'N');
  header.Status = 0x11223344;
  header.NextDeleted = -1;
  db.WriteBlockHdr(header, 40);
  EXPECT_EQ(file.HexAt(40, 16), "FE FE FE FE 29 00 00 00 44 33 22 11 FF FF FF FF");
  EXPECT_THROW(db.ReadBlockHdr(&header, 41), CSync);
}
