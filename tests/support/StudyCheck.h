#pragma once

#include <string>

/// What is wrong with the files of a closed study, the paths being `base` with ".ksb" and ".kx", a
/// line for each fault; nothing for a sound one. It is told from the bytes alone, with none of the
/// library's code: every block and its checksum, the free lists, the trees, and whether each object
/// of the data file is found through the tree of its class.
std::string FaultsOfStudy(const std::string& base);
