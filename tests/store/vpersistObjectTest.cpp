#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "definition/GPoint.h"
#include "index/KSBKey.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/vbdbase.h"
#include "tests/support/Bytes.h"
#include "tests/support/RawFile.h"
#include "tests/support/SampleRecord.h"
#include "tests/support/Study.h"

// Whole objects by their keys: find, get, write, put, delete, remove.

namespace {

constexpr long plainClass = 24000;
constexpr long plainTree = 23;

class Objects : public testing::Test {
 protected:
  PlainRecord Plain(int id, const std::string& text = "") {
    PlainRecord record(study.Pod());
    record.m_nID = id;
    record.m_strText = text;
    return record;
  }

  long Store(int id, const std::string& text) {
    PlainRecord record = Plain(id, text);
    record.PutObject();
    return record.ObjectAddress();
  }

  /// The text stored under the number; "none" when there is no such object.
  std::string TextOf(int id) {
    PlainRecord record = Plain(id);
    return record.GetObject() ? record.m_strText : "none";
  }

  char StatusAt(long address) {
    vbBlockHeader header;
    study.Pod()->DataFile()->ReadBlockHdr(&header, address - 28);
    return header.StatusLetter();
  }

  /// That data file and index are sound and agree on the plain records.
  void ExpectSound() {
    EXPECT_EQ(
        FaultOfClass(ReadRawFile(study.DataPath()), ReadRawFile(study.IndexPath()), plainClass),
        "");
  }

  Study study;
};

// ---- Objects in memory ----

TEST_F(Objects, ANewObjectHasNoBlock) {
  const PlainRecord record(study.Pod());
  EXPECT_EQ(record.Database(), study.Pod());
  EXPECT_EQ(record.ObjectAddress(), 0);
}

TEST_F(Objects, AnObjectCanBeMadeOfAConstDatabase) {
  const POD* const pod = study.Pod();
  PlainRecord record(pod);
  EXPECT_EQ(record.Database(), study.Pod());
  record.Connect(static_cast<POD*>(nullptr));
  EXPECT_EQ(record.Database(), nullptr);
  record.Connect(pod);
  EXPECT_EQ(record.Database(), study.Pod());
}

TEST_F(Objects, AssignmentLeavesDatabaseAndAddress) {
  PlainRecord stored = Plain(1, "text");
  stored.Write();
  PlainRecord other(static_cast<POD*>(nullptr));
  other = stored;
  EXPECT_EQ(other.m_strText, "text");
  EXPECT_EQ(other.Database(), nullptr);
  EXPECT_EQ(other.ObjectAddress(), 0);
}

// ---- Finding and reading ----

TEST_F(Objects, WriteAttachesTheObjectToItsBlock) {
  const long address = study.NextObject();
  PlainRecord record = Plain(1, "text");
  EXPECT_TRUE(record.Write());
  EXPECT_EQ(record.ObjectAddress(), address);
  EXPECT_EQ(StatusAt(address), 'N');
}

TEST_F(Objects, FindObjectAttachesAndLoadsNothing) {
  const long address = Store(1, "text");
  PlainRecord record = Plain(1, "in memory");
  EXPECT_TRUE(record.FindObject());
  EXPECT_EQ(record.ObjectAddress(), address);
  EXPECT_EQ(record.m_strText, "in memory");
}

TEST_F(Objects, GetObjectLoads) {
  const long address = Store(1, "text");
  PlainRecord record = Plain(1, "in memory");
  EXPECT_TRUE(record.GetObject());
  EXPECT_EQ(record.ObjectAddress(), address);
  EXPECT_EQ(record.m_strText, "text");
}

TEST_F(Objects, AnObjectThatIsNotThereIsNoFailure) {
  Store(1, "text");
  PlainRecord record = Plain(2, "in memory");
  EXPECT_FALSE(record.FindObject());
  EXPECT_FALSE(record.GetObject());
  EXPECT_FALSE(record.DeleteObject());
  EXPECT_FALSE(record.RemoveObject());
  EXPECT_EQ(record.m_strText, "in memory");
  EXPECT_EQ(record.ObjectAddress(), 0);
}

TEST_F(Objects, ReadObjectNeedsNoKey) {
  const long address = Store(1, "text");
  PlainRecord record(study.Pod());
  record.ReadObject(address);
  EXPECT_EQ(record.m_nID, 1);
  EXPECT_EQ(record.m_strText, "text");
  EXPECT_EQ(record.ObjectAddress(), address);
}

TEST_F(Objects, ReadObjectAtMinusOneReadsWhereItIs) {
  Store(1, "text");
  PlainRecord record = Plain(1);
  record.FindObject();
  record.ReadObject(-1);
  EXPECT_EQ(record.m_strText, "text");
}

TEST_F(Objects, ReadObjectTakesTheAddressEvenWhenItCannotRead) {
  PlainRecord record = Plain(1);
  EXPECT_THROW(record.ReadObject(68), CBadClassID);
  EXPECT_EQ(record.ObjectAddress(), 68);
}

// ---- Writing ----

TEST_F(Objects, WriteObjectWithTheCheckRefusesASecondObject) {
  Store(1, "text");
  const std::string before = ReadBytes(study.DataPath());
  PlainRecord record = Plain(1, "other");
  EXPECT_THROW(record.WriteObject(true), CObjectNotAdded);
  EXPECT_EQ(ReadBytes(study.DataPath()), before);
  EXPECT_EQ(TextOf(1), "text");
}

TEST_F(Objects, WriteObjectWithTheCheckStoresANewObject) {
  EXPECT_TRUE(Plain(1, "text").WriteObject(true));
  EXPECT_EQ(TextOf(1), "text");
  ExpectSound();
}

TEST_F(Objects, WriteObjectWithoutTheCheckWritesTheBlockBeforeTheKeyIsRefused) {
  const long first = Store(1, "text");
  PlainRecord record = Plain(1, "other");
  EXPECT_THROW(record.WriteObject(false), CDuplicateEntry);
  const long second = record.ObjectAddress();
  EXPECT_GT(second, first);
  EXPECT_EQ(StatusAt(second), 'N');
  record.ReadObject(second);
  EXPECT_EQ(record.m_strText, "other");
  EXPECT_EQ(TextOf(1), "text");
  EXPECT_EQ(record.CountObjects(), 2);
  EXPECT_EQ(FaultOf(ReadRawFile(study.DataPath())), "");
}

TEST_F(Objects, AWriteThatFailsAtItsKeyLeavesALiveBlock) {
  PlainRecord record = Plain(0, "no key");
  EXPECT_THROW(record.WriteObject(false), CInvalidKey);
  EXPECT_EQ(StatusAt(record.ObjectAddress()), 'N');
  record.m_strText.clear();
  record.ReadObject(-1);
  EXPECT_EQ(record.m_strText, "no key");
}

// ---- Updating ----

TEST_F(Objects, PutOfANewObjectStoresTheSameBytesAsWrite) {
  PlainRecord record = Plain(1, "text");
  EXPECT_TRUE(record.PutObject());
  study.Close();
  Study other;
  PlainRecord written(other.Pod());
  written.m_nID = 1;
  written.m_strText = "text";
  written.Write();
  other.Close();
  EXPECT_EQ(ReadBytes(study.DataPath()), ReadBytes(other.DataPath()));
  EXPECT_EQ(ReadBytes(study.IndexPath()), ReadBytes(other.IndexPath()));
}

TEST_F(Objects, PutRemovesTheOldForm) {
  const long old = Store(1, "text");
  const long replaced = Store(1, "a longer text");
  EXPECT_NE(replaced, old);
  EXPECT_EQ(StatusAt(old), 'R');
  EXPECT_EQ(StatusAt(replaced), 'N');
  EXPECT_EQ(TextOf(1), "a longer text");
  EXPECT_EQ(Plain(1).CountObjects(), 1);
  ExpectSound();
}

TEST_F(Objects, PutOfTheSameLengthTakesTheOldBlock) {
  const long old = Store(1, "text");
  EXPECT_EQ(Store(1, "TEXT"), old);
  EXPECT_EQ(TextOf(1), "TEXT");
  ExpectSound();
}

TEST_F(Objects, PutMayChangeTheObjectsOwnAddressOnly) {
  Store(1, "one");
  Store(2, "two");
  Store(3, "three");
  Store(2, "a longer two");
  EXPECT_EQ(TextOf(1), "one");
  EXPECT_EQ(TextOf(2), "a longer two");
  EXPECT_EQ(TextOf(3), "three");
  ExpectSound();
}

TEST_F(Objects, PutIsStillThereAfterReopening) {
  Store(1, "one");
  Store(1, "two");
  study.Reopen();
  EXPECT_EQ(TextOf(1), "two");
}

// ---- Deleting and removing ----

TEST_F(Objects, DeleteTakesTheKeyAndMarksTheBlock) {
  const long address = Store(1, "text");
  PlainRecord record = Plain(1);
  EXPECT_TRUE(record.DeleteObject());
  EXPECT_EQ(record.ObjectAddress(), address);
  EXPECT_EQ(StatusAt(address), 'D');
  EXPECT_FALSE(record.FindObject());
  EXPECT_EQ(record.CountObjects(), 0);
  ExpectSound();
}

TEST_F(Objects, RemoveTakesTheKeyAndMarksTheBlock) {
  const long address = Store(1, "text");
  PlainRecord record = Plain(1);
  EXPECT_TRUE(record.RemoveObject());
  EXPECT_EQ(record.ObjectAddress(), address);
  EXPECT_EQ(StatusAt(address), 'R');
  EXPECT_FALSE(record.FindObject());
  ExpectSound();
}

TEST_F(Objects, ASecondDeleteFindsNothing) {
  Store(1, "text");
  EXPECT_TRUE(Plain(1).DeleteObject());
  EXPECT_FALSE(Plain(1).DeleteObject());
  EXPECT_FALSE(Plain(1).RemoveObject());
}

TEST_F(Objects, ADeletedObjectComesBackByItsBlockAndKey) {
  const long address = Store(1, "text");
  PlainRecord record = Plain(1);
  record.DeleteObject();
  {
    const CLock lock(study.Pod(), 0);
    EXPECT_TRUE(study.Pod()->DataFile()->UnDelete(address));
  }
  EXPECT_FALSE(record.FindObject());
  EXPECT_TRUE(record.Add(address, plainClass));
  EXPECT_EQ(TextOf(1), "text");
  ExpectSound();
}

TEST_F(Objects, ARemovedObjectDoesNotComeBack) {
  const long address = Store(1, "text");
  Plain(1).RemoveObject();
  const CLock lock(study.Pod(), 0);
  EXPECT_FALSE(study.Pod()->DataFile()->UnDelete(address));
  EXPECT_EQ(StatusAt(address), 'R');
}

TEST_F(Objects, DeleteOfABlockThatIsFreeAlreadyLeavesTheKey) {
  for (const bool remove : {false, true}) {
    const long address = Store(1, "text");
    {
      const CLock lock(study.Pod(), 0);
      study.Pod()->DataFile()->Delete(address, true);
    }
    PlainRecord record = Plain(1);
    EXPECT_FALSE(remove ? record.RemoveObject() : record.DeleteObject());
    EXPECT_TRUE(record.FindObject());
    KSBKey key("          1", 0, 0);
    KSBKey scratch;
    record.RemoveKey(key, scratch, plainTree, true);
  }
}

TEST_F(Objects, PutReplacesAKeyThatLeadsToAFreedBlock) {
  const long address = Store(1, "text");
  Store(2, "other");
  {
    const CLock lock(study.Pod(), 0);
    study.Pod()->DataFile()->Delete(address, true);
  }
  Store(1, "a text that is longer");
  EXPECT_EQ(TextOf(1), "a text that is longer");
  EXPECT_EQ(TextOf(2), "other");
  EXPECT_TRUE(Plain(1).RemoveObject());
  EXPECT_FALSE(Plain(1).FindObject());
  ExpectSound();
}

TEST_F(Objects, ReplaceStoresNothingWithoutAnOldForm) {
  EXPECT_FALSE(Plain(1, "text").ReplaceObject());
  EXPECT_EQ(TextOf(1), "none");
  EXPECT_EQ(Plain(1).CountObjects(), 0);
}

TEST_F(Objects, ReplaceStoresTheSameBytesAsPut) {
  Store(1, "text");
  study.Close();
  const std::string data = ReadBytes(study.DataPath());
  const std::string index = ReadBytes(study.IndexPath());
  study.Open();
  Store(1, "much longer");
  study.Close();
  const std::string expectedData = ReadBytes(study.DataPath());
  const std::string expectedIndex = ReadBytes(study.IndexPath());
  WriteBytes(study.DataPath(), data);
  WriteBytes(study.IndexPath(), index);
  study.Open();
  EXPECT_TRUE(Plain(1, "much longer").ReplaceObject());
  study.Close();
  EXPECT_EQ(ReadBytes(study.DataPath()), expectedData);
  EXPECT_EQ(ReadBytes(study.IndexPath()), expectedIndex);
}

TEST_F(Objects, TheLastObjectLeavesAnEmptyTree) {
  {
    const CLock lock(study.Pod(), 0);
    for (int id = 1; id <= 100; ++id) Store(id, "text");
    for (int id = 1; id <= 100; ++id) EXPECT_TRUE(Plain(id).RemoveObject());
  }
  EXPECT_TRUE(ReadRawTree(ReadRawFile(study.IndexPath()), plainTree).empty());
  ExpectSound();
}

// ---- The lock ----

const std::vector<std::function<void(vbPersistent&)>> locking = {
    [](vbPersistent& object) { object.FindObject(); },
    [](vbPersistent& object) { object.GetObject(); },
    [](vbPersistent& object) { object.WriteObject(true); },
    [](vbPersistent& object) { object.WriteObject(false); },
    [](vbPersistent& object) { object.PutObject(); },
    [](vbPersistent& object) { object.DeleteObject(); },
    [](vbPersistent& object) { object.RemoveObject(); },
    [](vbPersistent& object) { object.ReadObject(68); },
    [](vbPersistent& object) { object.FirstObject(0); },
    [](vbPersistent& object) { object.NextObject(68); },
    [](vbPersistent& object) { object.PrevObject(68); },
    [](vbPersistent& object) { object.CountObjects(); },
    [](vbPersistent& object) { object.Add(0, 0); },
    [](vbPersistent& object) { object.Find(0, 0); },
    [](vbPersistent& object) { object.Delete(0, 0); },
    [](vbPersistent& object) { object.Remove(0, 0); },
};

TEST_F(Objects, EveryOperationTakesTheLock) {
  std::filesystem::create_directory(study.LockPath());
  for (std::size_t i = 0; i < locking.size(); ++i) {
    PlainRecord record = Plain(1);
    EXPECT_THROW(locking[i](record), CFileLock) << i;
  }
  std::filesystem::remove(study.LockPath());
}

TEST_F(Objects, EveryOperationReleasesTheLock) {
  for (std::size_t i = 0; i < locking.size(); ++i) {
    PlainRecord record = Plain(1);
    try {
      locking[i](record);
    } catch (const CEngErr&) {
      // Some have nothing to work on.
    }
    EXPECT_FALSE(study.Pod()->LockHeld()) << i;
    EXPECT_FALSE(std::filesystem::exists(study.LockPath())) << i;
  }
}

TEST_F(Objects, WhatIsDoneUnderOneLockReachesTheFileAtItsEnd) {
  const std::string before = ReadBytes(study.DataPath()).substr(0, 28);
  {
    const CLock lock(study.Pod(), 0);
    Store(1, "text");
    EXPECT_EQ(ReadBytes(study.DataPath()).substr(0, 28), before);
    EXPECT_EQ(TextOf(1), "text");
  }
  EXPECT_NE(ReadBytes(study.DataPath()).substr(0, 28), before);
  ExpectSound();
}

}  // namespace
