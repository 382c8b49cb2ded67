#include "tests/support/Log.h"

#include <cstdarg>
#include <cstdio>
#include <ostream>

#include "environment/Logging.h"

namespace {

std::vector<LogEntry>& Entries() {
  static std::vector<LogEntry> entries;
  return entries;
}

void AddPrinted(const char* kind, const char* format, va_list arguments) {
  char text[4096];
  std::vsnprintf(text, sizeof text, format, arguments);
  Entries().push_back({kind, text, "", 0});
}

ssize_t AddStreamed(void*, const char* text, std::size_t size) {
  Entries().push_back({"fKLog", std::string(text, size), "", 0});
  return static_cast<ssize_t>(size);
}

std::FILE* OpenLogStream() {
  cookie_io_functions_t functions{};
  functions.write = AddStreamed;
  std::FILE* stream = fopencookie(nullptr, "w", functions);
  std::setvbuf(stream, nullptr, _IONBF, 0);  // its entries stand in order with those of functions
  return stream;
}

}  // namespace

FILE* fKLog = OpenLogStream();

std::ostream& operator<<(std::ostream& stream, const LogEntry& entry) {
  stream << entry.kind << " \"" << entry.text << '"';
  if (!entry.file.empty()) stream << " at " << entry.file << ':' << entry.line;
  return stream;
}

const std::vector<LogEntry>& Log() {
  return Entries();
}

void ClearLog() {
  Entries().clear();
}

std::string PrintedLog() {
  std::string all;
  for (const LogEntry& entry : Entries()) {
    if (entry.file.empty()) all += entry.text;
  }
  return all;
}

void LNewException(const char* file, int line, const char* message) {
  Entries().push_back({"LNewException", message, file, line});
}

void LException(const char* file, int line, const char* what) {
  Entries().push_back({"LException", what, file, line});
}

void LGenException(const char* file, int line) {
  Entries().push_back({"LGenException", "", file, line});
}

void LError(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  AddPrinted("LError", format, arguments);
  va_end(arguments);
}

void LWarn(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  AddPrinted("LWarn", format, arguments);
  va_end(arguments);
}

void LPrint(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  AddPrinted("LPrint", format, arguments);
  va_end(arguments);
}
