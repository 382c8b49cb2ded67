#include "tests/tools/ToolStudy.h"

class ListTest : public ToolStudy {
 protected:
  ListTest() { Fill(); }
};

TEST_F(ListTest, Tasks) {
  EXPECT_EQ(
      Output({"list", "tasks", "study"}),
      "task  type             title      status     points  best  parent  created\n"
      "   1  direct gradient  first run  completed       2  7.25  -       Sat Nov 21 12:00:00 2026\n");
}

TEST_F(ListTest, InputsWithTheirBounds) {
  EXPECT_EQ(
      Output({"list", "inputs", "study"}),
      "id  name   type         size  place  lower  upper              initial  goal  target  text\n"
      " 1  width  independent     1      1    0.1  -      0.30000000000000004  -     -\n"
      " 2  kind   constant        1      2  -      -                        0  -     -       "
      "of \"steel\", or not\n");
}

TEST_F(ListTest, Responses) {
  EXPECT_EQ(Output({"list", "responses", "study"}),
            "id  name  type         size  place  lower  upper  goal      target  text\n"
            " 3  mass  independent     1      1  -       12.5  minimise  -\n");
}

TEST_F(ListTest, TheUsersPoints) {
  EXPECT_EQ(Output({"list", "points", "study"}),
            "point  used  run  locked   width  kind  mass\n"
            "    1     1    1       0     0.1     2   7.5\n"
            "    2     0    1       1  1e-300     3  -\n");
}

TEST_F(ListTest, ThePointsOfATaskInTransferOrder) {
  EXPECT_EQ(Output({"list", "points", "--task", "1", "study"}),
            "point  flag  kind                width  mass\n"
            "    0     0     2  0.30000000000000004   7.5\n"
            "    1     0     2                 0.25  -\n");
}

TEST_F(ListTest, ForAProgram) {
  EXPECT_EQ(Output({"list", "points", "--json", "study"}),
            "{\n"
            "  \"points\": [\n"
            "    {\"point\": 1, \"used\": 1, \"run\": 1, \"locked\": 0, \"width\": 0.1, "
            "\"kind\": 2, \"mass\": 7.5},\n"
            "    {\"point\": 2, \"used\": 0, \"run\": 1, \"locked\": 1, \"width\": 1e-300, "
            "\"kind\": 3, \"mass\": null}\n"
            "  ]\n"
            "}\n");
}

TEST_F(ListTest, AnEmptyTableIsOneInJsonToo) {
  Change([](POD* pod) { CResp::RemoveResps(pod); });
  EXPECT_EQ(Output({"list", "responses", "--json", "study"}), "{\n  \"responses\": []\n}\n");
}

TEST_F(ListTest, ArraysHaveAColumnForEachElement) {
  Change([](POD* pod) {
    CInput input(pod);
    input.m_nID = 1;
    input.GetObject();
    input.m_uSize = 2;
    input.PutObject();
    CGPoint points(pod);
    points.GetObject();
    points.m_vDVars = {{1, 2, 3, 4}, {5}};
    points.PutObject();
  });
  EXPECT_EQ(Output({"list", "points", "study"}),
            "point  used  run  locked  width[1]  width[2]  kind  variable4  mass\n"
            "    1     1    1       0         1         2     3          4   7.5\n"
            "    2     0    1       1         5  -         -     -          -\n");
}

TEST_F(ListTest, ANameThatBreaksTheLineDoesNot) {
  Change([](POD* pod) {
    CTask task(pod);
    task.m_nID = 1;
    task.GetObject();
    task.m_strTitle = "two\nlines\033[31m";
    task.m_strCreated = "";
    task.PutObject();
  });
  EXPECT_EQ(Output({"list", "tasks", "study"}),
            "task  type             title           status     points  best  parent  created\n"
            "   1  direct gradient  two lines [31m  completed       2  7.25  -\n");
}

TEST_F(ListTest, TablesThatDoNotFitEachOtherAreAFault) {
  Change([](POD* pod) {
    CDVar vars(pod);
    vars.m_nID = 1;
    vars.GetObject();
    vars.m_vnSeq = {0, 7};
    vars.PutObject();
  });
  EXPECT_EQ(Message({"list", "points", "--task", "1", "study"}, 1),
            "kestdb: the tables of task 1 don't fit each other\n");
}

TEST_F(ListTest, ADamagedObjectIsAFault) {
  const long input = AddressOf<CInput>();
  WriteAt(DataPath(), input + 20, "?");
  EXPECT_EQ(Message({"list", "inputs", "study"}, 1), "kestdb: Checksum error\n");
  EXPECT_EQ(NamesIn(folder.Path()), "study.ksb study.kx") << "no lock stays behind";
}

TEST_F(ListTest, WrongUse) {
  EXPECT_EQ(Message({"list", "points", "--task", "2", "study"}, 2),
            "kestdb: study.ksb has no task 2\n");
  EXPECT_EQ(Message({"list", "inputs", "--task", "1", "study"}, 2),
            "kestdb: --task is for points\n");
  EXPECT_EQ(Kestdb({"list", "wishes", "study"}).status, 2);
  EXPECT_EQ(Kestdb({"list", "points", "--task", "0", "study"}).status, 2);
  EXPECT_EQ(Kestdb({"list", "points"}).status, 2);
  EXPECT_EQ(Message({"list", "points", "studi"}, 4),
            "kestdb: studi.ksb: No such file or directory\n");
}
