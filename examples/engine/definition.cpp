#include "definition.h"

#include <kestdb.h>

#include <stdexcept>

namespace {

// What the definitions call their kinds.
constexpr int kLinkedResponse = 1;
constexpr int kSyntheticResponse = 2;
constexpr int kDiscreteVariable = 4;
constexpr int kIntegerVariable = 5;
constexpr int kLink = 1;
constexpr int kFunction = 2;
constexpr int kSet = 4;

/// Stores an auxiliary definition under an ID of its own, which is returned.
int Store(CAuxiliary& auxiliary, int type, const std::string& name) {
  CDBCtrl ids(GetPOD());
  auxiliary.m_nID = ids.GetAuxID(true);
  auxiliary.m_strName = name;
  auxiliary.m_nAuxType = type;
  auxiliary.m_nNumber = CAuxiliary::NumType(type, GetPOD()) + 1;
  auxiliary.PutObject();
  return static_cast<int>(auxiliary.m_nID);
}

void AddArgument(CResp& response, const Argument& argument) {
  response.m_vnArg.push_back(argument.number);
  response.m_vnIdx.push_back(argument.element);
  response.m_vnLength.push_back(1);
}

}  // namespace

int Definitions::AddVariable(const std::string& name, const Range& range) {
  CInput variable(GetPOD());
  return Store(variable, name, range);
}

int Definitions::AddArray(const std::string& name, unsigned size, const Range& range) {
  CInput variable(GetPOD());
  variable.m_uSize = size;
  return Store(variable, name, range);
}

int Definitions::AddInteger(const std::string& name, const Range& range) {
  CInput variable(GetPOD());
  variable.m_nType = kIntegerVariable;
  return Store(variable, name, range);
}

int Definitions::AddDiscrete(const std::string& name, const Range& range,
                             const std::vector<double>& set) {
  CAuxiliary values(GetPOD());
  values.m_vfValues.assign(set.begin(), set.end());
  CInput variable(GetPOD());
  variable.m_nType = kDiscreteVariable;
  variable.m_nAuxID = ::Store(values, kSet, name);
  return Store(variable, name, range);
}

int Definitions::AddAnalysed(const std::string& name, const Role& role) {
  CResp response(GetPOD());
  return Store(response, name, role);
}

int Definitions::AddLink(const std::string& name, const Role& role, double constant,
                         const std::vector<Term>& terms) {
  CAuxiliary link(GetPOD());
  CResp response(GetPOD());
  link.m_vfCoef = {constant};
  link.m_vstrArgNames = {""};
  for (const Term& term : terms) {
    link.m_vfCoef.push_back(term.factor);
    link.m_vstrArgNames.push_back(term.argument.name);
    AddArgument(response, term.argument);
  }
  response.m_nType = kLinkedResponse;
  response.m_nAuxID = ::Store(link, kLink, name);
  return Store(response, name, role);
}

int Definitions::AddFunction(const std::string& name, const Role& role, const std::string& equation,
                             const std::vector<Argument>& arguments) {
  CAuxiliary function(GetPOD());
  CResp response(GetPOD());
  for (const Argument& argument : arguments) {
    if (!function.m_strArgs.empty()) function.m_strArgs += ',';
    function.m_strArgs += argument.name;
    AddArgument(response, argument);
  }
  function.m_strEquation = equation;
  response.m_nType = kSyntheticResponse;
  response.m_nAuxID = ::Store(function, kFunction, name);
  return Store(response, name, role);
}

int Definitions::Store(CInput& variable, const std::string& name, const Range& range) {
  CDBCtrl ids(GetPOD());
  variable.m_nID = ids.GetInputID(true);
  variable.m_strName = name;
  variable.m_uIndex = nextVariable_;
  variable.m_fLower = range.lower;
  variable.m_fUpper = range.upper;
  variable.m_fInitial = range.initial;
  variable.PutObject();
  nextVariable_ += variable.m_uSize;
  return -static_cast<int>(variable.m_nID);
}

int Definitions::Store(CResp& response, const std::string& name, const Role& role) {
  CDBCtrl ids(GetPOD());
  response.m_nID = ids.GetRespID(true);
  response.m_strName = name;
  response.m_uIndex = nextResponse_++;
  response.m_nObjective = role.objective ? 1 : 0;
  response.m_nHasWorst = role.worst ? 1 : 0;
  response.m_fWorst = role.worst.value_or(0.0);
  response.m_nConstraint = role.lower || role.upper ? 1 : 0;
  response.m_nHasLower = role.lower ? 1 : 0;
  response.m_nHasUpper = role.upper ? 1 : 0;
  if (role.lower) response.m_fLower = *role.lower;
  if (role.upper) response.m_fUpper = *role.upper;
  response.PutObject();
  return static_cast<int>(response.m_nID);
}

void DefineGradientTask(const std::string& title) {
  CDesignControl control(GetPOD());
  control.GetObject();
  control.m_strTitle = title;
  control.m_nTaskType = 0;
  control.m_DGO.m_nMETHOD = 3;  // sequential quadratic programming
  control.m_DGO.m_nIGRAD = -1;  // central differences
  control.m_DGO.m_fFDCH = 1e-6;
  control.m_DGO.m_fFDCHM = 1e-8;
  control.m_DGO.m_fDELOBJ = 1e-8;
  control.m_DGO.m_fCTMIN = 1e-6;
  control.m_DGO.m_nITMAX = 500;
  control.PutObject();
}

int MakeTask() {
  CTask task(GetPOD());
  // The analysis program is a function of this process: there is no file to look for.
  task.DefineTask(true, true);
  if (task.m_nID < 1) throw std::runtime_error("the study can't be run as it is defined");
  return static_cast<int>(task.m_nID);
}
