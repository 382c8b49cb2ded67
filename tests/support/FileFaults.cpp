#include "tests/support/FileFaults.h"

#include <dlfcn.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

namespace {

/// A fault of the files whose names end so; none while the ending is empty.
struct NamedFault {
  std::string ending;
  int error = 0;

  bool Hits(const char* path) const {
    return !ending.empty() && std::string(path).ends_with(ending);
  }
};

struct CountedFault {
  int left = 0;  ///< writes up to the one that fails; 0 for no fault
  int error = 0;
  bool happened = false;
};

struct Faults {
  NamedFault rename;
  NamedFault remove;
  CountedFault write;
};

Faults& TheFaults() {
  static Faults faults;
  return faults;
}

/// The C library's own function.
template <class Function>
Function* Own(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

int Fail(int error) {
  if (error == kDeath) _exit(EXIT_SUCCESS);
  errno = error;
  return -1;
}

/// Whether this write is one that fails.
bool FailsWrite() {
  CountedFault& fault = TheFaults().write;
  if (fault.left == 0) return false;
  if (fault.left > 1) {
    --fault.left;
    return false;
  }
  fault.happened = true;
  if (fault.error != ENOSPC) fault.left = 0;
  Fail(fault.error);
  return true;
}

}  // namespace

RenameFault::RenameFault(const std::string& ending, int error) {
  TheFaults().rename = {ending, error};
}

RenameFault::~RenameFault() {
  TheFaults().rename = {};
}

RemoveFault::RemoveFault(const std::string& ending, int error) {
  TheFaults().remove = {ending, error};
}

RemoveFault::~RemoveFault() {
  TheFaults().remove = {};
}

WriteFault::WriteFault(int n, int error) {
  TheFaults().write = {n, error};
}

WriteFault::~WriteFault() {
  TheFaults().write = {};
}

bool WriteFault::Happened() const {
  return TheFaults().write.happened;
}

extern "C" int rename(const char* from, const char* to) noexcept {
  static auto* const own = Own<int(const char*, const char*)>("rename");
  const NamedFault& fault = TheFaults().rename;
  return fault.Hits(from) ? Fail(fault.error) : own(from, to);
}

extern "C" int remove(const char* path) noexcept {
  static auto* const own = Own<int(const char*)>("remove");
  const NamedFault& fault = TheFaults().remove;
  return fault.Hits(path) ? Fail(fault.error) : own(path);
}

extern "C" std::size_t fwrite(const void* bytes, std::size_t size, std::size_t count,
                              std::FILE* stream) {
  static auto* const own =
      Own<std::size_t(const void*, std::size_t, std::size_t, std::FILE*)>("fwrite");
  return FailsWrite() ? 0 : own(bytes, size, count, stream);
}

extern "C" int fflush(std::FILE* stream) {
  static auto* const own = Own<int(std::FILE*)>("fflush");
  return stream != nullptr && FailsWrite() ? EOF : own(stream);
}
