#include "tests/fault/reliability/Figures.h"

#include <array>
#include <cstdio>

#include "tests/fault/Summary.h"

namespace {

using Number = long Figures::*;

constexpr std::array<Number, 18> kNumbers{
    &Figures::cases,    &Figures::unchanged, &Figures::reported,      &Figures::withUpkeep,
    &Figures::badRetry, &Figures::old,       &Figures::fresh,         &Figures::part,
    &Figures::torn,     &Figures::lost,      &Figures::refused,       &Figures::wrong,
    &Figures::crashed,  &Figures::hung,      &Figures::wholeCounters, &Figures::lostCounters,
    &Figures::killed,   &Figures::noMemory};
constexpr std::size_t kColumns = 14;

}  // namespace

void Figures::Count(const Outcome& outcome) {
  using End = Outcome::End;
  ++cases;
  unchanged += outcome.end == End::Unchanged;
  reported += outcome.end == End::Reported;
  killed += outcome.end == End::Killed;
  crashed += outcome.end == End::Crashed;
  hung += outcome.end == End::Hung;
  wrong += outcome.end == End::Wrong;
  badRetry += outcome.isBadRetry;
  noMemory += outcome.noMemory;
  if (outcome.end == End::Reported) withUpkeep += outcome.judgement.neededUpkeep;
  if (outcome.end == End::Reported || outcome.end == End::Killed) {
    Count(outcome.judgement, outcome.isNewStudy);
  }
}

/// A study that can't be opened has lost all that it held; only a new one held nothing.
void Figures::Count(const Judgement& judgement, bool isNewStudy) {
  wholeCounters += judgement.counters == kCountersWhole;
  lostCounters += judgement.counters == kCountersLost;
  old += judgement.verdict == kOld;
  fresh += judgement.verdict == kNew;
  part += judgement.verdict == kPart;
  torn += judgement.verdict == kTorn;
  lost += judgement.verdict == kLost;
  refused += judgement.verdict == kRefused && isNewStudy;
  wrong += judgement.verdict == kWrong || (judgement.verdict == kRefused && !isNewStudy);
}

void Figures::Add(const Figures& other) {
  for (const Number number : kNumbers) this->*number += other.*number;
}

void PrintHead() {
  std::puts(
      "| unit | fault | cases | unchanged | reported | upkeep | retry | "
      "old | new | part | torn | "
      "lost | refused | wrong | crash | hang |\n"
      "|---|---|---:|---:|---:|---:|---:|---:|---:|---:|---:|---:|---:|--"
      "-:|---:|---:|");
}

void Print(const std::string& unit, const std::string& fault, const Figures& of) {
  std::printf("| %s | %s |", unit.c_str(), fault.c_str());
  for (std::size_t i = 0; i < kColumns; ++i) std::printf(" %ld |", of.*kNumbers[i]);
  std::puts("");
  std::fflush(stdout);
}

void PrintCountersHead() {
  std::puts(
      "\n| unit | fault | cases | CDBCtrl whole | lost |\n"
      "|---|---|---:|---:|---:|");
}

void PrintCounters(const std::string& unit, const std::string& fault, const Figures& of) {
  std::printf("| %s | %s | %ld | %ld | %ld |\n", unit.c_str(), fault.c_str(), of.cases,
              of.wholeCounters, of.lostCounters);
}

/// A process that died has called nothing back: it counts as unchanged, where its study is whole
/// behind the upkeep, and else as reported.
void Summarize(const std::string& done, const Figures& of) {
  const long told = of.killed == 0 ? 0 : of.torn + of.lost + of.refused;
  const long whole = of.killed == 0 ? 0 : of.old + of.fresh + of.part;
  AppendSummary({{done, of.unchanged + whole, of.reported + told, of.wrong, of.crashed, of.hung}});
}
