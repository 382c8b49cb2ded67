#include "tests/fault/LargestRequest.h"

#include <algorithm>
#include <cstdlib>
#include <new>

namespace {

std::size_t largest = 0;

}  // namespace

std::size_t LargestRequest() {
  return largest;
}

void ForgetRequests() {
  largest = 0;
}

// All forms but the aligned ones: under a sanitizer, those left out would not come down to these.

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  largest = std::max(largest, size);
  return std::malloc(std::max<std::size_t>(size, 1));
}

void* operator new(std::size_t size) {
  if (void* memory = operator new(size, std::nothrow); memory != nullptr) return memory;
  throw std::bad_alloc();
}

void* operator new[](std::size_t size) {
  return operator new(size);
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return operator new(size, std::nothrow);
}

void operator delete(void* memory) noexcept {
  std::free(memory);
}

void operator delete[](void* memory) noexcept {
  std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}

void operator delete[](void* memory, std::size_t) noexcept {
  std::free(memory);
}

void operator delete(void* memory, const std::nothrow_t&) noexcept {
  std::free(memory);
}

void operator delete[](void* memory, const std::nothrow_t&) noexcept {
  std::free(memory);
}
