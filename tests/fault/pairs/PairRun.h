#pragma once

#include <functional>
#include <optional>
#include <string>

#include "tests/fault/HostileStudy.h"
#include "tests/fault/Summary.h"
#include "tests/fault/Traces.h"
#include "tests/fault/pairs/Course.h"

/// The two files of a study, as they are found.
struct Pair {
  std::optional<std::string> data;
  std::optional<std::string> index;
  std::function<void(const std::string& base)> arrange;  ///< what else there is to find
  Course::Known known;
};

/// What came of each course that was taken with a pair, each from a copy of it.
struct Outcome {
  Findings read;     ///< open and read, then, with another copy, both checks
  Findings rebuilt;  ///< both rebuilds
  Findings opened;   ///< open, then both rebuilds
  Findings updated;  ///< store every object again, then both rebuilds
};

/// Takes all courses with a pair, each in a process of its own, and adds them to the table. Fails
/// the test for each that ended in no lawful way.
Outcome TakeCourses(const std::string& kind, const std::string& variant, const Pair& pair);

/// Runs `steps` for each of `count` cases, in other processes, with findings that are empty at
/// first, and gives the findings of each. `results` gets how they ended.
std::vector<Findings> RunWithFindings(
    std::size_t count, const std::function<CaseResult(std::size_t, Findings&)>& steps,
    std::vector<CaseResult>& results);

/// Prints the tables, and appends a row for each kind to the summary.
void PrintCourses();
