// Private to the library, not installed.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "store/KestErr.h"
#include "store/pod.h"
#include "store/walk.h"
#include "task/DObj.h"
#include "task/DResp.h"
#include "task/DVar.h"
#include "task/Task.h"
#include "task/TaskArguments.h"
#include "task/TaskReport.h"
#include "task/TaskTables.h"

// How definitions are made again from the tables of a task: what Inputs and responses share.

namespace kestdb {

/// The definitions that the entries of a table came from, as IDInputObjects and IDRespObjects tell
/// them.
struct Fold {
  std::vector<int> ids;
  std::vector<int> kinds;
  std::vector<int> positions;  ///< of the first element, within its kind
  std::vector<int> sizes;
  std::vector<int> entries;  ///< number of the first element's entry
};
inline Fold FoldOf(const CDVar& vars) {
  Fold fold;
  vars.IDInputObjects(fold.ids, fold.kinds, fold.positions, fold.sizes, fold.entries);
  return fold;
}
inline Fold FoldOf(const CDResp& resps) {
  Fold fold;
  resps.IDRespObjects(fold.ids, fold.kinds, fold.positions, fold.sizes, fold.entries);
  return fold;
}

/// Gives a new definition what definition i of the fold has of every kind. Kept: definitions are
/// numbered, not their elements, so that those behind an array move up.
template <class Definition>
void Identify(const Fold& fold, std::size_t i, Definition& definition) {
  definition.m_nID = fold.ids[i];
  definition.m_uIndex = i + 1;
  definition.m_uSize = static_cast<unsigned long>(fold.sizes[i]);
}

/// The name of a definition of that size, from that of its first element. Those of an array end in
/// "_" and a number.
inline std::string NameOfArray(const std::string& element, const vbUINT32& size) {
  return size < 2 ? element : element.substr(0, element.rfind('_'));
}

/// Tells a definition which parameter it is of what random variable or response; its number, -1 for
/// none. `parameters` are those of the table's entries.
template <class Table, class Definition>
long LoadRandom(const Table& table, const std::vector<vbINT32>& parameters, int entry,
                Definition& definition) {
  const auto at = static_cast<std::size_t>(entry);
  const long random = ElementOr(table.m_vnRandIndex, at, -1);
  if (random < 0) return -1;
  definition.m_nRandom = 1;
  definition.m_nRandomParam = ElementOr(parameters, at, 0);
  return random;
}

/// The IDs of a kind, by position; null for a kind that stands in another table.
inline const std::vector<vbINT32>* IDsOfKind(const CDVar& vars, long kind) {
  switch (kind) {
    case vbIndependentVar:
      return &vars.m_vnIndIDs;
    case vbLinkedVar:
      return &vars.m_vnLinkIDs;
    case vbSyntheticVar:
      return &vars.m_vnSynIDs;
    case vbConstantVar:
      return &vars.m_vnConstIDs;
    default:
      return nullptr;
  }
}
inline const std::vector<vbINT32>* IDsOfKind(const CDResp& resps, long kind) {
  switch (kind) {
    case vbIndependentResp:
      return &resps.m_vnIndIDs;
    case vbLinkedResp:
      return &resps.m_vnLinkIDs;
    case vbSyntheticResp:
      return &resps.m_vnSynIDs;
    default:
      return nullptr;
  }
}

// ---- Arguments ----

/// The arguments of the linked entry at that position. They have no lengths.
/// Rows THROW CInvalidArgument where there is none.
template <class Table>
ArgumentRow LinkArguments(const Table& table, long position) {
  ArgumentRow row;
  CopyElements(ElementAt(table.m_mnLinkSubj, position), row.positions);
  CopyElements(ElementAt(table.m_mnLinkType, position), row.kinds);
  return row;
}

template <class Table>
ArgumentRow SyntheticArguments(const Table& table, long position) {
  ArgumentRow row;
  CopyElements(ElementAt(table.m_mnSynSubj, position), row.positions);
  CopyElements(ElementAt(table.m_mnSynType, position), row.kinds);
  CopyElements(ElementAt(table.m_mnSynLen, position), row.lengths);
  return row;
}

/// What arguments that are places in the tables of a task stand for in its definitions.
class LoadedArguments {
 public:
  /// Arguments are negated IDs of Inputs,
  explicit LoadedArguments(const CDVar& vars) {
    for (int kind = vbIndependentVar; kind <= vbConstantVar; ++kind) {
      Add(kind, *IDsOfKind(vars, kind), -1);
    }
  }
  /// and IDs of responses.
  LoadedArguments(const CDVar& vars, const CDResp& resps) : LoadedArguments(vars) {
    for (int kind = vbIndependentResp; kind <= vbSyntheticResp; ++kind) {
      Add(kind, *IDsOfKind(resps, kind), 1);
    }
  }

  /// THROWS, with the definition as it was, CInvalidType for an argument of no known kind,
  /// CInvalidArgument for one outside its table.
  template <class Definition>
  void Load(const ArgumentRow& row, Definition& definition) const {
    std::vector<vbINT32> arguments;
    std::vector<vbINT32> indexes;
    std::vector<vbINT32> lengths(row.positions.size(), 1);
    if (row.lengths.size() == lengths.size()) CopyElements(row.lengths, lengths);
    for (std::size_t i = 0; i < row.positions.size(); ++i) {
      const Element& element = At(ElementAt(row.kinds, static_cast<long>(i)), row.positions[i]);
      arguments.push_back(element.argument);
      indexes.push_back(element.index);
    }
    definition.m_vnArg.swap(arguments);
    definition.m_vnIdx.swap(indexes);
    definition.m_vnLength.swap(lengths);
  }

 private:
  struct Element {
    long argument;
    long index;  ///< in the run of its ID
  };

  /// Kept: the elements of a random array stand apart, each a run of its own with index 0.
  void Add(int kind, const std::vector<vbINT32>& ids, long sign) {
    std::vector<Element>& elements = kinds_[kind];
    for (const vbINT32& id : ids) {
      const long argument = sign * id;
      const bool goesOn = !elements.empty() && elements.back().argument == argument;
      elements.push_back({argument, goesOn ? elements.back().index + 1 : 0});
    }
  }
  const Element& At(int kind, long position) const {
    const auto elements = kinds_.find(kind);
    if (elements == kinds_.end()) Throw<CInvalidType>();
    return ElementAt(elements->second, position);
  }

  std::map<int, std::vector<Element>> kinds_;
};

// ---- Objectives ----

/// Gives the definitions in the table, which are stored, the goals that the task's objective terms
/// have for them. THROWS CGetObject without a definition, CInvalidArgument for a term outside the
/// table and for columns that don't fit each other.
template <class Definition, class Table>
void LoadGoals(POD* pod, const CDObj& terms, const Table& table) {
  for (std::size_t i = 0; i < terms.m_vnSubjType.size(); ++i) {
    const auto* ids = IDsOfKind(table, terms.m_vnSubjType[i]);
    if (ids == nullptr) continue;
    const auto term = static_cast<long>(i);
    const long id = ElementAt(*ids, ElementAt(terms.m_vnSubj, term));
    auto definition = RequireByID<Definition, CGetObject>(pod, id);
    definition.m_nObjective = 1;
    definition.m_nGoal = ElementAt(terms.m_vnGoal, term);
    definition.m_fTarget = ElementAt(terms.m_vfTarget, term);
    definition.m_fWeight = ElementAt(terms.m_vfWeight, term);
    definition.m_fWorst = ElementAt(terms.m_vfWorst, term);
    definition.m_nHasWorst = ElementAt(terms.m_vnHasWorst, term);
    definition.PutObject();
  }
}

}  // namespace kestdb
