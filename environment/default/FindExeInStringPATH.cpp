#include <sys/stat.h>
#include <unistd.h>

#include <sstream>

#include "environment/Utilities.h"

namespace {

bool IsProgram(const std::string& path) {
  struct stat status;
  return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
         access(path.c_str(), X_OK) == 0;
}

}  // namespace

// As a shell seeks it: a name with a slash is a path, and an empty folder means the current one.
bool COSUtil::FindExeInStringPATH(const std::string& program, const std::string& path) {
  if (program.empty()) return false;
  if (program.find('/') != std::string::npos) return IsProgram(program);
  std::istringstream folders(path + ':');
  for (std::string folder; std::getline(folders, folder, ':');) {
    if (IsProgram((folder.empty() ? "." : folder) + '/' + program)) return true;
  }
  return false;
}
