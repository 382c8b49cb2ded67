#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/fault/Damage.h"
#include "tests/fault/HostileStudy.h"

/// Files with words in them that no program of good will writes, behind checksums that are right.
class Forgery {
 public:
  explicit Forgery(const HostileStudy& study) : Forgery(study.Files()) {}
  explicit Forgery(const FilePair& files) : files_(files) {}

  /// Puts `value` at `offset`, least significant byte first, where `old` must have been.
  Forgery& Change(Which file, std::size_t offset, std::uint32_t old, std::uint32_t value);
  Forgery& Set(Which file, std::size_t offset, std::uint32_t value);
  Forgery& SetByte(Which file, std::size_t offset, unsigned char value);
  Forgery& SetBytes(Which file, std::size_t offset, const std::string& bytes);
  /// Gives the object of the block at `block`, as long as the block says it is, its checksum.
  Forgery& Seal(Which file, std::size_t block);

  std::string& Bytes(Which file) { return file == Which::Data ? files_.data : files_.index; }
  const FilePair& Files() const { return files_; }

 private:
  FilePair files_;
};

/// A forged study and what may come of it at worst.
struct HostileValue {
  std::string name;
  Forgery forged;
  Ending worst = Ending::Reported;
  long changed = 0;       ///< the address of an object whose value is no longer known
  std::string told = {};  ///< what the first exception has to say, if that matters
};

/// Whether writing into the damaged files may cost an object that could be read before.
enum class Writing { MayLose, LosesNothing };

/// Exercises all of them and prints how each ended.
void ExerciseAll(const HostileStudy& study, const std::vector<HostileValue>& values,
                 Writing writing);

/// The block addresses on the free list, from the head.
std::vector<std::size_t> FreeList(const std::string& bytes);
