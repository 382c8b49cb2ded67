// Private to the library, not installed.
#pragma once

#include <cstdio>

class CTask;

namespace kestdb {

/// The heading of a task's type in its report.
const char* TaskHeading(const CTask& task);

/// Prints the settings of a task's type; nothing for a type that there isn't.
void PrintSettings(std::FILE* stream, const CTask& task);

}  // namespace kestdb
