#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/support/TempFolder.h"

// The program `kestdb`, run as its user does.

struct Outcome {
  int status = -1;  ///< the exit status; 1000 and the signal for a program that a signal ended
  std::string out;
  std::string err;
};

/// Runs the program in a folder and waits for its end.
Outcome RunProgram(const std::string& folder, const std::vector<std::string>& arguments);

/// The same as a user without any rights of root's.
/// THROWS std::runtime_error when that user can't run the program.
Outcome RunAsNobody(const std::string& folder, const std::vector<std::string>& arguments);

/// The same on a terminal, where all output is one; `input` is what is typed as the answer
/// to a question. The variables, as "NAME=value", are added to the environment.
Outcome RunOnTerminal(const std::string& folder, const std::vector<std::string>& arguments,
                      const std::string& input = "",
                      const std::vector<std::string>& variables = {});

/// A program on its way, with all its output in one file.
class RunningProgram {
 public:
  RunningProgram(const std::string& folder, const std::vector<std::string>& arguments,
                 const std::string& out = "/dev/null");
  RunningProgram(const RunningProgram&) = delete;
  RunningProgram& operator=(const RunningProgram&) = delete;
  /// Kills it if it still runs.
  ~RunningProgram();

  /// Waits until `isThere()` is true; no longer than a minute.
  static void Await(const std::function<bool()>& isThere);
  void Signal(int signal) const;
  /// Waits for its end; the exit status as in Outcome.
  int AwaitEnd();

 private:
  pid_t process_;
};

/// The text without the library's lines about exceptions on their way, which name its source lines.
std::string WithoutTrace(const std::string& text);

std::string ReadAll(const std::string& path);
void WriteAt(const std::string& path, long offset, const std::string& bytes);
/// The names in a folder, sorted, with blanks between them.
std::string NamesIn(const std::string& folder);
