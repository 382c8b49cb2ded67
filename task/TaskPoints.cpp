#include <algorithm>
#include <limits>

#include "definition/GPoint.h"
#include "environment/Logging.h"
#include "maintenance/Lock.h"
#include "results/DPoint.h"
#include "results/Result.h"
#include "store/KestErr.h"
#include "store/walk.h"
#include "task/DCons.h"
#include "task/DResp.h"
#include "task/DSet.h"
#include "task/DVar.h"
#include "task/Task.h"
#include "task/TaskTables.h"

// The starting points of a task: the user's, those of combinatorial variables, and the constraints
// that points of a design of experiments are filtered by.

namespace {

using kestdb::ElementAt;

/// The record of a task. THROWS CGetObject.
template <class Record>
Record GetOf(POD* pod, int task) {
  return kestdb::RequireByID<Record, CGetObject>(pod, task);
}

void StorePointCount(POD* pod, int task, int count) {
  auto result = GetOf<CResult>(pod, task);
  result.m_nNumPoints = result.m_nTotalPoints = count;
  result.PutObject();
}

/// Puts the values of a row, one for each entry, into the arrays of their kinds. `arrayOf(kind)` is
/// null for a kind that doesn't belong here.
template <class Table, class ArrayOf>
void Spread(const std::vector<vbFLOAT64>& row, const Table& table, ArrayOf arrayOf,
            const char* invalidKind) {
  for (std::size_t i = 0; i < table.m_vnType.size(); ++i) {
    std::valarray<double>* values = arrayOf(static_cast<int>(long{table.m_vnType[i]}));
    if (values == nullptr) {
      LError("%s", invalidKind);
      Throw<CInvalidType>();
    }
    const auto entry = static_cast<long>(i);
    ElementAt(*values, ElementAt(table.m_vnSeq, entry)) = ElementAt(row, entry);
  }
}

std::valarray<double>* VariablesOf(CDPoint& point, int kind) {
  switch (kind) {
    case vbIndependentVar:
      return &point.m_IDVar;
    case vbLinkedVar:
      return &point.m_LDVar;
    case vbSyntheticVar:
      return &point.m_SDVar;
    case vbConstantVar:
      return &point.m_CDVar;
    default:
      return nullptr;
  }
}

std::valarray<double>* ResponsesOf(CDPoint& point, int kind) {
  switch (kind) {
    case vbIndependentResp:
      return &point.m_IResp;
    case vbLinkedResp:
      return &point.m_LResp;
    case vbSyntheticResp:
      return &point.m_SResp;
    default:
      return nullptr;
  }
}

vbINT32 FlagAt(const std::vector<vbINT32>& flags, std::size_t i) {
  return i < flags.size() ? flags[i] : vbINT32(0);
}

/// The sizes of the arrays of a point.
struct PointSizes {
  int independent, linked, synthetic, constant;
  int independentResps, linkedResps, syntheticResps;
};

/// A point with the variables of row i of the user's table and, where they are known, its
/// responses.
CDPoint PointOfRow(POD* pod, const CGPoint& points, std::size_t i, const PointSizes& sizes,
                   const CDVar& vars, const CDResp& resps) {
  const auto at = static_cast<long>(i);
  CDPoint point(pod);
  point.m_IDVar.resize(static_cast<std::size_t>(sizes.independent));
  point.m_LDVar.resize(static_cast<std::size_t>(sizes.linked));
  point.m_SDVar.resize(static_cast<std::size_t>(sizes.synthetic));
  point.m_CDVar.resize(static_cast<std::size_t>(sizes.constant));
  Spread(
      ElementAt(points.m_vDVars, at), vars, [&point](int kind) { return VariablesOf(point, kind); },
      "Invalid Input object type!\n");
  if (FlagAt(points.m_vnRun, i) != 0) return point;
  point.m_IResp.resize(static_cast<std::size_t>(sizes.independentResps));
  point.m_LResp.resize(static_cast<std::size_t>(sizes.linkedResps));
  point.m_SResp.resize(static_cast<std::size_t>(sizes.syntheticResps));
  Spread(
      ElementAt(points.m_vResps, at), resps,
      [&point](int kind) { return ResponsesOf(point, kind); }, "Invalid Resp object type!\n");
  return point;
}

}  // namespace

void CTask::SetupDPoints(int nInd, int nLink, int nSyn, int nConst, int nIResp, int nLResp,
                         int nSResp) try {
  if (Database() == nullptr) Throw<CNoDatabaseOpen>();
  const CLock lock(Database(), 0);
  CGPoint points(Database());
  if (!points.GetObject()) Throw<CGetObject>();
  const int used = points.NumUsedGPoints();
  if (used == 0) return;
  if (used < 0) {
    LError("Invalid number of user defined design points (%d)\n", used);
    Throw<CMakeTask>();
  }
  const int task = static_cast<int>(long{m_nID});
  const auto vars = GetOf<CDVar>(Database(), task);
  const auto resps = GetOf<CDResp>(Database(), task);
  const PointSizes sizes{nInd, nLink, nSyn, nConst, nIResp, nLResp, nSResp};
  // Optimisations by gradients and by response surfaces keep the point that is there already.
  const bool keepsFirst = m_nType == 0 || m_nType == 1;
  std::vector<int> analyze(keepsFirst ? 1 : 0, 1);
  std::vector<vbINT32> locked(analyze.size(), 0);
  for (std::size_t i = 0; i < points.m_vnUsed.size(); ++i) {
    if (points.m_vnUsed[i] == 0) continue;
    CDPoint point = PointOfRow(Database(), points, i, sizes, vars, resps);
    point.m_nTaskID = m_nID;
    point.m_nPointID = static_cast<int>(analyze.size());
    point.PutObject();
    analyze.push_back(static_cast<int>(long{FlagAt(points.m_vnRun, i)}));
    locked.push_back(FlagAt(points.m_vnLocked, i));
  }
  StorePointCount(Database(), task, static_cast<int>(analyze.size()));
  SetAnalyzeFlags(analyze);
  m_vnPointLocked = std::move(locked);
  m_uNumPoints = analyze.size();
}
LOG_AND_RETHROW

namespace {

/// A variable whose constant takes each admitted value of a set.
struct Combinatorial {
  int position;
  std::vector<double> values;
};

/// The members of the set that a constant's bounds admit.
std::vector<double> AdmittedValues(const CDVar& vars, const CDSet& sets, long position) {
  const auto id = ElementAt(vars.m_vnConstSet, position);
  const auto set = std::find(sets.m_vnAuxID.begin(), sets.m_vnAuxID.end(), id);
  if (set == sets.m_vnAuxID.end()) Throw<CDiscreteSetErr>();
  const double lower = ElementAt(vars.m_vfConstLower, position);
  const double upper = ElementAt(vars.m_vfConstUpper, position);
  std::vector<double> admitted;
  for (const double value : ElementAt(sets.m_mdValues, set - sets.m_vnAuxID.begin())) {
    if (!(value < lower) && !(value > upper)) admitted.push_back(value);
  }
  return admitted;
}

bool HasCombinatorial(const CDVar& vars) {
  return vars.m_vnConstSet.size() > 0 && vars.m_vnConstSet.max() >= 1;
}

/// The combinatorial variables in transfer order.
std::vector<Combinatorial> CombinatorialOf(const CDVar& vars, const CDSet& sets) {
  std::vector<Combinatorial> variables;
  for (std::size_t i = 0; i < vars.m_vnType.size(); ++i) {
    if (vars.m_vnType[i] != vbConstantVar) continue;
    const long position = ElementAt(vars.m_vnSeq, static_cast<long>(i));
    if (ElementAt(vars.m_vnConstSet, position) < 1) continue;
    variables.push_back({static_cast<int>(position), AdmittedValues(vars, sets, position)});
  }
  return variables;
}

}  // namespace

int CTask::SetupDPointsCombin(POD* pod, int nTask, bool bCreate) try {
  if (pod == nullptr) Throw<CNoDatabaseOpen>();
  const CLock lock(pod, 0);
  const auto vars = GetOf<CDVar>(pod, nTask);
  if (!HasCombinatorial(vars)) return 0;
  const auto sets = GetOf<CDSet>(pod, nTask);
  // Point 0 stays as it is; the combinations start as one copy of it.
  if (bCreate) CopyPointModifyConst(pod, nTask, 0, 1, 0, 0.0, false);
  constexpr long most = std::numeric_limits<int>::max();
  long combinations = 1;
  long last = 1;
  for (const auto& [position, values] : CombinatorialOf(vars, sets)) {
    for (std::size_t i = 0; bCreate && i < values.size(); ++i) {
      // The first value goes into the points that are there, each other one into copies of them.
      for (long point = 1; point <= combinations; ++point) {
        const long target = i == 0 ? point : ++last;
        CopyPointModifyConst(pod, nTask, static_cast<int>(point), static_cast<int>(target),
                             position, values[i], true);
      }
    }
    combinations = std::min(combinations * static_cast<long>(values.size()), most);
  }
  return static_cast<int>(combinations);
}
LOG_AND_RETHROW

void CTask::CopyPointModifyConst(POD* pod, int nTask, int nFrom, int nTo, int nConst, double fValue,
                                 bool bModify) try {
  if (pod == nullptr) Throw<CNoDatabaseOpen>();
  const CLock lock(pod, 0);
  CDPoint point(pod);
  point.m_nTaskID = nTask;
  point.m_nPointID = nFrom;
  if (!point.GetObject()) Throw<CGetObject>();
  if (bModify) ElementAt(point.m_CDVar, nConst) = fValue;
  point.m_nPointID = nTo;
  point.PutObject();
  StorePointCount(pod, nTask, nTo + 1);
}
LOG_AND_RETHROW

namespace {

bool AreVariables(const std::vector<vbINT32>& kinds) {
  return std::none_of(kinds.begin(), kinds.end(),
                      [](const vbINT32& kind) { return kind >= vbIndependentResp; });
}

/// Whether a constraint can be told before the design has run: it is on variables only.
bool IsOnVariables(const CDResp& resps, int kind, long position) {
  switch (kind) {
    case vbIndependentVar:
    case vbLinkedVar:
    case vbSyntheticVar:
    case vbConstantVar:
      return true;
    case vbIndependentResp:
      return false;
    case vbLinkedResp:
      return AreVariables(ElementAt(resps.m_mnLinkType, position));
    case vbSyntheticResp:
      return AreVariables(ElementAt(resps.m_mnSynType, position));
    default:
      LError("Invalid Input/Resp object type!\n");
      Throw<CInvalidType>();
  }
}

/// The elements whose flag is set.
template <class To, class From>
std::vector<To> Kept(const std::vector<From>& elements, const std::vector<bool>& keep) {
  std::vector<To> kept;
  for (std::size_t i = 0; i < keep.size(); ++i) {
    if (keep[i]) kept.push_back(static_cast<To>(ElementAt(elements, static_cast<long>(i))));
  }
  return kept;
}

}  // namespace

void CTask::SetupDOEDCons() try {
  if (Database() == nullptr) Throw<CNoDatabaseOpen>();
  const CLock lock(Database(), 0);
  CDCons cons(Database());
  CDResp resps(Database());
  cons.m_nID = resps.m_nID = m_nID;
  if (!cons.GetObject() || !resps.GetObject()) Throw<CObjectNotFound>();
  std::vector<bool> keep;
  for (std::size_t i = 0; i < cons.m_vnSubjType.size(); ++i) {
    keep.push_back(IsOnVariables(resps, static_cast<int>(long{cons.m_vnSubjType[i]}),
                                 ElementAt(cons.m_vnSubj, static_cast<long>(i))));
  }
  if (std::find(keep.begin(), keep.end(), false) == keep.end()) return;
  cons.SetSubj(Kept<int>(cons.m_vnSubj, keep));
  cons.SetSubjType(Kept<int>(cons.m_vnSubjType, keep));
  cons.SetMult(Kept<int>(cons.m_vnMult, keep));
  cons.SetBound(Kept<double>(cons.m_vfBound, keep));
  cons.SetScale(Kept<double>(cons.m_vfScale, keep));
  cons.PutObject();
  m_uNumCons = cons.m_vnSubj.size();
}
LOG_AND_RETHROW
