#pragma once

// SIGINT and SIGTERM end a command between two units of its work, so that no lock stays behind and
// nothing is half written.

/// From here on the first of these signals is only noted; a second one ends the program at once.
/// A write to a closed pipe fails from here on, and ends no program.
void CatchInterrupts();

/// The signal that came, 0 for none.
int InterruptSignal();

/// Between two units of work. THROWS Interrupted when a signal came.
void StopIfInterrupted();
