#pragma once

#include "engine.h"

/// A direct optimisation by gradients, with the settings of the task (CTask::m_DGO): from the
/// starting point with all variables taken for continuous; if there are discrete ones, again from
/// there with each of them fixed at its neighbours, for every combination. An iteration is recorded
/// for each gradient. Why the last search ended.
/// THROWS std::runtime_error for a setting that this engine doesn't know.
StopCode RunGradientSearch(TaskModel& model, Run& run);
