#include <algorithm>
#include <array>
#include <cstring>

#include "store/KestErr.h"
#include "store/crc32.h"
#include "store/vbdbase.h"

// Blocks and the objects in them: making, freeing, lengths and checksums.

namespace {

/// The class ID and the object's own address.
constexpr unsigned long kObjectHeader = 8;

void PutAddress(std::vector<char>& object, const vbINT32& address) {
  std::memcpy(object.data() + kObjectHeader - sizeof address, &address, sizeof address);
}

/// All that stands before the object of a block.
struct BlockHeaders {
  vbBlockHeader block;
  vbRecordLockHeader lock;
};
static_assert(sizeof(BlockHeaders) == sizeof(vbBlockHeader) + sizeof(vbRecordLockHeader));

/// The longest static area that an old file may promise and not have.
constexpr long kLongestUnwritten = 65536;

/// A new block is filled with zeros by the write of its headers when it is no larger than this.
constexpr unsigned long kFilledAtOnce = 4096;

}  // namespace

void vbDatabase::ReadBlockHdr(vbBlockHeader* header, vbINT32 address) try {
  Read(header, sizeof *header, address);
  if (!IsValid(header->CheckWord)) Throw<CSync>();
}
LOG_AND_RETHROW

void vbDatabase::WriteBlockHdr(const vbBlockHeader& header, vbINT32 address) try {
  Write(&header, sizeof header, address, false, true);
}
LOG_AND_RETHROW

/// Whether the file is so long. What was seen once holds as long as the lock is held, for no file
/// of ours gets shorter; asking the system for each block would be a quarter of the cost of a
/// lookup.
bool vbDatabase::Reaches(long end) {
  if (end > m_nKnownLength) m_nKnownLength = Length();
  return end <= m_nKnownLength;
}

/// A block that walks can step over: a length that holds its headers and lies within the file.
bool vbDatabase::IsGoodBlock(const vbBlockHeader& header, long address) {
  const long end = address + static_cast<long>(header.Length);
  if (!IsValid(header.CheckWord) || header.Length < BlockOverhead()) return false;
  return Reaches(end);
}

/// The header of the good block at `address`; the file is left at its object.
vbBlockHeader vbDatabase::RequireBlock(long address) {
  BlockHeaders headers;
  ReadAt(&headers, VBHeaderSize(), address);
  if (!IsGoodBlock(headers.block, address)) Throw<CSync>();
  return headers.block;
}

/// The block of the object at `address` or, for vbCurrAddress, at the file position.
vbBlockHeader vbDatabase::RequireObject(vbINT32 address, vbINT32& block) {
  const vbINT32 object = address == vbCurrAddress ? FilePosition() : address;
  block = object - static_cast<long>(VBHeaderSize());
  return RequireBlock(block);
}

vbINT32 vbDatabase::Alloc(unsigned long size, vbDatabaseReclaimMethod method) try {
  const vbINT32 address = MakeBlock(size, method, nullptr);
  return address == 0 ? address : SeekTo(address + static_cast<long>(VBHeaderSize()));
}
LOG_AND_RETHROW

vbINT32 vbDatabase::StoreObject(std::vector<char>& object) try {
  if (object.size() < kObjectHeader) Throw<CInvalidArgument>();
  const vbINT32 address = MakeBlock(object.size(), vbReclaimFirstFit, &object);
  return address == 0 ? address : vbINT32(address + static_cast<long>(VBHeaderSize()));
}
LOG_AND_RETHROW

/// Makes a block for `size` bytes, filled with the object where there is one already. Its address,
/// or 0 when there is no room.
vbINT32 vbDatabase::MakeBlock(unsigned long size, vbDatabaseReclaimMethod method,
                              std::vector<char>* object) {
  if (!m_bWriteable) Throw<CFileNotWriteable>();
  RequireReady();
  if (size > kLongestFile) return 0;
  const unsigned long total = BlockOverhead() + size;
  const vbINT32 head = m_Header.FreeSpace;
  vbINT32 address = 0;
  if (head != 0) {
    if (method == vbReclaimFirstFit) address = ReclaimFirstFit(total);
    if (method == vbReclaimBestFit) address = ReclaimBestFit(total);
  }
  if (address == 0) return Extend(total, object);
  try {
    FillBlock(address, total, object, 0);
  } catch (...) {
    FreeAgain(address, head);
    throw;
  }
  if (address > m_Header.HighestVB) m_Header.HighestVB = address;
  return address;
}

bool vbDatabase::HoldsLiveBlock(long address) {
  vbBlockHeader header;
  if (!Reaches(address + static_cast<long>(sizeof header))) return false;
  ReadAt(&header, sizeof header, address);
  return IsGoodBlock(header, address) && header.StatusLetter() == vbNormalBlock;
}

/// After a failed write: the block may be live already, with an object that nobody knows of, or it
/// is still what it was, and `head` the head of the free list.
void vbDatabase::FreeAgain(const vbINT32& address, const vbINT32& head) {
  try {
    if (HoldsLiveBlock(address)) {
      Delete(address + static_cast<long>(VBHeaderSize()), true);
      return;
    }
  } catch (...) {
    // It is in the log; the first failure goes on.
  }
  m_Header.FreeSpace = head;
}

/// Makes a block at the end of the file; 0 when the file would grow past its longest length. The
/// file header in memory changes last, so that a failed write leaves no hole between the blocks.
vbINT32 vbDatabase::Extend(unsigned long bytes, std::vector<char>* object) {
  const long address = m_Header.EndOfFile;
  const long heap = m_Header.HeapStart;
  const long end = address + static_cast<long>(bytes);
  if (end > kLongestFile) return 0;
  // A header that names a place before the heap or behind the file is wrong.
  if (heap < static_cast<long>(FileHeaderSize()) || address < heap ||
      !(Reaches(address) || MayBeShort())) {
    Throw<CFileCorrupt>();
  }
  // The file gets its length at once: a small block is filled, a large one gets its last byte.
  const unsigned long rest = bytes - VBHeaderSize();
  const bool small = rest <= kFilledAtOnce;
  if (!small && object == nullptr) {
    const char last = 0;
    Write(&last, sizeof last, end - 1, false, true);
  }
  try {
    FillBlock(address, bytes, object, small ? rest : 0);
  } catch (...) {
    FreeAgain(address, m_Header.FreeSpace);
    if (m_Header.EndOfFile > address) m_Header.HighestVB = address;
    throw;
  }
  m_Header.EndOfFile = end;
  m_Header.HighestVB = address;
  return address;
}

/// Whether the first block may start behind the end of the file: nobody may have written to the
/// static area yet. The header of a file that was not made just now is not believed in any length.
bool vbDatabase::MayBeShort() const {
  if (m_Header.EndOfFile != m_Header.HeapStart) return false;
  return m_bCreated || m_Header.HeapStart - Length() <= kLongestUnwritten;
}

/// Writes the headers of a normal block, the record lock free, and behind them the object with its
/// checksum or, when there is none yet, `zeros` zero bytes.
void vbDatabase::FillBlock(long address, unsigned long bytes, std::vector<char>* object,
                           unsigned long zeros) {
  vbBlockHeader header;
  header.Length = bytes;
  header.Status = vbNormalBlock;
  if (object == nullptr) {
    std::array<char, sizeof(BlockHeaders) + kFilledAtOnce> image = {};
    std::memcpy(image.data(), &header, sizeof header);
    Write(image.data(), VBHeaderSize() + zeros, address, false, true);
    return;
  }
  PutAddress(*object, address + static_cast<long>(VBHeaderSize()));
  std::vector<char> image(bytes);
  std::memcpy(image.data(), &header, sizeof header);
  std::memcpy(image.data() + VBHeaderSize(), object->data(), object->size());
  PutChecksum(*object, image.data() + VBHeaderSize() + object->size());
  Write(image.data(), image.size(), address, false, true);
}

/// Puts the checksum of the object, where the file has checksums, to its place behind it.
void vbDatabase::PutChecksum(const std::vector<char>& object, char* place) const {
  if (ChecksumSize() == 0) return;
  const vbUINT32 checksum = calcCRC32(object.data(), static_cast<unsigned int>(object.size()));
  std::memcpy(place, &checksum, sizeof checksum);
}

bool vbDatabase::Delete(vbINT32 address, bool remove) try {
  vbINT32 block;
  vbBlockHeader header = RequireObject(address, block);
  if (header.StatusLetter() != vbNormalBlock) return false;
  if (remove) {
    header.Status = vbRemovedBlock;
  } else {
    header.SetStatusLetter(vbDeletedBlock);
  }
  if (!m_bWriteable) Throw<CFileNotWriteable>();
  header.NextDeleted = m_Header.FreeSpace;
  WriteBlockHdr(header, block);
  if (m_Header.FreeSpace != vbFSListCorrupt) m_Header.FreeSpace = block;
  // A unit that failed may have left the block behind the end that its header tells. Free, it can
  // be used again; no walk would come to what is stored there.
  m_Header.EndOfFile = std::max<long>(m_Header.EndOfFile, block + static_cast<long>(header.Length));
  return true;
}
LOG_AND_RETHROW

unsigned long vbDatabase::VBLength(vbINT32 address) try {
  vbINT32 block;
  return RequireObject(address, block).Length;
}
LOG_AND_RETHROW

unsigned long vbDatabase::ObjectLength(vbINT32 address) try {
  return VBLength(address) - BlockOverhead();
}
LOG_AND_RETHROW

vbUINT32 vbDatabase::WriteObjectChecksum(vbINT32 address) try {
  if (ChecksumSize() == 0 || !IsUsable()) return 0;
  const vbUINT32 checksum = CalcChecksum(ObjectLength(address), vbCurrAddress, true);
  Write(&checksum, sizeof checksum, vbCurrAddress, false, true);
  return checksum;
}
LOG_AND_RETHROW

bool vbDatabase::ReadObjectChecksum(vbINT32 address, unsigned long* stored,
                                    unsigned long* calculated) try {
  vbUINT32 found;
  vbUINT32 expected;
  if (ChecksumSize() != 0 && IsUsable()) {
    expected = CalcChecksum(ObjectLength(address), vbCurrAddress, true);
    Read(&found, sizeof found, vbCurrAddress);
  }
  if (stored != nullptr) *stored = found;
  if (calculated != nullptr) *calculated = expected;
  return found == expected;
}
LOG_AND_RETHROW

/// Reads `length` bytes at `address` and tells whether they are one whole block.
bool vbDatabase::ReadLikelyBlock(long address, unsigned long length, std::vector<char>& block) {
  if (address < 0 || !Reaches(address + static_cast<long>(length))) return false;
  block.resize(length);
  Read(block.data(), length, address);
  vbBlockHeader header;
  std::memcpy(&header, block.data(), sizeof header);
  return IsValid(header.CheckWord) && header.Length == length;
}

bool vbDatabase::ReadWholeObject(vbINT32 address, std::vector<char>& object,
                                 unsigned long likely) try {
  const long headers = static_cast<long>(VBHeaderSize());
  if (likely != 0 && address != vbCurrAddress &&
      ReadLikelyBlock(address - headers, likely + BlockOverhead(), object)) {
    object.erase(object.begin(), object.begin() + headers);
  } else {
    object.resize(ObjectLength(address) + ChecksumSize());
    Read(object.data(), object.size(), vbCurrAddress);
  }
  if (ChecksumSize() == 0) return true;
  const unsigned long length = object.size() - ChecksumSize();
  vbUINT32 stored;
  std::memcpy(&stored, object.data() + length, sizeof stored);
  object.resize(length);
  return stored == calcCRC32(object.data(), static_cast<unsigned int>(length));
}
LOG_AND_RETHROW

void vbDatabase::WriteWholeObject(vbINT32 address, const std::vector<char>& object) try {
  std::vector<char> image(object.size() + ChecksumSize());
  std::memcpy(image.data(), object.data(), object.size());
  PutChecksum(object, image.data() + object.size());
  Write(image.data(), image.size(), address, false, true);
}
LOG_AND_RETHROW
