#include "tests/fault/reliability/Processes.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace {

constexpr unsigned kSeconds = 10;
constexpr int kNoStart = 127;

/// Texts as a program gets them.
class Texts {
 public:
  explicit Texts(std::vector<std::string> texts) : texts_(std::move(texts)) {
    for (std::string& text : texts_) pointers_.push_back(text.data());
    pointers_.push_back(nullptr);
  }
  Texts(const Texts&) = delete;
  Texts& operator=(const Texts&) = delete;

  char* const* Get() const { return pointers_.data(); }

 private:
  std::vector<std::string> texts_;
  std::vector<char*> pointers_;
};

std::vector<std::string> Environment(const Settings& settings) {
  std::vector<std::string> lines;
  for (char** line = environ; *line != nullptr; ++line) {
    bool replaced = false;
    for (const auto& [name, value] : settings) {
      replaced = replaced || std::strncmp(*line, (name + '=').c_str(), name.size() + 1) == 0;
    }
    if (!replaced) lines.emplace_back(*line);
  }
  for (const auto& [name, value] : settings) lines.push_back(name + '=' + value);
  return lines;
}

/// Calls nothing that another thread of the parent could have been in the middle of.
[[noreturn]] void Become(char* const* command, char* const* environment, const char* log) {
  const int file = open(log, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
  if (file < 0 || dup2(file, STDOUT_FILENO) < 0 || dup2(file, STDERR_FILENO) < 0) _exit(kNoStart);
  alarm(kSeconds);
  execve(command[0], command, environment);
  _exit(kNoStart);
}

}  // namespace

Ended RunProcess(const std::vector<std::string>& command, const Settings& settings,
                 const std::string& log) {
  const Texts words(command);
  const Texts environment(Environment(settings));
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("no process can be started");
  if (child == 0) Become(words.Get(), environment.Get(), log.c_str());
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) throw std::runtime_error("a process is lost");
  }
  if (WIFSIGNALED(status)) return {0, WTERMSIG(status)};
  return {WEXITSTATUS(status), 0};
}
