#include "task/TaskReport.h"

#include <algorithm>

#include "environment/Utilities.h"
#include "store/KestErr.h"
#include "task/TableReport.h"
#include "task/Task.h"

namespace {

constexpr int kDefinitionWidth = 54;

std::string Number(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%g", value);
  return text;
}

const char* PieceAt(const std::vector<std::string>& pieces, std::size_t line) {
  return line < pieces.size() ? pieces[line].c_str() : "";
}

}  // namespace

const std::string& kestdb::VariableName(const CDVar& vars, int kind, long position) {
  switch (kind) {
    case vbIndependentVar:
      return ElementAt(vars.m_vstrIndName, position);
    case vbLinkedVar:
      return ElementAt(vars.m_vstrLinkName, position);
    case vbSyntheticVar:
      return ElementAt(vars.m_vstrSynName, position);
    case vbConstantVar:
      return ElementAt(vars.m_vstrConstName, position);
    default:
      Throw<CInvalidType>();
  }
}

long kestdb::PositionOf(const std::vector<vbINT32>& ids, const vbINT32& id) {
  const auto place = std::find(ids.begin(), ids.end(), id);
  return place == ids.end() ? -1 : static_cast<long>(place - ids.begin());
}

std::string kestdb::LinkText(const std::vector<vbFLOAT64>& coefficients,
                             const std::vector<std::string>& arguments) {
  std::string text = Number(ElementAt(coefficients, 0));
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const double multiplier = ElementAt(coefficients, static_cast<long>(i) + 1);
    text += " + " + arguments[i] + "*" + Number(multiplier);
  }
  return text;
}

std::string kestdb::FunctionText(const std::string& function,
                                 const std::vector<std::string>& arguments) {
  std::string text = function + "(";
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    if (i > 0) text += ", ";
    text += arguments[i];
  }
  return text + ")";
}

std::string kestdb::SetText(const std::vector<vbFLOAT64>& members) {
  std::string text;
  for (std::size_t i = 0; i < members.size(); ++i) {
    if (i > 0) text += ", ";
    text += Number(members[i]);
  }
  return text;
}

void kestdb::PrintNameRest(std::FILE* stream, const std::vector<std::string>& pieces, int indent) {
  for (std::size_t i = 1; i < pieces.size(); ++i) {
    std::fprintf(stream, "%*s%s\n", indent, "", pieces[i].c_str());
  }
}

void kestdb::PrintDefinition(std::FILE* stream, int sequence, const std::string& name,
                             const std::string& definition) {
  const std::vector<std::string> names = NamePieces(name);
  const std::vector<std::string> lines = TextPieces(definition, kDefinitionWidth);
  std::fprintf(stream, "%8d  %14.14s  %s\n", sequence, names.front().c_str(),
               lines.front().c_str());
  for (std::size_t i = 1; i < std::max(names.size(), lines.size()); ++i) {
    std::fprintf(stream, "%8s  %-14.14s  %s\n", "", PieceAt(names, i), PieceAt(lines, i));
  }
}
