#include "task/DCons.h"

#include "store/PersistentClassImpl.h"
#include "task/TaskTables.h"

template <>
struct kestdb::ClassOf<CDCons> {
  static constexpr vbINT32 Index = CDCons::m_nDCONS_INDX;
  static constexpr vbINT32 Version = CDCons::m_nDCONS_VER;
  static constexpr std::array Keys{&CDCons::m_nID};
  static constexpr auto Fields = [](auto& file, auto& cons) {
    file(cons.m_nID, cons.m_vnSubj, cons.m_vnSubjType, cons.m_vfBound, cons.m_vnMult);
    file(cons.m_vfScale);
  };
};
template class vbPersistentClass<CDCons>;

void CDCons::SetDefaultAttributes() {
  *this = CDCons(Database());
}

void CDCons::SetSubj(const std::vector<int>& subjects) {
  kestdb::CopyElements(subjects, m_vnSubj);
}

void CDCons::SetSubjType(const std::vector<int>& kinds) {
  kestdb::CopyElements(kinds, m_vnSubjType);
}

void CDCons::SetMult(const std::vector<int>& signs) {
  kestdb::CopyElements(signs, m_vnMult);
}

void CDCons::SetBound(const std::vector<double>& bounds) {
  kestdb::CopyElements(bounds, m_vfBound);
}

void CDCons::SetScale(const std::vector<double>& scales) {
  kestdb::CopyElements(scales, m_vfScale);
}
