#include "maintenance/DBUtilities.h"

#include <cstdio>
#include <utility>

#include "environment/Logging.h"
#include "maintenance/Lock.h"
#include "maintenance/upkeep.h"
#include "maintenance/vbdstats.h"
#include "store/KestErr.h"
#include "store/vbdbase.h"

// Checks and reports of data files, and the clearing of their locks. Rebuilds: FileRebuild.cpp,
// IndexRebuild.cpp.

namespace {

void CheckFile(const std::string& path, kestdb::UpkeepFile& file) try {
  KStatus(path);
  file->Open(path, vbReadWrite);
  kestdb::RequireCurrentRevision(*file, kestdb::UpkeepRole::Checked);
  file.Lock();
  PreCheck(&*file, true);
  VBDStats(fKLog, &*file);
  VBStatistics(&*file, true);
  file.Unlock();
  file->Abandon();
}
LOG_AND_RETHROW

void ReportFile(const std::string& path, bool walk, kestdb::UpkeepFile& file) try {
  KStatus(path);
  file->Open(path, vbReadWrite);
  file.Lock();
  EchoVBDVersion(fKLog);
  PreCheck(&*file, false);
  VBDStats(fKLog, &*file);
  if (walk) VBStatistics(&*file, false);
  file.Unlock();
  // To count a broken free list marks it as broken; a report leaves the file as it is.
  file->Abandon();
}
LOG_AND_RETHROW

}  // namespace

void KFileCheck(const std::string& path) {
  LPrint("\n***** Start -- Data File Check *****\n");
  LPrint("File name: %s\n", path.c_str());
  kestdb::UpkeepFile file;
  const kestdb::EndLine end("\n***** End -- Data File Check *****\n");
  CheckFile(path, file);
}

void KFileStats(const std::string& path, bool walk) {
  LPrint("\n***** Start -- Data File Statistics *****\n");
  LPrint("File name: %s\n", path.c_str());
  kestdb::UpkeepFile file;
  const kestdb::EndLine end("\n***** End -- Data File Statistics *****\n\n");
  ReportFile(path, walk, file);
}

namespace {

/// A stream that is unlocked and closed however a run ends.
struct LockedStream {
  LockedStream() = default;
  LockedStream(const LockedStream&) = delete;
  LockedStream& operator=(const LockedStream&) = delete;
  ~LockedStream() {
    if (stream == nullptr) return;
    if (locked) {
      try {
        NSFUnlock(stream);
      } catch (...) {
        // It is in the log; the first failure goes on.
      }
    }
    std::fclose(stream);
  }

  std::FILE* stream = nullptr;
  bool locked = false;
};

void ReadSignature(std::FILE* stream) {
  if (std::fseek(stream, 0, SEEK_SET) != 0) Throw<CFileSeek>();
  LPrint("Moved to file header location.\n");
  vbFileHeader header;
  if (std::fread(&header, sizeof header, 1, stream) != 1) Throw<CFileRead>();
  LPrint("Read the file header.\n");
  if (!header.HasKnownSignature()) Throw<CWrongFileType>();
  LPrint("File signature checks...OK\n");
}

void ClearFileLock(std::FILE* stream) {
  if (std::fseek(stream, sizeof(vbFileHeader), SEEK_SET) != 0) Throw<CFileSeek>();
  LPrint("Moved to lock location.\n");
  const vbFileLockHeader unlocked;
  if (std::fwrite(&unlocked, sizeof unlocked, 1, stream) != 1 || std::fflush(stream) != 0) {
    Throw<CFileWrite>();
  }
  LPrint("Reinitialized file lock.\n");
}

void UnlockFile(const std::string& path, LockedStream& file) try {
  KStatus(path);
  file.stream = std::fopen(path.c_str(), "r+b");
  if (file.stream == nullptr) Throw<CFileOpen>();
  LPrint("%s opened.\n", path.c_str());
  NSFLock(file.stream);
  file.locked = true;
  LPrint("File locked using operating system.\n");
  ReadSignature(file.stream);
  ClearFileLock(file.stream);
  file.locked = false;
  NSFUnlock(file.stream);
  LPrint("File unlocked using operating system.\n");
  if (std::fclose(std::exchange(file.stream, nullptr)) != 0) Throw<CFileClose>();
}
LOG_AND_RETHROW

}  // namespace

void KForceUnlock(const std::string& path) {
  LPrint("\n***** Start -- Unlocking File *****\n");
  LPrint("File name: %s\n", path.c_str());
  LockedStream file;
  const kestdb::EndLine end("***** End -- Unlocking File *****\n");
  UnlockFile(path, file);
}
