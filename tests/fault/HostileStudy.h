#pragma once

#include <string>
#include <vector>

#include "tests/fault/CaseRunner.h"
#include "tests/fault/KnownObjects.h"
#include "tests/support/TempFolder.h"

/// Both files of a study, as bytes.
struct FilePair {
  std::string data;
  std::string index;
};

/// A small study whose every object is known, and what comes of it when its files are damaged.
/// It has the design points, 31 plain records in a tree of height 2, ten sample records, free
/// blocks of both kinds in the data file and free nodes in the index file, and a full root in the
/// tree of the triple records, which holds keys alone.
class HostileStudy {
 public:
  /// Trees of a lower order than OpenDatabase gives make for smaller nodes, so that fewer bytes
  /// have the same things to say.
  explicit HostileStudy(int order = 8);

  const FilePair& Files() const { return files_; }
  const std::vector<KnownObject>& Objects() const { return objects_; }
  /// The stored object of that key.
  const KnownObject& Object(Kind kind, int id) const;

  /// Opens the damaged files and does everything that a program could do with them: reads each
  /// object by its key, walks through all objects and all keys in both directions, adds objects,
  /// removes some, reads again, closes. Goes on after exceptions. `changed` is the address of an
  /// object whose stored form was changed, so that nothing is expected of it.
  CaseResult Exercise(const FilePair& damaged, long changed = 0) const;

 private:
  void Store();
  void FillTriples(int mostKeys);

  TempFolder folder_;
  std::vector<KnownObject> objects_;
  std::vector<int> triples_;  ///< IDs of the keys in the tree of the triple records
  FilePair files_;
};
