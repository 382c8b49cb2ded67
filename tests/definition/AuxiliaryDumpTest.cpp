#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "definition/Auxiliary.h"
#include "store/KestErr.h"
#include "tests/support/Bytes.h"
#include "tests/support/Printed.h"
#include "tests/support/Study.h"

// The report of all definitions.

namespace {

const std::string title =
    "                                Auxiliary Objects\n"
    "================================================================================\n";
const std::string linkHead =
    "          Link\n"
    "DB ID     Name        Link Definition\n"
    "-----  ----------  -------------------------------------------------------------\n";
const std::string equationHead =
    "DB ID     Equation\n"
    "-----  -------------------------------------------------------------------------\n";
const std::string setHead =
    "          Set\n"
    "DB ID     Name        Members\n"
    "-----  ----------  -------------------------------------------------------------\n";
const std::string bar =
    "--------------------------------------------------------------------------------\n";
const std::string end =
    "================================================================================\n"
    "\n";

// One definition of each kind, as Store... below puts it.
const std::string linkRow = "    1       total  1.5 + width*2 + height*-0.5\n";
const std::string equationRow = "    2  area(width,height) = width*height\n";
const std::string setRow = "    3       gauge  0.1, 0.25, 1e+30\n";

class AuxiliaryReport : public testing::Test {
 protected:
  void StoreLink(int id, const std::string& name, const std::vector<vbFLOAT64>& coefficients,
                 const std::vector<std::string>& names) {
    CAuxiliary link(study.Pod());
    link.m_nID = id;
    link.m_strName = name;
    link.m_nAuxType = 1;
    link.m_vfCoef = coefficients;
    link.m_vstrArgNames = names;
    link.PutObject();
  }

  void StoreEquation(int id, const std::string& name, const std::string& arguments,
                     const std::string& text) {
    CAuxiliary equation(study.Pod());
    equation.m_nID = id;
    equation.m_strName = name;
    equation.m_nAuxType = 2;
    equation.m_strArgs = arguments;
    equation.m_strEquation = text;
    equation.PutObject();
  }

  void StoreSet(int id, const std::string& name, const std::vector<vbFLOAT64>& values) {
    CAuxiliary set(study.Pod());
    set.m_nID = id;
    set.m_strName = name;
    set.m_nAuxType = 4;
    set.m_vfValues = values;
    set.PutObject();
  }

  void StoreOfKind(int id, int type) {
    CAuxiliary definition(study.Pod());
    definition.m_nID = id;
    definition.m_nAuxType = type;
    definition.m_vfValues = definition.m_vfCoef = {1.0};
    definition.PutObject();
  }

  void StoreSampleLink() { StoreLink(1, "total", {1.5, 2.0, -0.5}, {"", "width", "height"}); }
  void StoreSampleEquation() { StoreEquation(2, "area", "width,height", "width*height"); }
  void StoreSampleSet() { StoreSet(3, "gauge", {0.1, 0.25, 1e30}); }

  std::string Report() {
    return Printed([&](std::FILE* stream) { CAuxiliary::Dump(study.Pod(), stream); });
  }

  Study study;
};

// ---- Which sections there are ----

TEST_F(AuxiliaryReport, OfNoDefinitionsIsEmpty) {
  EXPECT_EQ(Report(), "");
}

TEST_F(AuxiliaryReport, OfUnusedKindsIsEmpty) {
  StoreOfKind(1, 3);
  EXPECT_EQ(Report(), "");
  StoreOfKind(2, 0);
  StoreOfKind(3, 5);
  StoreOfKind(4, -1);
  EXPECT_EQ(Report(), "");
}

TEST_F(AuxiliaryReport, OfLinksOnly) {
  StoreSampleLink();
  EXPECT_EQ(Report(), title + linkHead + linkRow + end);
}

TEST_F(AuxiliaryReport, OfEquationsOnly) {
  StoreSampleEquation();
  EXPECT_EQ(Report(), title + equationHead + equationRow + end);
}

TEST_F(AuxiliaryReport, OfSetsOnly) {
  StoreSampleSet();
  EXPECT_EQ(Report(), title + setHead + setRow + end);
}

TEST_F(AuxiliaryReport, HasABarBetweenLinksAndEquations) {
  StoreSampleLink();
  StoreSampleEquation();
  EXPECT_EQ(Report(), title + linkHead + linkRow + bar + equationHead + equationRow + end);
}

TEST_F(AuxiliaryReport, HasABarBetweenLinksAndSets) {
  StoreSampleLink();
  StoreSampleSet();
  EXPECT_EQ(Report(), title + linkHead + linkRow + bar + setHead + setRow + end);
}

TEST_F(AuxiliaryReport, HasABarBetweenEquationsAndSets) {
  StoreSampleEquation();
  StoreSampleSet();
  EXPECT_EQ(Report(), title + equationHead + equationRow + bar + setHead + setRow + end);
}

TEST_F(AuxiliaryReport, OfAllKindsLeavesUnusedOnesOut) {
  StoreOfKind(9, 3);
  StoreSampleLink();
  StoreSampleEquation();
  StoreSampleSet();
  EXPECT_EQ(Report(),
            "                                Auxiliary Objects\n"
            "================================================================================\n"
            "          Link\n"
            "DB ID     Name        Link Definition\n"
            "-----  ----------  -------------------------------------------------------------\n"
            "    1       total  1.5 + width*2 + height*-0.5\n"
            "--------------------------------------------------------------------------------\n"
            "DB ID     Equation\n"
            "-----  -------------------------------------------------------------------------\n"
            "    2  area(width,height) = width*height\n"
            "--------------------------------------------------------------------------------\n"
            "          Set\n"
            "DB ID     Name        Members\n"
            "-----  ----------  -------------------------------------------------------------\n"
            "    3       gauge  0.1, 0.25, 1e+30\n"
            "================================================================================\n"
            "\n");
}

TEST_F(AuxiliaryReport, ListsEachKindInTheOrderOfTheIDs) {
  StoreSet(60, "s60", {6});
  StoreLink(50, "l50", {5}, {""});
  StoreEquation(40, "e40", "x", "4");
  StoreSet(7, "s7", {7});
  StoreLink(6, "l6", {6}, {""});
  StoreEquation(5, "e5", "x", "5");
  EXPECT_EQ(Report(), title + linkHead +
                          "    6          l6  6\n"
                          "   50         l50  5\n" +
                          bar + equationHead +
                          "    5  e5(x) = 5\n"
                          "   40  e40(x) = 4\n" +
                          bar + setHead +
                          "    7          s7  7\n"
                          "   60         s60  6\n" +
                          end);
}

// ---- Rows ----

TEST_F(AuxiliaryReport, ShowsALinkOfOneCoefficientAsTheNumberAlone) {
  StoreLink(1, "fixed", {-2.25}, {"never printed"});
  EXPECT_EQ(Report(), title + linkHead + "    1       fixed  -2.25\n" + end);
}

TEST_F(AuxiliaryReport, ShowsDefinitionsWithNothingInThem) {
  StoreLink(1, "", {}, {});
  StoreEquation(2, "", "", "");
  StoreSet(3, "", {});
  const std::string nothing = "              \n";
  EXPECT_EQ(Report(), title + linkHead + "    1" + nothing + bar + equationHead + "    2  () = \n" +
                          bar + setHead + "    3" + nothing + end);
}

TEST_F(AuxiliaryReport, CutsNamesOfLinksAndSetsToTenLetters) {
  StoreLink(1, "abcdefghij", {1}, {""});
  StoreLink(2, "abcdefghijk", {1}, {""});
  StoreEquation(3, "abcdefghijk", "a", "a");
  StoreSet(4, "abcdefghijklmnop", {1});
  EXPECT_EQ(Report(), title + linkHead +
                          "    1  abcdefghij  1\n"
                          "    2  abcdefghij  1\n" +
                          bar + equationHead + "    3  abcdefghijk(a) = a\n" + bar + setHead +
                          "    4  abcdefghij  1\n" + end);
}

TEST_F(AuxiliaryReport, WidensTheColumnOfLongIDs) {
  StoreLink(99999, "a", {1}, {""});
  StoreLink(123456, "b", {1}, {""});
  StoreEquation(2147483647, "c", "a", "a");
  EXPECT_EQ(Report(), title + linkHead +
                          "99999           a  1\n"
                          "123456           b  1\n" +
                          bar + equationHead + "2147483647  c(a) = a\n" + end);
}

TEST_F(AuxiliaryReport, ShowsNumbersInSixDigits) {
  StoreLink(1, "link", {1.0 / 3, 1234567.0, -1e-5}, {"", "a", "b"});
  StoreSet(2, "set", {-1e30, -0.0001, 0.0, 100000.0, 1e6});
  EXPECT_EQ(Report(), title + linkHead +
                          "    1        link  0.333333 + a*1.23457e+06 + b*-1e-05\n" + bar +
                          setHead + "    2         set  -1e+30, -0.0001, 0, 100000, 1e+06\n" + end);
}

TEST_F(AuxiliaryReport, ShowsPercentSignsAsTheyAre) {
  StoreLink(1, "%s%n", {1, 2}, {"%d", "%s"});
  StoreEquation(2, "%s", "%n", "%d%%");
  EXPECT_EQ(Report(), title + linkHead + "    1        %s%n  1 + %s*2\n" + bar + equationHead +
                          "    2  %s(%n) = %d%%\n" + end);
}

TEST_F(AuxiliaryReport, ShowsLinksWhoseNamesDoNotMatchTheirCoefficients) {
  StoreLink(1, "few", {1, 2, 3}, {"", "a"});
  StoreLink(2, "none", {1, 2}, {});
  StoreLink(3, "many", {1, 2}, {"", "a", "b", "c"});
  EXPECT_EQ(Report(), title + linkHead +
                          "    1         few  1 + a*2 + *3\n"
                          "    2        none  1 + *2\n"
                          "    3        many  1 + a*2\n" +
                          end);
}

// ---- Long definitions ----

/// A link of `arguments` arguments, 15 columns each behind the constant's one.
std::vector<std::string> LongNames(int arguments) {
  std::vector<std::string> names{""};
  for (int i = 1; i <= arguments; ++i) {
    names.push_back((i < 10 ? "argument0" : "argument") + std::to_string(i));
  }
  return names;
}

TEST_F(AuxiliaryReport, KeepsALinkOfSixtyOneColumnsOnOneLine) {
  StoreLink(1, "link", {1, 2, 2, 2, 2}, LongNames(4));
  EXPECT_EQ(
      Report(),
      title + linkHead +
          "    1        link  1 + argument01*2 + argument02*2 + argument03*2 + argument04*2\n" +
          end);
}

TEST_F(AuxiliaryReport, CutsALinkOfSixtyTwoColumns) {
  StoreLink(1, "link", {1, 2, 2, 2, 10}, LongNames(4));
  EXPECT_EQ(Report(), title + linkHead +
                          "    1        link  1 + argument01*2 + argument02*2 + argument03*2 +\n"
                          "                   argument04*10\n" +
                          end);
}

TEST_F(AuxiliaryReport, CutsALongLinkOverSeveralLines) {
  StoreLink(1, "link", std::vector<vbFLOAT64>(11, 2.0), LongNames(10));
  StoreLink(2, "next", {0}, {""});
  EXPECT_EQ(Report(),
            title + linkHead +
                "    1        link  2 + argument01*2 + argument02*2 + argument03*2 + argument04*2\n"
                "                   + argument05*2 + argument06*2 + argument07*2 + argument08*2 +\n"
                "                   argument09*2 + argument10*2\n"
                "    2        next  0\n" +
                end);
}

TEST_F(AuxiliaryReport, KeepsAnEquationOfSeventyThreeColumnsOnOneLine) {
  StoreEquation(1, "f", "a,b", "a + b + " + std::string(56, 'c'));
  EXPECT_EQ(
      Report(),
      title + equationHead +
          "    1  f(a,b) = a + b + cccccccccccccccccccccccccccccccccccccccccccccccccccccccc\n" +
          end);
}

TEST_F(AuxiliaryReport, CutsALongEquationOverSeveralLines) {
  StoreEquation(1, "f", "a,b", "a + b + " + std::string(57, 'c'));
  StoreEquation(
      2, "weight", "w1, w2, w3, w4, w5",
      "0.2836 * (width1*height1*length1 + width2*height2*length2 + "
      "width3*height3*length3 + width4*height4*length4 + width5*height5*length5) / 386.4");
  EXPECT_EQ(Report(),
            title + equationHead +
                "    1  f(a,b) = a + b +\n"
                "       ccccccccccccccccccccccccccccccccccccccccccccccccccccccccc\n"
                "    2  weight(w1, w2, w3, w4, w5) = 0.2836 * (width1*height1*length1 +\n"
                "       width2*height2*length2 + width3*height3*length3 + width4*height4*length4\n"
                "       + width5*height5*length5) / 386.4\n" +
                end);
}

TEST_F(AuxiliaryReport, CutsAnEquationWithoutBlanksWhereTheLineEnds) {
  StoreEquation(1, "f", std::string(100, 'a'), "1");
  EXPECT_EQ(Report(),
            title + equationHead +
                "    1  f(aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa\n"
                "       aaaaaaaaaaaaaaaaaaaaaaaaaaaaa) = 1\n" +
                end);
}

TEST_F(AuxiliaryReport, EndsALineWhereTheEquationDoes) {
  StoreEquation(1, "f", "a", "a\n+ 1\n\n+ 2");
  EXPECT_EQ(Report(), title + equationHead +
                          "    1  f(a) = a\n"
                          "       + 1\n"
                          "       \n"
                          "       + 2\n" +
                          end);
}

TEST_F(AuxiliaryReport, CutsALongSetOverSeveralLines) {
  StoreSet(1, "set", {1000, 1001, 1002, 1003, 1004, 1005, 1006, 1007, 1008, 1009, 1010,
                      1011, 1012, 1013, 1014, 1015, 1016, 1017, 1018, 1019, 1020, 1021});
  StoreSet(2, "next", {0});
  EXPECT_EQ(Report(),
            title + setHead +
                "    1         set  1000, 1001, 1002, 1003, 1004, 1005, 1006, 1007, 1008, 1009,\n"
                "                   1010, 1011, 1012, 1013, 1014, 1015, 1016, 1017, 1018, 1019,\n"
                "                   1020, 1021\n"
                "    2        next  0\n" +
                end);
}

TEST_F(AuxiliaryReport, KeepsASetOfSixtyOneColumnsOnOneLine) {
  StoreSet(1, "set", {1000, 1001, 1002, 1003, 1004, 1005, 1006, 1007, 1008, 1009, 1});
  EXPECT_EQ(
      Report(),
      title + setHead +
          "    1         set  1000, 1001, 1002, 1003, 1004, 1005, 1006, 1007, 1008, 1009, 1\n" +
          end);
}

// ---- Streams ----

TEST_F(AuxiliaryReport, BringsOutAllStreams) {
  StoreSampleLink();
  std::FILE* stream = std::fopen((study.folder / "report").c_str(), "w");
  std::FILE* other = std::fopen((study.folder / "other").c_str(), "w");
  std::fprintf(other, "waiting");
  CAuxiliary::Dump(study.Pod(), stream);
  EXPECT_EQ(ReadBytes(study.folder / "report"), title + linkHead + linkRow + end);
  EXPECT_EQ(ReadBytes(study.folder / "other"), "waiting");
  std::fclose(stream);
  std::fclose(other);
}

TEST_F(AuxiliaryReport, OfADamagedDefinitionIsNotPrintedInPart) {
  StoreSampleLink();
  CAuxiliary damaged(study.Pod());
  damaged.m_nID = 2;
  damaged.PutObject();
  study.Close();
  PatchBytes(study.DataPath(), damaged.ObjectAddress() + 16, "x");
  study.Open();
  std::FILE* stream = std::tmpfile();
  EXPECT_THROW(CAuxiliary::Dump(study.Pod(), stream), CChecksum);
  EXPECT_EQ(std::ftell(stream), 0);
  std::fclose(stream);
}

}  // namespace
