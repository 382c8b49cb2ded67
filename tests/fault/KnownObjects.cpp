#include "tests/fault/KnownObjects.h"

#include <tuple>

namespace {

/// Printable text of a length that depends on `seed`, up to 60 characters.
std::string TextFor(long seed) {
  const auto length = static_cast<std::size_t>(seed * 13 % 61);
  std::string text;
  for (std::size_t i = 0; i < length; ++i) text += static_cast<char>('a' + (seed + long(i)) % 26);
  return text;
}

long Seed(const SampleRecord& record) {
  return record.m_nID * 10 + record.m_nNumber;
}

auto Fields(const SampleRecord& record) {
  return std::tie(record.m_nID, record.m_nNumber, record.m_uFlags, record.m_fValue,
                  record.m_strText, record.m_vnNumbers, record.m_vfValues, record.m_vstrTexts,
                  record.m_mfRows, record.m_nSinceTwo);
}

auto Fields(const CGPoint& points) {
  return std::tie(points.m_vnUsed, points.m_vnRun, points.m_vnLocked, points.m_vDVars,
                  points.m_vResps);
}

}  // namespace

std::string Name(const KnownObject& object) {
  static const char* const names[] = {"Plain", "Sample", "Triple", "Points"};
  return names[static_cast<int>(object.kind)] + std::string(" ") + std::to_string(object.id);
}

void Fill(PlainRecord& record) {
  record.m_strText = TextFor(record.m_nID);
}

void Fill(SampleRecord& record) {
  const long seed = Seed(record);
  record.m_uFlags = static_cast<unsigned long>(0xFFFFFF00L + seed);
  record.m_fValue = static_cast<double>(seed) / 7;
  record.m_strText = TextFor(seed + 1);
  for (long i = 0; i < seed % 6; ++i) {
    record.m_vnNumbers.emplace_back(seed - i);
    record.m_vfValues.emplace_back(static_cast<double>(i) - 0.5);
    record.m_vstrTexts.push_back(TextFor(seed + i));
    record.m_mfRows.emplace_back(static_cast<std::size_t>(i), vbFLOAT64(1.0 / 3));
  }
  record.m_nSinceTwo = -seed;
}

void Fill(TripleRecord&) {}

void Fill(CGPoint& points) {
  for (int i = 0; i < 3; ++i) {
    points.m_vnUsed.emplace_back(i % 2);
    points.m_vnRun.emplace_back(1);
    points.m_vnLocked.emplace_back(0);
    points.m_vDVars.emplace_back(3, vbFLOAT64(0.1 * i));
    points.m_vResps.emplace_back(static_cast<std::size_t>(i), vbFLOAT64(1e30));
  }
}

bool IsSame(const PlainRecord& left, const PlainRecord& right) {
  return left.m_nID == right.m_nID && left.m_strText == right.m_strText;
}

bool IsSame(const SampleRecord& left, const SampleRecord& right) {
  return Fields(left) == Fields(right);
}

bool IsSame(const TripleRecord& left, const TripleRecord& right) {
  return left.m_nFirst == right.m_nFirst && left.m_nSecond == right.m_nSecond &&
         left.m_nThird == right.m_nThird;
}

bool IsSame(const CGPoint& left, const CGPoint& right) {
  return Fields(left) == Fields(right);
}

void Store(POD* pod, const KnownObject& object) {
  WithRecord(pod, object, [](auto& record) {
    Fill(record);
    record.PutObject();
  });
}
