#include "store/crc32.h"

#include <array>

#include "store/crc32kernels.h"
#include "store/vbscalar.h"

namespace kestdb {
namespace {

constexpr std::size_t sliceCount = 8;
using Table = std::array<std::uint32_t, 256>;

constexpr std::uint32_t TableEntry(std::uint32_t byte) {
  for (int bit = 0; bit < 8; ++bit) byte = TimesX(byte);
  return byte;
}

/// Entry n of table k is the running value 0 after byte n and k zero bytes.
constexpr std::array<Table, sliceCount> MakeSlices() {
  std::array<Table, sliceCount> slices{};
  for (std::uint32_t byte = 0; byte < 256; ++byte) {
    std::uint32_t running = slices[0][byte] = TableEntry(byte);
    for (std::size_t zeros = 1; zeros < sliceCount; ++zeros) {
      running = (running >> 8) ^ TableEntry(running & 0xFF);
      slices[zeros][byte] = running;
    }
  }
  return slices;
}

constexpr std::array<Table, sliceCount> slices = MakeSlices();

/// Four neighbouring bytes, each followed by the zeros that stand for the bytes behind it.
std::uint32_t FourSlices(std::uint32_t bytes, std::size_t zerosBehind) {
  return slices[zerosBehind + 3][bytes & 0xFF] ^ slices[zerosBehind + 2][bytes >> 8 & 0xFF] ^
         slices[zerosBehind + 1][bytes >> 16 & 0xFF] ^ slices[zerosBehind][bytes >> 24];
}

using Kernel = std::uint32_t (*)(std::uint32_t, const void*, std::size_t);

Kernel FastestKernel() {
#if defined(__x86_64__)
  if (CanFoldCRC32()) return UpdateCRC32ByFolding;
#endif
  return UpdateCRC32BySlices;
}

}  // namespace

std::uint32_t UpdateCRC32(std::uint32_t running, const void* data, std::size_t size) {
  static const Kernel fastest = FastestKernel();
  return fastest(running, data, size);
}

std::uint32_t UpdateCRC32ByTable(std::uint32_t running, const void* data, std::size_t size) {
  const auto* bytes = static_cast<const unsigned char*>(data);
  for (std::size_t i = 0; i < size; ++i) {
    running = static_cast<std::uint32_t>(calcCRC32(bytes[i], running));
  }
  return running;
}

std::uint32_t UpdateCRC32BySlices(std::uint32_t running, const void* data, std::size_t size) {
  const auto* bytes = static_cast<const unsigned char*>(data);
  for (; size >= sliceCount; size -= sliceCount, bytes += sliceCount) {
    running = FourSlices(running ^ LittleEndian(bytes), 4) ^ FourSlices(LittleEndian(bytes + 4), 0);
  }
  return UpdateCRC32ByTable(running, bytes, size);
}

}  // namespace kestdb

unsigned long calcCRC32(const char* data, unsigned int length) {
  return ~kestdb::UpdateCRC32(0xFFFFFFFF, data, length);
}

unsigned long calcCRC32(char* data, unsigned int length) {
  return calcCRC32(static_cast<const char*>(data), length);
}

unsigned long calcCRC32(unsigned char byte, unsigned long crc) {
  return (crc >> 8 & 0x00FFFFFF) ^ crc32tab[(crc ^ byte) & 0xFF];
}

#define ENTRIES_4(n)                                                           \
  kestdb::TableEntry(n), kestdb::TableEntry(n + 1), kestdb::TableEntry(n + 2), \
      kestdb::TableEntry(n + 3)
#define ENTRIES_16(n) ENTRIES_4(n), ENTRIES_4(n + 4), ENTRIES_4(n + 8), ENTRIES_4(n + 12)
#define ENTRIES_64(n) ENTRIES_16(n), ENTRIES_16(n + 16), ENTRIES_16(n + 32), ENTRIES_16(n + 48)

constinit const unsigned long crc32tab[256] = {ENTRIES_64(0), ENTRIES_64(64), ENTRIES_64(128),
                                               ENTRIES_64(192)};
