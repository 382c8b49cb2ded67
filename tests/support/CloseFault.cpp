#include "tests/support/CloseFault.h"

#include <dlfcn.h>

#include <cstdio>

namespace {

bool failing = false;

}  // namespace

CloseFault::CloseFault() {
  failing = true;
}

CloseFault::~CloseFault() {
  failing = false;
}

// Stands before the C library's own, which it calls.
extern "C" int fclose(FILE* stream) {
  static const auto close = reinterpret_cast<int (*)(FILE*)>(dlsym(RTLD_NEXT, "fclose"));
  const int result = close(stream);
  return failing ? EOF : result;
}
