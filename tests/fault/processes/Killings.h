#pragma once

/// Processes at work on one study of which some are killed, in each round at another moment.
struct Killing {
  int processes;
  int victims;
  int rounds;
};

/// Prints a table. False when anything was wrong.
bool RunKillings(const Killing& killing);
