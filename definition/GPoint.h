#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "store/PersistentClass.h"
#include "store/api.h"
#include "store/vbscalar.h"

class CGPoint;
extern template class KESTDB_API vbPersistentClass<CGPoint>;

/// The user's table of design points, one singleton object of a study: a row for each point. The
/// five vectors are as long as there are points; rows of values may differ in length.
class KESTDB_API CGPoint : public vbPersistentClass<CGPoint> {
 public:
  using vbPersistentClass::vbPersistentClass;

  static constexpr vbINT32 m_nGPOINT_INDX{14};
  static constexpr vbINT32 m_nGPOINT_ID = vbClassIDOf(m_nGPOINT_INDX);
  static constexpr vbINT32 m_nGPOINT_VER{2};
  inline static const std::string m_strCLASS_NAME{"CGPoint"};

  /// The constructor leaves nothing to be set.
  void SetDefaultAttributes() {}

  /// Copies the table; this object keeps its own database and address.
  void Copy(const CGPoint& other) { *this = other; }

  /// The points that are used. A flag other than 1 doesn't count.
  int NumUsedGPoints() const;

  // The static operations THROW CNullPtr for a null argument or a database without files, CNoIndex.

  /// Whether the points have a column for each variable and response, if the control settings ask
  /// for them; what doesn't fit is reported through LError and LPrint.
  /// THROWS CObjectNotFound without settings or points.
  static bool CheckGPoints(POD* pod, int numDVars, int numResps);

  /// Empties the stored table; the object itself stays.
  static void RemoveGPoints(POD* pod);

  /// Prints the table. THROWS CGetObject when none is stored.
  static void Dump(POD* pod, std::FILE* stream);

  std::vector<vbINT32> m_vnUsed;                 ///< 1 for a point that is used
  std::vector<vbINT32> m_vnRun;                  ///< 1 for a point to be analysed
  std::vector<vbINT32> m_vnLocked;               ///< 1 for a locked point
  std::vector<std::vector<vbFLOAT64>> m_vDVars;  ///< a column for each design variable
  std::vector<std::vector<vbFLOAT64>> m_vResps;  ///< a column for each response
};
