#pragma once

#include <cstdio>

/// The environment's logging library. KestDB only imports it: the program supplies it.

// Imported names must stay visible, also where the including code is compiled with hidden ones.
#pragma GCC visibility push(default)

/// The log stream, for reports that write directly to a stream.
extern FILE* fKLog;

/// Records that an exception was created at this source file and line.
void LNewException(const char* file, int line, const char* message);

/// Records that an exception passed this place on its way out; `message` is its what().
void LException(const char* file, int line, const char* message);

/// The same for an exception that is no std::exception.
void LGenException(const char* file, int line);

/// An error line, or the first of several.
[[gnu::format(printf, 1, 2)]] void LError(const char* format, ...);

/// A warning line, or the first of several.
[[gnu::format(printf, 1, 2)]] void LWarn(const char* format, ...);

/// An information line, or the continuation of an error or a warning.
[[gnu::format(printf, 1, 2)]] void LPrint(const char* format, ...);

#pragma GCC visibility pop
