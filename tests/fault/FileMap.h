#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// What each byte of a sound file is for, in words: "file header: end of file", "live block:
/// length". Found out from the layout alone, without the library.
class FileMap {
 public:
  /// `trees` is the number of tree headers in the static area.
  FileMap(const std::string& bytes, std::size_t trees);

  const std::string& At(std::size_t offset) const { return names_[words_[offset]]; }
  /// The block addresses, in file order.
  const std::vector<std::size_t>& Blocks() const { return blocks_; }

 private:
  void Mark(std::size_t from, std::size_t size, const std::string& name);
  void MarkBlock(const std::string& bytes, std::size_t address);

  std::vector<std::string> names_;
  std::vector<std::size_t> words_;  ///< for each byte, its place in names_
  std::vector<std::size_t> blocks_;
};

/// The number in the four bytes at `offset`, least significant first.
std::size_t NumberAt(const std::string& bytes, std::size_t offset);
