#include <sqlite3.h>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>
#include <limits>

#include "tests/tools/ToolStudy.h"

class ExportTest : public ToolStudy {
 protected:
  ExportTest() { Fill(); }

  /// What `export` with these options makes, where it makes it without a word.
  std::string Exported(const std::string& format, const std::vector<std::string>& options) const {
    std::vector<std::string> arguments{"export", "--format", format, "--output",
                                       "file",   "--force",  "study"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    EXPECT_EQ(Output(arguments), "");
    EXPECT_EQ(NamesIn(folder.Path()), "file study.ksb study.kx");
    return ReadAll(folder / "file");
  }

  /// The rows that a query gives: columns with bars between them, lines for rows.
  std::string Query(const std::string& text) const {
    sqlite3* database = nullptr;
    sqlite3_open_v2((folder / "file").c_str(), &database, SQLITE_OPEN_READONLY, nullptr);
    std::string rows;
    const auto take = [](void* all, int columns, char** values, char**) {
      auto& taken = *static_cast<std::string*>(all);
      for (int i = 0; i < columns; ++i) {
        taken += std::string(i > 0 ? "|" : "") + (values[i] == nullptr ? "NULL" : values[i]);
      }
      taken += '\n';
      return 0;
    };
    char* error = nullptr;
    EXPECT_EQ(sqlite3_exec(database, text.c_str(), take, &rows, &error), SQLITE_OK) << error;
    sqlite3_free(error);
    sqlite3_close(database);
    return rows;
  }

  /// How an export ends that gets a signal on its way. One that was done before is tried again.
  int StatusWhenSignalled(int signal) const {
    int status = 0;
    for (int i = 0; i < 50 && status == 0; ++i) {
      std::filesystem::remove(folder / "file");
      RunningProgram program(folder.Path(), {"export", "--format", "json", "--task", "1",
                                             "--output", "file", "study"});
      RunningProgram::Await([this] { return NamesIn(folder.Path()).starts_with("file"); });
      program.Signal(signal);
      status = program.AwaitEnd();
    }
    return status;
  }

  /// Values that are easily lost.
  void PutOddValues() const {
    Change([](POD* pod) {
      const double inf = std::numeric_limits<double>::infinity();
      CGPoint points(pod);
      points.GetObject();
      points.m_vDVars = {{std::numeric_limits<double>::quiet_NaN(), inf}, {-inf, -0.0}};
      points.m_vResps = {{5e-324}, {1.7976931348623157e308}};
      points.PutObject();
    });
  }
};

TEST_F(ExportTest, TheUsersPointsAsCsv) {
  EXPECT_EQ(Exported("csv", {}),
            "point,used,run,locked,width,kind,mass\n"
            "1,1,1,0,0.1,2,7.5\n"
            "2,0,1,1,1e-300,3,\n");
}

TEST_F(ExportTest, ThePointsOfATaskAsCsv) {
  EXPECT_EQ(Exported("csv", {"--task", "1"}),
            "point,flag,kind,width,mass\n"
            "0,0,2,0.30000000000000004,7.5\n"
            "1,0,2,0.25,\n");
}

TEST_F(ExportTest, DefinitionsAsCsv) {
  EXPECT_EQ(Exported("csv", {"--what", "inputs"}),
            "id,name,type,size,place,lower,upper,initial,goal,target,text\n"
            "1,width,independent,1,1,0.1,,0.30000000000000004,,,\n"
            "2,kind,constant,1,2,,,0,,,\"of \"\"steel\"\", or not\"\n");
  EXPECT_EQ(Exported("csv", {"--what", "responses"}),
            "id,name,type,size,place,lower,upper,goal,target,text\n"
            "3,mass,independent,1,1,,12.5,minimise,,\n");
}

TEST_F(ExportTest, IterationsAsCsv) {
  Change([](POD* pod) {
    CIter iter(pod);
    iter.m_nTaskID = 1;
    iter.m_nIter = 1;
    iter.m_nSubIter = 2;
    iter.m_nThisPoint = 1;
    iter.m_ParetoPoints = {0, 1};
    iter.m_ParetoValues = {0.1, 2.0, 0.3, 4.0};
    iter.PutObject();
  });
  EXPECT_EQ(Exported("csv", {"--what", "iterations", "--task", "1"}),
            "iteration,sub_iteration,point,objective,worst_constraint,best_point,best_objective,"
            "best_constraint,pareto_points,pareto_values\n"
            "0,0,0,7.5,-0.4,0,7.5,-0.4,,\n"
            "1,2,1,0,0,0,0,0,0 1,0.1 2 0.3 4\n");
}

TEST_F(ExportTest, NumbersThatAreNoneInCsv) {
  PutOddValues();
  EXPECT_EQ(Exported("csv", {}),
            "point,used,run,locked,width,kind,mass\n"
            "1,1,1,0,nan,inf,5e-324\n"
            "2,0,1,1,-inf,-0,1.7976931348623157e+308\n");
}

TEST_F(ExportTest, AllTablesAsJson) {
  EXPECT_EQ(Exported("json", {"--task", "1"}),
            "{\n"
            "  \"inputs\": [\n"
            "    {\"id\": 1, \"name\": \"width\", \"type\": \"independent\", \"size\": 1, "
            "\"place\": 1, \"lower\": 0.1, \"upper\": null, \"initial\": 0.30000000000000004, "
            "\"goal\": null, \"target\": null, \"text\": \"\"},\n"
            "    {\"id\": 2, \"name\": \"kind\", \"type\": \"constant\", \"size\": 1, "
            "\"place\": 2, \"lower\": null, \"upper\": null, \"initial\": 0, "
            "\"goal\": null, \"target\": null, \"text\": \"of \\\"steel\\\", or not\"}\n"
            "  ],\n"
            "  \"responses\": [\n"
            "    {\"id\": 3, \"name\": \"mass\", \"type\": \"independent\", \"size\": 1, "
            "\"place\": 1, \"lower\": null, \"upper\": 12.5, \"goal\": \"minimise\", "
            "\"target\": null, \"text\": \"\"}\n"
            "  ],\n"
            "  \"points\": [\n"
            "    {\"point\": 0, \"flag\": 0, \"kind\": 2, \"width\": 0.30000000000000004, "
            "\"mass\": 7.5},\n"
            "    {\"point\": 1, \"flag\": 0, \"kind\": 2, \"width\": 0.25, \"mass\": null}\n"
            "  ],\n"
            "  \"iterations\": [\n"
            "    {\"iteration\": 0, \"sub_iteration\": 0, \"point\": 0, \"objective\": 7.5, "
            "\"worst_constraint\": -0.4, \"best_point\": 0, \"best_objective\": 7.5, "
            "\"best_constraint\": -0.4, \"pareto_points\": null, \"pareto_values\": null}\n"
            "  ]\n"
            "}\n");
}

TEST_F(ExportTest, NumbersThatAreNoneAndOddNamesInJson) {
  PutOddValues();
  Change([](POD* pod) {
    CInput input(pod);
    input.m_nID = 1;
    input.GetObject();
    input.m_strName = "\xFF\xC3\xA4\t\x01\\";
    input.PutObject();
  });
  const std::string name = "\"\xEF\xBF\xBD\xC3\xA4\\t\\u0001\\\\\"";
  EXPECT_EQ(Exported("json", {"--what", "points"}),
            "{\n"
            "  \"points\": [\n"
            "    {\"point\": 1, \"used\": 1, \"run\": 1, \"locked\": 0, " +
                name +
                ": \"NaN\", \"kind\": \"Infinity\", \"mass\": 5e-324},\n"
                "    {\"point\": 2, \"used\": 0, \"run\": 1, \"locked\": 1, " +
                name +
                ": \"-Infinity\", \"kind\": -0, \"mass\": 1.7976931348623157e+308}\n"
                "  ]\n"
                "}\n");
}

TEST_F(ExportTest, AllTablesAsSqlite) {
  Exported("sqlite", {"--task", "1"});
  EXPECT_EQ(Query("SELECT name FROM sqlite_schema ORDER BY name"),
            "inputs\niterations\npoints\nresponses\n");
  EXPECT_EQ(Query("SELECT * FROM points"),
            "0|0|2.0|0.3|7.5\n"
            "1|0|2.0|0.25|NULL\n");
  EXPECT_EQ(Query("SELECT width = 0.30000000000000004, typeof(width), typeof(flag) FROM points"),
            "1|real|integer\n0|real|integer\n");
  EXPECT_EQ(Query("SELECT name, lower, upper, text FROM inputs"),
            "width|0.1|NULL|\n"
            "kind|NULL|NULL|of \"steel\", or not\n");
  EXPECT_EQ(Query("SELECT name, upper, goal FROM responses"), "mass|12.5|minimise\n");
  EXPECT_EQ(Query("SELECT iteration, objective FROM iterations"), "0|7.5\n");
}

TEST_F(ExportTest, NumbersThatAreNoneInSqlite) {
  PutOddValues();
  Exported("sqlite", {"--what", "points,inputs"});
  EXPECT_EQ(Query("SELECT width, typeof(width), kind, typeof(kind) FROM points"),
            "nan|text|Inf|real\n"
            "-Inf|real|0.0|real\n");
  EXPECT_EQ(Query("SELECT mass = 5e-324 FROM points WHERE point = 1"), "1\n");
}

TEST_F(ExportTest, NamesThatAreTakenGetANumber) {
  Change([](POD* pod) {
    CInput input(pod);
    input.m_nID = 1;
    input.GetObject();
    input.m_strName = "Point";
    input.PutObject();
    input.m_nID = 2;
    input.m_strName = "a \"b\", c";
    input.PutObject();
  });
  EXPECT_EQ(Exported("csv", {}).substr(0, 50),
            "point,used,run,locked,Point_2,\"a \"\"b\"\", c\",mass\n1,");
  Exported("sqlite", {});
  EXPECT_EQ(Query("SELECT \"Point_2\", \"a \"\"b\"\", c\" FROM points WHERE point = 1"),
            "0.1|2.0\n");
}

TEST_F(ExportTest, KeepsAFileThatIsThere) {
  Exported("csv", {});
  const std::string before = ReadAll(folder / "file");
  EXPECT_EQ(Message({"export", "--format", "json", "--output", "file", "study"}, 4),
            "kestdb: file exists already; --force replaces it\n");
  EXPECT_EQ(ReadAll(folder / "file"), before);
}

TEST_F(ExportTest, TheFileHasTheUsualPermissions) {
  const mode_t mask = umask(022);
  Exported("csv", {});
  umask(mask);
  struct stat status;
  ASSERT_EQ(stat((folder / "file").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0644U);
}

TEST_F(ExportTest, WrongUse) {
  EXPECT_EQ(
      Message({"export", "--format", "csv", "--what", "iterations", "--output", "f", "study"}, 2),
      "kestdb: iterations are those of a task: choose one with --task\n");
  EXPECT_EQ(
      Message({"export", "--format", "csv", "--what", "inputs,points", "--output", "f", "study"},
              2),
      "kestdb: a CSV file holds one table: choose one with --what\n");
  EXPECT_EQ(Message({"export", "--format", "csv", "--task", "9", "--output", "f", "study"}, 2),
            "kestdb: study.ksb has no task 9\n");
  EXPECT_EQ(Kestdb({"export", "--format", "xls", "--output", "f", "study"}).status, 2);
  EXPECT_EQ(Kestdb({"export", "--format", "csv", "study"}).status, 2);
  EXPECT_EQ(Kestdb({"export", "--format", "csv", "--what", "all", "--output", "f", "study"}).status,
            2);
  EXPECT_EQ(Message({"export", "--format", "csv", "--output", "nowhere/f", "study"}, 4),
            "kestdb: nowhere/f: No such file or directory\n");
  EXPECT_EQ(Message({"export", "--format", "csv", "--output", "f", "studi"}, 4),
            "kestdb: studi.ksb: No such file or directory\n");
  EXPECT_EQ(NamesIn(folder.Path()), "study.ksb study.kx");
}

TEST_F(ExportTest, ADamagedObjectLeavesNoFile) {
  WriteAt(DataPath(), AddressOf<CInput>() + 36, "?");
  EXPECT_EQ(Message({"export", "--format", "json", "--output", "f", "study"}, 1),
            "kestdb: Checksum error\n");
  EXPECT_EQ(NamesIn(folder.Path()), "study.ksb study.kx");
}

TEST_F(ExportTest, ASignalLeavesTheStudyUnlockedAndNoFile) {
  Change([](POD* pod) {
    const CLock lock(pod, 0);
    CDPoint point(pod);
    point.m_nTaskID = 1;
    point.m_IDVar = std::valarray<double>(1.0 / 3.0, 2000);
    for (int i = 2; i < 5000; ++i) {
      point.m_nPointID = i;
      point.WriteObject(false);
    }
  });
  for (const int signal : {SIGINT, SIGTERM}) {
    EXPECT_EQ(StatusWhenSignalled(signal), 128 + signal);
    EXPECT_EQ(NamesIn(folder.Path()), "study.ksb study.kx");
  }
  EXPECT_EQ(Kestdb({"check", "study"}).status, 0);
  EXPECT_EQ(Kestdb({"index-check", "study"}).status, 0);
}
