#pragma once

#include "control/DesignControl.h"
#include "tests/control/BlockPieces.h"

// The record of the design control as a list of typed pieces, one for each stored field.

using ControlFields = Fields<CDesignControl>;

/// The fields in the order of the record.
ControlFields OuterFields();
ControlFields BlockFields();
ControlFields AllFields();
