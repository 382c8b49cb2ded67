#include "tests/tools/ToolStudy.h"

class TaskCommandsTest : public ToolStudy {
 protected:
  TaskCommandsTest() { Fill(); }

  template <class Value>
  Value OfTask(int id, Value (*value)(const CTask&)) const {
    Value result{};
    Change([&](POD* pod) {
      CTask task(pod);
      task.m_nID = id;
      EXPECT_TRUE(task.GetObject());
      result = value(task);
    });
    return result;
  }
  std::string TitleOf(int id) const {
    return OfTask<std::string>(id, [](const CTask& task) { return task.m_strTitle; });
  }
  double WidthOfFirstPoint(int id) const {
    double width = 0.0;
    Change([&](POD* pod) {
      CDPoint point(pod);
      point.m_nTaskID = id;
      EXPECT_TRUE(point.GetObject());
      width = point.m_IDVar[0];
    });
    return width;
  }
};

TEST_F(TaskCommandsTest, RestartsFromTheBestPoint) {
  EXPECT_EQ(Output({"restart", "--task", "1", "study"}), "Made task 2 from task 1\n");
  EXPECT_EQ(TitleOf(2), "first run");
  EXPECT_EQ(WidthOfFirstPoint(2), 0.30000000000000004);
  EXPECT_EQ(OfTask<long>(2, [](const CTask& task) { return long{task.m_nRestartOf}; }), 0);
}

TEST_F(TaskCommandsTest, RestartsFromAPointUnderAnotherTitle) {
  EXPECT_EQ(Output({"restart", "--task", "1", "--point", "1", "--title", "second run", "--link",
                    "--single-start", "study"}),
            "Made task 2 from task 1\n");
  EXPECT_EQ(TitleOf(2), "second run");
  EXPECT_EQ(WidthOfFirstPoint(2), 0.25);
  EXPECT_EQ(OfTask<long>(2, [](const CTask& task) { return long{task.m_nRestartOf}; }), 1);
  EXPECT_EQ(OfTask<long>(1, [](const CTask& task) { return long{task.m_vnRestarts.at(0)}; }), 2);
}

TEST_F(TaskCommandsTest, ADesignOfExperimentsIsNotRestarted) {
  Change([](POD* pod) {
    CTask task(pod);
    task.m_nID = 1;
    task.GetObject();
    task.m_nType = 2;
    task.PutObject();
  });
  EXPECT_EQ(Message({"restart", "--task", "1", "study"}, 2),
            "kestdb: Task could not be created - data error found\n");
}

TEST_F(TaskCommandsTest, RemovesATaskWithAllItsRecords) {
  EXPECT_EQ(Output({"remove-task", "--task", "1", "study"}), "Removed task 1\n");
  EXPECT_EQ(Output({"info", "study"}).find("CDPoint"), std::string::npos);
  EXPECT_EQ(Message({"remove-task", "--task", "1", "study"}, 2),
            "kestdb: study.ksb has no task 1\n");
}

TEST_F(TaskCommandsTest, RemovesChildrenOnlyWhenAskedTo) {
  Change([](POD* pod) {
    CTask task(pod);
    task.m_nID = 1;
    task.GetObject();
    task.m_vnChildren = {2};
    task.PutObject();
    task.m_nID = 2;
    task.m_nParent = 1;
    task.m_vnChildren = {};
    task.PutObject();
  });
  const std::string data = ReadAll(DataPath());
  EXPECT_EQ(Message({"remove-task", "--task", "1", "study"}, 2),
            "kestdb: task 1 has children: --with-children removes them too\n");
  EXPECT_EQ(ReadAll(DataPath()), data);
  EXPECT_EQ(Output({"remove-task", "--task", "1", "--with-children", "study"}), "Removed task 1\n");
  EXPECT_EQ(Output({"list", "tasks", "study"}),
            "task  type  title  status  points  best  parent  created\n");
}

TEST_F(TaskCommandsTest, WrongUse) {
  EXPECT_EQ(Message({"restart", "--task", "9", "study"}, 2), "kestdb: study.ksb has no task 9\n");
  EXPECT_EQ(Message({"restart", "--task", "1", "--point", "7", "study"}, 2),
            "kestdb: task 1 has no point 7\n");
  for (const std::string command : {"restart", "remove-task"}) {
    EXPECT_EQ(Kestdb({command, "study"}).status, 2) << "which task?";
    EXPECT_EQ(Message({command, "--task", "1", "studi"}, 4),
              "kestdb: studi.ksb: No such file or directory\n");
  }
}

TEST_F(TaskCommandsTest, ADamagedTaskIsAFault) {
  WriteAt(DataPath(), AddressOf<CTask>() + 36, "?");
  EXPECT_EQ(Message({"restart", "--task", "1", "study"}, 1), "kestdb: Checksum error\n");
  EXPECT_EQ(Message({"remove-task", "--task", "1", "study"}, 1), "kestdb: Checksum error\n");
}
