#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/task/DVarColumns.h"
#include "tests/task/VersionedTableTests.h"

// The record of a task's variables, of this version and of older ones.

namespace {

INSTANTIATE_TYPED_TEST_SUITE_P(OfVariables, TaskRecords, CDVar);

// A table of an independent variable, a synthetic one and two constants. All versions have the
// pieces of `table...`; scales come between them since version 4, the sets and bounds of constants
// since version 6, the lengths of arguments since version 5, and the random description behind
// them since version 3.

const std::string tableEntries =
    "09 00 00 00 "                          // ID
    "02 00 00 00 00 00 00 00 00 00 00 00 "  // positions
    "02 00 00 00 14 00 00 00 16 00 00 00 "  // kinds
    "01 00 00 00 05 00 00 00 "              // IDs: independent
    "00 00 00 00 "                          // linked
    "01 00 00 00 06 00 00 00 "              // synthetic
    "02 00 00 00 07 00 00 00 08 00 00 00 "  // constant
    "01 00 00 00 3F F0 00 00 00 00 00 00 "  // lower as given, in force
    "01 00 00 00 40 00 00 00 00 00 00 00 "
    "01 00 00 00 40 08 00 00 00 00 00 00 "  // upper as given, in force
    "01 00 00 00 40 10 00 00 00 00 00 00 ";
const std::string scales = "01 00 00 00 3F E0 00 00 00 00 00 00 ";
const std::string tableNames =
    "00 00 00 00 00 00 00 00 "              // bounds: linked
    "01 00 00 00 C0 00 00 00 00 00 00 00 "  // synthetic
    "01 00 00 00 40 14 00 00 00 00 00 00 "
    "01 00 00 00 02 00 00 00 78 31 "  // names
    "00 00 00 00 "
    "01 00 00 00 01 00 00 00 73 "
    "02 00 00 00 01 00 00 00 00 01 00 00 00 63 ";
const std::string constants =
    "02 00 00 00 00 00 00 00 0B 00 00 00 "
    "02 00 00 00 00 00 00 00 00 00 00 00 3F F8 00 00 00 00 00 00 "
    "02 00 00 00 00 00 00 00 00 00 00 00 40 18 00 00 00 00 00 00 ";
const std::string tableArguments =
    "00 00 00 00 "                                      // links
    "01 00 00 00 0A 00 00 00 "                          // functions
    "00 00 00 00 00 00 00 00 "                          // arguments: linked
    "01 00 00 00 02 00 00 00 00 00 00 00 01 00 00 00 "  // synthetic
    "01 00 00 00 02 00 00 00 14 00 00 00 17 00 00 00 ";
const std::string lengths = "01 00 00 00 02 00 00 00 04 00 00 00 01 00 00 00 ";
const std::string tableSets = "01 00 00 00 FF FF FF FF ";
const std::string randoms =
    "02 00 00 00 00 00 00 00 FF FF FF FF "
    "02 00 00 00 FD FF FF FF 00 00 00 00 "
    "01 00 00 00 03 00 00 00 ";

class VariableRecords : public testing::Test {
 protected:
  CDVar Read(const std::string& hex) {
    CDVar vars(study.Pod());
    ReadInto(vars, hex);
    return vars;
  }
  void ReadInto(CDVar& vars, const std::string& hex) {
    vars.Read(StoreRecord(study.Pod(), 4000, Bytes(hex)));
  }

  static CDVar Table(POD* pod) {
    CDVar vars(pod);
    vars.m_nID = 9;
    vars.m_vnSeq = {0, 0};
    vars.m_vnType = {20, 22};
    vars.m_vnIndIDs = {5};
    vars.m_vnSynIDs = {6};
    vars.m_vnConstIDs = {7, 8};
    vars.m_vfIndLowerIn = {1.0};
    vars.m_vfIndLower = {2.0};
    vars.m_vfIndUpperIn = {3.0};
    vars.m_vfIndUpper = {4.0};
    vars.m_vfIndScale = {0.5};
    vars.m_vfSynLower = {-2.0};
    vars.m_vfSynUpper = {5.0};
    vars.m_vstrIndName = {"x1"};
    vars.m_vstrSynName = {"s"};
    vars.m_vstrConstName = {"", "c"};
    vars.m_vnConstSet = {0, 11};
    vars.m_vfConstLower = {0.0, 1.5};
    vars.m_vfConstUpper = {0.0, 6.0};
    vars.m_vnSynRef = {10};
    vars.m_mnSynSubj = {{0, 1}};
    vars.m_mnSynType = {{20, 23}};
    vars.m_mnSynLen = {{4, 1}};
    vars.m_vnDiscreteRef = {-1};
    vars.m_vnRandIndex = {0, -1};
    vars.m_vnRandParam = {-3, 0};
    vars.m_vnRandDist = {3};
    return vars;
  }

  static void ExpectSame(const CDVar& vars, const CDVar& expected) {
    EXPECT_EQ(vars.m_nID, expected.m_nID);
    for (const auto& [column, since, missing] : VersionedTableOf<CDVar>::All()) {
      SCOPED_TRACE(column.filled);
      column.expectSame(vars, expected);
    }
  }

  Study study;
};

TEST_F(VariableRecords, OfVersionSixAreStoredAndRead) {
  const std::string record = "06 00 00 00 " + tableEntries + scales + tableNames + constants +
                             tableArguments + lengths + tableSets + randoms;
  CDVar vars = Table(study.Pod());
  vars.PutObject();
  EXPECT_EQ(Hex(StoredRecord(vars)), Hex(Bytes(record)));
  EXPECT_EQ(vars.ObjectLength(), Bytes(record).size());
  ExpectSame(Read(record), Table(nullptr));
}

TEST_F(VariableRecords, OfVersionFiveHaveConstantsWithoutSets) {
  CDVar expected = Table(nullptr);
  expected.m_vnConstSet = {0, 0};
  expected.m_vfConstLower = {0.0, 0.0};
  expected.m_vfConstUpper = {0.0, 0.0};
  ExpectSame(Read("05 00 00 00 " + tableEntries + scales + tableNames + tableArguments + lengths +
                  tableSets + randoms),
             expected);
}

TEST_F(VariableRecords, OfVersionFourTakeSingleElements) {
  CDVar expected = Table(nullptr);
  expected.m_vnConstSet = {0, 0};
  expected.m_vfConstLower = {0.0, 0.0};
  expected.m_vfConstUpper = {0.0, 0.0};
  expected.m_mnSynLen = {{1, 1}};
  ExpectSame(Read("04 00 00 00 " + tableEntries + scales + tableNames + tableArguments + tableSets +
                  randoms),
             expected);
}

TEST_F(VariableRecords, OfVersionThreeHaveNoScales) {
  CDVar expected = Table(nullptr);
  expected.m_vnConstSet = {0, 0};
  expected.m_vfConstLower = {0.0, 0.0};
  expected.m_vfConstUpper = {0.0, 0.0};
  expected.m_mnSynLen = {{1, 1}};
  expected.m_vfIndScale = {0.0};
  ExpectSame(
      Read("03 00 00 00 " + tableEntries + tableNames + tableArguments + tableSets + randoms),
      expected);
}

TEST_F(VariableRecords, OfVersionsOneAndTwoHaveNoRandomDescription) {
  CDVar expected = Table(nullptr);
  expected.m_vnConstSet = {0, 0};
  expected.m_vfConstLower = {0.0, 0.0};
  expected.m_vfConstUpper = {0.0, 0.0};
  expected.m_mnSynLen = {{1, 1}};
  expected.m_vfIndScale = {0.0};
  expected.m_vnRandIndex = expected.m_vnRandParam = expected.m_vnRandDist = {};
  const std::string fields = tableEntries + tableNames + tableArguments + tableSets;
  ExpectSame(Read("01 00 00 00 " + fields), expected);
  ExpectSame(Read("02 00 00 00 " + fields), expected);
}

TEST_F(VariableRecords, OfVersionOneTakeTheirSizesAndNotThoseOfTheObject) {
  CDVar vars = FilledTable<CDVar>(study.Pod());
  ReadInto(vars, "01 00 00 00 " + tableEntries + tableNames + tableArguments + tableSets);
  EXPECT_EQ(AsVector(vars.m_vfIndScale), (std::vector<vbFLOAT64>{0.0}));
  EXPECT_EQ(vars.m_mnSynLen, (std::vector<std::vector<vbINT32>>{{1, 1}}));
  EXPECT_EQ(AsVector(vars.m_vnConstSet), (std::vector<vbINT32>{0, 0}));
  EXPECT_EQ(AsVector(vars.m_vfConstLower), (std::vector<vbFLOAT64>{0.0, 0.0}));
  EXPECT_EQ(AsVector(vars.m_vfConstUpper), (std::vector<vbFLOAT64>{0.0, 0.0}));
}

}  // namespace
