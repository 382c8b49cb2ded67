#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "tests/task/VersionedTable.h"

// What holds for both tables as objects. A test program that has a VersionedTableOf instantiates
// these tests for it.

namespace {

template <class Table>
class TaskObjects : public testing::Test {
 protected:
  Study study;
};

TYPED_TEST_SUITE_P(TaskObjects);

TYPED_TEST_P(TaskObjects, HaveTheirClass) {
  using Class = VersionedTableOf<TypeParam>;
  TypeParam table(this->study.Pod());
  EXPECT_EQ(table.GetVBClassID(), Class::ID);
  EXPECT_EQ(table.GetVBClassIndex(), static_cast<unsigned>(Class::Index));
  EXPECT_EQ(table.GetVBClassName(), Class::Name);
  EXPECT_EQ(table.GetVBClassVer(), Class::Version);
}

TYPED_TEST_P(TaskObjects, AreEmptyWhenNew) {
  const POD* const pod = this->study.Pod();
  for (const TypeParam& table : {TypeParam(this->study.Pod()), TypeParam(pod)}) {
    EXPECT_EQ(table.m_nID, 0);
    EXPECT_EQ(table.ObjectAddress(), 0);
    EXPECT_EQ(table.Database(), pod);
    ExpectEmpty(table);
  }
}

TYPED_TEST_P(TaskObjects, AreEmptiedByDefaultsAndKeepTheConnection) {
  TypeParam table = FilledTable<TypeParam>(this->study.Pod());
  table.SetDefaultAttributes();
  EXPECT_EQ(table.m_nID, 0);
  ExpectEmpty(table);
  EXPECT_EQ(table.Database(), this->study.Pod());
}

TYPED_TEST_P(TaskObjects, CopyEveryColumnAndKeepTheConnection) {
  TypeParam copy(this->study.Pod());
  copy.m_nID = 1;
  copy.PutObject();
  const long address = copy.ObjectAddress();
  copy.Copy(FilledTable<TypeParam>(nullptr));
  ExpectFilled(copy);
  EXPECT_EQ(copy.Database(), this->study.Pod());
  EXPECT_EQ(copy.ObjectAddress(), address);
}

TYPED_TEST_P(TaskObjects, CopyEachColumnAlone) {
  const auto columns = VersionedTableOf<TypeParam>::All();
  for (const auto& chosen : columns) {
    SCOPED_TRACE(chosen.column.filled);
    TypeParam source(this->study.Pod());
    chosen.column.fill(source);
    TypeParam copy = FilledTable<TypeParam>(nullptr);
    copy.Copy(source);
    EXPECT_EQ(copy.m_nID, 0);
    for (const auto& other : columns) {
      &other == &chosen ? other.column.expectFilled(copy) : other.column.expectEmpty(copy);
    }
  }
}

TYPED_TEST_P(TaskObjects, AreUsableAsAKeyWithAPositiveID) {
  for (const auto& [id, usable] : std::map<long, bool>{
           {-2147483648L, false}, {-1, false}, {0, false}, {1, true}, {2147483647L, true}}) {
    TypeParam table(this->study.Pod());
    table.m_nID = id;
    EXPECT_EQ(table.CheckKey(), usable) << id;
  }
}

TYPED_TEST_P(TaskObjects, HaveAKeyOfElevenColumns) {
  char text[64];
  for (const auto& [id, key] : std::map<long, std::string>{
           {1, "          1"}, {2000, "       2000"}, {2147483647L, " 2147483647"}}) {
    TypeParam table(this->study.Pod());
    table.m_nID = id;
    EXPECT_EQ(table.MakeKey(text), text);
    EXPECT_EQ(std::string(text), key);
  }
}

TYPED_TEST_P(TaskObjects, AreNotStoredWithoutATask) {
  TypeParam table(this->study.Pod());
  EXPECT_THROW(table.PutObject(), CInvalidKey);
  EXPECT_THROW(table.GetObject(), CInvalidKey);
}

TYPED_TEST_P(TaskObjects, AreReplacedByTheNextOneOfTheirTask) {
  TypeParam first(this->study.Pod());
  first.m_nID = 7;
  first.PutObject();
  FilledTable<TypeParam>(this->study.Pod()).PutObject();
  this->study.Reopen();
  TypeParam table(this->study.Pod());
  table.m_nID = 7;
  ASSERT_TRUE(table.GetObject());
  ExpectFilled(table);
  EXPECT_EQ(table.CountObjects(), 1);
  EXPECT_TRUE(table.RemoveObject());
  EXPECT_FALSE(table.GetObject());
}

REGISTER_TYPED_TEST_SUITE_P(TaskObjects, HaveTheirClass, AreEmptyWhenNew,
                            AreEmptiedByDefaultsAndKeepTheConnection,
                            CopyEveryColumnAndKeepTheConnection, CopyEachColumnAlone,
                            AreUsableAsAKeyWithAPositiveID, HaveAKeyOfElevenColumns,
                            AreNotStoredWithoutATask, AreReplacedByTheNextOneOfTheirTask);

}  // namespace
