#include "definition/Input.h"
#include "definition/LoadedDefinition.h"
#include "maintenance/Lock.h"
#include "results/DPoint.h"
#include "results/KnownPoints.h"
#include "store/KestErr.h"
#include "store/podcheck.h"
#include "store/walk.h"
#include "task/DObj.h"
#include "task/DVar.h"

// Inputs made again from the variables of a task.

namespace {

using kestdb::ElementAt;

/// Makes Inputs from a task's variables and their values at one of its points.
class InputLoader {
 public:
  InputLoader(POD* pod, const CDVar& vars, const CDPoint& point)
      : pod_(pod), vars_(vars), point_(point), arguments_(vars) {}

  CInput Load(const kestdb::Fold& fold, std::size_t i) const;

 private:
  void LoadIndependent(long at, CInput& input) const;
  void LoadLinked(long at, CInput& input) const;
  void LoadSynthetic(long at, CInput& input) const;
  void LoadConstant(long at, CInput& input) const;

  POD* pod_;
  const CDVar& vars_;
  const CDPoint& point_;
  const kestdb::LoadedArguments arguments_;
};

CInput InputLoader::Load(const kestdb::Fold& fold, std::size_t i) const {
  CInput input(pod_);
  kestdb::Identify(fold, i, input);
  const long random = kestdb::LoadRandom(vars_, vars_.m_vnRandParam, fold.entries[i], input);
  if (random >= 0) {
    input.m_nDistribution =
        kestdb::ElementOr(vars_.m_vnRandDist, static_cast<std::size_t>(random), 0);
  }
  const long at = fold.positions[i];
  switch (fold.kinds[i]) {
    case vbIndependentVar:
      LoadIndependent(at, input);
      break;
    case vbLinkedVar:
      LoadLinked(at, input);
      break;
    case vbSyntheticVar:
      LoadSynthetic(at, input);
      break;
    default:  // the fold has no other kinds
      LoadConstant(at, input);
  }
  return input;
}

void InputLoader::LoadIndependent(long at, CInput& input) const {
  input.m_strName = kestdb::NameOfArray(ElementAt(vars_.m_vstrIndName, at), input.m_uSize);
  input.m_fLower = ElementAt(vars_.m_vfIndLowerIn, at);
  input.m_fUpper = ElementAt(vars_.m_vfIndUpperIn, at);
  input.m_fScale = ElementAt(vars_.m_vfIndScale, at);
  input.m_nUserScale = input.m_fScale > 0.0 ? 1 : 0;
  input.m_fInitial = ElementAt(point_.m_IDVar, at);
  const long set = ElementAt(vars_.m_vnDiscreteRef, at);
  if (set < -1) Throw<CInvalidType>();
  constexpr int independent = 0;
  constexpr int discrete = 4;
  constexpr int integer = 5;
  input.m_nType = set > 0 ? discrete : set == -1 ? integer : independent;
  if (set > 0) input.m_nAuxID = set;
}

void InputLoader::LoadLinked(long at, CInput& input) const {
  input.m_nType = 1;
  input.m_strName = kestdb::NameOfArray(ElementAt(vars_.m_vstrLinkName, at), input.m_uSize);
  input.m_fLower = ElementAt(vars_.m_vfLinkLower, at);
  input.m_fUpper = ElementAt(vars_.m_vfLinkUpper, at);
  input.m_fInitial = ElementAt(point_.m_LDVar, at);
  input.m_nAuxID = ElementAt(vars_.m_vnLinkRef, at);
  if (input.m_nAuxID > 0) arguments_.Load(kestdb::LinkArguments(vars_, at), input);
}

void InputLoader::LoadSynthetic(long at, CInput& input) const {
  input.m_nType = 2;
  input.m_strName = kestdb::NameOfArray(ElementAt(vars_.m_vstrSynName, at), input.m_uSize);
  input.m_fLower = ElementAt(vars_.m_vfSynLower, at);
  input.m_fUpper = ElementAt(vars_.m_vfSynUpper, at);
  input.m_fInitial = ElementAt(point_.m_SDVar, at);
  input.m_nAuxID = ElementAt(vars_.m_vnSynRef, at);
  if (input.m_nAuxID > 0) arguments_.Load(kestdb::SyntheticArguments(vars_, at), input);
}

/// Kept: the bounds of a combinatorial variable, which admit values of its set, are not restored.
void InputLoader::LoadConstant(long at, CInput& input) const {
  constexpr int constant = 3;
  constexpr int combinatorial = 6;
  input.m_strName = kestdb::NameOfArray(ElementAt(vars_.m_vstrConstName, at), input.m_uSize);
  input.m_fInitial = ElementAt(point_.m_CDVar, at);
  const long set = ElementAt(vars_.m_vnConstSet, at);
  input.m_nType = set > 0 ? combinatorial : constant;
  if (set > 0) input.m_nAuxID = set;
}

}  // namespace

void CInput::CreateAuxInfo(CDVar& var, std::vector<int>& args, std::vector<int>& types,
                           std::vector<int>& lengths) try {
  kestdb::ArgumentRow row;
  row.positions = args;
  row.kinds = types;
  row.lengths = lengths;
  kestdb::LoadedArguments(var).Load(row, *this);
}
LOG_AND_RETHROW

void CInput::LoadInputs(int taskID, POD* pod, int pointID) try {
  kestdb::RequireIndexed(pod);
  const CLock lock(pod, 0);
  const auto vars = kestdb::RequireByID<CDVar, CGetObject>(pod, taskID);
  const kestdb::Fold fold = kestdb::FoldOf(vars);
  const long number = pointID < 0 ? kestdb::BestPointOf(pod, taskID) : pointID;
  const CDPoint point = kestdb::RequirePoint(pod, taskID, number);
  const InputLoader loader(pod, vars, point);
  for (std::size_t i = 0; i < fold.ids.size(); ++i) loader.Load(fold, i).PutObject();
}
LOG_AND_RETHROW

void CInput::UpdateObj(int taskID, POD* pod) try {
  kestdb::RequireIndexed(pod);
  const CLock lock(pod, 0);
  const auto terms = kestdb::RequireByID<CDObj, CGetObject>(pod, taskID);
  const auto vars = kestdb::RequireByID<CDVar, CGetObject>(pod, taskID);
  kestdb::LoadGoals<CInput>(pod, terms, vars);
}
LOG_AND_RETHROW
