#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "index/KSBKey.h"
#include "results/DPoint.h"
#include "store/KestErr.h"
#include "task/DResp.h"
#include "task/DVar.h"
#include "tests/results/PointFields.h"
#include "tests/support/Bytes.h"
#include "tests/support/Printed.h"
#include "tests/support/Study.h"

// The report of a design point.

namespace {

using Numbers = std::vector<vbINT32>;

const std::string head =
    "                                 DESIGN POINT 0\n"
    "================================================================================\n"
    "     Name        Type        Value\n"
    "--------------  ------  --------------\n";
const std::string end =
    "================================================================================\n"
    "\n";

class PointReport : public testing::Test {
 protected:
  /// The variables of task 1: entries of all kinds, not in the order of their kinds.
  CDVar Vars() {
    CDVar vars(study.Pod());
    vars.m_nID = 1;
    vars.m_vnType = {23, 20, 21, 20, 22};
    vars.m_vnSeq = {0, 1, 0, 0, 0};
    vars.m_vstrIndName = {"width", "height"};
    vars.m_vstrLinkName = {"depth"};
    vars.m_vstrSynName = {"area"};
    vars.m_vstrConstName = {"load"};
    return vars;
  }
  CDResp Resps() {
    CDResp resps(study.Pod());
    resps.m_nID = 1;
    resps.m_vnType = {26, 24, 25, 24};
    resps.m_vnSeq = {0, 1, 0, 0};
    resps.m_vstrIndName = {"weight", "stress"};
    resps.m_vstrLinkName = {"copy"};
    resps.m_vstrSynName = {"ratio"};
    return resps;
  }
  CDPoint Point() {
    return PointOf(1, 0, 0, {{{1.5, -20.25}, {0.0}, {3e10}, {1000}, {7, 1e-20}, {-8}, {0.125}}},
                   study.Pod());
  }

  std::string Report(int number = 0) {
    return Printed([&](std::FILE* stream) { CDPoint::Dump(study.Pod(), stream, 1, number); });
  }
  /// Takes copies, which have no connection.
  void Store(CDVar vars, CDResp resps, CDPoint point) {
    vars.Connect(study.Pod());
    resps.Connect(study.Pod());
    point.Connect(study.Pod());
    vars.PutObject();
    resps.PutObject();
    point.PutObject();
  }
  std::string ReportOf(const CDVar& vars, const CDResp& resps, const CDPoint& point) {
    Store(vars, resps, point);
    return Report();
  }

  /// That the report throws, and prints nothing.
  template <class Error>
  void ExpectNoReport(int task = 1, int number = 0) {
    std::FILE* stream = std::tmpfile();
    EXPECT_THROW(CDPoint::Dump(study.Pod(), stream, task, number), Error);
    EXPECT_EQ(std::ftell(stream), 0);
    std::fclose(stream);
  }

  Study study;
};

TEST_F(PointReport, OfATaskWithoutVariablesAndResponses) {
  CDVar vars(study.Pod());
  CDResp resps(study.Pod());
  vars.m_nID = resps.m_nID = 1;
  EXPECT_EQ(ReportOf(vars, resps, Point()), head + end);
}

TEST_F(PointReport, ListsVariablesAndResponsesInTheOrderOfTheTask) {
  EXPECT_EQ(ReportOf(Vars(), Resps(), Point()), head +
                                                    "          load   CDVar        1000.000\n"
                                                    "        height   IDVar       -20.25000\n"
                                                    "         depth   LDVar        0.000000\n"
                                                    "         width   IDVar        1.500000\n"
                                                    "          area   SDVar    3.000000e+10\n" +
                                                    "         ratio   SResp       0.1250000\n"
                                                    "        stress   IResp    1.000000e-20\n"
                                                    "          copy   LResp       -8.000000\n"
                                                    "        weight   IResp        7.000000\n" +
                                                    end);
}

TEST_F(PointReport, IsThatOfThePointAskedFor) {
  Store(Vars(), Resps(), Point());
  CDPoint other = Point();
  other.m_nPointID = 1234567890;
  other.m_CDVar = {2.0};
  other.PutObject();
  const std::string report = Report(1234567890);
  EXPECT_TRUE(report.starts_with(
      "                                 DESIGN POINT 1234567890\n"
      "================================================================================\n"
      "     Name        Type        Value\n"
      "--------------  ------  --------------\n"
      "          load   CDVar        2.000000\n"))
      << report;
}

TEST_F(PointReport, MarksTheResponsesOfAPointThatIsNotAnalysed) {
  Store(Vars(), Resps(), Point());
  CDPoint point = Point();
  point.RemoveRespValues();
  EXPECT_EQ(Report(), head +
                          "          load   CDVar        1000.000\n"
                          "        height   IDVar       -20.25000\n"
                          "         depth   LDVar        0.000000\n"
                          "         width   IDVar        1.500000\n"
                          "          area   SDVar    3.000000e+10\n" +
                          "         ratio   SResp         *      \n"
                          "        stress   IResp         *      \n"
                          "          copy   LResp         *      \n"
                          "        weight   IResp         *      \n" +
                          end);
}

TEST_F(PointReport, PrintsSevenDigitsOfEachValue) {
  CDVar vars = Vars();
  vars.m_vnType = Numbers(8, 20);
  vars.m_vnSeq = {0, 1, 2, 3, 4, 5, 6, 7};
  vars.m_vstrIndName = {"a", "b", "c", "d", "e", "f", "g", "h"};
  CDPoint point = Point();
  point.m_IDVar = {1234567.0, 12345678.0, 0.0001, 0.00001, -1e30, 1e-300, -123.4567891, 99999995.0};
  CDResp resps(study.Pod());
  resps.m_nID = 1;
  EXPECT_EQ(ReportOf(vars, resps, point), head +
                                              "             a   IDVar        1234567.\n"
                                              "             b   IDVar    1.234568e+07\n"
                                              "             c   IDVar    0.0001000000\n"
                                              "             d   IDVar    1.000000e-05\n"
                                              "             e   IDVar   -1.000000e+30\n"
                                              "             f   IDVar   1.000000e-300\n"
                                              "             g   IDVar       -123.4568\n"
                                              "             h   IDVar    1.000000e+08\n" +
                                              end);
}

TEST_F(PointReport, ContinuesLongNamesOnLinesOfTheirOwn) {
  CDVar vars = Vars();
  vars.m_vnType = {20, 20, 20, 20};
  vars.m_vnSeq = {0, 1, 2, 3};
  vars.m_vstrIndName = {"exactly_14_cha", "thickness_plate_1", "a name of two pieces of 14, to cut",
                        ""};
  CDResp resps = Resps();
  resps.m_vnType = {24};
  resps.m_vnSeq = {0};
  resps.m_vstrIndName = {"largest_stress_in_the_frame"};
  CDPoint point = Point();
  point.m_IDVar = {1, 2, 3, 4};
  EXPECT_EQ(ReportOf(vars, resps, point), head +
                                              "exactly_14_cha   IDVar        1.000000\n"
                                              "thickness_plat   IDVar        2.000000\n"
                                              "e_1           \n"
                                              "a name of two    IDVar        3.000000\n"
                                              "pieces of 14, \n"
                                              "to cut        \n"
                                              "                 IDVar        4.000000\n" +
                                              "largest_stress   IResp        7.000000\n"
                                              "_in_the_frame \n" +
                                              end);
}

// ---- Failures ----

TEST_F(PointReport, OfAKindThatIsNoVariablesIsAnInvalidType) {
  for (const int kind : {19, 24, 26, 0, -1, 2147483647}) {
    SCOPED_TRACE(kind);
    CDVar vars = Vars();
    vars.m_vnType[4] = kind;
    Store(vars, Resps(), Point());
    ExpectNoReport<CInvalidType>();
  }
}

TEST_F(PointReport, OfAKindThatIsNoResponsesIsAnInvalidType) {
  for (const int kind : {23, 20, 27, 0, -1, -2147483647 - 1}) {
    SCOPED_TRACE(kind);
    CDResp resps = Resps();
    resps.m_vnType[0] = kind;
    Store(Vars(), resps, Point());
    ExpectNoReport<CInvalidType>();
  }
}

TEST_F(PointReport, OfAPositionOutsideItsTableIsAnInvalidArgument) {
  for (const long position : {2L, -1L, 2147483647L, -2147483648L}) {
    SCOPED_TRACE(position);
    CDVar vars = Vars();
    vars.m_vnSeq[1] = position;
    Store(vars, Resps(), Point());
    ExpectNoReport<CInvalidArgument>();
    CDResp resps = Resps();
    resps.m_vnSeq[3] = position;
    Store(Vars(), resps, Point());
    ExpectNoReport<CInvalidArgument>();
  }
}

TEST_F(PointReport, OfTablesThatAreTooShortIsAnInvalidArgument) {
  const std::function<void(CDVar&, CDResp&, CDPoint&)> cuts[] = {
      [](CDVar& vars, CDResp&, CDPoint&) { vars.m_vnSeq.pop_back(); },
      [](CDVar& vars, CDResp&, CDPoint&) { vars.m_vnSeq.clear(); },
      [](CDVar& vars, CDResp&, CDPoint&) { vars.m_vstrIndName.pop_back(); },
      [](CDVar& vars, CDResp&, CDPoint&) { vars.m_vstrLinkName.clear(); },
      [](CDVar& vars, CDResp&, CDPoint&) { vars.m_vstrSynName.clear(); },
      [](CDVar& vars, CDResp&, CDPoint&) { vars.m_vstrConstName.clear(); },
      [](CDVar&, CDResp& resps, CDPoint&) { resps.m_vnSeq.pop_back(); },
      [](CDVar&, CDResp& resps, CDPoint&) { resps.m_vstrIndName.pop_back(); },
      [](CDVar&, CDResp& resps, CDPoint&) { resps.m_vstrLinkName.clear(); },
      [](CDVar&, CDResp& resps, CDPoint&) { resps.m_vstrSynName.clear(); },
      [](CDVar&, CDResp&, CDPoint& point) { point.m_IDVar = {1.0}; },
      [](CDVar&, CDResp&, CDPoint& point) { point.m_IResp = {1.0}; },
  };
  for (const auto& cut : cuts) {
    SCOPED_TRACE(&cut - cuts);
    CDVar vars = Vars();
    CDResp resps = Resps();
    CDPoint point = Point();
    cut(vars, resps, point);
    Store(vars, resps, point);
    ExpectNoReport<CInvalidArgument>();
  }
}

TEST_F(PointReport, NeedsThePointAndBothTables) {
  Store(Vars(), Resps(), Point());
  ExpectNoReport<CGetObject>(1, 1);
  ExpectNoReport<CGetObject>(2, 0);
  ASSERT_TRUE(Vars().RemoveObject());
  ExpectNoReport<CGetObject>();
  Vars().PutObject();
  ASSERT_TRUE(Resps().RemoveObject());
  ExpectNoReport<CGetObject>();
}

TEST_F(PointReport, OfAnImpossibleKeyIsAnInvalidKey) {
  ExpectNoReport<CInvalidKey>(0, 0);
  ExpectNoReport<CInvalidKey>(1, -1);
}

TEST_F(PointReport, OfADamagedPointIsNotPrintedInPart) {
  Store(Vars(), Resps(), Point());
  CDPoint point = Point();
  ASSERT_TRUE(point.GetObject());
  study.Close();
  PatchBytes(study.DataPath(), point.ObjectAddress() + 30, "x");
  study.Open();
  ExpectNoReport<CChecksum>();
}

TEST_F(PointReport, OfNoDatabaseOrStreamIsANullPointer) {
  EXPECT_THROW(CDPoint::Dump(nullptr, stdout, 1, 0), CNullPtr);
  EXPECT_THROW(CDPoint::Dump(study.Pod(), nullptr, 1, 0), CNullPtr);
}

TEST_F(PointReport, TellsMissingIndexingBeforeMissingFiles) {
  POD pod(study.folder / "other.ksb");
  EXPECT_THROW(CDPoint::Dump(&pod, stdout, 1, 0), CNoIndex);
  KSBKey key;
  pod.Open(study.folder / "other.ksb", study.folder / "other.kx", key, 32, vbReadWrite, 2, 0, 25);
  EXPECT_THROW(CDPoint::Dump(&pod, stdout, 1, 0), CNoIndex);
}

TEST_F(PointReport, WithoutADataFileIsANullPointer) {
  study.Pod()->CloseDataFile();
  ExpectNoReport<CNullPtr>();
}

TEST_F(PointReport, WithoutAnIndexFileIsANullPointer) {
  study.Pod()->CloseIndex();
  ExpectNoReport<CNullPtr>();
}

TEST_F(PointReport, NeedsTheLockOfTheDatabase) {
  std::filesystem::create_directory(study.LockPath());
  ExpectNoReport<CFileLock>();
  std::filesystem::remove(study.LockPath());
}

}  // namespace
