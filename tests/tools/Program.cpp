#include "tests/tools/Program.h"

#include <grp.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace {

constexpr unsigned kLongestSeconds = 120;
constexpr uid_t kNobody = 65534;
constexpr int kCannotRun = 126;

/// Becomes the program; only in a process of its own.
[[noreturn]] void Become(const std::string& folder, const std::vector<std::string>& arguments) {
  std::vector<char*> words{const_cast<char*>("kestdb")};
  for (const std::string& argument : arguments)
    words.push_back(const_cast<char*>(argument.c_str()));
  words.push_back(nullptr);
  alarm(kLongestSeconds);
  if (chdir(folder.c_str()) == 0) execv(KESTDB_PROGRAM, words.data());
  _exit(kCannotRun);
}

int AwaitStatus(pid_t process) {
  int status = 0;
  if (waitpid(process, &status, 0) != process) throw std::runtime_error("the program is gone");
  return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
}

/// Reads both streams to their ends, whichever has something.
void ReadBoth(int out, int err, Outcome& outcome) {
  pollfd watched[] = {{out, POLLIN, 0}, {err, POLLIN, 0}};
  std::string* texts[] = {&outcome.out, &outcome.err};
  int open = 2;
  while (open > 0 && poll(watched, 2, -1) > 0) {
    for (int i = 0; i < 2; ++i) {
      if (watched[i].fd < 0 || watched[i].revents == 0) continue;
      char piece[4096];
      const ssize_t length = read(watched[i].fd, piece, sizeof piece);
      if (length > 0) {
        texts[i]->append(piece, static_cast<std::size_t>(length));
      } else {
        watched[i].fd = -1;
        --open;
      }
    }
  }
}

Outcome RunWith(const std::string& folder, const std::vector<std::string>& arguments,
                const std::function<void()>& prepare) {
  int out[2];
  int err[2];
  if (pipe(out) != 0 || pipe(err) != 0) throw std::runtime_error("no pipes");
  const pid_t process = fork();
  if (process == 0) {
    dup2(out[1], STDOUT_FILENO);
    dup2(err[1], STDERR_FILENO);
    for (const int end : {out[0], out[1], err[0], err[1]}) close(end);
    if (std::freopen("/dev/null", "r", stdin) == nullptr) _exit(kCannotRun);
    prepare();
    Become(folder, arguments);
  }
  close(out[1]);
  close(err[1]);
  Outcome outcome;
  ReadBoth(out[0], err[0], outcome);
  close(out[0]);
  close(err[0]);
  outcome.status = AwaitStatus(process);
  return outcome;
}

}  // namespace

Outcome RunProgram(const std::string& folder, const std::vector<std::string>& arguments) {
  return RunWith(folder, arguments, [] {});
}

Outcome RunAsNobody(const std::string& folder, const std::vector<std::string>& arguments) {
  const Outcome outcome = RunWith(folder, arguments, [] {
    if (geteuid() != 0) return;
    if (setgroups(0, nullptr) != 0 || setgid(kNobody) != 0 || setuid(kNobody) != 0) {
      _exit(kCannotRun);
    }
  });
  if (outcome.status == kCannotRun) throw std::runtime_error("nobody can't run the program");
  return outcome;
}

Outcome RunOnTerminal(const std::string& folder, const std::vector<std::string>& arguments,
                      const std::string& input, const std::vector<std::string>& variables) {
  int terminal = -1;
  const pid_t process = forkpty(&terminal, nullptr, nullptr, nullptr);
  if (process < 0) throw std::runtime_error("no terminal");
  if (process == 0) {
    for (const std::string& variable : variables) putenv(const_cast<char*>(variable.c_str()));
    Become(folder, arguments);
  }
  Outcome outcome;
  bool typed = false;
  char piece[4096];
  ssize_t length = 0;
  while ((length = read(terminal, piece, sizeof piece)) > 0) {
    outcome.out.append(piece, static_cast<std::size_t>(length));
    if (typed || !outcome.out.ends_with("[y/N] ")) continue;
    typed = write(terminal, input.data(), input.size()) >= 0;
  }
  close(terminal);
  outcome.status = AwaitStatus(process);
  return outcome;
}

RunningProgram::RunningProgram(const std::string& folder, const std::vector<std::string>& arguments,
                               const std::string& out)
    : process_(fork()) {
  if (process_ < 0) throw std::runtime_error("no process");
  if (process_ != 0) return;
  if (std::freopen(out.c_str(), "w", stdout) == nullptr) _exit(kCannotRun);
  dup2(STDOUT_FILENO, STDERR_FILENO);
  Become(folder, arguments);
}

RunningProgram::~RunningProgram() {
  if (process_ < 0) return;
  kill(process_, SIGKILL);
  waitpid(process_, nullptr, 0);
}

void RunningProgram::Await(const std::function<bool()>& isThere) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  while (!isThere()) {
    if (std::chrono::steady_clock::now() > end) throw std::runtime_error("it doesn't come");
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

void RunningProgram::Signal(int signal) const {
  kill(process_, signal);
}

int RunningProgram::AwaitEnd() {
  const int status = AwaitStatus(process_);
  process_ = -1;
  return status;
}

std::string WithoutTrace(const std::string& text) {
  std::istringstream lines(text);
  std::string rest;
  for (std::string line; std::getline(lines, line);) {
    const bool isTrace = line.starts_with("NEW EXCEPTION: ") || line.starts_with("EXCEPTION: ");
    if (!isTrace) rest += line + '\n';
  }
  return rest;
}

std::string ReadAll(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void WriteAt(const std::string& path, long offset, const std::string& bytes) {
  std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
  file.seekp(offset);
  file << bytes;
}

std::string NamesIn(const std::string& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    names.push_back(entry.path().filename());
  }
  std::sort(names.begin(), names.end());
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : " ") + name;
  return text;
}
