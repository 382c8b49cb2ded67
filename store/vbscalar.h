#pragma once

#include <bit>
#include <compare>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <type_traits>

class vbINT32;
class vbUINT32;
class vbFLOAT64;

namespace kestdb {

template <class T>
concept PortableScalar =
    std::same_as<T, vbINT32> || std::same_as<T, vbUINT32> || std::same_as<T, vbFLOAT64>;

template <class T, class U>
concept BothReal = requires {
  requires std::floating_point<T>;
  requires std::floating_point<U>;
};

/// What a scalar may be compared with and divided by: its own class and every integral type, for
/// vbFLOAT64 also the floating-point types. The operand is converted to the scalar's host type.
template <class T, class Scalar>
concept ScalarOperand =
    std::same_as<T, Scalar> || std::integral<T> || BothReal<T, typename Scalar::HostType>;

// Bytes are put together one by one, which fits every host; the shifts are written out because
// compilers make one load or store of them then.

/// The number in four bytes.
constexpr std::uint32_t LittleEndian(const unsigned char* bytes) {
  return std::uint32_t{bytes[0]} | std::uint32_t{bytes[1]} << 8 | std::uint32_t{bytes[2]} << 16 |
         std::uint32_t{bytes[3]} << 24;
}

constexpr void StoreLittleEndian(std::uint32_t bits, unsigned char* bytes) {
  bytes[0] = static_cast<unsigned char>(bits);
  bytes[1] = static_cast<unsigned char>(bits >> 8);
  bytes[2] = static_cast<unsigned char>(bits >> 16);
  bytes[3] = static_cast<unsigned char>(bits >> 24);
}

/// The number in eight bytes.
constexpr std::uint64_t BigEndian(const unsigned char* bytes) {
  return std::uint64_t{bytes[0]} << 56 | std::uint64_t{bytes[1]} << 48 |
         std::uint64_t{bytes[2]} << 40 | std::uint64_t{bytes[3]} << 32 |
         std::uint64_t{bytes[4]} << 24 | std::uint64_t{bytes[5]} << 16 |
         std::uint64_t{bytes[6]} << 8 | std::uint64_t{bytes[7]};
}

constexpr void StoreBigEndian(std::uint64_t bits, unsigned char* bytes) {
  bytes[0] = static_cast<unsigned char>(bits >> 56);
  bytes[1] = static_cast<unsigned char>(bits >> 48);
  bytes[2] = static_cast<unsigned char>(bits >> 40);
  bytes[3] = static_cast<unsigned char>(bits >> 32);
  bytes[4] = static_cast<unsigned char>(bits >> 24);
  bytes[5] = static_cast<unsigned char>(bits >> 16);
  bytes[6] = static_cast<unsigned char>(bits >> 8);
  bytes[7] = static_cast<unsigned char>(bits);
}

/// The arithmetic that the three scalars have in common; it holds no data.
template <class Scalar>
class ScalarArithmetic {
 public:
  /// Divides by `operand`; a zero divisor leaves the value unchanged.
  template <ScalarOperand<Scalar> Operand>
  constexpr Scalar& operator/=(Operand operand) {
    using Host = typename Scalar::HostType;
    const auto divisor = static_cast<Host>(operand);
    if (divisor != Host{0}) Self().UnPackBits(Self().PackBits() / divisor);
    return Self();
  }

  constexpr Scalar operator++(int) {
    const Scalar old = Self();
    Self().UnPackBits(old.PackBits() + 1);
    return old;
  }

  constexpr Scalar operator--(int) {
    const Scalar old = Self();
    Self().UnPackBits(old.PackBits() - 1);
    return old;
  }

 private:
  constexpr Scalar& Self() { return static_cast<Scalar&>(*this); }
};

}  // namespace kestdb

// The scalars of all file formats. Each holds its value as the bytes of the file and nothing else,
// so that a structure of them is read and written as it stands. Integers are stored least
// significant byte first, reals most significant byte first.

/// A signed 32-bit integer: two's complement, least significant byte first. A wider value keeps
/// its low 32 bits.
class vbINT32 : public kestdb::ScalarArithmetic<vbINT32> {
 public:
  using HostType = long;

  constexpr vbINT32(long value = 0) { UnPackBits(value); }
  constexpr vbINT32& operator=(long value) {
    UnPackBits(value);
    return *this;
  }
  constexpr operator long() const { return PackBits(); }

  constexpr vbINT32& operator+=(const unsigned long& value) {
    UnPackBits(static_cast<long>(static_cast<unsigned long>(PackBits()) + value));
    return *this;
  }

  /// The host value of the stored bytes, sign-extended from bit 31.
  constexpr long PackBits() const {
    return static_cast<std::int32_t>(kestdb::LittleEndian(m_bytes));
  }
  /// Stores `value` as bytes.
  constexpr void UnPackBits(long value) {
    kestdb::StoreLittleEndian(static_cast<std::uint32_t>(value), m_bytes);
  }

 private:
  unsigned char m_bytes[4] = {};
};

/// An unsigned 32-bit integer, least significant byte first. A wider value keeps its low 32 bits.
class vbUINT32 : public kestdb::ScalarArithmetic<vbUINT32> {
 public:
  using HostType = unsigned long;

  constexpr vbUINT32(unsigned long value = 0) { UnPackBits(value); }
  constexpr vbUINT32& operator=(unsigned long value) {
    UnPackBits(value);
    return *this;
  }
  constexpr operator unsigned long() const { return PackBits(); }

  /// The host value of the stored bytes, zero-extended.
  constexpr unsigned long PackBits() const { return kestdb::LittleEndian(m_bytes); }
  /// Stores `value` as bytes.
  constexpr void UnPackBits(unsigned long value) {
    kestdb::StoreLittleEndian(static_cast<std::uint32_t>(value), m_bytes);
  }

 private:
  unsigned char m_bytes[4] = {};
};

/// A real number: IEEE 754 binary64, most significant byte first.
class vbFLOAT64 : public kestdb::ScalarArithmetic<vbFLOAT64> {
 public:
  using HostType = double;

  constexpr vbFLOAT64(double value = 0) { UnPackBits(value); }
  constexpr vbFLOAT64& operator=(double value) {
    UnPackBits(value);
    return *this;
  }
  constexpr operator double() const { return PackBits(); }

  /// The host value of the stored bytes.
  constexpr double PackBits() const { return std::bit_cast<double>(kestdb::BigEndian(m_bytes)); }
  /// Stores `value` as bytes.
  constexpr void UnPackBits(double value) {
    kestdb::StoreBigEndian(std::bit_cast<std::uint64_t>(value), m_bytes);
  }

 private:
  unsigned char m_bytes[8] = {};
};

// All comparisons, in both argument orders: the compiler makes !=, <, >, <= and >= of these two.
// Both sides have the host type: a vbINT32 is compared signed, also with an unsigned long, and a
// vbUINT32 unsigned, so that -1 stands above all its values.

template <kestdb::PortableScalar Scalar, kestdb::ScalarOperand<Scalar> Operand>
constexpr bool operator==(Scalar scalar, Operand operand) {
  return scalar.PackBits() == static_cast<typename Scalar::HostType>(operand);
}

template <kestdb::PortableScalar Scalar, kestdb::ScalarOperand<Scalar> Operand>
constexpr auto operator<=>(Scalar scalar, Operand operand) {
  return scalar.PackBits() <=> static_cast<typename Scalar::HostType>(operand);
}

namespace kestdb {

template <class T>
constexpr bool IsBareBytes(std::size_t width) {
  return sizeof(T) == width && alignof(T) == 1 && std::is_trivially_copyable<T>() &&
         std::is_standard_layout<T>();
}

}  // namespace kestdb

static_assert(sizeof(long) == 8, "the scalars compare with 64 bits");
static_assert(kestdb::IsBareBytes<vbINT32>(4));
static_assert(kestdb::IsBareBytes<vbUINT32>(4));
static_assert(kestdb::IsBareBytes<vbFLOAT64>(8));
