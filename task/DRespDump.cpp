#include <algorithm>
#include <string>
#include <vector>

#include "definition/DefinitionReport.h"
#include "store/KestErr.h"
#include "store/walk.h"
#include "task/DEqn.h"
#include "task/DLink.h"
#include "task/DResp.h"
#include "task/DVar.h"
#include "task/TableReport.h"
#include "task/Task.h"
#include "task/TaskReport.h"

namespace {

using kestdb::ElementAt;
using kestdb::Entry;
using kestdb::ToInt;

/// A table of the same task; what the report needs of it isn't there without the record.
template <class Table>
class Sister {
 public:
  Sister(POD* pod, int task) : table_(pod), isStored_(kestdb::LoadByID(table_, task)) {}

  const Table& Get() const {
    if (!isStored_) Throw<CObjectNotFound>();
    return table_;
  }

 private:
  Table table_;
  bool isStored_;
};

/// The responses of a task, and the tables that they refer to.
struct Report {
  Report(POD* pod, std::FILE* output, const CDResp& table)
      : stream(output),
        resps(table),
        entries(kestdb::EntriesOf(table, table.m_vnRBOParam)),
        vars(pod, ToInt(table.m_nID)),
        functions(pod, ToInt(table.m_nID)),
        links(pod, ToInt(table.m_nID)) {}

  std::string NameOf(const Entry& entry) const { return resps.GetName(entry.kind, At(entry)); }
  /// No table is so long that a greater position could be in it.
  static int At(const Entry& entry) { return static_cast<int>(entry.position); }

  std::FILE* stream;
  const CDResp& resps;
  std::vector<Entry> entries;
  Sister<CDVar> vars;
  Sister<CDEqn> functions;
  Sister<CDLink> links;
};

// ---- The table ----

/// Older records don't tell which responses are Pass/Fail.
bool IsPassFail(const CDResp& resps, const Entry& entry) {
  return entry.kind == vbIndependentResp &&
         kestdb::ElementOr(resps.m_vnPassFail, static_cast<std::size_t>(entry.position), 0) != 0;
}

void PrintIndependent(const Report& report, const Entry& entry, const std::string& name) {
  const char* format = IsPassFail(report.resps, entry)
                           ? "%8d  IResp* %6.6s  %14.14s  %5d     none\n"
                           : "%8d  IResp  %6.6s  %14.14s  %5d     none\n";
  std::fprintf(report.stream, format, entry.sequence, kestdb::YesOrNo(entry.IsRandom()),
               name.c_str(), ToInt(ElementAt(report.resps.m_vnIndIDs, entry.position)));
}

void PrintLinked(const Report& report, const Entry& entry, const std::string& name) {
  std::fprintf(report.stream, "%8d  LResp  %6.6s  %14.14s  %5d  %7d\n", entry.sequence,
               kestdb::YesOrNo(entry.IsRandom()), name.c_str(),
               ToInt(ElementAt(report.resps.m_vnLinkIDs, entry.position)),
               ToInt(ElementAt(report.resps.m_vnLinkRef, entry.position)));
}

void PrintSynthetic(const Report& report, const Entry& entry, const std::string& name) {
  std::fprintf(report.stream, "%8d  SResp  %6.6s  %14.14s  %5d  %7d\n", entry.sequence,
               kestdb::YesOrNo(entry.IsRandom()), name.c_str(),
               ToInt(ElementAt(report.resps.m_vnSynIDs, entry.position)),
               ToInt(ElementAt(report.resps.m_vnSynRef, entry.position)));
}

[[noreturn]] void FailKind(const Report& report, const Entry& entry) {
  std::fprintf(report.stream, "%8d   ERROR - invalid DResp type (%d)\n", entry.sequence,
               entry.kind);
  Throw<CInvalidType>();
}

void PrintEntry(const Report& report, const Entry& entry) {
  if (entry.kind < vbIndependentResp || entry.kind > vbSyntheticResp) FailKind(report, entry);
  const std::vector<std::string> name = kestdb::NamePieces(report.NameOf(entry));
  switch (entry.kind) {
    case vbIndependentResp:
      PrintIndependent(report, entry, name.front());
      break;
    case vbLinkedResp:
      PrintLinked(report, entry, name.front());
      break;
    default:
      PrintSynthetic(report, entry, name.front());
  }
  kestdb::PrintNameRest(report.stream, name, kestdb::kNameIndent);
}

void PrintTable(const Report& report) {
  kestdb::PrintTableHead(report.stream, "                          DESIGN RESPONSE INFORMATION\n",
                         {"Transfer                                         Auxil\n",
                          "Sequence   Type  Random       Name       DB ID   DB ID\n",
                          "--------  ------ ------  --------------  -----  -------\n"});
  for (const Entry& entry : report.entries) PrintEntry(report, entry);
  const bool passFail =
      std::any_of(report.entries.begin(), report.entries.end(),
                  [&report](const Entry& entry) { return IsPassFail(report.resps, entry); });
  if (passFail) std::fprintf(report.stream, "* - pass/fail\n");
}

// ---- The sections ----

/// The text for a response's parameter, which may stand for a system too.
const char* ParameterText(int parameter) {
  switch (parameter) {
    case -5:
      return "  Parallel System POF ";
    case -4:
      return "   Series System POF  ";
    default:
      return kestdb::RandomParameterText(parameter);
  }
}

void PrintRandom(const Report& report) {
  kestdb::PrintSection(
      report.entries, [](const Entry& entry) { return entry.IsRandom(); },
      [&] {
        kestdb::PrintHeading(
            report.stream, "                                RANDOM RESPONSES\n",
            {"DResp  Name       Random Parameter   \n", "-----  ------  ----------------------\n"});
      },
      [&](const Entry& entry) {
        const std::vector<std::string> name =
            kestdb::NamePieces(report.NameOf(entry), kestdb::kRandomNameWidth);
        std::fprintf(report.stream, "%5d  %-6.6s  %22.22s\n", entry.sequence, name.front().c_str(),
                     ParameterText(entry.parameter));
        kestdb::PrintNameRest(report.stream, name, kestdb::kRandomNameIndent);
      });
}

/// The name of an argument: a variable or a response.
std::string SubjectName(const Report& report, int kind, long position) {
  if (kind <= vbConstantVar) return kestdb::VariableName(report.vars.Get(), kind, position);
  return kind == vbIndependentResp ? ElementAt(report.resps.m_vstrIndName, position)
                                   : ElementAt(report.resps.m_vstrLinkName, position);
}

[[noreturn]] void FailSyntheticSubject(const Report& report, const Entry& entry) {
  std::fprintf(report.stream, "ERROR: Invalid subject type for synthetic DResp %d\n",
               entry.sequence);
  Throw<CInvalidSubject>();
}

/// The function call of an entry, on variables and on responses that are not synthetic.
std::string FunctionOf(const Report& report, const Entry& entry) {
  const CDResp& resps = report.resps;
  const CDEqn& functions = report.functions.Get();
  const long at = entry.position;
  const long function = kestdb::PositionOf(functions.m_vnAuxID, ElementAt(resps.m_vnSynRef, at));
  if (function < 0) Throw<CObjectNotFound>();
  return kestdb::FunctionText(
      ElementAt(functions.m_vstrName, function),
      kestdb::ArgumentTexts(ElementAt(resps.m_mnSynSubj, at), ElementAt(resps.m_mnSynType, at),
                            kestdb::LengthsAt(resps.m_mnSynLen, at), [&](int kind, long position) {
                              if (kind < vbIndependentVar || kind > vbLinkedResp) {
                                FailSyntheticSubject(report, entry);
                              }
                              return SubjectName(report, kind, position);
                            }));
}

void PrintFunctions(const Report& report) {
  kestdb::PrintSection(
      report.entries, [](const Entry& entry) { return entry.kind == vbSyntheticResp; },
      [&] {
        kestdb::PrintHeading(
            report.stream, "                              SYNTHETIC RESPONSES\n",
            {"Transfer\n", "Sequence       Name                              Function\n",
             kestdb::kDefinitionRule});
      },
      [&](const Entry& entry) {
        kestdb::PrintDefinition(report.stream, entry.sequence, report.NameOf(entry),
                                FunctionOf(report, entry));
      });
}

[[noreturn]] void FailLinkedSubject(const Report& report, const Entry& entry) {
  std::fprintf(report.stream, "ERROR: Invalid subject type for linked DResp %d\n", entry.sequence);
  Throw<CInvalidSubject>();
}

/// The link of an entry, on variables and on independent responses.
std::string LinkOf(const Report& report, const Entry& entry) {
  const CDResp& resps = report.resps;
  const CDLink& links = report.links.Get();
  const long at = entry.position;
  const long link = kestdb::PositionOf(links.m_vnAuxID, ElementAt(resps.m_vnLinkRef, at));
  if (link < 0) Throw<CObjectNotFound>();
  return kestdb::LinkText(
      ElementAt(links.m_mdCoef, link),
      kestdb::ArgumentTexts(ElementAt(resps.m_mnLinkSubj, at), ElementAt(resps.m_mnLinkType, at),
                            {}, [&](int kind, long position) {
                              if (kind < vbIndependentVar || kind > vbIndependentResp) {
                                FailLinkedSubject(report, entry);
                              }
                              return SubjectName(report, kind, position);
                            }));
}

void PrintLinks(const Report& report) {
  kestdb::PrintSection(
      report.entries, [](const Entry& entry) { return entry.kind == vbLinkedResp; },
      [&] {
        kestdb::PrintHeading(
            report.stream, "                                LINKED RESPONSES\n",
            {"Transfer\n", "Sequence       Name                          Link Definition\n",
             kestdb::kDefinitionRule});
      },
      [&](const Entry& entry) {
        kestdb::PrintDefinition(report.stream, entry.sequence, report.NameOf(entry),
                                LinkOf(report, entry));
      });
}

}  // namespace

void CDResp::Dump(POD* pod, std::FILE* stream, int nTask) try {
  kestdb::ReportTable<CDResp>(pod, stream, nTask, [&](const CDResp& resps) {
    const Report report(pod, stream, resps);
    PrintTable(report);
    PrintRandom(report);
    PrintFunctions(report);
    PrintLinks(report);
    kestdb::PrintEnd(stream);
  });
}
LOG_AND_RETHROW
