#include "tests/tools/ToolStudy.h"

// What all commands have in common.

class KestdbTest : public ToolStudy {};

TEST_F(KestdbTest, TellsItsVersions) {
  EXPECT_EQ(Output({"--version"}), "kestdb 6.21.0, file version 3001\n");
}

TEST_F(KestdbTest, HelpsWithEveryCommand) {
  const std::string all = Output({"--help"});
  for (const std::string command :
       {"info", "list", "report", "check", "stats", "index-check", "index-stats", "rebuild",
        "rebuild-index", "unlock", "new", "export", "restart", "remove-task"}) {
    EXPECT_NE(all.find("\n  " + command + " "), std::string::npos) << command;
    const std::string help = Output({command, "--help"});
    EXPECT_NE(help.find("Example"), std::string::npos) << command;
    EXPECT_NE(help.find("  kestdb " + command + " "), std::string::npos) << command;
  }
}

TEST_F(KestdbTest, WantsACommandThatItKnows) {
  EXPECT_EQ(Kestdb({}).status, 2);
  const Outcome unknown = Kestdb({"repair", "study"});
  EXPECT_EQ(unknown.status, 2);
  EXPECT_EQ(unknown.out, "");
  EXPECT_NE(unknown.err, "");
}

TEST_F(KestdbTest, IsColouredOnATerminalAlone) {
  const std::string bold =
      "\033[1mtask  type  title  status  points  best  parent  created\033[0m\r\n";
  EXPECT_EQ(RunOnTerminal(folder.Path(), {"list", "tasks", "study"}).out, bold);
  EXPECT_EQ(Output({"list", "tasks", "study"}),
            "task  type  title  status  points  best  parent  created\n");
  EXPECT_EQ(RunOnTerminal(folder.Path(), {"info", "studi"}).out,
            "\033[31mkestdb:\033[0m studi.ksb: No such file or directory\r\n");
}

TEST_F(KestdbTest, HeedsNoColor) {
  EXPECT_EQ(RunOnTerminal(folder.Path(), {"list", "tasks", "study"}, "", {"NO_COLOR=1"}).out,
            "task  type  title  status  points  best  parent  created\r\n");
  EXPECT_NE(RunOnTerminal(folder.Path(), {"list", "tasks", "study"}, "", {"NO_COLOR="})
                .out.find("\033[1m"),
            std::string::npos)
      << "set to nothing it is not set";
}

TEST_F(KestdbTest, ShowsItsProgressOnATerminalAlone) {
  Fill();
  Change([](POD* pod) {
    const CLock lock(pod, 0);
    CDPoint point(pod);
    point.m_nTaskID = 1;
    for (int i = 2; i < 1000; ++i) {
      point.m_nPointID = i;
      point.WriteObject(false);
    }
  });
  const std::string bar = "\r[########################################] 100%\r";
  const Outcome shown = RunOnTerminal(
      folder.Path(), {"export", "--format", "csv", "--task", "1", "--output", "f", "study"});
  EXPECT_EQ(shown.status, 0);
  EXPECT_NE(shown.out.find(bar), std::string::npos) << shown.out;
  EXPECT_EQ(Output({"export", "--format", "csv", "--task", "1", "--output", "g", "study"}), "");
}

TEST_F(KestdbTest, TellsWhenItsOutputCannotBeWritten) {
  RunningProgram program(folder.Path(), {"info", "study"}, "/dev/full");
  EXPECT_EQ(program.AwaitEnd(), 4);
  EXPECT_EQ(NamesIn(folder.Path()), "study.ksb study.kx");
}
