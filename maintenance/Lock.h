#pragma once

#include <cstdio>
#include <string>

#include "store/api.h"

class POD;

/// The lock of the whole database between processes: a directory beside the data file, whose
/// existence is the lock. Declared on the stack around every operation that reads or writes a
/// file. Only the outermost one of a process acts: it makes the directory and reloads the headers
/// of both files and of all trees; at its end it writes them back, brings both files to the disk
/// and removes the directory. Nothing read from a header may be kept beyond that.
class KESTDB_API CLock {
 public:
  /// `thread` names the taker; a taker of the same number, or of 0, nests in a lock that is held.
  /// THROWS CNullPtr for a null `pod`, CFileLock when the lock can't be had, and the failures of
  /// reading the headers; the lock is not held then.
  CLock(POD* pod, long thread);
  CLock(const CLock&) = delete;
  CLock& operator=(const CLock&) = delete;

  /// Calls UnLock; throws what it throws, unless another exception is in flight.
  virtual ~CLock() noexcept(false);

  /// Releases the lock if this object holds it. When a header can't be written the directory goes
  /// away all the same, and the failure is told after that.
  /// THROWS CFileUnlock when the directory can't be removed, CFileWrite and its like.
  void UnLock();

  /// Makes the lock, if this object holds it, that of another handle of the same study, with
  /// nobody in between. REQUIRES that neither handle has open files.
  void HandOver(POD& to);

  /// Takes away the lock directory that a dead process left at the last lock path seen. Does
  /// nothing while this process holds a lock, and reports nothing.
  static void ForceUnlock();

  POD* Pod = nullptr;  ///< the database held by this object; null if it holds nothing
  std::string Path;    ///< the directory that this object made

  static bool locked;                   ///< this process holds a lock
  static std::string m_strLockNameSta;  ///< the last lock path seen

 private:
  void Hold(POD* pod, long thread);
  void LetGo();
  void LoadHeaders() const;
  void StoreHeaders() const;

  std::string m_strAside;  ///< has room for the name that the directory gets at the end
};

/// Locks the whole file for writing by fcntl, without waiting, and unlocks it. Return true.
/// THROW CNullPtr, CFileSeek; NSFLock CFileLock; NSFUnlock CLockViolation.
KESTDB_API bool NSFLock(std::FILE* file);
KESTDB_API bool NSFUnlock(std::FILE* file);
