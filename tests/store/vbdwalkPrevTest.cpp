#include <gtest/gtest.h>

#include <string>

#include "store/KestErr.h"
#include "store/vbdbase.h"
#include "tests/support/BlockFile.h"
#include "tests/support/Bytes.h"

// Walking backwards, which reads the heap in windows of 4000 bytes.

TEST(WalkBack, GivesTheNearestNormalBlockBefore) {
  BlockFile file(
      FileOf(Block(40, 'N') + Block(60, 'N') + Block(50, 'R') + Block(70, 'D') + Block(50, 'N')));
  vbDatabase& db = file.db;
  EXPECT_EQ(db.FindPrevVB(260 + 28), 80) << "the freed blocks between are not seen";
  EXPECT_EQ(db.FindPrevVB(190 + 28), 80);
  EXPECT_EQ(db.FindPrevVB(80 + 28), 40);
  EXPECT_EQ(db.FindPrevVB(40 + 28), 0);
  EXPECT_EQ(db.FindPrevVB(310 + 28), 260) << "from the end of the file";
}

TEST(WalkBack, GivesObjectsFromTheLastToTheFirst) {
  BlockFile file;
  const long first = file.AddObject(20);
  const long second = file.AddObject(300);
  const long third = file.AddObject(10);
  EXPECT_EQ(file.db.FindPrevObject(file.db.GetEOF() + 28L), third);
  EXPECT_EQ(file.db.FindPrevObject(third), second);
  EXPECT_EQ(file.db.FindPrevObject(second), first);
  EXPECT_EQ(file.db.FindPrevObject(first), 0);
}

TEST(WalkBack, HasNothingBeforeTheHeapAndBehindTheFile) {
  BlockFile file(FileOf(Block(100, 'N') + Block(100, 'N')));
  for (const long address : {0L, 1L, 28L, 68L, 240L + 29, 5000L, 0x7FFFFFFFL, -1L, -5000L}) {
    EXPECT_EQ(file.db.FindPrevVB(address), 0) << address;
    EXPECT_EQ(file.db.FindPrevObject(address), 0) << address;
  }
}

TEST(WalkBack, StartsAnywhere) {
  BlockFile file(FileOf(Block(100, 'N') + Block(100, 'N')));
  for (const long from : {44L, 100L, 143L}) EXPECT_EQ(file.db.FindPrevVB(from + 28), 40) << from;
  for (const long from : {144L, 200L, 240L}) EXPECT_EQ(file.db.FindPrevVB(from + 28), 140) << from;
}

TEST(WalkBack, NeedsFourBytesOfHeapBeforeIt) {
  BlockFile file(FileOf(Block(100, 'N')));
  for (const long from : {41L, 42L, 43L}) EXPECT_EQ(file.db.FindPrevVB(from + 28), 0) << from;
  EXPECT_EQ(file.db.FindPrevVB(44 + 28), 40);
}

TEST(WalkBack, TakesTheHeapStartWithoutALookAtItsCheckWord) {
  BlockFile file(FileOf(Block(100, 'N') + Block(100, 'N')));
  file.Patch(40, "xxxx");
  EXPECT_EQ(file.db.FindPrevVB(140 + 28), 40);
  EXPECT_THROW(file.db.FindPrevObject(140 + 28), CSync);
}

TEST(WalkBack, FreedBlockAtTheHeapStartIsNotSeen) {
  BlockFile file(FileOf(Block(100, 'R') + Block(100, 'N')));
  EXPECT_EQ(file.db.FindPrevVB(140 + 28), 0);
}

TEST(WalkBack, GoesThroughManyWindows) {
  BlockFile file(FileOf(Block(100, 'N') + Block(30000, 'R') + Block(100, 'N')));
  EXPECT_EQ(file.db.FindPrevVB(30140 + 28), 40);
}

TEST(WalkBack, DoesNotSeeACheckWordAcrossTwoWindows) {
  // The window before the third block ends at it and is 4000 bytes long; the second block starts
  // `length` bytes before the third.
  const struct {
    std::size_t length;
    bool seen;
  } cases[] = {{3999, true}, {4000, true}, {4001, false}, {4002, false}, {4003, false},
               {4004, true}, {8000, true}, {8001, false}, {8003, false}, {8004, true}};
  for (const auto& [length, seen] : cases) {
    BlockFile file(FileOf(Block(5000, 'N') + Block(length, 'N') + Block(100, 'N')));
    const long third = 5040 + static_cast<long>(length);
    EXPECT_EQ(file.db.FindPrevVB(third + 28), seen ? 5040 : 40) << length;
  }
}

TEST(WalkBack, DoesNotSeeAHeapStartInARestOfFewerThanFourBytes) {
  const struct {
    std::size_t length;
    long found;
  } cases[] = {{3999, 40}, {4000, 40}, {4001, 0}, {4002, 0}, {4003, 0}, {4004, 40}};
  for (const auto& [length, found] : cases) {
    BlockFile file(FileOf(Block(length, 'N') + Block(100, 'N')));
    EXPECT_EQ(file.db.FindPrevVB(40 + static_cast<long>(length) + 28), found) << length;
  }
}

TEST(WalkBack, FalseCheckWordCountsWhenNSeemsToFollow) {
  std::string holdsFalse = Block(200, 'N');
  holdsFalse.replace(60, 9, Bytes("FE FE FE FE") + Word(0) + "N");
  std::string holdsAnother = Block(200, 'N');
  holdsAnother.replace(60, 9, Bytes("FE FE FE FE") + Word(0) + "R");
  BlockFile file(FileOf(holdsFalse + holdsAnother + Block(100, 'N')));
  EXPECT_EQ(file.db.FindPrevVB(440 + 28), 240);
  EXPECT_EQ(file.db.FindPrevVB(240 + 28), 100);
}

TEST(WalkBack, EndsWhereAFileWasCut) {
  BlockFile file(FileOf(Block(100, 'N') + Block(100, 'N') + Block(100, 'N')));
  file.Resize(200);
  EXPECT_EQ(file.db.FindPrevVB(240 + 28), 0) << "there is nothing to read";
  EXPECT_EQ(file.db.FindPrevVB(200 + 28), 140);
  EXPECT_EQ(file.db.FindPrevVB(140 + 28), 40);
}
