#include "environment/Logging.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "task/DResp.h"
#include "task/DVar.h"
#include "task/Task.h"
#include "task/TaskGroups.h"
#include "task/TaskTables.h"

// The table of a task's responses, made from the study's.

namespace kestdb {

/// -4 and -5 are the probabilities of failure of a series and of a parallel system.
bool StartsRandom(const CResp& resp) {
  if (resp.m_nRandom == 0) return false;
  switch (resp.m_nRandomParam) {
    case 0:
    case -1:
    case -4:
    case -5:
      return true;
    default:
      return false;
  }
}

}  // namespace kestdb

namespace {

using kestdb::ElementAt;

/// How many scalars of each kind there are.
struct ResponseCounts {
  int independent;
  int linked;
  int synthetic;
  int random;

  std::size_t Entries() const {
    return static_cast<std::size_t>(long{independent} + linked + synthetic);
  }
};

/// Fills the table entry by entry.
class ResponseTable {
 public:
  ResponseTable(POD* pod, const ResponseCounts& counts) : resps(pod) { Resize(counts); }

  void Enter(const CResp& resp, unsigned long element);

 private:
  void Resize(const ResponseCounts& counts);
  void EnterRandom(const CResp& resp);
  void EnterKind(int kind, long position);

  long entry_ = 0;
  long independent_ = 0;
  long linked_ = 0;
  long synthetic_ = 0;
  long random_ = -1;

 public:
  CDResp resps;
};

void ResponseTable::Resize(const ResponseCounts& counts) {
  const std::size_t entries = counts.Entries();
  resps.m_vnSeq.resize(entries);
  resps.m_vnType.resize(entries);
  if (counts.random > 0) {
    resps.m_vnRandIndex.assign(entries, -1);
    resps.m_vnRBOParam.resize(entries);
  }
  const auto independent = static_cast<std::size_t>(counts.independent);
  resps.m_vnIndIDs.resize(independent);
  resps.m_vstrIndName.resize(independent);
  resps.m_vnPassFail.resize(independent);
  const auto linked = static_cast<std::size_t>(counts.linked);
  resps.m_vnLinkIDs.resize(linked);
  resps.m_vstrLinkName.resize(linked);
  resps.m_vnLinkRef.resize(linked);
  const auto synthetic = static_cast<std::size_t>(counts.synthetic);
  resps.m_vnSynIDs.resize(synthetic);
  resps.m_vstrSynName.resize(synthetic);
  resps.m_vnSynRef.resize(synthetic);
}

void ResponseTable::Enter(const CResp& resp, unsigned long element) {
  EnterRandom(resp);
  const std::string name = kestdb::EntryName(resp, element);
  switch (kestdb::KindOfResp(resp.m_nType)) {
    case vbIndependentResp: {
      constexpr int passFail = 3;
      const long at = independent_++;
      EnterKind(vbIndependentResp, at);
      ElementAt(resps.m_vnIndIDs, at) = resp.m_nID;
      ElementAt(resps.m_vstrIndName, at) = name;
      ElementAt(resps.m_vnPassFail, at) = resp.m_nType == passFail ? 1 : 0;
      break;
    }
    case vbLinkedResp: {
      const long at = linked_++;
      EnterKind(vbLinkedResp, at);
      ElementAt(resps.m_vnLinkIDs, at) = resp.m_nID;
      ElementAt(resps.m_vstrLinkName, at) = name;
      ElementAt(resps.m_vnLinkRef, at) = resp.m_nAuxID;
      break;
    }
    case vbSyntheticResp: {
      const long at = synthetic_++;
      EnterKind(vbSyntheticResp, at);
      ElementAt(resps.m_vnSynIDs, at) = resp.m_nID;
      ElementAt(resps.m_vstrSynName, at) = name;
      ElementAt(resps.m_vnSynRef, at) = resp.m_nAuxID;
      break;
    }
    default:
      LError("Invalid Resp object type!\n");
      Throw<CInvalidType>();
  }
  ++entry_;
}

void ResponseTable::EnterRandom(const CResp& resp) {
  if (resp.m_nRandom == 0) return;
  if (kestdb::StartsRandom(resp)) ++random_;
  ElementAt(resps.m_vnRandIndex, entry_) = random_;
  ElementAt(resps.m_vnRBOParam, entry_) = resp.m_nRandomParam;
}

void ResponseTable::EnterKind(int kind, long position) {
  ElementAt(resps.m_vnSeq, entry_) = position;
  ElementAt(resps.m_vnType, entry_) = kind;
}

/// A link takes variables of every kind and independent responses; an equation links as well.
void ResolveResponses(CDResp& resps, const CDVar& vars, kestdb::DefinitionReader<CInput>& inputs,
                      kestdb::DefinitionReader<CResp>& definitions) {
  const kestdb::PositionTable independent(vars.m_vnIndIDs);
  const kestdb::PositionTable linked(vars.m_vnLinkIDs);
  const kestdb::PositionTable synthetic(vars.m_vnSynIDs);
  const kestdb::PositionTable constant(vars.m_vnConstIDs);
  const kestdb::PositionTable responses(resps.m_vnIndIDs);
  const kestdb::PositionTable linkedResponses(resps.m_vnLinkIDs);
  kestdb::ArgumentResolver resolver(inputs, definitions);
  std::vector<kestdb::ArgumentPass> passes{
      {0, vbIndependentVar, independent}, {4, vbIndependentVar, independent},
      {5, vbIndependentVar, independent}, {1, vbLinkedVar, linked},
      {2, vbSyntheticVar, synthetic},     {3, vbConstantVar, constant},
      {6, vbConstantVar, constant},       {0, vbIndependentResp, responses}};
  kestdb::ArgumentTable links =
      kestdb::ResolveAll(vbLinkedResp, resps.m_vnLinkIDs, definitions, resolver, passes, false);
  resps.m_mnLinkSubj = std::move(links.positions);
  resps.m_mnLinkType = std::move(links.kinds);
  passes.push_back({1, vbLinkedResp, linkedResponses});
  kestdb::ArgumentTable equations =
      kestdb::ResolveAll(vbSyntheticResp, resps.m_vnSynIDs, definitions, resolver, passes, true);
  resps.m_mnSynSubj = std::move(equations.positions);
  resps.m_mnSynType = std::move(equations.kinds);
  resps.m_mnSynLen = std::move(equations.lengths);
}

}  // namespace

void CTask::SetupDResp(int nInd, int nLink, int nSyn, int nRandom,
                       const std::vector<int>& vnIDs) try {
  if (Database() == nullptr) Throw<CNoDatabaseOpen>();
  if (nInd < 0 || nLink < 0 || nSyn < 0) Throw<CInvalidArgument>();
  const CLock lock(Database(), 0);
  CDVar vars(Database());
  vars.m_nID = m_nID;
  if (!vars.GetObject()) Throw<CObjectNotFound>();
  kestdb::DefinitionReader<CInput> inputs(Database());
  kestdb::DefinitionReader<CResp> definitions(Database());
  ResponseTable table(Database(), {nInd, nLink, nSyn, nRandom});
  kestdb::ForEachEntry(vnIDs, definitions, [&table](const CResp& resp, unsigned long element) {
    table.Enter(resp, element);
  });
  ResolveResponses(table.resps, vars, inputs, definitions);
  table.resps.m_nID = m_nID;
  table.resps.PutObject();
}
LOG_AND_RETHROW
