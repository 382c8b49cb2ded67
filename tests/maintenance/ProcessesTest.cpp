#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include "index/vbtree.h"
#include "maintenance/Lock.h"
#include "store/DBI_IO.h"
#include "store/KestErr.h"
#include "store/pod.h"
#include "store/vbdbase.h"
#include "tests/support/Bytes.h"
#include "tests/support/Log.h"
#include "tests/support/OtherProcess.h"
#include "tests/support/SampleRecord.h"
#include "tests/support/StudyCheck.h"
#include "tests/support/TempFolder.h"

// Several real processes on one study. The test itself opens no study and takes no lock: it only
// tells the others when to go on.

namespace {

namespace fs = std::filesystem;
using Pause = OtherProcess::Pause;
using namespace std::chrono_literals;

class Processes : public testing::Test {
 protected:
  std::string Base() const { return folder / "study"; }
  std::string LockPath() const { return folder / "study.lck"; }

  /// In a process that has taken no lock yet. The waits are of a quarter to half as many
  /// milliseconds, and 2000 of them take at most as many seconds.
  void SetLockTimeOut(int timeOut) const {
    const std::string path = folder / ("init" + std::to_string(timeOut));
    WriteBytes(path, "LockTimeOut = " + std::to_string(timeOut) + "\n");
    setenv("KEST_INIT_FILE", path.c_str(), 1);
  }

  void Open(int timeOut = 20) const {
    SetLockTimeOut(timeOut);
    OpenDatabase(Base());
  }

  TempFolder folder;
};

vBtree& PlainTree() {
  return *GetPOD()->Index(static_cast<unsigned>(long{PlainRecord::m_nPLAIN_INDX}));
}

std::string Text(int id, std::size_t length) {
  return std::to_string(id) + std::string(length, '.');
}

void Add(int id, std::size_t length) {
  PlainRecord record(GetPOD());
  record.m_nID = id;
  record.m_strText = Text(id, length);
  EXPECT_TRUE(record.WriteObject(true));
}

void AddRange(int first, int last, std::size_t length) {
  for (int id = first; id <= last; ++id) Add(id, length);
}

/// Leaves the start of both files in the buffers of this process's streams, from before whatever
/// the others will write.
void LookWithoutALock() {
  GetPOD()->DataFile()->ReadFileHdr();
  GetPOD()->IndexFile()->ReadFileHdr();
}

/// All records from 1 to `last` are there, and no more.
void ExpectAll(int last, std::size_t length) {
  const CLock lock(GetPOD(), 0);
  for (int id = 1; id <= last; ++id) {
    PlainRecord record(GetPOD());
    record.m_nID = id;
    ASSERT_TRUE(record.GetObject()) << "record " << id << " of " << last;
    ASSERT_EQ(record.m_strText, Text(id, length));
  }
  EXPECT_EQ(PlainTree().EntryCount, last);
  EXPECT_EQ(PlainRecord(GetPOD()).CountObjects(), last);
}

// ---- Updates ----

constexpr int kWriters = 4;
constexpr int kUpdates = 250;

void MakeCounter() {
  SampleRecord counter(GetPOD());
  counter.m_nID = 1;
  counter.m_vnNumbers.resize(kWriters);
  counter.WriteObject(true);
}

/// One update of the counter. Its length changes with its value, so that it moves about.
void Count(std::size_t writer, int times) {
  const CLock lock(GetPOD(), 0);
  SampleRecord counter(GetPOD());
  counter.m_nID = 1;
  ASSERT_TRUE(counter.GetObject());
  counter.m_uFlags = counter.m_uFlags + 1;
  counter.m_vnNumbers.at(writer)++;
  ASSERT_EQ(counter.m_vnNumbers.at(writer), times)
      << "an update of writer " << writer << " is lost";
  counter.m_strText.assign(counter.m_uFlags % 97, 'x');
  ASSERT_TRUE(counter.PutObject());
}

TEST_F(Processes, LoseNoUpdateOfEachOther) {
  InOtherProcess([this] {
    Open();
    MakeCounter();
    CloseDatabase();
  });
  std::vector<std::unique_ptr<OtherProcess>> writers;
  for (std::size_t writer = 0; writer < kWriters; ++writer) {
    writers.push_back(std::make_unique<OtherProcess>([this, writer](const Pause& pause) {
      Open();
      pause();
      for (int times = 1; times <= kUpdates && !testing::Test::HasFailure(); ++times) {
        Count(writer, times);
        std::this_thread::sleep_for(1ms);  // leaves the lock to the others
      }
      CloseDatabase();
    }));
  }
  for (const auto& writer : writers) writer->Go();
  for (const auto& writer : writers) writer->AwaitEnd();

  InOtherProcess([this] {
    Open();
    SampleRecord counter(GetPOD());
    counter.m_nID = 1;
    ASSERT_TRUE(counter.GetObject());
    EXPECT_EQ(counter.m_uFlags, kWriters * kUpdates);
    EXPECT_EQ(counter.m_vnNumbers, std::vector<vbINT32>(kWriters, kUpdates));
    EXPECT_EQ(counter.CountObjects(), 1);
    CloseDatabase();
  });
  EXPECT_EQ(FaultsOfStudy(Base()), "");
  EXPECT_FALSE(fs::exists(LockPath()));
}

TEST_F(Processes, ReadWhatAnotherOneUpdatedInItsPlace) {
  OtherProcess reader([this](const Pause& pause) {
    Open();
    Add(1, 100);
    LookWithoutALock();
    pause();
    PlainRecord record(GetPOD());
    record.m_nID = 1;
    ASSERT_TRUE(record.GetObject());
    EXPECT_EQ(record.m_strText, "A" + std::string(100, '.'));
    CloseDatabase();
  });
  InOtherProcess([this] {
    Open();
    PlainRecord record(GetPOD());
    record.m_nID = 1;
    ASSERT_TRUE(record.GetObject());
    const vbINT32 address = record.ObjectAddress();
    record.m_strText[0] = 'A';
    ASSERT_TRUE(record.PutObject());
    EXPECT_EQ(record.ObjectAddress(), address);  // or this would be another test
    CloseDatabase();
  });
  reader.Finish();
  EXPECT_EQ(FaultsOfStudy(Base()), "");
}

// ---- Headers ----

TEST_F(Processes, SeeTheHeadersOfAnotherOneAtTheNextOutermostLockAndNotBefore) {
  OtherProcess observer([this](const Pause& pause) {
    Open();
    const long end = GetPOD()->DataFile()->GetEOF();
    LookWithoutALock();
    pause();
    EXPECT_EQ(GetPOD()->DataFile()->GetEOF(), end);
    EXPECT_EQ(PlainTree().EntryCount, 0);
    {
      const CLock lock(GetPOD(), 0);
      EXPECT_GT(GetPOD()->DataFile()->GetEOF(), end);
      EXPECT_EQ(PlainTree().EntryCount, 1);
    }
    CloseDatabase();
  });
  InOtherProcess([this] {
    Open();
    Add(1, 10);
    CloseDatabase();
  });
  observer.Finish();
}

// ---- Growth ----

struct Growth {
  const char* name;
  int recordsInTurn;
  std::size_t textLength;
  bool buffered;
  std::uintmax_t least;  // bytes of the data file in the end
  std::uintmax_t most;
};

class GrowingProcesses : public Processes, public testing::WithParamInterface<Growth> {
 protected:
  /// One of two processes that add records by turns: the first one under a lock for each record,
  /// the second one under a lock for all of a turn.
  void AddByTurns(int who, const Pause& pause) {
    const int records = GetParam().recordsInTurn;
    const std::size_t length = GetParam().textLength;
    if (!GetParam().buffered) setenv("KEST_NOIOBUF", "1", 1);
    Open();
    LookWithoutALock();
    pause();
    for (int turn = who; turn < kTurns; turn += 2) {
      ExpectAll(turn * records, length);
      if (who == 0) {
        AddRange(turn * records + 1, (turn + 1) * records, length);
      } else {
        const CLock lock(GetPOD(), 0);
        AddRange(turn * records + 1, (turn + 1) * records, length);
      }
      ExpectAll((turn + 1) * records, length);
      LookWithoutALock();
      pause();
    }
    ExpectAll(kTurns * records, length);
    CloseDatabase();
  }

  static constexpr int kTurns = 8;
};

TEST_P(GrowingProcesses, FindTheObjectsOfEachOther) {
  OtherProcess first([this](const Pause& pause) { AddByTurns(0, pause); });
  OtherProcess second([this](const Pause& pause) { AddByTurns(1, pause); });
  for (int turn = 0; turn < kTurns; turn += 2) {
    first.Step();
    second.Step();
  }
  first.Finish();
  second.Finish();
  EXPECT_EQ(FaultsOfStudy(Base()), "");
  EXPECT_GE(fs::file_size(folder / "study.ksb"), GetParam().least);
  EXPECT_LE(fs::file_size(folder / "study.ksb"), GetParam().most);
}

constexpr std::uintmax_t kBuffer = 4096;  // of a stream

// In the large files a tree outgrows its root.
constexpr Growth kGrowths[] = {
    {"InAFileAsSmallAsTheBuffer", 1, 10, true, 0, kBuffer},
    {"InALargeFile", 40, 3000, true, 200 * kBuffer, 300 * kBuffer},
    {"InALargeFileWithoutBuffers", 40, 3000, false, 200 * kBuffer, 300 * kBuffer},
};

void PrintTo(const Growth& growth, std::ostream* out) {
  *out << growth.name;
}

INSTANTIATE_TEST_SUITE_P(Files, GrowingProcesses, testing::ValuesIn(kGrowths),
                         [](const auto& growth) { return std::string(growth.param.name); });

// ---- Waiting and dying ----

TEST_F(Processes, WaitUntilTheHolderReleasesTheLock) {
  OtherProcess holder([this](const Pause& pause) {
    Open();
    {
      const CLock lock(GetPOD(), 0);
      pause();
    }
    pause();
    CloseDatabase();
  });
  OtherProcess waiter([this](const Pause& pause) {
    SetLockTimeOut(20);
    pause();
    POD pod(folder / "study.ksb");
    const CLock lock(&pod, 0);
    pause();
  });
  waiter.Go();
  std::this_thread::sleep_for(50ms);
  EXPECT_FALSE(waiter.IsThere());
  holder.Step();
  waiter.AwaitPause();
  EXPECT_TRUE(fs::exists(LockPath()));
  waiter.Finish();
  holder.Finish();
}

TEST_F(Processes, AreBlockedByAKilledHolderUntilItsLockIsForced) {
  OtherProcess holder([this](const Pause& pause) {
    Open();
    pause();
    const CLock lock(GetPOD(), 0);
    pause();
  });
  OtherProcess other([this](const Pause& pause) {
    Open(4);
    pause();
    ClearLog();
    EXPECT_THROW(Add(1, 10), CFileLock);
    EXPECT_EQ(PrintedLog(), "Error creating lock directory (" + LockPath() +
                                "): File exists\n"
                                "You may have to manually delete the lock directory\n"
                                "in order to unlock the database or increase the \n"
                                "lock time-out in the Kestrelon preferences dialog\n");
    pause();
    CLock::ForceUnlock();
    pause();
    Add(1, 10);
    ExpectAll(1, 10);
    CloseDatabase();
  });
  holder.Step();
  holder.Kill();
  EXPECT_TRUE(fs::exists(LockPath()));
  other.Step();
  EXPECT_TRUE(fs::exists(LockPath()));
  other.Step();
  EXPECT_FALSE(fs::exists(LockPath()));
  other.Finish();
  EXPECT_EQ(FaultsOfStudy(Base()), "");
}

}  // namespace
