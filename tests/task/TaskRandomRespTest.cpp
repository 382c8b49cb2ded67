#include <filesystem>

#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "tests/task/RandomTables.h"

namespace {

using Lines = std::vector<std::string>;

/// The responses of a task's tables are checked; its variables are sound.
class RandomResponses : public RandomTables {
 protected:
  RandomResponses() { NormalVar(0); }
};

Lines NoSystem(const char* response) {
  return {"(Make Task) : Invalid random response child object found\n",
          std::string("     (see resp ") + response + ").  This should be the\n",
          "     system POF and must be an independent response.\n"};
}

Lines PassFail(const char* response) {
  return {"(Make Task) : Invalid random response parent object found\n",
          std::string("     (see resp ") + response + ").  Response random parent\n",
          "     objects cannot be pass/fail responses.\n"};
}

Lines NoDeviation(const char* response) {
  return {"(Make Task) : Invalid random response child object found\n",
          std::string("     (see resp ") + response + ").  This should be a \n",
          "     standard deviation random response child object and\n",
          "     must be an independent response.\n"};
}

Lines NoFailure(const char* response) {
  return {"(Make Task) : Invalid random response child object found\n",
          std::string("     (see resp ") + response + ").  This should be a \n",
          "     probability of failure random response child object and\n",
          "     must be an independent response.\n"};
}

Lines FreeParent(const char* child, const char* parent) {
  return {
      "(Make Task) : Cannot constrain the POF child random\n",
      std::string("     response object (see resp ") + child + ") without also constaining the\n",
      std::string("     corresponding parent random response object (see resp ") + parent + ").\n"};
}

Lines OneSideOnly(int vars, int resps) {
  return {"(Make Task) : Cannot have random design variables\n",
          "     without random responses or random responses\n",
          "     without random design variables.  The current\n",
          "     task has (" + std::to_string(vars) + ") random design variables\n",
          "     and (" + std::to_string(resps) + ") random responses defined.\n"};
}

// ---- The system's probability of failure ----

TEST_F(RandomResponses, StartWithTheSystemProbability) {
  for (const int parameter : {-4, -5}) {
    resps = CDResp(static_cast<POD*>(nullptr));
    resps.m_nID = 7;
    Resp(0, parameter);
    MeanResp(1);
    ExpectSound();
  }
}

TEST_F(RandomResponses, WithoutTheSystemProbabilityAtTheStartAreReported) {
  struct First {
    int random;
    int parameter;
    int kind;
    const char* printed;
  };
  for (const auto& [random, parameter, kind, printed] :
       {First{-1, -4, 24, "0 - R0"}, First{0, -3, 24, "0 - R0"}, First{0, -6, 24, "0 - R0"},
        First{0, -1, 24, "0 - R0"}, First{0, 0, 24, "0 - R0"}, First{0, 4, 24, "0 - R0"},
        First{0, -4, 25, "0 - LR0"}, First{0, -5, 26, "0 - SR0"}}) {
    resps = CDResp(static_cast<POD*>(nullptr));
    resps.m_nID = 7;
    Resp(random, parameter, kind);
    MeanResp(1);
    ExpectFaults({NoSystem(printed)});
  }
}

TEST_F(RandomResponses, ThatAreOneEntryEndThere) {
  Resp(0, -1);
  resps.m_vnPassFail = {1};
  ExpectFaults({NoSystem("0 - R0")});
}

// ---- Parents and children ----

TEST_F(RandomResponses, OfEachKindAreSoundParents) {
  SystemResp();
  MeanResp(1, vbIndependentResp);
  MeanResp(2, vbLinkedResp);
  Resp(-1, 0, vbLinkedResp);
  MeanResp(3, vbSyntheticResp);
  ExpectSound();
}

TEST_F(RandomResponses, ThatPassOrFailAreNoParents) {
  SystemResp();
  MeanResp(1);
  resps.m_vnPassFail = {0, 1, 0, 0};
  ExpectFaults({PassFail("1 - R1")});
}

TEST_F(RandomResponses, AreLookedUpAmongPassFailByTheirNumber) {
  SystemResp();
  Resp(-1, 0, vbLinkedResp);
  MeanResp(1);
  resps.m_vnPassFail = {0, 1, 0, 0};  // R1, which is entry 2
  ExpectSound();
  resps.m_vnPassFail = {0, 0, 1, 0};  // R2, the standard deviation
  ExpectFaults({PassFail("2 - R1")});
}

TEST_F(RandomResponses, AreNoPassFailByOtherFlagsThanOne) {
  SystemResp();
  MeanResp(1);
  for (const std::vector<vbINT32>& flags :
       {std::vector<vbINT32>{}, {1}, {1, 0, 1, 1}, {1, 2}, {1, -1}}) {
    resps.m_vnPassFail = flags;
    ExpectSound();
  }
}

TEST_F(RandomResponses, WithoutADeviationAreReported) {
  SystemResp();
  for (const int parameter : {0, -1, -3, 2}) {
    // A mean in this place would be a parent of its own.
    Resp(1, -1);
    Resp(parameter == -1 ? -1 : 1, parameter);
    Resp(1, -3);
  }
  ExpectFaults({NoDeviation("2 - R2"), NoDeviation("5 - R5"), NoDeviation("8 - R8"),
                NoDeviation("11 - R11")});
}

TEST_F(RandomResponses, WithADeviationOfAnotherKindAreReported) {
  SystemResp();
  for (const int kind : {25, 26}) {
    Resp(1, -1);
    Resp(1, -2, kind);
    Resp(1, -3);
  }
  ExpectFaults({NoDeviation("2 - LR0"), NoDeviation("5 - SR0")});
}

TEST_F(RandomResponses, WithoutAProbabilityOfFailureAreReported) {
  SystemResp();
  for (const int parameter : {0, -2, -4, 3}) {
    Resp(1, -1);
    Resp(1, -2);
    Resp(1, parameter);
  }
  ExpectFaults(
      {NoFailure("3 - R3"), NoFailure("6 - R6"), NoFailure("9 - R9"), NoFailure("12 - R12")});
}

TEST_F(RandomResponses, WithAProbabilityOfFailureOfAnotherKindAreReported) {
  SystemResp();
  for (const int kind : {25, 26}) {
    Resp(1, -1);
    Resp(1, -2);
    Resp(1, -3, kind);
  }
  ExpectFaults({NoFailure("3 - LR0"), NoFailure("6 - SR0")});
}

TEST_F(RandomResponses, HaveChildrenByParameterAlone) {
  SystemResp();
  Resp(1, -1);
  Resp(-1, -2);
  Resp(-1, -3);
  ExpectSound();
}

TEST_F(RandomResponses, AtTheEndOfTheTableLackTheirChildren) {
  SystemResp();
  Resp(1, -1);
  ExpectFaults({NoDeviation("2 - "), NoFailure("3 - ")});
}

TEST_F(RandomResponses, BeforeTheLastEntryLackTheirProbability) {
  SystemResp();
  Resp(1, -1);
  Resp(1, -2);
  ExpectFaults({NoFailure("3 - ")});
}

TEST_F(RandomResponses, ThatAreNoMeanAreNotLookedAt) {
  SystemResp();
  resps.m_vnPassFail.assign(9, 1);
  for (const int parameter : {0, -2, -3, -4, -5, 1}) Resp(1, parameter, vbLinkedResp);
  Resp(-1, -1);
  Resp(-1, 0);
  ExpectSound();
}

// ---- Constraints ----

TEST_F(RandomResponses, MayHaveAFreeProbabilityUnderAConstrainedParent) {
  SystemResp();
  MeanResp(1);
  Constrain(24, 1);
  ExpectSound();
}

TEST_F(RandomResponses, MayBothBeConstrained) {
  SystemResp();
  MeanResp(1);
  Constrain(24, 3);
  Constrain(24, 1);
  ExpectSound();
}

TEST_F(RandomResponses, WithAConstrainedProbabilityUnderAFreeParentAreReported) {
  SystemResp();
  MeanResp(1);
  Constrain(24, 3);
  ExpectFaults({FreeParent("3 - R3", "1 - R1")});
}

TEST_F(RandomResponses, AreConstrainedByKindAndPosition) {
  SystemResp();
  MeanResp(1, vbLinkedResp);  // LR0; its probability is entry 3, R2
  Constrain(24, 0);
  Constrain(25, 2);
  Constrain(24, 3);
  Constrain(21, 0);
  ExpectSound();
  Constrain(24, 2);
  ExpectFaults({FreeParent("3 - R2", "1 - LR0")});
  Constrain(25, 0);
  ExpectSound();
}

TEST_F(RandomResponses, AreConstrainedInTheirOwnTask) {
  SystemResp();
  MeanResp(1);
  Constrain(24, 3);
  CDCons other = cons;
  other.m_nID = 8;
  other.m_vnSubj = {1};
  Store(other);
  ExpectFaults({FreeParent("3 - R3", "1 - R1")});
}

// ---- Both sides ----

class RandomBothSides : public RandomTables {};

TEST_F(RandomBothSides, OfNothingRandomNeedNothing) {
  ClearLog();
  task.m_nType = 99;
  EXPECT_TRUE(task.CheckRandDVarResp(study.Pod(), 0, 0));
  EXPECT_TRUE(task.CheckRandDVarResp(nullptr, 0, 0));
  EXPECT_TRUE(Log().empty());
}

TEST_F(RandomBothSides, AreRequiredTogether) {
  NormalVar(0);
  SystemResp();
  StoreAll();
  EXPECT_FALSE(CheckStored(1, 0));
  EXPECT_EQ(PrintedLines(), Faults({OneSideOnly(1, 0)}));
  EXPECT_FALSE(CheckStored(0, 3));
  EXPECT_EQ(PrintedLines(), Faults({OneSideOnly(0, 3)}));
  EXPECT_TRUE(CheckStored(1, 3));
  EXPECT_EQ(PrintedLines(), Faults({}));
}

TEST_F(RandomBothSides, MissingOneOfThemAreWalkedAllTheSame) {
  for (int i = 0; i < 9; ++i) NormalVar(i);
  vars.m_vnRandDist.push_back(kNormal);
  Var(9, -1, 10.0);
  Var(-1, 0, 1.0);
  Resp(-1, 0);
  resps.m_vnRandIndex.clear();
  resps.m_vnRBOParam.clear();
  EXPECT_FALSE(Check(10, 0));
  EXPECT_EQ(PrintedLines(), Faults({OneSideOnly(10, 0),
                                    {"(Make Task) : Invalid random dvar child object found\n",
                                     "     (see dvar 18 - I18).  This should be a\n",
                                     "     standard deviation random child object."},
                                    NoSystem("0 - R0")}));
}

TEST_F(RandomBothSides, WithoutAnyResponseFailByTheFirstRuleAlone) {
  NormalVar(0);
  EXPECT_FALSE(Check(1, 0));
  EXPECT_EQ(PrintedLines(), Faults({OneSideOnly(1, 0)}));
}

TEST_F(RandomBothSides, ThatAreAllWrongAreReportedInOrder) {
  SetMethod(3, 2);
  vars.m_vnRandDist = {kLognormal, kWeibull, kNormal};
  Var(0, -1, 1.0, vbConstantVar);
  Var(-1, 0, 0.0, vbLinkedVar);
  Var(1, 0, 1.0, vbConstantVar);
  Var(1, 2, -1.0, vbConstantVar);
  Var(1, 1, -2.0, vbConstantVar);
  Var(2, 0, 1.0, vbConstantVar);
  Var(2, -2, -0.5, vbSyntheticVar);
  Resp(0, -3, vbSyntheticResp);
  Resp(1, -1);
  Resp(1, -3, vbLinkedResp);
  Resp(1, -2);
  resps.m_vnPassFail = {0, 1};
  Constrain(24, 1);
  EXPECT_FALSE(Check(0, 2));
  EXPECT_EQ(
      PrintedLines(),
      Faults(
          {OneSideOnly(0, 2),
           {"(Make Task) : Invalid random dvar child object found\n",
            "     (see dvar 0 - C0).  This should be a\n",
            "     standard deviation random child object."},
           {"(Make Task) : Invalid lower bound standard deviation value for\n",
            "     the Log Normal distribution of dvar 0 (C0).\n", "     The supplied value = 0\n",
            "     The allowed value should be > 0\n"},
           {"(Make Task) : Invalid lower bound mean value for the Log Normal\n",
            "     distribution of dvar 0 (C0).\n", "     The supplied value = 1\n",
            "     The allowed value should be > 1\n"},
           {"(Make Task) : Cannot have a constant mean specification when\n",
            "     using one of the approximate probabilistic\n", "     methods (see dvar 0 - C0)."},
           {"(Make Task) : Invalid random dvar child object found\n",
            "     (see dvar 2 - C1).  This should be \n",
            "     a parameter 2 random child object."},
           {"(Make Task) : Invalid random dvar child object found\n",
            "     (see dvar 2 - C1).  This should be\n", "     a parameter 3 random child object."},
           {"(Make Task) : Invalid lower bound scale parameter (2nd parameter, eta)\n",
            "     value for the Weibull distribution of dvar 2 (C1).\n",
            "     The supplied value = -1\n", "     The allowed value should be > 0\n"},
           {"(Make Task) : Invalid lower bound shape parameter or slope (3rd parameter,\n",
            "     beta) value for the Weibull distribution of dvar 2 (C1).\n",
            "     The supplied value = -2\n", "     The allowed value should be > 0\n"},
           {"(Make Task) : Cannot have a distribution with all constant Parameter\n",
            "     specifications when using one of the approximate probabilistic\n",
            "     methods (see dvar 2 - C1)."},
           {"(Make Task) : Invalid random dvar child object found\n",
            "     (see dvar 5 - C4).  This should be \n",
            "     a parameter 2 random child object."},
           {"(Make Task) : Invalid standard deviation lower bound value\n",
            "     (2nd parameter) for the Normal distribution of dvar 5 (C4).\n",
            "     The supplied value = -0.5\n", "     The allowed value should be > 0\n"},
           {"(Make Task) : Cannot have a Normal distribution with constant Param1\n",
            "     specification when using one of the approximate probabilistic\n",
            "     methods (see dvar 5 - C4)."},
           NoSystem("0 - SR0"),
           PassFail("1 - R0"),
           NoDeviation("2 - LR0"),
           NoFailure("3 - R1"),
           FreeParent("3 - R1", "1 - R0")}));
}

// ---- Failures ----

TEST_F(RandomBothSides, OfTasksOfNoKnownTypeAreRefused) {
  StoreAll();
  for (const int type : {-1, 5}) {
    task.m_nType = type;
    EXPECT_THROW(CheckStored(), CInvalidType) << type;
    EXPECT_THROW(CheckStored(1, 0), CInvalidType) << type;
    EXPECT_TRUE(PrintedLines().empty());
  }
}

TEST_F(RandomBothSides, NeedADatabase) {
  EXPECT_THROW(task.CheckRandDVarResp(nullptr, 1, 1), CNoDatabaseOpen);
}

class RandomTablesMissing : public RandomTables {
 protected:
  RandomTablesMissing() {
    NormalVar(0);
    SystemResp();
    MeanResp(1);
  }

  template <class Record>
  void Remove() {
    Record record(study.Pod());
    record.m_nID = 7;
    ASSERT_TRUE(record.RemoveObject());
  }
  void ExpectNotFound() {
    try {
      CheckStored();
      ADD_FAILURE();
    } catch (const CObjectNotFound& error) {
      EXPECT_STREQ(error.what(), "Object not found");
    }
    EXPECT_FALSE(std::filesystem::exists(study.LockPath()));
  }
};

TEST_F(RandomTablesMissing, AreToldForVariables) {
  StoreAll();
  Remove<CDVar>();
  ExpectNotFound();
}

TEST_F(RandomTablesMissing, AreToldForResponses) {
  StoreAll();
  Remove<CDResp>();
  ExpectNotFound();
}

TEST_F(RandomTablesMissing, AreToldForConstraints) {
  StoreAll();
  Remove<CDCons>();
  ExpectNotFound();
}

TEST_F(RandomTablesMissing, AreToldForTheFirstPoint) {
  first.m_nPointID = 1;
  StoreAll();
  ExpectNotFound();
}

TEST_F(RandomTablesMissing, AreNotTakenFromAnotherTask) {
  StoreAll();
  task.m_nID = 8;
  ExpectNotFound();
}

TEST_F(RandomTables, AreReadUnderTheLock) {
  NormalVar(0);
  SystemResp();
  StoreAll();
  std::filesystem::create_directory(study.LockPath());
  EXPECT_THROW(CheckStored(), CFileLock);
  std::filesystem::remove(study.LockPath());
  EXPECT_TRUE(CheckStored());
  EXPECT_FALSE(std::filesystem::exists(study.LockPath()));
}

TEST_F(RandomTables, AreReadWithinALockOfTheCaller) {
  NormalVar(0);
  SystemResp();
  StoreAll();
  const CLock lock(study.Pod(), 0);
  EXPECT_TRUE(CheckStored());
  EXPECT_TRUE(std::filesystem::exists(study.LockPath()));
}

}  // namespace
