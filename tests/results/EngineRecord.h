#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <valarray>
#include <vector>

#include "store/vbscalar.h"

// The records that the run engine fills, field by field. All are of version 1.

/// A field of a record: a value, its bytes, and the bytes of its default.
template <class Object>
struct EngineField {
  EngineField(vbINT32 Object::*member, long value, std::string bytes)
      : filled(std::move(bytes)), missing("00 00 00 00 ") {
    fill = [=](Object& object) { object.*member = value; };
    expectFilled = [=](const Object& object) { EXPECT_EQ(object.*member, value); };
    expectDefault = [=](const Object& object) { EXPECT_EQ(object.*member, 0); };
    lengthen = [](Object&, std::size_t) { return 0; };
  }
  EngineField(vbFLOAT64 Object::*member, double value, std::string bytes, double otherwise = 0.0,
              std::string otherwiseBytes = "00 00 00 00 00 00 00 00 ")
      : filled(std::move(bytes)), missing(std::move(otherwiseBytes)) {
    fill = [=](Object& object) { object.*member = value; };
    expectFilled = [=](const Object& object) { EXPECT_EQ(object.*member, value); };
    expectDefault = [=](const Object& object) { EXPECT_EQ(object.*member, otherwise); };
    lengthen = [](Object&, std::size_t) { return 0; };
  }
  /// `keeps` says that SetDefaultAttributes leaves the array as it is.
  template <class Element>
  EngineField(std::valarray<Element> Object::*member, const std::vector<Element>& value,
              std::string bytes, bool keeps = false)
      : filled(std::move(bytes)), missing("00 00 00 00 "), hasCount(true), keptByDefaults(keeps) {
    fill = [=](Object& object) { object.*member = {value.data(), value.size()}; };
    expectFilled = [=](const Object& object) { EXPECT_EQ(ListOf(object.*member), value); };
    expectDefault = [=](const Object& object) { EXPECT_EQ((object.*member).size(), 0U); };
    lengthen = [=](Object& object, std::size_t count) {
      object.*member = std::valarray<Element>(value[0], count);
      return count * sizeof(Element);
    };
  }

  std::string filled;   ///< The bytes of the value
  std::string missing;  ///< The bytes of the default
  bool hasCount = false;
  bool keptByDefaults = false;
  std::function<void(Object&)> fill;
  std::function<void(const Object&)> expectFilled;
  std::function<void(const Object&)> expectDefault;
  /// Gives an array so many elements, and tells how many bytes those take.
  std::function<std::size_t(Object&, std::size_t)> lengthen;

 private:
  template <class Element>
  static std::vector<Element> ListOf(const std::valarray<Element>& values) {
    return {begin(values), end(values)};
  }
};

template <class Object>
using EngineFields = std::vector<EngineField<Object>>;

/// Of a record's class: `ID`, `Index` and `Name`; `KeyFields()`; `Length`, that of the record
/// without elements; and `All()`, its fields. The first one is the task, which is 7.
template <class Object>
struct EngineRecordOf;
