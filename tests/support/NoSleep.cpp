#include "environment/Utilities.h"

// A double of the waiting, for tests that run through all tries for a lock.

void COSUtil::mySleep(unsigned) {}
