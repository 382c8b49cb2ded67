#include <algorithm>
#include <cstring>
#include <vector>

#include "store/KestErr.h"
#include "store/vbdbase.h"

// Walks through the heap in file order. They find blocks by their check words and so go on after
// damage; only a step that rests on one certain block throws CSync.

/// Walks end where the header says, or before in a file that was cut.
long vbDatabase::HeapEnd() const {
  return std::min<long>(m_Header.EndOfFile, Length());
}

/// Reads the 16 bytes at `address`; false where no block can start that close to the end.
bool vbDatabase::ReadCandidate(vbBlockHeader& header, long address, long end) {
  if (address + static_cast<long>(VBHeaderSize()) >= end || !IsUsable()) return false;
  ReadAt(&header, sizeof header, address);
  return true;
}

/// Where the block behind the good block at `address` would start.
long vbDatabase::BehindBlock(long address) {
  return address + static_cast<long>(RequireBlock(address).Length);
}

/// Where the block behind the object that starts at `object` lies; 0 at the end of the heap, -1
/// when there is no such object or no block behind it.
long vbDatabase::BehindObject(long object, long end) {
  // Kept: 28 is the block header of revision C, also in files of other revisions.
  const long owner = object - 28;
  if (owner < m_Header.HeapStart) return -1;
  vbBlockHeader header;
  if (!ReadCandidate(header, owner, end)) return 0;
  if (!IsValid(header.CheckWord) || header.Length < BlockOverhead()) return -1;
  const long behind = owner + static_cast<long>(header.Length);
  if (!ReadCandidate(header, behind, end)) return 0;
  return IsValid(header.CheckWord) ? behind : -1;
}

vbINT32 vbDatabase::FindFirstVB(vbINT32 offset) try {
  if (m_Header.HeapStart == m_Header.EndOfFile) return 0;
  const long end = HeapEnd();
  long address = offset == 0 ? m_Header.HeapStart : offset;
  vbBlockHeader header;
  if (!ReadCandidate(header, address, end)) return 0;
  if (!IsValid(header.CheckWord) && static_cast<long>(header.Length) == address) {
    // An object header holds its own address in its second word: we were given an object address.
    const long behind = BehindObject(address, end);
    if (behind >= 0) return behind == 0 ? vbINT32(0) : SeekTo(behind);
  }
  while (!IsValid(header.CheckWord)) {
    if (!ReadCandidate(header, ++address, end)) return 0;
  }
  return SeekTo(address);
}
LOG_AND_RETHROW

vbINT32 vbDatabase::FindNextVB(vbINT32 offset) try {
  const vbINT32 found = FindFirstVB(offset);
  if (found == 0 || found != offset) return found;
  const long next = BehindBlock(offset);
  if (next >= HeapEnd()) return 0;
  vbBlockHeader header;
  ReadBlockHdr(&header, next);
  return next;
}
LOG_AND_RETHROW

/// The object of the first normal block on the way that `step` goes from `block`.
template <class Step>
vbINT32 vbDatabase::FirstLiveObject(vbINT32 block, Step step) {
  vbBlockHeader header;
  for (; block != 0; block = step(block)) {
    ReadBlockHdr(&header, block);
    if (header.StatusLetter() == vbNormalBlock) return block + static_cast<long>(VBHeaderSize());
  }
  return 0;
}

vbINT32 vbDatabase::FindFirstObject(vbINT32 offset) try {
  return FirstLiveObject(FindFirstVB(offset),
                         [this](vbINT32 block) { return FindFirstVB(BehindBlock(block)); });
}
LOG_AND_RETHROW

vbINT32 vbDatabase::FindNextObject(vbINT32 offset) try {
  return FirstLiveObject(FindNextVB(offset), [this](vbINT32 block) { return FindNextVB(block); });
}
LOG_AND_RETHROW

vbINT32 vbDatabase::FindPrevVB(vbINT32 address) try {
  const long heap = m_Header.HeapStart;
  long windowStart = address - static_cast<long>(VBHeaderSize());
  if (m_Header.EndOfFile == heap || address == 0 || windowStart <= heap ||
      windowStart > HeapEnd()) {
    return 0;
  }
  // Kept: windows don't overlap, so that a check word across the edge of two isn't seen.
  std::vector<char> window(static_cast<std::size_t>(std::min(windowStart - heap, 4000L)));
  while (IsUsable()) {
    const long chunk = std::min(windowStart - heap, static_cast<long>(window.size()));
    if (chunk < 4) return 0;
    windowStart -= chunk;
    ReadAt(window.data(), static_cast<unsigned long>(chunk), windowStart);
    for (long at = chunk - 4; at >= 0; --at) {
      if (IsLiveBlock(window.data() + at, windowStart + at)) return windowStart + at;
    }
  }
  return 0;
}
LOG_AND_RETHROW

/// Whether a normal block starts at `address`, where the file holds the four bytes at `word`.
/// Kept: the first block of the heap is taken without a look at its check word.
bool vbDatabase::IsLiveBlock(const char* word, long address) {
  vbUINT32 checkWord;
  std::memcpy(&checkWord, word, sizeof checkWord);
  if (address != m_Header.HeapStart && !IsValid(checkWord)) return false;
  vbBlockHeader header;
  ReadAt(&header, sizeof header, address);
  return header.StatusLetter() == vbNormalBlock;
}

vbINT32 vbDatabase::FindPrevObject(vbINT32 address) try {
  const vbINT32 block = FindPrevVB(address);
  if (block == 0) return 0;
  vbBlockHeader header;
  ReadBlockHdr(&header, block);
  return block + static_cast<long>(VBHeaderSize());
}
LOG_AND_RETHROW

vbINT32 vbDatabase::VBTotal() try {
  const long end = HeapEnd();
  long total = 0;
  vbBlockHeader header;
  for (long address = FindFirstVB(0); address != 0 && ReadCandidate(header, address, end);) {
    if (IsGoodBlock(header, address)) {
      ++total;
      address += static_cast<long>(header.Length);
    } else {
      address = FindFirstVB(IsValid(header.CheckWord) ? address + 1 : address);
    }
  }
  return total;
}
LOG_AND_RETHROW
