#pragma once

#include <stdexcept>
#include <string>
#include <vector>

/// A unit told its failure in the log and by what it didn't store.
struct NothingMade : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// A unit of work that a program does on a study, and what has to be done before and after it.
struct Unit {
  const char* name;
  bool needsStudy;      ///< the study is there
  bool needsOpen;       ///< and it is open, undisturbed, when the unit begins
  bool isRepeated;      ///< done again, it leads to the same study
  bool storesCounters;  ///< it stores anew those of new definitions, CDBCtrl
  void (*work)(const std::string& base);
  void (*next)(const std::string& base);  ///< has to follow before the study is used; or null
};

const std::vector<Unit>& AllUnits();

/// THROWS std::invalid_argument for a name that no unit has.
const Unit& UnitNamed(const std::string& name);

constexpr int kUsualPoints = 24;

/// Makes a study of definitions, a task and its points.
void PrepareStudy(const std::string& base, int points);
