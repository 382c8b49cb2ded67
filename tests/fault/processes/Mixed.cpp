#include "tests/fault/processes/Mixed.h"

#include <kestdb.h>

#include <cstdio>
#include <string>

#include "tests/fault/processes/Crew.h"
#include "tests/fault/processes/Environment.h"
#include "tests/fault/processes/Figures.h"
#include "tests/fault/processes/Measure.h"

namespace {

std::string RatioText(double ratio) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f", ratio);
  return ratio > 0.0 ? text : "-";
}

void PrintMixed(const Mixed& mixed, const CrewFigures& of, long objects, const Outcome& outcome) {
  const Spread waits(of.waits);
  std::printf("| %s | %.0f | %d | %d | %.0f | %.0f %% | %d | %d | %.1f %% | %.1f | %.1f | %.1f ",
              mixed.waiting.name, Milliseconds(mixed.plan.pause), mixed.processes, of.operations,
              of.operations / of.elapsed, 100.0 * of.atWork, of.turns, of.longestRow,
              100.0 * of.waited, Milliseconds(waits.median), Milliseconds(waits.hundredth),
              Milliseconds(waits.longest));
  std::printf("| %s | %s | %d | %ld | %ld |\n", RatioText(of.endRatio).c_str(),
              RatioText(of.waitRatio).c_str(), of.timeOuts, objects, outcome.Bad());
  std::fflush(stdout);
}

}  // namespace

void PrintMixedHead(const char* title) {
  std::printf(
      "\n%s Times are in milliseconds; the waits are those of all operations.\n\n"
      "| waits | pause | processes | operations | per second | at work | turns | longest row "
      "| waited | median wait | 99 %% | longest | slowest to fastest | most to least waited "
      "| time-outs | compared | wrong |\n"
      "|---|---:|---:|---:|---:|---:|---:|---:|---:|---:|---:|---:|---:|---:|---:|---:|---:|\n",
      title);
}

bool RunMixed(const Mixed& mixed) {
  const std::string what = std::to_string(mixed.processes) + " processes, " +
                           std::to_string(mixed.plan.operations) +
                           " mixed operations each, waits of " + mixed.waiting.name + " ms" +
                           (mixed.plan.pause > 0.0 ? ", with pauses" : "");
  Scene scene(what);
  scene.Prepare();
  Log& log = scene.TheLog();
  Crew crew(mixed.processes, [&](int process, const Crew::Barrier& barrier) {
    SetUpEnvironment(scene.Folder(), process, mixed.waiting.timeOut, mixed.waiting.unit);
    UntilInTime(log.ledgers[process], [&] { OpenDatabase(scene.Base()); });
    barrier();
    Worker(process, mixed.processes, mixed.plan, log).Run();
    UntilInTime(log.ledgers[process], CloseDatabase);
  });
  const double start = crew.Go();
  Outcome& outcome = scene.TheOutcome();
  outcome.Judge(crew.AwaitEnds());
  scene.Inspect(mixed.processes, false);
  const CrewFigures figures(log, mixed.processes, start);
  outcome.cases = figures.operations;
  outcome.reported = figures.timeOuts;
  PrintMixed(mixed, figures, log.findings.objects, outcome);
  outcome.Append();
  return outcome.IsGood();
}
