#include "definition/GPoint.h"

#include <algorithm>

#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/PersistentClassImpl.h"
#include "store/podcheck.h"
#include "store/report.h"

template <>
struct kestdb::ClassOf<CGPoint> {
  static constexpr vbINT32 Index = CGPoint::m_nGPOINT_INDX;
  static constexpr vbINT32 Version = CGPoint::m_nGPOINT_VER;
  static constexpr NoKeys<CGPoint> Keys{};
  static constexpr auto Fields = [](auto& file, auto& point) {
    file(point.m_vnUsed, point.m_vnRun, point.m_vnLocked, point.m_vDVars, point.m_vResps);
  };
};

template class vbPersistentClass<CGPoint>;

int CGPoint::NumUsedGPoints() const {
  return static_cast<int>(std::count(m_vnUsed.begin(), m_vnUsed.end(), 1));
}

void CGPoint::RemoveGPoints(POD* pod) try {
  kestdb::RequireIndexed(pod);
  const CLock lock(pod, 0);
  CGPoint points(pod);
  if (points.RemoveObject()) points.PutObject();
}
LOG_AND_RETHROW

namespace {

constexpr std::size_t kValuesInLine = 5;
constexpr int kValueWidth = 14;
constexpr int kFlagsWidth = 19;
constexpr int kBarWidth = 79;

bool IsSet(const std::vector<vbINT32>& flags, std::size_t row) {
  return row < flags.size() && flags[row] == 1;
}

/// The values of a row, and blanks for those up to `columns` that it lacks.
void PrintValues(std::FILE* stream, const std::vector<vbFLOAT64>& row, std::size_t columns) {
  for (std::size_t i = 0; i < columns; ++i) {
    if (i > 0 && i % kValuesInLine == 0) std::fprintf(stream, "\n%*s", kFlagsWidth, "");
    if (i < row.size()) {
      std::fprintf(stream, "%12.4g  ", double{row[i]});
    } else {
      std::fprintf(stream, "%*s", kValueWidth, "");
    }
  }
}

void PrintPoint(std::FILE* stream, const CGPoint& points, std::size_t row, std::size_t columns) {
  std::fprintf(stream, "%4d  ", static_cast<int>(row) + 1);
  std::fprintf(stream, "%s", IsSet(points.m_vnLocked, row) ? "  y     " : "  n     ");
  std::fprintf(stream, "%s", IsSet(points.m_vnRun, row) ? " y   " : " n   ");
  static const std::vector<vbFLOAT64> kNoValues;
  PrintValues(stream, row < points.m_vResps.size() ? points.m_vResps[row] : kNoValues, columns);
  std::fprintf(stream, "\n");
}

std::size_t LongestRow(const std::vector<std::vector<vbFLOAT64>>& rows) {
  std::size_t longest = 0;
  for (const auto& row : rows) longest = std::max(longest, row.size());
  return longest;
}

}  // namespace

void CGPoint::Dump(POD* pod, std::FILE* stream) try {
  kestdb::RequireReportable(pod, stream);
  const CLock lock(pod, 0);
  CGPoint points(pod);
  if (!points.GetObject()) Throw<CGetObject>();
  std::fprintf(stream, "\n\n                               DESIGN POINT INFORMATION\n");
  kestdb::PrintBar(stream, '=', kBarWidth);
  std::fprintf(stream, " Pnt  Locked  Run                           Response Values\n");
  std::fprintf(stream,
               "----  ------  ---  ------------------------------------------------------------\n");
  const std::size_t columns = LongestRow(points.m_vResps);
  for (std::size_t row = 0; row < points.m_vnUsed.size(); ++row) {
    PrintPoint(stream, points, row, columns);
  }
  kestdb::PrintBar(stream, '-', kBarWidth);
}
LOG_AND_RETHROW
