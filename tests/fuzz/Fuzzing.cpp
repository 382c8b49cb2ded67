#include "tests/fuzz/Fuzzing.h"

#include <cstdint>
#include <cstdio>

#include "store/assertion.h"
#include "tests/fault/Traces.h"

// Only the fuzzer has it.
extern "C" [[gnu::weak]] std::size_t LLVMFuzzerMutate(std::uint8_t*, std::size_t, std::size_t);

namespace {

struct Tally {
  ~Tally() {
    if (LLVMFuzzerMutate == nullptr) return;
    std::fprintf(stderr, "runs without a failure: %ld\nruns with failures: %ld\n", whole, reported);
  }

  bool failed = false;  ///< in this run
  long whole = 0;
  long reported = 0;
} tally;

}  // namespace

void CountReport() {
  tally.failed = true;
}

// In the place of the library's own.
void kestdb::FailAssertion(const char*, const char*, int) {
  throw StoppedByAssertion();
}

Budget::Budget(std::size_t bytes) : bytes_(bytes), handle_(LowestHandle()) {
  ForgetRequests();
  tally.failed = false;
}

void Budget::Check() const {
  Require(LowestHandle() == handle_, "a stream is left open");
  Require(LargestRequest() <= 2 * bytes_ + kMostExtraMemory,
          "a request for " + std::to_string(LargestRequest()) + " bytes of memory");
  ++(tally.failed ? tally.reported : tally.whole);
}
