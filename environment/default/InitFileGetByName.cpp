#include "environment/Utilities.h"

bool CInitFile::Get(const char* key, std::string& value) {
  return Get(std::string(key), value);
}
