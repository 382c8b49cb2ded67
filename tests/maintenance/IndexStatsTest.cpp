#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "definition/Input.h"
#include "maintenance/DBUtilities.h"
#include "maintenance/Lock.h"
#include "store/DBI_IO.h"
#include "store/KestErr.h"
#include "tests/maintenance/RebuildReports.h"
#include "tests/support/OtherProcess.h"

// The report on the trees of an index file.

namespace {

namespace fs = std::filesystem;

/// A fresh study.
class IndexStats : public StudyRun {
 protected:
  IndexStats() {
    OpenDatabase(base);
    CloseDatabase();
  }

  std::string Start() const {
    return "\n***** Start -- Index File Statistics *****\nFile name: " + base + "\n";
  }
  template <class Error>
  void ExpectFailure(const std::string& text) {
    EXPECT_EQ(ReportUntil<Error>([this] { KIndexStats(base, false); }), Start() + text + kEnd);
  }

  const std::string kEnd = "\n***** End -- Index File Statistics *****\n\n";
};

std::string Tree(const std::string& name, int number, long root, int entries, int nodes = 1,
                 int height = 1) {
  return name + ", Tree (" + std::to_string(number) +
         ")\n"
         "Class ID =          " +
         std::to_string(number) +
         "\n"
         "Root address =      " +
         std::to_string(root) +
         "\n"
         "Number of entries = " +
         std::to_string(entries) +
         "\n"
         "Number of nodes =   " +
         std::to_string(nodes) +
         "\n"
         "Btree order =       32\n"
         "Btree height =      " +
         std::to_string(height) +
         "\n"
         "------------------------------\n";
}

/// Of a tree made with the file: the heap starts at 40 + 25 * 40, the block of a node has 28 bytes
/// of headers, 8 + 31 * 76 of node and 4 of checksum.
std::string FirstTree(const std::string& name, int number, int entries) {
  return Tree(name, number, 1068 + 2396 * number, entries);
}

std::string TreesFrom(int first) {
  std::string text;
  for (int tree = first; tree < kClassCount; ++tree) {
    const bool singleton = tree == 14 || tree == 15 || tree == 17;
    text += FirstTree(kClasses[tree], tree, singleton ? 1 : 0);
  }
  for (int tree = kClassCount; tree < 25; ++tree) text += FirstTree("unused", tree, 0);
  return text;
}

TEST_F(IndexStats, OfAFreshStudyShowEveryTreeWhateverTheFlag) {
  const std::string before = ReadBytes(index);
  for (const bool flag : {false, true}) {
    const std::string report = ReportOf([&] { KIndexStats(base, flag); });
    EXPECT_EQ(report, Start() + TreesFrom(0) + kEnd);
    EXPECT_EQ(ReadBytes(index), before);
    EXPECT_EQ(Names(), "study.ksb study.kx");
  }
}

TEST_F(IndexStats, CallSpareTreesUnused) {
  const std::string report = ReportOf([this] { KIndexStats(base, false); });
  const std::size_t spare = report.find("unused");
  ASSERT_NE(spare, std::string::npos);
  EXPECT_EQ(report.substr(spare),
            "unused, Tree (22)\n"
            "Class ID =          22\n"
            "Root address =      53780\n"
            "Number of entries = 0\n"
            "Number of nodes =   1\n"
            "Btree order =       32\n"
            "Btree height =      1\n"
            "------------------------------\n"
            "unused, Tree (23)\n"
            "Class ID =          23\n"
            "Root address =      56176\n"
            "Number of entries = 0\n"
            "Number of nodes =   1\n"
            "Btree order =       32\n"
            "Btree height =      1\n"
            "------------------------------\n"
            "unused, Tree (24)\n"
            "Class ID =          24\n"
            "Root address =      58572\n"
            "Number of entries = 0\n"
            "Number of nodes =   1\n"
            "Btree order =       32\n"
            "Btree height =      1\n"
            "------------------------------\n"
            "\n***** End -- Index File Statistics *****\n\n");
}

TEST_F(IndexStats, ShowTheGrowthOfATree) {
  OpenDatabase(base);
  {
    const CLock lock(GetPOD(), 0);
    for (int id = 1; id <= 32; ++id) {
      CInput input(GetPOD());
      input.m_nID = id;
      input.WriteObject(false);
    }
  }
  CloseDatabase();
  // Two new nodes at the end of the file: the second half of the first one, and the root.
  const std::string report = ReportOf([this] { KIndexStats(base, false); });
  const std::string bytes = ReadBytes(index);
  const long root = WordAt(bytes, 40 + 20);
  EXPECT_TRUE(root == 1068 + 2396 * 25 || root == 1068 + 2396 * 26) << root;
  EXPECT_EQ(report, Start() + Tree("CInput - GUI", 0, root, 32, 3, 2) + TreesFrom(1) + kEnd);
}

TEST_F(IndexStats, NeedADataFile) {
  fs::remove(data);
  ExpectFailure<CNoFileExists>(Failure("No file exists"));
  EXPECT_EQ(Names(), "study.kx");
}

TEST_F(IndexStats, NeedAnIndexFile) {
  fs::remove(index);
  ExpectFailure<CNoFileExists>(Failure("No file exists"));
  EXPECT_EQ(Names(), "study.ksb");
}

TEST_F(IndexStats, NeedFilesThatTheirOwnerMayRead) {
  chmod(index.c_str(), 0200);
  ExpectFailure<CFileRead>(Failure("File read error"));
  chmod(data.c_str(), 0400);
  ExpectFailure<CFileNotWriteable>(Failure("File not writeable"));
}

TEST_F(IndexStats, RefuseADataFileOfRevisionA) {
  for (const char letter : {'A', 'a'}) {
    WriteBytes(data, With(kOldFile, kLetterAt, std::string(1, letter)));
    ExpectFailure<CFileNotReady>(
        std::string("ERROR: You must update the files to the current file revision.\n") +
        "       Data file reads version " + letter +
        "; current version is C.\n"
        "       Please rebuild the data file and then rebuild the index file.\n" +
        Failure("File not ready"));
  }
}

TEST_F(IndexStats, RefuseAnIndexFileOfRevisionA) {
  for (const char letter : {'A', 'a'}) {
    WriteBytes(index, OldIndex(letter));
    ExpectFailure<CFileNotReady>(
        std::string("ERROR: You must update the files to the current file revision.\n") +
        "       Index file reads version " + letter +
        "; current version is C.\n"
        "       Please rebuild the index file.\n" +
        Failure("File not ready"));
  }
}

TEST_F(IndexStats, StopAtAnIndexFileThatIsNone) {
  WriteBytes(index, std::string(200, 'x'));
  ExpectFailure<CWrongFileType>(Failure("Wrong file type"));
}

TEST_F(IndexStats, StopAtAnIndexFileThatIsCut) {
  fs::resize_file(index, 500);
  ExpectFailure<CFileRead>(Failure("File read error"));
}

TEST_F(IndexStats, StopWhereAnotherProcessHasLockedAFile) {
  for (const std::string& path : {data, index}) {
    OtherProcess holder([&path](const OtherProcess::Pause& pause) {
      std::FILE* file = std::fopen(path.c_str(), "r+b");
      NSFLock(file);
      pause();
      std::fclose(file);
    });
    ExpectFailure<CFileLock>(Failure("Error locking the file"));
    holder.Finish();
  }
  EXPECT_EQ(ReportOf([this] { KIndexStats(base, false); }), Start() + TreesFrom(0) + kEnd);
}

}  // namespace
