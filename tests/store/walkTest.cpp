#include "store/walk.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/support/Bytes.h"
#include "tests/support/SampleRecord.h"
#include "tests/support/StoredRecord.h"
#include "tests/support/Study.h"

namespace {

class ObjectWalks : public testing::Test {
 protected:
  void Store(int id) {
    PlainRecord record(study.Pod());
    record.m_nID = id;
    record.m_strText = "text";
    record.PutObject();
  }

  std::vector<int> InFileOrder() {
    std::vector<int> ids;
    kestdb::VisitInFileOrder<PlainRecord>(study.Pod(), [&](const PlainRecord& record) {
      ids.push_back(static_cast<int>(record.m_nID.PackBits()));
      return true;
    });
    return ids;
  }

  std::vector<int> InIndexOrder() { return kestdb::AllIDs<PlainRecord>(study.Pod()); }

  using IDs = std::vector<int>;

  Study study;
};

TEST_F(ObjectWalks, GoInTheOrderOfTheFileOrOfTheKeys) {
  for (const int id : {30, 10, 20}) Store(id);
  EXPECT_EQ(InFileOrder(), (IDs{30, 10, 20}));
  EXPECT_EQ(InIndexOrder(), (IDs{10, 20, 30}));
}

TEST_F(ObjectWalks, OverNothingVisitNothing) {
  EXPECT_EQ(InFileOrder(), IDs{});
  EXPECT_EQ(InIndexOrder(), IDs{});
}

TEST_F(ObjectWalks, EndWhenTheVisitSaysSo) {
  for (const int id : {30, 10, 20}) Store(id);
  int visits = 0;
  const auto stopAtSecond = [&visits](const PlainRecord&) { return ++visits < 2; };
  kestdb::VisitInFileOrder<PlainRecord>(study.Pod(), stopAtSecond);
  EXPECT_EQ(visits, 2);
  visits = 0;
  kestdb::VisitInIndexOrder<PlainRecord>(study.Pod(), stopAtSecond);
  EXPECT_EQ(visits, 2);
}

TEST_F(ObjectWalks, MayRemoveWhatTheyVisit) {
  for (int id = 1; id <= 40; ++id) Store(id);
  kestdb::RemoveAllBut<PlainRecord>(study.Pod(), {7, 30, 1000});
  EXPECT_EQ(InIndexOrder(), (IDs{7, 30}));
  EXPECT_TRUE(kestdb::RemoveAllObjects<PlainRecord>(study.Pod()));
  EXPECT_EQ(InFileOrder(), IDs{});
  EXPECT_EQ(InIndexOrder(), IDs{});
}

TEST_F(ObjectWalks, RemovalEndsAtAnObjectThatCannotBeRemoved) {
  for (const int id : {1, 2, 3}) Store(id);
  PlainRecord second(study.Pod());
  second.m_nID = 2;
  ASSERT_TRUE(second.GetObject());
  ASSERT_TRUE(second.DeleteObject());
  study.Pod()->DataFile()->UnDelete(second.ObjectAddress());  // a live block without a key
  EXPECT_FALSE(kestdb::RemoveAllObjects<PlainRecord>(study.Pod()));
  EXPECT_EQ(InFileOrder(), (IDs{2, 3}));
}

/// The record of an earlier library lacks the last field of a sample.
TEST_F(ObjectWalks, GiveAnOlderRecordItsDefaultsAndNotItsNeighboursValues) {
  SampleRecord newer(study.Pod());
  newer.m_nID = 1;
  newer.m_nSinceTwo = 99;
  newer.WriteObject(true);
  SampleRecord older(study.Pod());
  older.m_nID = 2;
  const std::string record = Bytes(
      "01 00 00 00 02 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 01 00 00 00 00 "
      "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 ");
  older.Add(StoreRecord(study.Pod(), 23000, record), 23000);

  std::vector<int> inFileOrder;
  kestdb::VisitInFileOrder<SampleRecord>(study.Pod(), [&](const SampleRecord& sample) {
    inFileOrder.push_back(static_cast<int>(sample.m_nSinceTwo.PackBits()));
    return true;
  });
  EXPECT_EQ(inFileOrder, (std::vector<int>{99, -7}));
  const std::vector<SampleRecord> all = kestdb::AllObjects<SampleRecord>(study.Pod());
  ASSERT_EQ(all.size(), 2U);
  EXPECT_EQ(all[0].m_nSinceTwo, 99);
  EXPECT_EQ(all[1].m_nSinceTwo, -7);
}

TEST_F(ObjectWalks, LoadByIDFindsOnlyWhatAnObjectCanHave) {
  Store(5);
  PlainRecord record(study.Pod());
  EXPECT_TRUE(kestdb::LoadByID(record, 5));
  EXPECT_EQ(record.m_strText, "text");
  for (const long id : {0L, -5L, 6L, 4294967301L, -4294967291L}) {
    EXPECT_FALSE(kestdb::LoadByID(record, id)) << id;
  }
}

}  // namespace
