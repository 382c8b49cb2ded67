#include "tests/fault/processes/Openings.h"

#include <kestdb.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "tests/fault/processes/Crew.h"
#include "tests/fault/processes/Environment.h"
#include "tests/fault/processes/Figures.h"
#include "tests/fault/processes/Measure.h"
#include "tests/fault/processes/Records.h"
#include "tests/fault/processes/Scene.h"

namespace {

constexpr double kHolding = 0.05;  // seconds

/// Lets all processes begin, and gives the lock back somewhat later.
double GoBehindLock(Crew& crew, const std::string& lockPath) {
  std::filesystem::create_directory(lockPath);
  crew.Go();
  std::this_thread::sleep_for(std::chrono::duration<double>(kHolding));
  const double start = Now();
  std::filesystem::remove(lockPath);
  return start;
}

/// Each stores one point and closes the study again.
void OpenStoreClose(const Scene& scene, int process, const Crew::Barrier& barrier) {
  SetUpEnvironment(scene.Folder(), process, 0);
  barrier();
  Log& log = scene.TheLog();
  Ledger& ledger = log.ledgers[process];
  if (Measure(log, process, [&] { OpenDatabase(scene.Base()); })) {
    const auto store = [&] { PointOf(kFirstOwnTask + process, 0, 1).WriteObject(true); };
    if (Measure(log, process, store)) ledger.versions[0] = 1;
    Measure(log, process, [] { CloseDatabase(); });
  }
  NoteEndOfWork(ledger);
}

/// What the rounds come to.
struct Rounds {
  std::vector<double> elapsed;
  std::vector<double> waits;
  std::vector<double> firstSleeps;

  void Add(const CrewFigures& of) {
    elapsed.push_back(of.elapsed);
    waits.insert(waits.end(), of.waits.begin(), of.waits.end());
    firstSleeps.push_back(of.firstSleeps);
  }
};

void PrintOpening(const Opening& opening, const Rounds& rounds, const Outcome& outcome) {
  const Spread elapsed(rounds.elapsed);
  const Spread waits(rounds.waits);
  std::printf("| %s | %s | %d | %d | %ld | %.0f | %.0f | %.1f | %.1f | %.1f | %.0f | %ld | %ld |\n",
              opening.isNew ? "new" : "existing", opening.isLocked ? "yes" : "no",
              opening.processes, opening.rounds, outcome.cases, Milliseconds(elapsed.median),
              Milliseconds(elapsed.longest), Milliseconds(waits.median),
              Milliseconds(waits.hundredth), Milliseconds(waits.longest),
              Spread(rounds.firstSleeps).median, outcome.reported, outcome.Bad());
  std::fflush(stdout);
}

}  // namespace

void PrintOpeningHead() {
  std::printf(
      "\nOpening at the same moment, storing an object, closing: three locks for each process. "
      "Times are in milliseconds.\n\n"
      "| study | locked at first | processes | rounds | opens | all done (median) | all done (longest) | median wait "
      "| 99 %% | longest | different first waits | time-outs | wrong |\n"
      "|---|---|---:|---:|---:|---:|---:|---:|---:|---:|---:|---:|---:|\n");
}

bool RunOpenings(const Opening& opening) {
  Outcome outcome;
  outcome.what = std::to_string(opening.processes) + " processes open " +
                 (opening.isNew ? "a new" : "an existing") + " study at the same moment" +
                 (opening.isLocked ? ", locked at first" : "");
  Rounds rounds;
  for (int i = 0; i < opening.rounds; ++i) {
    Scene scene(outcome.what);
    if (!opening.isNew) scene.Prepare();
    Crew crew(opening.processes, [&](int process, const Crew::Barrier& barrier) {
      OpenStoreClose(scene, process, barrier);
    });
    const double start = opening.isLocked ? GoBehindLock(crew, scene.Base() + ".lck") : crew.Go();
    scene.TheOutcome().Judge(crew.AwaitEnds());
    scene.Inspect(opening.processes, false);
    const CrewFigures figures(scene.TheLog(), opening.processes, start);
    rounds.Add(figures);
    outcome.cases += opening.processes;
    outcome.reported += figures.timeOuts;
    outcome.Add(scene.TheOutcome());
  }
  PrintOpening(opening, rounds, outcome);
  outcome.Append();
  return outcome.IsGood();
}
