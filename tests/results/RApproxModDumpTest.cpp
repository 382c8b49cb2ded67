#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "results/RApproxMod.h"
#include "tests/results/ModelStudy.h"

// The report of a task's final models.

namespace {

const std::string title =
    "                          FINAL APPROXIMATION MODEL                              \n"
    "================================================================================\n";
const std::string tableHead =
    "--------------------------------------------------------------------------------\n"
    "          Term             Coefficient\n"
    "------------------------  ------------\n";

void Report(POD* pod, std::FILE* stream) {
  CRApproxMod::Dump(pod, stream, 1);
}

class FinalModelReport : public ModelStudy {
 protected:
  using Change = std::function<void(CRApproxMod&)>;

  CRApproxMod ModelsOf(int variables, int terms, int responses, const std::vector<int>& exponents,
                       const std::vector<double>& coefficients) {
    CRApproxMod models(study.Pod());
    models.m_nTaskID = 1;
    models.m_nRowMod = variables;
    models.m_nColMod = models.m_nRowCoeff = terms;
    models.m_nColCoeff = responses;
    models.m_Model = {exponents.data(), exponents.size()};
    models.m_Coeff = {coefficients.data(), coefficients.size()};
    return models;
  }
  /// Two variables, three terms, two responses.
  CRApproxMod Usual() {
    return ModelsOf(2, 3, 2,
                    {0, 1, 2,  // x
                     0, 0, 1},
                    {10, -1,  // constant
                     20, -2,  //
                     30, -3});
  }
  void ExpectRefused(const Change& change) {
    CRApproxMod models = Usual();
    change(models);
    models.PutObject();
    ExpectNoReport<CInvalidArgument>(Report);
  }
};

TEST_F(FinalModelReport, OfEachResponseOnTheTermsOfAll) {
  StoreTask({"x", "y"}, {"yield", "cost"});
  Usual().PutObject();
  EXPECT_EQ(TextOf(Report),
            "                          FINAL APPROXIMATION MODEL                              \n"
            "================================================================================\n"
            "        Independent response: yield                                             \n"
            "             Number of terms: 3\n"
            "--------------------------------------------------------------------------------\n"
            "          Term             Coefficient\n"
            "------------------------  ------------\n"
            "               Constant        10.000\n"
            "                      x        20.000\n"
            "               x**2 * y        30.000\n"
            "================================================================================\n"
            "\n"
            "                          FINAL APPROXIMATION MODEL                              \n"
            "================================================================================\n"
            "        Independent response: cost                                              \n"
            "             Number of terms: 3\n"
            "--------------------------------------------------------------------------------\n"
            "          Term             Coefficient\n"
            "------------------------  ------------\n"
            "               Constant       -1.0000\n"
            "                      x       -2.0000\n"
            "               x**2 * y       -3.0000\n"
            "================================================================================\n"
            "\n");
}

TEST_F(FinalModelReport, OfNoTermsHasAnEmptyTable) {
  StoreTask({"x"}, {"yield"});
  ModelsOf(1, 0, 1, {}, {}).PutObject();
  EXPECT_EQ(TextOf(Report),
            title +
                "        Independent response: yield                                             \n"
                "             Number of terms: 0\n" +
                tableHead + reportEnd);
}

TEST_F(FinalModelReport, OfNoVariablesHasConstantsOnly) {
  StoreTask({}, {"yield"});
  ModelsOf(0, 1, 1, {}, {0.125}).PutObject();
  EXPECT_EQ(TextOf(Report),
            title +
                "        Independent response: yield                                             \n"
                "             Number of terms: 1\n" +
                tableHead + "               Constant       0.12500\n" + reportEnd);
}

TEST_F(FinalModelReport, OfNoResponsesIsEmpty) {
  StoreTask({"x"}, {"yield"});
  ModelsOf(1, 2, 0, {0, 1}, {}).PutObject();
  EXPECT_EQ(TextOf(Report), "");
}

TEST_F(FinalModelReport, OfFewerVariablesAndResponsesThanTheTaskHas) {
  StoreTask({"x", "y"}, {"yield", "cost"});
  ModelsOf(1, 1, 1, {1}, {5}).PutObject();
  EXPECT_EQ(TextOf(Report),
            title +
                "        Independent response: yield                                             \n"
                "             Number of terms: 1\n" +
                tableHead + "                      x        5.0000\n" + reportEnd);
}

TEST_F(FinalModelReport, ContinuesLongNamesOnLinesOfTheirOwn) {
  StoreTask({"thickness_of_the_plate_1"}, {std::string(51, 'r')});
  ModelsOf(1, 2, 1, {1, 3}, {1, 2}).PutObject();
  EXPECT_EQ(TextOf(Report),
            title +
                "        Independent response: rrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrr\n"
                "                              r                                                 \n"
                "             Number of terms: 2\n" +
                tableHead +
                "thickness_of_the_plate_        1.0000\n"
                "1                      \n"
                "thickness_of_the_plate_        2.0000\n"
                "1**3                   \n" +
                reportEnd);
}

// ---- Failures ----

TEST_F(FinalModelReport, OfShapesThatDoNotFitIsAnInvalidArgument) {
  StoreTask({"x", "y"}, {"yield", "cost"});
  const Change changes[] = {
      [](CRApproxMod& models) { models.m_Model.resize(5); },
      [](CRApproxMod& models) { models.m_Model.resize(7); },
      [](CRApproxMod& models) { models.m_Coeff.resize(5); },
      [](CRApproxMod& models) { models.m_Coeff.resize(0); },
      [](CRApproxMod& models) { models.m_nRowMod = 3; },
      [](CRApproxMod& models) { models.m_nRowMod = -2; },
      [](CRApproxMod& models) { models.m_nColMod = -3; },
      [](CRApproxMod& models) { models.m_nRowCoeff = -3; },
      [](CRApproxMod& models) { models.m_nColCoeff = -2; },
      [](CRApproxMod& models) { models.m_nRowMod = models.m_nColMod = 2147483647; },
      [](CRApproxMod& models) {  // three terms and two
        models.m_nRowCoeff = 2;
        models.m_nColCoeff = 3;
      },
  };
  for (const Change& change : changes) {
    SCOPED_TRACE(&change - changes);
    ExpectRefused(change);
  }
}

TEST_F(FinalModelReport, OfMoreVariablesOrResponsesThanTheTaskHasIsAnInvalidArgument) {
  StoreTask({"x"}, {"yield", "cost"});
  ExpectRefused([](CRApproxMod&) {});
  StoreTask({"x", "y"}, {"yield"});
  ExpectRefused([](CRApproxMod&) {});
}

TEST_F(FinalModelReport, OfEndlessResponsesWithoutTermsIsAnInvalidArgument) {
  StoreTask({"x", "y"}, {"yield"});
  ModelsOf(2, 0, 2147483647, {}, {}).PutObject();
  ExpectNoReport<CInvalidArgument>(Report);
}

TEST_F(FinalModelReport, NeedsTheModelsTheTaskAndItsTables) {
  StoreTask({"x", "y"}, {"yield", "cost"});
  CRApproxMod models = Usual();
  models.PutObject();
  ExpectToNeed(Report, models, task, vars, resps);
}

TEST_F(FinalModelReport, OfAnImpossibleTaskIsAnInvalidKey) {
  for (const int taskID : {0, -1}) {
    ExpectNoReport<CInvalidKey>(
        [taskID](POD* pod, std::FILE* stream) { CRApproxMod::Dump(pod, stream, taskID); });
  }
}

TEST_F(FinalModelReport, OfADamagedRecordIsNotPrintedInPart) {
  StoreTask({"x", "y"}, {"yield", "cost"});
  CRApproxMod models = Usual();
  models.PutObject();
  ExpectNoReportOnceDamaged(Report, models);
}

TEST_F(FinalModelReport, NeedsAnOpenDatabaseAStreamAndTheLock) {
  ExpectChecksOfArguments(Report);
}

}  // namespace
