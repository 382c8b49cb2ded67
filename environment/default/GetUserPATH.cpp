#include <cstdlib>

#include "environment/Utilities.h"

std::string COSUtil::GetUserPATH() {
  const char* path = std::getenv("PATH");
  return path != nullptr ? path : "";
}
