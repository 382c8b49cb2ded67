#include "store/vbdfptr.h"

#include <fcntl.h>
#include <stdio_ext.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>

bool isNoBufSet = false;

namespace {

/// Every write is read back, and each of those reads would update the file's access time, a tenth
/// of the cost of storing an object. Only the file's owner may switch that off.
void SkipAccessTimes(std::FILE* stream) {
  const int flags = fcntl(fileno(stream), F_GETFL);
  if (flags != -1) fcntl(fileno(stream), F_SETFL, flags | O_NOATIME);
}

vbdFPTR* OpenStream(const std::string& path, const char* mode) {
  auto handle = std::make_unique<vbdFPTR>();
  handle->Stream = std::fopen(path.c_str(), mode);
  if (handle->Stream == nullptr) return nullptr;
  SkipAccessTimes(handle->Stream);
  if (isNoBufSet) std::setvbuf(handle->Stream, nullptr, _IONBF, 0);
  return handle.release();
}

bool IsNull(const vbdFPTR* f) {
  return f == nullptr || f->Stream == nullptr;
}

}  // namespace

bool vbdFPTRExists(const std::string& path) {
  struct stat status;
  return stat(path.c_str(), &status) == 0;
}

long vbdFPTRFileSize(const std::string& path) {
  struct stat status;
  return stat(path.c_str(), &status) == 0 ? status.st_size : -1;
}

vbdFPTR* vbdFPTRCreate(const std::string& path) {
  return OpenStream(path, "w+b");
}

vbdFPTR* vbdFPTROpen(const std::string& path, vbDatabaseAccessMode mode) {
  return OpenStream(path, mode == vbReadOnly ? "rb" : "r+b");
}

int vbdFPTRClose(vbdFPTR* f) {
  if (f == nullptr) return 0;
  std::FILE* stream = f->Stream;
  f->Stream = nullptr;
  if (stream != nullptr && std::fclose(stream) != 0) return 1;
  delete f;
  return 0;
}

int vbdFPTRFlush(vbdFPTR* f) {
  if (IsNull(f)) return 1;
  return std::fflush(f->Stream) == 0 ? 0 : 1;
}

int vbdFPTRSync(vbdFPTR* f) {
  if (vbdFPTRFlush(f) != 0) return 1;
  return fsync(fileno(f->Stream)) == 0 ? 0 : 1;
}

int vbdFPTRRead(vbdFPTR* f, void* buffer, unsigned int size) {
  if (IsNull(f)) return 1;
  if (std::fread(buffer, 1, size, f->Stream) == size) return 0;
  std::clearerr(f->Stream);  // the next read tries again
  return 2;
}

int vbdFPTRWrite(vbdFPTR* f, const void* buffer, unsigned int size) {
  if (IsNull(f)) return 1;
  return std::fwrite(buffer, 1, size, f->Stream) == size ? 0 : 1;
}

int vbdFPTRSeek(vbdFPTR* f, long offset, vbDatabaseSeekMode mode) {
  if (IsNull(f)) return 1;
  switch (mode) {
    case vbSeekBegin:
      return std::fseek(f->Stream, offset, SEEK_SET);
    case vbSeekCurrent:
    case vbSeekEnd:
      return std::fseek(f->Stream, offset, SEEK_CUR);
  }
  return -1;
}

long vbdFPTRTell(vbdFPTR* f) {
  return IsNull(f) ? -1 : std::ftell(f->Stream);
}

long vbdFPTRLength(vbdFPTR* f) {
  struct stat status;
  if (IsNull(f) || fstat(fileno(f->Stream), &status) != 0) return -1;
  return status.st_size;
}

void vbdFPTRRefresh(vbdFPTR* f) {
  if (IsNull(f)) return;
  // Where no file of ours reaches, no seek can be served from the buffer: all of it is dropped.
  std::fseek(f->Stream, 1L << 31, SEEK_SET);
  std::fseek(f->Stream, 0, SEEK_SET);
}

void vbdFPTRDiscard(vbdFPTR* f) {
  if (IsNull(f)) return;
  __fpurge(f->Stream);
  std::clearerr(f->Stream);
}
