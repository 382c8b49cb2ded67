#pragma once

#include <cstdio>
#include <string>
#include <valarray>

#include "store/PersistentClass.h"
#include "store/api.h"
#include "store/vbscalar.h"

class CIter;
extern template class KESTDB_API vbPersistentClass<CIter>;

/// One iteration of a run, or one of its sub-iterations: the design point that it was at, the best
/// one so far and, where a run has several best designs, the Pareto front. The run engine writes
/// it; points are named by their numbers.
class KESTDB_API CIter : public vbPersistentClass<CIter> {
 public:
  using vbPersistentClass::vbPersistentClass;

  static constexpr vbINT32 m_nITER_INDX{12};
  static constexpr vbINT32 m_nITER_ID = vbClassIDOf(m_nITER_INDX);
  static constexpr vbINT32 m_nITER_VER{2};
  inline static const std::string m_strCLASS_NAME{"CIter"};

  /// Sets everything.
  void SetDefaultAttributes();
  /// Copies all but the connection to the database.
  void Copy(const CIter& other) { *this = other; }

  // The static operations THROW CNullPtr for a null argument or a database without files, CNoIndex.

  /// Removes the iterations of a task from 0 on, each with its sub-iterations, up to the first
  /// number that is missing. THROWS CObjectNotRemoved.
  static void RemoveIters(POD* pod, int taskID);

  /// Prints an iteration with the variables, objectives and constrained responses at its design
  /// point. `allConstraints` lists the constraints that are neither active nor violated too;
  /// `bestPoint` shows the best point so far in place of this one, where the task has a best.
  /// THROWS CGetObject without the iteration, its point, the task or one of its tables,
  /// CInvalidType for an entry of no known kind, CInvalidArgument for one outside its table or
  /// for Pareto values that can't be shared out to their points.
  static void Dump(POD* pod, std::FILE* stream, int taskID, bool allConstraints, int iter,
                   int subIter, bool bestPoint);

  vbINT32 m_nTaskID;                     ///< The task; first field of the key
  vbINT32 m_nIter;                       ///< Iteration; second field of the key
  vbINT32 m_nSubIter;                    ///< 0 for the iteration itself; third field of the key
  vbINT32 m_nThisPoint;                  ///< The point that the iteration is at
  vbINT32 m_nBestPoint;                  ///< The best point so far
  vbFLOAT64 m_fBestObjective;            ///< The best point's objective
  vbFLOAT64 m_fBestConstraint;           ///< Its worst constraint
  vbFLOAT64 m_fThisObjective;            ///< This point's objective
  vbFLOAT64 m_fThisConstraint;           ///< Its worst constraint
  std::valarray<int> m_ParetoPoints;     ///< The points of the Pareto front
  std::valarray<double> m_ParetoValues;  ///< Their values, those of a point side by side
};
