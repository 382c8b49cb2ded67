#pragma once

#include <string>

#include "tests/fault/reliability/Units.h"

/// Does the unit, disturbed as KESTDB_FAULT says, and closes the study. What stays of it is looked
/// for behind the unit and behind the closing. Returns an ending.
///
/// KESTDB_FAULT_COUNTS names a file that gets how many calls and allocations there were, and how
/// many allocations stayed. No more than KESTDB_FAULT_ALIVE of them may stay.
int RunUnit(const Unit& unit, const std::string& base);
