#pragma once

#include <string>

/// What the replaced functions of the log were told.
std::string& ReplacementLog();
