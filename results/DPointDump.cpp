#include <cstdio>
#include <string>
#include <vector>

#include "maintenance/Lock.h"
#include "results/DPoint.h"
#include "results/PointValues.h"
#include "store/KestErr.h"
#include "store/podcheck.h"
#include "store/report.h"
#include "task/DResp.h"
#include "task/DVar.h"
#include "task/SubjectReport.h"
#include "task/TableReport.h"
#include "task/TaskTables.h"

namespace {

struct Row {
  const std::string* name;
  const char* type;
  const double* value;  ///< Null where the point has none
};

Row RowOf(const kestdb::PointValues& kind, long position) {
  return {&kind.NameAt(position), kind.type, kind.ValueAt(position)};
}

/// The rows of a table of the task in its order, which is that of transfer.
template <class Table, class KindOf>
void AddRows(std::vector<Row>& rows, const Table& table, const CDPoint& point, KindOf kindOf) {
  for (std::size_t i = 0; i < table.m_vnType.size(); ++i) {
    const long position = kestdb::ElementAt(table.m_vnSeq, static_cast<long>(i));
    rows.push_back(RowOf(kindOf(point, table, table.m_vnType[i]), position));
  }
}

/// A long name goes on in lines of its own.
void PrintRow(std::FILE* stream, const Row& row) {
  const std::vector<std::string> name = kestdb::NamePieces(*row.name);
  if (row.value != nullptr) {
    std::fprintf(stream, "%14.14s   %s  %#14.7g\n", name.front().c_str(), row.type, *row.value);
  } else {
    std::fprintf(stream, "%14.14s   %s         *      \n", name.front().c_str(), row.type);
  }
  kestdb::PrintRestOfName(stream, name);
}

}  // namespace

void CDPoint::Dump(POD* pod, std::FILE* stream, int taskID, int pointID) try {
  kestdb::RequireReportable(pod, stream);
  const CLock lock(pod, 0);
  CDPoint point(pod);
  CDVar vars(pod);
  CDResp resps(pod);
  point.m_nTaskID = vars.m_nID = resps.m_nID = taskID;
  point.m_nPointID = pointID;
  if (!point.GetObject() || !vars.GetObject() || !resps.GetObject()) Throw<CGetObject>();
  std::vector<Row> rows;
  AddRows(rows, vars, point, kestdb::VariablesAt);
  AddRows(rows, resps, point, kestdb::ResponsesAt);

  std::fprintf(stream, "                                 DESIGN POINT %d\n", pointID);
  kestdb::PrintBar(stream, '=');
  std::fprintf(stream, "     Name        Type        Value\n");
  std::fprintf(stream, "--------------  ------  --------------\n");
  for (const Row& row : rows) PrintRow(stream, row);
  kestdb::PrintEnd(stream);
}
LOG_AND_RETHROW
