#include "environment/Logging.h"
#include "environment/default/LogText.h"

void LGenException(const char* file, int line) {
  kestdb::environment::WriteException("UNKNOWN EXCEPTION", file, line, nullptr);
}
