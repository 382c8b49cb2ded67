#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "maintenance/vbdstats.h"
#include "store/KestErr.h"
#include "store/vbdbase.h"
#include "tests/maintenance/DataFiles.h"
#include "tests/support/Printed.h"

// The reports on one block and on a whole file, which go to a stream.

namespace {

class FileReports : public FileLook {
 protected:
  std::string BlockText(long address) {
    return Printed([&](std::FILE* stream) { VBStats(stream, &db, address); });
  }
  std::string FileText() {
    return Printed([&](std::FILE* stream) { VBDStats(stream, &db); });
  }
};

// ---- Blocks ----

using ReportOfABlock = FileReports;

TEST_F(ReportOfABlock, NeedsAStreamAndAFile) {
  Open(kSampleFile);
  EXPECT_THROW(VBStats(nullptr, &db, 40), CNullPtr);
  EXPECT_THROW(VBStats(stdout, nullptr, 40), CNullPtr);
  db.Abandon();
  EXPECT_THROW(VBStats(stdout, &db, 40), CFileNotReady);
}

TEST_F(ReportOfABlock, ShowsHeaderObjectAndLock) {
  Open(kSampleFile);
  EXPECT_EQ(BlockText(113),
            "\n"
            "----------------------------\n"
            "----- Block Statistics -----\n"
            "Address      = 113\n"
            "Check Word   = 0xfefefefe\n"
            "Length       = 41\n"
            "Status       = R\n"
            "Next Deleted = 81\n"
            "\n"
            "----- Object Statistics -----\n"
            "Object Length  = 9\n"
            "Stored CRC     = 0xcbf43926\n"
            "Calculated CRC = 0xcbf43926\n"
            "\n"
            "----- Record Lock Statistics -----\n"
            "Record Lock Protect:     0\n"
            "Record Read Lock Value:  0\n"
            "Record Write Lock Value: 0\n"
            "\n");
  EXPECT_TRUE(Log().empty());
}

TEST_F(ReportOfABlock, TellsOfAWrongChecksum) {
  Open(kSampleFile);
  EXPECT_EQ(BlockText(154),
            "\n"
            "----------------------------\n"
            "----- Block Statistics -----\n"
            "Address      = 154\n"
            "Check Word   = 0xfefefefe\n"
            "Length       = 41\n"
            "Status       = N\n"
            "Next Deleted = 0\n"
            "\n"
            "----- Object Statistics -----\n"
            "Object Length  = 9\n"
            "Stored CRC     = 0x1       \n"
            "Calculated CRC = 0xcbf43926\n"
            "ERROR: Object checksum does not match!\n"
            "       Rebuild the file to recover valid data.\n"
            "\n"
            "----- Record Lock Statistics -----\n"
            "Record Lock Protect:     1\n"
            "Record Read Lock Value:  2\n"
            "Record Write Lock Value: 3\n"
            "\n");
}

TEST_F(ReportOfABlock, OfRevisionAHasNoLock) {
  Open(kOldFile);
  EXPECT_EQ(BlockText(57),
            "\n"
            "----------------------------\n"
            "----- Block Statistics -----\n"
            "Address      = 57\n"
            "Check Word   = 0xfefe    \n"
            "Length       = 29\n"
            "Status       = D\n"
            "Next Deleted = 0\n"
            "\n"
            "----- Object Statistics -----\n"
            "Object Length  = 9\n"
            "Stored CRC     = 0xcbf43926\n"
            "Calculated CRC = 0xcbf43926\n"
            "\n");
}

TEST_F(ReportOfABlock, ShowsTheLockForTheLetterCInEitherCaseOnly) {
  Open(kSampleFile);
  const std::string block = BlockReport(kSampleAt40);
  EXPECT_EQ(BlockText(40), block);
  Open(With(kSampleFile, kLetterAt, "c"));
  EXPECT_EQ(BlockText(40), block);
  Open(With(kSampleFile, kLetterAt, "Z"));
  EXPECT_EQ(BlockText(40), block.substr(0, block.find("----- Record Lock")));
}

TEST_F(ReportOfABlock, ShowsTheLowByteOfTheStatusWhateverItIs) {
  Open(With(kSampleFile, 40 + 8, Bytes("58 4E 44 52")));
  BlockFigures block = kSampleAt40;
  block.status = 'X';
  EXPECT_EQ(BlockText(40), BlockReport(block));
  Open(With(kSampleFile, 40 + 8, Word(0)));
  block.status = '\0';
  EXPECT_EQ(BlockText(40), BlockReport(block));
}

TEST_F(ReportOfABlock, NeedsABlockThere) {
  Open(kSampleFile);
  EXPECT_EQ(Printed([&](std::FILE* stream) { EXPECT_THROW(VBStats(stream, &db, 41), CSync); }), "");
  EXPECT_EQ(LogText(), Failure("Synchronization error"));
  EXPECT_THROW(BlockText(0), CSync);
  EXPECT_THROW(BlockText(195), CFileRead);
}

TEST_F(ReportOfABlock, EndsAtALengthThatNoBlockCanHave) {
  for (const long length : {0L, 31L, 1000L, -1L}) {
    Open(With(kSampleFile, 154 + 4, Word(length)));
    EXPECT_EQ(Printed([&](std::FILE* stream) { EXPECT_THROW(VBStats(stream, &db, 154), CSync); }),
              "\n"
              "----------------------------\n"
              "----- Block Statistics -----\n"
              "Address      = 154\n"
              "Check Word   = 0xfefefefe\n"
              "Length       = " +
                  std::to_string(length) +
                  "\n"
                  "Status       = N\n"
                  "Next Deleted = 0\n"
                  "\n");
  }
}

// ---- Files ----

using ReportOfAFile = FileReports;

TEST_F(ReportOfAFile, NeedsAStreamAndAFile) {
  Open(kSampleFile);
  EXPECT_THROW(VBDStats(nullptr, &db), CNullPtr);
  EXPECT_THROW(VBDStats(stdout, nullptr), CNullPtr);
}

TEST_F(ReportOfAFile, ShowsHeaderBlocksAndLock) {
  Open(With(kSampleFile, kLockAt, Bytes("FF FF FF FF 02 00 00 00 01 00 00 00")));
  EXPECT_EQ(FileText(),
            "\n"
            "----- VBD file statistics -----\n"
            "\n"
            "----- Static information -----\n"
            "File Name:         " +
                path +
                "\n"
                "File Signature:    VBDBASE\n"
                "Revision Letter:   C\n"
                "Library Version:   3001\n"
                "File Header Size:  40\n"
                "Block Header Size: 28\n"
                "Static area size:  0\n"
                "Static file size:  195\n"
                "\n"
                "----- Dynamic Information -----\n"
                "File Status:     Open Read/Write \n"
                "Free Space:      113\n"
                "End of File:     195\n"
                "Heap Start:      40\n"
                "Highest Block:   154\n"
                "Total Blocks:    4\n"
                "Deleted/Removed: 1/1 (2)\n"
                "\n"
                "----- Lock Header Information -----\n"
                "File Lock Protect:     4294967295\n"
                "File Read Lock Value:  2\n"
                "File Write Lock Value: 1\n"
                "\n");
  EXPECT_TRUE(Log().empty());
}

TEST_F(ReportOfAFile, TellsThatItIsOpenForReadingOnly) {
  Open(kSampleFile, vbReadOnly);
  FileFigures figures = SampleFigures();
  figures.status = "Open Read/Only ";
  EXPECT_EQ(FileText(), FileReport(path, figures) + FileLockReport());
}

TEST_F(ReportOfAFile, OfRevisionAHasNoLock) {
  Open(kOldFile);
  EXPECT_EQ(FileText(), FileReport(path, OldFigures()) + "\n");
}

TEST_F(ReportOfAFile, OfTheOldSignatureShowsIt) {
  Open(With(kOldFile, kSignatureAt, "VBDFILEA"));
  FileFigures figures = OldFigures();
  figures.signature = "VBDFILE";
  EXPECT_EQ(FileText(), FileReport(path, figures) + "\n");
}

TEST_F(ReportOfAFile, ShowsTheLockForTheLettersBAndCInEitherCaseOnly) {
  FileFigures figures = EmptyFigures();
  for (const char letter : {'c', 'B', 'b', 'Z'}) {
    Open(With(kEmptyFile, kLetterAt, std::string(1, letter)));
    figures.letter = std::string(1, letter);
    figures.blockHeader = letter == 'B' || letter == 'b' ? "16" : "28";
    EXPECT_EQ(FileText(), FileReport(path, figures) + (letter == 'Z' ? "\n" : FileLockReport()));
  }
}

TEST_F(ReportOfAFile, CallsAMissingLetterZero) {
  FileFigures figures = EmptyFigures();
  figures.letter = "Zero";
  figures.fileHeader = "28";
  figures.blockHeader = "16";
  figures.staticArea = "12";
  for (const char letter : {'\0', ' '}) {
    Open(With(kEmptyFile, kLetterAt, std::string(1, letter)));
    EXPECT_EQ(FileText(), FileReport(path, figures) + "\n") << int{letter};
  }
}

TEST_F(ReportOfAFile, ShowsABrokenFreeListAsItIs) {
  const struct {
    long freeSpace;
    long nextAt81;
    const char* counts;
  } cases[] = {
      {-1, 0, "0/0 (-1)"},     // known to be broken
      {5000, 0, "0/0 (-1)"},   // behind the file
      {41, 0, "0/0 (-1)"},     // no block
      {40, 0, "0/0 (0)"},      // a normal block
      {113, 81, "0/1 (0)"},    // a block that is its own successor
      {113, -1, "0/1 (-1)"},   // a block freed when the list was broken
      {113, 500, "1/1 (-1)"},  // a successor behind the file
      {113, 113, "3/3 (-1)"},  // a loop, which is left when no file could hold so many blocks
  };
  for (const auto& [freeSpace, nextAt81, counts] : cases) {
    Open(With(With(kSampleFile, kFreeSpaceAt, Word(freeSpace)), 81 + 12, Word(nextAt81)));
    FileFigures figures = SampleFigures();
    figures.freeSpace = std::to_string(freeSpace);
    figures.freeBlocks = counts;
    EXPECT_EQ(FileText(), FileReport(path, figures) + FileLockReport());
  }
}

TEST_F(ReportOfAFile, ThatWasClosedEndsAtTheLockHeader) {
  Open(kSampleFile);
  db.Close();
  FileFigures figures = SampleFigures();
  figures.fileSize = "-1";
  figures.status = "Closed Read/Only ";
  figures.blocks = "0";
  figures.freeBlocks = "0/0 (-1)";
  EXPECT_EQ(Printed([&](std::FILE* stream) { EXPECT_THROW(VBDStats(stream, &db), CFileNotReady); }),
            FileReport("closed.vbd", figures));
}

TEST_F(ReportOfAFile, ThatNeverWasOpenHasNoSignature) {
  EXPECT_THROW(FileText(), std::out_of_range);
}

}  // namespace
