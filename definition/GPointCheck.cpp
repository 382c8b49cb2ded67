#include "control/DesignControl.h"
#include "definition/GPoint.h"
#include "environment/Logging.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/podcheck.h"

namespace {

/// Whether the chosen kind of task starts from the user's points.
bool AsksForUserPoints(const CDesignControl& control) {
  constexpr int userDefined = 11;
  switch (control.m_nTaskType) {
    case 0:
      return control.m_DGO.m_nMultiStart != 0;
    case 1:
      return control.m_RSA.m_nInitialDOE == userDefined;
    case 2:
      return control.m_DOE.m_nMethod == userDefined;
    default:
      return false;
  }
}

int Columns(const std::vector<std::vector<vbFLOAT64>>& rows) {
  return rows.empty() ? 0 : static_cast<int>(rows.front().size());
}

}  // namespace

bool CGPoint::CheckGPoints(POD* pod, int numDVars, int numResps) try {
  kestdb::RequireIndexed(pod);
  const CLock lock(pod, 0);
  CDesignControl control(pod);
  if (!control.GetObject()) Throw<CObjectNotFound>();
  if (!AsksForUserPoints(control)) return true;
  CGPoint points(pod);
  if (!points.GetObject()) Throw<CObjectNotFound>();
  bool fits = true;
  if (Columns(points.m_vDVars) != numDVars) {
    LError("(Design Points): Number of design variables (%d) does not match\n", numDVars);
    LPrint("     the number of columns (%d) in the design matrix.\n\n", Columns(points.m_vDVars));
    fits = false;
  }
  if (Columns(points.m_vResps) != numResps) {
    LError("(Design Points): Number of design responses (%d) does not match\n", numResps);
    LPrint("     the number of columns (%d) in the design matrix.\n\n", Columns(points.m_vResps));
    fits = false;
  }
  return fits;
}
LOG_AND_RETHROW
