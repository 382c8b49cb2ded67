#include <string>
#include <vector>

#include "definition/Auxiliary.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/podcheck.h"
#include "store/walk.h"
#include "task/DEqn.h"
#include "task/DLink.h"
#include "task/DSet.h"
#include "task/TaskTables.h"

// Auxiliary definitions made again from those that a task uses.

namespace {

using kestdb::ElementAt;

enum Kind : int { kLink = 1, kEquation = 2, kSet = 4 };

CAuxiliary NewDefinition(POD* pod, Kind kind, const std::vector<vbINT32>& ids, std::size_t i) {
  CAuxiliary definition(pod);
  definition.m_nID = ids[i];
  definition.m_nAuxType = kind;
  definition.m_nNumber = static_cast<long>(i) + 1;
  return definition;
}

/// A task doesn't keep the names of the arguments.
std::vector<std::string> ArgumentNames(std::size_t coefficients) {
  std::vector<std::string> names;
  for (std::size_t i = 1; i <= coefficients; ++i) {
    names.push_back("Arg_" + ("_" + std::to_string(i)));
  }
  return names;
}

void LoadLinks(POD* pod, const CDLink& links) {
  for (std::size_t i = 0; i < links.m_vnAuxID.size(); ++i) {
    const auto at = static_cast<long>(i);
    CAuxiliary link = NewDefinition(pod, kLink, links.m_vnAuxID, i);
    link.m_strName = ElementAt(links.m_vstrName, at);
    link.m_vfCoef = ElementAt(links.m_mdCoef, at);
    link.m_vstrArgNames = ArgumentNames(link.m_vfCoef.size());
    link.PutObject();
  }
}

/// The text of equation i, empty in a list that is too short.
std::string TextAt(const std::vector<std::string>& texts, std::size_t i) {
  return i < texts.size() ? texts[i] : std::string();
}

void LoadEquations(POD* pod, const CDEqn& equations) {
  for (std::size_t i = 0; i < equations.m_vnAuxID.size(); ++i) {
    CAuxiliary equation = NewDefinition(pod, kEquation, equations.m_vnAuxID, i);
    equation.m_strName = TextAt(equations.m_vstrName, i);
    equation.m_strArgs = TextAt(equations.m_vstrArgs, i);
    equation.m_strEquation = TextAt(equations.m_vstrEquation, i);
    equation.PutObject();
  }
}

void LoadSets(POD* pod, const CDSet& sets) {
  for (std::size_t i = 0; i < sets.m_vnAuxID.size(); ++i) {
    const auto at = static_cast<long>(i);
    CAuxiliary set = NewDefinition(pod, kSet, sets.m_vnAuxID, i);
    set.m_strName = ElementAt(sets.m_vstrName, at);
    set.m_vfValues = ElementAt(sets.m_mdValues, at);
    set.PutObject();
  }
}

}  // namespace

void CAuxiliary::LoadAuxillaries(int taskID, POD* pod) try {
  kestdb::RequireIndexed(pod);
  const CLock lock(pod, 0);
  const auto links = kestdb::RequireByID<CDLink, CGetObject>(pod, taskID);
  const auto equations = kestdb::RequireByID<CDEqn, CGetObject>(pod, taskID);
  const auto sets = kestdb::RequireByID<CDSet, CGetObject>(pod, taskID);
  LoadLinks(pod, links);
  LoadEquations(pod, equations);
  LoadSets(pod, sets);
}
LOG_AND_RETHROW
