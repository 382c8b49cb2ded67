#include "environment/default/LogText.h"

#include <algorithm>
#include <cstring>

#include "environment/Logging.h"

namespace kestdb::environment {

namespace {

// The static objects of a program may log before fKLog has got its value.
FILE* LogStream() {
  return fKLog != nullptr ? fKLog : stderr;
}

}  // namespace

void WriteText(const char* prefix, const char* format, std::va_list arguments) {
  FILE* log = LogStream();
  std::fputs(prefix, log);
  std::vfprintf(log, format, arguments);
}

void WriteException(const char* what, const char* file, int line, const char* message) {
  char entry[2048];
  std::snprintf(entry, sizeof entry, "%s: %s (%d)%s%s", what, file != nullptr ? file : "", line,
                message != nullptr ? ": " : "", message != nullptr ? message : "");
  std::replace(entry, entry + std::strlen(entry), '\n', ' ');
  std::fprintf(LogStream(), "%s\n", entry);
}

}  // namespace kestdb::environment
