#include <string>
#include <vector>

#include "definition/DefinitionReport.h"
#include "store/KestErr.h"
#include "task/DCons.h"
#include "task/SubjectReport.h"
#include "task/TableReport.h"
#include "task/Task.h"
#include "task/TaskTables.h"

namespace {

using kestdb::ElementAt;

struct Row {
  std::vector<std::string> name;
  int position;
  const char* label;
  const char* side;
  double bound;
  double scale;
};

/// The bounds of an independent variable are no constraints: it is no subject here.
vbINT32 SubjectKind(const vbINT32& kind) {
  constexpr vbINT32 none{0};
  return kind == vbIndependentVar ? none : kind;
}

Row RowOf(const CDCons& cons, const kestdb::Subjects& subjects, long i) {
  const vbINT32 kind = SubjectKind(ElementAt(cons.m_vnSubjType, i));
  const vbINT32& position = ElementAt(cons.m_vnSubj, i);
  return {subjects.Name(kind, position), kestdb::ToInt(position),
          kestdb::SubjectLabel(kind),    ElementAt(cons.m_vnMult, i) == -1 ? "Lower" : "Upper",
          ElementAt(cons.m_vfBound, i),  ElementAt(cons.m_vfScale, i)};
}

void PrintRow(std::FILE* stream, const Row& row) {
  std::fprintf(stream, "%14.14s  %9d  %7.7s  %7.7s  %#14.7g  %#14.7g\n", row.name.front().c_str(),
               row.position, row.label, row.side, row.bound, row.scale);
  kestdb::PrintRestOfName(stream, row.name);
}

}  // namespace

void CDCons::Dump(POD* pod, std::FILE* stream, int nTask) try {
  kestdb::ReportTable<CDCons>(pod, stream, nTask, [&](const CDCons& cons) {
    const kestdb::Subjects subjects(pod, nTask);
    const auto rows =
        kestdb::TableRows(cons.m_vnSubj.size(), [&](long i) { return RowOf(cons, subjects, i); });
    kestdb::PrintTable(
        stream, "                         DESIGN CONSTRAINT INFORMATION\n",
        {"    Subject      Subject   Subject                               Scale\n",
         "     Name         Index      Type    Bound        Limit          Factor\n",
         "--------------  ---------  -------  -------  --------------  --------------\n"},
        rows, PrintRow);
  });
}
LOG_AND_RETHROW
