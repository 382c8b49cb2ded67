#include <algorithm>

#include "environment/Utilities.h"

bool CKUtil::IsASCII(const std::string& text) {
  return std::all_of(text.begin(), text.end(),
                     [](char byte) { return static_cast<unsigned char>(byte) < 128; });
}
