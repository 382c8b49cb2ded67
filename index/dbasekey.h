#pragma once

#include "store/api.h"
#include "store/vbscalar.h"

/// The abstract key of a tree. To the tree a key is an image of KeySize() bytes, which it copies
/// and never looks into, and two comparisons.
class KESTDB_API DatabaseKeyB {
 public:
  /// `image` is the key's contiguous image, not owned.
  explicit DatabaseKeyB(void* image) : KeyData(image) {}
  virtual ~DatabaseKeyB();

  /// Bytes of the image.
  virtual vbINT32 KeySize() = 0;
  virtual bool operator==(const DatabaseKeyB& other) const = 0;
  virtual bool operator>(const DatabaseKeyB& other) const = 0;

  vbINT32 Branch;  ///< the child on the right of the key, on the way into or out of a node
  void* KeyData;
};
