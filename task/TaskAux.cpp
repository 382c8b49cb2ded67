#include <algorithm>
#include <unordered_set>

#include "definition/Auxiliary.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/walk.h"
#include "task/DEqn.h"
#include "task/DLink.h"
#include "task/DResp.h"
#include "task/DSet.h"
#include "task/DVar.h"
#include "task/Task.h"

// The links, synthetic functions and discrete sets that a task uses.

namespace {

template <class Table>
Table TableOf(const CTask& task) {
  return kestdb::RequireByID<Table, CObjectNotFound>(task.Database(), task.m_nID);
}

/// The definitions that the entries refer to.
class References {
 public:
  template <class IDs>
  void Add(const IDs& ids) {
    for (std::size_t i = 0; i < ids.size(); ++i) ids_.insert(static_cast<int>(long{ids[i]}));
  }
  bool Hold(int id) const { return ids_.contains(id); }

 private:
  std::unordered_set<int> ids_;
};

/// Stores the definitions that are referred to, in the order of their IDs, also when there are
/// none.
template <class Table>
Table MakeTable(const CTask& task, const std::set<int>& ids, const References& references,
                void (Table::*add)(CAuxiliary&)) {
  Table table(task.Database());
  table.m_nID = task.m_nID;
  for (const int id : ids) {
    if (!references.Hold(id)) continue;
    auto definition = kestdb::RequireByID<CAuxiliary, CObjectNotFound>(task.Database(), id);
    (table.*add)(definition);
  }
  table.PutObject();
  return table;
}

}  // namespace

bool CTask::IsAuxRef(int nID, std::vector<int>& vnA, std::vector<int>& vnB) {
  const auto holds = [nID](const std::vector<int>& ids) {
    return std::find(ids.begin(), ids.end(), nID) != ids.end();
  };
  return holds(vnA) || holds(vnB);
}

void CTask::SetupDLink(std::set<int>& ids) try {
  if (Database() == nullptr) Throw<CNoDatabaseOpen>();
  const CLock lock(Database(), 0);
  References references;
  references.Add(TableOf<CDVar>(*this).m_vnLinkRef);
  references.Add(TableOf<CDResp>(*this).m_vnLinkRef);
  m_uNumLinks = MakeTable(*this, ids, references, &CDLink::AddLink).m_vnAuxID.size();
}
LOG_AND_RETHROW

void CTask::SetupDEqn(std::set<int>& ids) try {
  if (Database() == nullptr) Throw<CNoDatabaseOpen>();
  const CLock lock(Database(), 0);
  References references;
  references.Add(TableOf<CDVar>(*this).m_vnSynRef);
  references.Add(TableOf<CDResp>(*this).m_vnSynRef);
  m_uNumEqns = MakeTable(*this, ids, references, &CDEqn::AddEqn).m_vstrName.size();
}
LOG_AND_RETHROW

void CTask::SetupDSet(std::set<int>& ids) try {
  if (Database() == nullptr) Throw<CNoDatabaseOpen>();
  const CLock lock(Database(), 0);
  const auto vars = TableOf<CDVar>(*this);
  References references;
  references.Add(vars.m_vnDiscreteRef);
  references.Add(vars.m_vnConstSet);
  m_uNumSets = MakeTable(*this, ids, references, &CDSet::AddSet).m_mdValues.size();
}
LOG_AND_RETHROW
