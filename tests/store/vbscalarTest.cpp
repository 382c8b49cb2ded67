#include "store/vbscalar.h"

#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

namespace {

template <class Scalar>
std::array<unsigned, sizeof(Scalar)> BytesOf(const Scalar& scalar) {
  unsigned char raw[sizeof(Scalar)];
  std::memcpy(raw, &scalar, sizeof raw);
  std::array<unsigned, sizeof(Scalar)> bytes{};
  for (std::size_t i = 0; i < sizeof raw; ++i) bytes[i] = raw[i];
  return bytes;
}

template <class Scalar>
Scalar FromBytes(const unsigned char (&raw)[sizeof(Scalar)]) {
  Scalar scalar;
  std::memcpy(&scalar, raw, sizeof raw);
  return scalar;
}

using FourBytes = std::array<unsigned, 4>;
using EightBytes = std::array<unsigned, 8>;

struct Mixed {
  char flag;
  vbINT32 integer;
  vbFLOAT64 real;
  vbUINT32 word;
};

/// Which of ==, !=, <, >, <=, >= hold, in this order.
using Six = std::array<bool, 6>;
constexpr Six isEqual{true, false, false, false, true, true};
constexpr Six isLess{false, true, true, false, true, false};
constexpr Six isGreater{false, true, false, true, false, true};
constexpr Six isUnordered{false, true, false, false, false, false};

template <class Left, class Right>
constexpr Six Compare(Left left, Right right) {
  static_assert(std::is_same_v<decltype(left == right), bool>);
  return {left == right, left != right, left<right, left> right, left <= right, left >= right};
}

constexpr Six Reversed(Six six) {
  return {six[0], six[1], six[3], six[2], six[5], six[4]};
}

template <class Scalar, class Operand>
void ExpectBothOrders(Scalar scalar, Operand operand, Six expected) {
  EXPECT_EQ(Compare(scalar, operand), expected) << scalar.PackBits() << " and " << operand;
  EXPECT_EQ(Compare(operand, scalar), Reversed(expected))
      << operand << " and " << scalar.PackBits();
}

template <class Operand>
class EveryIntegralType : public testing::Test {};

using IntegralTypes =
    testing::Types<long, unsigned long, int, short, unsigned int, unsigned short, signed char,
                   unsigned char, long long, unsigned long long, char>;
TYPED_TEST_SUITE(EveryIntegralType, IntegralTypes);

template <class Operand>
class EverySignedType : public testing::Test {};

using SignedTypes = testing::Types<long, int, short, signed char, long long>;
TYPED_TEST_SUITE(EverySignedType, SignedTypes);

}  // namespace

TEST(Scalars, AreBareBytesThatNeedNoAlignment) {
  EXPECT_EQ(sizeof(vbINT32), 4u);
  EXPECT_EQ(sizeof(vbUINT32), 4u);
  EXPECT_EQ(sizeof(vbFLOAT64), 8u);
  EXPECT_EQ(alignof(Mixed), 1u);
  EXPECT_EQ(sizeof(Mixed), 17u);
  EXPECT_TRUE(std::is_trivially_copyable_v<Mixed>);
}

TEST(Scalars, StructureHasTheImageOfTheFile) {
  const Mixed mixed{'K', -2, 1.0, 0x01020304};
  const std::array<unsigned, 17> expected{0x4B, 0xFE, 0xFF, 0xFF, 0xFF, 0x3F, 0xF0, 0x00, 0x00,
                                          0x00, 0x00, 0x00, 0x00, 0x04, 0x03, 0x02, 0x01};
  EXPECT_EQ(BytesOf(mixed), expected);
}

TEST(Scalars, WorkInConstantExpressions) {
  static_assert(vbINT32(-7) == -7 && vbUINT32(7) > 6 && vbFLOAT64(0.5) <= 0.5);
  static_assert([] {
    vbINT32 value = 8;
    value++;
    value /= 3;
    return value.PackBits();
  }() == 3);
}

TEST(vbINT32, DefaultIsZero) {
  EXPECT_EQ(BytesOf(vbINT32()), (FourBytes{0, 0, 0, 0}));
}

TEST(vbINT32, IsStoredLeastSignificantByteFirst) {
  EXPECT_EQ(BytesOf(vbINT32(1)), (FourBytes{0x01, 0x00, 0x00, 0x00}));
  EXPECT_EQ(BytesOf(vbINT32(-1)), (FourBytes{0xFF, 0xFF, 0xFF, 0xFF}));
  EXPECT_EQ(BytesOf(vbINT32(0x12345678)), (FourBytes{0x78, 0x56, 0x34, 0x12}));
  EXPECT_EQ(BytesOf(vbINT32(INT_MIN)), (FourBytes{0x00, 0x00, 0x00, 0x80}));
}

TEST(vbINT32, ReadsBackSignExtended) {
  EXPECT_EQ(FromBytes<vbINT32>({0xFF, 0xFF, 0xFF, 0xFF}).PackBits(), -1L);
  EXPECT_EQ(FromBytes<vbINT32>({0x00, 0x00, 0x00, 0x80}).PackBits(), -2147483648L);
  EXPECT_EQ(FromBytes<vbINT32>({0xFF, 0xFF, 0xFF, 0x7F}).PackBits(), 2147483647L);
  EXPECT_EQ(FromBytes<vbINT32>({0xFE, 0xCA, 0x00, 0x80}).PackBits(), -2147431682L);
}

TEST(vbINT32, KeepsTheLow32BitsOfAWiderValue) {
  EXPECT_EQ(vbINT32(0x1'0000'0005).PackBits(), 5);
  EXPECT_EQ(vbINT32(0x0'8000'0000).PackBits(), -2147483648L);
  EXPECT_EQ(vbINT32(-0x1'0000'0001).PackBits(), -1);
}

TEST(vbINT32, AssignsFromHostTypeAndOwnClass) {
  vbINT32 value;
  EXPECT_EQ(&(value = 17L), &value);
  EXPECT_EQ(value.PackBits(), 17);
  const vbINT32 other(-4);
  EXPECT_EQ(&(value = other), &value);
  EXPECT_EQ(BytesOf(value), (FourBytes{0xFC, 0xFF, 0xFF, 0xFF}));
  value.UnPackBits(258);
  EXPECT_EQ(BytesOf(value), (FourBytes{0x02, 0x01, 0x00, 0x00}));
}

TEST(vbINT32, TakesPartInHostArithmetic) {
  const vbINT32 value(-5);
  const auto sum = value + 2;
  static_assert(std::is_same_v<decltype(sum), const long>);
  EXPECT_EQ(sum, -3L);
}

TEST(vbINT32, PostfixStepsReturnTheOldValue) {
  vbINT32 value(-1);
  EXPECT_EQ((value++).PackBits(), -1);
  EXPECT_EQ(value.PackBits(), 0);
  EXPECT_EQ((value--).PackBits(), 0);
  EXPECT_EQ(value.PackBits(), -1);
}

TEST(vbINT32, StepsWrapAtTheEnds) {
  vbINT32 value(INT_MAX);
  value++;
  EXPECT_EQ(value.PackBits(), INT_MIN);
  value--;
  EXPECT_EQ(value.PackBits(), INT_MAX);
}

TEST(vbINT32, AddsUnsignedLong) {
  vbINT32 value(-10);
  const unsigned long size = 28;
  EXPECT_EQ(&(value += size), &value);
  EXPECT_EQ(value.PackBits(), 18);
  value += ULONG_MAX;
  EXPECT_EQ(value.PackBits(), 17);
}

TEST(vbINT32, DividesSignedAlsoByUnsignedTypes) {
  vbINT32 value(-100);
  EXPECT_EQ(&(value /= 3UL), &value);
  EXPECT_EQ(value.PackBits(), -33);
  value /= 2U;
  EXPECT_EQ(value.PackBits(), -16);
  value /= vbINT32(-4);
  EXPECT_EQ(value.PackBits(), 4);
}

TEST(vbINT32, SmallestByMinusOneKeepsTheLow32Bits) {
  vbINT32 value(INT_MIN);
  value /= -1;
  EXPECT_EQ(value.PackBits(), INT_MIN);
}

TEST(vbINT32, ComparesWithItsOwnClass) {
  ExpectBothOrders(vbINT32(-3), vbINT32(-3), isEqual);
  ExpectBothOrders(vbINT32(-3), vbINT32(2), isLess);
  ExpectBothOrders(vbINT32(300), vbINT32(2), isGreater);
}

TEST(vbINT32, ComparesSignedAlsoWithUnsignedLong) {
  ExpectBothOrders(vbINT32(-1), 5UL, isLess);
  ExpectBothOrders(vbINT32(-1), 0U, isLess);
  ExpectBothOrders(vbINT32(-1), ULONG_MAX, isEqual);
  ExpectBothOrders(vbINT32(0), ULONG_MAX, isGreater);
}

TEST(vbINT32, ComparesWith64Bits) {
  ExpectBothOrders(vbINT32(5), 0x1'0000'0005L, isLess);
  ExpectBothOrders(vbINT32(-1), 0xFFFFFFFFU, isLess);
  ExpectBothOrders(vbINT32(5), LONG_MIN, isGreater);
}

TEST(vbUINT32, IsStoredLeastSignificantByteFirst) {
  EXPECT_EQ(BytesOf(vbUINT32()), (FourBytes{0, 0, 0, 0}));
  EXPECT_EQ(BytesOf(vbUINT32(0xFEFEFEFE)), (FourBytes{0xFE, 0xFE, 0xFE, 0xFE}));
  EXPECT_EQ(BytesOf(vbUINT32(0x80000001)), (FourBytes{0x01, 0x00, 0x00, 0x80}));
}

TEST(vbUINT32, ReadsBackZeroExtended) {
  EXPECT_EQ(FromBytes<vbUINT32>({0xFE, 0xFE, 0xFE, 0xFE}).PackBits(), 4278124286UL);
  EXPECT_EQ(FromBytes<vbUINT32>({0x0D, 0x0C, 0x0B, 0x0A}).PackBits(), 168496141UL);
}

TEST(vbUINT32, KeepsTheLow32BitsOfAWiderValue) {
  EXPECT_EQ(vbUINT32(0x7'0000'0009).PackBits(), 9UL);
  EXPECT_EQ(vbUINT32(ULONG_MAX).PackBits(), 4294967295UL);
}

TEST(vbUINT32, AssignsFromHostTypeAndOwnClass) {
  vbUINT32 value;
  EXPECT_EQ(&(value = 17UL), &value);
  EXPECT_EQ(value.PackBits(), 17UL);
  const vbUINT32 other(0x01000000);
  EXPECT_EQ(&(value = other), &value);
  EXPECT_EQ(BytesOf(value), (FourBytes{0x00, 0x00, 0x00, 0x01}));
}

TEST(vbUINT32, PostfixStepsReturnTheOldValueAndWrap) {
  vbUINT32 value(0);
  EXPECT_EQ((value--).PackBits(), 0UL);
  EXPECT_EQ(value.PackBits(), 4294967295UL);
  EXPECT_EQ((value++).PackBits(), 4294967295UL);
  EXPECT_EQ(value.PackBits(), 0UL);
}

TEST(vbUINT32, DividesUnsigned) {
  vbUINT32 value(0x80000000);
  value /= 2;
  EXPECT_EQ(value.PackBits(), 0x40000000UL);
  value /= vbUINT32(4);
  EXPECT_EQ(value.PackBits(), 0x10000000UL);
  value /= -1;
  EXPECT_EQ(value.PackBits(), 0UL);
}

TEST(vbUINT32, ComparesWithItsOwnClass) {
  ExpectBothOrders(vbUINT32(0x80000000), vbUINT32(0x80000000), isEqual);
  ExpectBothOrders(vbUINT32(7), vbUINT32(0x80000000), isLess);
  ExpectBothOrders(vbUINT32(0xFFFFFFFF), vbUINT32(1), isGreater);
}

TEST(vbUINT32, ComparesWith64Bits) {
  ExpectBothOrders(vbUINT32(5), 0x1'0000'0005L, isLess);
  ExpectBothOrders(vbUINT32(0xFFFFFFFF), 0xFFFFFFFFUL, isEqual);
  ExpectBothOrders(vbUINT32(0xFFFFFFFF), 0x7FFFFFFF, isGreater);
}

TEST(vbFLOAT64, IsStoredMostSignificantByteFirst) {
  EXPECT_EQ(BytesOf(vbFLOAT64()), (EightBytes{0, 0, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(BytesOf(vbFLOAT64(1.0)), (EightBytes{0x3F, 0xF0, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(BytesOf(vbFLOAT64(-0.1)), (EightBytes{0xBF, 0xB9, 0x99, 0x99, 0x99, 0x99, 0x99, 0x9A}));
  EXPECT_EQ(BytesOf(vbFLOAT64(-0.0)), (EightBytes{0x80, 0, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(BytesOf(vbFLOAT64(HUGE_VAL)), (EightBytes{0x7F, 0xF0, 0, 0, 0, 0, 0, 0}));
}

TEST(vbFLOAT64, ReadsBackEveryByte) {
  // Exponent 0x3FE is 2^-1; the fraction is 0x23456789ABCDE / 2^52.
  const auto value = FromBytes<vbFLOAT64>({0x3F, 0xE2, 0x34, 0x56, 0x78, 0x9A, 0xBC, 0xDE});
  EXPECT_EQ(value.PackBits(), 0x1.23456789ABCDEp-1);
  const auto smallest = FromBytes<vbFLOAT64>({0, 0, 0, 0, 0, 0, 0, 1});
  EXPECT_EQ(smallest.PackBits(), std::numeric_limits<double>::denorm_min());
}

TEST(vbFLOAT64, AssignsFromHostTypeAndOwnClass) {
  vbFLOAT64 value;
  EXPECT_EQ(&(value = -1e30), &value);
  EXPECT_EQ(value.PackBits(), -1e30);
  const vbFLOAT64 other(2.0);
  EXPECT_EQ(&(value = other), &value);
  EXPECT_EQ(BytesOf(value), (EightBytes{0x40, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(vbFLOAT64, PostfixStepsReturnTheOldValue) {
  vbFLOAT64 value(0.5);
  EXPECT_EQ((value++).PackBits(), 0.5);
  EXPECT_EQ(value.PackBits(), 1.5);
  EXPECT_EQ((value--).PackBits(), 1.5);
  EXPECT_EQ(value.PackBits(), 0.5);
}

TEST(vbFLOAT64, Divides) {
  vbFLOAT64 value(9.0);
  EXPECT_EQ(&(value /= 2.0), &value);
  EXPECT_EQ(value.PackBits(), 4.5);
  value /= vbFLOAT64(-1.5);
  EXPECT_EQ(value.PackBits(), -3.0);
  value /= 2.0f;
  EXPECT_EQ(value.PackBits(), -1.5);
}

TEST(vbFLOAT64, ZeroDivisorLeavesTheValue) {
  vbFLOAT64 value(5.0);
  value /= 0.0;
  value /= -0.0;
  value /= vbFLOAT64(0.0);
  EXPECT_EQ(value.PackBits(), 5.0);
}

TEST(vbFLOAT64, ComparesWithItsOwnClassAndDouble) {
  ExpectBothOrders(vbFLOAT64(0.25), vbFLOAT64(0.25), isEqual);
  ExpectBothOrders(vbFLOAT64(-0.25), vbFLOAT64(0.25), isLess);
  ExpectBothOrders(vbFLOAT64(0.25), 0.25, isEqual);
  ExpectBothOrders(vbFLOAT64(0.25), 0.5, isLess);
  ExpectBothOrders(vbFLOAT64(0.25), -HUGE_VAL, isGreater);
  ExpectBothOrders(vbFLOAT64(0.0), -0.0, isEqual);
  ExpectBothOrders(vbFLOAT64(0.25), 0.5f, isLess);
}

TEST(vbFLOAT64, NothingButUnequalHoldsWithNaN) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  ExpectBothOrders(vbFLOAT64(nan), vbFLOAT64(nan), isUnordered);
  ExpectBothOrders(vbFLOAT64(1.0), nan, isUnordered);
  ExpectBothOrders(vbFLOAT64(nan), 1.0, isUnordered);
  ExpectBothOrders(vbFLOAT64(nan), 1, isUnordered);
}

TYPED_TEST(EveryIntegralType, ComparesWithEveryScalar) {
  const auto operand = static_cast<TypeParam>(100);
  ExpectBothOrders(vbINT32(100), operand, isEqual);
  ExpectBothOrders(vbINT32(-100), operand, isLess);
  ExpectBothOrders(vbINT32(1000), operand, isGreater);
  ExpectBothOrders(vbUINT32(100), operand, isEqual);
  ExpectBothOrders(vbUINT32(99), operand, isLess);
  ExpectBothOrders(vbUINT32(0xFFFFFFFF), operand, isGreater);
  ExpectBothOrders(vbFLOAT64(100.0), operand, isEqual);
  ExpectBothOrders(vbFLOAT64(99.5), operand, isLess);
  ExpectBothOrders(vbFLOAT64(100.5), operand, isGreater);
}

TYPED_TEST(EveryIntegralType, DividesEveryScalar) {
  const auto divisor = static_cast<TypeParam>(7);
  vbINT32 integer(-50);
  vbUINT32 word(50);
  vbFLOAT64 real(-17.5);
  EXPECT_EQ((integer /= divisor).PackBits(), -7);
  EXPECT_EQ((word /= divisor).PackBits(), 7UL);
  EXPECT_EQ((real /= divisor).PackBits(), -2.5);
}

TYPED_TEST(EveryIntegralType, ZeroDivisorLeavesEveryScalar) {
  const auto zero = static_cast<TypeParam>(0);
  vbINT32 integer(5);
  vbUINT32 word(5);
  vbFLOAT64 real(5.0);
  EXPECT_EQ((integer /= zero).PackBits(), 5);
  EXPECT_EQ((word /= zero).PackBits(), 5UL);
  EXPECT_EQ((real /= zero).PackBits(), 5.0);
}

TYPED_TEST(EverySignedType, MinusOneIsCompared) {
  const auto minusOne = static_cast<TypeParam>(-1);
  ExpectBothOrders(vbINT32(-1), minusOne, isEqual);
  ExpectBothOrders(vbINT32(0), minusOne, isGreater);
  ExpectBothOrders(vbUINT32(0), minusOne, isLess);
  ExpectBothOrders(vbUINT32(0xFFFFFFFF), minusOne, isLess);
  ExpectBothOrders(vbFLOAT64(-1.0), minusOne, isEqual);
}

TEST(Scalars, ZeroOfTheOwnClassDividesNothing) {
  vbINT32 integer(5);
  vbUINT32 word(5);
  EXPECT_EQ((integer /= vbINT32(0)).PackBits(), 5);
  EXPECT_EQ((word /= vbUINT32(0)).PackBits(), 5UL);
}
