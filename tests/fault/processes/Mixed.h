#pragma once

#include "tests/fault/processes/Scene.h"
#include "tests/fault/processes/Work.h"

/// Processes that do mixed operations on one study.
struct Mixed {
  int processes;
  Waiting waiting;
  Plan plan;
};

void PrintMixedHead(const char* title);
/// Prints a row of the table. False when anything was wrong.
bool RunMixed(const Mixed& mixed);
