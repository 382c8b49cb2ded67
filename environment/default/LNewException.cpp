#include "environment/Logging.h"
#include "environment/default/LogText.h"

void LNewException(const char* file, int line, const char* message) {
  kestdb::environment::WriteException("NEW EXCEPTION", file, line, message);
}
