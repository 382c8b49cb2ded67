#include <array>

#include "store/KestErr.h"
#include "tests/task/RandomTables.h"

namespace {

using Lines = std::vector<std::string>;

/// The variables of a task's tables are checked; its responses are sound.
class RandomVariables : public RandomTables {
 protected:
  RandomVariables() { SystemResp(); }

  void Distributed(Distribution distribution) { vars.m_vnRandDist.push_back(distribution); }
};

Lines NoDeviation(const char* variable) {
  return {"(Make Task) : Invalid random dvar child object found\n",
          std::string("     (see dvar ") + variable + ").  This should be a\n",
          "     standard deviation random child object."};
}

Lines NoSecondParameter(const char* variable) {
  return {"(Make Task) : Invalid random dvar child object found\n",
          std::string("     (see dvar ") + variable + ").  This should be \n",
          "     a parameter 2 random child object."};
}

Lines NoThirdParameter(const char* variable) {
  return {"(Make Task) : Invalid random dvar child object found\n",
          std::string("     (see dvar ") + variable + ").  This should be\n",
          "     a parameter 3 random child object."};
}

Lines ConstantMean(const char* variable) {
  return {"(Make Task) : Cannot have a constant mean specification when\n",
          "     using one of the approximate probabilistic\n",
          std::string("     methods (see dvar ") + variable + ")."};
}

Lines ConstantNormal(const char* variable) {
  return {"(Make Task) : Cannot have a Normal distribution with constant Param1\n",
          "     specification when using one of the approximate probabilistic\n",
          std::string("     methods (see dvar ") + variable + ")."};
}

Lines AllConstant(const char* variable) {
  return {"(Make Task) : Cannot have a distribution with all constant Parameter\n",
          "     specifications when using one of the approximate probabilistic\n",
          std::string("     methods (see dvar ") + variable + ")."};
}

Lines NormalDeviation(const char* variable, const char* value) {
  return {"(Make Task) : Invalid lower bound standard deviation value for\n",
          std::string("     the Normal distribution of dvar ") + variable + ").\n",
          std::string("     The supplied value = ") + value + "\n",
          "     The allowed value should be > 0\n"};
}

// ---- Mean and standard deviation ----

TEST_F(RandomVariables, WithMeanAndDeviationAreSound) {
  for (const auto distribution : {kNormal, kUniform, kLognormal, kWeibull}) {
    const int random = static_cast<int>(vars.m_vnRandDist.size());
    Distributed(distribution);
    Var(-1, 0, 0.0);
    Var(random, -1, 10.0);
    Var(random, -2, 1.0);
  }
  ExpectSound();
}

TEST_F(RandomVariables, WithoutADeviationBehindTheirMeanAreReported) {
  Distributed(kNormal);
  Var(-1, 0, 0.0);
  Var(0, -1, 10.0);
  Var(-1, 0, 1.0);
  ExpectFaults({NoDeviation("1 - I1")});
}

TEST_F(RandomVariables, WithADeviationThatIsNotRandomAreReported) {
  Distributed(kNormal);
  Var(0, -1, 10.0);
  Var(-1, -2, 1.0);
  ExpectFaults({NoDeviation("0 - I0")});
}

TEST_F(RandomVariables, WithAnotherParameterBehindTheirMeanAreReported) {
  for (const int parameter : {1, 2, -3}) {
    vars = CDVar(static_cast<POD*>(nullptr));
    vars.m_nID = 7;
    Distributed(kNormal);
    Var(0, -1, 10.0);
    Var(0, parameter, 1.0);
    ExpectFaults({NoDeviation("0 - I0")});
  }
}

TEST_F(RandomVariables, WithTheirMeanAtTheEndOfTheTableAreReported) {
  Distributed(kNormal);
  Var(-1, 0, 0.0);
  Var(0, -1, 10.0);
  ExpectFaults({NoDeviation("1 - I1"), NormalDeviation("1 (I1", "0")});
}

TEST_F(RandomVariables, AreNamedFromTheTableOfTheirKind) {
  for (const int kind : {20, 21, 22, 23}) {
    const int random = static_cast<int>(vars.m_vnRandDist.size());
    Distributed(kNormal);
    Var(random, -1, 10.0, kind);
    Var(-1, 0, 1.0, kind);
  }
  ExpectFaults(
      {NoDeviation("0 - I0"), NoDeviation("2 - L0"), NoDeviation("4 - S0"), NoDeviation("6 - C0")});
}

TEST_F(RandomVariables, AreCheckedByTheLowerBoundsOfTheirEntries) {
  for (const int kind : {20, 21, 22, 23}) {
    const int random = static_cast<int>(vars.m_vnRandDist.size());
    Distributed(kLognormal);
    Var(random, -1, 0.5 + kind, kind);
    Var(random, -2, -kind, kind);
  }
  Distributed(kWeibull);
  Var(4, -1, -1.5, vbConstantVar);
  Var(4, -2, 1.0);
  const auto fault = [](const char* variable, const char* value) {
    return Lines{"(Make Task) : Invalid lower bound standard deviation value for\n",
                 std::string("     the Log Normal distribution of dvar ") + variable + ").\n",
                 std::string("     The supplied value = ") + value + "\n",
                 "     The allowed value should be > 0\n"};
  };
  ExpectFaults({fault("0 (I0", "-20"),
                fault("2 (L0", "-21"),
                fault("4 (S0", "-22"),
                fault("6 (C0", "-23"),
                {"(Make Task) : Invalid lower bound mean value for the Weibull\n",
                 "     distribution of dvar 8 (C2).\n", "     The supplied value = -1.5\n",
                 "     The allowed mean value should be > 0\n"}});
}

TEST_F(RandomVariables, HaveTheDistributionOfTheirNumber) {
  vars.m_vnRandDist = {kUniform, kNormal};
  Var(1, -1, 10.0);
  Var(1, -2, 1e-13);
  Var(0, -1, 10.0);
  Var(0, -2, 1e-13);
  ExpectFaults({NormalDeviation("0 (I0", "1e-13"),
                {"(Make Task) : Invalid lower bound standard deviation value for\n",
                 "     the Uniform distribution of dvar 2 (I2).\n",
                 "     The supplied value = 1e-13\n", "     The allowed value should be > 0\n"}});
}

TEST_F(RandomVariables, OfUnknownDistributionAreRefused) {
  vars.m_vnRandDist = {4};
  Var(0, -1, 10.0);
  Var(0, -2, 1.0);
  EXPECT_THROW(Check(), CInvalidType);
  EXPECT_EQ(PrintedLines(),
            Faults({{"(Make Task) : Invalid distribution type of the random variable.\n"}}));
}

TEST_F(RandomVariables, WithAConstantMeanNeedAnApproximateSampling) {
  Distributed(kNormal);
  Var(0, -1, 10.0, vbConstantVar);
  Var(0, -2, 1.0);
  for (int type = 0; type <= 4; ++type) {
    for (const int method : {0, 1, 2}) {
      SCOPED_TRACE(type * 10 + method);
      SetMethod(type, method);
      ExpectFaults({ConstantMean("0 - C0")});
    }
    for (const int method : {3, 4}) {
      SCOPED_TRACE(type * 10 + method);
      SetMethod(type, method);
      ExpectSound();
    }
  }
}

TEST_F(RandomVariables, WithAMeanThatVariesAreSoundByEveryMethod) {
  Distributed(kNormal);
  Var(0, -1, 10.0, vbLinkedVar);
  Var(0, -2, 1.0, vbConstantVar);
  for (const int method : {0, 1, 2, 3, 4}) {
    SetMethod(0, method);
    ExpectSound();
  }
}

// ---- Parameters ----

TEST_F(RandomVariables, WithTheirParametersAreSound) {
  Distributed(kNormal);
  Var(0, 0, 0.0);
  Var(0, 1, 1.0);
  Distributed(kUniform);
  Var(1, 0, 1.0);
  Var(1, 1, 2.0);
  Distributed(kLognormal);
  Var(2, 0, 1.0);
  Var(2, 1, 2.0);
  Distributed(kWeibull);
  Var(3, 0, 0.0);
  Var(3, 1, 1.0);
  Var(3, 2, 2.0);
  ExpectSound();
}

TEST_F(RandomVariables, WithoutASecondParameterAreReported) {
  Distributed(kUniform);
  Var(-1, 0, 0.0);
  Var(0, 0, 1.0);
  Var(-1, 1, 2.0);
  ExpectFaults({NoSecondParameter("1 - I1")});
}

TEST_F(RandomVariables, WithAnotherParameterBehindTheirFirstAreReported) {
  for (const int parameter : {2, -2, 3}) {
    vars = CDVar(static_cast<POD*>(nullptr));
    vars.m_nID = 7;
    Distributed(kUniform);
    Var(0, 0, 1.0);
    Var(0, parameter, 2.0);
    ExpectFaults({NoSecondParameter("0 - I0")});
  }
}

TEST_F(RandomVariables, WithoutAThirdParameterOfAWeibullAreReported) {
  for (const auto& [random, parameter] : {std::pair{-1, 2}, {0, 1}, {0, -2}, {0, 3}}) {
    vars = CDVar(static_cast<POD*>(nullptr));
    vars.m_nID = 7;
    Distributed(kWeibull);
    Var(-1, 0, 0.0);
    Var(0, 0, 1.0);
    Var(0, 1, 1.0);
    Var(random, parameter, 1.0);
    ExpectFaults({NoThirdParameter("1 - I1")});
  }
}

TEST_F(RandomVariables, WithNoParameterBehindTheirFirstLackBoth) {
  Distributed(kWeibull);
  Var(0, 0, 1.0);
  ExpectFaults({NoSecondParameter("0 - I0"),
                NoThirdParameter("0 - I0"),
                {"(Make Task) : Invalid lower bound scale parameter (2nd parameter, eta)\n",
                 "     value for the Weibull distribution of dvar 0 (I0).\n",
                 "     The supplied value = 0\n", "     The allowed value should be > 0\n"},
                {"(Make Task) : Invalid lower bound shape parameter or slope (3rd parameter,\n",
                 "     beta) value for the Weibull distribution of dvar 0 (I0).\n",
                 "     The supplied value = 0\n", "     The allowed value should be > 0\n"}});
}

TEST_F(RandomVariables, AreCheckedByAllTheirParameters) {
  Distributed(kUniform);
  Var(0, 0, 2.0, vbLinkedVar);
  Var(0, 1, 1.0, vbConstantVar);
  Distributed(kWeibull);
  Var(1, 0, -1.0);
  Var(1, 1, 1.0);
  Var(1, 2, -3.0, vbConstantVar);
  ExpectFaults(
      {{"(Make Task) : Invalid lower bound bounds specification for the\n",
        "     Uniform distribution of dvar 0 (L0).\n",
        "     Upper bound (2nd parameter) is < Lower bound (1st parameter)\n", "     (1 < 2)\n"},
       {"(Make Task) : Invalid lower bound shape parameter or slope (3rd parameter,\n",
        "     beta) value for the Weibull distribution of dvar 2 (I0).\n",
        "     The supplied value = -3\n", "     The allowed value should be > 0\n"}});
}

TEST_F(RandomVariables, OfNormalWithAConstantFirstParameterFailByEveryMethod) {
  Distributed(kNormal);
  Var(0, 0, 1.0, vbConstantVar);
  Var(0, 1, 1.0);
  Distributed(kNormal);
  Var(1, 0, 1.0, vbConstantVar);
  Var(1, 1, 1.0, vbConstantVar);
  Distributed(kNormal);
  Var(2, 0, 1.0);
  Var(2, 1, 1.0, vbConstantVar);
  for (const int method : {0, 1, 2, 3, 4}) {
    SetMethod(0, method);
    ExpectFaults({ConstantNormal("0 - C0"), ConstantNormal("2 - C1")});
  }
}

TEST_F(RandomVariables, WithTwoConstantParametersFailByEveryMethod) {
  for (const auto distribution : {kUniform, kLognormal}) {
    for (const auto& [a, b] : {std::pair{23, 23}, {23, 20}, {23, 21}, {23, 22}, {20, 23}}) {
      const int random = static_cast<int>(vars.m_vnRandDist.size());
      Distributed(distribution);
      Var(random, 0, 1.0, a);
      Var(random, 1, 2.0, b);
    }
  }
  for (const int method : {0, 1, 2, 3, 4}) {
    SetMethod(0, method);
    ExpectFaults({AllConstant("0 - C0"), AllConstant("10 - C6")});
  }
}

TEST_F(RandomVariables, OfWeibullFailWithThreeConstantParametersOnly) {
  for (const auto& [a, b, c] : {std::array{23, 23, 23}, {23, 23, 20}, {23, 20, 23}, {20, 23, 23}}) {
    const int random = static_cast<int>(vars.m_vnRandDist.size());
    Distributed(kWeibull);
    Var(random, 0, 1.0, a);
    Var(random, 1, 1.0, b);
    Var(random, 2, 1.0, c);
  }
  for (const int method : {0, 1, 2, 3, 4}) {
    SetMethod(0, method);
    ExpectFaults({AllConstant("0 - C0")});
  }
}

// ---- Entries that are passed over ----

TEST_F(RandomVariables, ThatAreChildrenAreNotLookedAt) {
  for (const int parameter : {-2, 1, 2, 3, -3, 100}) Var(0, parameter, -1.0, vbConstantVar);
  ExpectSound();
}

TEST_F(RandomVariables, ThatAreNotRandomAreNotLookedAt) {
  Var(-1, -1, -1.0, vbConstantVar);
  Var(-1, 0, -1.0, vbConstantVar);
  Var(-2, 0, -1.0);
  ExpectSound();
}

TEST_F(RandomVariables, WithoutATableOfRandomNumbersAreNotRandom) {
  Var(-1, 0, -1.0);
  Var(-1, 0, -1.0);
  vars.m_vnRandIndex.clear();
  vars.m_vnRandParam.clear();
  ExpectSound();
}
}  // namespace
