// Private to the library, not installed.
#pragma once

#include <string>
#include <valarray>
#include <vector>

#include "results/DPoint.h"
#include "store/vbscalar.h"
#include "task/DResp.h"
#include "task/DVar.h"

// The values of a design point by name, as reports show them.

namespace kestdb {

/// The variables or responses of a kind at a point: their type word, names and values.
/// Positions outside the kind's table THROW CInvalidArgument.
struct PointValues {
  const char* type;
  const std::vector<std::string>& names;
  const std::valarray<double>& values;

  const std::string& NameAt(long position) const;
  /// Null where the point has none: one that was not analysed has no values of responses.
  const double* ValueAt(long position) const;
};

/// The variables of a kind. THROWS CInvalidType for a kind that is no variable's.
PointValues VariablesAt(const CDPoint& point, const CDVar& vars, const vbINT32& kind);

/// The responses of a kind. THROWS CInvalidType for a kind that is no response's.
PointValues ResponsesAt(const CDPoint& point, const CDResp& resps, const vbINT32& kind);

}  // namespace kestdb
