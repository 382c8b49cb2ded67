#pragma once

#include "store/api.h"

class POD;

/// What the five control blocks have in common: each derives from this with itself as the argument.
/// A block is no object of its own but a part of the records of CDesignControl and CTask. Its
/// stored fields stand once, in control/ControlFields.h.
template <class Block>
class vbControlBlock {
 public:
  void SetDefaultAttributes();
  void Copy(const Block& other);

  /// Bytes of the stored block.
  unsigned long ObjectLength() const;

  /// Read and write the block at the current position of the data file. Of the two versions one is
  /// that of the embedding record, the other 0; fields that an older record lacks stay as they are.
  /// THROW CNullPtr without a data file, CFileCorrupt for a count that the file can't hold, and the
  /// failures of vbDatabase.
  void Read(POD* pod, int taskVersion, int controlVersion);
  void Write(POD* pod) const;
};
