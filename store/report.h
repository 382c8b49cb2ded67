// Private to the library, not installed.
#pragma once

#include <cstdio>
#include <string>

#include "store/vbscalar.h"

// What the fixed-layout reports have in common.

namespace kestdb {

// What a conversion of printf takes.

inline int ToInt(long value) {
  return static_cast<int>(value);
}
inline int ToInt(const vbINT32& value) {
  return static_cast<int>(long{value});
}
inline int ToInt(const vbUINT32& value) {
  return static_cast<int>(static_cast<unsigned long>(value));
}

/// A line of `width` signs.
void PrintBar(std::FILE* stream, char sign, int width = 80);

/// The end of a report: a bar of "=", an empty line, and all streams brought out.
void PrintEnd(std::FILE* stream);

/// Prints `text` cut into pieces of at most `columns`, the first to end the line that was begun,
/// each other on a line of its own behind `indent` blanks.
void PrintCut(std::FILE* stream, std::string text, int columns, int indent);

}  // namespace kestdb
