#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "definition/GPoint.h"
#include "index/KSBKey.h"
#include "store/KestErr.h"
#include "store/vbdbase.h"
#include "tests/support/SampleRecord.h"
#include "tests/support/Study.h"

// Walks through the objects of a class in the data file, with no use of the index.

namespace {

class Walks : public testing::Test {
 protected:
  long Store(int id, const std::string& text = "text") {
    PlainRecord stored(study.Pod());
    stored.m_nID = id;
    stored.m_strText = text;
    stored.WriteObject(false);
    return stored.ObjectAddress();
  }

  /// An object of another class.
  long StoreOther(int id) {
    TripleRecord stored(study.Pod());
    stored.m_nFirst = id;
    stored.WriteObject(false);
    return stored.ObjectAddress();
  }

  void Remove(int id) {
    PlainRecord stored(study.Pod());
    stored.m_nID = id;
    ASSERT_TRUE(stored.RemoveObject());
  }

  std::vector<long> Forwards() {
    std::vector<long> addresses;
    for (long at = record.FirstObject(0); at != 0; at = record.NextObject(at)) {
      addresses.push_back(at);
    }
    return addresses;
  }

  std::vector<long> BackwardsFrom(long address) {
    std::vector<long> addresses;
    for (long at = record.PrevObject(address); at != 0; at = record.PrevObject(at)) {
      addresses.push_back(at);
    }
    return addresses;
  }

  using Addresses = std::vector<long>;

  Study study;
  PlainRecord record{study.Pod()};
};

TEST_F(Walks, OfAnEmptyClassFindNothing) {
  const long other = StoreOther(1);
  EXPECT_EQ(record.FirstObject(0), 0);
  EXPECT_EQ(record.NextObject(other), 0);
  EXPECT_EQ(record.PrevObject(other), 0);
  EXPECT_EQ(record.CountObjects(), 0);
}

TEST_F(Walks, GoForwardsInFileOrderPastOtherClasses) {
  StoreOther(1);
  const long third = Store(3);
  StoreOther(2);
  StoreOther(3);
  const long first = Store(1);
  const long second = Store(2);
  StoreOther(4);
  EXPECT_EQ(Forwards(), (Addresses{third, first, second}));
  EXPECT_EQ(record.CountObjects(), 3);
}

TEST_F(Walks, GoBackwardsInFileOrderPastOtherClasses) {
  const long first = Store(1);
  StoreOther(1);
  StoreOther(2);
  const long second = Store(2);
  const long third = Store(3);
  const long end = StoreOther(3);
  EXPECT_EQ(BackwardsFrom(end), (Addresses{third, second, first}));
  EXPECT_EQ(BackwardsFrom(third), (Addresses{second, first}));
  EXPECT_EQ(BackwardsFrom(first), Addresses{});
}

TEST_F(Walks, PassOverFreedObjects) {
  const long first = Store(1);
  Store(2);
  Store(3);
  const long fourth = Store(4);
  Store(5);
  const long end = StoreOther(1);
  for (const int id : {2, 3, 5}) Remove(id);
  EXPECT_EQ(Forwards(), (Addresses{first, fourth}));
  EXPECT_EQ(BackwardsFrom(end), (Addresses{fourth, first}));
  EXPECT_EQ(record.CountObjects(), 2);
}

TEST_F(Walks, StartAtAnOffset) {
  const long first = Store(1);
  const long second = Store(2);
  EXPECT_EQ(record.FirstObject(first - 28), first);
  EXPECT_EQ(record.FirstObject(first - 27), second);
  EXPECT_EQ(record.FirstObject(second - 28), second);
  EXPECT_EQ(record.FirstObject(second - 27), 0);
}

TEST_F(Walks, StartBehindTheObjectAtAnObjectAddress) {
  const long first = Store(1);
  const long second = Store(2);
  EXPECT_EQ(record.FirstObject(first), second);
  EXPECT_EQ(record.FirstObject(second), 0);
}

TEST_F(Walks, GoOnBehindAnObjectOfAnotherClass) {
  const long points = CGPoint(study.Pod()).FirstObject(0);
  const long first = Store(1);
  EXPECT_EQ(record.NextObject(points), first);
}

TEST_F(Walks, FindTheObjectsOfTheirOwnClassOnly) {
  Store(1);
  StoreOther(1);
  CGPoint points(study.Pod());
  EXPECT_EQ(points.CountObjects(), 1);
  ASSERT_TRUE(points.GetObject());
  EXPECT_EQ(points.FirstObject(0), points.ObjectAddress());
  EXPECT_EQ(points.NextObject(points.ObjectAddress()), 0);
}

TEST_F(Walks, PassOverObjectsLargerThanTheirWindow) {
  const long first = Store(1, std::string(9000, 'x'));
  StoreOther(1);
  const long second = Store(2, std::string(50000, 'x'));
  const long end = StoreOther(2);
  EXPECT_EQ(Forwards(), (Addresses{first, second}));
  EXPECT_EQ(BackwardsFrom(end), (Addresses{second, first}));
}

TEST_F(Walks, CountObjectsThatTheIndexHasLost) {
  Store(1);
  Store(2);
  KSBKey key("          1", 0, 0);
  KSBKey scratch;
  record.RemoveKey(key, scratch, 23, true);
  EXPECT_EQ(record.CountObjects(), 2);
}

TEST_F(Walks, CountNoObjectThatOnlyTheIndexKnows) {
  record.m_nID = 1;
  record.Add(68, 24000);
  EXPECT_EQ(record.CountObjects(), 0);
}

TEST_F(Walks, LeaveTheObjectAsItIs) {
  Store(1);
  record.m_strText = "in memory";
  record.CountObjects();
  EXPECT_EQ(record.m_strText, "in memory");
  EXPECT_EQ(record.ObjectAddress(), 0);
}

TEST_F(Walks, NeedADataFile) {
  study.Pod()->CloseDataFile();
  EXPECT_THROW(record.FirstObject(0), CNullPtr);
  EXPECT_THROW(record.NextObject(68), CNullPtr);
  EXPECT_THROW(record.PrevObject(68), CNullPtr);
  EXPECT_THROW(record.CountObjects(), CNullPtr);
  EXPECT_THROW(record.ReadObject(68), CNullPtr);
}

}  // namespace
