// Private to the library, not installed.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "definition/DefinitionReport.h"
#include "store/vbscalar.h"
#include "task/DVar.h"
#include "task/TaskTables.h"

// What the reports of a task's variables and of its responses share.

namespace kestdb {

/// A line of the table: a variable's or a response's scalar.
struct Entry {
  int sequence;   ///< in transfer order, from 1
  int kind;       ///< vbEntryKind, or what else a record holds
  long position;  ///< in the tables of the kind
  long random;    ///< the random variable or response that it belongs to, -1 for none
  int parameter;  ///< its parameter of the distribution

  bool IsRandom() const { return random >= 0; }
};

/// The entries of a task's table, `parameters` being those of their distributions. THROWS
/// CInvalidArgument for a table without a position for each.
template <class Table>
std::vector<Entry> EntriesOf(const Table& table, const std::vector<vbINT32>& parameters) {
  std::vector<Entry> entries;
  entries.reserve(table.m_vnType.size());
  for (std::size_t i = 0; i < table.m_vnType.size(); ++i) {
    const long position = ElementAt(table.m_vnSeq, static_cast<long>(i));
    entries.push_back({static_cast<int>(i + 1), static_cast<int>(long{table.m_vnType[i]}), position,
                       ElementOr(table.m_vnRandIndex, i, -1),
                       static_cast<int>(ElementOr(parameters, i, 0))});
  }
  return entries;
}

/// The name of a variable. THROWS CInvalidType for a kind that is no variable's, CInvalidArgument
/// for a position outside the kind's table.
const std::string& VariableName(const CDVar& vars, int kind, long position);

/// The position of an auxiliary definition's ID in a table of them; -1 when it isn't there.
long PositionOf(const std::vector<vbINT32>& ids, const vbINT32& id);

/// The arguments of a linked or synthetic entry: each by the name of its scalar, which
/// `nameOf(kind, position)` gives, and where several elements are taken from there with their
/// number behind it. THROWS CInvalidArgument for an argument without a kind.
template <class NameOf>
std::vector<std::string> ArgumentTexts(const std::vector<vbINT32>& positions,
                                       const std::vector<vbINT32>& kinds,
                                       const std::vector<vbINT32>& lengths, NameOf nameOf) {
  std::vector<std::string> texts;
  for (std::size_t i = 0; i < positions.size(); ++i) {
    const auto kind = static_cast<int>(long{ElementAt(kinds, static_cast<long>(i))});
    texts.push_back(nameOf(kind, long{positions[i]}));
    const long length = ElementOr(lengths, i, 1);
    if (length >= 2) texts.back() += "(" + std::to_string(length) + ")";
  }
  return texts;
}

/// Row i of a table of lengths that may be shorter than its fellows; empty where there is none.
inline std::vector<vbINT32> LengthsAt(const std::vector<std::vector<vbINT32>>& rows, long i) {
  return static_cast<std::size_t>(i) < rows.size() ? rows[static_cast<std::size_t>(i)]
                                                   : std::vector<vbINT32>();
}

/// The constant, then name and multiplier of each argument. THROWS CInvalidArgument when a
/// coefficient is missing.
std::string LinkText(const std::vector<vbFLOAT64>& coefficients,
                     const std::vector<std::string>& arguments);

/// The function with its arguments.
std::string FunctionText(const std::string& function, const std::vector<std::string>& arguments);

/// The members, separated by commas.
std::string SetText(const std::vector<vbFLOAT64>& members);

/// Prints what a name has behind its first piece, each piece on a line of its own under the first.
void PrintNameRest(std::FILE* stream, const std::vector<std::string>& pieces, int indent);

/// The width of a name in the section of what is random.
inline constexpr int kRandomNameWidth = 6;

/// Where the names begin in the table, and in the section of what is random.
inline constexpr int kNameIndent = 25;
inline constexpr int kRandomNameIndent = 7;

/// Ends the head of a section whose rows PrintDefinition prints.
inline constexpr const char* kDefinitionRule =
    "--------  --------------  ------------------------------------------------------\n";

/// Prints the row of an entry with its definition. A name and a definition that don't fit go on
/// side by side in further lines.
void PrintDefinition(std::FILE* stream, int sequence, const std::string& name,
                     const std::string& definition);

}  // namespace kestdb
