#pragma once

#include <stdexcept>
#include <string>

/// A file system of its own at a folder, so small that a study fills it. This process alone and its
/// children see it; it goes with this object.
class SmallDisk {
 public:
  /// This process may not mount a file system.
  struct Refused : std::runtime_error {
    using std::runtime_error::runtime_error;
  };

  static constexpr long kBlock = 4096;
  static constexpr long kBlocks = 64;

  /// THROWS Refused. REQUIRES that this process has no other threads.
  explicit SmallDisk(std::string folder);
  SmallDisk(const SmallDisk&) = delete;
  SmallDisk& operator=(const SmallDisk&) = delete;
  ~SmallDisk();

  const std::string& Folder() const { return folder_; }

  /// Fills it up, but for that many blocks; false when there are no more than those. THROWS
  /// std::runtime_error.
  bool FillUpTo(long freeBlocks) const;
  void MakeRoom() const;

 private:
  long FreeBlocks() const;
  std::string Filler() const { return folder_ + "/filler"; }

  std::string folder_;
};
