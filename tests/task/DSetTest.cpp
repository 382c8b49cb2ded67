#include "task/DSet.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "definition/Auxiliary.h"
#include "index/KSBKey.h"
#include "tests/task/TableTests.h"

template <>
struct TableOf<CDSet> {
  static constexpr int ID = 14000;
  static constexpr int Index = 13;
  static constexpr const char* Name = "CDSet";
  // The names stand before the IDs.
  static Columns<CDSet> All() {
    return {
        {&CDSet::m_vstrName,
         {{"ab", "", "c"}, "03 00 00 00 02 00 00 00 61 62 01 00 00 00 00 01 00 00 00 63 "},
         {{"ab", "", "d"}, "03 00 00 00 02 00 00 00 61 62 01 00 00 00 00 01 00 00 00 64 "},
         {0, 4, 10, 15}},
        {&CDSet::m_vnAuxID,
         {{3, 258}, "02 00 00 00 03 00 00 00 02 01 00 00 "},
         {{3, -1}, "02 00 00 00 03 00 00 00 FF FF FF FF "}},
        {&CDSet::m_mdValues,
         {{{-2.0, 1.0}, {}, {0.1}},
          "03 00 00 00 02 00 00 00 C0 00 00 00 00 00 00 00 3F F0 00 00 00 00 00 00 "
          "00 00 00 00 01 00 00 00 3F B9 99 99 99 99 99 9A "},
         {{{-2.0, 1.0}, {}, {5.0}},
          "03 00 00 00 02 00 00 00 C0 00 00 00 00 00 00 00 3F F0 00 00 00 00 00 00 "
          "00 00 00 00 01 00 00 00 40 14 00 00 00 00 00 00 "},
         {0, 4, 24, 28}},
    };
  }
};

namespace {

INSTANTIATE_TYPED_TEST_SUITE_P(OfSets, TaskTable, CDSet);

TEST(TaskSets, HaveTheirClassConstants) {
  EXPECT_EQ(CDSet::m_nDSET_VER, 1);
  EXPECT_EQ(CDSet::m_nDSET_INDX, 13);
  EXPECT_EQ(CDSet::m_nDSET_ID, 14000);
  EXPECT_EQ(CDSet::m_strCLASS_NAME, "CDSet");
}

// ---- Adding ----

CAuxiliary Definition(int id, const std::string& name, const std::vector<vbFLOAT64>& members) {
  CAuxiliary set(static_cast<POD*>(nullptr));
  set.m_nID = id;
  set.m_strName = name;
  set.m_vfValues = members;
  set.m_vfCoef = {77.0};
  set.m_strArgs = "not,of,a,set";
  set.m_strEquation = "neither";
  return set;
}

TEST(TaskSets, AddADefinitionBehindTheOthers) {
  CDSet sets(static_cast<POD*>(nullptr));
  CAuxiliary second = Definition(20, "second", {-1.5, 2.5});
  CAuxiliary first = Definition(3, "first", {0.25});
  CAuxiliary nothing = Definition(0, "", {});
  sets.AddSet(second);
  sets.AddSet(first);
  sets.AddSet(nothing);
  sets.AddSet(second);
  EXPECT_EQ(sets.m_vnAuxID, (std::vector<vbINT32>{20, 3, 0, 20}));
  EXPECT_EQ(sets.m_vstrName, (std::vector<std::string>{"second", "first", "", "second"}));
  EXPECT_EQ(sets.m_mdValues,
            (std::vector<std::vector<vbFLOAT64>>{{-1.5, 2.5}, {0.25}, {}, {-1.5, 2.5}}));
  EXPECT_EQ(sets.m_nID, 0);
  EXPECT_EQ(second.m_vfValues, (std::vector<vbFLOAT64>{-1.5, 2.5}));
}

// ---- All sets ----

class AllSets : public testing::Test {
 protected:
  CDSet Store(int id) {
    CDSet sets(study.Pod());
    sets.m_nID = id;
    sets.PutObject();
    return sets;
  }

  std::vector<int> All() {
    std::vector<int> ids{77, 78};
    CDSet::GetAllSets(study.Pod(), ids);
    return ids;
  }

  Study study;
};

void List(POD* pod) {
  std::vector<int> ids;
  CDSet::GetAllSets(pod, ids);
}

TEST_F(AllSets, OfANewStudyAreNone) {
  EXPECT_TRUE(All().empty());
}

TEST_F(AllSets, AreTheTasksAscending) {
  for (const int id : {10, 9, 2147483647, 1, 100}) Store(id);
  EXPECT_EQ(All(), (std::vector<int>{1, 9, 10, 100, 2147483647}));
}

TEST_F(AllSets, AreThoseOfTheDataFileWithOrWithoutAKey) {
  Store(2);
  CDSet lost = Store(1);
  char buffer[64];
  KSBKey key(lost.MakeKey(buffer), 0, 0);
  KSBKey scratch;
  ASSERT_TRUE(lost.RemoveKey(key, scratch, 13, true));
  EXPECT_EQ(All(), (std::vector<int>{1, 2}));
}

TEST_F(AllSets, AreWithoutThoseRemoved) {
  for (int id = 1; id <= 6; ++id) Store(id);
  CDSet sets(study.Pod());
  sets.m_nID = 1;
  ASSERT_TRUE(sets.RemoveObject());
  sets.m_nID = 4;
  ASSERT_TRUE(sets.DeleteObject());
  EXPECT_EQ(All(), (std::vector<int>{2, 3, 5, 6}));
}

TEST_F(AllSets, ThatAreDamagedAreNotPassedOver) {
  const CDSet sets = Store(1);
  study.Close();
  PatchBytes(study.DataPath(), sets.ObjectAddress() + 12, "\x08");
  study.Open();
  EXPECT_THROW(All(), CChecksum);
}

TEST_F(AllSets, OfNoDatabaseAreANullPointer) {
  EXPECT_THROW(List(nullptr), CNullPtr);
}

TEST_F(AllSets, WithoutIndexingAreToldSoBeforeMissingFiles) {
  POD pod(study.folder / "other.ksb");
  EXPECT_THROW(List(&pod), CNoIndex);
}

TEST_F(AllSets, WithoutADataFileAreANullPointer) {
  study.Pod()->CloseDataFile();
  EXPECT_THROW(List(study.Pod()), CNullPtr);
}

TEST_F(AllSets, WithoutAnIndexFileAreANullPointer) {
  study.Pod()->CloseIndex();
  EXPECT_THROW(List(study.Pod()), CNullPtr);
}

TEST_F(AllSets, AreListedUnderTheLockOnly) {
  std::filesystem::create_directory(study.LockPath());
  EXPECT_THROW(All(), CFileLock);
  std::filesystem::remove(study.LockPath());
}

}  // namespace
