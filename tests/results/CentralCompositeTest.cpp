#include <gtest/gtest.h>

#include <string>
#include <valarray>
#include <vector>

#include "examples/support/surface.h"
#include "results/ApproxModels.h"
#include "results/RApproxMod.h"
#include "results/Residual.h"
#include "tests/results/ModelStudy.h"

// A published response surface analysis, from its data to the reports: the yield of a chemical
// process by a central composite design in two coded variables, five of its thirteen runs at the
// centre, fitted by a model of second order.

namespace {

struct Run {
  double x;
  double y;
  double yield;
};

constexpr double axial = 1.414;

const std::vector<Run> runs = {
    {-1, -1, 76.5},    {-1, 1, 77.0},    {1, -1, 78.0},     {1, 1, 79.5}, {0, 0, 79.9},
    {0, 0, 80.3},      {0, 0, 80.0},     {0, 0, 79.7},      {0, 0, 79.8}, {axial, 0, 78.4},
    {-axial, 0, 75.6}, {0, axial, 78.5}, {0, -axial, 77.0},
};

/// Constant, x, y, x**2, y**2, x * y.
LeastSquares FitOfSecondOrder() {
  std::vector<std::vector<double>> rows;
  std::vector<double> yields;
  for (const auto& [x, y, yield] : runs) {
    rows.push_back({1.0, x, y, x * x, y * y, x * y});
    yields.push_back(yield);
  }
  return FitLeastSquares(rows, yields);
}

class CentralComposite : public ModelStudy {
 protected:
  CentralComposite() { StoreTask({"x", "y"}, {"yield"}); }

  void StoreModel() { ::StoreModel(1, 0, 0, terms, fit); }
  void StoreFinalModels() { StoreFinalModel(1, terms, fit); }
  void StoreResiduals() {
    LeastSquares exact = fit;
    exact.sumOfResiduals = 0.0;  // but for rounding
    ::StoreResiduals(1, 0, exact);
  }

  const std::vector<std::vector<int>> terms = QuadraticTerms(2);
  const LeastSquares fit = FitOfSecondOrder();
};

TEST_F(CentralComposite, HasThePublishedCoefficients) {
  const double published[] = {79.94, 0.995, 0.515, -1.376, -1.001, 0.25};
  const double lastDigit[] = {0.01, 0.001, 0.001, 0.001, 0.001, 0.01};
  ASSERT_EQ(fit.coefficients.size(), 6U);
  for (std::size_t i = 0; i < 6; ++i) {
    EXPECT_NEAR(fit.coefficients[i], published[i], lastDigit[i] / 2) << i;
  }
}

TEST_F(CentralComposite, HasThePublishedAnalysisOfVariance) {
  EXPECT_NEAR(fit.model.sum, 28.247, 0.0005);
  EXPECT_NEAR(fit.error.sum, 0.4964, 0.00005);
  EXPECT_NEAR(fit.total.sum, 28.743, 0.0005);
  EXPECT_NEAR(fit.model.sum / fit.model.mean, 5.0, 1e-9);
  EXPECT_NEAR(fit.error.sum / fit.error.mean, 7.0, 1e-9);
  EXPECT_NEAR(fit.total.sum / fit.total.mean, 12.0, 1e-9);
  EXPECT_NEAR(fit.f0, 79.67, 0.005);
  EXPECT_LT(fit.p, 0.0001);
}

TEST_F(CentralComposite, HasThePublishedQualityOfFit) {
  EXPECT_NEAR(fit.r2, 0.9827, 0.00005);
  EXPECT_NEAR(fit.adjustedR2, 0.9704, 0.00005);
  EXPECT_NEAR(fit.press, 2.353, 0.0005);
  EXPECT_NEAR(fit.r2Press, 0.918, 0.0005);
  EXPECT_NEAR(fit.meanResponse, 78.477, 0.0005);
  EXPECT_NEAR(fit.RootMeanSquareError(), 0.2663, 0.00005);
  EXPECT_NEAR(fit.sumOfResiduals, 0.0, 1e-9);
}

/// The fit without one run tells its PRESS and R-Studentized residual directly.
TEST_F(CentralComposite, HasTheResidualsOfFitsWithoutThePoint) {
  for (std::size_t left = 0; left < runs.size(); ++left) {
    SCOPED_TRACE(left);
    std::vector<std::vector<double>> rows;
    std::vector<double> yields;
    for (std::size_t i = 0; i < runs.size(); ++i) {
      const auto& [x, y, yield] = runs[i];
      if (i == left) continue;
      rows.push_back({1.0, x, y, x * x, y * y, x * y});
      yields.push_back(yield);
    }
    const LeastSquares without = FitLeastSquares(rows, yields);
    const auto& [x, y, yield] = runs[left];
    const std::vector<double>& b = without.coefficients;
    const double predicted =
        b[0] + b[1] * x + b[2] * y + b[3] * x * x + b[4] * y * y + b[5] * x * y;
    const PointStatistics& point = fit.points[left];
    EXPECT_NEAR(point.press, yield - predicted, 1e-9);
    EXPECT_NEAR(point.rStudentized * point.rStudentized * without.error.mean,
                point.residual * point.press, 1e-9);
  }
}

TEST_F(CentralComposite, ReportsTheModel) {
  StoreModel();
  EXPECT_EQ(TextOf([](POD* pod, std::FILE* stream) { CApproxModels::Dump(pod, stream, 1, 0); }),
            "                               APPROXIMATION MODEL                              \n"
            "================================================================================\n"
            "            Iteration number: 0\n"
            "        Independent response: yield                                             \n"
            "             Number of terms: 6\n"
            "--------------------------------------------------------------------------------\n"
            "          Term             Coefficient   Std. Error    t-Statistic     P-value\n"
            "------------------------  ------------  ------------  ------------  ------------\n"
            "               Constant        79.940       0.11909        671.26    4.3003e-18\n"
            "                      x       0.99505      0.094155        10.568    1.4845e-05\n"
            "                      y       0.51520      0.094155        5.4719    0.00093401\n"
            "                   x**2       -1.3764       0.10098       -13.630    2.6930e-06\n"
            "                   y**2       -1.0013       0.10098       -9.9158    2.2620e-05\n"
            "                  x * y       0.25000       0.13315        1.8777       0.10252\n"
            "================================================================================\n"
            "\n");
}

TEST_F(CentralComposite, ReportsTheFinalModel) {
  StoreFinalModels();
  EXPECT_EQ(TextOf([](POD* pod, std::FILE* stream) { CRApproxMod::Dump(pod, stream, 1); }),
            "                          FINAL APPROXIMATION MODEL                              \n"
            "================================================================================\n"
            "        Independent response: yield                                             \n"
            "             Number of terms: 6\n"
            "--------------------------------------------------------------------------------\n"
            "          Term             Coefficient\n"
            "------------------------  ------------\n"
            "               Constant        79.940\n"
            "                      x       0.99505\n"
            "                      y       0.51520\n"
            "                   x**2       -1.3764\n"
            "                   y**2       -1.0013\n"
            "                  x * y       0.25000\n"
            "================================================================================\n"
            "\n");
}

TEST_F(CentralComposite, ReportsTheResiduals) {
  StoreModel();
  StoreResiduals();
  EXPECT_EQ(TextOf([](POD* pod, std::FILE* stream) { CResidual::Dump(pod, stream, 1, 0, false); }),
            "                                RESIDUAL SUMMARY\n"
            "================================================================================\n"
            "Response: yield                                                                 \n"
            "--------------------------------------------------------------------------------\n"
            "                                   ANOVA Table\n"
            "         Degrees\n"
            "Source  of Freedom  Sum of Squares    Mean Square        F0             P\n"
            "------  ----------  --------------  --------------  ------------  ------------\n"
            " Model           5        28.24670        5.649341        79.669    5.1470e-06\n"
            " Error           7       0.4963735      0.07091050\n"
            " Total          12        28.74308\n"
            "                       Sum of Residuals :       0.000000\n"
            "Prediction Error Sum of Squares (PRESS) :       2.353461\n"
            "                 Root Mean Square Error :      0.2662903\n"
            "                          Mean Response :       78.47692\n"
            "               Coefficient of Variation :      0.3393230\n"
            "                                   R**2 :      0.9827307\n"
            "                          Adjusted R**2 :      0.9703954\n"
            "                        R**2 from PRESS :      0.9181208\n"
            "Design     Predicted                          Standardized      Studentized\n"
            " Point      Response          Residual          Residual          Residual\n"
            "------  ----------------  ----------------  ----------------  ----------------\n"
            "     0        76.3019163       0.198083723       0.743863961        1.21484709\n"
            "     1        76.8323219       0.167678132       0.629681820        1.02836966\n"
            "     2        77.7920168       0.207983218       0.781039542        1.27556067\n"
            "     3        79.3224224       0.177577626       0.666857401        1.08908324\n"
            "     4        79.9399546     -0.0399546064      -0.150041565      -0.167751569\n"
            "     5        79.9399546       0.360045394        1.35207875        1.51166999\n"
            "     6        79.9399546      0.0600453936       0.225488514       0.252103822\n"
            "     7        79.9399546      -0.239954606      -0.901101724       -1.00746235\n"
            "     8        79.9399546      -0.139954606      -0.525571644      -0.587606959\n"
            "     9        78.5948885      -0.194888474      -0.731864840       -1.19500998\n"
            "    10        75.7808864      -0.180886359      -0.679282689       -1.10915233\n"
            "    11        78.6663842      -0.166384170      -0.624822604       -1.02022833\n"
            "    12        77.2093907      -0.209390664      -0.786324925       -1.28393397\n"
            "Design   R-Studentized         PRESS                               Cook's\n"
            " Point      Residual          Residual         H^Diagonal        D-Statistic\n"
            "     0        1.26609020       0.528329654       0.625075516       0.410091407\n"
            "     1        1.03333680       0.447231746       0.625075516       0.293856934\n"
            "     2        1.34793996       0.554733624       0.625075516       0.452105381\n"
            "     3        1.10637666       0.473635716       0.625075516       0.329579040\n"
            "     4      -0.155620894     -0.0499432575       0.199999993     0.00117252448\n"
            "     5        1.70529100       0.450056738       0.199999993      0.0952144194\n"
            "     6       0.234469643      0.0750567413       0.199999993     0.00264818059\n"
            "     7       -1.00872239      -0.299943255       0.199999993      0.0422908475\n"
            "     8      -0.557953139      -0.174943256       0.199999993      0.0143867468\n"
            "     9       -1.24006230      -0.519597975       0.624924493       0.396552465\n"
            "    10       -1.13106392      -0.482266520       0.624924493       0.341617398\n"
            "    11       -1.02372056      -0.443601799       0.624924493       0.289036275\n"
            "    12       -1.35950247      -0.558262696       0.624924493       0.457765408\n"
            "================================================================================\n"
            "\n");
}

}  // namespace
