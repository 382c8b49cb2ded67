// Private to the library, not installed.
#pragma once

#include "store/api.h"

class vbPersistent;

namespace kestdb {

/// What RebuildIndex does for every class: goes over the objects of the class of `object`, a new
/// object that is connected to the study. See store/PersistentClass.h.
KESTDB_API int RebuildIndexOf(vbPersistent& object, bool add);

}  // namespace kestdb
