#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "definition/GPoint.h"
#include "index/KSBKey.h"
#include "index/vbtree.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/pod.h"
#include "store/vbdbase.h"
#include "tests/support/SampleRecord.h"
#include "tests/support/Study.h"

// Keys: their texts, what makes a key usable, and the operations on the tree of a class.

namespace {

template <class Class>
std::string KeyText(Class& object) {
  char text[64];
  EXPECT_EQ(object.MakeKey(text), text);
  return text;
}

POD* const noDatabase = nullptr;

TEST(KeyText, OfOneField) {
  PlainRecord record(noDatabase);
  record.m_nID = 7;
  EXPECT_EQ(KeyText(record), "          7");
  record.m_nID = 2147483647;
  EXPECT_EQ(KeyText(record), " 2147483647");
}

TEST(KeyText, OfTwoFields) {
  SampleRecord record(noDatabase);
  record.m_nID = 12;
  record.m_nNumber = 0;
  EXPECT_EQ(KeyText(record), "         12          0");
}

TEST(KeyText, OfThreeFields) {
  TripleRecord record(noDatabase);
  record.m_nFirst = 1;
  record.m_nSecond = 23;
  record.m_nThird = 2147483647;
  EXPECT_EQ(KeyText(record), "          1         23 2147483647");
}

TEST(KeyText, OfNegativeFieldsStaysWithin33Characters) {
  TripleRecord record(noDatabase);
  record.m_nFirst = record.m_nSecond = record.m_nThird = std::numeric_limits<int>::min();
  EXPECT_EQ(KeyText(record), "-2147483648-2147483648-2147483648");
}

TEST(KeyText, OfASingletonIsThatOfOne) {
  CGPoint points(noDatabase);
  EXPECT_EQ(KeyText(points), "          1");
}

TEST(KeyCheck, OneFieldHasToBeAboveZero) {
  PlainRecord record(noDatabase);
  for (const auto& [id, usable] : {std::pair{-1, false}, {0, false}, {1, true}}) {
    record.m_nID = id;
    EXPECT_EQ(record.CheckKey(), usable) << id;
  }
}

TEST(KeyCheck, ASecondFieldMayBeZero) {
  struct Case {
    int id, number;
    bool usable;
  };
  for (const Case& c : {Case{0, 0, false}, Case{0, 1, false}, Case{1, -1, false}, Case{1, 0, true},
                        Case{1, 1, true}}) {
    SampleRecord record(noDatabase);
    record.m_nID = c.id;
    record.m_nNumber = c.number;
    EXPECT_EQ(record.CheckKey(), c.usable) << c.id << ' ' << c.number;
  }
}

TEST(KeyCheck, SecondAndThirdFieldMayBeZero) {
  struct Case {
    int first, second, third;
    bool usable;
  };
  for (const Case& c : {Case{0, 1, 1, false}, Case{1, -1, 0, false}, Case{1, 0, -1, false},
                        Case{1, 0, 0, true}, Case{1, 2, 3, true}}) {
    TripleRecord record(noDatabase);
    record.m_nFirst = c.first;
    record.m_nSecond = c.second;
    record.m_nThird = c.third;
    EXPECT_EQ(record.CheckKey(), c.usable) << c.first << ' ' << c.second << ' ' << c.third;
  }
}

TEST(KeyCheck, ASingletonsKeyIsAlwaysUsable) {
  CGPoint points(noDatabase);
  EXPECT_TRUE(points.CheckKey());
}

// ---- Keys in the tree ----

class Keys : public testing::Test {
 protected:
  void Store(int first, int second, int third) {
    TripleRecord record(study.Pod());
    record.m_nFirst = first;
    record.m_nSecond = second;
    record.m_nThird = third;
    record.WriteObject(true);
  }

  /// The texts of the triple records' tree in its order.
  std::vector<std::string> TreeOrder() {
    vBtree& tree = *study.Pod()->Index(24);
    KSBKey key;
    std::vector<std::string> texts;
    for (bool found = tree.FindFirst(key, true); found; found = tree.FindNext(key, scratch, true)) {
      texts.push_back(key.ObjectName);
    }
    return texts;
  }

  Study study;
  KSBKey scratch;
};

TEST_F(Keys, AreInNumericOrderFromTheFirstFieldToTheLast) {
  Store(10, 0, 0);
  Store(9, 100, 5);
  Store(9, 20, 1000);
  Store(9, 20, 999);
  Store(2147483647, 0, 0);
  EXPECT_EQ(TreeOrder(), (std::vector<std::string>{
                             "          9         20        999",
                             "          9         20       1000",
                             "          9        100          5",
                             "         10          0          0",
                             " 2147483647          0          0",
                         }));
}

TEST_F(Keys, AddPutsAddressAndClassIntoTheTree) {
  PlainRecord record(study.Pod());
  record.m_nID = 3;
  EXPECT_TRUE(record.Add(1234, 5678));
  KSBKey key("          3", 0, 0);
  ASSERT_TRUE(record.FindKey(key, scratch, 23, true));
  EXPECT_EQ(key.ObjectAddress, 1234);
  EXPECT_EQ(key.ObjectClassID, 5678);
}

TEST_F(Keys, AddRefusesAKeyThatIsThere) {
  PlainRecord record(study.Pod());
  record.m_nID = 3;
  record.Add(1234, 24000);
  EXPECT_THROW(record.Add(1235, 24000), CDuplicateEntry);
}

TEST_F(Keys, FindTakesTheAddressFromTheTreeAndLoadsNothing) {
  PlainRecord record(study.Pod());
  record.m_nID = 3;
  record.m_strText = "in memory";
  record.Add(1234, 24000);
  EXPECT_EQ(record.ObjectAddress(), 0);
  EXPECT_TRUE(record.Find(99, 99));
  EXPECT_EQ(record.ObjectAddress(), 1234);
  EXPECT_EQ(record.m_strText, "in memory");
}

TEST_F(Keys, FindOfAMissingKeyKeepsTheAddress) {
  PlainRecord record(study.Pod());
  record.m_nID = 3;
  record.Add(1234, 24000);
  record.Find(0, 0);
  record.m_nID = 4;
  EXPECT_FALSE(record.Find(0, 0));
  EXPECT_EQ(record.ObjectAddress(), 1234);
}

TEST_F(Keys, EachClassHasATreeOfItsOwn) {
  PlainRecord record(study.Pod());
  record.m_nID = 3;
  record.Add(1234, 24000);
  KSBKey key("          3", 0, 0);
  EXPECT_FALSE(record.FindKey(key, scratch, 24, true));
  EXPECT_TRUE(record.FindKey(key, scratch, 23, true));
}

TEST_F(Keys, KeysOfAnyTreeAreAddedFoundAndRemoved) {
  PlainRecord any(study.Pod());
  KSBKey key("some text", 11, 12);
  EXPECT_TRUE(any.AddKey(key, scratch, 0, false));
  KSBKey found("some text", 0, 0);
  EXPECT_TRUE(any.FindKey(found, scratch, 0, false));
  EXPECT_EQ(found.ObjectAddress, 11);
  EXPECT_TRUE(any.RemoveKey(found, scratch, 0, false));
  KSBKey gone("some text", 0, 0);
  EXPECT_FALSE(any.FindKey(gone, scratch, 0, false));
  EXPECT_THROW(any.RemoveKey(gone, scratch, 0, false), CObjectNotFound);
}

TEST_F(Keys, ThereIsNoTreeBeyondTheTable) {
  PlainRecord any(study.Pod());
  KSBKey key("some text", 11, 12);
  EXPECT_THROW(any.AddKey(key, scratch, 25, true), CNullPtr);
  EXPECT_THROW(any.FindKey(key, scratch, 26, true), CNullPtr);
  EXPECT_THROW(any.RemoveKey(key, scratch, 1000, true), CNullPtr);
}

// ---- What every keyed operation asks for ----

using Operation = std::function<void(vbPersistent&)>;

const std::vector<Operation> keyed = {
    [](vbPersistent& object) { object.Add(0, 0); },
    [](vbPersistent& object) { object.Find(0, 0); },
    [](vbPersistent& object) { object.Delete(0, 0); },
    [](vbPersistent& object) { object.Remove(0, 0); },
    [](vbPersistent& object) { object.FindObject(); },
    [](vbPersistent& object) { object.GetObject(); },
    [](vbPersistent& object) { object.WriteObject(true); },
    [](vbPersistent& object) { object.WriteObject(false); },
    [](vbPersistent& object) { object.PutObject(); },
    [](vbPersistent& object) { object.DeleteObject(); },
    [](vbPersistent& object) { object.RemoveObject(); },
};

TEST_F(Keys, AnIDOfZeroIsAnInvalidKeyInEveryOperation) {
  for (std::size_t i = 0; i < keyed.size(); ++i) {
    PlainRecord record(study.Pod());
    EXPECT_THROW(keyed[i](record), CInvalidKey) << i;
  }
}

TEST_F(Keys, ASingletonNeedsNoID) {
  CGPoint points(study.Pod());
  EXPECT_TRUE(points.FindObject());
  EXPECT_TRUE(points.GetObject());
  EXPECT_TRUE(points.PutObject());
  EXPECT_TRUE(points.RemoveObject());
  EXPECT_FALSE(points.FindObject());
}

class NoIndexing : public testing::TestWithParam<int> {};

TEST_P(NoIndexing, IsToldByEveryOperationBeforeAnInvalidKey) {
  const TempFolder folder;
  POD pod(folder / "study.ksb");
  KSBKey key;
  pod.Open(folder / "study.ksb", folder / "study.kx", key, 32, vbReadWrite, GetParam(), 0, 25);
  for (const int id : {0, 1}) {
    for (std::size_t i = 0; i < keyed.size(); ++i) {
      PlainRecord record(&pod);
      record.m_nID = id;
      EXPECT_THROW(keyed[i](record), CNoIndex) << i;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Flags, NoIndexing, testing::Values(0, 2, -1));

TEST(NoDatabase, IsToldByEveryOperation) {
  for (std::size_t i = 0; i < keyed.size(); ++i) {
    PlainRecord record(noDatabase);
    record.m_nID = 1;
    EXPECT_THROW(keyed[i](record), CNullPtr) << i;
  }
}

TEST_F(Keys, AClosedIndexIsToldByEveryOperation) {
  study.Pod()->CloseIndex();
  for (std::size_t i = 0; i < keyed.size(); ++i) {
    PlainRecord record(study.Pod());
    record.m_nID = 1;
    EXPECT_THROW(keyed[i](record), CNullPtr) << i;
  }
}

}  // namespace
