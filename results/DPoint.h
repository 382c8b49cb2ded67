#pragma once

#include <cstdio>
#include <string>
#include <valarray>

#include "store/PersistentClass.h"
#include "store/api.h"
#include "store/vbscalar.h"

class CDPoint;
extern template class KESTDB_API vbPersistentClass<CDPoint>;

/// One point of a task: the values of its design variables and, once it has been analysed, of its
/// responses. Positions are those of the task's tables.
class KESTDB_API CDPoint : public vbPersistentClass<CDPoint> {
 public:
  using vbPersistentClass::vbPersistentClass;

  static constexpr vbINT32 m_nDPOINT_INDX{11};
  static constexpr vbINT32 m_nDPOINT_ID = vbClassIDOf(m_nDPOINT_INDX);
  static constexpr vbINT32 m_nDPOINT_VER{2};
  inline static const std::string m_strCLASS_NAME{"CDPoint"};

  /// Sets task, number and flag to 0, and nothing else.
  void SetDefaultAttributes();
  /// Copies all but the connection to the database.
  void Copy(const CDPoint& other) { *this = other; }

  /// Empties the response arrays and stores the point: it can be analysed again.
  void RemoveRespValues();

  // The static operations THROW CNullPtr for a null argument or a database without files, CNoIndex.

  /// Removes the points of a task from `firstPoint` on, up to the first number that is missing.
  /// THROWS CInvalidArgument for a negative number, CObjectNotRemoved.
  static void RemoveDPoints(POD* pod, int taskID, int firstPoint);

  /// Prints the values of one point by name. THROWS CGetObject without the point or the task's
  /// tables, CInvalidType for an entry of no known kind, CInvalidArgument for one outside its
  /// table.
  static void Dump(POD* pod, std::FILE* stream, int taskID, int pointID);

  vbINT32 m_nTaskID;              ///< The task; first field of the key
  vbINT32 m_nPointID;             ///< The point's number, from 0; second field of the key
  vbINT32 m_nPointFlag;           ///< The run engine's
  std::valarray<double> m_IDVar;  ///< Independent design variables
  std::valarray<double> m_LDVar;  ///< Linked design variables
  std::valarray<double> m_SDVar;  ///< Synthetic design variables
  std::valarray<double> m_CDVar;  ///< Constants
  std::valarray<double> m_IResp;  ///< Independent responses
  std::valarray<double> m_LResp;  ///< Linked responses
  std::valarray<double> m_SResp;  ///< Synthetic responses
};
