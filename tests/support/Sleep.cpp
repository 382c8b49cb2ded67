#include "tests/support/Sleep.h"

#include <utility>

#include "environment/Utilities.h"

namespace {

struct State {
  std::vector<unsigned> sleeps;
  std::function<void()> action;
};

State& TheState() {
  static State state;
  return state;
}

}  // namespace

const std::vector<unsigned>& Sleeps() {
  return TheState().sleeps;
}

void OnSleep(std::function<void()> action) {
  TheState().action = std::move(action);
}

void ClearSleeps() {
  TheState() = State();
}

void COSUtil::mySleep(unsigned milliseconds) {
  TheState().sleeps.push_back(milliseconds);
  if (TheState().action) TheState().action();
}
