#include <string>
#include <valarray>
#include <vector>

#include "definition/DefinitionReport.h"
#include "environment/Utilities.h"
#include "maintenance/Lock.h"
#include "results/DPoint.h"
#include "store/KestErr.h"
#include "store/podcheck.h"
#include "store/report.h"
#include "task/DResp.h"
#include "task/DVar.h"
#include "task/Task.h"
#include "task/TaskTables.h"

namespace {

constexpr int kNameWidth = 14;

struct Row {
  std::string name;
  const char* type;
  const double* value;  ///< Null where the point has none
};

/// The variables or responses of a kind: their type word, names and values.
struct Kind {
  const char* type;
  const std::vector<std::string>& names;
  const std::valarray<double>& values;
};

/// A point that was not analysed has no values of responses.
Row RowOf(const Kind& kind, long position) {
  const bool hasValues = kind.values.size() > 0;
  return {kestdb::ElementAt(kind.names, position), kind.type,
          hasValues ? &kestdb::ElementAt(kind.values, position) : nullptr};
}

Kind VariableKind(const CDVar& vars, const CDPoint& point, const vbINT32& kind) {
  switch (kind) {
    case vbIndependentVar:
      return {"IDVar", vars.m_vstrIndName, point.m_IDVar};
    case vbLinkedVar:
      return {"LDVar", vars.m_vstrLinkName, point.m_LDVar};
    case vbSyntheticVar:
      return {"SDVar", vars.m_vstrSynName, point.m_SDVar};
    case vbConstantVar:
      return {"CDVar", vars.m_vstrConstName, point.m_CDVar};
    default:
      Throw<CInvalidType>();
  }
}

Kind ResponseKind(const CDResp& resps, const CDPoint& point, const vbINT32& kind) {
  switch (kind) {
    case vbIndependentResp:
      return {"IResp", resps.m_vstrIndName, point.m_IResp};
    case vbLinkedResp:
      return {"LResp", resps.m_vstrLinkName, point.m_LResp};
    case vbSyntheticResp:
      return {"SResp", resps.m_vstrSynName, point.m_SResp};
    default:
      Throw<CInvalidType>();
  }
}

/// The rows of a table of the task in its order, which is that of transfer.
template <class Table, class KindOf>
void AddRows(std::vector<Row>& rows, const Table& table, const CDPoint& point, KindOf kindOf) {
  for (std::size_t i = 0; i < table.m_vnType.size(); ++i) {
    const long position = kestdb::ElementAt(table.m_vnSeq, static_cast<long>(i));
    rows.push_back(RowOf(kindOf(table, point, table.m_vnType[i]), position));
  }
}

/// A long name goes on in lines of its own.
void PrintRow(std::FILE* stream, const Row& row) {
  std::string rest = row.name;
  std::string piece;
  CKUtil::SplitName(rest, kNameWidth, piece);
  if (row.value != nullptr) {
    std::fprintf(stream, "%14.14s   %s  %#14.7g\n", piece.c_str(), row.type, *row.value);
  } else {
    std::fprintf(stream, "%14.14s   %s         *      \n", piece.c_str(), row.type);
  }
  while (!rest.empty() && CKUtil::SplitName(rest, kNameWidth, piece)) {
    std::fprintf(stream, "%-14.14s\n", piece.c_str());
  }
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
  AddRows(rows, vars, point, VariableKind);
  AddRows(rows, resps, point, ResponseKind);

  std::fprintf(stream, "                                 DESIGN POINT %d\n", pointID);
  kestdb::PrintBar(stream, '=');
  std::fprintf(stream, "     Name        Type        Value\n");
  std::fprintf(stream, "--------------  ------  --------------\n");
  for (const Row& row : rows) PrintRow(stream, row);
  kestdb::PrintEnd(stream);
}
LOG_AND_RETHROW
