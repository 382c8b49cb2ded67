#include "store/blockwalk.h"

#include <algorithm>

namespace kestdb {

namespace {

/// Reading so much costs hardly more than reading one header.
constexpr std::size_t kReadAhead = 16384;

/// Addresses reach no further.
constexpr long kLongestFile = 0x7FFFFFFF;

}  // namespace

FileWindow::FileWindow(vbDatabase& file)
    : file_(file), length_(std::min(file.Length(), kLongestFile)) {}

const char* FileWindow::At(long address, std::size_t size) {
  if (address < 0 || address > length_ || size > static_cast<std::size_t>(length_ - address)) {
    return nullptr;
  }
  const long behind = start_ + static_cast<long>(bytes_.size());
  if (address < start_ || address + static_cast<long>(size) > behind) {
    const auto rest = static_cast<std::size_t>(length_ - address);
    bytes_.resize(std::min(rest, std::max(size, kReadAhead)));
    start_ = address;
    file_.Read(bytes_.data(), bytes_.size(), address);
  }
  return bytes_.data() + (address - start_);
}

bool BlockWalk::Load(long address, FoundBlock& block) {
  const char* bytes = window_.At(address, file_.VBHeaderSize());
  if (bytes == nullptr) return false;
  block.address = address;
  std::memcpy(&block.header, bytes, sizeof block.header);
  const unsigned long length = block.header.Length;
  return file_.IsValid(block.header.CheckWord) && length >= file_.BlockOverhead() &&
         length <= static_cast<unsigned long>(window_.Length() - address);
}

long BlockWalk::NextCheckWord(long address) {
  for (; const char* bytes = window_.At(address, file_.VBHeaderSize()); ++address) {
    vbUINT32 word;
    std::memcpy(&word, bytes, sizeof word);
    if (file_.IsValid(word)) return address;
  }
  return 0;
}

}  // namespace kestdb
