#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "maintenance/DBUtilities.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "tests/maintenance/DataFiles.h"
#include "tests/support/OtherProcess.h"

namespace {

class DataFileStats : public FileRun {
 protected:
  std::string Report(bool walk) {
    return ReportOf([=, this] { KFileStats(path, walk); });
  }
  template <class Error>
  std::string Refusal(bool walk) {
    return ReportUntil<Error>([=, this] { KFileStats(path, walk); });
  }
  /// The lines of a whole run behind the first two of PreCheck.
  std::string Run(const std::string& inner) const {
    return "\n***** Start -- Data File Statistics *****\nFile name: " + path +
           "\nVBD Runtime Library Version:  3001\n"
           "VBD Runtime Library Revision: C\n"
           "Analyzing " +
           path + " header...\n\tChecking signature..." + inner +
           "\n***** End -- Data File Statistics *****\n\n";
  }

  inline static const std::string kSound =
      "OK\n"
      "\tChecking the HeapStart value...OK\n"
      "The file header checks OK!\n\n";
};

TEST_F(DataFileStats, ReportOnTheFile) {
  Make(kSampleFile);
  EXPECT_EQ(Report(false),
            "\n"
            "***** Start -- Data File Statistics *****\n"
            "File name: " +
                path +
                "\n"
                "VBD Runtime Library Version:  3001\n"
                "VBD Runtime Library Revision: C\n"
                "Analyzing " +
                path +
                " header...\n"
                "\tChecking signature...OK\n"
                "\tChecking the HeapStart value...OK\n"
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
                "\n"
                "***** End -- Data File Statistics *****\n"
                "\n");
}

TEST_F(DataFileStats, AddTheTotalsOfTheBlocksWhenAsked) {
  Make(kSampleFile);
  EXPECT_EQ(Report(true), Run(kSound + FileReport(path, SampleFigures()) + FileLockReport() +
                              Searching(path) + kSampleTotals));
}

TEST_F(DataFileStats, OfAnEmptyFileWarnThatThereIsNoBlock) {
  Make(kEmptyFile);
  const std::string file =
      "OK\n"
      "\tChecking the HeapStart value...no variable blocks in the file.\n"
      "The file header checks OK!\n\n" +
      FileReport(path, EmptyFigures()) + FileLockReport();
  EXPECT_EQ(Report(false), Run(file));
  EXPECT_EQ(Report(true), Run(file + Searching(path) +
                              "WARNING: No variable blocks found!\n\n"
                              "\nBlocks: Used = 0 / Empty = 0 / Total = 0 Efficiency = 0%\n"
                              "Bytes: Used = 40 / Empty = 0 / Total = 40 Efficiency = 100%\n"));
}

TEST_F(DataFileStats, ReportOnRevisionA) {
  FileFigures figures = OldFigures();
  for (const std::string signature : {"VBDBASE", "VBDFILE"}) {
    for (const char letter : {'A', 'a'}) {
      Make(With(kOldFile, kSignatureAt, signature + letter));
      figures.signature = signature;
      figures.letter = std::string(1, letter);
      EXPECT_EQ(Report(true), Run("\n"
                                  "WARNING: \tThe file revision letters do not match.\n"
                                  "\tCurrent File Revision: C\n"
                                  "\tThe file reads: " +
                                  figures.letter +
                                  "\n"
                                  "\tBackward compatibility rules will be enforced.\n\n"
                                  "\tChecking the HeapStart value...OK\n"
                                  "The file header checks OK!\n\n" +
                                  FileReport(path, figures) + "\n" + Searching(path) +
                                  "\nBlocks: Used = 1 / Empty = 1 / Total = 2 Efficiency = 50%\n"
                                  "Bytes: Used = 57 / Empty = 29 / Total = 86 Efficiency = 66%\n"));
    }
  }
}

TEST_F(DataFileStats, OfAFileWithoutARevisionLetterFindNoBlock) {
  Make(With(kSampleFile, kLetterAt, std::string(1, '\0')));
  FileFigures figures = SampleFigures();
  figures.letter = "Zero";
  figures.fileHeader = "28";
  figures.blockHeader = "16";
  figures.staticArea = "12";
  figures.blocks = "0";
  figures.freeBlocks = "0/0 (-1)";
  EXPECT_EQ(Report(true), Run("\n"
                              "WARNING: \tThe file revision letters do not match.\n"
                              "\tCurrent File Revision: C\n"
                              "\tCurrent File Revision: NONE\n"
                              "\tBackward compatibility rules will be enforced.\n\n"
                              "\tChecking the HeapStart value...OK\n"
                              "The file header checks OK!\n\n" +
                              FileReport(path, figures) + "\n" + Searching(path) +
                              "WARNING: No variable blocks found!\n\n"
                              "\nBlocks: Used = 0 / Empty = 0 / Total = 0 Efficiency = 0%\n"
                              "Bytes: Used = 40 / Empty = 0 / Total = 40 Efficiency = 100%\n"
                              "WARNING: Found 40 bytes, but file size is 195 bytes.\n"));
}

TEST_F(DataFileStats, ShowWhatTheHeaderSaysAndDoNotJudgeIt) {
  Make(With(kSampleFile, 0, Word(5000) + Word(0x7FFFFFFF) + Word(40) + Word(-2)));
  PatchBytes(path, kVersionAt, Word(1));
  PatchBytes(path, kLockAt, Word(9) + Word(8) + Word(1));
  FileFigures figures = SampleFigures();
  figures.version = "1";
  figures.freeSpace = "5000";
  figures.endOfFile = "2147483647";
  figures.highest = "-2";
  figures.freeBlocks = "0/0 (-1)";
  EXPECT_EQ(Report(true), Run(kSound + FileReport(path, figures) + FileLockReport("9", "8", "1") +
                              Searching(path) + kSampleTotals));
}

TEST_F(DataFileStats, ShowAHeapStartBeforeTheFileWhenNoBlockIsExpectedThere) {
  Make(With(kEmptyFile, 0, Word(0) + Word(-5) + Word(-5)));
  FileFigures figures = EmptyFigures();
  figures.staticArea = "-45";
  figures.heapStart = figures.endOfFile = "-5";
  EXPECT_EQ(Report(true), Run("OK\n"
                              "\tChecking the HeapStart value...no variable blocks in the file.\n"
                              "The file header checks OK!\n\n" +
                              FileReport(path, figures) + FileLockReport() + Searching(path) +
                              "WARNING: No variable blocks found!\n\n"
                              "\nBlocks: Used = 0 / Empty = 0 / Total = 0 Efficiency = 0%\n"
                              "Bytes: Used = -5 / Empty = 0 / Total = -5 Efficiency = 100%\n"
                              "WARNING: Found -5 bytes, but file size is 40 bytes.\n"));
}

TEST_F(DataFileStats, RefuseAHeapStartWithoutABlock) {
  for (const bool walk : {false, true}) {
    Make(With(kSampleFile, kHeapStartAt, Word(41)));
    EXPECT_EQ(Refusal<CFileCorrupt>(walk), Run("OK\n"
                                               "\tChecking the HeapStart value...\n"
                                               "ERROR: Bad HeapStart value!\n"
                                               "\tNo variable block found at file address: 41\n\n"
                                               "ERROR: The file header has 1 errors!\n" +
                                               Failure("File corrupt")));
  }
}

TEST_F(DataFileStats, GoOnBehindABadBlock) {
  Make(With(kSampleFile, 81, Word(0)));
  FileFigures figures = SampleFigures();
  figures.blocks = "3";
  figures.freeBlocks = "0/1 (-1)";
  EXPECT_EQ(Report(true),
            Run(kSound + FileReport(path, figures) + FileLockReport() + Searching(path) +
                "WARNING: Found bad variable block at address 81\n"
                "\tSearching for next good variable block...\n"
                "\nBlocks: Used = 2 / Empty = 1 / Total = 3 Efficiency = 67%\n"
                "Bytes: Used = 122 / Empty = 41 / Total = 163 Efficiency = 75%\n"
                "WARNING: Found 163 bytes, but file size is 195 bytes.\n"
                "WARNING: Found 1 bad variable blocks.\n"
                "\tYou should rebuild this file to recover data!\n"));
}

TEST_F(DataFileStats, EndInAFileThatWasCut) {
  FileFigures figures = SampleFigures();
  figures.blocks = "3";
  // In the last object, in the last record lock, in the last block header.
  for (const unsigned long size : {194UL, 180UL, 160UL, 155UL}) {
    Make(kSampleFile.substr(0, size));
    figures.fileSize = std::to_string(size);
    EXPECT_EQ(Refusal<CFileCorrupt>(true),
              Run(kSound + FileReport(path, figures) + FileLockReport() + Searching(path) +
                  "WARNING: Found bad variable block at address 154\n"
                  "\tSearching for next good variable block...\n"
                  "None found!\n\n" +
                  Failure("File corrupt")));
    EXPECT_EQ(Report(false), Run(kSound + FileReport(path, figures) + FileLockReport()));
  }
}

TEST_F(DataFileStats, EndBehindTheLastBlockOfAFileThatIsTooLong) {
  Make(kSampleFile + "junk");
  FileFigures figures = SampleFigures();
  figures.fileSize = "199";
  EXPECT_EQ(Refusal<CFileCorrupt>(true),
            Run(kSound + FileReport(path, figures) + FileLockReport() + Searching(path) +
                "WARNING: Found bad variable block at address 195\n"
                "\tSearching for next good variable block...\n"
                "None found!\n\n" +
                Failure("File corrupt")));
}

TEST_F(DataFileStats, CountBlocksBehindTheEndThatTheHeaderNames) {
  Make(With(kSampleFile, kEndOfFileAt, Word(154)));
  FileFigures figures = SampleFigures();
  figures.endOfFile = "154";
  figures.blocks = "3";
  EXPECT_EQ(Report(true), Run(kSound + FileReport(path, figures) + FileLockReport() +
                              Searching(path) + kSampleTotals));
}

TEST_F(DataFileStats, OfAFileCutBehindItsHeaderEndAtTheLock) {
  Make(With(kEmptyFile, kFreeSpaceAt, Word(1000)).substr(0, 28));
  FileFigures figures = EmptyFigures();
  figures.fileSize = "28";
  figures.freeSpace = "1000";
  figures.freeBlocks = "0/0 (-1)";
  EXPECT_EQ(Refusal<CFileRead>(false),
            Run("OK\n"
                "\tChecking the HeapStart value...no variable blocks in the file.\n"
                "The file header checks OK!\n\n" +
                FileReport(path, figures) + Failure("File read error")));
}

// ---- What all runs refuse before they look into the file ----

struct AnyRun {
  const char* name;
  void (*run)(const std::string& path);
  const char* start;
  const char* end;
};

const AnyRun kRuns[] = {
    {"KFileCheck", KFileCheck, "\n***** Start -- Data File Check *****\n",
     "\n***** End -- Data File Check *****\n"},
    {"KFileStats", [](const std::string& path) { KFileStats(path, false); },
     "\n***** Start -- Data File Statistics *****\n",
     "\n***** End -- Data File Statistics *****\n\n"},
    {"KFileStatsWithWalk", [](const std::string& path) { KFileStats(path, true); },
     "\n***** Start -- Data File Statistics *****\n",
     "\n***** End -- Data File Statistics *****\n\n"},
};

class DataFileRuns : public FileRun, public testing::WithParamInterface<AnyRun> {
 protected:
  template <class Error>
  void ExpectRefusal(const std::string& what) {
    EXPECT_EQ(ReportUntil<Error>([this] { GetParam().run(path); }),
              GetParam().start + ("File name: " + path + "\n") + Failure(what) + GetParam().end);
  }
};

TEST_P(DataFileRuns, RefuseAMissingFile) {
  ExpectRefusal<CNoFileExists>("No file exists");
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_P(DataFileRuns, RefuseAFileThatItsOwnerMayNotRead) {
  Make(kSampleFile);
  chmod(path.c_str(), 0266);
  ClearLog();
  EXPECT_THROW(GetParam().run(path), CFileRead);
  EXPECT_EQ(LogText(), GetParam().start + ("File name: " + path + "\n") +
                           Failure("File read error") + GetParam().end);
}

TEST_P(DataFileRuns, RefuseAFileThatItsOwnerMayNotWrite) {
  Make(kSampleFile);
  chmod(path.c_str(), 0466);
  ExpectRefusal<CFileNotWriteable>("File not writeable");
}

TEST_P(DataFileRuns, RefuseAFolder) {
  std::filesystem::create_directory(path);
  ExpectRefusal<CFileOpen>("File open error");
}

TEST_P(DataFileRuns, RefuseAFileShorterThanItsHeader) {
  for (const unsigned long size : {0UL, 1UL, 27UL}) {
    Make(kSampleFile.substr(0, size));
    ExpectRefusal<CFileRead>("File read error");
  }
}

TEST_P(DataFileRuns, RefuseATextFile) {
  Make("A report on the weather of the last days, with some figures.\n");
  ExpectRefusal<CWrongFileType>("Wrong file type");
  Make(With(kSampleFile, kSignatureAt, "VBDBASf"));
  ExpectRefusal<CWrongFileType>("Wrong file type");
}

TEST_P(DataFileRuns, RefuseAFileThatAnotherProcessHolds) {
  Make(kSampleFile);
  OtherProcess holder([this](const OtherProcess::Pause& pause) {
    std::FILE* file = std::fopen(path.c_str(), "r+b");
    EXPECT_TRUE(NSFLock(file));
    pause();
    std::fclose(file);
  });
  ExpectRefusal<CFileLock>("Error locking the file");
  holder.Finish();
  EXPECT_NO_THROW(GetParam().run(path));
}

TEST_P(DataFileRuns, ComeToTheirEndInEveryDamagedFileAndLeaveItAsItIs) {
  const auto expectEnd = [this](const std::string& bytes) {
    Make(bytes);
    const std::string text = ReportOf([this] {
      try {
        GetParam().run(path);
      } catch (const CKestErr&) {
        // Which damage is told how is the matter of other tests.
      }
    });
    EXPECT_TRUE(text.ends_with(GetParam().end)) << text;
  };
  for (const std::string& bytes : {kSampleFile, kOldFile}) {
    for (std::size_t at = 0; at < bytes.size(); ++at) {
      for (const int change : {0xFF, 0x80, 0x01}) {
        SCOPED_TRACE(at);
        expectEnd(With(bytes, at, std::string(1, static_cast<char>(bytes[at] ^ change))));
      }
      expectEnd(bytes.substr(0, at));
    }
  }
}

INSTANTIATE_TEST_SUITE_P(All, DataFileRuns, testing::ValuesIn(kRuns),
                         [](const auto& run) { return std::string(run.param.name); });

}  // namespace
