// Making a task of studies of growing size: N variables and N responses, one scalar each, and a
// linked response for every five of them.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

#include "definition/Auxiliary.h"
#include "definition/Input.h"
#include "definition/Resp.h"
#include "environment/Logging.h"
#include "maintenance/Lock.h"
#include "task/Task.h"
#include "tests/support/Study.h"

namespace {

void StoreInput(POD* pod, int number) {
  CInput input(pod);
  input.m_nID = number;
  input.m_strName = "x" + std::to_string(number);
  input.m_uIndex = static_cast<unsigned long>(number);
  input.PutObject();
}

void StoreResp(POD* pod, int number) {
  CResp resp(pod);
  resp.m_nID = number;
  resp.m_strName = "y" + std::to_string(number);
  resp.m_uIndex = static_cast<unsigned long>(number);
  resp.m_nHasUpper = 1;
  resp.m_fUpper = 1.0;
  resp.m_nObjective = number == 1 ? 1 : 0;
  resp.PutObject();
}

/// The sum of a variable and a response.
void StoreLink(POD* pod, int number, int responses) {
  CAuxiliary sum(pod);
  sum.m_nID = number;
  sum.m_vfCoef = {0.0, 1.0, 1.0};
  sum.m_vstrArgNames = {"", "x", "y"};
  sum.PutObject();
  CResp resp(pod);
  resp.m_nID = responses + number;
  resp.m_strName = "link" + std::to_string(number);
  resp.m_uIndex = static_cast<unsigned long>(responses + number);
  resp.m_nType = 1;
  resp.m_nAuxID = number;
  resp.m_vnArg = {-number, number};
  resp.m_vnIdx = {0, 0};
  resp.m_vnLength = {1, 1};
  resp.PutObject();
}

void StoreStudy(POD* pod, int count) {
  const CLock lock(pod, 0);
  for (int i = 1; i <= count; ++i) {
    StoreInput(pod, i);
    StoreResp(pod, i);
  }
  for (int i = 1; i <= count / 5; ++i) StoreLink(pod, i, count);
}

void DefineTask(benchmark::State& state) {
  const auto count = static_cast<int>(state.range(0));
  const Study study;
  StoreStudy(study.Pod(), count);
  for (auto _ : state) {
    CTask task(study.Pod());
    task.DefineTask(true, true);
    if (!task.FindObject()) {
      state.SkipWithError("no task was made");
      break;
    }
  }
  state.SetComplexityN(count);
}
BENCHMARK(DefineTask)
    ->Arg(250)
    ->Arg(500)
    ->Arg(1000)
    ->Complexity(benchmark::oNLogN)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

}  // namespace

int main(int count, char** arguments) {
  fKLog = std::fopen("/dev/null", "w");
  benchmark::Initialize(&count, arguments);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
