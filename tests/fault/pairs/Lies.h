#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "tests/fault/Forgery.h"
#include "tests/fault/HostileStudy.h"

// Words of sound files that are given values which no program of good will writes, behind checksums
// that are right: every value at every such field.

struct Lie {
  std::string name;
  std::function<void(Forgery& files)> tell;
  long changed = 0;  ///< the address of the object whose own bytes it changes
};

// In the data file.

std::vector<Lie> TextLengths(const FilePair& sound);
std::vector<Lie> ListCounts(const FilePair& sound);
std::vector<Lie> ClassIDs(const FilePair& sound);
std::vector<Lie> AddressWords(const FilePair& sound);
std::vector<Lie> LiveLengths(const FilePair& sound);

// In either file. `offset` is that of the word in the file header.

std::vector<Lie> HeaderWords(const FilePair& sound, Which file, std::size_t offset);
std::vector<Lie> FreeLengths(const FilePair& sound, Which file);
/// Each member of the free list leads back to itself or to one before it.
std::vector<Lie> FreeCycles(const FilePair& sound, Which file);
std::vector<Lie> FreeLists(const FilePair& sound, Which file);

// In the index file. `offset` is that of the word in the tree header.

std::vector<Lie> TreeWords(const FilePair& sound, std::size_t offset);
std::vector<Lie> KeyCounts(const FilePair& sound);
std::vector<Lie> LeftBranches(const FilePair& sound);
std::vector<Lie> EntryBranches(const FilePair& sound);
std::vector<Lie> EntryAddresses(const FilePair& sound);
std::vector<Lie> NodeLengths(const FilePair& sound);
