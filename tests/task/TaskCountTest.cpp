#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <set>

#include "definition/GPoint.h"
#include "store/KestErr.h"
#include "tests/task/Definitions.h"

// What the counters of a task make of a study.

namespace {

/// Independent, linked, synthetic, constant, combinatorial, discrete or integer, constraints,
/// objectives, random.
using InputCounts = std::array<int, 9>;
/// Independent, linked, synthetic, constraints, objectives, random.
using RespCounts = std::array<int, 6>;
/// Used, run, locked.
using PointCounts = std::array<int, 3>;

class TaskCount : public Definitions {
 protected:
  static InputCounts InputsOf(CTask task, InputCounts counts = {}) {
    auto& c = counts;
    task.CountInputs(&c[0], &c[1], &c[2], &c[3], &c[4], &c[5], &c[6], &c[7], &c[8]);
    return counts;
  }
  static RespCounts RespsOf(CTask task, RespCounts counts = {}) {
    auto& c = counts;
    task.CountResps(&c[0], &c[1], &c[2], &c[3], &c[4], &c[5]);
    return counts;
  }
  static PointCounts PointsOf(CTask task, PointCounts counts = {}) {
    task.CountGPoints(&counts[0], &counts[1], &counts[2]);
    return counts;
  }

  /// The counts of a study with this Input and no other, of three elements and bounds 0 and 1.
  InputCounts OneInput(int type, const std::function<void(CInput&)>& change = {}) {
    PutInput(1, type, [&change](CInput& input) {
      input.m_uSize = 3;
      input.m_fLower = 0.0;
      input.m_fUpper = 1.0;
      if (change) change(input);
    });
    return InputsOf(Task());
  }
  /// The counts of a study with this response and no other, of three elements.
  RespCounts OneResp(int type, const std::function<void(CResp&)>& change = {}) {
    PutResp(1, type, [&change](CResp& resp) {
      resp.m_uSize = 3;
      if (change) change(resp);
    });
    return RespsOf(Task());
  }
  void PutPoints(const Ints& used, const Ints& run, const Ints& locked) {
    CGPoint points(study.Pod());
    points.m_vnUsed = used;
    points.m_vnRun = run;
    points.m_vnLocked = locked;
    points.m_vDVars.resize(used.size());
    points.m_vResps.resize(used.size());
    points.PutObject();
  }
  template <class Count>
  static std::string FaultOf(Count count) {
    try {
      count();
    } catch (const CEngErr& fault) {
      return fault.what();
    }
    return "none";
  }
};

// ---- Inputs ----

TEST_F(TaskCount, OfAStudyWithoutInputsIsZero) {
  EXPECT_EQ(InputsOf(Task()), InputCounts{});
}

TEST_F(TaskCount, OfInputsIsByTypeInElements) {
  EXPECT_EQ(OneInput(0), (InputCounts{3, 0, 0, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(OneInput(1), (InputCounts{0, 3, 0, 0, 0, 0, 6, 0, 0}));
  EXPECT_EQ(OneInput(2), (InputCounts{0, 0, 3, 0, 0, 0, 6, 0, 0}));
  EXPECT_EQ(OneInput(3), (InputCounts{0, 0, 0, 3, 0, 0, 0, 0, 0}));
}

TEST_F(TaskCount, OfDiscreteAndIntegerInputsIsAlsoThatOfIndependentOnes) {
  EXPECT_EQ(OneInput(4), (InputCounts{3, 0, 0, 0, 0, 3, 0, 0, 0}));
  EXPECT_EQ(OneInput(5), (InputCounts{3, 0, 0, 0, 0, 3, 0, 0, 0}));
}

TEST_F(TaskCount, OfCombinatorialInputsIsNotThatOfConstants) {
  EXPECT_EQ(OneInput(6), (InputCounts{0, 0, 0, 0, 3, 0, 0, 0, 0}));
}

TEST_F(TaskCount, OfAnUnknownTypeOfInputIsRefused) {
  for (const int type : {-1, 7, 2147483647}) {
    EXPECT_THROW(OneInput(type), CInvalidType) << type;
    EXPECT_EQ(FaultOf([&] { InputsOf(Task()); }), "Object type is invalid") << type;
  }
}

TEST_F(TaskCount, OfConstraintsTakesTheBoundsOfDependentInputs) {
  const auto bounds = [](double lower, double upper) {
    return [lower, upper](CInput& input) {
      input.m_fLower = lower;
      input.m_fUpper = upper;
    };
  };
  for (const int type : {1, 2}) {
    EXPECT_EQ(OneInput(type, bounds(-1e30, 1e30))[6], 0) << type;
    EXPECT_EQ(OneInput(type, bounds(-5.0, 1e30))[6], 3) << type;
    EXPECT_EQ(OneInput(type, bounds(-1e30, 5.0))[6], 3) << type;
    EXPECT_EQ(OneInput(type, bounds(-5.0, 5.0))[6], 6) << type;
    EXPECT_EQ(OneInput(type, bounds(-1e31, 1e31))[6], 6) << type;
    EXPECT_EQ(OneInput(type, bounds(1e30, -1e30))[6], 6) << type;
  }
}

TEST_F(TaskCount, OfALinkedInputWithAnUpperBoundOnlyIsOneConstraint) {
  PutInput(1, 1, [](CInput& input) { input.m_fUpper = 10.0; });
  EXPECT_EQ(InputsOf(Task()), (InputCounts{0, 1, 0, 0, 0, 0, 1, 0, 0}));
}

TEST_F(TaskCount, OfObjectivesTakesInputsOfEveryType) {
  for (const int flag : {1, -1, 2}) {
    for (int type = 0; type <= 6; ++type) {
      EXPECT_EQ(OneInput(type, [flag](CInput& input) { input.m_nObjective = flag; })[7], 3)
          << type << ' ' << flag;
    }
  }
}

TEST_F(TaskCount, OfRandomInputsLeavesFurtherParametersOut) {
  for (int parameter = -5; parameter <= 3; ++parameter) {
    for (const int random : {0, 1, -1}) {
      const InputCounts counts = OneInput(0, [=](CInput& input) {
        input.m_nRandom = random;
        input.m_nRandomParam = parameter;
      });
      const bool counted = random != 0 && (parameter == 0 || parameter == -1);
      EXPECT_EQ(counts[8], counted ? 3 : 0) << parameter << ' ' << random;
      EXPECT_EQ(counts[0], 3);
    }
  }
}

TEST_F(TaskCount, OfInputsAddsAllToWhatIsThere) {
  PutInput(1, 0);
  PutInput(2, 4, [](CInput& input) { input.m_uSize = 10; });
  PutInput(3, 5, [](CInput& input) { input.m_uSize = 100; });
  PutInput(4, 3, [](CInput& input) { input.m_uSize = 5; });
  PutInput(5, 6, [](CInput& input) { input.m_uSize = 7; });
  PutInput(6, 2, [](CInput& input) {
    input.m_uSize = 2;
    input.m_fLower = 0.0;
    input.m_nObjective = 1;
    input.m_nRandom = 1;
  });
  PutInput(7, 1, [](CInput& input) { input.m_nObjective = 1; });
  EXPECT_EQ(InputsOf(Task(), {1000, 2000, 3000, 4000, 5000, 6000, 7000, 8000, 9000}),
            (InputCounts{1111, 2001, 3002, 4005, 5007, 6110, 7002, 8003, 9002}));
}

TEST_F(TaskCount, OfAnInputWithoutElementsIsZero) {
  EXPECT_EQ(OneInput(1, [](CInput& input) { input.m_uSize = 0; }), InputCounts{});
}

TEST_F(TaskCount, StaysAtTheLargestInteger) {
  const auto huge = [](auto& definition) { definition.m_uSize = 0xFFFFFFFFUL; };
  PutInput(2, 0, huge);
  PutResp(2, 0, huge);
  EXPECT_EQ(OneInput(0)[0], 2147483647);
  EXPECT_EQ(OneResp(0)[0], 2147483647);
}

// ---- Responses ----

TEST_F(TaskCount, OfAStudyWithoutResponsesIsZero) {
  EXPECT_EQ(RespsOf(Task()), RespCounts{});
}

TEST_F(TaskCount, OfResponsesIsByTypeInElements) {
  EXPECT_EQ(OneResp(0), (RespCounts{3, 0, 0, 0, 0, 0}));
  EXPECT_EQ(OneResp(1), (RespCounts{0, 3, 0, 0, 0, 0}));
  EXPECT_EQ(OneResp(2), (RespCounts{0, 0, 3, 0, 0, 0}));
  EXPECT_EQ(OneResp(3), (RespCounts{3, 0, 0, 0, 0, 0}));
}

TEST_F(TaskCount, OfAnUnknownTypeOfResponseIsRefused) {
  for (const int type : {-1, 4, 6}) {
    EXPECT_THROW(OneResp(type), CInvalidType) << type;
    EXPECT_EQ(FaultOf([&] { RespsOf(Task()); }), "Object type is invalid") << type;
  }
}

TEST_F(TaskCount, OfConstraintsTakesTheBoundsThatResponsesHave) {
  const auto constraint = [this](int on, int lower, int upper) {
    return OneResp(0, [=](CResp& resp) {
      resp.m_nConstraint = on;
      resp.m_nHasLower = lower;
      resp.m_nHasUpper = upper;
    })[3];
  };
  EXPECT_EQ(constraint(1, 0, 0), 0);
  EXPECT_EQ(constraint(1, 1, 0), 3);
  EXPECT_EQ(constraint(1, 0, 1), 3);
  EXPECT_EQ(constraint(1, 1, 1), 6);
  EXPECT_EQ(constraint(-1, 2, -3), 6);
  EXPECT_EQ(constraint(0, 1, 1), 0);
}

TEST_F(TaskCount, OfConstraintsLeavesTheValuesOfTheBoundsAlone) {
  const RespCounts counts = OneResp(2, [](CResp& resp) {
    resp.m_nHasLower = 1;
    resp.m_fLower = -1e30;
    resp.m_fUpper = 5.0;
  });
  EXPECT_EQ(counts, (RespCounts{0, 0, 3, 3, 0, 0}));
}

TEST_F(TaskCount, OfObjectivesTakesResponses) {
  for (int type = 0; type <= 3; ++type) {
    EXPECT_EQ(OneResp(type, [](CResp& resp) { resp.m_nObjective = -2; })[4], 3) << type;
  }
}

TEST_F(TaskCount, OfRandomResponsesTakesSystemFailuresToo) {
  const std::set<int> counted{0, -1, -4, -5};
  for (int parameter = -6; parameter <= 4; ++parameter) {
    for (const int random : {0, 1, -1}) {
      const RespCounts counts = OneResp(0, [=](CResp& resp) {
        resp.m_nRandom = random;
        resp.m_nRandomParam = parameter;
      });
      EXPECT_EQ(counts[5], random != 0 && counted.count(parameter) == 1 ? 3 : 0)
          << parameter << ' ' << random;
    }
  }
}

TEST_F(TaskCount, OfResponsesAddsAllToWhatIsThere) {
  PutResp(1, 0, [](CResp& resp) { resp.m_nHasLower = 1; });
  PutResp(2, 1, [](CResp& resp) {
    resp.m_uSize = 10;
    resp.m_nObjective = 1;
  });
  PutResp(3, 2, [](CResp& resp) {
    resp.m_uSize = 20;
    resp.m_nHasLower = 1;
    resp.m_nHasUpper = 1;
  });
  PutResp(4, 3, [](CResp& resp) {
    resp.m_uSize = 100;
    resp.m_nRandom = 1;
  });
  EXPECT_EQ(RespsOf(Task(), {1000, 2000, 3000, 4000, 5000, 6000}),
            (RespCounts{1101, 2010, 3020, 4041, 5010, 6100}));
}

TEST_F(TaskCount, OfResponsesLeavesInputsAlone) {
  PutInput(1, 0);
  EXPECT_EQ(RespsOf(Task()), RespCounts{});
  PutResp(1, 0);
  EXPECT_EQ(InputsOf(Task())[0], 1);
}

// ---- Points ----

TEST_F(TaskCount, OfPointsIsZeroInANewStudy) {
  EXPECT_EQ(PointsOf(Task()), PointCounts{});
}

TEST_F(TaskCount, OfPointsAddsThoseUsedAndTheirFlags) {
  PutPoints({1, 1, 0, 1, 0, 1}, {1, 0, 1, 1, 0, 0}, {0, 1, 1, 0, 0, 0});
  EXPECT_EQ(PointsOf(Task(), {10, 20, 30}), (PointCounts{14, 22, 31}));
}

TEST_F(TaskCount, OfPointsTakesTheFlagOneOnly) {
  PutPoints({2, -1, 1, 1, 1}, {1, 1, 2, 0, 1}, {1, 1, -1, 2, 1});
  EXPECT_EQ(PointsOf(Task()), (PointCounts{3, 1, 1}));
}

TEST_F(TaskCount, OfPointsTakesMissingFlagsAsUnset) {
  CGPoint points(study.Pod());
  points.m_vnUsed = {1, 1, 1};
  points.m_vnRun = {1};
  points.PutObject();
  EXPECT_EQ(PointsOf(Task()), (PointCounts{3, 1, 0}));
}

TEST_F(TaskCount, OfPointsNeedsTheirTable) {
  CGPoint(study.Pod()).RemoveObject();
  EXPECT_THROW(PointsOf(Task()), CGetObject);
  EXPECT_EQ(FaultOf([&] { PointsOf(Task()); }), "Could not get object");
}

// ---- Auxiliary definitions ----

TEST_F(TaskCount, AssociatesAuxiliariesByKind) {
  PutAuxiliary(9, 1);
  PutAuxiliary(2, 1);
  PutAuxiliary(4, 2);
  PutAuxiliary(5, 3);
  PutAuxiliary(6, 4);
  PutAuxiliary(1, 2147483647);
  std::set<int> links;
  std::set<int> eqns;
  std::set<int> sets;
  Task().AssociateAux(links, eqns, sets);
  EXPECT_EQ(links, (std::set<int>{2, 9}));
  EXPECT_EQ(eqns, std::set<int>{4});
  EXPECT_EQ(sets, (std::set<int>{1, 5, 6}));
}

TEST_F(TaskCount, AssociatesNoAuxiliariesWhereThereAreNone) {
  std::set<int> links{100};
  std::set<int> eqns;
  std::set<int> sets{200};
  Task().AssociateAux(links, eqns, sets);
  EXPECT_EQ(links, std::set<int>{100});
  EXPECT_TRUE(eqns.empty());
  EXPECT_EQ(sets, std::set<int>{200});
}

TEST_F(TaskCount, AssociatesNoAuxiliaryOfAKindBelowOne) {
  for (const int kind : {0, -1}) {
    PutAuxiliary(3, kind);
    std::set<int> links;
    std::set<int> eqns;
    std::set<int> sets;
    EXPECT_THROW(Task().AssociateAux(links, eqns, sets), CInvalidType) << kind;
    EXPECT_EQ(FaultOf([&] { Task().AssociateAux(links, eqns, sets); }), "Object type is invalid");
    EXPECT_TRUE(links.empty() && eqns.empty() && sets.empty()) << kind;
  }
}

// ---- Failures ----

void CountAll(CTask task) {
  std::set<int> links;
  std::set<int> eqns;
  std::set<int> sets;
  InputCounts counts{};
  auto& c = counts;
  EXPECT_THROW(task.CountInputs(&c[0], &c[1], &c[2], &c[3], &c[4], &c[5], &c[6], &c[7], &c[8]),
               CEngErr);
  EXPECT_THROW(task.CountResps(&c[0], &c[1], &c[2], &c[3], &c[4], &c[5]), CEngErr);
  EXPECT_THROW(task.CountGPoints(&c[0], &c[1], &c[2]), CEngErr);
  EXPECT_THROW(task.AssociateAux(links, eqns, sets), CEngErr);
  EXPECT_EQ(counts, InputCounts{});
}

/// What was logged by name and text, one per call.
LogLines Logged(const std::string& kind) {
  LogLines lines;
  for (const LogEntry& entry : Log()) {
    if (entry.kind == kind) lines.push_back({entry.kind, entry.text, "", 0});
  }
  return lines;
}

TEST_F(TaskCount, NeedsADatabase) {
  ClearLog();
  CountAll(CTask());
  EXPECT_EQ(Logged("LNewException"), LogLines(4, {"LNewException", "No database open", "", 0}));
  EXPECT_EQ(Logged("LException"), LogLines(4, {"LException", "No database open", "", 0}));
  EXPECT_THROW(InputsOf(CTask()), CNoDatabaseOpen);
  EXPECT_THROW(RespsOf(CTask()), CNoDatabaseOpen);
  EXPECT_THROW(PointsOf(CTask()), CNoDatabaseOpen);
}

TEST_F(TaskCount, IsMadeUnderTheLockOnly) {
  PutInput(1, 0);
  PutResp(1, 0);
  PutAuxiliary(1, 1);
  std::filesystem::create_directory(study.LockPath());
  CountAll(Task());
  EXPECT_THROW(InputsOf(Task()), CFileLock);
  EXPECT_THROW(RespsOf(Task()), CFileLock);
  EXPECT_THROW(PointsOf(Task()), CFileLock);
  std::filesystem::remove(study.LockPath());
}

TEST_F(TaskCount, ReleasesTheLock) {
  InputsOf(Task());
  RespsOf(Task());
  PointsOf(Task());
  std::set<int> ids;
  Task().AssociateAux(ids, ids, ids);
  EXPECT_FALSE(std::filesystem::exists(study.LockPath()));
}

}  // namespace
