// Private to the library, not installed.
#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

#include "store/KestErr.h"
#include "store/assertion.h"
#include "store/vbscalar.h"

// What the tables of a task share.

namespace kestdb {

template <class From, class To>
void CopyElements(const From& from, To& to) {
  to.resize(from.size());
  for (std::size_t i = 0; i < from.size(); ++i) {
    to[i] = static_cast<typename To::value_type>(from[i]);
  }
}

/// Row i of a table of arguments; `assertion` words that there is one.
inline void CopyRow(const std::vector<std::vector<vbINT32>>& rows, int i, const char* assertion,
                    std::vector<int>& row) {
  KESTDB_ASSERT(i >= 0, "i >= 0");
  KESTDB_ASSERT(static_cast<std::size_t>(i) < rows.size(), assertion);
  CopyElements(rows[static_cast<std::size_t>(i)], row);
}

/// The element at a position that a caller or a file gives. THROWS CInvalidArgument outside.
template <class Elements>
auto& ElementAt(Elements& elements, long i) {
  if (i < 0 || static_cast<std::size_t>(i) >= elements.size()) Throw<CInvalidArgument>();
  return elements[static_cast<std::size_t>(i)];
}

/// The element of a table that may be shorter than its fellows.
inline long ElementOr(const std::vector<vbINT32>& elements, std::size_t i, long otherwise) {
  return i < elements.size() ? long{elements[i]} : otherwise;
}

/// A row of ones for each row of arguments, of the same length: what older records lack.
inline std::vector<std::vector<vbINT32>> OnesFor(
    const std::vector<std::vector<vbINT32>>& arguments) {
  std::vector<std::vector<vbINT32>> lengths;
  for (const auto& row : arguments) lengths.emplace_back(row.size(), 1);
  return lengths;
}

/// The definitions that flattened entries came from, in the order of their first entries: ID, kind,
/// position of the first element, number of elements, and the first entry. The elements of a
/// definition may stand apart. `idsOf(kind)` gives a kind's table of IDs; it THROWS for no kind.
template <class IDsOf>
void FoldEntries(const std::vector<vbINT32>& seq, const std::vector<vbINT32>& type, IDsOf idsOf,
                 std::vector<int>& ids, std::vector<int>& kinds, std::vector<int>& positions,
                 std::vector<int>& sizes, std::vector<int>& entries) {
  for (auto* column : {&ids, &kinds, &positions, &sizes, &entries}) column->clear();
  std::unordered_map<int, std::size_t> places;
  for (std::size_t entry = 0; entry < type.size(); ++entry) {
    const int kind = static_cast<int>(long{type[entry]});
    const long position = ElementAt(seq, static_cast<long>(entry));
    const int id = static_cast<int>(long{ElementAt(idsOf(kind), position)});
    const auto [place, isNew] = places.try_emplace(id, ids.size());
    if (!isNew) {
      ++sizes[place->second];
      continue;
    }
    ids.push_back(id);
    kinds.push_back(kind);
    positions.push_back(static_cast<int>(position));
    sizes.push_back(1);
    entries.push_back(static_cast<int>(entry));
  }
}

}  // namespace kestdb
