#include <cmath>
#include <vector>

#include "definition/LoadedDefinition.h"
#include "definition/Resp.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/podcheck.h"
#include "store/walk.h"
#include "task/DCons.h"
#include "task/DObj.h"
#include "task/DResp.h"
#include "task/DVar.h"

// Responses made again from those of a task.

namespace {

using kestdb::ElementAt;

/// The constraints on the responses of a kind. A negative scale stands for no bound.
struct KindLimits {
  std::vector<double> lower;
  std::vector<double> lowerScale;
  std::vector<double> upper;
  std::vector<double> upperScale;
};

struct Limits {
  KindLimits independent;
  KindLimits linked;
  KindLimits synthetic;
};

Limits LimitsOf(CDResp& resps) {
  // Asked for here, since the bounds tell of a missing table in their own way.
  kestdb::RequireByID<CDCons, CGetObject>(resps.Database(), resps.m_nID);
  Limits all;
  KindLimits& i = all.independent;
  KindLimits& l = all.linked;
  KindLimits& s = all.synthetic;
  resps.GetConstrBounds(i.lower, i.lowerScale, i.upper, i.upperScale, l.lower, l.lowerScale,
                        l.upper, l.upperScale, s.lower, s.lowerScale, s.upper, s.upperScale);
  return all;
}

/// The fields of a response about one of its bounds.
struct Side {
  vbINT32& isGiven;
  vbFLOAT64& bound;
  vbINT32& isScaled;
  vbFLOAT64& scale;
};

/// Kept: a task gives a bound below 1 a scale of 1, which comes back as the user's own; a scale of
/// the user's that equals the bound comes back as none.
bool IsOwnScale(double bound, double scale) {
  return scale != std::abs(bound) && !(scale == 1.0 && bound == 0.0);
}

/// False for no bound.
bool LoadSide(double bound, double scale, const Side& side) {
  if (!(scale >= 0.0)) return false;
  side.isGiven = 1;
  side.bound = bound;
  side.isScaled = IsOwnScale(bound, scale) ? 1 : 0;
  side.scale = scale;
  return true;
}

void LoadLimits(const KindLimits& limits, long at, CResp& resp) {
  const bool hasLower =
      LoadSide(ElementAt(limits.lower, at), ElementAt(limits.lowerScale, at),
               {resp.m_nHasLower, resp.m_fLower, resp.m_nHasLowerScale, resp.m_fLowerScale});
  const bool hasUpper =
      LoadSide(ElementAt(limits.upper, at), ElementAt(limits.upperScale, at),
               {resp.m_nHasUpper, resp.m_fUpper, resp.m_nHasUpperScale, resp.m_fUpperScale});
  resp.m_nConstraint = hasLower || hasUpper ? 1 : 0;
}

/// Makes responses from those of a task.
class RespLoader {
 public:
  RespLoader(POD* pod, const CDVar& vars, const CDResp& resps, const Limits& limits)
      : pod_(pod), resps_(resps), limits_(limits), arguments_(vars, resps) {}

  CResp Load(const kestdb::Fold& fold, std::size_t i) const;

 private:
  void LoadIndependent(long at, CResp& resp) const;
  void LoadLinked(long at, CResp& resp) const;
  void LoadSynthetic(long at, CResp& resp) const;

  POD* pod_;
  const CDResp& resps_;
  const Limits& limits_;
  const kestdb::LoadedArguments arguments_;
};

CResp RespLoader::Load(const kestdb::Fold& fold, std::size_t i) const {
  CResp resp(pod_);
  kestdb::Identify(fold, i, resp);
  kestdb::LoadRandom(resps_, resps_.m_vnRBOParam, fold.entries[i], resp);
  const long at = fold.positions[i];
  switch (fold.kinds[i]) {
    case vbIndependentResp:
      LoadIndependent(at, resp);
      break;
    case vbLinkedResp:
      LoadLinked(at, resp);
      break;
    default:  // the fold has no other kinds
      LoadSynthetic(at, resp);
  }
  return resp;
}

void RespLoader::LoadIndependent(long at, CResp& resp) const {
  constexpr int independent = 0;
  constexpr int passFail = 3;
  // Older tables lack the flags.
  const long flag = kestdb::ElementOr(resps_.m_vnPassFail, static_cast<std::size_t>(at), 0);
  resp.m_nType = flag == 1 ? passFail : independent;
  resp.m_strName = kestdb::NameOfArray(ElementAt(resps_.m_vstrIndName, at), resp.m_uSize);
  LoadLimits(limits_.independent, at, resp);
}

void RespLoader::LoadLinked(long at, CResp& resp) const {
  resp.m_nType = 1;
  resp.m_strName = kestdb::NameOfArray(ElementAt(resps_.m_vstrLinkName, at), resp.m_uSize);
  resp.m_nAuxID = ElementAt(resps_.m_vnLinkRef, at);
  arguments_.Load(kestdb::LinkArguments(resps_, at), resp);
  LoadLimits(limits_.linked, at, resp);
}

void RespLoader::LoadSynthetic(long at, CResp& resp) const {
  resp.m_nType = 2;
  resp.m_strName = kestdb::NameOfArray(ElementAt(resps_.m_vstrSynName, at), resp.m_uSize);
  resp.m_nAuxID = ElementAt(resps_.m_vnSynRef, at);
  arguments_.Load(kestdb::SyntheticArguments(resps_, at), resp);
  LoadLimits(limits_.synthetic, at, resp);
}

}  // namespace

void CResp::CreateAuxInfo(CDVar& var, CDResp& resp, std::vector<int>& args, std::vector<int>& types,
                          std::vector<int>& lengths) try {
  kestdb::ArgumentRow row;
  row.positions = args;
  row.kinds = types;
  row.lengths = lengths;
  kestdb::LoadedArguments(var, resp).Load(row, *this);
}
LOG_AND_RETHROW

void CResp::LoadResps(int taskID, POD* pod) try {
  kestdb::RequireIndexed(pod);
  const CLock lock(pod, 0);
  auto resps = kestdb::RequireByID<CDResp, CGetObject>(pod, taskID);
  const auto vars = kestdb::RequireByID<CDVar, CGetObject>(pod, taskID);
  const kestdb::Fold fold = kestdb::FoldOf(resps);
  const Limits limits = LimitsOf(resps);
  const RespLoader loader(pod, vars, resps, limits);
  for (std::size_t i = 0; i < fold.ids.size(); ++i) loader.Load(fold, i).PutObject();
}
LOG_AND_RETHROW

void CResp::UpdateObj(int taskID, POD* pod) try {
  kestdb::RequireIndexed(pod);
  const CLock lock(pod, 0);
  const auto terms = kestdb::RequireByID<CDObj, CGetObject>(pod, taskID);
  const auto resps = kestdb::RequireByID<CDResp, CGetObject>(pod, taskID);
  kestdb::LoadGoals<CResp>(pod, terms, resps);
}
LOG_AND_RETHROW
