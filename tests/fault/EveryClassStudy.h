#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "store/vpersist.h"
#include "tests/fault/HostileStudy.h"
#include "tests/support/TempFolder.h"

/// An object as it is stored.
struct StoredObject {
  std::string name;  ///< of its class, with the text of its key
  /// A new object of the class with that key, all other fields at their defaults.
  std::function<std::unique_ptr<vbPersistent>(POD*)> make;
  std::size_t block;   ///< where its block starts
  std::size_t length;  ///< of the block
  std::string record;  ///< the version word and the fields
};

/// A small study with objects of every class. Some were stored and freed again, in both ways.
class EveryClassStudy {
 public:
  EveryClassStudy();

  /// For copies of the files.
  const TempFolder& Folder() const { return folder_; }
  const FilePair& Files() const { return files_; }
  const std::vector<StoredObject>& Objects() const { return objects_; }
  /// Those that were freed.
  const std::vector<StoredObject>& Freed() const { return freed_; }

 private:
  TempFolder folder_;
  FilePair files_;
  std::vector<StoredObject> objects_;
  std::vector<StoredObject> freed_;
};
