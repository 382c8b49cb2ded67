#include <sys/stat.h>

#include <cstdlib>

#include "environment/Utilities.h"

// KEST_INIT_FILE goes first, and set to nothing it means that there is no init file.
std::string COSUtil::GetInitFile() {
  if (const char* path = std::getenv("KEST_INIT_FILE")) return path;
  const char* home = std::getenv("HOME");
  if (home == nullptr) return "";
  const std::string path = std::string(home) + "/.kestrelon.ini";
  struct stat status;
  return stat(path.c_str(), &status) == 0 ? path : "";
}
