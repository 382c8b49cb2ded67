#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

/// Changes variable-block files of all revisions, so that what takes them gets beyond their
/// checksums.
class Mutator {
 public:
  explicit Mutator(unsigned seed) : random_(seed) {}

  std::size_t Below(std::size_t limit) { return random_() % limit; }

  /// Makes one to four changes in the file. Mostly checksums, the end of the file and the addresses
  /// that objects have of themselves are made right again. Blocks may be taken from `other`, a file
  /// of the same kind.
  void Mutate(std::string& file, std::size_t mostBytes, const std::string& other);

 private:
  using Change = void (Mutator::*)(std::string&, std::size_t mostBytes, const std::string& other);

  void ChangeBytes(std::string& file, std::size_t mostBytes, const std::string&);
  void ChangeHeaders(std::string& file, std::size_t, const std::string&);
  void ChangeBlockHeader(std::string& file, std::size_t, const std::string&);
  void ChangeObject(std::string& file, std::size_t, const std::string&);
  void PutWord(std::string& file, std::size_t, const std::string&);
  void CopyWords(std::string& file, std::size_t, const std::string& other);
  void InsertBlock(std::string& file, std::size_t mostBytes, const std::string& other);
  void EraseBlock(std::string& file, std::size_t, const std::string&);
  void FreeBlock(std::string& file, std::size_t, const std::string&);
  void MoveEnd(std::string& file, std::size_t, const std::string&);

  void MutatePart(std::string& file, std::size_t offset, std::size_t size);
  std::size_t SomeWord(const std::string& file);
  std::size_t SomePlace(const std::string& file);

  std::mt19937 random_;
};

/// LLVMFuzzerMutate for a string of at most `mostBytes` bytes.
void MutateText(std::string& text, std::size_t mostBytes);

/// Copies the input to where the fuzzer wants it and returns its length.
std::size_t HandOver(const std::string& input, std::uint8_t* place, std::size_t mostSize);
