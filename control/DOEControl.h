#pragma once

#include <vector>

#include "control/ControlBlock.h"
#include "store/api.h"
#include "store/vbscalar.h"

class CDOEControl;
extern template class KESTDB_API vbControlBlock<CDOEControl>;

/// The settings of a design of experiments: which design, its option code, the model to fit, the
/// D-optimal thinning, and the random analysis.
class KESTDB_API CDOEControl : public vbControlBlock<CDOEControl> {
 public:
  /// The number of designs that the two arrays have a place for.
  static constexpr int m_nNUM_METHODS = 15;
  static_assert(m_nNUM_METHODS == 15, "(int)m_nNUM_METHODS == 15");

  /// The option code in force. THROWS CInvalidArgument for a design that has no place.
  int GetOption() const;

  /// Put the values over the first entries. An array must not be longer: that stops the program.
  void SetOptions(const std::vector<int>& options);
  void SetGUIIndices(const std::vector<int>& indices);

  /// The number of points of the design for `nVars` variables, -1 for an unknown design.
  /// THROWS CGetObject when the user's points are asked for and can't be read.
  int GetDOEPointCnt(POD* pod, int nVars) const;

  /// Reports what is wrong through LError, LWarn and LPrint; true when there is no error. The
  /// unnamed arguments have no effect.
  bool CheckParams(POD* pod, bool, bool, int nVars, int nIndResp, int, int nLocked,
                   int nRandom) const;

  vbINT32 m_nMethod{1};  ///< The design, 0 to 13
  vbINT32 m_nModel{4};   ///< Model to fit, 0 to 4
  vbINT32 m_nTask;       ///< 0 points only, 1 and responses, 2 and approximation models
  vbINT32 m_nDOptimal;   ///< Non-zero: thin the design to a D-optimal subset
  vbINT32 m_nRetained;   ///< Number of points that the D-optimal design retains; 0 prints as all
  vbINT32 m_nFilter;     ///< Non-zero: filter points using design variable constraints
  std::vector<vbINT32> m_vnOptions{
      0L, 0L, 1, 12, -1, 10, 10, 3101,
      1,  0,  0, 0,  0,  0,  0};  ///< The option code of each design; the entry of m_nMethod is in
                                  ///< force
  std::vector<vbINT32> m_vnGUIIndices{
      std::vector<vbINT32>(m_nNUM_METHODS)};  ///< For the user interface: the sub-item index of
                                              ///< each design. No logic here reads it
  vbINT32 m_nRandomMethod;                    ///< As in CANLControl; legal here: 0 to 4
  vbINT32 m_nRandomPoints{1000};              ///< Simulation points
  vbINT32 m_nSavePoints;                      ///< 1: save simulation points
  vbINT32 m_nRandomSeed{1};                   ///< 1: random seed
};
