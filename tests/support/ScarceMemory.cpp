#include "tests/support/ScarceMemory.h"

#include <limits>
#include <new>

namespace {

constexpr int kPlenty = std::numeric_limits<int>::max();
int allocationsLeft = kPlenty;

}  // namespace

ScarceMemory::ScarceMemory(int left) {
  allocationsLeft = left;
}

ScarceMemory::~ScarceMemory() {
  allocationsLeft = kPlenty;
}

// Stands in for the standard library's, of which this is the default behaviour but for the count.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  if (allocationsLeft != kPlenty && allocationsLeft-- <= 0) return nullptr;
  try {
    return ::operator new(size);
  } catch (...) {
    return nullptr;
  }
}
