#include "control/DesignControl.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>

#include "index/KSBKey.h"
#include "store/KestErr.h"
#include "store/vbdbase.h"
#include "tests/control/DesignControlRecord.h"
#include "tests/support/Bytes.h"
#include "tests/support/RawFile.h"
#include "tests/support/Study.h"

namespace {

class DesignControl : public testing::Test {
 protected:
  void StoreChanged() {
    CDesignControl control(study.Pod());
    ChangeAll(control, AllFields());
    control.PutObject();
  }
  CDesignControl Stored() {
    CDesignControl control(study.Pod());
    EXPECT_TRUE(control.GetObject());
    return control;
  }

  Study study;
};

// ---- The object ----

TEST_F(DesignControl, HasTheConstantsOfItsClass) {
  EXPECT_EQ(CDesignControl::m_nDESCTRL_ID, 18000);
  EXPECT_EQ(CDesignControl::m_nDESCTRL_INDX, 17);
  EXPECT_EQ(CDesignControl::m_nDESCTRL_VER, 18);
  EXPECT_EQ(CDesignControl::m_strCLASS_NAME, "CDesignControl");
  CDesignControl control(study.Pod());
  EXPECT_EQ(control.GetVBClassID(), 18000);
  EXPECT_EQ(control.GetVBClassIndex(), 17U);
  EXPECT_EQ(control.GetVBClassVer(), 18);
  EXPECT_EQ(control.GetVBClassName(), "CDesignControl");
}

TEST_F(DesignControl, HasDefaultsWhenNew) {
  const POD* const pod = study.Pod();
  ExpectAll(CDesignControl(study.Pod()), AllFields(), false);
  ExpectAll(CDesignControl(pod), AllFields(), false);
  EXPECT_EQ(CDesignControl(pod).Database(), pod);
  EXPECT_EQ(CDesignControl(pod).ObjectAddress(), 0);
}

TEST_F(DesignControl, SetDefaultAttributesLeavesBlocksAndListOfTasks) {
  CDesignControl control(study.Pod());
  control.PutObject();
  const vbINT32 address = control.ObjectAddress();
  ChangeAll(control, AllFields());
  control.SetDefaultAttributes();
  EXPECT_EQ(control.m_vnCheckTasks, (std::vector<vbINT32>{3, 1, 258}));
  control.m_vnCheckTasks.clear();
  ExpectAll(control, OuterFields(), false);
  ExpectAll(control, BlockFields(), true);
  EXPECT_EQ(control.Database(), study.Pod());
  EXPECT_EQ(control.ObjectAddress(), address);
}

TEST_F(DesignControl, CopyTakesAllFieldsAndKeepsTheConnection) {
  StoreChanged();
  const CDesignControl control = Stored();
  CDesignControl copy(static_cast<POD*>(nullptr));
  copy.Copy(control);
  ExpectAll(copy, AllFields(), true);
  EXPECT_EQ(copy.Database(), nullptr);
  EXPECT_EQ(copy.ObjectAddress(), 0);
}

TEST_F(DesignControl, CopyOfEachFieldAlone) {
  for (const auto& field : AllFields()) {
    SCOPED_TRACE(field.changed);
    CDesignControl control(study.Pod());
    CDesignControl copy(study.Pod());
    field.change(control);
    copy.Copy(control);
    field.expect(copy, true);
    copy.Copy(CDesignControl(study.Pod()));
    field.expect(copy, false);
  }
}

// ---- The one record ----

TEST_F(DesignControl, HasTheKeyOfOne) {
  CDesignControl control(study.Pod());
  ChangeAll(control, AllFields());
  EXPECT_TRUE(control.CheckKey());
  char text[64];
  EXPECT_EQ(control.MakeKey(text), text);
  EXPECT_STREQ(text, "          1");
}

TEST_F(DesignControl, ExistsOnce) {
  StoreChanged();
  EXPECT_THROW(CDesignControl(study.Pod()).WriteObject(true), CObjectNotAdded);
  CDesignControl(study.Pod()).PutObject();
  EXPECT_EQ(CDesignControl(study.Pod()).CountObjects(), 1);
  ExpectAll(Stored(), AllFields(), false);
}

TEST_F(DesignControl, IsReadBackAfterReopening) {
  StoreChanged();
  study.Reopen();
  ExpectAll(Stored(), AllFields(), true);
}

TEST_F(DesignControl, IsStoredSoundly) {
  StoreChanged();
  StoreChanged();
  study.Close();
  EXPECT_EQ(FaultOfClass(ReadRawFile(study.DataPath()), ReadRawFile(study.IndexPath()), 18000), "");
}

// ---- Removal ----

TEST_F(DesignControl, RemoveReturnsTheRecordToItsDefaults) {
  StoreChanged();
  EXPECT_TRUE(CDesignControl::RemoveDesignControl(study.Pod()));
  ExpectAll(Stored(), AllFields(), false);
  EXPECT_EQ(CDesignControl(study.Pod()).CountObjects(), 1);
  study.Close();
  EXPECT_EQ(FaultOfClass(ReadRawFile(study.DataPath()), ReadRawFile(study.IndexPath()), 18000), "");
}

TEST_F(DesignControl, RemoveOfAMissingRecordStoresDefaults) {
  CDesignControl(study.Pod()).RemoveObject();
  EXPECT_TRUE(CDesignControl::RemoveDesignControl(study.Pod()));
  ExpectAll(Stored(), AllFields(), false);
  EXPECT_EQ(CDesignControl(study.Pod()).CountObjects(), 1);
}

// ---- Failures ----

bool Check(POD* pod) {
  return CDesignControl::CheckDesignControl(pod, false, true, 1, 0, 0, 1, 1, 0, 0, 0, 0, 0);
}

/// The static operations, and the null stream that only Dump has.
const std::function<void(POD*)> operations[] = {
    [](POD* pod) { CDesignControl::RemoveDesignControl(pod); },
    [](POD* pod) { Check(pod); },
    [](POD* pod) { CDesignControl::Dump(pod, stdout); },
    [](POD* pod) { CDesignControl::Dump(pod, nullptr); },
};

TEST_F(DesignControl, OfNoDatabaseIsANullPointer) {
  for (const auto& operation : operations) EXPECT_THROW(operation(nullptr), CNullPtr);
}

TEST_F(DesignControl, WithoutIndexingIsToldSoBeforeMissingFiles) {
  POD pod(study.folder / "other.ksb");
  for (const auto& operation : operations) EXPECT_THROW(operation(&pod), CNoIndex);
  KSBKey key;
  pod.Open(study.folder / "other.ksb", study.folder / "other.kx", key, 32, vbReadWrite, 2, 0, 25);
  for (const auto& operation : operations) EXPECT_THROW(operation(&pod), CNoIndex);
}

TEST_F(DesignControl, WithoutADataFileIsANullPointer) {
  study.Pod()->CloseDataFile();
  for (const auto& operation : operations) EXPECT_THROW(operation(study.Pod()), CNullPtr);
}

TEST_F(DesignControl, WithoutAnIndexFileIsANullPointer) {
  study.Pod()->CloseIndex();
  for (const auto& operation : operations) EXPECT_THROW(operation(study.Pod()), CNullPtr);
}

TEST_F(DesignControl, IsCheckedBeforeTheLockIsTaken) {
  std::filesystem::create_directory(study.LockPath());
  for (int i = 0; i < 3; ++i) EXPECT_THROW(operations[i](study.Pod()), CFileLock);
  EXPECT_THROW(operations[3](study.Pod()), CNullPtr);
  POD pod(study.folder / "study.ksb");
  for (const auto& operation : operations) EXPECT_THROW(operation(&pod), CNoIndex);
  std::filesystem::remove(study.LockPath());
}

TEST_F(DesignControl, ThatIsMissingCanNeitherBeCheckedNorReported) {
  CDesignControl(study.Pod()).RemoveObject();
  EXPECT_THROW(Check(study.Pod()), CObjectNotFound);
  EXPECT_THROW(CDesignControl::Dump(study.Pod(), stdout), CObjectNotFound);
}

TEST_F(DesignControl, ThatIsDamagedIsNeitherCheckedNorReportedInPart) {
  StoreChanged();
  const long address = Stored().ObjectAddress();
  study.Close();
  PatchBytes(study.DataPath(), address + 12, "x");
  study.Open();
  EXPECT_THROW(Check(study.Pod()), CChecksum);
  std::FILE* stream = std::tmpfile();
  EXPECT_THROW(CDesignControl::Dump(study.Pod(), stream), CChecksum);
  EXPECT_EQ(std::ftell(stream), 0);
  std::fclose(stream);
}

}  // namespace
