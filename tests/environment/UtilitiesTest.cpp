#include "environment/Utilities.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/environment/ChangedVariable.h"
#include "tests/support/Bytes.h"
#include "tests/support/TempFolder.h"

namespace {

namespace fs = std::filesystem;

TEST(Utilities, SleepReturns) {
  COSUtil::mySleep(0);
  COSUtil::mySleep(1);
}

TEST(Utilities, LinuxIsNoWin9x) {
  EXPECT_FALSE(COSUtil::IsWin9x());
}

TEST(UserPath, IsTheVariablePATH) {
  const ChangedVariable variable("PATH", "/one:/two");
  EXPECT_EQ(COSUtil::GetUserPATH(), "/one:/two");
}

TEST(UserPath, IsEmptyWithoutTheVariable) {
  const ChangedVariable variable("PATH", std::nullopt);
  EXPECT_EQ(COSUtil::GetUserPATH(), "");
}

class FindProgram : public testing::Test {
 protected:
  void SetUp() override {
    fs::create_directory(folder / "subfolder");
    WriteBytes(folder / "program", "");
    fs::permissions(folder / "program", fs::perms::owner_all);
    WriteBytes(folder / "text", "");
    fs::permissions(folder / "text", fs::perms::owner_read);
  }

  TempFolder folder;
};

TEST_F(FindProgram, ByNameInAnyFolderOfThePath) {
  const std::string path = "/nowhere:" + folder.Path() + ":/elsewhere";
  EXPECT_TRUE(COSUtil::FindExeInStringPATH("program", path));
  EXPECT_FALSE(COSUtil::FindExeInStringPATH("another", path));
  EXPECT_FALSE(COSUtil::FindExeInStringPATH("program", "/nowhere:/elsewhere"));
}

TEST_F(FindProgram, OnlyAmongFilesThatCanBeRun) {
  EXPECT_FALSE(COSUtil::FindExeInStringPATH("text", folder.Path()));
  EXPECT_FALSE(COSUtil::FindExeInStringPATH("subfolder", folder.Path()));
}

TEST_F(FindProgram, ByItsOwnPathWhateverTheFolders) {
  EXPECT_TRUE(COSUtil::FindExeInStringPATH(folder / "program", ""));
  EXPECT_FALSE(COSUtil::FindExeInStringPATH(folder / "another", folder.Path()));
}

TEST_F(FindProgram, AnEmptyFolderIsTheCurrentOne) {
  const fs::path old = fs::current_path();
  fs::current_path(folder.Path());
  EXPECT_TRUE(COSUtil::FindExeInStringPATH("program", ""));
  EXPECT_TRUE(COSUtil::FindExeInStringPATH("program", "/nowhere:"));
  EXPECT_FALSE(COSUtil::FindExeInStringPATH("program", "/nowhere"));
  fs::current_path(old);
}

TEST_F(FindProgram, NoNameIsNoProgram) {
  EXPECT_FALSE(COSUtil::FindExeInStringPATH("", folder.Path()));
}

TEST(IsASCII, EveryByteIsBelow128) {
  EXPECT_TRUE(CKUtil::IsASCII(""));
  EXPECT_TRUE(CKUtil::IsASCII("study_1.ksb"));
  EXPECT_TRUE(CKUtil::IsASCII(std::string("\0\x7f", 2)));
  EXPECT_FALSE(CKUtil::IsASCII("\x80"));
  EXPECT_FALSE(CKUtil::IsASCII("stud\xc3\xbf"));
}

TEST(TrimFileName, KeepsTheEnd) {
  EXPECT_EQ(CKUtil::TrimFileName("/home/user/analyze.exe", 11), "analyze.exe");
}

TEST(TrimFileName, KeepsAShortNameWhole) {
  EXPECT_EQ(CKUtil::TrimFileName("dvar.kef", 8), "dvar.kef");
  EXPECT_EQ(CKUtil::TrimFileName("dvar.kef", 53), "dvar.kef");
  EXPECT_EQ(CKUtil::TrimFileName("", 53), "");
}

TEST(TrimFileName, KeepsNothingOfNoLength) {
  EXPECT_EQ(CKUtil::TrimFileName("dvar.kef", 0), "");
  EXPECT_EQ(CKUtil::TrimFileName("dvar.kef", -1), "");
}

}  // namespace
