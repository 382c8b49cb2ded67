#include "definition/GPoint.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>

#include "index/KSBKey.h"
#include "store/KestErr.h"
#include "store/vbdbase.h"
#include "tests/support/Bytes.h"
#include "tests/support/Printed.h"
#include "tests/support/RawFile.h"
#include "tests/support/StoredRecord.h"
#include "tests/support/Study.h"

namespace {

using Rows = std::vector<std::vector<vbFLOAT64>>;

/// Two points with two variables each; the second has no response.
CGPoint TwoPoints(POD* pod) {
  CGPoint points(pod);
  points.m_vnUsed = {1, 0};
  points.m_vnRun = {1, 1};
  points.m_vnLocked = {0, 1};
  points.m_vDVars = {{1.0, 2.0}, {0.5, -1.0}};
  points.m_vResps = {{3.0}, {}};
  return points;
}

void ExpectTwoPoints(const CGPoint& points) {
  EXPECT_EQ(points.m_vnUsed, (std::vector<vbINT32>{1, 0}));
  EXPECT_EQ(points.m_vnRun, (std::vector<vbINT32>{1, 1}));
  EXPECT_EQ(points.m_vnLocked, (std::vector<vbINT32>{0, 1}));
  EXPECT_EQ(points.m_vDVars, (Rows{{1.0, 2.0}, {0.5, -1.0}}));
  EXPECT_EQ(points.m_vResps, (Rows{{3.0}, {}}));
}

void ExpectNoPoints(const CGPoint& points) {
  EXPECT_TRUE(points.m_vnUsed.empty());
  EXPECT_TRUE(points.m_vnRun.empty());
  EXPECT_TRUE(points.m_vnLocked.empty());
  EXPECT_TRUE(points.m_vDVars.empty());
  EXPECT_TRUE(points.m_vResps.empty());
}

class DesignPoints : public testing::Test {
 protected:
  CGPoint Stored() {
    CGPoint points(study.Pod());
    EXPECT_TRUE(points.GetObject());
    return points;
  }

  Study study;
};

// ---- The object ----

TEST_F(DesignPoints, AreEmptyWhenNew) {
  const POD* const pod = study.Pod();
  ExpectNoPoints(CGPoint(study.Pod()));
  ExpectNoPoints(CGPoint(pod));
  EXPECT_EQ(CGPoint(pod).Database(), pod);
}

TEST_F(DesignPoints, HaveNoDefaultsBeyondTheConstructors) {
  CGPoint points = TwoPoints(study.Pod());
  points.SetDefaultAttributes();
  ExpectTwoPoints(points);
}

TEST_F(DesignPoints, CopyTakesTheTableAndKeepsTheConnection) {
  CGPoint copy(static_cast<POD*>(nullptr));
  copy.m_vnUsed = {1, 1, 1};
  CGPoint points = TwoPoints(study.Pod());
  points.PutObject();
  copy.Copy(points);
  ExpectTwoPoints(copy);
  EXPECT_EQ(copy.Database(), nullptr);
  EXPECT_EQ(copy.ObjectAddress(), 0);
}

TEST_F(DesignPoints, AreUsedWithAFlagOfOneOnly) {
  CGPoint points(study.Pod());
  EXPECT_EQ(points.NumUsedGPoints(), 0);
  points.m_vnUsed = {1, 2, 0, -1, 1, 257, 1};
  EXPECT_EQ(points.NumUsedGPoints(), 3);
}

// ---- The record ----

const std::string noLock = "00 00 00 00 00 00 00 00 00 00 00 00 ";

TEST_F(DesignPoints, OfAnUpdatedStudyByteForByte) {
  CGPoint points = Stored();
  const long old = points.ObjectAddress();
  const long next = study.NextObject();
  points.Copy(TwoPoints(study.Pod()));
  EXPECT_EQ(points.ObjectLength(), 104U);
  ASSERT_TRUE(points.PutObject());
  EXPECT_EQ(points.ObjectAddress(), next);
  study.Close();
  const std::string empty = Bytes("98 3A 00 00" + HexWord(old) +
                                  "02 00 00 00 "
                                  "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00");
  const std::string table = Bytes("98 3A 00 00" + HexWord(next) +
                                  "02 00 00 00 "
                                  "02 00 00 00 01 00 00 00 00 00 00 00 "
                                  "02 00 00 00 01 00 00 00 01 00 00 00 "
                                  "02 00 00 00 00 00 00 00 01 00 00 00 "
                                  "02 00 00 00 "
                                  "02 00 00 00 3F F0 00 00 00 00 00 00 40 00 00 00 00 00 00 00 "
                                  "02 00 00 00 3F E0 00 00 00 00 00 00 BF F0 00 00 00 00 00 00 "
                                  "02 00 00 00 "
                                  "01 00 00 00 40 08 00 00 00 00 00 00 "
                                  "00 00 00 00");
  const std::string blocks = Bytes("FE FE FE FE 40 00 00 00 52 00 00 00 00 00 00 00" + noLock) +
                             empty + ChecksumOf(empty) +
                             Bytes("FE FE FE FE 90 00 00 00 4E 00 00 00 00 00 00 00" + noLock) +
                             table + ChecksumOf(table);
  const std::string file = ReadBytes(study.DataPath());
  EXPECT_EQ(Hex(file.substr(static_cast<std::size_t>(old) - 28)), Hex(blocks));
  EXPECT_EQ(HexAt(study.DataPath(), 0, 16), Hex(Bytes(HexWord(old - 28) + HexWord(next - 28 + 144) +
                                                      "28 00 00 00" + HexWord(next - 28))));
}

TEST_F(DesignPoints, HaveTheKeyOfOne) {
  CGPoint points = TwoPoints(study.Pod());
  points.PutObject();
  study.Close();
  EXPECT_EQ(ReadRawTree(ReadRawFile(study.IndexPath()), 14),
            (std::map<std::string, long>{{"          1", points.ObjectAddress()}}));
}

TEST_F(DesignPoints, AreReadBackAfterReopening) {
  TwoPoints(study.Pod()).PutObject();
  study.Reopen();
  ExpectTwoPoints(Stored());
}

TEST_F(DesignPoints, ExistOnce) {
  EXPECT_THROW(CGPoint(study.Pod()).WriteObject(true), CObjectNotAdded);
  TwoPoints(study.Pod()).PutObject();
  EXPECT_EQ(CGPoint(study.Pod()).CountObjects(), 1);
}

TEST_F(DesignPoints, OfVersionOneAreReadInFull) {
  CGPoint points = TwoPoints(study.Pod());
  points.PutObject();
  const std::string older = Bytes("01 00 00 00") + StoredRecord(points).substr(4);
  CGPoint read(study.Pod());
  read.Read(StoreRecord(study.Pod(), 15000, older));
  ExpectTwoPoints(read);
}

TEST_F(DesignPoints, ThatEndTooEarlyAreCorrupt) {
  CGPoint points = TwoPoints(study.Pod());
  points.PutObject();
  const std::string record = StoredRecord(points);
  for (const std::size_t count : {4UL, 16UL, 28UL, 40UL, 44UL, 64UL, 84UL, 88UL}) {
    SCOPED_TRACE(count);
    std::string hostile = record;
    hostile.replace(count, 4, Bytes("FF FF FF 7F"));
    const long address = StoreRecord(study.Pod(), 15000, hostile);
    EXPECT_THROW(CGPoint(study.Pod()).Read(address), CFileCorrupt);
  }
}

// ---- Removal ----

TEST_F(DesignPoints, RemoveEmptiesTheStoredTable) {
  TwoPoints(study.Pod()).PutObject();
  CGPoint::RemoveGPoints(study.Pod());
  ExpectNoPoints(Stored());
  EXPECT_EQ(CGPoint(study.Pod()).CountObjects(), 1);
  study.Close();
  EXPECT_EQ(FaultOfClass(ReadRawFile(study.DataPath()), ReadRawFile(study.IndexPath()), 15000), "");
}

TEST_F(DesignPoints, RemoveOfAMissingTableStoresNone) {
  ASSERT_TRUE(CGPoint(study.Pod()).RemoveObject());
  const std::string before = ReadBytes(study.DataPath());
  CGPoint::RemoveGPoints(study.Pod());
  EXPECT_FALSE(CGPoint(study.Pod()).FindObject());
  EXPECT_EQ(ReadBytes(study.DataPath()), before);
}

// ---- The report ----

const std::string reportHead =
    "\n\n"
    "                               DESIGN POINT INFORMATION\n"
    "===============================================================================\n"
    " Pnt  Locked  Run                           Response Values\n"
    "----  ------  ---  ------------------------------------------------------------\n";
const std::string reportEnd =
    "-------------------------------------------------------------------------------\n";

/// What CGPoint::Dump prints.
std::string Report(POD* pod) {
  return Printed([pod](std::FILE* stream) { CGPoint::Dump(pod, stream); });
}

TEST_F(DesignPoints, ReportOfAnEmptyTable) {
  EXPECT_EQ(Report(study.Pod()), reportHead + reportEnd);
}

TEST_F(DesignPoints, ReportOfASimpleTable) {
  CGPoint points = TwoPoints(study.Pod());
  points.m_vnRun = {1, 0};
  points.m_vResps = {{1.5, -2.0}, {0.0, 100.0}};
  points.PutObject();
  EXPECT_EQ(Report(study.Pod()), reportHead +
                                     "   1    n      y            1.5            -2  \n"
                                     "   2    y      n              0           100  \n" +
                                     reportEnd);
}

TEST_F(DesignPoints, ReportOfNoResponses) {
  CGPoint points = TwoPoints(study.Pod());
  points.m_vResps = {{}, {}};
  points.PutObject();
  EXPECT_EQ(Report(study.Pod()), reportHead +
                                     "   1    n      y   \n"
                                     "   2    y      y   \n" +
                                     reportEnd);
}

TEST_F(DesignPoints, ReportOfExactlyFiveResponses) {
  CGPoint points(study.Pod());
  points.m_vnUsed = points.m_vnRun = points.m_vnLocked = {1};
  points.m_vResps = {{1, 2, 3, 4, 5}};
  points.PutObject();
  EXPECT_EQ(Report(study.Pod()),
            reportHead +
                "   1    y      y              1             2             3             4  "
                "           5  \n" +
                reportEnd);
}

TEST_F(DesignPoints, ReportBreaksLinesAndLeavesSpaceForMissingResponses) {
  CGPoint points(study.Pod());
  points.m_vnUsed = {1, 1, 1, 1};
  points.m_vnRun = {1, 0, 1, 0};
  points.m_vnLocked = {1, 1, 0, 0};
  points.m_vResps = {{1, 22, 333, 4444, 55555, -6, 7.125},
                     {1e30, -1e-30},
                     {},
                     {0.1, 123456.7, -0.000012344, 1e-3, 99999.9, 1.00049}};
  points.PutObject();
  EXPECT_EQ(Report(study.Pod()),
            reportHead +
                "   1    y      y              1            22           333          4444  "
                "   5.556e+04  \n"
                "                             -6         7.125  \n"
                "   2    y      n          1e+30        -1e-30                              "
                "              \n"
                "                                               \n"
                "   3    n      y                                                           "
                "              \n"
                "                                               \n"
                "   4    n      n            0.1     1.235e+05    -1.234e-05         0.001  "
                "       1e+05  \n"
                "                              1                \n" +
                reportEnd);
}

TEST_F(DesignPoints, ReportOfElevenResponsesTakesThreeLines) {
  CGPoint points(study.Pod());
  points.m_vnUsed = points.m_vnRun = points.m_vnLocked = {0};
  points.m_vResps = {std::vector<vbFLOAT64>(11, 1.0)};
  points.PutObject();
  const std::string five =
      "           1             1             1             1             1  \n";
  const std::string indent = "                   ";
  EXPECT_EQ(Report(study.Pod()), reportHead + "   1    n      n   " + five + indent + five +
                                     indent + "           1  \n" + reportEnd);
}

TEST_F(DesignPoints, ReportTakesOnlyOneForYes) {
  CGPoint points(study.Pod());
  points.m_vnUsed = {1, 1};
  points.m_vnRun = {2, -1};
  points.m_vnLocked = {2, 257};
  points.m_vResps = {{}, {}};
  points.PutObject();
  EXPECT_EQ(Report(study.Pod()), reportHead +
                                     "   1    n      n   \n"
                                     "   2    n      n   \n" +
                                     reportEnd);
}

TEST_F(DesignPoints, ReportOfVectorsThatAreTooShort) {
  CGPoint points(study.Pod());
  points.m_vnUsed = {1, 1};
  points.m_vnRun = {1};
  points.m_vResps = {{5.0}};
  points.PutObject();
  EXPECT_EQ(Report(study.Pod()), reportHead +
                                     "   1    n      y              5  \n"
                                     "   2    n      n                 \n" +
                                     reportEnd);
}

// ---- Failures ----

/// The static operations, and the null stream that only Dump has.
const std::function<void(POD*)> operations[] = {
    [](POD* pod) { CGPoint::RemoveGPoints(pod); },
    [](POD* pod) { CGPoint::Dump(pod, stdout); },
    [](POD* pod) { CGPoint::Dump(pod, nullptr); },
};

TEST_F(DesignPoints, OfNoDatabaseAreANullPointer) {
  for (const auto& operation : operations) EXPECT_THROW(operation(nullptr), CNullPtr);
}

TEST_F(DesignPoints, WithoutIndexingAreToldSoBeforeMissingFiles) {
  POD pod(study.folder / "other.ksb");
  for (const auto& operation : operations) EXPECT_THROW(operation(&pod), CNoIndex);
  KSBKey key;
  pod.Open(study.folder / "other.ksb", study.folder / "other.kx", key, 32, vbReadWrite, 2, 0, 25);
  for (const auto& operation : operations) EXPECT_THROW(operation(&pod), CNoIndex);
}

TEST_F(DesignPoints, WithoutADataFileAreANullPointer) {
  study.Pod()->CloseDataFile();
  for (const auto& operation : operations) EXPECT_THROW(operation(study.Pod()), CNullPtr);
}

TEST_F(DesignPoints, WithoutAnIndexFileAreANullPointer) {
  study.Pod()->CloseIndex();
  for (const auto& operation : operations) EXPECT_THROW(operation(study.Pod()), CNullPtr);
}

TEST_F(DesignPoints, AreCheckedBeforeTheLockIsTaken) {
  std::filesystem::create_directory(study.LockPath());
  EXPECT_THROW(operations[0](study.Pod()), CFileLock);
  EXPECT_THROW(operations[1](study.Pod()), CFileLock);
  EXPECT_THROW(operations[2](study.Pod()), CNullPtr);
  POD pod(study.folder / "study.ksb");
  for (const auto& operation : operations) EXPECT_THROW(operation(&pod), CNoIndex);
  std::filesystem::remove(study.LockPath());
}

TEST_F(DesignPoints, ThatAreMissingCannotBeReported) {
  ASSERT_TRUE(CGPoint(study.Pod()).RemoveObject());
  EXPECT_THROW(Report(study.Pod()), CGetObject);
}

TEST_F(DesignPoints, ThatAreDamagedAreNeitherReportedNorPrintedInPart) {
  const long address = Stored().ObjectAddress();
  study.Close();
  PatchBytes(study.DataPath(), address + 12, "x");
  study.Open();
  std::FILE* stream = std::tmpfile();
  EXPECT_THROW(CGPoint::Dump(study.Pod(), stream), CChecksum);
  EXPECT_EQ(std::ftell(stream), 0);
  std::fclose(stream);
}

}  // namespace
