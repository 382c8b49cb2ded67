#include "tests/fault/FileMap.h"

#include <algorithm>
#include <stdexcept>

std::size_t NumberAt(const std::string& bytes, std::size_t offset) {
  std::size_t value = 0;
  for (std::size_t i = 4; i-- > 0;) {
    value = value << 8 | static_cast<unsigned char>(bytes.at(offset + i));
  }
  return value;
}

FileMap::FileMap(const std::string& bytes, std::size_t trees) : words_(bytes.size()) {
  static const char* const fileHeader[] = {"free space", "end of file", "heap start",
                                           "highest block"};
  for (std::size_t i = 0; i < 4; ++i) Mark(4 * i, 4, std::string("file header: ") + fileHeader[i]);
  Mark(16, 7, "file header: signature");
  Mark(23, 1, "file header: revision");
  Mark(24, 4, "file header: version");
  Mark(28, 12, "file lock");
  static const char* const treeHeader[] = {"order",  "entry size", "entry count", "node count",
                                           "height", "root",       "class ID"};
  for (std::size_t slot = 40; slot <= 40 * trees; slot += 40) {
    const char* tree = NumberAt(bytes, slot + 8) > 0 ? "used tree: " : "unused tree: ";
    for (std::size_t i = 0; i < 7; ++i) Mark(slot + 4 * i, 4, std::string(tree) + treeHeader[i]);
    Mark(slot + 28, 12, "behind a tree header");
  }
  for (std::size_t at = NumberAt(bytes, 8); at < bytes.size(); at += NumberAt(bytes, at + 4)) {
    MarkBlock(bytes, at);
  }
}

void FileMap::MarkBlock(const std::string& bytes, std::size_t address) {
  const std::size_t length = NumberAt(bytes, address + 4);
  if (length < 32 || address + length > bytes.size()) throw std::logic_error("a broken heap");
  const std::string block = bytes[address + 8] == 'N' ? "live block: " : "free block: ";
  Mark(address, 4, block + "check word");
  Mark(address + 4, 4, block + "length");
  Mark(address + 8, 1, block + "status letter");
  Mark(address + 9, 3, block + "status, upper bytes");
  Mark(address + 12, 4, block + "next deleted");
  Mark(address + 16, 12, block + "record lock");
  Mark(address + 28, length - 32, block + "contents");
  Mark(address + length - 4, 4, block + "checksum");
  blocks_.push_back(address);
}

void FileMap::Mark(std::size_t from, std::size_t size, const std::string& name) {
  const auto known = std::find(names_.begin(), names_.end(), name);
  const auto word = static_cast<std::size_t>(known - names_.begin());
  if (known == names_.end()) names_.push_back(name);
  std::fill_n(words_.begin() + static_cast<long>(from), size, word);
}
