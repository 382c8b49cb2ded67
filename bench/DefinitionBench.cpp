// The checks that come before a run, on studies of growing size: the time should grow as the study
// does.

#include <benchmark/benchmark.h>

#include <string>

#include "control/DesignControl.h"
#include "definition/Auxiliary.h"
#include "definition/Input.h"
#include "definition/Resp.h"
#include "maintenance/Lock.h"
#include "tests/support/Study.h"

namespace {

constexpr int kArguments = 3;

/// What all functions of the study have for arguments: independent Inputs and responses, whose IDs
/// follow those of the functions.
void StoreIndependent(POD* pod, int firstID) {
  for (int id = firstID; id < firstID + kArguments; ++id) {
    CInput input(pod);
    input.m_nID = id;
    input.PutObject();
    CResp resp(pod);
    resp.m_nID = id;
    resp.PutObject();
  }
}

void StoreEquation(POD* pod, int id) {
  CAuxiliary equation(pod);
  equation.m_nID = id;
  equation.m_nAuxType = 2;
  equation.m_strArgs = "a,b,c";
  equation.m_strEquation = "a+b*c";
  equation.PutObject();
}

/// A synthetic Input or response with an equation of its own; its arguments are not yet set.
template <class Definition>
Definition Synthetic(POD* pod, int id, int equation) {
  StoreEquation(pod, equation);
  Definition definition(pod);
  definition.m_nID = id;
  definition.m_strName = "f" + std::to_string(id);
  definition.m_nType = 2;
  definition.m_nAuxID = equation;
  definition.m_vnIdx.assign(kArguments, 0);
  definition.m_vnLength.assign(kArguments, 1);
  return definition;
}

/// Stores `count` synthetic Inputs and as many synthetic responses, in which the checks find
/// nothing to report.
void StoreDefinitions(POD* pod, int count) {
  const CLock lock(pod, 0);
  CDesignControl(pod).PutObject();
  const int independent = count + 1;
  StoreIndependent(pod, independent);
  for (int id = 1; id <= count; ++id) {
    CInput input = Synthetic<CInput>(pod, id, id);
    input.m_vnArg = {-independent, -(independent + 1), -(independent + 2)};
    input.PutObject();
    CResp resp = Synthetic<CResp>(pod, id, count + id);
    resp.m_vnArg = {-id, independent, independent + 1};
    resp.PutObject();
  }
}

void CheckDefinitions(benchmark::State& state) {
  const auto count = static_cast<int>(state.range(0));
  const Study study;
  StoreDefinitions(study.Pod(), count);
  for (auto _ : state) {
    if (!CInput::CheckInputs(study.Pod()) || !CResp::CheckResps(study.Pod())) {
      state.SkipWithError("the checks report an error");
      break;
    }
  }
  state.SetComplexityN(count);
}
BENCHMARK(CheckDefinitions)
    ->Arg(250)
    ->Arg(500)
    ->Arg(1000)
    ->Complexity(benchmark::oN)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
