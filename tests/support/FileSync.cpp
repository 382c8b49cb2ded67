#include "tests/support/FileSync.h"

#include <unistd.h>

#include <cerrno>

namespace {

struct State {
  std::vector<int> files;
  int error = 0;
};

State& TheState() {
  static State state;
  return state;
}

}  // namespace

const std::vector<int>& FileSyncs() {
  return TheState().files;
}

void FailFileSyncs(int error) {
  TheState().error = error;
}

void ClearFileSyncs() {
  TheState() = State();
}

int fsync(int file) {
  TheState().files.push_back(file);
  if (TheState().error == 0) return 0;
  errno = TheState().error;
  return -1;
}
