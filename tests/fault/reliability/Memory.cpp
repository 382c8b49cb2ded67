#include "tests/fault/reliability/Memory.h"

#include <cerrno>
#include <cstdlib>
#include <new>

// What does the work: the C library, or the sanitizer's runtime where there is one.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void __libc_free(void* block);
[[gnu::weak]] void* __interceptor_malloc(std::size_t size);
[[gnu::weak]] void* __interceptor_calloc(std::size_t count, std::size_t size);
[[gnu::weak]] void* __interceptor_realloc(void* block, std::size_t size);
[[gnu::weak]] void __interceptor_free(void* block);
}

namespace {

bool active = false;
memory::Shortage wanted = memory::Shortage::None;
long failAt = 0;
long requests = 0;
long alive = 0;

/// Counts a request; whether it is to fail.
bool Fails() {
  if (!active) return false;
  ++requests;
  const bool fails = wanted == memory::Shortage::Once
                         ? requests == failAt
                         : wanted == memory::Shortage::Ever && requests >= failAt;
  if (fails) errno = ENOMEM;
  return fails;
}

void* Counted(void* block) {
  if (block != nullptr) ++alive;
  return block;
}

void* New(std::size_t size) {
  void* block = std::malloc(size == 0 ? 1 : size);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

}  // namespace

namespace memory {

void Begin(Shortage shortage, long at) {
  wanted = shortage;
  failAt = at;
  requests = 0;
  active = true;
}

void Pause() {
  active = false;
}

void GoOn() {
  active = true;
}

long End() {
  active = false;
  return requests;
}

long Alive() {
  return alive;
}

}  // namespace memory

// ---- In the place of the C library's ----

extern "C" {

void* malloc(std::size_t size) noexcept {
  if (Fails()) return nullptr;
  return Counted(__interceptor_malloc != nullptr ? __interceptor_malloc(size)
                                                 : __libc_malloc(size));
}

void* calloc(std::size_t count, std::size_t size) noexcept {
  if (Fails()) return nullptr;
  return Counted(__interceptor_calloc != nullptr ? __interceptor_calloc(count, size)
                                                 : __libc_calloc(count, size));
}

void* realloc(void* block, std::size_t size) noexcept {
  if (Fails()) return nullptr;
  void* grown = __interceptor_realloc != nullptr ? __interceptor_realloc(block, size)
                                                 : __libc_realloc(block, size);
  return block == nullptr ? Counted(grown) : grown;
}

void free(void* block) noexcept {
  if (block == nullptr) return;
  --alive;
  if (__interceptor_free != nullptr) {
    __interceptor_free(block);
  } else {
    __libc_free(block);
  }
}

}  // extern "C"

// ---- In the place of the C++ library, whose allocations a sanitizer takes past the count ----

void* operator new(std::size_t size) {
  return New(size);
}

void* operator new[](std::size_t size) {
  return New(size);
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return std::malloc(size == 0 ? 1 : size);
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return std::malloc(size == 0 ? 1 : size);
}

void operator delete(void* block) noexcept {
  std::free(block);
}

void operator delete[](void* block) noexcept {
  std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
  std::free(block);
}

void operator delete[](void* block, std::size_t) noexcept {
  std::free(block);
}
