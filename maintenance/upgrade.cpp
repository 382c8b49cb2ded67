#include "maintenance/upgrade.h"

#include <algorithm>
#include <string>
#include <vector>

#include "definition/Auxiliary.h"
#include "store/KestErr.h"
#include "store/walk.h"
#include "task/DEqn.h"
#include "task/Task.h"

namespace {

constexpr int kEquation = 2;

void PutBlanks(std::string& text) {
  std::replace(text.begin(), text.end(), '\n', ' ');
  std::replace(text.begin(), text.end(), '\r', ' ');
}

/// Kept: the functions of tasks that have a parent keep their line breaks.
void CleanTasks(POD* pod) {
  std::vector<int> tasks;
  CTask::GetAllTasks(pod, tasks);
  for (const int id : tasks) {
    auto equations = kestdb::RequireByID<CDEqn, CGetObject>(pod, id);
    const std::size_t count = std::min(equations.m_vnAuxID.size(), equations.m_vstrEquation.size());
    for (std::size_t i = 0; i < count; ++i) PutBlanks(equations.m_vstrEquation[i]);
    equations.PutObject();
  }
}

void CleanDefinitions(POD* pod) {
  std::vector<int> ids;
  CAuxiliary(pod).GetAllIDs(kEquation, ids);
  for (const int id : ids) {
    auto equation = kestdb::RequireByID<CAuxiliary, CGetObject>(pod, id);
    PutBlanks(equation.m_strEquation);
    equation.PutObject();
  }
}

}  // namespace

void kestdb::CleanEquationTexts(POD* pod) try {
  CleanTasks(pod);
  CleanDefinitions(pod);
}
LOG_AND_RETHROW
