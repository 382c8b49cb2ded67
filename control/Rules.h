// Private to the library, not installed.
#pragma once

#include <algorithm>
#include <initializer_list>

#include "environment/Logging.h"
#include "store/vbscalar.h"

namespace kestdb {

/// The value of a field that a rule is about; a real holds every stored integer exactly.
class Checked {
 public:
  Checked(const vbINT32& field) : number_(static_cast<double>(long{field})) {}
  Checked(const vbFLOAT64& field) : number_(field) {}
  Checked(int value) : number_(value) {}

  operator double() const { return number_; }

 private:
  double number_;
};

/// Collects what a check of the user's data finds wrong: each rule that doesn't hold is reported,
/// its first line through LError and the others through LPrint, and the check goes on, so that the
/// user sees all faults at once. A first line may show the value.
class Rules {
 public:
  explicit Rules(bool hold = true) : hold_(hold) {}

  bool AllHold() const { return hold_; }
  /// For a fault that the caller reports itself.
  void Fail() { hold_ = false; }

  template <class... Lines>
  void Between(Checked value, double low, double high, const char* first, Lines... rest) {
    Require(value >= low && value <= high, value, first, rest...);
  }
  template <class... Lines>
  void NotBelow(Checked value, double low, const char* first, Lines... rest) {
    Require(!(value < low), value, first, rest...);
  }
  template <class... Lines>
  void NotAbove(Checked value, double high, const char* first, Lines... rest) {
    Require(!(value > high), value, first, rest...);
  }
  template <class... Lines>
  void Above(Checked value, double low, const char* first, Lines... rest) {
    Require(value > low, value, first, rest...);
  }
  template <class... Lines>
  void OneOf(Checked value, std::initializer_list<int> legal, const char* first, Lines... rest) {
    Require(std::find(legal.begin(), legal.end(), value) != legal.end(), value, first, rest...);
  }
  template <class... Lines>
  void Require(bool holds, Checked value, const char* first, Lines... rest) {
    if (holds) return;
    Fail();
    PrintFirst(first, value);
    (LPrint("%s", rest), ...);
  }

 private:
  static void PrintFirst(const char* first, double value);

  bool hold_;
};

}  // namespace kestdb
