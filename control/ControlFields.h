// Private to the library, not installed.
#pragma once

#include "control/ANLControl.h"
#include "control/DGOControl.h"
#include "control/DOEControl.h"
#include "control/NGOControl.h"
#include "control/RSAControl.h"
#include "store/RecordIO.h"

// The stored fields of the five control blocks, in file order, with the versions of a task record
// and of a control record that first hold them.

namespace kestdb {

constexpr BlockVersions kSinceTask10{.task = 10, .control = 7};
constexpr BlockVersions kSinceTask11{.task = 11, .control = 8};
constexpr BlockVersions kSinceTask14{.task = 14, .control = 11};
constexpr BlockVersions kSinceTask15{.task = 15, .control = 12};
constexpr BlockVersions kSinceTask16{.task = 16, .control = 13};
constexpr BlockVersions kSinceTask17{.task = 17, .control = 14};
constexpr BlockVersions kSinceTask18{.task = 18, .control = 15};
constexpr BlockVersions kSinceTask20{.task = 20, .control = 17};
constexpr BlockVersions kSinceTask22{.task = 22, .control = 18};

/// The random analysis, which ends every block but the last one's.
constexpr auto RandomFields = [](auto& file, auto& block) {
  file.since(kSinceTask10, block.m_nRandomMethod, block.m_nRandomPoints);
  file.since(kSinceTask15, block.m_nSavePoints);
  file.since(kSinceTask18, block.m_nRandomSeed);
};

template <>
struct BlockOf<CANLControl> {
  static constexpr auto Fields = [](auto& file, auto& block) { RandomFields(file, block); };
};

template <>
struct BlockOf<CDGOControl> {
  static constexpr auto Fields = [](auto& file, auto& block) {
    file(block.m_nIPRINT, block.m_nMINMAX, block.m_fSoftRel, block.m_fSoftAbs);
    file(block.m_nMETHOD, block.m_nUncMETHOD);
    file.since(kSinceTask14, block.m_nSkip);
    file.since(kSinceTask17, block.m_nMultiStart);
    file(block.m_nIGRAD, block.m_nISCAL, block.m_nITMAX, block.m_nITRMOP, block.m_nNGMAX);
    file(block.m_nIGMAX, block.m_nJTMAX, block.m_nITRMST, block.m_nJPRINT);
    file(block.m_nIPRNT1, block.m_nIPRNT2);
    file(block.m_fCT, block.m_fCTMIN, block.m_fDABOBJ, block.m_fDELOBJ, block.m_fDOBJ1);
    file(block.m_fDOBJ2, block.m_fDX1, block.m_fDX2, block.m_fFDCH, block.m_fFDCHM);
    file(block.m_fRMVLMZ, block.m_fDABSTR, block.m_fDELSTR, block.m_nReserved);
    file(block.m_fPENALT, block.m_fPMULT, block.m_fPENLTD, block.m_fPMULTD);
    file(block.m_strGradProgram);
    file.since(kSinceTask11, block.m_nGradUserRoutine, block.m_strGradArgs);
    file.since(kSinceTask11, block.m_strGradVarFile, block.m_strGradRespFile);
    file.since(kSinceTask11, block.m_nStoreFD);
    RandomFields(file, block);
  };
};

template <>
struct BlockOf<CRSAControl> {
  static constexpr auto Fields = [](auto& file, auto& block) {
    file(block.m_nIPRINT, block.m_nMINMAX, block.m_fSoftRel, block.m_fSoftAbs);
    file(block.m_nMETHOD, block.m_nUncMETHOD, block.m_nISCAL, block.m_nITMAX, block.m_nITRMOP);
    file(block.m_nJTMAX, block.m_nITRMST);
    file(block.m_fCT, block.m_fCTMIN, block.m_fDABOBJ, block.m_fDELOBJ, block.m_nReserved);
    file(block.m_fPENALT, block.m_fPMULT, block.m_fPENLTD, block.m_fPMULTD);
    file(block.m_nInitialDOE, block.m_nSubModel, block.m_nOrder);
    file(block.m_nHasMinPoints, block.m_nMinPoints, block.m_nHasMaxPoints, block.m_nMaxPoints);
    file(block.m_nConvIters, block.m_fHardRel, block.m_fHardAbs);
    file(block.m_fSoftRelApprox, block.m_fSoftAbsApprox);
    file(block.m_fMoveRelLinear, block.m_fMoveRelMixed, block.m_fMoveRelQuad);
    file(block.m_fMoveAbsLinear, block.m_fMoveAbsMixed, block.m_fMoveAbsQuad);
    file.since(kSinceTask22, block.m_fPEnter, block.m_fPRemove);
    RandomFields(file, block);
  };
};

template <>
struct BlockOf<CDOEControl> {
  static constexpr auto Fields = [](auto& file, auto& block) {
    file(block.m_nMethod, block.m_nModel, block.m_nTask, block.m_nDOptimal, block.m_nRetained);
    file(block.m_nFilter);
    file.over(block.m_vnOptions, block.m_vnGUIIndices);
    RandomFields(file, block);
  };
};

template <>
struct BlockOf<CNGOControl> {
  static constexpr auto Fields = [](auto& file, auto& block) {
    file(block.m_nMethod, block.m_nOldPopulation);
    file.since(kSinceTask16, block.m_nPopulation);
    file(block.m_nMaxIters, block.m_nFixedSeed);
    file.since(kSinceTask11, block.m_nSeed);
    file(block.m_nConvIters, block.m_nMinIters, block.m_nMinimize, block.m_fCTMIN);
    file.since(kSinceTask20, block.m_fSeedFraction);
    file(block.m_fHardAbs, block.m_fHardRel, block.m_fSoftAbs, block.m_fSoftRel);
    file(block.m_fInertia, block.m_fTrust1, block.m_fTrust2, block.m_nCrossType);
    file(block.m_fCrossProb, block.m_fMutProb);
    file.since(kSinceTask20, block.m_fNSGACrossProb, block.m_fNSGAMutProb);
    file.since(kSinceTask20, block.m_nCrossIndex, block.m_nMutIndex);
    RandomFields(file, block);
    file.since(kSinceTask16, block.m_nStart);
  };
};

}  // namespace kestdb
