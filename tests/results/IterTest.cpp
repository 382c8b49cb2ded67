#include "results/Iter.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "index/KSBKey.h"
#include "store/KestErr.h"
#include "store/vbdbase.h"
#include "tests/results/IterFields.h"
#include "tests/support/RawFile.h"
#include "tests/support/Study.h"

namespace {

using Number = std::pair<int, int>;  ///< iteration and sub-iteration
using Numbers = std::vector<Number>;

class Iters : public testing::Test {
 protected:
  void Store(int task, const Numbers& numbers) {
    for (const auto& [number, subIter] : numbers) {
      CIter iter = IterOf(task, number, subIter, study.Pod());
      iter.PutObject();
    }
  }

  CIter Stored(int task, int number, int subIter) {
    CIter iter = IterOf(task, number, subIter, study.Pod());
    EXPECT_TRUE(iter.GetObject());
    return iter;
  }

  /// What a task has of the first ten iterations and sub-iterations.
  Numbers Left(int task) {
    Numbers numbers;
    for (int number = 0; number < 10; ++number) {
      for (int subIter = 0; subIter < 10; ++subIter) {
        CIter iter = IterOf(task, number, subIter, study.Pod());
        if (iter.FindObject()) numbers.emplace_back(number, subIter);
      }
    }
    return numbers;
  }

  std::string Fault() {
    study.Close();
    return FaultOfClass(ReadRawFile(study.DataPath()), ReadRawFile(study.IndexPath()), 13000);
  }

  Study study;
};

// ---- The object ----

TEST_F(Iters, HaveTheirClassConstants) {
  EXPECT_EQ(CIter::m_nITER_VER, 2);
  EXPECT_EQ(CIter::m_nITER_INDX, 12);
  EXPECT_EQ(CIter::m_nITER_ID, 13000);
  EXPECT_EQ(CIter::m_strCLASS_NAME, "CIter");
  CIter iter(study.Pod());
  EXPECT_EQ(iter.GetVBClassID(), 13000);
  EXPECT_EQ(iter.GetVBClassIndex(), 12U);
  EXPECT_EQ(iter.GetVBClassName(), "CIter");
  EXPECT_EQ(iter.GetVBClassVer(), 2);
}

TEST_F(Iters, AreEmptyWhenNew) {
  const POD* const pod = study.Pod();
  for (const CIter& iter : {CIter(study.Pod()), CIter(pod)}) {
    EXPECT_EQ(iter.m_nTaskID, 0);
    EXPECT_EQ(iter.m_nIter, 0);
    EXPECT_EQ(iter.m_nSubIter, 0);
    EXPECT_EQ(iter.m_nThisPoint, 0);
    EXPECT_EQ(iter.m_nBestPoint, 0);
    EXPECT_EQ(iter.m_fBestObjective, 0.0);
    EXPECT_EQ(iter.m_fBestConstraint, 0.0);
    EXPECT_EQ(iter.m_fThisObjective, 0.0);
    EXPECT_EQ(iter.m_fThisConstraint, 0.0);
    EXPECT_EQ(iter.m_ParetoPoints.size(), 0U);
    EXPECT_EQ(iter.m_ParetoValues.size(), 0U);
    EXPECT_EQ(iter.ObjectAddress(), 0);
  }
  EXPECT_EQ(CIter(study.Pod()).Database(), pod);
  EXPECT_EQ(CIter(pod).Database(), pod);
}

TEST_F(Iters, SetDefaultAttributesClearsAllFieldsAndKeepsTheConnection) {
  CIter iter = FilledIter(study.Pod());
  iter.PutObject();
  const vbINT32 address = iter.ObjectAddress();
  iter.SetDefaultAttributes();
  ExpectSameFields(iter, CIter(study.Pod()));
  EXPECT_EQ(iter.Database(), study.Pod());
  EXPECT_EQ(iter.ObjectAddress(), address);
}

TEST_F(Iters, CopyTakesAllFieldsAndKeepsTheConnection) {
  const CIter source = FilledIter(nullptr);
  CIter copy = IterOf(1, 2, 3, study.Pod());
  copy.m_ParetoPoints = {1, 2, 3, 4};
  copy.PutObject();
  const vbINT32 address = copy.ObjectAddress();
  copy.Copy(source);
  ExpectSameFields(copy, source);
  EXPECT_EQ(copy.Database(), study.Pod());
  EXPECT_EQ(copy.ObjectAddress(), address);
}

TEST_F(Iters, AreUsableAsKeysWithAPositiveTaskAndNumbersFromZero) {
  struct Case {
    int task, number, subIter;
    const char* key;  // null where there is none
  };
  const Case cases[] = {
      {1, 0, 0, "          1          0          0"},
      {12, 345, 6789, "         12        345       6789"},
      {2147483647, 2147483647, 2147483647, " 2147483647 2147483647 2147483647"},
      {0, 0, 0, nullptr},
      {0, 1, 1, nullptr},
      {-1, 1, 1, nullptr},
      {1, -1, 0, nullptr},
      {1, 0, -1, nullptr},
  };
  for (const Case& one : cases) {
    SCOPED_TRACE(std::to_string(one.task) + " " + std::to_string(one.number) + " " +
                 std::to_string(one.subIter));
    CIter iter = IterOf(one.task, one.number, one.subIter, study.Pod());
    EXPECT_EQ(iter.CheckKey(), one.key != nullptr);
    char text[64];
    EXPECT_EQ(iter.MakeKey(text), text);
    if (one.key != nullptr) {
      EXPECT_STREQ(text, one.key);
    } else {
      EXPECT_THROW(iter.PutObject(), CInvalidKey);
    }
  }
}

TEST_F(Iters, AreFoundInTheirTreeByTaskAndNumbers) {
  Store(3, {{0, 0}});
  Store(12, {{1, 2}, {1, 0}});
  const long ofThree = Stored(3, 0, 0).ObjectAddress();
  const long zero = Stored(12, 1, 0).ObjectAddress();
  const long two = Stored(12, 1, 2).ObjectAddress();
  study.Close();
  EXPECT_EQ(ReadRawTree(ReadRawFile(study.IndexPath()), 12),
            (std::map<std::string, long>{{"          3          0          0", ofThree},
                                         {"         12          1          0", zero},
                                         {"         12          1          2", two}}));
  EXPECT_EQ(FaultOfClass(ReadRawFile(study.DataPath()), ReadRawFile(study.IndexPath()), 13000), "");
}

// ---- Removal ----

TEST_F(Iters, OfATaskAreAllRemovedWithTheirSubIterations) {
  Store(4, {{0, 0}, {1, 0}, {1, 1}, {1, 2}, {2, 0}, {3, 0}, {3, 1}});
  Store(3, {{0, 0}, {0, 1}});
  Store(5, {{0, 0}});
  CIter::RemoveIters(study.Pod(), 4);
  EXPECT_EQ(Left(4), Numbers());
  EXPECT_EQ(Left(3), (Numbers{{0, 0}, {0, 1}}));
  EXPECT_EQ(Left(5), (Numbers{{0, 0}}));
  EXPECT_EQ(CIter(study.Pod()).CountObjects(), 3);
  EXPECT_EQ(Fault(), "");
}

TEST_F(Iters, OfATaskThatHasNoneAreRemovedWithoutFailure) {
  Store(3, {{0, 0}});
  CIter::RemoveIters(study.Pod(), 4);
  EXPECT_EQ(Left(3), (Numbers{{0, 0}}));
}

TEST_F(Iters, AreRemovedUpToTheFirstIterationThatIsMissing) {
  Store(4, {{0, 0}, {1, 0}, {1, 1}, {2, 1}, {3, 0}, {3, 1}});
  CIter::RemoveIters(study.Pod(), 4);
  EXPECT_EQ(Left(4), (Numbers{{2, 1}, {3, 0}, {3, 1}}));
  CIter::RemoveIters(study.Pod(), 4);
  EXPECT_EQ(Left(4), (Numbers{{2, 1}, {3, 0}, {3, 1}}));
}

TEST_F(Iters, WithoutTheFirstOneStay) {
  Store(4, {{0, 1}, {1, 0}, {3, 0}});
  CIter::RemoveIters(study.Pod(), 4);
  EXPECT_EQ(Left(4), (Numbers{{0, 1}, {1, 0}, {3, 0}}));
}

TEST_F(Iters, AreRemovedWithSubIterationsUpToTheFirstThatIsMissing) {
  Store(4, {{0, 0}, {0, 1}, {0, 3}, {1, 0}, {1, 2}});
  CIter::RemoveIters(study.Pod(), 4);
  EXPECT_EQ(Left(4), (Numbers{{0, 3}, {1, 2}}));
}

TEST_F(Iters, AreRemovedThroughoutALargeTree) {
  for (int number = 0; number < 60; ++number) {
    for (int subIter = 0; subIter < 5; ++subIter) Store(4, {{number, subIter}});
  }
  CIter::RemoveIters(study.Pod(), 4);
  EXPECT_EQ(CIter(study.Pod()).CountObjects(), 0);
  EXPECT_EQ(Fault(), "");
}

TEST_F(Iters, OfNoTaskAreAnInvalidKey) {
  EXPECT_THROW(CIter::RemoveIters(study.Pod(), 0), CInvalidKey);
  EXPECT_THROW(CIter::RemoveIters(study.Pod(), -1), CInvalidKey);
}

TEST_F(Iters, WhoseBlockIsFreeCannotBeRemoved) {
  for (const Number& broken : {Number{1, 0}, Number{1, 1}}) {
    Store(4, {{0, 0}, {1, 0}, {1, 1}, {2, 0}});
    const long address = Stored(4, broken.first, broken.second).ObjectAddress();
    ASSERT_TRUE(study.Pod()->DataFile()->Delete(address, false));
    try {
      CIter::RemoveIters(study.Pod(), 4);
      ADD_FAILURE();
    } catch (const CObjectNotRemoved& error) {
      EXPECT_STREQ(error.what(), "Object not removed");
    }
    const Numbers left = Left(4);
    EXPECT_EQ(left.front(), broken);
    EXPECT_EQ(left.back(), Number(2, 0));
    study.Close();
    std::filesystem::remove(study.DataPath());
    std::filesystem::remove(study.IndexPath());
    study.Open();
  }
}

// ---- Failures ----

TEST_F(Iters, OfNoDatabaseAreANullPointer) {
  EXPECT_THROW(CIter::RemoveIters(nullptr, 1), CNullPtr);
}

TEST_F(Iters, WithoutIndexingAreToldSoBeforeMissingFiles) {
  POD pod(study.folder / "other.ksb");
  EXPECT_THROW(CIter::RemoveIters(&pod, 1), CNoIndex);
  KSBKey key;
  pod.Open(study.folder / "other.ksb", study.folder / "other.kx", key, 32, vbReadWrite, 2, 0, 25);
  EXPECT_THROW(CIter::RemoveIters(&pod, 1), CNoIndex);
}

TEST_F(Iters, WithoutADataFileAreANullPointer) {
  study.Pod()->CloseDataFile();
  EXPECT_THROW(CIter::RemoveIters(study.Pod(), 1), CNullPtr);
}

TEST_F(Iters, WithoutAnIndexFileAreANullPointer) {
  study.Pod()->CloseIndex();
  EXPECT_THROW(CIter::RemoveIters(study.Pod(), 1), CNullPtr);
}

TEST_F(Iters, AreRemovedUnderTheLockOnly) {
  Store(1, {{0, 0}});
  std::filesystem::create_directory(study.LockPath());
  EXPECT_THROW(CIter::RemoveIters(study.Pod(), 1), CFileLock);
  std::filesystem::remove(study.LockPath());
  EXPECT_EQ(Left(1), (Numbers{{0, 0}}));
}

}  // namespace
