#pragma once

#include <string>

#include "tests/fault/pairs/PairRun.h"

// What is expected of the courses that are taken with a pair.

inline constexpr const char* kMismatch = "Index file does not match the data file";
inline constexpr const char* kNoFile = "No file exists";

/// The objects of a data file, and the keys of the whole family that it lacks.
Course::Known KnownIn(const std::string& data);

Pair Of(const std::string& data, const std::string& index);
int CountOf(const Pair& pair);

/// Nothing is told, and every object is right in each order.
void ExpectRead(const Findings& read, int objects);

/// It opens, and the data file is sound: all is found in file order.
void ExpectOpens(const Outcome& outcome, int objects);

/// The rebuilds have every object in the end. Once objects were stored through an index that lacked
/// their keys, they are there twice, which a rebuild of the index refuses; none may be gone.
void ExpectHealed(const Outcome& outcome, int objects);

/// Nothing is told of any course.
void ExpectUnchanged(const Outcome& outcome, int objects);
