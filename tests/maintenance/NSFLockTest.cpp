#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <stdexcept>
#include <string>

#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "tests/support/Bytes.h"
#include "tests/support/OtherProcess.h"
#include "tests/support/TempFolder.h"

// Locks of whole files between processes. A process that holds a lock on a file loses it with the
// first of its streams on that file that it closes.

namespace {

using Pause = OtherProcess::Pause;

/// An open stream, closed at the end.
class Stream {
 public:
  explicit Stream(FILE* stream) : m_stream(stream) {
    if (stream == nullptr) throw std::runtime_error("no stream");
  }
  Stream(const std::string& path, const char* mode) : Stream(std::fopen(path.c_str(), mode)) {}
  Stream(const Stream&) = delete;
  Stream& operator=(const Stream&) = delete;
  ~Stream() { std::fclose(m_stream); }
  FILE* Get() const { return m_stream; }

 private:
  FILE* m_stream;
};

class NSFLocks : public testing::Test {
 protected:
  NSFLocks() { WriteBytes(path, "sixteen bytes ..."); }

  /// What another process is told of a lock of one byte.
  void ExpectByte(off_t at, short type) const {
    InOtherProcess([&] {
      const Stream file(path, "r+b");
      struct flock lock = {};
      lock.l_type = F_RDLCK;
      lock.l_whence = SEEK_SET;
      lock.l_start = at;
      lock.l_len = 1;
      ASSERT_EQ(fcntl(fileno(file.Get()), F_GETLK, &lock), 0);
      EXPECT_EQ(lock.l_type, type) << "byte " << at;
    });
  }

  TempFolder folder;
  const std::string path = folder / "study.ksb";
};

TEST_F(NSFLocks, LockTheWholeFileForWriting) {
  const Stream file(path, "r+b");
  EXPECT_TRUE(NSFLock(file.Get()));
  for (const off_t at : {0L, 15L, 16L, 2147483646L, 1L << 40}) ExpectByte(at, F_WRLCK);
}

TEST_F(NSFLocks, StartAtTheStartOfTheFile) {
  const Stream file(path, "r+b");
  std::fseek(file.Get(), 7, SEEK_SET);
  EXPECT_TRUE(NSFLock(file.Get()));
  EXPECT_EQ(std::ftell(file.Get()), 0);
  std::fseek(file.Get(), 7, SEEK_SET);
  EXPECT_TRUE(NSFUnlock(file.Get()));
  EXPECT_EQ(std::ftell(file.Get()), 0);
}

TEST_F(NSFLocks, AreGoneAfterTheUnlock) {
  const Stream file(path, "r+b");
  NSFLock(file.Get());
  EXPECT_TRUE(NSFUnlock(file.Get()));
  for (const off_t at : {0L, 15L, 1L << 40}) ExpectByte(at, F_UNLCK);
}

TEST_F(NSFLocks, AreRefusedToAnotherProcessAtOnceAndHadLater) {
  OtherProcess holder([this](const Pause& pause) {
    const Stream file(path, "r+b");
    EXPECT_TRUE(NSFLock(file.Get()));
    pause();
    EXPECT_TRUE(NSFUnlock(file.Get()));
    pause();
  });
  const Stream file(path, "r+b");
  try {
    NSFLock(file.Get());
    ADD_FAILURE();
  } catch (const CFileLock& error) {
    EXPECT_STREQ(error.what(), "Error locking the file");
  }
  holder.Step();
  EXPECT_TRUE(NSFLock(file.Get()));
  holder.Finish();
}

TEST_F(NSFLocks, OfAKilledProcessAreGone) {
  OtherProcess holder([this](const Pause& pause) {
    const Stream file(path, "r+b");
    EXPECT_TRUE(NSFLock(file.Get()));
    pause();
  });
  const Stream file(path, "r+b");
  EXPECT_THROW(NSFLock(file.Get()), CFileLock);
  holder.Kill();
  EXPECT_TRUE(NSFLock(file.Get()));
}

TEST_F(NSFLocks, CanBeTakenAndGivenBackTwice) {
  const Stream file(path, "r+b");
  EXPECT_TRUE(NSFLock(file.Get()));
  EXPECT_TRUE(NSFLock(file.Get()));
  EXPECT_TRUE(NSFUnlock(file.Get()));
  EXPECT_TRUE(NSFUnlock(file.Get()));
}

TEST_F(NSFLocks, AreRefusedOnAStreamForReadingOnly) {
  const Stream file(path, "rb");
  EXPECT_THROW(NSFLock(file.Get()), CFileLock);
}

TEST_F(NSFLocks, FailOnAStreamThatCannotSeek) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  const Stream reader(fdopen(ends[0], "r"));
  const Stream writer(fdopen(ends[1], "w"));
  for (const auto operation : {NSFLock, NSFUnlock}) {
    try {
      operation(writer.Get());
      ADD_FAILURE();
    } catch (const CFileSeek& error) {
      EXPECT_STREQ(error.what(), "FileSeekError");
    }
  }
}

TEST_F(NSFLocks, FailOnAStreamWithoutAFile) {
  char memory[16];
  const Stream stream(fmemopen(memory, sizeof memory, "w+"));
  EXPECT_THROW(NSFLock(stream.Get()), CFileLock);
  try {
    NSFUnlock(stream.Get());
    ADD_FAILURE();
  } catch (const CLockViolation& error) {
    EXPECT_STREQ(error.what(),
                 "Lock violation.\nYou may have to manually unlock the database using the "
                 "Kestrelon GUI.");
  }
}

TEST_F(NSFLocks, FailOnANullStream) {
  EXPECT_THROW(NSFLock(nullptr), CNullPtr);
  EXPECT_THROW(NSFUnlock(nullptr), CNullPtr);
}

}  // namespace
