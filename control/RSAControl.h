#pragma once

#include "control/ControlBlock.h"
#include "store/api.h"
#include "store/vbscalar.h"

class CRSAControl;
extern template class KESTDB_API vbControlBlock<CRSAControl>;

/// The settings of an approximate optimisation, in which response surfaces stand in for the
/// analysis. The names in capitals are those of CDGOControl.
class KESTDB_API CRSAControl : public vbControlBlock<CRSAControl> {
 public:
  /// Fills in the limits of points that the user has not set, for `nVars` variables: the default
  /// maximum is the number of the model's terms and 100. False for an unknown order.
  bool CheckMaxMinPoints(int nVars);

  /// Reports what is wrong through LError and LPrint; true when nothing is. Also fills in the
  /// limits. The unnamed arguments have no effect.
  bool CheckParams(bool, bool, int nVars, int, int nUserPoints, int nRandom);

  vbINT32 m_nIPRINT;             ///< Print level
  vbINT32 m_nMINMAX{1};          ///< 1 minimise
  vbFLOAT64 m_fSoftRel{0.001};   ///< Stored and copied; neither tested nor reported
  vbFLOAT64 m_fSoftAbs{0.0001};  ///< Stored and copied; neither tested nor reported
  vbINT32 m_nMETHOD;             ///< Constrained method
  vbINT32 m_nUncMETHOD;          ///< Unconstrained method
  vbINT32 m_nISCAL;              ///< Iterations between scaling
  vbINT32 m_nITMAX{100};
  vbINT32 m_nITRMOP{2};
  vbINT32 m_nJTMAX{100};
  vbINT32 m_nITRMST{2};
  vbFLOAT64 m_fCT{-0.03};
  vbFLOAT64 m_fCTMIN{0.003};
  vbFLOAT64 m_fDABOBJ;
  vbFLOAT64 m_fDELOBJ{0.001};
  vbINT32 m_nReserved;  ///< The discrete-problem flag of a task's copy; 0 in the user's
  vbFLOAT64 m_fPENALT{1.0};
  vbFLOAT64 m_fPMULT{5.0};
  vbFLOAT64 m_fPENLTD{0.01};
  vbFLOAT64 m_fPMULTD{5.0};
  vbINT32 m_nInitialDOE{9};            ///< Initial design, by the design numbers of CDOEControl
  vbINT32 m_nSubModel;                 ///< Sub-model code
  vbINT32 m_nOrder{3};                 ///< Order of the approximations, 0 to 4
  vbINT32 m_nHasMinPoints;             ///< Non-zero: m_nMinPoints is the user's
  vbINT32 m_nMinPoints;                ///< Minimum number of design points to evaluate
  vbINT32 m_nHasMaxPoints;             ///< Non-zero: m_nMaxPoints is the user's
  vbINT32 m_nMaxPoints;                ///< Maximum number of design points to evaluate
  vbINT32 m_nConvIters{2};             ///< Approximate iterations to convergence
  vbFLOAT64 m_fHardRel{0.001};         ///< Relative hard convergence tolerance
  vbFLOAT64 m_fHardAbs{0.0001};        ///< Absolute hard convergence tolerance
  vbFLOAT64 m_fSoftRelApprox{0.001};   ///< Relative soft convergence tolerance
  vbFLOAT64 m_fSoftAbsApprox{0.0001};  ///< Absolute soft convergence tolerance
  vbFLOAT64 m_fMoveRelLinear{0.2};     ///< Initial relative move limit, linear approximations
  vbFLOAT64 m_fMoveRelMixed{0.2};      ///< The same, mixed
  vbFLOAT64 m_fMoveRelQuad{0.2};       ///< The same, quadratic
  vbFLOAT64 m_fMoveAbsLinear{0.02};    ///< Absolute minimum move limit, linear
  vbFLOAT64 m_fMoveAbsMixed{0.02};     ///< The same, mixed
  vbFLOAT64 m_fMoveAbsQuad{0.02};      ///< The same, quadratic
  vbFLOAT64 m_fPEnter{0.1};            ///< P-value of terms to enter the model
  vbFLOAT64 m_fPRemove{0.1};           ///< P-value of terms to be removed
  vbINT32 m_nRandomMethod;             ///< As in CANLControl; legal here: 0 to 4
  vbINT32 m_nRandomPoints{1000};       ///< Simulation points
  vbINT32 m_nSavePoints;
  vbINT32 m_nRandomSeed{1};
};
