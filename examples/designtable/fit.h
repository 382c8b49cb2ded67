#pragma once

/// Does what a run engine does with a design of experiments that has been analysed: fits the yield
/// by a model of second order, and stores the design, the model and its residuals.
/// THROWS std::runtime_error for a task without points.
void FitTask(int task);

/// Prints what FitTask stored, and the task itself.
void PrintFit(int task);
