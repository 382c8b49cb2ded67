#include "store/crc32.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <ostream>
#include <random>
#include <string>
#include <vector>

#include "store/crc32kernels.h"

namespace {

constexpr char checkText[] = "123456789";
constexpr unsigned long checkValue = 0xCBF43926;

/// The CRC by its bits alone, with no table.
std::uint32_t StepByBits(std::uint32_t running, unsigned char byte) {
  running ^= byte;
  for (int bit = 0; bit < 8; ++bit) {
    running = (running & 1) != 0 ? running >> 1 ^ 0xEDB88320 : running >> 1;
  }
  return running;
}

std::uint32_t RunByBits(std::uint32_t running, const unsigned char* bytes, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) running = StepByBits(running, bytes[i]);
  return running;
}

std::vector<unsigned char> RandomBytes(std::size_t size) {
  std::mt19937 random(20210415);
  std::vector<unsigned char> bytes(size);
  for (unsigned char& byte : bytes) byte = static_cast<unsigned char>(random());
  return bytes;
}

struct Kernel {
  const char* name;
  std::uint32_t (*update)(std::uint32_t, const void*, std::size_t);
};

void PrintTo(const Kernel& kernel, std::ostream* out) {
  *out << kernel.name;
}

class CRC32Kernel : public testing::TestWithParam<Kernel> {
 protected:
  void SetUp() override {
#if defined(__x86_64__)
    if (GetParam().update == kestdb::UpdateCRC32ByFolding && !kestdb::CanFoldCRC32()) {
      GTEST_SKIP() << "this processor has no carry-less multiplication";
    }
#endif
  }

  static std::uint32_t Update(std::uint32_t running, const void* data, std::size_t size) {
    return GetParam().update(running, data, size);
  }
};

const Kernel kernels[] = {
    {"Fastest", kestdb::UpdateCRC32},
    {"Table", kestdb::UpdateCRC32ByTable},
    {"Slices", kestdb::UpdateCRC32BySlices},
#if defined(__x86_64__)
    {"Folding", kestdb::UpdateCRC32ByFolding},
#endif
};

INSTANTIATE_TEST_SUITE_P(All, CRC32Kernel, testing::ValuesIn(kernels),
                         [](const auto& kernel) { return std::string(kernel.param.name); });

}  // namespace

TEST(CRC32, NineDigitsGiveTheCheckValue) {
  EXPECT_EQ(calcCRC32(checkText, 9), checkValue);
  char writable[] = "123456789";
  EXPECT_EQ(calcCRC32(writable, 9), checkValue);
}

TEST(CRC32, NoBytesGiveZero) {
  EXPECT_EQ(calcCRC32(checkText, 0), 0UL);
  EXPECT_EQ(calcCRC32(static_cast<const char*>(nullptr), 0), 0UL);
  char writable[] = "x";
  EXPECT_EQ(calcCRC32(writable, 0), 0UL);
}

TEST(CRC32, BytesAboveASCIICountUnsigned) {
  // Four bytes FF: the seed cancels them, zero remains, and its complement is FFFFFFFF.
  EXPECT_EQ(calcCRC32("\xFF\xFF\xFF\xFF", 4), 0xFFFFFFFFUL);
}

TEST(CRC32, ByteStepsGiveTheBlockForm) {
  unsigned long running = 0xFFFFFFFF;
  for (int i = 0; i < 9; ++i) {
    running = calcCRC32(static_cast<unsigned char>(checkText[i]), running);
  }
  EXPECT_EQ(running ^ 0xFFFFFFFF, checkValue);
}

TEST(CRC32, ByteStepDropsWhatIsAbove32Bits) {
  EXPECT_EQ(calcCRC32(static_cast<unsigned char>('1'), 0xABCDEF12'FFFFFFFF),
            calcCRC32(static_cast<unsigned char>('1'), 0xFFFFFFFFUL));
}

TEST(CRC32, ByteStepSelectsByTheLowByte) {
  // (0x12345678 >> 8) is 0x00123456; 0x78 ^ 0x79 selects entry 1, 0x77073096.
  EXPECT_EQ(calcCRC32(static_cast<unsigned char>(0x79), 0x12345678UL), 0x771504C0UL);
}

TEST(CRC32, TableHoldsThePublishedEntries) {
  EXPECT_EQ(crc32tab[0], 0x00000000UL);
  EXPECT_EQ(crc32tab[1], 0x77073096UL);
  EXPECT_EQ(crc32tab[2], 0xEE0E612CUL);
  EXPECT_EQ(crc32tab[3], 0x990951BAUL);
  EXPECT_EQ(crc32tab[8], 0x0EDB8832UL);
  EXPECT_EQ(crc32tab[64], 0x76DC4190UL);
  EXPECT_EQ(crc32tab[128], 0xEDB88320UL);
  EXPECT_EQ(crc32tab[255], 0x2D02EF8DUL);
}

TEST(CRC32, TableEntryIsTheStepOfItsByte) {
  for (unsigned byte = 0; byte < 256; ++byte) {
    EXPECT_EQ(crc32tab[byte], StepByBits(0, static_cast<unsigned char>(byte))) << byte;
  }
}

TEST_P(CRC32Kernel, GivesTheCheckValue) {
  EXPECT_EQ(Update(0xFFFFFFFF, checkText, 9) ^ 0xFFFFFFFF, checkValue);
}

TEST_P(CRC32Kernel, AgreesAtEveryLengthAndAlignment) {
  const std::vector<unsigned char> bytes = RandomBytes(1016);
  for (std::size_t start = 0; start < 16; ++start) {
    std::uint32_t expected = 0xFFFFFFFF;
    for (std::size_t length = 0; length <= 1000; ++length) {
      ASSERT_EQ(Update(0xFFFFFFFF, &bytes[start], length), expected) << start << ' ' << length;
      expected = StepByBits(expected, bytes[start + length]);
    }
  }
}

TEST_P(CRC32Kernel, AgreesOnABigBuffer) {
  const std::vector<unsigned char> bytes = RandomBytes((1 << 20) + 77);
  EXPECT_EQ(Update(0xFFFFFFFF, bytes.data(), bytes.size()),
            RunByBits(0xFFFFFFFF, bytes.data(), bytes.size()));
}

TEST_P(CRC32Kernel, GoesOnFromAnyRunningValue) {
  const std::vector<unsigned char> bytes = RandomBytes(300);
  for (const std::uint32_t running : {0x00000000U, 0x00000001U, 0x80000000U, 0x12345678U}) {
    EXPECT_EQ(Update(running, bytes.data(), 300), RunByBits(running, bytes.data(), 300));
  }
}

TEST_P(CRC32Kernel, DoesNotCareWhereTheDataIsSplit) {
  const std::vector<unsigned char> bytes = RandomBytes(5000);
  const std::uint32_t whole = RunByBits(0xFFFFFFFF, bytes.data(), bytes.size());
  std::mt19937 random(7);
  for (int round = 0; round < 100; ++round) {
    std::uint32_t running = 0xFFFFFFFF;
    for (std::size_t done = 0; done < bytes.size();) {
      const std::size_t part = std::min<std::size_t>(random() % 700, bytes.size() - done);
      running = Update(running, &bytes[done], part);
      done += part;
    }
    ASSERT_EQ(running, whole) << round;
  }
}
