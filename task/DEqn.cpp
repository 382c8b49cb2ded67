#include "task/DEqn.h"

#include "definition/Auxiliary.h"
#include "store/PersistentClassImpl.h"

template <>
struct kestdb::ClassOf<CDEqn> {
  static constexpr vbINT32 Index = CDEqn::m_nDEQN_INDX;
  static constexpr vbINT32 Version = CDEqn::m_nDEQN_VER;
  static constexpr std::array Keys{&CDEqn::m_nID};
  static constexpr auto Fields = [](auto& file, auto& functions) {
    file(functions.m_nID, functions.m_vstrName, functions.m_vstrArgs, functions.m_vstrEquation,
         functions.m_vnAuxID);
  };
};
template class vbPersistentClass<CDEqn>;

void CDEqn::SetDefaultAttributes() {
  *this = CDEqn(Database());
}

void CDEqn::AddEqn(CAuxiliary& function) {
  m_vnAuxID.push_back(function.m_nID);
  m_vstrName.push_back(function.m_strName);
  m_vstrArgs.push_back(function.m_strArgs);
  m_vstrEquation.push_back(function.m_strEquation);
}
