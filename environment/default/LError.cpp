#include <cstdarg>

#include "environment/Logging.h"
#include "environment/default/LogText.h"

void LError(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  kestdb::environment::WriteText("ERROR: ", format, arguments);
  va_end(arguments);
}
