#include <algorithm>
#include <array>
#include <cmath>

#include "environment/Logging.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "task/DCons.h"
#include "task/DObj.h"
#include "task/Task.h"
#include "task/TaskArguments.h"
#include "task/TaskTables.h"

// A task's constraints and objective terms, which refer to entries by kind and position.

namespace {

using kestdb::ElementAt;

/// The next position of each kind, as definitions are walked in transfer order. Kept: positions are
/// counted definition by definition, also where the entries of a random array of the same kind as
/// its parameters stand between theirs.
class RunningPositions {
 public:
  long Next(int kind) { return next_[At(kind)]++; }
  void Skip(int kind, const vbUINT32& size) {
    next_[At(kind)] += static_cast<long>(static_cast<unsigned long>(size));
  }

 private:
  static std::size_t At(int kind) { return static_cast<std::size_t>(kind - vbIndependentVar); }

  std::array<long, 7> next_{};
};

/// Calls `visit(definition)` for those of the table.
template <class Definition, class Visit>
void VisitInTransferOrder(POD* pod, const std::vector<int>& ids, Visit visit) {
  for (const int id : ids) {
    if (id < 1) continue;
    visit(kestdb::RequireByID<Definition, CObjectNotFound>(pod, id));
  }
}

int RequireKind(const CInput& input) {
  const int kind = kestdb::KindOfInput(input.m_nType);
  if (kind == 0) {
    LError("Invalid Input object type (code = %d)!\n", static_cast<int>(long{input.m_nType}));
    Throw<CInvalidType>();
  }
  return kind;
}

int RequireKind(const CResp& resp) {
  const int kind = kestdb::KindOfResp(resp.m_nType);
  if (kind == 0) {
    LError("Invalid Resp object type!\n");
    Throw<CInvalidType>();
  }
  return kind;
}

double ScaleOf(double bound) {
  return std::max(1.0, std::fabs(bound));
}

/// Fills the task's constraints one after the other.
class ConstraintTable {
 public:
  ConstraintTable(POD* pod, int size) : cons(pod) {
    const auto count = static_cast<std::size_t>(size);
    for (auto* column : {&cons.m_vnSubj, &cons.m_vnSubjType, &cons.m_vnMult}) {
      column->resize(count);
    }
    cons.m_vfBound.resize(count);
    cons.m_vfScale.resize(count);
  }

  void Enter(const CInput& input);
  void Enter(const CResp& resp);

 private:
  void Add(int kind, long position, int sign, double bound, double scale);

  RunningPositions positions_;
  long next_ = 0;

 public:
  CDCons cons;
};

void ConstraintTable::Add(int kind, long position, int sign, double bound, double scale) {
  const long at = next_++;
  ElementAt(cons.m_vnSubj, at) = position;
  ElementAt(cons.m_vnSubjType, at) = kind;
  ElementAt(cons.m_vfBound, at) = bound;
  ElementAt(cons.m_vnMult, at) = sign;
  ElementAt(cons.m_vfScale, at) = scale;
}

/// The bounds of a variable that depends on others; those of all others are no constraints.
void ConstraintTable::Enter(const CInput& input) {
  const int kind = RequireKind(input);
  if (kind != vbLinkedVar && kind != vbSyntheticVar) return;
  for (unsigned long element = 0; input.m_uSize > element; ++element) {
    const long position = positions_.Next(kind);
    if (input.m_fLower != -1e30) Add(kind, position, -1, input.m_fLower, ScaleOf(input.m_fLower));
    if (input.m_fUpper != 1e30) Add(kind, position, 1, input.m_fUpper, ScaleOf(input.m_fUpper));
  }
}

void ConstraintTable::Enter(const CResp& resp) {
  const int kind = RequireKind(resp);
  if (resp.m_nConstraint == 0) return positions_.Skip(kind, resp.m_uSize);
  const double lowerScale =
      resp.m_nHasLowerScale == 0 ? ScaleOf(resp.m_fLower) : double{resp.m_fLowerScale};
  const double upperScale =
      resp.m_nHasUpperScale == 0 ? ScaleOf(resp.m_fUpper) : double{resp.m_fUpperScale};
  for (unsigned long element = 0; resp.m_uSize > element; ++element) {
    const long position = positions_.Next(kind);
    if (resp.m_nHasLower != 0) Add(kind, position, -1, resp.m_fLower, lowerScale);
    if (resp.m_nHasUpper != 0) Add(kind, position, 1, resp.m_fUpper, upperScale);
  }
}

/// Fills the task's objective terms one after the other.
class ObjectiveTable {
 public:
  ObjectiveTable(POD* pod, int size) : terms(pod) {
    const auto count = static_cast<std::size_t>(size);
    terms.m_vnSubj.resize(count);
    terms.m_vnSubjType.resize(count);
    terms.m_vnGoal.resize(count);
    terms.m_vnHasWorst.resize(count);
    terms.m_vfWorst.resize(count);
    terms.m_vfWeight.resize(count);
    terms.m_vfTarget.resize(count);
  }

  template <class Definition>
  void Enter(const Definition& definition);

 private:
  template <class Definition>
  void Add(const Definition& definition, int kind);

  RunningPositions positions_;
  long next_ = 0;

 public:
  CDObj terms;
};

[[noreturn]] void RefuseObjective(const char* first) {
  LError("%s", first);
  LPrint("     of the objective function\n");
  Throw<CInvalidType>();
}

void RequireObjective(const CInput& input) {
  constexpr int constant = 3;
  constexpr int combinatorial = 6;
  if (input.m_nType == constant) RefuseObjective("A constant design variable cannot be part\n");
  if (input.m_nType == combinatorial) {
    RefuseObjective("A combinatorial design variable cannot be part\n");
  }
}
void RequireObjective(const CResp&) {}

template <class Definition>
void ObjectiveTable::Enter(const Definition& definition) {
  const int kind = RequireKind(definition);
  if (definition.m_nObjective == 0) return positions_.Skip(kind, definition.m_uSize);
  for (unsigned long element = 0; definition.m_uSize > element; ++element) {
    RequireObjective(definition);
    Add(definition, kind);
  }
}

template <class Definition>
void ObjectiveTable::Add(const Definition& definition, int kind) {
  const long at = next_++;
  ElementAt(terms.m_vnSubj, at) = positions_.Next(kind);
  ElementAt(terms.m_vnSubjType, at) = kind;
  ElementAt(terms.m_vnGoal, at) = definition.m_nGoal;
  ElementAt(terms.m_vnHasWorst, at) = definition.m_nHasWorst;
  ElementAt(terms.m_vfWorst, at) = definition.m_fWorst;
  ElementAt(terms.m_vfWeight, at) = definition.m_fWeight;
  ElementAt(terms.m_vfTarget, at) = definition.m_fTarget;
}

/// Enters all Inputs, then all responses, in transfer order.
template <class Table>
void EnterAll(POD* pod, Table& table, const std::vector<int>& inputs,
              const std::vector<int>& resps) {
  VisitInTransferOrder<CInput>(pod, inputs, [&table](const CInput& input) { table.Enter(input); });
  VisitInTransferOrder<CResp>(pod, resps, [&table](const CResp& resp) { table.Enter(resp); });
}

}  // namespace

void CTask::SetupDCons(int nCons, const std::vector<int>& vnInputs,
                       const std::vector<int>& vnResps) try {
  if (Database() == nullptr) Throw<CNoDatabaseOpen>();
  if (nCons < 0) Throw<CInvalidArgument>();
  const CLock lock(Database(), 0);
  ConstraintTable table(Database(), nCons);
  EnterAll(Database(), table, vnInputs, vnResps);
  table.cons.m_nID = m_nID;
  table.cons.PutObject();
}
LOG_AND_RETHROW

void CTask::SetupDObj(int nObj, const std::vector<int>& vnInputs,
                      const std::vector<int>& vnResps) try {
  if (Database() == nullptr) Throw<CNoDatabaseOpen>();
  if (nObj < 0) Throw<CInvalidArgument>();
  const CLock lock(Database(), 0);
  ObjectiveTable table(Database(), nObj);
  EnterAll(Database(), table, vnInputs, vnResps);
  table.terms.m_nID = m_nID;
  table.terms.PutObject();
}
LOG_AND_RETHROW

bool CTask::IsRespConstrained(POD* pod, int nTask, int nSubj, int nKind) try {
  if (pod == nullptr) Throw<CNoDatabaseOpen>();
  const CLock lock(pod, 0);
  CDCons cons(pod);
  cons.m_nID = nTask;
  if (!cons.GetObject()) Throw<CObjectNotFound>();
  for (std::size_t i = 0; i < std::min(cons.m_vnSubj.size(), cons.m_vnSubjType.size()); ++i) {
    if (cons.m_vnSubj[i] == nSubj && cons.m_vnSubjType[i] == nKind) return true;
  }
  return false;
}
LOG_AND_RETHROW
