// Many processes at work on one study at the same time.
//
//   processes [STRIDE]
//
// Without STRIDE, or with 0 or 1, all cases are run, else a small sample.

#include <cstdio>
#include <cstdlib>
#include <exception>

#include "tests/fault/processes/Killings.h"
#include "tests/fault/processes/Mixed.h"
#include "tests/fault/processes/Openings.h"

namespace {

bool RunSample() {
  Plan plan;
  plan.operations = 50;
  PrintMixedHead("Mixed operations of a few processes.");
  bool good = RunMixed({4, kUsual, plan});
  good = RunMixed({4, kRestless, plan}) && good;
  PrintOpeningHead();
  good = RunOpenings({true, true, 8, 1}) && good;
  good = RunOpenings({false, true, 8, 1}) && good;
  return RunKillings({4, 2, 2}) && good;
}

/// The same work, done by more and more processes.
bool RunScaling() {
  constexpr int operations = 2000;
  bool good = true;
  PrintMixedHead("The same number of mixed operations, by more and more processes.");
  for (const Waiting& waiting : {kUsual, kShortest}) {
    for (const int processes : {1, 2, 4, 8}) {
      Plan plan;
      plan.operations = operations / processes;
      good = RunMixed({processes, waiting, plan}) && good;
    }
  }
  return good;
}

bool RunMany() {
  PrintMixedHead("Mixed operations of many processes.");
  bool good = true;
  for (const Waiting& waiting : {kUsual, kShortest}) good = RunMixed({8, waiting, {}}) && good;
  Plan restless;
  restless.operations = 250;
  good = RunMixed({8, kRestless, restless}) && good;
  Plan withPauses;
  withPauses.operations = 250;
  withPauses.pause = 0.005;
  for (const Waiting& waiting : {kUsual, kShortest}) {
    good = RunMixed({8, waiting, withPauses}) && good;
  }
  return good;
}

bool RunAll() {
  bool good = RunMany();
  good = RunScaling() && good;
  PrintOpeningHead();
  for (const bool isNew : {true, false}) {
    good = RunOpenings({isNew, false, 32, 10}) && good;
    good = RunOpenings({isNew, true, 32, 10}) && good;
  }
  return RunKillings({8, 3, 25}) && good;
}

}  // namespace

int main(int count, char** arguments) {
  try {
    const bool isSample = count > 1 && std::atoi(arguments[1]) > 1;
    const bool good = isSample ? RunSample() : RunAll();
    std::printf("\n%s\n",
                good ? "Nothing lost, nothing doubled, no crash, no hang." : "There are faults.");
    return good ? EXIT_SUCCESS : EXIT_FAILURE;
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return EXIT_FAILURE;
  }
}
