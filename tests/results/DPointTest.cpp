#include "results/DPoint.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "index/KSBKey.h"
#include "store/KestErr.h"
#include "store/vbdbase.h"
#include "tests/results/PointFields.h"
#include "tests/support/RawFile.h"
#include "tests/support/Study.h"

namespace {

class Points : public testing::Test {
 protected:
  void Store(int task, const std::vector<int>& numbers) {
    for (const int number : numbers) {
      CDPoint point(study.Pod());
      point.m_nTaskID = task;
      point.m_nPointID = number;
      point.PutObject();
    }
  }

  CDPoint Stored(int task, int number) {
    CDPoint point(study.Pod());
    point.m_nTaskID = task;
    point.m_nPointID = number;
    EXPECT_TRUE(point.GetObject());
    return point;
  }

  /// The numbers of a task's points among the first ten.
  std::vector<int> Numbers(int task) {
    std::vector<int> numbers;
    CDPoint point(study.Pod());
    point.m_nTaskID = task;
    for (int number = 0; number < 10; ++number) {
      point.m_nPointID = number;
      if (point.FindObject()) numbers.push_back(number);
    }
    return numbers;
  }

  std::string Fault() {
    study.Close();
    return FaultOfClass(ReadRawFile(study.DataPath()), ReadRawFile(study.IndexPath()), 12000);
  }

  Study study;
};

// ---- The object ----

TEST_F(Points, HaveTheirClassConstants) {
  EXPECT_EQ(CDPoint::m_nDPOINT_VER, 2);
  EXPECT_EQ(CDPoint::m_nDPOINT_INDX, 11);
  EXPECT_EQ(CDPoint::m_nDPOINT_ID, 12000);
  EXPECT_EQ(CDPoint::m_strCLASS_NAME, "CDPoint");
  CDPoint point(study.Pod());
  EXPECT_EQ(point.GetVBClassID(), 12000);
  EXPECT_EQ(point.GetVBClassIndex(), 11U);
  EXPECT_EQ(point.GetVBClassName(), "CDPoint");
  EXPECT_EQ(point.GetVBClassVer(), 2);
}

TEST_F(Points, AreEmptyWhenNew) {
  const POD* const pod = study.Pod();
  for (const CDPoint& point : {CDPoint(study.Pod()), CDPoint(pod)}) {
    ExpectSameFields(point, PointOf(0, 0, 0, {}));
    EXPECT_EQ(point.ObjectAddress(), 0);
  }
  EXPECT_EQ(CDPoint(study.Pod()).Database(), pod);
  EXPECT_EQ(CDPoint(pod).Database(), pod);
}

TEST_F(Points, SetDefaultAttributesClearsTheWordsAndLeavesTheValues) {
  CDPoint point = FilledPoint(study.Pod());
  point.PutObject();
  const vbINT32 address = point.ObjectAddress();
  point.SetDefaultAttributes();
  CDPoint expected = FilledPoint(study.Pod());
  expected.m_nTaskID = expected.m_nPointID = expected.m_nPointFlag = 0;
  ExpectSameFields(point, expected);
  EXPECT_EQ(point.Database(), study.Pod());
  EXPECT_EQ(point.ObjectAddress(), address);
}

TEST_F(Points, CopyTakesAllFieldsAndKeepsTheConnection) {
  const CDPoint source = FilledPoint(nullptr);
  CDPoint copy(study.Pod());
  copy.m_nTaskID = 1;
  copy.m_IDVar = {1.0, 2.0, 3.0, 4.0};
  copy.PutObject();
  const vbINT32 address = copy.ObjectAddress();
  copy.Copy(source);
  ExpectSameFields(copy, source);
  EXPECT_EQ(copy.Database(), study.Pod());
  EXPECT_EQ(copy.ObjectAddress(), address);
}

TEST_F(Points, AreUsableAsKeysWithAPositiveTaskAndANumberFromZero) {
  struct Case {
    int task, number;
    const char* key;  // null where there is none
  };
  const Case cases[] = {
      {1, 0, "          1          0"},
      {12, 345, "         12        345"},
      {2147483647, 2147483647, " 2147483647 2147483647"},
      {0, 0, nullptr},
      {0, 1, nullptr},
      {-1, 1, nullptr},
      {1, -1, nullptr},
  };
  for (const Case& one : cases) {
    SCOPED_TRACE(std::to_string(one.task) + " " + std::to_string(one.number));
    CDPoint point(study.Pod());
    point.m_nTaskID = one.task;
    point.m_nPointID = one.number;
    EXPECT_EQ(point.CheckKey(), one.key != nullptr);
    char text[64];
    EXPECT_EQ(point.MakeKey(text), text);
    if (one.key != nullptr) {
      EXPECT_STREQ(text, one.key);
    } else {
      EXPECT_THROW(point.PutObject(), CInvalidKey);
    }
  }
}

TEST_F(Points, AreFoundInTheirTreeByTaskAndNumber) {
  Store(3, {0});
  Store(12, {1, 0});
  const long ofThree = Stored(3, 0).ObjectAddress();
  const long zero = Stored(12, 0).ObjectAddress();
  const long one = Stored(12, 1).ObjectAddress();
  study.Close();
  EXPECT_EQ(ReadRawTree(ReadRawFile(study.IndexPath()), 11),
            (std::map<std::string, long>{{"          3          0", ofThree},
                                         {"         12          0", zero},
                                         {"         12          1", one}}));
  EXPECT_EQ(FaultOfClass(ReadRawFile(study.DataPath()), ReadRawFile(study.IndexPath()), 12000), "");
}

// ---- Removal of responses ----

TEST_F(Points, LoseTheirResponsesAndKeepTheirVariables) {
  CDPoint point = FilledPoint(study.Pod());
  point.PutObject();
  point.RemoveRespValues();
  CDPoint expected = FilledPoint(study.Pod());
  expected.m_IResp.resize(0);
  expected.m_LResp.resize(0);
  expected.m_SResp.resize(0);
  ExpectSameFields(point, expected);
  study.Reopen();
  const CDPoint stored = Stored(7, 258);
  ExpectSameFields(stored, expected);
  EXPECT_EQ(CDPoint(study.Pod()).CountObjects(), 1);
  EXPECT_EQ(Fault(), "");
}

TEST_F(Points, GetABlockOfTheirNewLengthWhenTheyLoseTheirResponses) {
  CDPoint point = FilledPoint(study.Pod());
  point.PutObject();
  point.RemoveRespValues();
  EXPECT_EQ(point.ObjectLength(), 44U + 8 * 7);
  const long address = point.ObjectAddress();
  study.Close();
  const RawFile data = ReadRawFile(study.DataPath());
  EXPECT_EQ(ObjectsOf(data, 12000).at(address).size(), 8U + 44 + 8 * 7);
}

TEST_F(Points, AreStoredWithoutResponsesWhereTheyWereNotStored) {
  CDPoint point = FilledPoint(study.Pod());
  point.RemoveRespValues();
  EXPECT_EQ(Stored(7, 258).m_IResp.size(), 0U);
  EXPECT_EQ(Stored(7, 258).m_IDVar.size(), 3U);
}

TEST_F(Points, WithoutADatabaseCannotBeStoredWithoutResponses) {
  CDPoint point = FilledPoint(nullptr);
  EXPECT_THROW(point.RemoveRespValues(), CNullPtr);
}

// ---- Removal of points ----

TEST_F(Points, OfATaskAreAllRemoved) {
  Store(4, {0, 1, 2, 3, 4});
  Store(3, {0, 5});
  Store(5, {0});
  CDPoint::RemoveDPoints(study.Pod(), 4, 0);
  EXPECT_TRUE(Numbers(4).empty());
  EXPECT_EQ(Numbers(3), (std::vector<int>{0, 5}));
  EXPECT_EQ(Numbers(5), (std::vector<int>{0}));
  EXPECT_EQ(CDPoint(study.Pod()).CountObjects(), 3);
  EXPECT_EQ(Fault(), "");
}

TEST_F(Points, AreRemovedFromANumberOn) {
  Store(4, {0, 1, 2, 3, 4});
  CDPoint::RemoveDPoints(study.Pod(), 4, 7);
  EXPECT_EQ(Numbers(4), (std::vector<int>{0, 1, 2, 3, 4}));
  CDPoint::RemoveDPoints(study.Pod(), 4, 3);
  EXPECT_EQ(Numbers(4), (std::vector<int>{0, 1, 2}));
  CDPoint::RemoveDPoints(study.Pod(), 4, 2);
  EXPECT_EQ(Numbers(4), (std::vector<int>{0, 1}));
}

TEST_F(Points, AreRemovedUpToAGap) {
  Store(4, {0, 1, 3, 4});
  CDPoint::RemoveDPoints(study.Pod(), 4, 0);
  EXPECT_EQ(Numbers(4), (std::vector<int>{3, 4}));
  CDPoint::RemoveDPoints(study.Pod(), 4, 0);
  EXPECT_EQ(Numbers(4), (std::vector<int>{3, 4}));
}

TEST_F(Points, AreRemovedThroughoutALargeTree) {
  std::vector<int> numbers;
  for (int number = 0; number < 300; ++number) numbers.push_back(number);
  Store(4, numbers);
  CDPoint::RemoveDPoints(study.Pod(), 4, 0);
  EXPECT_EQ(CDPoint(study.Pod()).CountObjects(), 0);
  EXPECT_EQ(Fault(), "");
}

TEST_F(Points, WithTheLargestNumberAreRemovedAndThatIsTheEnd) {
  Store(4, {2147483646, 2147483647});
  CDPoint::RemoveDPoints(study.Pod(), 4, 2147483646);
  EXPECT_EQ(CDPoint(study.Pod()).CountObjects(), 0);
}

TEST_F(Points, OfANegativeNumberAreAnInvalidArgument) {
  Store(4, {0});
  for (const int number : {-1, -2147483647 - 1}) {
    try {
      CDPoint::RemoveDPoints(study.Pod(), 4, number);
      ADD_FAILURE();
    } catch (const CInvalidArgument& error) {
      EXPECT_STREQ(error.what(), "Function/method object is invalid");
    }
  }
  EXPECT_EQ(Numbers(4), (std::vector<int>{0}));
}

TEST_F(Points, OfNoTaskAreAnInvalidKey) {
  EXPECT_THROW(CDPoint::RemoveDPoints(study.Pod(), 0, 0), CInvalidKey);
  EXPECT_THROW(CDPoint::RemoveDPoints(study.Pod(), -1, 0), CInvalidKey);
}

TEST_F(Points, WhoseBlockIsFreeCannotBeRemoved) {
  Store(4, {0, 1, 2});
  ASSERT_TRUE(study.Pod()->DataFile()->Delete(Stored(4, 1).ObjectAddress(), false));
  EXPECT_THROW(CDPoint::RemoveDPoints(study.Pod(), 4, 0), CObjectNotRemoved);
  EXPECT_EQ(Numbers(4), (std::vector<int>{1, 2}));
}

// ---- Failures ----

void RemovePoints(POD* pod) {
  CDPoint::RemoveDPoints(pod, 1, 0);
}

TEST_F(Points, OfNoDatabaseAreANullPointer) {
  EXPECT_THROW(RemovePoints(nullptr), CNullPtr);
  EXPECT_THROW(CDPoint::RemoveDPoints(nullptr, 1, -1), CNullPtr);
}

TEST_F(Points, WithoutIndexingAreToldSoBeforeMissingFiles) {
  POD pod(study.folder / "other.ksb");
  EXPECT_THROW(RemovePoints(&pod), CNoIndex);
  KSBKey key;
  pod.Open(study.folder / "other.ksb", study.folder / "other.kx", key, 32, vbReadWrite, 2, 0, 25);
  EXPECT_THROW(RemovePoints(&pod), CNoIndex);
}

TEST_F(Points, WithoutADataFileAreANullPointer) {
  study.Pod()->CloseDataFile();
  EXPECT_THROW(RemovePoints(study.Pod()), CNullPtr);
}

TEST_F(Points, WithoutAnIndexFileAreANullPointer) {
  study.Pod()->CloseIndex();
  EXPECT_THROW(RemovePoints(study.Pod()), CNullPtr);
}

TEST_F(Points, AreRemovedUnderTheLockOnly) {
  std::filesystem::create_directory(study.LockPath());
  EXPECT_THROW(RemovePoints(study.Pod()), CFileLock);
  std::filesystem::remove(study.LockPath());
}

}  // namespace
