#include "results/RDOE.h"

#include "store/PersistentClassImpl.h"

// The record of a design. Report: RDOEDump.cpp.

template <>
struct kestdb::ClassOf<CRDOE> {
  static constexpr vbINT32 Index = CRDOE::m_nRDOE_INDX;
  static constexpr vbINT32 Version = CRDOE::m_nRDOE_VER;
  static constexpr std::array Keys{&CRDOE::m_nTaskID};
  static constexpr auto Fields = [](auto& file, auto& design) {
    file(design.m_nTaskID, design.m_nResolution, design.m_Points);
    file(design.m_fLogDet, design.m_Generators);
    file(design.m_fDEfficiency, design.m_fAEfficiency, design.m_fGEfficiency);
    file(design.m_fPredVariance);
  };
};
template class vbPersistentClass<CRDOE>;

void CRDOE::SetDefaultAttributes() {
  *this = CRDOE(Database());
}
