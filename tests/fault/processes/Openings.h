#pragma once

/// Processes that open one study at the same moment.
struct Opening {
  bool isNew;
  bool isLocked;  ///< by somebody else when they begin, so that all of them wait for certain
  int processes;
  int rounds;
};

void PrintOpeningHead();
/// Prints a row of the table. False when anything was wrong.
bool RunOpenings(const Opening& opening);
