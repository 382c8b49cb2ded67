#include <gtest/gtest.h>

#include <string>

#include "tests/task/DVarReports.h"

namespace {

// ---- The table ----

TEST_F(VariableReports, AreNothingForATaskWithoutVariables) {
  AddIndependent(11, "Width", 0.5, 10.0);
  Store();
  for (const int task : {6, 0, -1}) EXPECT_EQ(ReportOf<CDVar>(task), "");
}

TEST_F(VariableReports, HaveNoRowsForAnEmptyTable) {
  EXPECT_EQ(Report(), head + reportEnd);
}

TEST_F(VariableReports, HaveARowForEachVariable) {
  AddIndependent(11, "Width", 0.5, 10.0);
  AddIndependent(12345, "FourteenLetter", -2147483600.0, 1e30);
  EXPECT_EQ(
      Report(),
      head +
          "       1  IDVar    No             Width     11     none      0.50000      10.000\n"
          "       2  IDVar    No    FourteenLetter  12345     none  -2.1475e+09  1.0000e+30\n" +
          reportEnd);
}

TEST_F(VariableReports, FollowTheOrderOfTransfer) {
  AddIndependent(11, "first", 1.0, 2.0);
  AddIndependent(12, "second", 3.0, 4.0);
  AddConstant(13, "third");
  vars.m_vnSeq = {1, 0, 0};
  vars.m_vnType = {20, 23, 20};
  EXPECT_EQ(
      Report(),
      head +
          "       1  IDVar    No            second     12     none       3.0000      4.0000\n"
          "       2  CDVar    No             third     13\n"
          "       3  IDVar    No             first     11     none       1.0000      2.0000\n" +
          reportEnd);
}

TEST_F(VariableReports, ShowConstantsWithoutBounds) {
  AddConstant(7, "Load");
  AddConstant(8, "");
  vars.m_vnConstSet = {0, 91};
  EXPECT_EQ(Report(), head +
                          "       1  CDVar    No              Load      7\n"
                          "       2  CDVar    No                        8\n" +
                          reportEnd);
}

TEST_F(VariableReports, MarkIntegers) {
  AddIndependent(1, "Count", -3.0, 4.0, -1);
  EXPECT_EQ(Report(),
            head +
                "       1  IDVar+   No             Count      1     none      -3.0000      4.0000\n"
                "+ - integer  \n" +
                reportEnd);
}

TEST_F(VariableReports, MarkDiscreteOnes) {
  AddIndependent(1, "Plate", 1.0, 4.0, 91);
  AddSet(91, {1.0, 2.5, 4.0});
  EXPECT_EQ(Report(),
            head +
                "       1  IDVar*   No             Plate      1       91       1.0000      4.0000\n"
                "* - discrete   \n" +
                setHead + "       1           Plate  1, 2.5, 4\n" + reportEnd);
}

TEST_F(VariableReports, ContinueALongNameUnderItsColumn) {
  AddIndependent(1, "Thickness_of_the_plate_at_its_edge", 1.0, 4.0);
  AddConstant(2, "Load_of_the_beam");
  EXPECT_EQ(Report(),
            head +
                "       1  IDVar    No    Thickness_of_t      1     none       1.0000      4.0000\n"
                "                         he_plate_at_it\n"
                "                         s_edge\n"
                "       2  CDVar    No    Load_of_the_be      2\n"
                "                         am\n" +
                reportEnd);
}

// ---- Everything at once ----

TEST_F(VariableReports, HaveAllSectionsForATaskWithEverything) {
  AddIndependent(11, "Width", 0.5, 10.0, 0, 2.5);
  AddIndependent(12, "Thickness_of_the_plate", 1.0, 4.0, 91);
  AddIndependent(13, "Count", -3.0, 4.0, -1, 1e-7);
  AddConstant(41, "Load");
  AddLinked(21, "Twice", -1e30, 1e30, 71, {0, 0}, {20, 23});
  AddSynthetic(31, "Area", 0.0, 100.0, 1234567, {0, 1, 0, 0}, {20, 20, 21, 23}, {1, 2, 1, 0});
  vars.m_vnRandIndex = {0, -1, -1, 0, -1, -1};
  vars.m_vnRandParam = {-1, 0, 0, -2, 0, 0};
  vars.m_vnRandDist = {2};
  AddLink(70, {9.0});
  AddLink(71, {3.0, 2.0, -0.5});
  AddFunction(1234567, "area");
  AddSet(91, {1.0, 2.5, 4.0});
  EXPECT_EQ(Report(),
            head +
                "       1  IDVar    Yes            Width     11     none      0.50000      10.000\n"
                "       2  IDVar*   No    Thickness_of_t     12       91       1.0000      4.0000\n"
                "                         he_plate\n"
                "       3  IDVar+   No             Count     13     none      -3.0000      4.0000\n"
                "       4  CDVar    Yes             Load     41\n"
                "       5  LDVar    No             Twice     21       71  -1.0000e+30  1.0000e+30\n"
                "       6  SDvar    No              Area     31  1234567       0.0000      100.00\n"
                "+ - integer  * - discrete   \n" +
                scalingHead +
                "       1           Width       2.5000\n"
                "       3           Count   1.0000e-07\n" +
                randomHead +
                "    1  Width         Mean Value        LogNormal Distribution\n"
                "    4  Load      Standard Deviation    LogNormal Distribution\n" +
                linkHead + "       5           Twice  3 + Width*2 + Load*-0.5\n" + functionHead +
                "       6            Area  area(Width, Thickness_of_the_plate(2), Twice, Load)\n" +
                setHead +
                "       2  Thickness_of_t  1, 2.5, 4\n"
                "          he_plate        \n" +
                reportEnd);
}

// ---- Arguments and records ----

TEST_F(VariableReports, CheckTheirArguments) {
  ExpectChecksOfArguments<CDVar>();
}

TEST_F(VariableReports, ShowAnUnknownKindInItsRowAndFail) {
  for (const int kind : {19, 24, 0, -1, 2147483647}) {
    vars.SetDefaultAttributes();
    vars.m_nID = 5;
    AddConstant(7, "Load");
    AddEntry(kind, 0);
    EXPECT_EQ(ReportUntilError<CInvalidType>(),
              head + "       1  CDVar    No              Load      7\n" +
                  "       2   ERROR - invalid DVar type (" + std::to_string(kind) + ")\n");
  }
}

TEST_F(VariableReports, NeedTheFunctionsOfTheTask) {
  AddConstant(7, "Load");
  Store();
  functions.RemoveObject();
  EXPECT_EQ((ReportUntil<CDVar, CObjectNotFound>()),
            "ERROR: Could not dereference equation data for task (5) design variables\n");
}

TEST_F(VariableReports, NeedTheSetsOfTheTask) {
  AddConstant(7, "Load");
  Store();
  sets.RemoveObject();
  EXPECT_EQ((ReportUntil<CDVar, CObjectNotFound>()),
            "ERROR: Could not dereference set data for task (5) design variables\n");
}

TEST_F(VariableReports, NeedTheLinksOfTheTask) {
  AddConstant(7, "Load");
  Store();
  links.RemoveObject();
  EXPECT_EQ((ReportUntil<CDVar, CObjectNotFound>()),
            "ERROR: Could not dereference link data for task (5) design variables\n");
}

TEST_F(VariableReports, AreRefusedForPositionsOutsideTheTables) {
  for (const int position : {-1, 1, 2147483647}) {
    for (const int kind : {20, 21, 22, 23}) {
      vars.SetDefaultAttributes();
      vars.m_nID = 5;
      AddConstant(1, "c");
      AddIndependent(2, "x", 0.0, 1.0);
      AddEntry(kind, static_cast<std::size_t>(position));
      ReportUntilError<CInvalidArgument>();
    }
  }
}

TEST_F(VariableReports, AreRefusedForATableWithoutPositions) {
  AddConstant(1, "c");
  vars.m_vnSeq.clear();
  EXPECT_EQ(ReportUntilError<CInvalidArgument>(), "");
}

TEST_F(VariableReports, AreRefusedForColumnsShorterThanTheirFellows) {
  const auto expectRefusal = [this](auto column) {
    vars.SetDefaultAttributes();
    vars.m_nID = 5;
    AddIndependent(1, "x", 0.0, 1.0);
    AddLinked(2, "l", 0.0, 1.0, 71, {0}, {20});
    AddSynthetic(3, "s", 0.0, 1.0, 81, {0}, {20}, {1});
    AddConstant(4, "c");
    (vars.*column).resize(0);
    ReportUntilError<CInvalidArgument>();
  };
  AddLink(71, {1.0, 2.0});
  AddFunction(81, "f");
  for (const auto column :
       {&CDVar::m_vnIndIDs, &CDVar::m_vnLinkIDs, &CDVar::m_vnSynIDs, &CDVar::m_vnConstIDs,
        &CDVar::m_vnLinkRef, &CDVar::m_vnSynRef, &CDVar::m_vnDiscreteRef}) {
    expectRefusal(column);
  }
  for (const auto column :
       {&CDVar::m_vfIndLower, &CDVar::m_vfIndUpper, &CDVar::m_vfIndScale, &CDVar::m_vfLinkLower,
        &CDVar::m_vfLinkUpper, &CDVar::m_vfSynLower, &CDVar::m_vfSynUpper}) {
    expectRefusal(column);
  }
  for (const auto column : {&CDVar::m_vstrIndName, &CDVar::m_vstrLinkName, &CDVar::m_vstrSynName,
                            &CDVar::m_vstrConstName}) {
    expectRefusal(column);
  }
  for (const auto column :
       {&CDVar::m_mnLinkSubj, &CDVar::m_mnLinkType, &CDVar::m_mnSynSubj, &CDVar::m_mnSynType}) {
    expectRefusal(column);
  }
}

}  // namespace
