#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/task/DRespColumns.h"
#include "tests/task/VersionedTableTests.h"

// The record of a task's responses, of this version and of older ones.

namespace {

INSTANTIATE_TYPED_TEST_SUITE_P(OfResponses, TaskRecords, CDResp);

// A table of an independent response and a synthetic one. All versions have the pieces of
// `table...`; Pass/Fail marks come between them since version 2, the lengths of arguments behind
// them since version 4, and behind those the random description since version 3.

const std::string tableEntries =
    "09 00 00 00 "                          // ID
    "02 00 00 00 00 00 00 00 00 00 00 00 "  // positions
    "02 00 00 00 18 00 00 00 1A 00 00 00 "  // kinds
    "01 00 00 00 05 00 00 00 "              // IDs: independent
    "00 00 00 00 "                          // linked
    "01 00 00 00 06 00 00 00 "              // synthetic
    "01 00 00 00 02 00 00 00 72 31 "        // names
    "00 00 00 00 "
    "01 00 00 00 01 00 00 00 00 "
    "00 00 00 00 "               // links
    "01 00 00 00 0A 00 00 00 ";  // functions
const std::string passFail = "01 00 00 00 01 00 00 00 ";
const std::string tableArguments =
    "00 00 00 00 00 00 00 00 "                          // arguments: linked
    "01 00 00 00 02 00 00 00 00 00 00 00 01 00 00 00 "  // synthetic
    "01 00 00 00 02 00 00 00 18 00 00 00 17 00 00 00 ";
const std::string lengths = "01 00 00 00 02 00 00 00 03 00 00 00 01 00 00 00 ";
const std::string randoms =
    "02 00 00 00 00 00 00 00 FF FF FF FF "
    "02 00 00 00 FC FF FF FF 00 00 00 00 ";

class ResponseRecords : public testing::Test {
 protected:
  CDResp Read(const std::string& hex) {
    CDResp resps(study.Pod());
    resps.Read(StoreRecord(study.Pod(), 5000, Bytes(hex)));
    return resps;
  }

  static CDResp Table(POD* pod) {
    CDResp resps(pod);
    resps.m_nID = 9;
    resps.m_vnSeq = {0, 0};
    resps.m_vnType = {24, 26};
    resps.m_vnIndIDs = {5};
    resps.m_vnSynIDs = {6};
    resps.m_vstrIndName = {"r1"};
    resps.m_vstrSynName = {""};
    resps.m_vnSynRef = {10};
    resps.m_vnPassFail = {1};
    resps.m_mnSynSubj = {{0, 1}};
    resps.m_mnSynType = {{24, 23}};
    resps.m_mnSynLen = {{3, 1}};
    resps.m_vnRandIndex = {0, -1};
    resps.m_vnRBOParam = {-4, 0};
    return resps;
  }

  static void ExpectSame(const CDResp& resps, const CDResp& expected) {
    EXPECT_EQ(resps.m_nID, expected.m_nID);
    for (const auto& [column, since, missing] : VersionedTableOf<CDResp>::All()) {
      SCOPED_TRACE(column.filled);
      column.expectSame(resps, expected);
    }
  }

  Study study;
};

TEST_F(ResponseRecords, OfVersionFourAreStoredAndRead) {
  const std::string record =
      "04 00 00 00 " + tableEntries + passFail + tableArguments + lengths + randoms;
  CDResp resps = Table(study.Pod());
  resps.PutObject();
  EXPECT_EQ(Hex(StoredRecord(resps)), Hex(Bytes(record)));
  EXPECT_EQ(resps.ObjectLength(), Bytes(record).size());
  ExpectSame(Read(record), Table(nullptr));
}

TEST_F(ResponseRecords, OfVersionThreeTakeSingleElements) {
  CDResp expected = Table(nullptr);
  expected.m_mnSynLen = {{1, 1}};
  ExpectSame(Read("03 00 00 00 " + tableEntries + passFail + tableArguments + randoms), expected);
}

TEST_F(ResponseRecords, OfVersionTwoHaveNoRandomDescription) {
  CDResp expected = Table(nullptr);
  expected.m_mnSynLen = {{1, 1}};
  expected.m_vnRandIndex = expected.m_vnRBOParam = {};
  ExpectSame(Read("02 00 00 00 " + tableEntries + passFail + tableArguments), expected);
}

TEST_F(ResponseRecords, OfVersionOneHaveNoPassFailMarks) {
  CDResp expected = Table(nullptr);
  expected.m_mnSynLen = {{1, 1}};
  expected.m_vnRandIndex = expected.m_vnRBOParam = expected.m_vnPassFail = {};
  ExpectSame(Read("01 00 00 00 " + tableEntries + tableArguments), expected);
}

}  // namespace
