#pragma once

#include <sys/wait.h>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

#include "kestdb.h"
#include "tests/support/TempFolder.h"

/// A run of the program with these arguments.
struct EngineRun {
  explicit EngineRun(const std::string& arguments) {
    const std::string command = std::string("'" KESTDB_ENGINE "' ") + arguments + " 2>&1";
    std::FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) throw std::runtime_error("no pipe");
    char bytes[4096];
    for (std::size_t size; (size = std::fread(bytes, 1, sizeof bytes, pipe)) > 0;) {
      output.append(bytes, size);
    }
    const int ended = pclose(pipe);
    status = WIFEXITED(ended) ? WEXITSTATUS(ended) : -1;
  }

  /// The number in the column "Found" of the last table, by the name of the row.
  double Found(const std::string& name) const {
    const std::size_t table = output.rfind("\nProblem ");
    const std::size_t row = output.find('\n' + name + ' ', table);
    if (table == std::string::npos || row == std::string::npos) {
      throw std::runtime_error("no row " + name + " in\n" + output);
    }
    return std::stod(output.substr(row + 1 + name.size()));
  }

  int status;
  std::string output;
};

/// A study that the program left, open until the end of the test.
struct LeftStudy {
  explicit LeftStudy(const std::string& path) { OpenDatabase(path); }
  LeftStudy(const LeftStudy&) = delete;
  LeftStudy& operator=(const LeftStudy&) = delete;
  ~LeftStudy() { CloseDatabase(); }

  static CResult Result() {
    CResult result(GetPOD());
    result.m_nID = 1;
    if (!result.GetObject()) throw std::runtime_error("no result");
    return result;
  }

  static CIter Iteration(long number) {
    CIter iteration(GetPOD());
    iteration.m_nTaskID = 1;
    iteration.m_nIter = number;
    if (!iteration.GetObject()) throw std::runtime_error("no iteration");
    return iteration;
  }

  static CDPoint Point(long number) {
    CDPoint point(GetPOD());
    point.m_nTaskID = 1;
    point.m_nPointID = number;
    if (!point.GetObject()) throw std::runtime_error("no point");
    return point;
  }

  static CDPoint BestPoint() { return Point(Iteration(Result().m_nBestIter).m_nBestPoint); }

  /// The iterations of the first task, which are numbered without gaps.
  static std::vector<CIter> Iterations() {
    std::vector<CIter> all;
    CIter iteration(GetPOD());
    iteration.m_nTaskID = 1;
    for (; iteration.GetObject(); iteration.m_nIter = iteration.m_nIter + 1) {
      all.push_back(iteration);
    }
    return all;
  }

  static long CountPoints() {
    CDPoint point(GetPOD());
    point.m_nTaskID = 1;
    for (; point.GetObject(); point.m_nPointID = point.m_nPointID + 1) {
    }
    return point.m_nPointID;
  }
};
