// Private to the library, not installed.
#pragma once

#include <string>

#include "store/vbscalar.h"

class vbDatabase;

// Single strings of a record in the file: a length of 4 bytes, the bytes, no terminator. An empty
// string is length 1 and a zero byte.

namespace kestdb {

unsigned long StringFileLength(const std::string& text);

/// Text behind a zero byte is lost. THROWS CFileCorrupt for a length that the file can't hold.
void ReadString(vbDatabase& file, std::string& text, vbINT32 address);
void WriteString(vbDatabase& file, const std::string& text, vbINT32 address);

}  // namespace kestdb
