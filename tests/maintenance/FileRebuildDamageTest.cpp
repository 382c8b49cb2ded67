#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "maintenance/DBUtilities.h"
#include "store/KestErr.h"
#include "tests/maintenance/FileRebuilds.h"

// The rebuild of damaged data files: what it finds, and what it tells.

namespace {

// ---- Damaged blocks ----

/// Three objects; the second one's block starts at 90.
std::string ThreeBlocks() {
  return LetterBlock(40, 'a', 10) + LetterBlock(90, 'b', 60) + LetterBlock(190, 'c', 20);
}
/// The first and the third of them, as they are copied.
std::string WithoutTheSecond() {
  return Written(LetterBlock(40, 'a', 10) + LetterBlock(90, 'c', 20), 90);
}

class FileRebuildDamage : public FileRebuild {
 protected:
  const std::string three = Written(ThreeBlocks(), 190);
};

TEST_F(FileRebuildDamage, OfACheckWordCostsThatBlockAlone) {
  EXPECT_EQ(Rebuild(With(three, 90, "?")), Whole(Counted(2, 150, 0, 0, 1) + kBad));
  EXPECT_EQ(Hex(ReadBytes(path)), Hex(WithoutTheSecond()));
}

TEST_F(FileRebuildDamage, AtTheEndEndsTheWalkAndKeepsWhatWasCopied) {
  EXPECT_EQ(Rebuild(With(three, 190, "?")), Whole(Counted(2, 190, 0, 0, 1) + kBad));
  EXPECT_EQ(Hex(ReadBytes(path)),
            Hex(Written(LetterBlock(40, 'a', 10) + LetterBlock(90, 'b', 60), 90)));
}

TEST_F(FileRebuildDamage, OfTheFirstBlockIsRefused) {
  const std::string bytes = With(three, 40, "?");
  Make(bytes);
  EXPECT_EQ(ReportUntil<CFileCorrupt>([this] { KFileRebuild(path); }),
            Start() + "Analyzing " + path +
                " header...\n"
                "\tChecking signature...OK\n"
                "\tChecking the HeapStart value...\n"
                "ERROR: Bad HeapStart value!\n"
                "\tNo variable block found at file address: 40\n\n"
                "ERROR: The file header has 1 errors!\n" +
                Failure("File corrupt") + kEnd);
  EXPECT_EQ(NamesIn(folder.Path()), "study.ksb");
}

TEST_F(FileRebuildDamage, OfTheStatusIsUnrecoverable) {
  EXPECT_EQ(Rebuild(With(three, 98, "X")), Whole(Counted(2, 150, 0, 0, 1) + kBad));
  EXPECT_EQ(Hex(ReadBytes(path)), Hex(WithoutTheSecond()));
}

TEST_F(FileRebuildDamage, OfAnObjectIsWarnedOfAndCopied) {
  // One letter of the second object; the new checksum fits it.
  const std::string damaged = With(three, 130, "?");
  const std::string object = damaged.substr(118, 68);
  char warning[100];
  std::snprintf(warning, sizeof warning,
                "WARNING: Current checksum (0x%-8x) does not match stored checksum (0x%-8x).\n",
                PlainCRC(object), PlainCRC(three.substr(118, 68)));
  EXPECT_EQ(Rebuild(damaged), Whole(warning +
                                    std::string("    Old object at address 126\n"
                                                "    This object may be corrupt.\n") +
                                    Counted(3, 250, 0, 0, 0)));
  EXPECT_EQ(Hex(ReadBytes(path)), Hex(With(damaged, 186, ChecksumOf(object))));
}

TEST_F(FileRebuildDamage, OfTheFreeListDoesNotMatter) {
  const std::string blocks =
      LetterBlock(40, 'a', 10) + Block(50, 'D', 40) + LetterBlock(140, 'b', 10);
  for (const long freeSpace : {0L, 40L, 90L, 99999L, -1L}) {
    EXPECT_EQ(Rebuild(FileOf(blocks, freeSpace)), Whole(Counted(2, 140, 1, 50, 0)));
    EXPECT_EQ(Hex(ReadBytes(path)),
              Hex(Written(LetterBlock(40, 'a', 10) + LetterBlock(90, 'b', 10), 90)));
  }
}

TEST_F(FileRebuildDamage, OfALengthThatReachesOverOtherObjectsLosesNone) {
  const std::string damaged = With(three, 44, Word(200));  // to the end of the third block's start
  const std::string report = Rebuild(damaged);
  EXPECT_EQ(Hex(ReadBytes(path)), Hex(three));
  char warning[100];
  std::snprintf(warning, sizeof warning,
                "WARNING: Current checksum (0x%-8x) does not match stored checksum (0x%-8x).\n",
                PlainCRC(damaged.substr(68, 168)), static_cast<unsigned>(WordAt(damaged, 236)));
  EXPECT_EQ(report, Whole(warning +
                          std::string("    Old object at address 76\n"
                                      "    This object may be corrupt.\n") +
                          Counted(3, 250, 0, 0, 0)));
}

TEST_F(FileRebuildDamage, OfTheLengthOfAFreeBlockLosesNoObjectBehindIt) {
  const std::string blocks = Block(50, 'D') + LetterBlock(90, 'b', 10) + LetterBlock(140, 'c', 10);
  const std::string live = LetterBlock(40, 'b', 10) + LetterBlock(90, 'c', 10);
  for (const long length : {70L, 100L, 130L, 150L}) {
    EXPECT_EQ(Rebuild(With(FileOf(blocks), 44, Word(length))), Whole(Counted(2, 140, 1, 50, 0)));
    EXPECT_EQ(Hex(ReadBytes(path)), Hex(Written(live, 90)));
  }
}

TEST_F(FileRebuildDamage, OfALengthThatReachesBehindTheFileCostsThatBlockAlone) {
  for (const long length : {161L, 10000L, 0x7FFFFFFFL, -1L}) {
    EXPECT_EQ(Rebuild(With(three, 94, Word(length))), Whole(Counted(2, 150, 0, 0, 1) + kBad))
        << length;
    EXPECT_EQ(Hex(ReadBytes(path)), Hex(WithoutTheSecond()));
  }
}

TEST_F(FileRebuildDamage, OfALengthBelowTheHeadersCostsThatBlockAlone) {
  // 39 is too short for an object's header.
  for (const long length : {0L, 16L, 31L, 32L, 39L}) {
    Rebuild(With(three, 94, Word(length)));
    EXPECT_EQ(Hex(ReadBytes(path)), Hex(WithoutTheSecond())) << length;
  }
}

TEST_F(FileRebuildDamage, OfALengthThatIsTooShortLosesNoOtherObject) {
  Rebuild(With(three, 94, Word(60)));
  const RawFile made = ReadRawFile(path);
  EXPECT_EQ(FaultOf(made), "");
  ASSERT_EQ(made.blocks.size(), 3U);  // the second one is cut
  EXPECT_EQ(Hex(made.blocks[0].object.substr(8)), Hex(std::string(10, 'a')));
  EXPECT_EQ(Hex(made.blocks[1].object.substr(8)), Hex(std::string(20, 'b')));
  EXPECT_EQ(Hex(made.blocks[2].object.substr(8)), Hex(std::string(20, 'c')));
}

TEST_F(FileRebuildDamage, OfEveryByteOfAHeaderLosesNoOtherObject) {
  for (long at = 90; at < 118; ++at) {
    for (const char byte : {'\x00', '\x01', 'D', '\x7F', '\xFF'}) {
      Rebuild(With(three, static_cast<std::size_t>(at), std::string(1, byte)));
      const RawFile made = ReadRawFile(path);
      ASSERT_EQ(FaultOf(made), "") << at;
      ASSERT_GE(made.blocks.size(), 2U) << at;
      ASSERT_EQ(made.blocks.front().object.substr(8), std::string(10, 'a')) << at;
      ASSERT_EQ(made.blocks.back().object.substr(8), std::string(20, 'c')) << at;
    }
  }
}

// ---- Damaged file headers ----

TEST_F(FileRebuildDamage, OfTheEndOfFileLosesNoObject) {
  for (const long end : {41L, 90L, 189L, 100000L, 0x7FFFFFFFL, 0L, -1L}) {
    EXPECT_EQ(Rebuild(With(three, kEndOfFileAt, Word(end))), Whole(Counted(3, 250, 0, 0, 0)))
        << end;
    EXPECT_EQ(Hex(ReadBytes(path)), Hex(three));
  }
}

TEST_F(FileRebuildDamage, OfAnEndOfFileAtTheHeapStartLosesNoObject) {
  EXPECT_EQ(Rebuild(With(three, kEndOfFileAt, Word(40))),
            Start() + EmptyStart(path) + Counted(3, 250, 0, 0, 0) + kEnd);
  EXPECT_EQ(Hex(ReadBytes(path)), Hex(three));
}

TEST_F(FileRebuildDamage, OfTheHighestBlockDoesNotMatter) {
  for (const long highest : {0L, 17L, 99999L, -1L}) {
    EXPECT_EQ(Rebuild(With(three, kHighestAt, Word(highest))), Whole(Counted(3, 250, 0, 0, 0)));
    EXPECT_EQ(Hex(ReadBytes(path)), Hex(three));
  }
}

TEST_F(FileRebuildDamage, OfAHeapStartBeforeTheHeaderIsRefused) {
  // So that PreCheck sees no blocks, and there is no place to look for them.
  const std::string bytes = With(With(three, kHeapStartAt, Word(8)), kEndOfFileAt, Word(8));
  Make(bytes);
  EXPECT_EQ(ReportUntil<CFileCorrupt>([this] { KFileRebuild(path); }),
            Start() + EmptyStart(path) + Failure("File corrupt") + kEnd);
  EXPECT_EQ(NamesIn(folder.Path()), "study.ksb");
}

TEST_F(FileRebuildDamage, ThatLeavesAFreeListAndNoBlockIsRefused) {
  for (const long freeSpace : {1L, 40L, 9999L, -1L}) {
    Make(With(kEmptyFile, kFreeSpaceAt, Word(freeSpace)));
    EXPECT_EQ(ReportUntil<CFileCorrupt>([this] { KFileRebuild(path); }),
              Start() + EmptyStart(path) + Failure("File corrupt") + kEnd);
    EXPECT_EQ(NamesIn(folder.Path()), "study.ksb");
  }
}

TEST_F(FileRebuildDamage, ThatLeavesNoWholeBlockHeaderIsRefused) {
  const std::string bytes = three.substr(0, 60);
  Make(bytes);
  EXPECT_EQ(ReportUntil<CFileCorrupt>([this] { KFileRebuild(path); }),
            Start() + SoundStart(path) + Failure("File corrupt") + kEnd);
  EXPECT_EQ(NamesIn(folder.Path()), "study.ksb");
}

TEST_F(FileRebuildDamage, ThatCutsTheFileWithinItsFirstObjectTellsOfTheLoss) {
  EXPECT_EQ(Rebuild(three.substr(0, 80)), Whole(Counted(0, 40, 0, 0, 1) + kBad));
  EXPECT_EQ(Hex(ReadBytes(path)), Hex(kEmptyFile));
}

TEST_F(FileRebuildDamage, ThatCutsTheFileAnywhereLosesNoWholeObject) {
  for (std::size_t size = 90; size < three.size(); ++size) {
    Rebuild(three.substr(0, size));
    const RawFile made = ReadRawFile(path);
    ASSERT_EQ(FaultOf(made), "") << size;
    ASSERT_EQ(made.blocks.size(), size < 190 ? 1U : 2U) << size;
  }
}

}  // namespace
