// Private to the library, not installed.
#pragma once

#include <exception>

namespace kestdb {

/// For clean-ups that have to go on: runs every step, also behind one that fails, and keeps the
/// first failure for the end.
class FirstFailure {
 public:
  template <class Step>
  void Run(Step step) {
    try {
      step();
    } catch (...) {
      if (failure_ == nullptr) failure_ = std::current_exception();
    }
  }

  void Rethrow() const {
    if (failure_ != nullptr) std::rethrow_exception(failure_);
  }

 private:
  std::exception_ptr failure_;
};

}  // namespace kestdb
