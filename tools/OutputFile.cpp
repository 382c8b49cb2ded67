#include "OutputFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "Ending.h"

namespace {

/// What the user gives to new files.
mode_t UsualPermissions() {
  const mode_t mask = umask(0);
  umask(mask);
  return 0666 & ~mask;
}

}  // namespace

OutputFile::OutputFile(const std::string& path, bool replace)
    : path_(path), part_(path + ".XXXXXX") {
  struct stat status;
  const bool exists = stat(path.c_str(), &status) == 0;
  if (exists && !replace) {
    throw Refusal(kNotOpened, path + " exists already; --force replaces it");
  }
  if (exists && !S_ISREG(status.st_mode)) throw Refusal(kNotOpened, path + ": not a file");
  const int file = mkstemp(part_.data());
  if (file < 0) throw Refusal(kNotOpened, path + ": " + std::strerror(errno));
  fchmod(file, UsualPermissions());
  close(file);
}

OutputFile::~OutputFile() {
  if (!finished_) std::remove(part_.c_str());
}

void OutputFile::Finish() {
  if (std::rename(part_.c_str(), path_.c_str()) != 0) {
    throw Refusal(kNotOpened, path_ + ": " + std::strerror(errno));
  }
  finished_ = true;
}
