#pragma once

#include "Study.h"

// Each adds its commands to the program; the one that the command line names puts what is to be
// done into `action`.

void AddInfo(CLI::App& program, Action& action);
void AddList(CLI::App& program, Action& action);
void AddReport(CLI::App& program, Action& action);
void AddChecks(CLI::App& program, Action& action);
void AddRebuilds(CLI::App& program, Action& action);
void AddUnlock(CLI::App& program, Action& action);
void AddNew(CLI::App& program, Action& action);
void AddExport(CLI::App& program, Action& action);
void AddTaskCommands(CLI::App& program, Action& action);
