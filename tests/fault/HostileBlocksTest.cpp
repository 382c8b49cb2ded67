#include <gtest/gtest.h>

#include <cstdint>

#include "tests/fault/FileMap.h"
#include "tests/fault/Forgery.h"

// File headers and block headers that lie; no checksum covers them.

namespace {

constexpr std::uint32_t kAllOnes = 0xFFFFFFFF;
constexpr std::uint32_t kMostPositive = 0x7FFFFFFF;
constexpr std::uint32_t kMostNegative = 0x80000000;

// Offsets in a file header.
constexpr std::size_t kFreeSpace = 0;
constexpr std::size_t kEndOfFile = 4;
constexpr std::size_t kHeapStart = 8;
constexpr std::size_t kHighestBlock = 12;
constexpr std::size_t kRevision = 23;
constexpr std::size_t kVersion = 24;
constexpr std::size_t kFileLock = 28;

// Offsets in a block header.
constexpr std::size_t kLength = 4;
constexpr std::size_t kStatus = 8;
constexpr std::size_t kNextDeleted = 12;
constexpr std::size_t kObject = 28;

class HostileBlocks : public testing::Test {
 protected:
  Forgery Forged() const { return Forgery(study); }
  const std::string& Data() const { return study.Files().data; }
  std::uint32_t DataSize() const { return static_cast<std::uint32_t>(Data().size()); }
  std::size_t BlockOf(Kind kind, int id) const {
    return static_cast<std::size_t>(study.Object(kind, id).address) - kObject;
  }

  const HostileStudy study;
};

std::string Number(std::uint32_t value) {
  return std::to_string(static_cast<std::int32_t>(value));
}

}  // namespace

TEST_F(HostileBlocks, WordsOfTheDataFilesHeader) {
  std::vector<HostileValue> values;
  const auto add = [&](const std::string& field, std::size_t offset, std::uint32_t value,
                       Ending worst) {
    values.push_back(
        {field + ' ' + Number(value), Forged().Set(Which::Data, offset, value), worst});
  };
  const auto last = static_cast<std::uint32_t>(FileMap(Data(), 0).Blocks().back());
  for (const std::uint32_t value :
       {0U, 5U, 39U, 40U, 41U, last, last + 1, DataSize() - 1, DataSize() + 1, DataSize() + 100000,
        0x40000000U, kMostPositive - 500, kMostPositive, kMostNegative, kAllOnes, kAllOnes - 1}) {
    // Nothing but the objects themselves says where the heap ends.
    add("end of file", kEndOfFile, value, Ending::Silent);
    add("heap start", kHeapStart, value, Ending::Silent);
    add("free space", kFreeSpace, value, Ending::Clean);
    add("highest block", kHighestBlock, value, Ending::Reported);
    add("version", kVersion, value, Ending::Reported);
    add("file lock", kFileLock, value, Ending::Clean);
  }
  // An empty heap that starts behind the file is that of a new one with a static area, so that no
  // other values can be told from sound ones.
  for (const std::uint32_t value : {0U, kMostPositive, kMostNegative, kAllOnes}) {
    values.push_back(
        {"no heap, which starts at " + Number(value),
         Forged().Set(Which::Data, kHeapStart, value).Set(Which::Data, kEndOfFile, value),
         Ending::Silent});
  }
  // A heap that ends too early is written over: only a check of the whole file can tell.
  ExerciseAll(study, values, Writing::MayLose);
}

TEST_F(HostileBlocks, WordsOfTheIndexFilesHeader) {
  std::vector<HostileValue> values;
  const auto add = [&](const std::string& field, std::size_t offset, std::uint32_t value,
                       Ending worst) {
    values.push_back(
        {field + ' ' + Number(value), Forged().Set(Which::Index, offset, value), worst});
    // With no free block to take.
    values.push_back({field + ' ' + Number(value) + ", no free block",
                      Forged().Set(Which::Index, kFreeSpace, 0).Set(Which::Index, offset, value),
                      worst});
  };
  const std::vector<std::size_t> blocks = FileMap(study.Files().index, 25).Blocks();
  const auto size = static_cast<std::uint32_t>(study.Files().index.size());
  const auto last = static_cast<std::uint32_t>(blocks.back());
  for (const std::uint32_t value :
       {0U, 5U, 39U, 40U, 1039U, 1040U, 1041U, last, last + 1, size - 1, size + 1, size + 100000,
        0x40000000U, kMostPositive - 500, kMostPositive, kMostNegative, kAllOnes}) {
    add("end of file", kEndOfFile, value, Ending::Silent);
    add("heap start", kHeapStart, value, Ending::Reported);
    add("free space", kFreeSpace, value, Ending::Reported);
    add("highest block", kHighestBlock, value, Ending::Reported);
  }
  ExerciseAll(study, values, Writing::LosesNothing);
}

TEST_F(HostileBlocks, RevisionLetters) {
  std::vector<HostileValue> values;
  for (const Which file : {Which::Data, Which::Index}) {
    for (const int letter : {0, 0x20, 0x41, 0x61, 0x42, 0x62, 0x63, 0x44, 0x7F, 0x80, 0xFF}) {
      values.push_back({std::string(file == Which::Data ? "data" : "index") + " file, letter " +
                            std::to_string(letter),
                        Forged().SetByte(file, kRevision, static_cast<unsigned char>(letter))});
    }
  }
  ExerciseAll(study, values, Writing::LosesNothing);
}

TEST_F(HostileBlocks, LengthsOfLiveBlocks) {
  const FileMap map(Data(), 0);
  std::vector<HostileValue> values;
  std::vector<HostileValue> sealed;
  for (const std::size_t block :
       {BlockOf(Kind::Plain, 1), BlockOf(Kind::Sample, 2), BlockOf(Kind::Plain, 35),
        map.Blocks().front(), map.Blocks().back()}) {
    const auto rest = DataSize() - static_cast<std::uint32_t>(block);
    const auto own = static_cast<std::uint32_t>(NumberAt(Data(), block + kLength));
    for (const std::uint32_t length :
         {0U, 1U, 27U, 28U, 31U, 32U, 33U, 36U, 39U, 40U, 44U, own - 1, own + 1, rest, rest + 1,
          kMostPositive, kMostNegative, kAllOnes, kAllOnes - 27}) {
      values.push_back({"block " + std::to_string(block) + ", length " + std::to_string(length),
                        Forged().Set(Which::Data, block + kLength, length)});
      if (length < 32 || length > rest) continue;
      sealed.push_back({values.back().name + ", sealed",
                        Forgery(values.back().forged).Seal(Which::Data, block), Ending::Silent,
                        static_cast<long>(block + kObject)});
    }
  }
  ExerciseAll(study, values, Writing::LosesNothing);
  // A block of a sound checksum that takes in others: they go with it when it is freed.
  ExerciseAll(study, sealed, Writing::MayLose);
}

TEST_F(HostileBlocks, LengthsOfFreeBlocks) {
  std::vector<HostileValue> values;
  for (const std::size_t block : FreeList(Data())) {
    const auto rest = DataSize() - static_cast<std::uint32_t>(block);
    const auto own = static_cast<std::uint32_t>(NumberAt(Data(), block + kLength));
    for (const std::uint32_t length : {0U, 1U, 27U, 28U, 31U, 32U, 71U, own - 1, own + 1, own + 33,
                                       rest - 1, rest, rest + 1, kMostPositive, kAllOnes}) {
      // One that reaches to the end of the file takes in the live blocks behind it.
      values.push_back({"free block " + std::to_string(block) + ", length " + Number(length),
                        Forged().Set(Which::Data, block + kLength, length),
                        length == rest ? Ending::Silent : Ending::Reported});
    }
  }
  // So is what a free block claims that lies.
  ExerciseAll(study, values, Writing::MayLose);
}

TEST_F(HostileBlocks, StatusLetters) {
  std::vector<HostileValue> values;
  for (const int status : {0x00, 0x42, 0x44, 0x4E, 0x52, 0x58, 0x6E, 0xFF}) {
    const std::string name = "status " + std::to_string(status);
    const auto letter = static_cast<unsigned char>(status);
    // Nothing but the letter tells a live block from a free one.
    values.push_back({"live block, " + name,
                      Forged().SetByte(Which::Data, BlockOf(Kind::Plain, 10) + kStatus, letter),
                      Ending::Silent});
    for (const std::size_t block : FreeList(Data())) {
      values.push_back({"free block " + std::to_string(block) + ", " + name,
                        Forged().SetByte(Which::Data, block + kStatus, letter), Ending::Silent});
    }
  }
  ExerciseAll(study, values, Writing::LosesNothing);
}

TEST_F(HostileBlocks, CyclesOfFreeBlocks) {
  std::vector<HostileValue> values;
  for (const Which file : {Which::Data, Which::Index}) {
    const std::vector<std::size_t> free = FreeList(Forged().Bytes(file));
    const std::string name = file == Which::Data ? "data file" : "index file";
    for (std::size_t from = 0; from < free.size(); ++from) {
      for (std::size_t to = 0; to <= from; ++to) {
        values.push_back(
            {name + ", member " + std::to_string(from) + " to " + std::to_string(to),
             Forged().Set(file, free[from] + kNextDeleted, static_cast<std::uint32_t>(free[to])),
             Ending::Clean});
      }
    }
  }
  ExerciseAll(study, values, Writing::LosesNothing);
}

TEST_F(HostileBlocks, FreeListsThatLeaveThemselves) {
  const auto live = static_cast<std::uint32_t>(BlockOf(Kind::Plain, 10));
  std::vector<HostileValue> values;
  for (const std::uint32_t next :
       {5U, 39U, 40U, live, live + 1, live + 28, DataSize() - 28, DataSize() - 15, DataSize(),
        DataSize() + 1, kMostPositive - 10, kMostPositive, kMostNegative, kAllOnes, kAllOnes - 1}) {
    for (const std::size_t block : FreeList(Data())) {
      values.push_back({"free block " + std::to_string(block) + ", next " + Number(next),
                        Forged().Set(Which::Data, block + kNextDeleted, next), Ending::Clean});
    }
  }
  ExerciseAll(study, values, Writing::LosesNothing);
}

TEST_F(HostileBlocks, RecordLocks) {
  std::vector<HostileValue> values;
  for (const std::size_t word : {16U, 20U, 24U}) {
    for (const std::uint32_t value : {1U, kMostPositive, kAllOnes}) {
      values.push_back({"word " + std::to_string(word) + ", " + std::to_string(value),
                        Forged().Set(Which::Data, BlockOf(Kind::Plain, 10) + word, value),
                        Ending::Clean});
    }
  }
  ExerciseAll(study, values, Writing::LosesNothing);
}
