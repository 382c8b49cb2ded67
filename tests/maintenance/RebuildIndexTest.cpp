#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "control/DesignControl.h"
#include "definition/Auxiliary.h"
#include "definition/DBCtrl.h"
#include "definition/GPoint.h"
#include "definition/Input.h"
#include "definition/Resp.h"
#include "index/KSBKey.h"
#include "maintenance/Lock.h"
#include "results/ApproxModels.h"
#include "results/DPoint.h"
#include "results/Iter.h"
#include "results/Message.h"
#include "results/RApproxMod.h"
#include "results/RDOE.h"
#include "results/Residual.h"
#include "results/Result.h"
#include "store/KestErr.h"
#include "store/pod.h"
#include "store/vbdbase.h"
#include "task/DCons.h"
#include "task/DEqn.h"
#include "task/DLink.h"
#include "task/DObj.h"
#include "task/DResp.h"
#include "task/DSet.h"
#include "task/DVar.h"
#include "task/Task.h"
#include "tests/support/Bytes.h"
#include "tests/support/RawFile.h"
#include "tests/support/StoredRecord.h"
#include "tests/support/Study.h"
#include "tests/support/StudyCheck.h"
#include "tests/support/StudyRequired.h"

// What each class does for a rebuild or a comparison of the index.

namespace {

/// A class, and how to make an object of it with the n-th of its keys.
struct ClassCase {
  const char* name;
  int tree;
  int objects;  ///< as many as can be stored
  int (*rebuild)(POD*, bool);
  std::unique_ptr<vbPersistent> (*make)(POD*, int number);
};

void PrintTo(const ClassCase& tested, std::ostream* out) {
  *out << tested.name;
}

/// A class whose objects have a number for their key, or the first field of it.
template <class Class, auto Number>
ClassCase Numbered(const char* name, int tree) {
  return {name, tree, 2, &Class::RebuildIndex, [](POD* pod, int number) {
            auto object = std::make_unique<Class>(pod);
            (*object).*Number = number;
            return std::unique_ptr<vbPersistent>(std::move(object));
          }};
}

/// A class with one object, which every study has.
template <class Class>
ClassCase Singleton(const char* name, int tree) {
  return {name, tree, 1, &Class::RebuildIndex,
          [](POD* pod, int) { return std::unique_ptr<vbPersistent>(new Class(pod)); }};
}

const ClassCase kClassCases[] = {
    Numbered<CInput, &CInput::m_nID>("CInput", 0),
    Numbered<CAuxiliary, &CAuxiliary::m_nID>("CAuxiliary", 1),
    Numbered<CTask, &CTask::m_nID>("CTask", 2),
    Numbered<CDVar, &CDVar::m_nID>("CDVar", 3),
    Numbered<CDResp, &CDResp::m_nID>("CDResp", 4),
    Numbered<CDCons, &CDCons::m_nID>("CDCons", 5),
    Numbered<CDObj, &CDObj::m_nID>("CDObj", 6),
    Numbered<CDLink, &CDLink::m_nID>("CDLink", 7),
    Numbered<CDEqn, &CDEqn::m_nID>("CDEqn", 8),
    Numbered<CApproxModels, &CApproxModels::m_nTaskID>("CApproxModels", 9),
    Numbered<CResult, &CResult::m_nID>("CResult", 10),
    Numbered<CDPoint, &CDPoint::m_nTaskID>("CDPoint", 11),
    Numbered<CIter, &CIter::m_nTaskID>("CIter", 12),
    Numbered<CDSet, &CDSet::m_nID>("CDSet", 13),
    Singleton<CGPoint>("CGPoint", 14),
    Singleton<CDBCtrl>("CDBCtrl", 15),
    Numbered<CRDOE, &CRDOE::m_nTaskID>("CRDOE", 16),
    Singleton<CDesignControl>("CDesignControl", 17),
    Numbered<CResp, &CResp::m_nID>("CResp", 18),
    Numbered<CResidual, &CResidual::m_nTaskID>("CResidual", 19),
    Numbered<CMessage, &CMessage::m_nID>("CMessage", 20),
    Numbered<CRApproxMod, &CRApproxMod::m_nTaskID>("CRApproxMod", 21),
};

/// The study, without its index, under a handle of its own.
class BareStudy {
 public:
  explicit BareStudy(const Study& study) : pod_(study.DataPath()) {
    KSBKey key;
    std::filesystem::remove(study.IndexPath());
    pod_.Open(study.DataPath(), study.IndexPath(), key, 32, vbReadWrite, 1, 0, 25);
  }
  POD* Pod() { return &pod_; }

 private:
  POD pod_;
};

class RebuildIndex : public testing::TestWithParam<ClassCase> {
 protected:
  const ClassCase& Class() const { return GetParam(); }

  void StoreAll() {
    const CLock lock(study.Pod(), 0);
    for (const ClassCase& stored : kClassCases) {
      for (int i = 1; i <= stored.objects; ++i) stored.make(study.Pod(), i)->PutObject();
    }
  }

  Study study;
};

INSTANTIATE_TEST_SUITE_P(Classes, RebuildIndex, testing::ValuesIn(kClassCases),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_P(RebuildIndex, ChecksAnIndexThatFits) {
  StoreAll();
  EXPECT_EQ(Class().rebuild(study.Pod(), false), Class().objects);
}

TEST_P(RebuildIndex, EntersTheObjectsOfItsClassAndNoOther) {
  StoreAll();
  study.Close();
  const RawFile old = ReadRawFile(study.IndexPath());
  {
    BareStudy bare(study);
    EXPECT_EQ(Class().rebuild(bare.Pod(), true), Class().objects);
    EXPECT_EQ(Class().rebuild(bare.Pod(), false), Class().objects);
  }
  const RawFile made = ReadRawFile(study.IndexPath());
  for (int tree = 0; tree < 25; ++tree) {
    const auto keys = ReadRawTree(made, tree);
    if (tree == Class().tree) {
      EXPECT_EQ(keys, ReadRawTree(old, tree));
    } else {
      EXPECT_TRUE(keys.empty()) << tree;
    }
  }
}

TEST_P(RebuildIndex, FindsThatKeysAreMissing) {
  StoreAll();
  study.Close();
  BareStudy bare(study);
  EXPECT_THROW(Class().rebuild(bare.Pod(), false), CIndexError);
}

TEST_P(RebuildIndex, FindsOneMissingKey) {
  const auto object = Class().make(study.Pod(), 1);
  object->PutObject();
  char text[64];
  KSBKey key(object->MakeKey(text), -1, -1), work;
  object->RemoveKey(key, work, object->GetVBClassIndex(), true);
  EXPECT_THROW(Class().rebuild(study.Pod(), false), CIndexError);
  EXPECT_EQ(Class().rebuild(study.Pod(), true), 1);
  EXPECT_EQ(Class().rebuild(study.Pod(), false), 1);
}

TEST_P(RebuildIndex, RefusesAKeyThatIsThereAlready) {
  Class().make(study.Pod(), 1)->PutObject();
  EXPECT_THROW(Class().rebuild(study.Pod(), true), CDuplicateEntry);
}

TEST_P(RebuildIndex, CountsNothingWithoutObjects) {
  const auto object = Class().make(study.Pod(), 1);
  object->PutObject();
  object->RemoveObject();
  EXPECT_EQ(Class().rebuild(study.Pod(), true), 0);
  EXPECT_EQ(Class().rebuild(study.Pod(), false), 0);
}

/// The classes that can have more than one object.
std::vector<ClassCase> NumberedClasses() {
  std::vector<ClassCase> numbered;
  for (const ClassCase& tested : kClassCases) {
    if (tested.objects > 1) numbered.push_back(tested);
  }
  return numbered;
}

class RebuildIndexOfNumbered : public RebuildIndex {};

INSTANTIATE_TEST_SUITE_P(Classes, RebuildIndexOfNumbered, testing::ValuesIn(NumberedClasses()),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_P(RebuildIndexOfNumbered, LeavesRemovedAndDeletedObjectsOut) {
  for (const int number : {1, 2, 3}) Class().make(study.Pod(), number)->PutObject();
  Class().make(study.Pod(), 1)->RemoveObject();
  Class().make(study.Pod(), 2)->DeleteObject();
  EXPECT_EQ(Class().rebuild(study.Pod(), false), 1);
  study.Close();
  const auto keys = ReadRawTree(ReadRawFile(study.IndexPath()), Class().tree);
  {
    BareStudy bare(study);
    EXPECT_EQ(Class().rebuild(bare.Pod(), true), 1);
  }
  EXPECT_EQ(ReadRawTree(ReadRawFile(study.IndexPath()), Class().tree), keys);
}

TEST_P(RebuildIndex, StopsAtACorruptObject) {
  const auto object = Class().make(study.Pod(), 1);
  object->PutObject();
  const long address = object->ObjectAddress();
  study.Close();
  PatchBytes(study.DataPath(), address + 10, "?");
  study.Open();
  EXPECT_THROW(Class().rebuild(study.Pod(), false), CChecksum);
  EXPECT_THROW(Class().rebuild(study.Pod(), true), CChecksum);
}

TEST_P(RebuildIndex, NeedsAStudyWithItsIndex) {
  ExpectToRequireStudy(study, [this](POD* pod) { Class().rebuild(pod, false); });
}

TEST_P(RebuildIndex, NeedsADataFileWithBlocks) {
  KSBKey key;
  POD pod(study.folder / "empty.ksb");
  pod.Open(study.folder / "empty.ksb", study.folder / "empty.kx", key, 32, vbReadWrite, 1, 0, 25);
  EXPECT_THROW(Class().rebuild(&pod, false), CNoObjectsExist);
  EXPECT_THROW(Class().rebuild(&pod, true), CNoObjectsExist);
}

TEST(RebuildIndexOfAllClasses, MakesAWholeIndex) {
  Study study;
  for (const ClassCase& stored : kClassCases) {
    for (int i = 1; i <= stored.objects; ++i) stored.make(study.Pod(), i)->PutObject();
  }
  study.Close();
  {
    BareStudy bare(study);
    for (const ClassCase& made : kClassCases) {
      EXPECT_EQ(made.rebuild(bare.Pod(), true), made.objects) << made.name;
    }
  }
  EXPECT_EQ(FaultsOfStudy(study.BasePath()), "");
}

// ---- Damage between the objects ----

class RebuildIndexWalk : public testing::Test {
 protected:
  RebuildIndexWalk() {
    for (int id = 1; id <= 4; ++id) {
      CInput input(study.Pod());
      input.m_nID = id;
      input.PutObject();
      addresses[id] = input.ObjectAddress();
    }
  }

  /// How many Inputs are found once the bytes at `offset` are these.
  int CountWith(long offset, const std::string& bytes) {
    study.Close();
    PatchBytes(study.DataPath(), offset, bytes);
    study.Open();
    return CInput::RebuildIndex(study.Pod(), false);
  }
  long BlockOf(int id) const { return addresses[id] - 28; }

  Study study;
  long addresses[5] = {};
};

TEST_F(RebuildIndexWalk, StepsOverABlockWithoutItsCheckWord) {
  EXPECT_EQ(CountWith(BlockOf(2), "?"), 3);
}

TEST_F(RebuildIndexWalk, StepsOverABlockThatReachesBehindTheFile) {
  EXPECT_EQ(CountWith(BlockOf(2) + 4, Bytes("FF FF FF 7F")), 3);
  EXPECT_EQ(CountWith(BlockOf(2) + 4, Bytes("FF FF FF FF")), 3);
}

TEST_F(RebuildIndexWalk, StepsOverABlockShorterThanItsHeaders) {
  for (const char* length : {"00 00 00 00", "1F 00 00 00"}) {
    EXPECT_EQ(CountWith(BlockOf(2) + 4, Bytes(length)), 3);
  }
}

TEST_F(RebuildIndexWalk, EndsAtABadBlockAtTheEnd) {
  EXPECT_EQ(CountWith(BlockOf(4), "?"), 3);
}

TEST_F(RebuildIndexWalk, LeavesOutABlockOfAnUnknownStatus) {
  EXPECT_EQ(CountWith(BlockOf(3) + 8, "X"), 3);
}

TEST_F(RebuildIndexWalk, StopsWhereAnObjectOfItsClassIsTooShort) {
  study.Close();
  // A block whose checksum can't be read: the object of a class is cut by its own length.
  PatchBytes(study.DataPath(), BlockOf(4) + 4, Bytes("28 00 00 00"));
  study.Open();
  EXPECT_THROW(CInput::RebuildIndex(study.Pod(), false), CChecksum);
}

}  // namespace
