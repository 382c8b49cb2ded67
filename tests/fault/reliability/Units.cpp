#include "tests/fault/reliability/Units.h"

#include <kestdb.h>

namespace {

constexpr int kTask = 1;

// ---- The study ----

void DefineVariable(int id, const char* name) {
  CInput variable(GetPOD());
  variable.m_nID = id;
  variable.m_strName = name;
  variable.m_uIndex = static_cast<unsigned long>(id);
  variable.m_fLower = 10.0;
  variable.m_fInitial = 40.0;
  variable.m_fUpper = 100.0;
  variable.PutObject();
}

void DefineResponse(int id, const char* name, bool isObjective) {
  CResp response(GetPOD());
  response.m_nID = id;
  response.m_strName = name;
  response.m_uIndex = static_cast<unsigned long>(id - 2);
  response.m_nObjective = isObjective ? 1 : 0;
  response.m_nConstraint = isObjective ? 0 : 1;
  response.m_nHasUpper = isObjective ? 0 : 1;
  response.m_fUpper = 200.0;
  response.PutObject();
}

void DefineRun() {
  CDesignControl control(GetPOD());
  control.GetObject();
  control.m_strTitle = "Beam";
  control.m_nTaskType = 0;
  control.m_strProgram = "beam";
  control.PutObject();
}

void MakeTask(const std::string&) {
  CTask task(GetPOD());
  task.DefineTask(true, true);
  if (task.m_nID <= 0 || !task.FindObject()) throw NothingMade("no task was made");
}

/// All its values follow from the number and the sizes.
void PutPoint(int number, std::size_t values, double first) {
  CDPoint point(GetPOD());
  point.SetDefaultAttributes();
  point.m_nTaskID = kTask;
  point.m_nPointID = number;
  point.m_IDVar.resize(values);
  for (std::size_t i = 0; i < values; ++i) point.m_IDVar[i] = first + static_cast<double>(i);
  point.m_IResp = {first * 0.5, first * 0.25};
  point.PutObject();
}

// ---- The units ----

void Open(const std::string& base) {
  OpenDatabase(base);
}

void Add(const std::string&) {
  PutPoint(500, 6, 500.0);
}

void UpdateInPlace(const std::string&) {
  PutPoint(5, 5, -5.0);
}

void UpdateWithMore(const std::string&) {
  PutPoint(6, 900, -6.0);
}

void Remove(const std::string&) {
  CDPoint point(GetPOD());
  point.m_nTaskID = kTask;
  point.m_nPointID = 7;
  if (point.FindObject()) point.RemoveObject();
}

void TakeID(const std::string&) {
  CDBCtrl(GetPOD()).GetInputID(true);
}

void RebuildFile(const std::string& base) {
  KFileRebuild(base + ".ksb");
}

void RebuildIndex(const std::string& base) {
  KIndexRebuildCheck(base, true);
}

}  // namespace

const std::vector<Unit>& AllUnits() {
  static const std::vector<Unit> units{
      {"create", false, false, true, false, Open, nullptr},
      {"open", true, false, true, false, Open, nullptr},
      {"add", true, true, true, false, Add, nullptr},
      {"same-size-update", true, true, true, false, UpdateInPlace, nullptr},
      {"larger-update", true, true, true, false, UpdateWithMore, nullptr},
      {"remove", true, true, true, false, Remove, nullptr},
      {"take-id", true, true, false, true, TakeID, nullptr},
      {"make-task", true, true, false, true, MakeTask, nullptr},
      {"file-rebuild", true, false, true, false, RebuildFile, RebuildIndex},
      {"index-rebuild", true, false, true, false, RebuildIndex, nullptr},
  };
  return units;
}

const Unit& UnitNamed(const std::string& name) {
  for (const Unit& unit : AllUnits()) {
    if (unit.name == name) return unit;
  }
  throw std::invalid_argument("no unit " + name);
}

void PrepareStudy(const std::string& base, int points) {
  OpenDatabase(base);
  DefineVariable(1, "width");
  DefineVariable(2, "height");
  DefineResponse(3, "area", true);
  DefineResponse(4, "stress", false);
  CDBCtrl ids(GetPOD());
  ids.GetObject();
  ids.NextInputID = 5;
  ids.NextRespID = 5;
  ids.PutObject();
  DefineRun();
  MakeTask(base);
  for (int number = 1; number <= points; ++number) {
    PutPoint(number, static_cast<std::size_t>(number), number);
  }
  CloseDatabase();
}
