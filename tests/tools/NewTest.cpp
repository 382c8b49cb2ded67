#include <filesystem>

#include "tests/tools/ToolStudy.h"

class NewTest : public testing::Test {
 protected:
  Outcome Kestdb(const std::vector<std::string>& arguments) const {
    return RunProgram(folder.Path(), arguments);
  }
  TempFolder folder;
};

TEST_F(NewTest, MakesAStudy) {
  const Outcome outcome = Kestdb({"new", "beam"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, "Made beam.ksb and beam.kx\n");
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(NamesIn(folder.Path()), "beam.ksb beam.kx");
  EXPECT_EQ(Kestdb({"check", "beam"}).status, 0);
}

TEST_F(NewTest, RefusesAnExistingOne) {
  Kestdb({"new", "beam.ksb"});
  const std::string data = ReadAll(folder / "beam.ksb");
  const Outcome again = Kestdb({"new", "beam"});
  EXPECT_EQ(again.status, 4);
  EXPECT_EQ(again.err, "kestdb: beam.ksb exists already\n");
  EXPECT_EQ(ReadAll(folder / "beam.ksb"), data);
}

TEST_F(NewTest, RefusesWhatIsLeftOfOne) {
  Kestdb({"new", "beam"});
  std::filesystem::remove(folder / "beam.ksb");
  EXPECT_EQ(Kestdb({"new", "beam"}).err, "kestdb: beam.kx exists already\n");
  std::filesystem::rename(folder / "beam.kx", folder / "beam.ksb.new");
  EXPECT_EQ(Kestdb({"new", "beam"}).err, "kestdb: beam.ksb.new exists already\n");
  std::filesystem::remove(folder / "beam.ksb.new");
  std::filesystem::create_directory(folder / "beam.lck");
  EXPECT_EQ(Kestdb({"new", "beam"}).err, "kestdb: beam.lck exists already\n");
  EXPECT_EQ(NamesIn(folder.Path()), "beam.lck");
}

TEST_F(NewTest, WrongUseAndMissingFolders) {
  EXPECT_EQ(Kestdb({"new"}).status, 2);
  const Outcome nowhere = Kestdb({"new", "nowhere/beam"});
  EXPECT_EQ(nowhere.status, 4);
  EXPECT_EQ(nowhere.err, "kestdb: nowhere: No such file or directory\n");
  EXPECT_EQ(Kestdb({"new", "b\xC3\xA4r"}).status, 2) << "names are ASCII";
  EXPECT_EQ(NamesIn(folder.Path()), "");
}
