#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "control/DesignControl.h"
#include "store/KestErr.h"
#include "tests/control/DesignControlRecord.h"
#include "tests/support/Bytes.h"
#include "tests/support/Log.h"
#include "tests/support/RawFile.h"
#include "tests/support/StoredRecord.h"
#include "tests/support/Study.h"

namespace {

const std::string version18 = "12 00 00 00 ";

class DesignControlRecord : public testing::Test {
 protected:
  /// What the library reads from a typed record.
  CDesignControl Read(const std::string& hex) {
    CDesignControl control(study.Pod());
    control.Read(StoreRecord(study.Pod(), 18000, Bytes(hex)));
    return control;
  }
  std::string Stored(CDesignControl& control) {
    control.PutObject();
    return Hex(StoredRecord(control));
  }

  Study study;
};

/// The record of a version: the pieces that it holds, each with its other value.
std::string RecordOf(long version, const ControlFields& fields) {
  std::string hex = HexWord(version) + " ";
  for (const auto& field : fields) {
    if (field.since <= version) hex += field.changed;
  }
  return hex;
}

std::string FreshRecord(const ControlFields& fields) {
  std::string hex = version18;
  for (const auto& field : fields) hex += field.fresh;
  return hex;
}

/// The same bytes in the notation of Hex.
std::string Plain(const std::string& hex) {
  return Hex(Bytes(hex));
}

std::string LogOfKind(const std::string& kind) {
  std::string text;
  for (const LogEntry& entry : Log()) {
    if (entry.kind == kind) text += entry.text;
  }
  return text;
}

// ---- The current version ----

TEST_F(DesignControlRecord, OfDefaultsByteForByte) {
  CDesignControl control(study.Pod());
  const ControlFields fields = AllFields();
  EXPECT_EQ(Stored(control), Plain(FreshRecord(fields)));
  ExpectAll(Read(FreshRecord(fields)), fields, false);
}

TEST_F(DesignControlRecord, OfChangedSettingsByteForByte) {
  CDesignControl control(study.Pod());
  const ControlFields fields = AllFields();
  ChangeAll(control, fields);
  EXPECT_EQ(Stored(control), Plain(RecordOf(18, fields)));
  ExpectAll(Read(RecordOf(18, fields)), fields, true);
}

TEST_F(DesignControlRecord, HoldsEachFieldAtItsPlace) {
  const ControlFields fields = AllFields();
  std::string before = version18;
  std::string behind = FreshRecord(fields).substr(before.size());
  for (const auto& field : fields) {
    SCOPED_TRACE(before.size());
    ASSERT_NE(field.changed, field.fresh);
    behind.erase(0, field.fresh.size());
    CDesignControl control(study.Pod());
    field.change(control);
    const std::string record = before + field.changed + behind;
    EXPECT_EQ(Stored(control), Plain(record));
    EXPECT_EQ(control.ObjectLength(), Bytes(record).size());
    before += field.fresh;
  }
}

TEST_F(DesignControlRecord, OfDefaultsHasTheLengthOfItsParts) {
  // Strings: "analyze.exe", the two transfer files and eleven empty ones; five blocks.
  EXPECT_EQ(CDesignControl(study.Pod()).ObjectLength(),
            48U + 15 + 12 + 12 + 11 * 5 + (248 + 15 + 5 + 12 + 12) + 264 + 168 + 172 + 16);
}

TEST_F(DesignControlRecord, IsAsLongAsItsObjectLengthSays) {
  std::mt19937 random(5);
  const auto size = [&] { return std::uniform_int_distribution<std::size_t>(0, 70)(random); };
  for (int round = 0; round < 200; ++round) {
    SCOPED_TRACE(round);
    CDesignControl control(study.Pod());
    unsigned long length = 48 + 248 + 264 + 48 + 172 + 16;
    for (std::string* text :
         {&control.m_strTitle, &control.m_strProgram, &control.m_strArgs, &control.m_strVarFile,
          &control.m_strRespFile, &control.m_strSSHConnect, &control.m_strSSHCopyTo,
          &control.m_strSSHCopyFrom, &control.m_strConnect, &control.m_strCopyTo,
          &control.m_strCopyFrom, &control.m_strUser, &control.m_strHost, &control.m_strRemoteDir,
          &control.m_DGO.m_strGradProgram, &control.m_DGO.m_strGradArgs,
          &control.m_DGO.m_strGradVarFile, &control.m_DGO.m_strGradRespFile}) {
      text->assign(size(), 'x');
      length += 4 + std::max<std::size_t>(1, text->size());
    }
    for (std::vector<vbINT32>* numbers :
         {&control.m_vnCheckTasks, &control.m_DOE.m_vnOptions, &control.m_DOE.m_vnGUIIndices}) {
      numbers->assign(size(), 7);
      length += 4 * numbers->size();
    }
    EXPECT_EQ(control.ObjectLength(), length);
    control.PutObject();
    EXPECT_EQ(StoredRecord(control).size(), length);
  }
}

// ---- Other versions ----

TEST_F(DesignControlRecord, OfAnOlderVersionLeavesWhatItLacksAtTheDefault) {
  const ControlFields fields = AllFields();
  for (long version = 6; version <= 18; ++version) {
    SCOPED_TRACE(version);
    const CDesignControl control = Read(RecordOf(version, fields));
    for (const auto& field : fields) {
      SCOPED_TRACE(field.changed);
      field.expect(control, field.since <= version);
    }
  }
}

TEST_F(DesignControlRecord, OfVersionSixByItsLength) {
  // Version, task type, flag of reuse and count of tasks; tolerance; texts; three tasks.
  const std::size_t outer = 4 * 4 + 8 + (7 + 4 * 5) + 3 * 4;
  const std::size_t gradient = 16 * 4 + 19 * 8 + 5;
  const std::size_t surface = 18 * 4 + 20 * 8;
  const std::size_t design = 6 * 4 + 2 * 16 * 4;
  const std::size_t nonGradient = 8 * 4 + 10 * 8;
  EXPECT_EQ(Bytes(RecordOf(6, AllFields())).size(),
            outer + gradient + surface + design + nonGradient);
}

TEST_F(DesignControlRecord, OfAnOlderVersionIsStoredAsTheCurrentOne) {
  const ControlFields fields = AllFields();
  CDesignControl control = Read(RecordOf(6, fields));
  std::string record = version18;
  for (const auto& field : fields) record += field.since <= 6 ? field.changed : field.fresh;
  EXPECT_EQ(Stored(control), Plain(record));
}

TEST_F(DesignControlRecord, OfANewerVersionIsReadAsFarAsKnown) {
  const ControlFields fields = AllFields();
  for (const long version : {19L, 1000L, 2147483647L}) {
    SCOPED_TRACE(version);
    ExpectAll(Read(RecordOf(version, fields) + "2A 00 00 00 FF FF FF FF 01"), fields, true);
  }
}

TEST_F(DesignControlRecord, OfVersionFiveOrBelowIsRefused) {
  const ControlFields fields = AllFields();
  for (const long version : {5L, 4L, 1L, 0L, -1L, -2147483647L}) {
    SCOPED_TRACE(version);
    const long address =
        StoreRecord(study.Pod(), 18000, Bytes(HexWord(version) + RecordOf(18, fields).substr(12)));
    CDesignControl control(study.Pod());
    ClearLog();
    EXPECT_THROW(control.Read(address), CInvalidType);
    ExpectAll(control, fields, false);
    EXPECT_EQ(control.ObjectAddress(), 0);
    ASSERT_FALSE(Log().empty());
    EXPECT_EQ(Log().front().kind, "LError");
    const std::string text = LogOfKind("LError");
    for (const std::string& part : {std::string("CDesignControl"), std::to_string(address),
                                    "version " + std::to_string(version), std::string("6")}) {
      EXPECT_NE(text.find(part), std::string::npos) << text;
    }
  }
}

// ---- Arrays of the designs ----

/// The record with two of its pieces typed otherwise.
std::string WithArrays(const std::string& options, const std::string& indices) {
  std::string hex = version18;
  for (const auto& field : AllFields()) {
    const bool first = field.changed.starts_with("0F 00 00 00 01 ");
    const bool second = field.changed.starts_with("0F 00 00 00 1F ");
    hex += first ? options : second ? indices : field.changed;
  }
  return hex;
}

TEST_F(DesignControlRecord, WithFewerDesignsKeepsTheDefaultsOfTheOthers) {
  const CDesignControl control = Read(
      WithArrays("03 00 00 00 07 00 00 00 08 00 00 00 09 00 00 00 ", "01 00 00 00 05 00 00 00 "));
  EXPECT_EQ(control.m_DOE.m_vnOptions,
            (std::vector<vbINT32>{7, 8, 9, 12, -1, 10, 10, 3101, 1, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(control.m_DOE.m_vnGUIIndices,
            (std::vector<vbINT32>{5, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(control.m_DOE.m_nRandomPoints, 258);
  EXPECT_EQ(control.m_ANL.m_nRandomSeed, 0);
}

TEST_F(DesignControlRecord, WithNoDesignsKeepsAllDefaults) {
  const CDesignControl control = Read(WithArrays("00 00 00 00 ", "00 00 00 00 "));
  EXPECT_EQ(control.m_DOE.m_vnOptions, CDOEControl().m_vnOptions);
  EXPECT_EQ(control.m_DOE.m_vnGUIIndices, std::vector<vbINT32>(15));
}

TEST_F(DesignControlRecord, WithMoreDesignsThanThereAreIsCorrupt) {
  std::string sixteen = "10 00 00 00 ";
  for (int i = 0; i < 16; ++i) sixteen += "01 00 00 00 ";
  EXPECT_THROW(Read(WithArrays(sixteen, "00 00 00 00 ")), CFileCorrupt);
  EXPECT_THROW(Read(WithArrays("00 00 00 00 ", sixteen)), CFileCorrupt);
}

// ---- Damage ----

/// Whether the piece starts with a count: that of a text, a list of tasks or the designs.
bool IsCounted(const Field<CDesignControl>& field) {
  const std::size_t bytes = Bytes(field.changed).size();
  return bytes != 4 && bytes != 8;
}

TEST_F(DesignControlRecord, WithACountThatItCannotHoldIsCorrupt) {
  const ControlFields fields = AllFields();
  const std::string whole = Bytes(RecordOf(18, fields));
  std::size_t offset = 4;
  int counted = 0;
  for (const auto& field : fields) {
    if (IsCounted(field)) {
      SCOPED_TRACE(field.changed);
      ++counted;
      for (const char* count : {"FF FF FF FF", "FF FF FF 7F", "00 00 00 80", "00 10 00 00"}) {
        std::string damaged = whole;
        damaged.replace(offset, 4, Bytes(count));
        EXPECT_THROW(Read(Hex(damaged)), CFileCorrupt);
      }
    }
    offset += Bytes(field.changed).size();
  }
  EXPECT_EQ(counted, 18 + 3);
}

TEST_F(DesignControlRecord, ThatEndsWithinAFieldIsCorrupt) {
  const ControlFields fields = AllFields();
  const std::string whole = RecordOf(18, fields);
  std::size_t end = version18.size();
  EXPECT_THROW(Read(whole.substr(0, end - 3)), CFileCorrupt);
  for (const auto& field : fields) {
    SCOPED_TRACE(end);
    EXPECT_THROW(Read(whole.substr(0, end)), CFileCorrupt);
    end += field.changed.size();
    EXPECT_THROW(Read(whole.substr(0, end - 3)), CFileCorrupt);
  }
  EXPECT_EQ(end, whole.size());
}

TEST_F(DesignControlRecord, OfAnotherClassIsABadClassID) {
  const long address = StoreRecord(study.Pod(), 15000, Bytes(RecordOf(18, AllFields())));
  CDesignControl control(study.Pod());
  EXPECT_THROW(control.Read(address), CBadClassID);
  ExpectAll(control, AllFields(), false);
}

}  // namespace
