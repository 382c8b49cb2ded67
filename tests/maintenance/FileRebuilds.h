#pragma once

#include <gtest/gtest.h>

#include <string>

#include "maintenance/DBUtilities.h"
#include "tests/maintenance/RebuildReports.h"
#include "tests/support/BlockFile.h"

// Data files to be rebuilt, by their bytes.

/// A live block of revision C for the object of class `classID` at `address`, with its checksum.
inline std::string Live(long classID, long address, const std::string& fields) {
  const std::string object = Word(classID) + Word(address) + fields;
  return Bytes("FE FE FE FE") + Word(static_cast<long>(object.size()) + 32) + Word('N') +
         std::string(16, '\0') + object + ChecksumOf(object);
}

/// A live block for an object of `size` letters behind its header, to be put at `block`.
inline std::string LetterBlock(long block, char letter, std::size_t size) {
  return Live(1, block + 28, std::string(size, letter));
}

/// A file of revision C of these blocks, as the library writes it.
inline std::string Written(const std::string& blocks, long highest) {
  return FileHeaderBytes(0, 40 + static_cast<long>(blocks.size()), 40, highest) +
         std::string(12, '\0') + blocks;
}

class FileRebuild : public FileRun {
 protected:
  /// What the rebuild of a file of these bytes logs. Nothing stays open, and no copy beside it.
  std::string Rebuild(const std::string& bytes) {
    Make(bytes);
    return RebuildAsItIs();
  }
  std::string RebuildAsItIs() {
    const auto descriptors = OpenDescriptors();
    ClearLog();
    KFileRebuild(path);
    EXPECT_EQ(OpenDescriptors(), descriptors);
    EXPECT_EQ(NamesIn(folder.Path()), "study.ksb");
    return LogText();
  }

  std::string Start() const {
    return "\n***** Start -- Rebuild Data File *****\nFile name: " + path + "\n";
  }
  /// The counts of the end: blocks and bytes written, the same dropped, and bad blocks.
  static std::string Counted(int written, int writtenBytes, int dropped, int droppedBytes,
                             int bad) {
    return std::to_string(written) + " variable blocks were written (" +
           std::to_string(writtenBytes) + " bytes)\n" + std::to_string(dropped) +
           " variable blocks were compressed out (" + std::to_string(droppedBytes) + " bytes)\n" +
           std::to_string(bad) + " unrecoverable blocks were found\n";
  }
  std::string Whole(const std::string& counted) const {
    return Start() + SoundStart(path) + counted + kEnd;
  }

  const std::string kEnd = "***** End -- Rebuild Data File *****\n\n";
  const std::string kBad = "WARNING: \nBad blocks existed. The index file MUST be rebuilt!\n\n";
};
