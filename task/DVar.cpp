#include "task/DVar.h"

#include "store/KestErr.h"
#include "store/PersistentClassImpl.h"
#include "task/Task.h"
#include "task/TaskTables.h"

// The record of a task's design variables. Report: DVarDump.cpp; making: TaskVars.cpp.

template <>
struct kestdb::ClassOf<CDVar> {
  static constexpr vbINT32 Index = CDVar::m_nDVAR_INDX;
  static constexpr vbINT32 Version = CDVar::m_nDVAR_VER;
  static constexpr std::array Keys{&CDVar::m_nID};
  static constexpr auto Fields = [](auto& file, auto& vars) {
    file(vars.m_nID, vars.m_vnSeq, vars.m_vnType);
    file(vars.m_vnIndIDs, vars.m_vnLinkIDs, vars.m_vnSynIDs, vars.m_vnConstIDs);
    file(vars.m_vfIndLowerIn, vars.m_vfIndLower, vars.m_vfIndUpperIn, vars.m_vfIndUpper);
    file.since(4, vars.m_vfIndScale);
    file(vars.m_vfLinkLower, vars.m_vfLinkUpper, vars.m_vfSynLower, vars.m_vfSynUpper);
    file(vars.m_vstrIndName, vars.m_vstrLinkName, vars.m_vstrSynName, vars.m_vstrConstName);
    file.since(6, vars.m_vnConstSet, vars.m_vfConstLower, vars.m_vfConstUpper);
    file(vars.m_vnLinkRef, vars.m_vnSynRef);
    file(vars.m_mnLinkSubj, vars.m_mnLinkType, vars.m_mnSynSubj, vars.m_mnSynType);
    file.since(5, vars.m_mnSynLen);
    file(vars.m_vnDiscreteRef);
    file.since(3, vars.m_vnRandIndex, vars.m_vnRandParam, vars.m_vnRandDist);
  };
  static void Complete(CDVar& vars, long stored) {
    if (stored < 4) vars.m_vfIndScale.resize(vars.m_vnIndIDs.size(), 0.0);
    if (stored < 5) vars.m_mnSynLen = OnesFor(vars.m_mnSynSubj);
    if (stored < 6) {
      vars.m_vnConstSet.resize(vars.m_vnConstIDs.size(), 0);
      vars.m_vfConstLower.resize(vars.m_vnConstIDs.size(), 0.0);
      vars.m_vfConstUpper.resize(vars.m_vnConstIDs.size(), 0.0);
    }
  }
};
template class vbPersistentClass<CDVar>;

void CDVar::SetDefaultAttributes() {
  *this = CDVar(Database());
}

void CDVar::GetSeq(std::valarray<int>& seq) const {
  kestdb::CopyElements(m_vnSeq, seq);
}

void CDVar::GetType(std::valarray<int>& type) const {
  kestdb::CopyElements(m_vnType, type);
}

void CDVar::GetIndIDs(std::vector<int>& ids) const {
  kestdb::CopyElements(m_vnIndIDs, ids);
}

void CDVar::GetLinkIDs(std::vector<int>& ids) const {
  kestdb::CopyElements(m_vnLinkIDs, ids);
}

void CDVar::GetSynIDs(std::vector<int>& ids) const {
  kestdb::CopyElements(m_vnSynIDs, ids);
}

void CDVar::GetConstIDs(std::vector<int>& ids) const {
  kestdb::CopyElements(m_vnConstIDs, ids);
}

void CDVar::GetLinkRef(std::vector<int>& ref) const {
  kestdb::CopyElements(m_vnLinkRef, ref);
}

void CDVar::GetSynRef(std::vector<int>& ref) const {
  kestdb::CopyElements(m_vnSynRef, ref);
}

void CDVar::GetDiscreteRef(std::vector<int>& ref) const {
  kestdb::CopyElements(m_vnDiscreteRef, ref);
}

void CDVar::GetLinkSubj(int i, std::vector<int>& row) const {
  kestdb::CopyRow(m_mnLinkSubj, i, "i < m_mnLinkSubj.size()", row);
}

void CDVar::GetLinkSubjType(int i, std::vector<int>& row) const {
  kestdb::CopyRow(m_mnLinkType, i, "i < m_mnLinkType.size()", row);
}

void CDVar::GetSynSubj(int i, std::vector<int>& row) const {
  kestdb::CopyRow(m_mnSynSubj, i, "i < m_mnSynSubj.size()", row);
}

void CDVar::GetSynSubjType(int i, std::vector<int>& row) const {
  kestdb::CopyRow(m_mnSynType, i, "i < m_mnSynType.size()", row);
}

void CDVar::GetSynSubjLength(int i, std::vector<int>& row) const {
  kestdb::CopyRow(m_mnSynLen, i, "i < m_mnSynLen.size()", row);
}

std::string CDVar::GetIndName(int i) const {
  return kestdb::ElementAt(m_vstrIndName, i);
}

std::string CDVar::GetLinkName(int i) const {
  return kestdb::ElementAt(m_vstrLinkName, i);
}

std::string CDVar::GetConstName(int i) const {
  return kestdb::ElementAt(m_vstrConstName, i);
}

void CDVar::SetIndName(const std::string& name, int i) {
  kestdb::ElementAt(m_vstrIndName, i) = name;
}

void CDVar::SetLinkName(const std::string& name, int i) {
  kestdb::ElementAt(m_vstrLinkName, i) = name;
}

void CDVar::SetSynName(const std::string& name, int i) {
  kestdb::ElementAt(m_vstrSynName, i) = name;
}

void CDVar::SetConstName(const std::string& name, int i) {
  kestdb::ElementAt(m_vstrConstName, i) = name;
}

void CDVar::SetSeq(const std::vector<int>& seq) {
  kestdb::CopyElements(seq, m_vnSeq);
}

void CDVar::SetType(const std::vector<int>& type) {
  kestdb::CopyElements(type, m_vnType);
}

void CDVar::SetIndIDs(const std::vector<int>& ids) {
  kestdb::CopyElements(ids, m_vnIndIDs);
}

void CDVar::SetConstIDs(const std::vector<int>& ids) {
  kestdb::CopyElements(ids, m_vnConstIDs);
}

void CDVar::IDInputObjects(std::vector<int>& ids, std::vector<int>& kinds,
                           std::vector<int>& positions, std::vector<int>& sizes,
                           std::vector<int>& entries) const try {
  const auto idsOf = [this](int kind) -> const std::vector<vbINT32>& {
    switch (kind) {
      case vbIndependentVar:
        return m_vnIndIDs;
      case vbLinkedVar:
        return m_vnLinkIDs;
      case vbSyntheticVar:
        return m_vnSynIDs;
      case vbConstantVar:
        return m_vnConstIDs;
      default:
        Throw<CInvalidType>();
    }
  };
  kestdb::FoldEntries(m_vnSeq, m_vnType, idsOf, ids, kinds, positions, sizes, entries);
}
LOG_AND_RETHROW
