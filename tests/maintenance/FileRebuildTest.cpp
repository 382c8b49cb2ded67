#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <vector>

#include "definition/Input.h"
#include "maintenance/DBUtilities.h"
#include "maintenance/Lock.h"
#include "store/DBI_IO.h"
#include "store/KestErr.h"
#include "store/vbdbase.h"
#include "tests/maintenance/FileRebuilds.h"
#include "tests/support/OtherProcess.h"
#include "tests/support/StudyCheck.h"

// The rebuild of a data file: whole files by their bytes, before and after.

namespace {

namespace fs = std::filesystem;

// ---- Sound files ----

TEST_F(FileRebuild, CopiesLiveObjectsAndDropsFreeBlocksByteForByte) {
  const std::string report = Rebuild(kSampleFile);
  EXPECT_EQ(
      report,
      "\n***** Start -- Rebuild Data File *****\n"
      "File name: " +
          path +
          "\n"
          "Analyzing " +
          path +
          " header...\n"
          "\tChecking signature...OK\n"
          "\tChecking the HeapStart value...OK\n"
          "The file header checks OK!\n"
          "\n"
          "WARNING: Current checksum (0xcbf43926) does not match stored checksum (0x1       ).\n"
          "    Old object at address 190\n"
          "    This object may be corrupt.\n"
          "2 variable blocks were written (122 bytes)\n"
          "2 variable blocks were compressed out (73 bytes)\n"
          "0 unrecoverable blocks were found\n"
          "***** End -- Rebuild Data File *****\n\n");
  // The nine digits, with the new address in the second word: 68 and 109.
  const std::string first = Bytes("31 32 33 34 44 00 00 00 39");
  const std::string second = Bytes("31 32 33 34 6D 00 00 00 39");
  EXPECT_EQ(Hex(ReadBytes(path)), Hex(Bytes("00 00 00 00 7A 00 00 00 28 00 00 00 51 00 00 00"
                                            "56 42 44 42 41 53 45 43 B9 0B 00 00"
                                            "00 00 00 00 00 00 00 00 00 00 00 00"
                                            "FE FE FE FE 29 00 00 00 4E 00 00 00 00 00 00 00"
                                            "00 00 00 00 00 00 00 00 00 00 00 00") +
                                      first + ChecksumOf(first) +
                                      Bytes("FE FE FE FE 29 00 00 00 4E 00 00 00 00 00 00 00"
                                            "00 00 00 00 00 00 00 00 00 00 00 00") +
                                      second + ChecksumOf(second)));
}

TEST_F(FileRebuild, LeavesACompactFileAsItIs) {
  const std::string blocks = LetterBlock(40, 'a', 100) + LetterBlock(180, 'b', 5);
  const std::string compact = Written(blocks, 180);
  EXPECT_EQ(Rebuild(compact), Whole(Counted(2, 225, 0, 0, 0)));
  EXPECT_EQ(Hex(ReadBytes(path)), Hex(compact));
}

TEST_F(FileRebuild, OfAFileWithoutBlocksMakesAnEmptyCopy) {
  EXPECT_EQ(Rebuild(kEmptyFile), Start() + EmptyStart(path) + Counted(0, 40, 0, 0, 0) + kEnd);
  EXPECT_EQ(Hex(ReadBytes(path)), Hex(kEmptyFile));
}

TEST_F(FileRebuild, OfOnlyDeletedBlocksMakesAnEmptyCopy) {
  EXPECT_EQ(Rebuild(FileOf(Block(50, 'D') + Block(60, 'R', 40), 90)),
            Whole(Counted(0, 40, 2, 110, 0)));
  EXPECT_EQ(Hex(ReadBytes(path)), Hex(kEmptyFile));
}

TEST_F(FileRebuild, ForgetsTheRecordLocks) {
  std::string blocks = LetterBlock(40, 'a', 10);
  blocks.replace(16, 12, Bytes("01 00 00 00 02 00 00 00 03 00 00 00"));
  EXPECT_EQ(Rebuild(Written(blocks, 40)), Whole(Counted(1, 90, 0, 0, 0)));
  EXPECT_EQ(Hex(ReadBytes(path)), Hex(Written(LetterBlock(40, 'a', 10), 40)));
}

TEST_F(FileRebuild, CopiesObjectsOfAnySize) {
  // Around what is read ahead, and far above it.
  std::string blocks;
  std::string live;
  for (const std::size_t size : {0U, 1U, 16300U, 16384U, 16385U, 200000U, 3U}) {
    blocks += LetterBlock(40 + static_cast<long>(blocks.size()), 'o', size) + Block(40, 'D');
    live += LetterBlock(40 + static_cast<long>(live.size()), 'o', size);
  }
  const int bytes = static_cast<int>(live.size());
  EXPECT_EQ(Rebuild(FileOf(blocks)), Whole(Counted(7, 40 + bytes, 7, 280, 0)));
  EXPECT_EQ(ReadBytes(path), Written(live, 40 + bytes - 43));
}

TEST_F(FileRebuild, OverwritesACopyThatIsThere) {
  WriteBytes(path + ".new", std::string(5000, 'x'));
  EXPECT_EQ(Rebuild(Written(LetterBlock(40, 'a', 10), 40)), Whole(Counted(1, 90, 0, 0, 0)));
  EXPECT_EQ(Hex(ReadBytes(path)), Hex(Written(LetterBlock(40, 'a', 10), 40)));
}

// ---- Older files ----

TEST_F(FileRebuild, BringsAFileOfRevisionAUpToDateByteForByte) {
  EXPECT_EQ(Rebuild(kOldFile), Start() + "Analyzing " + path +
                                   " header...\n"
                                   "\tChecking signature...\n"
                                   "WARNING: \tThe file revision letters do not match.\n"
                                   "\tCurrent File Revision: C\n"
                                   "\tThe file reads: A\n"
                                   "\tBackward compatibility rules will be enforced.\n\n"
                                   "\tChecking the HeapStart value...OK\n"
                                   "The file header checks OK!\n\n"
                                   "1 variable blocks were written (57 bytes)\n"
                                   "1 variable blocks were compressed out (29 bytes)\n"
                                   "0 unrecoverable blocks were found\n" +
                                   kEnd);
  const std::string object = Bytes("31 32 33 34 44 00 00 00 39");
  EXPECT_EQ(Hex(ReadBytes(path)), Hex(Bytes("00 00 00 00 51 00 00 00 28 00 00 00 28 00 00 00"
                                            "56 42 44 42 41 53 45 43 B9 0B 00 00"
                                            "00 00 00 00 00 00 00 00 00 00 00 00"
                                            "FE FE FE FE 29 00 00 00 4E 00 00 00 00 00 00 00"
                                            "00 00 00 00 00 00 00 00 00 00 00 00") +
                                      object + ChecksumOf(object)));
}

TEST_F(FileRebuild, GivesAFileOfTheOldSignatureTheCurrentOne) {
  const std::string blocks = LetterBlock(40, 'a', 10);
  const std::string old = With(Written(blocks, 40), kSignatureAt, "VBDFILE");
  EXPECT_EQ(Rebuild(old), Start() + "Analyzing " + path +
                              " header...\n"
                              "\tChecking signature...\n"
                              "WARNING: \tThe file revision letters do not match.\n"
                              "\tCurrent File Revision: C\n"
                              "\tThe file reads: C\n"
                              "\tBackward compatibility rules will be enforced.\n\n"
                              "\tChecking the HeapStart value...OK\n"
                              "The file header checks OK!\n\n" +
                              Counted(1, 90, 0, 0, 0) + kEnd);
  EXPECT_EQ(Hex(ReadBytes(path)), Hex(Written(blocks, 40)));
}

TEST_F(FileRebuild, OfAnOldFileWithTheOldSignatureGivesTheCurrentOne) {
  Rebuild(kOldFile);
  const std::string expected = ReadBytes(path);
  Rebuild(With(kOldFile, kSignatureAt, "VBDFILE"));
  EXPECT_EQ(Hex(ReadBytes(path)), Hex(expected));
}

TEST_F(FileRebuild, GivesAFileOfAnyVersionTheCurrentOne) {
  const std::string current = Written(LetterBlock(40, 'a', 10), 40);
  for (const long version : {0L, 1L, 3000L, 4000L, -1L}) {
    Rebuild(With(current, kVersionAt, Word(version)));
    EXPECT_EQ(Hex(ReadBytes(path)), Hex(current));
  }
}

TEST_F(FileRebuild, RefusesARevisionWithoutCheckWords) {
  // Nothing tells where its blocks are.
  for (const char letter : {'B', '\0', ' '}) {
    const std::string bytes =
        With(Written(LetterBlock(40, 'a', 10), 40), kLetterAt, std::string(1, letter));
    Make(bytes);
    EXPECT_THROW(KFileRebuild(path), CFileCorrupt);
    EXPECT_EQ(Hex(ReadBytes(path)), Hex(bytes));
    EXPECT_EQ(NamesIn(folder.Path()), "study.ksb");
  }
}

// ---- Static areas ----

TEST_F(FileRebuild, CopiesTheStaticArea) {
  const std::string block = LetterBlock(50, 'a', 10);
  const std::string bytes =
      FileHeaderBytes(0, 100, 50, 50) + std::string(12, '\0') + "0123456789" + block;
  EXPECT_EQ(Rebuild(bytes), Start() + SoundStart(path) + Counted(1, 100, 0, 0, 0) +
                                "10 bytes of static area data were written\n" + kEnd);
  EXPECT_EQ(Hex(ReadBytes(path)), Hex(bytes));
}

TEST_F(FileRebuild, BringsTheStaticAreaOfAnOldFileBehindTheLongerHeader) {
  const std::string object = Word(1) + Word(54);
  const std::string old = FileHeaderBytes(0, 66, 38, 38, 'A') + "0123456789" +
                          Bytes("FE FE 00 00") + Word(28) + Word('N') + Word(0) + object +
                          ChecksumOf(object);
  Rebuild(old);
  EXPECT_EQ(Hex(ReadBytes(path)), Hex(FileHeaderBytes(0, 90, 50, 50) + std::string(12, '\0') +
                                      "0123456789" + Live(1, 78, "")));
}

TEST_F(FileRebuild, DoesNotAskForTheIndexOfAFileWithAStaticArea) {
  const std::string bytes = FileHeaderBytes(0, 140, 50, 50) + std::string(12, '\0') + "0123456789" +
                            LetterBlock(50, 'a', 10) + std::string(40, '?');
  EXPECT_EQ(Rebuild(bytes), Start() + SoundStart(path) + Counted(1, 100, 0, 0, 1) +
                                "10 bytes of static area data were written\n" + kEnd);
}

// ---- Files that can't be rebuilt ----

class FileRebuildRefusal : public FileRebuild {
 protected:
  template <class Error>
  void ExpectRefusal(const std::string& text) {
    const std::string names = NamesIn(folder.Path());
    EXPECT_EQ(ReportUntil<Error>([this] { KFileRebuild(path); }), Start() + text + kEnd);
    EXPECT_EQ(NamesIn(folder.Path()), names);
  }
};

TEST_F(FileRebuildRefusal, OfAMissingFile) {
  ExpectRefusal<CNoFileExists>(Failure("No file exists"));
}

TEST_F(FileRebuildRefusal, OfAFileThatItsOwnerMayNotRead) {
  Make(kSampleFile);
  chmod(path.c_str(), 0200);
  ExpectRefusal<CFileRead>(Failure("File read error"));
}

TEST_F(FileRebuildRefusal, OfAFileThatItsOwnerMayNotWrite) {
  Make(kSampleFile);
  chmod(path.c_str(), 0400);
  ExpectRefusal<CFileNotWriteable>(Failure("File not writeable"));
}

TEST_F(FileRebuildRefusal, OfAnotherFile) {
  Make(std::string(100, 'x'));
  ExpectRefusal<CWrongFileType>(Failure("Wrong file type"));
}

TEST_F(FileRebuildRefusal, OfAFileShorterThanItsHeader) {
  for (const std::size_t size : {0U, 27U}) {
    Make(kSampleFile.substr(0, size));
    ExpectRefusal<CFileRead>(Failure("File read error"));
  }
}

TEST_F(FileRebuildRefusal, OfAFileThatAnotherProcessHasLocked) {
  Make(kSampleFile);
  OtherProcess holder([this](const OtherProcess::Pause& pause) {
    std::FILE* file = std::fopen(path.c_str(), "r+b");
    NSFLock(file);
    pause();
    std::fclose(file);
  });
  ExpectRefusal<CFileLock>(Failure("Error locking the file"));
  holder.Finish();
}

TEST_F(FileRebuildRefusal, WhereTheCopyCannotBeMade) {
  Make(kSampleFile);
  fs::create_directory(path + ".new");
  ExpectRefusal<CFileCreation>(SoundStart(path) + Failure("File creation error"));
}

// ---- Studies ----

class FileRebuildOfAStudy : public StudyRun {
 protected:
  /// 60 Inputs in a tree of two levels, of which every fourth was removed.
  FileRebuildOfAStudy() {
    OpenDatabase(base);
    {
      const CLock lock(GetPOD(), 0);
      for (int id = 1; id <= 60; ++id) InputOf(id).PutObject();
      for (int id = 4; id <= 60; id += 4) InputOf(id).RemoveObject();
    }
    CloseDatabase();
  }

  static CInput InputOf(int id) {
    CInput input(GetPOD());
    input.m_nID = id;
    input.m_strName = "width " + std::to_string(id);
    return input;
  }
};

TEST_F(FileRebuildOfAStudy, AndOfItsIndexKeepsEveryObject) {
  KFileRebuild(data);
  KIndexRebuildCheck(base, true);
  EXPECT_EQ(FaultsOfStudy(base), "");
  EXPECT_EQ(ReadRawFile(data).freeSpace, 0);
  OpenDatabase(base);
  for (int id = 1; id <= 60; ++id) {
    CInput input(GetPOD());
    input.m_nID = id;
    ASSERT_EQ(input.GetObject(), id % 4 != 0) << id;
    if (id % 4 != 0) {
      EXPECT_EQ(input.m_strName, "width " + std::to_string(id));
    }
  }
  CloseDatabase();
}

TEST_F(FileRebuildOfAStudy, DoesNotFitTheOldIndex) {
  // Objects have moved: what a key leads to is another object, or none.
  KFileRebuild(data);
  EXPECT_NE(FaultsOfStudy(base), "");
}

TEST_F(FileRebuildOfAStudy, PutOnTheIndexMakesItUnusableUntilItIsRebuilt) {
  const Keys keys = KeysOf(index);
  KFileRebuild(index);
  EXPECT_NE(FaultsOfStudy(base), "");
  EXPECT_THROW(KIndexRebuildCheck(base, false), CKestErr);
  KIndexRebuildCheck(base, true);
  EXPECT_EQ(FaultsOfStudy(base), "");
  EXPECT_EQ(KeysOf(index), keys);
  KIndexRebuildCheck(base, false);
}

TEST_F(FileRebuildOfAStudy, PutOnTheIndexCopiesItsStaticArea) {
  const std::string before = ReadBytes(index);
  const std::string report = ReportOf([this] { KFileRebuild(index); });
  EXPECT_TRUE(
      report.ends_with("1000 bytes of static area data were written\n"
                       "***** End -- Rebuild Data File *****\n\n"))
      << report;
  const std::string after = ReadBytes(index);
  EXPECT_EQ(after.substr(28, 1012), before.substr(28, 1012));
  // The second word of a node is where its left branch was.
  EXPECT_EQ(WordAt(after, 1068 + 4), 1068);
}

}  // namespace
