#include <stdexcept>
#include <vector>

#include "tests/guide/Guide.h"

namespace {

// [variable]
/// Stores a continuous variable and returns its ID. Variables are numbered by `place` from 1.
int DefineVariable(const char* name, unsigned long place, double lower, double initial,
                   double upper) {
  CDBCtrl ids(GetPOD());
  CInput variable(GetPOD());
  variable.m_nID = ids.GetInputID(true);
  variable.m_strName = name;
  variable.m_uIndex = place;
  variable.m_fLower = lower;
  variable.m_fInitial = initial;
  variable.m_fUpper = upper;
  variable.PutObject();
  return static_cast<int>(variable.m_nID.PackBits());
}
// [end]

// [response]
/// A response that the analysis gives. It is not stored yet.
CResp Response(const char* name, unsigned long place) {
  CDBCtrl ids(GetPOD());
  CResp response(GetPOD());
  response.m_nID = ids.GetRespID(true);
  response.m_strName = name;
  response.m_uIndex = place;
  response.m_nConstraint = 0;
  return response;
}

int DefineArea() {
  CResp area = Response("area", 1);
  area.PutObject();
  return static_cast<int>(area.m_nID.PackBits());
}

void DefineLimit(const char* name, unsigned long place, double upper) {
  CResp response = Response(name, place);
  response.m_nConstraint = 1;
  response.m_nHasUpper = 1;
  response.m_fUpper = upper;
  response.PutObject();
}
// [end]

// [objective]
/// 0.5 + 0.02 * area + 0.1 * width, to be minimised.
void DefineCost(int area, int width) {
  CDBCtrl ids(GetPOD());
  CAuxiliary link(GetPOD());
  link.m_nID = ids.GetAuxID(true);
  link.m_strName = "price";
  link.m_nAuxType = 1;
  link.m_nNumber = 1;
  link.m_vfCoef = {0.5, 0.02, 0.1};
  link.m_vstrArgNames = {"", "area", "width"};
  link.PutObject();

  CResp cost = Response("cost", 4);
  cost.m_nType = 1;  // linked
  cost.m_nAuxID = link.m_nID;
  cost.m_vnArg = {area, -width};  // responses by their ID, variables by its negative
  cost.m_vnIdx = {0, 0};
  cost.m_vnLength = {1, 1};
  cost.m_nObjective = 1;
  cost.m_nGoal = 0;
  cost.PutObject();
}
// [end]

}  // namespace

// [define]
void DefineBeam() {
  const CLock lock(GetPOD(), 0);  // another process sees all of it or nothing
  const int width = DefineVariable("width", 1, 10.0, 40.0, 60.0);
  DefineVariable("height", 2, 20.0, 80.0, 100.0);
  const int area = DefineArea();
  DefineLimit("stress", 2, 200.0);
  DefineLimit("deflection", 3, 2.0);
  DefineCost(area, width);

  CDesignControl control(GetPOD());
  control.GetObject();
  control.m_strTitle = "Cantilever beam";
  control.m_nTaskType = 0;  // direct gradient
  control.m_strProgram = "beam";
  control.m_DGO.m_nITMAX = 60;
  control.PutObject();
}
// [end]

// [check]
bool CheckBeam() {
  const bool inputsPass = CInput::CheckInputs(GetPOD());
  const bool responsesPass = CResp::CheckResps(GetPOD());
  return inputsPass && responsesPass;
}
// [end]

// [make]
int MakeBeamTask() {
  CTask task(GetPOD());
  task.DefineTask(true, true);
  const auto id = static_cast<int>(task.m_nID.PackBits());
  if (id <= 0 || !task.FindObject()) throw std::runtime_error("the study can't be run");
  return id;
}
// [end]

// [reconsider]
void Reconsider(double greatestWidth) {
  std::vector<int> ids;
  CInput::GetAllInputIDs(GetPOD(), ids);
  for (const int id : ids) {
    CInput variable(GetPOD());
    variable.m_nID = id;
    if (!variable.GetObject() || variable.m_strName != "width") continue;
    variable.m_fUpper = greatestWidth;
    variable.PutObject();
  }
}
// [end]

// [load]
void GoBackTo(int task) {
  CTask::LoadTask(GetPOD(), task);
}
// [end]

// [restart]
int RestartFromBest(int task) {
  CTask next(GetPOD());
  return next.RestartTask(task, -1, "Cantilever beam, once more", true, false);
}
// [end]
