#pragma once

#include <csignal>
#include <string>
#include <utility>
#include <vector>

/// Environment variables and their values.
using Settings = std::vector<std::pair<std::string, std::string>>;

/// How a process ended: by a signal, or else with a code.
struct Ended {
  int code = 0;
  int signal = 0;

  bool Hung() const { return signal == SIGALRM; }
};

/// Runs a program for ten seconds at most, with the settings beside those that this process has.
/// What it prints is added to the file `log`. THROWS std::runtime_error when there is no process.
Ended RunProcess(const std::vector<std::string>& command, const Settings& settings,
                 const std::string& log);
