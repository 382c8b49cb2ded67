// Private to the library, not installed.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <unordered_map>
#include <vector>

#include "definition/Input.h"
#include "definition/Resp.h"
#include "store/KestErr.h"
#include "store/pod.h"
#include "store/walk.h"

// How the makers of a task read definitions, and resolve their arguments to places in its tables.

namespace kestdb {

/// Reads definitions by their IDs, each once.
template <class Definition>
class DefinitionReader {
 public:
  explicit DefinitionReader(POD* pod) : pod_(pod) {}

  /// Stays where it is. THROWS CObjectNotFound.
  const Definition& Get(long id) {
    const auto [place, isNew] = read_.try_emplace(id, pod_);
    if (isNew && !LoadByID(place->second, id)) {
      read_.erase(place);
      Throw<CObjectNotFound>();
    }
    return place->second;
  }

 private:
  POD* pod_;
  std::unordered_map<long, Definition> read_;
};

/// The kind of the entries that a definition becomes; 0 for a type that there isn't.
int KindOfInput(long type);
int KindOfResp(long type);

/// A definition as others see it that take it as an argument.
struct ArgumentDefinition {
  long type;
  long size;
  int kind;
  bool isInput;
  const std::string& name;
};
ArgumentDefinition AsArgument(const CInput& input);
ArgumentDefinition AsArgument(const CResp& resp);

/// A linked or synthetic definition that takes arguments.
struct ArgumentOwner {
  int kind;
  const std::string& name;
};

/// The arguments of a definition; those of a link have no lengths.
struct ArgumentList {
  std::vector<int> ids;
  std::vector<int> indexes;
  std::vector<int> lengths;

  long Index(std::size_t i) const { return i < indexes.size() ? indexes[i] : 0; }
  long Length(std::size_t i) const {
    return lengths.empty() ? 0 : i < lengths.size() ? lengths[i] : 1;
  }
};

/// The arguments as places in the tables of a task: position, kind, number of elements. What was
/// not resolved is 0.
struct ArgumentRow {
  std::vector<int> positions;
  std::vector<int> kinds;
  std::vector<int> lengths;

  explicit ArgumentRow(std::size_t size = 0) : positions(size), kinds(size), lengths(size) {}
};

/// The first position of each ID in a table of IDs.
class PositionTable {
 public:
  explicit PositionTable(const std::vector<vbINT32>& ids);
  /// THROWS CObjectNotFound.
  long Find(int id) const;

 private:
  std::unordered_map<int, long> positions_;
};

/// Takes argument i, if it is of type `type` and kind `kind`, into the row. `positionOf(id)` finds
/// it in the table of that kind. THROWS CInvalidType, CIndexError.
template <class PositionOf>
void ResolveArgument(const ArgumentOwner& owner, const ArgumentList& list, std::size_t i,
                     const ArgumentDefinition& argument, int type, int kind, PositionOf positionOf,
                     ArgumentRow& row);

/// A search for those arguments that are of one type and kind.
struct ArgumentPass {
  int type;
  int kind;
  const PositionTable& table;
};

/// Resolves arguments in passes, in their order.
class ArgumentResolver {
 public:
  ArgumentResolver(DefinitionReader<CInput>& inputs, DefinitionReader<CResp>& resps)
      : inputs_(inputs), resps_(resps) {}

  /// THROWS CObjectNotFound for an argument that is missing or in no table, CIndexError for one
  /// past the end of its array.
  ArgumentRow Resolve(const ArgumentOwner& owner, const ArgumentList& list,
                      const std::vector<ArgumentPass>& passes);

 private:
  ArgumentDefinition Read(int id);

  DefinitionReader<CInput>& inputs_;
  DefinitionReader<CResp>& resps_;
};

void RequireKnownType(const ArgumentDefinition& argument);
void RequireLength(const ArgumentOwner& owner, const ArgumentList& list, std::size_t i,
                   const ArgumentDefinition& argument);

template <class PositionOf>
void ResolveArgument(const ArgumentOwner& owner, const ArgumentList& list, std::size_t i,
                     const ArgumentDefinition& argument, int type, int kind, PositionOf positionOf,
                     ArgumentRow& row) {
  if (argument.type != type) return;
  RequireKnownType(argument);
  if (!list.lengths.empty()) RequireLength(owner, list, i, argument);
  if (argument.kind != kind) return;
  const int id = argument.isInput ? -list.ids[i] : list.ids[i];
  row.positions[i] = static_cast<int>(list.Index(i) + positionOf(id));
  row.kinds[i] = kind;
  row.lengths[i] = static_cast<int>(list.Length(i));
}

}  // namespace kestdb
