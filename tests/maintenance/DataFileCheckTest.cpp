#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "maintenance/DBUtilities.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "tests/maintenance/DataFiles.h"
#include "tests/support/OtherProcess.h"

// KFileCheck on files put together by hand. Those of a whole study: PairReportsTest.cpp.

namespace {

class DataFileCheck : public FileRun {
 protected:
  std::string Report() {
    return ReportOf([this] { KFileCheck(path); });
  }
  template <class Error>
  std::string Refusal() {
    return ReportUntil<Error>([this] { KFileCheck(path); });
  }
  /// The lines of a whole run, of which `inner` are those between Start and End.
  std::string Run(const std::string& inner) const {
    return "\n***** Start -- Data File Check *****\nFile name: " + path + "\n" + inner +
           "\n***** End -- Data File Check *****\n";
  }
  /// What a header that isn't sound makes of the run.
  std::string RunOfBadHeader(const std::string& checks) const {
    return Run("Analyzing " + path + " header...\n" + checks + Failure("File corrupt"));
  }
};

TEST_F(DataFileCheck, ReportsOnHeaderFileAndEveryBlock) {
  Make(kSampleFile);
  EXPECT_EQ(Report(),
            "\n"
            "***** Start -- Data File Check *****\n"
            "File name: " +
                path +
                "\n"
                "Analyzing " +
                path +
                " header...\n"
                "\tChecking signature...OK\n"
                "\tChecking the HeapStart value...OK\n"
                "\tChecking the end of file...OK\n"
                "\tChecking the FreeSpace value...OK\n"
                "\tChecking the HighestVB value...OK\n"
                "\tChecking the version number...OK\n"
                "The file header checks OK!\n"
                "\n"
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
                "File Lock Protect:     0\n"
                "File Read Lock Value:  0\n"
                "File Write Lock Value: 0\n"
                "\n"
                "Searching " +
                path +
                " for all variable blocks...\n"
                "\n"
                "----------------------------\n"
                "----- Block Statistics -----\n"
                "Address      = 40\n"
                "Check Word   = 0xfefefefe\n"
                "Length       = 41\n"
                "Status       = N\n"
                "Next Deleted = 0\n"
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
                "\n"
                "\n"
                "----------------------------\n"
                "----- Block Statistics -----\n"
                "Address      = 81\n"
                "Check Word   = 0xfefefefe\n"
                "Length       = 32\n"
                "Status       = D\n"
                "Next Deleted = 0\n"
                "\n"
                "----- Object Statistics -----\n"
                "Object Length  = 0\n"
                "Stored CRC     = 0x0       \n"
                "Calculated CRC = 0x0       \n"
                "\n"
                "----- Record Lock Statistics -----\n"
                "Record Lock Protect:     0\n"
                "Record Read Lock Value:  0\n"
                "Record Write Lock Value: 0\n"
                "\n"
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
                "\n"
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
                "\n"
                "\n"
                "Blocks: Used = 2 / Empty = 2 / Total = 4 Efficiency = 50%\n"
                "Bytes: Used = 122 / Empty = 73 / Total = 195 Efficiency = 63%\n"
                "\n"
                "***** End -- Data File Check *****\n");
}

TEST_F(DataFileCheck, OfAnEmptyFileIsHealthy) {
  Make(kEmptyFile);
  EXPECT_EQ(Report(), Run("Analyzing " + path +
                          " header...\n"
                          "\tChecking signature...OK\n"
                          "\tChecking the HeapStart value...no variable blocks in the file.\n"
                          "\tChecking the end of file...OK\n"
                          "\tChecking the FreeSpace value...OK\n"
                          "\tChecking the HighestVB value...OK\n"
                          "\tChecking the version number...OK\n"
                          "The file header checks OK!\n\n" +
                          FileReport(path, EmptyFigures()) + FileLockReport() + Searching(path) +
                          "WARNING: No variable blocks found!\n\n"
                          "\nBlocks: Used = 0 / Empty = 0 / Total = 0 Efficiency = 0%\n"
                          "Bytes: Used = 40 / Empty = 0 / Total = 40 Efficiency = 100%\n"));
}

TEST_F(DataFileCheck, ShowsALockThatSomebodyLeftBehind) {
  Make(With(kEmptyFile, kLockAt, Bytes("07 00 00 00 02 00 00 00 01 00 00 00")));
  EXPECT_NE(Report().find(FileLockReport("7", "2", "1")), std::string::npos);
}

TEST_F(DataFileCheck, OnlyWarnsOfAnotherVersion) {
  for (const long version : {0L, 2000L, 3002L, -1L}) {
    Make(With(kSampleFile, kVersionAt, Word(version)));
    FileFigures figures = SampleFigures();
    figures.version = std::to_string(version);
    EXPECT_EQ(Report(), Run("Analyzing " + path +
                            " header...\n"
                            "\tChecking signature...OK\n"
                            "\tChecking the HeapStart value...OK\n"
                            "\tChecking the end of file...OK\n"
                            "\tChecking the FreeSpace value...OK\n"
                            "\tChecking the HighestVB value...OK\n"
                            "\tChecking the version number...\n"
                            "WARNING: File version numbers do not match.\n"
                            "\tCurrent File Version = 3001\n"
                            "\tThe file reads: " +
                            figures.version +
                            "\n"
                            "\tBackward compatibility rules will be enforced.\n\n"
                            "The file header checks OK!\n\n" +
                            FileReport(path, figures) + FileLockReport() + Searching(path) +
                            BlockReport(kSampleAt40) + BlockReport(kSampleAt81) +
                            BlockReport(kSampleAt113) + BlockReport(kSampleAt154) + kSampleTotals));
  }
}

TEST_F(DataFileCheck, TakesAFileOfTheOldSignatureWithTheCurrentShape) {
  Make(With(kSampleFile, kSignatureAt, "VBDFILEC"));
  FileFigures figures = SampleFigures();
  figures.signature = "VBDFILE";
  EXPECT_EQ(Report(), Run("Analyzing " + path +
                          " header...\n"
                          "\tChecking signature...\n"
                          "WARNING: \tThe file revision letters do not match.\n"
                          "\tCurrent File Revision: C\n"
                          "\tThe file reads: C\n"
                          "\tBackward compatibility rules will be enforced.\n\n"
                          "\tChecking the HeapStart value...OK\n"
                          "\tChecking the end of file...OK\n"
                          "\tChecking the FreeSpace value...OK\n"
                          "\tChecking the HighestVB value...OK\n"
                          "\tChecking the version number...OK\n"
                          "The file header checks OK!\n\n" +
                          FileReport(path, figures) + FileLockReport() + Searching(path) +
                          BlockReport(kSampleAt40) + BlockReport(kSampleAt81) +
                          BlockReport(kSampleAt113) + BlockReport(kSampleAt154) + kSampleTotals));
}

TEST_F(DataFileCheck, FindsNoBlockInAFileWithoutARevisionLetter) {
  Make(With(kSampleFile, kLetterAt, std::string(1, '\0')));
  EXPECT_EQ(Refusal<CFileCorrupt>(),
            RunOfBadHeader("\tChecking signature...\n"
                           "WARNING: \tThe file revision letters do not match.\n"
                           "\tCurrent File Revision: C\n"
                           "\tCurrent File Revision: NONE\n"
                           "\tBackward compatibility rules will be enforced.\n\n"
                           "\tChecking the HeapStart value...OK\n"
                           "\tChecking the end of file...OK\n"
                           "\tChecking the FreeSpace value...\n"
                           "ERROR: Bad FreeSpace value!\n"
                           "\tNo variable block found at file address: 113\n\n"
                           "\tChecking the HighestVB value...\n"
                           "ERROR: Bad HeapStart value\n"
                           "\tNo variable block found at file address: 154\n\n"
                           "\tChecking the version number...OK\n"
                           "ERROR: The file header has 2 errors!\n"));
}

TEST_F(DataFileCheck, RefusesRevisionAAndTellsWhatToDo) {
  for (const std::string signature : {"VBDBASE", "VBDFILE"}) {
    for (const char letter : {'A', 'a'}) {
      Make(With(kOldFile, kSignatureAt, signature + letter));
      EXPECT_EQ(Refusal<CFileNotReady>(),
                Run("ERROR: You must update the files to the current file revision.\n"
                    "       File reads version " +
                    std::string(1, letter) +
                    "; current version is C.\n"
                    "       Please rebuild the data file and then rebuild the index file.\n" +
                    Failure("File not ready")));
    }
  }
}

TEST_F(DataFileCheck, TellsOfRevisionABeforeItLocksTheFile) {
  Make(kOldFile);
  OtherProcess holder([this](const OtherProcess::Pause& pause) {
    std::FILE* file = std::fopen(path.c_str(), "r+b");
    EXPECT_TRUE(NSFLock(file));
    pause();
    std::fclose(file);
  });
  EXPECT_THROW(KFileCheck(path), CFileNotReady);
  holder.Finish();
}

// ---- A header with a wrong value ----

TEST_F(DataFileCheck, RefusesAHeapStartWithoutABlock) {
  for (const long address : {41L, 0L, 180L, 5000L, 0x7FFFFFFFL, -1L, -40L}) {
    Make(With(kSampleFile, kHeapStartAt, Word(address)));
    EXPECT_EQ(Refusal<CFileCorrupt>(),
              RunOfBadHeader("\tChecking signature...OK\n"
                             "\tChecking the HeapStart value...\n"
                             "ERROR: Bad HeapStart value!\n"
                             "\tNo variable block found at file address: " +
                             std::to_string(address) +
                             "\n\n"
                             "\tChecking the end of file...OK\n"
                             "\tChecking the FreeSpace value...OK\n"
                             "\tChecking the HighestVB value...OK\n"
                             "\tChecking the version number...OK\n"
                             "ERROR: The file header has 1 errors!\n"));
  }
}

TEST_F(DataFileCheck, RefusesAnEndThatIsNotTheEndOfTheFile) {
  const struct {
    std::string bytes;
    const char* line;
  } cases[] = {
      {With(kSampleFile, kEndOfFileAt, Word(154)),
       " Actual length (195) != allocated length (154)\n\n"},
      {With(kSampleFile, kEndOfFileAt, Word(-1)),
       " Actual length (195) != allocated length (-1)\n\n"},
      {kSampleFile.substr(0, 180), " Actual length (180) != allocated length (195)\n\n"},
      {kSampleFile + "junk", " Actual length (199) != allocated length (195)\n\n"},
  };
  for (const auto& [bytes, line] : cases) {
    Make(bytes);
    EXPECT_EQ(Refusal<CFileCorrupt>(), RunOfBadHeader("\tChecking signature...OK\n"
                                                      "\tChecking the HeapStart value...OK\n"
                                                      "\tChecking the end of file...\n"
                                                      "ERROR: End of file error!\n" +
                                                      std::string(line) +
                                                      "\tChecking the FreeSpace value...OK\n"
                                                      "\tChecking the HighestVB value...OK\n"
                                                      "\tChecking the version number...OK\n"
                                                      "ERROR: The file header has 1 errors!\n"));
  }
}

TEST_F(DataFileCheck, RefusesAFreeSpaceWithoutABlock) {
  for (const long address : {41L, 195L, 5000L, -1L, -0x7FFFFFFFL - 1}) {
    Make(With(kSampleFile, kFreeSpaceAt, Word(address)));
    EXPECT_EQ(Refusal<CFileCorrupt>(),
              RunOfBadHeader("\tChecking signature...OK\n"
                             "\tChecking the HeapStart value...OK\n"
                             "\tChecking the end of file...OK\n"
                             "\tChecking the FreeSpace value...\n"
                             "ERROR: Bad FreeSpace value!\n"
                             "\tNo variable block found at file address: " +
                             std::to_string(address) +
                             "\n\n"
                             "\tChecking the HighestVB value...OK\n"
                             "\tChecking the version number...OK\n"
                             "ERROR: The file header has 1 errors!\n"));
  }
}

TEST_F(DataFileCheck, RefusesAHighestBlockThatIsNone) {
  for (const long address : {0L, 41L, 195L, 5000L, -1L}) {
    Make(With(kSampleFile, kHighestAt, Word(address)));
    EXPECT_EQ(Refusal<CFileCorrupt>(),
              RunOfBadHeader("\tChecking signature...OK\n"
                             "\tChecking the HeapStart value...OK\n"
                             "\tChecking the end of file...OK\n"
                             "\tChecking the FreeSpace value...OK\n"
                             "\tChecking the HighestVB value...\n"
                             "ERROR: Bad HeapStart value\n"
                             "\tNo variable block found at file address: " +
                             std::to_string(address) +
                             "\n\n"
                             "\tChecking the version number...OK\n"
                             "ERROR: The file header has 1 errors!\n"));
  }
}

TEST_F(DataFileCheck, RefusesAHighestBlockInAnEmptyFile) {
  Make(With(kEmptyFile, kHighestAt, Word(40)));
  EXPECT_EQ(Refusal<CFileCorrupt>(),
            RunOfBadHeader("\tChecking signature...OK\n"
                           "\tChecking the HeapStart value...no variable blocks in the file.\n"
                           "\tChecking the end of file...OK\n"
                           "\tChecking the FreeSpace value...OK\n"
                           "\tChecking the HighestVB value...\n"
                           "ERROR: Bad HeapStart value\n"
                           "\tNo variable block found at file address: 40\n\n"
                           "\tChecking the version number...OK\n"
                           "ERROR: The file header has 1 errors!\n"));
}

TEST_F(DataFileCheck, CountsAllThatIsWrongWithAHeader) {
  Make(With(kSampleFile, 0, Word(1) + Word(200) + Word(41) + Word(2)));
  EXPECT_EQ(Refusal<CFileCorrupt>(),
            RunOfBadHeader("\tChecking signature...OK\n"
                           "\tChecking the HeapStart value...\n"
                           "ERROR: Bad HeapStart value!\n"
                           "\tNo variable block found at file address: 41\n\n"
                           "\tChecking the end of file...\n"
                           "ERROR: End of file error!\n"
                           " Actual length (195) != allocated length (200)\n\n"
                           "\tChecking the FreeSpace value...\n"
                           "ERROR: Bad FreeSpace value!\n"
                           "\tNo variable block found at file address: 1\n\n"
                           "\tChecking the HighestVB value...\n"
                           "ERROR: Bad HeapStart value\n"
                           "\tNo variable block found at file address: 2\n\n"
                           "\tChecking the version number...OK\n"
                           "ERROR: The file header has 4 errors!\n"));
}

// ---- Bad blocks under a sound header ----

TEST_F(DataFileCheck, GoesOnBehindABadBlock) {
  Make(With(kSampleFile, 81, Word(0)));
  FileFigures figures = SampleFigures();
  figures.blocks = "3";
  figures.freeBlocks = "0/1 (-1)";
  EXPECT_EQ(Report(), Run(SoundHeader(path) + FileReport(path, figures) + FileLockReport() +
                          Searching(path) + BlockReport(kSampleAt40) +
                          "WARNING: Found bad variable block at address 81\n"
                          "\tSearching for next good variable block...\n" +
                          BlockReport(kSampleAt113) + BlockReport(kSampleAt154) +
                          "\nBlocks: Used = 2 / Empty = 1 / Total = 3 Efficiency = 67%\n"
                          "Bytes: Used = 122 / Empty = 41 / Total = 163 Efficiency = 75%\n"
                          "WARNING: Found 163 bytes, but file size is 195 bytes.\n"
                          "WARNING: Found 1 bad variable blocks.\n"
                          "\tYou should rebuild this file to recover data!\n"));
}

TEST_F(DataFileCheck, EndsAtABadBlockWithNoneBehindIt) {
  Make(With(With(kSampleFile, 154, Word(0)), kHighestAt, Word(113)));
  FileFigures figures = SampleFigures();
  figures.highest = "113";
  figures.blocks = "3";
  EXPECT_EQ(Refusal<CFileCorrupt>(),
            Run(SoundHeader(path) + FileReport(path, figures) + FileLockReport() + Searching(path) +
                BlockReport(kSampleAt40) + BlockReport(kSampleAt81) + BlockReport(kSampleAt113) +
                "WARNING: Found bad variable block at address 154\n"
                "\tSearching for next good variable block...\n"
                "None found!\n\n" +
                Failure("File corrupt")));
}

TEST_F(DataFileCheck, ShowsABrokenFreeListAndLeavesItsHeaderAlone) {
  Make(With(kSampleFile, 81 + 12, Word(81)));
  FileFigures figures = SampleFigures();
  figures.freeBlocks = "0/1 (0)";
  BlockFigures loop = kSampleAt81;
  loop.next = "81";
  EXPECT_EQ(Report(), Run(SoundHeader(path) + FileReport(path, figures) + FileLockReport() +
                          Searching(path) + BlockReport(kSampleAt40) + BlockReport(loop) +
                          BlockReport(kSampleAt113) + BlockReport(kSampleAt154) + kSampleTotals));
}

}  // namespace
