#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "control/DesignControl.h"
#include "definition/Input.h"
#include "store/KestErr.h"
#include "tests/support/Bytes.h"
#include "tests/support/Printed.h"
#include "tests/support/Study.h"

// The report of all Inputs.

namespace {

const std::string head =
    "                                Input Objects\n"
    "================================================================================\n"
    "                   Trans                          Initial     Lower      Upper\n"
    "DB ID     Name     Index   Size   Type  Random     Value      Bound      Bound\n"
    "-----  ----------  -----  ------  ----  ------  ---------- ---------- ----------\n";
const std::string end =
    "================================================================================\n"
    "\n";
const std::string bar =
    "--------------------------------------------------------------------------------\n";

const std::string scaleHead =
    bar + "                             User Supplied Scaling                              \n" +
    bar +
    "                     Scale   \n"
    "DB ID     Name       Factor  \n"
    "-----  ----------  ----------\n";
const std::string randomHead =
    bar + "                            Random Input Definitions\n" + bar +
    "DB ID     Name        Random Parameter       Random Distribution\n"
    "-----  ----------  ----------------------  ----------------------\n";
const std::string auxiliaryHead =
    bar + "                           Auxiliary Input Definitions\n" + bar +
    "                    Auxil\n"
    "DB ID     Name      DB ID   Type               Argument DB_ID/Index\n"
    "-----  ----------  -------  ----  ----------------------------------------------\n";
const std::string objectiveHead =
    bar + "                            Objective Input Definitions\n" + bar +
    "DB ID     Name       Goal      Worst Value      Target Value    Weight Factor\n"
    "-----  ----------  --------  ---------------  ---------------  ---------------\n";

const std::string rowOfX =
    "    1           x      1       1   ind    No         0.000 -1.000e+30  1.000e+30\n";

class InputReport : public testing::Test {
 protected:
  CInput New(int id, const std::string& name, int kind = 0) {
    CInput input(study.Pod());
    input.m_nID = id;
    input.m_strName = name;
    input.m_uIndex = static_cast<unsigned long>(id);
    input.m_nType = kind;
    return input;
  }

  /// An Input with these as lower bound, initial value and upper bound.
  CInput Bounded(int id, const std::string& name, int kind, double lower, double initial,
                 double upper) {
    CInput input = New(id, name, kind);
    input.m_fLower = lower;
    input.m_fInitial = initial;
    input.m_fUpper = upper;
    return input;
  }

  /// What CInput::Dump prints.
  std::string Report() {
    return Printed([&](std::FILE* stream) { CInput::Dump(study.Pod(), stream); });
  }

  Study study;
};

void SetArguments(CInput& input, int auxiliary, const std::vector<vbINT32>& arguments,
                  const std::vector<vbINT32>& indexes, const std::vector<vbINT32>& lengths) {
  input.m_nAuxID = auxiliary;
  input.m_vnArg = arguments;
  input.m_vnIdx = indexes;
  input.m_vnLength = lengths;
}

void SetRandom(CInput& input, int parameter, int distribution) {
  input.m_nRandom = 1;
  input.m_nRandomParam = parameter;
  input.m_nDistribution = distribution;
}

void SetScale(CInput& input, double factor) {
  input.m_nUserScale = 1;
  input.m_fScale = factor;
}

void SetObjective(CInput& input, int goal, double target, double weight) {
  input.m_nObjective = 1;
  input.m_nGoal = goal;
  input.m_fTarget = target;
  input.m_fWeight = weight;
}

// ---- The table of all ----

TEST_F(InputReport, OfNoInputs) {
  EXPECT_EQ(Report(), head + "No Input objects defined.\n" + end);
}

TEST_F(InputReport, OfASimpleInput) {
  New(1, "x").PutObject();
  EXPECT_EQ(Report(), head + rowOfX + end);
}

TEST_F(InputReport, NeedsNoControlSettings) {
  CDesignControl(study.Pod()).RemoveObject();
  New(1, "").PutObject();
  EXPECT_EQ(
      Report(),
      head + "    1                  1       1   ind    No         0.000 -1.000e+30  1.000e+30\n" +
          end);
}

TEST_F(InputReport, IsInTheOrderOfTheIndex) {
  for (const int id : {12, 3, 1}) New(id, "x").PutObject();
  EXPECT_EQ(
      Report(),
      head + rowOfX +
          "    3           x      3       1   ind    No         0.000 -1.000e+30  1.000e+30\n"
          "   12           x     12       1   ind    No         0.000 -1.000e+30  1.000e+30\n" +
          end);
}

TEST_F(InputReport, PrintsANameAsItIs) {
  New(1, "%s%d%n 100").PutObject();
  EXPECT_EQ(
      Report(),
      head + "    1  %s%d%n 100      1       1   ind    No         0.000 -1.000e+30  1.000e+30\n" +
          end);
}

// ---- Every section ----

TEST_F(InputReport, OfEveryKindAndSection) {
  CInput width = Bounded(1, "width", 0, -1.5, 0.25, 2.25);
  SetScale(width, 10.0);
  SetObjective(width, 0, 5.0, 1.0);
  width.PutObject();

  CInput link = Bounded(2, "a long variable name", 1, -1e30, 1234.0, 1e30);
  SetArguments(link, 21, {-1, -4}, {0, 2}, {1, 3});
  SetRandom(link, -3, 0);
  SetScale(link, 5.0);
  link.PutObject();

  CInput synthetic = Bounded(3, "synth", 2, -0.0001, 12345.678, 0.00001);
  SetArguments(synthetic, 22, {-1, -4, -4, -4}, {0, 0, 2, 3}, {1, 2, 1, 3});
  SetScale(synthetic, 5.0);
  synthetic.PutObject();

  CInput array = Bounded(4, "array", 3, -100.0, -99.99, 100.0);
  array.m_uSize = 12;
  SetRandom(array, -2, 1);
  SetScale(array, 5.0);
  array.PutObject();

  CInput discrete = Bounded(5, "ten signs.", 4, 1.0, 3.0, 4.0);
  discrete.m_uIndex = 12345;
  discrete.m_nAuxID = 23;
  SetRandom(discrete, -1, 2);
  SetScale(discrete, 0.0);
  SetObjective(discrete, 1, 5.0, 2.5);
  discrete.m_nHasWorst = 1;
  discrete.m_fWorst = 100.0;
  discrete.PutObject();

  CInput integer = Bounded(6, "int", 5, -3.0, 2.0, 7.0);
  integer.m_nAuxID = 24;
  integer.m_vnArg = {-1};
  SetRandom(integer, 0, 3);
  SetScale(integer, -2.5);
  SetObjective(integer, 2, -2.5, 1e-10);
  integer.m_fWorst = 100.0;
  integer.PutObject();

  CInput combinatorial = Bounded(7, "combi", 6, -1.0, 0.0, 1.0);
  combinatorial.m_nAuxID = 1234567;
  SetRandom(combinatorial, 1, 0);
  SetScale(combinatorial, 5.0);
  SetObjective(combinatorial, 2, 123456.75, 12345678.0);
  combinatorial.m_nHasWorst = -1;
  combinatorial.m_fWorst = -1e-5;
  combinatorial.PutObject();

  CInput eight = New(8, "eight");
  eight.m_nAuxID = 25;
  SetRandom(eight, 2, 1);
  eight.PutObject();

  CInput nine = New(9, "nine", 3);
  nine.m_nAuxID = 26;
  SetRandom(nine, 3, 2);
  nine.PutObject();

  CInput wide = New(123456, "wide", 6);
  wide.m_uIndex = 0xFFFFFFFFUL;
  wide.m_uSize = 1000000;
  wide.m_nAuxID = 27;
  SetRandom(wide, 4, 3);
  wide.m_nRandom = -1;
  wide.PutObject();

  EXPECT_EQ(
      Report(),
      head +
          "    1       width      1       1   ind    No        0.2500     -1.500      2.250\n"
          "    2  a long var      2       1  link    Yes        1234. -1.000e+30  1.000e+30\n"
          "    3       synth      3       1   syn    No     1.235e+04 -0.0001000  1.000e-05\n"
          "    4       array      4      12  cnst    Yes       -99.99     -100.0      100.0\n"
          "    5  ten signs.  12345       1  disc    Yes        3.000      1.000      4.000\n"
          "    6         int      6       1   int    Yes        2.000     -3.000      7.000\n"
          "    7       combi      7       1  ????    Yes        0.000     -1.000      1.000\n"
          "    8       eight      8       1   ind    Yes        0.000 -1.000e+30  1.000e+30\n"
          "    9        nine      9       1  cnst    Yes        0.000 -1.000e+30  1.000e+30\n"
          "123456        wide     -1  1000000  ????    Yes        0.000 -1.000e+30  1.000e+30\n" +
          scaleHead +
          "    1       width       10.00\n"
          "    5  ten signs.       0.000\n"
          "    6         int      -2.500\n" +
          randomHead +
          "    2  a long var  Probability of Failure    Normal Distribution \n"
          "    4       array    Standard Deviation     Uniform Distribution \n"
          "    5  ten signs.        Mean Value        LogNormal Distribution\n"
          "    6         int       1st Parameter       Weibull Distribution \n"
          "    7       combi       2nd Parameter        Normal Distribution \n"
          "    8       eight       3rd Parameter       Uniform Distribution \n"
          "    9        nine       4th Parameter      LogNormal Distribution\n"
          "123456        wide           ????            Weibull Distribution \n" +
          auxiliaryHead +
          "    2  a long var       21  link  -1, -4(Idx=2,Len=1)\n"
          "    3       synth       22   syn  -1, -4(Idx=0,Len=2), -4(Idx=2,Len=1),\n"
          "                                  -4(Idx=3,Len=3)\n"
          "    5  ten signs.       23  disc  \n"
          "    6         int       24   int  \n"
          "    7       combi  1234567  ????  \n"
          "    8       eight       25  ????  \n"
          "    9        nine       26  ????  \n"
          "123456        wide       27  ????  \n" +
          objectiveHead +
          "    1       width  minimize         *                *              1.000000\n"
          "    5  ten signs.  maximize         100.0000         *              2.500000\n"
          "    6         int   target          *               -2.500000   1.000000e-10\n"
          "    7       combi   target     -1.000000e-05         123456.8   1.234568e+07\n" +
          end);
}

// ---- One section ----

TEST_F(InputReport, WithScalingAlone) {
  CInput input = New(1, "x");
  SetScale(input, 0.5);
  input.PutObject();
  EXPECT_EQ(Report(), head + rowOfX + scaleHead + "    1           x      0.5000\n" + end);
}

TEST_F(InputReport, HasNoScalingOfOtherKinds) {
  for (const int kind : {1, 2, 3, 6}) {
    CInput input = New(kind, "x", kind);
    SetScale(input, 0.5);
    input.PutObject();
  }
  EXPECT_EQ(Report().find("Scaling"), std::string::npos);
}

TEST_F(InputReport, WithRandomInputsAlone) {
  CInput input = New(1, "x");
  SetRandom(input, 0, 0);
  input.PutObject();
  EXPECT_EQ(
      Report(),
      head + "    1           x      1       1   ind    Yes        0.000 -1.000e+30  1.000e+30\n" +
          randomHead + "    1           x       1st Parameter        Normal Distribution \n" + end);
}

TEST_F(InputReport, HasTheOtherTextForParametersThatAreNone) {
  for (const int parameter : {-4, 4, 2147483647}) {
    CInput input = New(1, "x");
    SetRandom(input, parameter, 0);
    input.PutObject();
    EXPECT_NE(Report().find("    1           x           ????             Normal Distribution \n"),
              std::string::npos);
  }
}

TEST_F(InputReport, WithAuxiliariesAlone) {
  CInput input = New(1, "x");
  input.m_nAuxID = 9;
  input.PutObject();
  EXPECT_EQ(Report(), head + rowOfX + auxiliaryHead + "    1           x        9  ????  \n" + end);
}

TEST_F(InputReport, HasNoAuxiliariesBelowOne) {
  CInput input = New(1, "x");
  input.m_vnArg = {-1};
  for (const int auxiliary : {0, -1}) {
    input.m_nAuxID = auxiliary;
    input.PutObject();
    EXPECT_EQ(Report(), head + rowOfX + end);
  }
}

TEST_F(InputReport, WithObjectivesAlone) {
  CInput input = New(1, "x");
  SetObjective(input, 0, 0.0, 1.0);
  input.m_nObjective = -1;
  input.PutObject();
  EXPECT_EQ(Report(),
            head + rowOfX + objectiveHead +
                "    1           x  minimize         *                *              1.000000\n" +
                end);
}

TEST_F(InputReport, HasASectionForLaterInputsOnly) {
  New(1, "x").PutObject();
  CInput input = New(2, "y");
  SetScale(input, 2.0);
  input.PutObject();
  EXPECT_EQ(
      Report(),
      head + rowOfX +
          "    2           y      2       1   ind    No         0.000 -1.000e+30  1.000e+30\n" +
          scaleHead + "    2           y       2.000\n" + end);
}

// ---- Arguments ----

class InputArgumentReport : public InputReport {
 protected:
  /// The row of an Input with these arguments in the table of auxiliary definitions, with the lines
  /// that go on with it, from the arguments on.
  std::string Row(int kind, const std::vector<vbINT32>& arguments,
                  const std::vector<vbINT32>& indexes, const std::vector<vbINT32>& lengths) {
    CInput input = New(1, "x", kind);
    SetArguments(input, 9, arguments, indexes, lengths);
    input.PutObject();
    const std::string report = Report();
    const std::string begin =
        kind == 1 ? "    1           x        9  link  " : "    1           x        9   syn  ";
    const std::size_t start = report.find(auxiliaryHead + begin);
    if (start == std::string::npos || !report.ends_with(end)) return "no table in\n" + report;
    const std::size_t first = start + auxiliaryHead.size() + begin.size();
    return report.substr(first, report.size() - end.size() - first);
  }

  /// The row of a link with first elements only.
  std::string RowOfLink(const std::vector<vbINT32>& arguments) {
    return Row(1, arguments, std::vector<vbINT32>(arguments.size(), 0),
               std::vector<vbINT32>(arguments.size(), 1));
  }
};

TEST_F(InputArgumentReport, OfNoArgumentsEndsTheRow) {
  EXPECT_EQ(Row(1, {}, {}, {}), "\n");
  EXPECT_EQ(Row(2, {}, {}, {}), "\n");
}

TEST_F(InputArgumentReport, ShowsArgumentsAsTheyAreStored) {
  EXPECT_EQ(RowOfLink({-1, 5, 0, -2147483647}), "-1, 5, 0, -2147483647\n");
}

TEST_F(InputArgumentReport, OfALinkShowsSingleElements) {
  EXPECT_EQ(Row(1, {-1, -2, -3, -4}, {0, 1, 0, -1}, {1, 1, 5, 1}), "-1, -2(Idx=1,Len=1), -3, -4\n");
  EXPECT_EQ(Row(1, {-1}, {7}, {5}), "-1(Idx=7,Len=1)\n");
}

TEST_F(InputArgumentReport, OfASyntheticShowsIndexOrLength) {
  EXPECT_EQ(Row(2, {-1, -2, -3}, {0, 1, 0}, {1, 1, 2}), "-1, -2(Idx=1,Len=1), -3(Idx=0,Len=2)\n");
  EXPECT_EQ(Row(2, {-1, -2, -3}, {-1, 7, 0}, {1, 5, 0}), "-1, -2(Idx=7,Len=5), -3\n");
  EXPECT_EQ(Row(2, {-1}, {3}, {0}), "-1(Idx=3,Len=0)\n");
}

TEST_F(InputArgumentReport, OfVectorsThatAreTooShortIsThatOfFirstElements) {
  EXPECT_EQ(Row(1, {-1, -2}, {}, {}), "-1, -2\n");
  EXPECT_EQ(Row(2, {-1, -2}, {0}, {1}), "-1, -2\n");
}

TEST_F(InputArgumentReport, FillsALineOf46Columns) {
  EXPECT_EQ(RowOfLink(std::vector<vbINT32>(12, -1)),
            "-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1\n");
}

TEST_F(InputArgumentReport, CutsBehindTheLastCommaThatFits) {
  EXPECT_EQ(RowOfLink({-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -12}),
            "-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1,\n"
            "                                  -12\n");
  EXPECT_EQ(RowOfLink({-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1234, -5}),
            "-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1234,\n"
            "                                  -5\n");
}

TEST_F(InputArgumentReport, CutsALongListOverManyLines) {
  EXPECT_EQ(RowOfLink(std::vector<vbINT32>(40, -1)),
            "-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1,\n"
            "                                  -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1,\n"
            "                                  -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1,\n"
            "                                  -1, -1, -1, -1, -1, -1, -1\n");
}

TEST_F(InputArgumentReport, DoesNotCutWithinAnArgument) {
  EXPECT_EQ(Row(2, {-1000000000, -1000000000, -1000000000}, {100, 200, 300}, {10, 20, 30}),
            "-1000000000(Idx=100,Len=10),\n"
            "                                  -1000000000(Idx=200,Len=20),\n"
            "                                  -1000000000(Idx=300,Len=30)\n");
}

// ---- The stream ----

TEST_F(InputReport, BringsOutAllStreams) {
  const std::string path = study.folder / "other.txt";
  std::FILE* other = std::fopen(path.c_str(), "w");
  std::fputs("kept back", other);
  Report();
  EXPECT_EQ(ReadBytes(path), "kept back");
  std::fclose(other);
}

TEST_F(InputReport, OfADamagedInputFailsAndReleasesTheLock) {
  CInput input = New(1, "x");
  input.PutObject();
  study.Close();
  PatchBytes(study.DataPath(), input.ObjectAddress() + 20, "y");
  study.Open();
  std::FILE* stream = std::tmpfile();
  EXPECT_THROW(CInput::Dump(study.Pod(), stream), CChecksum);
  std::fclose(stream);
  EXPECT_FALSE(std::filesystem::exists(study.LockPath()));
}

}  // namespace
