#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "results/ApproxModels.h"
#include "tests/results/ModelStudy.h"

// The report of an approximation model.

namespace {

const std::string title =
    "                               APPROXIMATION MODEL                              \n"
    "================================================================================\n"
    "            Iteration number: 0\n";
const std::string tableHead =
    "--------------------------------------------------------------------------------\n"
    "          Term             Coefficient   Std. Error    t-Statistic     P-value\n"
    "------------------------  ------------  ------------  ------------  ------------\n";

const std::vector<int> quadratic = {0, 0, 1, 0, 0, 1, 2, 0, 0, 2, 1, 1};
const std::vector<double> yieldOf = {79.94, 0.995, 0.515, -1.376, -1.001, 0.25};

class ModelReport : public ModelStudy {
 protected:
  static auto Of(int resp, int taskID = 1) {
    return [=](POD* pod, std::FILE* stream) { CApproxModels::Dump(pod, stream, taskID, resp); };
  }
  std::string Report(int resp = 0) { return TextOf(Of(resp)); }
};
using ModelReportDeathTest = ModelReport;

TEST_F(ModelReport, OfAFullQuadraticModel) {
  StoreTask({"x", "y"}, {"yield"});
  CApproxModels model = ModelOf(0, quadratic, yieldOf);
  model.m_StdErrors = {0.11909, 0.09415, 0.09415, 0.10098, 0.10098, 0.13315};
  model.m_TStats = {671.264, 10.5682, 5.47004, -13.6303, -9.91602, 1.87766};
  model.m_PValues = {0.0, 1.48e-05, 0.000934, 2.69e-06, 0.0000226, 0.1025};
  model.PutObject();
  EXPECT_EQ(Report(),
            "                               APPROXIMATION MODEL                              \n"
            "================================================================================\n"
            "            Iteration number: 0\n"
            "        Independent response: yield                                             \n"
            "             Number of terms: 6\n"
            "--------------------------------------------------------------------------------\n"
            "          Term             Coefficient   Std. Error    t-Statistic     P-value\n"
            "------------------------  ------------  ------------  ------------  ------------\n"
            "               Constant        79.940       0.11909        671.26        0.0000\n"
            "                      x       0.99500      0.094150        10.568    1.4800e-05\n"
            "                      y       0.51500      0.094150        5.4700    0.00093400\n"
            "                   x**2       -1.3760       0.10098       -13.630    2.6900e-06\n"
            "                   y**2       -1.0010       0.10098       -9.9160    2.2600e-05\n"
            "                  x * y       0.25000       0.13315        1.8777       0.10250\n"
            "================================================================================\n"
            "\n");
}

TEST_F(ModelReport, OfNoTermsHasAnEmptyTable) {
  StoreTask({"x", "y"}, {"yield"});
  ModelOf(0, {}, {}).PutObject();
  EXPECT_EQ(Report(),
            title +
                "        Independent response: yield                                             \n"
                "             Number of terms: 0\n" +
                tableHead + reportEnd);
}

TEST_F(ModelReport, OfNoVariablesHasConstantsOnly) {
  StoreTask({}, {"yield"});
  ModelOf(0, {}, {3.0}).PutObject();
  EXPECT_EQ(
      Report(),
      title +
          "        Independent response: yield                                             \n"
          "             Number of terms: 1\n" +
          tableHead +
          "               Constant        3.0000       0.50000        2.0000       0.25000\n" +
          reportEnd);
}

TEST_F(ModelReport, OfNoTermsAndNoVariables) {
  StoreTask({}, {"yield"});
  ModelOf(0, {}, {}).PutObject();
  EXPECT_EQ(Report(),
            title +
                "        Independent response: yield                                             \n"
                "             Number of terms: 0\n" +
                tableHead + reportEnd);
}

TEST_F(ModelReport, NamesTermsByPowersAndProducts) {
  StoreTask({"a", "b", "c"}, {"r"});
  ModelOf(0, {0, 0, 0, 0, 0, 1, 0, 3, 0, 2, 1, 0, 1, 0, 1, 1, 1, 1, 2, 0, 12, 0, -1, 0},
          {1, 2, 3, 4, 5, 6, 7, 8})
      .PutObject();
  EXPECT_EQ(
      Report(),
      title +
          "        Independent response: r                                                 \n"
          "             Number of terms: 8\n" +
          tableHead +
          "               Constant        1.0000       0.50000        2.0000       0.25000\n"
          "                      c        2.0000       0.50000        2.0000       0.25000\n"
          "                   b**3        3.0000       0.50000        2.0000       0.25000\n"
          "               a**2 * b        4.0000       0.50000        2.0000       0.25000\n"
          "                  a * c        5.0000       0.50000        2.0000       0.25000\n"
          "              a * b * c        6.0000       0.50000        2.0000       0.25000\n"
          "           a**2 * c**12        7.0000       0.50000        2.0000       0.25000\n"
          "                  b**-1        8.0000       0.50000        2.0000       0.25000\n" +
          reportEnd);
}

TEST_F(ModelReport, PrintsFiveDigitsOfEachValue) {
  StoreTask({}, {"r"});
  CApproxModels model = ModelOf(0, {}, {123456.0, 12345.0, 0.0001, 1e300});
  model.m_StdErrors = {99999.0, 0.00001, -1e-300, 1.0};
  model.PutObject();
  EXPECT_EQ(
      Report(),
      title +
          "        Independent response: r                                                 \n"
          "             Number of terms: 4\n" +
          tableHead +
          "               Constant    1.2346e+05        99999.        2.0000       0.25000\n"
          "               Constant        12345.    1.0000e-05        2.0000       0.25000\n"
          "               Constant    0.00010000  -1.0000e-300        2.0000       0.25000\n"
          "               Constant   1.0000e+300        1.0000        2.0000       0.25000\n" +
          reportEnd);
}

TEST_F(ModelReport, ContinuesLongNamesOnLinesOfTheirOwn) {
  StoreTask({"twenty_three_characters", "thickness_of_the_plate_1", ""},
            {"the_largest_stress_of_all_members_of_the_frame_in_any_load_case"});
  ModelOf(0, {1, 0, 0, 0, 1, 0, 1, 2, 0, 0, 0, 1}, {1, 2, 3, 4}).PutObject();
  EXPECT_EQ(
      Report(),
      title +
          "        Independent response: the_largest_stress_of_all_members_of_the_frame_in_\n"
          "                              any_load_case                                     \n"
          "             Number of terms: 4\n" +
          tableHead +
          "twenty_three_characters        1.0000       0.50000        2.0000       0.25000\n"
          "thickness_of_the_plate_        2.0000       0.50000        2.0000       0.25000\n"
          "1                      \n"
          "twenty_three_characters        3.0000       0.50000        2.0000       0.25000\n"
          " * thickness_of_the_pla\n"
          "te_1**2                \n"
          "                               4.0000       0.50000        2.0000       0.25000\n" +
          reportEnd);
}

TEST_F(ModelReport, KeepsAResponseNameOfFiftyCharactersOnOneLine) {
  StoreTask({}, {std::string(50, 'r')});
  ModelOf(0, {}, {}).PutObject();
  EXPECT_EQ(Report(),
            title +
                "        Independent response: rrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrr\n"
                "             Number of terms: 0\n" +
                tableHead + reportEnd);
}

TEST_F(ModelReport, IsThatOfTheResponseAskedForAtTheFirstIteration) {
  StoreTask({"x"}, {"first", "second"});
  ModelOf(0, {1}, {1.0}).PutObject();
  ModelOf(1, {2}, {2.0}).PutObject();
  CApproxModels later = ModelOf(1, {3}, {3.0});
  later.m_nIter = 1;
  later.PutObject();
  EXPECT_EQ(
      Report(1),
      title +
          "        Independent response: second                                            \n"
          "             Number of terms: 1\n" +
          tableHead +
          "                   x**2        2.0000       0.50000        2.0000       0.25000\n" +
          reportEnd);
}

// ---- Failures ----

TEST_F(ModelReport, OfArraysWithoutAnElementForEachTermIsAnInvalidArgument) {
  StoreTask({"x", "y"}, {"yield"});
  using Array = std::valarray<double> CApproxModels::*;
  for (const Array array :
       {&CApproxModels::m_StdErrors, &CApproxModels::m_TStats, &CApproxModels::m_PValues}) {
    for (const std::size_t size : {0U, 1U, 5U, 7U}) {
      SCOPED_TRACE(size);
      CApproxModels model = ModelOf(0, quadratic, yieldOf);
      (model.*array).resize(size);
      model.PutObject();
      ExpectNoReport<CInvalidArgument>(Of(0));
    }
  }
}

TEST_F(ModelReport, OfAResponseOutsideTheTableIsAnInvalidArgument) {
  StoreTask({"x", "y"}, {"yield", "cost"});
  for (const int resp : {2, 2147483647}) {
    ModelOf(resp, quadratic, yieldOf).PutObject();
    ExpectNoReport<CInvalidArgument>(Of(resp));
  }
}

TEST_F(ModelReportDeathTest, NeedsAnExponentForEachTermAndVariable) {
  const char* const assertion =
      "Assertion failed: vnModel.size\\(\\) == appmod.GetNumTerms\\(\\) \\* nNumDV\n";
  StoreTask({"x", "y"}, {"yield"});
  for (const std::size_t size : {0U, 11U, 13U}) {
    SCOPED_TRACE(size);
    CApproxModels model = ModelOf(0, quadratic, yieldOf);
    model.m_Model.resize(size);
    model.PutObject();
    EXPECT_DEATH(Report(), assertion);
    EXPECT_FALSE(std::filesystem::exists(study.LockPath()));
  }
  ModelOf(0, quadratic, yieldOf).PutObject();
  StoreTask({"x", "y", "z"}, {"yield"});
  EXPECT_DEATH(Report(), assertion);
}

TEST_F(ModelReport, NeedsTheModelTheTaskAndItsTables) {
  StoreTask({"x", "y"}, {"yield", "cost"});
  CApproxModels model = ModelOf(0, quadratic, yieldOf);
  model.PutObject();
  ExpectToNeed(Of(0), model, task, vars, resps);
  ExpectNoReport<CGetObject>(Of(1));
  ExpectNoReport<CGetObject>(Of(0, 2));
}

TEST_F(ModelReport, OfAnImpossibleKeyIsAnInvalidKey) {
  ExpectNoReport<CInvalidKey>(Of(0, 0));
  ExpectNoReport<CInvalidKey>(Of(0, -1));
  ExpectNoReport<CInvalidKey>(Of(-1));
}

TEST_F(ModelReport, OfADamagedModelIsNotPrintedInPart) {
  StoreTask({"x", "y"}, {"yield"});
  CApproxModels model = ModelOf(0, quadratic, yieldOf);
  model.PutObject();
  ExpectNoReportOnceDamaged(Of(0), model);
}

TEST_F(ModelReport, OfDamagedVariablesIsNotPrintedInPart) {
  StoreTask({"x", "y"}, {"yield"});
  ModelOf(0, quadratic, yieldOf).PutObject();
  ExpectNoReportOnceDamaged(Of(0), vars);
}

TEST_F(ModelReport, NeedsAnOpenDatabaseAStreamAndTheLock) {
  ExpectChecksOfArguments(Of(0));
}

}  // namespace
