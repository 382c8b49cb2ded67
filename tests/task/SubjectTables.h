#pragma once

#include "task/DResp.h"
#include "task/DVar.h"

// The variables and responses that the subjects of constraints and objectives are taken from.

/// Stores the variables of a task: two linked and synthetic ones, three independent ones.
inline CDVar StoreVars(POD* pod, int task) {
  CDVar vars(pod);
  vars.m_nID = task;
  vars.m_vstrIndName = {"width", "height", "fourteen_chars"};
  vars.m_vstrLinkName = {"depth", "a_link_of_fifteen"};
  vars.m_vstrSynName = {"area", "a_function_of_the_variables_with_a_name_of_43"};
  vars.m_vstrConstName = {"load"};
  vars.PutObject();
  return vars;
}

/// Stores the responses of a task, two of each kind.
inline CDResp StoreResps(POD* pod, int task) {
  CDResp resps(pod);
  resps.m_nID = task;
  resps.m_vstrIndName = {"weight", "stress_at_upper_flange"};
  resps.m_vstrLinkName = {"copy", ""};
  resps.m_vstrSynName = {"ratio", "buckling_factor"};
  resps.PutObject();
  return resps;
}
