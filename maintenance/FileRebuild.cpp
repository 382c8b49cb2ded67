#include <algorithm>
#include <cstdio>
#include <cstring>
#include <vector>

#include "environment/Logging.h"
#include "maintenance/DBUtilities.h"
#include "maintenance/upkeep.h"
#include "maintenance/vbdstats.h"
#include "store/KestErr.h"
#include "store/blockwalk.h"
#include "store/crc32.h"
#include "store/layout.h"
#include "store/report.h"
#include "store/vbdbase.h"
#include "store/vpersist.h"

using kestdb::ToInt;

namespace {

/// Copies what a file holds into a new one, block by block.
class Copier {
 public:
  Copier(vbDatabase& from, vbDatabase& to)
      : from_(from), to_(to), walk_(from), headerSize_(static_cast<long>(from.VBHeaderSize())) {}

  /// THROWS CFileCorrupt when there is no block, but should be.
  void FindFirstBlock();
  void CopyStaticArea();
  void CopyBlocks();
  void PrintCounts() const;

 private:
  struct Object {
    const char* bytes;  ///< Header, fields, checksum
    unsigned long length;
    vbUINT32 stored;
    vbUINT32 computed;
  };

  bool LoadObject(const kestdb::FoundBlock& block, long length, Object& object);
  bool IsLiveObject(const kestdb::FoundBlock& block);
  long Reach(const kestdb::FoundBlock& block);
  long Visit(const kestdb::FoundBlock& block);
  long CopyObject(const kestdb::FoundBlock& block);
  void Store(const Object& object);

  vbDatabase& from_;
  vbDatabase& to_;
  kestdb::BlockWalk walk_;
  long headerSize_;
  long first_ = 0;
  std::vector<char> buffer_;
  long staticBytes_ = 0;
  long written_ = 0;
  long writtenBytes_ = 0;
  long dropped_ = 0;
  long droppedBytes_ = 0;
  long bad_ = 0;
};

/// The blocks are taken from where they lie, not from where the header ends them: after a crash it
/// may be older than they are.
void Copier::FindFirstBlock() {
  const long heap = from_.GetHeapStart();
  if (heap < static_cast<long>(from_.FileHeaderSize())) Throw<CFileCorrupt>();
  first_ = walk_.NextCheckWord(heap);
  if (first_ == 0 && (from_.GetVBDFreeSpace() != 0 || from_.GetEOF() != heap)) {
    Throw<CFileCorrupt>();
  }
}

/// A new file has no bytes of its static area before somebody writes there.
void Copier::CopyStaticArea() {
  const long start = static_cast<long>(from_.FileHeaderSize());
  staticBytes_ = std::min(long{from_.StaticArea()}, walk_.Window().Length() - start);
  if (staticBytes_ <= 0) return;
  const auto bytes = static_cast<unsigned long>(staticBytes_);
  to_.Write(walk_.Window().At(start, bytes), bytes, static_cast<long>(to_.FileHeaderSize()), false,
            true);
}

void Copier::CopyBlocks() {
  writtenBytes_ = from_.GetHeapStart();
  walk_.Run(
      first_, [this](const kestdb::FoundBlock& block) { return Visit(block); },
      [this](long) { ++bad_; });
}

/// How far to go on behind the block.
long Copier::Visit(const kestdb::FoundBlock& block) {
  if (block.header.StatusLetter() == vbNormalBlock) return CopyObject(block);
  const long length = Reach(block);
  if (block.header.IsFree()) {
    ++dropped_;
    droppedBytes_ += length;
  } else {
    ++bad_;  // nobody can tell whether it was live
  }
  return length;
}

long Copier::CopyObject(const kestdb::FoundBlock& block) {
  long length = static_cast<long>(block.header.Length);
  Object object;
  if (!LoadObject(block, length, object)) {
    ++bad_;
    return Reach(block);
  }
  if (object.stored != object.computed) {
    LWarn("Current checksum (0x%-8x) does not match stored checksum (0x%-8x).\n",
          static_cast<unsigned>(object.computed), static_cast<unsigned>(object.stored));
    LPrint("    Old object at address %d\n",
           ToInt(block.address + headerSize_ + static_cast<long>(sizeof(vbObjectHeader))));
    LPrint("    This object may be corrupt.\n");
    length = Reach(block);
    if (!LoadObject(block, length, object)) {
      ++bad_;
      return length;
    }
  }
  Store(object);
  ++written_;
  writtenBytes_ += length;
  return length;
}

/// The object of a block of that length; false when it can't be one.
bool Copier::LoadObject(const kestdb::FoundBlock& block, long length, Object& object) {
  const auto overhead = static_cast<long>(from_.BlockOverhead());
  if (length < overhead + static_cast<long>(sizeof(vbObjectHeader))) return false;
  object.length = static_cast<unsigned long>(length - overhead);
  object.bytes =
      walk_.Window().At(block.address + headerSize_, object.length + sizeof object.stored);
  if (object.bytes == nullptr) return false;
  object.computed = calcCRC32(object.bytes, static_cast<unsigned>(object.length));
  std::memcpy(&object.stored, object.bytes + object.length, sizeof object.stored);
  return true;
}

/// Whether it is a live object beyond doubt: its checksum agrees, and it knows its own address.
bool Copier::IsLiveObject(const kestdb::FoundBlock& block) {
  Object object;
  if (block.header.StatusLetter() != vbNormalBlock ||
      !LoadObject(block, static_cast<long>(block.header.Length), object) ||
      object.stored != object.computed) {
    return false;
  }
  vbObjectHeader header;
  std::memcpy(&header, object.bytes, sizeof header);
  return header.Address == block.address + headerSize_;
}

/// The length of a block. When a live object lies within it, its length word is damaged, and it
/// ends there.
long Copier::Reach(const kestdb::FoundBlock& block) {
  const long length = static_cast<long>(block.header.Length);
  const long end = block.address + length;
  kestdb::FoundBlock inner;
  for (long address = walk_.NextCheckWord(block.address + headerSize_);
       address != 0 && address < end; address = walk_.NextCheckWord(address + 1)) {
    if (walk_.Load(address, inner) && IsLiveObject(inner)) return address - block.address;
  }
  return length;
}

void Copier::Store(const Object& object) {
  buffer_.assign(object.bytes, object.bytes + object.length);
  if (to_.StoreObject(buffer_) == 0) Throw<CMemoryAlloc>();
}

void Copier::PrintCounts() const {
  LPrint("%d variable blocks were written (%d bytes)\n", ToInt(written_), ToInt(writtenBytes_));
  LPrint("%d variable blocks were compressed out (%d bytes)\n", ToInt(dropped_),
         ToInt(droppedBytes_));
  LPrint("%d unrecoverable blocks were found\n", ToInt(bad_));
  if (staticBytes_ > 0) {
    LPrint("%u bytes of static area data were written\n", static_cast<unsigned>(staticBytes_));
  } else if (bad_ != 0) {
    LWarn("\nBad blocks existed. The index file MUST be rebuilt!\n\n");
  }
}

/// Puts the copy in the place of the file.
void Replace(const std::string& path, const std::string& copyPath) {
  if (std::remove(path.c_str()) != 0) {
    LError("Could not remove old file (%s)\n", path.c_str());
    LPrint("     Original file was left unchanged\n");
    LPrint("     Database may be in use by another process!\n");
    Throw<CAccessViolation>();
  }
  if (std::rename(copyPath.c_str(), path.c_str()) != 0) {
    LError("Could not rename new file (%s) to %s\n", copyPath.c_str(), path.c_str());
    Throw<CAccessViolation>();
  }
}

void RebuildFile(const std::string& path, kestdb::UpkeepFile& oldFile,
                 kestdb::UpkeepFile& newFile) try {
  KStatus(path);
  oldFile->Open(path, vbReadWrite);
  oldFile.Lock();
  PreCheck(&*oldFile, false);
  oldFile->ReadFileHdr();
  Copier copier(*oldFile, *newFile);
  copier.FindFirstBlock();
  const std::string copyPath = kestdb::CopyPathOf(path);
  newFile->Create(copyPath, oldFile->StaticArea(), 'C');
  copier.CopyStaticArea();
  copier.CopyBlocks();
  newFile->Flush();
  newFile->Sync();
  oldFile.Unlock();
  oldFile->Close();
  newFile->Close();
  Replace(path, copyPath);
  copier.PrintCounts();
}
LOG_AND_RETHROW

}  // namespace

void KFileRebuild(const std::string& path) {
  LPrint("\n***** Start -- Rebuild Data File *****\n");
  LPrint("File name: %s\n", path.c_str());
  kestdb::UpkeepFile newFile;
  kestdb::UpkeepFile oldFile;
  const kestdb::EndLine end("***** End -- Rebuild Data File *****\n\n");
  RebuildFile(path, oldFile, newFile);
}
