#pragma once

#include <cstdio>
#include <string>

// What only a person at a terminal gets.

bool IsTerminal(std::FILE* stream);

/// `text` in bold or red on a terminal, unless NO_COLOR is set.
std::string Bold(std::FILE* stream, const std::string& text);
std::string Red(std::FILE* stream, const std::string& text);

/// Shows on standard error how far a work of many steps is.
class Progress {
 public:
  explicit Progress(long total) : total_(total) {}
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  /// Wipes the line.
  ~Progress();
  void Step();

 private:
  long total_;
  long done_ = 0;
  int shown_ = -1;  // percent
};

/// Asks at the terminal; true for an answer that starts with y.
bool Confirm(const std::string& question);
