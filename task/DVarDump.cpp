#include <algorithm>
#include <string>
#include <vector>

#include "definition/DefinitionReport.h"
#include "store/KestErr.h"
#include "store/walk.h"
#include "task/DEqn.h"
#include "task/DLink.h"
#include "task/DSet.h"
#include "task/DVar.h"
#include "task/TableReport.h"
#include "task/Task.h"
#include "task/TaskReport.h"

namespace {

using kestdb::ElementAt;
using kestdb::Entry;
using kestdb::ToInt;

constexpr int kInteger = -1;

/// The variables of a task, and the definitions that they refer to.
struct Report {
  Report(POD* pod, std::FILE* output, const CDVar& table)
      : stream(output),
        task(ToInt(table.m_nID)),
        vars(table),
        functions(pod),
        sets(pod),
        links(pod) {}

  const std::string& NameOf(const Entry& entry) const {
    return kestdb::VariableName(vars, entry.kind, entry.position);
  }

  std::FILE* stream;
  int task;
  const CDVar& vars;
  std::vector<Entry> entries;
  CDEqn functions;
  CDSet sets;
  CDLink links;
};

// ---- Definitions ----

[[noreturn]] void FailFunctions(const Report& report) {
  std::fprintf(report.stream,
               "ERROR: Could not dereference equation data for task (%d) design variables\n",
               report.task);
  Throw<CObjectNotFound>();
}

[[noreturn]] void FailSets(const Report& report) {
  std::fprintf(report.stream,
               "ERROR: Could not dereference set data for task (%d) design variables\n",
               report.task);
  Throw<CObjectNotFound>();
}

[[noreturn]] void FailLinks(const Report& report) {
  std::fprintf(report.stream,
               "ERROR: Could not dereference link data for task (%d) design variables\n",
               report.task);
  Throw<CObjectNotFound>();
}

/// Every task has these records, also one whose variables need none of them.
void LoadDefinitions(Report& report) {
  if (!kestdb::LoadByID(report.functions, report.task)) FailFunctions(report);
  if (!kestdb::LoadByID(report.sets, report.task)) FailSets(report);
  if (!kestdb::LoadByID(report.links, report.task)) FailLinks(report);
}

// ---- The table ----

long SetOf(const CDVar& vars, long position) {
  return ElementAt(vars.m_vnDiscreteRef, position);
}

bool IsDiscrete(const CDVar& vars, const Entry& entry) {
  if (entry.kind != vbIndependentVar) return false;
  const long set = SetOf(vars, entry.position);
  return set != 0 && set != kInteger;
}

bool IsInteger(const CDVar& vars, const Entry& entry) {
  return entry.kind == vbIndependentVar && SetOf(vars, entry.position) == kInteger;
}

void PrintIndependent(const Report& report, const Entry& entry, const std::string& name) {
  const CDVar& vars = report.vars;
  const long at = entry.position;
  const bool discrete = IsDiscrete(vars, entry);
  const char* kind = discrete ? "IDVar*" : IsInteger(vars, entry) ? "IDVar+" : "IDVar ";
  const std::string set = discrete ? std::to_string(SetOf(vars, at)) : "none";
  std::fprintf(report.stream, "%8d  %6.6s %6.6s  %14.14s  %5d  %7.7s  %#11.5g %#11.5g\n",
               entry.sequence, kind, kestdb::YesOrNo(entry.IsRandom()), name.c_str(),
               ToInt(ElementAt(vars.m_vnIndIDs, at)), set.c_str(),
               double{ElementAt(vars.m_vfIndLower, at)}, double{ElementAt(vars.m_vfIndUpper, at)});
}

void PrintLinked(const Report& report, const Entry& entry, const std::string& name) {
  const CDVar& vars = report.vars;
  const long at = entry.position;
  std::fprintf(report.stream, "%8d  LDVar  %6.6s  %14.14s  %5d  %7d  %#11.5g %#11.5g\n",
               entry.sequence, kestdb::YesOrNo(entry.IsRandom()), name.c_str(),
               ToInt(ElementAt(vars.m_vnLinkIDs, at)), ToInt(ElementAt(vars.m_vnLinkRef, at)),
               double{ElementAt(vars.m_vfLinkLower, at)},
               double{ElementAt(vars.m_vfLinkUpper, at)});
}

void PrintSynthetic(const Report& report, const Entry& entry, const std::string& name) {
  const CDVar& vars = report.vars;
  const long at = entry.position;
  std::fprintf(report.stream, "%8d  SDvar  %6.6s  %14.14s  %5d  %7d  %#11.5g %#11.5g\n",
               entry.sequence, kestdb::YesOrNo(entry.IsRandom()), name.c_str(),
               ToInt(ElementAt(vars.m_vnSynIDs, at)), ToInt(ElementAt(vars.m_vnSynRef, at)),
               double{ElementAt(vars.m_vfSynLower, at)}, double{ElementAt(vars.m_vfSynUpper, at)});
}

void PrintConstant(const Report& report, const Entry& entry, const std::string& name) {
  std::fprintf(report.stream, "%8d  CDVar  %6.6s  %14.14s  %5d\n", entry.sequence,
               kestdb::YesOrNo(entry.IsRandom()), name.c_str(),
               ToInt(ElementAt(report.vars.m_vnConstIDs, entry.position)));
}

[[noreturn]] void FailKind(const Report& report, const Entry& entry) {
  std::fprintf(report.stream, "%8d   ERROR - invalid DVar type (%d)\n", entry.sequence, entry.kind);
  Throw<CInvalidType>();
}

void PrintEntry(const Report& report, const Entry& entry) {
  if (entry.kind < vbIndependentVar || entry.kind > vbConstantVar) FailKind(report, entry);
  const std::vector<std::string> name = kestdb::NamePieces(report.NameOf(entry));
  switch (entry.kind) {
    case vbIndependentVar:
      PrintIndependent(report, entry, name.front());
      break;
    case vbLinkedVar:
      PrintLinked(report, entry, name.front());
      break;
    case vbSyntheticVar:
      PrintSynthetic(report, entry, name.front());
      break;
    default:
      PrintConstant(report, entry, name.front());
  }
  kestdb::PrintNameRest(report.stream, name, kestdb::kNameIndent);
}

void PrintLegends(const Report& report) {
  const auto any = [&report](auto is) {
    return std::any_of(report.entries.begin(), report.entries.end(),
                       [&](const Entry& entry) { return is(report.vars, entry); });
  };
  const bool integer = any(IsInteger);
  const bool discrete = any(IsDiscrete);
  if (integer) std::fprintf(report.stream, "+ - integer  ");
  if (discrete) std::fprintf(report.stream, "* - discrete   ");
  if (integer || discrete) std::fprintf(report.stream, "\n");
}

void PrintTable(const Report& report) {
  kestdb::PrintTableHead(
      report.stream, "                          DESIGN VARIABLE INFORMATION\n",
      {"Transfer                                         Auxil      Lower       Upper\n",
       "Sequence   Type  Random       Name       DB ID   DB ID      Bound       Bound\n",
       "--------  ------ ------  --------------  -----  -------  ----------- -----------\n"});
  for (const Entry& entry : report.entries) PrintEntry(report, entry);
  PrintLegends(report);
}

// ---- The sections ----

void PrintScaling(const Report& report) {
  const auto scaleOf = [&report](const Entry& entry) {
    return double{ElementAt(report.vars.m_vfIndScale, entry.position)};
  };
  kestdb::PrintSection(
      report.entries,
      [&](const Entry& entry) { return entry.kind == vbIndependentVar && scaleOf(entry) != 0.0; },
      [&] {
        kestdb::PrintHeading(
            report.stream, "                             User Supplied Scaling\n",
            {"Transfer                     Scale\n", "Sequence       Name         Factor\n",
             "--------  --------------  -----------\n"});
      },
      [&](const Entry& entry) {
        constexpr int indent = 10;
        const std::vector<std::string> name = kestdb::NamePieces(report.NameOf(entry));
        std::fprintf(report.stream, "%8d  %14.14s  %#11.5g\n", entry.sequence, name.front().c_str(),
                     scaleOf(entry));
        kestdb::PrintNameRest(report.stream, name, indent);
      });
}

void PrintRandomRow(const Report& report, const Entry& entry) {
  constexpr long unknown = -1;
  const std::vector<std::string> name =
      kestdb::NamePieces(report.NameOf(entry), kestdb::kRandomNameWidth);
  const auto variable = static_cast<std::size_t>(entry.random);
  std::fprintf(
      report.stream, "%5d  %-6.6s  %22.22s  %22.22s\n", entry.sequence, name.front().c_str(),
      kestdb::RandomParameterText(entry.parameter),
      kestdb::DistributionText(kestdb::ElementOr(report.vars.m_vnRandDist, variable, unknown)));
  kestdb::PrintNameRest(report.stream, name, kestdb::kRandomNameIndent);
}

void PrintRandom(const Report& report) {
  kestdb::PrintSection(
      report.entries, [](const Entry& entry) { return entry.IsRandom(); },
      [&] {
        kestdb::PrintHeading(report.stream, "                            RANDOM DESIGN VARIABLES\n",
                             {" DVar  Name       Random Parameter          Distribution     \n",
                              "-----  ------  ----------------------  ----------------------\n"});
      },
      [&](const Entry& entry) { PrintRandomRow(report, entry); });
}

[[noreturn]] void FailLinkedSubject(const Report& report, const Entry& entry) {
  std::fprintf(report.stream, "ERROR: Invalid subject type for linked variable %d\n",
               entry.sequence);
  Throw<CInvalidSubject>();
}

/// The link of an entry, on independent variables and constants.
std::string LinkOf(const Report& report, const Entry& entry) {
  const CDVar& vars = report.vars;
  const long at = entry.position;
  const long link = kestdb::PositionOf(report.links.m_vnAuxID, ElementAt(vars.m_vnLinkRef, at));
  if (link < 0) FailLinks(report);
  return kestdb::LinkText(
      ElementAt(report.links.m_mdCoef, link),
      kestdb::ArgumentTexts(ElementAt(vars.m_mnLinkSubj, at), ElementAt(vars.m_mnLinkType, at), {},
                            [&](int kind, long position) {
                              if (kind != vbIndependentVar && kind != vbConstantVar) {
                                FailLinkedSubject(report, entry);
                              }
                              return kestdb::VariableName(vars, kind, position);
                            }));
}

void PrintLinks(const Report& report) {
  kestdb::PrintSection(
      report.entries, [](const Entry& entry) { return entry.kind == vbLinkedVar; },
      [&] {
        kestdb::PrintHeading(
            report.stream, "                            LINKED DESIGN VARIABLES\n",
            {"Transfer\n", "Sequence       Name                          Link Definition\n",
             kestdb::kDefinitionRule});
      },
      [&](const Entry& entry) {
        kestdb::PrintDefinition(report.stream, entry.sequence, report.NameOf(entry),
                                LinkOf(report, entry));
      });
}

[[noreturn]] void FailSyntheticSubject(const Report& report, const Entry& entry) {
  std::fprintf(report.stream, "ERROR: Invalid subject type for synthetic variable %d\n",
               entry.sequence);
  Throw<CInvalidSubject>();
}

/// The function call of an entry, on all variables but synthetic ones.
std::string FunctionOf(const Report& report, const Entry& entry) {
  const CDVar& vars = report.vars;
  const long at = entry.position;
  const long function =
      kestdb::PositionOf(report.functions.m_vnAuxID, ElementAt(vars.m_vnSynRef, at));
  if (function < 0) FailFunctions(report);
  return kestdb::FunctionText(
      ElementAt(report.functions.m_vstrName, function),
      kestdb::ArgumentTexts(ElementAt(vars.m_mnSynSubj, at), ElementAt(vars.m_mnSynType, at),
                            kestdb::LengthsAt(vars.m_mnSynLen, at), [&](int kind, long position) {
                              if (kind != vbIndependentVar && kind != vbLinkedVar &&
                                  kind != vbConstantVar) {
                                FailSyntheticSubject(report, entry);
                              }
                              return kestdb::VariableName(vars, kind, position);
                            }));
}

void PrintFunctions(const Report& report) {
  kestdb::PrintSection(
      report.entries, [](const Entry& entry) { return entry.kind == vbSyntheticVar; },
      [&] {
        kestdb::PrintHeading(
            report.stream, "                           SYNTHETIC DESIGN VARIABLES\n",
            {"Transfer\n", "Sequence       Name                              Function\n",
             kestdb::kDefinitionRule});
      },
      [&](const Entry& entry) {
        kestdb::PrintDefinition(report.stream, entry.sequence, report.NameOf(entry),
                                FunctionOf(report, entry));
      });
}

const std::vector<vbFLOAT64>& MembersOf(const Report& report, const Entry& entry) {
  const long set = kestdb::PositionOf(report.sets.m_vnAuxID, SetOf(report.vars, entry.position));
  if (set < 0) FailSets(report);
  return ElementAt(report.sets.m_mdValues, set);
}

void PrintSets(const Report& report) {
  kestdb::PrintSection(
      report.entries, [&](const Entry& entry) { return IsDiscrete(report.vars, entry); },
      [&] {
        kestdb::PrintHeading(
            report.stream, "                           DISCRETE DESIGN VARIABLES\n",
            {"Transfer\n", "Sequence       Name                              Members\n",
             kestdb::kDefinitionRule});
      },
      [&](const Entry& entry) {
        kestdb::PrintDefinition(report.stream, entry.sequence, report.NameOf(entry),
                                kestdb::SetText(MembersOf(report, entry)));
      });
}

}  // namespace

void CDVar::Dump(POD* pod, std::FILE* stream, int nTask) try {
  kestdb::ReportTable<CDVar>(pod, stream, nTask, [&](const CDVar& vars) {
    Report report(pod, stream, vars);
    LoadDefinitions(report);
    report.entries = kestdb::EntriesOf(vars, vars.m_vnRandParam);
    PrintTable(report);
    PrintScaling(report);
    PrintRandom(report);
    PrintLinks(report);
    PrintFunctions(report);
    PrintSets(report);
    kestdb::PrintEnd(stream);
  });
}
LOG_AND_RETHROW
