#include "tests/fault/processes/Figures.h"

#include <algorithm>
#include <cstdio>
#include <numeric>
#include <set>
#include <stdexcept>
#include <utility>

#include "tests/fault/Summary.h"

// ---- Spread ----

Spread::Spread(std::vector<double> values) {
  if (values.empty()) throw std::invalid_argument("no values");
  std::sort(values.begin(), values.end());
  const std::size_t last = values.size() - 1;
  median = values[last / 2];
  hundredth = values[last - last / 100];
  longest = values[last];
}

// ---- Crews ----

namespace {

double Ratio(const std::vector<double>& values) {
  const auto [least, most] = std::minmax_element(values.begin(), values.end());
  if (*most == 0.0) return 1.0;
  return *least > 0.0 ? *most / *least : 0.0;
}

int Turns(const Log& log) {
  int turns = 0;
  for (int i = 1; i < log.ended; ++i) turns += log.order[i] != log.order[i - 1] ? 1 : 0;
  return turns;
}

/// Until the first process is done: those that go on have fewer rivals.
int LongestRow(const Log& log, int processes) {
  std::vector<int> left;
  for (int i = 0; i < processes; ++i) left.push_back(log.ledgers[i].operations);
  int longest = 0;
  int row = 0;
  for (int i = 0; i < log.ended; ++i) {
    row = i > 0 && log.order[i] == log.order[i - 1] ? row + 1 : 1;
    longest = std::max(longest, row);
    if (--left.at(log.order[i]) == 0) break;
  }
  return longest;
}

}  // namespace

CrewFigures::CrewFigures(const Log& log, int processes, double start) {
  double work = 0.0;
  std::vector<double> ends;
  std::vector<double> sums;
  std::set<unsigned> sleeps;
  for (int i = 0; i < processes; ++i) {
    const Ledger& ledger = log.ledgers[i];
    operations += ledger.operations;
    waits.insert(waits.end(), ledger.waits, ledger.waits + ledger.operations);
    work = std::accumulate(ledger.works, ledger.works + ledger.operations, work);
    sums.push_back(std::accumulate(ledger.waits, ledger.waits + ledger.operations, 0.0));
    ends.push_back(ledger.end - start);
    timeOuts += ledger.timeOuts;
    releaseSleeps += ledger.releaseSleeps;
    faults += ledger.faults;
    if (ledger.firstSleep != 0) sleeps.insert(ledger.firstSleep);
  }
  elapsed = *std::max_element(ends.begin(), ends.end());
  atWork = work / elapsed;
  const auto waiters = std::count_if(waits.begin(), waits.end(), [](double w) { return w > 0.0; });
  waited = static_cast<double>(waiters) / operations;
  endRatio = Ratio(ends);
  waitRatio = Ratio(sums);
  turns = Turns(log);
  longestRow = LongestRow(log, processes);
  firstSleeps = static_cast<int>(sleeps.size());
}

// ---- Outcomes ----

void Outcome::Judge(const std::vector<Ending>& endings) {
  for (std::size_t i = 0; i < endings.size(); ++i) {
    if (endings[i] == Ending::Good || endings[i] == Ending::Killed) continue;
    const char* how = endings[i] == Ending::Hang     ? "hung"
                      : endings[i] == Ending::Failed ? "ended by an exception"
                                                     : "crashed";
    std::printf("  %s: process %zu %s\n", what.c_str(), i, how);
    ++(endings[i] == Ending::Hang ? hung : endings[i] == Ending::Failed ? wrong : crashed);
  }
}

void Outcome::Judge(const Log& log, int processes) {
  for (int i = 0; i < processes; ++i) {
    const Ledger& ledger = log.ledgers[i];
    if (ledger.faults == 0) continue;
    wrong += ledger.faults;
    std::printf("  %s: process %d: %d faults, first: %s\n", what.c_str(), i, ledger.faults,
                ledger.firstFault);
  }
  const Findings& findings = log.findings;
  wrong += findings.wrong;
  constexpr int places = static_cast<int>(sizeof findings.first / sizeof findings.first[0]);
  for (int i = 0; i < std::min(findings.wrong, places); ++i) {
    std::printf("  %s: %s\n", what.c_str(), findings.first[i]);
  }
}

void Outcome::Add(const Outcome& other) {
  wrong += other.wrong;
  crashed += other.crashed;
  hung += other.hung;
}

void Outcome::Append() const {
  const long unchanged = std::max(0L, cases - reported - wrong - crashed - hung);
  AppendSummary({{what, unchanged, reported, wrong, crashed, hung}});
}
