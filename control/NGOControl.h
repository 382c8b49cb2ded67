#pragma once

#include "control/ControlBlock.h"
#include "store/api.h"
#include "store/vbscalar.h"

class CNGOControl;
extern template class KESTDB_API vbControlBlock<CNGOControl>;

/// The settings of a non-gradient optimisation: a particle swarm, a genetic algorithm or NSGA-II.
class KESTDB_API CNGOControl : public vbControlBlock<CNGOControl> {
 public:
  /// Reports what is wrong through LError and LPrint; true when nothing is. The unnamed arguments
  /// have no effect.
  bool CheckParams(bool, bool, int nVars, int, int nDiscreteVars, int nUserPoints,
                   int nRandom) const;

  vbINT32 m_nMethod;           ///< 0 particle swarm, 1 genetic algorithm, 2 NSGA-II
  vbINT32 m_nOldPopulation;    ///< The population size of older records, which the report prints
  vbINT32 m_nPopulation{100};  ///< Population size, the one that the rules test
  vbINT32 m_nMaxIters{100};    ///< Maximum number of iterations
  vbINT32 m_nFixedSeed{1};     ///< 1: use the fixed random seed
  vbINT32 m_nSeed{234567890};  ///< The fixed seed
  vbINT32 m_nConvIters{5};     ///< Number of iterations to convergence
  vbINT32 m_nMinIters{5};      ///< Minimum number of iterations
  vbINT32 m_nMinimize{1};      ///< 1 minimise
  vbFLOAT64 m_fCTMIN{0.003};   ///< Violated constraint tolerance
  vbFLOAT64 m_fSeedFraction{0.5};   ///< NSGA-II's random seed, strictly between 0 and 1
  vbFLOAT64 m_fHardAbs{0.0001};     ///< Absolute hard convergence criterion
  vbFLOAT64 m_fHardRel{0.001};      ///< Relative hard convergence criterion
  vbFLOAT64 m_fSoftAbs{0.0001};     ///< Absolute soft convergence criterion
  vbFLOAT64 m_fSoftRel{0.001};      ///< Relative soft convergence criterion
  vbINT32 m_nStart{10};             ///< Swarm starting strategy: 10 random, 11 user defined
  vbFLOAT64 m_fInertia{1.2};        ///< Particle swarm inertia weight
  vbFLOAT64 m_fTrust1{1.5};         ///< First trust parameter
  vbFLOAT64 m_fTrust2{2.5};         ///< Second trust parameter
  vbINT32 m_nCrossType;             ///< Genetic algorithm cross-over: 0 uniform, 1 two point
  vbFLOAT64 m_fCrossProb{0.98};     ///< Genetic algorithm probability of cross-over
  vbFLOAT64 m_fMutProb{0.12};       ///< Genetic algorithm probability of mutation
  vbFLOAT64 m_fNSGACrossProb{1.0};  ///< NSGA-II probability of cross-over
  vbFLOAT64 m_fNSGAMutProb{0.1};    ///< NSGA-II probability of mutation
  vbINT32 m_nCrossIndex{10};        ///< NSGA-II distribution index for cross-over
  vbINT32 m_nMutIndex{15};          ///< NSGA-II distribution index for mutation
  vbINT32 m_nRandomMethod;          ///< As in CANLControl; legal here: 0 to 4
  vbINT32 m_nRandomPoints{1000};
  vbINT32 m_nSavePoints;
  vbINT32 m_nRandomSeed{1};
};
