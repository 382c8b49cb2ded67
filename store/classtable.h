#pragma once

#include "store/api.h"

/// How the maintenance reports name the classes, by class index. The last three are spare.
extern KESTDB_API const char* const pszIndexDesc[25];
