#pragma once

#include <string>
#include <vector>

#include "study.h"

// Published problems. Each defines its study PATH, runs it, prints its reports and leaves it
// closed. A study that is there already is run once more as it is defined.

std::vector<Finding> SolveWeldedBeam(const std::string& path);
std::vector<Finding> SolveSpeedReducer(const std::string& path);
std::vector<Finding> SolvePressureVessel(const std::string& path);
std::vector<Finding> SolveZDT1(const std::string& path);
std::vector<Finding> AnalyseComposite(const std::string& path);
std::vector<Finding> SolveBranin(const std::string& path);
