#pragma once

#include <string>
#include <valarray>
#include <vector>

#include "tests/task/DerivedTasks.h"

/// Task 2, made of task 1 of a functions study with some of its independent variables fixed: k,
/// x_1, x_2, x_3, d, at positions 0 to 4. Each one has a value and bounds of its own.
class ModifiedTasks : public DerivedTasks {
 protected:
  using Flags = std::valarray<bool>;

  int Modify(Flags fix, int id = 1) {
    CTask task(Pod());
    task.m_nID = id;
    return task.CreateModifiedGPostTask("what if", fix, values, lower, upper);
  }

  /// The same table of another task.
  template <class Record>
  Record CopyFor(int task) {
    auto record = Stored<Record>(1);
    record.m_nID = task;
    return record;
  }
  /// What task 1 has to become as task 2, with so many independent and constant scalars.
  CTask Expected(unsigned long independent, unsigned long constant) {
    auto task = CopyFor<CTask>(2);
    task.m_strTitle = "what if";
    task.m_strCreated = "now";
    task.m_uNumIndDV = independent;
    task.m_uNumConstDV = constant;
    return task;
  }

  /// Point `number` of task 2 has these values, and those of task 1 else.
  void ExpectPoint(int number, const Numbers& independent, const Numbers& constant) {
    CDPoint expected = PointOf(2, number, number);
    Assign(independent, expected.m_IDVar);
    Assign(constant, expected.m_CDVar);
    ExpectStored(expected);
  }
  static void Assign(const Numbers& from, std::valarray<double>& to) {
    to = std::valarray<double>(from.data(), from.size());
  }

  std::valarray<double> values{100.0, 101.0, 102.0, 103.0, 104.0};
  std::valarray<double> lower{-10.0, -11.0, -12.0, -13.0, -14.0};
  std::valarray<double> upper{10.0, 11.0, 12.0, 13.0, 14.0};
};
