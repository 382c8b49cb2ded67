#include <gtest/gtest.h>

#include <string>
#include <valarray>

#include "results/RDOE.h"
#include "tests/results/ModelStudy.h"

// The report of a design of experiments, and its class.

namespace {

const std::string head =
    "                            DOE RESULTS SUMMARY\n"
    "================================================================================\n"
    "Point Numbers of the DOE Design Points:\n";
const std::string generatorsHead =
    "Number                Generators of the fractional factorial design\n"
    "------  ------------------------------------------------------------------------\n";

void Report(POD* pod, std::FILE* stream) {
  CRDOE::Dump(pod, stream, 1);
}

class DesignReport : public ModelStudy {
 protected:
  DesignReport() : design(study.Pod()) {
    task.m_nType = 2;
    task.m_DOE.m_nMethod = 0;
    design.m_nTaskID = 1;
  }
  void SetOption(int option) { task.m_DOE.SetOptions({option}); }

  std::string Text() {
    Store();
    return TextOf(Report);
  }
  void Store() {
    task.PutObject();
    design.PutObject();
  }

  CRDOE design;
};

TEST_F(DesignReport, IsOfAClassWithItsConstants) {
  EXPECT_EQ(CRDOE::m_nRDOE_VER, 1);
  EXPECT_EQ(CRDOE::m_nRDOE_INDX, 16);
  EXPECT_EQ(CRDOE::m_nRDOE_ID, 17000);
  EXPECT_EQ(CRDOE::m_strCLASS_NAME, "CRDOE");
}

// ---- Points ----

TEST_F(DesignReport, OfAFreshRecord) {
  EXPECT_EQ(Text(),
            "                            DOE RESULTS SUMMARY\n"
            "================================================================================\n"
            "Point Numbers of the DOE Design Points:\n"
            "================================================================================\n"
            "\n");
}

TEST_F(DesignReport, ListsThePoints) {
  design.m_Points = {0, 1, 2, 7, 12, -1, 2147483647};
  EXPECT_EQ(Text(), head + "     0 1 2 7 12 -1 2147483647 \n" + reportEnd);
}

TEST_F(DesignReport, WrapsThePointsAtTheEndOfTheLine) {
  design.m_Points.resize(39);
  for (int i = 0; i < 39; ++i) design.m_Points[static_cast<std::size_t>(i)] = 100 + i;
  EXPECT_EQ(Text(),
            head +
                "     100 101 102 103 104 105 106 107 108 109 110 111 112 113 114 115 116 117 118\n"
                "     119 120 121 122 123 124 125 126 127 128 129 130 131 132 133 134 135 136 137\n"
                "     138 \n" +
                reportEnd);
}

TEST_F(DesignReport, WrapsBeforeANumberThatDoesNotFit) {
  design.m_Points = std::valarray<int>(1234567890, 8);
  EXPECT_EQ(Text(), head +
                        "     1234567890 1234567890 1234567890 1234567890 1234567890 1234567890\n"
                        "     1234567890 1234567890 \n" +
                        reportEnd);
}

TEST_F(DesignReport, ListsManyPoints) {
  design.m_Points.resize(200000);
  for (int i = 0; i < 200000; ++i) design.m_Points[static_cast<std::size_t>(i)] = i;
  const std::string text = Text();
  EXPECT_NE(text.find(" 99999 100000"), std::string::npos);
  EXPECT_TRUE(text.ends_with("199999 \n" + reportEnd));
}

// ---- The fraction ----

TEST_F(DesignReport, HasTheGeneratorsOfAFraction) {
  SetOption(2);
  design.m_nResolution = 3;
  design.m_Points = {0, 1};
  design.m_Generators = {4, 1, 2, 5, 1, 3};
  EXPECT_EQ(Text(),
            "                            DOE RESULTS SUMMARY\n"
            "================================================================================\n"
            "Point Numbers of the DOE Design Points:\n"
            "     0 1 \n"
            "Resolution of the fractional factorial design = 3\n"
            "Number                Generators of the fractional factorial design\n"
            "------  ------------------------------------------------------------------------\n"
            "     1  4 1 2 \n"
            "     2  5 1 3 \n"
            "================================================================================\n"
            "\n");
}

TEST_F(DesignReport, HasNothingOfAFractionWithoutAResolution) {
  SetOption(2);
  design.m_Generators = {4, 1, 2, 5, 1, 3};
  EXPECT_EQ(Text(), head + reportEnd);
}

TEST_F(DesignReport, HasAFractionWithoutGenerators) {
  SetOption(2);
  design.m_nResolution = -1;
  EXPECT_EQ(Text(), head + "Resolution of the fractional factorial design = -1\n" + generatorsHead +
                        reportEnd);
}

TEST_F(DesignReport, ContinuesLongGenerators) {
  SetOption(2);
  design.m_nResolution = 5;
  design.m_Generators = std::valarray<int>(1, 80);
  design.m_Generators[40] = -17;
  EXPECT_EQ(Text(),
            head + "Resolution of the fractional factorial design = 5\n" + generatorsHead +
                "     1  1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1\n"
                "         1 1 1 1 \n"
                "     2  -17 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1\n"
                "         1 1 1 1 1 \n" +
                reportEnd);
}

TEST_F(DesignReport, TakesEachIntegerForAGeneratorWhereTheOptionDoesNotDivideThem) {
  design.m_nResolution = 4;
  design.m_Generators = {12, 13, 23};
  for (const int option : {0, -1, 2, 4, 6, 3}) {
    SCOPED_TRACE(option);
    SetOption(option);
    EXPECT_EQ(Text(), head + "Resolution of the fractional factorial design = 4\n" +
                          generatorsHead +
                          "     1  12 \n"
                          "     2  13 \n"
                          "     3  23 \n" +
                          reportEnd);
  }
}

TEST_F(DesignReport, TakesTheOptionOfTheDesignOfTheTask) {
  task.m_DOE.SetOptions({1, 3, 2});
  task.m_DOE.m_nMethod = 1;
  design.m_nResolution = 4;
  design.m_Generators = {1, 2, 3, 4, 5, 6};
  EXPECT_EQ(Text(), head + "Resolution of the fractional factorial design = 4\n" + generatorsHead +
                        "     1  1 2 \n"
                        "     2  3 4 \n"
                        "     3  5 6 \n" +
                        reportEnd);
}

// ---- The D-optimal part ----

TEST_F(DesignReport, HasTheQualityOfADOptimalDesign) {
  task.m_DOE.m_nDOptimal = 1;
  design.m_Points = {3, 1, 4};
  design.m_fLogDet = 12.345678;
  design.m_fDEfficiency = 0.5;
  design.m_fAEfficiency = 1e-10;
  design.m_fGEfficiency = 98.7654321;
  design.m_fPredVariance = 0.25;
  EXPECT_EQ(Text(),
            "                            DOE RESULTS SUMMARY\n"
            "================================================================================\n"
            "Point Numbers of the DOE Design Points:\n"
            "     3 1 4 \n"
            "--------------------------------------------------------------------------------\n"
            "Logarithm of the determinant of the D-optimal design = 12.3457\n"
            "D-Efficiency = 0.5\n"
            "A-Efficiency = 1e-10\n"
            "G-Efficiency = 98.7654\n"
            "Scaled average predicted variance (all responses) = 0.25\n"
            "================================================================================\n"
            "\n");
}

TEST_F(DesignReport, LeavesTheVarianceOutWhereThereIsNone) {
  task.m_DOE.m_nDOptimal = -1;
  EXPECT_EQ(Text(),
            head +
                "--------------------------------------------------------------------------------\n"
                "Logarithm of the determinant of the D-optimal design = 0\n"
                "D-Efficiency = 0\n"
                "A-Efficiency = 0\n"
                "G-Efficiency = 0\n" +
                reportEnd);
}

TEST_F(DesignReport, HasNothingOfTheQualityOfAnotherDesign) {
  design.m_fLogDet = 1.0;
  design.m_fPredVariance = 0.25;
  EXPECT_EQ(Text(), head + reportEnd);
}

TEST_F(DesignReport, OfADOptimalFraction) {
  SetOption(1);
  task.m_DOE.m_nDOptimal = 1;
  design.m_nResolution = 5;
  design.m_Generators = {5};
  design.m_fPredVariance = 0.0;
  EXPECT_EQ(Text(),
            head + "Resolution of the fractional factorial design = 5\n" + generatorsHead +
                "     1  5 \n"
                "--------------------------------------------------------------------------------\n"
                "Logarithm of the determinant of the D-optimal design = 0\n"
                "D-Efficiency = 0\n"
                "A-Efficiency = 0\n"
                "G-Efficiency = 0\n"
                "Scaled average predicted variance (all responses) = 0\n" +
                reportEnd);
}

// ---- Failures ----

TEST_F(DesignReport, OfAFractionWithoutAKnownDesignIsAnInvalidArgument) {
  design.m_nResolution = 3;
  for (const int method : {15, -1, 2147483647}) {
    task.m_DOE.m_nMethod = method;
    Store();
    ExpectNoReport<CInvalidArgument>(Report);
  }
}

TEST_F(DesignReport, NeedsTheRecordAndTheTask) {
  Store();
  ExpectToNeed(Report, design, task);
}

TEST_F(DesignReport, OfAnImpossibleTaskIsAnInvalidKey) {
  for (const int taskID : {0, -1}) {
    ExpectNoReport<CInvalidKey>(
        [taskID](POD* pod, std::FILE* stream) { CRDOE::Dump(pod, stream, taskID); });
  }
}

TEST_F(DesignReport, OfADamagedRecordIsNotPrintedInPart) {
  Store();
  ExpectNoReportOnceDamaged(Report, design);
}

TEST_F(DesignReport, OfADamagedTaskIsNotPrintedInPart) {
  Store();
  ExpectNoReportOnceDamaged(Report, task);
}

TEST_F(DesignReport, NeedsAnOpenDatabaseAStreamAndTheLock) {
  ExpectChecksOfArguments(Report);
}

}  // namespace
