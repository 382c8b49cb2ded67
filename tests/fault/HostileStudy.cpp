#include "tests/fault/HostileStudy.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <tuple>

#include "index/KSBKey.h"
#include "index/vbtree.h"
#include "maintenance/Lock.h"
#include "store/DBI_IO.h"
#include "store/pod.h"
#include "store/vbdbase.h"
#include "tests/fault/Visit.h"
#include "tests/support/Bytes.h"

namespace {

constexpr int kPlains = 35;
constexpr int kSamples = 12;

void Remove(const KnownObject& object, bool forGood) {
  WithRecord(GetPOD(), object, [forGood](auto& record) {
    if (!(forGood ? record.RemoveObject() : record.DeleteObject())) {
      throw std::logic_error("nothing to remove");
    }
  });
}

KSBKey TripleKey(int id) {
  TripleRecord record(GetPOD());
  record.m_nFirst = id;
  char text[64];
  return {record.MakeKey(text), 0, record.GetVBClassID()};
}

}  // namespace

HostileStudy::HostileStudy(int order) {
  const std::string data = folder_ / "known.ksb";
  const std::string index = folder_ / "known.kx";
  KSBKey key;
  pPOD = new POD(data);
  pPOD->Open(data, index, key, order, vbReadWrite, 1, 0, 25);
  Store();
  FillTriples(order - 1);
  CloseDatabase();
  files_ = {ReadBytes(data), ReadBytes(index)};
}

void HostileStudy::Store() {
  const CLock lock(GetPOD(), 0);
  objects_.push_back({Kind::Points});
  for (int i = 1; i <= kPlains; ++i) {
    objects_.push_back({Kind::Plain, i});
    if (i <= kSamples) objects_.push_back({Kind::Sample, i, i % 3});
  }
  for (const KnownObject& object : objects_) ::Store(GetPOD(), object);
  // Sample 4, the last one freed, is large enough to be split.
  for (const auto& [kind, id, forGood] : {std::tuple{Kind::Plain, 5, true},
                                          {Kind::Plain, 20, false},
                                          {Kind::Plain, 25, true},
                                          {Kind::Plain, 30, false},
                                          {Kind::Sample, 9, false},
                                          {Kind::Sample, 4, true}}) {
    const auto at = std::find(objects_.begin(), objects_.end(), Object(kind, id));
    Remove(*at, forGood);
    objects_.erase(at);
  }
  for (KnownObject& object : objects_) {
    WithRecord(GetPOD(), object, [&](auto& record) {
      record.FindObject();
      object.address = record.ObjectAddress();
    });
  }
}

/// Lets the tree of the triple records grow to three nodes and shrink to one, which is then filled.
void HostileStudy::FillTriples(int mostKeys) {
  const CLock lock(GetPOD(), 0);
  vBtree& tree = *GetPOD()->Index(TripleRecord::m_nTRIPLE_INDX);
  KSBKey work;
  const auto insert = [&](int id) {
    KSBKey key = TripleKey(id);
    tree.Insert(key, work, true);
    triples_.push_back(id);
  };
  for (int id = 1; id <= mostKeys + 2; ++id) insert(id);
  while (tree.Height > 1) {
    KSBKey key = TripleKey(triples_.front());
    tree.Delete(key, work, true);
    triples_.erase(triples_.begin());
  }
  for (int id = 50; tree.EntryCount < mostKeys; ++id) insert(id);
}

const KnownObject& HostileStudy::Object(Kind kind, int id) const {
  const auto is = [&](const KnownObject& object) { return object.kind == kind && object.id == id; };
  const auto found = std::find_if(objects_.begin(), objects_.end(), is);
  if (found == objects_.end()) throw std::logic_error("no such object");
  return *found;
}

CaseResult HostileStudy::Exercise(const FilePair& damaged, long changed) const {
  const std::string base = folder_ / "damaged";
  WriteBytes(base + ".ksb", damaged.data);
  WriteBytes(base + ".kx", damaged.index);
  std::remove((base + ".lck").c_str());  // of a child that was ended
  return Visit(base, objects_, triples_, changed).Run();
}
