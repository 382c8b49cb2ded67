#include "tests/fault/Forgery.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <stdexcept>

#include "tests/fault/FileMap.h"

namespace {

constexpr std::size_t kBlockHeader = 28;

/// ISO 3309: reflected, polynomial 0xEDB88320, all ones before and turned over behind.
std::uint32_t Checksum(const std::string& bytes) {
  std::uint32_t running = 0xFFFFFFFF;
  for (const char c : bytes) {
    running ^= static_cast<unsigned char>(c);
    for (int bit = 0; bit < 8; ++bit) {
      running = running >> 1 ^ ((running & 1) != 0 ? 0xEDB88320 : 0);
    }
  }
  return ~running;
}

}  // namespace

Forgery& Forgery::Change(Which file, std::size_t offset, std::uint32_t old, std::uint32_t value) {
  if (NumberAt(Bytes(file), offset) != old) throw std::logic_error("another word is there");
  return Set(file, offset, value);
}

Forgery& Forgery::Set(Which file, std::size_t offset, std::uint32_t value) {
  for (std::size_t i = 0; i < 4; ++i) {
    SetByte(file, offset + i, static_cast<unsigned char>(value >> 8 * i));
  }
  return *this;
}

Forgery& Forgery::SetByte(Which file, std::size_t offset, unsigned char value) {
  Bytes(file).at(offset) = static_cast<char>(value);
  return *this;
}

Forgery& Forgery::SetBytes(Which file, std::size_t offset, const std::string& bytes) {
  Bytes(file).replace(offset, bytes.size(), bytes);
  return *this;
}

Forgery& Forgery::Seal(Which file, std::size_t block) {
  const std::size_t length = NumberAt(Bytes(file), block + 4);
  const std::size_t size = length - kBlockHeader - 4;
  return Set(file, block + length - 4, Checksum(Bytes(file).substr(block + kBlockHeader, size)));
}

void ExerciseAll(const HostileStudy& study, const std::vector<HostileValue>& values,
                 Writing writing) {
  const auto results = RunCases(values.size(), [&](std::size_t i) {
    return study.Exercise(values[i].forged.Files(), values[i].changed);
  });
  for (std::size_t i = 0; i < values.size(); ++i) {
    const CaseResult& result = results[i];
    std::printf("  %-58s %s%s%s%s%s\n", values[i].name.c_str(), EndingName(result.ending),
                result.note[0] == '\0' ? "" : ": ", result.note,
                result.spread[0] == '\0' ? "" : ", lost later: ", result.spread);
    EXPECT_LE(result.ending, values[i].worst) << values[i].name << ": " << result.note;
    if (writing == Writing::LosesNothing) {
      EXPECT_STREQ(result.spread, "") << values[i].name;
    }
    if (!values[i].told.empty()) {
      EXPECT_EQ(result.note, values[i].told) << values[i].name;
    }
  }
}

std::vector<std::size_t> FreeList(const std::string& bytes) {
  std::vector<std::size_t> blocks;
  for (std::size_t at = NumberAt(bytes, 0); at != 0; at = NumberAt(bytes, at + 12)) {
    blocks.push_back(at);
  }
  return blocks;
}
