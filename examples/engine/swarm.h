#pragma once

#include "engine.h"

/// A particle swarm, with the settings of the task (CTask::m_NGO). Each particle follows the best
/// of its two neighbours in a ring, so that the swarm doesn't gather too early; discrete variables
/// take the value nearest to the particle. Why it ended.
StopCode RunSwarm(TaskModel& model, Run& run);
