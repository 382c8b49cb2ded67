#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tests/fault/FileMap.h"
#include "tests/fault/HostileStudy.h"

enum class Which { Data, Index };

/// One way to damage a pair of files: bits of a byte turned over, or a file cut off.
struct Damage {
  Which file;
  std::size_t offset;        ///< of the byte, or the length that is left
  unsigned char turned = 0;  ///< the bits; 0 cuts
};

/// Each byte of a file, with all its bits turned over.
std::vector<Damage> Inversions(const FilePair& files, Which file);
/// Each length that a file can be cut to.
std::vector<Damage> Cuts(const FilePair& files, Which file);
/// Each single bit of the file header, the tree headers and the block headers.
std::vector<Damage> HeaderBits(const FilePair& files, Which file);

/// The files with the damage done to one of them.
FilePair Apply(FilePair files, const Damage& damage);
const std::string& BytesOf(const FilePair& files, Which file);
const char* FileName(Which file);
FileMap MapOf(const FilePair& files, Which file);
/// What was damaged, in words.
std::string Describe(const Damage& damage, const FileMap& map);

/// `count` of them, always the same.
std::vector<Damage> Sample(std::vector<Damage> damages, std::size_t count);

/// The n-th of `parts` slices of about the same size.
std::vector<Damage> Part(const std::vector<Damage>& damages, std::size_t n, std::size_t parts);

/// Exercises the study with each damage, prints how many ended how, and in which fields damage
/// was lost in silence or spread. Fails the test for each that ended in no lawful way, and for a
/// silent loss where something guards against it.
void ExerciseAll(const HostileStudy& study, const std::vector<Damage>& damages,
                 const std::string& title);
