#pragma once

#include <string>

#include "control/ControlBlock.h"
#include "store/api.h"
#include "store/vbscalar.h"

class CDGOControl;
extern template class KESTDB_API vbControlBlock<CDGOControl>;

/// The settings of a direct gradient-based optimisation: the parameters of the optimiser libraries,
/// under their own names, the gradient program, and the random analysis.
class KESTDB_API CDGOControl : public vbControlBlock<CDGOControl> {
 public:
  /// Reports what is wrong through LError and LPrint; true when nothing is. The unnamed arguments
  /// have no effect.
  bool CheckParams(bool, bool, int, int nRandom) const;

  // Strings of the block in the data file of a study, as in every record.
  static unsigned long StringFileLength(const std::string& text);
  void ReadString(POD* pod, std::string& text, vbINT32 address);
  void WriteString(POD* pod, const std::string& text, vbINT32 address) const;

  vbINT32 m_nIPRINT;             ///< Print level, 0 to 7
  vbINT32 m_nMINMAX{1};          ///< 1 minimise, 0 maximise
  vbFLOAT64 m_fSoftRel{0.001};   ///< Relative soft convergence criterion
  vbFLOAT64 m_fSoftAbs{0.0001};  ///< Absolute soft convergence criterion
  vbINT32 m_nMETHOD;             ///< Constrained method: 0 MMFD, 2 SLP, 3 SQP, 4 MEGZEF
  vbINT32 m_nUncMETHOD;          ///< Unconstrained method: 0 BFGS, 2 FR, 4 MEGZEF
  vbINT32 m_nSkip;               ///< Gradient iteration skip count, 0 to 4
  vbINT32 m_nMultiStart;         ///< 1: multiple starting points
  vbINT32 m_nIGRAD;        ///< 0 first-forward difference, 1 user supplied, -1 central difference
  vbINT32 m_nISCAL;        ///< Iterations between variable scaling; -1 and above
  vbINT32 m_nITMAX{100};   ///< Maximum iterations
  vbINT32 m_nITRMOP{2};    ///< Consecutive iterations for convergence
  vbINT32 m_nNGMAX;        ///< As NGMAX of the library
  vbINT32 m_nIGMAX;        ///< As IGMAX of the library
  vbINT32 m_nJTMAX{100};   ///< Maximum iterations of the SLP or SQP subproblem
  vbINT32 m_nITRMST{2};    ///< Consecutive iterations for convergence of the subproblem
  vbINT32 m_nJPRINT;       ///< As JPRINT of the library
  vbINT32 m_nIPRNT1;       ///< 0 or 1
  vbINT32 m_nIPRNT2;       ///< 0 to 2
  vbFLOAT64 m_fCT{-0.03};  ///< Constraint tolerance
  vbFLOAT64 m_fCTMIN{0.003};   ///< Violated constraint tolerance
  vbFLOAT64 m_fDABOBJ;         ///< Absolute hard convergence; 0.0 prints as the default
  vbFLOAT64 m_fDELOBJ{0.001};  ///< Relative hard convergence
  vbFLOAT64 m_fDOBJ1{0.1};     ///< As DOBJ1
  vbFLOAT64 m_fDOBJ2;          ///< As DOBJ2
  vbFLOAT64 m_fDX1{0.01};      ///< As DX1
  vbFLOAT64 m_fDX2;            ///< As DX2
  vbFLOAT64 m_fFDCH{0.01};     ///< Relative finite difference step
  vbFLOAT64 m_fFDCHM{0.001};   ///< Absolute minimum finite difference step
  vbFLOAT64 m_fRMVLMZ{0.4};    ///< As RMVLMZ
  vbFLOAT64 m_fDABSTR;         ///< As DABSTR
  vbFLOAT64 m_fDELSTR{0.001};  ///< As DELSTR
  vbINT32 m_nReserved;         ///< The discrete-problem flag of a task's copy; 0 in the user's
  vbFLOAT64 m_fPENALT{1.0};    ///< MEGZEF initial penalty
  vbFLOAT64 m_fPMULT{5.0};     ///< MEGZEF penalty multiplier
  vbFLOAT64 m_fPENLTD{0.01};   ///< MEGZEF initial discrete penalty
  vbFLOAT64 m_fPMULTD{5.0};    ///< MEGZEF discrete penalty multiplier
  std::string m_strGradProgram{"analyze.exe"};  ///< Gradient analysis program
  vbINT32 m_nGradUserRoutine;                   ///< Non-zero: call the user gradient routine
  std::string m_strGradArgs;                    ///< Arguments of the gradient program
  std::string m_strGradVarFile{"dvar.kef"};     ///< Gradient design variable transfer file
  std::string m_strGradRespFile{"resp.kef"};    ///< Response gradients transfer file
  vbINT32 m_nStoreFD;                           ///< 1: store finite difference step analyses
  vbINT32 m_nRandomMethod;                      ///< As in CANLControl; legal here: 0, 1, 2
  vbINT32 m_nRandomPoints{1000};                ///< Simulation points
  vbINT32 m_nSavePoints;                        ///< As in CANLControl
  vbINT32 m_nRandomSeed{1};                     ///< As in CANLControl
};
