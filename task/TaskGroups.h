// Private to the library, not installed.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "task/TaskArguments.h"

// How definitions become entries: the elements of an array one after the other, and those of a
// random definition together with the definitions of its further parameters.

namespace kestdb {

/// A definition whose entries start a random number of their own.
bool StartsRandom(const CInput& input);
bool StartsRandom(const CResp& resp);

/// A further parameter of the random definition that comes before it.
template <class Definition>
bool IsRandomChild(const Definition& definition) {
  return definition.m_nRandom != 0 && !StartsRandom(definition);
}

/// A random definition that takes those that follow it as its parameters. A probability of failure
/// of a system stands alone.
template <class Definition>
bool TakesChildren(const Definition& definition) {
  return definition.m_nRandom != 0 &&
         (definition.m_nRandomParam == 0 || definition.m_nRandomParam == -1);
}

/// The definition at that place of the table, and those that belong to it.
template <class Definition>
std::vector<const Definition*> GroupAt(const std::vector<int>& ids, std::size_t place,
                                       DefinitionReader<Definition>& definitions) {
  std::vector<const Definition*> group{&definitions.Get(ids[place])};
  if (!TakesChildren(*group.front())) return group;
  for (std::size_t next = place + 1; next < ids.size(); ++next) {
    if (ids[next] < 1) continue;
    const Definition& follower = definitions.Get(ids[next]);
    if (!IsRandomChild(follower)) break;
    group.push_back(&follower);
  }
  return group;
}

/// Calls `enter(definition, element)` for every entry, in transfer order; elements count from 1.
template <class Definition, class Enter>
void ForEachEntry(const std::vector<int>& ids, DefinitionReader<Definition>& definitions,
                  Enter enter) {
  for (std::size_t place = 0; place < ids.size(); ++place) {
    if (ids[place] < 1) continue;
    const auto group = GroupAt(ids, place, definitions);
    const Definition& parent = *group.front();
    if (IsRandomChild(parent)) continue;  // its parent took it along
    const auto elements = static_cast<unsigned long>(parent.m_uSize);
    for (unsigned long element = 1; element <= elements; ++element) {
      for (const Definition* member : group) enter(*member, element);
    }
  }
}

/// The name of an entry: that of the definition or, in an array, with the element's number.
template <class Definition>
std::string EntryName(const Definition& definition, unsigned long element) {
  const std::string& name = definition.m_strName;
  return definition.m_uSize < 2 ? name : name + "_" + std::to_string(element);
}

/// The arguments of a definition as the resolver takes them.
template <class Definition>
ArgumentList ArgumentsOf(const Definition& definition, bool withLengths) {
  const auto plain = [](const std::vector<vbINT32>& values) {
    std::vector<int> copies;
    for (const vbINT32& value : values) copies.push_back(static_cast<int>(long{value}));
    return copies;
  };
  return {plain(definition.m_vnArg), plain(definition.m_vnIdx),
          withLengths ? plain(definition.m_vnLength) : std::vector<int>()};
}

/// The rows of a table of arguments, for the scalars of one kind in their order.
struct ArgumentTable {
  std::vector<std::vector<vbINT32>> positions;
  std::vector<std::vector<vbINT32>> kinds;
  std::vector<std::vector<vbINT32>> lengths;

  void Add(const ArgumentRow& row) {
    positions.emplace_back(row.positions.begin(), row.positions.end());
    kinds.emplace_back(row.kinds.begin(), row.kinds.end());
    lengths.emplace_back(row.lengths.begin(), row.lengths.end());
  }
};

/// Resolves the arguments of the definitions with these IDs, once for each scalar.
template <class Definition>
ArgumentTable ResolveAll(int ownerKind, const std::vector<vbINT32>& ids,
                         DefinitionReader<Definition>& definitions, ArgumentResolver& resolver,
                         const std::vector<ArgumentPass>& passes, bool withLengths) {
  ArgumentTable table;
  for (const vbINT32& stored : ids) {
    const int id = static_cast<int>(long{stored});
    if (id < 1) continue;
    const Definition& definition = definitions.Get(id);
    table.Add(resolver.Resolve({ownerKind, definition.m_strName},
                               ArgumentsOf(definition, withLengths), passes));
  }
  return table;
}

}  // namespace kestdb
