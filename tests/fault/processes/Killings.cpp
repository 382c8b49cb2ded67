#include "tests/fault/processes/Killings.h"

#include <kestdb.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "tests/fault/processes/Crew.h"
#include "tests/fault/processes/Environment.h"
#include "tests/fault/processes/Figures.h"
#include "tests/fault/processes/Measure.h"
#include "tests/fault/processes/Scene.h"
#include "tests/fault/processes/Work.h"

namespace {

constexpr int kShortUnit = 250;  // microseconds: those that wait for a dead process soon give up
constexpr double kLatest = 0.5;  // seconds

void WorkUntilTimeOut(const Scene& scene, int process, int processes,
                      const Crew::Barrier& barrier) {
  SetUpEnvironment(scene.Folder(), process, kShortest.timeOut, kShortUnit);
  Log& log = scene.TheLog();
  UntilInTime(log.ledgers[process], [&] { OpenDatabase(scene.Base()); });
  barrier();
  Plan plan;
  plan.stopsAtTimeOut = true;
  Worker(process, processes, plan, log).Run();
  if (log.ledgers[process].timeOuts == 0) {
    try {
      CloseDatabase();
    } catch (const CFileLock&) {
      ++log.ledgers[process].timeOuts;
    }
  }
}

/// One of them is the process that ended the latest operation, and mostly holds the lock again.
void KillSome(Crew& crew, const Log& log, const Killing& killing, std::mt19937& random) {
  const auto part = static_cast<double>(random()) / static_cast<double>(std::mt19937::max());
  std::this_thread::sleep_for(std::chrono::duration<double>(kLatest * part));
  const int ended = log.ended;
  crew.Kill(ended > 0 ? log.order[ended - 1] : 0);
  for (int i = 1; i < killing.victims; ++i) {
    crew.Kill(static_cast<int>(random() % static_cast<unsigned>(killing.processes)));
  }
}

/// What the rounds come to.
struct Crashes {
  long killed = 0;
  int lockStood = 0;
  long timeOuts = 0;
  int roundsWithTimeOut = 0;
  long objects = 0;
  int told = 0;
  Fates fates;

  void Add(const std::vector<Ending>& endings, const Log& log, int processes) {
    killed += std::count(endings.begin(), endings.end(), Ending::Killed);
    int roundsTimeOuts = 0;
    for (int i = 0; i < processes; ++i) roundsTimeOuts += log.ledgers[i].timeOuts;
    timeOuts += roundsTimeOuts;
    if (roundsTimeOuts > 0) ++roundsWithTimeOut;
    const Findings& findings = log.findings;
    if (findings.lockStood) ++lockStood;
    objects += findings.objects;
    told += findings.told;
    fates.old += findings.fates.old;
    fates.fresh += findings.fates.fresh;
    fates.part += findings.fates.part;
    fates.lost += findings.fates.lost;
  }
};

void PrintCrashes(const Killing& killing, const Crashes& of, const Outcome& outcome) {
  std::printf(
      "\nKilled among others at work; then the lock forced, both files rebuilt, all compared.\n\n"
      "| processes | rounds | killed at work | lock stood | told the time-out | objects compared | "
      "in flight: old | new | part | lost | warned of | wrong |\n"
      "|---:|---:|---:|---:|---:|---:|---:|---:|---:|---:|---:|---:|\n"
      "| %d | %d | %ld | %d | %ld | %ld | %d | %d | %d | %d | %d | %ld |\n",
      killing.processes, killing.rounds, of.killed, of.lockStood, of.timeOuts, of.objects,
      of.fates.old, of.fates.fresh, of.fates.part, of.fates.lost, of.told, outcome.Bad());
  std::fflush(stdout);
}

}  // namespace

bool RunKillings(const Killing& killing) {
  Outcome outcome;
  outcome.what = "of " + std::to_string(killing.processes) + " processes at work up to " +
                 std::to_string(killing.victims) + " are killed";
  std::mt19937 random(1);
  Crashes crashes;
  for (int i = 0; i < killing.rounds; ++i) {
    Scene scene(outcome.what);
    scene.Prepare();
    Crew crew(killing.processes, [&](int process, const Crew::Barrier& barrier) {
      WorkUntilTimeOut(scene, process, killing.processes, barrier);
    });
    crew.Go();
    KillSome(crew, scene.TheLog(), killing, random);
    const std::vector<Ending> endings = crew.AwaitEnds();
    scene.TheOutcome().Judge(endings);
    scene.Inspect(killing.processes, true);
    crashes.Add(endings, scene.TheLog(), killing.processes);
    outcome.Add(scene.TheOutcome());
  }
  outcome.cases = killing.rounds;
  outcome.reported = crashes.roundsWithTimeOut;
  PrintCrashes(killing, crashes, outcome);
  outcome.Append();
  return outcome.IsGood();
}
