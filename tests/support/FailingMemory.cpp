#include "tests/support/FailingMemory.h"

#include <cstdlib>
#include <new>

namespace {

int left = 0;  // up to the one that fails; 0 when none does
bool failed = false;

}  // namespace

FailingMemory::FailingMemory(int at) {
  failed = false;
  left = at;
}

FailingMemory::~FailingMemory() {
  left = 0;
}

bool FailingMemory::HasFailed() {
  return failed;
}

// These stand in for the standard library's, of which this is the behaviour but for the failure.

void* operator new(std::size_t size) {
  if (left > 0 && --left == 0) {
    failed = true;
    throw std::bad_alloc();
  }
  void* block = std::malloc(size == 0 ? 1 : size);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  try {
    return ::operator new(size);
  } catch (...) {
    return nullptr;
  }
}

void operator delete(void* block) noexcept {
  std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
  std::free(block);
}
