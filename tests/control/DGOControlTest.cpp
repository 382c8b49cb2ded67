#include "control/DGOControl.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "store/KestErr.h"
#include "tests/control/BlockFields.h"
#include "tests/support/Bytes.h"
#include "tests/support/Log.h"

namespace {

constexpr Gate kSinceSkip{14, 11};
constexpr Gate kSinceMultiStart{17, 14};
constexpr Gate kSinceGradient{11, 8};
constexpr Gate kSinceRandom{10, 7};

const BlockFields<CDGOControl> fields{
    {"m_nIPRINT", &CDGOControl::m_nIPRINT, 0, 101, "65 00 00 00"},
    {"m_nMINMAX", &CDGOControl::m_nMINMAX, 1, 102, "66 00 00 00"},
    {"m_fSoftRel", &CDGOControl::m_fSoftRel, 0.001, 1.5, "3F F8 00 00 00 00 00 00"},
    {"m_fSoftAbs", &CDGOControl::m_fSoftAbs, 0.0001, 2.5, "40 04 00 00 00 00 00 00"},
    {"m_nMETHOD", &CDGOControl::m_nMETHOD, 0, 103, "67 00 00 00"},
    {"m_nUncMETHOD", &CDGOControl::m_nUncMETHOD, 0, 104, "68 00 00 00"},
    {"m_nSkip", &CDGOControl::m_nSkip, 0, -2, "FE FF FF FF", kSinceSkip},
    {"m_nMultiStart", &CDGOControl::m_nMultiStart, 0, 305419896, "78 56 34 12", kSinceMultiStart},
    {"m_nIGRAD", &CDGOControl::m_nIGRAD, 0, 105, "69 00 00 00"},
    {"m_nISCAL", &CDGOControl::m_nISCAL, 0, 106, "6A 00 00 00"},
    {"m_nITMAX", &CDGOControl::m_nITMAX, 100, 107, "6B 00 00 00"},
    {"m_nITRMOP", &CDGOControl::m_nITRMOP, 2, 108, "6C 00 00 00"},
    {"m_nNGMAX", &CDGOControl::m_nNGMAX, 0, 109, "6D 00 00 00"},
    {"m_nIGMAX", &CDGOControl::m_nIGMAX, 0, 110, "6E 00 00 00"},
    {"m_nJTMAX", &CDGOControl::m_nJTMAX, 100, 111, "6F 00 00 00"},
    {"m_nITRMST", &CDGOControl::m_nITRMST, 2, 112, "70 00 00 00"},
    {"m_nJPRINT", &CDGOControl::m_nJPRINT, 0, 113, "71 00 00 00"},
    {"m_nIPRNT1", &CDGOControl::m_nIPRNT1, 0, 114, "72 00 00 00"},
    {"m_nIPRNT2", &CDGOControl::m_nIPRNT2, 0, 115, "73 00 00 00"},
    {"m_fCT", &CDGOControl::m_fCT, -0.03, 3.5, "40 0C 00 00 00 00 00 00"},
    {"m_fCTMIN", &CDGOControl::m_fCTMIN, 0.003, 4.5, "40 12 00 00 00 00 00 00"},
    {"m_fDABOBJ", &CDGOControl::m_fDABOBJ, 0.0, 5.5, "40 16 00 00 00 00 00 00"},
    {"m_fDELOBJ", &CDGOControl::m_fDELOBJ, 0.001, 6.5, "40 1A 00 00 00 00 00 00"},
    {"m_fDOBJ1", &CDGOControl::m_fDOBJ1, 0.1, 7.5, "40 1E 00 00 00 00 00 00"},
    {"m_fDOBJ2", &CDGOControl::m_fDOBJ2, 0.0, 8.5, "40 21 00 00 00 00 00 00"},
    {"m_fDX1", &CDGOControl::m_fDX1, 0.01, 9.5, "40 23 00 00 00 00 00 00"},
    {"m_fDX2", &CDGOControl::m_fDX2, 0.0, 10.5, "40 25 00 00 00 00 00 00"},
    {"m_fFDCH", &CDGOControl::m_fFDCH, 0.01, 11.5, "40 27 00 00 00 00 00 00"},
    {"m_fFDCHM", &CDGOControl::m_fFDCHM, 0.001, 12.5, "40 29 00 00 00 00 00 00"},
    {"m_fRMVLMZ", &CDGOControl::m_fRMVLMZ, 0.4, 13.5, "40 2B 00 00 00 00 00 00"},
    {"m_fDABSTR", &CDGOControl::m_fDABSTR, 0.0, 14.5, "40 2D 00 00 00 00 00 00"},
    {"m_fDELSTR", &CDGOControl::m_fDELSTR, 0.001, 15.5, "40 2F 00 00 00 00 00 00"},
    {"m_nReserved", &CDGOControl::m_nReserved, 0, 116, "74 00 00 00"},
    {"m_fPENALT", &CDGOControl::m_fPENALT, 1.0, -0.1, "BF B9 99 99 99 99 99 9A"},
    {"m_fPMULT", &CDGOControl::m_fPMULT, 5.0, 16.5, "40 30 80 00 00 00 00 00"},
    {"m_fPENLTD", &CDGOControl::m_fPENLTD, 0.01, 17.5, "40 31 80 00 00 00 00 00"},
    {"m_fPMULTD", &CDGOControl::m_fPMULTD, 5.0, 18.5, "40 32 80 00 00 00 00 00"},
    {"m_strGradProgram", &CDGOControl::m_strGradProgram, "analyze.exe", "grad.py",
     "07 00 00 00 67 72 61 64 2E 70 79"},
    {"m_nGradUserRoutine", &CDGOControl::m_nGradUserRoutine, 0, 117, "75 00 00 00", kSinceGradient},
    {"m_strGradArgs", &CDGOControl::m_strGradArgs, "", "-x 1", "04 00 00 00 2D 78 20 31",
     kSinceGradient},
    {"m_strGradVarFile", &CDGOControl::m_strGradVarFile, "dvar.kef", "v", "01 00 00 00 76",
     kSinceGradient},
    {"m_strGradRespFile", &CDGOControl::m_strGradRespFile, "resp.kef", "", "01 00 00 00 00",
     kSinceGradient},
    {"m_nStoreFD", &CDGOControl::m_nStoreFD, 0, 118, "76 00 00 00", kSinceGradient},
    {"m_nRandomMethod", &CDGOControl::m_nRandomMethod, 0, 119, "77 00 00 00", kSinceRandom},
    {"m_nRandomPoints", &CDGOControl::m_nRandomPoints, 1000, 120, "78 00 00 00", kSinceRandom},
    {"m_nSavePoints", &CDGOControl::m_nSavePoints, 0, 121, "79 00 00 00", {15, 12}},
    {"m_nRandomSeed", &CDGOControl::m_nRandomSeed, 1, 122, "7A 00 00 00", {18, 15}},
};

const std::string initialRecord = Bytes(
    "00 00 00 00 01 00 00 00 "                           // IPRINT, MINMAX
    "3F 50 62 4D D2 F1 A9 FC 3F 1A 36 E2 EB 1C 43 2D "   // soft convergence
    "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "   // methods, skip, starts
    "00 00 00 00 00 00 00 00 64 00 00 00 02 00 00 00 "   // IGRAD, ISCAL, ITMAX, ITRMOP
    "00 00 00 00 00 00 00 00 64 00 00 00 02 00 00 00 "   // NGMAX, IGMAX, JTMAX, ITRMST
    "00 00 00 00 00 00 00 00 00 00 00 00 "               // JPRINT, IPRNT1, IPRNT2
    "BF 9E B8 51 EB 85 1E B8 3F 68 93 74 BC 6A 7E FA "   // CT, CTMIN
    "00 00 00 00 00 00 00 00 3F 50 62 4D D2 F1 A9 FC "   // DABOBJ, DELOBJ
    "3F B9 99 99 99 99 99 9A 00 00 00 00 00 00 00 00 "   // DOBJ1, DOBJ2
    "3F 84 7A E1 47 AE 14 7B 00 00 00 00 00 00 00 00 "   // DX1, DX2
    "3F 84 7A E1 47 AE 14 7B 3F 50 62 4D D2 F1 A9 FC "   // FDCH, FDCHM
    "3F D9 99 99 99 99 99 9A 00 00 00 00 00 00 00 00 "   // RMVLMZ, DABSTR
    "3F 50 62 4D D2 F1 A9 FC 00 00 00 00 "               // DELSTR, reserved
    "3F F0 00 00 00 00 00 00 40 14 00 00 00 00 00 00 "   // PENALT, PMULT
    "3F 84 7A E1 47 AE 14 7B 40 14 00 00 00 00 00 00 "   // PENLTD, PMULTD
    "0B 00 00 00 61 6E 61 6C 79 7A 65 2E 65 78 65 "      // "analyze.exe"
    "00 00 00 00 01 00 00 00 00 "                        // user routine, no arguments
    "08 00 00 00 64 76 61 72 2E 6B 65 66 "               // "dvar.kef"
    "08 00 00 00 72 65 73 70 2E 6B 65 66 "               // "resp.kef"
    "00 00 00 00 "                                       // store FD
    "00 00 00 00 E8 03 00 00 00 00 00 00 01 00 00 00");  // random analysis

// ---- The block ----

TEST(GradientSettings, HaveInitialValuesAndTakeThemAgain) {
  ExpectInitialValues(fields);
}

TEST(GradientSettings, CopyTakesEachField) {
  ExpectCopyOfEachField(fields);
}

TEST(GradientSettings, AreAsLongAsTheirStrings) {
  CDGOControl block;
  EXPECT_EQ(block.ObjectLength(), 248U + 15 + 5 + 12 + 12);
  block.m_strGradProgram = block.m_strGradVarFile = block.m_strGradRespFile = "";
  EXPECT_EQ(block.ObjectLength(), 248U + 4 * 5);
  block.m_strGradArgs = std::string(300, 'a');
  EXPECT_EQ(block.ObjectLength(), 248U + 304 + 3 * 5);
}

std::string RandomText(std::mt19937& random) {
  std::string text(random() % 40, '\0');
  for (char& letter : text) letter = static_cast<char>(' ' + random() % 95);
  return text;
}

TEST(GradientSettings, AreAsLongAsWhatTheyWrite) {
  RecordFile file;
  std::mt19937 random(52);
  for (int round = 0; round < 200; ++round) {
    CDGOControl block;
    block.m_strGradProgram = RandomText(random);
    block.m_strGradArgs = RandomText(random);
    block.m_strGradVarFile = RandomText(random);
    block.m_strGradRespFile = RandomText(random);
    block.m_nITMAX = static_cast<long>(random());
    EXPECT_EQ(file.Record(block).size(), block.ObjectLength());
  }
}

// ---- The record ----

TEST(GradientSettings, OfANewBlockByteForByte) {
  RecordFile file;
  EXPECT_EQ(Hex(file.Record(CDGOControl())), Hex(initialRecord));
}

TEST(GradientSettings, AreStoredInOrder) {
  ExpectStoredSample(fields);
}

TEST(GradientSettings, ChangeTheirOwnBytesOnly) {
  ExpectEachFieldAtItsPlace(fields, initialRecord);
}

TEST(GradientSettings, KeepWhatAnOlderRecordLacks) {
  ExpectSampleReadFromAllVersions(fields);
}

/// Just the fields that every version holds, the program of one letter.
const std::string oldestRecord = Bytes(
    "01 00 00 00 00 00 00 00 40 00 00 00 00 00 00 00 40 08 00 00 00 00 00 00 "
    "02 00 00 00 04 00 00 00 FF FF FF FF 05 00 00 00 06 00 00 00 07 00 00 00 "
    "08 00 00 00 09 00 00 00 0A 00 00 00 0B 00 00 00 0C 00 00 00 0D 00 00 00 0E 00 00 00 "
    "BF F0 00 00 00 00 00 00 3F E0 00 00 00 00 00 00 3F F0 00 00 00 00 00 00 "
    "3F F8 00 00 00 00 00 00 40 00 00 00 00 00 00 00 40 04 00 00 00 00 00 00 "
    "40 08 00 00 00 00 00 00 40 0C 00 00 00 00 00 00 40 10 00 00 00 00 00 00 "
    "40 12 00 00 00 00 00 00 40 14 00 00 00 00 00 00 40 16 00 00 00 00 00 00 "
    "40 18 00 00 00 00 00 00 01 00 00 00 "
    "40 1A 00 00 00 00 00 00 40 1C 00 00 00 00 00 00 "
    "40 1E 00 00 00 00 00 00 40 20 00 00 00 00 00 00 "
    "01 00 00 00 70");

TEST(GradientSettings, OfTheOldestRecordKeepTheInitialValuesOfLaterOnes) {
  RecordFile file;
  file.Append(oldestRecord);
  CDGOControl block;
  block.Read(file.Pod(), 0, 6);
  EXPECT_EQ(block.m_nIPRINT, 1);
  EXPECT_EQ(block.m_fSoftAbs, 3.0);
  EXPECT_EQ(block.m_nUncMETHOD, 4);
  EXPECT_EQ(block.m_nSkip, 0);
  EXPECT_EQ(block.m_nMultiStart, 0);
  EXPECT_EQ(block.m_nIGRAD, -1);
  EXPECT_EQ(block.m_nIPRNT2, 14);
  EXPECT_EQ(block.m_fCT, -1.0);
  EXPECT_EQ(block.m_fDELSTR, 6.0);
  EXPECT_EQ(block.m_nReserved, 1);
  EXPECT_EQ(block.m_fPMULTD, 8.0);
  EXPECT_EQ(block.m_strGradProgram, "p");
  EXPECT_EQ(block.m_nGradUserRoutine, 0);
  EXPECT_EQ(block.m_strGradArgs, "");
  EXPECT_EQ(block.m_strGradVarFile, "dvar.kef");
  EXPECT_EQ(block.m_strGradRespFile, "resp.kef");
  EXPECT_EQ(block.m_nStoreFD, 0);
  EXPECT_EQ(block.m_nRandomPoints, 1000);
  EXPECT_EQ(block.m_nRandomSeed, 1);
}

TEST(GradientSettings, CutShortAreNotRead) {
  ExpectCutRecordsToFail(fields);
}

TEST(GradientSettings, NeedADataFile) {
  ExpectADataFileToBeNeeded<CDGOControl>();
}

TEST(GradientSettings, LoseTextBehindAZeroByteOnReading) {
  RecordFile file;
  CDGOControl block;
  block.m_strGradArgs = std::string("a\0b", 3);
  file.Append(file.Record(block));
  CDGOControl copy;
  copy.Read(file.Pod(), 22, 0);
  EXPECT_EQ(copy.m_strGradArgs, "a");
  EXPECT_EQ(copy.m_nRandomPoints, 1000);
}

// ---- Hostile lengths ----

/// The record up to the string, then that length in place of its own.
std::string RecordWithLength(const std::string& string, const std::string& length) {
  std::string bytes;
  for (const auto& field : fields) {
    if (field.name == string) return bytes + Bytes(length) + "behind";
    bytes += Bytes(field.sampleHex);
  }
  return bytes;
}

const std::string strings[] = {"m_strGradProgram", "m_strGradArgs", "m_strGradVarFile",
                               "m_strGradRespFile"};

TEST(GradientSettings, WithAStringLongerThanTheFileAreCorrupt) {
  RecordFile file;
  for (const std::string& string : strings) {
    for (const char* length : {"FF FF FF FF", "00 00 00 80", "FF FF FF 7F", "00 00 01 00"}) {
      SCOPED_TRACE(string + " " + length);
      file.Append(RecordWithLength(string, length));
      CDGOControl block;
      EXPECT_THROW(block.Read(file.Pod(), 22, 0), CFileCorrupt);
    }
  }
}

TEST(GradientSettings, WithAStringBeyondTheEndOfTheFileAreNotRead) {
  RecordFile file;
  for (const std::string& string : strings) {
    SCOPED_TRACE(string);
    file.Append(RecordWithLength(string, "07 00 00 00"));
    CDGOControl block;
    EXPECT_THROW(block.Read(file.Pod(), 22, 0), CFileRead);
  }
}

TEST(GradientSettings, LogAFailedReadAndPassItOn) {
  RecordFile file;
  file.Append(RecordWithLength("m_strGradArgs", "FF FF FF FF"));
  CDGOControl block;
  ClearLog();
  EXPECT_THROW(block.Read(file.Pod(), 22, 0), CFileCorrupt);
  ASSERT_EQ(Log().size(), 2U);
  EXPECT_EQ(Log()[0].kind, "LNewException");
  EXPECT_EQ(Log()[1].kind, "LException");
  EXPECT_EQ(Log()[1].text, "File corrupt");
}

// ---- Single strings ----

TEST(GradientStrings, TakeFourBytesBesideTheTextAndFiveWithoutOne) {
  EXPECT_EQ(CDGOControl::StringFileLength(""), 5U);
  EXPECT_EQ(CDGOControl::StringFileLength(" "), 5U);
  EXPECT_EQ(CDGOControl::StringFileLength("analyze.exe"), 15U);
  EXPECT_EQ(CDGOControl::StringFileLength(std::string("a\0b", 3)), 7U);
}

std::string StoredString(const std::string& text) {
  RecordFile file;
  const CDGOControl block;
  return Hex(file.Written([&](POD* pod) { block.WriteString(pod, text, vbCurrAddress); }));
}

TEST(GradientStrings, AreStoredBehindTheirLength) {
  EXPECT_EQ(StoredString("abc"), "03 00 00 00 61 62 63");
  EXPECT_EQ(StoredString(" "), "01 00 00 00 20");
  EXPECT_EQ(StoredString(""), "01 00 00 00 00");
}

std::string ReadString(const std::string& hex) {
  RecordFile file;
  CDGOControl block;
  file.Append(Bytes(hex));
  std::string text = "before";
  block.ReadString(file.Pod(), text, vbCurrAddress);
  return text;
}

TEST(GradientStrings, AreReadUpToAZeroByte) {
  EXPECT_EQ(ReadString("03 00 00 00 61 62 63 64"), "abc");
  EXPECT_EQ(ReadString("01 00 00 00 00"), "");
  EXPECT_EQ(ReadString("00 00 00 00"), "");
  EXPECT_EQ(ReadString("03 00 00 00 61 00 63"), "a");
}

TEST(GradientStrings, AreReadAndWrittenAtAnAddress) {
  RecordFile file;
  CDGOControl block;
  const long address = file.Append("0123456789");
  block.WriteString(file.Pod(), "ab", address + 2);
  file.Data().SeekTo(0);
  std::string text;
  block.ReadString(file.Pod(), text, address + 2);
  EXPECT_EQ(text, "ab");
  EXPECT_EQ(file.Data().FilePosition(), address + 8);
  std::string bytes(10, '\0');
  file.Data().Read(bytes.data(), bytes.size(), address);
  EXPECT_EQ(Hex(bytes), "30 31 02 00 00 00 61 62 38 39");
}

TEST(GradientStrings, ThatTheFileCannotHoldAreCorrupt) {
  EXPECT_THROW(ReadString("FF FF FF FF 61"), CFileCorrupt);
  EXPECT_THROW(ReadString("FF FF FF 7F 61"), CFileCorrupt);
  EXPECT_THROW(ReadString("03 00 00 00 61 62"), CFileRead);
  EXPECT_THROW(ReadString("03 00 00"), CFileRead);
}

TEST(GradientStrings, NeedADataFile) {
  POD closed("closed.ksb");
  CDGOControl block;
  std::string text;
  for (POD* pod : {static_cast<POD*>(nullptr), &closed}) {
    EXPECT_THROW(block.ReadString(pod, text, 0), CNullPtr);
    EXPECT_THROW(block.WriteString(pod, text, 0), CNullPtr);
  }
}

}  // namespace
