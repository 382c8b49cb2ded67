#include "tests/fault/CaseRunner.h"

#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <stdexcept>

// Null without a leak checker.
extern "C" [[gnu::weak]] int __lsan_do_recoverable_leak_check();

namespace {

constexpr std::size_t kBatch = 500;
constexpr int kMostLost = 60;  // children
constexpr int kLeaked = 77;    // exit status
constexpr unsigned kWallClockSeconds = 60;

/// The results, in memory that parent and children share.
class SharedResults {
 public:
  explicit SharedResults(std::size_t count) : size_(sizeof(Shared) + count * sizeof(CaseResult)) {
    void* memory = mmap(nullptr, size_, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) throw std::runtime_error("no shared memory");
    shared_ = static_cast<Shared*>(memory);
    std::fill_n(Results(), count, CaseResult());
  }
  SharedResults(const SharedResults&) = delete;
  SharedResults& operator=(const SharedResults&) = delete;
  ~SharedResults() { munmap(shared_, size_); }

  volatile std::size_t& Current() { return shared_->current; }
  CaseResult* Results() { return reinterpret_cast<CaseResult*>(shared_ + 1); }

 private:
  struct Shared {
    volatile std::size_t current;
  };
  std::size_t size_;
  Shared* shared_;
};

/// Both timers end the process when they run out.
void StartWatch() {
  itimerval watch = {};
  watch.it_value.tv_sec = 1;
  setitimer(ITIMER_PROF, &watch, nullptr);
  alarm(kWallClockSeconds);
}

[[noreturn]] void RunBatch(std::size_t first, std::size_t last, SharedResults& shared,
                           const std::function<CaseResult(std::size_t)>& run) {
  const rlimit none = {};
  setrlimit(RLIMIT_CORE, &none);
  for (std::size_t i = first; i < last; ++i) {
    shared.Current() = i;
    StartWatch();
    shared.Results()[i] = run(i);
  }
  const itimerval off = {};
  setitimer(ITIMER_PROF, &off, nullptr);
  const bool leaked =
      __lsan_do_recoverable_leak_check != nullptr && __lsan_do_recoverable_leak_check() != 0;
  _exit(leaked ? kLeaked : 0);
}

void SetEnding(CaseResult& result, Ending ending, const std::string& note) {
  result.ending = ending;
  std::strncpy(result.note, note.c_str(), sizeof result.note - 1);
}

/// What became of a child that didn't run to its end.
void RecordLoss(CaseResult& result, int status) {
  if (WIFEXITED(status)) {
    SetEnding(result, Ending::Crashed, "exit status " + std::to_string(WEXITSTATUS(status)));
  } else if (WTERMSIG(status) == SIGPROF || WTERMSIG(status) == SIGALRM) {
    SetEnding(result, Ending::Hung, "out of time");
  } else {
    SetEnding(result, Ending::Crashed, "signal " + std::to_string(WTERMSIG(status)));
  }
}

}  // namespace

const char* EndingName(Ending ending) {
  switch (ending) {
    case Ending::Clean:
      return "clean";
    case Ending::Reported:
      return "reported";
    case Ending::Silent:
      return "silently wrong";
    case Ending::Failed:
      return "failed";
    case Ending::Crashed:
      return "crashed";
    case Ending::Hung:
      return "hung";
    case Ending::NotRun:
      break;
  }
  return "not run";
}

void Count(SummaryRow& row, const CaseResult& result) {
  switch (result.ending) {
    case Ending::Clean:
      ++row.unchanged;
      break;
    case Ending::Reported:
      ++row.reported;
      break;
    case Ending::Silent:
    case Ending::Failed:
    case Ending::NotRun:
      ++row.wrong;
      break;
    case Ending::Crashed:
      ++row.crashed;
      break;
    case Ending::Hung:
      ++row.hung;
      break;
  }
}

std::vector<CaseResult> RunCases(std::size_t count,
                                 const std::function<CaseResult(std::size_t)>& run) {
  SharedResults shared(count);
  int lost = 0;
  for (std::size_t next = 0; next < count && lost < kMostLost;) {
    const std::size_t last = std::min(next + kBatch, count);
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child < 0) throw std::runtime_error("no child process");
    if (child == 0) RunBatch(next, last, shared, run);
    int status = 0;
    waitpid(child, &status, 0);
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0) {
      next = last;
    } else if (WIFEXITED(status) && WEXITSTATUS(status) == kLeaked) {
      SetEnding(shared.Results()[last - 1], Ending::Failed,
                "leaks in the cases from " + std::to_string(next) + " to this one");
      next = last;
      ++lost;
    } else {
      RecordLoss(shared.Results()[shared.Current()], status);
      next = shared.Current() + 1;
      ++lost;
    }
  }
  return {shared.Results(), shared.Results() + count};
}
