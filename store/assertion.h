// Private to the library, not installed.
#pragma once

namespace kestdb {

/// Prints the expression and the place, and stops the program.
[[noreturn]] void FailAssertion(const char* expression, const char* file, int line);

}  // namespace kestdb

/// A condition that only a fault of the program can break; looked at in every build. `text` is how
/// the system words it.
#define KESTDB_ASSERT(condition, text)                                 \
  do {                                                                 \
    if (!(condition)) kestdb::FailAssertion(text, __FILE__, __LINE__); \
  } while (false)
