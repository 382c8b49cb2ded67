#include <gtest/gtest.h>
#include <unistd.h>

#include <cstddef>
#include <stdexcept>
#include <string>

#include "store/KestErr.h"
#include "store/vbdbase.h"
#include "tests/support/BlockFile.h"
#include "tests/support/Bytes.h"
#include "tests/support/CloseFault.h"
#include "tests/support/Descriptors.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/TempFolder.h"

// Disks that are full, and other failures of the files themselves. Blocks on such disks:
// vbdblockFaultTest.cpp.

namespace {

/// Tells at its end whether all descriptors were given back. Stands before the file of a test.
class DescriptorsAreKept {
 public:
  DescriptorsAreKept() = default;
  DescriptorsAreKept(const DescriptorsAreKept&) = delete;
  DescriptorsAreKept& operator=(const DescriptorsAreKept&) = delete;
  ~DescriptorsAreKept() { EXPECT_EQ(OpenDescriptors(), before_); }

 private:
  std::ptrdiff_t before_ = OpenDescriptors();
};

class BlockFileFaults : public testing::Test {
 protected:
  TempFolder folder;
  const std::string path = folder / "file.vbd";
  DescriptorsAreKept descriptors;
};

void ExpectClosed(const vbDatabase& file) {
  EXPECT_FALSE(file.IsOpen());
  EXPECT_FALSE(file.IsReady());
  EXPECT_FALSE(file.IsReadable());
  EXPECT_FALSE(file.IsWriteable());
  EXPECT_EQ(file.GetFileName(), "closed.vbd");
  EXPECT_EQ(file.Stream(), nullptr);
}

}  // namespace

TEST_F(BlockFileFaults, CreateOnAFullDiskFailsAtTheHeaderAndAtTheLockHeader) {
  for (const unsigned long end : {0UL, 27UL, 28UL, 39UL}) {
    vbDatabase db;
    {
      const FileSizeLimit full(end);
      EXPECT_THROW(db.Create(path, 0, 'C'), CFileWrite) << end;
    }
    db.Abandon();
    db.Create(path, 0, 'C');
    EXPECT_EQ(db.Length(), 40);
  }
}

TEST_F(BlockFileFaults, CreateOnADeviceThatTakesNothing) {
  vbDatabase db;
  EXPECT_THROW(db.Create("/dev/full", 0, 'C'), CFileWrite);
  db.Abandon();
}

TEST_F(BlockFileFaults, DestructorAfterAFailedCreateFailsInItsTurnAndGivesTheDescriptorBack) {
  auto* db = new vbDatabase;
  EXPECT_THROW(db->Create("/dev/full", 0, 'C'), CFileWrite);
  EXPECT_THROW(delete db, CFileWrite);
}

TEST_F(BlockFileFaults, WriteToAFullDiskFails) {
  // Small and larger than a stream's buffer; flushed, verified or both.
  BlockFile file(FileOf(std::string(20000, 'x')));
  vbDatabase& db = file.db;
  const std::string header = HeaderOf(db);
  for (const std::size_t size : {8U, 10000U}) {
    for (const int mode : {1, 2, 3}) {
      const std::string bytes(size, static_cast<char>('0' + mode));
      {
        const FileSizeLimit full(1004);
        EXPECT_THROW(db.Write(bytes.data(), size, 1000, (mode & 1) != 0, (mode & 2) != 0),
                     CFileWrite)
            << size << ' ' << mode;
      }
      EXPECT_EQ(HeaderOf(db), header);
      db.Write(bytes.data(), size, 1000, (mode & 1) != 0, (mode & 2) != 0);
      EXPECT_EQ(db.FilePosition(), 1000L + static_cast<long>(size));
      std::string found(size, '\0');
      db.Read(found.data(), size, 1000);
      EXPECT_TRUE(found == bytes) << size << ' ' << mode;
    }
  }
}

TEST_F(BlockFileFaults, WriteThatWaitsFailsWhenItGoesOut) {
  BlockFile file(FileOf(std::string(2000, 'x')));
  vbDatabase& db = file.db;
  const auto write = [&] { db.Write("12345678", 8, 1000, false, false); };
  char byte = 0;
  {
    const FileSizeLimit full(1004);
    write();
    EXPECT_THROW(db.Seek(0, vbSeekBegin), CFileWrite);
    write();
    EXPECT_THROW(db.Read(&byte, 1, 0), CFileWrite);
    write();
    EXPECT_THROW(db.Read(&byte, 1, vbCurrAddress), CFileWrite);
    write();
    EXPECT_THROW(db.Flush(), CFileWrite);
    write();
    EXPECT_THROW(db.Sync(), CFileWrite);
    write();
    EXPECT_THROW(db.Refresh(), CFileWrite);
    write();
    EXPECT_THROW(db.Alloc(9, vbReclaimFirstFit), CFileWrite);
    db.Read(&byte, 1, 1020);
    EXPECT_EQ(byte, 'x') << "bytes that could not go out are not tried again";
  }
  EXPECT_EQ(file.HexAt(1004, 4), "78 78 78 78");
  write();
  db.Flush();
  EXPECT_EQ(file.HexAt(1000, 8), "31 32 33 34 35 36 37 38");
}

TEST_F(BlockFileFaults, ReadingGoesOnBehindAFailedWrite) {
  BlockFile file(FileOf(std::string(20000, 'x')));
  vbDatabase& db = file.db;
  const FileSizeLimit full(10000);
  for (const long address : {10000L, 9996L, 15000L}) {
    EXPECT_THROW(db.Write("12345678", 8, address, false, true), CFileWrite);
    std::string found(4, '\0');
    db.Read(found.data(), 4, 10000);
    EXPECT_EQ(found, "xxxx") << address;
    EXPECT_THROW(db.Write("12345678", 8, address, false, true), CFileWrite);
    db.Read(found.data(), 4, address + 4);
    EXPECT_EQ(found, "xxxx") << address;
    EXPECT_EQ(db.CalcChecksum(4, 16000, 1), db.CalcChecksum(4, 17000, 0)) << address;
  }
}

TEST_F(BlockFileFaults, UnbufferedWriteToAFullDiskFailsTheSameWay) {
  isNoBufSet = true;
  BlockFile file(FileOf(std::string(2000, 'x')));
  isNoBufSet = false;
  vbDatabase& db = file.db;
  {
    const FileSizeLimit full(1004);
    for (const bool verify : {false, true}) {
      EXPECT_THROW(db.Write("12345678", 8, 1000, false, verify), CFileWrite);
    }
    char byte = 0;
    db.Read(&byte, 1, 1020);
    EXPECT_EQ(byte, 'x');
  }
  db.Write("12345678", 8, 1000, false, true);
  EXPECT_EQ(file.HexAt(1000, 8), "31 32 33 34 35 36 37 38");
}

TEST_F(BlockFileFaults, FlushToAFullDiskFailsAndWorksLater) {
  BlockFile file;
  vbDatabase& db = file.db;
  db.Alloc(9, vbReclaimFirstFit);
  const std::string header = HeaderOf(db);
  {
    const FileSizeLimit full(0);
    EXPECT_THROW(db.Flush(), CFileWrite);
    EXPECT_THROW(db.WriteFileHdr(), CFileWrite);
  }
  EXPECT_EQ(HeaderOf(db), header);
  db.Flush();
  EXPECT_EQ(HexAt(file.Path(), 0, 28), header);
}

TEST_F(BlockFileFaults, CloseOnAFullDiskFailsAndClosesAllTheSame) {
  vbDatabase db;
  db.Create(path, 0, 'C');
  {
    const FileSizeLimit full(0);
    EXPECT_THROW(db.Close(), CFileWrite);
  }
  ExpectClosed(db);
  db.Open(path, vbReadWrite);
  EXPECT_EQ(db.GetEOF(), 40);
}

TEST_F(BlockFileFaults, CloseFailsForBytesThatWaited) {
  vbDatabase db;
  db.Create(path, 0, 'C');
  {
    const FileSizeLimit full(100);
    db.Write("12345678", 8, 100, false, false);
    EXPECT_THROW(db.Close(), CFileWrite);
  }
  ExpectClosed(db);
}

TEST_F(BlockFileFaults, AbandonOnAFullDiskKeepsQuiet) {
  vbDatabase db;
  db.Create(path, 0, 'C');
  const FileSizeLimit full(100);
  db.Write("12345678", 8, 100, false, false);
  db.Abandon();
  ExpectClosed(db);
}

TEST_F(BlockFileFaults, DestructorOnAFullDiskFails) {
  auto* db = new vbDatabase;
  db->Create(path, 0, 'C');
  const FileSizeLimit full(0);
  EXPECT_THROW(delete db, CFileWrite);
}

TEST_F(BlockFileFaults, DestructorKeepsQuietBehindAnotherException) {
  const auto fail = [&] {
    const FileSizeLimit full(100);
    vbDatabase db;
    db.Create(path, 0, 'C');
    db.Write("12345678", 8, 100, false, false);
    throw std::domain_error("the first failure");
  };
  EXPECT_THROW(fail(), std::domain_error);
}

TEST_F(BlockFileFaults, LockOnAFullDiskIsNotWritten) {
  BlockFile file;
  {
    const FileSizeLimit full(28);
    EXPECT_THROW(file.db.LockFile(7, vbWriteLock), CFileWrite);
  }
  EXPECT_EQ(file.HexAt(28, 12), "00 00 00 00 00 00 00 00 00 00 00 00");
  file.db.LockFile(7, vbWriteLock);
  EXPECT_EQ(file.HexAt(28, 12), "07 00 00 00 00 00 00 00 01 00 00 00");
}

TEST_F(BlockFileFaults, StreamThatFailsToCloseIsTold) {
  vbDatabase db;
  db.Create(path, 0, 'C');
  {
    const CloseFault fault;
    EXPECT_THROW(db.Close(), CFileClose);
  }
  ExpectClosed(db);
  db.Open(path, vbReadWrite);
  EXPECT_EQ(db.GetEOF(), 40);
}

TEST_F(BlockFileFaults, StreamThatFailsToCloseIsToldByTheDestructor) {
  auto* db = new vbDatabase;
  db->Create(path, 0, 'C');
  const CloseFault fault;
  EXPECT_THROW(delete db, CFileClose);
}

TEST_F(BlockFileFaults, StreamOfAReadOnlyFileThatFailsToCloseIsGoneToo) {
  vbDatabase db;
  db.Create(path, 0, 'C');
  db.Close();
  db.Open(path, vbReadOnly);
  const CloseFault fault;
  EXPECT_THROW(db.Close(), CFileNotWriteable);
  ExpectClosed(db);
}

TEST_F(BlockFileFaults, SyncFailsWithoutAFileBeneath) {
  vbDatabase db;
  db.Create(path, 0, 'C');
  close(fileno(db.Stream()));
  EXPECT_THROW(db.Sync(), CFileWrite);
  db.Abandon();
  ExpectClosed(db);
}

TEST_F(BlockFileFaults, HeaderThatCannotBeReadWholeLeavesTheOneInMemory) {
  isNoBufSet = true;
  BlockFile file(FileOf(Block(100, 'N')));
  isNoBufSet = false;
  const std::string header = HeaderOf(file.db);
  WriteBytes(file.Path(), "zzzzzzzzzz");
  EXPECT_THROW(file.db.ReadFileHdr(), CFileRead);
  EXPECT_EQ(HeaderOf(file.db), header);
}

TEST_F(BlockFileFaults, PositionBehindTheLongestFileDoesNotMatterToWhatHasAnAddress) {
  BlockFile file(FileOf(Block(100, 'N')));
  vbDatabase& db = file.db;
  const auto stray = [&] {
    db.Seek(0x7FFFFFFF, vbSeekBegin);
    db.Seek(1, vbSeekCurrent);
  };
  char byte = 0;
  stray();
  EXPECT_NO_THROW(db.Read(&byte, 1, 100));
  EXPECT_EQ(byte, 'x');
  stray();
  EXPECT_NO_THROW(db.Write("y", 1, 100, false, true));
  stray();
  EXPECT_NO_THROW(db.Flush());
}
