#pragma once

#include <string>
#include <vector>

#include "definition/GPoint.h"
#include "tests/support/SampleRecord.h"

// Objects whose every field follows from their key, so that what is read back can be told right
// from wrong without a copy of it.

enum class Kind { Plain, Sample, Triple, Points };

struct KnownObject {
  Kind kind;
  int id = 0;
  int number = 0;
  long address = 0;  ///< object address in the undamaged file

  bool operator==(const KnownObject&) const = default;
};

std::string Name(const KnownObject& object);

/// Set all fields but the key.
void Fill(PlainRecord& record);
void Fill(SampleRecord& record);
void Fill(TripleRecord& record);
void Fill(CGPoint& points);

bool IsSame(const PlainRecord& left, const PlainRecord& right);
bool IsSame(const SampleRecord& left, const SampleRecord& right);
bool IsSame(const TripleRecord& left, const TripleRecord& right);
bool IsSame(const CGPoint& left, const CGPoint& right);

/// Calls `use` with a new record that has the key of `object`.
template <class Use>
auto WithRecord(POD* pod, const KnownObject& object, Use use) {
  if (object.kind == Kind::Plain) {
    PlainRecord record(pod);
    record.m_nID = object.id;
    return use(record);
  }
  if (object.kind == Kind::Sample) {
    SampleRecord record(pod);
    record.m_nID = object.id;
    record.m_nNumber = object.number;
    return use(record);
  }
  if (object.kind == Kind::Triple) {
    TripleRecord record(pod);
    record.m_nFirst = object.id;
    record.m_nSecond = object.number;
    return use(record);
  }
  CGPoint points(pod);
  return use(points);
}

/// Whether `record` has the key of `object` and every field as it was filled.
template <class Record>
bool IsAsStored(const Record& record, const KnownObject& object) {
  return WithRecord(record.Database(), object, [&](auto& expected) {
    Fill(expected);
    if constexpr (requires { IsSame(record, expected); }) return IsSame(record, expected);
    return false;
  });
}

/// Stores the object in its place, or as a new one.
void Store(POD* pod, const KnownObject& object);
