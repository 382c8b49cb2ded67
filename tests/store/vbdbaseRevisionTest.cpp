#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "store/KestErr.h"
#include "store/vbdbase.h"
#include "tests/support/BlockFile.h"
#include "tests/support/Bytes.h"

// The revision letter and the shape that it gives to a file.

namespace {

/// A file of revision A as an old library wrote it: two blocks, each for the object "123456789",
/// at 28 and at 57.
const std::string oldFile = Bytes(
    "00 00 00 00 56 00 00 00 1C 00 00 00 39 00 00 00"
    "56 42 44 42 41 53 45 41 D0 07 00 00"
    "FE FE 00 00 1D 00 00 00 4E 00 00 00 00 00 00 00"
    "31 32 33 34 35 36 37 38 39 26 39 F4 CB"
    "FE FE 00 00 1D 00 00 00 4E 00 00 00 00 00 00 00"
    "31 32 33 34 35 36 37 38 39 26 39 F4 CB");

struct Shape {
  char letter;
  unsigned long fileHeader;
  unsigned long blockHeader;
  unsigned long overhead;
};

constexpr Shape shapes[] = {
    {'\0', 28, 16, 16}, {' ', 28, 16, 16}, {'A', 28, 16, 20}, {'a', 28, 16, 20}, {'B', 40, 16, 20},
    {'b', 40, 16, 20},  {'C', 40, 28, 32}, {'c', 40, 28, 32}, {'Z', 40, 28, 32},
};

/// A block of a file whose blocks have 16 header bytes.
std::string OldBlock(const std::string& object, const std::string& checkWord) {
  return checkWord + Word(static_cast<long>(object.size()) + 20) + Word('N') + Word(0) + object +
         Word(0);
}

}  // namespace

TEST(RevisionLetter, IsNormalised) {
  vbDatabase db;
  const struct {
    int given;
    char kept;
  } cases[] = {{'A', 'A'}, {'a', 'A'},  {'B', 'B'}, {'b', 'B'}, {'C', 'C'}, {'c', 'C'},
               {0, '\0'},  {' ', '\0'}, {'D', 'C'}, {'0', 'C'}, {-1, 'C'},  {127, 'C'}};
  for (const auto& [given, kept] : cases) {
    db.SetRevisionLetter(static_cast<signed char>(given));
    EXPECT_EQ(db.GetRevisionLetter(), kept) << given;
  }
}

TEST(RevisionLetter, OfAFileIsTakenAsItStands) {
  for (const Shape& shape : shapes) {
    const BlockFile file(FileHeaderBytes(0, 40, 40, 0, shape.letter) + std::string(12, '\0'));
    EXPECT_EQ(file.db.GetRevisionLetter(), shape.letter);
    EXPECT_EQ(file.db.FileHeaderSize(), shape.fileHeader) << shape.letter;
    EXPECT_EQ(file.db.VBHeaderSize(), shape.blockHeader) << shape.letter;
    EXPECT_EQ(file.db.BlockOverhead(), shape.overhead) << shape.letter;
    EXPECT_EQ(file.db.StaticArea(), 40L - static_cast<long>(shape.fileHeader)) << shape.letter;
  }
}

TEST(RevisionLetter, DecidesOnTheCheckWord) {
  const auto validWords = [](signed char letter) {
    vbDatabase db;
    db.SetRevisionLetter(letter);
    std::string valid;
    for (const unsigned long word : {0UL, 0xFEFEUL, 0xFEFE0000UL, 0xFEFEFEFEUL, 0xFFFFFFFFUL}) {
      valid += db.IsValid(word) ? '1' : '0';
    }
    return valid;
  };
  EXPECT_EQ(validWords(0), "00000");
  EXPECT_EQ(validWords('A'), "01000");
  EXPECT_EQ(validWords('B'), "00000");
  EXPECT_EQ(validWords('C'), "00010");
}

TEST(RevisionLetter, NewFilesHaveTheShapeOfTheirRevision) {
  const struct {
    signed char letter;
    const char* bytes;
  } cases[] = {
      {0,
       "00 00 00 00 1C 00 00 00 1C 00 00 00 00 00 00 00 "
       "56 42 44 42 41 53 45 00 B9 0B 00 00"},
      {'a',
       "00 00 00 00 1C 00 00 00 1C 00 00 00 00 00 00 00 "
       "56 42 44 42 41 53 45 41 B9 0B 00 00"},
      {'b',
       "00 00 00 00 28 00 00 00 28 00 00 00 00 00 00 00 "
       "56 42 44 42 41 53 45 42 B9 0B 00 00 00 00 00 00 00 00 00 00 00 00 00 00"},
      {'c',
       "00 00 00 00 28 00 00 00 28 00 00 00 00 00 00 00 "
       "56 42 44 42 41 53 45 43 B9 0B 00 00 00 00 00 00 00 00 00 00 00 00 00 00"},
  };
  for (const auto& [letter, bytes] : cases) {
    BlockFile file(letter);
    file.db.Close();
    EXPECT_EQ(Hex(ReadBytes(file.Path())), bytes) << letter;
  }
}

TEST(RevisionA, BlocksAndObjectsAreRead) {
  BlockFile file(oldFile);
  vbDatabase& db = file.db;
  for (const long object : {44L, 73L}) {
    EXPECT_EQ(db.VBLength(object), 29UL);
    EXPECT_EQ(db.ObjectLength(object), 9UL);
    unsigned long stored = 0;
    unsigned long calculated = 0;
    EXPECT_TRUE(db.ReadObjectChecksum(object, &stored, &calculated));
    EXPECT_EQ(stored, 0xCBF43926UL);
    EXPECT_EQ(calculated, 0xCBF43926UL);
    std::vector<char> bytes;
    EXPECT_TRUE(db.ReadWholeObject(object, bytes));
    EXPECT_EQ(std::string(bytes.begin(), bytes.end()), "123456789");
  }
}

TEST(RevisionA, IsWalkedInBothDirections) {
  BlockFile file(oldFile);
  vbDatabase& db = file.db;
  EXPECT_EQ(db.VBTotal(), 2);
  EXPECT_EQ(db.FindFirstVB(0), 28);
  EXPECT_EQ(db.FindNextVB(28), 57);
  EXPECT_EQ(db.FindNextVB(57), 0);
  EXPECT_EQ(db.FindFirstObject(0), 44);
  EXPECT_EQ(db.FindNextObject(28), 73);
  EXPECT_EQ(db.FindNextObject(44), 73);
  EXPECT_EQ(db.FindNextObject(73), 0);
  EXPECT_EQ(db.FindPrevObject(73), 44);
  EXPECT_EQ(db.FindPrevObject(44), 0);
}

TEST(RevisionA, FreedBlocksKeepTheirOldCheckWord) {
  BlockFile file(oldFile);
  EXPECT_TRUE(file.db.Delete(44, false));
  EXPECT_EQ(file.HexAt(28, 16), "FE FE 00 00 1D 00 00 00 44 00 00 00 00 00 00 00");
  EXPECT_TRUE(file.db.Remove(73));
  EXPECT_EQ(file.HexAt(57, 16), "FE FE 00 00 1D 00 00 00 52 00 00 00 1C 00 00 00");
  EXPECT_EQ(file.db.VBDeleted(nullptr, nullptr), 2);
  EXPECT_TRUE(file.db.UnDelete(44));
  EXPECT_EQ(file.HexAt(28, 16), "FE FE 00 00 1D 00 00 00 4E 00 00 00 00 00 00 00");
  EXPECT_EQ(file.HexAt(57, 16), "FE FE 00 00 1D 00 00 00 52 00 00 00 00 00 00 00");
}

TEST(RevisionA, NewBlocksCarryTheCurrentCheckWordAndSoAreNoBlocksThere) {
  BlockFile file(oldFile);
  vbDatabase& db = file.db;
  const vbINT32 object = db.Alloc(9, vbReclaimFirstFit);
  EXPECT_EQ(object, 86 + 16);
  EXPECT_EQ(file.HexAt(86, 16), "FE FE FE FE 1D 00 00 00 4E 00 00 00 00 00 00 00");
  EXPECT_THROW(db.WriteObjectChecksum(object), CSync);
  EXPECT_THROW(db.VBLength(object), CSync);
  EXPECT_EQ(db.VBTotal(), 2);
}

TEST(RevisionA, ObjectAddressIsStillTakenBackByTheHeaderOfRevisionC) {
  // The third object, at 188, holds its own address. The 28 bytes before it reach back into the
  // second block, where they find a check word with a length that leads to the last block.
  const std::string checkWord = Bytes("FE FE 00 00");
  const long owner = 188 - 28;
  const long last = 225;
  std::string blocks = OldBlock(std::string(92, 'x'), checkWord) +  // at 28
                       OldBlock(std::string(12, 'x'), checkWord) +  // at 140
                       OldBlock(Word(1) + Word(188), checkWord) +   // at 172
                       OldBlock("abcde", checkWord) +               // at 200
                       OldBlock("fghij", checkWord);                // at 225
  blocks.replace(owner - 28, 8, checkWord + Word(last - owner));
  BlockFile file(FileHeaderBytes(0, 28 + static_cast<long>(blocks.size()), 28, 0, 'A') + blocks);
  EXPECT_EQ(file.db.FindFirstVB(172), 172);
  EXPECT_EQ(file.db.FindNextVB(172), 200);
  EXPECT_EQ(file.db.FindFirstVB(188), last);
}

TEST(RevisionB, NewBlocksHaveAChecksumAndNoRecordLock) {
  BlockFile file('B');
  const vbINT32 object = file.db.Alloc(9, vbReclaimFirstFit);
  EXPECT_EQ(object, 40 + 16);
  EXPECT_EQ(file.db.Length(), 40 + 29);
  EXPECT_EQ(file.HexAt(40, 16), "FE FE FE FE 1D 00 00 00 4E 00 00 00 00 00 00 00");
}

TEST(RevisionZero, NewBlocksHaveNeitherChecksumNorRecordLock) {
  BlockFile file('\0');
  const vbINT32 object = file.db.Alloc(9, vbReclaimFirstFit);
  EXPECT_EQ(object, 28 + 16);
  EXPECT_EQ(file.db.Length(), 28 + 25);
  EXPECT_EQ(file.HexAt(28, 16), "FE FE FE FE 19 00 00 00 4E 00 00 00 00 00 00 00");
}

TEST(RevisionZero, ChecksumsAreZeroAndAgree) {
  BlockFile file('\0');
  const vbINT32 object = file.db.Alloc(9, vbReclaimFirstFit);
  const std::string before = file.HexAt(0, 100);
  EXPECT_EQ(file.db.WriteObjectChecksum(object), 0UL);
  EXPECT_EQ(file.HexAt(0, 100), before);
  unsigned long stored = 1;
  unsigned long calculated = 1;
  EXPECT_TRUE(file.db.ReadObjectChecksum(object, &stored, &calculated));
  EXPECT_EQ(stored, 0UL);
  EXPECT_EQ(calculated, 0UL);
}

class RevisionWithoutCheckWord : public testing::TestWithParam<char> {};

TEST_P(RevisionWithoutCheckWord, PassesNoBlockTest) {
  BlockFile file(GetParam());
  vbDatabase& db = file.db;
  const vbINT32 object = db.Alloc(30, vbReclaimNone);
  db.Alloc(30, vbReclaimNone);
  EXPECT_THROW(db.VBLength(object), CSync);
  EXPECT_THROW(db.ObjectLength(object), CSync);
  EXPECT_THROW(db.Delete(object, true), CSync);
  vbBlockHeader header;
  EXPECT_THROW(db.ReadBlockHdr(&header, object - 16), CSync);
  EXPECT_EQ(header.Status, 78UL) << "the bytes are there all the same";
}

TEST_P(RevisionWithoutCheckWord, StopsAllWalksAtItsFirstBlock) {
  BlockFile file(GetParam());
  vbDatabase& db = file.db;
  const vbINT32 first = db.Alloc(30, vbReclaimNone);
  const vbINT32 second = db.Alloc(30, vbReclaimNone);
  EXPECT_EQ(db.VBTotal(), 0);
  EXPECT_EQ(db.FindFirstVB(0), 0);
  EXPECT_EQ(db.FindNextVB(first - 16), 0);
  EXPECT_EQ(db.FindFirstObject(0), 0);
  EXPECT_EQ(db.FindNextObject(first), 0);
  EXPECT_EQ(db.FindPrevVB(second), first - 16) << "the heap start needs no check word";
  EXPECT_THROW(db.FindPrevObject(second), CSync);
}

TEST_P(RevisionWithoutCheckWord, HasNoSoundFreeList) {
  BlockFile file(GetParam());
  vbDatabase& db = file.db;
  const vbINT32 first = db.Alloc(30, vbReclaimNone);
  file.Patch(static_cast<long>(first) - 8, Word('R'));
  file.Patch(0, Word(first - 16));
  const vbINT32 end = db.GetEOF();
  EXPECT_EQ(db.Alloc(30, vbReclaimFirstFit), end + 16);
  EXPECT_EQ(db.GetVBDFreeSpace(), vbFSListCorrupt);
}

INSTANTIATE_TEST_SUITE_P(BlockFiles, RevisionWithoutCheckWord, testing::Values('B', '\0'),
                         [](const auto& letter) {
                           return std::string(letter.param == 'B' ? "B" : "Zero");
                         });
