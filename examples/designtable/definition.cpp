#include "definition.h"

#include <kestdb.h>

#include <string>

namespace {

// The user interface gives every definition a number of its own.
constexpr int kX = 1;
constexpr int kY = 2;
constexpr int kYield = 3;
constexpr int kNetYield = 4;
constexpr int kNetYieldLink = 5;

constexpr double kBound = 1.414;

void DefineVariable(int id, const std::string& name, unsigned index) {
  CInput variable(GetPOD());
  variable.m_nID = id;
  variable.m_strName = name;
  variable.m_uIndex = index;
  variable.m_fLower = -kBound;
  variable.m_fUpper = kBound;
  variable.PutObject();
}

void DefineYield() {
  CResp yield(GetPOD());
  yield.m_nID = kYield;
  yield.m_strName = "yield";
  yield.m_uIndex = 1;
  yield.m_nObjective = 1;
  yield.m_nGoal = 1;  // the more the better
  yield.m_nHasLower = 1;
  yield.m_fLower = 76.0;
  yield.PutObject();
}

/// The yield less what the first variable costs: yield - 0.5 * x.
void DefineNetYield() {
  CAuxiliary link(GetPOD());
  link.m_nID = kNetYieldLink;
  link.m_strName = "net";
  link.m_nAuxType = 1;
  link.m_nNumber = 1;
  link.m_vfCoef = {0.0, 1.0, -0.5};
  link.m_vstrArgNames = {"", "yield", "x"};
  link.PutObject();

  CResp net(GetPOD());
  net.m_nID = kNetYield;
  net.m_strName = "net yield";
  net.m_uIndex = 2;
  net.m_nType = 1;
  net.m_nConstraint = 0;
  net.m_nAuxID = kNetYieldLink;
  net.m_vnArg = {kYield, -kX};  // responses by their number, variables by its negative
  net.m_vnIdx = {0, 0};
  net.m_vnLength = {1, 1};
  net.PutObject();
}

/// The table holds a value for each response: that of the link is worked out from the measured one.
void CompletePoints() {
  CGPoint points(GetPOD());
  points.GetObject();
  for (std::size_t i = 0; i < points.m_vDVars.size(); ++i) {
    const double x = points.m_vDVars[i][0];
    const double yield = points.m_vResps[i][0];
    points.m_vResps[i] = {yield, yield - 0.5 * x};
  }
  points.PutObject();
}

/// A full quadratic model of the yield, from the points of the table.
void DefineRun(const char* title) {
  CDesignControl control(GetPOD());
  control.GetObject();
  control.m_strTitle = title;
  control.m_nTaskType = 2;       // design of experiments
  control.m_DOE.m_nMethod = 11;  // with the user's points
  control.m_DOE.m_nModel = 3;
  control.m_DOE.m_nTask = 2;
  control.PutObject();
}

void SetBounds(double lower, double upper) {
  CInput variable(GetPOD());
  variable.m_nID = kX;
  variable.GetObject();
  variable.m_fLower = lower;
  variable.m_fUpper = upper;
  variable.PutObject();
}

bool CheckRun() {
  constexpr int variables = 2;
  constexpr int independentResponses = 1;
  constexpr int responses = 2;
  constexpr int objectives = 1;
  CGPoint points(GetPOD());
  points.GetObject();
  return CDesignControl::CheckDesignControl(GetPOD(), true, true, variables, 0, 0,
                                            independentResponses, objectives, 0,
                                            points.NumUsedGPoints(), 0, 0, 0) &&
         CGPoint::CheckGPoints(GetPOD(), variables, responses);
}

}  // namespace

void DefineStudy(const char* title) {
  DefineVariable(kX, "x", 1);
  DefineVariable(kY, "y", 2);
  DefineYield();
  DefineNetYield();
  CompletePoints();
  DefineRun(title);
}

bool CheckStudy() {
  return CInput::CheckInputs(GetPOD()) && CResp::CheckResps(GetPOD()) && CheckRun();
}

void CrossBounds() {
  SetBounds(kBound, -kBound);
}

void RestoreBounds() {
  SetBounds(-kBound, kBound);
}

void PrintDefinitions() {
  CInput::Dump(GetPOD(), stdout);
  CResp::Dump(GetPOD(), stdout);
  CAuxiliary::Dump(GetPOD(), stdout);
  CDesignControl::Dump(GetPOD(), stdout);
}

int MakeTask() {
  CTask task(GetPOD());
  task.DefineTask(true, true);
  return static_cast<int>(task.m_nID.PackBits());
}

void PrintTask(int task) {
  CDVar::Dump(GetPOD(), stdout, task);
  CDResp::Dump(GetPOD(), stdout, task);
  CDLink::Dump(GetPOD(), stdout, task);
  CDPoint::Dump(GetPOD(), stdout, task, 0);
  CResult::Dump(GetPOD(), stdout, task, false);
}
