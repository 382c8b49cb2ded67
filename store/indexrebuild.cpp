#include "store/indexrebuild.h"

#include <cstring>

#include "environment/Logging.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/blockwalk.h"
#include "store/pod.h"
#include "store/podcheck.h"
#include "store/vpersist.h"

namespace kestdb {

namespace {

/// Whether the block holds a live object of the class, at `body`.
bool HoldsObject(BlockWalk& walk, const FoundBlock& block, long body, long classID) {
  vbObjectHeader header;
  const char* bytes = walk.Window().At(body, sizeof header);
  if (block.header.StatusLetter() != vbNormalBlock || bytes == nullptr) return false;
  std::memcpy(&header, bytes, sizeof header);
  return header.ClassID == classID;
}

/// Reads the object. One that no record of its class can be read from, though its checksum agrees,
/// was damaged before that checksum was taken: a rebuild of the data file keeps what it can't know
/// to be wrong. The other objects must not be lost for it.
bool ReadRecord(vbPersistent& object, long body) {
  try {
    object.Read(body);
    if (object.CheckKey()) return true;
  } catch (const CFileCorrupt&) {
    // The warning is told below.
  } catch (const CInvalidType&) {
    // The same.
  }
  LWarn("Could not read the %s object at address %d.\n", object.GetVBClassName().c_str(),
        static_cast<int>(body));
  LPrint("\tIt is not in the index.\n");
  return false;
}

}  // namespace

void ForEachLiveObject(vbDatabase& data, long classID, const std::function<void(long)>& visit) {
  BlockWalk walk(data);
  const long headerSize = static_cast<long>(data.VBHeaderSize());
  const auto good = [&](const FoundBlock& block) {
    const long body = block.address + headerSize;
    if (HoldsObject(walk, block, body, classID)) visit(body);
    return static_cast<long>(block.header.Length);
  };
  walk.Run(data.FindFirstVB(0), good, [](long) {});
}

int RebuildIndexOf(vbPersistent& object, bool add) try {
  POD* pod = object.Database();
  RequireIndexed(pod);
  if (pod->IndexTable() == nullptr) Throw<CNullPtr>();
  const CLock lock(pod, 0);
  vbDatabase& data = *pod->DataFile();
  if (data.FindFirstVB(0) == 0) Throw<CNoObjectsExist>();

  const vbINT32 classID = object.GetVBClassID();
  int total = 0;
  int indexed = 0;
  ForEachLiveObject(data, classID, [&](long body) {
    if (!ReadRecord(object, body)) return;
    ++total;
    if (add && !object.Add(body, classID)) Throw<CAddKey>();
    if (add || object.Find(body, classID)) ++indexed;
  });
  if (indexed != total) Throw<CIndexError>();
  return total;
}
LOG_AND_RETHROW

}  // namespace kestdb
