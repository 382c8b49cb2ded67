// Private to the library, not installed: the source file of a control block includes it and
// instantiates vbControlBlock.
#pragma once

#include <vector>

#include "control/ControlBlock.h"
#include "control/ControlFields.h"
#include "store/KestErr.h"
#include "store/RecordIO.h"
#include "store/pod.h"
#include "store/vbdbase.h"

namespace kestdb {

/// The bytes of the data file from its current position on.
class FileBytes {
 public:
  explicit FileBytes(vbDatabase& file) : file_(file) {}

  std::size_t Left() const { return static_cast<std::size_t>(file_.Length()); }
  const char* Next(std::size_t count, std::size_t width) {
    if (count > Left() / width) Throw<CFileCorrupt>();
    bytes_.resize(count * width);
    file_.Read(bytes_.data(), bytes_.size(), vbCurrAddress);
    return bytes_.data();
  }

 private:
  vbDatabase& file_;
  std::vector<char> bytes_;
};

inline vbDatabase& RequireDataFile(const POD* pod) {
  if (pod == nullptr || pod->DataFile() == nullptr) Throw<CNullPtr>();
  return *pod->DataFile();
}

}  // namespace kestdb

template <class Block>
void vbControlBlock<Block>::SetDefaultAttributes() {
  static_cast<Block&>(*this) = Block();
}

template <class Block>
void vbControlBlock<Block>::Copy(const Block& other) {
  static_cast<Block&>(*this) = other;
}

template <class Block>
unsigned long vbControlBlock<Block>::ObjectLength() const {
  kestdb::RecordMeter file;
  kestdb::BlockOf<Block>::Fields(file, static_cast<const Block&>(*this));
  return file.Length();
}

template <class Block>
void vbControlBlock<Block>::Read(POD* pod, int taskVersion, int controlVersion) try {
  kestdb::FieldReader file(kestdb::FileBytes(kestdb::RequireDataFile(pod)),
                           {.task = taskVersion, .control = controlVersion});
  kestdb::BlockOf<Block>::Fields(file, static_cast<Block&>(*this));
}
LOG_AND_RETHROW

template <class Block>
void vbControlBlock<Block>::Write(POD* pod) const try {
  std::vector<char> bytes;
  kestdb::RecordWriter file(bytes);
  kestdb::BlockOf<Block>::Fields(file, static_cast<const Block&>(*this));
  kestdb::RequireDataFile(pod).Write(bytes.data(), bytes.size(), vbCurrAddress, false, true);
}
LOG_AND_RETHROW
