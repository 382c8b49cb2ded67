#include "task/DLink.h"

#include "definition/Auxiliary.h"
#include "store/PersistentClassImpl.h"
#include "task/TaskTables.h"

template <>
struct kestdb::ClassOf<CDLink> {
  static constexpr vbINT32 Index = CDLink::m_nDLINK_INDX;
  static constexpr vbINT32 Version = CDLink::m_nDLINK_VER;
  static constexpr std::array Keys{&CDLink::m_nID};
  static constexpr auto Fields = [](auto& file, auto& links) {
    file(links.m_nID, links.m_vnAuxID, links.m_vstrName, links.m_mdCoef);
  };
};
template class vbPersistentClass<CDLink>;

void CDLink::SetDefaultAttributes() {
  *this = CDLink(Database());
}

void CDLink::AddLink(CAuxiliary& link) {
  m_vstrName.push_back(link.m_strName);
  m_vnAuxID.push_back(link.m_nID);
  m_mdCoef.push_back(link.m_vfCoef);
}

void CDLink::GetCoef(int i, std::vector<double>& coefficients) const {
  const bool inside = i >= 0 && static_cast<std::size_t>(i) < m_mdCoef.size();
  KESTDB_ASSERT(inside, "i < m_mdCoef.size()");
  kestdb::CopyElements(m_mdCoef[static_cast<std::size_t>(i)], coefficients);
}
