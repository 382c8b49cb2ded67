#include "task/DResp.h"

#include <array>

#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/PersistentClassImpl.h"
#include "task/DCons.h"
#include "task/Task.h"
#include "task/TaskTables.h"

// The record of a task's responses. Report: DRespDump.cpp; making: TaskResps.cpp.

template <>
struct kestdb::ClassOf<CDResp> {
  static constexpr vbINT32 Index = CDResp::m_nDRESP_INDX;
  static constexpr vbINT32 Version = CDResp::m_nDRESP_VER;
  static constexpr std::array Keys{&CDResp::m_nID};
  static constexpr auto Fields = [](auto& file, auto& resps) {
    file(resps.m_nID, resps.m_vnSeq, resps.m_vnType);
    file(resps.m_vnIndIDs, resps.m_vnLinkIDs, resps.m_vnSynIDs);
    file(resps.m_vstrIndName, resps.m_vstrLinkName, resps.m_vstrSynName);
    file(resps.m_vnLinkRef, resps.m_vnSynRef);
    file.since(2, resps.m_vnPassFail);
    file(resps.m_mnLinkSubj, resps.m_mnLinkType, resps.m_mnSynSubj, resps.m_mnSynType);
    file.since(4, resps.m_mnSynLen);
    file.since(3, resps.m_vnRandIndex, resps.m_vnRBOParam);
  };
  static void Complete(CDResp& resps, long stored) {
    if (stored < 4) resps.m_mnSynLen = OnesFor(resps.m_mnSynSubj);
  }
};
template class vbPersistentClass<CDResp>;

void CDResp::SetDefaultAttributes() {
  *this = CDResp(Database());
}

void CDResp::GetSeq(std::valarray<int>& seq) const {
  kestdb::CopyElements(m_vnSeq, seq);
}

void CDResp::GetType(std::valarray<int>& type) const {
  kestdb::CopyElements(m_vnType, type);
}

void CDResp::GetType(std::vector<int>& type) const {
  kestdb::CopyElements(m_vnType, type);
}

void CDResp::GetIndIDs(std::vector<int>& ids) const {
  kestdb::CopyElements(m_vnIndIDs, ids);
}

void CDResp::GetLinkIDs(std::vector<int>& ids) const {
  kestdb::CopyElements(m_vnLinkIDs, ids);
}

void CDResp::GetSynIDs(std::vector<int>& ids) const {
  kestdb::CopyElements(m_vnSynIDs, ids);
}

void CDResp::GetRBOParams(std::vector<int>& params) const {
  kestdb::CopyElements(m_vnRBOParam, params);
}

void CDResp::GetLinkSubj(int i, std::vector<int>& row) const {
  kestdb::CopyRow(m_mnLinkSubj, i, "i < m_mnLinkSubj.size()", row);
}

void CDResp::GetLinkSubjType(int i, std::vector<int>& row) const {
  kestdb::CopyRow(m_mnLinkType, i, "i < m_mnLinkType.size()", row);
}

void CDResp::GetSynSubj(int i, std::vector<int>& row) const {
  kestdb::CopyRow(m_mnSynSubj, i, "i < m_mnSynSubj.size()", row);
}

void CDResp::GetSynSubjType(int i, std::vector<int>& row) const {
  kestdb::CopyRow(m_mnSynType, i, "i < m_mnSynType.size()", row);
}

void CDResp::GetSynSubjLength(int i, std::vector<int>& row) const {
  kestdb::CopyRow(m_mnSynLen, i, "i < m_mnSynLen.size()", row);
}

std::string CDResp::GetName(int nKind, int i) const {
  switch (nKind) {
    case vbIndependentResp:
      return kestdb::ElementAt(m_vstrIndName, i);
    case vbLinkedResp:
      return kestdb::ElementAt(m_vstrLinkName, i);
    case vbSyntheticResp:
      return kestdb::ElementAt(m_vstrSynName, i);
    default:
      return "";
  }
}

void CDResp::SetIndName(const std::string& name, int i) {
  kestdb::ElementAt(m_vstrIndName, i) = name;
}

void CDResp::SetLinkName(const std::string& name, int i) {
  kestdb::ElementAt(m_vstrLinkName, i) = name;
}

void CDResp::SetSynName(const std::string& name, int i) {
  kestdb::ElementAt(m_vstrSynName, i) = name;
}

namespace {

/// The bounds of the responses of a kind.
struct KindBounds {
  std::vector<double>& lower;
  std::vector<double>& lowerScale;
  std::vector<double>& upper;
  std::vector<double>& upperScale;

  void Clear(std::size_t size) {
    lower.assign(size, 0.0);
    lowerScale.assign(size, -1.0);
    upper.assign(size, 0.0);
    upperScale.assign(size, -1.0);
  }
  void Set(long position, bool isLower, double bound, double scale) {
    kestdb::ElementAt(isLower ? lower : upper, position) = bound;
    kestdb::ElementAt(isLower ? lowerScale : upperScale, position) = scale;
  }
};

}  // namespace

void CDResp::GetConstrBounds(std::vector<double>& indLower, std::vector<double>& indLowerScale,
                             std::vector<double>& indUpper, std::vector<double>& indUpperScale,
                             std::vector<double>& linkLower, std::vector<double>& linkLowerScale,
                             std::vector<double>& linkUpper, std::vector<double>& linkUpperScale,
                             std::vector<double>& synLower, std::vector<double>& synLowerScale,
                             std::vector<double>& synUpper,
                             std::vector<double>& synUpperScale) try {
  if (Database() == nullptr) Throw<CNoDatabaseOpen>();
  const CLock lock(Database(), 0);
  CDCons cons(Database());
  cons.m_nID = m_nID;
  if (!cons.GetObject()) Throw<CObjectNotFound>();
  std::array<KindBounds, 3> kinds{KindBounds{indLower, indLowerScale, indUpper, indUpperScale},
                                  KindBounds{linkLower, linkLowerScale, linkUpper, linkUpperScale},
                                  KindBounds{synLower, synLowerScale, synUpper, synUpperScale}};
  kinds[0].Clear(m_vnIndIDs.size());
  kinds[1].Clear(m_vnLinkIDs.size());
  kinds[2].Clear(m_vnSynIDs.size());
  for (std::size_t i = 0; i < cons.m_vnSubjType.size(); ++i) {
    const long kind = cons.m_vnSubjType[i];
    if (kind < vbLinkedVar || kind > vbSyntheticResp) Throw<CInvalidType>();
    if (kind < vbIndependentResp) continue;
    const auto at = static_cast<long>(i);
    kinds[static_cast<std::size_t>(kind - vbIndependentResp)].Set(
        kestdb::ElementAt(cons.m_vnSubj, at), kestdb::ElementAt(cons.m_vnMult, at) == -1,
        kestdb::ElementAt(cons.m_vfBound, at), kestdb::ElementAt(cons.m_vfScale, at));
  }
}
LOG_AND_RETHROW

void CDResp::IDRespObjects(std::vector<int>& ids, std::vector<int>& kinds,
                           std::vector<int>& positions, std::vector<int>& sizes,
                           std::vector<int>& entries) const try {
  const auto idsOf = [this](int kind) -> const std::vector<vbINT32>& {
    switch (kind) {
      case vbIndependentResp:
        return m_vnIndIDs;
      case vbLinkedResp:
        return m_vnLinkIDs;
      case vbSyntheticResp:
        return m_vnSynIDs;
      default:
        Throw<CInvalidType>();
    }
  };
  kestdb::FoldEntries(m_vnSeq, m_vnType, idsOf, ids, kinds, positions, sizes, entries);
}
LOG_AND_RETHROW
