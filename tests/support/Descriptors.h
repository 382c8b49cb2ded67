#pragma once

#include <cstddef>
#include <filesystem>
#include <iterator>

/// How many files this process holds open.
inline std::ptrdiff_t OpenDescriptors() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}
