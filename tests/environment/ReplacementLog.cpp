#include "tests/environment/ReplacementLog.h"

#include "environment/Logging.h"

std::string& ReplacementLog() {
  static std::string log;
  return log;
}

void LNewException(const char* file, int line, const char* message) {
  ReplacementLog() += std::string(file) + '@' + std::to_string(line) + ' ' + message + '\n';
}

void LError(const char* format, ...) {
  ReplacementLog() += format;
}
