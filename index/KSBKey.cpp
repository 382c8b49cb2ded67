#include "index/KSBKey.h"

#include <cstddef>
#include <cstring>

namespace {

constexpr std::size_t kImageSize =
    sizeof(KSBKey::ObjectName) + sizeof(KSBKey::ObjectAddress) + sizeof(KSBKey::ObjectClassID);
static_assert(kImageSize == 72);

/// Names come from files too, where the terminator may be missing.
int Compare(const KSBKey& left, const DatabaseKeyB& right) {
  const auto& other = static_cast<const KSBKey&>(right);
  return std::strncmp(left.ObjectName, other.ObjectName, sizeof left.ObjectName);
}

}  // namespace

KSBKey::KSBKey() : KSBKey("", 0, 0) {}

KSBKey::KSBKey(const char* name, vbINT32 address, vbINT32 classID)
    : DatabaseKeyB(ObjectName), ObjectAddress(address), ObjectClassID(classID) {
  SetObjectName(name);
}

KSBKey::KSBKey(const KSBKey& other) : DatabaseKeyB(ObjectName) {
  *this = other;
}

KSBKey& KSBKey::operator=(const KSBKey& other) {
  Branch = other.Branch;
  std::memmove(ObjectName, other.ObjectName, sizeof ObjectName);
  ObjectAddress = other.ObjectAddress;
  ObjectClassID = other.ObjectClassID;
  return *this;
}

KSBKey::~KSBKey() = default;

void KSBKey::SetObjectName(const char* name) {
  // The bytes behind the terminator reach the file with the rest of the image: they are zero.
  std::strncpy(ObjectName, name, sizeof ObjectName);
  ObjectName[sizeof ObjectName - 1] = '\0';
}

vbINT32 KSBKey::KeySize() {
  return static_cast<long>(kImageSize);
}

bool KSBKey::operator==(const DatabaseKeyB& other) const {
  return Compare(*this, other) == 0;
}

bool KSBKey::operator>(const DatabaseKeyB& other) const {
  return Compare(*this, other) > 0;
}

bool KSBKey::operator==(const KSBKey& other) const {
  return Compare(*this, other) == 0;
}
