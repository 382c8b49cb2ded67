#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "definition/DBCtrl.h"
#include "store/KestErr.h"
#include "tests/support/Bytes.h"
#include "tests/support/RawFile.h"
#include "tests/support/StoredRecord.h"
#include "tests/support/Study.h"

// The record of the control object, of this version and of the older one.

namespace {

using IDs = std::vector<vbINT32>;

const std::string counters =
    "04 00 00 00 "   // tasks
    "98 BA DC 7E "   // Inputs
    "02 01 00 00 "   // responses
    "FD FF FF FF ";  // auxiliary definitions
const std::string tasks = "03 00 00 00 07 00 00 00 FF FF FF FF 2C 01 00 00 ";
const std::string filledFields = counters + tasks;

class ControlObjectRecord : public testing::Test {
 protected:
  long Store(const std::string& record) { return StoreRecord(study.Pod(), 16000, record); }

  CDBCtrl Filled() {
    CDBCtrl control(study.Pod());
    control.NextTaskID = 4;
    control.NextInputID = 0x7EDCBA98;
    control.NextRespID = 258;
    control.NextAuxID = -3;
    control.TaskIDs = {7, -1, 300};
    return control;
  }
  /// Reads the record into an object that holds something else in every field.
  CDBCtrl ReadOver(const std::string& record) {
    CDBCtrl control(study.Pod());
    control.NextTaskID = control.NextInputID = control.NextRespID = control.NextAuxID = 70;
    control.TaskIDs = {71, 72, 73, 74};
    control.Read(Store(record));
    return control;
  }
  std::string Stored(CDBCtrl& control) {
    control.PutObject();
    return Hex(StoredRecord(control));
  }

  Study study;
};

void ExpectSameFields(const CDBCtrl& control, const CDBCtrl& expected) {
  EXPECT_EQ(control.NextTaskID, expected.NextTaskID);
  EXPECT_EQ(control.NextInputID, expected.NextInputID);
  EXPECT_EQ(control.NextRespID, expected.NextRespID);
  EXPECT_EQ(control.NextAuxID, expected.NextAuxID);
  EXPECT_EQ(control.TaskIDs, expected.TaskIDs);
}

TEST_F(ControlObjectRecord, OfDefaultsByteForByte) {
  CDBCtrl control(study.Pod());
  EXPECT_EQ(control.ObjectLength(), 24U);
  EXPECT_EQ(Stored(control), Hex(Bytes("02 00 00 00 01 00 00 00 01 00 00 00 "
                                       "01 00 00 00 01 00 00 00 00 00 00 00")));
}

TEST_F(ControlObjectRecord, OfAllFieldsByteForByte) {
  CDBCtrl control = Filled();
  EXPECT_EQ(control.ObjectLength(), 36U);
  EXPECT_EQ(Stored(control), Hex(Bytes("02 00 00 00" + filledFields)));
}

TEST_F(ControlObjectRecord, LiesBehindItsHeaderAndUnderItsKey) {
  CDBCtrl control = Filled();
  control.PutObject();
  const long address = control.ObjectAddress();
  study.Close();
  const RawFile data = ReadRawFile(study.DataPath());
  EXPECT_EQ(Hex(ObjectsOf(data, 16000).at(address)),
            Hex(Bytes("80 3E 00 00" + HexWord(address) + "02 00 00 00" + filledFields)));
  EXPECT_EQ(ReadRawTree(ReadRawFile(study.IndexPath()), 15),
            (std::map<std::string, long>{{"          1", address}}));
}

TEST_F(ControlObjectRecord, OfVersionTwoIsReadInFull) {
  const long address = Store(Bytes("02 00 00 00" + filledFields));
  CDBCtrl control(study.Pod());
  control.Read(address);
  ExpectSameFields(control, Filled());
  EXPECT_EQ(control.ObjectAddress(), address);
  ExpectSameFields(ReadOver(Bytes("02 00 00 00" + filledFields)), Filled());
}

TEST_F(ControlObjectRecord, OfVersionTwoWithoutTasksEmptiesTheList) {
  EXPECT_TRUE(ReadOver(Bytes("02 00 00 00" + counters + "00 00 00 00")).TaskIDs.empty());
}

TEST_F(ControlObjectRecord, OfVersionOneLeavesTheListAsItWas) {
  CDBCtrl expected = Filled();
  expected.TaskIDs = {71, 72, 73, 74};
  ExpectSameFields(ReadOver(Bytes("01 00 00 00" + counters)), expected);
  CDBCtrl control(study.Pod());
  control.Read(Store(Bytes("01 00 00 00" + counters)));
  EXPECT_TRUE(control.TaskIDs.empty());
}

TEST_F(ControlObjectRecord, OfVersionOneIsWrittenBackAsVersionTwo) {
  CDBCtrl old(study.Pod());
  old.RemoveObject();
  ASSERT_TRUE(old.Add(Store(Bytes("01 00 00 00" + counters)), 16000));
  CDBCtrl control(study.Pod());
  EXPECT_EQ(control.GetRespID(true), 258);
  EXPECT_EQ(Hex(StoredRecord(control)),
            Hex(Bytes("02 00 00 00 04 00 00 00 98 BA DC 7E 03 01 00 00 FD FF FF FF 00 00 00 00")));
}

TEST_F(ControlObjectRecord, OfANewerVersionIsReadAsFarAsKnown) {
  ExpectSameFields(ReadOver(Bytes("03 00 00 00" + filledFields + "FF FF FF FF 01")), Filled());
}

TEST_F(ControlObjectRecord, HoldsEachFieldAtItsPlaceAlone) {
  struct Change {
    std::function<void(CDBCtrl&)> make;
    std::size_t offset;  // the version counted in
    const char* bytes;
  };
  const Change changes[] = {
      {[](CDBCtrl& control) { control.NextTaskID = 5; }, 4, "05 00 00 00"},
      {[](CDBCtrl& control) { control.NextInputID = 5; }, 8, "05 00 00 00"},
      {[](CDBCtrl& control) { control.NextRespID = 5; }, 12, "05 00 00 00"},
      {[](CDBCtrl& control) { control.NextAuxID = 5; }, 16, "05 00 00 00"},
      {[](CDBCtrl& control) { control.TaskIDs[0] = 5; }, 24, "05 00 00 00"},
      {[](CDBCtrl& control) { control.TaskIDs[2] = 5; }, 32, "05 00 00 00"},
  };
  for (const Change& change : changes) {
    SCOPED_TRACE(change.offset);
    CDBCtrl control = Filled();
    change.make(control);
    std::string expected = Bytes("02 00 00 00" + filledFields);
    expected.replace(change.offset, 4, Bytes(change.bytes));
    EXPECT_EQ(Stored(control), Hex(expected));
    CDBCtrl read(study.Pod());
    read.Read(Store(expected));
    ExpectSameFields(read, control);
  }
}

TEST_F(ControlObjectRecord, IsAsLongAsItsObjectLengthSays) {
  std::mt19937 random(41);
  for (int round = 0; round < 200; ++round) {
    SCOPED_TRACE(round);
    CDBCtrl control(study.Pod());
    for (vbINT32* field :
         {&control.NextTaskID, &control.NextInputID, &control.NextRespID, &control.NextAuxID}) {
      *field = static_cast<int>(random());
    }
    control.TaskIDs.resize(random() % 60);
    for (vbINT32& id : control.TaskIDs) id = static_cast<int>(random());
    EXPECT_EQ(control.ObjectLength(), 24 + 4 * control.TaskIDs.size());
    control.PutObject();
    EXPECT_EQ(StoredRecord(control).size(), control.ObjectLength());
    CDBCtrl read(study.Pod());
    ASSERT_TRUE(read.GetObject());
    ExpectSameFields(read, control);
  }
}

// ---- Damage ----

TEST_F(ControlObjectRecord, ThatEndsTooEarlyIsCorrupt) {
  const std::string record = Bytes("02 00 00 00" + filledFields);
  for (std::size_t size = 0; size < record.size(); ++size) {
    SCOPED_TRACE(size);
    EXPECT_THROW(ReadOver(record.substr(0, size)), CFileCorrupt);
  }
}

TEST_F(ControlObjectRecord, WithMoreTasksThanItHoldsIsCorrupt) {
  for (const char* count : {"04 00 00 00", "00 00 00 40", "FF FF FF 7F", "FF FF FF FF"}) {
    SCOPED_TRACE(count);
    EXPECT_THROW(ReadOver(Bytes("02 00 00 00" + counters + count + tasks.substr(12))),
                 CFileCorrupt);
  }
}

TEST_F(ControlObjectRecord, OfAnotherClassIsABadClassID) {
  const long address = StoreRecord(study.Pod(), 17000, Bytes("02 00 00 00" + filledFields));
  CDBCtrl control(study.Pod());
  EXPECT_THROW(control.Read(address), CBadClassID);
  ExpectSameFields(control, CDBCtrl(study.Pod()));
}

TEST_F(ControlObjectRecord, WithAWrongChecksumIsRefused) {
  const long address = Store(Bytes("02 00 00 00" + filledFields));
  study.Close();
  PatchBytes(study.DataPath(), address + 12, "\x05");
  study.Open();
  CDBCtrl control(study.Pod());
  EXPECT_THROW(control.Read(address), CChecksum);
}

}  // namespace
