#pragma once

#include <functional>
#include <string>

#include "store/pod.h"
#include "tests/fault/HostileStudy.h"

// The files of one study at different times, and of others like it.

struct StudyFiles {
  FilePair whole;    ///< objects of every class
  FilePair more;     ///< five objects more, of classes that had some
  FilePair less;     ///< four objects less
  FilePair reused;   ///< `less`, their blocks taken by others of the same classes
  FilePair retaken;  ///< one less, its block taken by an object of another class
  FilePair grown;    ///< the same objects, three of them longer
  FilePair swapped;  ///< the same objects, two of a class and two of another with places exchanged
  FilePair turned;   ///< the same objects, stored from the last to the first
  FilePair foreign;  ///< objects of the same classes under other keys
  FilePair fresh;    ///< a new study, opened and closed
  FilePair empty;    ///< no object at all
};

/// Makes all of them, once.
const StudyFiles& Files();

inline constexpr int kMore = 5;   ///< objects of `more` that `whole` lacks
inline constexpr int kLess = 4;   ///< objects of `whole` that `less` lacks
inline constexpr int kGrown = 3;  ///< objects of `grown` that are longer

/// The data file with an index of that order made for it.
FilePair WithOrder(const FilePair& files, int order);

/// The files behind a rebuild of the data file alone.
FilePair Compacted(const FilePair& files);

/// The index file with the headers of two trees exchanged.
std::string Exchanged(std::string index, std::size_t tree, std::size_t other);
/// The index file with each tree header in the next slot.
std::string Moved(const std::string& index);
