#include <algorithm>
#include <string>
#include <vector>

#include "definition/Auxiliary.h"
#include "definition/DefinitionReport.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/podcheck.h"
#include "store/report.h"
#include "store/walk.h"

namespace {

using Definitions = std::vector<CAuxiliary>;

constexpr int kLink = 1;
constexpr int kEquation = 2;
constexpr int kSet = 4;

constexpr const char* kTableRule =
    "-----  ----------  -------------------------------------------------------------\n";

bool Has(const Definitions& all, int type) {
  return std::any_of(all.begin(), all.end(), [type](const CAuxiliary& definition) {
    return definition.m_nAuxType == type;
  });
}

std::string Number(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%g", value);
  return text;
}

/// The constant, then name and coefficient of each argument.
std::string LinkText(const CAuxiliary& link) {
  std::string text;
  for (std::size_t i = 0; i < link.m_vfCoef.size(); ++i) {
    if (i > 0) {
      text += " + ";
      if (i < link.m_vstrArgNames.size()) text += link.m_vstrArgNames[i];
      text += "*";
    }
    text += Number(link.m_vfCoef[i]);
  }
  return text;
}

std::string EquationText(const CAuxiliary& equation) {
  return equation.m_strName + "(" + equation.m_strArgs + ") = " + equation.m_strEquation;
}

std::string SetText(const CAuxiliary& set) {
  std::string text;
  for (std::size_t i = 0; i < set.m_vfValues.size(); ++i) {
    if (i > 0) text += ", ";
    text += Number(set.m_vfValues[i]);
  }
  return text;
}

void PrintNamedRow(std::FILE* stream, const CAuxiliary& definition, const std::string& text) {
  std::fprintf(stream, "%5d  %10.10s  ", kestdb::ToInt(definition.m_nID),
               definition.m_strName.c_str());
  kestdb::PrintCut(stream, text, 61, 19);
}

template <class Row>
void PrintRows(const Definitions& all, int type, Row row) {
  for (const CAuxiliary& definition : all) {
    if (definition.m_nAuxType == type) row(definition);
  }
}

void PrintLinks(std::FILE* stream, const Definitions& all) {
  std::fprintf(stream, "          Link\n");
  std::fprintf(stream, "DB ID     Name        Link Definition\n");
  std::fprintf(stream, "%s", kTableRule);
  PrintRows(all, kLink,
            [&](const CAuxiliary& link) { PrintNamedRow(stream, link, LinkText(link)); });
}

void PrintEquations(std::FILE* stream, const Definitions& all) {
  std::fprintf(stream, "DB ID     Equation\n");
  std::fprintf(
      stream, "-----  -------------------------------------------------------------------------\n");
  PrintRows(all, kEquation, [&](const CAuxiliary& equation) {
    std::fprintf(stream, "%5d  ", kestdb::ToInt(equation.m_nID));
    kestdb::PrintCut(stream, EquationText(equation), 73, 7);
  });
}

void PrintSets(std::FILE* stream, const Definitions& all) {
  std::fprintf(stream, "          Set\n");
  std::fprintf(stream, "DB ID     Name        Members\n");
  std::fprintf(stream, "%s", kTableRule);
  PrintRows(all, kSet, [&](const CAuxiliary& set) { PrintNamedRow(stream, set, SetText(set)); });
}

}  // namespace

void CAuxiliary::Dump(POD* pod, std::FILE* stream) try {
  kestdb::RequireReportable(pod, stream);
  const CLock lock(pod, 0);
  const Definitions all = kestdb::AllObjects<CAuxiliary>(pod);
  const bool links = Has(all, kLink);
  const bool equations = Has(all, kEquation);
  const bool sets = Has(all, kSet);
  if (!links && !equations && !sets) return;
  std::fprintf(stream, "                                Auxiliary Objects\n");
  kestdb::PrintBar(stream, '=');
  if (links) PrintLinks(stream, all);
  if (links && equations) kestdb::PrintBar(stream, '-');
  if (equations) PrintEquations(stream, all);
  if ((links || equations) && sets) kestdb::PrintBar(stream, '-');
  if (sets) PrintSets(stream, all);
  kestdb::PrintEnd(stream);
}
LOG_AND_RETHROW
