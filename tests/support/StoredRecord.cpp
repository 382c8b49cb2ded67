#include "tests/support/StoredRecord.h"

#include "maintenance/Lock.h"
#include "store/vbdbase.h"
#include "tests/support/Bytes.h"
#include "tests/support/RawFile.h"

namespace {

long StoreInNewBlock(POD* pod, std::size_t size, auto&& objectAt) {
  const CLock lock(pod, 0);
  vbDatabase& data = *pod->DataFile();
  const vbINT32 address = data.Alloc(size, vbReclaimFirstFit);
  const std::string object = objectAt(address);
  data.Write(object.data(), object.size(), address, false, true);
  data.WriteObjectChecksum(address);
  return address;
}

}  // namespace

long StoreBytes(POD* pod, const std::string& object) {
  return StoreInNewBlock(pod, object.size(), [&](long) { return object; });
}

long StoreRecord(POD* pod, long classID, const std::string& record) {
  return StoreInNewBlock(pod, 8 + record.size(), [&](long address) {
    return Bytes(HexWord(classID) + HexWord(address)) + record;
  });
}

std::string StoredRecord(const vbPersistent& object) {
  const CLock lock(object.Database(), 0);
  vbDatabase& data = *object.Database()->DataFile();
  std::string bytes(data.ObjectLength(object.ObjectAddress()), '\0');
  data.Read(bytes.data(), bytes.size(), object.ObjectAddress());
  return bytes.substr(8);
}
