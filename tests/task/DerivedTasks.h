#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/Bytes.h"
#include "tests/support/StoredRecord.h"
#include "tests/task/ClockText.h"
#include "tests/task/FunctionsStudy.h"
#include "tests/task/TaskFiles.h"

/// A study whose task 1 was made at "then", from which others are made "now", and what is expected
/// of those.
class DerivedTasks : public FunctionsStudy {
 protected:
  void SetUp() override {
    FunctionsStudy::SetUp();
    auto old = Stored<CTask>(1);
    old.m_strCreated = "then";
    old.PutObject();
  }

  void SetStoredType(int type) {
    auto old = Stored<CTask>(1);
    old.m_nType = type;
    old.PutObject();
  }

  /// Task 1 has so many points, each with values of its own, of which the task tells as its
  /// starting points.
  void StorePoints(int count) {
    for (int number = 0; number < count; ++number) StorePoint(number);
    auto old = Stored<CTask>(1);
    old.m_uNumPoints = static_cast<unsigned long>(count);
    old.m_vnAnalyzeFlags.assign(static_cast<std::size_t>(count), 1);
    for (int number = 0; number < count; ++number) old.m_vnPointLocked.push_back(number % 2);
    old.PutObject();
  }
  void StorePoint(int number) { PointOf(1, number, number).PutObject(); }
  /// A point of a task with the values that task 1 has in point `from`.
  CDPoint PointOf(int task, int number, int from) {
    const double base = 10.0 * from;
    CDPoint point(Pod());
    point.m_nTaskID = task;
    point.m_nPointID = number;
    point.m_nPointFlag = 7 + from;
    point.m_IDVar = {base, base + 1, base + 2, base + 3, base + 4};
    point.m_LDVar = {base + 5};
    point.m_SDVar = {base + 6, base + 7};
    point.m_CDVar = {base + 8};
    point.m_IResp = {base + 9, base + 10};
    point.m_LResp = {base + 11};
    point.m_SResp = {base + 12};
    return point;
  }
  int CountPoints(int task) const { return ClassesOfTask(Files(), task)[12000]; }

  /// What is stored under the key of `expected` is the same, byte for byte.
  template <class Record>
  void ExpectStored(Record expected) {
    Record stored(Pod());
    stored.Copy(expected);
    ASSERT_TRUE(stored.GetObject()) << Record::m_strCLASS_NAME;
    const std::string bytes = StoredRecord(stored);
    expected.Connect(Pod());
    expected.PutObject();
    EXPECT_EQ(Hex(bytes), Hex(StoredRecord(expected))) << Record::m_strCLASS_NAME;
  }
  /// Task `to` has a copy of that record of task 1.
  template <class Record>
  void ExpectCopied(int to) {
    auto record = Stored<Record>(1);
    record.m_nID = to;
    ExpectStored(record);
  }
  void ExpectTablesCopied(int to) {
    ExpectCopied<CDVar>(to);
    ExpectCopied<CDResp>(to);
    ExpectCopied<CDCons>(to);
    ExpectCopied<CDObj>(to);
    ExpectCopied<CDLink>(to);
    ExpectCopied<CDEqn>(to);
    ExpectCopied<CDSet>(to);
  }
  void ExpectNoMessages(int task) {
    CMessage messages(Pod());
    messages.m_nID = task;
    ExpectStored(messages);
  }
  void ExpectNotRun(int task, int points) {
    CResult result(Pod());
    result.m_nID = task;
    result.m_nNumPoints = points;
    result.m_nTotalPoints = 1;
    ExpectStored(result);
  }

  StudyFiles Files() const { return ReadStudyFiles(study); }
  /// Leftovers of a failed attempt: nothing else may have changed.
  void ExpectUnchangedBut(const StudyFiles& before, int task) {
    StudyFiles after = WithoutTask(Files(), task);
    StudyFiles expected = before;
    // Taking an ID moves the object that hands IDs out.
    for (StudyFiles* files : {&after, &expected}) {
      std::erase_if(files->objects, [](const auto& e) { return WordAt(e.second, 0) == 16000; });
      std::erase_if(files->keys, [](const auto& e) { return e.first.starts_with("15 "); });
    }
    EXPECT_EQ(after, expected);
  }

  ClockText now{"now\n"};
};

template <class Record>
void RemoveOf(POD* pod, int task) {
  Record record(pod);
  record.m_nID = task;
  ASSERT_TRUE(record.RemoveObject());
}

/// A record that the old task lacks, and those that a failed attempt leaves then.
struct MissingRecord {
  const char* name;
  void (*remove)(POD*, int);
  Names left;
};
