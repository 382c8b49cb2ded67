#include "maintenance/vbdstats.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "store/KestErr.h"
#include "store/vbdbase.h"
#include "tests/maintenance/DataFiles.h"
#include "tests/support/Printed.h"

namespace {

/// The kinds of the entries of the log, without repetitions.
std::string Kinds() {
  std::string kinds;
  std::string last;
  for (const LogEntry& entry : Log()) {
    if (entry.kind != last) kinds += entry.kind + " ";
    last = entry.kind;
  }
  return kinds;
}

// ---- KStatus ----

class FileStatus : public FileRun {
 protected:
  FileStatus() { Make("any bytes"); }
  void Allow(mode_t mode) const { ASSERT_EQ(chmod(path.c_str(), mode), 0); }
};

TEST_F(FileStatus, OfAFileThatItsOwnerMayReadAndWriteIsGood) {
  for (const mode_t mode : {0600U, 0644U, 0700U, 0666U}) {
    Allow(mode);
    EXPECT_EQ(ReportOf([&] { KStatus(path); }), "") << mode;
  }
}

TEST_F(FileStatus, TellsThatThereIsNoFile) {
  std::filesystem::remove(path);
  EXPECT_EQ(ReportUntil<CNoFileExists>([&] { KStatus(path); }), Failure("No file exists"));
}

TEST_F(FileStatus, LooksAtTheOwnersBitsAloneWhoeverRunsTheProcess) {
  for (const mode_t mode : {0266U, 0377U, 0000U}) {
    Allow(mode);
    ClearLog();
    EXPECT_THROW(KStatus(path), CFileRead) << mode;
    EXPECT_EQ(LogText(), Failure("File read error"));
  }
  for (const mode_t mode : {0466U, 0577U}) {
    Allow(mode);
    ClearLog();
    EXPECT_THROW(KStatus(path), CFileNotWriteable) << mode;
    EXPECT_EQ(LogText(), Failure("File not writeable"));
  }
}

// ---- PreCheck ----

class HeaderCheck : public FileLook {
 protected:
  std::string WithHeader(const std::string& rest) const {
    return "Analyzing " + path + " header...\n\tChecking signature..." + rest;
  }
};

TEST_F(HeaderCheck, NeedsAFile) {
  EXPECT_THROW(PreCheck(nullptr, true), CNullPtr);
  EXPECT_THROW(PreCheck(&db, true), CFileNotReady);
}

TEST_F(HeaderCheck, OfASoundFileSaysSo) {
  Open(kSampleFile);
  EXPECT_EQ(ReportOf([&] { PreCheck(&db, true); }), SoundHeader(path));
  EXPECT_EQ(Kinds(), "LPrint ");
}

TEST_F(HeaderCheck, InShortSeesOnlySignatureAndHeapStart) {
  std::string bytes = kSampleFile;
  for (const std::size_t field : {kFreeSpaceAt, kEndOfFileAt, kHighestAt, kVersionAt}) {
    bytes = With(bytes, field, Word(7));
  }
  Open(bytes);
  EXPECT_EQ(ReportOf([&] { PreCheck(&db, false); }),
            WithHeader("OK\n"
                       "\tChecking the HeapStart value...OK\n"
                       "The file header checks OK!\n\n"));
}

TEST_F(HeaderCheck, ReadsTheFileAndNotTheHeaderInMemory) {
  Open(kSampleFile);
  PatchBytes(path, kHeapStartAt, Word(41));
  db.Refresh();
  EXPECT_EQ(db.GetHeapStart(), 40);
  EXPECT_THROW(PreCheck(&db, false), CFileCorrupt);
  EXPECT_EQ(db.GetHeapStart(), 40);
}

TEST_F(HeaderCheck, WarnsOfAnotherRevisionLetter) {
  for (const char letter : {'A', 'a', 'B', 'c', ' ', 'Z'}) {
    Open(With(kEmptyFile, kLetterAt, std::string(1, letter)));
    EXPECT_EQ(ReportOf([&] { PreCheck(&db, false); }),
              WithHeader("\n"
                         "WARNING: \tThe file revision letters do not match.\n"
                         "\tCurrent File Revision: C\n"
                         "\tThe file reads: " +
                         std::string(1, letter) +
                         "\n"
                         "\tBackward compatibility rules will be enforced.\n\n"
                         "\tChecking the HeapStart value...no variable blocks in the file.\n"
                         "The file header checks OK!\n\n"));
  }
}

TEST_F(HeaderCheck, WarnsOfAMissingRevisionLetter) {
  Open(With(kEmptyFile, kLetterAt, std::string(1, '\0')));
  EXPECT_EQ(ReportOf([&] { PreCheck(&db, false); }),
            WithHeader("\n"
                       "WARNING: \tThe file revision letters do not match.\n"
                       "\tCurrent File Revision: C\n"
                       "\tCurrent File Revision: NONE\n"
                       "\tBackward compatibility rules will be enforced.\n\n"
                       "\tChecking the HeapStart value...no variable blocks in the file.\n"
                       "The file header checks OK!\n\n"));
}

TEST_F(HeaderCheck, WarnsOfTheOldSignatureByItsLetterAlone) {
  Open(With(kEmptyFile, kSignatureAt, "VBDFILEC"));
  EXPECT_EQ(ReportOf([&] { PreCheck(&db, false); }),
            WithHeader("\n"
                       "WARNING: \tThe file revision letters do not match.\n"
                       "\tCurrent File Revision: C\n"
                       "\tThe file reads: C\n"
                       "\tBackward compatibility rules will be enforced.\n\n"
                       "\tChecking the HeapStart value...no variable blocks in the file.\n"
                       "The file header checks OK!\n\n"));
}

TEST_F(HeaderCheck, TakesTheCheckWordOfAnyRevisionAtTheHeapStart) {
  const std::string oldWord = Bytes("FE FE 00 00");
  Open(With(kSampleFile, 40, oldWord));
  EXPECT_NO_THROW(PreCheck(&db, false));
  Open(With(kSampleFile, kLetterAt, "A"));
  EXPECT_NO_THROW(PreCheck(&db, false));
}

TEST_F(HeaderCheck, TakesOnlyTheFilesOwnCheckWordElsewhere) {
  Open(With(kSampleFile, kLetterAt, "A"));
  const std::string text = ReportUntil<CFileCorrupt>([&] { PreCheck(&db, true); });
  EXPECT_EQ(text, WithHeader("\n"
                             "WARNING: \tThe file revision letters do not match.\n"
                             "\tCurrent File Revision: C\n"
                             "\tThe file reads: A\n"
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
                             "ERROR: The file header has 2 errors!\n") +
                      Failure("File corrupt"));
}

TEST_F(HeaderCheck, ShowsTheBlocksOfAFileWithAnotherSignatureAndRefusesIt) {
  Open(kSampleFile);
  PatchBytes(path, kSignatureAt, "OURDATA");
  db.Refresh();
  EXPECT_EQ(ReportUntil<CWrongFileType>([&] { PreCheck(&db, true); }),
            WithHeader("\n"
                       "ERROR: File header is damaged or does not exist\n\n") +
                Searching(path) + kSampleTotals + Failure("Wrong file type"));
}

// ---- VBStatistics ----

using BlockWalks = FileLook;

TEST_F(BlockWalks, NeedAFile) {
  EXPECT_THROW(VBStatistics(nullptr, true), CNullPtr);
  EXPECT_THROW(VBStatistics(&db, true), CFileNotReady);
}

TEST_F(BlockWalks, ReportTheTotals) {
  Open(kSampleFile);
  EXPECT_EQ(ReportOf([&] { VBStatistics(&db, false); }), Searching(path) + kSampleTotals);
  EXPECT_EQ(Kinds(), "LPrint ");
}

TEST_F(BlockWalks, ReportEveryBlockToTheLogStream) {
  Open(kSampleFile);
  EXPECT_EQ(ReportOf([&] { VBStatistics(&db, true); }),
            Searching(path) + BlockReport(kSampleAt40) + BlockReport(kSampleAt81) +
                BlockReport(kSampleAt113) + BlockReport(kSampleAt154) + kSampleTotals);
  EXPECT_EQ(Kinds(), "LPrint fKLog LPrint ");
}

TEST_F(BlockWalks, ReadTheHeaderAgain) {
  Open(kEmptyFile);
  WriteBytes(path, kSampleFile);
  db.Refresh();
  EXPECT_EQ(ReportOf([&] { VBStatistics(&db, false); }), Searching(path) + kSampleTotals);
  EXPECT_EQ(db.GetEOF(), 195);
}

TEST_F(BlockWalks, CountAnUnknownStatusInTheTotalOnly) {
  Open(With(kSampleFile, 40 + 8, "X"));
  EXPECT_EQ(ReportOf([&] { VBStatistics(&db, false); }),
            Searching(path) +
                "\nBlocks: Used = 1 / Empty = 2 / Total = 4 Efficiency = 25%\n"
                "Bytes: Used = 81 / Empty = 73 / Total = 195 Efficiency = 42%\n");
}

TEST_F(BlockWalks, LookAtTheLowByteOfTheStatusOnly) {
  Open(With(With(kSampleFile, 40 + 8, Bytes("4E 44 52 01")), 81 + 8, Bytes("44 4E 00 FF")));
  EXPECT_EQ(ReportOf([&] { VBStatistics(&db, false); }), Searching(path) + kSampleTotals);
}

TEST_F(BlockWalks, CountTheStaticAreaAsUsed) {
  Open(FileHeaderBytes(0, 100, 100, 0) + std::string(72, '\0'));
  EXPECT_EQ(ReportOf([&] { VBStatistics(&db, false); }),
            Searching(path) +
                "WARNING: No variable blocks found!\n\n"
                "\nBlocks: Used = 0 / Empty = 0 / Total = 0 Efficiency = 0%\n"
                "Bytes: Used = 100 / Empty = 0 / Total = 100 Efficiency = 100%\n");
}

TEST_F(BlockWalks, PrintASmallShareAsNothing) {
  std::string blocks = Block(32, 'N');
  for (int i = 0; i < 299; ++i) blocks += Block(1000, 'R');
  Open(FileOf(blocks));
  EXPECT_EQ(ReportOf([&] { VBStatistics(&db, false); }),
            Searching(path) +
                "\nBlocks: Used = 1 / Empty = 299 / Total = 300 Efficiency = 0%\n"
                "Bytes: Used = 72 / Empty = 299000 / Total = 299072 Efficiency = 0%\n");
}

TEST_F(BlockWalks, FindNoBlockInAFileOfARevisionWithoutCheckWords) {
  for (const char letter : {'\0', ' ', 'B', 'b'}) {
    Open(With(kSampleFile, kLetterAt, std::string(1, letter)));
    EXPECT_EQ(ReportOf([&] { VBStatistics(&db, true); }),
              Searching(path) +
                  "WARNING: No variable blocks found!\n\n"
                  "\nBlocks: Used = 0 / Empty = 0 / Total = 0 Efficiency = 0%\n"
                  "Bytes: Used = 40 / Empty = 0 / Total = 40 Efficiency = 100%\n"
                  "WARNING: Found 40 bytes, but file size is 195 bytes.\n")
        << int{letter};
  }
}

TEST_F(BlockWalks, StartAtTheFirstCheckWordBehindTheHeapStart) {
  Open(With(kSampleFile, 40, Word(0)));
  EXPECT_EQ(ReportOf([&] { VBStatistics(&db, false); }),
            Searching(path) +
                "\nBlocks: Used = 1 / Empty = 2 / Total = 3 Efficiency = 33%\n"
                "Bytes: Used = 81 / Empty = 73 / Total = 154 Efficiency = 53%\n"
                "WARNING: Found 154 bytes, but file size is 195 bytes.\n");
}

/// The deleted block at 81 is bad, the others are good.
void ExpectOneBad(vbDatabase& db, const std::string& path) {
  ClearLog();
  VBStatistics(&db, false);
  EXPECT_EQ(LogText(), Searching(path) +
                           "WARNING: Found bad variable block at address 81\n"
                           "\tSearching for next good variable block...\n"
                           "\nBlocks: Used = 2 / Empty = 1 / Total = 3 Efficiency = 67%\n"
                           "Bytes: Used = 122 / Empty = 41 / Total = 163 Efficiency = 75%\n"
                           "WARNING: Found 163 bytes, but file size is 195 bytes.\n"
                           "WARNING: Found 1 bad variable blocks.\n"
                           "\tYou should rebuild this file to recover data!\n");
}

TEST_F(BlockWalks, GoOnBehindABadCheckWord) {
  Open(With(kSampleFile, 81, Word(0)));
  ExpectOneBad(db, path);
}

TEST_F(BlockWalks, GoOnBehindALengthThatNoBlockCanHave) {
  for (const long length : {0L, 31L, 195L - 81 + 1, 0x7FFFFFFFL, -1L}) {
    SCOPED_TRACE(length);
    Open(With(kSampleFile, 81 + 4, Word(length)));
    ExpectOneBad(db, path);
  }
}

TEST_F(BlockWalks, CountEveryBadBlock) {
  // The object in the last bad block starts with a check word, which no length follows.
  const std::string bytes = With(With(kSampleFile, 81, Word(0)), 113 + 4, Word(0));
  Open(With(bytes, 141, Bytes("FE FE FE FE")));
  EXPECT_EQ(ReportOf([&] { VBStatistics(&db, false); }),
            Searching(path) +
                "WARNING: Found bad variable block at address 81\n"
                "\tSearching for next good variable block...\n"
                "WARNING: Found bad variable block at address 113\n"
                "\tSearching for next good variable block...\n"
                "WARNING: Found bad variable block at address 141\n"
                "\tSearching for next good variable block...\n"
                "\nBlocks: Used = 2 / Empty = 0 / Total = 2 Efficiency = 100%\n"
                "Bytes: Used = 122 / Empty = 0 / Total = 122 Efficiency = 100%\n"
                "WARNING: Found 122 bytes, but file size is 195 bytes.\n"
                "WARNING: Found 3 bad variable blocks.\n"
                "\tYou should rebuild this file to recover data!\n");
}

TEST_F(BlockWalks, EndWhereNoGoodBlockFollows) {
  Open(With(kSampleFile, 154, Word(0)));
  EXPECT_EQ(ReportUntil<CFileCorrupt>([&] { VBStatistics(&db, false); }),
            Searching(path) +
                "WARNING: Found bad variable block at address 154\n"
                "\tSearching for next good variable block...\n"
                "None found!\n\n" +
                Failure("File corrupt"));
}

// ---- EchoVBDVersion ----

TEST(RuntimeVersion, IsPrinted) {
  EXPECT_EQ(Printed(EchoVBDVersion),
            "VBD Runtime Library Version:  3001\n"
            "VBD Runtime Library Revision: C\n");
}

TEST(RuntimeVersion, NeedsAStream) {
  EXPECT_THROW(EchoVBDVersion(nullptr), CNullPtr);
}

}  // namespace
