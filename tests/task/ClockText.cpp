#include "tests/task/ClockText.h"

#include <cstdio>
#include <ctime>

namespace {

bool isChosen = false;
const char* chosen = nullptr;
char buffer[64];

}  // namespace

ClockText::ClockText(const char* text) {
  isChosen = true;
  chosen = text;
}

ClockText::~ClockText() {
  isChosen = false;
}

extern "C" char* ctime(const std::time_t* time) noexcept {
  if (!isChosen) return ctime_r(time, buffer);
  if (chosen == nullptr) return nullptr;
  std::snprintf(buffer, sizeof buffer, "%s", chosen);
  return buffer;
}
