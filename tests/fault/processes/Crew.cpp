#include "tests/fault/processes/Crew.h"

#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <stdexcept>
#include <utility>

namespace {

constexpr int kFailed = 3;

void Close(int& descriptor) {
  if (descriptor >= 0) close(std::exchange(descriptor, -1));
}

void MakePipe(int (&ends)[2]) {
  if (pipe(ends) != 0) throw std::runtime_error("no pipe between processes");
}

Ending EndingOf(int status) {
  if (WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) return Ending::Killed;
  if (WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM) return Ending::Hang;
  if (WIFSIGNALED(status)) return Ending::Crash;
  if (WEXITSTATUS(status) == EXIT_SUCCESS) return Ending::Good;
  return WEXITSTATUS(status) == kFailed ? Ending::Failed : Ending::Crash;
}

Ending Await(pid_t process) {
  int status = 0;
  while (waitpid(process, &status, 0) != process) {
    if (errno != EINTR) throw std::runtime_error("a process is lost");
  }
  return EndingOf(status);
}

}  // namespace

void ShowLife() {
  alarm(kLongestSeconds);
}

double Now() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

Crew::Crew(int processes, const Body& body) {
  MakePipe(ready_);
  MakePipe(go_);
  std::fflush(nullptr);  // or all processes would write what waits in the buffers
  for (int i = 0; i < processes; ++i) {
    const pid_t process = fork();
    if (process == 0) Run(i, body);
    if (process > 0) processes_.push_back(process);
  }
  Close(ready_[1]);
  Close(go_[0]);
  if (processes_.size() != static_cast<std::size_t>(processes)) {
    throw std::runtime_error("no process can be started");
  }
  AwaitAll();
}

Crew::~Crew() {
  for (const pid_t process : processes_) {
    kill(process, SIGKILL);
    waitpid(process, nullptr, 0);
  }
  for (int* ends : {ready_, go_}) {
    Close(ends[0]);
    Close(ends[1]);
  }
}

/// What a process does. It never returns into the program.
void Crew::Run(int process, const Body& body) const {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  ShowLife();
  close(ready_[0]);
  close(go_[1]);
  int code = EXIT_SUCCESS;
  try {
    body(process, [this] {
      char byte = 0;
      if (write(ready_[1], &byte, 1) != 1) _exit(kFailed);
      // Nobody ever writes: the end of the pipe comes to all at once.
      if (read(go_[0], &byte, 1) != 0) _exit(kFailed);
    });
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "process %d: %s\n", process, failure.what());
    code = kFailed;
  }
  std::fflush(nullptr);
  _exit(code);
}

/// One that dies before the barrier is told of by its ending.
void Crew::AwaitAll() const {
  for (std::size_t i = 0; i < processes_.size(); ++i) {
    pollfd watched{ready_[0], POLLIN, 0};
    char byte = 0;
    if (poll(&watched, 1, 1000 * static_cast<int>(kLongestSeconds)) != 1) return;
    if (read(ready_[0], &byte, 1) != 1) return;
  }
}

double Crew::Go() {
  const double now = Now();
  Close(go_[1]);
  return now;
}

void Crew::Kill(int process) {
  kill(processes_.at(static_cast<std::size_t>(process)), SIGKILL);
}

std::vector<Ending> Crew::AwaitEnds() {
  std::vector<Ending> endings;
  for (const pid_t process : processes_) endings.push_back(Await(process));
  processes_.clear();
  return endings;
}

Ending Alone(const std::function<void()>& body) {
  Crew crew(1, [&body](int, const Crew::Barrier& barrier) {
    barrier();
    body();
  });
  crew.Go();
  return crew.AwaitEnds().front();
}
