#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/task/DRespReports.h"

namespace {

// ---- The table ----

TEST_F(ResponseReports, AreNothingForATaskWithoutResponses) {
  AddIndependent(11, "Mass");
  Store();
  for (const int task : {6, 0, -1}) EXPECT_EQ(ReportOf<CDResp>(task), "");
}

TEST_F(ResponseReports, HaveNoRowsForAnEmptyTable) {
  EXPECT_EQ(Report(), head + reportEnd);
}

TEST_F(ResponseReports, HaveARowForEachResponse) {
  AddIndependent(11, "Mass");
  AddIndependent(12345, "FourteenLetter");
  EXPECT_EQ(Report(), head +
                          "       1  IResp    No              Mass     11     none\n"
                          "       2  IResp    No    FourteenLetter  12345     none\n" +
                          reportEnd);
}

TEST_F(ResponseReports, NeedNoOtherTableForIndependentResponses) {
  AddIndependent(11, "Mass");
  resps.PutObject();
  EXPECT_EQ(ReportOf<CDResp>(),
            head + "       1  IResp    No              Mass     11     none\n" + reportEnd);
}

TEST_F(ResponseReports, MarkPassFailResponses) {
  AddIndependent(11, "Converged", true);
  AddIndependent(12, "Mass");
  EXPECT_EQ(Report(), head +
                          "       1  IResp*   No         Converged     11     none\n"
                          "       2  IResp    No              Mass     12     none\n"
                          "* - pass/fail\n" +
                          reportEnd);
}

TEST_F(ResponseReports, MarkNoneWithoutPassFailMarks) {
  AddIndependent(11, "Converged", true);
  resps.m_vnPassFail.clear();
  EXPECT_EQ(Report(),
            head + "       1  IResp    No         Converged     11     none\n" + reportEnd);
}

TEST_F(ResponseReports, FollowTheOrderOfTransfer) {
  AddIndependent(11, "first");
  AddIndependent(12, "second", true);
  resps.m_vnSeq = {1, 0};
  EXPECT_EQ(Report(), head +
                          "       1  IResp*   No            second     12     none\n"
                          "       2  IResp    No             first     11     none\n"
                          "* - pass/fail\n" +
                          reportEnd);
}

TEST_F(ResponseReports, ContinueALongNameUnderItsColumn) {
  AddIndependent(1, "Stress_at_the_upper_edge_of_it");
  EXPECT_EQ(Report(), head +
                          "       1  IResp    No    Stress_at_the_      1     none\n"
                          "                         upper_edge_of_\n"
                          "                         it\n" +
                          reportEnd);
}

// ---- Everything at once ----

TEST_F(ResponseReports, HaveAllSectionsForATaskWithEverything) {
  AddIndependent(11, "Mass");
  AddIndependent(12, "Converged", true);
  AddLinked(21, "Cost", 71, {0, 0, 0, 0, 0}, {20, 21, 22, 23, 24});
  AddSynthetic(31, "Stress_at_the_edge", 1234567, {1, 0, 0, 0, 0, 0}, {20, 21, 22, 23, 24, 25},
               {1, 1, 1, 1, 2, 1});
  resps.m_vnRandIndex = {0, -1, -1, 0};
  resps.m_vnRBOParam = {-1, 0, 0, -2};
  AddLink(71, {0.5, 1.0, -2.0, 3.0, 4.0, 1e-9});
  AddFunction(1234567, "stress");
  EXPECT_EQ(Report(),
            head +
                "       1  IResp    Yes             Mass     11     none\n"
                "       2  IResp*   No         Converged     12     none\n"
                "       3  LResp    No              Cost     21       71\n"
                "       4  SResp    Yes   Stress_at_the_     31  1234567\n"
                "                         edge\n"
                "* - pass/fail\n" +
                randomHead +
                "    1  Mass          Mean Value      \n"
                "    4  Stress    Standard Deviation  \n"
                "       _at_th\n"
                "       e_edge\n" +
                functionHead +
                "       4  Stress_at_the_  stress(x_2, lx, sx, cx, Mass(2), Cost)\n"
                "          edge            \n" +
                linkHead +
                "       3            Cost  0.5 + x_1*1 + lx*-2 + sx*3 + cx*4 + Mass*1e-09\n" +
                reportEnd);
}

// ---- Random responses ----

TEST_F(ResponseReports, NameEachParameter) {
  for (int i = 0; i < 11; ++i) AddIndependent(1, "r");
  resps.m_vnRandIndex = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
  resps.m_vnRBOParam = {-5, -4, -3, -2, -1, 0, 1, 2, 3, 4, -6};
  const std::string report = Report();
  EXPECT_EQ(report.substr(report.find(randomHead)), randomHead +
                                                        "    1  r         Parallel System POF \n"
                                                        "    2  r          Series System POF  \n"
                                                        "    3  r       Probability of Failure\n"
                                                        "    4  r         Standard Deviation  \n"
                                                        "    5  r             Mean Value      \n"
                                                        "    6  r            1st Parameter    \n"
                                                        "    7  r            2nd Parameter    \n"
                                                        "    8  r            3rd Parameter    \n"
                                                        "    9  r            4th Parameter    \n"
                                                        "   10  r                ????         \n"
                                                        "   11  r                ????         \n" +
                                                        reportEnd);
}

TEST_F(ResponseReports, TakeWhatIsMissingAboutRandomnessAsNone) {
  AddIndependent(1, "a");
  AddIndependent(2, "b");
  resps.m_vnRandIndex = {3};
  EXPECT_EQ(Report(), head +
                          "       1  IResp    Yes                a      1     none\n"
                          "       2  IResp    No                 b      2     none\n" +
                          randomHead + "    1  a            1st Parameter    \n" + reportEnd);
}

// ---- Damage ----

TEST_F(ResponseReports, CheckTheirArguments) {
  ExpectChecksOfArguments<CDResp>();
}

TEST_F(ResponseReports, ShowAnUnknownKindInItsRowAndFail) {
  for (const int kind : {20, 23, 27, 0, -1, 2147483647}) {
    Clear();
    AddIndependent(7, "Mass");
    AddEntry(kind, 0);
    EXPECT_EQ(ReportUntilError<CInvalidType>(),
              head + "       1  IResp    No              Mass      7     none\n" +
                  "       2   ERROR - invalid DResp type (" + std::to_string(kind) + ")\n");
  }
}

TEST_F(ResponseReports, RefuseASubjectThatAFunctionCannotTake) {
  AddFunction(81, "f");
  for (const int kind : {0, 19, 26, 27, -1}) {
    Clear();
    AddSynthetic(3, "s", 81, {0, 0}, {20, kind}, {1, 1});
    EXPECT_EQ(ReportUntilError<CInvalidSubject>(),
              head + "       1  SResp    No                 s      3       81\n" + functionHead +
                  "ERROR: Invalid subject type for synthetic DResp 1\n")
        << kind;
  }
}

TEST_F(ResponseReports, RefuseASubjectThatALinkCannotTake) {
  AddLink(71, {0.0, 1.0, 2.0});
  for (const int kind : {0, 19, 25, 26, 27, -1}) {
    Clear();
    AddIndependent(2, "i");
    AddLinked(3, "l", 71, {0, 0}, {24, kind});
    EXPECT_EQ(ReportUntilError<CInvalidSubject>(),
              head +
                  "       1  IResp    No                 i      2     none\n"
                  "       2  LResp    No                 l      3       71\n" +
                  linkHead + "ERROR: Invalid subject type for linked DResp 2\n")
        << kind;
  }
}

TEST_F(ResponseReports, TakeAMissingLengthAsOne) {
  AddSynthetic(3, "s", 81, {0, 1}, {20, 20}, {});
  resps.m_mnSynLen.clear();
  AddFunction(81, "f");
  EXPECT_EQ(Report(), head + "       1  SResp    No                 s      3       81\n" +
                          functionHead + "       1               s  f(x_1, x_2)\n" + reportEnd);
}

TEST_F(ResponseReports, NeedTheTablesThatTheyReferTo) {
  AddLinked(2, "l", 71, {0}, {20});
  AddSynthetic(3, "s", 81, {0}, {20}, {1});
  AddLink(71, {0.0, 1.0});
  AddFunction(81, "f");
  Store();
  EXPECT_NO_THROW(ReportOf<CDResp>());
  for (vbPersistent* sister :
       {static_cast<vbPersistent*>(&vars), static_cast<vbPersistent*>(&functions),
        static_cast<vbPersistent*>(&links)}) {
    Store();
    ASSERT_TRUE(sister->RemoveObject());
    ReportUntil<CDResp, CObjectNotFound>();
  }
}

TEST_F(ResponseReports, NeedTheDefinitionsThatTheyReferTo) {
  AddLinked(2, "l", 72, {}, {});
  AddLink(71, {0.0});
  ReportUntilError<CObjectNotFound>();
  Clear();
  AddSynthetic(3, "s", 82, {}, {}, {});
  AddFunction(81, "f");
  ReportUntilError<CObjectNotFound>();
}

TEST_F(ResponseReports, AreRefusedForPositionsOutsideTheTables) {
  for (const int position : {-1, 1, 2147483647}) {
    for (const int kind : {24, 25, 26}) {
      Clear();
      AddIndependent(2, "i");
      AddEntry(kind, static_cast<std::size_t>(position));
      ReportUntilError<CInvalidArgument>();
    }
  }
}

TEST_F(ResponseReports, AreRefusedForSubjectsOutsideTheTables) {
  AddFunction(81, "f");
  for (const int position : {-1, 2, 2147483647}) {
    for (const int kind : {20, 21, 22, 23, 24, 25}) {
      Clear();
      AddSynthetic(3, "s", 81, {position}, {kind}, {1});
      ReportUntilError<CInvalidArgument>();
    }
  }
}

TEST_F(ResponseReports, AreRefusedForColumnsShorterThanTheirFellows) {
  AddLink(71, {1.0, 2.0});
  AddFunction(81, "f");
  const auto expectRefusal = [this](auto column) {
    Clear();
    AddIndependent(1, "i");
    AddLinked(2, "l", 71, {0}, {20});
    AddSynthetic(3, "s", 81, {0}, {20}, {1});
    (resps.*column).resize(0);
    ReportUntilError<CInvalidArgument>();
  };
  for (const auto column : {&CDResp::m_vnSeq, &CDResp::m_vnIndIDs, &CDResp::m_vnLinkIDs,
                            &CDResp::m_vnSynIDs, &CDResp::m_vnLinkRef, &CDResp::m_vnSynRef}) {
    expectRefusal(column);
  }
  for (const auto column :
       {&CDResp::m_vstrIndName, &CDResp::m_vstrLinkName, &CDResp::m_vstrSynName}) {
    expectRefusal(column);
  }
  for (const auto column :
       {&CDResp::m_mnLinkSubj, &CDResp::m_mnLinkType, &CDResp::m_mnSynSubj, &CDResp::m_mnSynType}) {
    expectRefusal(column);
  }
}

}  // namespace
