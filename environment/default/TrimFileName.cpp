#include <algorithm>

#include "environment/Utilities.h"

std::string CKUtil::TrimFileName(const std::string& name, int length) {
  const auto kept = static_cast<std::size_t>(std::max(length, 0));
  return name.substr(name.size() - std::min(kept, name.size()));
}
