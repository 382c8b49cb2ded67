#pragma once

#include <cstdio>
#include <string>
#include <valarray>

#include "store/PersistentClass.h"
#include "store/api.h"
#include "store/vbscalar.h"

class CResidual;
extern template class KESTDB_API vbPersistentClass<CResidual>;

/// The analysis of variance of one fitted response, and its residuals at the design points. The run
/// engine fills it.
class KESTDB_API CResidual : public vbPersistentClass<CResidual> {
 public:
  using vbPersistentClass::vbPersistentClass;

  static constexpr vbINT32 m_nRESID_INDX{19};
  static constexpr vbINT32 m_nRESID_ID = vbClassIDOf(m_nRESID_INDX);
  static constexpr vbINT32 m_nRESID_VER{1};
  inline static const std::string m_strCLASS_NAME{"CResidual"};

  /// Sets everything.
  void SetDefaultAttributes();
  /// Copies all but the connection to the database.
  void Copy(const CResidual& other) { *this = other; }

  // The static operations THROW CNullPtr for a null argument or a database without files, CNoIndex.

  /// Removes the records of a task, from response 0 up to the first number that is missing.
  /// THROWS CObjectNotRemoved.
  static void RemoveResiduals(POD* pod, int taskID);

  /// Prints the analysis of a response. The design points have their positions, from 0, for
  /// numbers; with `designNumbers` those of the task's CRDOE, where it has one with as many points.
  /// THROWS CGetObject without the record, the model of iteration 0 or the task's table of
  /// responses, CInvalidArgument for a response outside it and for arrays of different sizes.
  static void Dump(POD* pod, std::FILE* stream, int taskID, int resp, bool designNumbers);

  vbINT32 m_nTaskID;  ///< The task; first field of the key
  vbINT32 m_nResp;    ///< The position among the task's independent responses; second field of the
                      ///< key
  // For each design point:
  std::valarray<double> m_HDiagonal;     ///< diagonal of the hat matrix
  std::valarray<double> m_Predicted;     ///< predicted response
  std::valarray<double> m_Residual;      ///< residual
  std::valarray<double> m_Standardized;  ///< standardized residual
  std::valarray<double> m_Studentized;   ///< Studentized residual
  std::valarray<double> m_RStudentized;  ///< R-Studentized residual
  std::valarray<double> m_Press;         ///< PRESS residual
  std::valarray<double> m_Cook;          ///< Cook's D-statistic
  // The analysis of variance:
  vbFLOAT64 m_fErrorMS;  ///< mean square of the error
  vbFLOAT64 m_fModelSS;  ///< sum of squares of the model
  vbFLOAT64 m_fModelMS;  ///< mean square of the model
  vbFLOAT64 m_fErrorSS;  ///< sum of squares of the error
  vbFLOAT64 m_fTotalSS;  ///< total sum of squares
  vbFLOAT64 m_fF0;       ///< F statistic
  vbFLOAT64 m_fP;        ///< its P-value
  // Statistics of the fit:
  vbFLOAT64 m_fSumResiduals;    ///< sum of residuals
  vbFLOAT64 m_fPRESS;           ///< prediction error sum of squares
  vbFLOAT64 m_fRMSE;            ///< root mean square error
  vbFLOAT64 m_fMeanResponse;    ///< mean response
  vbFLOAT64 m_fCoeffVariation;  ///< coefficient of variation
  vbFLOAT64 m_fR2;              ///< R squared
  vbFLOAT64 m_fAdjR2;           ///< adjusted R squared
  vbFLOAT64 m_fR2Press;         ///< R squared from PRESS
};
