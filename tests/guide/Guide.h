#pragma once

#include <kestdb.h>

#include <cstdio>
#include <string>

// The programs of README.md and docs/guide.md, in the order in which a study meets them. The
// documents show what stands between "// [name]" and "// [end]" in the sources.

void FirstSteps();

// ---- A user interface (Interface.cpp) ----

void DefineBeam();
bool CheckBeam();
int MakeBeamTask();
/// A change of mind after a run, and the way back to what was run.
void Reconsider(double greatestWidth);
void GoBackTo(int task);
int RestartFromBest(int task);

// ---- A run engine (Engine.cpp) ----

void RunTask(int task);

// ---- Reports and reading (Reports.cpp) ----

struct Design {
  double width;
  double height;
  double cost;
};
void PrintRun(std::FILE* stream, int task);
Design BestDesign(int task);

// ---- Upkeep and failures (Upkeep.cpp) ----

/// Why a study can't be opened, empty when it can; it is open then.
std::string TryToOpen(const std::string& name);
void OpenAfterCrash(const std::string& name);
void CheckFiles(const std::string& name);
void RebuildFiles(const std::string& name);
void ClearHeaderLocks(const std::string& name);
