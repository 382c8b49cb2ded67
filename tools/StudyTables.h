#pragma once

#include "Table.h"

class POD;

// The tables that a study is listed and exported as. All REQUIRE that the caller holds CLock, and
// THROW what the library throws for damaged data, Interrupted when a signal came.

void WriteTasks(POD* pod, TableWriter& writer);
void WriteInputs(POD* pod, TableWriter& writer);
void WriteResponses(POD* pod, TableWriter& writer);
/// The user's table of design points.
void WriteUserPoints(POD* pod, TableWriter& writer);
/// A column for each variable and response of the task, in transfer order.
/// THROWS Refusal for a task whose tables don't fit each other.
void WriteTaskPoints(POD* pod, int task, TableWriter& writer);
/// A table with a row for each iteration and sub-iteration.
void WriteIterations(POD* pod, int task, TableWriter& writer);

/// What a task and its run are called.
std::string TaskTypeName(long type);
std::string RunStatusName(long status);
/// Nothing for a task that was not run.
Cell BestObjective(POD* pod, int task);
