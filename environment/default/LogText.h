#pragma once

// Private to the stand-ins, not installed: how they write to the log.

#include <cstdarg>
#include <cstdio>

namespace kestdb::environment {

/// Writes `prefix` and the formatted text to the log.
[[gnu::format(printf, 2, 0)]] void WriteText(const char* prefix, const char* format,
                                             std::va_list arguments);

/// Writes one line on an exception to the log; `message` may be null. Takes no memory, since
/// memory may be what the exception is about.
void WriteException(const char* what, const char* file, int line, const char* message);

}  // namespace kestdb::environment
