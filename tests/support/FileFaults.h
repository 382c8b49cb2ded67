#pragma once

#include <string>

// Doubles of the C library's calls that change files: a test program with FileFaults.cpp among its
// sources can let them fail, or end the process, where a disk or a power failure would. Without a
// fault they do what they always do.

/// In place of an errno: the process ends at once, with nothing brought out, as if killed.
inline constexpr int kDeath = -1;

/// While one lives, every rename of a file whose name ends in `ending` fails with `error`. The lock
/// directory is renamed too; its name has another ending.
class RenameFault {
 public:
  RenameFault(const std::string& ending, int error);
  RenameFault(const RenameFault&) = delete;
  RenameFault& operator=(const RenameFault&) = delete;
  ~RenameFault();
};

/// The same for remove.
class RemoveFault {
 public:
  RemoveFault(const std::string& ending, int error);
  RemoveFault(const RemoveFault&) = delete;
  RemoveFault& operator=(const RemoveFault&) = delete;
  ~RemoveFault();
};

/// While one lives, the n-th write to a stream, counted from 1, writes nothing and fails with
/// `error`. A disk that is full (ENOSPC) stays so: all later ones fail as well.
class WriteFault {
 public:
  WriteFault(int n, int error);
  WriteFault(const WriteFault&) = delete;
  WriteFault& operator=(const WriteFault&) = delete;
  ~WriteFault();

  /// Whether there was an n-th write.
  bool Happened() const;
};
