#include "store/crc32kernels.h"

#if defined(__x86_64__)

#include <emmintrin.h>
#include <wmmintrin.h>

// Folding after V. Gopal, E. Ozturk, J. Guilford, G. Wolrich, W. Feghali, M. Dixon, D. Karakoyunlu,
// "Fast CRC Computation for Generic Polynomials Using PCLMULQDQ Instruction", Intel, 2009.
//
// A block of 128 bits is a polynomial, reflected: its first bit is the coefficient of x^127. Data
// may be replaced by anything that has the same remainder modulo the CRC's polynomial P. So a block
// that stands n bits before another is multiplied by x^n mod P and added to that other. With A and
// B, its first and second 64 bits, the product is
//
//     (A x^64 + B) x^n  =  A (x^(n+64) mod P) + B (x^n mod P)    modulo P.
//
// Each multiplication takes two halves of 64 bits to 127 bits, and these lie in their 128 so that
// the reflected product is too high by a factor x. A remainder, 32 bits at the low end of its half,
// is too high by x^32. The exponents are therefore 33 less: n+31 and n-33.

#define KESTDB_TARGET_CLMUL __attribute__((target("pclmul")))

namespace kestdb {
namespace {

constexpr int blockSize = 16;
constexpr int strideSize = 4 * blockSize;  // four products are under way at a time

/// x^n mod P, reflected.
constexpr std::uint32_t PowerOfX(int n) {
  std::uint32_t remainder = 0x80000000;
  for (; n > 0; --n) remainder = TimesX(remainder);
  return remainder;
}

/// The multipliers of A and B that carry a block `distance` bytes on.
template <int distance>
KESTDB_TARGET_CLMUL __m128i Multipliers() {
  constexpr std::uint32_t first = PowerOfX(8 * distance + 31);
  constexpr std::uint32_t second = PowerOfX(8 * distance - 33);
  return _mm_set_epi64x(second, first);
}

KESTDB_TARGET_CLMUL __m128i Load(const unsigned char* bytes) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
}

/// `block`, carried on by `multipliers` and added to `other`.
KESTDB_TARGET_CLMUL __m128i Fold(__m128i block, __m128i multipliers, __m128i other) {
  const __m128i first = _mm_clmulepi64_si128(block, multipliers, 0x00);
  const __m128i second = _mm_clmulepi64_si128(block, multipliers, 0x11);
  return _mm_xor_si128(_mm_xor_si128(first, second), other);
}

}  // namespace

bool CanFoldCRC32() {
  return __builtin_cpu_supports("pclmul");
}

KESTDB_TARGET_CLMUL std::uint32_t UpdateCRC32ByFolding(std::uint32_t running, const void* data,
                                                       std::size_t size) {
  if (size < strideSize) return UpdateCRC32BySlices(running, data, size);
  const auto* bytes = static_cast<const unsigned char*>(data);

  // The running value is what came before, added to the first 32 bits.
  __m128i a = _mm_xor_si128(Load(bytes), _mm_cvtsi32_si128(static_cast<int>(running)));
  __m128i b = Load(bytes + blockSize);
  __m128i c = Load(bytes + 2 * blockSize);
  __m128i d = Load(bytes + 3 * blockSize);
  const __m128i overStride = Multipliers<strideSize>();
  for (bytes += strideSize, size -= strideSize; size >= strideSize;
       bytes += strideSize, size -= strideSize) {
    a = Fold(a, overStride, Load(bytes));
    b = Fold(b, overStride, Load(bytes + blockSize));
    c = Fold(c, overStride, Load(bytes + 2 * blockSize));
    d = Fold(d, overStride, Load(bytes + 3 * blockSize));
  }

  const __m128i overBlock = Multipliers<blockSize>();
  const __m128i last = Fold(Fold(Fold(a, overBlock, b), overBlock, c), overBlock, d);
  unsigned char lastBytes[blockSize];
  _mm_storeu_si128(reinterpret_cast<__m128i*>(lastBytes), last);
  running = UpdateCRC32BySlices(0, lastBytes, blockSize);
  return UpdateCRC32BySlices(running, bytes, size);
}

}  // namespace kestdb

#endif
