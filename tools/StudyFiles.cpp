#include "StudyFiles.h"

#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>

#include "Ending.h"
#include "LockWait.h"

namespace {

std::string BaseName(const std::string& name) {
  const bool extended = name.ends_with(".ksb") || name.ends_with(".KSB");
  return extended ? name.substr(0, name.size() - 4) : name;
}

std::string FolderOf(const std::string& base) {
  const std::string folder = std::filesystem::path(base).parent_path();
  return folder.empty() ? "." : folder;
}

void RequireAccess(const std::string& path, int mode) {
  if (access(path.c_str(), mode) == 0) return;
  throw Refusal(kNotOpened, path + ": " + std::strerror(errno));
}

void RequireNoLostData(const StudyFiles& files) {
  if (BytesOf(files.copy) < 0) return;
  throw Refusal(kNotOpened, files.data + " does not exist, but " + files.copy +
                                " does: it is what an interrupted rebuild left, and may be the "
                                "whole study; rename it to " +
                                files.data);
}

}  // namespace

StudyFiles::StudyFiles(const std::string& name)
    : base(BaseName(name)),
      folder(FolderOf(base)),
      data(base + ".ksb"),
      index(base + ".kx"),
      lock(base + ".lck"),
      copy(data + ".new") {}

long BytesOf(const std::string& path) {
  struct stat status;
  return stat(path.c_str(), &status) == 0 ? static_cast<long>(status.st_size) : -1;
}

std::optional<vbFileHeader> HeaderOf(const std::string& path) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                             std::fclose);
  vbFileHeader header;
  if (file == nullptr || std::fread(&header, sizeof header, 1, file.get()) != 1) return {};
  return header.HasKnownSignature() ? std::optional(header) : std::nullopt;
}

void RequireStudy(const StudyFiles& files) {
  struct stat status;
  if (stat(files.data.c_str(), &status) != 0) {
    const int error = errno;
    RequireNoLostData(files);
    throw Refusal(kNotOpened, files.data + ": " + std::strerror(error));
  }
  if (!S_ISREG(status.st_mode)) throw Refusal(kNotOpened, files.data + ": not a file");
  RequireAccess(files.data, R_OK | W_OK);
  if (BytesOf(files.index) >= 0) RequireAccess(files.index, R_OK | W_OK);
}

void RequireWritableFolder(const StudyFiles& files) {
  RequireAccess(files.folder, R_OK | W_OK | X_OK);
}

void RequireUsable(const StudyFiles& files) {
  RequireStudy(files);
  RequireWritableFolder(files);
  AwaitLock(files.lock);
}

void RequireSpace(const StudyFiles& files, long bytes) {
  struct statvfs status;
  if (statvfs(files.folder.c_str(), &status) != 0) {
    throw Refusal(kNotOpened, files.folder + ": " + std::strerror(errno));
  }
  const auto needed = static_cast<unsigned long>(bytes);
  if (status.f_bavail >= needed / status.f_frsize + 1) return;
  throw Refusal(kNotOpened, "no room for a copy of " + std::to_string(bytes) + " bytes in " +
                                files.folder + ", which has " +
                                std::to_string(status.f_bavail * status.f_frsize) + " left");
}

bool IsOfOldVersion(const StudyFiles& files) {
  const auto header = HeaderOf(files.data);
  return header && header->Version > 0 && header->Version != vbDatabase::VBDVersion;
}
