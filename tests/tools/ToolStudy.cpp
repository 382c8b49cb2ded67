#include "tests/tools/ToolStudy.h"

ToolStudy::ToolStudy() {
  Change([](POD*) {});
}

void ToolStudy::Change(const std::function<void(POD*)>& change) const {
  OpenDatabase(folder / "study");
  change(GetPOD());
  CloseDatabase();
}

std::string ToolStudy::Output(const std::vector<std::string>& arguments, int status) const {
  const Outcome outcome = Kestdb(arguments);
  EXPECT_EQ(outcome.status, status) << outcome.err;
  EXPECT_EQ(WithoutTrace(outcome.err), "");
  return outcome.out;
}

std::string ToolStudy::Message(const std::vector<std::string>& arguments, int status) const {
  const Outcome outcome = Kestdb(arguments);
  EXPECT_EQ(outcome.status, status);
  EXPECT_EQ(outcome.out, "");
  return WithoutTrace(outcome.err);
}

namespace {

void FillDefinitions(POD* pod) {
  CInput width(pod);
  width.m_nID = 1;
  width.m_strName = "width";
  width.m_uIndex = 1;
  width.m_fLower = 0.1;
  width.m_fInitial = 0.30000000000000004;
  width.PutObject();
  CInput kind(pod);
  kind.m_nID = 2;
  kind.m_strName = "kind";
  kind.m_uIndex = 2;
  kind.m_nType = 3;
  kind.m_strText = "of \"steel\", or not";
  kind.PutObject();
  CResp mass(pod);
  mass.m_nID = 3;
  mass.m_strName = "mass";
  mass.m_uIndex = 1;
  mass.m_nHasUpper = 1;
  mass.m_fUpper = 12.5;
  mass.m_nObjective = 1;
  mass.PutObject();
  CGPoint points(pod);
  points.m_vnUsed = {1, 0};
  points.m_vnRun = {1, 1};
  points.m_vnLocked = {0, 1};
  points.m_vDVars = {{0.1, 2.0}, {1e-300, 3.0}};
  points.m_vResps = {{7.5}, {}};
  points.PutObject();
}

template <class Record>
void PutEmpty(POD* pod) {
  Record record(pod);
  record.m_nID = 1;
  record.PutObject();
}

void FillTask(POD* pod) {
  CTask task(pod);
  task.m_nID = 1;
  task.m_nType = 0;
  task.m_strTitle = "first run";
  task.m_strCreated = "Sat Nov 21 12:00:00 2026";
  task.m_uNumIndDV = 1;
  task.m_uNumConstDV = 1;
  task.m_uNumIndResp = 1;
  task.m_uNumPoints = 1;
  task.m_uNumObj = 1;
  task.PutObject();
  CDBCtrl counters(pod);
  counters.GetObject();
  counters.TaskIDs = {1};
  counters.PutObject();
}

void FillVariables(POD* pod) {
  CDVar vars(pod);
  vars.m_nID = 1;
  vars.m_vnSeq = {0, 0};
  vars.m_vnType = {23, 20};
  vars.m_vnIndIDs = {1};
  vars.m_vnConstIDs = {2};
  vars.m_vfIndLowerIn = vars.m_vfIndLower = {vbFLOAT64(0.1)};
  vars.m_vfIndUpperIn = vars.m_vfIndUpper = {vbFLOAT64(1e30)};
  vars.m_vfIndScale = {vbFLOAT64(0.0)};
  vars.m_vstrIndName = {"width"};
  vars.m_vstrConstName = {"kind"};
  vars.m_vnConstSet = {vbINT32(0)};
  vars.m_vfConstLower = vars.m_vfConstUpper = {vbFLOAT64(0.0)};
  vars.m_vnDiscreteRef = {0};
  vars.PutObject();
  CDResp resps(pod);
  resps.m_nID = 1;
  resps.m_vnSeq = {0};
  resps.m_vnType = {24};
  resps.m_vnIndIDs = {3};
  resps.m_vstrIndName = {"mass"};
  resps.m_vnPassFail = {0};
  resps.PutObject();
}

void FillGoals(POD* pod) {
  CDCons cons(pod);
  cons.m_nID = 1;
  cons.m_vnSubj = {0};
  cons.m_vnSubjType = {24};
  cons.m_vfBound = {12.5};
  cons.m_vnMult = {1};
  cons.m_vfScale = {12.5};
  cons.PutObject();
  CDObj goals(pod);
  goals.m_nID = 1;
  goals.m_vnSubj = {0};
  goals.m_vnSubjType = {24};
  goals.m_vnGoal = {vbINT32(0)};
  goals.m_vnHasWorst = {vbINT32(0)};
  goals.m_vfWorst = {vbFLOAT64(0.0)};
  goals.m_vfWeight = {vbFLOAT64(1.0)};
  goals.m_vfTarget = {vbFLOAT64(0.0)};
  goals.PutObject();
  PutEmpty<CDLink>(pod);
  PutEmpty<CDEqn>(pod);
  PutEmpty<CDSet>(pod);
}

void PutPoint(POD* pod, int number, double width, std::valarray<double> masses) {
  CDPoint point(pod);
  point.m_nTaskID = 1;
  point.m_nPointID = number;
  point.m_IDVar = {width};
  point.m_CDVar = {2.0};
  point.m_IResp = masses;
  point.PutObject();
}

void FillRun(POD* pod) {
  CResult result(pod);
  result.m_nID = 1;
  result.m_nRunStatus = 2;
  result.m_nNumPoints = 2;
  result.m_fBestObjective = 7.25;
  result.PutObject();
  CMessage messages(pod);
  messages.m_nID = 1;
  messages.m_Messages = {"WARNING: nearly there"};
  messages.PutObject();
  PutPoint(pod, 0, 0.30000000000000004, {7.5});
  PutPoint(pod, 1, 0.25, {});
  CIter iter(pod);
  iter.m_nTaskID = 1;
  iter.m_fThisObjective = iter.m_fBestObjective = 7.5;
  iter.m_fThisConstraint = iter.m_fBestConstraint = -0.4;
  iter.PutObject();
}

void FillModels(POD* pod) {
  CApproxModels model(pod);
  model.m_nTaskID = 1;
  model.m_Model = {0, 1};
  model.m_Coefficients = model.m_StdErrors = model.m_TStats = model.m_PValues = {1.0, 2.0};
  model.PutObject();
  CRApproxMod last(pod);
  last.m_nTaskID = 1;
  last.m_nRowMod = 1;
  last.m_nColMod = 2;
  last.m_Model = {0, 1};
  last.m_nRowCoeff = 2;
  last.m_nColCoeff = 1;
  last.m_Coeff = {1.0, 2.0};
  last.PutObject();
  CRDOE design(pod);
  design.m_nTaskID = 1;
  design.m_Points = {0};
  design.PutObject();
  CResidual residual(pod);
  residual.m_nTaskID = 1;
  residual.m_HDiagonal = residual.m_Predicted = residual.m_Residual = {0.5};
  residual.m_Standardized = residual.m_Studentized = residual.m_RStudentized = {0.5};
  residual.m_Press = residual.m_Cook = {0.5};
  residual.PutObject();
}

}  // namespace

void ToolStudy::Fill() const {
  Change([](POD* pod) {
    const CLock lock(pod, 0);
    FillDefinitions(pod);
    FillTask(pod);
    FillVariables(pod);
    FillGoals(pod);
    FillRun(pod);
    FillModels(pod);
  });
}
