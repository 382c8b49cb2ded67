#include <chrono>
#include <thread>

#include "environment/Utilities.h"

void COSUtil::mySleep(unsigned milliseconds) {
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}
