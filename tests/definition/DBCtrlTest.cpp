#include "definition/DBCtrl.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "store/KestErr.h"
#include "store/vbdbase.h"
#include "task/Task.h"
#include "tests/support/Bytes.h"
#include "tests/support/RawFile.h"
#include "tests/support/StoredRecord.h"
#include "tests/support/Study.h"

namespace {

using IDs = std::vector<vbINT32>;

class ControlObject : public testing::Test {
 protected:
  ControlObject() { CDBCtrl(study.Pod()).PutObject(); }

  CDBCtrl Control() { return CDBCtrl(study.Pod()); }
  CDBCtrl Stored() {
    CDBCtrl control(study.Pod());
    EXPECT_TRUE(control.GetObject());
    return control;
  }
  /// The stored counters, in the order of inputs, responses, auxiliary definitions and tasks.
  std::vector<long> Counters() {
    const CDBCtrl control = Stored();
    return {control.NextInputID, control.NextRespID, control.NextAuxID, control.NextTaskID};
  }
  void Store(long nextTask, const IDs& tasks) {
    CDBCtrl control(study.Pod());
    control.NextTaskID = nextTask;
    control.TaskIDs = tasks;
    control.PutObject();
  }
  void StoreTasks(const std::vector<int>& ids, int parent = 0) {
    for (const int id : ids) {
      CTask task(study.Pod());
      task.m_nID = id;
      task.m_nParent = parent;
      task.PutObject();
    }
  }
  std::string Fault() {
    study.Close();
    return FaultOfClass(ReadRawFile(study.DataPath()), ReadRawFile(study.IndexPath()), 16000);
  }

  Study study;
};

// ---- The object ----

TEST_F(ControlObject, HasItsClassConstants) {
  EXPECT_EQ(CDBCtrl::m_nCTRL_VER, 2);
  EXPECT_EQ(CDBCtrl::m_nCTRL_INDX, 15);
  EXPECT_EQ(CDBCtrl::m_nCTRL_ID, 16000);
  EXPECT_EQ(CDBCtrl::m_strCLASS_NAME, "CDBCtrl");
  CDBCtrl control(study.Pod());
  EXPECT_EQ(control.GetVBClassID(), 16000);
  EXPECT_EQ(control.GetVBClassIndex(), 15U);
  EXPECT_EQ(control.GetVBClassName(), "CDBCtrl");
  EXPECT_EQ(control.GetVBClassVer(), 2);
}

TEST_F(ControlObject, CountsFromOneWhenNew) {
  const POD* const pod = study.Pod();
  for (const CDBCtrl& control : {CDBCtrl(study.Pod()), CDBCtrl(pod)}) {
    EXPECT_EQ(control.NextInputID, 1);
    EXPECT_EQ(control.NextRespID, 1);
    EXPECT_EQ(control.NextAuxID, 1);
    EXPECT_EQ(control.NextTaskID, 1);
    EXPECT_TRUE(control.TaskIDs.empty());
    EXPECT_EQ(control.ObjectAddress(), 0);
  }
  EXPECT_EQ(CDBCtrl(study.Pod()).Database(), pod);
  EXPECT_EQ(CDBCtrl(pod).Database(), pod);
}

TEST_F(ControlObject, SetDefaultAttributesSetsTheCountersAndLeavesTheList) {
  CDBCtrl control(study.Pod());
  control.NextInputID = control.NextRespID = control.NextAuxID = control.NextTaskID = 9;
  control.TaskIDs = {3, 4};
  control.SetDefaultAttributes();
  EXPECT_EQ(control.NextInputID, 1);
  EXPECT_EQ(control.NextRespID, 1);
  EXPECT_EQ(control.NextAuxID, 1);
  EXPECT_EQ(control.NextTaskID, 1);
  EXPECT_EQ(control.TaskIDs, (IDs{3, 4}));
  EXPECT_EQ(control.Database(), study.Pod());
}

TEST_F(ControlObject, CopyPutsTheResponseCounterIntoThatOfInputsAndKeepsItsOwn) {
  CDBCtrl source(static_cast<POD*>(nullptr));
  source.NextInputID = 10;
  source.NextRespID = 20;
  source.NextAuxID = 30;
  source.NextTaskID = 40;
  source.TaskIDs = {50, 60};
  CDBCtrl copy(study.Pod());
  copy.NextInputID = 1;
  copy.NextRespID = 2;
  copy.NextAuxID = 3;
  copy.NextTaskID = 4;
  copy.TaskIDs = {5};
  copy.Copy(source);
  EXPECT_EQ(copy.NextInputID, 20);
  EXPECT_EQ(copy.NextRespID, 2);
  EXPECT_EQ(copy.NextAuxID, 30);
  EXPECT_EQ(copy.NextTaskID, 40);
  EXPECT_EQ(copy.TaskIDs, (IDs{50, 60}));
  EXPECT_EQ(copy.Database(), study.Pod());
}

TEST_F(ControlObject, HasTheKeyOfOne) {
  CDBCtrl control(study.Pod());
  EXPECT_TRUE(control.CheckKey());
  char text[64];
  EXPECT_EQ(control.MakeKey(text), text);
  EXPECT_STREQ(text, "          1");
}

TEST_F(ControlObject, ExistsOnce) {
  EXPECT_THROW(Control().WriteObject(true), CObjectNotAdded);
  CDBCtrl control(study.Pod());
  control.NextAuxID = 7;
  control.PutObject();
  EXPECT_EQ(control.CountObjects(), 1);
  EXPECT_EQ(Stored().NextAuxID, 7);
}

TEST_F(ControlObject, IsMadeWithTheStudy) {
  study.Close();
  std::filesystem::remove(study.DataPath());
  std::filesystem::remove(study.IndexPath());
  study.Open();
  EXPECT_EQ(Counters(), (std::vector<long>{1, 1, 1, 1}));
}

TEST_F(ControlObject, ThatWasLostIsMadeAnewWhenTheStudyIsOpened) {
  EXPECT_EQ(Control().GetInputID(true), 1);
  ASSERT_TRUE(Control().RemoveObject());
  study.Reopen();
  EXPECT_EQ(Counters(), (std::vector<long>{1, 1, 1, 1}));
}

TEST_F(ControlObject, KeepsItsCountersWhenTheStudyIsOpenedAgain) {
  EXPECT_EQ(Control().GetInputID(true), 1);
  study.Reopen();
  EXPECT_EQ(Counters(), (std::vector<long>{2, 1, 1, 1}));
}

// ---- IDs of definitions ----

struct Kind {
  const char* name;
  int (CDBCtrl::*next)(bool);
  std::size_t counter;  ///< in Counters()
};

const Kind kinds[] = {
    {"inputs", &CDBCtrl::GetInputID, 0},
    {"responses", &CDBCtrl::GetRespID, 1},
    {"auxiliary definitions", &CDBCtrl::GetAuxID, 2},
};

TEST_F(ControlObject, GivesOneAndTwoAndShowsTwoBetween) {
  for (const Kind& kind : kinds) {
    SCOPED_TRACE(kind.name);
    std::vector<long> expected = Counters();
    EXPECT_EQ((Control().*kind.next)(false), 1);
    EXPECT_EQ(Counters(), expected);
    EXPECT_EQ((Control().*kind.next)(true), 1);
    expected[kind.counter] = 2;
    EXPECT_EQ(Counters(), expected);
    EXPECT_EQ((Control().*kind.next)(false), 2);
    EXPECT_EQ(Counters(), expected);
    EXPECT_EQ((Control().*kind.next)(true), 2);
    expected[kind.counter] = 3;
    EXPECT_EQ(Counters(), expected);
  }
  EXPECT_EQ(Fault(), "");
}

TEST_F(ControlObject, ReadsTheStoredCountersAnewForEachRequest) {
  CDBCtrl control(study.Pod());
  EXPECT_EQ(control.GetInputID(false), 1);
  EXPECT_EQ(control.GetInputID(false), 1);
  EXPECT_EQ(Control().GetInputID(true), 1);
  EXPECT_EQ(control.GetInputID(true), 2);
  EXPECT_EQ(Control().GetInputID(true), 3);
}

TEST_F(ControlObject, GivesNoIDTwiceWhenItsDefinitionIsGone) {
  for (int id = 1; id <= 100; ++id) EXPECT_EQ(Control().GetRespID(true), id);
  study.Reopen();
  EXPECT_EQ(Control().GetRespID(true), 101);
  EXPECT_EQ(CDBCtrl(study.Pod()).CountObjects(), 1);
  EXPECT_EQ(Fault(), "");
}

TEST_F(ControlObject, GivesTheLargestNumber) {
  CDBCtrl control(study.Pod());
  control.NextInputID = 2147483647;
  control.PutObject();
  EXPECT_EQ(Control().GetInputID(false), 2147483647);
  EXPECT_EQ(Control().GetInputID(true), 2147483647);
}

TEST_F(ControlObject, KeepsTheOtherFieldsWhenItGivesAnID) {
  Store(5, {8, 9});
  EXPECT_EQ(Control().GetAuxID(true), 1);
  EXPECT_EQ(Counters(), (std::vector<long>{1, 1, 2, 5}));
  EXPECT_EQ(Stored().TaskIDs, (IDs{8, 9}));
}

// ---- IDs of tasks ----

TEST_F(ControlObject, GivesTheSmallestTaskIDThatIsFree) {
  EXPECT_EQ(Control().GetTaskID(true), 1);
  StoreTasks({1, 2, 4});
  EXPECT_EQ(Control().GetTaskID(true), 3);
  EXPECT_EQ(Control().GetTaskID(false), 3);
  StoreTasks({3});
  EXPECT_EQ(Control().GetTaskID(true), 5);
  CTask removed(study.Pod());
  removed.m_nID = 1;
  ASSERT_TRUE(removed.RemoveObject());
  EXPECT_EQ(Control().GetTaskID(true), 1);
}

TEST_F(ControlObject, GivesTheSameTaskIDTwiceWhenNoTaskIsMade) {
  StoreTasks({1});
  EXPECT_EQ(Control().GetTaskID(true), 2);
  EXPECT_EQ(Control().GetTaskID(true), 2);
  EXPECT_EQ(Counters(), (std::vector<long>{1, 1, 1, 1}));
  EXPECT_TRUE(Stored().TaskIDs.empty());
  EXPECT_EQ(CDBCtrl(study.Pod()).CountObjects(), 1);
  EXPECT_EQ(Fault(), "");
}

TEST_F(ControlObject, IgnoresCounterAndListForTaskIDs) {
  Store(9, {1, 2});
  EXPECT_EQ(Control().GetTaskID(true), 1);
  EXPECT_EQ(Counters(), (std::vector<long>{1, 1, 1, 9}));
  EXPECT_EQ(Stored().TaskIDs, (IDs{1, 2}));
}

TEST_F(ControlObject, TakesNoHeedOfChildTasks) {
  StoreTasks({1});
  StoreTasks({2}, 1);
  EXPECT_EQ(Control().GetTaskID(false), 2);
}

TEST_F(ControlObject, FindsTheSmallestNumberThatIsNotInAList) {
  const CDBCtrl control(study.Pod());
  EXPECT_EQ(control.GetNewTaskID({}), 1);
  EXPECT_EQ(control.GetNewTaskID({1}), 2);
  EXPECT_EQ(control.GetNewTaskID({2}), 1);
  EXPECT_EQ(control.GetNewTaskID({1, 2, 4}), 3);
  EXPECT_EQ(control.GetNewTaskID({4, 2, 1}), 3);
  EXPECT_EQ(control.GetNewTaskID({3, 1, 2}), 4);
  EXPECT_EQ(control.GetNewTaskID({1, 1, 1, 2, 2}), 3);
  EXPECT_EQ(control.GetNewTaskID({-2147483647 - 1, -1, 0, 1}), 2);
  EXPECT_EQ(control.GetNewTaskID({2147483647}), 1);
}

// ---- The list of tasks ----

TEST_F(ControlObject, TakesAnIDOutOfTheList) {
  CDBCtrl control(study.Pod());
  control.TaskIDs = {4, 5, 6, 5};
  control.RemoveID(5);
  EXPECT_EQ(control.TaskIDs, (IDs{4, 6, 5}));
  control.RemoveID(4);
  EXPECT_EQ(control.TaskIDs, (IDs{6, 5}));
  control.RemoveID(5);
  EXPECT_EQ(control.TaskIDs, (IDs{6}));
  control.RemoveID(6);
  EXPECT_TRUE(control.TaskIDs.empty());
}

TEST_F(ControlObject, TakesTheLastIDOutForOneThatIsNotInTheList) {
  CDBCtrl control(study.Pod());
  control.TaskIDs = {4, 5, 6};
  control.RemoveID(7);
  EXPECT_EQ(control.TaskIDs, (IDs{4, 5}));
  control.RemoveID(0);
  EXPECT_EQ(control.TaskIDs, (IDs{4}));
  control.RemoveID(-4);
  EXPECT_TRUE(control.TaskIDs.empty());
  control.RemoveID(1);
  EXPECT_TRUE(control.TaskIDs.empty());
}

TEST_F(ControlObject, RemovesATaskIDFromTheStoredList) {
  Store(1, {4, 5, 6});
  Control().RemoveTaskID(5, true);
  EXPECT_EQ(Stored().TaskIDs, (IDs{4, 6}));
  Control().RemoveTaskID(99, true);
  EXPECT_EQ(Stored().TaskIDs, (IDs{4}));
  EXPECT_EQ(Counters(), (std::vector<long>{1, 1, 1, 1}));
  EXPECT_EQ(Fault(), "");
}

TEST_F(ControlObject, RemovesATaskIDFromItsOwnListOnlyWhereItIsNotToCommit) {
  Store(3, {});
  StoreTasks({1, 2});
  CDBCtrl control(study.Pod());
  control.RemoveTaskID(1, false);
  EXPECT_EQ(control.TaskIDs, (IDs{2}));
  EXPECT_EQ(control.NextTaskID, 1);
  EXPECT_TRUE(Stored().TaskIDs.empty());
  EXPECT_EQ(Stored().NextTaskID, 3);
}

TEST_F(ControlObject, ListsTheTasksOfAStudyThatCountedThem) {
  Store(5, {});
  StoreTasks({1, 3});
  Control().RemoveTaskID(3, true);
  EXPECT_EQ(Stored().TaskIDs, (IDs{1}));
  EXPECT_EQ(Stored().NextTaskID, 1);
}

TEST_F(ControlObject, ListsTheOnlyTaskOfACounterOfTwo) {
  Store(2, {7});
  StoreTasks({1});
  Control().RemoveTaskID(7, true);
  EXPECT_EQ(Stored().TaskIDs, (IDs{1}));
  EXPECT_EQ(Stored().NextTaskID, 1);
}

TEST_F(ControlObject, ListsCountedTasksBehindThoseOfTheListAndOnlyBelowTheCounter) {
  Store(4, {9, 3});
  StoreTasks({4, 3, 1, 8});
  Control().RemoveTaskID(3, true);
  EXPECT_EQ(Stored().TaskIDs, (IDs{9, 1, 3}));
}

TEST_F(ControlObject, ListsCountedTasksThatAreChildren) {
  Store(3, {});
  StoreTasks({1, 2}, 7);
  Control().RemoveTaskID(1, true);
  EXPECT_EQ(Stored().TaskIDs, (IDs{2}));
}

TEST_F(ControlObject, ListsCountedTasksWhoseRecordCannotBeRead) {
  Store(4, {});
  StoreTasks({1, 3});
  CTask old(study.Pod());
  old.m_nID = 2;
  const long address = StoreRecord(study.Pod(), 3000, Bytes("08 00 00 00 02 00 00 00"));
  ASSERT_TRUE(old.Add(address, 3000));
  Control().RemoveTaskID(3, true);
  EXPECT_EQ(Stored().TaskIDs, (IDs{1, 2}));
}

TEST_F(ControlObject, CountsNothingFromACounterOfOneOrBelow) {
  StoreTasks({1, 2});
  for (const long counter : {1L, 0L, -1L, -2147483648L}) {
    Store(counter, {7, 8});
    Control().RemoveTaskID(8, true);
    EXPECT_EQ(Stored().TaskIDs, (IDs{7}));
    EXPECT_EQ(Stored().NextTaskID, counter);
  }
}

TEST_F(ControlObject, ListsTheTasksOfTheLargestCounterAtOnce) {
  Store(2147483647, {});
  StoreTasks({5, 2147483646, 2147483647});
  Control().RemoveTaskID(5, true);
  EXPECT_EQ(Stored().TaskIDs, (IDs{2147483646}));
  EXPECT_EQ(Stored().NextTaskID, 1);
}

// ---- Failures ----

const std::function<void(CDBCtrl&)> requests[] = {
    [](CDBCtrl& control) { control.GetInputID(true); },
    [](CDBCtrl& control) { control.GetRespID(true); },
    [](CDBCtrl& control) { control.GetAuxID(true); },
    [](CDBCtrl& control) { control.GetTaskID(true); },
    [](CDBCtrl& control) { control.RemoveTaskID(1, true); },
};

TEST_F(ControlObject, WithoutADatabaseSaysThatNoneIsOpen) {
  for (const auto& request : requests) {
    CDBCtrl control(static_cast<POD*>(nullptr));
    try {
      request(control);
      ADD_FAILURE();
    } catch (const CNoDatabaseOpen& error) {
      EXPECT_STREQ(error.what(), "No database open");
    }
  }
}

TEST_F(ControlObject, ThatIsNotStoredIsNotFound) {
  ASSERT_TRUE(Control().RemoveObject());
  for (const auto& request : requests) {
    CDBCtrl control(study.Pod());
    EXPECT_THROW(request(control), CObjectNotFound);
  }
}

TEST_F(ControlObject, WhoseBlockIsFreeCannotBeRemoved) {
  const vbINT32 address = Stored().ObjectAddress();
  ASSERT_TRUE(study.Pod()->DataFile()->Delete(address, false));
  for (const auto& request : requests) {
    CDBCtrl control(study.Pod());
    EXPECT_THROW(request(control), CObjectNotRemoved);
  }
}

TEST_F(ControlObject, ThatIsDamagedGivesNoID) {
  const long address = Stored().ObjectAddress();
  study.Close();
  PatchBytes(study.DataPath(), address + 16, "\x09");
  study.Open();
  for (const auto& request : requests) {
    CDBCtrl control(study.Pod());
    EXPECT_THROW(request(control), CChecksum);
  }
}

TEST_F(ControlObject, GivesIDsUnderTheLockOnly) {
  std::filesystem::create_directory(study.LockPath());
  for (const auto& request : requests) {
    CDBCtrl control(study.Pod());
    EXPECT_THROW(request(control), CFileLock);
  }
  std::filesystem::remove(study.LockPath());
}

}  // namespace
