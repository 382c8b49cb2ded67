#include <gtest/gtest.h>

#include "environment/Utilities.h"
#include "tests/environment/ChangedVariable.h"
#include "tests/support/Bytes.h"
#include "tests/support/TempFolder.h"

namespace {

/// The value of "LockTimeOut" in an init file of that text; "(none)" if the key isn't there.
std::string LockTimeOutIn(const std::string& text) {
  const TempFolder folder;
  std::string path = folder / "init";
  WriteBytes(path, text);
  std::string value;
  return CInitFile(path, false).Get("LockTimeOut", value) ? value : "(none)";
}

TEST(InitFile, HoldsKeysAndValues) {
  EXPECT_EQ(LockTimeOutIn("LockTimeOut = 400\n"), "400");
  EXPECT_EQ(LockTimeOutIn("Other = 1\nLockTimeOut=400"), "400");
}

TEST(InitFile, BlanksAroundKeyAndValueAreDropped) {
  EXPECT_EQ(LockTimeOutIn(" \tLockTimeOut\t =  four hundred \t\r\n"), "four hundred");
}

TEST(InitFile, CommentsAreNoPartOfIt) {
  EXPECT_EQ(LockTimeOutIn("# LockTimeOut = 1\n; LockTimeOut = 2\nLockTimeOut = 3\n"), "3");
  EXPECT_EQ(LockTimeOutIn("LockTimeOut = 4 # seconds\n"), "4");
  EXPECT_EQ(LockTimeOutIn("LockTimeOut = 5;seconds\n"), "5");
}

TEST(InitFile, AnEmptyTextIsAValue) {
  EXPECT_EQ(LockTimeOutIn("LockTimeOut =\n"), "");
  EXPECT_EQ(LockTimeOutIn("LockTimeOut = # none\n"), "");
}

TEST(InitFile, AValueMayHoldAnEqualsSign) {
  EXPECT_EQ(LockTimeOutIn("LockTimeOut = a=b\n"), "a=b");
}

TEST(InitFile, TheFirstLineOfAKeyCounts) {
  EXPECT_EQ(LockTimeOutIn("LockTimeOut = 1\nLockTimeOut = 2\n"), "1");
}

TEST(InitFile, OnlyTheWholeKeyInItsOwnCaseIsFound) {
  EXPECT_EQ(LockTimeOutIn("LockTimeOuts = 1\nTimeOut = 2\nlocktimeout = 3\nLockTimeOut\n"),
            "(none)");
}

TEST(InitFile, AnEmptyFileHasNoKeys) {
  EXPECT_EQ(LockTimeOutIn(""), "(none)");
}

TEST(InitFile, AMissingFileHasNoKeys) {
  const TempFolder folder;
  std::string path = folder / "missing";
  std::string value = "as it was";
  EXPECT_FALSE(CInitFile(path, false).Get("LockTimeOut", value));
  EXPECT_EQ(value, "as it was");
}

TEST(InitFile, AFolderHasNoKeys) {
  const TempFolder folder;
  std::string path = folder.Path();
  std::string value;
  EXPECT_FALSE(CInitFile(path, false).Get("LockTimeOut", value));
}

TEST(InitFile, AnEndlessFileIsReadInPartOnly) {
  std::string path = "/dev/zero";
  std::string value;
  EXPECT_FALSE(CInitFile(path, false).Get("LockTimeOut", value));
}

TEST(InitFile, BothFormsOfGetAgree) {
  const TempFolder folder;
  std::string path = folder / "init";
  WriteBytes(path, "Key = text\n");
  CInitFile file(path, false);
  std::string byName;
  std::string byText;
  EXPECT_TRUE(file.Get("Key", byName));
  EXPECT_TRUE(file.Get(std::string("Key"), byText));
  EXPECT_EQ(byName, "text");
  EXPECT_EQ(byText, "text");
}

TEST(InitFilePath, TheVariableNamesTheFile) {
  const ChangedVariable variable("KEST_INIT_FILE", "/any/where");
  EXPECT_EQ(COSUtil::GetInitFile(), "/any/where");
}

TEST(InitFilePath, AVariableSetToNothingMeansNoFile) {
  const TempFolder home;
  WriteBytes(home / ".kestrelon.ini", "");
  const ChangedVariable homeVariable("HOME", home.Path());
  const ChangedVariable variable("KEST_INIT_FILE", "");
  EXPECT_EQ(COSUtil::GetInitFile(), "");
}

TEST(InitFilePath, ElseItIsTheFileInTheHomeFolder) {
  const TempFolder home;
  const std::string path = home / ".kestrelon.ini";
  WriteBytes(path, "");
  const ChangedVariable homeVariable("HOME", home.Path());
  const ChangedVariable variable("KEST_INIT_FILE", std::nullopt);
  EXPECT_EQ(COSUtil::GetInitFile(), path);
}

TEST(InitFilePath, ThereIsNoneWithoutThatFileOrAHome) {
  const TempFolder home;
  const ChangedVariable variable("KEST_INIT_FILE", std::nullopt);
  {
    const ChangedVariable homeVariable("HOME", home.Path());
    EXPECT_EQ(COSUtil::GetInitFile(), "");
  }
  const ChangedVariable homeVariable("HOME", std::nullopt);
  EXPECT_EQ(COSUtil::GetInitFile(), "");
}

}  // namespace
