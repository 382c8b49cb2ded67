#pragma once

#include <array>
#include <cstdio>
#include <limits>
#include <string>
#include <valarray>

#include "store/PersistentClass.h"
#include "store/api.h"
#include "store/vbscalar.h"

class CResult;
extern template class KESTDB_API vbPersistentClass<CResult>;

/// How the run of a task went and ended, and what its best design was. Making the task writes an
/// empty one, the run engine fills it.
class KESTDB_API CResult : public vbPersistentClass<CResult> {
 public:
  using vbPersistentClass::vbPersistentClass;

  static constexpr vbINT32 m_nRTASK_INDX{10};
  static constexpr vbINT32 m_nRTASK_ID = vbClassIDOf(m_nRTASK_INDX);
  static constexpr vbINT32 m_nRTASK_VER{8};
  inline static const std::string m_strCLASS_NAME{"CResult"};

  /// What m_fWorstConstraint holds where there is none.
  static constexpr double kNoConstraint = -std::numeric_limits<double>::max();

  /// Sets everything.
  void SetDefaultAttributes();
  /// Copies all but the connection to the database.
  void Copy(const CResult& other) { *this = other; }

  /// Before a run: puts a fresh record of the same task with so many points into the place of the
  /// stored one. This object stays as it is.
  void CleanResult(int points);

  /// Prints the summary of a task's run.
  /// THROWS CNullPtr for a null argument or a database without files, CNoIndex, CGetObject without
  /// the task or its result or messages.
  static void Dump(POD* pod, std::FILE* stream, int taskID, bool subIterations);

  vbINT32 m_nID;                ///< The task; the key
  vbINT32 m_nNumPoints;         ///< Points in the design space
  vbINT32 m_nTotalPoints;       ///< All points, those of sub-tasks included
  vbINT32 m_nEngineWord1{-1};   ///< The run engine's
  vbINT32 m_nAnalysisCalls;     ///< Total number of analyses
  vbINT32 m_nGradientRequests;  ///< Total number of gradients
  vbINT32 m_nBestIter;          ///< Iteration of the best design
  vbINT32 m_nBestSubIter;       ///< Its sub-iteration
  vbFLOAT64 m_fBestObjective{std::numeric_limits<double>::max()};
  vbFLOAT64 m_fWorstConstraint{kNoConstraint};  ///< Of the best design
  std::string m_strLastMessage;                 ///< Last message of the run
  vbINT32 m_nRunStatus;        ///< 0 not run, 1 running, 2 completed, 4 terminated prematurely
  vbINT32 m_nStopCode;         ///< Why the run ended
  vbINT32 m_nBestSubTask;      ///< The best discrete sub-task; 0 for none, -1: there is no solution
  vbINT32 m_nEngineWord2;      ///< The run engine's
  vbINT32 m_nEngineWord3{-1};  ///< The run engine's
  std::string m_strStarted;    ///< Start time, as text
  std::string m_strStopped;    ///< Stop time, as text
  std::array<vbFLOAT64, 20> m_fTimes;  ///< Timers in seconds: 1 analysis, 7 and 8 transfer, 9 and
                                       ///< 10 database, 19 total
  std::valarray<int> m_EngineArray1;   ///< The run engine's, as the next three
  std::valarray<double> m_EngineArray2;
  std::valarray<int> m_EngineArray3;
  vbINT32 m_nEngineWord4;
};
