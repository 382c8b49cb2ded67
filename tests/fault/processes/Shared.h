#pragma once

#include <sys/mman.h>

#include <memory>
#include <new>
#include <stdexcept>

/// A value that lies in memory which all processes share that are forked from here on.
template <class Value>
class Shared {
 public:
  Shared() {
    void* memory =
        mmap(nullptr, sizeof(Value), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) throw std::runtime_error("no shared memory");
    value_ = new (memory) Value;
  }
  Shared(const Shared&) = delete;
  Shared& operator=(const Shared&) = delete;
  ~Shared() {
    std::destroy_at(value_);
    munmap(value_, sizeof(Value));
  }

  Value& operator*() const { return *value_; }
  Value* operator->() const { return value_; }

 private:
  Value* value_;
};
