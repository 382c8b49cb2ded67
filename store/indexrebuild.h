// Private to the library, not installed.
#pragma once

#include <functional>

#include "store/api.h"

class vbDatabase;
class vbPersistent;

namespace kestdb {

/// Visits the addresses of the live objects of a class in file order, past any damage and without
/// use of the index.
void ForEachLiveObject(vbDatabase& data, long classID, const std::function<void(long)>& visit);

/// What RebuildIndex does for every class: goes over the objects of the class of `object`, a new
/// object that is connected to the study. See store/PersistentClass.h.
KESTDB_API int RebuildIndexOf(vbPersistent& object, bool add);

}  // namespace kestdb
