#include <cstddef>
#include <limits>

#include "environment/Logging.h"
#include "store/KestErr.h"
#include "store/vbdbase.h"

// The advisory locks that the format keeps in the file itself.

namespace {

constexpr long kFileLock = sizeof(vbFileHeader);
constexpr long kRecordLock = sizeof(vbBlockHeader);

}  // namespace

void vbDatabase::InitFileLockHdr(vbFileLockHeader& header) const {
  header = vbFileLockHeader();
}

void vbDatabase::ReadFileLockHdr(vbFileLockHeader& header) try {
  // Kept: a file without a lock header shows the bytes behind its file header.
  if (!HasFileLock()) InitFileLockHdr(header);
  Read(&header, sizeof header, kFileLock);
}
LOG_AND_RETHROW

void vbDatabase::WriteFileLockHdr(const vbFileLockHeader& header) try {
  if (HasFileLock()) Write(&header, sizeof header, kFileLock, false, true);
}
LOG_AND_RETHROW

void vbDatabase::LockFile(unsigned int owner, vbDatabaseLockType type) try {
  if (!HasFileLock()) return;
  vbFileLockHeader header;
  ReadFileLockHdr(header);
  if (header.Protect != 0 && header.Protect != owner) {
    LPrint("lock failed - not owner\n");
    Throw<CLockViolation>();
  }
  if (type != vbWriteLock) return;
  if (header.ReadLock != 0 || header.WriteLock != 0) Throw<CLockViolation>();
  LPrint("SOFT: Writing file lock\n");
  header.Protect = owner;
  header.WriteLock = 1;
  Write(&header, sizeof header, kFileLock, true, false);
}
LOG_AND_RETHROW

void vbDatabase::InitRecordLockHdr(vbRecordLockHeader& header) const {
  header = vbRecordLockHeader();
}

void vbDatabase::ReadRecordLockHdr(vbRecordLockHeader& header, vbINT32 address) try {
  if (!HasRecordLock()) InitRecordLockHdr(header);
  vbBlockHeader block;
  ReadBlockHdr(&block, address);
  Read(&header, sizeof header, vbCurrAddress);
}
LOG_AND_RETHROW

void vbDatabase::WriteRecordLockHdr(const vbRecordLockHeader& header, vbINT32 address) try {
  if (!HasRecordLock()) return;
  vbBlockHeader block;
  ReadBlockHdr(&block, address);
  Write(&header, sizeof header, vbCurrAddress, false, true);
}
LOG_AND_RETHROW

void vbDatabase::ResetRecordLock(vbINT32 address) try {
  vbRecordLockHeader header;
  InitRecordLockHdr(header);
  WriteRecordLockHdr(header, address);
}
LOG_AND_RETHROW

/// Reads the lock of the record at `address` and gives the place of its lock header. Kept: for
/// vbCurrAddress that place is reckoned from the position behind the lock header just read.
vbINT32 vbDatabase::OpenRecordLock(vbRecordLockHeader& header, vbINT32 address) {
  ReadRecordLockHdr(header, address);
  if (header.Protect != 0) Throw<CRecordLockAccess>();
  return (address == vbCurrAddress ? FilePosition() : address) + kRecordLock;
}

/// Sets one word of a lock header, under the protect word.
void vbDatabase::SetLockWord(vbINT32 lock, std::size_t word, unsigned long value) {
  const auto set = [&](std::size_t at, const vbUINT32& to) {
    Write(&to, sizeof to, lock + static_cast<long>(at), false, true);
  };
  set(offsetof(vbRecordLockHeader, Protect), 1);
  set(word, value);
  set(offsetof(vbRecordLockHeader, Protect), 0);
}

void vbDatabase::LockRecord(vbDatabaseLockType type, vbINT32 address) try {
  if (!HasRecordLock()) return;
  vbRecordLockHeader header;
  const vbINT32 lock = OpenRecordLock(header, address);
  if (type == vbWriteLock) {
    if (header.ReadLock != 0 || header.WriteLock != 0) Throw<CRecordLock>();
    SetLockWord(lock, offsetof(vbRecordLockHeader, WriteLock), 1);
  } else if (type == vbReadLock) {
    if (header.WriteLock == 1 || header.ReadLock == std::numeric_limits<std::uint32_t>::max()) {
      Throw<CRecordLock>();
    }
    SetLockWord(lock, offsetof(vbRecordLockHeader, ReadLock), header.ReadLock + 1);
  }
}
LOG_AND_RETHROW

void vbDatabase::UnlockRecord(vbDatabaseLockType type, vbINT32 address) try {
  if (!HasRecordLock()) return;
  vbRecordLockHeader header;
  const vbINT32 lock = OpenRecordLock(header, address);
  if (type == vbWriteLock && header.WriteLock != 0) {
    SetLockWord(lock, offsetof(vbRecordLockHeader, WriteLock), 0);
  } else if (type == vbReadLock && header.ReadLock != 0) {
    SetLockWord(lock, offsetof(vbRecordLockHeader, ReadLock), header.ReadLock - 1);
  }
}
LOG_AND_RETHROW
