#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "store/vpersist.h"

// The objects of a data file, told from its bytes alone, and the classes that they are read as.

struct ListedObject {
  long classID = 0;
  std::vector<int> key;    ///< its key fields
  std::string record;      ///< the version word and the fields
  std::size_t block = 0;   ///< where its block starts
  std::size_t length = 0;  ///< of the block
};

/// The live objects of a sound data file, in file order.
std::vector<ListedObject> ObjectsIn(const std::string& data);

/// The name of the class with the key fields behind it.
std::string NameOf(const ListedObject& object);

/// A new object with that key, all other fields at their defaults.
std::unique_ptr<vbPersistent> NewObject(POD* pod, const ListedObject& object);
/// A new object of the class, its key unset.
std::unique_ptr<vbPersistent> NewObject(POD* pod, long classID);

/// The key text.
std::string KeyOf(vbPersistent& object);

/// What a walk through a tree served: the key, and the key of the object that came with it.
struct Served {
  std::string key;
  std::string own;
  std::unique_ptr<vbPersistent> object;
};

/// The objects of the class in the order of their keys, as the library goes over them. THROWS what
/// that throws; `served` holds what came before.
void WalkInIndexOrder(POD* pod, long classID, std::vector<Served>& served);

inline constexpr long kClasses = 22;
constexpr long ClassIDOf(long classIndex) {
  return 1000 * (classIndex + 1);
}
