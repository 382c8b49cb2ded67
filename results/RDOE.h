#pragma once

#include <cstdio>
#include <string>
#include <valarray>

#include "store/PersistentClass.h"
#include "store/api.h"
#include "store/vbscalar.h"

class CRDOE;
extern template class KESTDB_API vbPersistentClass<CRDOE>;

/// What a design of experiments produced for a task: its points and its quality. The run engine
/// fills it.
class KESTDB_API CRDOE : public vbPersistentClass<CRDOE> {
 public:
  using vbPersistentClass::vbPersistentClass;

  static constexpr vbINT32 m_nRDOE_INDX{16};
  static constexpr vbINT32 m_nRDOE_ID = vbClassIDOf(m_nRDOE_INDX);
  static constexpr vbINT32 m_nRDOE_VER{1};
  inline static const std::string m_strCLASS_NAME{"CRDOE"};

  /// What m_fPredVariance holds where there is none.
  static constexpr double kNoVariance = -1.0;

  /// Sets everything.
  void SetDefaultAttributes();
  /// Copies all but the connection to the database.
  void Copy(const CRDOE& other) { *this = other; }

  /// Prints the summary of a task's design: the generators of one with a resolution, and what tells
  /// the quality of a D-optimal one. THROWS CNullPtr for a null argument or a database without
  /// files, CNoIndex, CGetObject without the record or the task, CInvalidArgument for the
  /// generators of a task without a known design.
  static void Dump(POD* pod, std::FILE* stream, int taskID);

  vbINT32 m_nTaskID;                ///< The task; the key
  vbINT32 m_nResolution;            ///< Of a fractional factorial design; 0 for any other
  std::valarray<int> m_Points;      ///< The numbers of the design points
  vbFLOAT64 m_fLogDet;              ///< Of a D-optimal design: the logarithm of its determinant
  std::valarray<int> m_Generators;  ///< Of a fractional factorial design: its generators, one after
                                    ///< the other and of the same length
  vbFLOAT64 m_fDEfficiency;         ///< Of a D-optimal design, as the next two
  vbFLOAT64 m_fAEfficiency;
  vbFLOAT64 m_fGEfficiency;
  vbFLOAT64 m_fPredVariance{kNoVariance};  ///< Scaled average predicted variance of all responses
};
