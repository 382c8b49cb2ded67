#include "tests/support/SampleRecord.h"

#include "store/PersistentClassImpl.h"

template <>
struct kestdb::ClassOf<SampleRecord> {
  static constexpr vbINT32 Index = SampleRecord::m_nSAMPLE_INDX;
  static constexpr vbINT32 Version = SampleRecord::m_nSAMPLE_VER;
  static constexpr std::array Keys{&SampleRecord::m_nID, &SampleRecord::m_nNumber};
  static constexpr auto Fields = [](auto& file, auto& record) {
    file(record.m_nID, record.m_nNumber, record.m_uFlags, record.m_fValue, record.m_strText);
    file(record.m_vnNumbers, record.m_vfValues, record.m_vstrTexts, record.m_mfRows);
    file.since(2, record.m_nSinceTwo);
  };
};
template class vbPersistentClass<SampleRecord>;

template <>
struct kestdb::ClassOf<PlainRecord> {
  static constexpr vbINT32 Index = PlainRecord::m_nPLAIN_INDX;
  static constexpr vbINT32 Version = PlainRecord::m_nPLAIN_VER;
  static constexpr std::array Keys{&PlainRecord::m_nID};
  static constexpr auto Fields = [](auto& file, auto& record) {
    file(record.m_nID, record.m_strText);
  };
};
template class vbPersistentClass<PlainRecord>;

template <>
struct kestdb::ClassOf<TripleRecord> {
  static constexpr vbINT32 Index = TripleRecord::m_nTRIPLE_INDX;
  static constexpr vbINT32 Version = TripleRecord::m_nTRIPLE_VER;
  static constexpr std::array Keys{&TripleRecord::m_nFirst, &TripleRecord::m_nSecond,
                                   &TripleRecord::m_nThird};
  static constexpr auto Fields = [](auto& file, auto& record) {
    file(record.m_nFirst, record.m_nSecond, record.m_nThird);
  };
};
template class vbPersistentClass<TripleRecord>;
