#include <climits>
#include <string>

#include "tests/control/DOECheck.h"

// The rules on the model that is fitted to a design.

namespace {

constexpr int kFactorial = 0;
constexpr int kPlackettBurman = 3;
constexpr int kNotz = 4;
constexpr int kKoshal = 5;
constexpr int kRechtschaffner = 6;
constexpr int kRandom = 10;
constexpr int kMixedRegression = 4;

// ---- Models and their terms ----

LogLines NoResponses(int responses) {
  return Fault("(Design Control): Number of independent responses (" + std::to_string(responses) +
                   ") must be greater than 0 to",
               {"     generate approximations.\n\n"});
}

const LogLines noIndependentResponses =
    Fault("(Design Control): Independent responses not defined.",
          {"     DOE cannot generate approximations without independent responses.\n\n"});

LogLines TooManyTerms(int terms, int pointsAndOne) {
  return Fault("(Design Control): The approximations cannot be created with the current design",
               {"     and desired model. The number of terms in the approximations (" +
                    std::to_string(terms) + ") is",
                "     greater than the number of design points + 1 (" +
                    std::to_string(pointsAndOne) + ").\n\n"});
}

TEST(DesignModel, ModelsNeedAnIndependentResponseAndSayItTwice) {
  const CDOEControl block = WithModel(DOEDesign(kRandom, 10), 0);
  ExpectSound(block, {.responses = 1});
  for (const int responses : {0, -1}) {
    ExpectFault(block, {.responses = responses},
                Joined({NoResponses(responses), noIndependentResponses}));
  }
}

TEST(DesignModel, NoModelsAreLookedAtWhereNoneAreAskedFor) {
  for (const int task : {0, 1, 3, -1}) {
    CDOEControl block = WithModel(DOEDesign(kKoshal, 10), 7);
    block.m_nTask = task;
    ExpectSound(block, {.responses = 0});
    block = WithModel(DOEDesign(kFactorial, 0), 3);
    block.m_nTask = task;
    ExpectSound(block, {.responses = 0});
  }
}

TEST(DesignModel, AModelHasAtMostOneTermMoreThanPoints) {
  struct Terms {
    int model, vars, terms;
  };
  const Terms cases[] = {{0, 1, 2}, {0, 4, 5}, {1, 1, 2},  {1, 4, 11}, {2, 1, 3},
                         {2, 4, 9}, {3, 1, 3}, {3, 4, 15}, {0, 0, 1},  {3, 10, 66}};
  for (const auto& [model, vars, terms] : cases) {
    SCOPED_TRACE("model " + std::to_string(model) + ", " + std::to_string(vars) + " variables");
    ExpectSound(WithModel(DOEDesign(kRandom, terms), model), {.vars = vars});
    ExpectSound(WithModel(DOEDesign(kRandom, terms - 1), model), {.vars = vars});
    if (terms < 2) continue;  // no design has fewer points than none
    ExpectFault(WithModel(DOEDesign(kRandom, terms - 2), model), {.vars = vars},
                TooManyTerms(terms, terms - 1));
  }
}

TEST(DesignModel, RetainedPointsCountForAModel) {
  ExpectSound(WithModel(DOptimal(100, 14), 3), {.vars = 4});
  ExpectFault(WithModel(DOptimal(100, 13), 3), {.vars = 4}, TooManyTerms(15, 14));
}

TEST(DesignModel, OtherModelsAreInvalid) {
  for (const int model : {-1, 5, INT_MAX}) {
    ExpectFault(WithModel(DOEDesign(kRandom, 100), model), {},
                Fault("(Design Control): Invalid DOE model.\n", {}));
  }
}

// ---- Mixed forward regression ----

LogLines FewPoints(int points, int needed) {
  return Warning(
      "(Design Control): Small number design points (" + std::to_string(points) +
          ") for Mixed Forward Regression.",
      {"     Number of design points should at least equal " + std::to_string(needed) + ".\n\n"});
}

LogLines FewDOptimalPoints(int needed) {
  return Fault("(Design Control): Invalid number of D-Optimal design points.",
               {"     Mixed Forward Regression with D-Optimal design requires at least " +
                    std::to_string(needed) + "\n",
                "     design points.\n\n"});
}

const LogLines lessThanTwoPoints =
    Fault("(Design Control): Mixed Forward Regression requires at least 2 design points.\n", {});

CDOEControl Mixed(int points) {
  return WithModel(DOEDesign(kRandom, points), kMixedRegression);
}

TEST(DesignModel, MixedRegressionWarnsOfFewPoints) {
  ExpectSound(Mixed(3), {.vars = 4});
  ExpectWarned(Mixed(2), {.vars = 4}, FewPoints(2, 5));
  ExpectWarned(Mixed(5), {.vars = 100}, FewPoints(5, 101));
}

TEST(DesignModel, MixedRegressionNeedsTwoPoints) {
  ExpectSound(Mixed(2), {.vars = 1});
  ExpectFault(Mixed(1), {.vars = 1}, lessThanTwoPoints);
  ExpectFault(Mixed(1), {.vars = 2}, lessThanTwoPoints);
  ExpectFault(Mixed(1), {.vars = 3}, Joined({FewPoints(1, 4), lessThanTwoPoints}));
  ExpectFault(Mixed(0), {.vars = 0}, lessThanTwoPoints);
}

TEST(DesignModel, MixedRegressionWithADOptimalDesignNeedsMorePointsThanVariables) {
  ExpectSound(WithModel(DOptimal(20, 5), kMixedRegression), {.vars = 4});
  ExpectFault(WithModel(DOptimal(20, 4), kMixedRegression), {.vars = 4},
              Joined({FewerThanVariables(4, 5), FewDOptimalPoints(5)}));
  ExpectFault(WithModel(DOptimal(20, 2), kMixedRegression), {.vars = 4},
              Joined({FewerThanVariables(2, 5), FewPoints(2, 5), FewDOptimalPoints(5)}));
}

// ---- Models that a design can't serve ----

TEST(DesignModel, FactorialPlackettBurmanAndNotzServeNoQuadraticModel) {
  struct Named {
    int method, option;
    const char* name;
  };
  for (const auto& [method, option, name] :
       {Named{kFactorial, 0, "Factorial"}, Named{kPlackettBurman, 20, "Plackett-Burman"},
        Named{kNotz, -1, "Notz"}}) {
    SCOPED_TRACE(name);
    for (const int model : {0, 1, 4}) {
      ExpectSound(WithModel(DOEDesign(method, option), model), {.vars = 4});
    }
    for (const int model : {2, 3}) {
      ExpectFault(
          WithModel(DOEDesign(method, option), model), {.vars = 4},
          Fault("(Design Control): " + std::string(name) + " type design cannot generate quadratic",
                {}));
    }
  }
}

TEST(DesignModel, OtherDesignsServeQuadraticModels) {
  struct Other {
    int method, option;
  };
  for (const auto& [method, option] :
       {Other{1, 0}, Other{2, 2}, Other{7, 4161}, Other{8, 27}, Other{12, 14}, Other{13, 14}}) {
    SCOPED_TRACE(method);
    for (const int model : {2, 3}) {
      ExpectSound(WithModel(DOEDesign(method, option), model), {.vars = 4});
    }
  }
}

/// What is reported of a Koshal or Rechtschaffner design with that option and model.
LogLines OptionsFault(const std::string& name, int option, int model) {
  if (option == 11 && model > 1) {
    return Fault("(Design Control): " + name + " type linear with interactions design can only",
                 {"     generate linear with interactions type approximations.\n\n"});
  }
  if (option == 20 && model == 1) {
    return Fault("(Design Control): " + name + " type pure quadratic design cannot generate",
                 {"     linear with interactions type approximations.\n\n"});
  }
  if (option == 20 && model == 3) {
    return Fault("(Design Control): " + name + " type pure quadratic design cannot generate",
                 {"     full quadratic approximations.\n\n"});
  }
  if (option == 10 && model != 0) {
    return Fault("(Design Control): " + name + " type linear design can only generate linear",
                 {"     approximations.\n\n"});
  }
  return {};
}

TEST(DesignModel, KoshalAndRechtschaffnerServeTheModelsOfTheirOption) {
  for (const int method : {kKoshal, kRechtschaffner}) {
    const std::string name = method == kKoshal ? "Koshal" : "Rechtschaffner";
    for (const int option : {10, 11, 20, 21, 0}) {
      for (const int model : {0, 1, 2, 3, 4}) {
        SCOPED_TRACE(name + " " + std::to_string(option) + ", model " + std::to_string(model));
        const CDOEControl block = WithModel(DOEDesign(method, option), model);
        const LogLines fault = OptionsFault(name, option, model);
        // one variable: every model has few enough terms
        if (fault.empty()) {
          ExpectSound(block, {.vars = 1});
        } else {
          ExpectFault(block, {.vars = 1}, fault);
        }
      }
    }
  }
}

TEST(DesignModel, AnInvalidModelIsNoModelOfAnOptionEither) {
  const LogLines invalid = Fault("(Design Control): Invalid DOE model.\n", {});
  for (const int option : {10, 11}) {
    ExpectFault(WithModel(DOEDesign(kKoshal, option), 5), {},
                Joined({invalid, OptionsFault("Koshal", option, 5)}));
  }
}

}  // namespace
