#include <string>

#include "control/DesignControl.h"
#include "definition/Auxiliary.h"
#include "definition/DefinitionReport.h"
#include "definition/Input.h"
#include "definition/Resp.h"
#include "environment/Logging.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/assertion.h"
#include "store/podcheck.h"
#include "store/walk.h"

// The validation of all responses before a run.

namespace {

using kestdb::ToInt;

constexpr int kLinked = 1;
constexpr int kSynthetic = 2;
constexpr int kPassFail = 3;
constexpr int kConstantInput = 3;

const char* Name(const CResp& resp) {
  return resp.m_strName.c_str();
}

int Index(const CResp& resp) {
  return ToInt(resp.m_uIndex);
}

/// One check over all responses: what it has found so far.
class RespCheck {
 public:
  RespCheck(POD* pod, const CDesignControl& control) : pod_(pod), control_(control) {}

  bool Holds() const { return holds_; }
  void Check(const CResp& resp);

 private:
  void CheckFunction(const CResp& resp);
  void CheckArguments(const CResp& resp);
  bool CheckInputArgument(const CResp& resp, std::size_t i);
  bool CheckRespArgument(const CResp& resp, std::size_t i);
  void ReportMissing(const CResp& resp, std::size_t i);
  void CheckElement(const CResp& resp, std::size_t i, const vbUINT32& size);

  POD* pod_;
  const CDesignControl& control_;
  bool holds_ = true;
};

void RespCheck::Check(const CResp& resp) {
  if (resp.m_nConstraint != 0 && resp.m_fLower > resp.m_fUpper) {
    holds_ = false;
    LError("(Check Resps) : Lower bound > Upper bound for Response (%s - index=%d)\n", Name(resp),
           Index(resp));
  }
  if (resp.m_nObjective != 0 && resp.m_nType == kPassFail) {
    holds_ = false;
    LError(
        "(Check Resps) : Pass/Fail type Response (%s - index=%d) cannot be used as an objective\n",
        Name(resp), Index(resp));
  }
  if (resp.m_nType == kLinked || resp.m_nType == kSynthetic) CheckFunction(resp);
}

void RespCheck::CheckFunction(const CResp& resp) {
  if (resp.m_nAuxID < 1) {
    holds_ = false;
    const char* kind = resp.m_nType == kLinked ? "link" : "synthetic";
    LError(
        "(Check Resps): Response (%s - index=%d) is a %s type but it does not reference a %s specification\n",
        Name(resp), Index(resp), kind, kind);
    return;
  }
  CAuxiliary function(pod_);
  if (!kestdb::LoadByID(function, resp.m_nAuxID)) {
    holds_ = false;
    LError(
        "(Check Resps) : Referenced auxiliary object for Response (%s - index=%d) does not exist\n",
        Name(resp), Index(resp));
    return;
  }
  const auto arguments = static_cast<unsigned>(resp.m_vnArg.size());
  if (function.GetNumArgs() != arguments) {
    holds_ = false;
    LError("(Check Resps) : Argument number mismatch for Response (%s - index=%d) %d != %d\n",
           Name(resp), Index(resp), static_cast<int>(arguments),
           static_cast<int>(function.GetNumArgs()));
    return;
  }
  KESTDB_ASSERT(resp.m_vnArg.size() == resp.m_vnIdx.size(), "vnArg.size() == vnIdx.size()");
  CheckArguments(resp);
}

void RespCheck::CheckArguments(const CResp& resp) {
  bool onlyConstants = true;
  for (std::size_t i = 0; i < resp.m_vnArg.size(); ++i) {
    const bool varies =
        resp.m_vnArg[i] < 0 ? CheckInputArgument(resp, i) : CheckRespArgument(resp, i);
    if (varies) onlyConstants = false;
  }
  if (resp.m_vnArg.empty() || !onlyConstants || control_.m_nTaskType != 0) return;
  LWarn("(Check Resps) : Dependent response (%s - index=%d) only references constant variables.",
        Name(resp), Index(resp));
  LPrint(
      "     The gradient of this dependent response will be zero. This may cause DGO to halt.\n\n");
}

/// True for an Input that is there and isn't constant.
bool RespCheck::CheckInputArgument(const CResp& resp, std::size_t i) {
  CInput argument(pod_);
  if (!kestdb::LoadByID(argument, -resp.m_vnArg[i].PackBits())) {
    ReportMissing(resp, i);
    return false;
  }
  CheckElement(resp, i, argument.m_uSize);
  return argument.m_nType != kConstantInput;
}

/// True for a response that is there.
bool RespCheck::CheckRespArgument(const CResp& resp, std::size_t i) {
  CResp argument(pod_);
  if (!kestdb::LoadByID(argument, resp.m_vnArg[i])) {
    ReportMissing(resp, i);
    return false;
  }
  const int number = static_cast<int>(i) + 1;
  if (argument.m_nType == kPassFail) {
    holds_ = false;
    LError(
        "(Check Resps) : Argument %d for dependent Response (%s - index=%d) is a Pass/Fail type response\n",
        number, Name(resp), Index(resp));
  }
  const bool synthetic = argument.m_nType == kSynthetic;
  if (resp.m_nType == kLinked && (argument.m_nType == kLinked || synthetic)) {
    holds_ = false;
    LError(
        "(Check Resps) : Argument %d for Linked Response (%s - index=%d) is not an independent response\n",
        number, Name(resp), Index(resp));
  }
  if (resp.m_nType == kSynthetic && synthetic) {
    holds_ = false;
    LError(
        "(Check Resps) : Argument %d for Synthetic Response (%s - index=%d) is not a linked or independent response\n",
        number, Name(resp), Index(resp));
  }
  CheckElement(resp, i, argument.m_uSize);
  return true;
}

void RespCheck::ReportMissing(const CResp& resp, std::size_t i) {
  holds_ = false;
  LError("(Check Resps) : Argument %d for Response (%s - index=%d) does not exist\n",
         static_cast<int>(i) + 1, Name(resp), Index(resp));
}

void RespCheck::CheckElement(const CResp& resp, std::size_t i, const vbUINT32& size) {
  const int element = ToInt(resp.m_vnIdx[i]);
  if (element <= 0 || size >= element) return;
  holds_ = false;
  LError(
      "(Check Resps) : Argument %d for Response (%s - index=%d) references an element index (%d) that does not exist\n",
      static_cast<int>(i) + 1, Name(resp), Index(resp), element);
}

}  // namespace

bool CResp::CheckResps(POD* pod) try {
  kestdb::RequireIndexed(pod);
  const CLock lock(pod, 0);
  CDesignControl control(pod);
  if (!control.GetObject()) Throw<CObjectNotFound>();
  RespCheck check(pod, control);
  kestdb::VisitInIndexOrder<CResp>(pod, [&](const CResp& resp) {
    check.Check(resp);
    return true;
  });
  return check.Holds();
}
LOG_AND_RETHROW
