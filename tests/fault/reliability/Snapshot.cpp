#include "tests/fault/reliability/Snapshot.h"

#include <kestdb.h>

#include <algorithm>
#include <fstream>
#include <stdexcept>

#include "tests/support/StoredRecord.h"

namespace {

std::string Hex(const std::string& bytes) {
  constexpr const char* digits = "0123456789abcdef";
  std::string text;
  for (const char byte : bytes) {
    const auto value = static_cast<unsigned char>(byte);
    text += digits[value / 16];
    text += digits[value % 16];
  }
  return text;
}

/// As one word of a line.
template <class Class>
std::string NameOf(Class& object) {
  char key[64];
  std::string name = Class::m_strCLASS_NAME + ":" + object.MakeKey(key);
  std::replace(name.begin(), name.end(), ' ', '_');
  return name;
}

template <class Class>
void Collect(Snapshot& snapshot) {
  Class walker(GetPOD());
  for (vbINT32 at = walker.FirstObject(0); at > 0; at = walker.NextObject(at)) {
    Class object(GetPOD());
    object.ReadObject(at);
    if (object.GetObject()) snapshot[NameOf(object)] = Hex(StoredRecord(object));
  }
}

template <class... Classes>
Snapshot CollectAll() {
  Snapshot snapshot;
  (Collect<Classes>(snapshot), ...);
  return snapshot;
}

}  // namespace

Snapshot TakeSnapshot() {
  const CLock lock(GetPOD(), 0);
  return CollectAll<CDBCtrl, CDesignControl, CGPoint, CInput, CResp, CAuxiliary, CTask, CDVar,
                    CDResp, CDCons, CDObj, CDLink, CDEqn, CDSet, CDPoint, CIter, CResult, CMessage,
                    CRDOE, CApproxModels, CRApproxMod, CResidual>();
}

void WriteSnapshot(const Snapshot& snapshot, const std::string& path) {
  std::ofstream file(path);
  for (const auto& [name, bytes] : snapshot) file << name << ' ' << bytes << '\n';
  file.close();
  if (!file) throw std::runtime_error("can't write " + path);
}

Snapshot ReadSnapshot(const std::string& path) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error("can't read " + path);
  Snapshot snapshot;
  std::string name;
  std::string bytes;
  while (file >> name >> bytes) snapshot[name] = bytes;
  return snapshot;
}
