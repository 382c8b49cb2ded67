#pragma once

#include <cstdio>
#include <string>

#include "results/DPoint.h"
#include "results/Result.h"
#include "tests/support/Printed.h"

/// The reports on the task that is made of a study.
template <class MadeStudy>
class MadeReports : public MadeStudy {
 protected:
  template <class Table>
  std::string Report() {
    return Printed([&](std::FILE* stream) { Table::Dump(this->Pod(), stream, 1); });
  }
  std::string PointReport(int number) {
    return Printed([&](std::FILE* stream) { CDPoint::Dump(this->Pod(), stream, 1, number); });
  }
  std::string Summary() {
    return Printed([&](std::FILE* stream) { CResult::Dump(this->Pod(), stream, 1, false); });
  }
};
