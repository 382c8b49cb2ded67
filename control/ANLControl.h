#pragma once

#include "control/ControlBlock.h"
#include "store/api.h"
#include "store/vbscalar.h"

class CANLControl;
extern template class KESTDB_API vbControlBlock<CANLControl>;

/// The settings of an analysis-only task: those of its random analysis.
class KESTDB_API CANLControl : public vbControlBlock<CANLControl> {
 public:
  /// Reports what is wrong through LError and LPrint; true when nothing is. With no random variable
  /// nothing is looked at. The unnamed arguments have no effect.
  bool CheckParams(bool, bool, int, int, int, int nRandom) const;

  vbINT32 m_nRandomMethod;        ///< Random analysis method: 0 or 1
  vbINT32 m_nRandomPoints{1000};  ///< Number of simulation points
  vbINT32 m_nSavePoints;          ///< 1: save simulation points
  vbINT32 m_nRandomSeed{1};       ///< 1: random initial seed
};
