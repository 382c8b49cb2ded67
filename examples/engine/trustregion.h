#pragma once

#include "engine.h"

/// A response surface optimisation without constraints, with the settings of the task
/// (CTask::m_RSA), of the only response: fits a quadratic model in a region about the best design,
/// goes to the model's minimum there, and lets the region grow or shrink by how far the model was
/// right. Every iteration is recorded with its points, its model and residuals; models are in terms
/// of places in the region, from -1 to 1, whose centre and half width stand in
/// CApproxModels::m_Values. Why it ended.
/// THROWS std::runtime_error for a task of another shape.
StopCode RunTrustRegion(TaskModel& model, Run& run);
