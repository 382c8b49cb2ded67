#include <cstdarg>

#include "environment/Logging.h"
#include "environment/default/LogText.h"

void LPrint(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  kestdb::environment::WriteText("", format, arguments);
  va_end(arguments);
}
