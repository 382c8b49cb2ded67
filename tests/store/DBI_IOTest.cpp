#include "store/DBI_IO.h"

#include <gtest/gtest.h>
#include <stdio_ext.h>

#include <filesystem>
#include <string>
#include <vector>

#include "control/DesignControl.h"
#include "definition/DBCtrl.h"
#include "definition/GPoint.h"
#include "definition/Input.h"
#include "definition/Resp.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/vbdbase.h"
#include "tests/environment/ChangedVariable.h"
#include "tests/support/Bytes.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/Log.h"
#include "tests/support/RawFile.h"
#include "tests/support/StoredRecord.h"
#include "tests/support/Study.h"

namespace {

/// A folder to work in, with no study open before and after.
class EntryPoints : public testing::Test {
 protected:
  ~EntryPoints() override {
    try {
      CloseDatabase();
    } catch (...) {
      ADD_FAILURE() << "a study that can't be closed stays behind";
    }
  }

  bool Exists(const std::string& name) const { return std::filesystem::exists(folder / name); }

  TempFolder folder;
};

// ---- A fresh study ----

/// Class IDs of the objects of a fresh study, in file order.
const std::vector<long> singletonClasses = {16000, 18000, 15000};

TEST_F(EntryPoints, AFreshStudyHoldsExactlyItsSingletons) {
  OpenDatabase(folder / "study");
  CloseDatabase();
  const RawFile data = ReadRawFile(folder / "study.ksb");
  const RawFile index = ReadRawFile(folder / "study.kx");
  std::vector<long> classes;
  for (const RawBlock& block : data.blocks) {
    const long classID = WordAt(block.object, 0);
    classes.push_back(classID);
    const std::map<std::string, long> keys{{"          1", block.ObjectAddress()}};
    EXPECT_EQ(ReadRawTree(index, classID / 1000 - 1), keys);
  }
  EXPECT_EQ(classes, singletonClasses);
  EXPECT_EQ(FaultOf(data), "");
  EXPECT_EQ(FaultOf(index), "");
}

TEST_F(EntryPoints, LostCountersAreMadeBehindTheIDsInUse) {
  OpenDatabase(folder / "study");
  {
    const CLock lock(GetPOD(), 0);
    for (const int id : {5, 2}) {
      CInput input(GetPOD());
      input.m_nID = id;
      input.PutObject();
    }
    CResp response(GetPOD());
    response.m_nID = 7;
    response.PutObject();
    ASSERT_TRUE(CDBCtrl(GetPOD()).RemoveObject());
  }
  OpenDatabase(folder / "study");
  CDBCtrl counters(GetPOD());
  EXPECT_EQ(counters.GetInputID(false), 6);
  EXPECT_EQ(counters.GetRespID(false), 8);
  EXPECT_EQ(counters.GetAuxID(false), 1);
}

TEST_F(EntryPoints, CountersWhoseKeyLeadsToAFreedBlockAreMadeBehindTheIDsInUse) {
  OpenDatabase(folder / "study");
  {
    const CLock lock(GetPOD(), 0);
    CInput input(GetPOD());
    input.m_nID = 5;
    input.PutObject();
    CDBCtrl counters(GetPOD());
    ASSERT_TRUE(counters.FindObject());
    GetPOD()->DataFile()->Remove(counters.ObjectAddress());
  }
  OpenDatabase(folder / "study");
  EXPECT_EQ(CDBCtrl(GetPOD()).GetInputID(true), 6);
  EXPECT_EQ(CDBCtrl(GetPOD()).GetInputID(true), 7);
  EXPECT_EQ(CDBCtrl(GetPOD()).CountObjects(), 1);
}

TEST_F(EntryPoints, SingletonsBehindTheEndOfTheHeaderAreBroughtBeforeIt) {
  OpenDatabase(folder / "study");
  CloseDatabase();
  // As a first open leaves it whose last write failed.
  PatchBytes(folder / "study.ksb", 4, Bytes("28 00 00 00"));
  OpenDatabase(folder / "study");
  CInput input(GetPOD());
  input.m_nID = 5;
  input.PutObject();
  EXPECT_EQ(CDBCtrl(GetPOD()).CountObjects(), 1);
  EXPECT_TRUE(CDBCtrl(GetPOD()).GetObject());
  EXPECT_TRUE(CDesignControl(GetPOD()).GetObject());
  EXPECT_TRUE(CGPoint(GetPOD()).GetObject());
  CloseDatabase();
  EXPECT_EQ(FaultOf(ReadRawFile(folder / "study.ksb")), "");
}

/// A block of revision C in normal use.
std::string BlockWith(const std::string& object) {
  return Bytes("FE FE FE FE" + HexWord(static_cast<long>(28 + object.size() + 4)) +
               "4E 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00") +
         object + ChecksumOf(object);
}

TEST_F(EntryPoints, AFreshDataFileByteForByte) {
  OpenDatabase(folder / "study");
  CDesignControl control(GetPOD());
  ASSERT_TRUE(control.GetObject());
  const std::string settings = Bytes("50 46 00 00 84 00 00 00") + StoredRecord(control);
  CloseDatabase();
  // The counters' block of 64 bytes at 40, the settings' of 28 + 8 + 1054 + 4 at 104, the points'
  // at 1198.
  const std::string fileHeader =
      "00 00 00 00 EE 04 00 00 28 00 00 00 AE 04 00 00 56 42 44 42 41 53 45 43 B9 0B 00 00 "
      "00 00 00 00 00 00 00 00 00 00 00 00";
  const std::string counters =
      "80 3E 00 00 44 00 00 00 02 00 00 00 "
      "01 00 00 00 01 00 00 00 01 00 00 00 01 00 00 00 00 00 00 00";
  const std::string points =
      "98 3A 00 00 CA 04 00 00 02 00 00 00 "
      "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00";
  EXPECT_EQ(Hex(ReadBytes(folder / "study.ksb")),
            Hex(Bytes(fileHeader) + BlockWith(Bytes(counters)) + BlockWith(settings) +
                BlockWith(Bytes(points))));
}

TEST_F(EntryPoints, AFreshIndexHas25TreesOfOrder32) {
  OpenDatabase(folder / "study");
  EXPECT_EQ(GetPOD()->IndexTable()->Count(), 25U);
  EXPECT_EQ(GetPOD()->Indexing(), 1);
  EXPECT_TRUE(GetPOD()->DataFile()->IsWriteable());
  CloseDatabase();
  EXPECT_EQ(HexAt(folder / "study.kx", 40, 8), "20 00 00 00 4C 00 00 00");
  EXPECT_EQ(ReadBytes(folder / "study.kx").size(), 60940U);
}

template <class Singleton>
void ExpectMadeAgain(const std::string& base) {
  OpenDatabase(base);
  ASSERT_TRUE(Singleton(GetPOD()).RemoveObject());
  OpenDatabase(base);
  EXPECT_TRUE(Singleton(GetPOD()).FindObject());
  EXPECT_EQ(Singleton(GetPOD()).CountObjects(), 1);
}

TEST_F(EntryPoints, AMissingSingletonIsMadeAgain) {
  ExpectMadeAgain<CDBCtrl>(folder / "study");
  ExpectMadeAgain<CDesignControl>(folder / "study");
  ExpectMadeAgain<CGPoint>(folder / "study");
}

TEST_F(EntryPoints, SingletonsThatAreThereStay) {
  OpenDatabase(folder / "study");
  CGPoint points(GetPOD());
  points.m_vnUsed = {1, 0};
  points.PutObject();
  CloseDatabase();
  const std::string before = ReadBytes(folder / "study.ksb");
  OpenDatabase(folder / "study");
  CGPoint found(GetPOD());
  ASSERT_TRUE(found.GetObject());
  EXPECT_EQ(found.m_vnUsed, points.m_vnUsed);
  CloseDatabase();
  EXPECT_EQ(ReadBytes(folder / "study.ksb"), before);
}

// ---- Names ----

TEST_F(EntryPoints, AllThreeSpellingsNameTheSameFiles) {
  for (const char* name : {"study", "study.ksb", "study.KSB"}) {
    SCOPED_TRACE(name);
    OpenDatabase(folder / name);
    EXPECT_EQ(GetPOD()->DataFile()->GetFileName(), folder / "study.ksb");
    EXPECT_EQ(GetPOD()->IndexFile()->GetFileName(), folder / "study.kx");
    EXPECT_EQ(GetPOD()->LockPath(), folder / "study.lck");
    EXPECT_EQ(CGPoint(GetPOD()).CountObjects(), 1);
  }
  EXPECT_FALSE(Exists("study.KSB"));
}

TEST_F(EntryPoints, AMixedCaseExtensionIsPartOfTheName) {
  for (const char* name : {"a.Ksb", "a.kSB", "a.ksB"}) {
    OpenDatabase(folder / name);
    CloseDatabase();
    EXPECT_TRUE(Exists(std::string(name) + ".ksb"));
    EXPECT_TRUE(Exists(std::string(name) + ".kx"));
  }
}

TEST_F(EntryPoints, OnlyTheLastOfTwoExtensionsIsTaken) {
  OpenDatabase(folder / "study.ksb.ksb");
  CloseDatabase();
  EXPECT_TRUE(Exists("study.ksb.ksb"));
  EXPECT_TRUE(Exists("study.ksb.kx"));
  EXPECT_FALSE(Exists("study.kx"));
}

TEST_F(EntryPoints, AnotherExtensionIsPartOfTheName) {
  OpenDatabase(folder / "study.kx");
  CloseDatabase();
  EXPECT_TRUE(Exists("study.kx.ksb"));
  EXPECT_TRUE(Exists("study.kx.kx"));
}

TEST_F(EntryPoints, ShortNamesGetTheExtension) {
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder.Path());
  for (const char* name : {"a", "ksb", "four"}) {
    OpenDatabase(name);
    CloseDatabase();
    EXPECT_TRUE(Exists(std::string(name) + ".ksb"));
    EXPECT_TRUE(Exists(std::string(name) + ".kx"));
  }
  std::filesystem::current_path(before);
}

TEST_F(EntryPoints, ANameOfTheExtensionAloneHasAnEmptyBase) {
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder.Path());
  OpenDatabase(".ksb");
  EXPECT_EQ(GetPOD()->LockPath(), ".lck");
  CloseDatabase();
  EXPECT_TRUE(Exists(".ksb"));
  EXPECT_TRUE(Exists(".kx"));
  std::filesystem::current_path(before);
}

// ---- One study at a time ----

TEST_F(EntryPoints, NothingIsOpenAtFirst) {
  EXPECT_FALSE(IsOpen());
  EXPECT_EQ(GetPOD(), nullptr);
  EXPECT_EQ(pPOD, nullptr);
  EXPECT_NO_THROW(CloseDatabase());
}

TEST_F(EntryPoints, AnOpenStudyIsTheProcesssOne) {
  OpenDatabase(folder / "study");
  EXPECT_TRUE(IsOpen());
  EXPECT_NE(GetPOD(), nullptr);
  EXPECT_EQ(GetPOD(), pPOD);
  CloseDatabase();
  EXPECT_FALSE(IsOpen());
  EXPECT_EQ(pPOD, nullptr);
}

TEST_F(EntryPoints, ASecondStudyClosesTheFirst) {
  OpenDatabase(folder / "first");
  OpenDatabase(folder / "second");
  EXPECT_EQ(GetPOD()->DataFile()->GetFileName(), folder / "second.ksb");
  EXPECT_EQ(FaultOf(ReadRawFile(folder / "first.ksb")), "");
  EXPECT_EQ(FaultOf(ReadRawFile(folder / "first.kx")), "");
  EXPECT_FALSE(Exists("first.lck"));
}

TEST_F(EntryPoints, AFailedOpenHasClosedTheFirstStudyToo) {
  OpenDatabase(folder / "first");
  EXPECT_THROW(OpenDatabase(folder / "\xE4"), CNonASCIIDatabase);
  EXPECT_FALSE(IsOpen());
}

TEST_F(EntryPoints, NoLockStaysBehind) {
  OpenDatabase(folder / "study");
  EXPECT_FALSE(Exists("study.lck"));
  CloseDatabase();
  EXPECT_FALSE(Exists("study.lck"));
}

// ---- Closing that fails ----

TEST_F(EntryPoints, AStudyThatCannotBeLockedStaysOpen) {
  OpenDatabase(folder / "study");
  std::filesystem::create_directory(folder / "study.lck");
  POD* const pod = GetPOD();
  EXPECT_THROW(CloseDatabase(), CFileLock);
  EXPECT_EQ(GetPOD(), pod);
  EXPECT_TRUE(pod->DataFile()->IsOpen());
  std::filesystem::remove(folder / "study.lck");
  EXPECT_TRUE(CGPoint(pod).FindObject());
}

TEST_F(EntryPoints, ACloseThatFailsKeepsTheHandle) {
  OpenDatabase(folder / "study");
  {
    const FileSizeLimit noWrites(0);
    EXPECT_THROW(CloseDatabase(), CFileWrite);
  }
  EXPECT_TRUE(IsOpen());
  EXPECT_NO_THROW(CloseDatabase());
  EXPECT_FALSE(IsOpen());
}

TEST_F(EntryPoints, AStudyThatCannotBeClosedIsNotReplaced) {
  OpenDatabase(folder / "first");
  std::filesystem::create_directory(folder / "first.lck");
  EXPECT_THROW(OpenDatabase(folder / "second"), CFileLock);
  EXPECT_EQ(GetPOD()->DataFile()->GetFileName(), folder / "first.ksb");
  EXPECT_FALSE(Exists("second.ksb"));
  std::filesystem::remove(folder / "first.lck");
}

// ---- Buffering ----

bool IsBuffered(const vbDatabase* file) {
  return __fbufsize(file->Stream()) > 1;
}

TEST_F(EntryPoints, FilesAreBuffered) {
  const ChangedVariable variable("KEST_NOIOBUF", std::nullopt);
  OpenDatabase(folder / "study");
  EXPECT_FALSE(isNoBufSet);
  EXPECT_TRUE(IsBuffered(GetPOD()->DataFile()));
  EXPECT_TRUE(IsBuffered(GetPOD()->IndexFile()));
}

TEST_F(EntryPoints, TheEnvironmentSwitchesBufferingOffWithAnyValue) {
  for (const char* value : {"", "0", "1", "no"}) {
    SCOPED_TRACE(value);
    const ChangedVariable variable("KEST_NOIOBUF", value);
    OpenDatabase(folder / "study");
    EXPECT_TRUE(isNoBufSet);
    EXPECT_FALSE(IsBuffered(GetPOD()->DataFile()));
    EXPECT_FALSE(IsBuffered(GetPOD()->IndexFile()));
  }
}

TEST_F(EntryPoints, TheEnvironmentIsLookedAtOnEveryOpenEvenOneThatFails) {
  {
    const ChangedVariable variable("KEST_NOIOBUF", "1");
    EXPECT_THROW(OpenDatabase("\xE4"), CNonASCIIDatabase);
    EXPECT_TRUE(isNoBufSet);
  }
  const ChangedVariable variable("KEST_NOIOBUF", std::nullopt);
  EXPECT_THROW(OpenDatabase("\xE4"), CNonASCIIDatabase);
  EXPECT_FALSE(isNoBufSet);
}

TEST_F(EntryPoints, AnUnbufferedStudyHoldsTheSameBytes) {
  OpenDatabase(folder / "buffered");
  {
    const ChangedVariable variable("KEST_NOIOBUF", "1");
    OpenDatabase(folder / "unbuffered");
    CloseDatabase();
  }
  EXPECT_EQ(ReadBytes(folder / "unbuffered.ksb"), ReadBytes(folder / "buffered.ksb"));
  EXPECT_EQ(ReadBytes(folder / "unbuffered.kx"), ReadBytes(folder / "buffered.kx"));
}

// ---- Files that are there already ----

TEST_F(EntryPoints, AStaleIndexIsReplacedWithoutAMessage) {
  WriteBytes(folder / "study.kx", std::string(100, 'x'));
  ClearLog();
  OpenDatabase(folder / "study");
  EXPECT_TRUE(Log().empty());
  EXPECT_EQ(ReadBytes(folder / "study.kx").size(), 60940U);
  EXPECT_TRUE(CGPoint(GetPOD()).FindObject());
}

TEST_F(EntryPoints, OpeningAndClosingChangesNoByte) {
  OpenDatabase(folder / "study");
  CloseDatabase();
  const std::string data = ReadBytes(folder / "study.ksb");
  const std::string index = ReadBytes(folder / "study.kx");
  ClearLog();
  OpenDatabase(folder / "study");
  CloseDatabase();
  EXPECT_EQ(ReadBytes(folder / "study.ksb"), data);
  EXPECT_EQ(ReadBytes(folder / "study.kx"), index);
  EXPECT_TRUE(Log().empty());
}

TEST_F(EntryPoints, AVersionOfZeroOrBelowIsOpenedAsItIs) {
  OpenDatabase(folder / "study");
  CloseDatabase();
  for (const char* version : {"00 00 00 00", "FF FF FF FF", "00 00 00 80"}) {
    SCOPED_TRACE(version);
    PatchBytes(folder / "study.ksb", 24, Bytes(version));
    const std::string before = ReadBytes(folder / "study.ksb");
    OpenDatabase(folder / "study");
    EXPECT_TRUE(CGPoint(GetPOD()).FindObject());
    CloseDatabase();
    EXPECT_EQ(ReadBytes(folder / "study.ksb"), before);
  }
}

TEST_F(EntryPoints, TheVersionOfTheIndexIsNotLookedAt) {
  OpenDatabase(folder / "study");
  CloseDatabase();
  PatchBytes(folder / "study.kx", 24, Bytes("01 00 00 00"));
  EXPECT_NO_THROW(OpenDatabase(folder / "study"));
  EXPECT_TRUE(CGPoint(GetPOD()).FindObject());
}

// ---- Versions ----

TEST(LibraryVersion, IsSixTwentyOneZeroWithNoStudyOpen) {
  int major = -1;
  int minor = -1;
  int patch = -1;
  GetKSBVersion(&major, &minor, &patch);
  EXPECT_EQ(major, 6);
  EXPECT_EQ(minor, 21);
  EXPECT_EQ(patch, 0);
}

TEST(LibraryVersion, CanBeAskedForInPart) {
  int minor = -1;
  GetKSBVersion(nullptr, &minor, nullptr);
  EXPECT_EQ(minor, 21);
}

TEST(FileVersion, IsMinusOneForAMissingFileEvenWithNoStudyOpen) {
  std::string path = "no such folder/study.ksb";
  EXPECT_EQ(GetDBVersion(path), -1);
}

TEST(FileVersion, NeedsAStudyForItsLock) {
  const TempFolder folder;
  std::string path = folder / "other.ksb";
  WriteBytes(path, std::string(28, '\0'));
  EXPECT_THROW(GetDBVersion(path), CNullPtr);
}

TEST(FileVersion, IsTheWordAtOffset24) {
  const Study study;
  std::string path = study.DataPath();
  EXPECT_EQ(GetDBVersion(path), 3001);
  path = study.folder / "other.ksb";
  WriteBytes(path, std::string(24, 'x') + Bytes("FE FF FF FF") + "more");
  EXPECT_EQ(GetDBVersion(path), -2);
  PatchBytes(path, 24, Bytes("04 03 02 01"));
  EXPECT_EQ(GetDBVersion(path), 0x01020304);
}

TEST(FileVersion, OfAFileThatEndsWithinItsHeaderIsAReadFailure) {
  const Study study;
  std::string path = study.folder / "other.ksb";
  for (const std::size_t size : {0U, 24U, 27U}) {
    WriteBytes(path, std::string(size, '\0'));
    EXPECT_THROW(GetDBVersion(path), CFileRead);
  }
}

TEST(FileVersion, OfAFolderIsAnOpenFailure) {
  const Study study;
  std::string path = study.folder.Path();
  EXPECT_THROW(GetDBVersion(path), CFileOpen);
}

}  // namespace
