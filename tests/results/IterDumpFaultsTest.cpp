#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>

#include "index/KSBKey.h"
#include "store/KestErr.h"
#include "tests/results/IterStudy.h"
#include "tests/support/Bytes.h"

// Iterations of which there is no report: what is wrong is told before a line is printed.

namespace {

class IterReportFaults : public IterStudy {
 protected:
  using Change = std::function<void()>;

  /// That no report is printed after the change, and one after it is taken back.
  template <class Error>
  void ExpectNoReportAfter(const Change& change) {
    const CDVar vars0 = vars;
    const CDResp resps0 = resps;
    const CDCons cons0 = cons;
    const CDObj terms0 = terms;
    const CDPoint point0 = point;
    const CIter iter0 = iter;
    change();
    Store();
    ExpectNoReport<Error>();
    vars = vars0;
    resps = resps0;
    cons = cons0;
    terms = terms0;
    point = point0;
    iter = iter0;
    EXPECT_EQ(Report(), heading + state + variables + objectives + noConstraints + end);
  }
};

TEST_F(IterReportFaults, OfAKindThatIsNoVariablesIsAnInvalidType) {
  for (const int kind : {19, 24, 26, 0, -1, 2147483647}) {
    SCOPED_TRACE(kind);
    ExpectNoReportAfter<CInvalidType>([&] { vars.m_vnType[4] = kind; });
  }
}

TEST_F(IterReportFaults, OfAnObjectiveOfNoKnownKindIsAnInvalidType) {
  for (const int kind : {19, 27, 0, -1, 2147483647, -2147483647 - 1}) {
    SCOPED_TRACE(kind);
    ExpectNoReportAfter<CInvalidType>([&] { terms.m_vnSubjType[0] = kind; });
  }
}

TEST_F(IterReportFaults, OfAConstraintOfNoKnownKindIsAnInvalidType) {
  for (const int kind : {19, 27, 0, -1, 2147483647, -2147483647 - 1}) {
    SCOPED_TRACE(kind);
    ExpectNoReportAfter<CInvalidType>([&] { cons.m_vnSubjType[2] = kind; });
  }
}

TEST_F(IterReportFaults, OfAnInvalidTypeSaySo) {
  vars.m_vnType[0] = 30;
  Store();
  try {
    Stored();
    ADD_FAILURE();
  } catch (const CInvalidType& error) {
    EXPECT_STREQ(error.what(), "Object type is invalid");
  }
}

TEST_F(IterReportFaults, OfAPositionOutsideItsTableIsAnInvalidArgument) {
  for (const long position : {2L, -1L, 2147483647L, -2147483648L}) {
    SCOPED_TRACE(position);
    ExpectNoReportAfter<CInvalidArgument>([&] { vars.m_vnSeq[1] = position; });
    ExpectNoReportAfter<CInvalidArgument>([&] { terms.m_vnSubj[0] = position; });
    ExpectNoReportAfter<CInvalidArgument>([&] { cons.m_vnSubj[1] = position; });
  }
}

TEST_F(IterReportFaults, OfTablesThatAreTooShortIsAnInvalidArgument) {
  const Change cuts[] = {
      [&] { vars.m_vnSeq.pop_back(); },
      [&] { vars.m_vstrIndName.pop_back(); },
      [&] { vars.m_vstrLinkName.clear(); },
      [&] { vars.m_vstrSynName.clear(); },
      [&] { vars.m_vstrConstName.clear(); },
      [&] { vars.m_vfIndLower.resize(1); },
      [&] { vars.m_vfIndUpper.resize(0); },
      [&] { vars.m_vfLinkLower.resize(0); },
      [&] { vars.m_vfLinkUpper.resize(0); },
      [&] { vars.m_vfSynLower.resize(0); },
      [&] { vars.m_vfSynUpper.resize(0); },
      [&] { vars.m_vnConstSet = {5}; },
      [&] { vars.m_vfConstLower.resize(1); },
      [&] { vars.m_vfConstUpper.resize(1); },
      [&] { resps.m_vstrIndName.pop_back(); },
      [&] { resps.m_vstrLinkName.clear(); },
      [&] { resps.m_vstrSynName.clear(); },
      [&] { cons.m_vnSubj.pop_back(); },
      [&] { cons.m_vfBound.pop_back(); },
      [&] { cons.m_vnMult.pop_back(); },
      [&] { cons.m_vfScale.pop_back(); },
      [&] { terms.m_vnSubjType.clear(); },
      [&] { terms.m_vnGoal.resize(0); },
      [&] { terms.m_vnHasWorst.resize(0); },
      [&] { terms.m_vfWorst.resize(0); },
      [&] { terms.m_vfWeight.resize(0); },
      [&] {
        terms.m_vnGoal[0] = 2;
        terms.m_vfTarget.resize(0);
      },
      [&] { point.m_IDVar = {1.0}; },
      [&] { point.m_CDVar = {1.0}; },
      [&] { point.m_IResp = {1.0}; },
  };
  for (const Change& cut : cuts) {
    SCOPED_TRACE(&cut - cuts);
    ExpectNoReportAfter<CInvalidArgument>(cut);
  }
}

TEST_F(IterReportFaults, OfAFrontWhoseValuesCannotBeSharedOutIsAnInvalidArgument) {
  ExpectNoReportAfter<CInvalidArgument>([&] {
    iter.m_ParetoPoints = {1, 2};
    iter.m_ParetoValues = {1.0, 2.0, 3.0};
  });
  ExpectNoReportAfter<CInvalidArgument>([&] {
    iter.m_ParetoPoints = {1, 2, 3};
    iter.m_ParetoValues = {1.0};
  });
}

TEST_F(IterReportFaults, OfARecordThatIsMissingIsGetObject) {
  Store();
  ExpectNoReport<CGetObject>(1, 3, 0);
  ExpectNoReport<CGetObject>(1, 2, 1);
  ExpectNoReport<CGetObject>(2, 2, 0);
  for (vbPersistent* object :
       {static_cast<vbPersistent*>(&task), static_cast<vbPersistent*>(&vars),
        static_cast<vbPersistent*>(&resps), static_cast<vbPersistent*>(&cons),
        static_cast<vbPersistent*>(&terms), static_cast<vbPersistent*>(&point),
        static_cast<vbPersistent*>(&iter)}) {
    SCOPED_TRACE(object->GetVBClassName());
    ASSERT_TRUE(object->RemoveObject());
    ExpectNoReport<CGetObject>();
    object->PutObject();
  }
  EXPECT_EQ(Stored(), heading + state + variables + objectives + noConstraints + end);
}

TEST_F(IterReportFaults, OfABestPointThatIsMissingIsGetObject) {
  Store();
  ExpectNoReport<CGetObject>(1, 2, 0, true);
}

TEST_F(IterReportFaults, OfAPointThatCannotBeIsGetObject) {
  iter.m_nThisPoint = -1;
  Store();
  ExpectNoReport<CGetObject>();
}

TEST_F(IterReportFaults, OfAnImpossibleKeyIsAnInvalidKey) {
  ExpectNoReport<CInvalidKey>(0, 2, 0);
  ExpectNoReport<CInvalidKey>(-1, 2, 0);
  ExpectNoReport<CInvalidKey>(1, -1, 0);
  ExpectNoReport<CInvalidKey>(1, 2, -1);
}

TEST_F(IterReportFaults, OfADamagedPointIsNotPrintedInPart) {
  Store();
  study.Close();
  PatchBytes(study.DataPath(), point.ObjectAddress() + 30, "x");
  study.Open();
  ExpectNoReport<CChecksum>();
}

TEST_F(IterReportFaults, OfNoDatabaseOrStreamIsANullPointer) {
  EXPECT_THROW(CIter::Dump(nullptr, stdout, 1, false, 2, 0, false), CNullPtr);
  EXPECT_THROW(CIter::Dump(study.Pod(), nullptr, 1, false, 2, 0, false), CNullPtr);
}

TEST_F(IterReportFaults, TellMissingIndexingBeforeMissingFiles) {
  POD pod(study.folder / "other.ksb");
  EXPECT_THROW(CIter::Dump(&pod, stdout, 1, false, 2, 0, false), CNoIndex);
  KSBKey key;
  pod.Open(study.folder / "other.ksb", study.folder / "other.kx", key, 32, vbReadWrite, 2, 0, 25);
  EXPECT_THROW(CIter::Dump(&pod, stdout, 1, false, 2, 0, false), CNoIndex);
}

TEST_F(IterReportFaults, WithoutADataFileAreANullPointer) {
  study.Pod()->CloseDataFile();
  ExpectNoReport<CNullPtr>();
}

TEST_F(IterReportFaults, WithoutAnIndexFileAreANullPointer) {
  study.Pod()->CloseIndex();
  ExpectNoReport<CNullPtr>();
}

TEST_F(IterReportFaults, WithoutTheLockOfTheDatabaseAreAFileLock) {
  std::filesystem::create_directory(study.LockPath());
  ExpectNoReport<CFileLock>();
  std::filesystem::remove(study.LockPath());
}

}  // namespace
