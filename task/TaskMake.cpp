#include <algorithm>
#include <limits>

#include "control/DesignControl.h"
#include "definition/DBCtrl.h"
#include "definition/GPoint.h"
#include "definition/Input.h"
#include "definition/Resp.h"
#include "environment/Logging.h"
#include "maintenance/Lock.h"
#include "results/Message.h"
#include "results/Result.h"
#include "store/KestErr.h"
#include "store/walk.h"
#include "task/DResp.h"
#include "task/DVar.h"
#include "task/Task.h"
#include "task/TaskTables.h"

// Make Task, from the user's definitions to a frozen task.

namespace {

using kestdb::ElementAt;

constexpr int kUserDefined = 11;  // the design of the user's own points

/// What the study contains, in scalars.
struct StudyCounts {
  int independent = 0, linked = 0, synthetic = 0, constant = 0, combinatorial = 0, discrete = 0;
  int indResps = 0, linkResps = 0, synResps = 0;
  int constraints = 0, objectives = 0, randomVars = 0, randomResps = 0;
  int usedPoints = 0, runPoints = 0, lockedPoints = 0;

  long Constants() const { return long{constant} + combinatorial; }
  long Vars() const { return long{independent} + linked + synthetic + Constants(); }
  long Resps() const { return long{indResps} + linkResps + synResps; }
};

/// The IDs of definitions in transfer order.
using TransferTable = std::vector<int>;

/// The steps of making one task, in the order in which they are taken.
class TaskMaker {
 public:
  TaskMaker(CTask& task, bool flag1, bool flag2)
      : task_(task), pod_(task.Database()), flag1_(flag1), flag2_(flag2) {}

  void Make();

 private:
  bool CountDefinitions();
  bool CheckDefinitions();
  bool SetUpTask();
  void StoreCounts();
  void StoreTask();
  bool MakeVariables();
  bool MakeResponses();
  bool MakeConstraints();
  void MakeTables();
  void MakePoints();
  void FinishTask();

  bool CheckTransferOrder();
  bool TakesUserPoints() const;
  void RemoveTask();
  template <class Record>
  void RemoveRecord();

  CTask& task_;
  POD* pod_;
  bool flag1_;
  bool flag2_;
  StudyCounts counts_;
  std::set<int> links_;
  std::set<int> equations_;
  std::set<int> sets_;
  TransferTable inputs_;
  TransferTable resps_;
};

void ReportNotDefined() {
  LWarn("Could not define the task. Errors found!");
}

void TaskMaker::Make() try {
  if (!CountDefinitions() || !CheckDefinitions() || !SetUpTask()) return;
  StoreTask();
  if (!MakeVariables() || !MakeResponses() || !MakeConstraints()) return ReportNotDefined();
  MakeTables();
  MakePoints();
  FinishTask();
}
LOG_AND_RETHROW

// -- Before anything is written.

bool TaskMaker::CountDefinitions() {
  StudyCounts& n = counts_;
  task_.CountInputs(&n.independent, &n.linked, &n.synthetic, &n.constant, &n.combinatorial,
                    &n.discrete, &n.constraints, &n.objectives, &n.randomVars);
  if (n.independent == 0) {
    LError("(Make Task) : 0 independent design variables\n");
    LPrint("     Every task needs at least 1 independent design variable!\n");
    return false;
  }
  task_.CountResps(&n.indResps, &n.linkResps, &n.synResps, &n.constraints, &n.objectives,
                   &n.randomResps);
  if (n.Resps() == 0) {
    LError("(Make Task) : 0 design responses defined\n");
    LPrint("     Every task needs at least 1 design response!\n");
    return false;
  }
  task_.CountGPoints(&n.usedPoints, &n.runPoints, &n.lockedPoints);
  return true;
}

int AsInt(long count) {
  return static_cast<int>(std::min<long>(count, std::numeric_limits<int>::max()));
}

/// All checks are made whatever the others say, so that the user sees all faults at once.
bool TaskMaker::CheckDefinitions() {
  const StudyCounts& n = counts_;
  bool holds = CDesignControl::CheckDesignControl(
      pod_, flag1_, flag2_, n.independent, n.discrete, n.combinatorial, n.indResps, n.objectives,
      n.runPoints, n.usedPoints, n.lockedPoints, n.randomVars, n.randomResps);
  holds = CInput::CheckInputs(pod_) && holds;
  holds = CResp::CheckResps(pod_) && holds;
  holds = CGPoint::CheckGPoints(pod_, AsInt(n.Vars()), AsInt(n.Resps())) && holds;
  holds = CheckTransferOrder() && holds;
  if (!holds) ReportNotDefined();
  return holds;
}

/// A table of so many scalars fits into no file.
constexpr long kTooMany = std::numeric_limits<int>::max() / 64;

/// Puts the definitions at their places in the transfer order; false, with each fault reported,
/// when they don't all have a place of their own.
template <class Definition>
bool FillTransferTable(POD* pod, long size, const char* kind, TransferTable& table) {
  if (size > kTooMany) {
    LError("(Make Task) : The study has more %s elements than a task can hold\n", kind);
    return false;
  }
  table.assign(static_cast<std::size_t>(size), -1);
  bool holds = true;
  kestdb::VisitInFileOrder<Definition>(pod, [&](const Definition& definition) {
    const unsigned long index = definition.m_uIndex;
    const char* name = definition.m_strName.c_str();
    if (index < 1 || index > table.size()) {
      LError("(Make Task) : Translation index of %s (%s - index=%d) is not from 1 to %d\n", kind,
             name, static_cast<int>(index), static_cast<int>(size));
      holds = false;
    } else if (table[index - 1] != -1) {
      LError("(Make Task) : Translation index of %s (%s - index=%d) is used twice\n", kind, name,
             static_cast<int>(index));
      holds = false;
    } else {
      table[index - 1] = static_cast<int>(long{definition.m_nID});
    }
    return true;
  });
  return holds;
}

bool TaskMaker::CheckTransferOrder() {
  const bool inputs = FillTransferTable<CInput>(pod_, counts_.Vars(), "Input", inputs_);
  return FillTransferTable<CResp>(pod_, counts_.Resps(), "Response", resps_) && inputs;
}

unsigned long Unsigned(long count) {
  return static_cast<unsigned long>(count);
}

void TaskMaker::StoreCounts() {
  const StudyCounts& n = counts_;
  task_.m_uNumIndDV = Unsigned(n.independent);
  task_.m_uNumLinkDV = Unsigned(n.linked);
  task_.m_uNumSynDV = Unsigned(n.synthetic);
  task_.m_uNumConstDV = Unsigned(n.Constants());
  task_.m_uNumIndResp = Unsigned(n.indResps);
  task_.m_uNumLinkResp = Unsigned(n.linkResps);
  task_.m_uNumSynResp = Unsigned(n.synResps);
  task_.m_uNumRandDV = Unsigned(n.randomVars);
  task_.m_uNumRandResp = Unsigned(n.randomResps);
}

/// Copies the settings and counts into the task in memory.
bool TaskMaker::SetUpTask() {
  const StudyCounts& n = counts_;
  task_.AssociateAux(links_, equations_, sets_);
  task_.SetupTask(n.independent, n.constraints, n.discrete, n.randomVars, n.randomResps);
  if (n.combinatorial > 0 && task_.m_nType == 0 && task_.m_DGO.m_nMultiStart != 0) {
    LError("(Create Task): Cannot create a task that contains combinatorial\n");
    LPrint("      design variables and performs optimization starting from\n");
    LPrint("      multiple initial starting points.\n");
    return false;
  }
  StoreCounts();
  if (task_.m_nType == 2) {
    task_.m_uNumPoints = 0;
  } else {
    task_.m_uNumCons = Unsigned(n.constraints);
    task_.m_uNumPoints = 1;
    task_.SetAnalyzeFlags({1});
  }
  task_.m_uNumObj = Unsigned(n.objectives);
  task_.m_uNumSets = sets_.size();
  task_.SetCreateTime();
  return true;
}

// -- The records.

void TaskMaker::StoreTask() {
  task_.m_nID = CDBCtrl(pod_).GetTaskID(true);
  task_.PutObject();
  CResult result(pod_);
  result.m_nID = task_.m_nID;
  result.m_nNumPoints = result.m_nTotalPoints = 1;
  result.PutObject();
}

template <class Record>
void TaskMaker::RemoveRecord() {
  Record record(pod_);
  record.m_nID = task_.m_nID;
  record.RemoveObject();
}

void TaskMaker::RemoveTask() {
  task_.RemoveObject();
  RemoveRecord<CResult>();
}

/// False when the step throws; what went wrong is in the log.
template <class Step>
bool Succeeds(Step step) {
  try {
    step();
    return true;
  } catch (...) {
    return false;
  }
}

bool TaskMaker::MakeVariables() {
  const StudyCounts& n = counts_;
  const bool made = Succeeds([&] {
    task_.SetupDVar(n.independent, n.linked, n.synthetic, AsInt(n.Constants()), n.randomVars,
                    inputs_);
  });
  if (!made) RemoveTask();
  return made;
}

/// Kept: the first point that came with the variables stays behind a failure.
bool TaskMaker::MakeResponses() {
  const StudyCounts& n = counts_;
  const bool made = Succeeds(
      [&] { task_.SetupDResp(n.indResps, n.linkResps, n.synResps, n.randomResps, resps_); });
  if (!made) {
    RemoveRecord<CDVar>();
    RemoveTask();
  }
  return made;
}

/// Kept: behind a failure the constraints stay too.
bool TaskMaker::MakeConstraints() {
  task_.SetupDCons(counts_.constraints, inputs_, resps_);
  const bool holds = task_.CheckRandDVarResp(pod_, counts_.randomVars, counts_.randomResps);
  if (!holds) {
    RemoveRecord<CDVar>();
    RemoveRecord<CDResp>();
    RemoveTask();
  }
  return holds;
}

void TaskMaker::MakeTables() {
  if (task_.m_nType != 2) task_.SetupDObj(counts_.objectives, inputs_, resps_);
  task_.SetupDLink(links_);
  task_.SetupDEqn(equations_);
  task_.SetupDSet(sets_);
}

bool TaskMaker::TakesUserPoints() const {
  switch (task_.m_nType) {
    case 0:
      return task_.m_DGO.m_nMultiStart != 0;
    case 1:
      return task_.m_RSA.m_nInitialDOE == kUserDefined;
    case 2:
      return task_.m_DOE.m_nMethod == kUserDefined;
    case 3:
      return task_.m_NGO.m_nStart == kUserDefined;
    default:
      return false;
  }
}

void TaskMaker::MakePoints() {
  const StudyCounts& n = counts_;
  if (TakesUserPoints()) {
    task_.SetupDPoints(n.independent, n.linked, n.synthetic, AsInt(n.Constants()), n.indResps,
                       n.linkResps, n.synResps);
  }
  const int id = static_cast<int>(long{task_.m_nID});
  const int combinations = task_.SetupDPointsCombin(pod_, id, true);
  if (combinations > 100) {
    LWarn("(Creat Task): There is a total of %d combinations for the current\n", combinations);
    LPrint("     combinatiorial optimization problem.  The total time required\n");
    LPrint("     to solve %d sub-optimization problems may be large.\n ", combinations);
  }
  if (task_.m_nType == 2 && task_.m_uNumCons != 0) task_.SetupDOEDCons();
}

void TaskMaker::FinishTask() {
  CMessage messages(pod_);
  messages.m_nID = task_.m_nID;
  messages.PutObject();
  task_.PutObject();  // with the final counts, flags and points
}

/// The last line of the log of making a task, on every way out.
class EndLine {
 public:
  EndLine() = default;
  EndLine(const EndLine&) = delete;
  EndLine& operator=(const EndLine&) = delete;
  ~EndLine() { Print(); }

  void Print() {
    if (!printed_) LPrint("\n***** End -- Make Task *****\n");
    printed_ = true;
  }

 private:
  bool printed_ = false;
};

}  // namespace

// No handlers here: the steps have logged their failure before the End line is printed.
void CTask::DefineTask(bool bFlag1, bool bFlag2) {
  if (Database() == nullptr) Throw<CNoDatabaseOpen>();
  EndLine end;
  const CLock lock(Database(), 0);
  LPrint("\n***** Start -- Make Task *****\n");
  TaskMaker(*this, bFlag1, bFlag2).Make();
  end.Print();
}

// ---- The settings ----

namespace {

void CopyUnlessEmpty(const std::string& from, std::string& to) {
  if (!from.empty()) to = from;
}

/// How many of the user's points a task starts from. THROWS CGetObject, and CMakeTask for none,
/// with `none` in the log.
int RequireUserPoints(POD* pod, const char* none) {
  CGPoint points(pod);
  if (!points.GetObject()) Throw<CGetObject>();
  const int used = points.NumUsedGPoints();
  if (used < 1) {
    LError("%s", none);
    Throw<CMakeTask>();
  }
  return used;
}

/// A response surface task's sub-model, by its initial design.
int SubModelOf(POD* pod, const CRSAControl& settings) {
  switch (settings.m_nInitialDOE) {
    case 5:
      return 10;
    case 9:
    case 99:
      return 0;
    case kUserDefined:
      return RequireUserPoints(
          pod, "User defined DOE was specified for RSA but no user defined design points exist!\n");
    default:
      LError("Unknown DOE design method (code = %d) was specified for RSA.\n",
             static_cast<int>(long{settings.m_nInitialDOE}));
      Throw<CMakeTask>();
  }
}

/// A non-gradient task's population, by its way to start.
vbINT32 PopulationOf(POD* pod, const CNGOControl& settings) {
  switch (settings.m_nStart) {
    case 10:
      return settings.m_nPopulation;
    case kUserDefined:
      return RequireUserPoints(
          pod, "User defined DOE was specified for NGO but no user defined design points exist!\n");
    default:
      LError("Unknown DOE design method (code = %d) was specified for NGO.\n",
             static_cast<int>(long{settings.m_nStart}));
      Throw<CMakeTask>();
  }
}

/// Kept: the templates of the other way to connect are forgotten.
void CopyRemote(const CDesignControl& control, CTask& task) {
  const bool ssh = control.m_nUseSSH != 0;
  task.m_nRemote = control.m_nRemote;
  CopyUnlessEmpty(ssh ? control.m_strSSHConnect : control.m_strConnect, task.m_strConnectTemplate);
  CopyUnlessEmpty(ssh ? control.m_strSSHCopyTo : control.m_strCopyTo, task.m_strCopyToTemplate);
  CopyUnlessEmpty(ssh ? control.m_strSSHCopyFrom : control.m_strCopyFrom,
                  task.m_strCopyFromTemplate);
  CopyUnlessEmpty(control.m_strUser, task.m_strUser);
  CopyUnlessEmpty(control.m_strHost, task.m_strHost);
  CopyUnlessEmpty(control.m_strRemoteDir, task.m_strRemoteDir);
  task.m_nRemoteTimeout = control.m_nTimeout;
}

/// A design of experiments holds constraints only to filter random or user points by them.
bool FiltersPoints(const CDOEControl& settings) {
  constexpr int random = 10;
  return settings.m_nFilter != 0 &&
         (settings.m_nMethod == random || settings.m_nMethod == kUserDefined);
}

}  // namespace

void CTask::SetupTask(int, int nCons, int nDiscrete, int, int) try {
  if (Database() == nullptr) Throw<CNoDatabaseOpen>();
  const CLock lock(Database(), 0);
  CDesignControl control(Database());
  if (!control.GetObject()) Throw<CObjectNotFound>();
  m_nType = control.m_nTaskType;
  CopyUnlessEmpty(control.m_strTitle, m_strTitle);
  CopyUnlessEmpty(control.m_strProgram, m_strProgram);
  CopyUnlessEmpty(control.m_strArgs, m_strArgs);
  CopyUnlessEmpty(control.m_strVarFile, m_strVarFile);
  CopyUnlessEmpty(control.m_strRespFile, m_strRespFile);
  m_nUserRoutine = control.m_nUserRoutine;
  m_nUseApprox = control.m_nUseApprox;
  m_nApproxTask = control.m_nApproxTask;
  CopyRemote(control, *this);
  const int discreteProblem = nDiscrete >= 1 ? 1 : 0;
  m_DGO.Copy(control.m_DGO);
  m_DGO.m_nReserved = discreteProblem;
  m_RSA.Copy(control.m_RSA);
  m_RSA.m_nSubModel = SubModelOf(Database(), control.m_RSA);
  m_RSA.m_nReserved = discreteProblem;
  m_DOE.Copy(control.m_DOE);
  m_uNumCons = FiltersPoints(control.m_DOE) ? Unsigned(nCons) : 0UL;
  m_NGO.Copy(control.m_NGO);
  m_NGO.m_nOldPopulation = PopulationOf(Database(), control.m_NGO);
  m_ANL.Copy(control.m_ANL);
}
LOG_AND_RETHROW
