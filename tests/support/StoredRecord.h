#pragma once

#include <string>

#include "store/pod.h"
#include "store/vpersist.h"

// Records of an open study as bytes: typed by hand and stored, or taken from the file.

/// Puts an object of these bytes, its checksum right, into a block of its own that no key leads to.
/// Its address.
long StoreBytes(POD* pod, const std::string& object);

/// The same for a record, which is the version word and the fields: the object header is put
/// before it.
long StoreRecord(POD* pod, long classID, const std::string& record);

/// The record of a stored object, as long as its block says.
std::string StoredRecord(const vbPersistent& object);
