#pragma once

/// What the points of the table are about, as a user interface would store it in the open study:
/// two variables between bounds, the measured yield, the yield net of cost, and what to run.
void DefineStudy(const char* title);

/// Checks the definitions before a run, in the order in which a user would repair them. True when
/// they can be run; what is wrong goes to the log.
bool CheckStudy();

/// Interchanges the bounds of the first variable, and puts them right again.
void CrossBounds();
void RestoreBounds();

void PrintDefinitions();

/// Freezes the definitions into a task that a run engine can take. Its ID, 0 when there are faults.
int MakeTask();

/// The task's tables, and how its run went so far.
void PrintTask(int task);
