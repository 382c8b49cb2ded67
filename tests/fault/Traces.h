#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <cstddef>
#include <filesystem>
#include <string>
#include <utility>

#include "tests/fault/LargestRequest.h"

/// What files of any bytes may ask for beside what they justify.
inline constexpr std::size_t kMostExtraMemory = 1 << 20;

/// The number that the next file opened gets.
inline int LowestHandle() {
  const int handle = open("/dev/null", O_RDONLY);
  close(handle);
  return handle;
}

/// What the use of a study has left behind: open streams, a lock, a request for much more memory
/// than the files justify. Made before it.
class Traces {
 public:
  Traces(std::string base, std::size_t fileSizes)
      : base_(std::move(base)), most_(fileSizes + kMostExtraMemory), handle_(LowestHandle()) {
    ForgetRequests();
  }

  /// Nothing for none.
  std::string Left() const {
    if (LargestRequest() > most_) {
      return "a request for " + std::to_string(LargestRequest()) + " bytes of memory";
    }
    if (std::filesystem::exists(base_ + ".lck")) return "the lock is left behind";
    if (LowestHandle() != handle_) return "a stream is left open";
    return "";
  }

 private:
  std::string base_;
  std::size_t most_;
  int handle_;
};
