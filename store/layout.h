// Private to the library, not installed.
#pragma once

#include <string>

// How the two files of a study are made: who opens them has to agree on it.

namespace kestdb {

inline constexpr int kTreeOrder = 32;
inline constexpr int kTrees = 25;

inline std::string DataPathOf(const std::string& base) {
  return base + ".ksb";
}
inline std::string IndexPathOf(const std::string& base) {
  return base + ".kx";
}

/// Where a rebuild of the data file makes its copy.
inline std::string CopyPathOf(const std::string& dataPath) {
  return dataPath + ".new";
}

/// Where a rebuild of the index puts the old one until the new one is whole.
inline std::string BackupPathOf(const std::string& indexPath) {
  return indexPath + ".old";
}

/// An empty file that says that the index beside it is not to be trusted.
inline std::string MarkPathOf(const std::string& indexPath) {
  return indexPath + ".new";
}

}  // namespace kestdb
