// Private to the library, not installed: the source file of a persisted class includes it,
// specialises kestdb::ClassOf for the class and instantiates vbPersistentClass.
#pragma once

#include <array>
#include <cstdio>
#include <vector>

#include "store/KestErr.h"
#include "store/PersistentClass.h"
#include "store/RecordIO.h"
#include "store/indexrebuild.h"

namespace kestdb {

/// All that vbPersistentClass knows of a class:
///
///     template <>
///     struct kestdb::ClassOf<CDPoint> {
///       static constexpr vbINT32 Index = CDPoint::m_nDPOINT_INDX;
///       static constexpr vbINT32 Version = CDPoint::m_nDPOINT_VER;
///       static constexpr std::array Keys{&CDPoint::m_nID, &CDPoint::m_nPoint};
///       static constexpr auto Fields = [](auto& file, auto& point) { file(point.m_nID, ...); };
///     };
///
/// Keys are the fields that form the key text, and the first ones of the record; a singleton has
/// none (NoKeys). A function `Complete(object, stored version)` may set what an older record lacks
/// and no default serves for, and `OldestVersion` names the oldest version whose fields are known.
template <class Class>
struct ClassOf;

template <class Class>
using NoKeys = std::array<vbINT32 Class::*, 0>;

}  // namespace kestdb

template <class Class>
void vbPersistentClass<Class>::Read(vbINT32 address) try {
  const std::vector<char> record = ReadRecord(address);
  kestdb::RecordReader file(record);
  if constexpr (requires { kestdb::ClassOf<Class>::OldestVersion; }) {
    RequireVersion(file.StoredVersion(), kestdb::ClassOf<Class>::OldestVersion, address);
  }
  kestdb::ClassOf<Class>::Fields(file, static_cast<Class&>(*this));
  if constexpr (requires { &kestdb::ClassOf<Class>::Complete; }) {
    kestdb::ClassOf<Class>::Complete(static_cast<Class&>(*this), file.StoredVersion());
  }
  Attach(address);
}
LOG_AND_RETHROW

template <class Class>
bool vbPersistentClass<Class>::Write() try {
  std::vector<char> record;
  record.reserve(ObjectLength());
  kestdb::RecordWriter file(record);
  file(vbINT32(GetVBClassVer()));
  kestdb::ClassOf<Class>::Fields(file, static_cast<const Class&>(*this));
  return WriteRecord(record);
}
LOG_AND_RETHROW

template <class Class>
unsigned long vbPersistentClass<Class>::ObjectLength() {
  kestdb::RecordMeter file;
  file(vbINT32());
  kestdb::ClassOf<Class>::Fields(file, static_cast<const Class&>(*this));
  return file.Length();
}

template <class Class>
bool vbPersistentClass<Class>::CheckKey() {
  const auto& object = static_cast<const Class&>(*this);
  int least = 1;
  for (const auto field : kestdb::ClassOf<Class>::Keys) {
    if (object.*field < least) return false;
    least = 0;
  }
  return true;
}

/// The fixed width of 11 makes the order of the texts that of the numbers.
template <class Class>
char* vbPersistentClass<Class>::MakeKey(char* buffer) {
  constexpr std::size_t size = 64;
  const auto& object = static_cast<const Class&>(*this);
  const auto& keys = kestdb::ClassOf<Class>::Keys;
  if (keys.empty()) std::snprintf(buffer, size, "%11d", 1);
  std::size_t length = 0;
  for (const auto field : keys) {
    const int value = static_cast<int>(long{object.*field});
    length +=
        static_cast<std::size_t>(std::snprintf(buffer + length, size - length, "%11d", value));
  }
  return buffer;
}

template <class Class>
std::vector<vbINT32> vbPersistentClass<Class>::KeyWords() const {
  std::vector<vbINT32> words;
  for (const auto field : kestdb::ClassOf<Class>::Keys) {
    words.push_back(static_cast<const Class&>(*this).*field);
  }
  return words;
}

template <class Class>
vbINT32 vbPersistentClass<Class>::GetVBClassID() {
  return vbClassIDOf(kestdb::ClassOf<Class>::Index);
}

template <class Class>
unsigned int vbPersistentClass<Class>::GetVBClassIndex() {
  return static_cast<unsigned int>(long{kestdb::ClassOf<Class>::Index});
}

template <class Class>
std::string vbPersistentClass<Class>::GetVBClassName() {
  return Class::m_strCLASS_NAME;
}

template <class Class>
int vbPersistentClass<Class>::GetVBClassVer() {
  return static_cast<int>(long{kestdb::ClassOf<Class>::Version});
}

template <class Class>
int vbPersistentClass<Class>::RebuildIndex(POD* pod, bool add) try {
  Class object(pod);
  return kestdb::RebuildIndexOf(object, add);
}
LOG_AND_RETHROW
