#include "environment/Utilities.h"

bool COSUtil::IsWin9x() {
  return false;
}
