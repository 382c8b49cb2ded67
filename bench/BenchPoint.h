#pragma once

#include <string>
#include <vector>

#include "store/PersistentClass.h"

class BenchPoint;
extern template class vbPersistentClass<BenchPoint>;

/// A record like those that a run writes by the thousand: two key fields, three integers, arrays
/// of 20 and of 10 reals; 308 bytes in its block. It lives in a spare tree.
class BenchPoint : public vbPersistentClass<BenchPoint> {
 public:
  using vbPersistentClass::vbPersistentClass;

  static constexpr vbINT32 m_nBENCH_INDX{22};
  static constexpr vbINT32 m_nBENCH_VER{1};
  inline static const std::string m_strCLASS_NAME{"BenchPoint"};

  /// The point of that number, with its arrays filled.
  static BenchPoint Made(POD* pod, int number);

  vbINT32 m_nTask;
  vbINT32 m_nPoint;
  vbINT32 m_nKind;
  vbINT32 m_nStatus;
  vbINT32 m_nRun;
  std::vector<vbFLOAT64> m_vfVariables;
  std::vector<vbFLOAT64> m_vfResponses;
};
