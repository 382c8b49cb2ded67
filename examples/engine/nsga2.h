#pragma once

#include "engine.h"

/// The genetic algorithm NSGA-II of Deb, Pratap, Agarwal and Meyarivan (2002), with the settings of
/// the task (CTask::m_NGO), for continuous variables. Every generation is recorded with its front.
/// The last front.
std::vector<Design> RunNSGA2(TaskModel& model, Run& run);
