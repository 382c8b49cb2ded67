#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tests/fault/pairs/ObjectList.h"

/// A length or count in a record.
struct RecordCount {
  enum class Of { Text, Elements };

  Of of;
  std::size_t offset;   ///< in the record
  std::size_t element;  ///< bytes that each of what is counted takes at least
};

/// The lengths of all texts and the counts of all lists in the record of an object, told from the
/// layouts of the classes alone. THROWS std::logic_error when the layout doesn't end with the
/// record.
std::vector<RecordCount> CountsIn(const ListedObject& object);
