#include "index/btnode.h"

#include <algorithm>
#include <cstring>

#include "store/KestErr.h"

namespace {

long MostKeys(vbINT32 order) {
  return std::max<long>(order, 5) - 1;
}

std::size_t Bytes(long count) {
  return static_cast<std::size_t>(count);
}

}  // namespace

BtreeNode::BtreeNode(vbINT32 entrySize, vbINT32 order)
    : MaxKeys(MostKeys(order)),
      EntrySize(entrySize),
      Entries(std::make_unique_for_overwrite<char[]>(Bytes(MaxKeys * entrySize))) {}

long BtreeNode::SizeFor(vbINT32 entrySize, vbINT32 order) {
  return MostKeys(order) * entrySize + static_cast<long>(sizeof KeyCount + sizeof LeftBranch);
}

vbINT32 BtreeNode::GetBranch(vbINT32 i) const {
  if (i < 0) return LeftBranch;
  vbINT32 branch;
  std::memcpy(&branch, Entry(i), sizeof branch);
  return branch;
}

int BtreeNode::FindKeyLocation(const DatabaseKeyB& key, DatabaseKeyB& work, vbINT32& pos) const {
  for (pos = KeyCount - 1; pos >= 0; pos--) {
    LoadKey(work, pos);
    if (key > work) return 1;
    if (key == work) return 0;
  }
  return -1;
}

void BtreeNode::LoadKey(DatabaseKeyB& key, vbINT32 i) const {
  key.Branch = GetBranch(i);
  std::memcpy(key.KeyData, Entry(i) + sizeof key.Branch, Bytes(key.KeySize()));
}

void BtreeNode::OverWriteDatabaseKey(DatabaseKeyB& key, vbINT32 i) {
  std::memcpy(Entry(i), &key.Branch, sizeof key.Branch);
  std::memcpy(Entry(i) + sizeof key.Branch, key.KeyData, Bytes(key.KeySize()));
}

void BtreeNode::InsertDatabaseKey(DatabaseKeyB& key, vbINT32 i) {
  std::memmove(Entry(i + 1), Entry(i), Bytes((KeyCount - i) * EntrySize));
  OverWriteDatabaseKey(key, i);
  KeyCount++;
}

void BtreeNode::DeleteDatabaseKey(vbINT32 i) {
  KeyCount--;
  std::memmove(Entry(i), Entry(i + 1), Bytes((KeyCount - i) * EntrySize));
}

void BtreeNode::SplitNode(BtreeNode& right, vbINT32 at) {
  right.KeyCount = KeyCount - at;
  std::memcpy(right.Entries.get(), Entry(at), Bytes(right.KeyCount * EntrySize));
  KeyCount = at;
}

void BtreeNode::MergeNode(const BtreeNode& other) {
  std::memcpy(Entry(KeyCount), other.Entries.get(), Bytes(other.KeyCount * EntrySize));
  KeyCount = KeyCount + other.KeyCount;
}
