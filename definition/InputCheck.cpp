#include <string>

#include "control/DesignControl.h"
#include "definition/Auxiliary.h"
#include "definition/DefinitionReport.h"
#include "definition/Input.h"
#include "environment/Logging.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/assertion.h"
#include "store/podcheck.h"
#include "store/walk.h"

// The validation of all Inputs before a run.

namespace {

using kestdb::ToInt;

constexpr int kIndependent = 0;
constexpr int kLinked = 1;
constexpr int kSynthetic = 2;
constexpr int kConstant = 3;
constexpr int kDiscrete = 4;
constexpr int kInteger = 5;
constexpr int kCombinatorial = 6;

constexpr double kNoLower = -1e30;
constexpr double kNoUpper = 1e30;

/// One check over all Inputs: what it has found so far.
class InputCheck {
 public:
  InputCheck(POD* pod, const CDesignControl& control) : pod_(pod), control_(control) {}

  bool Holds() const { return holds_; }

  /// False when the whole check has to stop here.
  bool Check(const CInput& input);

 private:
  void CheckBoundsGiven(const CInput& input);
  void CheckBounds(const CInput& input);
  bool CheckSet(const CInput& input);
  void CheckFunction(const CInput& input);
  void CheckArguments(const CInput& input, bool linked);
  bool CheckArgument(const CInput& input, bool linked, std::size_t i);
  void CheckScale(const CInput& input);

  POD* pod_;
  const CDesignControl& control_;
  bool holds_ = true;
};

/// An independent, discrete or integer Input, which the optimiser moves by itself.
bool IsMoved(const CInput& input) {
  return input.m_nType == kIndependent || input.m_nType == kDiscrete || input.m_nType == kInteger;
}

const char* Name(const CInput& input) {
  return input.m_strName.c_str();
}

int Index(const CInput& input) {
  return ToInt(input.m_uIndex);
}

bool InputCheck::Check(const CInput& input) {
  if (input.m_nType == kConstant) return true;
  CheckBoundsGiven(input);
  CheckBounds(input);
  if (input.m_nType == kDiscrete || input.m_nType == kCombinatorial) {
    if (!CheckSet(input)) return false;
  } else if (input.m_nType == kLinked || input.m_nType == kSynthetic) {
    CheckFunction(input);
  }
  CheckScale(input);
  return true;
}

void InputCheck::CheckBoundsGiven(const CInput& input) {
  constexpr int userDefined = 11;
  const bool nonGradient = control_.m_nTaskType == 3;
  const bool design = control_.m_nTaskType == 2 && control_.m_DOE.m_nMethod != userDefined;
  if (!IsMoved(input) || (!nonGradient && !design)) return;
  if (input.m_fLower == kNoLower) {
    holds_ = false;
    LError(nonGradient ? "(Check Inputs) : No lower bound for Input (%s - index=%d) in NGO task\n"
                       : "(Check Inputs) : No lower bound for Input (%s - index=%d) in DOE task\n",
           Name(input), Index(input));
  }
  if (input.m_fUpper == kNoUpper) {
    holds_ = false;
    LError(nonGradient ? "(Check Inputs) : No upper bound for Input (%s - index=%d) in NGO task\n"
                       : "(Check Inputs) : No upper bound for Input (%s - index=%d) in DOE task\n",
           Name(input), Index(input));
  }
}

void InputCheck::CheckBounds(const CInput& input) {
  if (input.m_fLower > input.m_fUpper) {
    holds_ = false;
    LError("(Check Inputs) : Lower bound > Upper bound for Input (%s - index=%d)\n", Name(input),
           Index(input));
  }
  if (input.m_fLower == input.m_fUpper) {
    LWarn("(Check Inputs) : Lower bound = Upper bound for non-constant Input (%s - index=%d)\n",
          Name(input), Index(input));
  }
  if (control_.m_nTaskType == 2) return;
  if (input.m_fInitial < input.m_fLower) {
    LWarn("(Check Inputs) : Initial value < Lower bound for Input (%s - index=%d)\n", Name(input),
          Index(input));
  }
  if (input.m_fInitial > input.m_fUpper) {
    LWarn("(Check Inputs) : Initial value > Upper bound for Input (%s - index=%d)\n", Name(input),
          Index(input));
  }
}

/// False for a set without values, which ends the whole check.
bool InputCheck::CheckSet(const CInput& input) {
  if (input.m_nAuxID < 1) {
    holds_ = false;
    LError(
        "(Check Inputs): Input (%s - index=%d) is a %s type but it does not reference a discrete set specification\n",
        Name(input), Index(input), input.m_nType == kDiscrete ? "discrete" : "combinatorial");
    return true;
  }
  CAuxiliary set(pod_);
  if (!kestdb::LoadByID(set, input.m_nAuxID)) {
    holds_ = false;
    LError("(Check Inputs) : Referenced discrete set for Input (%s - index=%d) does not exist\n",
           Name(input), Index(input));
    return true;
  }
  if (set.m_vfValues.empty()) {
    holds_ = false;
    LError("(Check Inputs) : Referenced discrete set for Input (%s - index=%d) is not defined\n",
           Name(input), Index(input));
    return false;
  }
  if (input.m_fLower > set.m_vfValues.back() || set.m_vfValues.front() > input.m_fUpper) {
    holds_ = false;
    LError(
        "(Check Inputs) : Bounds for Input (%s - index=%d) does not intersect the discrete set values.\n",
        Name(input), Index(input));
  }
  return true;
}

void InputCheck::CheckFunction(const CInput& input) {
  const bool linked = input.m_nType == kLinked;
  if (input.m_nAuxID < 1) {
    holds_ = false;
    const char* kind = linked ? "link" : "synthetic";
    LError(
        "(Check Inputs): Input (%s - index=%d) is a %s type but it does not reference a %s specification\n",
        Name(input), Index(input), kind, kind);
    return;
  }
  CAuxiliary function(pod_);
  if (!kestdb::LoadByID(function, input.m_nAuxID)) {
    holds_ = false;
    LError(
        "(Check Inputs) : Referenced auxiliary object for Input (%s - index=%d) does not exist\n",
        Name(input), Index(input));
    return;
  }
  const auto arguments = static_cast<unsigned>(input.m_vnArg.size());
  if (function.GetNumArgs() != arguments) {
    holds_ = false;
    LError("(Check Inputs) : Argument number mismatch for Input (%s - index=%d) %d != %d\n",
           Name(input), Index(input), static_cast<int>(arguments),
           static_cast<int>(function.GetNumArgs()));
    return;
  }
  KESTDB_ASSERT(input.m_vnArg.size() == input.m_vnIdx.size(), "vnArg.size() == vnIdx.size()");
  CheckArguments(input, linked);
}

void InputCheck::CheckArguments(const CInput& input, bool linked) {
  bool onlyConstants = true;
  for (std::size_t i = 0; i < input.m_vnArg.size(); ++i) {
    if (!CheckArgument(input, linked, i)) onlyConstants = false;
  }
  if (input.m_vnArg.empty() || !onlyConstants || control_.m_nTaskType != 0) return;
  LWarn("(Check Inputs) : Dependent input (%s - index=%d) only references constant variables.",
        Name(input), Index(input));
  LPrint("     The gradient of this input will be zero. This may cause DGO to halt.\n\n");
}

/// False for an argument that is there and isn't constant.
bool InputCheck::CheckArgument(const CInput& input, bool linked, std::size_t i) {
  const int number = static_cast<int>(i) + 1;
  if (input.m_vnArg[i] >= 0) {
    holds_ = false;
    LError(
        "(Check Inputs) : Argument %d for Input (%s - index=%d) does not reference another input\n",
        number, Name(input), Index(input));
    return true;
  }
  CInput argument(pod_);
  const bool exists = kestdb::LoadByID(argument, -input.m_vnArg[i].PackBits());
  const int id = ToInt(argument.m_nID);
  if (!exists) {
    holds_ = false;
    LError("(Check Inputs) : Argument %d (DB_ID=%d) for Input (%s - index=%d) does not exist\n",
           number, id, Name(input), Index(input));
    return true;
  }
  if (linked && (argument.m_nType == kLinked || argument.m_nType == kSynthetic)) {
    holds_ = false;
    LError(
        "(Check Inputs) : Argument %d (DB_ID=%d) for Linked Input (%s - index=%d) is not independent\n",
        number, id, Name(input), Index(input));
  } else if (!linked && argument.m_nType == kSynthetic) {
    holds_ = false;
    LError(
        "(Check Inputs) : Argument %d (DB_ID=%d) for Synthetic Input (%s - index=%d) is not linked or independent\n",
        number, id, Name(input), Index(input));
  } else if (input.m_vnIdx[i] >= 1 && argument.m_uSize < ToInt(input.m_vnIdx[i])) {
    holds_ = false;
    LError(
        "(Check Inputs) : Argument %d (DB_ID=%d) for Input (%s - index=%d) references an element index (%d) that does not exist\n",
        number, id, Name(input), Index(input), ToInt(input.m_vnIdx[i]));
  }
  return argument.m_nType == kConstant;
}

void InputCheck::CheckScale(const CInput& input) {
  if (!IsMoved(input) || input.m_nUserScale == 0 || input.m_fScale > 0.0) return;
  holds_ = false;
  LError(
      "(Check Inputs) : Invalid scale factor for Input (%s - index=%d).  The scale factor must be > 0\n",
      Name(input), Index(input));
}

}  // namespace

bool CInput::CheckInputs(POD* pod) try {
  kestdb::RequireIndexed(pod);
  const CLock lock(pod, 0);
  CDesignControl control(pod);
  if (!control.GetObject()) Throw<CObjectNotFound>();
  InputCheck check(pod, control);
  kestdb::VisitInIndexOrder<CInput>(pod, [&](const CInput& input) { return check.Check(input); });
  return check.Holds();
}
LOG_AND_RETHROW
