// Private to the library, not installed.
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

// What Inputs and responses share beside their reports.

namespace kestdb {

/// Gives all fields their defaults but the texts and the vectors.
template <class Definition>
void ResetDefinition(Definition& definition) {
  Definition fresh(definition.Database());
  fresh.m_strName = std::move(definition.m_strName);
  fresh.m_strText = std::move(definition.m_strText);
  fresh.m_vnArg = std::move(definition.m_vnArg);
  fresh.m_vnIdx = std::move(definition.m_vnIdx);
  fresh.m_vnLength = std::move(definition.m_vnLength);
  definition = std::move(fresh);
}

/// The place of list[position] within its run of equal values, from 0.
inline int PlaceInRun(int position, const std::vector<int>& list) {
  int place = 0;
  for (auto i = static_cast<std::size_t>(position); i > 0 && list[i] == list[i - 1]; --i) ++place;
  return place;
}

}  // namespace kestdb
