#include <filesystem>

#include "tests/support/Printed.h"
#include "tests/tools/ToolStudy.h"

// The reports are the library's own log, which goes to standard output here.

class CheckTest : public ToolStudy {
 protected:
  /// What the library logs, with the names that the program got.
  std::string Logged(const std::function<void()>& run) const {
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder.Path());
    const std::string text = Printed([&run](std::FILE* log) {
      std::FILE* old = std::exchange(fKLog, log);
      try {
        run();
      } catch (const CKestErr&) {
        // The program's exit status tells of it.
      }
      fKLog = old;
    });
    std::filesystem::current_path(before);
    return text;
  }
};

TEST_F(CheckTest, ASoundDataFile) {
  const std::string log = Logged([] { KFileCheck("study.ksb"); });
  EXPECT_NE(log.find("The file header checks OK!"), std::string::npos);
  EXPECT_EQ(Output({"check", "study"}), log);
}

TEST_F(CheckTest, AnObjectThatIsDamaged) {
  WriteAt(DataPath(), 100, "?");
  const std::string log = Logged([] { KFileCheck("study.ksb"); });
  EXPECT_NE(log.find("ERROR: Object checksum does not match!"), std::string::npos);
  EXPECT_EQ(Output({"check", "study"}, 1), log);
}

TEST_F(CheckTest, WhatAFreeBlockHoldsIsNoFault) {
  Change([](POD* pod) {
    CInput input(pod);
    input.m_nID = 1;
    input.m_strText = std::string(5000, 'x');
    input.PutObject();
    input.m_strText = "";
    input.PutObject();
    input.m_nID = 2;
    input.PutObject();  // into a part of the large block
  });
  const std::string log = Logged([] { KFileCheck("study.ksb"); });
  EXPECT_NE(log.find("ERROR: Object checksum does not match!"), std::string::npos);
  EXPECT_EQ(Output({"check", "study"}), log);
}

TEST_F(CheckTest, ABlockOfNoKnownStatus) {
  WriteAt(DataPath(), 48, "X");
  const std::string log = Logged([] { KFileCheck("study.ksb"); });
  EXPECT_NE(log.find("Status       = X\n"), std::string::npos) << log;
  EXPECT_EQ(Output({"check", "study"}, 1), log);
}

TEST_F(CheckTest, ABlockThatIsDamaged) {
  WriteAt(DataPath(), 104, "?");
  const std::string log = Logged([] { KFileCheck("study.ksb"); });
  EXPECT_NE(log.find("WARNING: Found bad variable block at address 104"), std::string::npos);
  EXPECT_EQ(Output({"check", "study"}, 1), log);
}

TEST_F(CheckTest, AHeaderThatIsDamaged) {
  WriteAt(DataPath(), 4, "\x01");
  const Outcome outcome = Kestdb({"check", "study"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(WithoutTrace(outcome.out), WithoutTrace(Logged([] { KFileCheck("study.ksb"); })));
  EXPECT_EQ(outcome.err, "kestdb: File corrupt\n");
}

TEST_F(CheckTest, AnOldVersionIsNoFault) {
  WriteAt(DataPath(), 24, "\xB8");
  EXPECT_EQ(Output({"check", "study"}), Logged([] { KFileCheck("study.ksb"); }));
}

TEST_F(CheckTest, TheCheckOnlyLooks) {
  WriteAt(DataPath(), 100, "?");
  const std::string data = ReadAll(DataPath());
  Kestdb({"check", "study"});
  Kestdb({"stats", "--walk", "study"});
  EXPECT_EQ(ReadAll(DataPath()), data);
}

TEST_F(CheckTest, Statistics) {
  EXPECT_EQ(Output({"stats", "study"}), Logged([] { KFileStats("study.ksb", false); }));
  const std::string walked = Logged([] { KFileStats("study.ksb", true); });
  EXPECT_NE(walked.find("Blocks: Used = 3 / Empty = 0 / Total = 3"), std::string::npos);
  EXPECT_EQ(Output({"stats", "--walk", "study"}), walked);
}

TEST_F(CheckTest, AnIndexThatFits) {
  const std::string log = Logged([] { KIndexRebuildCheck("study", false); });
  EXPECT_NE(log.find("1 CGPoint - GUI objects are OK"), std::string::npos);
  EXPECT_EQ(Output({"index-check", "study"}), log);
}

TEST_F(CheckTest, AnIndexThatLacksAKey) {
  const std::string index = ReadAll(IndexPath());
  Change([](POD* pod) {
    CInput input(pod);
    input.m_nID = 1;
    input.PutObject();
  });
  WriteAt(IndexPath(), 0, index);
  const Outcome outcome = Kestdb({"index-check", "study"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(WithoutTrace(outcome.out),
            WithoutTrace(Logged([] { KIndexRebuildCheck("study", false); })));
  EXPECT_EQ(outcome.err, "kestdb: Index file does not match the data file\n");
  EXPECT_EQ(NamesIn(folder.Path()), "study.ksb study.kx");
}

TEST_F(CheckTest, AnIndexThatIsNotThere) {
  std::filesystem::remove(IndexPath());
  EXPECT_EQ(Message({"index-check", "study"}, 1),
            "kestdb: study.kx does not exist; `kestdb rebuild-index` makes it\n");
  EXPECT_EQ(Message({"index-stats", "study"}, 1),
            "kestdb: study.kx does not exist; `kestdb rebuild-index` makes it\n");
  EXPECT_EQ(NamesIn(folder.Path()), "study.ksb");
}

TEST_F(CheckTest, StatisticsOfTheIndex) {
  const std::string log = Logged([] { KIndexStats("study", false); });
  EXPECT_NE(log.find("CGPoint - GUI, Tree (14)"), std::string::npos);
  EXPECT_EQ(Output({"index-stats", "study"}), log);
}

TEST_F(CheckTest, WrongUseAndMissingStudies) {
  for (const std::string command : {"check", "stats", "index-check", "index-stats"}) {
    EXPECT_EQ(Kestdb({command}).status, 2);
    EXPECT_EQ(Kestdb({command, "--faster", "study"}).status, 2);
    EXPECT_EQ(Message({command, "studi"}, 4), "kestdb: studi.ksb: No such file or directory\n");
  }
}
