// Disturbs units of work of the library at each of their system calls and allocations, a fresh
// process for each case, and prints what became of the study.
//
//   driver [--jobs N] [--second WORKER] WORKER SHIM MOST [UNIT | FAULT]...
//
// MOST is the most cases for one unit and fault, evenly spread over its calls; 0 stands for all.
// Without names of units, or of faults, all are run. A second worker, which the sanitizers watch,
// does the unit of every second case, or the upkeep where the process that does the unit dies. N
// cases are run at a time, as many as there are processors if not told.

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <map>
#include <mutex>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

#include "tests/fault/reliability/Stage.h"
#include "tests/support/TempFolder.h"

namespace {

constexpr int kPoints = 24;

/// The places of the counts that a worker writes.
enum Place : std::size_t { kAll, kData, kWrites, kReads, kAllocations, kStayed, kPlaces };

/// The fault kinds of shim.h, and shortages of memory.
struct FaultKind {
  const char* name;
  Place counts;  ///< what it may happen to
  const char* words;

  bool Kills() const { return name == std::string("kill") || name == std::string("torn"); }
  bool IsShortage() const { return counts == kAllocations; }
};

constexpr std::array<FaultKind, 13> kFaults{{
    {"kill", kAll, "process killed before a system call, then the upkeep"},
    {"torn", kWrites, "process killed in the middle of a write, then the upkeep"},
    {"eio", kAll, "input/output error at a system call, once"},
    {"eio-ever", kData, "input/output errors from a system call on"},
    {"enospc", kWrites, "disk full at a write, once"},
    {"enospc-ever", kWrites, "disk full from a write on"},
    {"short", kWrites, "short write, once"},
    {"short-ever", kWrites, "short writes from a write on"},
    {"short-read", kReads, "short read, once"},
    {"short-read-ever", kReads, "short reads from a read on"},
    {"eof", kReads, "unexpected end of file at a read, once"},
    {"memory", kAllocations, "out of memory at an allocation, once"},
    {"memory-ever", kAllocations, "out of memory from an allocation on"},
}};

constexpr std::array<const char*, 10> kUnits{
    "create", "open",    "add",       "same-size-update", "larger-update",
    "remove", "take-id", "make-task", "file-rebuild",     "index-rebuild"};

struct Options {
  std::vector<std::string> workers;  ///< one or two
  std::string shim;
  long most = 0;
  unsigned jobs = std::max(std::thread::hardware_concurrency(), 1U);
  std::vector<std::string> units;
  std::vector<FaultKind> faults;
};

class Driver {
 public:
  explicit Driver(Options options);

  void Run();
  bool IsGood() const { return all_.IsGood(); }

 private:
  struct Case {
    const std::string& unit;
    const FaultKind& fault;
    long number;
    std::size_t worker;
  };

  /// Cases that are wrong in the same way.
  struct Wrong {
    std::set<long> numbers;
    std::vector<std::string> lastWords;  ///< of one of them
  };

  void RunUnit(const std::string& unit);
  void Rehearse(const std::string& unit);
  std::vector<Case> Cases(const std::string& unit, const FaultKind& fault) const;
  Figures RunCases(const std::vector<Case>& cases);
  Outcome RunCase(const Case& that, Stage& stage) const;
  Settings SettingsOf(const Case& that) const;
  void Tell(const Case& that, const Outcome& outcome, const Stage& stage);
  void PrintWrong() const;
  void PrintCountersTable() const;

  Options options_;
  TempFolder folder_;
  std::vector<Stage> stages_;             ///< by job
  std::vector<Undisturbed> undisturbed_;  ///< of the unit, by worker
  std::map<std::string, Figures> byFault_;
  /// Unit, fault and figures, where counters are stored anew.
  std::vector<std::tuple<std::string, std::string, Figures>> counters_;
  Figures all_;
  std::mutex mutex_;
  std::map<std::string, Wrong> wrong_;  ///< by unit, fault and what it is
};

Driver::Driver(Options options) : options_(std::move(options)) {
  const std::string study = folder_ / "prepared/s";
  PrepareStudy(options_.workers.front(), study, kPoints, folder_ / "log");
  for (unsigned i = 0; i < options_.jobs; ++i) {
    stages_.emplace_back(folder_ / ("stage" + std::to_string(i)), study);
  }
}

void Driver::Run() {
  PrintHead();
  for (const std::string& unit : options_.units) RunUnit(unit);
  Print("all", "all", all_);
  PrintCountersTable();
  PrintWrong();
  for (const FaultKind& fault : options_.faults) {
    Summarize(std::string("units of work: ") + fault.words, byFault_[fault.name]);
  }
  std::printf("\n%ld cases: %s\n", all_.cases,
              IsGood() ? "none silently wrong, no crash, no hang" : "there are faults");
  if (all_.noMemory > 0) {
    std::printf("%ld shortages of memory were reported by std::bad_alloc.\n", all_.noMemory);
  }
}

void Driver::RunUnit(const std::string& unit) {
  Rehearse(unit);
  for (const FaultKind& fault : options_.faults) {
    const Figures figures = RunCases(Cases(unit, fault));
    Print(unit, fault.name, figures);
    if (figures.HasCounters()) counters_.emplace_back(unit, fault.name, figures);
    byFault_[fault.name].Add(figures);
    all_.Add(figures);
  }
}

/// By each worker, on a stage of its own.
void Driver::Rehearse(const std::string& unit) {
  Settings settings = SanitizerSettings(false);
  settings.emplace_back("LD_PRELOAD", options_.shim);
  undisturbed_.clear();
  for (std::size_t i = 0; i < options_.workers.size(); ++i) {
    Stage stage(folder_ / ("rehearsal" + std::to_string(i)), folder_ / "prepared/s");
    undisturbed_.push_back(stage.Rehearse(options_.workers[i], unit, settings));
    const std::vector<long>& counts = undisturbed_.back().counts;
    if (counts.size() != kPlaces || counts[kWrites] == 0 || counts[kAllocations] == 0) {
      throw std::runtime_error("nothing is counted");
    }
  }
}

std::vector<Driver::Case> Driver::Cases(const std::string& unit, const FaultKind& fault) const {
  long calls = undisturbed_.front().counts[fault.counts];
  for (const Undisturbed& of : undisturbed_) calls = std::min(calls, of.counts[fault.counts]);
  const long count = options_.most == 0 ? calls : std::min(calls, options_.most);
  std::vector<Case> cases;
  for (long i = 0; i < count; ++i) {
    const auto worker = static_cast<std::size_t>(i) % options_.workers.size();
    cases.push_back({unit, fault, 1 + (2 * i + 1) * calls / (2 * count), worker});
  }
  return cases;
}

Figures Driver::RunCases(const std::vector<Case>& cases) {
  Figures figures;
  std::atomic<std::size_t> next = 0;
  std::exception_ptr failure;
  const auto work = [&](Stage& stage) {
    try {
      for (std::size_t i = next++; i < cases.size(); i = next++) {
        const Outcome outcome = RunCase(cases[i], stage);
        const std::lock_guard guard(mutex_);
        figures.Count(outcome);
        if (!outcome.IsGood()) Tell(cases[i], outcome, stage);
      }
    } catch (...) {
      const std::lock_guard guard(mutex_);
      failure = std::current_exception();
    }
  };
  std::vector<std::thread> threads;
  for (Stage& stage : stages_) threads.emplace_back(work, std::ref(stage));
  for (std::thread& thread : threads) thread.join();
  if (failure != nullptr) std::rethrow_exception(failure);
  return figures;
}

Outcome Driver::RunCase(const Case& that, Stage& stage) const {
  const std::string& usual = options_.workers.front();
  const std::string& watched = options_.workers[that.worker];
  const bool kills = that.fault.Kills();
  stage.Provide(that.unit);
  const Ended ended = stage.Run(kills ? usual : watched, that.unit, SettingsOf(that));
  Outcome outcome = stage.Judge(kills ? watched : usual, that.unit, undisturbed_.front(), ended);
  using End = Outcome::End;
  if (kills != (outcome.end == End::Killed) && outcome.IsGood()) {
    outcome.end = End::Wrong;
    outcome.what = "the fault did not happen";
  }
  if (outcome.noMemory && !that.fault.IsShortage() && outcome.IsGood()) {
    outcome.end = End::Wrong;
    outcome.what = "std::bad_alloc where memory is not short";
  }
  return outcome;
}

/// Leaks can't be looked for where the shim is in the way; the allocations are counted there.
Settings Driver::SettingsOf(const Case& that) const {
  Settings settings = SanitizerSettings(that.fault.IsShortage());
  if (!that.fault.IsShortage()) settings.emplace_back("LD_PRELOAD", options_.shim);
  settings.emplace_back("KESTDB_FAULT", that.fault.name + (':' + std::to_string(that.number)));
  const long stays = undisturbed_[that.fault.Kills() ? 0 : that.worker].counts[kStayed];
  settings.emplace_back("KESTDB_FAULT_ALIVE", std::to_string(stays));
  return settings;
}

/// Keeps how the case can be had again, and of the first of its kind what the worker said at last.
void Driver::Tell(const Case& that, const Outcome& outcome, const Stage& stage) {
  const std::string kind = that.unit + ' ' + that.fault.name + ": " + outcome.what;
  Wrong& wrong = wrong_[kind];
  if (wrong.numbers.empty()) wrong.lastWords = stage.LastWords();
  wrong.numbers.insert(that.number);
}

void Driver::PrintWrong() const {
  for (const auto& [kind, wrong] : wrong_) {
    std::printf("\n%s, at", kind.c_str());
    for (const long number : wrong.numbers) std::printf(" %ld", number);
    std::puts("");
    for (const std::string& line : wrong.lastWords) std::printf("    %s\n", line.c_str());
  }
}

void Driver::PrintCountersTable() const {
  if (counters_.empty()) return;
  PrintCountersHead();
  for (const auto& [unit, fault, figures] : counters_) PrintCounters(unit, fault, figures);
}

// ---- The command line ----

void Select(const std::string& name, Options& options) {
  const auto isNamed = [&name](const FaultKind& fault) { return fault.name == name; };
  const auto* fault = std::find_if(kFaults.begin(), kFaults.end(), isNamed);
  if (fault != kFaults.end()) {
    options.faults.push_back(*fault);
  } else if (std::find(kUnits.begin(), kUnits.end(), name) != kUnits.end()) {
    options.units.push_back(name);
  } else {
    throw std::invalid_argument("no unit and no fault " + name);
  }
}

/// Takes an option and its value from the front of the arguments; empty when it isn't there.
std::string Take(const std::string& name, std::vector<std::string>& arguments) {
  if (arguments.size() < 2 || arguments.front() != name) return "";
  const std::string value = arguments[1];
  arguments.erase(arguments.begin(), arguments.begin() + 2);
  return value;
}

Options Parse(std::vector<std::string> arguments) {
  Options options;
  const std::string jobs = Take("--jobs", arguments);
  const std::string second = Take("--second", arguments);
  if (!jobs.empty()) options.jobs = static_cast<unsigned>(std::max(std::stoi(jobs), 1));
  if (arguments.size() < 3) {
    throw std::invalid_argument(
        "driver [--jobs N] [--second WORKER] WORKER "
        "SHIM MOST [UNIT | FAULT]...");
  }
  options.workers.push_back(arguments[0]);
  if (!second.empty()) options.workers.push_back(second);
  options.shim = arguments[1];
  options.most = std::stol(arguments[2]);
  for (std::size_t i = 3; i < arguments.size(); ++i) Select(arguments[i], options);
  if (options.units.empty()) options.units.assign(kUnits.begin(), kUnits.end());
  if (options.faults.empty()) options.faults.assign(kFaults.begin(), kFaults.end());
  return options;
}

}  // namespace

int main(int count, char** arguments) {
  try {
    Driver driver(Parse({arguments + 1, arguments + count}));
    driver.Run();
    return driver.IsGood() ? EXIT_SUCCESS : EXIT_FAILURE;
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return EXIT_FAILURE;
  }
}
