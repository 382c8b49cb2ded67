#include "store/vbdbase.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "store/KestErr.h"
#include "tests/support/BlockFile.h"
#include "tests/support/Bytes.h"
#include "tests/support/Descriptors.h"
#include "tests/support/TempFolder.h"

// Creating, opening and closing, and what these tell about the object.

namespace {

class BlockFiles : public testing::Test {
 protected:
  /// A healthy file at `path`, made by the library.
  void MakeFile() const {
    vbDatabase file;
    file.Create(path, 0, 'C');
  }

  TempFolder folder;
  const std::string path = folder / "file.vbd";
};

/// Open, ready, readable and writeable flag.
std::string Flags(const vbDatabase& file) {
  std::string flags;
  for (const bool flag : {file.IsOpen(), file.IsReady(), file.IsReadable(), file.IsWriteable()}) {
    flags += flag ? '1' : '0';
  }
  return flags;
}

void ExpectClosed(const vbDatabase& file) {
  EXPECT_EQ(Flags(file), "0000");
  EXPECT_EQ(file.GetFileName(), "closed.vbd");
  EXPECT_EQ(file.Stream(), nullptr);
}

const std::string textFile = "A text file that is somewhat longer than a file header.\n";

}  // namespace

TEST_F(BlockFiles, NewDataFileIsFortyBytesLong) {
  vbDatabase file;
  file.Create(path, 0, 'C');
  file.Close();
  EXPECT_EQ(Hex(ReadBytes(path)),
            "00 00 00 00 28 00 00 00 28 00 00 00 00 00 00 00 "
            "56 42 44 42 41 53 45 43 B9 0B 00 00 "
            "00 00 00 00 00 00 00 00 00 00 00 00");
}

TEST_F(BlockFiles, NewFileWithAStaticAreaIsShorterThanItsHeaderSays) {
  vbDatabase file;
  file.Create(path, 1000, 'C');
  EXPECT_EQ(file.GetHeapStart(), 1040);
  EXPECT_EQ(file.GetEOF(), 1040);
  EXPECT_EQ(file.StaticArea(), 1000);
  EXPECT_EQ(file.Length(), 40);
  file.Close();
  EXPECT_EQ(Hex(ReadBytes(path)),
            "00 00 00 00 10 04 00 00 10 04 00 00 00 00 00 00 "
            "56 42 44 42 41 53 45 43 B9 0B 00 00 "
            "00 00 00 00 00 00 00 00 00 00 00 00");
}

TEST_F(BlockFiles, FirstBlockFillsTheStaticArea) {
  vbDatabase file;
  file.Create(path, 1000, 'C');
  EXPECT_EQ(file.Alloc(8, vbReclaimFirstFit), 1040 + 28);
  EXPECT_EQ(file.Length(), 1040 + 28 + 8 + 4);
}

TEST_F(BlockFiles, CreateTruncatesAnOldFile) {
  WriteBytes(path, std::string(500, 'x'));
  vbDatabase file;
  file.Create(path, 0, 'C');
  EXPECT_EQ(file.Length(), 40);
}

TEST_F(BlockFiles, CreateRefusesAStaticAreaThatCannotBe) {
  for (const long size : {-1L, 0x7FFFFFFFL - 39}) {
    vbDatabase file;
    EXPECT_THROW(file.Create(path, size, 'C'), CInvalidArgument) << size;
    file.Abandon();
  }
}

TEST_F(BlockFiles, FreshObjectIsClosed) {
  const vbDatabase file;
  ExpectClosed(file);
  EXPECT_EQ(file.GetRevisionLetter(), 'C');
  EXPECT_EQ(file.Length(), -1);
}

TEST_F(BlockFiles, CreatedFileIsOpenForBoth) {
  vbDatabase file;
  file.Create(path, 0, 'C');
  EXPECT_EQ(Flags(file), "1111");
  EXPECT_EQ(file.GetFileName(), path);
  EXPECT_EQ(file.GetVersion(), 3001);
  EXPECT_EQ(file.GetSignature(), "VBDBASE");
  EXPECT_EQ(file.LastOperation(), 0);
}

TEST_F(BlockFiles, OpenForReadingIsNotWriteable) {
  MakeFile();
  vbDatabase file;
  file.Open(path, vbReadOnly);
  EXPECT_EQ(Flags(file), "1110");
  EXPECT_EQ(file.GetFileName(), path);
  file.Abandon();
}

TEST_F(BlockFiles, OpenInEveryOtherModeIsForBoth) {
  MakeFile();
  for (const int mode : {1, 2, 7}) {
    vbDatabase file;
    file.Open(path, static_cast<vbDatabaseAccessMode>(mode));
    EXPECT_EQ(Flags(file), "1111") << mode;
  }
}

TEST_F(BlockFiles, OpenTakesTheHeaderFromTheFile) {
  WriteBytes(path, Bytes("01 02 00 00 04 03 00 00 06 05 00 00 08 07 00 00"
                         "56 42 44 42 41 53 45 43 0A 09 00 00"));
  vbDatabase file;
  file.Open(path, vbReadWrite);
  EXPECT_EQ(file.GetVBDFreeSpace(), 0x0201);
  EXPECT_EQ(file.GetEOF(), 0x0304);
  EXPECT_EQ(file.GetHeapStart(), 0x0506);
  EXPECT_EQ(file.GetHighestVB(), 0x0708);
  EXPECT_EQ(file.GetSignature(), "VBDBASE");
  EXPECT_EQ(file.GetRevisionLetter(), 'C');
  EXPECT_EQ(file.GetVersion(), 0x090A) << "any version opens";
  EXPECT_EQ(file.StaticArea(), 0x0506 - 40);
  EXPECT_EQ(file.FileHeader().FreeSpace, 0x0201);
}

TEST_F(BlockFiles, OpenTakesTheOldFamilyToo) {
  WriteBytes(path, Bytes("00 00 00 00 1C 00 00 00 1C 00 00 00 00 00 00 00"
                         "56 42 44 46 49 4C 45 41 D0 07 00 00"));
  vbDatabase file;
  file.Open(path, vbReadWrite);
  EXPECT_EQ(file.GetSignature(), "VBDFILE");
  EXPECT_EQ(file.GetRevisionLetter(), 'A');
}

TEST_F(BlockFiles, OpenLooksAtAllSevenCharactersOfTheSignature) {
  for (std::size_t i = 0; i < 7; ++i) {
    std::string bytes = FileOf("");
    bytes[16 + i] = 'x';
    WriteBytes(path, bytes);
    vbDatabase file;
    EXPECT_THROW(file.Open(path, vbReadWrite), CWrongFileType) << i;
  }
}

TEST_F(BlockFiles, TextFileIsOfTheWrongType) {
  WriteBytes(path, textFile);
  for (const auto mode : {vbReadOnly, vbReadWrite}) {
    const auto before = OpenDescriptors();
    {
      vbDatabase file;
      EXPECT_THROW(file.Open(path, mode), CWrongFileType);
      EXPECT_EQ(Flags(file), mode == vbReadOnly ? "0110" : "0111");
      EXPECT_THROW(file.Read(nullptr, 0, 0), CFileNotReady);
    }
    EXPECT_EQ(OpenDescriptors(), before);
    EXPECT_EQ(ReadBytes(path), textFile);
  }
}

TEST_F(BlockFiles, ClosingAfterTheWrongTypeGivesTheDescriptorBack) {
  WriteBytes(path, textFile);
  const auto before = OpenDescriptors();
  vbDatabase file;
  EXPECT_THROW(file.Open(path, vbReadWrite), CWrongFileType);
  file.Close();
  EXPECT_EQ(OpenDescriptors(), before);
  ExpectClosed(file);
  EXPECT_EQ(ReadBytes(path), textFile);
}

TEST_F(BlockFiles, ObjectIsUsableAgainAfterTheWrongType) {
  WriteBytes(path, textFile);
  const auto before = OpenDescriptors();
  vbDatabase file;
  EXPECT_THROW(file.Open(path, vbReadWrite), CWrongFileType);
  file.Create(folder / "other.vbd", 0, 'C');
  EXPECT_EQ(Flags(file), "1111");
  file.Close();
  EXPECT_EQ(OpenDescriptors(), before);
  EXPECT_EQ(ReadBytes(path), textFile);
}

TEST_F(BlockFiles, FileShorterThanItsHeaderIsAReadErrorAndStaysAsItIs) {
  for (const std::size_t size : {0U, 1U, 27U}) {
    const std::string bytes = FileOf("").substr(0, size);
    WriteBytes(path, bytes);
    for (const auto mode : {vbReadOnly, vbReadWrite}) {
      const auto before = OpenDescriptors();
      {
        vbDatabase file;
        EXPECT_THROW(file.Open(path, mode), CFileRead) << size;
      }
      EXPECT_EQ(OpenDescriptors(), before);
      EXPECT_EQ(Hex(ReadBytes(path)), Hex(bytes));
    }
  }
}

TEST_F(BlockFiles, HeaderAloneIsEnoughToOpen) {
  WriteBytes(path, FileOf("").substr(0, 28));
  vbDatabase file;
  file.Open(path, vbReadWrite);
  EXPECT_EQ(Flags(file), "1111");
}

TEST_F(BlockFiles, FolderCannotBeOpened) {
  const auto before = OpenDescriptors();
  vbDatabase file;
  EXPECT_THROW(file.Open(folder.Path(), vbReadWrite), CFileOpen);
  EXPECT_THROW(file.Open(folder.Path(), vbReadOnly), CFileRead);
  file.Abandon();
  EXPECT_EQ(OpenDescriptors(), before);
}

TEST_F(BlockFiles, MissingFileCannotBeOpened) {
  for (const auto mode : {vbReadOnly, vbReadWrite}) {
    vbDatabase file;
    EXPECT_THROW(file.Open(path, mode), CFileOpen);
    ExpectClosed(file);
    EXPECT_FALSE(vbDatabase::Exists(path));
  }
}

TEST_F(BlockFiles, FileInAMissingFolderCannotBeCreated) {
  vbDatabase file;
  EXPECT_THROW(file.Create(folder / "missing/file.vbd", 0, 'C'), CFileCreation);
  ExpectClosed(file);
}

TEST_F(BlockFiles, OpenObjectTakesNoSecondFile) {
  vbDatabase file;
  file.Create(path, 0, 'C');
  const std::string other = folder / "other.vbd";
  EXPECT_THROW(file.Create(other, 0, 'C'), CDatabaseOpen);
  EXPECT_THROW(file.Open(path, vbReadWrite), CDatabaseOpen);
  EXPECT_FALSE(vbDatabase::Exists(other));
  EXPECT_EQ(Flags(file), "1111");
  EXPECT_EQ(file.GetFileName(), path);
}

TEST_F(BlockFiles, CloseWritesTheHeaderAndEndsInTheClosedState) {
  const auto before = OpenDescriptors();
  vbDatabase file;
  file.Create(path, 0, 'C');
  file.Alloc(4, vbReclaimFirstFit);
  EXPECT_EQ(HexAt(path, 4, 4), "28 00 00 00") << "Alloc changes the header in memory only";
  file.Close();
  EXPECT_EQ(HexAt(path, 0, 16), "00 00 00 00 4C 00 00 00 28 00 00 00 28 00 00 00");
  ExpectClosed(file);
  EXPECT_EQ(OpenDescriptors(), before);
}

TEST_F(BlockFiles, CloseOfAClosedObjectDoesNothing) {
  vbDatabase file;
  file.Close();
  file.Create(path, 0, 'C');
  file.Close();
  file.Close();
  ExpectClosed(file);
}

TEST_F(BlockFiles, ClosedObjectOpensAgain) {
  vbDatabase file;
  file.Create(path, 0, 'C');
  file.Alloc(4, vbReclaimFirstFit);
  file.Close();
  file.Open(path, vbReadWrite);
  EXPECT_EQ(file.GetEOF(), 76);
  EXPECT_EQ(Flags(file), "1111");
}

TEST_F(BlockFiles, CloseOfAReadOnlyFileFailsAndClosesAllTheSame) {
  MakeFile();
  const std::string bytes = ReadBytes(path);
  const auto before = OpenDescriptors();
  vbDatabase file;
  file.Open(path, vbReadOnly);
  EXPECT_THROW(file.Close(), CFileNotWriteable);
  ExpectClosed(file);
  EXPECT_EQ(OpenDescriptors(), before);
  EXPECT_EQ(Hex(ReadBytes(path)), Hex(bytes));
}

TEST_F(BlockFiles, DestructorCloses) {
  const auto before = OpenDescriptors();
  {
    vbDatabase file;
    file.Create(path, 0, 'C');
    file.Alloc(4, vbReclaimFirstFit);
  }
  EXPECT_EQ(OpenDescriptors(), before);
  EXPECT_EQ(HexAt(path, 4, 4), "4C 00 00 00");
}

TEST_F(BlockFiles, DestructorOfAReadOnlyFileFailsAsCloseDoes) {
  MakeFile();
  const auto before = OpenDescriptors();
  auto* file = new vbDatabase;
  file->Open(path, vbReadOnly);
  EXPECT_THROW(delete file, CFileNotWriteable);
  EXPECT_EQ(OpenDescriptors(), before);
}

TEST_F(BlockFiles, DestructorKeepsQuietBehindAnotherException) {
  MakeFile();
  const auto before = OpenDescriptors();
  const auto fail = [&] {
    vbDatabase file;
    file.Open(path, vbReadOnly);
    throw std::domain_error("the first failure");
  };
  EXPECT_THROW(fail(), std::domain_error);
  EXPECT_EQ(OpenDescriptors(), before);
}

TEST_F(BlockFiles, AbandonClosesWithoutWritingTheHeader) {
  const auto before = OpenDescriptors();
  vbDatabase file;
  file.Create(path, 0, 'C');
  file.Alloc(4, vbReclaimFirstFit);
  file.Abandon();
  ExpectClosed(file);
  EXPECT_EQ(OpenDescriptors(), before);
  EXPECT_EQ(HexAt(path, 4, 4), "28 00 00 00");
}

TEST_F(BlockFiles, ExistsAndFileSize) {
  EXPECT_FALSE(vbDatabase::Exists(path));
  EXPECT_EQ(vbDatabase::FileSize(path), -1);
  WriteBytes(path, "seventeen letters");
  EXPECT_TRUE(vbDatabase::Exists(path));
  EXPECT_EQ(vbDatabase::FileSize(path), 17);
}

TEST_F(BlockFiles, SignatureWithAZeroByteIsOutOfRange) {
  const vbDatabase fresh;
  EXPECT_THROW(fresh.GetSignature(), std::out_of_range);
  std::string bytes = FileOf("");
  bytes[16 + 6] = '\0';
  WriteBytes(path, bytes);
  vbDatabase file;
  EXPECT_THROW(file.Open(path, vbReadOnly), CWrongFileType);
  EXPECT_THROW(file.GetSignature(), std::out_of_range);
}

TEST_F(BlockFiles, FlushWritesTheHeader) {
  vbDatabase file;
  file.Create(path, 0, 'C');
  file.Alloc(4, vbReclaimFirstFit);
  file.Flush();
  EXPECT_EQ(HexAt(path, 4, 4), "4C 00 00 00");
  EXPECT_EQ(file.LastOperation(), 4);
}

TEST_F(BlockFiles, FlushNeedsTheWriteableFlag) {
  vbDatabase file;
  EXPECT_THROW(file.Flush(), CFileNotReady);
  MakeFile();
  file.Open(path, vbReadOnly);
  EXPECT_THROW(file.Flush(), CFileNotReady);
  file.Abandon();
}

TEST_F(BlockFiles, ReadFileHdrTakesWhatAnotherProcessWrote) {
  vbDatabase file;
  file.Create(path, 0, 'C');
  PatchBytes(path, 0, Bytes("FF FF FF FF 50 00 00 00"));
  file.Refresh();
  EXPECT_EQ(file.GetEOF(), 40);
  file.ReadFileHdr();
  EXPECT_EQ(file.GetVBDFreeSpace(), vbFSListCorrupt);
  EXPECT_EQ(file.GetEOF(), 80);
}

TEST_F(BlockFiles, WriteFileHdrPutsTheHeaderInMemoryIntoTheFile) {
  vbDatabase file;
  file.Create(path, 0, 'C');
  PatchBytes(path, 0, std::string(28, 'x'));
  file.Refresh();
  file.WriteFileHdr();
  EXPECT_EQ(HexAt(path, 0, 28), HeaderOf(file));
}

TEST_F(BlockFiles, MayBeDerivedFrom) {
  class Recording : public vbDatabase {
   public:
    void Create(const std::string& p, vbINT32 s, signed char r) override {
      calls += "Create ";
      vbDatabase::Create(p, s, r);
    }
    void Open(const std::string& p, vbDatabaseAccessMode m) override {
      calls += "Open ";
      vbDatabase::Open(p, m);
    }
    void Close() override {
      calls += "Close ";
      vbDatabase::Close();
    }
    void Flush() override {
      calls += "Flush ";
      vbDatabase::Flush();
    }
    vbINT32 Alloc(unsigned long s, vbDatabaseReclaimMethod m) override {
      calls += "Alloc ";
      return vbDatabase::Alloc(s, m);
    }
    std::string calls;
  } file;
  vbDatabase& base = file;
  base.Create(path, 0, 'C');
  base.Alloc(9, vbReclaimFirstFit);
  base.Flush();
  base.Close();
  base.Open(path, vbReadWrite);
  EXPECT_EQ(file.calls, "Create Alloc Flush Close Open ");
}

TEST(BlockFileConstants, AreThoseOfTheFormat) {
  EXPECT_EQ(std::string(vbDatabase::VBDSignature, 8), "VBDBASEC");
  EXPECT_EQ(std::string(vbDatabase::VBDSignatureOld, 8), "VBDFILEA");
  EXPECT_EQ(vbDatabase::VBDVersion, 3001);
  EXPECT_EQ(vbDatabase::VBDInternalCheckWord, 0xFEFEFEFEUL);
  EXPECT_EQ(vbDatabase::VBDInternalCheckWordOld, 0xFEFEUL);
  EXPECT_EQ(vbCheckWord, 0xFEFEFEFEUL);
  EXPECT_EQ(vbCheckWordOld, 0xFEFEUL);
  EXPECT_EQ(vbStartOfFile, 0);
  EXPECT_EQ(vbCurrAddress, -1);
  EXPECT_EQ(vbFSListCorrupt, -1);
  EXPECT_EQ(vbNormalBlock, 'N');
  EXPECT_STREQ(vbDefaultFileName, "closed.vbd");
}

TEST(BlockFileConstants, FreshBlockHeaderHasAStatusOfItsOwn) {
  const vbBlockHeader header;
  EXPECT_EQ(Hex({reinterpret_cast<const char*>(&header), sizeof header}),
            "FE FE FE FE 00 00 00 00 42 00 00 00 00 00 00 00");
}
