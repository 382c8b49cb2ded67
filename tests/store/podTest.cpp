#include "store/pod.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "index/KSBKey.h"
#include "index/vbtree.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/vbdbase.h"
#include "tests/support/Bytes.h"
#include "tests/support/Descriptors.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/RawFile.h"
#include "tests/support/SampleRecord.h"
#include "tests/support/TempFolder.h"

namespace {

class PODFiles : public testing::Test {
 protected:
  void Open(POD& pod, int indexing = 1, int indexCount = 25, vbINT32 order = 32) {
    pod.Open(dataPath, indexPath, key, order, vbReadWrite, indexing, 0, indexCount);
  }

  /// A study of two sound files.
  void MakeFiles(int indexCount = 25, vbINT32 order = 32) {
    POD pod(dataPath);
    Open(pod, 1, indexCount, order);
  }

  bool LockExists() const { return std::filesystem::exists(lockPath); }

  TempFolder folder;
  std::string dataPath = folder / "study.ksb";
  std::string indexPath = folder / "study.kx";
  std::string lockPath = folder / "study.lck";
  KSBKey key;
};

// ---- The index table ----

TEST(PODIndexTable, NewRecordsHaveTheirDefaults) {
  const PODIndex table(3);
  ASSERT_EQ(table.Count(), 3U);
  for (unsigned i = 0; i < 3; ++i) {
    const PODIndexRecord& record = *table.Record(i);
    EXPECT_EQ(record.Tree, nullptr);
    EXPECT_EQ(record.KeySize, 64);
    EXPECT_EQ(record.Order, 29);
    EXPECT_EQ(record.SpareAddress, -1);
    EXPECT_EQ(record.OpenFlag, 0);
    EXPECT_EQ(record.RebuildFlag, 0);
  }
}

TEST(PODIndexTable, HoldsAtMost255Records) {
  EXPECT_EQ(PODIndex(0).Count(), 0U);
  EXPECT_EQ(PODIndex(255).Count(), 255U);
  EXPECT_EQ(PODIndex(256).Count(), 255U);
  EXPECT_EQ(PODIndex(0xFFFFFFFF).Count(), 255U);
}

TEST(PODIndexTable, HasNoRecordBeyondItsCount) {
  const PODIndex table(2);
  EXPECT_NE(table.Record(1), nullptr);
  EXPECT_EQ(table.Record(2), nullptr);
  EXPECT_EQ(table.Record(255), nullptr);
}

TEST_F(PODFiles, OnlyTheFirstRecordIsToldKeySizeAndOrder) {
  POD pod(dataPath);
  Open(pod);
  const PODIndex& table = *pod.IndexTable();
  EXPECT_EQ(table.Record(0)->KeySize, 76);
  EXPECT_EQ(table.Record(0)->Order, 32);
  for (unsigned i = 1; i < 25; ++i) {
    EXPECT_EQ(table.Record(i)->KeySize, 64);
    EXPECT_EQ(table.Record(i)->Order, 29);
  }
}

TEST_F(PODFiles, EveryRecordOfAnAttachedIndexIsOpen) {
  MakeFiles();
  POD pod(dataPath);
  Open(pod);
  for (unsigned i = 0; i < 25; ++i) {
    const PODIndexRecord& record = *pod.IndexTable()->Record(i);
    EXPECT_EQ(record.OpenFlag, 1);
    EXPECT_EQ(record.SpareAddress, -1);
    EXPECT_EQ(record.Tree, pod.Index(i));
    EXPECT_NE(record.Tree, nullptr);
  }
}

TEST_F(PODFiles, IndexAtOrAboveTheCountIsNull) {
  POD pod(dataPath);
  EXPECT_EQ(pod.Index(0), nullptr);
  Open(pod);
  EXPECT_NE(pod.Index(24), nullptr);
  EXPECT_EQ(pod.Index(25), nullptr);
  EXPECT_EQ(pod.Index(26), nullptr);
  EXPECT_EQ(pod.Index(0xFFFFFFFF), nullptr);
}

TEST_F(PODFiles, ATableOf255TreesIsTheLargest) {
  POD pod(dataPath);
  Open(pod, 1, 300);
  EXPECT_EQ(pod.IndexTable()->Count(), 255U);
  EXPECT_EQ(pod.IndexFile()->GetHeapStart(), 40 + 255 * 40);
  EXPECT_EQ(pod.Index(254)->ClassID, 254);
}

TEST_F(PODFiles, ATableOfNoTreesIsPossible) {
  POD pod(dataPath);
  Open(pod, 1, 0);
  EXPECT_EQ(pod.IndexTable()->Count(), 0U);
  EXPECT_EQ(pod.IndexFile()->GetHeapStart(), 40);
  EXPECT_EQ(pod.Index(0), nullptr);
}

// ---- The lock path ----

TEST(PODLockPath, ReplacesTheLastFourCharacters) {
  EXPECT_EQ(POD("dir/study.ksb").LockPath(), "dir/study.lck");
  EXPECT_EQ(POD("study.ksb.ksb").LockPath(), "study.ksb.lck");
  EXPECT_EQ(POD("a.b/study").LockPath(), "a.b/s.lck");
  EXPECT_EQ(POD("four").LockPath(), ".lck");
}

TEST(PODLockPath, IsAppendedToAShorterName) {
  EXPECT_EQ(POD("abc").LockPath(), "abc.lck");
  EXPECT_EQ(POD("").LockPath(), ".lck");
}

// ---- Opening and creating ----

TEST_F(PODFiles, ANewPodHoldsNothing) {
  const POD pod(dataPath);
  EXPECT_EQ(pod.DataFile(), nullptr);
  EXPECT_EQ(pod.IndexFile(), nullptr);
  EXPECT_EQ(pod.IndexTable(), nullptr);
  EXPECT_EQ(pod.Indexing(), 0);
  EXPECT_FALSE(pod.LockHeld());
  EXPECT_FALSE(std::filesystem::exists(dataPath));
}

TEST_F(PODFiles, ANewDataFileIsItsHeadersAlone) {
  MakeFiles();
  EXPECT_EQ(Hex(ReadBytes(dataPath)),
            "00 00 00 00 28 00 00 00 28 00 00 00 00 00 00 00 56 42 44 42 41 53 45 43 "
            "B9 0B 00 00 00 00 00 00 00 00 00 00 00 00 00 00");
}

TEST_F(PODFiles, ANewIndexFileHasOneTreeHeaderInEachSlot) {
  MakeFiles();
  EXPECT_EQ(HexAt(indexPath, 0, 40),
            "00 00 00 00 0C EE 00 00 10 04 00 00 B0 E4 00 00 56 42 44 42 41 53 45 43 "
            "B9 0B 00 00 00 00 00 00 00 00 00 00 00 00 00 00");
  // Order, entry size, entries, nodes, height, root, class ID; 12 bytes of the slot are not used.
  const std::string common = "20 00 00 00 4C 00 00 00 00 00 00 00 01 00 00 00 01 00 00 00 ";
  const std::string unused = " 00 00 00 00 00 00 00 00 00 00 00 00";
  EXPECT_EQ(HexAt(indexPath, 40, 40), common + "2C 04 00 00 00 00 00 00" + unused);
  EXPECT_EQ(HexAt(indexPath, 80, 40), common + "88 0D 00 00 01 00 00 00" + unused);
  EXPECT_EQ(HexAt(indexPath, 1000, 40), common + "CC E4 00 00 18 00 00 00" + unused);
  for (long tree = 0; tree < 25; ++tree) {
    const auto slot = static_cast<std::size_t>(40 * (tree + 1));
    EXPECT_EQ(HexAt(indexPath, slot, 28),
              common + HexWord(1068 + 2396 * tree) + ' ' + HexWord(tree));
  }
}

TEST_F(PODFiles, ANewIndexFileHasOneEmptyRootForEachTree) {
  MakeFiles();
  EXPECT_EQ(HexAt(indexPath, 1040, 36),
            "FE FE FE FE 5C 09 00 00 4E 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
            "00 00 00 00 00 00 00 00 00 00 00 00");
  const RawFile index = ReadRawFile(indexPath);
  EXPECT_EQ(index.bytes.size(), 60940U);
  EXPECT_EQ(index.blocks.size(), 25U);
  EXPECT_EQ(FaultOf(index), "");
  for (long tree = 0; tree < 25; ++tree) EXPECT_TRUE(ReadRawTree(index, tree).empty());
}

TEST_F(PODFiles, AnExistingIndexKeepsItsOrderAndTags) {
  MakeFiles(25, 8);
  POD pod(dataPath);
  Open(pod);
  EXPECT_EQ(pod.Index(3)->Order, 8);
  EXPECT_EQ(pod.Index(3)->ClassID, 3);
  EXPECT_EQ(pod.Index(24)->ClassID, 24);
  EXPECT_EQ(pod.IndexTable()->Record(0)->Order, 32);
}

TEST_F(PODFiles, ANewDataFileReplacesAStaleIndex) {
  WriteBytes(indexPath, std::string(100000, 'x'));
  MakeFiles();
  EXPECT_EQ(ReadBytes(indexPath).size(), 60940U);
  POD pod(dataPath);
  Open(pod);
  for (unsigned i = 0; i < 25; ++i) EXPECT_EQ(pod.IndexTable()->Record(i)->RebuildFlag, 0);
}

TEST_F(PODFiles, AMissingIndexIsMadeEmptyAndToBeRebuilt) {
  {
    POD pod(dataPath);
    Open(pod);
    TripleRecord record(&pod);
    record.m_nFirst = 1;
    record.WriteObject(false);
  }
  std::filesystem::remove(indexPath);
  POD pod(dataPath);
  Open(pod);
  for (unsigned i = 0; i < 25; ++i) {
    EXPECT_EQ(pod.IndexTable()->Record(i)->RebuildFlag, 1);
    EXPECT_EQ(pod.Index(i)->EntryCount, 0);
  }
  TripleRecord record(&pod);
  record.m_nFirst = 1;
  EXPECT_FALSE(record.FindObject());
  EXPECT_EQ(record.CountObjects(), 1);
}

TEST_F(PODFiles, ANewStudyHasNothingToRebuild) {
  POD pod(dataPath);
  Open(pod);
  for (unsigned i = 0; i < 25; ++i) EXPECT_EQ(pod.IndexTable()->Record(i)->RebuildFlag, 0);
}

TEST_F(PODFiles, WithoutIndexingThereIsNoIndex) {
  for (const char* time : {"created", "opened"}) {
    SCOPED_TRACE(time);
    POD pod(dataPath);
    Open(pod, 0);
    EXPECT_NE(pod.DataFile(), nullptr);
    EXPECT_EQ(pod.IndexFile(), nullptr);
    EXPECT_EQ(pod.IndexTable(), nullptr);
    EXPECT_EQ(pod.Index(0), nullptr);
    EXPECT_EQ(pod.Indexing(), 0);
    EXPECT_FALSE(std::filesystem::exists(indexPath));
  }
}

TEST_F(PODFiles, TheIndexingFlagIsTheArgument) {
  POD pod(dataPath);
  Open(pod, 2);
  EXPECT_EQ(pod.Indexing(), 2);
  EXPECT_NE(pod.IndexFile(), nullptr);
}

TEST_F(PODFiles, TheStaticAreaIsThatOfANewDataFile) {
  {
    POD pod(dataPath);
    pod.Open(dataPath, indexPath, key, 32, vbReadWrite, 0, 100, 25);
    EXPECT_EQ(pod.DataFile()->StaticArea(), 100);
  }
  POD pod(dataPath);
  pod.Open(dataPath, indexPath, key, 32, vbReadWrite, 0, 7, 25);
  EXPECT_EQ(pod.DataFile()->GetHeapStart(), 140);
}

TEST_F(PODFiles, CreateDataFileMakesRevisionC) {
  POD pod(dataPath);
  pod.CreateDataFile(dataPath, 0);
  EXPECT_EQ(pod.DataFile()->GetRevisionLetter(), 'C');
  EXPECT_EQ(pod.IndexFile(), nullptr);
}

TEST_F(PODFiles, NoLockStaysBehind) {
  POD pod(dataPath);
  Open(pod);
  EXPECT_FALSE(LockExists());
  EXPECT_FALSE(pod.LockHeld());
  {
    const CLock lock(&pod, 0);
    EXPECT_TRUE(LockExists());
    EXPECT_TRUE(pod.LockHeld());
  }
  EXPECT_FALSE(pod.LockHeld());
  pod.Close();
  EXPECT_FALSE(LockExists());
}

// ---- Refusals ----

TEST_F(PODFiles, NoSecondDataFile) {
  POD pod(dataPath);
  Open(pod);
  EXPECT_THROW(Open(pod), CDatabaseOpen);
  EXPECT_THROW(pod.OpenDataFile(dataPath, vbReadWrite), CDatabaseOpen);
  EXPECT_THROW(pod.CreateDataFile(dataPath, 0), CDatabaseOpen);
  EXPECT_NE(pod.DataFile(), nullptr);
}

TEST_F(PODFiles, APodThatOpenedAFileIsNotOpenedAgain) {
  MakeFiles();
  const std::string before = ReadBytes(dataPath);
  POD pod(dataPath);
  Open(pod);
  pod.Close();
  EXPECT_THROW(Open(pod), CDatabaseOpen);
  EXPECT_THROW(pod.OpenDataFile(dataPath, vbReadWrite), CDatabaseOpen);
  EXPECT_THROW(pod.CreateDataFile(dataPath, 0), CDatabaseOpen);
  EXPECT_EQ(ReadBytes(dataPath), before);
}

TEST_F(PODFiles, NoIndexWithoutATable) {
  MakeFiles();
  POD pod(dataPath);
  EXPECT_THROW(pod.OpenIndex(indexPath, key, 32, vbReadWrite), CNoIndexSystem);
  EXPECT_THROW(pod.CreateIndex(indexPath, key, 32), CNoIndexSystem);
  EXPECT_EQ(ReadBytes(indexPath).size(), 60940U);
}

TEST_F(PODFiles, NoSecondIndex) {
  POD pod(dataPath);
  Open(pod);
  EXPECT_THROW(pod.OpenIndex(indexPath, key, 32, vbReadWrite), CDatabaseOpen);
  EXPECT_THROW(pod.CreateIndex(indexPath, key, 32), CDatabaseOpen);
}

TEST_F(PODFiles, AMissingTableIsToldBeforeAnOpenIndex) {
  POD pod(dataPath);
  Open(pod);
  vbDatabase* data = pod.DataFile();
  vbDatabase* index = pod.IndexFile();
  PODIndex* table = pod.IndexTable();
  pod.ReleaseIndexFile();
  EXPECT_THROW(pod.CreateIndex(indexPath, key, 32), CNoIndexSystem);
  EXPECT_EQ(pod.DataFile(), data);
  delete index;
  delete table;
}

TEST_F(PODFiles, NothingOfAFailedIndexIsKept) {
  MakeFiles();
  WriteBytes(indexPath, std::string(5000, 'x'));
  POD pod(dataPath);
  EXPECT_THROW(Open(pod), CWrongFileType);
  EXPECT_EQ(pod.IndexFile(), nullptr);
  EXPECT_EQ(pod.Index(0), nullptr);
  EXPECT_FALSE(LockExists());
  EXPECT_EQ(ReadBytes(indexPath), std::string(5000, 'x'));
}

TEST_F(PODFiles, AnIndexCutAmongItsTreeHeadersIsRefusedAndLeftAsItIs) {
  MakeFiles();
  const std::string cut = ReadBytes(indexPath).substr(0, 900);
  WriteBytes(indexPath, cut);
  POD pod(dataPath);
  EXPECT_THROW(Open(pod), CFileRead);
  EXPECT_EQ(pod.IndexFile(), nullptr);
  EXPECT_EQ(pod.Index(0), nullptr);
  pod.Close();
  EXPECT_EQ(ReadBytes(indexPath), cut);
}

// ---- Closing ----

TEST_F(PODFiles, CloseClosesBothFiles) {
  const auto before = OpenDescriptors();
  POD pod(dataPath);
  Open(pod);
  EXPECT_EQ(OpenDescriptors(), before + 2);
  pod.Close();
  EXPECT_EQ(OpenDescriptors(), before);
  EXPECT_EQ(pod.DataFile(), nullptr);
  EXPECT_EQ(pod.IndexFile(), nullptr);
  EXPECT_EQ(pod.IndexTable(), nullptr);
  EXPECT_NO_THROW(pod.Close());
}

TEST_F(PODFiles, CloseDataFileLeavesTheIndex) {
  POD pod(dataPath);
  Open(pod);
  pod.CloseDataFile();
  EXPECT_EQ(pod.DataFile(), nullptr);
  EXPECT_NE(pod.Index(0), nullptr);
  EXPECT_NO_THROW(pod.CloseDataFile());
}

TEST_F(PODFiles, CloseIndexLeavesTheDataFile) {
  POD pod(dataPath);
  Open(pod);
  pod.CloseIndex();
  EXPECT_EQ(pod.IndexFile(), nullptr);
  EXPECT_EQ(pod.IndexTable(), nullptr);
  EXPECT_EQ(pod.Index(0), nullptr);
  EXPECT_TRUE(pod.DataFile()->IsOpen());
  EXPECT_NO_THROW(pod.CloseIndex());
}

TEST_F(PODFiles, TheDestructorClosesBothFiles) {
  const auto before = OpenDescriptors();
  MakeFiles();
  EXPECT_EQ(OpenDescriptors(), before);
}

TEST_F(PODFiles, ACloseThatFailsClosesBothFilesAllTheSame) {
  const auto before = OpenDescriptors();
  POD pod(dataPath);
  Open(pod);
  {
    const FileSizeLimit noWrites(0);
    EXPECT_THROW(pod.Close(), CFileWrite);
  }
  EXPECT_EQ(OpenDescriptors(), before);
  EXPECT_EQ(pod.DataFile(), nullptr);
  EXPECT_EQ(pod.IndexFile(), nullptr);
  EXPECT_FALSE(LockExists());
}

TEST_F(PODFiles, TheDestructorTellsOfAFailedClose) {
  const auto before = OpenDescriptors();
  auto* pod = new POD(dataPath);
  Open(*pod);
  {
    const FileSizeLimit noWrites(0);
    EXPECT_THROW(delete pod, CFileWrite);
  }
  EXPECT_EQ(OpenDescriptors(), before);
  EXPECT_FALSE(LockExists());
}

TEST_F(PODFiles, ReleaseHandsOverEverythingOpen) {
  POD pod(dataPath);
  Open(pod);
  vbDatabase* data = pod.DataFile();
  vbDatabase* index = pod.IndexFile();
  PODIndex* table = pod.IndexTable();
  pod.Release();
  EXPECT_EQ(pod.DataFile(), nullptr);
  EXPECT_EQ(pod.IndexFile(), nullptr);
  EXPECT_EQ(pod.IndexTable(), nullptr);
  EXPECT_TRUE(data->IsOpen());
  EXPECT_TRUE(index->IsOpen());
  delete data;
  delete index;
  delete table;
}

TEST_F(PODFiles, ReleaseDataFileLeavesTheIndex) {
  POD pod(dataPath);
  Open(pod);
  vbDatabase* data = pod.DataFile();
  pod.ReleaseDataFile();
  EXPECT_EQ(pod.DataFile(), nullptr);
  EXPECT_NE(pod.Index(0), nullptr);
  EXPECT_TRUE(data->IsOpen());
  delete data;
}

TEST_F(PODFiles, AbandonClosesWithoutAWrite) {
  MakeFiles();
  const auto before = OpenDescriptors();
  POD pod(dataPath);
  Open(pod);
  std::filesystem::resize_file(dataPath, 10);
  std::filesystem::resize_file(indexPath, 10);
  pod.Abandon();
  EXPECT_EQ(OpenDescriptors(), before);
  EXPECT_EQ(pod.DataFile(), nullptr);
  EXPECT_EQ(pod.IndexTable(), nullptr);
  EXPECT_EQ(ReadBytes(dataPath).size(), 10U);
  EXPECT_EQ(ReadBytes(indexPath).size(), 10U);
}

}  // namespace
