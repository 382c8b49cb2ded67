#include <algorithm>
#include <string>
#include <vector>

#include "definition/DefinitionReport.h"
#include "store/KestErr.h"
#include "task/DEqn.h"
#include "task/DLink.h"
#include "task/DSet.h"
#include "task/TableReport.h"
#include "task/TaskTables.h"

// The reports of the definitions that a task has frozen. Links and sets have a column of names
// beside one of numbers; a name and numbers that don't fit go on side by side in further lines.

namespace {

using kestdb::ElementAt;
using kestdb::ToInt;

constexpr int kMultiplierWidth = 44;
constexpr int kMemberWidth = 56;
constexpr int kFunctionWidth = 72;
constexpr int kFunctionIndent = 8;

/// Each number with a blank behind it, from position `first` on.
std::string NumberText(const std::vector<vbFLOAT64>& numbers, std::size_t first) {
  std::string text;
  for (std::size_t i = first; i < numbers.size(); ++i) {
    char number[32];
    std::snprintf(number, sizeof number, "%g ", double{numbers[i]});
    text += number;
  }
  return text;
}

/// The lines of a name and of the numbers beside it.
struct Columns {
  std::vector<std::string> name;
  std::vector<std::string> numbers;

  std::size_t Lines() const { return std::max(name.size(), numbers.size()); }
};

const char* PieceAt(const std::vector<std::string>& pieces, std::size_t line) {
  return line < pieces.size() ? pieces[line].c_str() : "";
}

struct LinkRow {
  int id;
  double constant;
  Columns columns;
};

LinkRow LinkRowOf(const CDLink& links, long i) {
  const std::vector<vbFLOAT64>& coefficients = ElementAt(links.m_mdCoef, i);
  return {ToInt(links.m_vnAuxID[static_cast<std::size_t>(i)]),
          ElementAt(coefficients, 0),
          {kestdb::NamePieces(ElementAt(links.m_vstrName, i)),
           kestdb::TextPieces(NumberText(coefficients, 1), kMultiplierWidth)}};
}

void PrintLink(std::FILE* stream, const LinkRow& row) {
  const Columns& columns = row.columns;
  std::fprintf(stream, "%6d  %14.14s  %#10.3g  %-44.44s\n", row.id, PieceAt(columns.name, 0),
               row.constant, PieceAt(columns.numbers, 0));
  for (std::size_t line = 1; line < columns.Lines(); ++line) {
    std::fprintf(stream, "%6.6s  %-14.14s  %10.10s  %-44.44s\n", "", PieceAt(columns.name, line),
                 "", PieceAt(columns.numbers, line));
  }
}

struct SetRow {
  int id;
  Columns columns;
};

SetRow SetRowOf(const CDSet& sets, long i) {
  return {ToInt(sets.m_vnAuxID[static_cast<std::size_t>(i)]),
          {kestdb::NamePieces(ElementAt(sets.m_vstrName, i)),
           kestdb::TextPieces(NumberText(ElementAt(sets.m_mdValues, i), 0), kMemberWidth)}};
}

void PrintSet(std::FILE* stream, const SetRow& row) {
  const Columns& columns = row.columns;
  std::fprintf(stream, "%6d  %14.14s  %-56.56s\n", row.id, PieceAt(columns.name, 0),
               PieceAt(columns.numbers, 0));
  for (std::size_t line = 1; line < columns.Lines(); ++line) {
    std::fprintf(stream, "%6.6s  %-14.14s  %-56.56s\n", "", PieceAt(columns.name, line),
                 PieceAt(columns.numbers, line));
  }
}

struct FunctionRow {
  int id;
  std::string text;
};

FunctionRow FunctionRowOf(const CDEqn& functions, long i) {
  return {ToInt(functions.m_vnAuxID[static_cast<std::size_t>(i)]),
          ElementAt(functions.m_vstrName, i) + "(" + ElementAt(functions.m_vstrArgs, i) +
              ")=" + ElementAt(functions.m_vstrEquation, i)};
}

void PrintFunction(std::FILE* stream, const FunctionRow& row) {
  std::fprintf(stream, "%6d  ", row.id);
  kestdb::PrintCut(stream, row.text, kFunctionWidth, kFunctionIndent);
}

}  // namespace

void CDLink::Dump(POD* pod, std::FILE* stream, int nTask) try {
  kestdb::ReportTable<CDLink>(pod, stream, nTask, [&](const CDLink& links) {
    const auto rows =
        kestdb::TableRows(links.m_vnAuxID.size(), [&](long i) { return LinkRowOf(links, i); });
    kestdb::PrintTable(
        stream, "                                  LINK INFORMATION\n",
        {"  ID         Name        Constant                   Multipliers\n",
         "------  --------------  ----------  --------------------------------------------\n"},
        rows, PrintLink);
  });
}
LOG_AND_RETHROW

void CDEqn::Dump(POD* pod, std::FILE* stream, int nTask) try {
  kestdb::ReportTable<CDEqn>(pod, stream, nTask, [&](const CDEqn& functions) {
    const auto rows = kestdb::TableRows(functions.m_vnAuxID.size(),
                                        [&](long i) { return FunctionRowOf(functions, i); });
    kestdb::PrintTable(
        stream, "                          SYNTHETIC FUNCTION INFORMATION\n",
        {"  ID                                   Function\n",
         "------  ------------------------------------------------------------------------\n"},
        rows, PrintFunction);
  });
}
LOG_AND_RETHROW

void CDSet::Dump(POD* pod, std::FILE* stream, int nTask) try {
  kestdb::ReportTable<CDSet>(pod, stream, nTask, [&](const CDSet& sets) {
    const auto rows =
        kestdb::TableRows(sets.m_vnAuxID.size(), [&](long i) { return SetRowOf(sets, i); });
    kestdb::PrintTable(
        stream, "                            DISCRETE SET INFORMATION\n",
        {"  ID         Name                                 Members\n",
         "------  --------------  --------------------------------------------------------\n"},
        rows, PrintSet);
  });
}
LOG_AND_RETHROW
