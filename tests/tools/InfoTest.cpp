#include <filesystem>

#include "tests/tools/ToolStudy.h"

class InfoTest : public ToolStudy {};

const std::string kFreshInfo =
    "Study        study\n"
    "Data file    1262 bytes, revision C, version 3001\n"
    "Index file   60940 bytes, revision C, version 3001\n"
    "Free space   0 bytes in 0 blocks\n"
    "Lock         free\n"
    "Objects           1 CGPoint\n"
    "                  1 CDBControl\n"
    "                  1 CDesignControl\n";

TEST_F(InfoTest, ShowsAFreshStudy) {
  EXPECT_EQ(Output({"info", "study"}), kFreshInfo);
}

TEST_F(InfoTest, TakesANameWithItsExtension) {
  EXPECT_EQ(Output({"info", "study.ksb"}), kFreshInfo);
}

TEST_F(InfoTest, ShowsTasksWithTheirBestValue) {
  Change([](POD* pod) {
    CTask task(pod);
    task.m_nID = 3;
    task.m_nType = 3;
    task.PutObject();
    CResult result(pod);
    result.m_nID = 3;
    result.m_nRunStatus = 4;
    result.m_fBestObjective = 0.1;
    result.PutObject();
    task.m_nID = 12;
    task.m_nType = 4;
    task.PutObject();
  });
  const std::string text = Output({"info", "study"});
  EXPECT_EQ(text.substr(text.find("Task ")),
            "Task 3       non-gradient, terminated, best 0.1\n"
            "Task 12      analysis, no result\n");
}

TEST_F(InfoTest, KeepsManyTasksToOneScreen) {
  Change([](POD* pod) {
    const CLock lock(pod, 0);
    for (int id = 1; id <= 12; ++id) {
      CTask task(pod);
      task.m_nID = id;
      task.PutObject();
    }
  });
  const std::string text = Output({"info", "study"});
  EXPECT_EQ(text.substr(text.find("Task 10")),
            "Task 10      direct gradient, no result\n"
            "2 tasks more: kestdb list tasks STUDY\n");
}

TEST_F(InfoTest, TellsAProgramInJson) {
  Change([](POD* pod) {
    CTask task(pod);
    task.m_nID = 1;
    task.m_strTitle = "a \"b\"";
    task.PutObject();
    task.RemoveObject();
    task.PutObject();
  });
  const std::string bytes = std::to_string(std::filesystem::file_size(DataPath()));
  EXPECT_EQ(Output({"info", "--json", "study"}),
            "{\n"
            "  \"study\": \"study\",\n"
            "  \"data_file\": {\"bytes\": " +
                bytes +
                ", \"revision\": \"C\", \"version\": 3001},\n"
                "  \"index_file\": {\"bytes\": 60940, \"revision\": \"C\", \"version\": 3001},\n"
                "  \"free_list\": {\"blocks\": 0, \"bytes\": 0, \"broken\": false},\n"
                "  \"header_lock_owner\": 0,\n"
                "  \"objects\": {\"CTask\": 1, \"CGPoint\": 1, \"CDBControl\": 1, "
                "\"CDesignControl\": 1},\n"
                "  \"tasks\": [\n"
                "    {\"task\": 1, \"type\": \"direct gradient\", \"status\": \"no result\", "
                "\"best\": null, \"title\": \"a \\\"b\\\"\"}\n"
                "  ]\n"
                "}\n");
}

TEST_F(InfoTest, CountsFreeSpace) {
  Change([](POD* pod) { CGPoint(pod).RemoveObject(); });
  const std::string text = Output({"info", "study"});
  EXPECT_NE(text.find("Free space   0 bytes in 0 blocks\n"), std::string::npos)
      << "an open study takes the block again: " << text;
  Change([](POD* pod) {
    CInput input(pod);
    input.m_nID = 1;
    input.m_strText = std::string(500, 'x');
    input.PutObject();
    input.RemoveObject();
  });
  // 44 around the fields, 12 integers, 3 empty lists, 7 reals, texts of 5 and 504
  const std::string changed = Output({"info", "study"});
  EXPECT_NE(changed.find("Free space   669 bytes in 1 block\n"), std::string::npos) << changed;
}

TEST_F(InfoTest, FindsABrokenFreeList) {
  WriteAt(DataPath(), 0, std::string("\x29\0\0\0", 4));
  const std::string text = Output({"info", "study"}, 1);
  EXPECT_NE(text.find("Free space   the free list is broken\n"), std::string::npos) << text;
}

TEST_F(InfoTest, LeavesBothFilesAsTheyAre) {
  const std::string data = ReadAll(DataPath());
  const std::string index = ReadAll(IndexPath());
  Output({"info", "study"});
  EXPECT_EQ(ReadAll(DataPath()), data);
  EXPECT_EQ(ReadAll(IndexPath()), index);
  EXPECT_EQ(NamesIn(folder.Path()), "study.ksb study.kx");
}

TEST_F(InfoTest, NeverMakesAStudy) {
  EXPECT_EQ(Message({"info", "studi"}, 4), "kestdb: studi.ksb: No such file or directory\n");
  EXPECT_EQ(NamesIn(folder.Path()), "study.ksb study.kx");
}

TEST_F(InfoTest, TellsOfACopyThatARebuildLeft) {
  std::filesystem::rename(DataPath(), DataPath() + ".new");
  EXPECT_EQ(Message({"info", "study"}, 4),
            "kestdb: study.ksb does not exist, but study.ksb.new does: it is what an interrupted "
            "rebuild left, and may be the whole study; rename it to study.ksb\n");
}

TEST_F(InfoTest, RefusesAFolder) {
  std::filesystem::create_directory(folder / "other.ksb");
  EXPECT_EQ(Message({"info", "other"}, 4), "kestdb: other.ksb: not a file\n");
}

TEST_F(InfoTest, FindsAFileThatIsNoStudy) {
  WriteAt(DataPath(), 16, "X");
  EXPECT_EQ(Message({"info", "study"}, 1), "kestdb: Wrong file type\n");
}

TEST_F(InfoTest, RefusesAnOldStudyUnlessItMayBeUpgraded) {
  WriteAt(DataPath(), 24, "\xB8");
  const std::string data = ReadAll(DataPath());
  EXPECT_EQ(Message({"info", "study"}, 4),
            "kestdb: study.ksb is of version 3000; to open it brings it to version 3001 for good, "
            "which `kestdb info --upgrade` does\n");
  EXPECT_EQ(ReadAll(DataPath()), data);

  const Outcome upgraded = Kestdb({"info", "--upgrade", "study"});
  EXPECT_EQ(upgraded.status, 0);
  EXPECT_EQ(upgraded.out, kFreshInfo);
  EXPECT_EQ(Output({"info", "study"}), kFreshInfo);
}

TEST_F(InfoTest, WantsOneStudy) {
  EXPECT_EQ(Kestdb({"info"}).status, 2);
  EXPECT_EQ(Kestdb({"info", "study", "other"}).status, 2);
  EXPECT_EQ(Kestdb({"info", "--wait", "-1", "study"}).status, 2);
}
