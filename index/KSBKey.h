#pragma once

#include "index/dbasekey.h"
#include "store/api.h"
#include "store/vbscalar.h"

/// The key of all trees: a text, and where in the data file the object lies that it names.
/// Keys are compared by the text alone, byte by byte.
class KESTDB_API KSBKey : public DatabaseKeyB {
 public:
  KSBKey();
  /// A text of more than 63 characters is cut.
  KSBKey(const char* name, vbINT32 address, vbINT32 classID);
  KSBKey(const KSBKey& other);
  KSBKey& operator=(const KSBKey& other);
  ~KSBKey() override;

  void SetObjectName(const char* name);

  vbINT32 KeySize() override;
  /// REQUIRES that `other` is a KSBKey, as in a tree every key is.
  bool operator==(const DatabaseKeyB& other) const override;
  bool operator>(const DatabaseKeyB& other) const override;
  bool operator==(const KSBKey& other) const;

  // The image: 72 bytes, contiguous, as they stand in a node.
  char ObjectName[64];  ///< ends with a zero byte
  vbINT32 ObjectAddress;
  vbINT32 ObjectClassID;
};
