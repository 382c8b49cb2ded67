// Private to the library, not installed.
#pragma once

#include <cstddef>
#include <string>
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

/// A row of ones for each row of arguments, of the same length: what older records lack.
inline std::vector<std::vector<vbINT32>> OnesFor(
    const std::vector<std::vector<vbINT32>>& arguments) {
  std::vector<std::vector<vbINT32>> lengths;
  for (const auto& row : arguments) lengths.emplace_back(row.size(), 1);
  return lengths;
}

}  // namespace kestdb
