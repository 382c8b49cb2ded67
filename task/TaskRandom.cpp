#include <set>
#include <utility>

#include "environment/Logging.h"
#include "maintenance/Lock.h"
#include "results/DPoint.h"
#include "store/KestErr.h"
#include "store/walk.h"
#include "task/DCons.h"
#include "task/DResp.h"
#include "task/DVar.h"
#include "task/Task.h"
#include "task/TaskTables.h"

// The probabilistic checks: whether the random entries of a task's tables form distributions.

namespace {

using kestdb::ElementAt;

enum Distribution { kNormal = 0, kUniform = 1, kLognormal = 2, kWeibull = 3 };

// The least values that the rules admit where they ask for more than 0 and more than 1.
constexpr double kAboveZero = 1e-12;
constexpr double kAboveOne = 1.000000000001;

/// A random variable as the messages name it.
struct NamedVariable {
  int number;
  const char* name;
};

/// The end of each message about a value.
bool ReportValue(double value, const char* allowed) {
  LPrint("     The supplied value = %g\n", value);
  LPrint("%s", allowed);
  return false;
}

// -- Lower bounds of mean and standard deviation. A comparison with NaN passes.

bool CheckDeviation(const NamedVariable& variable, const char* text, double deviation) {
  if (!(deviation < kAboveZero)) return true;
  LError("(Make Task) : Invalid lower bound standard deviation value for\n");
  LPrint(text, variable.number, variable.name);
  return ReportValue(deviation, "     The allowed value should be > 0\n");
}

bool CheckLognormalMean(const NamedVariable& variable, double mean) {
  if (!(mean < kAboveOne)) return true;
  LError("(Make Task) : Invalid lower bound mean value for the Log Normal\n");
  LPrint("     distribution of dvar %d (%s).\n", variable.number, variable.name);
  return ReportValue(mean, "     The allowed value should be > 1\n");
}

bool CheckWeibullMean(const NamedVariable& variable, double mean) {
  if (!(mean < kAboveZero)) return true;
  LError("(Make Task) : Invalid lower bound mean value for the Weibull\n");
  LPrint("     distribution of dvar %d (%s).\n", variable.number, variable.name);
  return ReportValue(mean, "     The allowed mean value should be > 0\n");
}

[[noreturn]] void RefuseDistribution() {
  LError("(Make Task) : Invalid distribution type of the random variable.\n");
  Throw<CInvalidType>();
}

bool CheckMoments(const NamedVariable& variable, int distribution, double mean, double deviation) {
  bool holds;
  switch (distribution) {
    case kNormal:
      return CheckDeviation(variable, "     the Normal distribution of dvar %d (%s).\n", deviation);
    case kUniform:
      return CheckDeviation(variable, "     the Uniform distribution of dvar %d (%s).\n",
                            deviation);
    case kLognormal:
      holds = CheckDeviation(variable, "     the Log Normal distribution of dvar %d (%s).\n",
                             deviation);
      return CheckLognormalMean(variable, mean) && holds;
    case kWeibull:
      holds =
          CheckDeviation(variable, "     the Weibull distribution of dvar %d (%s).\n", deviation);
      return CheckWeibullMean(variable, mean) && holds;
    default:
      RefuseDistribution();
  }
}

// -- Lower bounds of the distribution's own parameters.

bool CheckNormal(const NamedVariable& variable, double deviation) {
  if (!(deviation < kAboveZero)) return true;
  LError("(Make Task) : Invalid standard deviation lower bound value\n");
  LPrint("     (2nd parameter) for the Normal distribution of dvar %d (%s).\n", variable.number,
         variable.name);
  return ReportValue(deviation, "     The allowed value should be > 0\n");
}

bool CheckUniform(const NamedVariable& variable, double lower, double upper) {
  if (!(lower > upper)) return true;
  LError("(Make Task) : Invalid lower bound bounds specification for the\n");
  LPrint("     Uniform distribution of dvar %d (%s).\n", variable.number, variable.name);
  LPrint("     Upper bound (2nd parameter) is < Lower bound (1st parameter)\n");
  LPrint("     (%g < %g)\n", upper, lower);
  return false;
}

bool CheckLognormal(const NamedVariable& variable, double lambda, double epsilon) {
  bool holds = true;
  if (lambda < kAboveZero) {
    LError("(Make Task) : Invalid lower bound natural logarithm value of the\n");
    LPrint("     mean value (1st parameter, lambda) for the Lognormal distribution\n");
    LPrint("     of dvar %d (%s).\n", variable.number, variable.name);
    holds = ReportValue(lambda, "     The allowed value should be > 0\n");
  }
  if (epsilon < kAboveZero) {
    LError("(Make Task) : Invalid lower bound natural logarithm value of the standard\n");
    LPrint("     deviation (2nd parameter, epsilon) for the Lognormal distribution\n");
    LPrint("     of dvar %d (%s).\n", variable.number, variable.name);
    holds = ReportValue(epsilon, "     The allowed value should be > 0\n");
  }
  return holds;
}

bool CheckWeibull(const NamedVariable& variable, double eta, double beta) {
  bool holds = true;
  if (eta < kAboveZero) {
    LError("(Make Task) : Invalid lower bound scale parameter (2nd parameter, eta)\n");
    LPrint("     value for the Weibull distribution of dvar %d (%s).\n", variable.number,
           variable.name);
    holds = ReportValue(eta, "     The allowed value should be > 0\n");
  }
  if (beta < kAboveZero) {
    LError("(Make Task) : Invalid lower bound shape parameter or slope (3rd parameter,\n");
    LPrint("     beta) value for the Weibull distribution of dvar %d (%s).\n", variable.number,
           variable.name);
    holds = ReportValue(beta, "     The allowed value should be > 0\n");
  }
  return holds;
}

bool CheckParameters(const NamedVariable& variable, int distribution, double a, double b,
                     double c) {
  switch (distribution) {
    case kNormal:
      return CheckNormal(variable, b);
    case kUniform:
      return CheckUniform(variable, a, b);
    case kLognormal:
      return CheckLognormal(variable, a, b);
    case kWeibull:
      return CheckWeibull(variable, b, c);
    default:
      RefuseDistribution();
  }
}

/// The lower bound of a scalar; that of a constant is its value in the task's first point.
double LowerBoundOf(const CDVar& vars, const CDPoint& first, int kind, long seq) {
  switch (kind) {
    case vbIndependentVar:
      return ElementAt(vars.m_vfIndLowerIn, seq);
    case vbLinkedVar:
      return ElementAt(vars.m_vfLinkLower, seq);
    case vbSyntheticVar:
      return ElementAt(vars.m_vfSynLower, seq);
    case vbConstantVar:
      return ElementAt(first.m_CDVar, seq);
    default:
      return 0.0;
  }
}

/// A record of a task. THROWS CObjectNotFound.
template <class Record>
Record RequireOf(POD* pod, const vbINT32& task) {
  return kestdb::RequireByID<Record, CObjectNotFound>(pod, task);
}

CDPoint RequireFirstPoint(POD* pod, const vbINT32& task) {
  CDPoint point(pod);
  point.m_nTaskID = task;
  if (!point.GetObject()) Throw<CObjectNotFound>();
  return point;
}

/// The element of a table of entries, `missing` behind its end.
int EntryAt(const std::vector<vbINT32>& entries, std::size_t i, int missing) {
  return static_cast<int>(kestdb::ElementOr(entries, i, missing));
}

/// The random variables of a task's table.
class VariableCheck {
 public:
  VariableCheck(CTask& task, const CDVar& vars, const CDPoint& first, int method)
      : task_(task), vars_(vars), first_(first), method_(method) {}

  bool Check();

 private:
  bool IsRandom(std::size_t i) const { return EntryAt(vars_.m_vnRandIndex, i, -1) >= 0; }
  int Parameter(std::size_t i) const { return EntryAt(vars_.m_vnRandParam, i, 0); }
  bool IsChild(std::size_t i, int parameter) const {
    return IsRandom(i) && Parameter(i) == parameter;
  }
  int Kind(std::size_t i) const { return EntryAt(vars_.m_vnType, i, 0); }
  bool IsConstant(std::size_t i) const { return Kind(i) == vbConstantVar; }
  double LowerBound(std::size_t i) const {
    return LowerBoundOf(vars_, first_, Kind(i), EntryAt(vars_.m_vnSeq, i, 0));
  }
  int DistributionOf(std::size_t i) const {
    const int variable = EntryAt(vars_.m_vnRandIndex, i, -1);
    return EntryAt(vars_.m_vnRandDist, static_cast<std::size_t>(variable), 0);
  }
  std::string Name(std::size_t i) const;

  bool CheckMean(std::size_t i);
  bool CheckParameter(std::size_t i);
  bool CheckConstantParameter(std::size_t i, int distribution);

  CTask& task_;
  const CDVar& vars_;
  const CDPoint& first_;
  int method_;
};

std::string VariableCheck::Name(std::size_t i) const {
  const long seq = EntryAt(vars_.m_vnSeq, i, 0);
  switch (Kind(i)) {
    case vbIndependentVar:
      return ElementAt(vars_.m_vstrIndName, seq);
    case vbLinkedVar:
      return ElementAt(vars_.m_vstrLinkName, seq);
    case vbSyntheticVar:
      return ElementAt(vars_.m_vstrSynName, seq);
    case vbConstantVar:
      return ElementAt(vars_.m_vstrConstName, seq);
    default:
      return "";
  }
}

bool VariableCheck::Check() {
  bool holds = true;
  for (std::size_t i = 0; i < vars_.m_vnType.size(); ++i) {
    if (!IsRandom(i)) continue;
    if (Parameter(i) == -1) holds = CheckMean(i) && holds;
    if (Parameter(i) == 0) holds = CheckParameter(i) && holds;
  }
  return holds;
}

bool VariableCheck::CheckMean(std::size_t i) {
  bool holds = true;
  std::string name = Name(i);
  const int number = static_cast<int>(i);
  if (!IsChild(i + 1, -2)) {
    LError("(Make Task) : Invalid random dvar child object found\n");
    LPrint("     (see dvar %d - %s).  This should be a\n", number, name.c_str());
    LPrint("     standard deviation random child object.");
    holds = false;
  }
  holds = task_.CheckRandDVarLB(true, name, number, DistributionOf(i), LowerBound(i),
                                LowerBound(i + 1), 0.0) &&
          holds;
  // Kept: the words speak of the approximate methods, the rule is for the others.
  if (IsConstant(i) && method_ <= 2) {
    LError("(Make Task) : Cannot have a constant mean specification when\n");
    LPrint("     using one of the approximate probabilistic\n");
    LPrint("     methods (see dvar %d - %s).", number, name.c_str());
    holds = false;
  }
  return holds;
}

bool VariableCheck::CheckParameter(std::size_t i) {
  bool holds = true;
  std::string name = Name(i);
  const int number = static_cast<int>(i);
  const int distribution = DistributionOf(i);
  if (!IsChild(i + 1, 1)) {
    LError("(Make Task) : Invalid random dvar child object found\n");
    LPrint("     (see dvar %d - %s).  This should be \n", number, name.c_str());
    LPrint("     a parameter 2 random child object.");
    holds = false;
  }
  if (distribution == kWeibull && !IsChild(i + 2, 2)) {
    LError("(Make Task) : Invalid random dvar child object found\n");
    LPrint("     (see dvar %d - %s).  This should be\n", number, name.c_str());
    LPrint("     a parameter 3 random child object.");
    holds = false;
  }
  const double third = distribution == kWeibull ? LowerBound(i + 2) : 0.0;
  holds = task_.CheckRandDVarLB(false, name, number, distribution, LowerBound(i), LowerBound(i + 1),
                                third) &&
          holds;
  return CheckConstantParameter(i, distribution) && holds;
}

/// Kept: these rules hold for every method.
bool VariableCheck::CheckConstantParameter(std::size_t i, int distribution) {
  if (!IsConstant(i)) return true;
  const std::string name = Name(i);
  const int number = static_cast<int>(i);
  if (distribution == kNormal) {
    LError("(Make Task) : Cannot have a Normal distribution with constant Param1\n");
    LPrint("     specification when using one of the approximate probabilistic\n");
    LPrint("     methods (see dvar %d - %s).", number, name.c_str());
    return false;
  }
  if (!IsConstant(i + 1) || (distribution == kWeibull && !IsConstant(i + 2))) return true;
  LError("(Make Task) : Cannot have a distribution with all constant Parameter\n");
  LPrint("     specifications when using one of the approximate probabilistic\n");
  LPrint("     methods (see dvar %d - %s).", number, name.c_str());
  return false;
}

/// The random responses of a task's table.
class ResponseCheck {
 public:
  ResponseCheck(const CDResp& resps, const CDCons& cons) : resps_(resps) {
    for (std::size_t i = 0; i < cons.m_vnSubj.size(); ++i) {
      constrained_.insert({EntryAt(cons.m_vnSubjType, i, 0), EntryAt(cons.m_vnSubj, i, 0)});
    }
  }

  bool Check();

 private:
  bool IsRandom(std::size_t i) const { return EntryAt(resps_.m_vnRandIndex, i, -1) >= 0; }
  int Parameter(std::size_t i) const { return EntryAt(resps_.m_vnRBOParam, i, 0); }
  int Kind(std::size_t i) const { return EntryAt(resps_.m_vnType, i, 0); }
  bool IsIndependent(std::size_t i, int parameter) const {
    return Parameter(i) == parameter && Kind(i) == vbIndependentResp;
  }
  bool IsConstrained(std::size_t i) const {
    return constrained_.contains({Kind(i), EntryAt(resps_.m_vnSeq, i, 0)});
  }
  std::string Name(std::size_t i) const {
    return resps_.GetName(Kind(i), EntryAt(resps_.m_vnSeq, i, 0));
  }

  bool CheckSystem();
  bool CheckMean(std::size_t i);

  const CDResp& resps_;
  std::set<std::pair<int, int>> constrained_;
};

bool ResponseCheck::Check() {
  if (resps_.m_vnType.empty()) return true;
  bool holds = CheckSystem();
  for (std::size_t i = 1; i < resps_.m_vnType.size(); ++i) {
    if (IsRandom(i) && Parameter(i) == -1) holds = CheckMean(i) && holds;
  }
  return holds;
}

bool ResponseCheck::CheckSystem() {
  const bool system = Parameter(0) == -4 || Parameter(0) == -5;
  if (IsRandom(0) && system && Kind(0) == vbIndependentResp) return true;
  LError("(Make Task) : Invalid random response child object found\n");
  LPrint("     (see resp %d - %s).  This should be the\n", 0, Name(0).c_str());
  LPrint("     system POF and must be an independent response.\n");
  return false;
}

bool ResponseCheck::CheckMean(std::size_t i) {
  bool holds = true;
  const int number = static_cast<int>(i);
  // Kept: the entry's number is looked up, not its position among the independent responses.
  if (EntryAt(resps_.m_vnPassFail, i, 0) == 1) {
    LError("(Make Task) : Invalid random response parent object found\n");
    LPrint("     (see resp %d - %s).  Response random parent\n", number, Name(i).c_str());
    LPrint("     objects cannot be pass/fail responses.\n");
    holds = false;
  }
  if (!IsIndependent(i + 1, -2)) {
    LError("(Make Task) : Invalid random response child object found\n");
    LPrint("     (see resp %d - %s).  This should be a \n", number + 1, Name(i + 1).c_str());
    LPrint("     standard deviation random response child object and\n");
    LPrint("     must be an independent response.\n");
    holds = false;
  }
  if (!IsIndependent(i + 2, -3)) {
    LError("(Make Task) : Invalid random response child object found\n");
    LPrint("     (see resp %d - %s).  This should be a \n", number + 2, Name(i + 2).c_str());
    LPrint("     probability of failure random response child object and\n");
    LPrint("     must be an independent response.\n");
    holds = false;
  }
  if (!IsConstrained(i) && IsConstrained(i + 2)) {
    LError("(Make Task) : Cannot constrain the POF child random\n");
    LPrint("     response object (see resp %d - %s) without also constaining the\n", number + 2,
           Name(i + 2).c_str());
    LPrint("     corresponding parent random response object (see resp %d - %s).\n", number,
           Name(i).c_str());
    holds = false;
  }
  return holds;
}

/// The probabilistic method in the settings of the task's kind.
int MethodOf(const CTask& task) {
  const auto method = [](const auto& block) {
    return static_cast<int>(long{block.m_nRandomMethod});
  };
  switch (task.m_nType) {
    case 0:
      return method(task.m_DGO);
    case 1:
      return method(task.m_RSA);
    case 2:
      return method(task.m_DOE);
    case 3:
      return method(task.m_NGO);
    case 4:
      return method(task.m_ANL);
    default:
      Throw<CInvalidType>();
  }
}

bool CheckBothSides(int vars, int resps) {
  if ((vars == 0) == (resps == 0)) return true;
  LError("(Make Task) : Cannot have random design variables\n");
  LPrint("     without random responses or random responses\n");
  LPrint("     without random design variables.  The current\n");
  LPrint("     task has (%d) random design variables\n", vars);
  LPrint("     and (%d) random responses defined.\n", resps);
  return false;
}

}  // namespace

bool CTask::CheckRandDVarResp(POD* pod, int nRandDV, int nRandResp) try {
  if (nRandDV == 0 && nRandResp == 0) return true;
  if (pod == nullptr) Throw<CNoDatabaseOpen>();
  const int method = MethodOf(*this);
  bool holds = CheckBothSides(nRandDV, nRandResp);
  const CLock lock(pod, 0);
  const auto vars = RequireOf<CDVar>(pod, m_nID);
  const auto resps = RequireOf<CDResp>(pod, m_nID);
  const auto cons = RequireOf<CDCons>(pod, m_nID);
  const CDPoint first = RequireFirstPoint(pod, m_nID);
  holds = VariableCheck(*this, vars, first, method).Check() && holds;
  return ResponseCheck(resps, cons).Check() && holds;
}
LOG_AND_RETHROW

bool CTask::CheckRandDVarLB(bool bMeanStd, std::string& strName, int nNumber, int nDist, double a,
                            double b, double c) try {
  const NamedVariable variable{nNumber, strName.c_str()};
  return bMeanStd ? CheckMoments(variable, nDist, a, b) : CheckParameters(variable, nDist, a, b, c);
}
LOG_AND_RETHROW

double CTask::GetDVLowerBnd(POD* pod, int nKind, int nSeq) try {
  if (pod == nullptr) Throw<CNoDatabaseOpen>();
  const CLock lock(pod, 0);
  const auto vars = RequireOf<CDVar>(pod, m_nID);
  return LowerBoundOf(vars, RequireFirstPoint(pod, m_nID), nKind, nSeq);
}
LOG_AND_RETHROW
