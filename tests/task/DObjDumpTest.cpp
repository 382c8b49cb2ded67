#include <gtest/gtest.h>

#include <string>
#include <valarray>
#include <vector>

#include "task/DObj.h"
#include "tests/task/SubjectTables.h"
#include "tests/task/TableReportTests.h"

// The report of a task's objective terms.

namespace {

INSTANTIATE_TYPED_TEST_SUITE_P(OfObjectives, TaskTableReport, CDObj);

const std::string head =
    "                          DESIGN OBJECTIVE INFORMATION\n"
    "================================================================================\n"
    "    Subject     Subject  Subject      Worst          Weight\n"
    "     Name        Index     Type       Value          Factor         Target\n"
    "--------------  -------  -------  -------------  -------------  -------------\n";

struct Term {
  int kind;
  long position;
  int goal;
  int hasWorst = 0;
  double worst = 0.0;
  double weight = 1.0;
  double target = 0.0;
};

class ObjectiveReport : public testing::Test {
 protected:
  CDObj Terms(const std::vector<Term>& list) {
    CDObj terms(study.Pod());
    terms.m_nID = 1;
    terms.m_vnGoal.resize(list.size());
    terms.m_vnHasWorst.resize(list.size());
    terms.m_vfWorst.resize(list.size());
    terms.m_vfWeight.resize(list.size());
    terms.m_vfTarget.resize(list.size());
    for (std::size_t i = 0; i < list.size(); ++i) {
      terms.m_vnSubj.emplace_back(list[i].position);
      terms.m_vnSubjType.emplace_back(list[i].kind);
      terms.m_vnGoal[i] = list[i].goal;
      terms.m_vnHasWorst[i] = list[i].hasWorst;
      terms.m_vfWorst[i] = list[i].worst;
      terms.m_vfWeight[i] = list[i].weight;
      terms.m_vfTarget[i] = list[i].target;
    }
    return terms;
  }
  void StoreSubjects() {
    StoreVars(study.Pod(), 1);
    StoreResps(study.Pod(), 1);
  }
  std::string Report(const std::vector<Term>& list) {
    StoreSubjects();
    Terms(list).PutObject();
    return ReportOf<CDObj>(study.Pod(), 1);
  }

  Study study;
};

TEST_F(ObjectiveReport, OfNoTermsIsAnEmptyTable) {
  EXPECT_EQ(Report({}), head + reportEnd);
}

TEST_F(ObjectiveReport, OfOneTerm) {
  EXPECT_EQ(Report({{24, 0, 0}}),
            head +
                "        weight        0   IResp       Undefined        1.00000       Minimize\n" +
                reportEnd);
}

TEST_F(ObjectiveReport, OfAllKindsAndGoals) {
  EXPECT_EQ(Report({{20, 1, 0, 1, 100.5, 2.0, 7.0},
                    {21, 0, 1, 0, 100.5, 0.5, 7.0},
                    {22, 0, 2, 5, -1e10, 1e-5, -3.25},
                    {24, 0, 0, -1, 0.0, -1.0, 7.0},
                    {25, 0, 1, 1, 1234567.0, 123456.7, 7.0},
                    {26, 0, 2, 0, 1.0, 1.0, 1e30}}),
            "                          DESIGN OBJECTIVE INFORMATION\n"
            "================================================================================\n"
            "    Subject     Subject  Subject      Worst          Weight\n"
            "     Name        Index     Type       Value          Factor         Target\n"
            "--------------  -------  -------  -------------  -------------  -------------\n"
            "        height        1   IDVar         100.500        2.00000       Minimize\n"
            "         depth        0   LDVar       Undefined       0.500000       Maximize\n"
            "          area        0   SDVar    -1.00000e+10    1.00000e-05       -3.25000\n"
            "        weight        0   IResp         0.00000       -1.00000       Minimize\n"
            "          copy        0   LResp     1.23457e+06        123457.       Maximize\n"
            "         ratio        0   SResp       Undefined        1.00000    1.00000e+30\n"
            "================================================================================\n"
            "\n");
}

TEST_F(ObjectiveReport, ShowsTheLongestNumbersWhole) {
  EXPECT_EQ(Report({{24, 0, 2, 1, -1e-300, -1e300, -1.23456e-100}}),
            head +
                "        weight        0   IResp   -1.00000e-300  -1.00000e+300  -1.23456e-100\n" +
                reportEnd);
}

TEST_F(ObjectiveReport, CutsLongNamesOverLines) {
  EXPECT_EQ(Report({{20, 2, 0}, {22, 1, 0}, {26, 1, 1}, {24, 1, 1}}),
            head +
                "fourteen_chars        2   IDVar       Undefined        1.00000       Minimize\n"
                "a_function_of_        1   SDVar       Undefined        1.00000       Minimize\n"
                "the_variables_\n"
                "with_a_name_of\n"
                "_43           \n"
                "buckling_facto        1   SResp       Undefined        1.00000       Maximize\n"
                "r             \n"
                "stress_at_uppe        1   IResp       Undefined        1.00000       Maximize\n"
                "r_flange      \n" +
                reportEnd);
}

TEST_F(ObjectiveReport, LeavesAnEmptyNameBlank) {
  EXPECT_EQ(Report({{25, 1, 0}}),
            head +
                "                      1   LResp       Undefined        1.00000       Minimize\n" +
                reportEnd);
}

TEST_F(ObjectiveReport, TellsErrorForAKindThatIsNoObjective) {
  EXPECT_EQ(
      Report({{23, 0, 0}, {19, 7, 1}, {27, -7, 0}, {0, 2147483647, 0}}),
      head +
          "                      0    ERROR      Undefined        1.00000       Minimize\n"
          "                      7    ERROR      Undefined        1.00000       Maximize\n"
          "                     -7    ERROR      Undefined        1.00000       Minimize\n"
          "                2147483647    ERROR      Undefined        1.00000       Minimize\n" +
          reportEnd);
}

TEST_F(ObjectiveReport, TellsErrorForAnUnknownGoal) {
  EXPECT_EQ(Report({{24, 0, 3, 1, 1.0, 1.0, 2.0}, {24, 0, -1}}),
            head +
                "        weight        0   IResp         1.00000        1.00000          ERROR\n"
                "        weight        0   IResp       Undefined        1.00000          ERROR\n" +
                reportEnd);
}

TEST_F(ObjectiveReport, IsThatOfTheTaskAskedFor) {
  StoreSubjects();
  Terms({{24, 0, 1}}).PutObject();
  CDObj terms = Terms({{24, 0, 0}});
  terms.m_nID = 2;
  terms.PutObject();
  CDResp resps = StoreResps(study.Pod(), 2);
  resps.m_vstrIndName = {"second"};
  resps.PutObject();
  EXPECT_EQ(ReportOf<CDObj>(study.Pod(), 2),
            head +
                "        second        0   IResp       Undefined        1.00000       Minimize\n" +
                reportEnd);
}

// ---- Tables that don't fit each other ----

TEST_F(ObjectiveReport, OfASubjectOutsideItsTableIsNotPrinted) {
  StoreSubjects();
  for (const int kind : {20, 21, 22, 24, 25, 26}) {
    for (const long position : {3L, -1L, 2147483647L, -2147483648L}) {
      SCOPED_TRACE(std::to_string(kind) + " at " + std::to_string(position));
      Terms({{24, 0, 0}, {kind, position, 0}}).PutObject();
      ExpectNoReport<CDObj, CInvalidArgument>(study.Pod(), 1);
    }
  }
}

TEST_F(ObjectiveReport, WithoutTheTableOfItsSubjectIsNotPrinted) {
  StoreVars(study.Pod(), 1);
  Terms({{24, 0, 0}}).PutObject();
  ExpectNoReport<CDObj, CObjectNotFound>(study.Pod(), 1);
  CDVar vars(study.Pod());
  vars.m_nID = 1;
  ASSERT_TRUE(vars.RemoveObject());
  StoreResps(study.Pod(), 1);
  Terms({{20, 0, 0}}).PutObject();
  ExpectNoReport<CDObj, CObjectNotFound>(study.Pod(), 1);
}

template <class Number>
std::valarray<Number> First(const std::valarray<Number>& numbers) {
  return {numbers[0]};
}

TEST_F(ObjectiveReport, OfColumnsThatAreTooShortIsNotPrinted) {
  StoreSubjects();
  const std::vector<Term> two{{24, 0, 2, 1}, {24, 0, 2, 1}};
  CDObj terms = Terms(two);
  terms.m_vnSubjType.pop_back();
  terms.PutObject();
  ExpectNoReport<CDObj, CInvalidArgument>(study.Pod(), 1);
  for (auto column : {&CDObj::m_vnGoal, &CDObj::m_vnHasWorst}) {
    terms = Terms(two);
    terms.*column = First(terms.*column);
    terms.PutObject();
    ExpectNoReport<CDObj, CInvalidArgument>(study.Pod(), 1);
  }
  for (auto column : {&CDObj::m_vfWorst, &CDObj::m_vfWeight, &CDObj::m_vfTarget}) {
    terms = Terms(two);
    terms.*column = First(terms.*column);
    terms.PutObject();
    ExpectNoReport<CDObj, CInvalidArgument>(study.Pod(), 1);
  }
}

TEST_F(ObjectiveReport, NeedsNoValuesThatItDoesNotShow) {
  StoreSubjects();
  CDObj terms = Terms({{24, 0, 0}});
  terms.m_vfWorst.resize(0);
  terms.m_vfTarget.resize(0);
  terms.PutObject();
  EXPECT_EQ(ReportOf<CDObj>(study.Pod(), 1),
            head +
                "        weight        0   IResp       Undefined        1.00000       Minimize\n" +
                reportEnd);
}

}  // namespace
