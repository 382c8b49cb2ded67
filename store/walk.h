// Private to the library, not installed.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <limits>
#include <vector>

#include "index/KSBKey.h"
#include "index/vbtree.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/pod.h"
#include "store/vpersist.h"

// Walks over the objects of a class. They go on from what was found before an object is visited,
// so that the visit may remove it. Each visit gets an object of its own: what an older record lacks
// has its default, not what the object before it held. REQUIRE that the caller holds CLock.

namespace kestdb {

/// Loads the object of that ID; false when there is none, as for an ID that no object can have.
template <class Class>
bool LoadByID(Class& object, long id) {
  object.m_nID = id;
  return id > 0 && object.m_nID == id && object.GetObject();
}

/// The object of that ID. THROWS a `Failure` when there is none.
template <class Class, class Failure>
Class RequireByID(POD* pod, long id) {
  Class object(pod);
  if (!LoadByID(object, id)) Throw<Failure>();
  return object;
}

/// Visits the keys of the class in their order, until `visit(key)` returns false.
template <class Class, class Visit>
void VisitKeys(POD* pod, Visit visit) {
  vBtree* tree = pod->Index(Class(pod).GetVBClassIndex());
  if (tree == nullptr) Throw<CNullPtr>();
  KSBKey next;
  KSBKey work;
  bool found = tree->FindFirst(next, true);
  while (found) {
    const KSBKey key = next;
    found = tree->FindNext(next, work, true);
    if (!visit(key)) return;
  }
}

/// Visits the objects in the order of their keys, until `visit(object)` returns false. THROWS
/// CIndexError for a key that leads to another object, or to a freed one.
template <class Class, class Visit>
void VisitInIndexOrder(POD* pod, Visit visit) {
  VisitKeys<Class>(pod, [&](const KSBKey& key) {
    Class object(pod);
    object.ReadByKey(key);
    return visit(object);
  });
}

/// Copies of all objects of the class, in the order of their keys.
template <class Class>
std::vector<Class> AllObjects(POD* pod) {
  std::vector<Class> objects;
  VisitInIndexOrder<Class>(pod, [&objects](const Class& object) {
    objects.push_back(object);
    return true;
  });
  return objects;
}

/// Visits the objects in the order in which they lie in the file, until `visit(object)` returns
/// false.
template <class Class, class Visit>
void VisitInFileOrder(POD* pod, Visit visit) {
  vbINT32 next = Class(pod).FirstObject(0);
  while (next > 0) {
    const vbINT32 address = next;
    Class object(pod);
    next = object.NextObject(address);
    object.ReadObject(address);
    if (!visit(object)) return;
  }
}

/// Removes all objects of the class; false at the first one that can't be removed.
template <class Class>
bool RemoveAllObjects(POD* pod) {
  bool removed = true;
  VisitInFileOrder<Class>(pod, [&removed](Class& object) {
    removed = object.RemoveObject();
    return removed;
  });
  return removed;
}

/// The IDs of all objects of a class whose key is its ID, in the order of their keys. No object is
/// read.
template <class Class>
std::vector<int> AllIDs(POD* pod) {
  std::vector<int> ids;
  VisitKeys<Class>(pod, [&ids](const KSBKey& key) {
    ids.push_back(std::atoi(key.ObjectName));
    return true;
  });
  return ids;
}

/// Removes the objects whose ID is not in `ids`.
template <class Class>
void RemoveAllBut(POD* pod, const std::vector<int>& ids) {
  VisitInIndexOrder<Class>(pod, [&ids](Class& object) {
    if (std::find(ids.begin(), ids.end(), object.m_nID) == ids.end()) object.RemoveObject();
    return true;
  });
}

/// Removes the objects whose keys differ in `number` alone, from the number that `object` holds up
/// to the first that `find` doesn't find. Whether there was any. THROWS CObjectNotRemoved.
template <class Class, class Find>
bool RemoveNumbered(Class& object, vbINT32 Class::*number, Find find) {
  bool removed = false;
  while (std::invoke(find, object)) {
    if (!object.RemoveObject()) Throw<CObjectNotRemoved>();
    removed = true;
    if (object.*number == std::numeric_limits<std::int32_t>::max()) break;
    object.*number = object.*number + 1;
  }
  return removed;
}

}  // namespace kestdb
