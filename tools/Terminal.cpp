#include "Terminal.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>

namespace {

constexpr int kBarWidth = 40;
constexpr long kManySteps = 1000;

bool HasColour(std::FILE* stream) {
  const char* refused = std::getenv("NO_COLOR");
  return IsTerminal(stream) && (refused == nullptr || *refused == '\0');
}

std::string Coloured(std::FILE* stream, const char* code, const std::string& text) {
  return HasColour(stream) ? code + text + "\033[0m" : text;
}

}  // namespace

bool IsTerminal(std::FILE* stream) {
  return isatty(fileno(stream)) == 1;
}

std::string Bold(std::FILE* stream, const std::string& text) {
  return Coloured(stream, "\033[1m", text);
}

std::string Red(std::FILE* stream, const std::string& text) {
  return Coloured(stream, "\033[31m", text);
}

void Progress::Step() {
  ++done_;
  if (total_ < kManySteps) return;
  const auto percent = static_cast<int>(std::min(done_, total_) * 100 / total_);
  if (percent == shown_ || !IsTerminal(stderr)) return;
  shown_ = percent;
  const std::string bar(static_cast<std::size_t>(percent * kBarWidth / 100), '#');
  std::fprintf(stderr, "\r[%-*s] %3d%%", kBarWidth, bar.c_str(), percent);
}

Progress::~Progress() {
  if (shown_ >= 0) std::fprintf(stderr, "\r%*s\r", kBarWidth + 7, "");
}

bool Confirm(const std::string& question) {
  std::fprintf(stderr, "%s [y/N] ", question.c_str());
  char answer[16] = {};
  if (std::fgets(answer, sizeof answer, stdin) == nullptr) return false;
  return answer[0] == 'y' || answer[0] == 'Y';
}
