#include <algorithm>
#include <array>

#include "control/CommonRules.h"
#include "control/DOEControl.h"
#include "environment/Logging.h"
#include "store/KestErr.h"

// The rules of a design of experiments. Most relate the design, its option, the model and the
// number of variables.

namespace {

using kestdb::Rules;

int ToInt(long value) {
  return static_cast<int>(std::clamp(value, -0x7FFFFFFFL, 0x7FFFFFFFL));
}

constexpr int kFactorial = 0;
constexpr int kPlackettBurman = 3;
constexpr int kNotz = 4;
constexpr int kKoshal = 5;
constexpr int kRechtschaffner = 6;
constexpr int kRandom = 10;
constexpr int kUserDefined = 11;
constexpr int kWithModels = 2;  // the task that generates approximation models
constexpr int kMixedRegression = 4;

/// What the rules are about: the settings, variables, and points of the design.
struct Design {
  const CDOEControl& block;
  int n;
  int points;
};

void CheckDOptimal(Rules& rules, Design& design, int locked) {
  const int retained = ToInt(design.block.m_nRetained);
  if (design.points < retained) {
    rules.Fail();
    LError("(Design Control): Number of design points (%d) either generated or supplied",
           design.points);
    LPrint("     by the design is less than the specified number of retained design \n");
    LPrint("     points (%d) in D-optimal design.\n\n", retained);
  }
  design.points = retained;
  if (design.n >= design.points) {
    rules.Fail();
    LError("(Design Control): The number of D-optimal design points (%d) must be greater",
           design.points);
    LPrint("     than the number of independent design variables + 1 (%d).\n\n",
           ToInt(long{design.n} + 1));
  }
  if (locked > design.points) {
    rules.Fail();
    LError("(Design Control): The number of locked D-optimal design points (%d) is greater",
           locked);
    LPrint("     than the required number of D-optimal design points (%d).\n\n", design.points);
  }
}

void WarnOfSizeAndFilter(const Design& design) {
  const vbINT32& method = design.block.m_nMethod;
  if (design.points > 999) {
    LWarn("(Design Control): The total time to generate and analyze %d points may be large.\n",
          design.points);
  }
  if (design.block.m_nFilter != 0 && method != kRandom && method != kUserDefined) {
    LWarn("(Design Control): Design variable filtering can only be applied to random and user");
    LPrint("     provided designs. Filtering will not be performed.\n\n");
  }
}

void CheckMixedRegression(Rules& rules, const Design& design) {
  const long n = design.n;
  const long c = design.points;
  if (n > c + 1) {
    LWarn("(Design Control): Small number design points (%d) for Mixed Forward Regression.",
          design.points);
    LPrint("     Number of design points should at least equal %d.\n\n", ToInt(n + 1));
  }
  if (c <= n && design.block.m_nDOptimal != 0) {
    rules.Fail();
    LError("(Design Control): Invalid number of D-Optimal design points.");
    LPrint("     Mixed Forward Regression with D-Optimal design requires at least %d\n",
           ToInt(n + 1));
    LPrint("     design points.\n\n");
  }
  if (c < 2) {
    rules.Fail();
    LError("(Design Control): Mixed Forward Regression requires at least 2 design points.\n");
  }
}

/// The terms of the model, -1 for a model that there isn't.
long CountModelTerms(const Design& design) {
  const long n = design.n;
  const long pairs = n * (n - 1) / 2;
  switch (design.block.m_nModel) {
    case 0:
      return n + 1;
    case 1:
      return n + pairs + 1;
    case 2:
      return 2 * n + 1;
    case 3:
      return pairs + 2 * n + 1;
    default:
      return -1;
  }
}

void CheckModelSize(Rules& rules, const Design& design) {
  if (design.block.m_nModel == kMixedRegression) return CheckMixedRegression(rules, design);
  const long terms = CountModelTerms(design);
  if (terms < 0) {
    rules.Fail();
    LError("(Design Control): Invalid DOE model.\n");
  } else if (terms > long{design.points} + 1) {
    rules.Fail();
    LError("(Design Control): The approximations cannot be created with the current design");
    LPrint("     and desired model. The number of terms in the approximations (%d) is",
           ToInt(terms));
    LPrint("     greater than the number of design points + 1 (%d).\n\n",
           ToInt(long{design.points} + 1));
  }
}

void CheckQuadratic(Rules& rules, const CDOEControl& block) {
  if (block.m_nModel != 2 && block.m_nModel != 3) return;
  const char* name = block.m_nMethod == kFactorial        ? "Factorial"
                     : block.m_nMethod == kPlackettBurman ? "Plackett-Burman"
                     : block.m_nMethod == kNotz           ? "Notz"
                                                          : nullptr;
  if (name == nullptr) return;
  rules.Fail();
  LError("(Design Control): %s type design cannot generate quadratic", name);
}

/// Koshal and Rechtschaffner designs serve only the models that their option holds terms for.
void CheckModelOfOption(Rules& rules, const CDOEControl& block) {
  if (block.m_nMethod != kKoshal && block.m_nMethod != kRechtschaffner) return;
  const char* name = block.m_nMethod == kKoshal ? "Koshal" : "Rechtschaffner";
  const int option = block.GetOption();
  if (option == 11 && block.m_nModel > 1) {
    rules.Fail();
    LError("(Design Control): %s type linear with interactions design can only", name);
    LPrint("     generate linear with interactions type approximations.\n\n");
  }
  if (option == 20 && (block.m_nModel == 1 || block.m_nModel == 3)) {
    rules.Fail();
    LError("(Design Control): %s type pure quadratic design cannot generate", name);
    LPrint("%s", block.m_nModel == 1 ? "     linear with interactions type approximations.\n\n"
                                     : "     full quadratic approximations.\n\n");
  }
  if (option == 10 && block.m_nModel != 0) {
    rules.Fail();
    LError("(Design Control): %s type linear design can only generate linear", name);
    LPrint("     approximations.\n\n");
  }
}

void CheckModel(Rules& rules, const Design& design, int responses) {
  rules.NotBelow(responses, 1,
                 "(Design Control): Number of independent responses (%d) must be greater than 0 to",
                 "     generate approximations.\n\n");
  CheckModelSize(rules, design);
  CheckQuadratic(rules, design.block);
  CheckModelOfOption(rules, design.block);
}

void CheckFraction(Rules& rules, const Design& design, int o, const char* wrongOption) {
  if (o >= 0 && o < design.n) return;
  rules.Require(false, o, wrongOption,
                "       You may specify values from 0 to (# of independent variables - 1)\n");
  LPrint("       # of independent variables = %d.\n", design.n);
}

void CheckBoxBehnken(Rules& rules, const Design& design, int o) {
  if (design.n == 1) {
    rules.OneOf(o, {1}, "(Design Control): Box-Behnken designs for 1 design variable may only have",
                "     design option 1\n\n");
  } else if (design.n == 2) {
    rules.OneOf(o, {1, 2, 12},
                "(Design Control): Box-Behnken designs for 2 design variables may only have",
                "     design options 1, 2, or 12\n\n");
  } else {
    rules.OneOf(o, {1, 2, 3, 12, 13, 23, 123},
                "Design Control): Wrong option specified for Box-Behnken DOE: %d\n",
                "       The valid options are:\n", "       1 - perturb one variable at a time,\n",
                "       2 - perturb two variables at a time,\n",
                "       3 - perturb three variables at a time,\n",
                "       12 - perturb one and two variables at a time,\n",
                "       13 - perturb one and three variables at a time,\n",
                "       23 - perturb two and three variables at a time,\n",
                "       123 - perturb one, two, and three variables at a time.\n");
  }
}

void CheckPlackettBurman(Rules& rules, const Design& design, int o) {
  struct Range {
    int first, last, least;
    const char* text;
  };
  static constexpr std::array kRanges{
      Range{12, 19, 20, "     a design option with greater than 12 points.\n\n"},
      Range{20, 23, 24, "     a design option with greater than 20 points.\n\n"},
      Range{24, 27, 28, "     a design option with greater than 24 points.\n\n"},
      Range{28, 35, 36, "     a design option with greater than 28 points.\n\n"}};
  for (const Range& range : kRanges) {
    const bool applies = design.n >= range.first && design.n <= range.last;
    rules.Require(!applies || o >= range.least, design.n,
                  "(Design Control): Plackett-Burman designs for %d design variables must use",
                  range.text);
  }
  rules.NotAbove(design.n, 35,
                 "(Design Control): Plackett-Burman designs are not valid for more than",
                 "     35 design variables.\n\n");
}

void CheckHybrid(Rules& rules, const Design& design, int o) {
  constexpr const char* options = "     Valid design options are:\n";
  switch (design.n) {
    case 3:
      rules.OneOf(o, {3101, 3111, 3112},
                  "(Design Control): Invalid hybrid design option (%d) for 3 design variables.",
                  options, "          3101 - 3 variables, 10 points, design #1\n",
                  "          3111 - 3 variables, 11 points, design #1\n",
                  "          3112 - 3 variables, 11 points, design #2\n\n");
      break;
    case 4:
      rules.OneOf(o, {4161, 4162, 4163},
                  "(Design Control): Invalid hybrid design option (%d) for 4 design variables.",
                  options, "          4161 - 4 variables, 16 points, design #1\n",
                  "          4162 - 4 variables, 16 points, design #2\n",
                  "          4163 - 4 variables, 16 points, design #3\n\n");
      break;
    case 6:
      rules.OneOf(o, {6281, 6282},
                  "(Design Control): Invalid hybrid design option (%d) for 6 design variables.",
                  options, "          6281 - 6 variables, 28 points, design #1\n",
                  "          6282 - 6 variables, 28 points, design #2\n\n");
      break;
    default:
      rules.Fail();
      LError("(Design Control): Hybrid designs are valid for 3, 4, or 6 design variables.");
      LPrint("     You have %d design variables.\n\n", design.n);
  }
}

void CheckTaguchi(Rules& rules, const Design& design, int o) {
  const int n = design.n;
  if (n < 4) {
    rules.OneOf(o, {1, 2, 9, 27, 81},
                "(Design Control): Wrong option specified for Taguchi orthogonal arrays: %d\n",
                "       The following options are available for less than 4 variables:\n",
                "       1 - Latin Square #1,\n", "       2 - Latin Square #2,\n",
                "       9 - L9 Taguchi orthogonal array,\n",
                "       27 - L27 Taguchi orthogonal array,\n",
                "       81 - L81 Taguchi orthogonal array.\n");
  } else if (n == 4) {
    rules.Above(o, 8, "(Design Control): Taguchi designs with 4 design variables cannot use",
                "     Latin Square design options.\n\n");
  } else if (n <= 13) {
    rules.Require(o >= 27, n,
                  "(Design Control): Taguchi designs with %d design variables cannot use",
                  "     Latin Square or L9 design options.\n\n");
  } else if (n <= 40) {
    rules.Require(o >= 81, n,
                  "(Design Control): Taguchi designs with %d design variables can only use",
                  "     L81 design option.\n\n");
  } else {
    rules.Require(false, n,
                  "(Design Control): Taguchi designs are only valid for less than 41 design",
                  "     variables.\n\n");
  }
}

void CheckOption(Rules& rules, const Design& design) {
  if (design.block.m_nMethod < 0 || design.block.m_nMethod > 8) return;
  const int o = design.block.GetOption();
  switch (design.block.m_nMethod) {
    case 0:
      CheckFraction(rules, design, o,
                    "(Design Control): Wrong option specified for Factorial DOE: %d\n");
      break;
    case 1:
      CheckFraction(rules, design, o,
                    "(Design Control): Wrong option specified for Composite DOE: %d\n");
      break;
    case 2:
      CheckBoxBehnken(rules, design, o);
      break;
    case 3:
      CheckPlackettBurman(rules, design, o);
      break;
    case 7:
      CheckHybrid(rules, design, o);
      break;
    case 8:
      CheckTaguchi(rules, design, o);
      break;
    default:
      break;
  }
}

}  // namespace

bool CDOEControl::CheckParams(POD* pod, bool, bool, int nVars, int nIndResp, int, int nLocked,
                              int nRandom) const try {
  Design design{*this, nVars, GetDOEPointCnt(pod, nVars)};
  Rules rules(design.points >= 0);
  if (m_nDOptimal != 0) CheckDOptimal(rules, design, nLocked);
  WarnOfSizeAndFilter(design);
  if (m_nTask == kWithModels) CheckModel(rules, design, nIndResp);
  CheckOption(rules, design);
  rules.Require(m_nTask != kWithModels || nIndResp >= 1, nIndResp,
                "(Design Control): Independent responses not defined.",
                "     DOE cannot generate approximations without independent responses.\n\n");
  if (nRandom >= 1) {
    CheckAnyRandomAnalysis(
        rules, *this, "(Design Control): The random analysis method used with design of\n",
        "     experiments should be either Monte Carlo Sampling, \n",
        "     Approximate Monte Carlo Sampling, Latin Hypercube Sampling, Approximate\n",
        "     Latin Hypercube Sampling, or the Mean value approximation method.\n\n");
  }
  return rules.AllHold();
}
LOG_AND_RETHROW
