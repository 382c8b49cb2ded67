#pragma once

/// The whole interface of libkestdb.

#include "definition/GPoint.h"
#include "environment/Logging.h"
#include "environment/Utilities.h"
#include "index/KSBKey.h"
#include "index/btnode.h"
#include "index/btstack.h"
#include "index/dbasekey.h"
#include "index/vbtree.h"
#include "maintenance/Lock.h"
#include "store/DBI_IO.h"
#include "store/KestErr.h"
#include "store/PersistentClass.h"
#include "store/api.h"
#include "store/classtable.h"
#include "store/crc32.h"
#include "store/pod.h"
#include "store/vbdbase.h"
#include "store/vbdfptr.h"
#include "store/vbscalar.h"
#include "store/vpersist.h"
