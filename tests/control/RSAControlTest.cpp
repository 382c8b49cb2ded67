#include "control/RSAControl.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "store/KestErr.h"
#include "tests/control/BlockFields.h"
#include "tests/support/Bytes.h"

namespace {

using Surface = CRSAControl;

const BlockFields<Surface> fields{
    {"m_nIPRINT", &Surface::m_nIPRINT, 0, 101, "65 00 00 00"},
    {"m_nMINMAX", &Surface::m_nMINMAX, 1, 102, "66 00 00 00"},
    {"m_fSoftRel", &Surface::m_fSoftRel, 0.001, 1.5, "3F F8 00 00 00 00 00 00"},
    {"m_fSoftAbs", &Surface::m_fSoftAbs, 0.0001, 2.5, "40 04 00 00 00 00 00 00"},
    {"m_nMETHOD", &Surface::m_nMETHOD, 0, 103, "67 00 00 00"},
    {"m_nUncMETHOD", &Surface::m_nUncMETHOD, 0, 104, "68 00 00 00"},
    {"m_nISCAL", &Surface::m_nISCAL, 0, -2, "FE FF FF FF"},
    {"m_nITMAX", &Surface::m_nITMAX, 100, 305419896, "78 56 34 12"},
    {"m_nITRMOP", &Surface::m_nITRMOP, 2, 105, "69 00 00 00"},
    {"m_nJTMAX", &Surface::m_nJTMAX, 100, 106, "6A 00 00 00"},
    {"m_nITRMST", &Surface::m_nITRMST, 2, 107, "6B 00 00 00"},
    {"m_fCT", &Surface::m_fCT, -0.03, 3.5, "40 0C 00 00 00 00 00 00"},
    {"m_fCTMIN", &Surface::m_fCTMIN, 0.003, 4.5, "40 12 00 00 00 00 00 00"},
    {"m_fDABOBJ", &Surface::m_fDABOBJ, 0.0, 5.5, "40 16 00 00 00 00 00 00"},
    {"m_fDELOBJ", &Surface::m_fDELOBJ, 0.001, 6.5, "40 1A 00 00 00 00 00 00"},
    {"m_nReserved", &Surface::m_nReserved, 0, 108, "6C 00 00 00"},
    {"m_fPENALT", &Surface::m_fPENALT, 1.0, -0.1, "BF B9 99 99 99 99 99 9A"},
    {"m_fPMULT", &Surface::m_fPMULT, 5.0, 7.5, "40 1E 00 00 00 00 00 00"},
    {"m_fPENLTD", &Surface::m_fPENLTD, 0.01, 8.5, "40 21 00 00 00 00 00 00"},
    {"m_fPMULTD", &Surface::m_fPMULTD, 5.0, 9.5, "40 23 00 00 00 00 00 00"},
    {"m_nInitialDOE", &Surface::m_nInitialDOE, 9, 109, "6D 00 00 00"},
    {"m_nSubModel", &Surface::m_nSubModel, 0, 110, "6E 00 00 00"},
    {"m_nOrder", &Surface::m_nOrder, 3, 111, "6F 00 00 00"},
    {"m_nHasMinPoints", &Surface::m_nHasMinPoints, 0, 112, "70 00 00 00"},
    {"m_nMinPoints", &Surface::m_nMinPoints, 0, 113, "71 00 00 00"},
    {"m_nHasMaxPoints", &Surface::m_nHasMaxPoints, 0, 114, "72 00 00 00"},
    {"m_nMaxPoints", &Surface::m_nMaxPoints, 0, 115, "73 00 00 00"},
    {"m_nConvIters", &Surface::m_nConvIters, 2, 116, "74 00 00 00"},
    {"m_fHardRel", &Surface::m_fHardRel, 0.001, 10.5, "40 25 00 00 00 00 00 00"},
    {"m_fHardAbs", &Surface::m_fHardAbs, 0.0001, 11.5, "40 27 00 00 00 00 00 00"},
    {"m_fSoftRelApprox", &Surface::m_fSoftRelApprox, 0.001, 12.5, "40 29 00 00 00 00 00 00"},
    {"m_fSoftAbsApprox", &Surface::m_fSoftAbsApprox, 0.0001, 13.5, "40 2B 00 00 00 00 00 00"},
    {"m_fMoveRelLinear", &Surface::m_fMoveRelLinear, 0.2, 14.5, "40 2D 00 00 00 00 00 00"},
    {"m_fMoveRelMixed", &Surface::m_fMoveRelMixed, 0.2, 15.5, "40 2F 00 00 00 00 00 00"},
    {"m_fMoveRelQuad", &Surface::m_fMoveRelQuad, 0.2, 16.5, "40 30 80 00 00 00 00 00"},
    {"m_fMoveAbsLinear", &Surface::m_fMoveAbsLinear, 0.02, 17.5, "40 31 80 00 00 00 00 00"},
    {"m_fMoveAbsMixed", &Surface::m_fMoveAbsMixed, 0.02, 18.5, "40 32 80 00 00 00 00 00"},
    {"m_fMoveAbsQuad", &Surface::m_fMoveAbsQuad, 0.02, 19.5, "40 33 80 00 00 00 00 00"},
    {"m_fPEnter", &Surface::m_fPEnter, 0.1, 20.5, "40 34 80 00 00 00 00 00", {22, 18}},
    {"m_fPRemove", &Surface::m_fPRemove, 0.1, 21.5, "40 35 80 00 00 00 00 00", {22, 18}},
    {"m_nRandomMethod", &Surface::m_nRandomMethod, 0, 117, "75 00 00 00", {10, 7}},
    {"m_nRandomPoints", &Surface::m_nRandomPoints, 1000, 118, "76 00 00 00", {10, 7}},
    {"m_nSavePoints", &Surface::m_nSavePoints, 0, 119, "77 00 00 00", {15, 12}},
    {"m_nRandomSeed", &Surface::m_nRandomSeed, 1, 120, "78 00 00 00", {18, 15}},
};

const std::string initialRecord = Bytes(
    "00 00 00 00 01 00 00 00 "                          // IPRINT, MINMAX
    "3F 50 62 4D D2 F1 A9 FC 3F 1A 36 E2 EB 1C 43 2D "  // soft convergence
    "00 00 00 00 00 00 00 00 00 00 00 00 "              // methods, ISCAL
    "64 00 00 00 02 00 00 00 64 00 00 00 02 00 00 00 "  // ITMAX, ITRMOP, JTMAX, ITRMST
    "BF 9E B8 51 EB 85 1E B8 3F 68 93 74 BC 6A 7E FA "  // CT, CTMIN
    "00 00 00 00 00 00 00 00 3F 50 62 4D D2 F1 A9 FC "  // DABOBJ, DELOBJ
    "00 00 00 00 "                                      // reserved
    "3F F0 00 00 00 00 00 00 40 14 00 00 00 00 00 00 "  // PENALT, PMULT
    "3F 84 7A E1 47 AE 14 7B 40 14 00 00 00 00 00 00 "  // PENLTD, PMULTD
    "09 00 00 00 00 00 00 00 03 00 00 00 "              // initial design, sub-model, order
    "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "  // limits of points
    "02 00 00 00 "                                      // iterations
    "3F 50 62 4D D2 F1 A9 FC 3F 1A 36 E2 EB 1C 43 2D "  // hard convergence
    "3F 50 62 4D D2 F1 A9 FC 3F 1A 36 E2 EB 1C 43 2D "  // soft convergence
    "3F C9 99 99 99 99 99 9A 3F C9 99 99 99 99 99 9A 3F C9 99 99 99 99 99 9A "
    "3F 94 7A E1 47 AE 14 7B 3F 94 7A E1 47 AE 14 7B 3F 94 7A E1 47 AE 14 7B "
    "3F B9 99 99 99 99 99 9A 3F B9 99 99 99 99 99 9A "   // p-values
    "00 00 00 00 E8 03 00 00 00 00 00 00 01 00 00 00");  // random analysis

// ---- The block ----

TEST(SurfaceSettings, HaveInitialValuesAndTakeThemAgain) {
  ExpectInitialValues(fields);
}

TEST(SurfaceSettings, CopyTakesEachField) {
  ExpectCopyOfEachField(fields);
}

TEST(SurfaceSettings, TakeTwoHundredAndSixtyFourBytes) {
  EXPECT_EQ(Surface().ObjectLength(), 264U);
}

TEST(SurfaceSettings, AreAsLongAsWhatTheyWrite) {
  RecordFile file;
  std::mt19937 random(53);
  for (int round = 0; round < 200; ++round) {
    Surface block;
    for (const auto& field : fields) {
      const long number = static_cast<std::int32_t>(random());
      const bool integer = std::holds_alternative<long>(field.initial);
      if (integer) {
        SetValue(block, field, number);
      } else {
        SetValue(block, field, double(number) / 3);
      }
    }
    EXPECT_EQ(file.Record(block).size(), block.ObjectLength());
  }
}

// ---- The record ----

TEST(SurfaceSettings, OfANewBlockByteForByte) {
  RecordFile file;
  EXPECT_EQ(Hex(file.Record(Surface())), Hex(initialRecord));
}

TEST(SurfaceSettings, AreStoredInOrder) {
  ExpectStoredSample(fields);
}

TEST(SurfaceSettings, ChangeTheirOwnBytesOnly) {
  ExpectEachFieldAtItsPlace(fields, initialRecord);
}

TEST(SurfaceSettings, KeepWhatAnOlderRecordLacks) {
  ExpectSampleReadFromAllVersions(fields);
}

/// The last of the fields that every version holds, then what the version adds.
Surface ReadBehindTheMoveLimits(const std::string& hex, int taskVersion, int controlVersion) {
  RecordFile file;
  file.Append(initialRecord.substr(0, 232) + Bytes(hex));
  Surface block;
  block.Read(file.Pod(), taskVersion, controlVersion);
  return block;
}

TEST(SurfaceSettings, OfTheVersionBeforeTheLastHaveNoPValues) {
  const std::string random = "05 00 00 00 06 00 00 00 07 00 00 00 08 00 00 00";
  for (const auto& [task, control] : {Gate{21, 0}, Gate{0, 17}}) {
    const Surface block = ReadBehindTheMoveLimits(random, task, control);
    EXPECT_EQ(block.m_fPEnter, 0.1);
    EXPECT_EQ(block.m_fPRemove, 0.1);
    EXPECT_EQ(block.m_nRandomMethod, 5);
    EXPECT_EQ(block.m_nRandomPoints, 6);
    EXPECT_EQ(block.m_nSavePoints, 7);
    EXPECT_EQ(block.m_nRandomSeed, 8);
  }
}

TEST(SurfaceSettings, OfTheLastVersionHaveThePValuesBeforeTheRandomAnalysis) {
  const std::string rest =
      "3F E0 00 00 00 00 00 00 3F D0 00 00 00 00 00 00 "
      "05 00 00 00 06 00 00 00 07 00 00 00 08 00 00 00";
  for (const auto& [task, control] : {Gate{22, 0}, Gate{0, 18}}) {
    const Surface block = ReadBehindTheMoveLimits(rest, task, control);
    EXPECT_EQ(block.m_fPEnter, 0.5);
    EXPECT_EQ(block.m_fPRemove, 0.25);
    EXPECT_EQ(block.m_nRandomMethod, 5);
    EXPECT_EQ(block.m_nRandomSeed, 8);
  }
}

TEST(SurfaceSettings, OfTheOldestRecordKeepTheInitialValuesOfLaterOnes) {
  const Surface block = ReadBehindTheMoveLimits("", 0, 6);
  EXPECT_EQ(block.m_fMoveAbsQuad, 0.02);
  EXPECT_EQ(block.m_fPEnter, 0.1);
  EXPECT_EQ(block.m_nRandomPoints, 1000);
  EXPECT_EQ(block.m_nRandomSeed, 1);
}

TEST(SurfaceSettings, CutShortAreNotRead) {
  ExpectCutRecordsToFail(fields);
}

TEST(SurfaceSettings, NeedADataFile) {
  ExpectADataFileToBeNeeded<Surface>();
}

}  // namespace
