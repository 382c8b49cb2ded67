#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>

#include "tests/maintenance/DataFiles.h"
#include "tests/support/RawFile.h"
#include "tests/support/TempFolder.h"

// What the rebuilds have to say, and studies of their own for them.

/// What the reports call the classes, by tree.
inline const char* const kClasses[] = {
    "CInput - GUI",      "CAuxiliary - GUI",       "CTask - Task",     "CDVar - Task",
    "CDResp - Task",     "CDCons - Task",          "CDObj - Task",     "CDLink - Task",
    "CDEqn - Task",      "CApproxModels - Result", "CResult - Result", "CDPoint - Result",
    "CIter - Result",    "CDSet - Task",           "CGPoint - GUI",    "CDBControl",
    "CRDOE - Result",    "CDesignControl - GUI",   "CResp - GUI",      "CResid - Result",
    "CMessage - Result", "CRApproxMod - Result"};
inline constexpr int kClassCount = 22;

/// The numbers of objects of a study, by tree; 0 for those that aren't named.
using Counts = std::map<int, int>;

/// The lines of the first `trees` classes, each of their number between two texts.
inline std::string ClassLines(const Counts& counts, int trees, const std::string& before,
                              const std::string& after) {
  std::string lines;
  for (int tree = 0; tree < trees; ++tree) {
    const auto found = counts.find(tree);
    const int count = found == counts.end() ? 0 : found->second;
    lines += before + std::to_string(count) + ' ' + kClasses[tree] + after;
  }
  return lines;
}
inline std::string Indexed(const Counts& counts, int trees = kClassCount) {
  return ClassLines(counts, trees, "\t", " objects indexed\n");
}
inline std::string AreOK(const Counts& counts, int trees = kClassCount) {
  return ClassLines(counts, trees, "", " objects are OK\n");
}

/// PreCheck, in its short form, of a sound file and of one without blocks.
inline std::string SoundStart(const std::string& path) {
  return "Analyzing " + path +
         " header...\n"
         "\tChecking signature...OK\n"
         "\tChecking the HeapStart value...OK\n"
         "The file header checks OK!\n\n";
}
inline std::string EmptyStart(const std::string& path) {
  return "Analyzing " + path +
         " header...\n"
         "\tChecking signature...OK\n"
         "\tChecking the HeapStart value...no variable blocks in the file.\n"
         "The file header checks OK!\n\n";
}

/// Which file names in a folder, sorted, in one text.
inline std::string NamesIn(const std::string& folder) {
  std::map<std::string, bool> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    names[entry.path().filename()] = true;
  }
  std::string text;
  for (const auto& [name, ignored] : names) text += (text.empty() ? "" : " ") + name;
  return text;
}

/// An index file of revision A, with the headers of 25 trees behind a shorter file header.
inline std::string OldIndex(char letter) {
  const long heap = 28 * 26;
  std::string bytes = FileHeaderBytes(0, heap, heap, 0, letter);
  for (long i = 0; i < 25; ++i) {
    for (const long word : {32L, 76L, 0L, 1L, 1L, heap + 16, i}) bytes += Word(word);
  }
  return bytes;
}

/// The keys of all trees of an index file.
using Keys = std::map<long, std::map<std::string, long>>;
inline Keys KeysOf(const std::string& indexPath) {
  const RawFile index = ReadRawFile(indexPath);
  Keys keys;
  for (long tree = 0; tree < 25; ++tree) keys[tree] = ReadRawTree(index, tree);
  return keys;
}

/// The files of a closed study of its own, and the log of a run over them.
class StudyRun : public testing::Test {
 protected:
  StudyRun() { ClearLog(); }

  /// What `run` logs. Nothing stays open or locked behind it.
  template <class Run>
  std::string ReportOf(Run run) {
    const auto descriptors = OpenDescriptors();
    ClearLog();
    run();
    EXPECT_EQ(OpenDescriptors(), descriptors);
    EXPECT_FALSE(std::filesystem::exists(folder / "study.lck"));
    return LogText();
  }
  template <class Error, class Run>
  std::string ReportUntil(Run run) {
    return ReportOf([&] { EXPECT_THROW(run(), Error); });
  }

  std::string Names() const { return NamesIn(folder.Path()); }

  TempFolder folder;
  const std::string base = folder / "study";
  const std::string data = base + ".ksb";
  const std::string index = base + ".kx";
  const std::string backup = base + ".kx.old";
};
