#include "store/KestErr.h"

#include <cstring>

#include "environment/Logging.h"

CKestErr::CKestErr(const char* sourceFile, int sourceLine, const char* text)
    : line(sourceLine), file(sourceFile), message{} {
  if (text == nullptr) text = "";
  std::strncpy(message, text, sizeof message - 1);
  if (file != nullptr) LNewException(file, line, text);
}

CKestErr::~CKestErr() = default;

const char* CKestErr::what() const noexcept {
  return message;
}

CEngErr::CEngErr(const char* sourceFile, int sourceLine, const char* text)
    : CKestErr(sourceFile, sourceLine, text) {}

CEngErr::~CEngErr() = default;

#define KESTDB_DEFINE_FAILURE(Class, Base, text)                                               \
  Class::Class(const char* sourceFile, int sourceLine) : Base(sourceFile, sourceLine, text) {} \
  Class::~Class() = default;

KESTDB_FAILURES(KESTDB_DEFINE_FAILURE)

namespace kestdb {

void LogAndRethrow(const char* file, int line) {
  try {
    throw;
  } catch (const std::exception& error) {
    LException(file, line, error.what());
  } catch (...) {
    LGenException(file, line);
  }
  throw;
}

}  // namespace kestdb
