#include <gtest/gtest.h>

#include <algorithm>

#include "definition/Input.h"
#include "maintenance/DBUtilities.h"
#include "results/DPoint.h"
#include "store/KestErr.h"
#include "store/pod.h"
#include "store/vbdbase.h"
#include "tests/oldfiles/OldStudy.h"
#include "tests/support/Bytes.h"
#include "tests/support/Log.h"
#include "tests/support/RawFile.h"

// The files as a whole. The fields of their records: OldDefinitionTest.cpp, OldTaskTest.cpp,
// OldResultsTest.cpp.

namespace {

class OldFilesOpened : public OldStudy {};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Old, OldFilesOpened, kOldCases, NameOf);

TEST_P(OldFilesOpened, AreOfTheCurrentRevisionAndVersion) {
  EXPECT_EQ(GetPOD()->DataFile()->GetRevisionLetter(), 'C');
  EXPECT_EQ(GetPOD()->DataFile()->GetVersion(), 3001);
  CloseDatabase();
  EXPECT_EQ(HexAt(files.DataPath(), 16, 12), "56 42 44 42 41 53 45 43 B9 0B 00 00");
}

TEST_P(OldFilesOpened, AreSoundInEveryClass) {
  CloseDatabase();
  const RawFile data = ReadRawFile(files.DataPath());
  const RawFile index = ReadRawFile(files.IndexPath());
  for (long classID = 1000; classID <= 22000; classID += 1000) {
    EXPECT_EQ(FaultOfClass(data, index, classID), "") << classID;
  }
}

TEST_P(OldFilesOpened, HoldAllThatWasLive) {
  CloseDatabase();
  const RawFile data = ReadRawFile(files.DataPath());
  const auto live = [](const RawBlock& block) { return block.status == 'N'; };
  const auto count = std::count_if(data.blocks.begin(), data.blocks.end(), live);
  // The early one gets the user's points besides.
  EXPECT_EQ(count, later ? 17 : 22 + 1);
}

TEST_P(OldFilesOpened, DoNotHoldWhatWasFreed) {
  CInput input(GetPOD());
  input.m_nID = 9;
  EXPECT_FALSE(input.FindObject());
  CDPoint point(GetPOD());
  point.m_nTaskID = 1;
  point.m_nPointID = 7;
  EXPECT_FALSE(point.FindObject());
}

TEST_P(OldFilesOpened, AreFoundCleanByTheChecks) {
  CloseDatabase();
  ClearLog();
  KFileCheck(files.DataPath());
  KIndexRebuildCheck(files.BasePath(), false);
  for (const LogEntry& entry : Log()) {
    EXPECT_TRUE(entry.kind == "LPrint" || entry.kind == "fKLog") << entry;
    EXPECT_EQ(entry.text.find("ERROR:"), std::string::npos) << entry;
  }
}

TEST_P(OldFilesOpened, HaveRightChecksums) {
  for (const LogEntry& entry : Log()) {
    EXPECT_EQ(entry.text.find("checksum"), std::string::npos) << entry;
  }
}

TEST_P(OldFilesOpened, AreRebuiltOnce) {
  EXPECT_NE(PrintedLog().find("***** Start -- Rebuild Data File *****"), std::string::npos);
  CloseDatabase();
  const std::string data = ReadBytes(files.DataPath());
  ClearLog();
  OpenDatabase(files.BasePath());
  EXPECT_EQ(PrintedLog(), "");
  CloseDatabase();
  EXPECT_EQ(ReadBytes(files.DataPath()), data);
}

TEST_P(OldFilesOpened, KeepNoFilesOfTheRebuilds) {
  for (const char* name : {".ksb.new", ".kx.old", ".ksb.old"}) {
    EXPECT_FALSE(vbDatabase::Exists(files.BasePath() + name)) << name;
  }
}

// ---- As they lie there ----

namespace {

/// Before they are opened.
class OldFilesFound : public testing::TestWithParam<bool> {
 protected:
  OldFilesFound() : files({GetParam(), OldIndex::None}) { ClearLog(); }

  OldFiles files;
};

// With PATH for the path of the file.
const char* const kEarlyStats =
    "\n***** Start -- Data File Statistics *****\n"
    "File name: PATH\n"
    "VBD Runtime Library Version:  3001\n"
    "VBD Runtime Library Revision: C\n"
    "Analyzing PATH header...\n"
    "\tChecking signature...\n"
    "\tThe file revision letters do not match.\n"
    "\tCurrent File Revision: C\n"
    "\tThe file reads: A\n"
    "\tBackward compatibility rules will be enforced.\n\n"
    "\tChecking the HeapStart value...OK\n"
    "The file header checks OK!\n\n"
    "\n"
    "----- VBD file statistics -----\n"
    "\n"
    "----- Static information -----\n"
    "File Name:         PATH\n"
    "File Signature:    VBDFILE\n"
    "Revision Letter:   A\n"
    "Library Version:   2001\n"
    "File Header Size:  28\n"
    "Block Header Size: 16\n"
    "Static area size:  0\n"
    "Static file size:  4588\n"
    "\n"
    "----- Dynamic Information -----\n"
    "File Status:     Open Read/Write \n"
    "Free Space:      3343\n"
    "End of File:     4588\n"
    "Heap Start:      28\n"
    "Highest Block:   4518\n"
    "Total Blocks:    24\n"
    "Deleted/Removed: 1/1 (2)\n"
    "\n"
    "Searching PATH for all variable blocks...\n"
    "\n"
    "Blocks: Used = 22 / Empty = 2 / Total = 24 Efficiency = 92%\n"
    "Bytes: Used = 4377 / Empty = 211 / Total = 4588 Efficiency = 95%\n"
    "\n***** End -- Data File Statistics *****\n\n";

const char* const kLaterStats =
    "\n***** Start -- Data File Statistics *****\n"
    "File name: PATH\n"
    "VBD Runtime Library Version:  3001\n"
    "VBD Runtime Library Revision: C\n"
    "Analyzing PATH header...\n"
    "\tChecking signature...\n"
    "\tThe file revision letters do not match.\n"
    "\tCurrent File Revision: C\n"
    "\tThe file reads: A\n"
    "\tBackward compatibility rules will be enforced.\n\n"
    "\tChecking the HeapStart value...OK\n"
    "The file header checks OK!\n\n"
    "\n"
    "----- VBD file statistics -----\n"
    "\n"
    "----- Static information -----\n"
    "File Name:         PATH\n"
    "File Signature:    VBDBASE\n"
    "Revision Letter:   A\n"
    "Library Version:   3000\n"
    "File Header Size:  28\n"
    "Block Header Size: 16\n"
    "Static area size:  0\n"
    "Static file size:  5639\n"
    "\n"
    "----- Dynamic Information -----\n"
    "File Status:     Open Read/Write \n"
    "Free Space:      3478\n"
    "End of File:     5639\n"
    "Heap Start:      28\n"
    "Highest Block:   5531\n"
    "Total Blocks:    18\n"
    "Deleted/Removed: 0/1 (1)\n"
    "\n"
    "Searching PATH for all variable blocks...\n"
    "\n"
    "Blocks: Used = 17 / Empty = 1 / Total = 18 Efficiency = 94%\n"
    "Bytes: Used = 5519 / Empty = 120 / Total = 5639 Efficiency = 98%\n"
    "\n***** End -- Data File Statistics *****\n\n";

const char* const kRefusal =
    "\n***** Start -- Data File Check *****\n"
    "File name: PATH\n"
    "You must update the files to the current file revision.\n"
    "       File reads version A; current version is C.\n"
    "       Please rebuild the data file and then rebuild the index file.\n"
    "\n***** End -- Data File Check *****\n";

/// What was logged, with PATH for the path.
std::string LogWithout(const std::string& path) {
  std::string text = PrintedLog();
  for (std::size_t at = text.find(path); at != std::string::npos; at = text.find(path)) {
    text.replace(at, path.size(), "PATH");
  }
  return text;
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(Old, OldFilesFound, testing::Bool());

TEST_P(OldFilesFound, AreReportedOn) {
  const std::string before = ReadBytes(files.DataPath());
  KFileStats(files.DataPath(), true);
  EXPECT_EQ(LogWithout(files.DataPath()), GetParam() ? kLaterStats : kEarlyStats);
  EXPECT_EQ(ReadBytes(files.DataPath()), before);
}

TEST_P(OldFilesFound, AreRefusedByTheCheck) {
  const std::string before = ReadBytes(files.DataPath());
  EXPECT_THROW(KFileCheck(files.DataPath()), CFileNotReady);
  EXPECT_EQ(LogWithout(files.DataPath()), kRefusal);
  EXPECT_EQ(ReadBytes(files.DataPath()), before);
}

TEST_P(OldFilesFound, AreRefusedByTheRebuildOfTheIndex) {
  const std::string before = ReadBytes(files.DataPath());
  EXPECT_THROW(KIndexRebuildCheck(files.BasePath(), true), CFileNotReady);
  EXPECT_EQ(ReadBytes(files.DataPath()), before);
}
