#include "store/vbdfptr.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "tests/support/Bytes.h"
#include "tests/support/Descriptors.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/TempFolder.h"

namespace {

/// A handle that is closed at the end of the test.
class Handle {
 public:
  explicit Handle(vbdFPTR* handle) : f(handle) {}
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  ~Handle() {
    if (vbdFPTRClose(f) != 0) vbdFPTRClose(f);
  }
  operator vbdFPTR*() const { return f; }

 private:
  vbdFPTR* f;
};

class FileLayer : public testing::Test {
 protected:
  ~FileLayer() override { isNoBufSet = false; }

  TempFolder folder;
  const std::string path = folder / "file.bin";
};

std::string ReadText(vbdFPTR* f, unsigned int size) {
  std::string text(size, '\0');
  EXPECT_EQ(vbdFPTRRead(f, text.data(), size), 0);
  return text;
}

}  // namespace

TEST_F(FileLayer, ExistsTellsWhetherThereIsSomething) {
  EXPECT_FALSE(vbdFPTRExists(path));
  WriteBytes(path, "");
  EXPECT_TRUE(vbdFPTRExists(path));
  EXPECT_TRUE(vbdFPTRExists(folder.Path()));
}

TEST_F(FileLayer, FileSizeIsInBytesAndMinusOneForNothing) {
  EXPECT_EQ(vbdFPTRFileSize(path), -1);
  WriteBytes(path, "");
  EXPECT_EQ(vbdFPTRFileSize(path), 0);
  WriteBytes(path, "seventeen letters");
  EXPECT_EQ(vbdFPTRFileSize(path), 17);
}

TEST_F(FileLayer, CreateTruncatesAndOpensForBoth) {
  WriteBytes(path, "old contents");
  const Handle f(vbdFPTRCreate(path));
  ASSERT_NE(f, nullptr);
  EXPECT_EQ(vbdFPTRFileSize(path), 0);
  EXPECT_EQ(vbdFPTRWrite(f, "new", 3), 0);
  EXPECT_EQ(vbdFPTRSeek(f, 0, vbSeekBegin), 0);
  EXPECT_EQ(ReadText(f, 3), "new");
}

TEST_F(FileLayer, CreateInAMissingFolderGivesNull) {
  EXPECT_EQ(vbdFPTRCreate(folder / "missing/file.bin"), nullptr);
}

TEST_F(FileLayer, OpenGivesNullForAMissingFileAndMakesNone) {
  EXPECT_EQ(vbdFPTROpen(path, vbReadOnly), nullptr);
  EXPECT_EQ(vbdFPTROpen(path, vbReadWrite), nullptr);
  EXPECT_FALSE(vbdFPTRExists(path));
}

TEST_F(FileLayer, ReadOnlyReadsAndDoesNotWrite) {
  WriteBytes(path, "contents");
  const Handle f(vbdFPTROpen(path, vbReadOnly));
  ASSERT_NE(f, nullptr);
  EXPECT_EQ(ReadText(f, 8), "contents");
  EXPECT_EQ(vbdFPTRWrite(f, "x", 1), 1);
  EXPECT_EQ(ReadBytes(path), "contents");
}

TEST_F(FileLayer, EveryOtherModeReadsAndWritesWhatIsThere) {
  for (const int mode : {1, 2, 3}) {
    WriteBytes(path, "contents");
    const Handle f(vbdFPTROpen(path, static_cast<vbDatabaseAccessMode>(mode)));
    ASSERT_NE(f, nullptr);
    EXPECT_EQ(ReadText(f, 3), "con");
    EXPECT_EQ(vbdFPTRSeek(f, 0, vbSeekCurrent), 0);
    EXPECT_EQ(vbdFPTRWrite(f, "T", 1), 0);
    EXPECT_EQ(vbdFPTRFlush(f), 0);
    EXPECT_EQ(ReadBytes(path), "conTents") << mode;
  }
}

TEST_F(FileLayer, StreamsAreBufferedUnlessToldOtherwise) {
  EXPECT_FALSE(isNoBufSet);
  const Handle f(vbdFPTRCreate(path));
  EXPECT_EQ(vbdFPTRWrite(f, "waits", 5), 0);
  EXPECT_EQ(vbdFPTRFileSize(path), 0);
  EXPECT_EQ(vbdFPTRFlush(f), 0);
  EXPECT_EQ(ReadBytes(path), "waits");
}

TEST_F(FileLayer, UnbufferedStreamsWriteAtOnce) {
  isNoBufSet = true;
  const Handle created(vbdFPTRCreate(path));
  EXPECT_EQ(vbdFPTRWrite(created, "at once", 7), 0);
  EXPECT_EQ(ReadBytes(path), "at once");
  const Handle opened(vbdFPTROpen(path, vbReadWrite));
  EXPECT_EQ(vbdFPTRWrite(opened, "AT", 2), 0);
  EXPECT_EQ(ReadBytes(path), "AT once");
}

TEST_F(FileLayer, CloseOfNullSucceeds) {
  EXPECT_EQ(vbdFPTRClose(nullptr), 0);
}

TEST_F(FileLayer, CloseBringsTheBytesOutAndGivesTheDescriptorBack) {
  const auto before = OpenDescriptors();
  vbdFPTR* f = vbdFPTRCreate(path);
  EXPECT_EQ(OpenDescriptors(), before + 1);
  EXPECT_EQ(vbdFPTRWrite(f, "bytes", 5), 0);
  EXPECT_EQ(vbdFPTRClose(f), 0);
  EXPECT_EQ(OpenDescriptors(), before);
  EXPECT_EQ(ReadBytes(path), "bytes");
}

TEST_F(FileLayer, FailedCloseReturnsOneAndKeepsTheHandleForASecondCall) {
  const auto before = OpenDescriptors();
  vbdFPTR* f = vbdFPTRCreate("/dev/full");
  ASSERT_NE(f, nullptr);
  EXPECT_EQ(vbdFPTRWrite(f, "bytes", 5), 0);
  EXPECT_EQ(vbdFPTRClose(f), 1);
  EXPECT_EQ(OpenDescriptors(), before);
  EXPECT_EQ(vbdFPTRRead(f, nullptr, 0), 1) << "a handle without a stream is as good as null";
  EXPECT_EQ(vbdFPTRClose(f), 0);
}

TEST_F(FileLayer, FailedFlushReturnsOne) {
  const Handle f(vbdFPTRCreate("/dev/full"));
  EXPECT_EQ(vbdFPTRFlush(f), 0) << "there is nothing to bring out";
  EXPECT_EQ(vbdFPTRWrite(f, "bytes", 5), 0);
  EXPECT_EQ(vbdFPTRFlush(f), 1);
}

TEST_F(FileLayer, FullReadReturnsZeroAndMovesOn) {
  WriteBytes(path, "onetwo");
  const Handle f(vbdFPTROpen(path, vbReadOnly));
  EXPECT_EQ(ReadText(f, 3), "one");
  EXPECT_EQ(ReadText(f, 3), "two");
  EXPECT_EQ(vbdFPTRRead(f, nullptr, 0), 0);
}

TEST_F(FileLayer, ShortReadReturnsTwo) {
  WriteBytes(path, "four");
  const Handle f(vbdFPTROpen(path, vbReadOnly));
  char buffer[5] = {};
  EXPECT_EQ(vbdFPTRRead(f, buffer, 5), 2);
  EXPECT_STREQ(buffer, "four");
  EXPECT_EQ(vbdFPTRRead(f, buffer, 1), 2) << "at the end of the file";
}

TEST_F(FileLayer, FailedReadReturnsTwoAsWell) {
  const Handle f(vbdFPTROpen(folder.Path(), vbReadOnly));
  ASSERT_NE(f, nullptr);
  char buffer[1];
  EXPECT_EQ(vbdFPTRRead(f, buffer, 1), 2);
}

TEST_F(FileLayer, WriteReturnsOneWhenFewerBytesWentOut) {
  isNoBufSet = true;
  const Handle f(vbdFPTRCreate(path));
  const FileSizeLimit full(3);
  EXPECT_EQ(vbdFPTRWrite(f, "abc", 3), 0);
  EXPECT_EQ(vbdFPTRWrite(f, "d", 1), 1);
  EXPECT_EQ(ReadBytes(path), "abc");
}

TEST_F(FileLayer, NullHandles) {
  char buffer[1] = {};
  EXPECT_EQ(vbdFPTRRead(nullptr, buffer, 1), 1);
  EXPECT_EQ(vbdFPTRWrite(nullptr, buffer, 1), 1);
  EXPECT_EQ(vbdFPTRSeek(nullptr, 0, vbSeekBegin), 1);
  EXPECT_EQ(vbdFPTRTell(nullptr), -1);
  EXPECT_EQ(vbdFPTRFlush(nullptr), 1);
  EXPECT_EQ(vbdFPTRSync(nullptr), 1);
  EXPECT_EQ(vbdFPTRLength(nullptr), -1);
  vbdFPTRRefresh(nullptr);
  vbdFPTRDiscard(nullptr);
}

TEST_F(FileLayer, SeekGoesFromTheBeginAndFromTheCurrentPosition) {
  WriteBytes(path, "0123456789");
  const Handle f(vbdFPTROpen(path, vbReadOnly));
  EXPECT_EQ(vbdFPTRTell(f), 0);
  EXPECT_EQ(vbdFPTRSeek(f, 4, vbSeekBegin), 0);
  EXPECT_EQ(vbdFPTRTell(f), 4);
  EXPECT_EQ(vbdFPTRSeek(f, 3, vbSeekCurrent), 0);
  EXPECT_EQ(vbdFPTRTell(f), 7);
  EXPECT_EQ(vbdFPTRSeek(f, -2, vbSeekCurrent), 0);
  EXPECT_EQ(ReadText(f, 1), "5");
}

TEST_F(FileLayer, SeekEndMovesFromTheCurrentPosition) {
  WriteBytes(path, "0123456789");
  const Handle f(vbdFPTROpen(path, vbReadOnly));
  EXPECT_EQ(vbdFPTRSeek(f, 2, vbSeekBegin), 0);
  EXPECT_EQ(vbdFPTRSeek(f, 3, vbSeekEnd), 0);
  EXPECT_EQ(vbdFPTRTell(f), 5);
}

TEST_F(FileLayer, SeekFailsBeforeTheBeginAndInAnUnknownMode) {
  WriteBytes(path, "0123456789");
  const Handle f(vbdFPTROpen(path, vbReadOnly));
  EXPECT_EQ(vbdFPTRSeek(f, -1, vbSeekBegin), -1);
  EXPECT_EQ(vbdFPTRSeek(f, 0, static_cast<vbDatabaseSeekMode>(3)), -1);
  EXPECT_EQ(vbdFPTRTell(f), 0);
}

TEST_F(FileLayer, LengthIsThatOfTheOpenFile) {
  WriteBytes(path, "0123456789");
  const Handle f(vbdFPTROpen(path, vbReadWrite));
  EXPECT_EQ(vbdFPTRLength(f), 10);
  EXPECT_EQ(vbdFPTRSeek(f, 10, vbSeekBegin), 0);
  EXPECT_EQ(vbdFPTRWrite(f, "more", 4), 0);
  EXPECT_EQ(vbdFPTRLength(f), 10) << "waiting bytes don't count";
  EXPECT_EQ(vbdFPTRSync(f), 0);
  EXPECT_EQ(vbdFPTRLength(f), 14);
}

TEST_F(FileLayer, RefreshForgetsWhatWasReadAhead) {
  // Below, at and above the edges of a stream's buffer, which is 4096 bytes in common systems.
  for (const std::size_t size : {10U, 4095U, 4096U, 4097U, 8192U, 10000U}) {
    WriteBytes(path, std::string(size, 'a'));
    const Handle f(vbdFPTROpen(path, vbReadWrite));
    for (const char fill : {'b', 'c'}) {
      ReadText(f, 1);
      EXPECT_EQ(vbdFPTRSeek(f, static_cast<long>(size) - 2, vbSeekBegin), 0);
      ReadText(f, 2);
      PatchBytes(path, 0, std::string(size, fill));
      vbdFPTRRefresh(f);
      EXPECT_EQ(vbdFPTRSeek(f, static_cast<long>(size) - 2, vbSeekBegin), 0);
      EXPECT_EQ(ReadText(f, 2), std::string(2, fill)) << size;
      EXPECT_EQ(vbdFPTRSeek(f, 0, vbSeekBegin), 0);
      EXPECT_EQ(ReadText(f, 1), std::string(1, fill)) << size;
    }
  }
}

TEST_F(FileLayer, RefreshForgetsWhatAFileThatWasCutHeld) {
  WriteBytes(path, "0123456789");
  const Handle f(vbdFPTROpen(path, vbReadOnly));
  EXPECT_EQ(vbdFPTRSeek(f, 0, vbSeekBegin), 0);
  ReadText(f, 8);
  WriteBytes(path, "abc");
  vbdFPTRRefresh(f);
  EXPECT_EQ(vbdFPTRSeek(f, 0, vbSeekBegin), 0);
  char buffer[5] = {};
  EXPECT_EQ(vbdFPTRRead(f, buffer, 4), 2);
  EXPECT_STREQ(buffer, "abc");
}

TEST_F(FileLayer, DiscardDropsWhatWaits) {
  const Handle f(vbdFPTRCreate(path));
  EXPECT_EQ(vbdFPTRWrite(f, "lost", 4), 0);
  vbdFPTRDiscard(f);
  EXPECT_EQ(vbdFPTRFlush(f), 0);
  EXPECT_EQ(vbdFPTRFileSize(path), 0);
}

TEST_F(FileLayer, DiscardDropsWhatCouldNotBeWrittenAndTheError) {
  vbdFPTR* f = vbdFPTRCreate(path);
  const Handle closedAtTheEnd(f);
  EXPECT_EQ(vbdFPTRWrite(f, "lost", 4), 0);
  {
    const FileSizeLimit full(0);
    EXPECT_EQ(vbdFPTRFlush(f), 1);
    EXPECT_NE(std::ferror(f->Stream), 0);
    vbdFPTRDiscard(f);
    EXPECT_EQ(std::ferror(f->Stream), 0);
    EXPECT_EQ(vbdFPTRFlush(f), 0);
  }
  EXPECT_EQ(vbdFPTRSeek(f, 0, vbSeekBegin), 0);
  EXPECT_EQ(vbdFPTRWrite(f, "kept", 4), 0);
  EXPECT_EQ(vbdFPTRFlush(f), 0);
  EXPECT_EQ(ReadBytes(path), "kept");
}
