#include <sys/stat.h>

#include <chrono>
#include <csignal>
#include <ctime>
#include <filesystem>

#include "tests/tools/ToolStudy.h"

// What the program does about a lock that it can't have.

class LockedTest : public ToolStudy {
 protected:
  void MakeLock() const { std::filesystem::create_directory(LockPath()); }
  std::string Since() const {
    struct stat status;
    stat(LockPath().c_str(), &status);
    char text[64];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", std::localtime(&status.st_mtime));
    return text;
  }
  std::string Refusal() const {
    return "kestdb: the study is locked since " + Since() +
           " (study.lck); --wait SECONDS waits for it, `kestdb unlock --directory` takes away the "
           "lock of a process that died\n";
  }
};

TEST_F(LockedTest, EveryCommandButUnlockAndInfoRefusesAtOnce) {
  MakeLock();
  const std::vector<std::vector<std::string>> commands{
      {"list", "tasks", "study"},
      {"report", "inputs", "study"},
      {"check", "study"},
      {"stats", "study"},
      {"index-check", "study"},
      {"index-stats", "study"},
      {"rebuild", "--yes", "study"},
      {"rebuild-index", "study"},
      {"export", "--format", "csv", "--output", "points.csv", "study"},
      {"restart", "--task", "1", "study"},
      {"remove-task", "--task", "1", "study"},
      {"info", "--json", "study"},
  };
  for (const auto& command : commands) {
    EXPECT_EQ(Message(command, 3), Refusal()) << command[0];
  }
  EXPECT_EQ(NamesIn(folder.Path()), "study.ksb study.kx study.lck");
}

TEST_F(LockedTest, InfoShowsWhatCanBeToldFromOutside) {
  MakeLock();
  const Outcome outcome = Kestdb({"info", "study"});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(outcome.out,
            "Study        study\n"
            "Data file    1262 bytes, revision C, version 3001\n"
            "Index file   60940 bytes, revision C, version 3001\n"
            "Lock         locked since " +
                Since() + "\n");
  EXPECT_EQ(outcome.err, Refusal());
}

TEST_F(LockedTest, WaitsAsLongAsItIsTold) {
  MakeLock();
  const auto start = std::chrono::steady_clock::now();
  const Outcome outcome = Kestdb({"list", "tasks", "--wait", "0.3", "study"});
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(300));
  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(outcome.err,
            "kestdb: waiting for the lock study.lck, locked since " + Since() + "\n" + Refusal());
}

TEST_F(LockedTest, GoesOnWhenTheLockIsReleased) {
  MakeLock();
  const std::string waiting =
      "kestdb: waiting for the lock study.lck, locked since " + Since() + "\n";
  const std::string log = folder / "log";
  RunningProgram program(folder.Path(), {"list", "tasks", "--wait", "60", "study"}, log);
  RunningProgram::Await([&] { return ReadAll(log) == waiting; });
  std::filesystem::remove(LockPath());
  EXPECT_EQ(program.AwaitEnd(), 0);
  EXPECT_EQ(ReadAll(log), waiting + "task  type  title  status  points  best  parent  created\n");
}

TEST_F(LockedTest, ASignalEndsTheWait) {
  MakeLock();
  const std::string log = folder / "log";
  RunningProgram program(folder.Path(), {"info", "--wait", "100", "study"}, log);
  RunningProgram::Await([&] { return ReadAll(log).find("waiting") != std::string::npos; });
  program.Signal(SIGTERM);
  EXPECT_EQ(program.AwaitEnd(), 143);
  EXPECT_TRUE(ReadAll(log).ends_with("kestdb: interrupted\n"));
  EXPECT_TRUE(std::filesystem::exists(LockPath()));
}

// A link to nowhere can't be seen beforehand, but no directory can be made in its place.
TEST_F(LockedTest, TheLibraryDoesNotWaitLongForALockThatCannotBeMade) {
  std::filesystem::create_symlink("nowhere", LockPath());
  EXPECT_EQ(Message({"info", "study"}, 4),
            "kestdb: waiting for the lock study.lck, locked\n"
            "kestdb: the lock directory study.lck can't be made\n");
}

TEST_F(LockedTest, AFolderThatCannotBeWrittenToIsToldAtOnce) {
  namespace fs = std::filesystem;
  fs::permissions(DataPath(), fs::perms::all);
  fs::permissions(IndexPath(), fs::perms::all);
  fs::permissions(folder.Path(), static_cast<fs::perms>(0555));
  Outcome outcome;
  try {
    outcome = RunAsNobody(folder.Path(), {"info", "study"});
  } catch (const std::runtime_error& error) {
    fs::permissions(folder.Path(), fs::perms::all);
    GTEST_SKIP() << error.what() << ", and nothing is read-only to root";
  }
  fs::permissions(folder.Path(), fs::perms::all);
  EXPECT_EQ(outcome.status, 4);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err, "kestdb: .: Permission denied\n");
}

TEST_F(LockedTest, AFileThatCannotBeWrittenToIsToldAtOnce) {
  namespace fs = std::filesystem;
  fs::permissions(DataPath(), static_cast<fs::perms>(0444));
  fs::permissions(folder.Path(), static_cast<fs::perms>(0777));
  Outcome outcome;
  try {
    outcome = RunAsNobody(folder.Path(), {"info", "study"});
  } catch (const std::runtime_error& error) {
    GTEST_SKIP() << error.what() << ", and nothing is read-only to root";
  }
  EXPECT_EQ(outcome.status, 4);
  EXPECT_EQ(outcome.err, "kestdb: study.ksb: Permission denied\n");
}

TEST_F(LockedTest, UnlockTakesTheDirectoryAway) {
  MakeLock();
  EXPECT_EQ(Output({"unlock", "--directory", "study"}), "Removed the lock directory study.lck\n");
  EXPECT_EQ(NamesIn(folder.Path()), "study.ksb study.kx");
  EXPECT_EQ(Output({"unlock", "--directory", "study"}), "There is no lock directory study.lck\n");
}

TEST_F(LockedTest, UnlockClearsTheLockInTheHeaders) {
  WriteAt(DataPath(), 28, "\x07");
  WriteAt(IndexPath(), 36, "\x01");
  MakeLock();
  const Outcome outcome = Kestdb({"unlock", "--header", "study"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, "Cleared the lock in the headers of study\n");
  EXPECT_EQ(ReadAll(DataPath()).substr(28, 12), std::string(12, '\0'));
  EXPECT_EQ(ReadAll(IndexPath()).substr(28, 12), std::string(12, '\0'));
  EXPECT_TRUE(std::filesystem::exists(LockPath())) << "it was not asked for";
}

TEST_F(LockedTest, UnlockWantsToBeToldWhat) {
  MakeLock();
  EXPECT_EQ(Message({"unlock", "study"}, 2),
            "kestdb: unlock needs --header, --directory or both\n");
  EXPECT_EQ(Message({"unlock", "--directory", "studi"}, 4),
            "kestdb: studi.ksb: No such file or directory\n");
  EXPECT_EQ(NamesIn(folder.Path()), "study.ksb study.kx study.lck");
}

TEST_F(LockedTest, InfoTellsOfALockInTheHeader) {
  WriteAt(DataPath(), 28, "\x07");
  const std::string text = Output({"info", "study"});
  EXPECT_NE(text.find("Lock         the header has one of owner 7\n"), std::string::npos) << text;
}
