// A run engine and a user interface in one, on published problems:
//
//   engine FOLDER [PROBLEM...]   runs the problems, by default all, in studies of FOLDER
//
// For each it prints the task and what the run found, and at the end a table against the published
// figures. The exit status is 1 when a figure is worse than is allowed.

#include <kestdb.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <string>
#include <vector>

#include "problems.h"

namespace {

struct Problem {
  const char* name;  ///< also that of its study
  std::vector<Finding> (*solve)(const std::string& path);
};

const Problem kProblems[] = {
    {"weldedbeam", SolveWeldedBeam},         {"speedreducer", SolveSpeedReducer},
    {"pressurevessel", SolvePressureVessel}, {"zdt1", SolveZDT1},
    {"composite", AnalyseComposite},         {"branin", SolveBranin},
};

void PrintUsage() {
  std::fprintf(stderr, "usage: engine FOLDER [PROBLEM...]\nproblems:");
  for (const Problem& problem : kProblems) std::fprintf(stderr, " %s", problem.name);
  std::fprintf(stderr, "\n");
}

bool IsProblem(const std::string& name) {
  return std::any_of(std::begin(kProblems), std::end(kProblems),
                     [&](const Problem& problem) { return problem.name == name; });
}

std::vector<Finding> Solve(const std::string& folder, const std::vector<std::string>& names) {
  std::vector<Finding> all;
  for (const Problem& problem : kProblems) {
    if (!names.empty() && std::find(names.begin(), names.end(), problem.name) == names.end()) {
      continue;
    }
    const std::vector<Finding> findings = problem.solve(folder + '/' + problem.name);
    all.insert(all.end(), findings.begin(), findings.end());
  }
  return all;
}

bool IsGoodEnough(const Finding& finding) {
  // No number is not good either.
  return finding.difference <= finding.allowed;
}

void PrintTable(const std::vector<Finding>& findings) {
  std::printf("%-28s %14s %14s %12s\n", "Problem", "Found", "Published", "Difference");
  for (const Finding& finding : findings) {
    std::printf("%-28s %14.7g %14.7g %11.4f%%%s\n", finding.name.c_str(), finding.found,
                finding.published, 100.0 * finding.difference,
                IsGoodEnough(finding) ? "" : "  worse than allowed");
  }
}

}  // namespace

int main(int count, char** arguments) {
  const std::vector<std::string> words(arguments + 1, arguments + count);
  if (words.empty() || !std::all_of(words.begin() + 1, words.end(), IsProblem)) {
    PrintUsage();
    return 2;
  }
  try {
    fKLog = stdout;
    std::filesystem::create_directories(words[0]);
    const std::vector<Finding> findings = Solve(words[0], {words.begin() + 1, words.end()});
    PrintTable(findings);
    return std::all_of(findings.begin(), findings.end(), IsGoodEnough) ? 0 : 1;
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "engine: %s\n", failure.what());
    return 1;
  }
}
