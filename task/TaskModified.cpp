#include <algorithm>
#include <utility>

#include "maintenance/Lock.h"
#include "results/DPoint.h"
#include "store/KestErr.h"
#include "store/walk.h"
#include "task/DCons.h"
#include "task/DEqn.h"
#include "task/DLink.h"
#include "task/DObj.h"
#include "task/DResp.h"
#include "task/DSet.h"
#include "task/DVar.h"
#include "task/DerivedTask.h"
#include "task/FixedVariables.h"
#include "task/Task.h"

// A task like another one, with some of its independent variables fixed.

namespace {

/// What changes, for each independent scalar.
struct Changes {
  const std::valarray<bool>& fix;
  const std::valarray<double>& values;
  const std::valarray<double>& lower;
  const std::valarray<double>& upper;

  void RequireElements(unsigned long independent) const {
    const std::size_t least = std::min({fix.size(), values.size(), lower.size(), upper.size()});
    if (least < independent) Throw<CInvalidArgument>();
  }
};

kestdb::FixedVariables CopyVariables(POD* pod, const vbINT32& from, CTask& task,
                                     const Changes& changes) {
  auto vars = kestdb::RequireByID<CDVar, CGetObject>(pod, from);
  changes.RequireElements(vars.m_vnIndIDs.size());
  kestdb::FixedVariables fixed(changes.fix, vars);
  fixed.Apply(vars);
  vars.m_nID = task.m_nID;
  vars.PutObject();
  task.m_uNumIndDV = vars.m_vnIndIDs.size();
  task.m_uNumConstDV = vars.m_vnConstIDs.size();
  return fixed;
}

void CopyTables(POD* pod, const vbINT32& from, const vbINT32& to,
                const kestdb::FixedVariables& fixed, const Changes& changes) {
  kestdb::CopyRecord<CDResp, CMakeTask>(pod, from, to, [&](CDResp& resps) { fixed.Apply(resps); });
  kestdb::CopyRecord<CDCons, CGetObject>(
      pod, from, to, [&](CDCons& cons) { fixed.Apply(cons, changes.lower, changes.upper); });
  kestdb::CopyRecord<CDObj, CGetObject>(pod, from, to, [&](CDObj& terms) { fixed.Apply(terms); });
  kestdb::CopyRecord<CDLink>(pod, from, to);
  kestdb::CopyRecord<CDEqn>(pod, from, to);
  kestdb::CopyRecord<CDSet>(pod, from, to);
}

void CopyPoints(POD* pod, const CTask& old, CTask& task, const kestdb::FixedVariables& fixed,
                const Changes& changes) {
  const auto fix = [&](CDPoint& point) {
    fixed.Apply(point.m_IDVar, point.m_CDVar, changes.values);
  };
  CDPoint first = kestdb::RequirePoint(pod, old.m_nID, 0);
  fix(first);
  kestdb::StorePoint(first, task.m_nID, 0);
  kestdb::CopyOtherStartingPoints(old, 0, task, fix);
}

}  // namespace

int CTask::CreateModifiedGPostTask(std::string strTitle, std::valarray<bool>& vbFix,
                                   std::valarray<double>& vfValue, std::valarray<double>& vfLower,
                                   std::valarray<double>& vfUpper) try {
  if (Database() == nullptr) Throw<CNoDatabaseOpen>();
  const CLock lock(Database(), 0);
  const auto old = kestdb::RequireByID<CTask, CGetObject>(Database(), m_nID);
  const Changes changes{vbFix, vfValue, vfLower, vfUpper};
  changes.RequireElements(old.m_uNumIndDV);
  CTask task = kestdb::DeriveTask(Database(), old);
  task.m_strTitle = std::move(strTitle);
  kestdb::StoreEmptyMessages(Database(), task.m_nID);
  const auto fixed = CopyVariables(Database(), old.m_nID, task, changes);
  CopyTables(Database(), old.m_nID, task.m_nID, fixed, changes);
  kestdb::StoreFreshResult(Database(), task.m_nID);
  CopyPoints(Database(), old, task, fixed, changes);
  task.PutObject();
  return static_cast<int>(long{task.m_nID});
}
LOG_AND_RETHROW
