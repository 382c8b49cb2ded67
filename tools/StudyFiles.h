#pragma once

#include <kestdb.h>

#include <optional>
#include <string>

/// The paths of a study, which may be named with or without ".ksb".
struct StudyFiles {
  explicit StudyFiles(const std::string& name);

  std::string base;
  std::string folder;
  std::string data;
  std::string index;
  std::string lock;
  std::string copy;  ///< where a rebuild of the data file makes its copy
};

/// Bytes of a file, -1 when there is none.
long BytesOf(const std::string& path);

/// The header of a data or index file, read without the lock; nothing for a file that has none of
/// ours.
std::optional<vbFileHeader> HeaderOf(const std::string& path);

// What would make it pointless to open a study. All THROW Refusal.

/// The data file is there, and can be read and written.
void RequireStudy(const StudyFiles& files);
/// The lock directory can be made beside it.
void RequireWritableFolder(const StudyFiles& files);
/// All of these, and nobody holds the lock; waits for it, where that is asked for.
void RequireUsable(const StudyFiles& files);
/// That so many bytes can be added to the folder of the study.
void RequireSpace(const StudyFiles& files, long bytes);

/// Whether opening the study would bring it up to date.
bool IsOfOldVersion(const StudyFiles& files);
