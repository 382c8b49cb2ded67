#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "task/DCons.h"
#include "tests/task/SubjectTables.h"
#include "tests/task/TableReportTests.h"

// The report of a task's constraints.

namespace {

INSTANTIATE_TYPED_TEST_SUITE_P(OfConstraints, TaskTableReport, CDCons);

const std::string head =
    "                         DESIGN CONSTRAINT INFORMATION\n"
    "================================================================================\n"
    "    Subject      Subject   Subject                               Scale\n"
    "     Name         Index      Type    Bound        Limit          Factor\n"
    "--------------  ---------  -------  -------  --------------  --------------\n";

struct Constraint {
  int kind;
  long position;
  int side;
  double bound;
  double scale;
};

class ConstraintReport : public testing::Test {
 protected:
  CDCons Constraints(const std::vector<Constraint>& list) {
    CDCons cons(study.Pod());
    cons.m_nID = 1;
    for (const Constraint& constraint : list) {
      cons.m_vnSubj.emplace_back(constraint.position);
      cons.m_vnSubjType.emplace_back(constraint.kind);
      cons.m_vnMult.emplace_back(constraint.side);
      cons.m_vfBound.emplace_back(constraint.bound);
      cons.m_vfScale.emplace_back(constraint.scale);
    }
    return cons;
  }
  void StoreSubjects() {
    StoreVars(study.Pod(), 1);
    StoreResps(study.Pod(), 1);
  }
  std::string Report(const std::vector<Constraint>& list) {
    StoreSubjects();
    Constraints(list).PutObject();
    return ReportOf<CDCons>(study.Pod(), 1);
  }

  Study study;
};

TEST_F(ConstraintReport, OfNoConstraintsIsAnEmptyTable) {
  EXPECT_EQ(Report({}), head + reportEnd);
}

TEST_F(ConstraintReport, OfNoConstraintsNeedsNoSubjects) {
  Constraints({}).PutObject();
  EXPECT_EQ(ReportOf<CDCons>(study.Pod(), 1), head + reportEnd);
}

TEST_F(ConstraintReport, OfALowerAndAnUpperBound) {
  EXPECT_EQ(Report({{24, 0, -1, 1.5, 1.0}, {24, 0, 1, 20.0, 2.5}}),
            head +
                "        weight          0   IResp     Lower        1.500000        1.000000\n"
                "        weight          0   IResp     Upper        20.00000        2.500000\n" +
                reportEnd);
}

TEST_F(ConstraintReport, OfAllKinds) {
  EXPECT_EQ(Report({{21, 0, -1, 0.0, 1.0},
                    {22, 0, 1, -5.0, 5.0},
                    {24, 0, 1, 1e9, 1e9},
                    {25, 0, -1, 123456.78, 0.001},
                    {26, 0, 1, 1.0 / 3, 1.0}}),
            "                         DESIGN CONSTRAINT INFORMATION\n"
            "================================================================================\n"
            "    Subject      Subject   Subject                               Scale\n"
            "     Name         Index      Type    Bound        Limit          Factor\n"
            "--------------  ---------  -------  -------  --------------  --------------\n"
            "         depth          0   LDVar     Lower        0.000000        1.000000\n"
            "          area          0   SDVar     Upper       -5.000000        5.000000\n"
            "        weight          0   IResp     Upper    1.000000e+09    1.000000e+09\n"
            "          copy          0   LResp     Lower        123456.8     0.001000000\n"
            "         ratio          0   SResp     Upper       0.3333333        1.000000\n"
            "================================================================================\n"
            "\n");
}

TEST_F(ConstraintReport, NamesTheSubjectAtThePosition) {
  EXPECT_EQ(Report({{26, 1, -1, 1.0, 1.0}, {26, 0, -1, 1.0, 1.0}}),
            head +
                "buckling_facto          1   SResp     Lower        1.000000        1.000000\n"
                "r             \n"
                "         ratio          0   SResp     Lower        1.000000        1.000000\n" +
                reportEnd);
}

TEST_F(ConstraintReport, CutsLongNamesOverLines) {
  EXPECT_EQ(Report({{21, 1, -1, 1.0, 1.0}, {22, 1, 1, 2.0, 2.0}, {24, 1, 1, 3.0, 3.0}}),
            head +
                "a_link_of_fift          1   LDVar     Lower        1.000000        1.000000\n"
                "een           \n"
                "a_function_of_          1   SDVar     Upper        2.000000        2.000000\n"
                "the_variables_\n"
                "with_a_name_of\n"
                "_43           \n"
                "stress_at_uppe          1   IResp     Upper        3.000000        3.000000\n"
                "r_flange      \n" +
                reportEnd);
}

TEST_F(ConstraintReport, LeavesAnEmptyNameBlank) {
  EXPECT_EQ(Report({{25, 1, -1, 1.0, 1.0}}),
            head + "                        1   LResp     Lower        1.000000        1.000000\n" +
                reportEnd);
}

TEST_F(ConstraintReport, TellsErrorForAKindThatHasNoConstraints) {
  EXPECT_EQ(Report({{20, 0, -1, 1.0, 1.0},
                    {23, 0, -1, 1.0, 1.0},
                    {19, 7, -1, 1.0, 1.0},
                    {27, -7, 1, 1.0, 1.0},
                    {0, 2147483647, 1, 1.0, 1.0}}),
            head +
                "                        0    ERROR    Lower        1.000000        1.000000\n"
                "                        0    ERROR    Lower        1.000000        1.000000\n"
                "                        7    ERROR    Lower        1.000000        1.000000\n"
                "                       -7    ERROR    Upper        1.000000        1.000000\n"
                "                2147483647    ERROR    Upper        1.000000        1.000000\n" +
                reportEnd);
}

TEST_F(ConstraintReport, TakesEverySideButTheLowerOneForTheUpper) {
  EXPECT_EQ(Report({{24, 0, 0, 1.0, 1.0}, {24, 0, -2, 1.0, 1.0}}),
            head +
                "        weight          0   IResp     Upper        1.000000        1.000000\n"
                "        weight          0   IResp     Upper        1.000000        1.000000\n" +
                reportEnd);
}

TEST_F(ConstraintReport, ShowsPercentSignsAsTheyAre) {
  CDResp resps = StoreResps(study.Pod(), 1);
  resps.m_vstrIndName = {"%s%n%d"};
  resps.PutObject();
  Constraints({{24, 0, 1, 1.0, 1.0}}).PutObject();
  EXPECT_EQ(ReportOf<CDCons>(study.Pod(), 1),
            head + "        %s%n%d          0   IResp     Upper        1.000000        1.000000\n" +
                reportEnd);
}

TEST_F(ConstraintReport, IsThatOfTheTaskAskedFor) {
  StoreSubjects();
  CDCons cons = Constraints({{24, 0, 1, 1.0, 1.0}});
  cons.m_nID = 2;
  cons.PutObject();
  StoreVars(study.Pod(), 2);
  CDResp resps = StoreResps(study.Pod(), 2);
  resps.m_vstrIndName = {"second"};
  resps.PutObject();
  Constraints({{24, 0, -1, 1.0, 1.0}}).PutObject();
  EXPECT_EQ(ReportOf<CDCons>(study.Pod(), 2),
            head + "        second          0   IResp     Upper        1.000000        1.000000\n" +
                reportEnd);
}

// ---- Tables that don't fit each other ----

TEST_F(ConstraintReport, OfASubjectOutsideItsTableIsNotPrinted) {
  StoreSubjects();
  for (const int kind : {21, 22, 24, 25, 26}) {
    for (const long position : {2L, -1L, 2147483647L, -2147483648L}) {
      SCOPED_TRACE(std::to_string(kind) + " at " + std::to_string(position));
      Constraints({{24, 0, 1, 1.0, 1.0}, {kind, position, 1, 1.0, 1.0}}).PutObject();
      ExpectNoReport<CDCons, CInvalidArgument>(study.Pod(), 1);
    }
  }
}

TEST_F(ConstraintReport, OfVariablesNeedsTheVariablesOnly) {
  StoreVars(study.Pod(), 1);
  Constraints({{21, 0, 1, 1.0, 1.0}}).PutObject();
  EXPECT_EQ(ReportOf<CDCons>(study.Pod(), 1),
            head + "         depth          0   LDVar     Upper        1.000000        1.000000\n" +
                reportEnd);
  Constraints({{24, 0, 1, 1.0, 1.0}}).PutObject();
  ExpectNoReport<CDCons, CObjectNotFound>(study.Pod(), 1);
}

TEST_F(ConstraintReport, OfResponsesNeedsTheResponsesOnly) {
  StoreResps(study.Pod(), 1);
  Constraints({{26, 0, 1, 1.0, 1.0}}).PutObject();
  EXPECT_EQ(ReportOf<CDCons>(study.Pod(), 1),
            head + "         ratio          0   SResp     Upper        1.000000        1.000000\n" +
                reportEnd);
  Constraints({{22, 0, 1, 1.0, 1.0}}).PutObject();
  ExpectNoReport<CDCons, CObjectNotFound>(study.Pod(), 1);
}

TEST_F(ConstraintReport, OfColumnsThatAreTooShortIsNotPrinted) {
  StoreSubjects();
  const std::vector<Constraint> two{{24, 0, 1, 1.0, 1.0}, {24, 0, -1, 1.0, 1.0}};
  for (auto column : {&CDCons::m_vnSubjType, &CDCons::m_vnMult}) {
    CDCons cons = Constraints(two);
    (cons.*column).pop_back();
    cons.PutObject();
    ExpectNoReport<CDCons, CInvalidArgument>(study.Pod(), 1);
  }
  for (auto column : {&CDCons::m_vfBound, &CDCons::m_vfScale}) {
    CDCons cons = Constraints(two);
    (cons.*column).pop_back();
    cons.PutObject();
    ExpectNoReport<CDCons, CInvalidArgument>(study.Pod(), 1);
  }
}

}  // namespace
