#include <gtest/gtest.h>

#include <string>
#include <valarray>
#include <vector>

#include "results/RDOE.h"
#include "results/Residual.h"
#include "tests/results/ModelStudy.h"

// The report of an analysis of residuals.

namespace {

using Array = std::valarray<double> CResidual::*;

const Array arrays[] = {
    &CResidual::m_HDiagonal,    &CResidual::m_Predicted,   &CResidual::m_Residual,
    &CResidual::m_Standardized, &CResidual::m_Studentized, &CResidual::m_RStudentized,
    &CResidual::m_Press,        &CResidual::m_Cook,
};

const std::string title =
    "                                RESIDUAL SUMMARY\n"
    "================================================================================\n";
const std::string varianceHead =
    "--------------------------------------------------------------------------------\n"
    "                                   ANOVA Table\n"
    "         Degrees\n"
    "Source  of Freedom  Sum of Squares    Mean Square        F0             P\n"
    "------  ----------  --------------  --------------  ------------  ------------\n";
const std::string noStatistics =
    "                       Sum of Residuals :       0.000000\n"
    "Prediction Error Sum of Squares (PRESS) :       0.000000\n"
    "                 Root Mean Square Error :       0.000000\n"
    "                          Mean Response :       0.000000\n"
    "               Coefficient of Variation :       0.000000\n"
    "                                   R**2 :       0.000000\n"
    "                          Adjusted R**2 :       0.000000\n"
    "                        R**2 from PRESS :       0.000000\n";
const std::string firstHead =
    "Design     Predicted                          Standardized      Studentized\n"
    " Point      Response          Residual          Residual          Residual\n"
    "------  ----------------  ----------------  ----------------  ----------------\n";
const std::string secondHead =
    "Design   R-Studentized         PRESS                               Cook's\n"
    " Point      Residual          Residual         H^Diagonal        D-Statistic\n";

class ResidualReport : public ModelStudy {
 protected:
  ResidualReport() : analysis(study.Pod()), model(ModelOf(0, {0, 1}, {1.0, 2.0})) {
    analysis.m_nTaskID = 1;
  }

  static auto Of(int resp, bool designNumbers = false, int taskID = 1) {
    return [=](POD* pod, std::FILE* stream) {
      CResidual::Dump(pod, stream, taskID, resp, designNumbers);
    };
  }
  void SetPoints(std::size_t count) {
    for (const Array array : arrays) (analysis.*array).resize(count);
  }
  void SetTerms(std::size_t count) { model.m_Coefficients.resize(count); }
  void Store() {
    StoreTask({"x"}, {"yield"});
    model.PutObject();
    analysis.PutObject();
  }
  std::string Report(bool designNumbers = false) {
    Store();
    return TextOf(Of(0, designNumbers));
  }
  /// The numbers of the rows of both tables, one behind the other.
  std::string NumbersOf(bool designNumbers) {
    const std::string report = Report(designNumbers);
    std::string numbers;
    for (std::size_t line = report.find("\n------  ------"); line < report.size();
         line = report.find('\n', line + 1)) {
      const std::string number = report.substr(line + 1, 6);
      if (number[5] >= '0' && number[5] <= '9') numbers += number;
    }
    return numbers;
  }

  CResidual analysis;
  CApproxModels model;
};

// ---- Whole reports ----

TEST_F(ResidualReport, OfTwoPointsWithAValueInEachPlace) {
  analysis.m_HDiagonal = {0.75, 0.25};
  analysis.m_Predicted = {10.5, -20.125};
  analysis.m_Residual = {1.0, 2.0};
  analysis.m_Standardized = {3.0, 4.0};
  analysis.m_Studentized = {5.0, 6.0};
  analysis.m_RStudentized = {7.0, 8.0};
  analysis.m_Press = {9.0, 1e-10};
  analysis.m_Cook = {1e10, 123456789.0};
  analysis.m_fErrorMS = 11.0;
  analysis.m_fModelSS = 12.0;
  analysis.m_fModelMS = 13.0;
  analysis.m_fErrorSS = 14.0;
  analysis.m_fTotalSS = 15.0;
  analysis.m_fF0 = 16.0;
  analysis.m_fP = 0.0625;
  analysis.m_fSumResiduals = 17.0;
  analysis.m_fPRESS = 18.0;
  analysis.m_fRMSE = 19.0;
  analysis.m_fMeanResponse = -20.0;
  analysis.m_fCoeffVariation = 21.0;
  analysis.m_fR2 = 0.22;
  analysis.m_fAdjR2 = 0.23;
  analysis.m_fR2Press = 0.24;
  EXPECT_EQ(Report(),
            "                                RESIDUAL SUMMARY\n"
            "================================================================================\n"
            "Response: yield                                                                 \n"
            "--------------------------------------------------------------------------------\n"
            "                                   ANOVA Table\n"
            "         Degrees\n"
            "Source  of Freedom  Sum of Squares    Mean Square        F0             P\n"
            "------  ----------  --------------  --------------  ------------  ------------\n"
            " Model           1        12.00000        13.00000        16.000      0.062500\n"
            " Error           0        14.00000        11.00000\n"
            " Total           1        15.00000\n"
            "                       Sum of Residuals :       17.00000\n"
            "Prediction Error Sum of Squares (PRESS) :       18.00000\n"
            "                 Root Mean Square Error :       19.00000\n"
            "                          Mean Response :      -20.00000\n"
            "               Coefficient of Variation :       21.00000\n"
            "                                   R**2 :      0.2200000\n"
            "                          Adjusted R**2 :      0.2300000\n"
            "                        R**2 from PRESS :      0.2400000\n"
            "Design     Predicted                          Standardized      Studentized\n"
            " Point      Response          Residual          Residual          Residual\n"
            "------  ----------------  ----------------  ----------------  ----------------\n"
            "     0        10.5000000        1.00000000        3.00000000        5.00000000\n"
            "     1       -20.1250000        2.00000000        4.00000000        6.00000000\n"
            "Design   R-Studentized         PRESS                               Cook's\n"
            " Point      Residual          Residual         H^Diagonal        D-Statistic\n"
            "     0        7.00000000        9.00000000       0.750000000    1.00000000e+10\n"
            "     1        8.00000000    1.00000000e-10       0.250000000        123456789.\n"
            "================================================================================\n"
            "\n");
}

TEST_F(ResidualReport, OfNoPointsAndNoTerms) {
  SetTerms(0);
  EXPECT_EQ(
      Report(),
      title + "Response: yield                                                                 \n" +
          varianceHead +
          " Model          -1        0.000000        0.000000        0.0000        0.0000\n"
          " Error           0        0.000000        0.000000\n"
          " Total          -1        0.000000\n" +
          noStatistics + firstHead + secondHead + reportEnd);
}

TEST_F(ResidualReport, OfTenPointsAndFourTermsHasThreeSixAndNineDegreesOfFreedom) {
  SetPoints(10);
  SetTerms(4);
  const std::string report = Report();
  EXPECT_NE(report.find("\n Model           3  "), std::string::npos);
  EXPECT_NE(report.find("\n Error           6  "), std::string::npos);
  EXPECT_NE(report.find("\n Total           9  "), std::string::npos);
}

TEST_F(ResidualReport, ContinuesALongNameUnderItself) {
  Store();
  StoreTask({}, {std::string(70, 'r') + std::string(70, 's') + "t"});
  EXPECT_EQ(
      TextOf(Of(0)),
      title +
          "Response: rrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrr\n"
          "          ssssssssssssssssssssssssssssssssssssssssssssssssssssssssssssssssssssss\n"
          "          t                                                                     \n" +
          varianceHead +
          " Model           1        0.000000        0.000000        0.0000        0.0000\n"
          " Error          -2        0.000000        0.000000\n"
          " Total          -1        0.000000\n" +
          noStatistics + firstHead + secondHead + reportEnd);
}

TEST_F(ResidualReport, IsThatOfTheResponseAskedForAndOfItsFirstModel) {
  Store();
  StoreTask({"x"}, {"yield", "cost"});
  CResidual other(study.Pod());
  other.m_nTaskID = other.m_nResp = 1;
  other.m_fR2 = 0.5;
  other.PutObject();
  ModelOf(1, {0, 1, 2}, {1, 2, 3}).PutObject();
  CApproxModels later = ModelOf(1, {0}, {1});
  later.m_nIter = 1;
  later.PutObject();
  const std::string report = TextOf(Of(1));
  EXPECT_TRUE(report.starts_with(title + "Response: cost  ")) << report;
  EXPECT_NE(report.find("\n Model           2  "), std::string::npos);
  EXPECT_NE(report.find("   R**2 :      0.5000000\n"), std::string::npos);
}

// ---- The numbers of the points ----

TEST_F(ResidualReport, CountsThePointsFromZero) {
  SetPoints(3);
  EXPECT_EQ(NumbersOf(false), "     0     1     2     0     1     2");
}

TEST_F(ResidualReport, HasTheNumbersOfTheDesignOnlyWhereAskedFor) {
  SetPoints(3);
  CRDOE design(study.Pod());
  design.m_nTaskID = 1;
  design.m_Points = {7, 0, 12};
  design.PutObject();
  EXPECT_EQ(NumbersOf(true), "     7     0    12     7     0    12");
  EXPECT_EQ(NumbersOf(false), "     0     1     2     0     1     2");
}

TEST_F(ResidualReport, CountsThePointsWhereTheTaskHasNoDesignOfAsMany) {
  SetPoints(3);
  EXPECT_EQ(NumbersOf(true), "     0     1     2     0     1     2");
  CRDOE design(study.Pod());
  design.m_nTaskID = 1;
  for (const std::valarray<int>& points :
       {std::valarray<int>{7, 8}, std::valarray<int>{7, 8, 9, 10}, std::valarray<int>{}}) {
    design.m_Points = points;
    design.PutObject();
    EXPECT_EQ(NumbersOf(true), "     0     1     2     0     1     2");
  }
}

// ---- Failures ----

TEST_F(ResidualReport, OfArraysOfDifferentSizesIsAnInvalidArgument) {
  for (const Array array : arrays) {
    for (const std::size_t size : {0U, 2U, 4U}) {
      SCOPED_TRACE(size);
      SetPoints(3);
      (analysis.*array).resize(size);
      Store();
      ExpectNoReport<CInvalidArgument>(Of(0));
    }
  }
}

TEST_F(ResidualReport, OfAResponseOutsideTheTableIsAnInvalidArgument) {
  analysis.m_nResp = model.m_nResp = 1;
  Store();
  ExpectNoReport<CInvalidArgument>(Of(1));
}

TEST_F(ResidualReport, NeedsTheRecordTheModelAndTheResponses) {
  Store();
  ExpectToNeed(Of(0), analysis, model, resps);
  ExpectNoReport<CGetObject>(Of(1));
  ExpectNoReport<CGetObject>(Of(0, false, 2));
}

TEST_F(ResidualReport, OfAnImpossibleKeyIsAnInvalidKey) {
  ExpectNoReport<CInvalidKey>(Of(0, false, 0));
  ExpectNoReport<CInvalidKey>(Of(0, true, -1));
  ExpectNoReport<CInvalidKey>(Of(-1));
}

TEST_F(ResidualReport, OfADamagedRecordIsNotPrintedInPart) {
  Store();
  ExpectNoReportOnceDamaged(Of(0), analysis);
}

TEST_F(ResidualReport, OfADamagedDesignIsNotPrintedInPart) {
  Store();
  CRDOE design(study.Pod());
  design.m_nTaskID = 1;
  design.PutObject();
  ExpectNoReportOnceDamaged(Of(0, true), design);
}

TEST_F(ResidualReport, NeedsAnOpenDatabaseAStreamAndTheLock) {
  ExpectChecksOfArguments(Of(0));
}

}  // namespace
