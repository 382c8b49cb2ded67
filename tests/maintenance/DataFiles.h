#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>

#include "store/vbdbase.h"
#include "tests/support/BlockFile.h"
#include "tests/support/Bytes.h"
#include "tests/support/Descriptors.h"
#include "tests/support/Log.h"
#include "tests/support/TempFolder.h"

// Block files from outside: files put together by hand, what a run over one logs, and the reports
// that are expected of it.

/// Four blocks. At 40 a normal one, at 81 a deleted one without an object, at 113 a removed one, at
/// 154 a normal one whose record lock is in use and whose checksum is wrong. The objects are the
/// nine digits. The free list goes from 113 to 81.
inline const std::string kSampleFile = Bytes(
    "71 00 00 00 C3 00 00 00 28 00 00 00 9A 00 00 00"
    "56 42 44 42 41 53 45 43 B9 0B 00 00"
    "00 00 00 00 00 00 00 00 00 00 00 00"
    "FE FE FE FE 29 00 00 00 4E 00 00 00 00 00 00 00"
    "00 00 00 00 00 00 00 00 00 00 00 00"
    "31 32 33 34 35 36 37 38 39 26 39 F4 CB"
    "FE FE FE FE 20 00 00 00 44 00 00 00 00 00 00 00"
    "00 00 00 00 00 00 00 00 00 00 00 00"
    "00 00 00 00"
    "FE FE FE FE 29 00 00 00 52 00 00 00 51 00 00 00"
    "00 00 00 00 00 00 00 00 00 00 00 00"
    "31 32 33 34 35 36 37 38 39 26 39 F4 CB"
    "FE FE FE FE 29 00 00 00 4E 00 00 00 00 00 00 00"
    "01 00 00 00 02 00 00 00 03 00 00 00"
    "31 32 33 34 35 36 37 38 39 01 00 00 00");

/// A file of revision A: at 28 a normal block for the nine digits, at 57 a deleted one.
inline const std::string kOldFile = Bytes(
    "39 00 00 00 56 00 00 00 1C 00 00 00 39 00 00 00"
    "56 42 44 42 41 53 45 41 D0 07 00 00"
    "FE FE 00 00 1D 00 00 00 4E 00 00 00 00 00 00 00"
    "31 32 33 34 35 36 37 38 39 26 39 F4 CB"
    "FE FE 00 00 1D 00 00 00 44 00 00 00 00 00 00 00"
    "31 32 33 34 35 36 37 38 39 26 39 F4 CB");

/// A file without blocks.
inline const std::string kEmptyFile = Bytes(
    "00 00 00 00 28 00 00 00 28 00 00 00 00 00 00 00"
    "56 42 44 42 41 53 45 43 B9 0B 00 00"
    "00 00 00 00 00 00 00 00 00 00 00 00");

// Where the fields of a file header lie.
inline constexpr std::size_t kFreeSpaceAt = 0;
inline constexpr std::size_t kEndOfFileAt = 4;
inline constexpr std::size_t kHeapStartAt = 8;
inline constexpr std::size_t kHighestAt = 12;
inline constexpr std::size_t kSignatureAt = 16;
inline constexpr std::size_t kLetterAt = 23;
inline constexpr std::size_t kVersionAt = 24;
inline constexpr std::size_t kLockAt = 28;

/// The bytes of a file with others in place of some of them.
inline std::string With(std::string bytes, std::size_t offset, const std::string& others) {
  return bytes.replace(offset, others.size(), others);
}

/// The log in the words of its reader. An exception on its way out is one line, however many
/// functions it passed.
inline std::string LogText() {
  std::string text;
  std::string last;
  for (const LogEntry& entry : Log()) {
    std::string line = entry.text;
    if (entry.kind == "LError") line = "ERROR: " + line;
    if (entry.kind == "LWarn") line = "WARNING: " + line;
    if (entry.kind == "LNewException") line = "NEW EXCEPTION: " + line + "\n";
    if (entry.kind == "LException") line = "EXCEPTION: " + line + "\n";
    if (entry.kind == "LGenException") line = "UNKNOWN EXCEPTION\n";
    if (entry.kind != "LException" || line != last) text += line;
    last = line;
  }
  return text;
}

/// What the log says of a failure.
inline std::string Failure(const std::string& what) {
  return "NEW EXCEPTION: " + what + "\nEXCEPTION: " + what + "\n";
}

/// What VBDStats has to say of a file.
struct FileFigures {
  std::string signature = "VBDBASE";
  std::string letter = "C";
  std::string version = "3001";
  std::string fileHeader = "40";
  std::string blockHeader = "28";
  std::string staticArea = "0";
  std::string fileSize;
  std::string status = "Open Read/Write ";
  std::string freeSpace = "0";
  std::string endOfFile;
  std::string heapStart = "40";
  std::string highest;
  std::string blocks;
  std::string freeBlocks = "0/0 (0)";
};

/// Those of the sample file.
inline FileFigures SampleFigures() {
  return {.fileSize = "195",
          .freeSpace = "113",
          .endOfFile = "195",
          .highest = "154",
          .blocks = "4",
          .freeBlocks = "1/1 (2)"};
}

inline FileFigures EmptyFigures() {
  return {.fileSize = "40", .endOfFile = "40", .highest = "0", .blocks = "0"};
}

inline FileFigures OldFigures() {
  return {.letter = "A",
          .version = "2000",
          .fileHeader = "28",
          .blockHeader = "16",
          .fileSize = "86",
          .freeSpace = "57",
          .endOfFile = "86",
          .heapStart = "28",
          .highest = "57",
          .blocks = "2",
          .freeBlocks = "1/0 (1)"};
}

/// The report of VBDStats down to the lock header.
inline std::string FileReport(const std::string& path, const FileFigures& file) {
  return "\n"
         "----- VBD file statistics -----\n"
         "\n"
         "----- Static information -----\n"
         "File Name:         " +
         path + "\nFile Signature:    " + file.signature + "\nRevision Letter:   " + file.letter +
         "\nLibrary Version:   " + file.version + "\nFile Header Size:  " + file.fileHeader +
         "\nBlock Header Size: " + file.blockHeader + "\nStatic area size:  " + file.staticArea +
         "\nStatic file size:  " + file.fileSize +
         "\n"
         "\n"
         "----- Dynamic Information -----\n"
         "File Status:     " +
         file.status + "\nFree Space:      " + file.freeSpace +
         "\nEnd of File:     " + file.endOfFile + "\nHeap Start:      " + file.heapStart +
         "\nHighest Block:   " + file.highest + "\nTotal Blocks:    " + file.blocks +
         "\nDeleted/Removed: " + file.freeBlocks + "\n";
}

/// What follows it: a file lock header, and the end.
inline std::string FileLockReport(const std::string& protect = "0", const std::string& read = "0",
                                  const std::string& write = "0") {
  return "\n"
         "----- Lock Header Information -----\n"
         "File Lock Protect:     " +
         protect + "\nFile Read Lock Value:  " + read + "\nFile Write Lock Value: " + write +
         "\n"
         "\n";
}

/// What VBStats has to say of a block of revision C.
struct BlockFigures {
  std::string address;
  std::string length;
  char status = 'N';
  std::string next = "0";
  std::string objectLength;
  std::string stored;
  std::string calculated;
  bool matches = true;
  std::string protect = "0";
  std::string read = "0";
  std::string write = "0";
};

inline std::string BlockReport(const BlockFigures& block) {
  return "\n"
         "----------------------------\n"
         "----- Block Statistics -----\n"
         "Address      = " +
         block.address +
         "\n"
         "Check Word   = 0xfefefefe\n"
         "Length       = " +
         block.length + "\nStatus       = " + block.status + "\nNext Deleted = " + block.next +
         "\n"
         "\n"
         "----- Object Statistics -----\n"
         "Object Length  = " +
         block.objectLength + "\nStored CRC     = " + block.stored +
         "\nCalculated CRC = " + block.calculated + "\n" +
         (block.matches ? ""
                        : "ERROR: Object checksum does not match!\n"
                          "       Rebuild the file to recover valid data.\n") +
         "\n"
         "----- Record Lock Statistics -----\n"
         "Record Lock Protect:     " +
         block.protect + "\nRecord Read Lock Value:  " + block.read +
         "\nRecord Write Lock Value: " + block.write +
         "\n"
         "\n";
}

// Those of the sample file.
inline const BlockFigures kSampleAt40{.address = "40",
                                      .length = "41",
                                      .objectLength = "9",
                                      .stored = "0xcbf43926",
                                      .calculated = "0xcbf43926"};
inline const BlockFigures kSampleAt81{.address = "81",
                                      .length = "32",
                                      .status = 'D',
                                      .objectLength = "0",
                                      .stored = "0x0       ",
                                      .calculated = "0x0       "};
inline const BlockFigures kSampleAt113{.address = "113",
                                       .length = "41",
                                       .status = 'R',
                                       .next = "81",
                                       .objectLength = "9",
                                       .stored = "0xcbf43926",
                                       .calculated = "0xcbf43926"};
inline const BlockFigures kSampleAt154{.address = "154",
                                       .length = "41",
                                       .objectLength = "9",
                                       .stored = "0x1       ",
                                       .calculated = "0xcbf43926",
                                       .matches = false,
                                       .protect = "1",
                                       .read = "2",
                                       .write = "3"};

/// The totals of a sample file whose blocks are all good.
inline const std::string kSampleTotals =
    "\nBlocks: Used = 2 / Empty = 2 / Total = 4 Efficiency = 50%\n"
    "Bytes: Used = 122 / Empty = 73 / Total = 195 Efficiency = 63%\n";

/// PreCheck of a sound file.
inline std::string SoundHeader(const std::string& path) {
  return "Analyzing " + path +
         " header...\n"
         "\tChecking signature...OK\n"
         "\tChecking the HeapStart value...OK\n"
         "\tChecking the end of file...OK\n"
         "\tChecking the FreeSpace value...OK\n"
         "\tChecking the HighestVB value...OK\n"
         "\tChecking the version number...OK\n"
         "The file header checks OK!\n\n";
}

inline std::string Searching(const std::string& path) {
  return "Searching " + path + " for all variable blocks...\n";
}

/// A file of its own for a run, and the log of the run.
class FileRun : public testing::Test {
 protected:
  FileRun() { ClearLog(); }

  void Make(const std::string& bytes) { WriteBytes(path, bytes); }

  /// What `run` logs. It only reads the file, and leaves nothing open.
  template <class Run>
  std::string ReportOf(Run run) {
    const bool readable = std::filesystem::is_regular_file(path);
    const std::string bytes = readable ? ReadBytes(path) : "";
    if (readable) std::filesystem::last_write_time(path, kLongAgo);
    const auto descriptors = OpenDescriptors();
    ClearLog();
    run();
    const std::string text = LogText();
    EXPECT_EQ(OpenDescriptors(), descriptors);
    if (readable) {
      EXPECT_EQ(Hex(ReadBytes(path)), Hex(bytes));
      EXPECT_EQ(std::filesystem::last_write_time(path), kLongAgo);
    }
    return text;
  }
  template <class Error, class Run>
  std::string ReportUntil(Run run) {
    return ReportOf([&] { EXPECT_THROW(run(), Error); });
  }

  inline static const auto kLongAgo =
      std::filesystem::file_time_type::clock::now() - std::chrono::hours(1);

  TempFolder folder;
  const std::string path = folder / "study.ksb";
};

/// A file that is looked at while it is open.
class FileLook : public FileRun {
 protected:
  ~FileLook() noexcept override { db.Abandon(); }

  void Open(const std::string& bytes, vbDatabaseAccessMode mode = vbReadWrite) {
    db.Abandon();
    Make(bytes);
    db.Open(path, mode);
  }

  vbDatabase db;
};
