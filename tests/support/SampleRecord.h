#pragma once

#include <string>
#include <vector>

#include "store/PersistentClass.h"

/// Persisted classes for tests of the object protocol. They live in the three spare trees.

class SampleRecord;
extern template class vbPersistentClass<SampleRecord>;

/// Every kind of field, a two-field key, and a second version.
class SampleRecord : public vbPersistentClass<SampleRecord> {
 public:
  using vbPersistentClass::vbPersistentClass;

  static constexpr vbINT32 m_nSAMPLE_INDX{22};
  static constexpr vbINT32 m_nSAMPLE_VER{2};
  inline static const std::string m_strCLASS_NAME{"SampleRecord"};

  vbINT32 m_nID;
  vbINT32 m_nNumber;
  vbUINT32 m_uFlags;
  vbFLOAT64 m_fValue;
  std::string m_strText;
  std::vector<vbINT32> m_vnNumbers;
  std::vector<vbFLOAT64> m_vfValues;
  std::vector<std::string> m_vstrTexts;
  std::vector<std::vector<vbFLOAT64>> m_mfRows;
  vbINT32 m_nSinceTwo{-7};  ///< stored since version 2
};

class PlainRecord;
extern template class vbPersistentClass<PlainRecord>;

/// A one-field key, and text of any length.
class PlainRecord : public vbPersistentClass<PlainRecord> {
 public:
  using vbPersistentClass::vbPersistentClass;

  static constexpr vbINT32 m_nPLAIN_INDX{23};
  static constexpr vbINT32 m_nPLAIN_VER{1};
  inline static const std::string m_strCLASS_NAME{"PlainRecord"};

  vbINT32 m_nID;
  std::string m_strText;
};

class TripleRecord;
extern template class vbPersistentClass<TripleRecord>;

/// A three-field key and nothing else.
class TripleRecord : public vbPersistentClass<TripleRecord> {
 public:
  using vbPersistentClass::vbPersistentClass;

  static constexpr vbINT32 m_nTRIPLE_INDX{24};
  static constexpr vbINT32 m_nTRIPLE_VER{1};
  inline static const std::string m_strCLASS_NAME{"TripleRecord"};

  vbINT32 m_nFirst;
  vbINT32 m_nSecond;
  vbINT32 m_nThird;
};
