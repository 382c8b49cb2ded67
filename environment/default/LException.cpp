#include "environment/Logging.h"
#include "environment/default/LogText.h"

void LException(const char* file, int line, const char* message) {
  kestdb::environment::WriteException("EXCEPTION", file, line, message);
}
