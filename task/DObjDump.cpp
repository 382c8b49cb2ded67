#include <string>
#include <vector>

#include "definition/DefinitionReport.h"
#include "store/KestErr.h"
#include "task/DObj.h"
#include "task/SubjectReport.h"
#include "task/TableReport.h"
#include "task/TaskTables.h"

namespace {

using kestdb::ElementAt;

struct Row {
  std::vector<std::string> name;
  int position;
  const char* label;
  std::string worst;
  double weight;
  std::string goal;
};

std::string ValueText(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%#13.6g", value);
  return text;
}

std::string WorstText(const CDObj& terms, long i) {
  return ElementAt(terms.m_vnHasWorst, i) == 0 ? "Undefined"
                                               : ValueText(ElementAt(terms.m_vfWorst, i));
}

std::string GoalText(const CDObj& terms, long i) {
  switch (ElementAt(terms.m_vnGoal, i)) {
    case 0:
      return "Minimize";
    case 1:
      return "Maximize";
    case 2:
      return ValueText(ElementAt(terms.m_vfTarget, i));
    default:
      return "ERROR";
  }
}

Row RowOf(const CDObj& terms, const kestdb::Subjects& subjects, long i) {
  const vbINT32& kind = ElementAt(terms.m_vnSubjType, i);
  const vbINT32& position = ElementAt(terms.m_vnSubj, i);
  return {subjects.Name(kind, position), kestdb::ToInt(position),        kestdb::SubjectLabel(kind),
          WorstText(terms, i),           ElementAt(terms.m_vfWeight, i), GoalText(terms, i)};
}

void PrintRow(std::FILE* stream, const Row& row) {
  std::fprintf(stream, "%14.14s  %7d  %7.7s  %13.13s  %#13.6g  %13.13s\n", row.name.front().c_str(),
               row.position, row.label, row.worst.c_str(), row.weight, row.goal.c_str());
  kestdb::PrintRestOfName(stream, row.name);
}

}  // namespace

void CDObj::Dump(POD* pod, std::FILE* stream, int nTask) try {
  kestdb::ReportTable<CDObj>(pod, stream, nTask, [&](const CDObj& terms) {
    const kestdb::Subjects subjects(pod, nTask);
    const auto rows =
        kestdb::TableRows(terms.m_vnSubj.size(), [&](long i) { return RowOf(terms, subjects, i); });
    kestdb::PrintTable(
        stream, "                          DESIGN OBJECTIVE INFORMATION\n",
        {"    Subject     Subject  Subject      Worst          Weight\n",
         "     Name        Index     Type       Value          Factor         Target\n",
         "--------------  -------  -------  -------------  -------------  -------------\n"},
        rows, PrintRow);
  });
}
LOG_AND_RETHROW
