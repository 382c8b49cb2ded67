#include "store/KestErr.h"
#include "store/vbdbase.h"

// The free list: a chain through the free blocks themselves, newest first, with its head in the
// file header. A list that is found broken is marked and never used again: the file then only
// grows, until a rebuild.

/// Visits the list from its head with `visit(block, previous)`, which returns true to stop there;
/// `previous` has the address 0 at the head. Marks a list that isn't sound.
template <class Visit>
vbDatabase::FreeWalk vbDatabase::WalkFreeList(Visit visit) {
  FreeBlock previous;
  FreeBlock block;
  long smallest = 0;
  for (vbINT32 address = m_Header.FreeSpace; address != 0; address = block.Header.NextDeleted) {
    // No list has more members than the smallest blocks that the file could hold.
    smallest += static_cast<long>(VBHeaderSize());
    const FreeWalk found = Reaches(smallest) ? ReadFreeBlock(address, block) : FreeWalk::NoBlock;
    if (found != FreeWalk::Stopped) {
      m_Header.FreeSpace = vbFSListCorrupt;
      return found;
    }
    if (visit(block, previous)) return FreeWalk::Stopped;
    previous = block;
  }
  return FreeWalk::AtEnd;
}

/// Stopped for a sound member of the list, else what is wrong with it.
vbDatabase::FreeWalk vbDatabase::ReadFreeBlock(vbINT32 address, FreeBlock& block) {
  const long behind = address + static_cast<long>(sizeof block.Header);
  if (address < m_Header.HeapStart || !Reaches(behind)) return FreeWalk::NoBlock;
  block.Address = address;
  ReadAt(&block.Header, sizeof block.Header, address);
  if (!IsGoodBlock(block.Header, address)) return FreeWalk::NoBlock;
  const bool sound = block.Header.IsFree() && block.Header.NextDeleted != address;
  return sound ? FreeWalk::Stopped : FreeWalk::NotFree;
}

/// A larger block is split only when the rest can hold a header and a checksum, and a byte more.
bool vbDatabase::Splits(unsigned long length, unsigned long bytes) const {
  return length > bytes + BlockOverhead();
}

bool vbDatabase::Fits(unsigned long length, unsigned long bytes) const {
  return length == bytes || Splits(length, bytes);
}

/// Makes `next` the successor of `previous`, or the head of the list.
void vbDatabase::Relink(const FreeBlock& previous, vbINT32 next) {
  if (previous.Address == 0) {
    m_Header.FreeSpace = next;
    return;
  }
  vbBlockHeader header = previous.Header;
  header.NextDeleted = next;
  WriteBlockHdr(header, previous.Address);
}

/// Cuts `bytes` off the front of a free block; the rest takes its place in the list.
void vbDatabase::Split(const FreeBlock& block, const FreeBlock& previous, unsigned long bytes) {
  vbBlockHeader rest;
  rest.Length = block.Header.Length - bytes;
  rest.Status = vbRemovedBlock;
  rest.NextDeleted = block.Header.NextDeleted;
  const vbINT32 address = block.Address + static_cast<long>(bytes);
  WriteBlockHdr(rest, address);
  Relink(previous, address);
}

vbINT32 vbDatabase::ReclaimFirstFit(unsigned long bytes) try {
  if (m_Header.FreeSpace == vbFSListCorrupt) return 0;
  vbINT32 taken;
  WalkFreeList([&](const FreeBlock& block, const FreeBlock& previous) {
    if (!Fits(block.Header.Length, bytes)) return false;
    if (Splits(block.Header.Length, bytes)) {
      Split(block, previous, bytes);
    } else {
      Relink(previous, block.Header.NextDeleted);
    }
    taken = block.Address;
    return true;
  });
  return taken;
}
LOG_AND_RETHROW

vbINT32 vbDatabase::ReclaimBestFit(unsigned long bytes) try {
  if (m_Header.FreeSpace == vbFSListCorrupt) return 0;
  vbINT32 taken;
  WalkFreeList([&](const FreeBlock& block, const FreeBlock& previous) {
    if (block.Header.Length != bytes) return false;
    Relink(previous, block.Header.NextDeleted);
    taken = block.Address;
    return true;
  });
  return taken;
}
LOG_AND_RETHROW

bool vbDatabase::HasRoom(unsigned long size, vbINT32 freed) try {
  if (size > kLongestFile) return false;
  const unsigned long bytes = BlockOverhead() + size;
  if (m_Header.EndOfFile + static_cast<long>(bytes) <= kLongestFile) return true;
  if (m_Header.FreeSpace == vbFSListCorrupt) return false;
  if (freed != 0 && Fits(VBLength(freed), bytes)) return true;
  const auto fits = [&](const FreeBlock& block, const FreeBlock&) {
    return Fits(block.Header.Length, bytes);
  };
  return WalkFreeList(fits) == FreeWalk::Stopped;
}
LOG_AND_RETHROW

bool vbDatabase::IsFreed(vbINT32 address) try {
  FreeBlock block;
  return ReadFreeBlock(address - static_cast<long>(VBHeaderSize()), block) == FreeWalk::Stopped;
}
LOG_AND_RETHROW

bool vbDatabase::UnDelete(vbINT32 address) {
  return Revive(address, false);
}

bool vbDatabase::Restore(vbINT32 address) {
  return Revive(address, true);
}

bool vbDatabase::Revive(vbINT32 address, bool removedToo) try {
  const vbINT32 wanted = address - static_cast<long>(VBHeaderSize());
  vbBlockHeader header;
  ReadAt(&header, sizeof header, wanted);
  if (header.StatusLetter() != vbDeletedBlock &&
      !(removedToo && header.StatusLetter() == vbRemovedBlock)) {
    return false;
  }
  if (removedToo && m_Header.FreeSpace == vbFSListCorrupt) {
    // Nothing refers to a block that was freed when the list was broken already.
    header.SetStatusLetter(vbNormalBlock);
    header.NextDeleted = 0;
    WriteBlockHdr(header, wanted);
    return true;
  }
  const FreeWalk end = WalkFreeList([&](const FreeBlock& block, const FreeBlock& previous) {
    if (block.Address != wanted) return false;
    const bool isHead = previous.Address == 0;
    if (!isHead) Relink(previous, block.Header.NextDeleted);
    header.SetStatusLetter(vbNormalBlock);
    header.NextDeleted = 0;
    WriteBlockHdr(header, wanted);
    if (isHead) m_Header.FreeSpace = block.Header.NextDeleted;
    return true;
  });
  return end == FreeWalk::Stopped;
}
LOG_AND_RETHROW

vbINT32 vbDatabase::VBDeleted(vbINT32* deleted, vbINT32* removed) try {
  long countDeleted = 0;
  long countRemoved = 0;
  const FreeWalk end = WalkFreeList([&](const FreeBlock& block, const FreeBlock&) {
    // Freed when the list was broken already: such a block has no place in it.
    if (block.Header.NextDeleted == vbFSListCorrupt) return true;
    ++(block.Header.StatusLetter() == vbDeletedBlock ? countDeleted : countRemoved);
    return false;
  });
  if (deleted != nullptr) *deleted = countDeleted;
  if (removed != nullptr) *removed = countRemoved;
  if (end == FreeWalk::NotFree) return 0;
  return end == FreeWalk::AtEnd ? countDeleted + countRemoved : -1;
}
LOG_AND_RETHROW
