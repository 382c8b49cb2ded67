#include "task/Task.h"

#include <gtest/gtest.h>

#include <cstring>
#include <ctime>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "index/KSBKey.h"
#include "store/KestErr.h"
#include "tests/support/Bytes.h"
#include "tests/support/RawFile.h"
#include "tests/support/StoredRecord.h"
#include "tests/support/Study.h"
#include "tests/task/ClockText.h"
#include "tests/task/TaskRecord.h"

namespace {

class Tasks : public testing::Test {
 protected:
  CTask Store(int id, int parent = 0) {
    CTask task(study.Pod());
    task.m_nID = id;
    task.m_nParent = parent;
    task.PutObject();
    return task;
  }

  CTask Stored(int id) {
    CTask task(study.Pod());
    task.m_nID = id;
    EXPECT_TRUE(task.GetObject());
    return task;
  }

  std::vector<int> All() {
    std::vector<int> ids{77, 78};
    CTask::GetAllTasks(study.Pod(), ids);
    return ids;
  }

  Study study;
};

// ---- The object ----

TEST_F(Tasks, HaveTheirClassConstants) {
  EXPECT_EQ(CTask::m_nTASK_VER, 22);
  EXPECT_EQ(CTask::m_nTASK_INDX, 2);
  EXPECT_EQ(CTask::m_nTASK_ID, 3000);
  EXPECT_EQ(CTask::m_strCLASS_NAME, "CTask");
  CTask task(study.Pod());
  EXPECT_EQ(task.GetVBClassID(), 3000);
  EXPECT_EQ(task.GetVBClassIndex(), 2U);
  EXPECT_EQ(task.GetVBClassName(), "CTask");
  EXPECT_EQ(task.GetVBClassVer(), 22);
}

TEST_F(Tasks, HaveDefaultsWhenNew) {
  const POD* const pod = study.Pod();
  for (const CTask& task : {CTask(), CTask(study.Pod()), CTask(pod)}) {
    EXPECT_EQ(task.m_nID, 0);
    EXPECT_EQ(task.ObjectAddress(), 0);
    ExpectAll(task, AllTaskFields(), false);
  }
  EXPECT_EQ(CTask().Database(), nullptr);
  EXPECT_EQ(CTask(study.Pod()).Database(), pod);
  EXPECT_EQ(CTask(pod).Database(), pod);
}

TEST_F(Tasks, SetDefaultAttributesLeavesTheBlocks) {
  CTask task = Store(7);
  const vbINT32 address = task.ObjectAddress();
  ChangeAll(task, AllTaskFields());
  task.SetDefaultAttributes();
  EXPECT_EQ(task.m_nID, 0);
  ExpectAll(task, FieldsBeforeBlocks(), false);
  ExpectAll(task, FieldsOfBlocks(), true);
  ExpectAll(task, FieldsBehindBlocks(), false);
  EXPECT_EQ(task.Database(), study.Pod());
  EXPECT_EQ(task.ObjectAddress(), address);
}

TEST_F(Tasks, SetDefaultAttributesNeedsNoDatabase) {
  CTask task;
  ChangeAll(task, AllTaskFields());
  task.SetDefaultAttributes();
  ExpectAll(task, FieldsBehindBlocks(), false);
  EXPECT_EQ(task.Database(), nullptr);
}

TEST_F(Tasks, CopyTakesAllFieldsAndKeepsTheConnection) {
  CTask source;
  source.m_nID = 8;
  ChangeAll(source, AllTaskFields());
  CTask copy = Store(7);
  const vbINT32 address = copy.ObjectAddress();
  copy.Copy(source);
  EXPECT_EQ(copy.m_nID, 8);
  ExpectAll(copy, AllTaskFields(), true);
  EXPECT_EQ(copy.Database(), study.Pod());
  EXPECT_EQ(copy.ObjectAddress(), address);
}

TEST_F(Tasks, CopyOfEachFieldAlone) {
  for (const auto& field : AllTaskFields()) {
    SCOPED_TRACE(field.changed);
    CTask task(study.Pod());
    CTask copy(study.Pod());
    field.change(task);
    copy.Copy(task);
    field.expect(copy, true);
    copy.Copy(CTask(study.Pod()));
    field.expect(copy, false);
  }
}

TEST_F(Tasks, HaveTheKindsOfEntriesByCode) {
  EXPECT_EQ(vbIndependentVar, 20);
  EXPECT_EQ(vbLinkedVar, 21);
  EXPECT_EQ(vbSyntheticVar, 22);
  EXPECT_EQ(vbConstantVar, 23);
  EXPECT_EQ(vbIndependentResp, 24);
  EXPECT_EQ(vbLinkedResp, 25);
  EXPECT_EQ(vbSyntheticResp, 26);
}

// ---- The key ----

TEST_F(Tasks, AreUsableAsKeysWithAPositiveID) {
  CTask task(study.Pod());
  char text[64];
  for (const int id : {-2147483647 - 1, -1, 0}) {
    task.m_nID = id;
    EXPECT_FALSE(task.CheckKey()) << id;
    EXPECT_THROW(task.PutObject(), CInvalidKey) << id;
  }
  for (const auto& [id, key] :
       std::map<int, std::string>{{1, "          1"}, {2147483647, " 2147483647"}}) {
    task.m_nID = id;
    EXPECT_TRUE(task.CheckKey()) << id;
    EXPECT_EQ(task.MakeKey(text), text);
    EXPECT_EQ(std::string(text), key);
  }
}

TEST_F(Tasks, AreFoundInTheirTreeByID) {
  const CTask twelve = Store(12);
  const CTask three = Store(3);
  study.Close();
  const RawFile data = ReadRawFile(study.DataPath());
  const RawFile index = ReadRawFile(study.IndexPath());
  EXPECT_EQ(ReadRawTree(index, 2),
            (std::map<std::string, long>{{"          3", three.ObjectAddress()},
                                         {"         12", twelve.ObjectAddress()}}));
  EXPECT_EQ(FaultOfClass(data, index, 3000), "");
}

TEST_F(Tasks, AreReadBackAfterReopening) {
  CTask task(study.Pod());
  task.m_nID = 7;
  ChangeAll(task, AllTaskFields());
  task.PutObject();
  study.Reopen();
  ExpectAll(Stored(7), AllTaskFields(), true);
}

TEST_F(Tasks, AreReplacedByTheNextPut) {
  CTask task = Store(7);
  task.m_strTitle = "second";
  task.PutObject();
  EXPECT_EQ(Stored(7).m_strTitle, "second");
  EXPECT_EQ(task.CountObjects(), 1);
}

// ---- All tasks ----

TEST_F(Tasks, OfANewStudyAreNone) {
  EXPECT_TRUE(All().empty());
}

TEST_F(Tasks, AreListedAscending) {
  for (const int id : {10, 9, 2147483647, 1, 100}) Store(id);
  EXPECT_EQ(All(), (std::vector<int>{1, 9, 10, 100, 2147483647}));
}

TEST_F(Tasks, WithAParentAreNotListed) {
  Store(1);
  Store(2, 5);
  Store(3, -5);
  Store(4, 1);
  Store(6, 0);
  EXPECT_EQ(All(), (std::vector<int>{1, 3, 6}));
}

TEST_F(Tasks, OfDifferentVersionsAreListedEachByItsOwnParent) {
  Store(1, 5);
  CTask older(study.Pod());
  std::string record = HexWord(9) + "02 00 00 00 ";
  for (const auto& field : AllTaskFields()) {
    if (field.since <= 9) record += field.fresh;
  }
  StoreRecord(study.Pod(), 3000, Bytes(record));
  Store(3, 5);
  Store(4);
  EXPECT_EQ(All(), (std::vector<int>{2, 4}));
}

TEST_F(Tasks, AreListedFromTheDataFileAlone) {
  Store(1);
  CTask lost = Store(2);
  char buffer[64];
  KSBKey key(lost.MakeKey(buffer), 0, 0);
  KSBKey scratch;
  ASSERT_TRUE(lost.RemoveKey(key, scratch, 2, true));
  EXPECT_EQ(All(), (std::vector<int>{1, 2}));
}

TEST_F(Tasks, ThatWereRemovedAreNotListed) {
  for (int id = 1; id <= 50; ++id) Store(id);
  std::vector<int> kept;
  for (int id = 1; id <= 50; ++id) {
    CTask task(study.Pod());
    task.m_nID = id;
    if (id % 3 == 0) {
      kept.push_back(id);
    } else {
      ASSERT_TRUE(id % 2 == 0 ? task.RemoveObject() : task.DeleteObject());
    }
  }
  EXPECT_EQ(All(), kept);
}

TEST_F(Tasks, ThatAreDamagedAreNotListedSilently) {
  const CTask task = Store(1);
  study.Close();
  PatchBytes(study.DataPath(), task.ObjectAddress() + 12, "\x08");
  study.Open();
  EXPECT_THROW(All(), CChecksum);
}

// ---- Simple operations ----

TEST_F(Tasks, TakeAnalyzeFlagsInPlaceOfTheirOwn) {
  CTask task(study.Pod());
  task.SetAnalyzeFlags({1, 0, -5, 2147483647});
  EXPECT_EQ(task.m_vnAnalyzeFlags, (std::vector<vbINT32>{1, 0, -5, 2147483647}));
  task.SetAnalyzeFlags({7});
  EXPECT_EQ(task.m_vnAnalyzeFlags, (std::vector<vbINT32>{7}));
  task.SetAnalyzeFlags({});
  EXPECT_TRUE(task.m_vnAnalyzeFlags.empty());
}

std::string CreatedAt(const char* text) {
  const ClockText clock(text);
  CTask task;
  task.m_strCreated = "before";
  task.SetCreateTime();
  return task.m_strCreated;
}

TEST_F(Tasks, TakeTheCreationTimeUpToItsFirstLineEnd) {
  EXPECT_EQ(CreatedAt("Sat Mar  7 09:05:59 2026\n"), "Sat Mar  7 09:05:59 2026");
  EXPECT_EQ(CreatedAt("Sat Mar  7\n09:05:59 2026\n"), "Sat Mar  7");
  EXPECT_EQ(CreatedAt("\n"), "");
}

TEST_F(Tasks, TakeACreationTimeWithoutALineEndWhole) {
  EXPECT_EQ(CreatedAt("Sat Mar  7 09:05:59 2026"), "Sat Mar  7 09:05:59 2026");
  EXPECT_EQ(CreatedAt(""), "");
}

TEST_F(Tasks, HaveNoCreationTimeWhereThereIsNone) {
  EXPECT_EQ(CreatedAt(nullptr), "");
}

TEST_F(Tasks, AreCreatedNow) {
  CTask task;
  const std::time_t before = std::time(nullptr);
  task.SetCreateTime();
  const std::time_t after = std::time(nullptr);
  std::tm parts{};
  ASSERT_NE(strptime(task.m_strCreated.c_str(), "%a %b %e %H:%M:%S %Y", &parts), nullptr)
      << task.m_strCreated;
  EXPECT_EQ(task.m_strCreated.size(), std::strlen("Sat Mar  7 09:05:59 2026"));
  parts.tm_isdst = -1;
  const std::time_t created = std::mktime(&parts);
  EXPECT_GE(created, before);
  EXPECT_LE(created, after);
}

// ---- Failures ----

void List(POD* pod) {
  std::vector<int> ids{77};
  CTask::GetAllTasks(pod, ids);
}

TEST_F(Tasks, OfNoDatabaseAreANullPointer) {
  EXPECT_THROW(List(nullptr), CNullPtr);
}

TEST_F(Tasks, WithoutIndexingAreToldSoBeforeMissingFiles) {
  POD pod(study.folder / "other.ksb");
  EXPECT_THROW(List(&pod), CNoIndex);
  KSBKey key;
  pod.Open(study.folder / "other.ksb", study.folder / "other.kx", key, 32, vbReadWrite, 2, 0, 25);
  EXPECT_THROW(List(&pod), CNoIndex);
}

TEST_F(Tasks, WithoutADataFileAreANullPointer) {
  study.Pod()->CloseDataFile();
  EXPECT_THROW(List(study.Pod()), CNullPtr);
}

TEST_F(Tasks, WithoutAnIndexFileAreANullPointer) {
  study.Pod()->CloseIndex();
  EXPECT_THROW(List(study.Pod()), CNullPtr);
}

TEST_F(Tasks, AreListedUnderTheLockOnly) {
  std::filesystem::create_directory(study.LockPath());
  EXPECT_THROW(List(study.Pod()), CFileLock);
  std::filesystem::remove(study.LockPath());
}

TEST_F(Tasks, WithAKeyThatIsThereAreNotWrittenTwice) {
  Store(7);
  CTask again(study.Pod());
  again.m_nID = 7;
  EXPECT_THROW(again.WriteObject(true), CObjectNotAdded);
  EXPECT_THROW(again.WriteObject(false), CDuplicateEntry);
}

TEST_F(Tasks, WithoutADatabaseCannotBeStoredOrRead) {
  CTask task;
  task.m_nID = 7;
  EXPECT_THROW(task.PutObject(), CNullPtr);
  EXPECT_THROW(task.GetObject(), CNullPtr);
}

}  // namespace
