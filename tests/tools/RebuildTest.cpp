#include <filesystem>

#include "tests/tools/ToolStudy.h"

class RebuildTest : public ToolStudy {
 protected:
  RebuildTest() {
    Fill();
    Change([](POD* pod) {
      CInput input(pod);
      input.m_nID = 77;
      input.m_strText = std::string(5000, 'x');
      input.PutObject();
      input.RemoveObject();
    });
  }

  std::string Announcement() const {
    return "kestdb: rebuild puts a compact copy of study.ksb (" +
           std::to_string(std::filesystem::file_size(DataPath())) +
           " bytes) in its place, without what can't be read any more, and makes a new index "
           "study.kx\n";
  }
  void ExpectSound() const {
    EXPECT_EQ(Kestdb({"check", "study"}).status, 0);
    EXPECT_EQ(Kestdb({"index-check", "study"}).status, 0);
    EXPECT_EQ(NamesIn(folder.Path()), "study.ksb study.kx");
  }
};

TEST_F(RebuildTest, MakesBothFilesAnew) {
  const auto before = std::filesystem::file_size(DataPath());
  const std::string points = Output({"list", "points", "--task", "1", "study"});
  const std::string announcement = Announcement();
  const Outcome outcome = Kestdb({"rebuild", "--yes", "study"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, announcement);
  const std::string data = "***** Start -- Rebuild Data File *****\nFile name: study.ksb\n";
  const std::string index = "***** Start -- Rebuild Index File *****\nFile name: study\n";
  EXPECT_NE(outcome.out.find(data), std::string::npos) << outcome.out;
  EXPECT_LT(outcome.out.find(data), outcome.out.find(index));
  EXPECT_NE(outcome.out.find("0 unrecoverable blocks were found\n"), std::string::npos);
  EXPECT_LT(std::filesystem::file_size(DataPath()), before - 5000);
  EXPECT_EQ(Output({"list", "points", "--task", "1", "study"}), points);
  ExpectSound();
}

TEST_F(RebuildTest, ChangesNothingWithoutConsent) {
  const std::string data = ReadAll(DataPath());
  EXPECT_EQ(Message({"rebuild", "study"}, 2),
            Announcement() + "kestdb: rebuild changes the study: say --yes\n");
  EXPECT_EQ(ReadAll(DataPath()), data);
}

TEST_F(RebuildTest, AsksAtATerminal) {
  const std::string data = ReadAll(DataPath());
  const Outcome refused = RunOnTerminal(folder.Path(), {"rebuild", "study"}, "n\n");
  EXPECT_EQ(refused.status, 2);
  EXPECT_NE(refused.out.find("Go on? [y/N] "), std::string::npos) << refused.out;
  EXPECT_NE(refused.out.find("nothing was changed"), std::string::npos) << refused.out;
  EXPECT_EQ(ReadAll(DataPath()), data);

  EXPECT_EQ(RunOnTerminal(folder.Path(), {"rebuild", "study"}, "y\n").status, 0);
  EXPECT_LT(ReadAll(DataPath()).size(), data.size());
  ExpectSound();
}

TEST_F(RebuildTest, ASignalEndsTheQuestion) {
  const std::string data = ReadAll(DataPath());
  const Outcome outcome = RunOnTerminal(folder.Path(), {"rebuild", "study"}, "\x03");
  EXPECT_EQ(outcome.status, 1002);
  EXPECT_EQ(ReadAll(DataPath()), data);
}

TEST_F(RebuildTest, SavesWhatIsWholeInADamagedFile) {
  const std::string inputs = Output({"list", "inputs", "study"});
  WriteAt(DataPath(), AddressOf<CRDOE>() - 28, "?");  // its check word
  const Outcome outcome = Kestdb({"rebuild", "--yes", "study"});
  EXPECT_EQ(outcome.status, 0) << outcome.out;
  EXPECT_EQ(Output({"list", "inputs", "study"}), inputs);
  EXPECT_EQ(Kestdb({"report", "design", "--task", "1", "study"}).status, 2) << "it is lost";
  ExpectSound();
}

TEST_F(RebuildTest, TellsOfAnObjectThatMayBeCorrupt) {
  WriteAt(DataPath(), AddressOf<CInput>() + 36, "?");
  const Outcome outcome = Kestdb({"rebuild", "--yes", "study"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.out.find("This object may be corrupt.\n"), std::string::npos) << outcome.out;
  ExpectSound();
}

TEST_F(RebuildTest, RefusesWhatIsNoStudy) {
  WriteAt(DataPath(), 16, "X");
  const std::string data = ReadAll(DataPath());
  const Outcome outcome = Kestdb({"rebuild", "--yes", "study"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, Announcement() + "kestdb: Wrong file type\n");
  EXPECT_EQ(ReadAll(DataPath()), data);
  EXPECT_EQ(NamesIn(folder.Path()), "study.ksb study.kx");
}

TEST_F(RebuildTest, LeavesAnOldStudyToTheUpgrade) {
  WriteAt(DataPath(), 24, "\xB8");
  EXPECT_EQ(Message({"rebuild", "--yes", "study"}, 4),
            "kestdb: study.ksb is of an older version; `kestdb info --upgrade` rebuilds it and "
            "brings it up to date\n");
}

TEST_F(RebuildTest, WrongUseAndMissingStudies) {
  for (const std::string command : {"rebuild", "rebuild-index"}) {
    EXPECT_EQ(Kestdb({command}).status, 2);
    EXPECT_EQ(Message({command, "studi"}, 4), "kestdb: studi.ksb: No such file or directory\n");
  }
}

TEST_F(RebuildTest, MakesAnIndexThatIsNotThere) {
  std::filesystem::remove(IndexPath());
  const std::string log = Output({"rebuild-index", "study"});
  EXPECT_NE(log.find("\t2 CInput - GUI objects indexed\n"), std::string::npos) << log;
  ExpectSound();
}

TEST_F(RebuildTest, MakesAnIndexThatFits) {
  const std::string index = ReadAll(IndexPath());
  Change([](POD* pod) {
    CInput input(pod);
    input.m_nID = 5;
    input.PutObject();
  });
  WriteAt(IndexPath(), 0, index);
  Output({"rebuild-index", "study"});
  ExpectSound();
  const std::string inputs = Output({"list", "inputs", "study"});
  EXPECT_NE(inputs.find("\n 5 "), std::string::npos) << inputs;
}

TEST_F(RebuildTest, GivesTheOldIndexBackWhenTheNewOneFails) {
  WriteAt(DataPath(), AddressOf<CInput>() + 36, "?");
  const std::string index = ReadAll(IndexPath());
  const Outcome outcome = Kestdb({"rebuild-index", "study"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "kestdb: Checksum error\n");
  EXPECT_TRUE(outcome.out.ends_with("study.kx.old was put back to study.kx\n")) << outcome.out;
  EXPECT_EQ(ReadAll(IndexPath()), index);
  EXPECT_EQ(NamesIn(folder.Path()), "study.ksb study.kx");
}
