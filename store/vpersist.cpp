#include "store/vpersist.h"

#include <cstring>

#include "environment/Logging.h"
#include "index/KSBKey.h"
#include "index/vbtree.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/StringIO.h"
#include "store/pod.h"
#include "store/vbdbase.h"

namespace {

constexpr std::size_t kKeyLength = sizeof(KSBKey::ObjectName);

}  // namespace

// ---- Bytes ----

vbDatabase& vbPersistent::Data() const {
  if (m_pDatabase == nullptr || m_pDatabase->DataFile() == nullptr) Throw<CNullPtr>();
  return *m_pDatabase->DataFile();
}

unsigned long vbPersistent::StringFileLength(const std::string& text) {
  return kestdb::StringFileLength(text);
}

void vbPersistent::ReadObjectHeader(vbObjectHeader& header, vbINT32 address) try {
  Data().Read(&header, sizeof header, address);
}
LOG_AND_RETHROW

void vbPersistent::WriteObjectHeader(const vbObjectHeader& header, vbINT32 address) try {
  Data().Write(&header, sizeof header, address, false, true);
}
LOG_AND_RETHROW

void vbPersistent::ReadString(std::string& s, vbINT32 address) try {
  kestdb::ReadString(Data(), s, address);
}
LOG_AND_RETHROW

void vbPersistent::WriteString(const std::string& s, vbINT32 address) try {
  kestdb::WriteString(Data(), s, address);
}
LOG_AND_RETHROW

std::vector<char> vbPersistent::ReadRecord(vbINT32 address) try {
  const CLock lock(m_pDatabase, 0);
  vbObjectHeader header;
  ReadObjectHeader(header, address);
  if (header.ClassID != GetVBClassID()) Throw<CBadClassID>();
  std::vector<char> object;
  if (!Data().ReadWholeObject(address, object)) Throw<CChecksum>();
  if (object.size() < sizeof header) Throw<CFileCorrupt>();
  object.erase(object.begin(), object.begin() + sizeof header);
  return object;
}
LOG_AND_RETHROW

void vbPersistent::RequireVersion(long stored, int oldest, vbINT32 address) {
  if (stored >= oldest) return;
  LError("%s object at address %d has version %d; the oldest version that can be read is %d.\n",
         GetVBClassName().c_str(), static_cast<int>(long{address}), static_cast<int>(stored),
         oldest);
  Throw<CInvalidType>();
}

bool vbPersistent::WriteRecord(std::span<const char> record) try {
  const vbObjectHeader header{GetVBClassID(), 0};
  std::vector<char> object(sizeof header + record.size());
  std::memcpy(object.data(), &header, sizeof header);
  std::memcpy(object.data() + sizeof header, record.data(), record.size());
  // The new end of the file has to stand in the header until the key is added.
  const CLock lock(m_pDatabase, 0);
  const vbINT32 address = Data().StoreObject(object);
  if (address == 0) Throw<CMemoryAlloc>();
  m_ObjectAddress = address;
  if (!Add(address, GetVBClassID())) Throw<CAddKey>();
  return true;
}
LOG_AND_RETHROW

// ---- Keys ----

KSBKey vbPersistent::RequireKey(vbINT32 address, vbINT32 classID) {
  if (m_pDatabase == nullptr) Throw<CNullPtr>();
  if (m_pDatabase->Indexing() != 1) Throw<CNoIndex>();
  if (!CheckKey()) Throw<CInvalidKey>();
  char text[kKeyLength];
  return KSBKey(MakeKey(text), address, classID);
}

vBtree& vbPersistent::Tree(unsigned int index) const {
  vBtree* tree = m_pDatabase->Index(index);
  if (tree == nullptr) Throw<CNullPtr>();
  return *tree;
}

bool vbPersistent::AddKey(DatabaseKeyB& key, DatabaseKeyB& scratch, unsigned int index,
                          bool flag) try {
  const CLock lock(m_pDatabase, 0);
  return Tree(index).Insert(key, scratch, flag);
}
LOG_AND_RETHROW

bool vbPersistent::FindKey(DatabaseKeyB& key, DatabaseKeyB& scratch, unsigned int index,
                           bool flag) try {
  const CLock lock(m_pDatabase, 0);
  return Tree(index).Find(key, scratch, flag);
}
LOG_AND_RETHROW

bool vbPersistent::RemoveKey(DatabaseKeyB& key, DatabaseKeyB& scratch, unsigned int index,
                             bool flag) try {
  const CLock lock(m_pDatabase, 0);
  return Tree(index).Delete(key, scratch, flag);
}
LOG_AND_RETHROW

bool vbPersistent::Add(vbINT32 address, vbINT32 classID) try {
  KSBKey key = RequireKey(address, classID);
  KSBKey scratch;
  return AddKey(key, scratch, GetVBClassIndex(), true);
}
LOG_AND_RETHROW

bool vbPersistent::Find(vbINT32 address, vbINT32 classID) try {
  KSBKey key = RequireKey(address, classID);
  KSBKey scratch;
  const bool found = FindKey(key, scratch, GetVBClassIndex(), true);
  if (found) m_ObjectAddress = key.ObjectAddress;
  return found;
}
LOG_AND_RETHROW

bool vbPersistent::Delete(vbINT32 address, vbINT32 classID) try {
  return Free(address, classID, false) == Freed::Yes;
}
LOG_AND_RETHROW

bool vbPersistent::Remove(vbINT32 address, vbINT32 classID) try {
  return Free(address, classID, true) == Freed::Yes;
}
LOG_AND_RETHROW

vbPersistent::Freed vbPersistent::Free(vbINT32 address, vbINT32 classID, bool remove) {
  KSBKey key = RequireKey(address, classID);
  // Block and key go under one lock: between two, the new free list would be lost.
  const CLock lock(m_pDatabase, 0);
  KSBKey found = key;
  KSBKey scratch;
  if (!FindKey(found, scratch, GetVBClassIndex(), true)) return Freed::NoKey;
  m_ObjectAddress = found.ObjectAddress;
  RequireOwnObject(m_ObjectAddress);
  if (!Data().Delete(m_ObjectAddress, remove)) return Freed::NoLiveBlock;
  try {
    RemoveKey(key, scratch, GetVBClassIndex(), true);
    return Freed::Yes;
  } catch (...) {
    PutBack(0, found.ObjectAddress);
    throw;
  }
}

/// An index that leads astray must not cost another object its block. What is damaged may go.
void vbPersistent::RequireOwnObject(vbINT32 address) {
  std::vector<char> object;
  if (!Data().ReadWholeObject(address, object)) return;
  const std::vector<vbINT32> words = KeyWords();
  const std::size_t size = words.size() * sizeof(vbINT32);
  vbObjectHeader header;
  constexpr std::size_t place = sizeof header + sizeof(vbINT32);  // behind header and version
  if (object.size() < place + size) Throw<CIndexError>();
  std::memcpy(&header, object.data(), sizeof header);
  const bool same = header.ClassID == GetVBClassID() &&
                    (words.empty() || std::memcmp(object.data() + place, words.data(), size) == 0);
  if (!same) Throw<CIndexError>();
}

// ---- Objects ----

bool vbPersistent::FindObject() try {
  const CLock lock(m_pDatabase, 0);
  return Find(0, 0);
}
LOG_AND_RETHROW

bool vbPersistent::GetObject() try {
  const CLock lock(m_pDatabase, 0);
  const KSBKey wanted = RequireKey(0, 0);
  if (!Find(0, 0)) return false;
  ReadByKey(KSBKey(wanted.ObjectName, m_ObjectAddress, 0));
  return true;
}
LOG_AND_RETHROW

void vbPersistent::ReadObject(vbINT32 address) try {
  const CLock lock(m_pDatabase, 0);
  if (address != -1) m_ObjectAddress = address;
  Read(m_ObjectAddress);
}
LOG_AND_RETHROW

void vbPersistent::ReadByKey(const KSBKey& key) try {
  ReadObject(key.ObjectAddress);
  char text[kKeyLength];
  const bool same = std::strncmp(MakeKey(text), key.ObjectName, kKeyLength) == 0;
  if (!same || Data().IsFreed(key.ObjectAddress)) Throw<CIndexError>();
}
LOG_AND_RETHROW

bool vbPersistent::WriteObject(bool check) try {
  const CLock lock(m_pDatabase, 0);
  if (check && Find(0, 0)) Throw<CObjectNotAdded>();
  return Write();
}
LOG_AND_RETHROW

bool vbPersistent::DeleteObject() try {
  const CLock lock(m_pDatabase, 0);
  return Delete(0, 0);
}
LOG_AND_RETHROW

bool vbPersistent::RemoveObject() try {
  const CLock lock(m_pDatabase, 0);
  return Remove(0, 0);
}
LOG_AND_RETHROW

bool vbPersistent::PutObject() try {
  const CLock lock(m_pDatabase, 0);
  const Freed freed = Replace();
  if (freed == Freed::NoLiveBlock) RemoveDeadKey();
  return freed == Freed::Yes || Write();
}
LOG_AND_RETHROW

bool vbPersistent::ReplaceObject() try {
  const CLock lock(m_pDatabase, 0);
  return Replace() == Freed::Yes;
}
LOG_AND_RETHROW

/// Frees the old form and, where there was one, writes the new one.
vbPersistent::Freed vbPersistent::Replace() {
  RequireRoomForUpdate();
  const Freed freed = Free(0, 0, true);
  if (freed != Freed::Yes) return freed;
  const vbINT32 oldAddress = m_ObjectAddress;
  m_ObjectAddress = 0;  // until the new form has a block
  try {
    Write();
  } catch (...) {
    PutBack(m_ObjectAddress, oldAddress);
    throw;
  }
  return freed;
}

/// Refuses an update that can't fit while nothing is removed yet.
void vbPersistent::RequireRoomForUpdate() {
  const unsigned long size = sizeof(vbObjectHeader) + ObjectLength();
  if (Data().HasRoom(size, 0)) return;
  const vbINT32 old = Find(0, 0) ? m_ObjectAddress : vbINT32(0);
  if (!Data().HasRoom(size, old)) Throw<CMemoryAlloc>();
}

/// An update that failed on a full disk, where it could not be taken back either, leaves a key that
/// leads to the freed block. The next update must not be refused for it.
void vbPersistent::RemoveDeadKey() {
  KSBKey key = RequireKey(0, 0);
  KSBKey scratch;
  RemoveKey(key, scratch, GetVBClassIndex(), true);
}

/// After a failed update or removal: frees what there is of the new form and makes the old one live
/// again, with its key. Where the new form took the old one's block, that gets the key. Another
/// failure on the way is in the log; the first goes on.
void vbPersistent::PutBack(vbINT32 newAddress, vbINT32 oldAddress) {
  m_ObjectAddress = oldAddress;
  const bool taken = newAddress == oldAddress;
  if (newAddress != 0 && !taken) FreeQuietly(newAddress);
  try {
    if (!taken && !Data().Restore(oldAddress)) return;
    KSBKey key = RequireKey(oldAddress, GetVBClassID());
    KSBKey found = key;
    KSBKey scratch;
    const unsigned int index = GetVBClassIndex();
    if (FindKey(found, scratch, index, true)) {
      if (found.ObjectAddress == oldAddress) return;
      found = key;
      RemoveKey(found, scratch, index, true);
    }
    AddKey(key, scratch, index, true);
  } catch (...) {
  }
}

void vbPersistent::FreeQuietly(vbINT32 address) {
  try {
    Data().Remove(address);
  } catch (...) {
  }
}

// ---- Walks ----

/// The first object of this class, from the object at `address` on the way that `step` goes from
/// a block address to the next object.
vbINT32 vbPersistent::OfThisClass(vbINT32 address, vbINT32 (vbDatabase::*step)(vbINT32)) {
  const long blockHeader = static_cast<long>(Data().VBHeaderSize());
  vbObjectHeader header;
  for (; address != 0; address = (Data().*step)(address - blockHeader)) {
    ReadObjectHeader(header, address);
    if (header.ClassID == GetVBClassID()) break;
  }
  return address;
}

vbINT32 vbPersistent::FirstObject(vbINT32 offset) try {
  const CLock lock(m_pDatabase, 0);
  return OfThisClass(Data().FindFirstObject(offset), &vbDatabase::FindNextObject);
}
LOG_AND_RETHROW

vbINT32 vbPersistent::NextObject(vbINT32 address) try {
  const CLock lock(m_pDatabase, 0);
  const vbINT32 block = address - static_cast<long>(Data().VBHeaderSize());
  return OfThisClass(Data().FindNextObject(block), &vbDatabase::FindNextObject);
}
LOG_AND_RETHROW

vbINT32 vbPersistent::PrevObject(vbINT32 address) try {
  const CLock lock(m_pDatabase, 0);
  return OfThisClass(Data().FindPrevObject(address), &vbDatabase::FindPrevObject);
}
LOG_AND_RETHROW

int vbPersistent::CountObjects() try {
  const CLock lock(m_pDatabase, 0);
  int count = 0;
  for (vbINT32 address = FirstObject(0); address > 0; address = NextObject(address)) ++count;
  return count;
}
LOG_AND_RETHROW
