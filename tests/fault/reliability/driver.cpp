// Disturbs units of work of the library at each of their system calls, a fresh process for each
// case, and prints what became of the study.
//
//   driver WORKER SHIM MOST [UNIT | FAULT]...
//
// MOST is the most cases for one unit and fault, evenly spread over its calls; 0 stands for all.
// Without names of units, or of faults, all are run.

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "tests/fault/reliability/Endings.h"
#include "tests/support/TempFolder.h"

namespace fs = std::filesystem;

namespace {

constexpr unsigned kSeconds = 10;
constexpr std::size_t kMostTold = 50;
constexpr int kNoStart = 127;

/// The fault kinds of shim.h; `counts` is the place of their calls in the shim's file.
struct FaultKind {
  const char* name;
  std::size_t counts;
  bool kills;
};

constexpr std::array<FaultKind, 8> kFaults{{
    {"kill", 0, true},
    {"torn", 2, true},
    {"eio", 0, false},
    {"eio-ever", 1, false},
    {"enospc", 2, false},
    {"enospc-ever", 2, false},
    {"short", 2, false},
    {"short-ever", 2, false},
}};

constexpr std::array<const char*, 9> kUnits{"create",           "open",          "add",
                                            "same-size-update", "larger-update", "remove",
                                            "make-task",        "file-rebuild",  "index-rebuild"};

using Settings = std::vector<std::pair<std::string, std::string>>;

// ---- Processes ----

struct Ended {
  int code = 0;
  int signal = 0;

  bool Hung() const { return signal == SIGALRM; }
};

[[noreturn]] void Become(const std::vector<std::string>& command, const Settings& settings,
                         const std::string& log) {
  for (const auto& [name, value] : settings) setenv(name.c_str(), value.c_str(), 1);
  if (std::freopen(log.c_str(), "a", stderr) == nullptr) _exit(kNoStart);
  dup2(STDERR_FILENO, STDOUT_FILENO);
  std::vector<char*> arguments;
  for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  alarm(kSeconds);
  execv(arguments[0], arguments.data());
  _exit(kNoStart);
}

Ended RunProcess(const std::vector<std::string>& command, const Settings& settings,
                 const std::string& log) {
  std::fflush(stdout);
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("no process can be started");
  if (child == 0) Become(command, settings, log);
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) throw std::runtime_error("a process is lost");
  }
  if (WIFSIGNALED(status)) return {0, WTERMSIG(status)};
  return {WEXITSTATUS(status), 0};
}

// ---- Figures ----

struct Figures {
  long cases = 0;
  long unchanged = 0;
  long reported = 0;
  long withUpkeep = 0;  ///< of those reported, where the study needed it
  long badRetry = 0;    ///< of those reported, where going on without a check leads astray
  long old = 0;
  long fresh = 0;
  long part = 0;
  long torn = 0;
  long lost = 0;
  long refused = 0;
  long wrong = 0;
  long crashed = 0;
  long hung = 0;

  bool IsGood() const { return wrong + crashed + hung == 0; }
};

void PrintHead() {
  std::printf("%-17s%-12s%6s%10s%9s%7s%6s%6s%6s%6s%6s%6s%8s%6s%6s%5s\n", "unit", "fault", "cases",
              "unchanged", "reported", "upkeep", "retry", "old", "new", "part", "torn", "lost",
              "refused", "wrong", "crash", "hang");
}

void Print(const std::string& unit, const std::string& fault, const Figures& of) {
  std::printf("%-17s%-12s%6ld%10ld%9ld%7ld%6ld%6ld%6ld%6ld%6ld%6ld%8ld%6ld%6ld%5ld\n", unit.c_str(),
              fault.c_str(), of.cases, of.unchanged, of.reported, of.withUpkeep, of.badRetry,
              of.old, of.fresh, of.part, of.torn, of.lost, of.refused, of.wrong, of.crashed,
              of.hung);
  std::fflush(stdout);
}

// ---- The cases ----

class Driver {
 public:
  Driver(std::string worker, std::string shim, long most)
      : worker_(std::move(worker)), shim_(std::move(shim)), most_(most) {}

  void RunUnit(const std::string& unit, const std::vector<FaultKind>& faults);
  bool IsGood() const { return good_; }
  long Cases() const { return cases_; }

 private:
  struct Case {
    std::string unit;
    const FaultKind& fault;
    long number;
  };

  std::string Study() const { return folder_ / "prepared/s"; }
  std::string CaseStudy() const { return folder_ / "case/s"; }
  std::string Before(const std::string& unit) const { return folder_ / ("before." + unit); }
  std::string After(const std::string& unit) const { return folder_ / ("after." + unit); }
  std::string Log() const { return folder_ / "log"; }
  std::vector<std::string> UnitCommand(const std::string& unit) const {
    return {worker_, "run", unit, CaseStudy()};
  }

  void Require(const std::vector<std::string>& command, const Settings& settings = {});
  void Provide(const std::string& unit);
  std::array<long, 3> Calls(const std::string& unit);
  Figures RunFault(const std::string& unit, const FaultKind& fault, long calls);
  void RunCase(const Case& that, Figures& figures);
  void Judge(const Case& that, const char* end, Figures& figures);
  void Retry(const Case& that, Figures& figures);
  bool Died(const Ended& ended, const Case& that, Figures& figures);
  void CountVerdict(int verdict, const Case& that, Figures& figures);
  void Wrong(const Case& that, const std::string& what);

  TempFolder folder_;
  std::string worker_;
  std::string shim_;
  long most_;
  long cases_ = 0;
  bool good_ = true;
  std::size_t told_ = 0;
};

/// THROWS unless the command ends well.
void Driver::Require(const std::vector<std::string>& command, const Settings& settings) {
  const Ended ended = RunProcess(command, settings, Log());
  if (ended.code == 0 && ended.signal == 0) return;
  std::ifstream log(Log());
  std::string line;
  while (std::getline(log, line)) std::fprintf(stderr, "%s\n", line.c_str());
  throw std::runtime_error("undisturbed, it fails: " + command.at(1) + ' ' + command.at(2));
}

/// A folder with the study in the state in which the unit finds it.
void Driver::Provide(const std::string& unit) {
  fs::remove_all(folder_ / "case");
  fs::create_directory(folder_ / "case");
  if (unit == "create") return;
  for (const char* extension : {".ksb", ".kx"}) {
    fs::copy_file(Study() + extension, CaseStudy() + extension);
  }
}

/// Does the unit undisturbed, and keeps what the study holds before and after it.
std::array<long, 3> Driver::Calls(const std::string& unit) {
  if (!fs::exists(folder_ / "prepared")) {
    fs::create_directory(folder_ / "prepared");
    Require({worker_, "prepare", Study()});
  }
  Provide(unit);
  Require({worker_, "snapshot", "open", CaseStudy(), Before(unit)});
  Provide(unit);
  const std::string counts = folder_ / "counts";
  Require(UnitCommand(unit), {{"LD_PRELOAD", shim_}, {"KESTDB_FAULT_COUNTS", counts}});
  Require({worker_, "snapshot", unit, CaseStudy(), After(unit)});
  std::array<long, 3> calls{};
  std::ifstream file(counts);
  for (long& count : calls) file >> count;
  if (!file || calls.back() == 0) throw std::runtime_error("the shim counts nothing");
  return calls;
}

void Driver::RunUnit(const std::string& unit, const std::vector<FaultKind>& faults) {
  const std::array<long, 3> calls = Calls(unit);
  for (const FaultKind& fault : faults) {
    const Figures figures = RunFault(unit, fault, calls[fault.counts]);
    Print(unit, fault.name, figures);
    good_ = good_ && figures.IsGood();
    cases_ += figures.cases;
  }
}

Figures Driver::RunFault(const std::string& unit, const FaultKind& fault, long calls) {
  Figures figures;
  const long cases = most_ == 0 ? calls : std::min(calls, most_);
  for (long i = 0; i < cases; ++i) {
    RunCase({unit, fault, 1 + i * calls / cases}, figures);
  }
  return figures;
}

void Driver::RunCase(const Case& that, Figures& figures) {
  ++figures.cases;
  std::ofstream(Log(), std::ios::trunc);
  Provide(that.unit);
  const std::string fault = that.fault.name + (':' + std::to_string(that.number));
  const Ended ended =
      RunProcess(UnitCommand(that.unit), {{"LD_PRELOAD", shim_}, {"KESTDB_FAULT", fault}}, Log());
  if (that.fault.kills && ended.signal == SIGKILL) return Judge(that, "killed", figures);
  if (Died(ended, that, figures)) return;
  if (ended.code == kReported) {
    ++figures.reported;
    Retry(that, figures);
    return Judge(that, "reported", figures);
  }
  if (ended.code == kDone && !that.fault.kills) return Judge(that, "done", figures);
  ++figures.wrong;
  Wrong(that, "the unit ended with code " + std::to_string(ended.code));
}

bool Driver::Died(const Ended& ended, const Case& that, Figures& figures) {
  const bool isKnown = ended.code == kDone || ended.code >= kReported;
  if (ended.signal == 0 && isKnown && ended.code < kWrongUse) return false;
  ++(ended.Hung() ? figures.hung : figures.crashed);
  Wrong(that, ended.Hung() ? "hang" : "crash");
  return true;
}

/// Judges a copy of the study: how it fares with a user who takes no notice of the failure.
void Driver::Retry(const Case& that, Figures& figures) {
  fs::remove_all(folder_ / "copy");
  fs::copy(folder_ / "case", folder_ / "copy");
  const Ended ended = RunProcess({worker_, "judge", that.unit, folder_ / "copy/s",
                                  Before(that.unit), After(that.unit), "retried"},
                                 {}, Log());
  if (Died(ended, that, figures) || ended.code != kWrong) return;
  ++figures.badRetry;
}

void Driver::Judge(const Case& that, const char* end, Figures& figures) {
  const Ended ended = RunProcess(
      {worker_, "judge", that.unit, CaseStudy(), Before(that.unit), After(that.unit), end}, {},
      Log());
  if (Died(ended, that, figures)) return;
  if (std::strcmp(end, "done") == 0) {
    ++(ended.code == kNew ? figures.unchanged : figures.wrong);
    if (ended.code != kNew)
      Wrong(that, "no failure was reported, verdict " + std::to_string(ended.code));
    return;
  }
  const bool withoutUpkeep = ended.code >= kOld + kWithoutUpkeep;
  if (std::strcmp(end, "reported") == 0 && !withoutUpkeep) ++figures.withUpkeep;
  CountVerdict(withoutUpkeep ? ended.code - kWithoutUpkeep : ended.code, that, figures);
}

/// A study that can't be opened has lost all that it held; only a new one held nothing.
void Driver::CountVerdict(int verdict, const Case& that, Figures& figures) {
  switch (verdict) {
    case kOld:
      ++figures.old;
      return;
    case kNew:
      ++figures.fresh;
      return;
    case kPart:
      ++figures.part;
      return;
    case kTorn:
      ++figures.torn;
      return;
    case kLost:
      ++figures.lost;
      return;
    default:
      break;
  }
  if (verdict == kRefused && that.unit == "create") {
    ++figures.refused;
    return;
  }
  ++figures.wrong;
  Wrong(that, "verdict " + std::to_string(verdict));
}

/// Tells how the case can be had again, and what the worker said at last.
void Driver::Wrong(const Case& that, const std::string& what) {
  if (++told_ > kMostTold) return;
  std::printf("  %s %s:%ld: %s\n", that.unit.c_str(), that.fault.name, that.number, what.c_str());
  std::ifstream log(Log());
  std::vector<std::string> lines;
  for (std::string line; std::getline(log, line);) {
    if (!line.empty()) lines.push_back(line);
  }
  const std::size_t first = lines.size() > 4 ? lines.size() - 4 : 0;
  for (std::size_t i = first; i < lines.size(); ++i) std::printf("    %s\n", lines[i].c_str());
}

struct Selection {
  std::vector<std::string> units;
  std::vector<FaultKind> faults;
};

void Select(const std::string& name, Selection& selection) {
  const auto isNamed = [&name](const FaultKind& fault) { return fault.name == name; };
  const auto* fault = std::find_if(kFaults.begin(), kFaults.end(), isNamed);
  if (fault != kFaults.end()) {
    selection.faults.push_back(*fault);
  } else if (std::find(kUnits.begin(), kUnits.end(), name) != kUnits.end()) {
    selection.units.push_back(name);
  } else {
    throw std::invalid_argument("no unit and no fault " + name);
  }
}

int Drive(const std::vector<std::string>& arguments) {
  if (arguments.size() < 3)
    throw std::invalid_argument("driver WORKER SHIM MOST [UNIT | FAULT]...");
  Selection selection;
  for (std::size_t i = 3; i < arguments.size(); ++i) Select(arguments[i], selection);
  if (selection.units.empty()) selection.units.assign(kUnits.begin(), kUnits.end());
  if (selection.faults.empty()) selection.faults.assign(kFaults.begin(), kFaults.end());
  Driver driver(arguments[0], arguments[1], std::stol(arguments[2]));
  PrintHead();
  for (const std::string& unit : selection.units) driver.RunUnit(unit, selection.faults);
  std::printf("%ld cases: %s\n", driver.Cases(),
              driver.IsGood() ? "none silently wrong, no crash, no hang" : "there are faults");
  return driver.IsGood() ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int count, char** arguments) {
  try {
    return Drive({arguments + 1, arguments + count});
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return EXIT_FAILURE;
  }
}
