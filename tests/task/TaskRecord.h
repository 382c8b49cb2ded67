#pragma once

#include "task/Task.h"
#include "tests/control/BlockPieces.h"

// The record of a task as a list of typed pieces, one for each stored field behind the ID.

using TaskFields = Fields<CTask>;

/// The fields in the order of the record.
TaskFields FieldsBeforeBlocks();
TaskFields FieldsOfBlocks();
TaskFields FieldsBehindBlocks();
TaskFields AllTaskFields();
