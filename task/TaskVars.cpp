#include <algorithm>
#include <cmath>
#include <unordered_map>

#include "definition/Auxiliary.h"
#include "environment/Logging.h"
#include "maintenance/Lock.h"
#include "results/DPoint.h"
#include "store/KestErr.h"
#include "task/DVar.h"
#include "task/Task.h"
#include "task/TaskGroups.h"
#include "task/TaskTables.h"

// The table of a task's design variables, made from the study's Inputs.

namespace kestdb {

bool StartsRandom(const CInput& input) {
  return input.m_nRandom != 0 && (input.m_nRandomParam == 0 || input.m_nRandomParam == -1);
}

}  // namespace kestdb

namespace {

using kestdb::ElementAt;

/// How many scalars of each kind there are.
struct VariableCounts {
  int independent;
  int linked;
  int synthetic;
  int constant;
  int random;

  std::size_t Entries() const {
    return static_cast<std::size_t>(long{independent} + linked + synthetic + constant);
  }
};

/// Fills the table entry by entry, and the values of the task's first point with it.
class VariableTable {
 public:
  VariableTable(POD* pod, const VariableCounts& counts) : pod_(pod), vars(pod), point(pod) {
    Resize(counts);
  }

  void Enter(const CInput& input, unsigned long element);

 private:
  void Resize(const VariableCounts& counts);
  void EnterRandom(const CInput& input);
  void EnterKind(int kind, long position);
  void EnterLinked(const CInput& input, const std::string& name);
  void EnterSynthetic(const CInput& input, const std::string& name);
  void EnterConstant(const CInput& input, const std::string& name);
  void EnterIndependent(const CInput& input, const std::string& name);
  void FitToSet(const CInput& input, long position);
  void FitToIntegers(long position);
  void ClampValue(long position);
  const std::vector<vbFLOAT64>& Members(int setID);

  POD* pod_;
  std::unordered_map<int, std::vector<vbFLOAT64>> sets_;
  long entry_ = 0;
  long independent_ = 0;
  long linked_ = 0;
  long synthetic_ = 0;
  long constant_ = 0;
  long random_ = -1;

 public:
  CDVar vars;
  CDPoint point;
};

void VariableTable::Resize(const VariableCounts& counts) {
  const std::size_t entries = counts.Entries();
  const auto independent = static_cast<std::size_t>(counts.independent);
  const auto linked = static_cast<std::size_t>(counts.linked);
  const auto synthetic = static_cast<std::size_t>(counts.synthetic);
  const auto constant = static_cast<std::size_t>(counts.constant);
  vars.m_vnSeq.resize(entries);
  vars.m_vnType.resize(entries);
  if (counts.random > 0) {
    vars.m_vnRandIndex.assign(entries, -1);
    vars.m_vnRandParam.resize(entries);
  }
  vars.m_vnIndIDs.resize(independent);
  vars.m_vstrIndName.resize(independent);
  vars.m_vnDiscreteRef.resize(independent);
  for (auto* values : {&vars.m_vfIndLowerIn, &vars.m_vfIndLower, &vars.m_vfIndUpperIn,
                       &vars.m_vfIndUpper, &vars.m_vfIndScale}) {
    values->resize(independent);
  }
  vars.m_vnLinkIDs.resize(linked);
  vars.m_vstrLinkName.resize(linked);
  vars.m_vnLinkRef.resize(linked);
  vars.m_vfLinkLower.resize(linked);
  vars.m_vfLinkUpper.resize(linked);
  vars.m_vnSynIDs.resize(synthetic);
  vars.m_vstrSynName.resize(synthetic);
  vars.m_vnSynRef.resize(synthetic);
  vars.m_vfSynLower.resize(synthetic);
  vars.m_vfSynUpper.resize(synthetic);
  vars.m_vnConstIDs.resize(constant);
  vars.m_vstrConstName.resize(constant);
  vars.m_vnConstSet.resize(constant);
  vars.m_vfConstLower.resize(constant);
  vars.m_vfConstUpper.resize(constant);
  point.m_IDVar.resize(independent);
  point.m_LDVar.resize(linked);
  point.m_SDVar.resize(synthetic);
  point.m_CDVar.resize(constant);
}

void VariableTable::Enter(const CInput& input, unsigned long element) {
  EnterRandom(input);
  const std::string name = kestdb::EntryName(input, element);
  switch (kestdb::KindOfInput(input.m_nType)) {
    case vbIndependentVar:
      EnterIndependent(input, name);
      break;
    case vbLinkedVar:
      EnterLinked(input, name);
      break;
    case vbSyntheticVar:
      EnterSynthetic(input, name);
      break;
    case vbConstantVar:
      EnterConstant(input, name);
      break;
    default:
      LError("Invalid Input object type!\n");
      Throw<CInvalidType>();
  }
  ++entry_;
}

void VariableTable::EnterRandom(const CInput& input) {
  if (input.m_nRandom == 0) return;
  if (kestdb::StartsRandom(input)) {
    ++random_;
    vars.m_vnRandDist.push_back(input.m_nDistribution);
  }
  ElementAt(vars.m_vnRandIndex, entry_) = random_;
  ElementAt(vars.m_vnRandParam, entry_) = input.m_nRandomParam;
}

void VariableTable::EnterKind(int kind, long position) {
  ElementAt(vars.m_vnSeq, entry_) = position;
  ElementAt(vars.m_vnType, entry_) = kind;
}

void VariableTable::EnterLinked(const CInput& input, const std::string& name) {
  const long at = linked_++;
  EnterKind(vbLinkedVar, at);
  ElementAt(vars.m_vnLinkIDs, at) = input.m_nID;
  ElementAt(vars.m_vstrLinkName, at) = name;
  ElementAt(vars.m_vfLinkLower, at) = input.m_fLower;
  ElementAt(vars.m_vfLinkUpper, at) = input.m_fUpper;
  ElementAt(vars.m_vnLinkRef, at) = input.m_nAuxID;
}

void VariableTable::EnterSynthetic(const CInput& input, const std::string& name) {
  const long at = synthetic_++;
  EnterKind(vbSyntheticVar, at);
  ElementAt(vars.m_vnSynIDs, at) = input.m_nID;
  ElementAt(vars.m_vstrSynName, at) = name;
  ElementAt(vars.m_vfSynLower, at) = input.m_fLower;
  ElementAt(vars.m_vfSynUpper, at) = input.m_fUpper;
  ElementAt(vars.m_vnSynRef, at) = input.m_nAuxID;
}

void VariableTable::EnterConstant(const CInput& input, const std::string& name) {
  constexpr int combinatorial = 6;
  const long at = constant_++;
  EnterKind(vbConstantVar, at);
  ElementAt(vars.m_vnConstIDs, at) = input.m_nID;
  ElementAt(vars.m_vstrConstName, at) = name;
  ElementAt(vars.m_vfConstLower, at) = input.m_fLower;
  ElementAt(vars.m_vfConstUpper, at) = input.m_fUpper;
  ElementAt(vars.m_vnConstSet, at) = input.m_nType == combinatorial ? input.m_nAuxID : vbINT32(0);
  ElementAt(point.m_CDVar, at) = input.m_fInitial;
}

void VariableTable::EnterIndependent(const CInput& input, const std::string& name) {
  constexpr int discrete = 4;
  constexpr int integer = 5;
  const long at = independent_++;
  EnterKind(vbIndependentVar, at);
  ElementAt(vars.m_vnIndIDs, at) = input.m_nID;
  ElementAt(vars.m_vstrIndName, at) = name;
  ElementAt(vars.m_vfIndLowerIn, at) = input.m_fLower;
  ElementAt(vars.m_vfIndUpperIn, at) = input.m_fUpper;
  ElementAt(vars.m_vfIndLower, at) = input.m_fLower;
  ElementAt(vars.m_vfIndUpper, at) = input.m_fUpper;
  if (input.m_nUserScale != 0) ElementAt(vars.m_vfIndScale, at) = input.m_fScale;
  ElementAt(point.m_IDVar, at) = input.m_fInitial;
  if (input.m_nType == discrete) FitToSet(input, at);
  if (input.m_nType == integer) FitToIntegers(at);
}

/// Moves the bounds to members of the set, and the value between them.
void VariableTable::FitToSet(const CInput& input, long position) {
  ElementAt(vars.m_vnDiscreteRef, position) = input.m_nAuxID;
  const std::vector<vbFLOAT64>& members = Members(static_cast<int>(long{input.m_nAuxID}));
  if (members.empty()) Throw<CInvalidArgument>();
  const double lower = input.m_fLower;
  const double upper = input.m_fUpper;
  const auto first = std::find_if(members.begin(), members.end(),
                                  [lower](double member) { return !(member < lower); });
  const auto above = std::find_if(members.begin(), members.end(),
                                  [upper](double member) { return member > upper; });
  const auto last = members.end() - 1;
  ElementAt(vars.m_vfIndLower, position) = first == members.end() ? *last : *first;
  ElementAt(vars.m_vfIndUpper, position) = above == members.begin() ? *above : *(above - 1);
  ClampValue(position);
}

const std::vector<vbFLOAT64>& VariableTable::Members(int setID) {
  const auto [place, isNew] = sets_.try_emplace(setID);
  if (isNew) {
    CAuxiliary set(pod_);
    if (!kestdb::LoadByID(set, setID)) Throw<CObjectNotFound>();
    place->second = set.m_vfValues;
  }
  return place->second;
}

/// Moves the bounds to whole numbers that an integer holds, and the value between them. Kept: a
/// negative fraction for a lower bound ends one above the next whole number, -2.5 at -1.
void VariableTable::FitToIntegers(long position) {
  constexpr double most = 2147483600.0;
  ElementAt(vars.m_vnDiscreteRef, position) = -1;
  double lower = std::max<double>(-most, ElementAt(vars.m_vfIndLower, position));
  double upper = std::min<double>(most, ElementAt(vars.m_vfIndUpper, position));
  if (lower != std::trunc(lower)) lower = std::trunc(lower + 1.0);
  upper = std::trunc(upper);
  if (upper < lower) upper = lower;
  ElementAt(vars.m_vfIndLower, position) = lower;
  ElementAt(vars.m_vfIndUpper, position) = upper;
  ClampValue(position);
}

void VariableTable::ClampValue(long position) {
  double& value = ElementAt(point.m_IDVar, position);
  const double lower = ElementAt(vars.m_vfIndLower, position);
  const double upper = ElementAt(vars.m_vfIndUpper, position);
  if (value < lower) {
    value = lower;
  } else if (value > upper) {
    value = upper;
  }
}

/// A link takes independent variables and constants; an equation links as well.
void ResolveVariables(CDVar& vars, kestdb::DefinitionReader<CInput>& inputs,
                      kestdb::DefinitionReader<CResp>& resps) {
  const kestdb::PositionTable independent(vars.m_vnIndIDs);
  const kestdb::PositionTable linked(vars.m_vnLinkIDs);
  const kestdb::PositionTable constant(vars.m_vnConstIDs);
  kestdb::ArgumentResolver resolver(inputs, resps);
  kestdb::ArgumentTable links = kestdb::ResolveAll(vbLinkedVar, vars.m_vnLinkIDs, inputs, resolver,
                                                   {{0, vbIndependentVar, independent},
                                                    {4, vbIndependentVar, independent},
                                                    {5, vbIndependentVar, independent},
                                                    {3, vbConstantVar, constant}},
                                                   false);
  vars.m_mnLinkSubj = std::move(links.positions);
  vars.m_mnLinkType = std::move(links.kinds);
  kestdb::ArgumentTable equations =
      kestdb::ResolveAll(vbSyntheticVar, vars.m_vnSynIDs, inputs, resolver,
                         {{0, vbIndependentVar, independent},
                          {4, vbIndependentVar, independent},
                          {5, vbIndependentVar, independent},
                          {1, vbLinkedVar, linked},
                          {3, vbConstantVar, constant}},
                         true);
  vars.m_mnSynSubj = std::move(equations.positions);
  vars.m_mnSynType = std::move(equations.kinds);
  vars.m_mnSynLen = std::move(equations.lengths);
}

}  // namespace

void CTask::SetupDVar(int nInd, int nLink, int nSyn, int nConst, int nRandom,
                      const std::vector<int>& vnIDs) try {
  if (Database() == nullptr) Throw<CNoDatabaseOpen>();
  if (nInd < 0 || nLink < 0 || nSyn < 0 || nConst < 0) Throw<CInvalidArgument>();
  const CLock lock(Database(), 0);
  kestdb::DefinitionReader<CInput> inputs(Database());
  kestdb::DefinitionReader<CResp> resps(Database());
  VariableTable table(Database(), {nInd, nLink, nSyn, nConst, nRandom});
  kestdb::ForEachEntry(vnIDs, inputs, [&table](const CInput& input, unsigned long element) {
    table.Enter(input, element);
  });
  ResolveVariables(table.vars, inputs, resps);
  table.vars.m_nID = m_nID;
  table.vars.PutObject();
  table.point.m_nTaskID = m_nID;
  table.point.m_nPointID = 0;
  table.point.PutObject();
}
LOG_AND_RETHROW
