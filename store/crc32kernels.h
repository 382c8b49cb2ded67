// Private to the library, not installed: the running CRC-32, made in three ways.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kestdb {

/// The reflected polynomial: bit 31 is the coefficient of x^0, bit 0 that of x^31; x^32 is implied.
constexpr std::uint32_t crc32Polynomial = 0xEDB88320;

/// The reflected `remainder` times x, modulo the polynomial.
constexpr std::uint32_t TimesX(std::uint32_t remainder) {
  return (remainder >> 1) ^ ((remainder & 1) != 0 ? crc32Polynomial : 0);
}

/// The running value after `size` bytes more, by the fastest way that the processor has. The caller
/// starts with 0xFFFFFFFF and complements at the end.
std::uint32_t UpdateCRC32(std::uint32_t running, const void* data, std::size_t size);

/// Byte by byte through crc32tab: the definition, which the others agree with.
std::uint32_t UpdateCRC32ByTable(std::uint32_t running, const void* data, std::size_t size);

/// Eight bytes at a time through eight tables, on any processor.
std::uint32_t UpdateCRC32BySlices(std::uint32_t running, const void* data, std::size_t size);

#if defined(__x86_64__)
/// Whether the processor has the carry-less multiplication that UpdateCRC32ByFolding needs.
bool CanFoldCRC32();

/// 64 bytes at a time by carry-less multiplication. REQUIRES CanFoldCRC32().
std::uint32_t UpdateCRC32ByFolding(std::uint32_t running, const void* data, std::size_t size);
#endif

}  // namespace kestdb
