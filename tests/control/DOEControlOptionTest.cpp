#include <climits>
#include <string>
#include <vector>

#include "tests/control/DOECheck.h"
#include "tests/support/Study.h"

// The rules on the option of a design.

namespace {

constexpr int kFactorial = 0;
constexpr int kComposite = 1;
constexpr int kBoxBehnken = 2;
constexpr int kPlackettBurman = 3;
constexpr int kHybrid = 7;
constexpr int kTaguchi = 8;

void ExpectSoundOptions(int method, int vars, const std::vector<int>& options) {
  for (const int option : options) {
    SCOPED_TRACE(option);
    ExpectSound(DOEDesign(method, option), {.vars = vars});
  }
}

/// "{}" in the first line stands for the option.
void ExpectWrongOptions(int method, int vars, const std::vector<int>& options,
                        const std::string& first, const std::vector<std::string>& rest) {
  for (const int option : options) {
    SCOPED_TRACE(option);
    ExpectFault(DOEDesign(method, option), {.vars = vars},
                Fault(WithValue(first, std::to_string(option)), rest));
  }
}

// ---- Factorial and composite ----

void ExpectFractions(int method, const std::string& first) {
  const auto rest = [](const std::string& vars) {
    return std::vector<std::string>{
        "       You may specify values from 0 to (# of independent variables - 1)\n",
        "       # of independent variables = " + vars + ".\n"};
  };
  ExpectSoundOptions(method, 3, {0, 1, 2});
  ExpectWrongOptions(method, 3, {-1, 3, 4}, first, rest("3"));
  ExpectSoundOptions(method, 1, {0});
  ExpectWrongOptions(method, 1, {-1, 1}, first, rest("1"));
  ExpectWrongOptions(method, 0, {0}, first, rest("0"));
}

TEST(DesignOption, OfAFactorialIsBelowTheNumberOfVariables) {
  ExpectFractions(kFactorial, "(Design Control): Wrong option specified for Factorial DOE: {}\n");
}

TEST(DesignOption, OfACompositeIsBelowTheNumberOfVariables) {
  ExpectFractions(kComposite, "(Design Control): Wrong option specified for Composite DOE: {}\n");
}

// ---- Box-Behnken ----

TEST(DesignOption, OfBoxBehnkenWithOneVariableIsOne) {
  ExpectSoundOptions(kBoxBehnken, 1, {1});
  ExpectWrongOptions(kBoxBehnken, 1, {0, 2, 3, 12},
                     "(Design Control): Box-Behnken designs for 1 design variable may only have",
                     {"     design option 1\n\n"});
}

TEST(DesignOption, OfBoxBehnkenWithTwoVariables) {
  ExpectSoundOptions(kBoxBehnken, 2, {1, 2, 12});
  ExpectWrongOptions(kBoxBehnken, 2, {0, 3, 11, 13, 23, 123},
                     "(Design Control): Box-Behnken designs for 2 design variables may only have",
                     {"     design options 1, 2, or 12\n\n"});
}

TEST(DesignOption, OfBoxBehnkenWithMoreVariablesHasItsOpeningBracketMissing) {
  const std::string first = "Design Control): Wrong option specified for Box-Behnken DOE: {}\n";
  const std::vector<std::string> rest{
      "       The valid options are:\n",
      "       1 - perturb one variable at a time,\n",
      "       2 - perturb two variables at a time,\n",
      "       3 - perturb three variables at a time,\n",
      "       12 - perturb one and two variables at a time,\n",
      "       13 - perturb one and three variables at a time,\n",
      "       23 - perturb two and three variables at a time,\n",
      "       123 - perturb one, two, and three variables at a time.\n"};
  for (const int vars : {3, 5}) {
    ExpectSoundOptions(kBoxBehnken, vars, {1, 2, 3, 12, 13, 23, 123});
    ExpectWrongOptions(kBoxBehnken, vars,
                       {-1, 0, 4, 11, 14, 21, 22, 24, 122, 124, INT_MIN, INT_MAX}, first, rest);
  }
  ExpectWrongOptions(kBoxBehnken, 0, {0}, first, rest);
}

// ---- Plackett-Burman ----

TEST(DesignOption, OfPlackettBurmanGrowsWithTheVariables) {
  struct Range {
    int first, last, least;
    const char* points;
  };
  for (const auto& [first, last, least, points] :
       {Range{12, 19, 20, "12"}, Range{20, 23, 24, "20"}, Range{24, 27, 28, "24"},
        Range{28, 35, 36, "28"}}) {
    for (const int vars : {first, last}) {
      SCOPED_TRACE(vars);
      ExpectSoundOptions(kPlackettBurman, vars, {least, least + 1, 999});
      ExpectWrongOptions(
          kPlackettBurman, vars, {least - 1, 12, 0},
          "(Design Control): Plackett-Burman designs for " + std::to_string(vars) +
              " design variables must use",
          {"     a design option with greater than " + std::string(points) + " points.\n\n"});
    }
  }
}

TEST(DesignOption, OfPlackettBurmanIsFreeBelowTwelveVariables) {
  ExpectSoundOptions(kPlackettBurman, 11, {0, 1, 12});
  ExpectSoundOptions(kPlackettBurman, 0, {0});
}

TEST(DesignOption, OfPlackettBurmanDoesNotHelpAboveThirtyFiveVariables) {
  for (const int vars : {36, INT_MAX}) {
    ExpectWrongOptions(kPlackettBurman, vars, {12, 36, 999},
                       "(Design Control): Plackett-Burman designs are not valid for more than",
                       {"     35 design variables.\n\n"});
  }
}

// ---- Hybrid ----

/// The rest of the message about a wrong option.
std::vector<std::string> ValidOptions(const std::vector<std::string>& options) {
  std::vector<std::string> rest{"     Valid design options are:\n"};
  rest.insert(rest.end(), options.begin(), options.end());
  return rest;
}

TEST(DesignOption, OfAHybridWithThreeVariables) {
  ExpectSoundOptions(kHybrid, 3, {3101, 3111, 3112});
  ExpectWrongOptions(kHybrid, 3, {3100, 3102, 3110, 3113, 4161},
                     "(Design Control): Invalid hybrid design option ({}) for 3 design variables.",
                     ValidOptions({"          3101 - 3 variables, 10 points, design #1\n",
                                   "          3111 - 3 variables, 11 points, design #1\n",
                                   "          3112 - 3 variables, 11 points, design #2\n\n"}));
}

TEST(DesignOption, OfAHybridWithFourVariables) {
  ExpectSoundOptions(kHybrid, 4, {4161, 4162, 4163});
  ExpectWrongOptions(kHybrid, 4, {4160, 4164, 6281},
                     "(Design Control): Invalid hybrid design option ({}) for 4 design variables.",
                     ValidOptions({"          4161 - 4 variables, 16 points, design #1\n",
                                   "          4162 - 4 variables, 16 points, design #2\n",
                                   "          4163 - 4 variables, 16 points, design #3\n\n"}));
}

TEST(DesignOption, OfAHybridWithSixVariables) {
  ExpectSoundOptions(kHybrid, 6, {6281, 6282});
  ExpectWrongOptions(kHybrid, 6, {6280, 6283, 4161},
                     "(Design Control): Invalid hybrid design option ({}) for 6 design variables.",
                     ValidOptions({"          6281 - 6 variables, 28 points, design #1\n",
                                   "          6282 - 6 variables, 28 points, design #2\n\n"}));
}

TEST(DesignOption, OfAHybridWithOtherVariablesIsNone) {
  for (const int vars : {-1, 0, 1, 2, 5, 7}) {
    ExpectWrongOptions(
        kHybrid, vars, {3101, 4161, 6281},
        "(Design Control): Hybrid designs are valid for 3, 4, or 6 design variables.",
        {"     You have " + std::to_string(vars) + " design variables.\n\n"});
  }
}

// ---- Taguchi ----

TEST(DesignOption, OfTaguchiBelowFourVariables) {
  for (const int vars : {-1, 0, 1, 3}) {
    ExpectSoundOptions(kTaguchi, vars, {1, 2, 9, 27, 81});
    ExpectWrongOptions(
        kTaguchi, vars, {INT_MIN, -1, 0, 3, 8, 10, 26, 28, 80, 82},
        "(Design Control): Wrong option specified for Taguchi orthogonal arrays: {}\n",
        {"       The following options are available for less than 4 variables:\n",
         "       1 - Latin Square #1,\n", "       2 - Latin Square #2,\n",
         "       9 - L9 Taguchi orthogonal array,\n", "       27 - L27 Taguchi orthogonal array,\n",
         "       81 - L81 Taguchi orthogonal array.\n"});
  }
}

TEST(DesignOption, OfTaguchiWithFourVariablesIsNoLatinSquare) {
  ExpectSoundOptions(kTaguchi, 4, {9, 10, 27, 81, 999});
  ExpectWrongOptions(kTaguchi, 4, {8, 2, 1, 0, -1},
                     "(Design Control): Taguchi designs with 4 design variables cannot use",
                     {"     Latin Square design options.\n\n"});
}

TEST(DesignOption, OfTaguchiUpToThirteenVariablesIsL27) {
  for (const int vars : {5, 13}) {
    ExpectSoundOptions(kTaguchi, vars, {27, 28, 81});
    ExpectWrongOptions(kTaguchi, vars, {26, 9, 1, -1},
                       "(Design Control): Taguchi designs with " + std::to_string(vars) +
                           " design variables cannot use",
                       {"     Latin Square or L9 design options.\n\n"});
  }
}

TEST(DesignOption, OfTaguchiUpToFortyVariablesIsL81) {
  for (const int vars : {14, 40}) {
    ExpectSoundOptions(kTaguchi, vars, {81, 82});
    ExpectWrongOptions(kTaguchi, vars, {80, 27, 9, 1},
                       "(Design Control): Taguchi designs with " + std::to_string(vars) +
                           " design variables can only use",
                       {"     L81 design option.\n\n"});
  }
}

TEST(DesignOption, OfTaguchiDoesNotHelpAboveFortyVariables) {
  for (const int vars : {41, INT_MAX}) {
    ExpectWrongOptions(kTaguchi, vars, {81, 1, 999},
                       "(Design Control): Taguchi designs are only valid for less than 41 design",
                       {"     variables.\n\n"});
  }
}

// ---- Designs without a rule ----

TEST(DesignOption, OfOtherDesignsIsFree) {
  const Study study;
  for (const int method : {4, 5, 6, 9, 10, 11, 12, 13}) {
    for (const int option : {0, 3, 999}) {
      SCOPED_TRACE(method);
      ExpectSound(DOEDesign(method, option), {.pod = study.Pod()});
    }
  }
}

TEST(DesignOption, IsCheckedWhateverIsAskedFor) {
  const LogLines wrongOption =
      Fault("(Design Control): Hybrid designs are valid for 3, 4, or 6 design variables.",
            {"     You have 2 design variables.\n\n"});
  for (const int task : {0, 1, 2, 3}) {
    CDOEControl block = DOEDesign(kHybrid, 3101);
    block.m_nTask = task;
    ExpectFault(block, {.vars = 2}, wrongOption);
  }
}

}  // namespace
