// Keeps a table of design points in a study: a small but whole caller of the library.
//
//   designtable store FOLDER CSV   makes the study FOLDER/table and stores the points of CSV in it
//   designtable define FOLDER      adds what the points are about, prints it and checks it
//   designtable make FOLDER        makes a task of the study and prints it
//   designtable fit FOLDER         fits the points of the last task and prints what it found
//   designtable show FOLDER        reads the points back and prints the study's key figures
//
// The CSV file starts with a line of column names; its last column is the measured response, all
// others are design variables.

#include <kestdb.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "definition.h"
#include "fit.h"

namespace {

std::vector<double> ParseLine(const std::string& line) {
  std::vector<double> values;
  std::istringstream cells(line);
  for (std::string cell; std::getline(cells, cell, ',');) {
    std::size_t used = 0;
    values.push_back(std::stod(cell, &used));
    if (used != cell.size()) throw std::runtime_error("not a number: " + cell);
  }
  return values;
}

/// The rows of the file below its line of names.
std::vector<std::vector<double>> ReadTable(const std::string& path) {
  std::ifstream file(path);
  std::string line;
  if (!std::getline(file, line)) throw std::runtime_error("cannot read " + path);
  std::vector<std::vector<double>> rows;
  while (std::getline(file, line)) {
    if (!line.empty()) rows.push_back(ParseLine(line));
  }
  return rows;
}

void AddPoint(CGPoint& points, const std::vector<double>& row) {
  if (row.size() < 2) throw std::runtime_error("a point needs a variable and a response");
  points.m_vnUsed.push_back(1);
  points.m_vnRun.push_back(0);  // measured already
  points.m_vnLocked.push_back(0);
  points.m_vDVars.emplace_back(row.begin(), row.end() - 1);
  points.m_vResps.push_back({row.back()});
}

void Store(const std::string& study, const std::string& table) {
  const auto rows = ReadTable(table);
  OpenDatabase(study);
  CGPoint points(GetPOD());
  for (const auto& row : rows) AddPoint(points, row);
  points.PutObject();
  CloseDatabase();
  std::printf("Stored %zu design points in %s.ksb\n", rows.size(), study.c_str());
}

void PrintCheck(const char* what) {
  std::printf("\nChecking the study %s:\n", what);
  const bool passes = CheckStudy();
  std::printf("The study can%s be run.\n", passes ? "" : "not");
}

void Define(const std::string& study) {
  fKLog = stdout;
  OpenDatabase(study);
  DefineStudy("Yield of a process, central composite design");
  PrintDefinitions();
  CrossBounds();
  PrintCheck("with the bounds of a variable interchanged");
  RestoreBounds();
  PrintCheck("with the bounds put right");
  CloseDatabase();
}

void Make(const std::string& study) {
  fKLog = stdout;
  OpenDatabase(study);
  const int task = MakeTask();
  if (task > 0) PrintTask(task);
  CloseDatabase();
}

void Fit(const std::string& study) {
  fKLog = stdout;
  OpenDatabase(study);
  std::vector<int> tasks;
  CTask::GetAllTasks(GetPOD(), tasks);
  if (tasks.empty()) throw std::runtime_error("no task");
  FitTask(tasks.back());
  PrintFit(tasks.back());
  CloseDatabase();
}

void PrintFile(const char* kind, vbDatabase& file) {
  vbINT32 deleted;
  vbINT32 removed;
  file.VBDeleted(&deleted, &removed);
  const vbFileHeader& header = file.FileHeader();
  std::printf("%s: %s\n", kind, file.GetFileName().c_str());
  std::printf("  revision %c, version %ld\n", file.GetRevisionLetter(), file.GetVersion());
  std::printf("  %ld bytes, %ld of them static area\n", header.EndOfFile.PackBits(),
              file.StaticArea().PackBits());
  std::printf("  %ld blocks, %ld of them free\n", file.VBTotal().PackBits(), (deleted + removed));
}

void PrintTrees(const POD& study) {
  std::printf("Trees with keys:\n");
  for (unsigned i = 0; i < study.IndexTable()->Count(); ++i) {
    const vBtree& tree = *study.Index(i);
    if (tree.EntryCount == 0) continue;
    std::printf("  %s: %ld keys, height %ld\n", pszIndexDesc[i], tree.EntryCount.PackBits(),
                tree.Height.PackBits());
  }
}

void PrintPoints(POD* study) {
  CGPoint points(study);
  if (!points.GetObject()) throw std::runtime_error("no design points");
  std::printf("\n%d design points are used:\n", points.NumUsedGPoints());
  for (std::size_t row = 0; row < points.m_vDVars.size(); ++row) {
    for (const double value : points.m_vDVars[row]) std::printf("%8g", value);
    for (const double value : points.m_vResps[row]) std::printf("  -> %g", value);
    std::printf("\n");
  }
}

void Show(const std::string& study) {
  OpenDatabase(study);
  {
    // One lock around all: the headers in memory are the files' as long as it is held.
    const CLock lock(GetPOD(), 0);
    PrintFile("Data file", *GetPOD()->DataFile());
    PrintFile("Index file", *GetPOD()->IndexFile());
    PrintTrees(*GetPOD());
    PrintPoints(GetPOD());
    CGPoint::Dump(GetPOD(), stdout);
  }
  CloseDatabase();
}

}  // namespace

int main(int count, char** arguments) {
  const std::vector<std::string> words(arguments + 1, arguments + count);
  try {
    if (words.size() == 3 && words[0] == "store") {
      Store(words[1] + "/table", words[2]);
    } else if (words.size() == 2 && words[0] == "define") {
      Define(words[1] + "/table");
    } else if (words.size() == 2 && words[0] == "make") {
      Make(words[1] + "/table");
    } else if (words.size() == 2 && words[0] == "fit") {
      Fit(words[1] + "/table");
    } else if (words.size() == 2 && words[0] == "show") {
      Show(words[1] + "/table");
    } else {
      std::fprintf(
          stderr,
          "usage: designtable store FOLDER CSV | define FOLDER | make FOLDER | fit FOLDER | "
          "show FOLDER\n");
      return 2;
    }
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "designtable: %s\n", failure.what());
    return 1;
  }
  return EXIT_SUCCESS;
}
